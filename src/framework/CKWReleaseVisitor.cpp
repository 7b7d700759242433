#include "kwcore/framework/CKWReleaseVisitor.h"

#include "kwcore/framework/CKWGraphNode.h"

KW_IMPLEMENT_TYPE(CKWReleaseVisitor, "{64DAD3B7-DA58-45BC-BADD-FD31CB388093}",
                  "{797F206F-C5AD-4521-AD2F-64064A981555}")

int CKWReleaseVisitor::Start(CKWGraphNode* node) {
    if (!CKWDFSVisitor::Start(node)) {
        return 0;
    }
    m_DFSNodeList.RemoveAll(true);
    return 1;
}
