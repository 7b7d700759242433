#include "kwcore/framework/CKWGraphNodeVisitorImpl.h"

#include "kwcore/framework/CKWGraphNode.h"

KW_IMPLEMENT_ABSTRACT_TYPE(CKWGraphNodeVisitorImpl, "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}",
                           "{3719246B-C3B0-4AE9-9723-6E998C42484A}")

std::uint16_t CKWGraphNodeVisitorImpl::m_iNextSessionID = 0;
bool CKWGraphNodeVisitorImpl::m_bLocked = false;

std::uint16_t CKWGraphNodeVisitorImpl::GetNextSessionID() {
    m_iNextSessionID = static_cast<std::uint16_t>((m_iNextSessionID + 1) % 65535);
    return m_iNextSessionID;
}

int CKWGraphNodeVisitorImpl::Start(CKWGraphNode* node) {
    if (m_bLocked || !node) {
        return 0;
    }
    m_iSessionID = GetNextSessionID();
    // Cleared however the walk ends, also when an override throws.
    struct Lock {
        Lock() { m_bLocked = true; }
        ~Lock() { m_bLocked = false; }
    } lock;
    VisitNode(node);
    return 1;
}

int CKWGraphNodeVisitorImpl::VisitNode(CKWGraphNode* node) {
    if (!node || node->WasVisited(this)) {
        return 0;
    }
    node->SetVisited(this);
    return 1;
}
