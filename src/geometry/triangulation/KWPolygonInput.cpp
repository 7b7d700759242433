// Polygon input: the contours, their vertices and edges, the lookup of held
// coordinates, and the maps by id that hosts read.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "KWPolygonTriangulationImpl.h"

namespace kwPolygonTriangulation {

// The coordinates held, for is_exist in constant time: open addressing over
// the bit patterns (-0.0 hashed as 0.0, as the two compare equal). A slot is
// a vertex id and 32 more bits of the hash; the vertex itself is read only
// when those match, so the table stays small (8 bytes a slot, at most half
// full) and a probe touches one cache line.
struct PolygonImpl::SCoordinateIndex {
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

PolygonImpl::PolygonImpl()
    : m_points(&m_pool),
      m_edges(&m_pool),
      m_diagonals(&m_pool),
      m_bPointsStale(false),
      m_bEdgesStale(false),
      m_bDiagonalsStale(false),
      m_contourCount(0),
      m_xmin(std::numeric_limits<double>::infinity()),
      m_xmax(-std::numeric_limits<double>::infinity()),
      m_ymin(std::numeric_limits<double>::infinity()),
      m_ymax(-std::numeric_limits<double>::infinity()),
      m_lastEdgeId(0),
      m_nextEvent(0),
      m_bDebug(false),
      m_pointCount(0),
      m_maxPointId(0),
      m_bRefused(false),
      m_bRenumbered(false),
      m_bFinished(false),
      m_bInitialized(false),
      m_spCoordinates(new SCoordinateIndex(m_pointById)) {}

// The vertices and edges go with their stores.
PolygonImpl::~PolygonImpl() {
    m_status.MakeEmpty();
}

void PolygonImpl::setDebugOption(bool on) {
    m_bDebug = on;
    if (on && !m_spTrace) {
        m_spTrace.reset(new std::ostringstream);
    }
}

std::ostream& PolygonImpl::trace() {
    if (!m_spTrace) {
        m_spTrace.reset(new std::ostringstream);
    }
    return *m_spTrace;
}

bool PolygonImpl::is_exist(double x, double y) const {
    return m_spCoordinates->Contains(x, y);
}

bool PolygonImpl::AddContour(const double* xy, std::size_t count, bool reverse, bool closed) {
    if (m_bFinished) {
        return false;  // the edges are made; a late contour would have none
    }
    const std::size_t n = closed && count > 0 ? count - 1 : count;
    m_contourSizes.push_back(static_cast<unsigned>(n));
    ++m_contourCount;
    const unsigned first = reverse ? 1u : m_pointCount + 1u;
    m_spCoordinates->Reserve(n);
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
            --m_contourCount;
            m_contourSizes.pop_back();
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
            m_spCoordinates->Erase(slot->x, slot->y);
        }
        slot = added;
        m_spCoordinates->Insert(x, y, id);
    }
    return true;
}

void PolygonImpl::Finish() {
    if (m_bFinished) {
        return;
    }
    m_bFinished = true;
    unsigned total = 0;
    for (unsigned count : m_contourSizes) {
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
    for (unsigned count : m_contourSizes) {
        for (unsigned k = 1; k <= count; ++k) {
            const unsigned from = offset + k;
            const unsigned to = k == count ? offset + 1 : offset + k + 1;
            const unsigned id = ++m_lastEdgeId;
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

PointbaseMap& PolygonImpl::points() {
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

LineMap& PolygonImpl::edges() {
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

const LineMap& PolygonImpl::diagonals() const {
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

// The vertices are exactly 1..n of the contours, all finite, every contour
// has at least three: what the sweep needs to run to its end at all.
bool PolygonImpl::consistent() const {
    std::size_t total = 0;
    for (unsigned count : m_contourSizes) {
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

}  // namespace kwPolygonTriangulation
