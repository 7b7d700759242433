#include "kwcore/platform/CWnd.h"

CWnd::~CWnd() = default;

CWnd* CWnd::SetParent(CWnd* parent) {
    CWnd* previous = m_pParent;
    m_pParent = parent;
    return previous;
}

void CWnd::Invalidate(BOOL) {
    ++m_iInvalidateCount;
    if (m_invalidateHook) {
        m_invalidateHook(this);
    }
}
