#include "KWLinkAttributeOrder.h"

#include <algorithm>
#include <cstring>

namespace kwLinkAttributeOrder {
namespace {
constexpr std::size_t kGuidLength = 22;
// ` I="` + 22 characters + `"`, and the same for "T".
constexpr std::size_t kAttributeLength = 4 + kGuidLength + 1;

bool IsGuidCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_';
}

bool IsGuidAttribute(const std::string& xml, std::size_t at, char name) {
    const char head[] = {' ', name, '=', '"'};
    if (xml.compare(at, sizeof head, head, sizeof head) != 0) {
        return false;
    }
    const char* value = xml.data() + at + sizeof head;
    return std::all_of(value, value + kGuidLength, IsGuidCharacter) && value[kGuidLength] == '"';
}
}  // namespace

void PutTypeBeforeInstance(std::string& xml) {
    if (xml.size() < 2 * kAttributeLength) {
        return;
    }
    const std::size_t last = xml.size() - 2 * kAttributeLength;
    for (std::size_t at = xml.find(" I=\""); at != std::string::npos && at <= last;
         at = xml.find(" I=\"", at + 1)) {
        if (IsGuidAttribute(xml, at, 'I') && IsGuidAttribute(xml, at + kAttributeLength, 'T')) {
            std::rotate(xml.begin() + at, xml.begin() + at + kAttributeLength,
                        xml.begin() + at + 2 * kAttributeLength);
        }
    }
}

}  // namespace kwLinkAttributeOrder
