#include "PolygonGenerators.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

const double kPi = 3.14159265358979323846;

// Uniform doubles from a fixed engine and a fixed conversion, so a seed gives
// the same polygon with every standard library.
class CUniform {
public:
    explicit CUniform(std::uint32_t seed) : m_engine(seed) {}
    double Next(double low, double high) {
        const double unit = static_cast<double>(m_engine() >> 11) * (1.0 / 9007199254740992.0);
        return low + (high - low) * unit;
    }

private:
    std::mt19937_64 m_engine;
};

// n points around (cx, cy) at increasing jittered angles with radii in
// [rmin, rmax]: counter-clockwise, or clockwise when `clockwise`.
SBenchContour MakeStar(CUniform& random, std::size_t n, double cx, double cy, double rmin,
                       double rmax, double jitter, bool clockwise) {
    SBenchContour contour(n);
    const double step = 2.0 * kPi / static_cast<double>(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = step * (static_cast<double>(i) + jitter * random.Next(0.0, 1.0));
        const double radius = random.Next(rmin, rmax);
        contour[clockwise ? n - 1 - i : i] = {cx + radius * std::cos(angle),
                                              cy + radius * std::sin(angle)};
    }
    return contour;
}

// The radius of the largest disc around (cx, cy) inside a contour that is
// star-shaped around that point: the nearest distance to any edge.
double InnerRadius(const SBenchContour& contour, double cx, double cy) {
    double nearest = HUGE_VAL;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const SBenchPoint& a = contour[i];
        const SBenchPoint& b = contour[(i + 1) % contour.size()];
        const double dx = b.x - a.x;
        const double dy = b.y - a.y;
        const double length2 = dx * dx + dy * dy;
        double t = length2 > 0.0 ? ((cx - a.x) * dx + (cy - a.y) * dy) / length2 : 0.0;
        t = std::min(1.0, std::max(0.0, t));
        nearest = std::min(nearest, std::hypot(a.x + t * dx - cx, a.y + t * dy - cy));
    }
    return nearest;
}

}  // namespace

std::size_t SBenchPolygon::VertexCount() const {
    std::size_t count = 0;
    for (const SBenchContour& contour : contours) {
        count += contour.size();
    }
    return count;
}

SBenchPolygon MakeStarPolygon(std::size_t n, std::uint32_t seed) {
    CUniform random(seed);
    SBenchPolygon polygon;
    polygon.contours.push_back(
        MakeStar(random, std::max<std::size_t>(n, 3), 0.0, 0.0, 0.2, 1.0, 0.8, false));
    return polygon;
}

SBenchPolygon MakeCombPolygon(std::size_t n, std::uint32_t seed) {
    CUniform random(seed);
    n = std::max<std::size_t>(n, 8);
    const std::size_t teeth = (n - 4) / 4;
    const std::size_t bulge = n - 2 - 4 * teeth;
    const double width = 2.0 * static_cast<double>(teeth) - 1.0;
    SBenchContour contour;
    contour.reserve(n);
    contour.push_back({0.0, 0.0});
    // The base's lower side bulges slightly outwards, keeping the contour simple.
    for (std::size_t j = 1; j <= bulge; ++j) {
        const double x = width * static_cast<double>(j) / static_cast<double>(bulge + 1);
        contour.push_back({x, -0.25 * std::sin(kPi * x / width)});
    }
    contour.push_back({width, 0.0});
    for (std::size_t k = teeth; k-- > 0;) {
        const double left = 2.0 * static_cast<double>(k);
        const double top = 1.0 + random.Next(1.0, 3.0);
        contour.push_back({left + 1.0, 1.0});
        contour.push_back({left + 1.0, top});
        contour.push_back({left, top});
        contour.push_back({left, 1.0});
    }
    SBenchPolygon polygon;
    polygon.contours.push_back(contour);
    return polygon;
}

