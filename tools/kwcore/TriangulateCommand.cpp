// kwcore triangulate [--method NAME] [--query KIND] [--svg FILE] FILE|-: reads
// a polygon with holes as text, checks it, triangulates it and prints the
// triangles as vertex index triples.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "Commands.h"
#include "PolygonText.h"
#include "kwcore/geometry/triangulation/CKWTriangulateEarClipping.h"
#include "kwcore/geometry/triangulation/KWPolygonTriangulation.h"

namespace kwCommands {
namespace {

const char kHelp[] =
    "usage: kwcore triangulate [--method NAME] [--query KIND] [--svg FILE] FILE\n"
    "\n"
    "Reads a polygon from FILE (\"-\" for standard input): one contour per block\n"
    "of \"x y\" lines, a blank line between contours, the first contour the outer\n"
    "boundary (counter-clockwise) and the others holes (clockwise); \"#\" starts a\n"
    "comment. Checks it, triangulates it and prints one triangle per line as three\n"
    "vertex indices, counted from 0 in the order the points are read, each\n"
    "triangle counter-clockwise.\n"
    "\n"
    "Options:\n"
    "  --method NAME  the triangulation (default monotone):\n"
    "%s"
    "  --query KIND   the predicates of methods that offer a choice; earclip takes\n"
    "                 int64, integer, rational, float or filtered (default filtered)\n"
    "  --svg FILE     also draw the polygon and its triangles as an SVG picture\n"
    "\n"
    "Exit status: 0 done, 1 the polygon is not valid or a file cannot be read or\n"
    "written, 2 bad arguments.\n";

typedef std::vector<std::array<std::size_t, 3> > Triangles;

struct SOptions {
    std::string method = "monotone";
    std::string query;  // empty: the method's default
    std::string svg;
    std::string input;
};

// A triangulation the command offers: fills `triangles` from a polygon, or
// says in `error` why it cannot (exit status 1), or returns 2 for options it
// does not take.
struct SMethod {
    const char* name;
    const char* summary;
    int (*run)(const SPolygonText& polygon, const SOptions& options, Triangles& triangles,
               std::string& error);
};

// The point that repeats, for a clearer message than a refused contour.
std::string RepeatedPoint(const SPolygonText& polygon) {
    std::vector<std::tuple<double, double, std::size_t> > points;
    for (std::size_t c = 0; c < polygon.contours.size(); ++c) {
        for (std::size_t i = 0; i + 1 < polygon.contours[c].size(); i += 2) {
            points.emplace_back(polygon.contours[c][i], polygon.contours[c][i + 1], c);
        }
    }
    std::sort(points.begin(), points.end());
    for (std::size_t k = 1; k < points.size(); ++k) {
        if (std::get<0>(points[k]) == std::get<0>(points[k - 1]) &&
            std::get<1>(points[k]) == std::get<1>(points[k - 1])) {
            char text[160];
            std::snprintf(text, sizeof text,
                          "the point (%g, %g) occurs twice (contours %zu and %zu)",
                          std::get<0>(points[k]), std::get<1>(points[k]),
                          std::get<2>(points[k - 1]) + 1, std::get<2>(points[k]) + 1);
            return text;
        }
    }
    return "a point occurs twice";
}

// Builds the polygon and checks it as the monotone sweep needs it; 0, or 1
// with `error` set.
int BuildCheckedPolygon(const SPolygonText& text, kwPolygonTriangulation::Polygon& polygon,
                        std::string& error) {
    for (const std::vector<double>& contour : text.contours) {
        if (!polygon.AddContour(contour.data(), contour.size() / 2, false, false)) {
            error = RepeatedPoint(text);
            return 1;
        }
    }
    polygon.Finish();
    kwPolygonTriangulation::CheckResult check;
    if (polygon.Check(&check) != kwPolygonTriangulation::CHECK_OK) {
        error = check.message;
        return 1;
    }
    return 0;
}

int RunMonotone(const SPolygonText& text, const SOptions& options, Triangles& triangles,
                std::string& error) {
    if (!options.query.empty()) {
        std::fprintf(stderr, "kwcore triangulate: --query does not apply to --method monotone\n");
        return 2;
    }
    kwPolygonTriangulation::Polygon polygon;
    if (BuildCheckedPolygon(text, polygon, error) != 0) {
        return 1;
    }
    // The quiet phases leave standard output to the triangles. The check is
    // exact, the sweep's keys are rounded: a vertex off an edge by less than
    // that rounding passes the check and can still end the process here.
    polygon.partition2Monotone();
    polygon.searchMonotones();
    polygon.triangulateMonotones();
    for (const kwPolygonTriangulation::Triangle& t : polygon.triangles()) {
        triangles.push_back({{t[0] - 1u, t[1] - 1u, t[2] - 1u}});
    }
    return 0;
}

// The uncertainty band of the filtered query, relative to the lengths of the
// two vectors of each sign test: far above double rounding.
const double kEarClipUncertainty = 1e-12;

int RunEarClip(const SPolygonText& text, const SOptions& options, Triangles& triangles,
               std::string& error) {
    static const char* const kQueries[] = {"int64", "integer", "rational", "float", "filtered"};
    const std::string query = options.query.empty() ? "filtered" : options.query;
    int type = 0;
    while (type < 5 && query != kQueries[type]) {
        ++type;
    }
    if (type == 5) {
        std::fprintf(stderr,
                     "kwcore triangulate: unknown query '%s' (int64, integer, rational, float, "
                     "filtered)\n",
                     query.c_str());
        return 2;
    }
    if (text.contours.size() != 1) {
        std::fprintf(stderr,
                     "kwcore triangulate: --method earclip takes a polygon without holes, this one "
                     "has %zu; use --method monotone\n",
                     text.contours.size() - 1);
        return 1;
    }
    kwPolygonTriangulation::Polygon polygon;
    if (BuildCheckedPolygon(text, polygon, error) != 0) {
        return 1;
    }
    const int n = static_cast<int>(text.contours[0].size() / 2);
    std::unique_ptr<CKWVector2T<double, float>[]> points(new CKWVector2T<double, float>[n]);
    for (int i = 0; i < n; ++i) {
        text.Vertex(static_cast<std::size_t>(i), points[i].X(), points[i].Y());
    }
    int* indices = nullptr;
    CKWTriangulateEarClipping<double, float> clip(
        n, points.get(), static_cast<kwRationalArithmetic::Query::Type>(type), kEarClipUncertainty,
        indices);
    if (indices == nullptr) {
        // The polygon passed the check: only the exact queries' span refuses it.
        error = "the coordinates span more binary places than the exact queries hold";
        return 1;
    }
    for (int t = 0; t < n - 2; ++t) {
        triangles.push_back({{static_cast<std::size_t>(indices[3 * t]),
                              static_cast<std::size_t>(indices[3 * t + 1]),
                              static_cast<std::size_t>(indices[3 * t + 2])}});
    }
    delete[] indices;
    return 0;
}

const SMethod kMethods[] = {
    {"monotone", "sweep into monotone pieces, then triangulate each (holes allowed)", RunMonotone},
    {"earclip", "clip ears with exact or filtered predicates (no holes)", RunEarClip},
};

std::string MethodList() {
    std::string list;
    for (const SMethod& method : kMethods) {
        list += std::string("                   ") + method.name + "  " + method.summary + "\n";
    }
    return list;
}

// Returns 0, or 2 after a message.
int ParseOptions(const Arguments& args, SOptions& options) {
    bool haveInput = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        std::string* value = arg == "--method"  ? &options.method
                             : arg == "--query" ? &options.query
                             : arg == "--svg"   ? &options.svg
                                                : nullptr;
        if (value != nullptr) {
            if (i + 1 == args.size()) {
                std::fprintf(stderr, "kwcore triangulate: %s needs a value\n", arg.c_str());
                return 2;
            }
            *value = args[++i];
        } else if (arg.size() > 1 && arg[0] == '-') {
            std::fprintf(stderr, "kwcore triangulate: unknown option '%s'\n", arg.c_str());
            return 2;
        } else if (haveInput) {
            std::fprintf(stderr, "kwcore triangulate: expected one FILE\n");
            return 2;
        } else {
            options.input = arg;
            haveInput = true;
        }
    }
    if (!haveInput) {
        std::fprintf(stderr, "kwcore triangulate: expected one FILE (\"-\" for standard input)\n");
        return 2;
    }
    return 0;
}

}  // namespace

