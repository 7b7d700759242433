// CWnd: the portable stand-in for the framework's window class.
//
// Carries what the library's interfaces hand around (the native handle, the
// parent) and a repaint hook; it draws nothing and owns no native window. A
// host with a real toolkit sets the handle and connects the hook to it.
//
//   CWnd view;
//   view.SetInvalidateHook([](CWnd* w) { RepaintMyWidget(w->GetSafeHwnd()); });
//   view.Invalidate();   // a tool asking for a repaint
#pragma once

#include <functional>
#include <utility>

#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

class KWCORE_API CWnd {
public:
    using InvalidateHook = std::function<void(CWnd*)>;

    CWnd() = default;
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    HWND GetSafeHwnd() const { return m_hWnd; }
    CWnd* GetParent() const { return m_pParent; }
    // Gives the previous parent.
    CWnd* SetParent(CWnd* parent);
    // Asks for a repaint: runs the hook, if the host set one, and counts the request.
    virtual void Invalidate(BOOL bErase = TRUE);
    void SetInvalidateHook(InvalidateHook hook) { m_invalidateHook = std::move(hook); }
    int GetInvalidateCount() const { return m_iInvalidateCount; }

    // The native handle, public as in the framework.
    HWND m_hWnd = nullptr;

private:
    CWnd* m_pParent = nullptr;
    InvalidateHook m_invalidateHook;
    int m_iInvalidateCount = 0;
};
