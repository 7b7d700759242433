// Graph classes derived the way a host derives them, and helpers that build
// graphs, for the graph and visitor tests.
#pragma once

#include <vector>

#include "GraphBuilders.h"
#include "KWTestObjects.h"
#include "kwcore/framework/CKWDFSVisitor.h"
#include "kwcore/framework/CKWFilteredDFSVisitor.h"
#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"
#include "kwcore/framework/CKWReleaseVisitor.h"

inline constexpr const char* kCityTypeID = "{0A7C3E51-6B2D-4F80-9C1E-2D3F4A5B6C70}";

// An edge that may be crossed only from its primary to its secondary node.
class COneWayEdge : public CKWGraphEdge {
    KW_DECLARE_SERIAL_TYPE(COneWayEdge)

protected:
    COneWayEdge() = default;
    int OnInitialize() override;
};

// A node subclass, for filtered walks.
class CCityNode : public CKWGraphNode {
    KW_DECLARE_SERIAL_TYPE(CCityNode)

protected:
    CCityNode() = default;
};

// The plain visitor's own rules, in a class of its own: its base type is abstract.
class CPlainVisitor : public CKWGraphNodeVisitorImpl {
    KW_DECLARE_TYPE(CPlainVisitor, CKWObjectTypeImpl)

protected:
    CPlainVisitor() = default;
};

// A step a recording visitor saw: a call of VisitNode or AddToDFSList
// beginning, or returning.
enum class EStep { Visit, VisitDone, Record, RecordDone };
struct SStep {
    EStep step;
    CKWGraphNode* node;
};

// Records every step of its VisitNode and AddToDFSList calls; can start a
// nested traversal from AddToDFSList, record one more node there, refuse to
// visit a node, and throw once a node's visit is done.
class CRecordingVisitor : public CKWDFSVisitor {
    KW_DECLARE_TYPE(CRecordingVisitor, CKWObjectTypeImpl)

public:
    int VisitNode(CKWGraphNode* node) override;
    // The nodes of the steps of one kind, in order.
    std::vector<CKWGraphNode*> NodesAt(EStep step) const;

    std::vector<SStep> m_steps;
    bool m_bStartInside = false;
    std::vector<int> m_nestedStarts;
    CKWGraphNode* m_pAlsoRecord = nullptr;
    CKWGraphNode* m_pBlocked = nullptr;
    CKWGraphNode* m_pThrowAt = nullptr;

protected:
    CRecordingVisitor() = default;
    int AddToDFSList(CKWGraphNode* node) override;
};

// Releases every graph object and visitor alive.
void ReleaseAllGraphObjects();
int LiveGraphObjects();
