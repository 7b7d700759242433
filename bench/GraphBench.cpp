// Depth-first walks over random sparse graphs against Boost.Graph's
// depth_first_search on an adjacency_list holding the same graph, in the
// same run; building and releasing a graph; saving and loading one through
// the XML archive.
//
// The graphs: N nodes and 2N edges (average degree 4), a random spanning
// tree (node i joined to a random earlier node, so every node is reached
// from node 0) plus N+1 random edges, fixed seed, no self-loops. Both sides
// hold the edges in the same order and record nodes in discovery order.
//
// Counters: nodes_per_second for walks, objects_per_second (nodes and
// edges) for build+release and XML save and load.
#include <benchmark/benchmark.h>

#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/depth_first_search.hpp>

#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "CTempFolder.h"
#include "GraphBuilders.h"
#include "XmlArchiveFiles.h"
#include "kwcore/framework/CKWDFSVisitor.h"
#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"
#include "kwcore/framework/CKWReleaseVisitor.h"

namespace {

using Edges = std::vector<std::pair<int, int>>;

Edges RandomSparseGraph(int n) {
    std::mt19937 random(20261122u);
    Edges edges;
    edges.reserve(2 * static_cast<std::size_t>(n));
    for (int i = 1; i < n; ++i) {
        edges.emplace_back(std::uniform_int_distribution<int>(0, i - 1)(random), i);
    }
    std::uniform_int_distribution<int> any(0, n - 1);
    while (edges.size() < 2 * static_cast<std::size_t>(n)) {
        const int a = any(random);
        const int b = any(random);
        if (a != b) {
            edges.emplace_back(a, b);
        }
    }
    return edges;
}

// The graph as nodes and edges of the library; node 0 first.
std::vector<CKWGraphNode*> BuildGraph(int n, const Edges& edges) {
    std::vector<CKWGraphNode*> nodes(n);
    for (CKWGraphNode*& node : nodes) {
        node = NewNode();
    }
    for (const auto& [a, b] : edges) {
        Join(nodes[a], nodes[b]);
    }
    return nodes;
}

void ReleaseGraph(CKWGraphNode* root) {
    auto* releaser = KWTestCreate<CKWReleaseVisitor>(CKWReleaseVisitor::GetCKWReleaseVisitorType());
    releaser->Start(root);
    releaser->Release();
}

void KwDfs(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<CKWGraphNode*> nodes = BuildGraph(n, RandomSparseGraph(n));
    auto* dfs = KWTestCreate<CKWDFSVisitor>(CKWDFSVisitor::GetCKWDFSVisitorType());
    for (auto _ : state) {
        dfs->ClearDFSNodeList();
        dfs->Start(nodes[0]);
        benchmark::DoNotOptimize(dfs->GetDFSNodeCollection()->GetCount());
    }
    if (dfs->GetDFSNodeCollection()->GetCount() != n) {
        state.SkipWithError("the walk did not reach every node");
    }
    state.counters["nodes_per_second"] =
        benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate);
    dfs->Release();
    ReleaseGraph(nodes[0]);
}

using BoostGraph = boost::adjacency_list<boost::vecS, boost::vecS, boost::undirectedS>;
using BoostVertex = boost::graph_traits<BoostGraph>::vertex_descriptor;

struct RecordingVisitor : boost::default_dfs_visitor {
    explicit RecordingVisitor(std::vector<BoostVertex>* order) : m_pOrder(order) {}
    void discover_vertex(BoostVertex v, const BoostGraph&) const { m_pOrder->push_back(v); }
    std::vector<BoostVertex>* m_pOrder;
};

void BoostDfs(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    BoostGraph graph(n);
    for (const auto& [a, b] : RandomSparseGraph(n)) {
        boost::add_edge(a, b, graph);
    }
    std::vector<BoostVertex> order;
    order.reserve(n);
    for (auto _ : state) {
        order.clear();
        boost::depth_first_search(graph, boost::visitor(RecordingVisitor(&order)));
        benchmark::DoNotOptimize(order.data());
    }
    if (static_cast<int>(order.size()) != n) {
        state.SkipWithError("the walk did not reach every node");
    }
    state.counters["nodes_per_second"] =
        benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate);
}

void KwBuildAndRelease(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Edges edges = RandomSparseGraph(n);
    for (auto _ : state) {
        std::vector<CKWGraphNode*> nodes = BuildGraph(n, edges);
        ReleaseGraph(nodes[0]);
    }
    state.counters["objects_per_second"] = benchmark::Counter(
        static_cast<double>(n + edges.size()), benchmark::Counter::kIsIterationInvariantRate);
}

// The run's files, in one folder removed at exit.
std::filesystem::path BenchFile(int n) {
    static const CTempFolder folder("kwcore-graph-bench-");
    return folder.GetPath() / ("graph-" + std::to_string(n) + ".xml");
}

void KwXmlSave(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Edges edges = RandomSparseGraph(n);
    std::vector<CKWGraphNode*> nodes = BuildGraph(n, edges);
    const std::filesystem::path file = BenchFile(n);
    for (auto _ : state) {
        if (!SaveXmlFile(file, nodes[0])) {
            state.SkipWithError("the graph was not saved");
        }
    }
    state.counters["objects_per_second"] = benchmark::Counter(
        static_cast<double>(n + edges.size()), benchmark::Counter::kIsIterationInvariantRate);
    ReleaseGraph(nodes[0]);
}

// Loads the file KwXmlSave wrote (the same graph), from node 0's ID.
void KwXmlLoad(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Edges edges = RandomSparseGraph(n);
    const std::filesystem::path file = BenchFile(n);
    CKWGuid rootID;
    {
        std::vector<CKWGraphNode*> nodes = BuildGraph(n, edges);
        rootID = nodes[0]->GetInstanceID();
        SaveXmlFile(file, nodes[0]);
        ReleaseGraph(nodes[0]);
    }
    for (auto _ : state) {
        KWOwned<CKWXMLFileArchive> archive = NewXmlArchive(file);
        archive->Open(CKWArchive::modeRead);
        auto* root = dynamic_cast<CKWGraphNode*>(LoadFromFirstDocument(
            archive.get(), CKWGraphNode::GetCKWGraphNodeType()->GetID(), rootID));
        archive->Close();
        state.PauseTiming();
        if (!root || CKWGraphNode::GetCKWGraphNodeType()->GetInstanceCount() != n) {
            state.SkipWithError("the graph was not loaded whole");
        }
        archive.reset();
        if (root) {
            ReleaseGraph(root);
        }
        state.ResumeTiming();
    }
    state.counters["objects_per_second"] = benchmark::Counter(
        static_cast<double>(n + edges.size()), benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(KwDfs)->RangeMultiplier(10)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BoostDfs)->RangeMultiplier(10)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(KwBuildAndRelease)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(KwXmlSave)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(KwXmlLoad)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(1);
// A million-node graph takes minutes through the XML archive: measured once,
// whatever repetitions the run asks for.
BENCHMARK(KwXmlSave)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);
BENCHMARK(KwXmlLoad)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);
