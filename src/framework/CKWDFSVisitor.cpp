#include "kwcore/framework/CKWDFSVisitor.h"

#include <vector>

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"

KW_IMPLEMENT_TYPE(CKWDFSVisitor, "{797F206F-C5AD-4521-AD2F-64064A981555}",
                  "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}")

// The recursive pre-order walk, with the recursion kept in a stack of
// (node, next edge) frames: a node is marked and recorded when first
// reached, then its edges are taken in list order, each crossed at most once.
int CKWDFSVisitor::VisitNode(CKWGraphNode* node) {
    if (!node || node->WasVisited(this)) {
        return 0;
    }
    struct Frame {
        CKWGraphNode* node;
        CKWObjPtrList<CKWGraphEdge>::Iterator edges;
    };
    std::vector<Frame> stack;
    node->SetVisited(this);
    OnFirstVisit(node);
    stack.push_back({node, node->GetEdgeIterator()});
    while (!stack.empty()) {
        Frame& top = stack.back();
        CKWGraphEdge* edge = top.edges.GetNext(0);
        if (!edge) {
            stack.pop_back();
            continue;
        }
        if (edge->WasVisited(this)) {
            continue;
        }
        edge->SetVisited(this);
        CKWGraphNode* next = edge->GetNeighbor(top.node);
        if (!next || next->WasVisited(this)) {
            continue;
        }
        next->SetVisited(this);
        OnFirstVisit(next);
        stack.push_back({next, next->GetEdgeIterator()});
    }
    return 1;
}

int CKWDFSVisitor::AddToDFSList(CKWGraphNode* node) {
    return m_DFSNodeList.Add(node);
}
