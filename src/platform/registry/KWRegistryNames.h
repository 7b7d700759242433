// Key paths and names of the registry store: how a path splits into key
// names, how long names may be, and the folded form names are compared in.
#pragma once

#include "kwcore/platform/Win32Types.h"

#include <string>
#include <string_view>
#include <vector>

namespace kwRegistryNames {

// Longest key name (one path component) and value name, in bytes.
constexpr std::size_t kMaxKeyNameLength = 255;
constexpr std::size_t kMaxValueNameLength = 16383;

// Splits a sub-key path at its backslashes. Runs of backslashes and a
// trailing one separate like a single one; a leading backslash gives
// ERROR_BAD_PATHNAME and a name longer than kMaxKeyNameLength
// ERROR_INVALID_PARAMETER. A null or empty path has no names. The views
// point into path.
LSTATUS SplitKeyPath(const char* path, std::vector<std::string_view>& names);

// ERROR_INVALID_PARAMETER for a value name longer than kMaxValueNameLength;
// null is the default value's name, "".
LSTATUS CheckValueName(const char* name, std::string_view& checked);

// The form names are compared and ordered in: ASCII letters in upper case,
// every other byte as it is.
std::string FoldName(std::string_view name);
// The same, written to out, which has room for name.size() characters.
void FoldNameInto(std::string_view name, char* out);

}  // namespace kwRegistryNames
