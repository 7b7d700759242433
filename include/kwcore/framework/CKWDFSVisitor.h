// CKWDFSVisitor: records the nodes reachable from a start node, depth first.
//
// The walk is pre-order and follows each node's edges in list order,
// crossing every edge at most once per session (an edge that may not be
// crossed from a node is still marked). Each node is handed to AddToDFSList
// on its first visit, in visiting order, and every neighbour reached goes
// through VisitNode. The walk keeps its own stack, so graphs of millions of
// nodes are walked on an ordinary thread stack: an override of VisitNode
// sees its node before the walk goes on from it, but returns before the
// node's neighbours are walked. Start does not clear the recorded nodes:
// call ClearDFSNodeList between runs. The list does not own the nodes.
//
//   dfs->Start(root);
//   auto it = dfs->GetDFSNodeIterator();
//   for (CKWGraphNode* n = it.GetNext(1); n; n = it.GetNext(0)) { ... }
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "kwcore/framework/CKWGraphNodeVisitorImpl.h"
#include "kwcore/object/CKWObjPtrList.h"

class CKWGraphEdge;

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

private:
    // A node whose edges the walk is crossing, and the next edge to cross.
    struct Frame;

    void Enter(CKWGraphNode* node);
    void Walk(std::uint16_t session);
    static void PrefetchNode(const CKWGraphNode* node);
    static CKWGraphNode* Across(const CKWGraphEdge* edge, const CKWGraphNode* from);

    static constexpr std::uint64_t kNoFreshChanges = std::numeric_limits<std::uint64_t>::max();
    // The walk under way, or null.
    std::vector<Frame>* m_pWalk = nullptr;
    std::vector<Frame> m_walk;
    // The node in its first visit, until it is recorded.
    CKWGraphNode* m_pFreshNode = nullptr;
    // The list's change count while it holds only this walk's first visits.
    std::uint64_t m_iFreshChanges = kNoFreshChanges;
};

struct CKWDFSVisitor::Frame {
    using Position = CKWObjPtrList<CKWGraphEdge>::List::const_iterator;
    Frame(CKWGraphNode* n, Position first, Position last) : node(n), next(first), end(last) {}
    CKWGraphNode* node;
    Position next;
    Position end;
};
