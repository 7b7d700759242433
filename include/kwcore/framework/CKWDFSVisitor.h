// CKWDFSVisitor: records the nodes reachable from a start node, depth first.
//
// The walk is pre-order and recursive: VisitNode marks its node, hands it to
// AddToDFSList, then calls VisitNode for the neighbour across each edge of
// the node, in list order, crossing every edge at most once per session (an
// edge that may not be crossed from a node is still marked). An override of
// VisitNode or AddToDFSList therefore sees the node's neighbours walked
// inside its call to the base, and work after that call comes after them.
// The recursion starts on the caller's stack and goes on, past a modest
// depth, on stacks the walk reserves for itself, so chains of millions of
// nodes are walked from an ordinary thread. When the system refuses such a
// stack, the walk goes no deeper there: the neighbour it could not enter is
// left unvisited, and the walk carries on with the next edge. Start does not
// clear the recorded nodes: call ClearDFSNodeList between runs. The list
// does not own the nodes.
//
//   dfs->Start(root);
//   auto it = dfs->GetDFSNodeIterator();
//   for (CKWGraphNode* n = it.GetNext(1); n; n = it.GetNext(0)) { ... }
#pragma once

#include <cstdint>
#include <limits>

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
    // The walk under way: how deep it may go on the stack it runs on, and
    // the stacks it has reserved.
    struct Walk;

    int BeginWalk(CKWGraphNode* node, std::uint16_t session);
    int WalkFrom(CKWGraphNode* node, std::uint16_t session);
    void VisitOnSideStack(CKWGraphNode* node);
    static void PrefetchEdges(const CKWGraphNode* node);
    static void PrefetchNode(const CKWGraphNode* node);
    static CKWGraphNode* Across(const CKWGraphEdge* edge, const CKWGraphNode* from);

    static constexpr std::uint64_t kNoFreshChanges = std::numeric_limits<std::uint64_t>::max();
    Walk* m_pWalk = nullptr;
    // The node in its first visit, until it is recorded.
    CKWGraphNode* m_pFreshNode = nullptr;
    // The list's change count while it holds only this walk's first visits.
    std::uint64_t m_iFreshChanges = kNoFreshChanges;
};
