// IKWGraphNodeVisitor: something that walks a graph of CKWGraphNode objects.
//
// Start begins a traversal at a node; VisitNode handles one node (and, for
// the depth-first visitors, everything reachable from it). Each traversal has
// a 16-bit session number; nodes and edges remember the number of the last
// traversal that marked them, so no marks are cleared between traversals.
//
//   CKWDFSVisitor* dfs = ...;
//   static_cast<IKWGraphNodeVisitor*>(dfs)->Start(root);
#pragma once

#include <cstdint>

#include "kwcore/platform/Export.h"

class CKWGraphNode;

class KWCORE_API IKWGraphNodeVisitor {
public:
    // 1 when the traversal ran; 0 for a null node or while another runs.
    virtual int Start(CKWGraphNode* node) = 0;
    // 1 when the node was new to this session.
    virtual int VisitNode(CKWGraphNode* node) = 0;
    virtual std::uint16_t GetSessionID() = 0;

protected:
    ~IKWGraphNodeVisitor() = default;
};
