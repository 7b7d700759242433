// The state of a kwPolygonTriangulation::Polygon and the phases that work on
// it, one source each: input (KWPolygonInput.cpp), the sweep
// (KWPolygonSweep.cpp), loop extraction (KWPolygonLoops.cpp), triangles
// (KWPolygonTriangles.cpp) and the input check (KWPolygonCheck.cpp).
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "kwcore/geometry/exact/KWOrient2D.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace kwPolygonTriangulation {

// The messages before the process ends on invalid input.
inline constexpr char kCheckInput[] =
    "Please check your input polygon:\n1)orientations?\n2)duplicated points?\n";
inline constexpr char kStopped[] = "graiflod stopped.\n";
inline constexpr char kNoDuplicates[] = "No duplicated points please! graiflod stopped\n";
inline constexpr char kCheckLoops[] = "Please check your input polygon:\n";
inline constexpr char kCheckLoopsDetails[] =
    "1)orientations?\n2)with duplicated points?\n3)is a simple one?\n";

// Invalid input ends the process: writes the parts to standard output, then
// exits with status 1. The contract of triangulation().
[[noreturn]] void Stop(const char* first, const char* second = 0, const char* third = 0);

inline double Orient(const Pointbase& a, const Pointbase& b, const Pointbase& c) {
    return orient2d(a.x, a.y, b.x, b.y, c.x, c.y);
}

// A vertex as the sweep meets it, with what its handler reads: the handlers
// then need no lookups by id for the vertex itself.
struct SEvent {
    double y, x;
    Linebase* leaving;   // the contour edge starting at the vertex
    Linebase* entering;  // the contour edge ending at it
    Pointbase* vertex;
    unsigned id;
    Type type;
};

// Storage that keeps addresses: blocks that are never reallocated, each at
// least twice the one before (or as large as reserved). Memory is touched
// only as it is used.
template <class T>
class BlockStore {
public:
    T* add(const T& value) {
        if (m_blocks.empty() || m_blocks.back().size() == m_blocks.back().capacity()) {
            addBlock(m_blocks.empty() ? 64 : 2 * m_blocks.back().capacity());
        }
        m_blocks.back().push_back(value);
        return &m_blocks.back().back();
    }
    // Room for count more in one block.
    void reserve(std::size_t count) {
        if (m_blocks.empty() || m_blocks.back().capacity() - m_blocks.back().size() < count) {
            addBlock(count);
        }
    }

private:
    void addBlock(std::size_t capacity) {
        m_blocks.emplace_back();
        m_blocks.back().reserve(capacity);
    }
    std::vector<std::vector<T> > m_blocks;
};

// The edge ids at one vertex, ascending: a few in place, more on the heap.
// Half a cache line: the sweep reaches them in random order.
class IncidentEdges {
public:
    const unsigned* begin() const { return m_spMore ? m_spMore->data() : m_ids; }
    const unsigned* end() const { return begin() + size(); }
    std::size_t size() const { return m_spMore ? m_spMore->size() : m_count; }
    void push_back(unsigned id);
    void sort();
    void erase(unsigned id);

private:
    unsigned* data() { return m_spMore ? m_spMore->data() : m_ids; }

    unsigned m_ids[5];
    unsigned m_count = 0;
    std::unique_ptr<std::vector<unsigned> > m_spMore;
};

class PolygonImpl {
public:
    PolygonImpl();
    ~PolygonImpl();

    // Input (KWPolygonInput.cpp).
    bool AddContour(const double* xy, std::size_t count, bool reverse, bool closed);
    void Finish();
    bool is_exist(double x, double y) const;
    PointbaseMap& points();
    LineMap& edges();
    const LineMap& diagonals() const;
    void setDebugOption(bool on);
    std::string traceText() const { return m_spTrace ? m_spTrace->str() : std::string(); }

    // The phases (KWPolygonSweep.cpp, KWPolygonLoops.cpp, KWPolygonTriangles.cpp).
    void partition2Monotone();
    void searchMonotones();
    void triangulateMonotones();

    // KWPolygonCheck.cpp.
    CheckCode Check(CheckResult& result) const;

    const Monopolys& monotonePieces() const { return m_monotonePieces; }
    const Triangles& triangles() const { return m_triangles; }
    unsigned contourCount() const { return m_contourCount; }
    const std::vector<unsigned>& contourSizes() const { return m_contourSizes; }
    double xmin() const { return m_xmin; }
    double xmax() const { return m_xmax; }
    double ymin() const { return m_ymin; }
    double ymax() const { return m_ymax; }

private:
    struct SCoordinateIndex;

