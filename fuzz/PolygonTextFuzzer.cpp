// libFuzzer target over the polygon text that `kwcore triangulate` reads,
// and over what the command does with a polygon that reads: the check, then
// the monotone sweep, or ear clipping for a polygon without holes.
//
// A text that reads gives contours of whole "x y" pairs; written back with
// every digit, it reads as the same polygon. A polygon that passes the check
// must triangulate: the sweep and ear clipping each give n + 2h - 2
// triangles of known vertices that cover the polygon's area. The sweep ends
// the process on a polygon it cannot handle, which the fuzzer reports: the
// check decides with the sweep's own rounding, so none may reach it. Ear
// clipping may refuse only coordinates spanning more binary places than its
// exact queries hold.
#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "PolygonText.h"
#include "kwcore/geometry/triangulation/CKWTriangulateEarClipping.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace {

// Larger polygons add time, not cases.
const std::size_t kMaxVertices = 64;
// Areas are compared where coordinates stay moderate, so sums keep their digits.
const double kModerateCoordinate = 1e6;
// Binary places, from the leading bit of the largest coordinate to the
// lowest bit set in any, beyond which ear clipping may refuse a polygon.
const int kEarClippingSpan = 500;

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "polygon text fuzzer: %s\n", what);
        std::abort();
    }
}

bool ReadText(const std::string& text, SPolygonText& polygon, std::string& error) {
    // fmemopen takes no empty buffer; an empty temporary file stands in.
    std::FILE* in =
        text.empty() ? std::tmpfile() : fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    Require(in != nullptr, "cannot open the input as a file");
    const bool read = kwPolygonText::Read(in, polygon, error);
    std::fclose(in);
    return read;
}

// The text format written with every digit: "x y" lines, a blank line after
// each contour.
std::string WrittenText(const SPolygonText& polygon) {
    std::string text;
    char line[96];
    for (const std::vector<double>& contour : polygon.contours) {
        for (std::size_t i = 0; i + 1 < contour.size(); i += 2) {
            std::snprintf(line, sizeof line, "%.17g %.17g\n", contour[i], contour[i + 1]);
            text += line;
        }
        text += "\n";
    }
    return text;
}

bool SameNumber(double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b)
                  : std::isnan(a) && std::isnan(b) && std::signbit(a) == std::signbit(b);
}

bool SamePolygon(const SPolygonText& a, const SPolygonText& b) {
    if (a.contours.size() != b.contours.size()) {
        return false;
    }
    for (std::size_t c = 0; c < a.contours.size(); ++c) {
        const std::vector<double>& ca = a.contours[c];
        const std::vector<double>& cb = b.contours[c];
        if (ca.size() != cb.size()) {
            return false;
        }
        for (std::size_t i = 0; i < ca.size(); ++i) {
            if (!SameNumber(ca[i], cb[i])) {
                return false;
            }
        }
    }
    return true;
}

void CheckReadBack(const SPolygonText& polygon, const std::string& error) {
    Require(error.empty(), "a polygon read with an error message");
    Require(!polygon.contours.empty(), "a polygon read without contours");
    for (const std::vector<double>& contour : polygon.contours) {
        Require(!contour.empty() && contour.size() % 2 == 0, "a contour of half a point");
    }
    SPolygonText again;
    std::string againError;
    Require(ReadText(WrittenText(polygon), again, againError), "the written polygon did not read");
    Require(SamePolygon(polygon, again), "the written polygon read as another");
}

// ------------------------------------------------------- triangulation

typedef std::vector<std::array<std::size_t, 3> > Triangles;

// Twice a signed area as a sum of cross products, with the sum of their
// magnitudes: the rounding of the sum is a small part of that.
struct SArea {
    double twice = 0.0;
    double magnitude = 0.0;

    void AddCross(double ax, double ay, double bx, double by) {
        twice += ax * by - bx * ay;
        magnitude += std::fabs(ax * by) + std::fabs(bx * ay);
    }
};

// Taken about the first vertex, so the products keep the digits that tiny
// shapes far from the origin have.
SArea ContourArea(const std::vector<double>& xy) {
    SArea area;
    const std::size_t n = xy.size() / 2;
    for (std::size_t i = 1; i + 1 < n; ++i) {
        area.AddCross(xy[2 * i] - xy[0], xy[2 * i + 1] - xy[1], xy[2 * i + 2] - xy[0],
                      xy[2 * i + 3] - xy[1]);
    }
    return area;
}

bool EveryCoordinate(const SPolygonText& polygon, bool (*test)(double)) {
    for (const std::vector<double>& contour : polygon.contours) {
        for (double value : contour) {
            if (!test(value)) {
                return false;
            }
        }
    }
    return true;
}

bool IsModerate(double value) {
    return std::fabs(value) <= kModerateCoordinate;
}

