// The vertex and edge types of the monotone triangulation, and the Polygon
// itself: what a host calls, handed to the implementation's phases.
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

#include "KWPolygonTriangulationImpl.h"

namespace kwPolygonTriangulation {

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

void Stop(const char* first, const char* second, const char* third) {
    const char* parts[] = {first, second, third};
    for (const char* part : parts) {
        if (part != 0) {
            std::fputs(part, stdout);
        }
    }
    std::fflush(stdout);
    std::exit(1);
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

// --- Polygon -----------------------------------------------------------------

Polygon::Polygon() : m_spImpl(new PolygonImpl) {}

Polygon::~Polygon() = default;

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
    return m_spImpl->AddContour(xy, count, reverse, closed);
}

void Polygon::Finish() {
    m_spImpl->Finish();
}

CheckCode Polygon::Check(CheckResult* out) const {
    CheckResult local;
    CheckResult& result = out != 0 ? *out : local;
    result = CheckResult();
    return m_spImpl->Check(result);
}

void Polygon::triangulation() {
    partition2Monotone();
    searchMonotones();
    triangulateMonotones();
    std::printf("Total number of triangles:%u\n", triangleCount());
    std::fflush(stdout);
}

void Polygon::partition2Monotone() {
    m_spImpl->partition2Monotone();
}

void Polygon::searchMonotones() {
    m_spImpl->searchMonotones();
}

void Polygon::triangulateMonotones() {
    m_spImpl->triangulateMonotones();
}

bool Polygon::is_exist(double x, double y) const {
    return m_spImpl->is_exist(x, y);
}

PointbaseMap& Polygon::points() {
    return m_spImpl->points();
}

LineMap& Polygon::edges() {
    return m_spImpl->edges();
}

const LineMap& Polygon::diagonals() const {
    return m_spImpl->diagonals();
}

const Monopolys& Polygon::monotonePieces() const {
    return m_spImpl->monotonePieces();
}

const Triangles& Polygon::triangles() const {
    return m_spImpl->triangles();
}

unsigned Polygon::triangleCount() const {
    return static_cast<unsigned>(m_spImpl->triangles().size());
}

unsigned Polygon::contourCount() const {
    return m_spImpl->contourCount();
}

const std::vector<unsigned>& Polygon::contourSizes() const {
    return m_spImpl->contourSizes();
}

double Polygon::xmin() const {
    return m_spImpl->xmin();
}

double Polygon::xmax() const {
    return m_spImpl->xmax();
}

double Polygon::ymin() const {
    return m_spImpl->ymin();
}

double Polygon::ymax() const {
    return m_spImpl->ymax();
}

void Polygon::setDebugOption(bool on) {
    m_spImpl->setDebugOption(on);
}

std::string Polygon::traceText() const {
    return m_spImpl->traceText();
}

}  // namespace kwPolygonTriangulation