int RunTriangulateCommand(const Arguments& args) {
    if (WantsHelp(args)) {
        std::printf(kHelp, MethodList().c_str());
        return 0;
    }
    SOptions options;
    if (ParseOptions(args, options) != 0) {
        return 2;
    }
    const SMethod* method = nullptr;
    for (const SMethod& candidate : kMethods) {
        if (options.method == candidate.name) {
            method = &candidate;
        }
    }
    if (method == nullptr) {
        std::fprintf(stderr, "kwcore triangulate: unknown method '%s'\n", options.method.c_str());
        return 2;
    }

    const bool fromStdin = options.input == "-";
    std::FILE* in = fromStdin ? stdin : std::fopen(options.input.c_str(), "r");
    if (in == nullptr) {
        std::fprintf(stderr, "kwcore triangulate: cannot read '%s': %s\n", options.input.c_str(),
                     std::strerror(errno));
        return 1;
    }
    SPolygonText polygon;
    std::string error;
    const bool read = kwPolygonText::Read(in, polygon, error);
    if (!fromStdin) {
        std::fclose(in);
    }
    if (!read) {
        std::fprintf(stderr, "kwcore triangulate: %s: %s\n", options.input.c_str(), error.c_str());
        return 1;
    }

    Triangles triangles;
    const int status = method->run(polygon, options, triangles, error);
    if (status != 0) {
        if (!error.empty()) {
            std::fprintf(stderr, "kwcore triangulate: %s: not a valid polygon: %s\n",
                         options.input.c_str(), error.c_str());
        }
        return status;
    }
    for (const std::array<std::size_t, 3>& t : triangles) {
        std::printf("%zu %zu %zu\n", t[0], t[1], t[2]);
    }
    const std::size_t contours = polygon.contours.size();
    std::fprintf(stderr, "%zu vertices in %zu contour%s: %zu triangles (%s)\n",
                 polygon.VertexCount(), contours, contours == 1 ? "" : "s", triangles.size(),
                 method->name);
    if (!options.svg.empty()) {
        if (!kwPolygonText::WriteSvg(options.svg, polygon, triangles)) {
            std::fprintf(stderr, "kwcore triangulate: cannot write '%s'\n", options.svg.c_str());
            return 1;
        }
        std::fprintf(stderr, "picture written to %s\n", options.svg.c_str());
    }
    return 0;
}

}  // namespace kwCommands
