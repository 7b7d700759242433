// A host-defined serializable class: a part of a machine, with a name, a
// quantity, a part number, a link to the part it belongs to and links to the
// parts it holds. Its fields are declared once, in CExamplePart.cpp; main.cpp
// saves a few parts to an XML file and loads them back.
//
// Links are plain pointers the part does not own: in this example each part
// is released by the program after the parts it holds (ReleasePartTree).
#pragma once

#include <string>

#include <kwcore/kwcore.h>

class CExamplePart : public CKWSerialObject {
    KW_DECLARE_SERIAL_TYPE(CExamplePart)

public:
    CString m_Name;
    int m_iQuantity = 0;
    CKWGuid m_PartNumber;
    CExamplePart* m_pParent = nullptr;
    CKWObjPtrList<CExamplePart> m_Children;

    // The part and, indented below it, the parts it holds, one a line with
    // every field: two trees with the same text hold the same values and links.
    std::string DescribeTree(int depth = 0) const;

protected:
    CExamplePart() = default;
};

// Releases the part after every part below it; null does nothing.
void ReleasePartTree(CExamplePart* part);
