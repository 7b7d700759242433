#include "kwcore/framework/CKWGraphNode.h"

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/IKWGraphNodeVisitor.h"

#include "framework/KWGraphLoading.h"

KW_IMPLEMENT_SERIAL_TYPE(CKWGraphNode, "{4E82A8F0-B483-47FE-BE4A-2C72C1A39F63}",
                         "{23F18565-85A5-4649-AEC0-DF55D8C3CDAB}")
KW_BEGIN_FIELDS(CKWGraphNode)
KW_FIELD(m_EdgeList, "{BC46ABAF-175D-4139-9B08-1B063477ADDE}",
         "{95C92BDC-00F3-4E4E-8BE8-7AAFAA2DC3EB}", KW_FIELD_LOAD_SAVE)
KW_END_FIELDS()

CKWGraphEdge* CKWGraphNode::GetEdge(int i) const {
    if (i < 0 || i >= m_EdgeList.GetCount()) {
        return nullptr;
    }
    for (CKWGraphEdge* edge : m_EdgeList) {
        if (i-- == 0) {
            return edge;
        }
    }
    return nullptr;
}

CKWGraphNode* CKWGraphNode::GetNeighbor(int i) const {
    CKWGraphEdge* edge = GetEdge(i);
    return edge ? edge->GetNeighbor(this) : nullptr;
}

CKWGraphEdge* CKWGraphNode::GetEdgeToNeighbor(const CKWGraphNode* node) const {
    if (!node) {
        return nullptr;
    }
    for (CKWGraphEdge* edge : m_EdgeList) {
        if (edge->GetNeighbor(this) == node) {
            return edge;
        }
    }
    return nullptr;
}

// Each edge takes itself out of this list and its other node's while it is
// released; one that refuses to go is dropped from this list all the same.
void CKWGraphNode::Disconnect() {
    while (m_EdgeList.GetCount() > 0) {
        CKWGraphEdge* edge = *m_EdgeList.begin();
        const int released = edge->Release();
        if (!released || m_EdgeList.Contains(edge)) {
            m_EdgeList.Remove(edge);
        }
    }
}

void CKWGraphNode::SetVisited(IKWGraphNodeVisitor* visitor) {
    if (visitor) {
        m_iVisitedSession = visitor->GetSessionID();
    }
}

int CKWGraphNode::WasVisited(IKWGraphNodeVisitor* visitor) const {
    return visitor && m_iVisitedSession == visitor->GetSessionID() ? 1 : 0;
}

int CKWGraphNode::AddEdge(CKWGraphEdge* edge) {
    return m_EdgeList.Add(edge);
}

int CKWGraphNode::RemoveEdge(CKWGraphEdge* edge) {
    return m_EdgeList.Remove(edge);
}

int CKWGraphNode::OnBeforeRelease() {
    Disconnect();
    return CKWSerialObject::OnBeforeRelease();
}

int CKWGraphNode::OnBeforeLoad(CKWDocument* document, CKWTypeManifest* manifest,
                               IKWFieldStream* stream) {
    m_bLoading = true;
    return CKWSerialObject::OnBeforeLoad(document, manifest, stream);
}

void CKWGraphNode::OnAfterLoad(CKWDocument* document) {
    CKWSerialObject::OnAfterLoad(document);
    m_bLoading = false;
    kwGraphLoading::MatchOnceBothLoaded(
        this, std::vector<CKWGraphEdge*>(m_EdgeList.begin(), m_EdgeList.end()), m_waitingEdges,
        [](CKWGraphEdge* edge) { return edge->m_bLoading ? &edge->m_waitingNodes : nullptr; },
        [this](CKWGraphEdge* edge) { edge->MatchLoaded(this); });
}
