// Add, Find and Remove on the object list and the object map, from 10^3 to
// 10^6 elements: the map grows logarithmically, the list's Find linearly.
#include <benchmark/benchmark.h>

#include "BenchObjects.h"
#include "kwcore/object/CKWObjGuidPtrMap.h"
#include "kwcore/object/CKWObjPtrList.h"

namespace {

template <class Collection>
void FillWith(Collection& collection, const std::vector<CBenchWidget*>& widgets) {
    for (CBenchWidget* widget : widgets) {
        collection.Add(widget);
    }
}

// Time per element to build a collection of n elements.
template <class Collection>
void BM_Add(benchmark::State& state) {
    const auto& widgets = LiveWidgets(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Collection collection;
        FillWith(collection, widgets);
        benchmark::DoNotOptimize(collection.GetCount());
        state.PauseTiming();
        collection.RemoveAll(false);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

// One Find by instance ID of an element spread through the collection.
template <class Collection>
void BM_Find(benchmark::State& state) {
    const auto& widgets = LiveWidgets(static_cast<std::size_t>(state.range(0)));
    Collection collection;
    FillWith(collection, widgets);
    std::size_t next = 0;
    for (auto _ : state) {
        next = (next + 7919) % widgets.size();
        benchmark::DoNotOptimize(collection.Find(widgets[next]->GetInstanceID()));
    }
    state.SetComplexityN(state.range(0));
}

// Time per element to take every element out of a full collection.
template <class Collection>
void BM_Remove(benchmark::State& state) {
    const auto& widgets = LiveWidgets(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        Collection collection;
        FillWith(collection, widgets);
        state.ResumeTiming();
        for (CBenchWidget* widget : widgets) {
            collection.Remove(widget);
        }
        benchmark::DoNotOptimize(collection.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

using List = CKWObjPtrList<CBenchWidget>;
using Map = CKWObjGuidPtrMap<CBenchWidget>;

BENCHMARK_TEMPLATE(BM_Add, List)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity();
BENCHMARK_TEMPLATE(BM_Add, Map)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity();
BENCHMARK_TEMPLATE(BM_Find, List)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity();
BENCHMARK_TEMPLATE(BM_Find, Map)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity();
BENCHMARK_TEMPLATE(BM_Remove, List)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity();
BENCHMARK_TEMPLATE(BM_Remove, Map)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity();

}  // namespace
