#include "Unicode.h"

#include <cwchar>

namespace kwUnicode {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kMaxCodePoint = 0x10FFFF;
constexpr bool kWideIsUtf16 = WCHAR_MAX <= 0xFFFF;

bool IsSurrogate(char32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

// Decodes the code point at text[pos] and moves pos past it. The accepted
// ranges of the second byte exclude overlong forms, surrogates and values
// beyond U+10FFFF; a malformed sequence is consumed up to the first byte
// that cannot continue it.
char32_t DecodeUtf8(std::string_view text, std::size_t& pos) {
    const auto lead = static_cast<unsigned char>(text[pos++]);
    if (lead < 0x80) {
        return lead;
    }
    int trailing = 0;
    char32_t value = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        trailing = 1;
        value = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        trailing = 2;
        value = lead & 0x0Fu;
        low = lead == 0xE0 ? 0xA0 : low;
        high = lead == 0xED ? 0x9F : high;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        trailing = 3;
        value = lead & 0x07u;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    } else {
        return kReplacement;
    }
    for (int i = 0; i < trailing; ++i, low = 0x80, high = 0xBF) {
        if (pos >= text.size()) {
            return kReplacement;
        }
        const auto next = static_cast<unsigned char>(text[pos]);
        if (next < low || next > high) {
            return kReplacement;
        }
        value = (value << 6) | (next & 0x3Fu);
        ++pos;
    }
    return value;
}

template <typename Unit>
char32_t DecodeUtf16(std::basic_string_view<Unit> text, std::size_t& pos) {
    const auto first = static_cast<char32_t>(text[pos++]);
    if (!IsSurrogate(first)) {
        return first;
    }
    if (first >= 0xDC00 || pos >= text.size()) {
        return kReplacement;
    }
    const auto second = static_cast<char32_t>(text[pos]);
    if (second < 0xDC00 || second > 0xDFFF) {
        return kReplacement;
    }
    ++pos;
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void AppendUtf8(std::string& out, char32_t value) {
    if (value > kMaxCodePoint || IsSurrogate(value)) {
        value = kReplacement;
    }
    if (value < 0x80) {
        out += static_cast<char>(value);
    } else if (value < 0x800) {
        out += static_cast<char>(0xC0 | (value >> 6));
        out += static_cast<char>(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        out += static_cast<char>(0xE0 | (value >> 12));
        out += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (value & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (value >> 18));
        out += static_cast<char>(0x80 | ((value >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((value >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (value & 0x3F));
    }
}

void AppendWide(std::wstring& out, char32_t value) {
    if (kWideIsUtf16 && value >= 0x10000) {
        value -= 0x10000;
        out += static_cast<wchar_t>(0xD800 + (value >> 10));
        out += static_cast<wchar_t>(0xDC00 + (value & 0x3FF));
    } else {
        out += static_cast<wchar_t>(value);
    }
}

template <typename Unit>
std::string UtfWideToUtf8(std::basic_string_view<Unit> text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        AppendUtf8(utf8,
                   sizeof(Unit) == 2 ? DecodeUtf16(text, pos) : static_cast<char32_t>(text[pos++]));
    }
    return utf8;
}

}  // namespace

std::wstring Utf8ToWide(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    for (std::size_t pos = 0; pos < utf8.size();) {
        AppendWide(wide, DecodeUtf8(utf8, pos));
    }
    return wide;
}

std::string WideToUtf8(std::wstring_view wide) {
    return UtfWideToUtf8(wide);
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
    return UtfWideToUtf8(utf16);
}

}  // namespace kwUnicode
