// Ear clipping with every query kind against CGAL's constrained Delaunay
// triangulation (exact predicates, inexact constructions) given the same
// polygon as constraints, on random star-shaped polygons and combs of 10^2 to
// 10^5 vertices. Run from the release preset:
//   kwcore_earclip_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true

// Point arrays here are std::vectors of the geometry vector type, always
// destroyed as that exact type, so clang's warning about destroying a
// polymorphic type without a virtual destructor does not apply.
#if defined(__clang__)
#pragma clang diagnostic ignored "-Wdelete-non-abstract-non-virtual-dtor"
#endif

#include <benchmark/benchmark.h>

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include <string>
#include <utility>
#include <vector>

#include "PolygonGenerators.h"
#include "kwcore/geometry/triangulation/CKWTriangulateEarClipping.h"

namespace {

typedef CKWVector2T<double, float> Vector2;
typedef CGAL::Exact_predicates_inexact_constructions_kernel Kernel;
typedef CGAL::Constrained_Delaunay_triangulation_2<Kernel> CDT;

const double kUncertainty = 1e-12;

enum EShape { STAR, COMB };

SBenchContour MakeContour(EShape shape, std::size_t n) {
    const SBenchPolygon polygon = shape == STAR ? MakeStarPolygon(n, 7) : MakeCombPolygon(n, 7);
    return polygon.contours[0];
}

void EarClipping(benchmark::State& state, EShape shape, kwRationalArithmetic::Query::Type type) {
    const SBenchContour contour = MakeContour(shape, static_cast<std::size_t>(state.range(0)));
    std::vector<Vector2> points;
    for (const SBenchPoint& p : contour) {
        points.push_back(Vector2(p.x, p.y));
    }
    const int n = static_cast<int>(points.size());
    for (auto _ : state) {
        int* indices = nullptr;
        CKWTriangulateEarClipping<double, float> clip(n, points.data(), type, kUncertainty,
                                                      indices);
        benchmark::DoNotOptimize(indices);
        delete[] indices;
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void ConstrainedDelaunay(benchmark::State& state, EShape shape) {
    const SBenchContour contour = MakeContour(shape, static_cast<std::size_t>(state.range(0)));
    const std::size_t n = contour.size();
    std::vector<Kernel::Point_2> points;
    std::vector<std::pair<std::size_t, std::size_t>> edges;
    for (std::size_t i = 0; i < n; ++i) {
        points.emplace_back(contour[i].x, contour[i].y);
        edges.emplace_back(i, (i + 1) % n);
    }
    for (auto _ : state) {
        // Points and edges in one call, which lets CGAL sort the points spatially.
        CDT cdt;
        cdt.insert_constraints(points.begin(), points.end(), edges.begin(), edges.end());
        benchmark::DoNotOptimize(cdt.number_of_faces());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

const char* const kTypeNames[] = {"int64", "integer", "rational", "float", "filtered"};

int RegisterAll() {
    for (EShape shape : {STAR, COMB}) {
        const std::string shapeName = shape == STAR ? "star" : "comb";
        for (int type = 0; type <= 4; ++type) {
            benchmark::RegisterBenchmark(
                ("EarClipping/" + shapeName + "/" + kTypeNames[type]).c_str(),
                [shape, type](benchmark::State& state) {
                    EarClipping(state, shape, static_cast<kwRationalArithmetic::Query::Type>(type));
                })
                ->RangeMultiplier(10)
                ->Range(100, 100000)
                ->Unit(benchmark::kMillisecond);
        }
        benchmark::RegisterBenchmark(
            ("CgalConstrainedDelaunay/" + shapeName).c_str(),
            [shape](benchmark::State& state) { ConstrainedDelaunay(state, shape); })
            ->RangeMultiplier(10)
            ->Range(100, 100000)
            ->Unit(benchmark::kMillisecond);
    }
    return 0;
}

[[maybe_unused]] const int kRegistered = RegisterAll();

}  // namespace
