#include "kwcore/platform/CKWTokenizer.h"

#include <cstring>

int CKWTokenizer::Tokenize(const CString& text) {
    m_aTokens.clear();
    const std::string& s = text.GetStdString();
    if (s.empty()) {
        return 0;
    }
    const char* separators = m_strSeparators.GetString();
    std::size_t start = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] != '\0' && std::strchr(separators, s[i]) != nullptr) {
            m_aTokens.emplace_back(s.substr(start, i - start));
            start = i + 1;
        }
    }
    m_aTokens.emplace_back(s.substr(start));
    return GetTokenCount();
}

CString CKWTokenizer::GetToken(int i) const {
    if (i < 0 || i >= GetTokenCount()) {
        return CString();
    }
    return m_aTokens[static_cast<std::size_t>(i)];
}

CKWTokenizer& CKWTokenizer::GetLibraryTokenizer() {
    static CKWTokenizer tokenizer(",");
    return tokenizer;
}

namespace {
// Creates the library-wide tokenizer when the library is loaded.
[[maybe_unused]] CKWTokenizer& s_libraryTokenizer = CKWTokenizer::GetLibraryTokenizer();
}  // namespace
