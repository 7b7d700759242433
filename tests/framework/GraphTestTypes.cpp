#include "GraphTestTypes.h"

#include <stdexcept>
#include <utility>

#include "KWTestObjects.h"

KW_IMPLEMENT_SERIAL_TYPE(COneWayEdge, "{1B8D4F62-7C3E-4091-8D2F-3E4A5B6C7D81}",
                         "{48F087FA-103C-4BB3-8197-06B52EEA4757}")
KW_BEGIN_FIELDS(COneWayEdge)
KW_END_FIELDS()

KW_IMPLEMENT_SERIAL_TYPE(CCityNode, kCityTypeID, "{4E82A8F0-B483-47FE-BE4A-2C72C1A39F63}")
KW_BEGIN_FIELDS(CCityNode)
KW_END_FIELDS()

KW_IMPLEMENT_TYPE(CPlainVisitor, "{5E1A7C94-2B3D-4E6F-8A9B-0C1D2E3F4A5B}",
                  "{4D788BB9-51E7-44CC-8A34-62698C2C3D43}")

KW_IMPLEMENT_TYPE(CRecordingVisitor, "{2C9E5A73-8D4F-41A2-9E3A-4F5B6C7D8E92}",
                  "{797F206F-C5AD-4521-AD2F-64064A981555}")

int COneWayEdge::OnInitialize() {
    if (!CKWGraphEdge::OnInitialize()) {
        return 0;
    }
    SetDirection(ToSecondary);
    return 1;
}

int CRecordingVisitor::VisitNode(CKWGraphNode* node) {
    m_steps.push_back({EStep::Visit, node});
    const int visited = node == m_pBlocked ? 0 : CKWDFSVisitor::VisitNode(node);
    m_steps.push_back({EStep::VisitDone, node});
    if (node && node == m_pThrowAt) {
        throw std::runtime_error("thrown by a visit");
    }
    return visited;
}

int CRecordingVisitor::AddToDFSList(CKWGraphNode* node) {
    m_steps.push_back({EStep::Record, node});
    if (m_bStartInside) {
        m_nestedStarts.push_back(Start(node));
    }
    if (CKWGraphNode* extra = std::exchange(m_pAlsoRecord, nullptr)) {
        CKWDFSVisitor::AddToDFSList(extra);
    }
    const int recorded = CKWDFSVisitor::AddToDFSList(node);
    m_steps.push_back({EStep::RecordDone, node});
    return recorded;
}

std::vector<CKWGraphNode*> CRecordingVisitor::NodesAt(EStep step) const {
    std::vector<CKWGraphNode*> nodes;
    for (const SStep& seen : m_steps) {
        if (seen.step == step) {
            nodes.push_back(seen.node);
        }
    }
    return nodes;
}

namespace {
IKWObjectType* const kGraphTypes[] = {CKWGraphEdge::GetCKWGraphEdgeType(),
                                      COneWayEdge::GetCOneWayEdgeType(),
                                      CKWGraphNode::GetCKWGraphNodeType(),
                                      CCityNode::GetCCityNodeType(),
                                      CKWDFSVisitor::GetCKWDFSVisitorType(),
                                      CKWFilteredDFSVisitor::GetCKWFilteredDFSVisitorType(),
                                      CKWReleaseVisitor::GetCKWReleaseVisitorType(),
                                      CRecordingVisitor::GetCRecordingVisitorType(),
                                      CPlainVisitor::GetCPlainVisitorType()};
}  // namespace

void ReleaseAllGraphObjects() {
    for (IKWObjectType* type : kGraphTypes) {
        static_cast<CKWObjectTypeImpl*>(type)->ReleaseInstances();
    }
}

int LiveGraphObjects() {
    int live = 0;
    for (IKWObjectType* type : kGraphTypes) {
        live += static_cast<CKWObjectTypeImpl*>(type)->GetInstanceCount();
    }
    return live;
}

// The test program is a host: it collects its types once they exist.
namespace {
const SCollectTypes s_collectGraphTestTypes("{3DAF6B84-9E5A-42B3-AF4B-5A6C7D8E9FA3}");
}  // namespace
