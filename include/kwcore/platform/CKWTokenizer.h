// CKWTokenizer: splits a text into the pieces between separator characters.
//
// Every separator ends a piece, so empty pieces are kept ("1,,3" gives "1",
// "" and "3") and an empty text gives no pieces at all. The library holds
// one tokenizer with the separator "," (GetLibraryTokenizer), created when
// the library starts; the geometry text forms use it, so they are not
// reentrant.
//
//   CKWTokenizer tokens(",");
//   int count = tokens.Tokenize("1,2,3");   // 3
//   CString second = tokens.GetToken(1);     // "2"
#pragma once

#include <vector>

#include "kwcore/platform/CString.h"
#include "kwcore/platform/Export.h"

class KWCORE_API CKWTokenizer {
public:
    explicit CKWTokenizer(const CString& separators = ",") : m_strSeparators(separators) {}

    // Any character of the set separates; an empty set makes the whole text
    // one piece.
    void SetSeparators(const CString& separators) { m_strSeparators = separators; }
    const CString& GetSeparators() const { return m_strSeparators; }

    // Splits text, replacing the pieces of the previous call; returns their count.
    int Tokenize(const CString& text);
    int GetTokenCount() const { return static_cast<int>(m_aTokens.size()); }
    // Piece i, or the empty string for an index outside [0, GetTokenCount()).
    CString GetToken(int i) const;

    // The library-wide tokenizer (separator ",").
    static CKWTokenizer& GetLibraryTokenizer();

private:
    CString m_strSeparators;
    std::vector<CString> m_aTokens;
};