// Whether the coordinates span more binary places than ear clipping holds.
bool SpansTooWide(const SPolygonText& polygon) {
    int leading = INT_MIN, lowest = INT_MAX;
    for (const std::vector<double>& contour : polygon.contours) {
        for (double value : contour) {
            if (value == 0.0) {
                continue;
            }
            int exponent = 0;
            double mantissa = std::frexp(std::fabs(value), &exponent);
            leading = std::max(leading, exponent - 1);
            int bottom = exponent;
            while (mantissa != 0.0) {
                mantissa = mantissa * 2.0 - std::floor(mantissa * 2.0);
                --bottom;
            }
            lowest = std::min(lowest, bottom);
        }
    }
    return leading != INT_MIN && leading - lowest > kEarClippingSpan;
}

// n + 2h - 2 triangles of vertices that exist, covering the outer contour's
// area less the holes'.
void CheckTriangles(const SPolygonText& polygon, const Triangles& triangles, const char* method) {
    const std::size_t n = polygon.VertexCount();
    const std::size_t holes = polygon.contours.size() - 1;
    if (triangles.size() != n + 2 * holes - 2) {
        std::fprintf(stderr, "%s: %zu triangles\n", method, triangles.size());
    }
    Require(triangles.size() == n + 2 * holes - 2, "a triangle count other than n + 2h - 2");
    SArea covered;
    for (const std::array<std::size_t, 3>& t : triangles) {
        double x[3], y[3];
        for (int k = 0; k < 3; ++k) {
            Require(t[k] < n, "a triangle with a vertex that does not exist");
            polygon.Vertex(t[k], x[k], y[k]);
        }
        covered.AddCross(x[1] - x[0], y[1] - y[0], x[2] - x[0], y[2] - y[0]);
    }
    if (!EveryCoordinate(polygon, IsModerate)) {
        return;
    }
    double area = 0.0;
    double magnitude = covered.magnitude;
    for (std::size_t c = 0; c < polygon.contours.size(); ++c) {
        const SArea contour = ContourArea(polygon.contours[c]);
        area += c == 0 ? std::fabs(contour.twice) : -std::fabs(contour.twice);
        magnitude += contour.magnitude;
    }
    const double scale = 1e-12 * magnitude;
    if (!(std::fabs(covered.twice - area) <= scale)) {
        std::fprintf(stderr, "%s: triangles cover %.17g of %.17g (twice)\n", method, covered.twice,
                     area);
    }
    Require(std::fabs(covered.twice - area) <= scale, "the triangles do not cover the polygon");
}

// What the command checks before it triangulates; false for a polygon it refuses.
bool BuildChecked(const SPolygonText& text, kwPolygonTriangulation::Polygon& polygon) {
    for (const std::vector<double>& contour : text.contours) {
        if (!polygon.AddContour(contour.data(), contour.size() / 2, false, false)) {
            return false;
        }
    }
    polygon.Finish();
    kwPolygonTriangulation::CheckResult check;
    return polygon.Check(&check) == kwPolygonTriangulation::CHECK_OK;
}

void TriangulateMonotone(const SPolygonText& text) {
    kwPolygonTriangulation::Polygon polygon;
    if (!BuildChecked(text, polygon)) {
        return;
    }
    polygon.partition2Monotone();
    polygon.searchMonotones();
    polygon.triangulateMonotones();
    Triangles triangles;
    for (const kwPolygonTriangulation::Triangle& t : polygon.triangles()) {
        Require(t[0] >= 1 && t[1] >= 1 && t[2] >= 1, "a vertex id of 0");
        triangles.push_back({{t[0] - 1u, t[1] - 1u, t[2] - 1u}});
    }
    CheckTriangles(text, triangles, "monotone");
}

void ClipEars(const SPolygonText& text) {
    kwPolygonTriangulation::Polygon polygon;
    if (text.contours.size() != 1 || !BuildChecked(text, polygon)) {
        return;
    }
    const int n = static_cast<int>(text.VertexCount());
    std::vector<CKWVector2T<double, float> > points(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        text.Vertex(static_cast<std::size_t>(i), points[i].X(), points[i].Y());
    }
    int* indices = nullptr;
    CKWTriangulateEarClipping<double, float> clip(
        n, points.data(), kwRationalArithmetic::Query::QT_FILTERED, 1e-12, indices);
    if (indices == nullptr) {
        Require(SpansTooWide(text), "ear clipping refused a checked polygon");
        return;
    }
    Triangles triangles;
    for (int t = 0; t < n - 2; ++t) {
        triangles.push_back({{static_cast<std::size_t>(indices[3 * t]),
                              static_cast<std::size_t>(indices[3 * t + 1]),
                              static_cast<std::size_t>(indices[3 * t + 2])}});
    }
    delete[] indices;
    CheckTriangles(text, triangles, "earclip");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    SPolygonText polygon;
    std::string error;
    if (!ReadText(text, polygon, error)) {
        Require(!error.empty(), "a refused text without a message");
        return 0;
    }
    CheckReadBack(polygon, error);
    if (polygon.VertexCount() <= kMaxVertices) {
        TriangulateMonotone(polygon);
        ClipEars(polygon);
    }
    return 0;
}
