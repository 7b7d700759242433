// Polygon::Check: the problems that would end the triangulation, found
// without ending anything.
//
// Edges are tested for crossings and contacts by a sweep in the
// triangulation's own order (top to bottom, left to right at equal height)
// that only tests edges adjacent in the sweep status (Shamos and Hoey), with
// every decision taken by the exact orientation predicate. The same sweep
// finds, at the topmost vertex of each contour, the edge directly to its left,
// which tells whether the contour lies inside the polygon's area.
//
// The triangulation's sweep, though, places each vertex among the edges by
// comparing rounded keys (Linebase::keyAt). At every vertex the check
// compares the same keys the same way and wants each edge on its exact side;
// edges further off than the keys' error bound cannot fail, so it looks only
// at the few nearest.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "KWPolygonTriangulationImpl.h"

namespace kwPolygonTriangulation {
namespace {

std::string Format(const char* format, double a = 0, double b = 0, double c = 0, double d = 0) {
    char text[256];
    std::snprintf(text, sizeof text, format, a, b, c, d);
    return text;
}

// Fills every field of result with one problem; returns its code.
CheckCode Report(CheckResult& result, CheckCode code, const std::string& message, int contour = -1,
                 int otherContour = -1, double x = 0.0, double y = 0.0) {
    result.code = code;
    result.contour = contour;
    result.otherContour = otherContour;
    result.x = x;
    result.y = y;
    result.message = message;
    return code;
}

// The contours as flat arrays; vertex i of the whole polygon is id i + 1.
struct SContours {
    std::vector<double> x, y;
    std::vector<int> contour;           // by vertex
    std::vector<unsigned> prev, next;   // by vertex, within its contour
    std::vector<unsigned> first, size;  // by contour
    std::vector<Linebase> lines;        // by vertex: the edge leaving it, as the sweep keys it
    double largestX = 0.0;              // the largest |x|
};

const unsigned kNone = ~0u;

class CSweepCheck {
public:
    explicit CSweepCheck(const SContours& contours)
        : m_c(contours),
          m_status(SOrder{this}),
          m_handle(contours.x.size(), m_status.end()),
          m_contourSeen(contours.size.size(), false),
          m_keyReach(KeyReach(contours.largestX)) {}

    CheckCode Run(CheckResult& result);

private:
    struct SOrder {
        const CSweepCheck* check;
        bool operator()(unsigned a, unsigned b) const { return check->Less(a, b); }
    };
    typedef std::set<unsigned, SOrder> Status;

    // Sweep order: a comes before (above) b.
    bool Above(unsigned a, unsigned b) const {
        return m_c.y[a] > m_c.y[b] || (m_c.y[a] == m_c.y[b] && m_c.x[a] < m_c.x[b]);
    }
    double Orient(unsigned a, unsigned b, unsigned c) const {
        return orient2d(m_c.x[a], m_c.y[a], m_c.x[b], m_c.y[b], m_c.x[c], m_c.y[c]);
    }
    // Edge s runs from vertex s to its successor; Upper is the end met first.
    unsigned Upper(unsigned s) const { return Above(s, m_c.next[s]) ? s : m_c.next[s]; }
    unsigned Lower(unsigned s) const { return Above(s, m_c.next[s]) ? m_c.next[s] : s; }
    bool Less(unsigned a, unsigned b) const;
    int CompareInserted(unsigned t, unsigned s) const;
    bool Intersect(unsigned s, unsigned t) const;
    bool OnSegment(unsigned a, unsigned b, unsigned p) const;
    void Meeting(unsigned s, unsigned t, unsigned near, double& x, double& y) const;
    CheckCode Crossing(unsigned s, unsigned t, unsigned near, CheckResult& result) const;
    bool TestNeighbours(Status::iterator it, unsigned near, CheckResult& result) const;

