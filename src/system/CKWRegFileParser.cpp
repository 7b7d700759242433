#include "CKWRegFileParser.h"

#include "kwcore/system/CKWRegistry.h"

#include <cctype>
#include <cstring>
#include <utility>

namespace {

// Registry limits on one key name and on a value name, in bytes.
constexpr std::size_t kMaxKeyNameLength = 255;
constexpr std::size_t kMaxValueNameLength = 16383;
// How much of a bad line a reason quotes.
constexpr std::size_t kQuotedLength = 40;

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string Trim(const std::string& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsBlank(text[begin])) {
        ++begin;
    }
    while (end > begin && IsBlank(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

std::string Quote(const std::string& text) {
    if (text.size() <= kQuotedLength) {
        return "'" + text + "'";
    }
    return "'" + text.substr(0, kQuotedLength) + "...'";
}

bool IsHexDigit(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

int HexValue(char c) {
    return c <= '9' ? c - '0' : (std::tolower(static_cast<unsigned char>(c)) - 'a' + 10);
}

BYTE HexByte(char high, char low) {
    return static_cast<BYTE>(HexValue(high) * 16 + HexValue(low));
}

// Only hex digits, of which there are 1 to maxDigits; the number they write.
bool ParseHexNumber(const std::string& text, std::size_t maxDigits, DWORD& number) {
    if (text.empty() || text.size() > maxDigits) {
        return false;
    }
    number = 0;
    for (char c : text) {
        if (!IsHexDigit(c)) {
            return false;
        }
        number = number * 16 + static_cast<DWORD>(HexValue(c));
    }
    return true;
}

bool StartsWithNoCase(const std::string& text, const char* prefix) {
    const std::size_t length = std::strlen(prefix);
    if (text.size() < length) {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (std::tolower(static_cast<unsigned char>(text[i])) != prefix[i]) {
            return false;
        }
    }
    return true;
}

// A line of a byte list: hex digits, commas and blanks, perhaps ending in a
// continuing backslash.
bool IsListText(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool lastBackslash = c == '\\' && i + 1 == text.size();
        if (!IsHexDigit(c) && c != ',' && !IsBlank(c) && !lastBackslash) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool CKWRegFileParser::Parse(const std::string& text) {
    m_keys.clear();
    m_inKey = false;
    m_list = SPendingList();
    if (text.empty()) {
        return Fail(1, "the file is empty, expected REGEDIT4");
    }
    int line = 0;
    for (std::size_t start = 0; start < text.size();) {
        ++line;
        const std::size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            return Fail(line, "the last line has no line break: the file is truncated");
        }
        std::string lineText = text.substr(start, end - start);
        start = end + 1;
        if (!lineText.empty() && lineText.back() == '\r') {
            lineText.pop_back();
        }
        if (lineText.find('\0') != std::string::npos) {
            return Fail(line, "a NUL character");
        }
        if (line == 1) {
            if (Trim(lineText) != "REGEDIT4") {
                return Fail(line, "the file does not begin with REGEDIT4");
            }
        } else if (!ParseLine(line, lineText)) {
            return false;
        }
    }
    if (m_list.mustContinue) {
        return Fail(line, "the byte list continues past the end of the file");
    }
    return !m_list.open || CloseList();
}

bool CKWRegFileParser::Fail(int line, const std::string& reason) {
    m_errorLine = line;
    m_reason = reason;
    return false;
}

bool CKWRegFileParser::ParseLine(int line, const std::string& rawText) {
    const std::string text = Trim(rawText);
    if (m_list.mustContinue) {
        if (text.empty() || !IsListText(text)) {
            return Fail(line, "the byte list continued from the line before breaks off");
        }
        ContinueList(text);
        return true;
    }
    if (m_list.open) {
        if (!text.empty() && IsListText(text)) {
            ContinueList(text);
            return true;
        }
        if (!CloseList()) {
            return false;
        }
    }
    if (text.empty() || text[0] == ';') {
        return true;
    }
    if (text[0] == '[') {
        return ParseKeyLine(line, text);
    }
    if (text[0] == '"' || text[0] == '@') {
        return ParseValueLine(line, text);
    }
    return Fail(line, "neither a key, a value nor a comment: " + Quote(text));
}

bool CKWRegFileParser::ParseKeyLine(int line, const std::string& text) {
    if (text.size() < 2 || text.back() != ']') {
        return Fail(line, "a key line without its closing ]");
    }
    std::string path = text.substr(1, text.size() - 2);
    const bool remove = !path.empty() && path[0] == '-';
    if (remove) {
        path.erase(0, 1);
    }
    const std::size_t separator = path.find('\\');
    if (separator == std::string::npos) {
        return Fail(line, "no key below the root in " + Quote(path));
    }
    SKWRegFileKey key;
    CString subKey;
    if (!CKWRegistry::SplitKeyPath(path.c_str(), key.root, subKey)) {
        return Fail(line, "unknown root " + Quote(path.substr(0, separator)));
    }
    key.line = line;
    key.remove = remove;
    key.subKey = static_cast<const char*>(subKey);
    for (std::size_t begin = 0;;) {
        const std::size_t end = key.subKey.find('\\', begin);
        const std::size_t length = (end == std::string::npos ? key.subKey.size() : end) - begin;
        if (length == 0) {
            return Fail(line, "an empty key name in " + Quote(path));
        }
        if (length > kMaxKeyNameLength) {
            return Fail(line, "a key name longer than 255 bytes");
        }
        if (end == std::string::npos) {
            break;
        }
        begin = end + 1;
    }
    m_keys.push_back(std::move(key));
    m_inKey = !remove;
    return true;
}

bool CKWRegFileParser::ParseValueLine(int line, const std::string& text) {
    if (!m_inKey) {
        return Fail(line,
                    m_keys.empty() ? "a value before any key" : "a value below a deleted key");
    }
    SKWRegFileValue value;
    value.line = line;
    std::size_t dataStart = 0;
    if (text[0] == '@') {
        if (text.size() < 2 || text[1] != '=') {
            return Fail(line, "expected = after @");
        }
        dataStart = 2;
    } else {
        const std::size_t nameEnd = text.find("\"=", 1);
        if (nameEnd == std::string::npos) {
            return Fail(line, "expected \"name\"=data");
        }
        value.name = text.substr(1, nameEnd - 1);
        dataStart = nameEnd + 2;
    }
    if (value.name.size() > kMaxValueNameLength) {
        return Fail(line, "a value name longer than 16383 bytes");
    }
    std::vector<SKWRegFileValue>& values = m_keys.back().values;
    values.push_back(std::move(value));
    return ParseData(line, text.substr(dataStart), values.back());
}

bool CKWRegFileParser::ParseData(int line, const std::string& data, SKWRegFileValue& value) {
    if (data == "-") {
        value.remove = true;
        return true;
    }
    if (!data.empty() && data[0] == '"') {
        value.type = REG_SZ;
        return ParseText(line, data.substr(1), value);
    }
    if (StartsWithNoCase(data, "dword:")) {
        const std::string digits = Trim(data.substr(6));
        DWORD number = 0;
        if (digits.size() != 8 || !ParseHexNumber(digits, 8, number)) {
            return Fail(line, "a dword needs 8 hex digits, not " + Quote(digits));
        }
        value.type = REG_DWORD;
        for (int i = 0; i < 4; ++i) {
            value.data.push_back(static_cast<BYTE>(number >> (8 * i)));
        }
        return true;
    }
    std::string list;
    if (StartsWithNoCase(data, "hex:")) {
        value.type = REG_BINARY;
        list = data.substr(4);
    } else if (StartsWithNoCase(data, "hex(")) {
        const std::size_t close = data.find("):");
        if (close == std::string::npos ||
            !ParseHexNumber(data.substr(4, close - 4), 8, value.type)) {
            return Fail(line, "a bad type in " + Quote(data));
        }
        list = data.substr(close + 2);
    } else {
        return Fail(line, "unknown data " + Quote(data));
    }
    // The exporter writes an expandable string as text and a closing quote;
    // a byte list never holds a quote.
    if (value.type == REG_EXPAND_SZ && !list.empty() && list.back() == '"') {
        return ParseText(line, list, value);
    }
    if (!IsListText(list)) {
        return Fail(line, "a bad byte list " + Quote(list));
    }
    m_list = SPendingList();
    m_list.open = true;
    ContinueList(list);
    return true;
}

bool CKWRegFileParser::ParseText(int line, const std::string& text, SKWRegFileValue& value) {
    std::size_t i = 0;
    while (i < text.size() && text[i] != '"') {
        if (text[i] != '\\') {
            value.data.push_back(static_cast<BYTE>(text[i++]));
        } else if (i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == '"')) {
            value.data.push_back(static_cast<BYTE>(text[i + 1]));
            i += 2;
        } else if (i + 2 < text.size() && IsHexDigit(text[i + 1]) && IsHexDigit(text[i + 2])) {
            value.data.push_back(HexByte(text[i + 1], text[i + 2]));
            i += 3;
        } else {
            return Fail(line, "a bad escape " + Quote(text.substr(i, 3)));
        }
    }
    if (i == text.size()) {
        return Fail(line, "the text has no closing quote");
    }
    if (i + 1 != text.size()) {
        return Fail(line, "text after the closing quote");
    }
    value.data.push_back(0);
    return true;
}

void CKWRegFileParser::ContinueList(const std::string& text) {
    std::string piece = text;
    m_list.mustContinue = !piece.empty() && piece.back() == '\\';
    if (m_list.mustContinue) {
        piece.pop_back();
    }
    piece = Trim(piece);
    // A line that neither ends nor starts with a comma still starts a new byte.
    if (!m_list.text.empty() && !piece.empty() && m_list.text.back() != ',' && piece[0] != ',') {
        m_list.text += ',';
    }
    m_list.text += piece;
}

bool CKWRegFileParser::CloseList() {
    SKWRegFileValue& value = m_keys.back().values.back();
    const std::string text = m_list.text;
    m_list = SPendingList();
    if (Trim(text).empty()) {
        return true;
    }
    for (std::size_t begin = 0;;) {
        const std::size_t end = text.find(',', begin);
        const std::string byte =
            Trim(text.substr(begin, end == std::string::npos ? std::string::npos : end - begin));
        if (byte.size() != 2 || !IsHexDigit(byte[0]) || !IsHexDigit(byte[1])) {
            return Fail(value.line,
                        "the byte list holds " + Quote(byte) + ", not a byte of two hex digits");
        }
        value.data.push_back(HexByte(byte[0], byte[1]));
        if (end == std::string::npos) {
            return true;
        }
        begin = end + 1;
    }
}
