// Text between the library's UTF-8 strings and the DOM's UTF-16, exact both
// ways (never through the local code page), and a guard that keeps Xerces'
// exceptions inside the archive.
#pragma once

#include <string>
#include <xercesc/util/XercesDefs.hpp>

#include "kwcore/platform/CString.h"

using KWXMLString = std::basic_string<XMLCh>;

// False for text that is not UTF-8 or holds characters XML cannot carry.
bool KWToXMLText(const CString& text, KWXMLString& xml);
// Null reads as empty; false for text that is not UTF-16.
bool KWFromXMLText(const XMLCh* xml, CString& text);

// The result of work, or fallback when it throws.
template <class Result, class Work>
Result KWXMLGuarded(Result fallback, Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return fallback;
    }
}