    // Twice the largest error of a rounded key of an edge at a height it
    // spans: each key is within 11 roundings of the largest |x|.
    static double KeyReach(double largestX) {
        return 2 * (64 * std::numeric_limits<double>::epsilon() * largestX +
                    16 * std::numeric_limits<double>::denorm_min());
    }
    // The first edge not at v (nor at `also`), walking outward from the gap
    // before `gap`, whose rounded key at v's height falls on the wrong side
    // of `query` (v's x, or the key of an edge ending at v); kNone when there
    // is none.
    unsigned MisplacedEdge(Status::iterator gap, unsigned v, unsigned also, double query) const;
    bool TouchesAtKeys(Status::iterator gap, unsigned v, unsigned also, double query,
                       CheckResult& result) const;
    CheckCode TooClose(unsigned v, unsigned edge, CheckResult& result) const;

    // The phases of Run: each true when it found a problem, in result.
    bool FindDuplicatedPoint(const std::vector<unsigned>& order, CheckResult& result) const;
    bool FindTurnBack(CheckResult& result) const;
    bool FindCrossing(const std::vector<unsigned>& order, CheckResult& result);
    // The sweep at vertex v: its edges leave the status (v is their lower
    // end) or enter it (v is their upper end).
    bool RemoveEdgesEndingAt(unsigned v, CheckResult& result);
    bool InsertEdgesStartingAt(unsigned v, Status::iterator inserted[2], int& insertedCount,
                               CheckResult& result);
    // At the topmost vertex v of its contour: the contour's orientation, and
    // whether it lies where it should, remembered for the end of the sweep.
    void CheckContourAt(unsigned v, const Status::iterator inserted[2], int insertedCount);

