// CKWGraphEdge: an edge between a primary and a secondary node.
//
// An edge is set up with SetNodes and attached to both nodes with Connect;
// Disconnect (or releasing the edge) takes it out of both. Its direction
// says which way a walk may cross it: 0 both ways, 1 only from the secondary
// to the primary node, 2 only from the primary to the secondary node.
// Subclasses choose the direction; this class leaves it at 0. The two node
// links are fields, so edges are saved and loaded with their graph.
//
//   edge->SetNodes(a, b);
//   if (!edge->Connect()) edge->Release();
#pragma once

#include <cstdint>
#include <vector>

#include "kwcore/serial/CKWSerialObject.h"

class CKWGraphNode;
class IKWGraphNodeVisitor;

class KWCORE_API CKWGraphEdge : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CKWGraphEdge)

public:
    enum Direction : std::int16_t { BothWays = 0, ToPrimary = 1, ToSecondary = 2 };

    // Sets both nodes when ValidateNodes accepts them and the edge is not connected.
    int SetNodes(CKWGraphNode* primary, CKWGraphNode* secondary);
    // Whether the pair may be the edge's nodes: both not null here.
    virtual int ValidateNodes(CKWGraphNode* primary, CKWGraphNode* secondary);
    // When connected, makes the primary node the secondary one (one-sided on
    // purpose: both ends then name the former secondary node).
    int SwapNodes();
    // Adds the edge to the primary's, then the secondary's edge list; undoes
    // the first when the second fails. A self-loop therefore never connects.
    int Connect();
    // Takes the edge out of both nodes and clears them; 1 when it was in both.
    int Disconnect();
    int HasNode(const CKWGraphNode* node) const;
    // The node across from node that a walk may reach, or null.
    CKWGraphNode* GetNeighbor(const CKWGraphNode* node) const;
    CKWGraphNode* GetPrimary() const { return m_pPrimaryNode; }
    CKWGraphNode* GetSecondary() const { return m_pSecondaryNode; }
    void SetVisited(IKWGraphNodeVisitor* visitor);
    int WasVisited(IKWGraphNodeVisitor* visitor) const;
    int IsConnected() const { return m_iConnected; }
    std::int16_t GetDirection() const { return m_iDirection; }

    CKWGraphNode* m_pPrimaryNode = nullptr;
    CKWGraphNode* m_pSecondaryNode = nullptr;

protected:
    CKWGraphEdge() = default;

    void SetDirection(std::int16_t direction) { m_iDirection = direction; }
    int OnInitialize() override;
    // A connected edge disconnects first; the release is refused when that fails.
    int OnBeforeRelease() override;
    int OnBeforeLoad(CKWDocument* document, CKWTypeManifest* manifest,
                     IKWFieldStream* stream) override;
    void OnAfterLoad(CKWDocument* document) override;

private:
    friend class CKWGraphNode;
    friend class CKWDFSVisitor;
    // Once both the edge and node are loaded: an edge names only nodes that
    // hold it and a node holds only edges that name it, whatever the archive
    // said; the edge is connected when both its nodes hold it.
    void MatchLoaded(CKWGraphNode* node);

    int m_iConnected = 0;
    std::uint16_t m_iVisitedSession = 0xFFFF;
    std::int16_t m_iDirection = BothWays;
    // While loading: nodes that finished first and wait to be matched.
    bool m_bLoading = false;
    std::vector<CKWGraphNode*> m_waitingNodes;
};
