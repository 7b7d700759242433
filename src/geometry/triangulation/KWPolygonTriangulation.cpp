// The monotone decomposition and its triangulation.
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <utility>

#include "platform/Prefetch.h"

namespace kwPolygonTriangulation {
namespace {

const char kCheckInput[] =
    "Please check your input polygon:\n1)orientations?\n2)duplicated points?\n";
const char kStopped[] = "graiflod stopped.\n";
const char kNoDuplicates[] = "No duplicated points please! graiflod stopped\n";
const char kCheckLoops[] = "Please check your input polygon:\n";
const char kCheckLoopsDetails[] =
    "1)orientations?\n2)with duplicated points?\n3)is a simple one?\n";

// Invalid input ends the process: the contract of triangulation().
[[noreturn]] void Stop(const char* first, const char* second = 0, const char* third = 0) {
    const char* parts[] = {first, second, third};
    for (const char* part : parts) {
        if (part != 0) {
            std::fputs(part, stdout);
        }
    }
    std::fflush(stdout);
    std::exit(1);
}

double Orient(const Pointbase& a, const Pointbase& b, const Pointbase& c) {
    return orient2d(a.x, a.y, b.x, b.y, c.x, c.y);
}

// How many events ahead the sweep fetches edges.
const std::size_t kPrefetchDistance = 8;

// Bits of Polygon::m_edgeUsed: the edge walked from its original start, or
// towards it.
const unsigned char kForwardUsed = 1;
const unsigned char kBackwardUsed = 2;

}  // namespace

const char* TypeName(Type type) {
    switch (type) {
        case START:
            return "START";
        case END:
            return "END";
        case MERGE:
            return "MERGE";
        case SPLIT:
            return "SPLIT";
        case REGULAR_UP:
            return "REGULAR_UP";
        case REGULAR_DOWN:
            return "REGULAR_DOWN";
        default:
            return "";
    }
}

// --- Pointbase ---------------------------------------------------------------

Pointbase::Pointbase() : id(0), x(0.0), y(0.0), type(INPUT), left(false) {}
Pointbase::Pointbase(double px, double py) : id(0), x(px), y(py), type(INPUT), left(false) {}
Pointbase::Pointbase(unsigned pid, double px, double py)
    : id(pid), x(px), y(py), type(INPUT), left(false) {}
Pointbase::Pointbase(double px, double py, Type ptype)
    : id(0), x(px), y(py), type(ptype), left(false) {}
Pointbase::Pointbase(unsigned pid, double px, double py, Type ptype)
    : id(pid), x(px), y(py), type(ptype), left(false) {}

// --- Linebase ----------------------------------------------------------------

Linebase::Linebase()
    : m_keyValue(0.0),
      m_x0(0.0),
      m_y0(0.0),
      m_slope(0.0),
      m_endPoints{0, 0},
      m_id(0),
      m_helper(0),
      m_type(INPUT),
      m_bHorizontal(true) {}

Linebase::Linebase(Pointbase* start, Pointbase* end, Type type, unsigned id)
    : m_keyValue(0.0),
      m_x0(start->x),
      m_y0(start->y),
      m_slope(start->y == end->y ? std::min(start->x, end->x)
                                 : (end->x - start->x) / (end->y - start->y)),
      m_endPoints{start, end},
      m_id(id),
      m_helper(0),
      m_type(type),
      m_bHorizontal(start->y == end->y) {}

void Linebase::increaseKeyValue(double delta) {
    const double before = m_keyValue;
    m_keyValue += delta;
    // Far from zero a tiny delta may vanish; the key must still grow.
    if (delta > 0.0 && !(m_keyValue > before)) {
        m_keyValue = std::nextafter(before, std::numeric_limits<double>::infinity());
    }
}

void Linebase::reverse() {
    std::swap(m_endPoints[0], m_endPoints[1]);
    m_x0 = m_endPoints[0]->x;
    m_y0 = m_endPoints[0]->y;
}

// --- Polygon: incident edges -------------------------------------------------

void Polygon::IncidentEdges::push_back(unsigned id) {
    if (!m_pMore && m_count < sizeof m_ids / sizeof m_ids[0]) {
        m_ids[m_count++] = id;
        return;
    }
    if (!m_pMore) {
        m_pMore.reset(new std::vector<unsigned>(m_ids, m_ids + m_count));
    }
    m_pMore->push_back(id);
}

void Polygon::IncidentEdges::sort() {
    unsigned* first = m_pMore ? m_pMore->data() : m_ids;
    std::sort(first, first + size());
}

void Polygon::IncidentEdges::erase(unsigned id) {
    unsigned* first = m_pMore ? m_pMore->data() : m_ids;
    unsigned* last = first + size();
    unsigned* found = std::find(first, last, id);
    if (found == last) {
        return;
    }
    std::copy(found + 1, last, found);
    if (m_pMore) {
        m_pMore->pop_back();
    } else {
        --m_count;
    }
}

// --- Polygon: input ----------------------------------------------------------

// The coordinates held, for is_exist in constant time: open addressing over
// the bit patterns (-0.0 hashed as 0.0, as the two compare equal). A slot is
// a vertex id and 32 more bits of the hash; the vertex itself is read only
// when those match, so the table stays small (8 bytes a slot, at most half
// full) and a probe touches one cache line.
struct Polygon::SCoordinateIndex {
    struct SSlot {
        unsigned id;  // kFree, kErased, or the vertex
        unsigned tag;
    };
    static const unsigned kFree = 0;  // vertex ids start at 1
    static const unsigned kErased = ~0u;

