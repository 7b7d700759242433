#include "kwcore/framework/CKWDFSVisitor.h"

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"

#include "platform/Prefetch.h"

KW_IMPLEMENT_TYPE(CKWDFSVisitor, "{797F206F-C5AD-4521-AD2F-64064A981555}",
                  "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}")

namespace {
// Edges fetched ahead when a node is entered; a walk stack up to this size
// is kept for the next walk.
constexpr int kEdgesAhead = 4;
constexpr std::size_t kKeptFrames = 1 << 16;
constexpr int kCacheLine = 64;
}  // namespace

// Starts fetching what a walk reads of a node: its mark and its edge list.
inline void CKWDFSVisitor::PrefetchNode(const CKWGraphNode* node) {
    const char* line = reinterpret_cast<const char*>(&node->m_iVisitedSession);
    const char* end = reinterpret_cast<const char*>(&node->m_EdgeList + 1);
    for (; line < end; line += kCacheLine) {
        kwMemory::Prefetch(line);
    }
}

inline CKWGraphNode* CKWDFSVisitor::Across(const CKWGraphEdge* edge, const CKWGraphNode* from) {
    const std::int16_t direction = edge->m_iDirection;
    const bool bothWays = direction == CKWGraphEdge::BothWays;
    if (from == edge->m_pPrimaryNode && (bothWays || direction == CKWGraphEdge::ToSecondary)) {
        return edge->m_pSecondaryNode;
    }
    if (from == edge->m_pSecondaryNode && (bothWays || direction == CKWGraphEdge::ToPrimary)) {
        return edge->m_pPrimaryNode;
    }
    return nullptr;
}

// The recursive pre-order walk, with the recursion kept in a stack of
// (node, next edge) frames. A call made while the walk runs (from the walk
// itself, through the visitor interface, or from a subclass) marks and
// records its node and pushes its frame, so the walk goes on from there just
// as the recursive call would; only code after such a call in an override
// runs before the node's neighbours are walked instead of after.
int CKWDFSVisitor::VisitNode(CKWGraphNode* node) {
    const std::uint16_t session = GetSessionID();
    if (!node || node->m_iVisitedSession == session) {
        return 0;
    }
    node->m_iVisitedSession = session;
    if (m_pWalk) {
        Enter(node);
        return 1;
    }
    m_pWalk = &m_walk;
    m_pFreshNode = nullptr;
    m_iFreshChanges =
        m_DFSNodeList.GetCount() == 0 ? m_DFSNodeList.GetChangeCount() : kNoFreshChanges;
    Enter(node);
    Walk(session);
    m_pWalk = nullptr;
    if (m_walk.capacity() > kKeptFrames) {
        std::vector<Frame>().swap(m_walk);
    }
    return 1;
}

// The neighbour across each edge, in list order, each edge crossed at most
// once; marks and neighbours are those of WasVisited, SetVisited and
// GetNeighbor, read in place: this loop is the hot path of every walk.
void CKWDFSVisitor::Walk(std::uint16_t session) {
    std::vector<Frame>& walk = *m_pWalk;
    while (!walk.empty()) {
        Frame& top = walk.back();
        if (top.next == top.end) {
            walk.pop_back();
            continue;
        }
        CKWGraphEdge* edge = *top.next++;
        if (edge->m_iVisitedSession == session) {
            continue;
        }
        edge->m_iVisitedSession = session;
        CKWGraphNode* next = Across(edge, top.node);
        if (!next) {
            continue;
        }
        PrefetchNode(next);
        VisitNode(next);
    }
}

// The frame goes on the walk first, so nodes that a subclass visits from
// OnFirstVisit are walked before this node's neighbours, as in recursion.
void CKWDFSVisitor::Enter(CKWGraphNode* node) {
    const auto first = node->m_EdgeList.begin();
    const auto end = node->m_EdgeList.end();
    m_pWalk->emplace_back(node, first, end);
    int ahead = 0;
    for (auto edge = first; edge != end && ahead < kEdgesAhead; ++edge, ++ahead) {
        kwMemory::Prefetch(*edge);
    }
    m_pFreshNode = node;
    OnFirstVisit(node);
}

// While the recorded nodes are exactly those first visited by this walk,
// the node being visited for the first time cannot be among them, so it is
// appended without a lookup. Any other change to the list ends that.
int CKWDFSVisitor::AddToDFSList(CKWGraphNode* node) {
    if (node && node == m_pFreshNode && m_DFSNodeList.GetChangeCount() == m_iFreshChanges) {
        m_pFreshNode = nullptr;
        m_DFSNodeList.AddNew(node);
        m_iFreshChanges = m_DFSNodeList.GetChangeCount();
        return 1;
    }
    return m_DFSNodeList.Add(node);
}
