// kwEarClipping::CReflexVertexIndex: the reflex vertices of an ear-clipping
// run in a bounding volume hierarchy, so that an ear test visits only the vertices that might
// lie in its triangle instead of all of them. Vertices leave the index when
// they stop being reflex; the hierarchy itself is built once.
//
// Nodes hold runs of reflex vertices consecutive along the polygon, not
// cells of the plane: a run is a short piece of boundary, and a candidate ear
// lies beside the boundary it belongs to. On a star-shaped polygon a run is
// a thin wedge, and so is an ear triangle; axis-aligned cells would be
// crossed by a thin triangle O(sqrt n) times. Each node is therefore bounded
// twice: by its axis-aligned box and by a box along the principal axis of its
// vertices.
//
// The index never decides alone: it skips a vertex only when a certified
// floating-point test proves it lies strictly outside the (counter-clockwise)
// triangle, i.e. where an exact query answers "not inside" as well, and hands
// every other candidate to the caller's exact test; so does a vertex proven,
// by exact arithmetic, to lie on or right of an edge's line. Coordinates must
// therefore be exactly those the query works on.
#pragma once

#include <vector>

namespace kwEarClipping {

class CReflexVertexIndex {
public:
    // The coordinates of every polygon vertex, by vertex index (kept, not copied).
    CReflexVertexIndex(const double* x, const double* y, int count);

    void Build(const std::vector<int>& reflex);
    void Remove(int i);

    // True when confirm(r) holds for some indexed vertex r that the index
    // cannot exclude from the triangle (v0, v1, v2).
    template <class Confirm>
    bool AnyInside(int v0, int v1, int v2, Confirm confirm) const;

private:
    struct SNode {
        double X0, Y0, X1, Y1;  // bounding box of the node's vertices
        int Begin, End;         // range in m_order
        int Right;              // second child (the first is the next node); -1 for a leaf
        int Parent;
        int Live;  // vertices of the range still in the index
        // The oriented box: unit axis (UX, UY), with v = (-UY, UX), and the
        // ranges of p.u and p.v over the live vertices, widened by a margin
        // that covers every rounding.
        double UX, UY;
        double U0, U1, V0, V1;
    };
    // One edge a -> b of the query triangle: a point p lies surely right of
    // it when (p - a) x (b - a) exceeds Tol, a bound on the rounding of that
    // determinant for any two points of the index's extent.
    struct SEdge {
        double AX, AY, BX, BY, EX, EY, Tol;
    };
    struct STriangle {
        SEdge Edge[3];
        double X0, Y0, X1, Y1;
        double PX[3], PY[3];  // the corners
    };

    int BuildNode(int begin, int end, int parent);
    static void Extend(SNode& node, double x0, double y0, double x1, double y1, bool first);
    void ChooseAxis(SNode& node) const;
    // The oriented box of a leaf from its live vertices, of an inner node
    // from its live children's boxes.
    void FitLeaf(SNode& node) const;
    void FitInner(int index);
    // Strictly right of the directed line a -> b, proven despite rounding.
    void MakeTriangle(int v0, int v1, int v2, STriangle& triangle) const;
    static bool SurelyRight(double x, double y, const SEdge& edge) {
        return (x - edge.AX) * edge.EY - (y - edge.AY) * edge.EX > edge.Tol;
    }
    bool BoxOutside(const SNode& node, const STriangle& triangle) const;
    bool Reaches(int index, const STriangle& triangle) const {
        const SNode& node = m_nodes[static_cast<std::size_t>(index)];
        return node.Live > 0 && !BoxOutside(node, triangle);
    }
    static bool PointOutside(double x, double y, const STriangle& triangle);

    const double* m_pX;
    const double* m_pY;
    double m_dExtentX = 0, m_dExtentY = 0;  // extent of all vertices
    double m_dScale = 0;                    // largest |coordinate|
    double m_dMargin = 0;                   // widening of the oriented boxes
    bool m_bOriented = false;               // whether the oriented boxes are used
    std::vector<int> m_order;               // vertex indices, leaf by leaf
    // Coordinates and liveness in the same order, for the leaf scans.
    std::vector<double> m_pointX, m_pointY;
    std::vector<char> m_pointLive;
    std::vector<int> m_positionOf;  // position in m_order by vertex index
    std::vector<SNode> m_nodes;
    std::vector<int> m_leafOf;
    std::vector<char> m_live;
    mutable std::vector<int> m_stack;
};

template <class Confirm>
bool CReflexVertexIndex::AnyInside(int v0, int v1, int v2, Confirm confirm) const {
    if (m_nodes.empty() || m_nodes[0].Live == 0) {
        return false;
    }
    STriangle tri;
    MakeTriangle(v0, v1, v2, tri);
    // Depth first; a child is entered only when its box may meet the triangle.
    m_stack.clear();
    int current = Reaches(0, tri) ? 0 : -1;
    while (current >= 0) {
        const SNode& node = m_nodes[static_cast<std::size_t>(current)];
        if (node.Right >= 0) {
            const bool left = Reaches(current + 1, tri);
            const bool right = Reaches(node.Right, tri);
            if (left && right) {
                m_stack.push_back(node.Right);
            }
            if (left || right) {
                current = left ? current + 1 : node.Right;
                continue;
            }
        } else {
            for (int k = node.Begin; k < node.End; ++k) {
                const std::size_t at = static_cast<std::size_t>(k);
                if (m_pointLive[at] && !PointOutside(m_pointX[at], m_pointY[at], tri) &&
                    confirm(m_order[at])) {
                    return true;
                }
            }
        }
        if (m_stack.empty()) {
            break;
        }
        current = m_stack.back();
        m_stack.pop_back();
    }
    return false;
}

}  // namespace kwEarClipping
