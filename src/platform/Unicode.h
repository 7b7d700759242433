// Conversions between the library's UTF-8 text and wide or UTF-16 text.
//
// Internal to the library. Malformed input never fails: each maximal invalid
// subsequence becomes one U+FFFD, the practice Unicode recommends, so a
// round trip of valid text is exact and bad bytes stay visible.
#pragma once

#include <string>
#include <string_view>

namespace kwUnicode {

std::wstring Utf8ToWide(std::string_view utf8);
std::string WideToUtf8(std::wstring_view wide);
std::string Utf16ToUtf8(std::u16string_view utf16);

}  // namespace kwUnicode