    explicit SCoordinateIndex(const std::vector<Pointbase*>& points) : points(points) {}

    const std::vector<Pointbase*>& points;
    std::vector<SSlot> slots;
    std::size_t held = 0;
    std::size_t used = 0;

    // Every bit of both coordinates reaches the low bits the table uses:
    // regular coordinates (integers, halves) differ only in a few high bits.
    static unsigned long long Mix(unsigned long long z) {
        z ^= z >> 30;
        z *= 0xBF58476D1CE4E5B9ull;
        z ^= z >> 27;
        z *= 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    static unsigned long long Hash(double x, double y) {
        unsigned long long bx, by;
        std::memcpy(&bx, &x, sizeof bx);
        std::memcpy(&by, &y, sizeof by);
        return Mix(bx ^ Mix(by));
    }
    static unsigned Tag(unsigned long long hash) { return static_cast<unsigned>(hash >> 32); }
    // The slot holding (x, y), or the free slot where it would go.
    std::size_t Find(double x, double y) const {
        const unsigned long long hash = Hash(Normal(x), Normal(y));
        const unsigned tag = Tag(hash);
        const std::size_t mask = slots.size() - 1;
        std::size_t i = static_cast<std::size_t>(hash) & mask;
        for (;; i = (i + 1) & mask) {
            const SSlot& slot = slots[i];
            if (slot.id == kFree) {
                return i;
            }
            if (slot.id != kErased && slot.tag == tag && points[slot.id]->x == x &&
                points[slot.id]->y == y) {
                return i;
            }
        }
    }
    bool Contains(double x, double y) const {
        return !slots.empty() && slots[Find(x, y)].id != kFree;
    }
    // Adds vertex id, which holds (x, y), unless a vertex there is held.
    void Insert(double x, double y, unsigned id) {
        if (2 * (used + 1) > slots.size()) {
            Grow(std::max<std::size_t>(64, 4 * (held + 1)));
        }
        SSlot& slot = slots[Find(x, y)];
        if (slot.id == kFree) {
            slot.id = id;
            slot.tag = Tag(Hash(Normal(x), Normal(y)));
            ++held;
            ++used;
        }
    }
    // Forgets (x, y); its vertex must still be the one held there.
    void Erase(double x, double y) {
        if (slots.empty()) {
            return;
        }
        SSlot& slot = slots[Find(x, y)];
        if (slot.id != kFree) {
            slot.id = kErased;
            --held;
        }
    }
    // Room for count more at most half full.
    void Reserve(std::size_t count) {
        if (2 * (used + count) > slots.size()) {
            Grow(2 * (held + count));
        }
    }

private:
    static double Normal(double v) { return v == 0.0 ? 0.0 : v; }
    void Grow(std::size_t minimum) {
        std::size_t size = 64;
        while (size < minimum) {
            size *= 2;
        }
        std::vector<SSlot> old;
        old.swap(slots);
        const SSlot free = {kFree, 0};
        slots.assign(size, free);
        held = used = 0;
        const std::size_t mask = size - 1;
        for (const SSlot& slot : old) {
            if (slot.id != kFree && slot.id != kErased) {
                const Pointbase* p = points[slot.id];
                std::size_t i = static_cast<std::size_t>(Hash(Normal(p->x), Normal(p->y))) & mask;
                while (slots[i].id != kFree) {
                    i = (i + 1) & mask;
                }
                slots[i] = slot;
                ++held;
                ++used;
            }
        }
    }
};

Polygon::Polygon()
    : m_points(&m_pool),
      m_edges(&m_pool),
      m_diagonals(&m_pool),
      m_bPointsStale(false),
      m_bEdgesStale(false),
      m_bDiagonalsStale(false),
      m_ncontours(0),
      m_xmin(std::numeric_limits<double>::infinity()),
      m_xmax(-std::numeric_limits<double>::infinity()),
      m_ymin(std::numeric_limits<double>::infinity()),
      m_ymax(-std::numeric_limits<double>::infinity()),
      m_l_id(0),
      m_nextEvent(0),
      m_debug(false),
      m_pointCount(0),
      m_maxPointId(0),
      m_bRefused(false),
      m_bRenumbered(false),
      m_bFinished(false),
      m_bInitialized(false),
      m_pCoordinates(new SCoordinateIndex(m_pointById)) {}

// The vertices and edges go with their stores.
Polygon::~Polygon() {
    m_edgebst.MakeEmpty();
}

void Polygon::setDebugOption(bool on) {
    m_debug = on;
    if (on && !m_pTrace) {
        m_pTrace.reset(new std::ostringstream);
    }
}

std::ostream& Polygon::trace() {
    if (!m_pTrace) {
        m_pTrace.reset(new std::ostringstream);
    }
    return *m_pTrace;
}

bool Polygon::is_exist(double x, double y) const {
    return m_pCoordinates->Contains(x, y);
}

bool Polygon::AddContour(std::vector<CKWPoint2T<double, float> >& contour, bool reverse,
                         bool closed) {
    std::vector<double> xy;
    xy.reserve(2 * contour.size());
    for (const CKWPoint2T<double, float>& point : contour) {
        xy.push_back(point.X());
        xy.push_back(point.Y());
    }
    return AddContour(xy.data(), contour.size(), reverse, closed);
}

bool Polygon::AddContour(const double* xy, std::size_t count, bool reverse, bool closed) {
    if (m_bFinished) {
        return false;  // the edges are made; a late contour would have none
    }
    const std::size_t n = closed && count > 0 ? count - 1 : count;
    m_nVertices.push_back(static_cast<unsigned>(n));
    ++m_ncontours;
    const unsigned first = reverse ? 1u : m_pointCount + 1u;
    m_pCoordinates->Reserve(n);
    m_pointStore.reserve(n);
    if (m_pointById.size() < first + n) {
        m_pointById.resize(first + n, 0);
    }
    m_bPointsStale = true;
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t index = reverse ? n - 1 - k : k;
        const double x = xy[2 * index];
        const double y = xy[2 * index + 1];
        m_xmin = std::min(m_xmin, x);
        m_xmax = std::max(m_xmax, x);
        m_ymin = std::min(m_ymin, y);
        m_ymax = std::max(m_ymax, y);
        if (is_exist(x, y)) {
            --m_ncontours;
            m_nVertices.pop_back();
            m_bRefused = true;
            return false;
        }
        const unsigned id = first + static_cast<unsigned>(k);
        Pointbase* added = m_pointStore.add(Pointbase(id, x, y, INPUT));
        Pointbase*& slot = m_pointById[id];
        if (slot == 0) {
            ++m_pointCount;
            m_maxPointId = std::max(m_maxPointId, id);
        } else {
            // A reversed contour after the first one reuses numbers.
            m_bRenumbered = true;
            m_pCoordinates->Erase(slot->x, slot->y);
        }
        slot = added;
        m_pCoordinates->Insert(x, y, id);
    }
    return true;
}

void Polygon::Finish() {
    if (m_bFinished) {
        return;
    }
    m_bFinished = true;
    unsigned total = 0;
    for (unsigned count : m_nVertices) {
        total += count;
    }
    const std::size_t slots = std::max(total, m_maxPointId) + 1;
    m_pointById.resize(slots, 0);
    m_bEdgesStale = true;
    m_bDiagonalsStale = true;
    m_prevId.assign(slots, 0);
    m_nextId.assign(slots, 0);
    m_edgeById.assign(total + 1, 0);
    m_edgeStart.assign(total + 1, 0);
    // The contour edges, and room for the diagonals a typical sweep adds.
    m_lineStore.reserve(total + total / 2);
    m_edgeById.reserve(total + total / 2 + 1);
    m_edgeStart.reserve(total + total / 2 + 1);

    unsigned offset = 0;
    for (unsigned count : m_nVertices) {
        for (unsigned k = 1; k <= count; ++k) {
            const unsigned from = offset + k;
            const unsigned to = k == count ? offset + 1 : offset + k + 1;
            const unsigned id = ++m_l_id;
            m_nextId[from] = to;
            m_prevId[to] = from;
            Pointbase* start = point(from);
            Pointbase* end = point(to);
            if (start == 0 || end == 0) {
                continue;
            }
            Linebase* line = m_lineStore.add(Linebase(start, end, INPUT, id));
            m_edgeById[id] = line;
            m_edgeStart[id] = from;
        }
        offset += count;
    }
}

PointbaseMap& Polygon::points() {
    if (m_bPointsStale) {
        m_bPointsStale = false;
        m_points.clear();
        for (std::size_t id = 0; id < m_pointById.size(); ++id) {
            if (m_pointById[id] != 0) {
                m_points.emplace_hint(m_points.end(), static_cast<unsigned>(id), m_pointById[id]);
            }
        }
    }
    return m_points;
}

LineMap& Polygon::edges() {
    if (m_bEdgesStale) {
        m_bEdgesStale = false;
        m_edges.clear();
        for (Linebase* line : m_edgeById) {
            if (line != 0) {
                m_edges.emplace_hint(m_edges.end(), line->id(), line);
            }
        }
    }
    return m_edges;
}

const LineMap& Polygon::diagonals() const {
    if (m_bDiagonalsStale) {
        m_bDiagonalsStale = false;
        m_diagonals.clear();
        for (Linebase* line : m_edgeById) {
            if (line != 0 && line->type() == INSERT) {
                m_diagonals.emplace_hint(m_diagonals.end(), line->id(), line);
            }
        }
    }
    return m_diagonals;
}

Pointbase* Polygon::point(unsigned id) const {
    return id < m_pointById.size() ? m_pointById[id] : 0;
}

Linebase* Polygon::edge(unsigned id) const {
    return id < m_edgeById.size() ? m_edgeById[id] : 0;
}

unsigned Polygon::prev(unsigned id) const {
    return id < m_prevId.size() ? m_prevId[id] : 0;
}

unsigned Polygon::next(unsigned id) const {
    return id < m_nextId.size() ? m_nextId[id] : 0;
}

// The vertices are exactly 1..n of the contours, all finite, every contour
// has at least three: what the sweep needs to run to its end at all.
bool Polygon::consistent() const {
    std::size_t total = 0;
    for (unsigned count : m_nVertices) {
        if (count < 3) {
            return false;
        }
        total += count;
    }
    if (!m_bFinished || m_bRefused || m_bRenumbered || m_pointCount != total) {
        return false;
    }
    // total ids, the largest total: exactly 1..total.
    if (total > 0 && m_maxPointId != total) {
        return false;
    }
    for (std::size_t id = 1; id <= total; ++id) {
        if (!std::isfinite(m_pointById[id]->x) || !std::isfinite(m_pointById[id]->y)) {
            return false;
        }
    }
    return true;
}

// --- Polygon: the sweep ------------------------------------------------------

void Polygon::initializate() {
    if (m_bInitialized) {
        return;
    }
    m_bInitialized = true;
    Finish();
    m_startAdjEdgeMap.clear();
    m_startAdjEdgeMap.resize(m_pointById.size());
    m_bMerge.assign(m_pointById.size(), 0);
    std::vector<SEvent> events;
    events.reserve(m_pointCount);
    for (unsigned id = 1; id < m_pointById.size(); ++id) {
        Pointbase* v = m_pointById[id];
        if (v == 0) {
            continue;
        }
        const Pointbase* p = point(prev(id));
        const Pointbase* n = point(next(id));
        if (p != 0 && n != 0) {
            if (*p > *v && *n < *v) {
                v->type = REGULAR_DOWN;
            } else if (*p<*v&& * n> * v) {
                v->type = REGULAR_UP;
            } else if (*p > *v && *n > *v) {
                v->type = Orient(*p, *v, *n) > 0 ? END : MERGE;
            } else if (*p < *v && *n < *v) {
                v->type = Orient(*p, *v, *n) > 0 ? START : SPLIT;
            }
        }
        m_bMerge[id] = v->type == MERGE;
        const SEvent event = {v->y, v->x, edge(id), edge(prev(id)), v, id, v->type};
        events.push_back(event);
        IncidentEdges& incident = m_startAdjEdgeMap[id];
        if (edge(id) != 0) {
            incident.push_back(id);
        }
        if (edge(prev(id)) != 0 && prev(id) != id) {
            incident.push_back(prev(id));
        }
        incident.sort();
    }
    // Top first. Vertices are distinct and finite once consistent(), so the
    // order is total; otherwise the sweep stops before it reads the order.
    if (consistent()) {
        std::sort(events.begin(), events.end(), [](const SEvent& a, const SEvent& b) {
            return a.y > b.y || (a.y == b.y && a.x < b.x);
        });
    }
    m_events = std::move(events);
    m_nextEvent = 0;
}

void Polygon::partition2Monotone() {
    initializate();
    if (m_nextEvent == m_events.size()) {
        return;
    }
    if (!consistent() || m_events[m_nextEvent].type != START) {
        Stop(kCheckInput, kStopped);
    }
    while (m_nextEvent < m_events.size()) {
        // The edges of a vertex a few events ahead are scattered in memory:
        // ask for them now, so that they arrive while this one is handled.
        const std::size_t ahead = m_nextEvent + kPrefetchDistance;
        if (ahead < m_events.size()) {
            const SEvent& next = m_events[ahead];
            kwPlatform::Prefetch(next.leaving);
            kwPlatform::Prefetch(next.entering);
            kwPlatform::Prefetch(next.vertex);
            kwPlatform::Prefetch(&m_startAdjEdgeMap[next.id]);
        }
        const SEvent& v = m_events[m_nextEvent++];
        m_edgebst.SetKeyRefresh(v.y);
        if (m_debug) {
            trace() << "\n\nHandle vertex:" << v.id << " type:" << TypeName(v.type);
        }
        switch (v.type) {
            case START:
                handleStartVertex(v);
                break;
            case END:
                handleEndVertex(v);
                break;
            case MERGE:
                handleMergeVertex(v);
                break;
            case SPLIT:
                handleSplitVertex(v);
                break;
            case REGULAR_UP:
                handleRegularVertexUp(v);
                break;
            case REGULAR_DOWN:
                handleRegularVertexDown(v);
                break;
            default:
                Stop(kNoDuplicates);
        }
    }
}

bool Polygon::isMergeVertex(unsigned id) const {
    return id < m_bMerge.size() && m_bMerge[id] != 0;
}

void Polygon::insertEdge(Linebase* line, unsigned helper, double y) {
    line->setKeyValue(y);
    m_edgebst.Insert(line);
    line->setHelper(helper);
    if (m_debug) {
        trace() << "\nInsert e" << line->id() << " to splay tree\n"
                << "Insert key:" << line->keyValue() << "\nSet e" << line->id() << " helper to "
                << helper;
    }
}

void Polygon::removeEdge(Linebase* line, double y) {
    line->setKeyValue(y);
    m_edgebst.Delete(line->keyValue());
    if (m_debug) {
        trace() << "\nRemove e" << line->id() << " from splay tree\n"
                << "key:" << line->keyValue();
    }
}

// END, MERGE and REGULAR_DOWN close the edge entering the vertex.
Linebase* Polygon::closeEnteringEdge(const SEvent& v) {
    Linebase* entering = v.entering;
    if (entering == 0) {
        Stop(kCheckInput, kStopped);
    }
    const unsigned helper = entering->helper();
    if (m_debug) {
        trace() << "\ne" << entering->id() << " helper is " << helper;
    }
    if (isMergeVertex(helper)) {
        addDiagonal(v.id, helper);
    }
    return entering;
}

void Polygon::endEdge(const SEvent& v) {
    removeEdge(closeEnteringEdge(v), v.y);
}

Linebase* Polygon::findLeftEdge(const SEvent& v) {
    EdgeBST::Node* found = 0;
    m_edgebst.FindMaxSmallerThan(v.x, found);
    if (found == 0) {
        Stop(kCheckInput, kStopped);
    }
    Linebase* left = found->data();
    if (m_debug) {
        trace() << "\nSearch key:" << v.x << " edge key:" << left->keyValue() << " found:e"
                << left->id() << " is directly left to v" << v.id
                << " and its helper is:" << left->helper();
    }
    return left;
}

void Polygon::setHelper(Linebase* line, unsigned helper) {
    line->setHelper(helper);
    if (m_debug) {
        trace() << "\nset e" << line->id() << " helper to " << helper;
    }
}

void Polygon::handleStartVertex(const SEvent& v) {
    if (v.leaving == 0) {
        Stop(kCheckInput, kStopped);
    }
    insertEdge(v.leaving, v.id, v.y);
}

void Polygon::handleEndVertex(const SEvent& v) {
    endEdge(v);
}

void Polygon::handleSplitVertex(const SEvent& v) {
    Linebase* left = findLeftEdge(v);
    addDiagonal(v.id, left->helper());
    setHelper(left, v.id);
    if (v.leaving == 0) {
        Stop(kCheckInput, kStopped);
    }
    insertEdge(v.leaving, v.id, v.y);
}

void Polygon::handleMergeVertex(const SEvent& v) {
    endEdge(v);
    Linebase* left = findLeftEdge(v);
    if (isMergeVertex(left->helper())) {
        addDiagonal(v.id, left->helper());
    }
    setHelper(left, v.id);
}

void Polygon::handleRegularVertexUp(const SEvent& v) {
    Linebase* left = findLeftEdge(v);
    if (isMergeVertex(left->helper())) {
        addDiagonal(v.id, left->helper());
    }
    setHelper(left, v.id);
}

void Polygon::handleRegularVertexDown(const SEvent& v) {
    Linebase* entering = closeEnteringEdge(v);
    Linebase* leaving = v.leaving;
    if (leaving == 0) {
        Stop(kCheckInput, kStopped);
    }
    // The leaving edge takes the entering one's place in the status (they
    // meet at v, and no edge lies between them): one search instead of a
    // removal and an insertion.
    const double y = v.y;
    entering->setKeyValue(y);
    EdgeBST::Node* node = m_edgebst.Find(entering->keyValue());
    if (node == 0 || node->data() != entering) {
        removeEdge(entering, y);
        insertEdge(leaving, v.id, y);
        return;
    }
    leaving->setKeyValue(y);
    node->setData(leaving);
    leaving->setHelper(v.id);
    if (m_debug) {
        trace() << "\nRemove e" << entering->id() << " from splay tree\n"
                << "key:" << entering->keyValue() << "\nInsert e" << leaving->id()
                << " to splay tree\n"
                << "Insert key:" << leaving->keyValue() << "\nSet e" << leaving->id()
                << " helper to " << v.id;
    }
}

void Polygon::addDiagonal(unsigned i, unsigned j) {
    Pointbase* a = point(i);
    Pointbase* b = point(j);
    if (a == 0 || b == 0 || i == j) {
        Stop(kCheckInput, kStopped);
    }
    const unsigned id = ++m_l_id;
    Linebase* diagonal = m_lineStore.add(Linebase(a, b, INSERT, id));
    m_bEdgesStale = true;
    m_bDiagonalsStale = true;
    if (m_edgeById.size() <= id) {
        m_edgeById.resize(id + 1, 0);
        m_edgeStart.resize(id + 1, 0);
    }
    m_edgeById[id] = diagonal;
    m_edgeStart[id] = i;
    // Identifiers only grow, so the incident lists stay sorted.
    m_startAdjEdgeMap[i].push_back(id);
    m_startAdjEdgeMap[j].push_back(id);
    if (m_debug) {
        trace() << "\nAdd Diagonal from " << i << " to " << j << "\n";
    }
}

// --- Polygon: loop extraction ------------------------------------------------

double Polygon::angleCosb(const Pointbase& a, const Pointbase& b, const Pointbase& c) const {
    const double ax = a.x - b.x, ay = a.y - b.y;
    const double cx = c.x - b.x, cy = c.y - b.y;
    return (ax * cx + ay * cy) / std::sqrt((ax * ax + ay * ay) * (cx * cx + cy * cy));
}

// Marks the walk along `line` from its current start; an edge used in every
// direction it can be walked leaves both incident lists.
void Polygon::useEdge(Linebase* line) {
    const unsigned id = line->id();
    const bool forward = line->endPoint(0)->id == m_edgeStart[id];
    m_edgeUsed[id] |= forward ? kForwardUsed : kBackwardUsed;
    if (m_edgeUsed[id] != (kForwardUsed | kBackwardUsed)) {
        return;
    }
    for (int end = 0; end < 2; ++end) {
        m_startAdjEdgeMap[line->endPoint(end)->id].erase(id);
    }
}

bool Polygon::isUsedFrom(const Linebase* line, unsigned startId) const {
    const unsigned id = line->id();
    return (m_edgeUsed[id] & (startId == m_edgeStart[id] ? kForwardUsed : kBackwardUsed)) != 0;
}

Linebase* Polygon::selectNextEdge(Linebase* current) {
    const Pointbase& a = *current->endPoint(0);
    const Pointbase& b = *current->endPoint(1);
    const IncidentEdges& incident = m_startAdjEdgeMap[b.id];
    const std::size_t others =
        incident.size() -
        static_cast<std::size_t>(std::count(incident.begin(), incident.end(), current->id()));
    if (others == 0) {
        return 0;
    }
    Linebase* leftChoice = 0;
    Linebase* otherChoice = 0;
    double leftBest = -2.0;
    double otherBest = 2.0;
    for (unsigned id : incident) {
        if (id == current->id()) {
            continue;
        }
        Linebase* candidate = edge(id);
        // Vertices are distinct objects: comparing addresses spares a load.
        if (candidate->endPoint(0) != &b) {
            candidate->reverse();
        }
        if (others == 1) {
            return candidate;
        }
        const Pointbase& c = *candidate->endPoint(1);
        const double det = Orient(a, b, c);
        const double cosine = angleCosb(a, b, c);
        if (det > 0 && cosine > leftBest) {
            leftChoice = candidate;
            leftBest = cosine;
        } else if (cosine < otherBest) {
            otherChoice = candidate;
            otherBest = cosine;
        }
    }
    return leftChoice != 0 ? leftChoice : otherChoice;
}

void Polygon::searchMonotones() {
    initializate();
    m_edgeUsed.assign(m_edgeById.size(), 0);
    for (Linebase* line : m_edgeById) {
        // A contour edge is walked once, along the contour.
        if (line != 0 && line->type() == INPUT) {
            m_edgeUsed[line->id()] = kBackwardUsed;
        }
    }
    unsigned loop = 0;
    for (Linebase* first : m_edgeById) {
        if (first == 0) {
            continue;
        }
        while (m_edgeUsed[first->id()] != (kForwardUsed | kBackwardUsed)) {
            // Start along the direction not walked yet.
            const unsigned origin = m_edgeStart[first->id()];
            const bool forwardFree = (m_edgeUsed[first->id()] & kForwardUsed) == 0;
            if ((first->endPoint(0)->id == origin) != forwardFree) {
                first->reverse();
            }
            const unsigned start = first->endPoint(0)->id;
            if (m_debug) {
                trace() << "\nSearching for loops:" << ++loop << "\nvertex index:" << start;
            }
            // Collected in a reused buffer, then stored in one allocation.
            Monopoly& piece = m_pieceScratch;
            piece.assign(1, start);
            Linebase* current = first;
            useEdge(current);
            for (;;) {
                const unsigned end = current->endPoint(1)->id;
                if (end == start) {
                    break;
                }
                piece.push_back(end);
                if (m_debug) {
                    trace() << " " << end;
                }
                Linebase* nextEdge = selectNextEdge(current);
                if (nextEdge == 0 || isUsedFrom(nextEdge, end)) {
                    Stop(kCheckLoops, kCheckLoopsDetails, kStopped);
                }
                useEdge(nextEdge);
                current = nextEdge;
            }
            if (m_debug) {
                trace() << "\nloop closed!\n\n";
            }
            m_mpolys.emplace_back(piece.begin(), piece.end());
        }
    }
}

// --- Polygon: triangles ------------------------------------------------------

void Polygon::addTriangle(unsigned a, unsigned b, unsigned c) {
    if (Orient(*point(a), *point(b), *point(c)) < 0) {
        std::swap(b, c);
    }
    m_triangles.push_back(Triangle{{a, b, c}});
    if (m_debug) {
        trace() << "\nAdd triangle:" << a << " " << b << " " << c;
    }
}

void Polygon::triangulateMonotone(const Monopoly& piece) {
    std::vector<Pointbase*>& loop = m_loopScratch;
    loop.clear();
    for (unsigned id : piece) {
        loop.push_back(point(id));
    }
    const std::size_t count = loop.size();
    if (count < 3) {
        return;
    }
    // The loop runs counter-clockwise: from the top vertex it goes down the
    // left chain to the bottom vertex, and up the right chain back.
    std::size_t top = 0, bottom = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if (*loop[i] > *loop[top]) {
            top = i;
        }
        if (*loop[i] < *loop[bottom]) {
            bottom = i;
        }
    }
    for (std::size_t i = top; i != bottom; i = (i + 1) % count) {
        loop[i]->left = true;
    }
    for (std::size_t i = bottom; i != top; i = (i + 1) % count) {
        loop[i]->left = false;
    }
    std::sort(loop.begin(), loop.end(),
              [](const Pointbase* a, const Pointbase* b) { return *a > *b; });

