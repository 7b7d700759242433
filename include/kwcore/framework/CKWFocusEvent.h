// CKWFocusEvent: a view gained or lost the keyboard focus; tools receive it
// in CKWTool::OnFocusChanged.
//
//   CKWFocusEvent* e = CKWFocusEvent::Create();
//   e->Set(true, &viewWindow);
//   router->NotifyObservers(e);
#pragma once

#include "kwcore/framework/CKWObservation.h"
#include "kwcore/platform/CWnd.h"

class KWCORE_API CKWFocusEvent : public CKWObservation {
    KW_DECLARE_TYPE(CKWFocusEvent, CKWObjectTypeImpl)

public:
    // A new event made through the type, auto-release on; null when out of memory.
    static CKWFocusEvent* Create();

    // Copies every field, the observation's IDs and auto-release flag included.
    CKWFocusEvent(const CKWFocusEvent& other) = default;
    CKWFocusEvent& operator=(const CKWFocusEvent& other) = default;
    ~CKWFocusEvent() override = default;

    void Set(bool bFocus, CWnd* window) {
        m_bFocus = bFocus;
        m_pWindow = window;
    }
    // True when the view gained the focus.
    bool GetFocus() const { return m_bFocus; }
    void SetFocus(bool bFocus) { m_bFocus = bFocus; }
    // The window the event is about; not owned.
    CWnd* GetWindow() const { return m_pWindow; }
    void SetWindow(CWnd* window) { m_pWindow = window; }

protected:
    CKWFocusEvent() = default;

private:
    bool m_bFocus = false;
    CWnd* m_pWindow = nullptr;
};