SBenchPolygon MakePolygonWithHoles(std::size_t n, std::uint32_t seed) {
    CUniform random(seed);
    n = std::max<std::size_t>(n, 12);
    const std::size_t holeVertices = 8;
    std::size_t holes = std::max<std::size_t>(1, n / 16);
    while (holes > 1 && n - holes * holeVertices < 16) {
        --holes;
    }
    SBenchPolygon polygon;
    polygon.contours.push_back(
        MakeStar(random, n - holes * holeVertices, 0.0, 0.0, 0.97, 1.0, 0.3, false));
    // A square grid of cells inside the largest disc the outer contour holds.
    const double half = 0.95 * InnerRadius(polygon.contours[0], 0.0, 0.0) / std::sqrt(2.0);
    std::size_t side = 1;
    while (side * side < holes) {
        ++side;
    }
    const double cell = 2.0 * half / static_cast<double>(side);
    for (std::size_t h = 0; h < holes; ++h) {
        const double cx = -half + cell * (static_cast<double>(h % side) + 0.5);
        const double cy = -half + cell * (static_cast<double>(h / side) + 0.5);
        polygon.contours.push_back(
            MakeStar(random, holeVertices, cx + random.Next(-0.05, 0.05) * cell,
                     cy + random.Next(-0.05, 0.05) * cell, 0.2 * cell, 0.4 * cell, 0.8, true));
    }
    return polygon;
}

SBenchPolygon MakeRandomPolygonWithHoles(std::size_t outerVertices, std::size_t holes,
                                         std::size_t holeVertices, std::uint32_t seed) {
    CUniform random(seed);
    SBenchPolygon polygon;
    polygon.contours.push_back(
        MakeStar(random, std::max<std::size_t>(outerVertices, 4), 0.0, 0.0, 0.5, 1.0, 0.8, false));
    const double inner = InnerRadius(polygon.contours[0], 0.0, 0.0);
    struct SDisc {
        double x, y, r;
    };
    std::vector<SDisc> placed;
    for (std::size_t h = 0; h < holes; ++h) {
        for (int attempt = 0; attempt < 50; ++attempt) {
            const double r = random.Next(0.03, 0.25) * inner;
            const double distance = random.Next(0.0, 0.98 * inner - r);
            const double angle = random.Next(0.0, 2.0 * kPi);
            const SDisc disc = {distance * std::cos(angle), distance * std::sin(angle), r};
            const bool overlaps = std::any_of(placed.begin(), placed.end(), [&](const SDisc& o) {
                return std::hypot(o.x - disc.x, o.y - disc.y) < 1.02 * (o.r + disc.r);
            });
            if (!overlaps) {
                placed.push_back(disc);
                polygon.contours.push_back(MakeStar(random, std::max<std::size_t>(holeVertices, 3),
                                                    disc.x, disc.y, 0.3 * r, r, 0.8, true));
                break;
            }
        }
    }
    return polygon;
}

SBenchPolygon MakeNearDegeneratePolygon(bool hole, std::uint32_t seed) {
    CUniform random(seed);
    const auto grid = [&random](double low, double high) {
        return std::floor(random.Next(low, high + 1));
    };
    std::vector<SBenchPoint> cells;
    const int n = static_cast<int>(grid(4, 14));
    while (static_cast<int>(cells.size()) < n) {
        const SBenchPoint p = {grid(-6, 6), grid(-6, 6)};
        if (p.x != 0 || p.y != 0) {
            cells.push_back(p);
        }
    }
    // Counter-clockwise around the origin, exactly (the cells are small
    // integers): by half-plane, then by turn, nearer first on one ray.
    std::sort(cells.begin(), cells.end(), [](const SBenchPoint& a, const SBenchPoint& b) {
        const bool upperA = a.y > 0 || (a.y == 0 && a.x > 0);
        const bool upperB = b.y > 0 || (b.y == 0 && b.x > 0);
        if (upperA != upperB) {
            return upperA;
        }
        const double turn = a.x * b.y - a.y * b.x;
        return turn != 0 ? turn > 0 : a.x * a.x + a.y * a.y < b.x * b.x + b.y * b.y;
    });
    SBenchPolygon polygon;
    polygon.contours.push_back(cells);
    if (hole) {
        const double cx = random.Next(-2, 2), cy = random.Next(-2, 2);
        SBenchContour triangle;
        for (int k = 0; k < 3; ++k) {
            const double angle = -2 * kPi * k / 3 + random.Next(-0.3, 0.3);
            const double radius = random.Next(1, 3);
            triangle.push_back({std::round(cx + radius * std::cos(angle)),
                                std::round(cy + radius * std::sin(angle))});
        }
        polygon.contours.push_back(triangle);
    }
    const double a = random.Next(0.7, 1.3), b = random.Next(-0.3, 0.3);
    const double c = random.Next(-0.3, 0.3), d = random.Next(0.7, 1.3);
    const double ox = random.Next(-1, 1), oy = random.Next(-1, 1);
    for (SBenchContour& contour : polygon.contours) {
        for (SBenchPoint& p : contour) {
            p = {ox + a * p.x + b * p.y, oy + c * p.x + d * p.y};
        }
    }
    return polygon;
}
