#include <cerrno>
#include <climits>
#include <cstdlib>

#include "kwcore/serial/CKWFieldT.h"

CString KWValueText<CKWGuid>::ToText(const CKWGuid& value) {
    return value.GetCString();
}

bool KWValueText<CKWGuid>::FromText(const CString& text, CKWGuid& value) {
    CKWGuid parsed;
    parsed.SetCString(text);
    if (!parsed.IsValid() && text != CKWGuid().GetCString()) {
        return false;
    }
    value = parsed;
    return true;
}

CString KWValueText<int>::ToText(int value) {
    CString text;
    text.Format("%d", value);
    return text;
}

bool KWValueText<int>::FromText(const CString& text, int& value) {
    CString trimmed = text;
    trimmed.Trim();
    const char* begin = trimmed;
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(begin, &end, 10);
    if (end == begin || *end != '\0' || errno == ERANGE || parsed < INT_MIN || parsed > INT_MAX) {
        return false;
    }
    value = static_cast<int>(parsed);
    return true;
}
