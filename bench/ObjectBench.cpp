// Creating and releasing a small framework object through its type, against
// plain new and delete of the same class.
#include <benchmark/benchmark.h>

#include "BenchObjects.h"

namespace {

void BM_NewDelete(benchmark::State& state) {
    for (auto _ : state) {
        auto* widget = new CBenchWidget;
        benchmark::DoNotOptimize(widget);
        delete widget;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_NewDelete);

// Argument: how many other instances of the type are alive meanwhile.
void BM_CreateInstanceRelease(benchmark::State& state) {
    LiveWidgets(static_cast<std::size_t>(state.range(0)));
    IKWObjectType* type = CBenchWidget::GetCBenchWidgetType();
    const CKWGuid empty;
    for (auto _ : state) {
        IKWObject* widget = type->CreateInstance(empty);
        benchmark::DoNotOptimize(widget);
        widget->Release();
    }
}
BENCHMARK(BM_CreateInstanceRelease)->Arg(0)->Arg(1000)->Arg(100000);

void BM_CreateNewGUID(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CKWGuid::CreateNewGUID());
    }
}
BENCHMARK(BM_CreateNewGUID);

}  // namespace
