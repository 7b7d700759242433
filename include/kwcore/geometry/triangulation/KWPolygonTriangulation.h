// Triangulation of a polygon with holes by monotone decomposition.
//
// A Polygon takes one or more closed contours of double-precision points (the
// outer boundary counter-clockwise, holes clockwise), then triangulates in
// three phases: a top-to-bottom sweep adds diagonals until every piece is
// monotone (partition2Monotone), a walk over the edges and diagonals extracts
// the pieces as closed loops (searchMonotones), and a stack walk down each
// piece cuts it into triangles. Vertices are numbered from 1 in the order
// they are added; a triangle is three vertex numbers, counter-clockwise.
//
// triangulation() ends the process (exit status 1, after a message on
// standard output) when the input is not a valid polygon: callers that cannot
// afford that call Check() first, which names every such problem.
//
//   kwPolygonTriangulation::Polygon polygon;
//   std::vector<CKWPoint2T<double, float> > outer = ..., hole = ...;
//   polygon.AddContour(outer, false, false);
//   polygon.AddContour(hole, false, false);
//   polygon.Finish();
//   if (polygon.Check() == kwPolygonTriangulation::CHECK_OK) {
//       polygon.triangulation();   // prints "Total number of triangles:<n>"
//       for (const kwPolygonTriangulation::Triangle& t : polygon.triangles()) { ... }
//   }
//
// The Polygon owns its vertices and edges; one Polygon triangulates once.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <memory_resource>
#include <queue>
#include <string>
#include <vector>

#include "kwcore/geometry/linear/CKWPoint2T.h"
#include "kwcore/geometry/triangulation/KWSplayTree.h"
#include "kwcore/platform/Export.h"

namespace kwPolygonTriangulation {

// Vertex and edge kinds; the values are fixed.
enum Type {
    INPUT = 1,   // every vertex as added, every contour edge
    INSERT = 2,  // a diagonal
    START = 3,
    END = 4,
    MERGE = 5,
    SPLIT = 6,
    REGULAR_UP = 7,
    REGULAR_DOWN = 8
};

// "START", "END", ... for the vertex classes; empty for INPUT and INSERT.
KWCORE_API const char* TypeName(Type type);

// A vertex. Ordered by the sweep: p is above q when p.y > q.y, or p.y == q.y
// and p.x < q.x (p > q).
class KWCORE_API Pointbase {
public:
    Pointbase();
    Pointbase(double x, double y);
    Pointbase(unsigned id, double x, double y);
    Pointbase(double x, double y, Type type);
    Pointbase(unsigned id, double x, double y, Type type);
    Pointbase(const Pointbase& other) = default;
    Pointbase& operator=(const Pointbase& other) = default;

    unsigned id;
    double x, y;
    Type type;
    bool left;  // on the left chain of the monotone piece being triangulated
};

// Same coordinates.
inline bool operator==(const Pointbase& a, const Pointbase& b) {
    return a.x == b.x && a.y == b.y;
}
inline bool operator!=(const Pointbase& a, const Pointbase& b) {
    return !(a == b);
}
// Sweep order: a is above b.
inline bool operator>(const Pointbase& a, const Pointbase& b) {
    return a.y > b.y || (a.y == b.y && a.x < b.x);
}
// Sweep order: a is below b.
inline bool operator<(const Pointbase& a, const Pointbase& b) {
    return a.y < b.y || (a.y == b.y && a.x > b.x);
}

// An edge or a diagonal between two vertices the Polygon owns.
class KWCORE_API Linebase {
public:
    Linebase();
    Linebase(Pointbase* start, Pointbase* end, Type type, unsigned id);

    unsigned id() const { return m_id; }
    Pointbase* endPoint(int i) const { return m_endPoints[i]; }
    Type type() const { return m_type; }
    double keyValue() const { return m_keyValue; }
    unsigned helper() const { return m_helper; }

