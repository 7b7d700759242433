// CKWBOOL: the result of an archive operation, a success flag with an
// optional message saying why it failed.
//
//   CKWBOOL saved = archive->Save();
//   if (!saved) report(saved.GetMessageText());
#pragma once

#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class KWCORE_API CKWBOOL {
public:
    CKWBOOL(bool bSuccess = true) : m_bSuccess(bSuccess) {}
    CKWBOOL(bool bSuccess, const CString& message) : m_bSuccess(bSuccess), m_message(message) {}

    operator bool() const { return m_bSuccess; }
    bool Succeeded() const { return m_bSuccess; }
    // Empty unless the operation said why it failed.
    const CString& GetMessageText() const { return m_message; }

private:
    bool m_bSuccess;
    CString m_message;
};
