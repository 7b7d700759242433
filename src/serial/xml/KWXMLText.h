// Text between the library's UTF-8 strings and the DOM's UTF-16, exact both
// ways (never through the local code page).
#pragma once

#include <string>
#include <xercesc/util/XercesDefs.hpp>

#include "kwcore/platform/CString.h"

namespace kwXMLText {

using DOMString = std::basic_string<XMLCh>;

// False for text that is not UTF-8 or holds characters XML cannot carry.
bool ToDOM(const CString& text, DOMString& xml);
// Null reads as empty; false for text that is not UTF-16.
bool FromDOM(const XMLCh* xml, CString& text);

}  // namespace kwXMLText
