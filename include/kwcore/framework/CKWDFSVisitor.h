// CKWDFSVisitor: records the nodes reachable from a start node, depth first.
//
// The walk is pre-order and follows each node's edges in list order,
// crossing every edge at most once per session (an edge that may not be
// crossed from a node is still marked). Each node is handed to AddToDFSList
// on its first visit, in visiting order. The walk keeps its own stack, so
// graphs of millions of nodes are walked on an ordinary thread stack. Start
// does not clear the recorded nodes: call ClearDFSNodeList between runs.
// The list does not own the nodes.
//
//   dfs->Start(root);
//   auto it = dfs->GetDFSNodeIterator();
//   for (CKWGraphNode* n = it.GetNext(1); n; n = it.GetNext(0)) { ... }
#pragma once

#include "kwcore/framework/CKWGraphNodeVisitorImpl.h"
#include "kwcore/object/CKWObjPtrList.h"

class KWCORE_API CKWDFSVisitor : public CKWGraphNodeVisitorImpl {
    KW_DECLARE_TYPE(CKWDFSVisitor, CKWObjectTypeImpl)

public:
    // Walks from node; 0 when node is null or was visited in this session.
    int VisitNode(CKWGraphNode* node) override;

    CKWObjPtrList<CKWGraphNode>::Iterator GetDFSNodeIterator() const {
        return m_DFSNodeList.GetIterator();
    }
    CKWObjPtrList<CKWGraphNode>::ReverseIterator GetDFSNodeReverseIterator() const {
        return m_DFSNodeList.GetReverseIterator();
    }
    IKWReadOnlyCollection* GetDFSNodeCollection() { return &m_DFSNodeList; }
    void ClearDFSNodeList() { m_DFSNodeList.RemoveAll(false); }

protected:
    CKWDFSVisitor() = default;

    // Appends a node not yet recorded; 1 when appended.
    virtual int AddToDFSList(CKWGraphNode* node);
    // Called once per node, on its first visit: records it here.
    virtual void OnFirstVisit(CKWGraphNode* node) { AddToDFSList(node); }

    CKWObjPtrList<CKWGraphNode> m_DFSNodeList;
};