    // Input.
    Pointbase* point(unsigned id) const { return id < m_pointById.size() ? m_pointById[id] : 0; }
    Linebase* edge(unsigned id) const { return id < m_edgeById.size() ? m_edgeById[id] : 0; }
    unsigned prev(unsigned id) const { return id < m_prevId.size() ? m_prevId[id] : 0; }
    unsigned next(unsigned id) const { return id < m_nextId.size() ? m_nextId[id] : 0; }
    bool consistent() const;
    std::ostream& trace();

    // The sweep.
    void initializate();
    Type classify(const Pointbase& v, unsigned id) const;
    void dispatch(const SEvent& v);
    void handleStartVertex(const SEvent& v);
    void handleEndVertex(const SEvent& v);
    void handleSplitVertex(const SEvent& v);
    void handleMergeVertex(const SEvent& v);
    void handleRegularVertexUp(const SEvent& v);
    void handleRegularVertexDown(const SEvent& v);
    void addDiagonal(unsigned i, unsigned j);
    bool isMergeVertex(unsigned id) const {
        return id < m_mergeFlags.size() && m_mergeFlags[id] != 0;
    }
    void insertEdge(Linebase* edge, unsigned helper, double y);
    void removeEdge(Linebase* edge, double y);
    void setHelper(Linebase* edge, unsigned helper);
    Linebase* findLeftEdge(const SEvent& v);
    Linebase* closeEnteringEdge(const SEvent& v);
    void endEdge(const SEvent& v);

    // Loop extraction.
    Linebase* selectNextEdge(Linebase* edge);
    void useEdge(Linebase* edge);
    bool isUsedFrom(const Linebase* edge, unsigned startId) const;
    void walkLoop(Linebase* first, unsigned loop);

    // Triangles.
    void triangulateMonotone(const Monopoly& piece);
    static void markChains(std::vector<Pointbase*>& loop);
    void addTriangle(unsigned a, unsigned b, unsigned c);

    std::pmr::monotonic_buffer_resource m_pool;  // before the maps that use it
    // Made by points(), edges() and diagonals() when out of date.
    PointbaseMap m_points;
    LineMap m_edges;
    mutable LineMap m_diagonals;
    bool m_bPointsStale, m_bEdgesStale;
    mutable bool m_bDiagonalsStale;
    unsigned m_contourCount;
    std::vector<unsigned> m_contourSizes;
    double m_xmin, m_xmax, m_ymin, m_ymax;
    unsigned m_lastEdgeId;
    // The vertices in sweep order (top first), sorted once, and the next one
    // to handle: a heap would jump across the whole array at every pop.
    std::vector<SEvent> m_events;
    std::size_t m_nextEvent;
    EdgeBST m_status;                            // the edges crossing the sweep line
    std::vector<IncidentEdges> m_incidentEdges;  // by vertex id
    Monopolys m_monotonePieces;
    // Buffers reused from piece to piece by the loop walk and the last phase.
    Monopoly m_pieceScratch;
    std::vector<Pointbase*> m_loopScratch, m_stackScratch;
    Triangles m_triangles;
    bool m_bDebug;
    std::unique_ptr<std::ostringstream> m_spTrace;  // made when tracing is first asked for

    // Vertices and edges by id (null where none), each vertex's contour
    // neighbours, each edge's original start, and which directions of each
    // edge the loop walk has used.
    unsigned m_pointCount;  // ids held
    unsigned m_maxPointId;
    std::vector<Pointbase*> m_pointById;
    std::vector<unsigned char> m_mergeFlags;  // by vertex id: a MERGE vertex
    std::vector<Linebase*> m_edgeById;
    std::vector<unsigned> m_prevId, m_nextId;
    std::vector<unsigned> m_edgeStart;
    std::vector<unsigned char> m_edgeUsed;
    bool m_bRefused;
    bool m_bRenumbered;
    bool m_bFinished;
    bool m_bInitialized;
    std::unique_ptr<SCoordinateIndex> m_spCoordinates;
    // The vertices and edges themselves; everything else points into these.
    BlockStore<Pointbase> m_pointStore;
    BlockStore<Linebase> m_lineStore;
};

inline void IncidentEdges::push_back(unsigned id) {
    if (!m_spMore && m_count < sizeof m_ids / sizeof m_ids[0]) {
        m_ids[m_count++] = id;
        return;
    }
    if (!m_spMore) {
        m_spMore.reset(new std::vector<unsigned>(m_ids, m_ids + m_count));
    }
    m_spMore->push_back(id);
}

inline void IncidentEdges::sort() {
    std::sort(data(), data() + size());
}

inline void IncidentEdges::erase(unsigned id) {
    unsigned* first = data();
    unsigned* last = first + size();
    unsigned* found = std::find(first, last, id);
    if (found == last) {
        return;
    }
    std::copy(found + 1, last, found);
    if (m_spMore) {
        m_spMore->pop_back();
    } else {
        --m_count;
    }
}

}  // namespace kwPolygonTriangulation
