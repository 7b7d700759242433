// The monotone sweep triangulation against CGAL's constrained Delaunay
// triangulation (exact predicates, inexact constructions) given the same
// polygon edges as constraints, on random star-shaped polygons, combs and
// polygons with many holes of 10^2 to 10^5 vertices.
//
// Both sides start from the same flat coordinates and end with a full
// triangulation (CGAL's also covers the holes and the convex hull, as a
// constrained triangulation does).
#include <benchmark/benchmark.h>

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include <cstdlib>
#include <map>
#include <utility>
#include <vector>

#include "PolygonGenerators.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace {

typedef CGAL::Exact_predicates_inexact_constructions_kernel Kernel;
typedef CGAL::Constrained_Delaunay_triangulation_2<Kernel> CDT;

enum EShape { kStar, kComb, kHoles };

struct SInput {
    std::vector<std::vector<double>> contours;  // x, y pairs
    std::vector<Kernel::Point_2> points;
    std::vector<std::pair<std::size_t, std::size_t>> constraints;
};

const SInput& Input(EShape shape, std::size_t n) {
    static std::map<std::pair<int, std::size_t>, SInput> cache;
    SInput& input = cache[std::make_pair(static_cast<int>(shape), n)];
    if (!input.contours.empty()) {
        return input;
    }
    const SBenchPolygon polygon = shape == kStar   ? MakeStarPolygon(n, 42)
                                  : shape == kComb ? MakeCombPolygon(n, 42)
                                                   : MakePolygonWithHoles(n, 42);
    for (const SBenchContour& contour : polygon.contours) {
        std::vector<double> flat;
        const std::size_t first = input.points.size();
        for (std::size_t i = 0; i < contour.size(); ++i) {
            flat.push_back(contour[i].x);
            flat.push_back(contour[i].y);
            input.points.emplace_back(contour[i].x, contour[i].y);
            input.constraints.emplace_back(first + i, first + (i + 1) % contour.size());
        }
        input.contours.push_back(flat);
    }
    return input;
}

void MonotoneSweep(benchmark::State& state, EShape shape) {
    const SInput& input = Input(shape, static_cast<std::size_t>(state.range(0)));
    std::size_t triangles = 0;
    for (auto _ : state) {
        kwPolygonTriangulation::Polygon polygon;
        for (const std::vector<double>& contour : input.contours) {
            polygon.AddContour(contour.data(), contour.size() / 2, false, false);
        }
        polygon.Finish();
        // The quiet phases: triangulation() would print its total every run.
        polygon.partition2Monotone();
        polygon.searchMonotones();
        polygon.triangulateMonotones();
        triangles = polygon.triangleCount();
        benchmark::DoNotOptimize(triangles);
    }
    state.counters["vertices"] = static_cast<double>(input.points.size());
    state.counters["triangles"] = static_cast<double>(triangles);
}

void CgalConstrainedDelaunay(benchmark::State& state, EShape shape) {
    const SInput& input = Input(shape, static_cast<std::size_t>(state.range(0)));
    std::size_t faces = 0;
    for (auto _ : state) {
        CDT cdt;
        cdt.insert_constraints(input.points.begin(), input.points.end(), input.constraints.begin(),
                               input.constraints.end());
        faces = cdt.number_of_faces();
        benchmark::DoNotOptimize(faces);
    }
    state.counters["vertices"] = static_cast<double>(input.points.size());
    state.counters["triangles"] = static_cast<double>(faces);
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMicrosecond);
}

}  // namespace

BENCHMARK_CAPTURE(MonotoneSweep, star, kStar)->Apply(Sizes);
BENCHMARK_CAPTURE(CgalConstrainedDelaunay, star, kStar)->Apply(Sizes);
BENCHMARK_CAPTURE(MonotoneSweep, comb, kComb)->Apply(Sizes);
BENCHMARK_CAPTURE(CgalConstrainedDelaunay, comb, kComb)->Apply(Sizes);
BENCHMARK_CAPTURE(MonotoneSweep, holes, kHoles)->Apply(Sizes);
BENCHMARK_CAPTURE(CgalConstrainedDelaunay, holes, kHoles)->Apply(Sizes);
