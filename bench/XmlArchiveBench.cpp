// Saving and loading an object graph through CKWXMLFileArchive, against
// Boost.Serialization's XML archives storing the same graph through pointers
// (object tracking on), in the same run.
//
// Node i holds a text, an int and a GUID, links to node i-1 and to two
// earlier nodes picked at random (fixed seed). Both sides save and load the
// nodes in creation order, so every link points to a node already written or
// read and the recursion stays one level deep at any N.
//
// Counters: objects_per_second (save or load rate over wall time),
// file_bytes, and peak_rss_kib: the growth of the peak resident set over the
// timed loop. Before the loop, malloc_trim hands the heap's free pages back
// (so memory freed by earlier runs does not hide this one's), writing "5" to
// /proc/self/clear_refs resets the peak (VmHWM) to the current RSS, which is
// the base; after the loop VmHWM is read back. All in this process; the
// counter is left out where the kernel refuses the reset.
#include <benchmark/benchmark.h>

#include <malloc.h>
#include <boost/archive/xml_iarchive.hpp>
#include <boost/archive/xml_oarchive.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/tracking.hpp>
#include <boost/serialization/vector.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <boost/uuid/uuid_serialize.hpp>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/object/CKWTypeSystem.h"
#include "kwcore/serial/CKWDocument.h"
#include "kwcore/serial/CKWSerialObject.h"
#include "kwcore/serial/xml/CKWXMLFileArchive.h"

namespace fs = std::filesystem;

class CBenchNode : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CBenchNode)

public:
    CString m_Name;
    int m_iCount = 0;
    CKWGuid m_Tag;
    CBenchNode* m_pPrevious = nullptr;
    CKWObjPtrList<CBenchNode> m_Others;

protected:
    CBenchNode() = default;
};

