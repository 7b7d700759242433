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

#include "CSamplePart.h"
#include "CTempFolder.h"
#include "XmlArchiveFiles.h"

namespace fs = std::filesystem;

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

// The run's files, in one folder removed at exit.
fs::path BenchFile(const std::string& name) {
    static const CTempFolder folder("kwcore-xml-bench-");
    return folder.GetPath() / name;
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

// Times save(nodes) into the file; nodes are made before and freed after.
template <class Nodes, class Save, class Free>
void MeasureSaves(benchmark::State& state, const fs::path& file, const Nodes& nodes, Save save,
                  Free free) {
    const PeakMemory memory;
    for (auto _ : state) {
        if (!save(file, nodes)) {
            state.SkipWithError("save failed");
            break;
        }
    }
    memory.Report(state);
    ReportRun(state, file);
    free(nodes);
}

// Times load() of the file; checking and freeing what it gave are not timed.
template <class Load, class Free>
void MeasureLoads(benchmark::State& state, const fs::path& file, Load load, Free free) {
    const PeakMemory memory;
    for (auto _ : state) {
        const auto loaded = load();
        state.PauseTiming();
        const bool complete = loaded.size() == static_cast<std::size_t>(state.range(0));
        free(loaded);
        state.ResumeTiming();
        if (!complete) {
            state.SkipWithError("load incomplete");
            break;
        }
    }
    memory.Report(state);
    ReportRun(state, file);
}

// kwcore side.

std::vector<CSamplePart*> MakeKWGraph(const std::vector<NodeShape>& shapes) {
    std::vector<CSamplePart*> nodes;
    for (const NodeShape& shape : shapes) {
        auto* node = KWTestCreate<CSamplePart>(CSamplePart::GetCSamplePartType());
        node->m_Name = shape.name.c_str();
        node->m_iCount = shape.count;
        GUID tag;
        std::memcpy(&tag, shape.tag, sizeof tag);
        node->m_Tag = tag;
        node->m_pLink = nodes.empty() ? nullptr : nodes.back();
        for (std::size_t other : shape.others) {
            node->m_Links.Add(nodes[other]);
        }
        nodes.push_back(node);
    }
    return nodes;
}

template <class Object>
void ReleaseKWObjects(const std::vector<Object*>& objects) {
    for (Object* object : objects) {
        object->Release();
    }
}

bool SaveKWGraph(const fs::path& file, const std::vector<CSamplePart*>& nodes) {
    return SaveXmlFile(file, [&nodes](CKWDocument* document) {
        for (CSamplePart* node : nodes) {
            if (!node->SerializeTo(document)) {
                return 0;
            }
        }
        return 1;
    });
}

std::vector<IKWObject*> LoadKWGraph(const fs::path& file, const std::vector<CKWGuid>& ids) {
    std::vector<IKWObject*> loaded;
    KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
    if (archive->Open(CKWArchive::modeRead)) {
        const CKWGuid typeID(kSamplePartTypeID);
        CKWDocument* document = FirstXmlDocument(archive.get());
        for (std::size_t i = 0; document && i < ids.size(); ++i) {
            if (IKWObject* object = document->GetObjectA(typeID, ids[i])) {
                loaded.push_back(object);
            }
        }
    }
    archive->Close();
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
        const std::vector<CSamplePart*> nodes = MakeKWGraph(MakeShapes(n));
        graph.file = BenchFile("kwcore-load-" + std::to_string(n) + ".xml");
        SaveKWGraph(graph.file, nodes);
        for (CSamplePart* node : nodes) {
            graph.ids.push_back(node->GetInstanceID());
        }
        ReleaseKWObjects(nodes);
    }
    return graph;
}

void BM_SaveKWCore(benchmark::State& state) {
    MeasureSaves(state, BenchFile("kwcore-save.xml"),
                 MakeKWGraph(MakeShapes(static_cast<std::size_t>(state.range(0)))), SaveKWGraph,
                 ReleaseKWObjects<CSamplePart>);
}

void BM_LoadKWCore(benchmark::State& state) {
    const KWSavedGraph& graph = SavedKWGraph(static_cast<std::size_t>(state.range(0)));
    MeasureLoads(
        state, graph.file, [&graph] { return LoadKWGraph(graph.file, graph.ids); },
        ReleaseKWObjects<IKWObject>);
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

bool SaveBoostGraph(const fs::path& file, const std::vector<BoostNode*>& nodes) {
    std::ofstream out(file);
    boost::archive::xml_oarchive archive(out);
    archive << boost::serialization::make_nvp("nodes", nodes);
    return true;
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
    MeasureSaves(state, BenchFile("boost-save.xml"),
                 MakeBoostGraph(MakeShapes(static_cast<std::size_t>(state.range(0)))),
                 SaveBoostGraph, DeleteBoostGraph);
}

void BM_LoadBoost(benchmark::State& state) {
    const fs::path& file = SavedBoostGraph(static_cast<std::size_t>(state.range(0)));
    MeasureLoads(
        state, file, [&file] { return LoadBoostGraph(file); }, DeleteBoostGraph);
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
