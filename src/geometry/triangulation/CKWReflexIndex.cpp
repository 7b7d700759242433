#include "CKWReflexIndex.h"

#include <algorithm>
#include <cmath>

#include "geometry/exact/KWExactLineSign.h"

namespace {

const int kLeafSize = 8;

// Bound on the rounding of a 2x2 determinant of differences of doubles,
// relative to a bound on the sum of its two products (a few units in the
// last place, with a wide margin), plus an absolute floor below which
// products may have lost precision to underflow.
const double kRelativeError = 1e-12;
const double kUnderflowFloor = 1e-280;
// Widening of the oriented boxes relative to the largest coordinate: far
// above the rounding of a projection (a few units in the last place of it).
const double kMarginRelative = 1e-13;
const double kLargestOriented = 1e150;

}  // namespace

CKWReflexIndex::CKWReflexIndex(const double* adX, const double* adY, int iVQuantity)
    : m_adX(adX),
      m_adY(adY),
      m_kPositionOf(static_cast<std::size_t>(iVQuantity), -1),
      m_kLeafOf(static_cast<std::size_t>(iVQuantity), -1),
      m_kLive(static_cast<std::size_t>(iVQuantity), 0) {}

void CKWReflexIndex::Build(const std::vector<int>& kReflex) {
    double x0 = 0, x1 = 0, y0 = 0, y1 = 0;
    const int count = static_cast<int>(m_kLive.size());
    for (int i = 0; i < count; ++i) {
        x0 = i == 0 ? m_adX[i] : std::min(x0, m_adX[i]);
        x1 = i == 0 ? m_adX[i] : std::max(x1, m_adX[i]);
        y0 = i == 0 ? m_adY[i] : std::min(y0, m_adY[i]);
        y1 = i == 0 ? m_adY[i] : std::max(y1, m_adY[i]);
    }
    m_dExtentX = x1 - x0;
    m_dExtentY = y1 - y0;
    m_dScale =
        std::max(std::max(std::fabs(x0), std::fabs(x1)), std::max(std::fabs(y0), std::fabs(y1)));
    m_dMargin = kMarginRelative * m_dScale + kUnderflowFloor;
    // Beyond this, projections could overflow into bounds that prove nothing.
    m_bOriented = m_dScale < kLargestOriented;
    // Polygon order: nodes are runs along the boundary.
    m_kOrder = kReflex;
    m_kPointX.resize(m_kOrder.size());
    m_kPointY.resize(m_kOrder.size());
    m_kPointLive.assign(m_kOrder.size(), 1);
    for (std::size_t k = 0; k < m_kOrder.size(); ++k) {
        const int i = m_kOrder[k];
        m_kPointX[k] = m_adX[i];
        m_kPointY[k] = m_adY[i];
        m_kPositionOf[static_cast<std::size_t>(i)] = static_cast<int>(k);
    }
    m_kNode.clear();
    m_kNode.reserve(2 * (m_kOrder.size() / kLeafSize + 1) + 1);
    if (!m_kOrder.empty()) {
        BuildNode(0, static_cast<int>(m_kOrder.size()), -1);
    }
}

int CKWReflexIndex::BuildNode(int iBegin, int iEnd, int iParent) {
    const int index = static_cast<int>(m_kNode.size());
    m_kNode.push_back(SNode());
    SNode node;
    node.Begin = iBegin;
    node.End = iEnd;
    node.Parent = iParent;
    node.Live = iEnd - iBegin;
    node.Right = -1;
    ChooseAxis(node);
    const int first = m_kOrder[static_cast<std::size_t>(iBegin)];
    node.X0 = node.X1 = m_adX[first];
    node.Y0 = node.Y1 = m_adY[first];
    for (int k = iBegin + 1; k < iEnd; ++k) {
        const int i = m_kOrder[static_cast<std::size_t>(k)];
        node.X0 = std::min(node.X0, m_adX[i]);
        node.X1 = std::max(node.X1, m_adX[i]);
        node.Y0 = std::min(node.Y0, m_adY[i]);
        node.Y1 = std::max(node.Y1, m_adY[i]);
    }
    if (iEnd - iBegin <= kLeafSize) {
        for (int k = iBegin; k < iEnd; ++k) {
            const int i = m_kOrder[static_cast<std::size_t>(k)];
            m_kLeafOf[static_cast<std::size_t>(i)] = index;
            m_kLive[static_cast<std::size_t>(i)] = 1;
        }
        FitLeaf(node);
        m_kNode[static_cast<std::size_t>(index)] = node;
        return index;
    }
    const int middle = iBegin + (iEnd - iBegin) / 2;
    BuildNode(iBegin, middle, index);
    node.Right = BuildNode(middle, iEnd, index);
    m_kNode[static_cast<std::size_t>(index)] = node;
    FitInner(index);
    return index;
}

