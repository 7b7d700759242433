#include "CKWReflexIndex.h"

#include <algorithm>
#include <cmath>

#include "KWExactLineSign.h"

namespace {

const int kLeafSize = 8;

// Bound on the rounding of a 2x2 determinant of differences of doubles,
// relative to a bound on the sum of its two products (a few units in the
// last place, with a wide margin), plus an absolute floor below which
// products may have lost precision to underflow.
const double kRelativeError = 1e-12;
const double kUnderflowFloor = 1e-280;

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
    m_kOrder = kReflex;
    m_kNode.clear();
    m_kNode.reserve(2 * (m_kOrder.size() / kLeafSize + 1) + 1);
    if (!m_kOrder.empty()) {
        BuildNode(0, static_cast<int>(m_kOrder.size()), -1);
    }
    m_kPointX.resize(m_kOrder.size());
    m_kPointY.resize(m_kOrder.size());
    m_kPointLive.assign(m_kOrder.size(), 1);
    for (std::size_t k = 0; k < m_kOrder.size(); ++k) {
        const int i = m_kOrder[k];
        m_kPointX[k] = m_adX[i];
        m_kPointY[k] = m_adY[i];
        m_kPositionOf[static_cast<std::size_t>(i)] = static_cast<int>(k);
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
        m_kNode[static_cast<std::size_t>(index)] = node;
        return index;
    }
    // Split at the median of the wider side.
    const int middle = iBegin + (iEnd - iBegin) / 2;
    const bool byX = (node.X1 - node.X0) >= (node.Y1 - node.Y0);
    const double* coordinate = byX ? m_adX : m_adY;
    std::nth_element(m_kOrder.begin() + iBegin, m_kOrder.begin() + middle, m_kOrder.begin() + iEnd,
                     [coordinate](int a, int b) { return coordinate[a] < coordinate[b]; });
    BuildNode(iBegin, middle, index);
    node.Right = BuildNode(middle, iEnd, index);
    m_kNode[static_cast<std::size_t>(index)] = node;
    return index;
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
        rkTri.X0 = std::min(rkTri.X0, m_adX[a]);
        rkTri.X1 = std::max(rkTri.X1, m_adX[a]);
        rkTri.Y0 = std::min(rkTri.Y0, m_adY[a]);
        rkTri.Y1 = std::max(rkTri.Y1, m_adY[a]);
    }
}

bool CKWReflexIndex::BoxOutside(const SNode& rkNode, const STriangle& rkTri) {
    if (rkNode.X0 > rkTri.X1 || rkNode.X1 < rkTri.X0 || rkNode.Y0 > rkTri.Y1 ||
        rkNode.Y1 < rkTri.Y0) {
        return true;
    }
    // The box lies right of an edge when its leftmost corner for that edge does.
    for (const SEdge& edge : rkTri.Edge) {
        const double cx = edge.EY > 0 ? rkNode.X0 : rkNode.X1;
        const double cy = edge.EX > 0 ? rkNode.Y1 : rkNode.Y0;
        if (SurelyRight(cx, cy, edge)) {
            return true;
        }
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
        if (kwRationalArithmetic::detail::ExactLineSign(dX, dY, edge.AX, edge.AY, edge.BX, edge.BY,
                                                        sign) &&
            sign >= 0) {
            return true;
        }
    }
    return false;
}
