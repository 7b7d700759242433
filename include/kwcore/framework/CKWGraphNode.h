// CKWGraphNode: a node of a graph of serializable objects.
//
// A node holds the edges attached to it, in the order they were attached
// (each once). Edges attach themselves with CKWGraphEdge::Connect; the node
// never adds edges on its own. Releasing a node releases its edges, which
// takes them out of their other nodes too. The edge list is a field, so a
// graph is saved from any of its nodes and loaded back whole.
//
//   CKWGraphNode* a = static_cast<CKWGraphNode*>(
//       CKWGraphNode::GetCKWGraphNodeType()->CreateInstance(CKWGuid()));
//   for (int i = 0; CKWGraphNode* n = a->GetNeighbor(i); ++i) { ... }
#pragma once

#include <cstdint>
#include <vector>

#include "kwcore/object/CKWObjPtrList.h"
#include "kwcore/serial/CKWSerialObject.h"

class CKWGraphEdge;
class IKWGraphNodeVisitor;

class KWCORE_API CKWGraphNode : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CKWGraphNode)

public:
    CKWObjPtrList<CKWGraphEdge>::Iterator GetEdgeIterator() const {
        return m_EdgeList.GetIterator();
    }
    IKWReadOnlyCollection* GetEdgeCollection() { return &m_EdgeList; }
    // The i-th edge (0-based), or null when i is out of range.
    CKWGraphEdge* GetEdge(int i) const;
    // The node across the i-th edge that may be reached from here, or null.
    CKWGraphNode* GetNeighbor(int i) const;
    // The first edge that leads from here to node, or null.
    CKWGraphEdge* GetEdgeToNeighbor(const CKWGraphNode* node) const;
    // Releases every edge, front first; each takes itself out of both nodes.
    void Disconnect();
    void SetVisited(IKWGraphNodeVisitor* visitor);
    int WasVisited(IKWGraphNodeVisitor* visitor) const;

private:
    // Never issued as a session number, so a new node counts as unvisited.
    // Beside the edge list, which walks read with it.
    std::uint16_t m_iVisitedSession = 0xFFFF;

public:
    CKWObjPtrList<CKWGraphEdge> m_EdgeList;

protected:
    CKWGraphNode() = default;

    int OnBeforeRelease() override;
    int OnBeforeLoad(CKWDocument* document, CKWTypeManifest* manifest,
                     IKWFieldStream* stream) override;
    // A loaded node and its edges agree on what they hold (see CKWGraphEdge).
    void OnAfterLoad(CKWDocument* document) override;

private:
    friend class CKWGraphEdge;
    friend class CKWDFSVisitor;
    // 1 when edge was added; 0 for null or an edge already held.
    int AddEdge(CKWGraphEdge* edge);
    // 1 when edge was held and is removed.
    int RemoveEdge(CKWGraphEdge* edge);

    // While loading: edges that finished first and wait to be matched.
    bool m_bLoading = false;
    std::vector<CKWGraphEdge*> m_waitingEdges;
};