// The principal axis of the node's vertices (x when undefined).
void CKWReflexIndex::ChooseAxis(SNode& rkNode) const {
    const double count = static_cast<double>(rkNode.End - rkNode.Begin);
    double mx = 0, my = 0;
    for (int k = rkNode.Begin; k < rkNode.End; ++k) {
        mx += m_kPointX[static_cast<std::size_t>(k)];
        my += m_kPointY[static_cast<std::size_t>(k)];
    }
    mx /= count;
    my /= count;
    double sxx = 0, syy = 0, sxy = 0;
    for (int k = rkNode.Begin; k < rkNode.End; ++k) {
        const double dx = m_kPointX[static_cast<std::size_t>(k)] - mx;
        const double dy = m_kPointY[static_cast<std::size_t>(k)] - my;
        sxx += dx * dx;
        syy += dy * dy;
        sxy += dx * dy;
    }
    const double angle = 0.5 * std::atan2(2.0 * sxy, sxx - syy);
    rkNode.UX = std::isfinite(angle) ? std::cos(angle) : 1.0;
    rkNode.UY = std::isfinite(angle) ? std::sin(angle) : 0.0;
}

void CKWReflexIndex::FitLeaf(SNode& rkNode) const {
    if (!m_bOriented) {
        return;
    }
    bool first = true;
    for (int k = rkNode.Begin; k < rkNode.End; ++k) {
        const std::size_t at = static_cast<std::size_t>(k);
        if (!m_kPointLive[at]) {
            continue;
        }
        const double u = m_kPointX[at] * rkNode.UX + m_kPointY[at] * rkNode.UY;
        const double v = m_kPointY[at] * rkNode.UX - m_kPointX[at] * rkNode.UY;
        rkNode.U0 = first ? u : std::min(rkNode.U0, u);
        rkNode.U1 = first ? u : std::max(rkNode.U1, u);
        rkNode.V0 = first ? v : std::min(rkNode.V0, v);
        rkNode.V1 = first ? v : std::max(rkNode.V1, v);
        first = false;
    }
    rkNode.U0 -= m_dMargin;
    rkNode.U1 += m_dMargin;
    rkNode.V0 -= m_dMargin;
    rkNode.V1 += m_dMargin;
}

// Each live child's vertices lie in its axis-aligned box and in its oriented
// box: the ranges of both along this node's axes bound them, and the tighter
// of the two is kept.
void CKWReflexIndex::FitInner(int iNode) {
    if (!m_bOriented) {
        return;
    }
    SNode& node = m_kNode[static_cast<std::size_t>(iNode)];
    const double ux = node.UX, uy = node.UY;
    bool first = true;
    for (const int child : {iNode + 1, node.Right}) {
        const SNode& part = m_kNode[static_cast<std::size_t>(child)];
        if (part.Live == 0) {
            continue;
        }
        // Range of a.x + b.y over a box [x0, x1] x [y0, y1].
        const auto range = [](double a, double b, double x0, double x1, double y0, double y1,
                              double& lo, double& hi) {
            lo = (a > 0 ? a * x0 : a * x1) + (b > 0 ? b * y0 : b * y1);
            hi = (a > 0 ? a * x1 : a * x0) + (b > 0 ? b * y1 : b * y0);
        };
        // This node's axes in the child's oriented frame (s along the child's
        // u, t along its v): p.w = s (u_c.w) + t (v_c.w).
        const double uu = part.UX * ux + part.UY * uy;
        const double vu = part.UX * uy - part.UY * ux;
        const double uv = part.UX * (-uy) + part.UY * ux;
        const double vv = part.UX * ux + part.UY * uy;
        double u0, u1, v0, v1, a0, a1, b0, b1;
        range(uu, vu, part.U0, part.U1, part.V0, part.V1, u0, u1);
        range(uv, vv, part.U0, part.U1, part.V0, part.V1, v0, v1);
        range(ux, uy, part.X0, part.X1, part.Y0, part.Y1, a0, a1);
        range(-uy, ux, part.X0, part.X1, part.Y0, part.Y1, b0, b1);
        u0 = std::max(u0, a0) - m_dMargin;
        u1 = std::min(u1, a1) + m_dMargin;
        v0 = std::max(v0, b0) - m_dMargin;
        v1 = std::min(v1, b1) + m_dMargin;
        node.U0 = first ? u0 : std::min(node.U0, u0);
        node.U1 = first ? u1 : std::max(node.U1, u1);
        node.V0 = first ? v0 : std::min(node.V0, v0);
        node.V1 = first ? v1 : std::max(node.V1, v1);
        first = false;
    }
}

