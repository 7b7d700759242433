// Polygons as text for the kwcore tool's triangulate command: one contour
// per block of "x y" lines, blank lines between contours, the first contour
// the outer boundary and the rest holes; "#" starts a comment. Also draws a
// polygon and its triangles as an SVG picture.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <vector>

struct SPolygonText {
    std::vector<std::vector<double> > contours;  // x0, y0, x1, y1, ...

    std::size_t VertexCount() const;
    // The coordinates of vertex `index`, counted from 0 across the contours.
    void Vertex(std::size_t index, double& x, double& y) const;
};

namespace kwPolygonText {

// Reads the text format; false with a message naming the line on bad text.
bool Read(std::FILE* in, SPolygonText& polygon, std::string& error);

// Writes the polygon (holes left empty) and the triangles (vertex indices as
// above) as an SVG picture; false when the file cannot be written.
bool WriteSvg(const std::string& path, const SPolygonText& polygon,
              const std::vector<std::array<std::size_t, 3> >& triangles);

}  // namespace kwPolygonText
