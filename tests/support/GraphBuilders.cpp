#include "GraphBuilders.h"

#include "KWTestObjects.h"

CKWGraphNode* NewNode() {
    return KWTestCreate<CKWGraphNode>(CKWGraphNode::GetCKWGraphNodeType());
}

CKWGraphEdge* Join(CKWGraphNode* primary, CKWGraphNode* secondary, IKWObjectType* edgeType) {
    auto* edge =
        KWTestCreate<CKWGraphEdge>(edgeType ? edgeType : CKWGraphEdge::GetCKWGraphEdgeType());
    if (edge && edge->SetNodes(primary, secondary) && edge->Connect()) {
        return edge;
    }
    if (edge) {
        edge->Release();
    }
    return nullptr;
}

std::vector<CKWGraphNode*> NewChain(int length) {
    std::vector<CKWGraphNode*> chain;
    for (int i = 0; i < length; ++i) {
        chain.push_back(NewNode());
        if (i > 0 && !Join(chain[i - 1], chain[i])) {
            return {};
        }
    }
    return chain;
}
