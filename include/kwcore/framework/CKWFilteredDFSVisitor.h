// CKWFilteredDFSVisitor: a depth-first walk that records only nodes of
// chosen types (or types derived from them).
//
// The walk itself goes as far as the unfiltered one; the filter limits what
// is recorded. Without seek types, Start does nothing and gives 0.
//
//   filtered->AddSeekType(CKWGuid(myNodeTypeID));
//   filtered->Start(root);
#pragma once

#include <vector>

#include "kwcore/framework/CKWDFSVisitor.h"

class KWCORE_API CKWFilteredDFSVisitor : public CKWDFSVisitor {
    KW_DECLARE_TYPE(CKWFilteredDFSVisitor, CKWObjectTypeImpl)

public:
    int Start(CKWGraphNode* node) override;
    void AddSeekType(CKWGuid typeID) { m_SeekTypes.push_back(typeID); }
    void ClearSeekTypes() { m_SeekTypes.clear(); }

protected:
    CKWFilteredDFSVisitor() = default;

    // Records the node when it is of a seek type (tested in order).
    void OnFirstVisit(CKWGraphNode* node) override;

private:
    std::vector<CKWGuid> m_SeekTypes;
};
