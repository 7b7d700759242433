// kwcore graph: graphs of nodes and edges. "demo" builds a small sample
// graph of stations, saves it to an XML archive, loads it back and prints the
// depth-first order from a chosen station.
#include <cstdio>
#include <string>
#include <vector>

#include "CStoredXmlArchive.h"
#include "Commands.h"
#include "kwcore/framework/CKWDFSVisitor.h"
#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"
#include "kwcore/framework/CKWReleaseVisitor.h"

namespace kwCommands {
namespace {

// A station: a graph node with a name.
class CDemoStation : public CKWGraphNode {
    KW_DECLARE_SERIAL_TYPE(CDemoStation)

public:
    CString m_Name;

protected:
    CDemoStation() = default;
};

// A line that runs one way only, from its primary to its secondary station.
class CDemoOneWayLine : public CKWGraphEdge {
    KW_DECLARE_SERIAL_TYPE(CDemoOneWayLine)

protected:
    CDemoOneWayLine() = default;
    int OnInitialize() override {
        if (!CKWGraphEdge::OnInitialize()) {
            return 0;
        }
        SetDirection(ToSecondary);
        return 1;
    }
};

KW_IMPLEMENT_SERIAL_TYPE(CDemoStation, "{5C0F7E1A-3B92-4D6E-8A41-9E2D7C6B5F30}",
                         "{4E82A8F0-B483-47FE-BE4A-2C72C1A39F63}")
KW_BEGIN_FIELDS(CDemoStation)
KW_FIELD(m_Name, "{6D1A8F2B-4CA3-4E7F-9B52-AF3E8D7C6A41}", "{9FD8ACE1-6007-4A97-BB0A-01A0E7999305}",
         KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

KW_IMPLEMENT_SERIAL_TYPE(CDemoOneWayLine, "{7E2B9A3C-5DB4-4F80-AC63-B04F9E8D7B52}",
                         "{48F087FA-103C-4BB3-8197-06B52EEA4757}")
KW_BEGIN_FIELDS(CDemoOneWayLine)
KW_END_FIELDS()

const char kDemoHelp[] =
    "usage: kwcore graph demo [--from STATION] FILE\n"
    "\n"
    "Builds a sample graph of five stations: Harbour, Market and Museum in a\n"
    "cycle, Museum to Park, and a one-way line from Park to Airport. Saves it\n"
    "to the XML archive FILE from one station (the whole graph goes with it),\n"
    "releases it, loads it back from one station and prints the stations in\n"
    "depth-first order from STATION (default Harbour). From Airport the walk\n"
    "goes nowhere: its only line runs the other way.\n"
    "Exit status 0 when the graph loads back whole, 1 when it does not, 2 for\n"
    "an unknown station.\n";

// {2F7C4B8D-6E15-4A93-BD74-C1508FAE9C63}: the document the demo saves into.
const char kDemoDocumentID[] = "{2F7C4B8D-6E15-4A93-BD74-C1508FAE9C63}";
const char* const kStationNames[] = {"Harbour", "Market", "Museum", "Park", "Airport"};
// Fixed instance IDs, so every run writes the same file.
const char* const kStationIDs[] = {
    "{A0C1D2E3-0001-4000-8000-00000000C0DE}", "{A0C1D2E3-0002-4000-8000-00000000C0DE}",
    "{A0C1D2E3-0003-4000-8000-00000000C0DE}", "{A0C1D2E3-0004-4000-8000-00000000C0DE}",
    "{A0C1D2E3-0005-4000-8000-00000000C0DE}"};
const char* const kLineIDs[] = {
    "{B0C1D2E3-0001-4000-8000-00000000C0DE}", "{B0C1D2E3-0002-4000-8000-00000000C0DE}",
    "{B0C1D2E3-0003-4000-8000-00000000C0DE}", "{B0C1D2E3-0004-4000-8000-00000000C0DE}",
    "{B0C1D2E3-0005-4000-8000-00000000C0DE}"};
const int kStationCount = 5;
const int kLineCount = 5;

int LiveObjects() {
    return CDemoStation::GetCDemoStationType()->GetInstanceCount() +
           CKWGraphEdge::GetCKWGraphEdgeType()->GetInstanceCount() +
           CDemoOneWayLine::GetCDemoOneWayLineType()->GetInstanceCount();
}

void ReleaseAll() {
    CDemoStation::GetCDemoStationType()->ReleaseInstances();
    CKWGraphEdge::GetCKWGraphEdgeType()->ReleaseInstances();
    CDemoOneWayLine::GetCDemoOneWayLineType()->ReleaseInstances();
    CKWDFSVisitor::GetCKWDFSVisitorType()->ReleaseInstances();
    CKWReleaseVisitor::GetCKWReleaseVisitorType()->ReleaseInstances();
}

bool Join(CDemoStation* from, CDemoStation* to, IKWObjectType* type, const char* id) {
    auto* line = dynamic_cast<CKWGraphEdge*>(type->CreateInstance(CKWGuid(id)));
    if (line && line->SetNodes(from, to) && line->Connect()) {
        return true;
    }
    if (line) {
        line->Release();
    }
    return false;
}

// The sample graph; its first station, or null when it cannot be made.
CDemoStation* MakeGraph() {
    CDemoStation* stations[kStationCount] = {};
    for (int i = 0; i < kStationCount; ++i) {
        stations[i] = dynamic_cast<CDemoStation*>(
            CDemoStation::GetCDemoStationType()->CreateInstance(CKWGuid(kStationIDs[i])));
        if (!stations[i]) {
            return nullptr;
        }
        stations[i]->m_Name = kStationNames[i];
    }
    IKWObjectType* twoWay = CKWGraphEdge::GetCKWGraphEdgeType();
    const bool joined =
        Join(stations[0], stations[1], twoWay, kLineIDs[0]) &&
        Join(stations[1], stations[2], twoWay, kLineIDs[1]) &&
        Join(stations[2], stations[0], twoWay, kLineIDs[2]) &&
        Join(stations[2], stations[3], twoWay, kLineIDs[3]) &&
        Join(stations[3], stations[4], CDemoOneWayLine::GetCDemoOneWayLineType(), kLineIDs[4]);
    return joined ? stations[0] : nullptr;
}

// The loaded objects belong to the caller.
CDemoStation* LoadGraph(const std::string& file, const CKWGuid& stationID) {
    return dynamic_cast<CDemoStation*>(kwXmlArchives::Load(
        file, CKWGuid(kDemoDocumentID), CDemoStation::GetCDemoStationType()->GetID(), stationID));
}

// The stations reachable from start, depth first.
std::vector<CDemoStation*> WalkFrom(CKWGraphNode* start) {
    std::vector<CDemoStation*> order;
    auto* dfs = dynamic_cast<CKWDFSVisitor*>(
        CKWDFSVisitor::GetCKWDFSVisitorType()->CreateInstance(CKWGuid()));
    if (!dfs || !dfs->Start(start)) {
        return order;
    }
    auto it = dfs->GetDFSNodeIterator();
    for (CKWGraphNode* node = it.GetNext(1); node; node = it.GetNext(0)) {
        if (auto* station = dynamic_cast<CDemoStation*>(node)) {
            order.push_back(station);
        }
    }
    dfs->Release();
    return order;
}

int ParseDemoArguments(const Arguments& args, std::string& from, std::string& file) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--from" && i + 1 < args.size()) {
            from = args[++i];
        } else if (args[i].size() > 1 && args[i][0] == '-') {
            std::fprintf(stderr, "kwcore graph demo: unknown option '%s'\n", args[i].c_str());
            return 2;
        } else if (!file.empty()) {
            std::fputs("kwcore graph demo: expected one FILE\n", stderr);
            return 2;
        } else {
            file = args[i];
        }
    }
    if (file.empty()) {
        std::fputs("usage: kwcore graph demo [--from STATION] FILE\n", stderr);
        return 2;
    }
    for (const char* name : kStationNames) {
        if (from == name) {
            return 0;
        }
    }
    std::fprintf(stderr, "kwcore graph demo: no station is named '%s'\n", from.c_str());
    return 2;
}