    // The key at sweep height y, rounded: the x where the edge crosses the
    // line y; for a horizontal edge, its smaller x. Polygon::Check decides
    // with this same rounding.
    double keyAt(double y) const { return m_bHorizontal ? m_slope : m_x0 + (y - m_y0) * m_slope; }
    void setKeyValue(double y) { m_keyValue = keyAt(y); }
    // Raises the key by delta (at least to the next double).
    void increaseKeyValue(double delta);
    void setHelper(unsigned vertexId) { m_helper = vertexId; }
    // Swaps the end points.
    void reverse();

private:
    // What the sweep reads on every step comes first, and an edge fills one
    // cache line: keys are recomputed many times per step. For a horizontal
    // edge m_slope holds its smaller x, the key at every height.
    alignas(64) double m_keyValue;
    double m_x0, m_y0;
    double m_slope;
    Pointbase* m_endPoints[2];
    unsigned m_id;
    unsigned m_helper;
    Type m_type;
    bool m_bHorizontal;
};

extern template class KWCORE_API SplayTree<Linebase*, double>;

// What Check() finds. Every code but CHECK_OK makes triangulation() end the
// process, except an empty polygon, which triangulates into nothing.
enum CheckCode {
    CHECK_OK = 0,
    CHECK_TOO_FEW_POINTS,     // no contour, or a contour of fewer than 3 points
    CHECK_NOT_FINITE,         // a coordinate is NaN, infinite or beyond 2^500 (about 3e150),
                              // where products of coordinates overflow
    CHECK_DUPLICATED_POINT,   // two vertices at the same place, or at one height and closer
                              // than the sweep's keys tell apart (or a refused contour)
    CHECK_BAD_NUMBERING,      // a reversed contour added after another one
    CHECK_SELF_INTERSECTION,  // edges cross, touch or overlap, within or across contours, or
                              // a vertex is closer to an edge than the sweep's keys tell
    CHECK_WRONG_ORIENTATION,  // outer contour clockwise, or a hole counter-clockwise
    CHECK_HOLE_OUTSIDE        // a hole not inside the outer contour, or inside another hole
};

// The first problem Check() found: its code, the contours (0 is the outer
// one; -1 when not applicable), a place near it, and a sentence for people.
struct KWCORE_API CheckResult {
    CheckCode code = CHECK_OK;
    int contour = -1;
    int otherContour = -1;
    double x = 0.0;
    double y = 0.0;
    std::string message;
};

// The maps draw their nodes from their Polygon's own memory pool.
typedef std::pmr::map<unsigned, Pointbase*> PointbaseMap;
typedef std::pmr::map<unsigned, Linebase*> LineMap;
typedef std::priority_queue<Pointbase> PQueue;
typedef SplayTree<Linebase*, double> EdgeBST;
// A monotone piece: its vertex ids in loop order (counter-clockwise).
typedef std::vector<unsigned> Monopoly;
typedef std::vector<Monopoly> Monopolys;
typedef std::array<unsigned, 3> Triangle;
typedef std::vector<Triangle> Triangles;

// The vertices, edges and working state of a Polygon, private to the library.
class PolygonImpl;

class KWCORE_API Polygon {
public:
    Polygon();
    ~Polygon();
    Polygon(const Polygon&) = delete;
    Polygon& operator=(const Polygon&) = delete;

    // Appends a contour. With `closed` the last point repeats the first and
    // is skipped. A reversed contour is read backwards and numbers its
    // vertices from 1 (so it must be the first one). False, leaving the points
    // read so far in place, when a point repeats one already held; false,
    // changing nothing, after Finish().
    bool AddContour(std::vector<CKWPoint2T<double, float> >& contour, bool reverse, bool closed);
    // The same for `count` points given as x, y pairs.
    bool AddContour(const double* xy, std::size_t count, bool reverse, bool closed);
    // Makes the contour edges; call once, after the last AddContour.
    void Finish();

    // Every problem that would make triangulation() end the process, in
    // O(n log n); the first one found, or CHECK_OK. Crossings, contacts and
    // orientations are decided exactly; besides, the sweep places vertices
    // among the edges by rounded keys (Linebase::keyAt), so a vertex whose
    // rounded key comparison with an edge disagrees with the exact one is
    // reported as touching it (CHECK_SELF_INTERSECTION), or as repeating the
    // edge's end at the same height (CHECK_DUPLICATED_POINT). What passes
    // triangulates.
    CheckCode Check(CheckResult* result = 0) const;

    // The three phases, then "Total number of triangles:<n>" on standard
    // output.
    void triangulation();
    void partition2Monotone();
    void searchMonotones();
    // The last phase alone: triangulates each extracted piece, quietly.
    void triangulateMonotones();

    bool is_exist(double x, double y) const;

    // Maps by id, made on demand from the polygon's own arrays (the sweep does
    // not use them); edits made through them do not reach the polygon.
    PointbaseMap& points();
    LineMap& edges();
    const LineMap& diagonals() const;
    const Monopolys& monotonePieces() const;
    // Each triangle is three vertex ids, counter-clockwise, in the order made.
    const Triangles& triangles() const;
    unsigned triangleCount() const;
    unsigned contourCount() const;
    const std::vector<unsigned>& contourSizes() const;
    double xmin() const;
    double xmax() const;
    double ymin() const;
    double ymax() const;

    // Tracing of the sweep, the loop extraction and the triangulation, into
    // the polygon's own stream.
    void setDebugOption(bool on);
    std::string traceText() const;

private:
    std::unique_ptr<PolygonImpl> m_spImpl;
};

}  // namespace kwPolygonTriangulation
