#include "kwcore/framework/CKWDFSVisitor.h"

#include <cstdint>
#include <vector>

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"

KW_IMPLEMENT_TYPE(CKWDFSVisitor, "{797F206F-C5AD-4521-AD2F-64064A981555}",
                  "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}")

// The recursive pre-order walk, with the recursion kept in a stack of
// (node, next edge) frames: a node is marked and recorded when first
// reached, then its edges are taken in list order, each crossed at most once.
// The marks and neighbours are those of WasVisited, SetVisited and
// GetNeighbor, read in place: this loop is the hot path of every walk.
int CKWDFSVisitor::VisitNode(CKWGraphNode* node) {
    const std::uint16_t session = GetSessionID();
    if (!node || node->m_iVisitedSession == session) {
        return 0;
    }
    using Position = CKWObjPtrList<CKWGraphEdge>::List::const_iterator;
    struct Frame {
        CKWGraphNode* node;
        Position next;
        Position end;
    };
    std::vector<Frame> stack;
    node->m_iVisitedSession = session;
    OnFirstVisit(node);
    stack.push_back({node, node->m_EdgeList.begin(), node->m_EdgeList.end()});
    while (!stack.empty()) {
        Frame& top = stack.back();
        if (top.next == top.end) {
            stack.pop_back();
            continue;
        }
        CKWGraphEdge* edge = *top.next++;
        if (edge->m_iVisitedSession == session) {
            continue;
        }
        edge->m_iVisitedSession = session;
        CKWGraphNode* next = nullptr;
        const std::int16_t direction = edge->m_iDirection;
        if (top.node == edge->m_pPrimaryNode) {
            if (direction == CKWGraphEdge::BothWays || direction == CKWGraphEdge::ToSecondary) {
                next = edge->m_pSecondaryNode;
            }
        } else if (top.node == edge->m_pSecondaryNode) {
            if (direction == CKWGraphEdge::BothWays || direction == CKWGraphEdge::ToPrimary) {
                next = edge->m_pPrimaryNode;
            }
        }
        if (!next || next->m_iVisitedSession == session) {
            continue;
        }
        next->m_iVisitedSession = session;
        OnFirstVisit(next);
        stack.push_back({next, next->m_EdgeList.begin(), next->m_EdgeList.end()});
    }
    return 1;
}

int CKWDFSVisitor::AddToDFSList(CKWGraphNode* node) {
    return m_DFSNodeList.Add(node);
}
