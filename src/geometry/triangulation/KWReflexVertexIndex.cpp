#include "KWReflexVertexIndex.h"

#include <algorithm>
#include <cmath>

#include "geometry/exact/KWExactLineSign.h"

namespace kwEarClipping {
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

CReflexVertexIndex::CReflexVertexIndex(const double* x, const double* y, int count)
    : m_pX(x),
      m_pY(y),
      m_positionOf(static_cast<std::size_t>(count), -1),
      m_leafOf(static_cast<std::size_t>(count), -1),
      m_live(static_cast<std::size_t>(count), 0) {}

void CReflexVertexIndex::Build(const std::vector<int>& reflex) {
    double x0 = 0, x1 = 0, y0 = 0, y1 = 0;
    const int count = static_cast<int>(m_live.size());
    for (int i = 0; i < count; ++i) {
        x0 = i == 0 ? m_pX[i] : std::min(x0, m_pX[i]);
        x1 = i == 0 ? m_pX[i] : std::max(x1, m_pX[i]);
        y0 = i == 0 ? m_pY[i] : std::min(y0, m_pY[i]);
        y1 = i == 0 ? m_pY[i] : std::max(y1, m_pY[i]);
    }
    m_dExtentX = x1 - x0;
    m_dExtentY = y1 - y0;
    m_dScale =
        std::max(std::max(std::fabs(x0), std::fabs(x1)), std::max(std::fabs(y0), std::fabs(y1)));
    m_dMargin = kMarginRelative * m_dScale + kUnderflowFloor;
    // Beyond this, projections could overflow into bounds that prove nothing.
    m_bOriented = m_dScale < kLargestOriented;
    // Polygon order: nodes are runs along the boundary.
    m_order = reflex;
    m_pointX.resize(m_order.size());
    m_pointY.resize(m_order.size());
    m_pointLive.assign(m_order.size(), 1);
    for (std::size_t k = 0; k < m_order.size(); ++k) {
        const int i = m_order[k];
        m_pointX[k] = m_pX[i];
        m_pointY[k] = m_pY[i];
        m_positionOf[static_cast<std::size_t>(i)] = static_cast<int>(k);
    }
    m_nodes.clear();
    m_nodes.reserve(2 * (m_order.size() / kLeafSize + 1) + 1);
    if (!m_order.empty()) {
        BuildNode(0, static_cast<int>(m_order.size()), -1);
    }
}

int CReflexVertexIndex::BuildNode(int begin, int end, int parent) {
    const int index = static_cast<int>(m_nodes.size());
    m_nodes.push_back(SNode());
    SNode node;
    node.Begin = begin;
    node.End = end;
    node.Parent = parent;
    node.Live = end - begin;
    node.Right = -1;
    ChooseAxis(node);
    const int first = m_order[static_cast<std::size_t>(begin)];
    node.X0 = node.X1 = m_pX[first];
    node.Y0 = node.Y1 = m_pY[first];
    for (int k = begin + 1; k < end; ++k) {
        const int i = m_order[static_cast<std::size_t>(k)];
        node.X0 = std::min(node.X0, m_pX[i]);
        node.X1 = std::max(node.X1, m_pX[i]);
        node.Y0 = std::min(node.Y0, m_pY[i]);
        node.Y1 = std::max(node.Y1, m_pY[i]);
    }
    if (end - begin <= kLeafSize) {
        for (int k = begin; k < end; ++k) {
            const int i = m_order[static_cast<std::size_t>(k)];
            m_leafOf[static_cast<std::size_t>(i)] = index;
            m_live[static_cast<std::size_t>(i)] = 1;
        }
        FitLeaf(node);
        m_nodes[static_cast<std::size_t>(index)] = node;
        return index;
    }
    const int middle = begin + (end - begin) / 2;
    BuildNode(begin, middle, index);
    node.Right = BuildNode(middle, end, index);
    m_nodes[static_cast<std::size_t>(index)] = node;
    FitInner(index);
    return index;
}

// The principal axis of the node's vertices (x when undefined).
void CReflexVertexIndex::ChooseAxis(SNode& node) const {
    const double count = static_cast<double>(node.End - node.Begin);
    double mx = 0, my = 0;
    for (int k = node.Begin; k < node.End; ++k) {
        mx += m_pointX[static_cast<std::size_t>(k)];
        my += m_pointY[static_cast<std::size_t>(k)];
    }
    mx /= count;
    my /= count;
    double sxx = 0, syy = 0, sxy = 0;
    for (int k = node.Begin; k < node.End; ++k) {
        const double dx = m_pointX[static_cast<std::size_t>(k)] - mx;
        const double dy = m_pointY[static_cast<std::size_t>(k)] - my;
        sxx += dx * dx;
        syy += dy * dy;
        sxy += dx * dy;
    }
    const double angle = 0.5 * std::atan2(2.0 * sxy, sxx - syy);
    node.UX = std::isfinite(angle) ? std::cos(angle) : 1.0;
    node.UY = std::isfinite(angle) ? std::sin(angle) : 0.0;
}

void CReflexVertexIndex::FitLeaf(SNode& node) const {
    if (!m_bOriented) {
        return;
    }
    bool first = true;
    for (int k = node.Begin; k < node.End; ++k) {
        const std::size_t at = static_cast<std::size_t>(k);
        if (!m_pointLive[at]) {
            continue;
        }
        const double u = m_pointX[at] * node.UX + m_pointY[at] * node.UY;
        const double v = m_pointY[at] * node.UX - m_pointX[at] * node.UY;
        node.U0 = first ? u : std::min(node.U0, u);
        node.U1 = first ? u : std::max(node.U1, u);
        node.V0 = first ? v : std::min(node.V0, v);
        node.V1 = first ? v : std::max(node.V1, v);
        first = false;
    }
    node.U0 -= m_dMargin;
    node.U1 += m_dMargin;
    node.V0 -= m_dMargin;
    node.V1 += m_dMargin;
}

// Each live child's vertices lie in its axis-aligned box and in its oriented
// box: the ranges of both along this node's axes bound them, and the tighter
// of the two is kept.
void CReflexVertexIndex::FitInner(int index) {
    if (!m_bOriented) {
        return;
    }
    SNode& node = m_nodes[static_cast<std::size_t>(index)];
    const double ux = node.UX, uy = node.UY;
    bool first = true;
    for (const int child : {index + 1, node.Right}) {
        const SNode& part = m_nodes[static_cast<std::size_t>(child)];
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

void CReflexVertexIndex::Remove(int i) {
    if (i < 0 || static_cast<std::size_t>(i) >= m_live.size() ||
        !m_live[static_cast<std::size_t>(i)]) {
        return;
    }
    m_live[static_cast<std::size_t>(i)] = 0;
    m_pointLive[static_cast<std::size_t>(m_positionOf[static_cast<std::size_t>(i)])] = 0;
    // Shrink the boxes on the way up to what is still live, so that later
    // (typically longer) ear triangles meet fewer nodes.
    int index = m_leafOf[static_cast<std::size_t>(i)];
    SNode& leaf = m_nodes[static_cast<std::size_t>(index)];
    --leaf.Live;
    bool first = true;
    for (int k = leaf.Begin; k < leaf.End; ++k) {
        const std::size_t at = static_cast<std::size_t>(k);
        if (m_pointLive[at]) {
            Extend(leaf, m_pointX[at], m_pointY[at], m_pointX[at], m_pointY[at], first);
            first = false;
        }
    }
    if (leaf.Live > 0) {
        FitLeaf(leaf);
    }
    for (index = leaf.Parent; index >= 0; index = m_nodes[static_cast<std::size_t>(index)].Parent) {
        SNode& node = m_nodes[static_cast<std::size_t>(index)];
        --node.Live;
        first = true;
        for (const int child : {index + 1, node.Right}) {
            const SNode& part = m_nodes[static_cast<std::size_t>(child)];
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

void CReflexVertexIndex::Extend(SNode& node, double x0, double y0, double x1, double y1,
                                bool first) {
    if (first) {
        node.X0 = x0;
        node.Y0 = y0;
        node.X1 = x1;
        node.Y1 = y1;
        return;
    }
    node.X0 = std::min(node.X0, x0);
    node.Y0 = std::min(node.Y0, y0);
    node.X1 = std::max(node.X1, x1);
    node.Y1 = std::max(node.Y1, y1);
}

void CReflexVertexIndex::MakeTriangle(int v0, int v1, int v2, STriangle& triangle) const {
    const int vertex[3] = {v0, v1, v2};
    triangle.X0 = triangle.X1 = m_pX[v0];
    triangle.Y0 = triangle.Y1 = m_pY[v0];
    for (int k = 0; k < 3; ++k) {
        const int a = vertex[k];
        const int b = vertex[k == 2 ? 0 : k + 1];
        SEdge& edge = triangle.Edge[k];
        edge.AX = m_pX[a];
        edge.AY = m_pY[a];
        edge.BX = m_pX[b];
        edge.BY = m_pY[b];
        edge.EX = m_pX[b] - m_pX[a];
        edge.EY = m_pY[b] - m_pY[a];
        // Each difference of two doubles is correctly rounded, so the
        // determinant is off by a few ulps of |products|, which the extents
        // bound; infinities and NaN make the bound fail every test.
        edge.Tol =
            kRelativeError * (m_dExtentX * std::fabs(edge.EY) + m_dExtentY * std::fabs(edge.EX)) +
            kUnderflowFloor;
        triangle.PX[k] = m_pX[a];
        triangle.PY[k] = m_pY[a];
        triangle.X0 = std::min(triangle.X0, m_pX[a]);
        triangle.X1 = std::max(triangle.X1, m_pX[a]);
        triangle.Y0 = std::min(triangle.Y0, m_pY[a]);
        triangle.Y1 = std::max(triangle.Y1, m_pY[a]);
    }
}

bool CReflexVertexIndex::BoxOutside(const SNode& node, const STriangle& triangle) const {
    if (node.X0 > triangle.X1 || node.X1 < triangle.X0 || node.Y0 > triangle.Y1 ||
        node.Y1 < triangle.Y0) {
        return true;
    }
    if (!m_bOriented) {
        return false;
    }
    // Separated along an axis of the oriented box. (Tests against the
    // triangle's edges cost more than they prune.)
    const double ux = node.UX, uy = node.UY;
    double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
    for (int k = 0; k < 3; ++k) {
        const double u = triangle.PX[k] * ux + triangle.PY[k] * uy;
        const double v = triangle.PY[k] * ux - triangle.PX[k] * uy;
        u0 = k == 0 ? u : std::min(u0, u);
        u1 = k == 0 ? u : std::max(u1, u);
        v0 = k == 0 ? v : std::min(v0, v);
        v1 = k == 0 ? v : std::max(v1, v);
    }
    if (u0 > node.U1 + m_dMargin || u1 < node.U0 - m_dMargin || v0 > node.V1 + m_dMargin ||
        v1 < node.V0 - m_dMargin) {
        return true;
    }
    return false;
}

bool CReflexVertexIndex::PointOutside(double x, double y, const STriangle& triangle) {
    if (x < triangle.X0 || x > triangle.X1 || y < triangle.Y0 || y > triangle.Y1) {
        return true;
    }
    for (const SEdge& edge : triangle.Edge) {
        if (SurelyRight(x, y, edge)) {
            return true;
        }
    }
    // Close to an edge's line: exactly on it is not strictly inside either.
    for (const SEdge& edge : triangle.Edge) {
        int sign = -1;
        if (kwErrorFreeArithmetic::ExactLineSign(x, y, edge.AX, edge.AY, edge.BX, edge.BY, sign) &&
            sign >= 0) {
            return true;
        }
    }
    return false;
}

}  // namespace kwEarClipping
