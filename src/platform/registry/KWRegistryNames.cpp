#include "KWRegistryNames.h"

#include <algorithm>

namespace kwRegistryNames {

LSTATUS SplitKeyPath(const char* path, std::vector<std::string_view>& names) {
    names.clear();
    if (path == nullptr) {
        return ERROR_SUCCESS;
    }
    if (path[0] == '\\') {
        return ERROR_BAD_PATHNAME;
    }
    const std::string_view rest(path);
    // One allocation, not one per doubling: paths are walked at every call.
    names.reserve(std::count(rest.begin(), rest.end(), '\\') + 1);
    std::size_t start = 0;
    while (start < rest.size()) {
        const std::size_t end = std::min(rest.find('\\', start), rest.size());
        if (end - start > kMaxKeyNameLength) {
            names.clear();
            return ERROR_INVALID_PARAMETER;
        }
        if (end > start) {
            names.push_back(rest.substr(start, end - start));
        }
        start = end + 1;
    }
    return ERROR_SUCCESS;
}

LSTATUS CheckValueName(const char* name, std::string_view& checked) {
    checked = name != nullptr ? std::string_view(name) : std::string_view();
    return checked.size() > kMaxValueNameLength ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
}

std::string FoldName(std::string_view name) {
    std::string folded(name.size(), '\0');
    FoldNameInto(name, &folded[0]);
    return folded;
}

void FoldNameInto(std::string_view name, char* out) {
    for (const char ch : name) {
        *out++ = ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
    }
}

}  // namespace kwRegistryNames
