#include "kwcore/framework/CKWFilteredDFSVisitor.h"

#include "kwcore/framework/CKWGraphNode.h"

KW_IMPLEMENT_TYPE(CKWFilteredDFSVisitor, "{BD386A1D-1C52-4A9C-A66F-B563BBCC61B1}",
                  "{797F206F-C5AD-4521-AD2F-64064A981555}")

int CKWFilteredDFSVisitor::Start(CKWGraphNode* node) {
    if (m_SeekTypes.empty()) {
        return 0;
    }
    return CKWDFSVisitor::Start(node);
}

void CKWFilteredDFSVisitor::OnFirstVisit(CKWGraphNode* node) {
    for (const CKWGuid& typeID : m_SeekTypes) {
        if (node->IsTypeOf(typeID)) {
            AddToDFSList(node);
            return;
        }
    }
}
