#include "kwcore/framework/CKWGraphEdge.h"

#include "kwcore/framework/CKWGraphNode.h"
#include "kwcore/framework/IKWGraphNodeVisitor.h"

#include "framework/KWGraphLoading.h"

KW_IMPLEMENT_SERIAL_TYPE(CKWGraphEdge, "{48F087FA-103C-4BB3-8197-06B52EEA4757}",
                         "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CKWGraphEdge)
KW_FIELD(m_pPrimaryNode, "{1212F592-7438-407d-8ACB-7A5E5B7AC239}",
         "{A629E578-AB5F-4698-818A-C26C47FF59E6}", KW_FIELD_LOAD_SAVE)
KW_FIELD(m_pSecondaryNode, "{6DAE28D0-BFB9-4421-B142-F5671EF3A55A}",
         "{A629E578-AB5F-4698-818A-C26C47FF59E6}", KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

int CKWGraphEdge::SetNodes(CKWGraphNode* primary, CKWGraphNode* secondary) {
    if (m_iConnected || !ValidateNodes(primary, secondary)) {
        return 0;
    }
    m_pPrimaryNode = primary;
    m_pSecondaryNode = secondary;
    return 1;
}

int CKWGraphEdge::ValidateNodes(CKWGraphNode* primary, CKWGraphNode* secondary) {
    return primary && secondary ? 1 : 0;
}

int CKWGraphEdge::SwapNodes() {
    if (!m_iConnected) {
        return 0;
    }
    m_pPrimaryNode = m_pSecondaryNode;
    return 1;
}

int CKWGraphEdge::Connect() {
    if (!m_pPrimaryNode || !m_pSecondaryNode) {
        return 0;
    }
    if (!m_pPrimaryNode->AddEdge(this)) {
        return 0;
    }
    if (!m_pSecondaryNode->AddEdge(this)) {
        m_pPrimaryNode->RemoveEdge(this);
        return 0;
    }
    m_iConnected = 1;
    return 1;
}

int CKWGraphEdge::Disconnect() {
    if (!m_pPrimaryNode || !m_pSecondaryNode) {
        return 0;
    }
    const int fromPrimary = m_pPrimaryNode->RemoveEdge(this);
    m_pPrimaryNode = nullptr;
    const int fromSecondary = m_pSecondaryNode->RemoveEdge(this);
    m_pSecondaryNode = nullptr;
    m_iConnected = 0;
    return fromPrimary && fromSecondary ? 1 : 0;
}

int CKWGraphEdge::HasNode(const CKWGraphNode* node) const {
    return node && (node == m_pPrimaryNode || node == m_pSecondaryNode) ? 1 : 0;
}

CKWGraphNode* CKWGraphEdge::GetNeighbor(const CKWGraphNode* node) const {
    if (!node) {
        return nullptr;
    }
    if (node == m_pPrimaryNode && (m_iDirection == BothWays || m_iDirection == ToSecondary)) {
        return m_pSecondaryNode;
    }
    if (node == m_pSecondaryNode && (m_iDirection == BothWays || m_iDirection == ToPrimary)) {
        return m_pPrimaryNode;
    }
    return nullptr;
}

void CKWGraphEdge::SetVisited(IKWGraphNodeVisitor* visitor) {
    if (visitor) {
        m_iVisitedSession = visitor->GetSessionID();
    }
}

int CKWGraphEdge::WasVisited(IKWGraphNodeVisitor* visitor) const {
    return visitor && m_iVisitedSession == visitor->GetSessionID() ? 1 : 0;
}

int CKWGraphEdge::OnInitialize() {
    if (!CKWSerialObject::OnInitialize()) {
        return 0;
    }
    m_iConnected = 0;
    m_pPrimaryNode = nullptr;
    m_pSecondaryNode = nullptr;
    m_iDirection = BothWays;
    return 1;
}

// An edge that is not connected can still sit in one node's list after a
// partial load; it leaves that list too, so no list keeps a released edge.
int CKWGraphEdge::OnBeforeRelease() {
    if (m_iConnected) {
        if (!Disconnect()) {
            return 0;
        }
    } else {
        if (m_pPrimaryNode) {
            m_pPrimaryNode->RemoveEdge(this);
        }
        if (m_pSecondaryNode) {
            m_pSecondaryNode->RemoveEdge(this);
        }
    }
    return CKWSerialObject::OnBeforeRelease();
}

int CKWGraphEdge::OnBeforeLoad(CKWDocument* document, CKWTypeManifest* manifest,
                               IKWFieldStream* stream) {
    m_bLoading = true;
    return CKWSerialObject::OnBeforeLoad(document, manifest, stream);
}

void CKWGraphEdge::OnAfterLoad(CKWDocument* document) {
    CKWSerialObject::OnAfterLoad(document);
    m_bLoading = false;
    kwGraphLoading::MatchOnceBothLoaded(
        this, std::vector<CKWGraphNode*>{m_pPrimaryNode, m_pSecondaryNode}, m_waitingNodes,
        [](CKWGraphNode* node) { return node->m_bLoading ? &node->m_waitingEdges : nullptr; },
        [this](CKWGraphNode* node) { MatchLoaded(node); });
}

void CKWGraphEdge::MatchLoaded(CKWGraphNode* node) {
    const bool held = node->m_EdgeList.Contains(this);
    if (held && !HasNode(node)) {
        node->m_EdgeList.Remove(this);
    } else if (!held) {
        if (m_pPrimaryNode == node) {
            m_pPrimaryNode = nullptr;
        }
        if (m_pSecondaryNode == node) {
            m_pSecondaryNode = nullptr;
        }
    }
    m_iConnected = m_pPrimaryNode && m_pSecondaryNode && m_pPrimaryNode != m_pSecondaryNode &&
                           m_pPrimaryNode->m_EdgeList.Contains(this) &&
                           m_pSecondaryNode->m_EdgeList.Contains(this)
                       ? 1
                       : 0;
}
