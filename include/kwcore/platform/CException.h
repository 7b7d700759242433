// CException: base class of the exceptions the library's MFC-style code throws.
//
// Exceptions are made with new and thrown by pointer; the catcher owns the
// object and ends its life with Delete(), which deletes it only when it is
// auto-deleting (the default; an exception built on the stack passes FALSE).
// Derived classes override the const GetErrorMessage: the non-const form
// forwards to it.
//
//   try { throw new CMyException; }
//   catch (CException* e) { char text[256]; e->GetErrorMessage(text, 256); e->Delete(); }
#pragma once

#include "kwcore/platform/CObject.h"
#include "kwcore/platform/Export.h"
#include "kwcore/platform/Win32Types.h"

class KWCORE_API CException : public CObject {
    DECLARE_DYNAMIC(CException)

public:
    CException() = default;
    explicit CException(BOOL autoDelete) : m_bAutoDelete(autoDelete) {}
    ~CException() override;

    // Ends the exception's life if it is auto-deleting.
    void Delete();

    // Copies the message into buffer (at most maxChars characters including
    // the terminator) and clears *helpContext. The base class has no
    // message: it returns FALSE with an empty buffer.
    virtual BOOL GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext = nullptr) const;
    virtual BOOL GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext = nullptr);

    // Without a user interface the message goes to standard error; the
    // result is 0, the "no button pressed" answer of a message box.
    virtual int ReportError(UINT type = 0, UINT messageId = 0);

protected:
    BOOL m_bAutoDelete = TRUE;
};
