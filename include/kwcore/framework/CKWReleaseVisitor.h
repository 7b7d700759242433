// CKWReleaseVisitor: releases every node reachable from a start node.
//
// Start walks depth first, then releases the recorded nodes in visiting
// order, start node first; each node releases its edges. The list ends empty.
//
//   releaser->Start(root);   // root and everything reachable from it are gone
#pragma once

#include "kwcore/framework/CKWDFSVisitor.h"

class KWCORE_API CKWReleaseVisitor : public CKWDFSVisitor {
    KW_DECLARE_TYPE(CKWReleaseVisitor, CKWObjectTypeImpl)

public:
    int Start(CKWGraphNode* node) override;

protected:
    CKWReleaseVisitor() = default;
};
