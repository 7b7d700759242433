// CKWReflexIndex: the reflex vertices of an ear-clipping run in a bounding
// volume hierarchy, so that an ear test visits only the vertices that might
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

class CKWReflexIndex {
public:
    // The coordinates of every polygon vertex, by vertex index (kept, not copied).
    CKWReflexIndex(const double* adX, const double* adY, int iVQuantity);

    void Build(const std::vector<int>& kReflex);
    void Remove(int i);

    // True when fConfirm(r) holds for some indexed vertex r that the index
    // cannot exclude from the triangle (iV0, iV1, iV2).
    template <class Confirm>
    bool AnyInside(int iV0, int iV1, int iV2, Confirm fConfirm) const;

private:
    struct SNode {
        double X0, Y0, X1, Y1;  // bounding box of the node's vertices
        int Begin, End;         // range in m_kOrder
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

    int BuildNode(int iBegin, int iEnd, int iParent);
    static void Extend(SNode& rkNode, double dX0, double dY0, double dX1, double dY1, bool bFirst);
    void ChooseAxis(SNode& rkNode) const;
    // The oriented box of a leaf from its live vertices, of an inner node
    // from its live children's boxes.
    void FitLeaf(SNode& rkNode) const;
    void FitInner(int iNode);
    // Strictly right of the directed line a -> b, proven despite rounding.
    void MakeTriangle(int iV0, int iV1, int iV2, STriangle& rkTri) const;
    static bool SurelyRight(double dX, double dY, const SEdge& rkEdge) {
        return (dX - rkEdge.AX) * rkEdge.EY - (dY - rkEdge.AY) * rkEdge.EX > rkEdge.Tol;
    }
    bool BoxOutside(const SNode& rkNode, const STriangle& rkTri) const;
    bool Reaches(int iNode, const STriangle& rkTri) const {
        const SNode& node = m_kNode[static_cast<std::size_t>(iNode)];
        return node.Live > 0 && !BoxOutside(node, rkTri);
    }
    static bool PointOutside(double dX, double dY, const STriangle& rkTri);

    const double* m_adX;
    const double* m_adY;
    double m_dExtentX = 0, m_dExtentY = 0;  // extent of all vertices
    double m_dScale = 0;                    // largest |coordinate|
    double m_dMargin = 0;                   // widening of the oriented boxes
    bool m_bOriented = false;               // whether the oriented boxes are used
    std::vector<int> m_kOrder;              // vertex indices, leaf by leaf
    // Coordinates and liveness in the same order, for the leaf scans.
    std::vector<double> m_kPointX, m_kPointY;
    std::vector<char> m_kPointLive;
    std::vector<int> m_kPositionOf;  // position in m_kOrder by vertex index
    std::vector<SNode> m_kNode;
    std::vector<int> m_kLeafOf;
    std::vector<char> m_kLive;
    mutable std::vector<int> m_kStack;
};

template <class Confirm>
bool CKWReflexIndex::AnyInside(int iV0, int iV1, int iV2, Confirm fConfirm) const {
    if (m_kNode.empty() || m_kNode[0].Live == 0) {
        return false;
    }
    STriangle tri;
    MakeTriangle(iV0, iV1, iV2, tri);
    // Depth first; a child is entered only when its box may meet the triangle.
    m_kStack.clear();
    int current = Reaches(0, tri) ? 0 : -1;
    while (current >= 0) {
        const SNode& node = m_kNode[static_cast<std::size_t>(current)];
        if (node.Right >= 0) {
            const bool left = Reaches(current + 1, tri);
            const bool right = Reaches(node.Right, tri);
            if (left && right) {
                m_kStack.push_back(node.Right);
            }
            if (left || right) {
                current = left ? current + 1 : node.Right;
                continue;
            }
        } else {
            for (int k = node.Begin; k < node.End; ++k) {
                const std::size_t at = static_cast<std::size_t>(k);
                if (m_kPointLive[at] && !PointOutside(m_kPointX[at], m_kPointY[at], tri) &&
                    fConfirm(m_kOrder[at])) {
                    return true;
                }
            }
        }
        if (m_kStack.empty()) {
            break;
        }
        current = m_kStack.back();
        m_kStack.pop_back();
    }
    return false;
}
