// CKWGraphNodeVisitorImpl: the common implementation of graph visitors.
//
// Start takes the next session number and runs VisitNode under a
// process-wide lock, so no traversal starts while another is under way (on
// this thread or any other: visitors are meant for one thread at a time).
// VisitNode here only marks the node; the depth-first visitors walk on.
// Session numbers run 1, 2, ..., 65534, 0, 1, ...
//
//   CKWGraphNodeVisitorImpl* v = ...;   // made by its type
//   v->Start(node);                     // node->WasVisited(v) == 1
#pragma once

#include <cstdint>

#include "kwcore/framework/IKWGraphNodeVisitor.h"
#include "kwcore/object/CKWObjectImpl.h"

class KWCORE_API CKWGraphNodeVisitorImpl : public CKWObjectImpl, public IKWGraphNodeVisitor {
    KW_DECLARE_ABSTRACT_TYPE(CKWGraphNodeVisitorImpl, CKWObjectTypeImpl)

public:
    int Start(CKWGraphNode* node) override;
    // Marks a node new to this session and gives 1; 0 otherwise.
    int VisitNode(CKWGraphNode* node) override;
    std::uint16_t GetSessionID() override { return m_iSessionID; }

    // Whether a traversal is under way anywhere in the process.
    static bool IsLocked() { return m_bLocked; }

protected:
    CKWGraphNodeVisitorImpl() = default;

private:
    // One more than the last number issued, modulo 65535.
    static std::uint16_t GetNextSessionID();

    std::uint16_t m_iSessionID = 0;
    static std::uint16_t m_iNextSessionID;
    static bool m_bLocked;
};
