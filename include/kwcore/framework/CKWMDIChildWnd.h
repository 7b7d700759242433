// CKWMDIChildWnd: the portable stand-in for a document's child frame window.
//
// A tool remembers the child window it was last activated in
// (CKWTool::OnSetActivated). Carries the frame's title beside what CWnd
// carries; it shows nothing.
//
//   CKWMDIChildWnd frame;
//   frame.SetTitle("Part 1");
//   tool->OnSetActivated(&frame, 1);
#pragma once

#include "kwcore/platform/CString.h"
#include "kwcore/platform/CWnd.h"

class KWCORE_API CKWMDIChildWnd : public CWnd {
public:
    CKWMDIChildWnd() = default;
    ~CKWMDIChildWnd() override;

    void SetTitle(const CString& title) { m_title = title; }
    CString GetTitle() const { return m_title; }

private:
    CString m_title;
};