// Builds the sample graph and saves it from its last station (Airport);
// false when it cannot be built or saved. The graph stays alive.
bool BuildAndSave(const std::string& file) {
    CDemoStation* built = MakeGraph();
    const bool whole = built && LiveObjects() == kStationCount + kLineCount;
    CDemoStation* airport =
        whole ? dynamic_cast<CDemoStation*>(CDemoStation::GetCDemoStationType()->FindInstance(
                    CKWGuid(kStationIDs[kStationCount - 1])))
              : nullptr;
    return airport && kwXmlArchives::Save(file, CKWGuid(kDemoDocumentID), airport);
}

// Prints the stations in depth-first order from the one named from.
void PrintWalk(CDemoStation* loaded, const std::string& from) {
    CDemoStation* start = nullptr;
    for (CDemoStation* station : WalkFrom(loaded)) {
        if (station->m_Name == from.c_str()) {
            start = station;
        }
    }
    std::printf("depth first from %s:", from.c_str());
    for (CDemoStation* station : WalkFrom(start)) {
        std::printf(" %s", static_cast<const char*>(station->m_Name));
    }
    std::printf("\n");
}

// Releases the graph from loaded with a release visitor; true when nothing
// was left behind.
bool ReleaseFrom(CDemoStation* loaded) {
    auto* releaser = dynamic_cast<CKWReleaseVisitor*>(
        CKWReleaseVisitor::GetCKWReleaseVisitorType()->CreateInstance(CKWGuid()));
    const bool released = releaser && releaser->Start(loaded) && LiveObjects() == 0;
    ReleaseAll();
    return released;
}

// The graph is saved from its last station and loaded from its first, so
// the file and the links carry everything between them.
int RunDemo(const Arguments& args) {
    if (WantsHelp(args)) {
        std::fputs(kDemoHelp, stdout);
        return 0;
    }
    std::string from = "Harbour";
    std::string file;
    if (const int status = ParseDemoArguments(args, from, file)) {
        return status;
    }
    const bool written = BuildAndSave(file);
    ReleaseAll();
    CDemoStation* loaded = written ? LoadGraph(file, CKWGuid(kStationIDs[0])) : nullptr;
    const int loadedCount = LiveObjects();
    if (!loaded || loadedCount != kStationCount + kLineCount) {
        std::fprintf(stderr, "kwcore graph demo: cannot save the graph to '%s' and load it back\n",
                     file.c_str());
        ReleaseAll();
        return 1;
    }
    std::printf("saved the sample graph to %s from Airport: %d stations, %d lines (one one-way)\n",
                file.c_str(), kStationCount, kLineCount);
    std::printf("loaded it back from Harbour: %d objects\n", loadedCount);
    PrintWalk(loaded, from);
    const bool released = ReleaseFrom(loaded);
    std::printf("released from Harbour: %s\n", released ? "nothing left" : "objects left behind");
    return released ? 0 : 1;
}

const Command kGraphCommands[] = {
    {"demo", "save a sample graph to an XML archive, load it back and walk it", RunDemo},
};

}  // namespace

int RunGraphCommand(const Arguments& args) {
    return RunCommandFrom("kwcore graph", kGraphCommands, args);
}

}  // namespace kwCommands