#define KW_BENCH_NODE_TYPE_ID "{5C0E8A31-7D42-4B96-A1E3-2F9B6C4D8E17}"
KW_IMPLEMENT_SERIAL_TYPE(CBenchNode, KW_BENCH_NODE_TYPE_ID,
                         "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CBenchNode)
KW_FIELD(m_Name, "{6D1F9B42-8E53-4CA7-B2F4-3A0C7D5E9F28}", "{0C2E4048-BFD1-4316-9CCE-EF018DAECFD2}",
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_iCount, "{7E20AC53-9F64-4DB8-83A5-4B1D8E6FA039}",
         "{1D3F5159-C0E2-4427-8DDF-F0129EBFD0E3}", KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Tag, "{8F31BD64-A075-4EC9-94B6-5C2E9F7AB14A}", "{2E40626A-D1F3-4538-9EE0-0123AFC0E1F4}",
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pPrevious, "{9042CE75-B186-4FDA-A5C7-6D3FA08BC25B}", KW_BENCH_NODE_TYPE_ID,
         KW_FIELD_LOAD_SAVE)
KW_FIELD(m_Others, "{A153DF86-C297-40EB-B6D8-7E40B19CD36C}", KW_BENCH_NODE_TYPE_ID,
         KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

struct BoostNode {
    std::string name;
    int count = 0;
    boost::uuids::uuid tag{};
    BoostNode* previous = nullptr;
    std::vector<BoostNode*> others;

    template <class Archive>
    void serialize(Archive& archive, unsigned int) {
        archive& BOOST_SERIALIZATION_NVP(name) & BOOST_SERIALIZATION_NVP(count) &
            BOOST_SERIALIZATION_NVP(tag) & BOOST_SERIALIZATION_NVP(previous) &
            BOOST_SERIALIZATION_NVP(others);
    }
};
BOOST_CLASS_TRACKING(BoostNode, boost::serialization::track_always)

namespace {

struct CollectBenchTypes {
    CollectBenchTypes() { CKWTypeSystem::Initialize(CKWGuid::CreateNewGUID()); }
} s_collectBenchTypes;

// One folder for the run's files, removed at exit.
struct BenchFolder {
    BenchFolder()
        : path(fs::temp_directory_path() /
               ("kwcore-xml-bench-" + CKWGuid::CreateNewGUID().GetCStringXML64().GetStdString())) {
        fs::create_directories(path);
    }
    ~BenchFolder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    fs::path path;
};

fs::path BenchFile(const std::string& name) {
    static BenchFolder folder;
    return folder.path / name;
}

// The shape both sides build: node i's values and the nodes it links to.
struct NodeShape {
    std::string name;
    int count;
    unsigned char tag[16];
    std::vector<std::size_t> others;
};

std::vector<NodeShape> MakeShapes(std::size_t n) {
    std::mt19937_64 random(20261122);
    std::vector<NodeShape> shapes(n);
    for (std::size_t i = 0; i < n; ++i) {
        NodeShape& shape = shapes[i];
        shape.name = "node " + std::to_string(i) + " <&\"'>";
        shape.count = static_cast<int>(i);
        for (unsigned char& byte : shape.tag) {
            byte = static_cast<unsigned char>(random());
        }
        for (std::size_t k = 0; k < 2 && i > 0; ++k) {
            shape.others.push_back(random() % i);
        }
    }
    return shapes;
}

// Peak resident memory over a stretch of this process, in KiB.
class PeakMemory {
public:
    PeakMemory() : m_bReset(Reset()), m_start(Read("VmRSS:")) {}
    void Report(benchmark::State& state) const {
        if (m_bReset) {
            state.counters["peak_rss_kib"] = static_cast<double>(Read("VmHWM:") - m_start);
        }
    }

private:
    static bool Reset() {
        malloc_trim(0);
        return static_cast<bool>(std::ofstream("/proc/self/clear_refs") << "5");
    }
    static long Read(const char* key) {
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.compare(0, std::strlen(key), key) == 0) {
                return std::stol(line.substr(std::strlen(key)));
            }
        }
        return 0;
    }

    bool m_bReset;
    long m_start;
};

void ReportRun(benchmark::State& state, const fs::path& file) {
    state.counters["objects_per_second"] = benchmark::Counter(
        static_cast<double>(state.iterations() * state.range(0)), benchmark::Counter::kIsRate);
    state.counters["file_bytes"] = static_cast<double>(fs::file_size(file));
}

// kwcore side.

CKWGuid NodeTypeID() {
    return CKWGuid(KW_BENCH_NODE_TYPE_ID);
}

std::vector<CBenchNode*> MakeKWGraph(const std::vector<NodeShape>& shapes) {
    std::vector<CBenchNode*> nodes;
    for (const NodeShape& shape : shapes) {
        auto* node =
            static_cast<CBenchNode*>(CBenchNode::GetCBenchNodeType()->CreateInstance(CKWGuid()));
        node->m_Name = shape.name.c_str();
        node->m_iCount = shape.count;
        GUID tag;
        std::memcpy(&tag, shape.tag, sizeof tag);
        node->m_Tag = tag;
        node->m_pPrevious = nodes.empty() ? nullptr : nodes.back();
        for (std::size_t other : shape.others) {
            node->m_Others.Add(nodes[other]);
        }
        nodes.push_back(node);
    }
    return nodes;
}

void ReleaseKWGraph(const std::vector<CBenchNode*>& nodes) {
    for (CBenchNode* node : nodes) {
        node->Release();
    }
}

CKWXMLFileArchive* NewArchive(const fs::path& file) {
    auto* archive = static_cast<CKWXMLFileArchive*>(
        CKWXMLFileArchive::GetCKWXMLFileArchiveType()->CreateInstance(CKWGuid()));
    archive->SetFile(file.string().c_str());
    return archive;
}

bool SaveKWGraph(const fs::path& file, const std::vector<CBenchNode*>& nodes) {
    CKWXMLFileArchive* archive = NewArchive(file);
    bool saved = archive->Open(CKWArchive::modeWrite);
    CKWDocument* document = saved ? archive->CreateNewDocument(CKWGuid(), nullptr) : nullptr;
    saved = saved && document;
    for (std::size_t i = 0; saved && i < nodes.size(); ++i) {
        saved = nodes[i]->SerializeTo(document) != 0;
    }
    saved = archive->Close() && saved;
    archive->Release();
    return saved;
}

std::vector<IKWObject*> LoadKWGraph(const fs::path& file, const std::vector<CKWGuid>& ids) {
    std::vector<IKWObject*> loaded;
    CKWXMLFileArchive* archive = NewArchive(file);
    if (archive->Open(CKWArchive::modeRead)) {
        CKWDocument* document = archive->GetDocumentIterator().GetNext(1);
        for (std::size_t i = 0; document && i < ids.size(); ++i) {
            if (IKWObject* object = document->GetObjectA(NodeTypeID(), ids[i])) {
                loaded.push_back(object);
            }
        }
    }
    archive->Close();
    archive->Release();
    return loaded;
}

// A saved file per size and the instance IDs in creation order, made once.
struct KWSavedGraph {
    fs::path file;
    std::vector<CKWGuid> ids;
};

const KWSavedGraph& SavedKWGraph(std::size_t n) {
    static std::map<std::size_t, KWSavedGraph> saved;
    KWSavedGraph& graph = saved[n];
    if (graph.ids.empty()) {
        const std::vector<CBenchNode*> nodes = MakeKWGraph(MakeShapes(n));
        graph.file = BenchFile("kwcore-load-" + std::to_string(n) + ".xml");
        SaveKWGraph(graph.file, nodes);
        for (CBenchNode* node : nodes) {
            graph.ids.push_back(node->GetInstanceID());
        }
        ReleaseKWGraph(nodes);
    }
    return graph;
}

void BM_SaveKWCore(benchmark::State& state) {
    const std::vector<CBenchNode*> nodes =
        MakeKWGraph(MakeShapes(static_cast<std::size_t>(state.range(0))));
    const fs::path file = BenchFile("kwcore-save.xml");
    const PeakMemory memory;
    for (auto _ : state) {
        if (!SaveKWGraph(file, nodes)) {
            state.SkipWithError("save failed");
            break;
        }
    }
    memory.Report(state);
    ReportRun(state, file);
    ReleaseKWGraph(nodes);
}

void BM_LoadKWCore(benchmark::State& state) {
    const KWSavedGraph& graph = SavedKWGraph(static_cast<std::size_t>(state.range(0)));
    const PeakMemory memory;
    for (auto _ : state) {
        const std::vector<IKWObject*> loaded = LoadKWGraph(graph.file, graph.ids);
        state.PauseTiming();
        const bool complete = loaded.size() == graph.ids.size();
        for (IKWObject* object : loaded) {
            object->Release();
        }
        state.ResumeTiming();
        if (!complete) {
            state.SkipWithError("load incomplete");
            break;
        }
    }
    memory.Report(state);
    ReportRun(state, graph.file);
}

// Boost side.

std::vector<BoostNode*> MakeBoostGraph(const std::vector<NodeShape>& shapes) {
    std::vector<BoostNode*> nodes;
    for (const NodeShape& shape : shapes) {
        auto* node = new BoostNode;
        node->name = shape.name;
        node->count = shape.count;
        std::memcpy(node->tag.data, shape.tag, sizeof shape.tag);
        node->previous = nodes.empty() ? nullptr : nodes.back();
        for (std::size_t other : shape.others) {
            node->others.push_back(nodes[other]);
        }
        nodes.push_back(node);
    }
    return nodes;
}

void DeleteBoostGraph(const std::vector<BoostNode*>& nodes) {
    for (BoostNode* node : nodes) {
        delete node;
    }
}

void SaveBoostGraph(const fs::path& file, const std::vector<BoostNode*>& nodes) {
    std::ofstream out(file);
    boost::archive::xml_oarchive archive(out);
    archive << boost::serialization::make_nvp("nodes", nodes);
}

std::vector<BoostNode*> LoadBoostGraph(const fs::path& file) {
    std::vector<BoostNode*> nodes;
    std::ifstream in(file);
    boost::archive::xml_iarchive archive(in);
    archive >> boost::serialization::make_nvp("nodes", nodes);
    return nodes;
}

const fs::path& SavedBoostGraph(std::size_t n) {
    static std::map<std::size_t, fs::path> saved;
    fs::path& file = saved[n];
    if (file.empty()) {
        const std::vector<BoostNode*> nodes = MakeBoostGraph(MakeShapes(n));
        file = BenchFile("boost-load-" + std::to_string(n) + ".xml");
        SaveBoostGraph(file, nodes);
        DeleteBoostGraph(nodes);
    }
    return file;
}

void BM_SaveBoost(benchmark::State& state) {
    const std::vector<BoostNode*> nodes =
        MakeBoostGraph(MakeShapes(static_cast<std::size_t>(state.range(0))));
    const fs::path file = BenchFile("boost-save.xml");
    const PeakMemory memory;
    for (auto _ : state) {
        SaveBoostGraph(file, nodes);
    }
    memory.Report(state);
    ReportRun(state, file);
    DeleteBoostGraph(nodes);
}

void BM_LoadBoost(benchmark::State& state) {
    const fs::path& file = SavedBoostGraph(static_cast<std::size_t>(state.range(0)));
    const PeakMemory memory;
    for (auto _ : state) {
        const std::vector<BoostNode*> loaded = LoadBoostGraph(file);
        state.PauseTiming();
        const bool complete = loaded.size() == static_cast<std::size_t>(state.range(0));
        DeleteBoostGraph(loaded);
        state.ResumeTiming();
        if (!complete) {
            state.SkipWithError("load incomplete");
            break;
        }
    }
    memory.Report(state);
    ReportRun(state, file);
}

// Few iterations per run, so the largest size stays a few seconds; wall
// time, as saving and loading include file I/O.
void Configure(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(2)->UseRealTime()->Unit(
        benchmark::kMillisecond);
}

}  // namespace

BENCHMARK(BM_SaveKWCore)->Apply(Configure);
BENCHMARK(BM_SaveBoost)->Apply(Configure);
BENCHMARK(BM_LoadKWCore)->Apply(Configure);
BENCHMARK(BM_LoadBoost)->Apply(Configure);
