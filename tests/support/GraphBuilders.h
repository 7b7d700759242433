// Graphs of the library's own nodes and edges, built in a call.
//
//   std::vector<CKWGraphNode*> chain = NewChain(1000);
//   Join(chain.back(), chain.front());  // a ring
#pragma once

#include <vector>

#include "kwcore/framework/CKWGraphEdge.h"
#include "kwcore/framework/CKWGraphNode.h"

CKWGraphNode* NewNode();
// A connected two-way edge (or one of edgeType), or null when it cannot connect.
CKWGraphEdge* Join(CKWGraphNode* primary, CKWGraphNode* secondary,
                   IKWObjectType* edgeType = nullptr);
// length nodes, each joined to the next; empty when a join fails.
std::vector<CKWGraphNode*> NewChain(int length);
