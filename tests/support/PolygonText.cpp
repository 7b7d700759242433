#include "PolygonText.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

std::size_t SPolygonText::VertexCount() const {
    std::size_t count = 0;
    for (const std::vector<double>& contour : contours) {
        count += contour.size() / 2;
    }
    return count;
}

void SPolygonText::Vertex(std::size_t index, double& x, double& y) const {
    for (const std::vector<double>& contour : contours) {
        if (index < contour.size() / 2) {
            x = contour[2 * index];
            y = contour[2 * index + 1];
            return;
        }
        index -= contour.size() / 2;
    }
    x = y = 0.0;
}

namespace kwPolygonText {
namespace {

bool IsBlank(const char* text) {
    while (*text == ' ' || *text == '\t' || *text == '\r' || *text == '\n') {
        ++text;
    }
    return *text == '\0' || *text == '#';
}

// One number; false when there is none or it runs into other characters.
bool ReadNumber(const char*& text, double& value) {
    char* end = nullptr;
    errno = 0;
    value = std::strtod(text, &end);
    if (end == text || (*end != '\0' && !std::strchr(" \t\r\n#", *end))) {
        return false;
    }
    text = end;
    return true;
}

}  // namespace

bool Read(std::FILE* in, SPolygonText& polygon, std::string& error) {
    polygon.contours.clear();
    std::string line;
    std::size_t number = 0;
    bool inContour = false;
    int c = 0;
    while (c != EOF) {
        line.clear();
        while ((c = std::fgetc(in)) != EOF && c != '\n') {
            line.push_back(static_cast<char>(c));
        }
        if (c == EOF && line.empty()) {
            break;
        }
        ++number;
        // A NUL would hide the rest of the line from the readers below.
        if (line.find('\0') != std::string::npos) {
            error = "line " + std::to_string(number) + ": a NUL character";
            return false;
        }
        if (IsBlank(line.c_str())) {
            // Only an empty line ends a contour; a comment line does not.
            if (line.find('#') == std::string::npos) {
                inContour = false;
            }
            continue;
        }
        const char* text = line.c_str();
        double x = 0.0, y = 0.0;
        if (!ReadNumber(text, x) || !ReadNumber(text, y) || !IsBlank(text)) {
            error = "line " + std::to_string(number) + ": expected two numbers \"x y\", found \"" +
                    line + "\"";
            return false;
        }
        if (!inContour) {
            polygon.contours.emplace_back();
            inContour = true;
        }
        polygon.contours.back().push_back(x);
        polygon.contours.back().push_back(y);
    }
    if (polygon.contours.empty()) {
        error = "no contour: expected lines of \"x y\"";
        return false;
    }
    return true;
}

bool WriteSvg(const std::string& path, const SPolygonText& polygon,
              const std::vector<std::array<std::size_t, 3> >& triangles) {
    double xmin = HUGE_VAL, xmax = -HUGE_VAL, ymin = HUGE_VAL, ymax = -HUGE_VAL;
    for (const std::vector<double>& contour : polygon.contours) {
        for (std::size_t i = 0; i + 1 < contour.size(); i += 2) {
            xmin = std::min(xmin, contour[i]);
            xmax = std::max(xmax, contour[i]);
            ymin = std::min(ymin, contour[i + 1]);
            ymax = std::max(ymax, contour[i + 1]);
        }
    }
    if (!(xmin <= xmax && ymin <= ymax)) {
        xmin = ymin = 0.0;
        xmax = ymax = 1.0;
    }
    const double extent = std::max(std::max(xmax - xmin, ymax - ymin), 1e-300);
    const double margin = 0.03 * extent;
    const double width = xmax - xmin + 2 * margin;
    const double height = ymax - ymin + 2 * margin;
    const double line = 0.0025 * extent;
    const double pixels = 900.0 / std::max(width, height);

    std::FILE* out = std::fopen(path.c_str(), "w");
    if (out == nullptr) {
        return false;
    }
    // y grows upwards in the polygon and downwards in SVG: write -y.
    std::fprintf(
        out,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" "
        "viewBox=\"%.17g %.17g %.17g %.17g\">\n"
        "<rect x=\"%.17g\" y=\"%.17g\" width=\"%.17g\" height=\"%.17g\" fill=\"white\"/>\n",
        width * pixels, height * pixels, xmin - margin, -(ymax + margin), width, height,
        xmin - margin, -(ymax + margin), width, height);
    // The polygon's area, holes cut out by the even-odd rule.
    std::fprintf(out, "<path fill=\"#cfe3f7\" fill-rule=\"evenodd\" stroke=\"none\" d=\"");
    for (const std::vector<double>& contour : polygon.contours) {
        for (std::size_t i = 0; i + 1 < contour.size(); i += 2) {
            std::fprintf(out, "%s%.17g %.17g ", i == 0 ? "M" : "L", contour[i], -contour[i + 1]);
        }
        std::fprintf(out, "Z ");
    }
    std::fprintf(out,
                 "\"/>\n<g fill=\"none\" stroke=\"#5a7896\" stroke-width=\"%.17g\" "
                 "stroke-linejoin=\"round\">\n",
                 line);
    for (const std::array<std::size_t, 3>& t : triangles) {
        double x[3], y[3];
        for (int k = 0; k < 3; ++k) {
            polygon.Vertex(t[k], x[k], y[k]);
        }
        std::fprintf(out, "<path d=\"M%.17g %.17g L%.17g %.17g L%.17g %.17g Z\"/>\n", x[0], -y[0],
                     x[1], -y[1], x[2], -y[2]);
    }
    std::fprintf(out, "</g>\n<g fill=\"none\" stroke-width=\"%.17g\" stroke-linejoin=\"round\">\n",
                 2.5 * line);
    for (std::size_t c = 0; c < polygon.contours.size(); ++c) {
        const std::vector<double>& contour = polygon.contours[c];
        std::fprintf(out, "<path stroke=\"%s\" d=\"", c == 0 ? "#16324f" : "#b3261e");
        for (std::size_t i = 0; i + 1 < contour.size(); i += 2) {
            std::fprintf(out, "%s%.17g %.17g ", i == 0 ? "M" : "L", contour[i], -contour[i + 1]);
        }
        std::fprintf(out, "Z\"/>\n");
    }
    std::fprintf(out, "</g>\n</svg>\n");
    return std::fclose(out) == 0;
}

}  // namespace kwPolygonText
