// Test polygons for the triangulation benchmarks (and the property tests):
// random star-shaped polygons, "combs" and polygons with many holes, of a
// chosen vertex count. Plain coordinates, no library types, so every
// triangulation (and every peer) can take them.
//
// Every polygon is valid input for a triangulation: the outer contour runs
// counter-clockwise, holes run clockwise and lie strictly inside it and apart
// from each other, no point repeats and no two edges meet except at their
// shared vertex. The same (count, seed) always gives the same polygon.
//
//   SBenchPolygon star = MakeStarPolygon(1000, 7);
//   for (const SBenchContour& contour : star.contours) { ... }
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct SBenchPoint {
    double x;
    double y;
};

using SBenchContour = std::vector<SBenchPoint>;

struct SBenchPolygon {
    // contours[0] is the outer boundary, the rest are holes.
    std::vector<SBenchContour> contours;

    std::size_t VertexCount() const;
};

// A star-shaped polygon around the origin: n >= 3 vertices at increasing,
// jittered angles and random radii in [0.2, 1].
SBenchPolygon MakeStarPolygon(std::size_t n, std::uint32_t seed);

// A comb: a base with (n - 4) / 4 teeth of random heights pointing up, the
// rest of the n >= 8 vertices on a slight outward bulge of the base. Long
// reflex chains, many START and SPLIT-free regular vertices, thin pieces.
SBenchPolygon MakeCombPolygon(std::size_t n, std::uint32_t seed);

// A jittered circle holding a grid of small star-shaped holes of 8 vertices
// each; about half of the n >= 12 vertices are on holes.
SBenchPolygon MakePolygonWithHoles(std::size_t n, std::uint32_t seed);

// Not always valid, unlike the others, and meant for property tests of the
// validity check: a star-shaped polygon of 4 to 14 vertices on a small
// integer grid, with a triangular hole on the grid when `hole`, mapped by a
// random affine map that the grid does not survive, so that its collinear
// vertices and vertices at equal heights end up rounding errors apart.
// Vertices may coincide, and the hole may cross the boundary or lie outside.
SBenchPolygon MakeNearDegeneratePolygon(bool hole, std::uint32_t seed);

// A star-shaped outer contour (at least 4 vertices) with up to `holes` star-shaped holes of
// `holeVertices` each, placed at random without overlap (fewer holes when
// they do not fit). For property tests over many shapes.
SBenchPolygon MakeRandomPolygonWithHoles(std::size_t outerVertices, std::size_t holes,
                                         std::size_t holeVertices, std::uint32_t seed);