    std::vector<Pointbase*>& stack = m_stackScratch;
    stack.clear();
    stack.push_back(loop[0]);
    stack.push_back(loop[1]);
    for (std::size_t j = 2; j + 1 < count; ++j) {
        Pointbase* u = loop[j];
        if (m_debug) {
            trace() << "\ncurrent top queue vertex index=" << u->id
                    << "\nCurrent top stack vertex index=" << stack.back()->id;
            if (stack.size() > 1) {
                trace() << "\nSecond stack vertex index=" << stack[stack.size() - 2]->id;
            }
        }
        if (u->left != stack.back()->left) {
            // Across the piece: u sees every stacked vertex.
            for (std::size_t k = stack.size() - 1; k > 0; --k) {
                addTriangle(u->id, stack[k]->id, stack[k - 1]->id);
            }
            Pointbase* previous = stack.back();
            stack.clear();
            stack.push_back(previous);
            stack.push_back(u);
        } else {
            // Along one chain: cut off the stacked vertices u sees while the
            // triangle lies inside the piece.
            Pointbase* last = stack.back();
            stack.pop_back();
            while (!stack.empty()) {
                const double turn = Orient(*stack.back(), *u, *last);
                if (u->left ? !(turn < 0) : !(turn > 0)) {
                    break;
                }
                addTriangle(u->id, last->id, stack.back()->id);
                last = stack.back();
                stack.pop_back();
            }
            stack.push_back(last);
            stack.push_back(u);
        }
    }
    Pointbase* lowest = loop[count - 1];
    for (std::size_t k = stack.size() - 1; k > 0; --k) {
        addTriangle(lowest->id, stack[k]->id, stack[k - 1]->id);
    }
}

void Polygon::triangulateMonotones() {
    std::size_t triangles = 0;
    for (const Monopoly& piece : m_mpolys) {
        triangles += piece.size() >= 2 ? piece.size() - 2 : 0;
    }
    m_triangles.reserve(m_triangles.size() + triangles);
    for (const Monopoly& piece : m_mpolys) {
        triangulateMonotone(piece);
    }
}

void Polygon::triangulation() {
    partition2Monotone();
    searchMonotones();
    triangulateMonotones();
    std::printf("Total number of triangles:%u\n", triangleCount());
    std::fflush(stdout);
}

}  // namespace kwPolygonTriangulation