    const SContours& m_c;
    Status m_status;
    std::vector<Status::iterator> m_handle;  // by edge
    std::vector<bool> m_contourSeen;
    CheckResult m_orientation, m_containment;
    unsigned m_inserting = 0;
    mutable bool m_bContact = false;
    mutable unsigned m_contactWith = 0;
    const double m_keyReach;
};

// Only the edge being inserted is ever compared: it starts at the current
// event, and the stored edges are ordered where they cross the sweep line.
bool CSweepCheck::Less(unsigned a, unsigned b) const {
    if (a == b) {
        return false;
    }
    if (a == m_inserting) {
        return CompareInserted(a, b) < 0;
    }
    if (b == m_inserting) {
        return CompareInserted(b, a) > 0;
    }
    return a < b;
}

// Where the new edge t lies against the stored edge s: -1 left, +1 right.
// Its upper end on s is a contact, flagged for the caller.
int CSweepCheck::CompareInserted(unsigned t, unsigned s) const {
    const unsigned q = Upper(t);
    // Going down s, its left side is the larger x.
    double side = Orient(Upper(s), Lower(s), q);
    if (side == 0) {
        if (Upper(s) == q) {
            // The other edge of the same vertex: order by direction.
            side = Orient(Upper(s), Lower(s), Lower(t));
        }
        if (side == 0) {
            m_bContact = true;
            m_contactWith = s;
            return -1;
        }
    }
    return side > 0 ? 1 : -1;
}

bool CSweepCheck::OnSegment(unsigned a, unsigned b, unsigned p) const {
    return std::min(m_c.x[a], m_c.x[b]) <= m_c.x[p] && m_c.x[p] <= std::max(m_c.x[a], m_c.x[b]) &&
           std::min(m_c.y[a], m_c.y[b]) <= m_c.y[p] && m_c.y[p] <= std::max(m_c.y[a], m_c.y[b]);
}

// Closed segments meet; neighbours in a contour meet only at their shared
// vertex, which does not count (their overlap is tested apart).
bool CSweepCheck::Intersect(unsigned s, unsigned t) const {
    const unsigned a = s, b = m_c.next[s], c = t, d = m_c.next[t];
    if (a == d || b == c) {
        return false;
    }
    const double d1 = Orient(c, d, a), d2 = Orient(c, d, b);
    const double d3 = Orient(a, b, c), d4 = Orient(a, b, d);
    if (((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) && ((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0))) {
        return true;
    }
    return (d1 == 0 && OnSegment(c, d, a)) || (d2 == 0 && OnSegment(c, d, b)) ||
           (d3 == 0 && OnSegment(a, b, c)) || (d4 == 0 && OnSegment(a, b, d));
}

// Where two meeting edges meet (rounded): an end of one on the other, or the
// crossing of their lines.
void CSweepCheck::Meeting(unsigned s, unsigned t, unsigned near, double& x, double& y) const {
    const unsigned ends[4][3] = {{s, t, m_c.next[t]},
                                 {m_c.next[s], t, m_c.next[t]},
                                 {t, s, m_c.next[s]},
                                 {m_c.next[t], s, m_c.next[s]}};
    for (const unsigned(&e)[3] : ends) {
        if (Orient(e[1], e[2], e[0]) == 0 && OnSegment(e[1], e[2], e[0])) {
            x = m_c.x[e[0]];
            y = m_c.y[e[0]];
            return;
        }
    }
    const double ax = m_c.x[s], ay = m_c.y[s];
    const double rx = m_c.x[m_c.next[s]] - ax, ry = m_c.y[m_c.next[s]] - ay;
    const double qx = m_c.x[t] - ax, qy = m_c.y[t] - ay;
    const double sx = m_c.x[m_c.next[t]] - m_c.x[t], sy = m_c.y[m_c.next[t]] - m_c.y[t];
    const double denominator = rx * sy - ry * sx;
    if (denominator == 0.0) {
        x = m_c.x[near];
        y = m_c.y[near];
        return;
    }
    const double along = (qx * sy - qy * sx) / denominator;
    x = ax + along * rx;
    y = ay + along * ry;
}

CheckCode CSweepCheck::Crossing(unsigned s, unsigned t, unsigned near, CheckResult& result) const {
    const int contour = m_c.contour[s], otherContour = m_c.contour[t];
    double x, y;
    Meeting(s, t, near, x, y);
    const std::string message =
        contour == otherContour
            ? Format("contour %g crosses or touches itself near (%g, %g)", contour + 1, x, y)
            : Format("contours %g and %g cross or touch near (%g, %g)",
                     std::min(contour, otherContour) + 1, std::max(contour, otherContour) + 1, x,
                     y);
    return Report(result, CHECK_SELF_INTERSECTION, message, contour, otherContour, x, y);
}

unsigned CSweepCheck::MisplacedEdge(Status::iterator gap, unsigned v, unsigned also,
                                    double query) const {
    const double y = m_c.y[v];
    // Edges at v are not compared with v: they leave the status or enter it.
    const auto misplaced = [this, v, also, y, query](unsigned e, bool left, bool& far) {
        if (e == v || m_c.next[e] == v || e == also || m_c.next[e] == also) {
            return false;
        }
        const double key = m_c.lines[e].keyAt(y);
        far = std::fabs(key - query) > m_keyReach;
        return !(left ? key < query : key > query);
    };
    bool far = false;
    for (Status::iterator it = gap; it != m_status.begin() && !far;) {
        --it;
        if (misplaced(*it, true, far)) {
            return *it;
        }
    }
    far = false;
    for (Status::iterator it = gap; it != m_status.end() && !far; ++it) {
        if (misplaced(*it, false, far)) {
            return *it;
        }
    }
    return kNone;
}

bool CSweepCheck::TouchesAtKeys(Status::iterator gap, unsigned v, unsigned also, double query,
                                CheckResult& result) const {
    const unsigned edge = MisplacedEdge(gap, v, also, query);
    if (edge == kNone) {
        return false;
    }
    TooClose(v, edge, result);
    return true;
}

// v and an edge the sweep cannot tell apart: at one height as an end of the
// edge, they are one point to it; elsewhere v touches the edge.
CheckCode CSweepCheck::TooClose(unsigned v, unsigned edge, CheckResult& result) const {
    const int contour = std::min(m_c.contour[v], m_c.contour[edge]);
    const int otherContour = std::max(m_c.contour[v], m_c.contour[edge]);
    for (unsigned end : {edge, m_c.next[edge]}) {
        if (end != v && m_c.y[end] == m_c.y[v]) {
            return Report(result, CHECK_DUPLICATED_POINT,
                          Format("the points (%g, %g) and (%g, %g) are too close for the sweep "
                                 "to tell apart",
                                 m_c.x[v], m_c.y[v], m_c.x[end], m_c.y[end]),
                          contour, otherContour, m_c.x[v], m_c.y[v]);
        }
    }
    const std::string message =
        contour == otherContour
            ? Format(
                  "contour %g comes closer to itself near (%g, %g) than the sweep can tell "
                  "apart",
                  contour + 1, m_c.x[v], m_c.y[v])
            : Format("contours %g and %g come closer near (%g, %g) than the sweep can tell apart",
                     contour + 1, otherContour + 1, m_c.x[v], m_c.y[v]);
    return Report(result, CHECK_SELF_INTERSECTION, message, contour, otherContour, m_c.x[v],
                  m_c.y[v]);
}

bool CSweepCheck::TestNeighbours(Status::iterator it, unsigned near, CheckResult& result) const {
    if (it != m_status.begin()) {
        const unsigned left = *std::prev(it);
        if (Intersect(left, *it)) {
            Crossing(left, *it, near, result);
            return true;
        }
    }
    const Status::iterator right = std::next(it);
    if (right != m_status.end() && Intersect(*it, *right)) {
        Crossing(*it, *right, near, result);
        return true;
    }
    return false;
}

CheckCode CSweepCheck::Run(CheckResult& result) {
    const unsigned n = static_cast<unsigned>(m_c.x.size());
    std::vector<unsigned> order(n);
    for (unsigned i = 0; i < n; ++i) {
        order[i] = i;
    }
    std::sort(order.begin(), order.end(), [this](unsigned a, unsigned b) { return Above(a, b); });
    if (FindDuplicatedPoint(order, result) || FindTurnBack(result) || FindCrossing(order, result)) {
        return result.code;
    }
    if (m_orientation.code != CHECK_OK) {
        result = m_orientation;
    } else if (m_containment.code != CHECK_OK) {
        result = m_containment;
    }
    return result.code;
}

// In sweep order, equal points are neighbours.
bool CSweepCheck::FindDuplicatedPoint(const std::vector<unsigned>& order,
                                      CheckResult& result) const {
    for (std::size_t k = 1; k < order.size(); ++k) {
        const unsigned a = order[k - 1], b = order[k];
        if (m_c.x[a] == m_c.x[b] && m_c.y[a] == m_c.y[b]) {
            const int contour = std::min(m_c.contour[a], m_c.contour[b]);
            const int otherContour = std::max(m_c.contour[a], m_c.contour[b]);
            Report(result, CHECK_DUPLICATED_POINT,
                   Format("the point (%g, %g) occurs twice (contours %g and %g)", m_c.x[a],
                          m_c.y[a], contour + 1, otherContour + 1),
                   contour, otherContour, m_c.x[a], m_c.y[a]);
            return true;
        }
    }
    return false;
}

// Neighbouring edges overlap when a contour turns straight back.
bool CSweepCheck::FindTurnBack(CheckResult& result) const {
    for (unsigned v = 0; v < m_c.x.size(); ++v) {
        const unsigned p = m_c.prev[v], q = m_c.next[v];
        if (Orient(p, v, q) != 0) {
            continue;
        }
        const bool sameSide = m_c.x[p] != m_c.x[v] ? (m_c.x[p] < m_c.x[v]) == (m_c.x[q] < m_c.x[v])
                                                   : (m_c.y[p] < m_c.y[v]) == (m_c.y[q] < m_c.y[v]);
        if (sameSide) {
            Crossing(p, v, v, result);
            return true;
        }
    }
    return false;
}

bool CSweepCheck::FindCrossing(const std::vector<unsigned>& order, CheckResult& result) {
    for (unsigned v : order) {
        if (RemoveEdgesEndingAt(v, result)) {
            return true;
        }
        Status::iterator inserted[2] = {m_status.end(), m_status.end()};
        int insertedCount = 0;
        if (InsertEdgesStartingAt(v, inserted, insertedCount, result)) {
            return true;
        }
        const int c = m_c.contour[v];
        if (!m_contourSeen[c]) {
            // v is the topmost vertex of its contour: both its edges start here.
            m_contourSeen[c] = true;
            CheckContourAt(v, inserted, insertedCount);
        }
    }
    return false;
}

// The two edges that become neighbours when one between them leaves. The
// sweep finds a leaving edge by its rounded key, and then places v by its x
// when no edge starts at v.
bool CSweepCheck::RemoveEdgesEndingAt(unsigned v, CheckResult& result) {
    Status::iterator gap = m_status.end();
    bool removed = false;
    for (unsigned s : {m_c.prev[v], v}) {
        if (Lower(s) != v) {
            continue;
        }
        const Status::iterator it = m_handle[s];
        const bool hasLeft = it != m_status.begin();
        const Status::iterator left = hasLeft ? std::prev(it) : m_status.end();
        gap = m_status.erase(it);
        removed = true;
        if (hasLeft && gap != m_status.end() && Intersect(*left, *gap)) {
            Crossing(*left, *gap, v, result);
            return true;
        }
        // A horizontal edge keeps the key of its left end, where it meets
        // the edges at that end.
        const unsigned also = m_c.y[s] == m_c.y[m_c.next[s]] ? Upper(s) : kNone;
        if (TouchesAtKeys(gap, v, also, m_c.lines[s].keyAt(m_c.y[v]), result)) {
            return true;
        }
    }
    const bool edgeStarts = Upper(m_c.prev[v]) == v || Upper(v) == v;
    return removed && !edgeStarts && TouchesAtKeys(gap, v, kNone, m_c.x[v], result);
}

bool CSweepCheck::InsertEdgesStartingAt(unsigned v, Status::iterator inserted[2],
                                        int& insertedCount, CheckResult& result) {
    for (unsigned s : {m_c.prev[v], v}) {
        if (Upper(s) != v) {
            continue;
        }
        m_inserting = s;
        m_bContact = false;
        const Status::iterator it = m_status.insert(s).first;
        m_handle[s] = it;
        if (m_bContact) {
            Crossing(m_contactWith, s, v, result);
            return true;
        }
        if (TestNeighbours(it, v, result)) {
            return true;
        }
        // The edge leaving v enters the sweep keyed by v's x.
        if (s == v && !(m_c.lines[s].keyAt(m_c.y[v]) == m_c.x[v])) {
            TooClose(v, s, result);
            return true;
        }
        if (insertedCount == 0 && TouchesAtKeys(it, v, kNone, m_c.x[v], result)) {
            return true;
        }
        inserted[insertedCount++] = it;
    }
    return false;
}

void CSweepCheck::CheckContourAt(unsigned v, const Status::iterator inserted[2],
                                 int insertedCount) {
    const int c = m_c.contour[v];
    const bool counterClockwise = Orient(m_c.prev[v], v, m_c.next[v]) > 0;
    if (counterClockwise != (c == 0) && m_orientation.code == CHECK_OK) {
        Report(m_orientation, CHECK_WRONG_ORIENTATION,
               c == 0 ? std::string("the outer contour runs clockwise; it must run "
                                    "counter-clockwise")
                      : Format("contour %g (a hole) runs counter-clockwise; holes must run "
                               "clockwise",
                               c + 1),
               c, -1, m_c.x[v], m_c.y[v]);
    }
    // The edge directly left of v decides whether v lies in the area bounded
    // by the contours seen so far: it does when that edge runs downwards (the
    // area is on the left of every edge).
    Status::iterator leftmost = inserted[0];
    if (insertedCount == 2 && std::next(inserted[1]) == inserted[0]) {
        leftmost = inserted[1];
    }
    bool inside = false;
    int outerContour = -1;
    if (leftmost != m_status.begin()) {
        const unsigned left = *std::prev(leftmost);
        inside = Upper(left) == left;
        outerContour = m_c.contour[left];
    }
    if (inside != (c != 0) && m_containment.code == CHECK_OK) {
        Report(m_containment, CHECK_HOLE_OUTSIDE,
               c == 0 ? std::string("the outer contour lies inside a hole")
                      : Format("contour %g (a hole) is not inside the outer contour, or lies "
                               "inside another hole",
                               c + 1),
               c, outerContour, m_c.x[v], m_c.y[v]);
    }
}

// The contours as flat arrays, vertex i of the whole polygon at index i - 1.
SContours Flatten(const std::vector<Pointbase*>& pointById, const std::vector<unsigned>& sizes,
                  std::size_t total) {
    SContours contours;
    contours.x.reserve(total);
    contours.y.reserve(total);
    for (std::size_t id = 1; id <= total; ++id) {
        contours.x.push_back(pointById[id]->x);
        contours.y.push_back(pointById[id]->y);
        contours.largestX = std::max(contours.largestX, std::fabs(pointById[id]->x));
    }
    contours.contour.resize(total);
    contours.prev.resize(total);
    contours.next.resize(total);
    unsigned offset = 0;
    for (std::size_t c = 0; c < sizes.size(); ++c) {
        const unsigned count = sizes[c];
        contours.first.push_back(offset);
        contours.size.push_back(count);
        for (unsigned k = 0; k < count; ++k) {
            const unsigned v = offset + k;
            contours.contour[v] = static_cast<int>(c);
            contours.next[v] = offset + (k + 1) % count;
            contours.prev[v] = offset + (k + count - 1) % count;
        }
        offset += count;
    }
    contours.lines.reserve(total);
    for (unsigned v = 0; v < total; ++v) {
        contours.lines.emplace_back(pointById[v + 1], pointById[contours.next[v] + 1], INPUT,
                                    v + 1);
    }
    return contours;
}

// Beyond this magnitude a product of two coordinate differences can
// overflow, and neither the orientation test nor the sweep's keys are exact.
const double kLargestCoordinate = std::ldexp(1.0, 500);

bool InRange(double value) {
    return std::fabs(value) <= kLargestCoordinate;
}

bool FindNotFinite(const SContours& contours, CheckResult& result) {
    for (std::size_t c = 0; c < contours.size.size(); ++c) {
        for (unsigned k = 0; k < contours.size[c]; ++k) {
            const unsigned v = contours.first[c] + k;
            if (!InRange(contours.x[v]) || !InRange(contours.y[v])) {
                Report(result, CHECK_NOT_FINITE,
                       Format("vertex %g of contour %g has a coordinate that is not a finite "
                              "number of at most 2^500",
                              k + 1.0, static_cast<double>(c + 1)),
                       static_cast<int>(c));
                return true;
            }
        }
    }
    return false;
}

}  // namespace

CheckCode PolygonImpl::Check(CheckResult& result) const {
    // A refused contour explains what follows from it (a missing outer contour).
    if (m_bRefused) {
        return Report(result, CHECK_DUPLICATED_POINT,
                      "a contour was refused: one of its points repeats a point already held");
    }
    if (m_contourSizes.empty()) {
        return Report(result, CHECK_TOO_FEW_POINTS, "the polygon has no contour");
    }
    std::size_t total = 0;
    for (std::size_t c = 0; c < m_contourSizes.size(); ++c) {
        if (m_contourSizes[c] < 3) {
            return Report(result, CHECK_TOO_FEW_POINTS,
                          Format("contour %g has %g points; a contour needs at least 3",
                                 static_cast<double>(c + 1), m_contourSizes[c]),
                          static_cast<int>(c));
        }
        total += m_contourSizes[c];
    }
    // total ids, the largest total: exactly 1..total.
    if (m_bRenumbered || m_pointCount != total || m_maxPointId != total) {
        return Report(result, CHECK_BAD_NUMBERING,
                      "a reversed contour numbers its vertices from 1, so only the first "
                      "contour may be reversed");
    }
    const SContours contours = Flatten(m_pointById, m_contourSizes, total);
    if (FindNotFinite(contours, result)) {
        return result.code;
    }
    return CSweepCheck(contours).Run(result);
}

}  // namespace kwPolygonTriangulation