void CKWReflexIndex::Remove(int i) {
    if (i < 0 || static_cast<std::size_t>(i) >= m_kLive.size() ||
        !m_kLive[static_cast<std::size_t>(i)]) {
        return;
    }
    m_kLive[static_cast<std::size_t>(i)] = 0;
    m_kPointLive[static_cast<std::size_t>(m_kPositionOf[static_cast<std::size_t>(i)])] = 0;
    // Shrink the boxes on the way up to what is still live, so that later
    // (typically longer) ear triangles meet fewer nodes.
    int index = m_kLeafOf[static_cast<std::size_t>(i)];
    SNode& leaf = m_kNode[static_cast<std::size_t>(index)];
    --leaf.Live;
    bool first = true;
    for (int k = leaf.Begin; k < leaf.End; ++k) {
        const std::size_t at = static_cast<std::size_t>(k);
        if (m_kPointLive[at]) {
            Extend(leaf, m_kPointX[at], m_kPointY[at], m_kPointX[at], m_kPointY[at], first);
            first = false;
        }
    }
    if (leaf.Live > 0) {
        FitLeaf(leaf);
    }
    for (index = leaf.Parent; index >= 0; index = m_kNode[static_cast<std::size_t>(index)].Parent) {
        SNode& node = m_kNode[static_cast<std::size_t>(index)];
        --node.Live;
        first = true;
        for (const int child : {index + 1, node.Right}) {
            const SNode& part = m_kNode[static_cast<std::size_t>(child)];
            if (part.Live > 0) {
                Extend(node, part.X0, part.Y0, part.X1, part.Y1, first);
                first = false;
            }
        }
        if (node.Live > 0) {
            FitInner(index);
        }
    }
}

void CKWReflexIndex::Extend(SNode& rkNode, double dX0, double dY0, double dX1, double dY1,
                            bool bFirst) {
    if (bFirst) {
        rkNode.X0 = dX0;
        rkNode.Y0 = dY0;
        rkNode.X1 = dX1;
        rkNode.Y1 = dY1;
        return;
    }
    rkNode.X0 = std::min(rkNode.X0, dX0);
    rkNode.Y0 = std::min(rkNode.Y0, dY0);
    rkNode.X1 = std::max(rkNode.X1, dX1);
    rkNode.Y1 = std::max(rkNode.Y1, dY1);
}

void CKWReflexIndex::MakeTriangle(int iV0, int iV1, int iV2, STriangle& rkTri) const {
    const int vertex[3] = {iV0, iV1, iV2};
    rkTri.X0 = rkTri.X1 = m_adX[iV0];
    rkTri.Y0 = rkTri.Y1 = m_adY[iV0];
    for (int k = 0; k < 3; ++k) {
        const int a = vertex[k];
        const int b = vertex[k == 2 ? 0 : k + 1];
        SEdge& edge = rkTri.Edge[k];
        edge.AX = m_adX[a];
        edge.AY = m_adY[a];
        edge.BX = m_adX[b];
        edge.BY = m_adY[b];
        edge.EX = m_adX[b] - m_adX[a];
        edge.EY = m_adY[b] - m_adY[a];
        // Each difference of two doubles is correctly rounded, so the
        // determinant is off by a few ulps of |products|, which the extents
        // bound; infinities and NaN make the bound fail every test.
        edge.Tol =
            kRelativeError * (m_dExtentX * std::fabs(edge.EY) + m_dExtentY * std::fabs(edge.EX)) +
            kUnderflowFloor;
        rkTri.PX[k] = m_adX[a];
        rkTri.PY[k] = m_adY[a];
        rkTri.X0 = std::min(rkTri.X0, m_adX[a]);
        rkTri.X1 = std::max(rkTri.X1, m_adX[a]);
        rkTri.Y0 = std::min(rkTri.Y0, m_adY[a]);
        rkTri.Y1 = std::max(rkTri.Y1, m_adY[a]);
    }
}

bool CKWReflexIndex::BoxOutside(const SNode& rkNode, const STriangle& rkTri) const {
    if (rkNode.X0 > rkTri.X1 || rkNode.X1 < rkTri.X0 || rkNode.Y0 > rkTri.Y1 ||
        rkNode.Y1 < rkTri.Y0) {
        return true;
    }
    if (!m_bOriented) {
        return false;
    }
    // Separated along an axis of the oriented box. (Tests against the
    // triangle's edges cost more than they prune.)
    const double ux = rkNode.UX, uy = rkNode.UY;
    double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
    for (int k = 0; k < 3; ++k) {
        const double u = rkTri.PX[k] * ux + rkTri.PY[k] * uy;
        const double v = rkTri.PY[k] * ux - rkTri.PX[k] * uy;
        u0 = k == 0 ? u : std::min(u0, u);
        u1 = k == 0 ? u : std::max(u1, u);
        v0 = k == 0 ? v : std::min(v0, v);
        v1 = k == 0 ? v : std::max(v1, v);
    }
    if (u0 > rkNode.U1 + m_dMargin || u1 < rkNode.U0 - m_dMargin || v0 > rkNode.V1 + m_dMargin ||
        v1 < rkNode.V0 - m_dMargin) {
        return true;
    }
    return false;
}

bool CKWReflexIndex::PointOutside(double dX, double dY, const STriangle& rkTri) {
    if (dX < rkTri.X0 || dX > rkTri.X1 || dY < rkTri.Y0 || dY > rkTri.Y1) {
        return true;
    }
    for (const SEdge& edge : rkTri.Edge) {
        if (SurelyRight(dX, dY, edge)) {
            return true;
        }
    }
    // Close to an edge's line: exactly on it is not strictly inside either.
    for (const SEdge& edge : rkTri.Edge) {
        int sign = -1;
        if (kwErrorFreeArithmetic::ExactLineSign(dX, dY, edge.AX, edge.AY, edge.BX, edge.BY,
                                                 sign) &&
            sign >= 0) {
            return true;
        }
    }
    return false;
}
