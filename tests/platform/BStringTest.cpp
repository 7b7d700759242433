#include "kwcore/platform/BString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <utility>

namespace {

const char* const kGermanEuro =
    "Gr\xC3\xB6\xC3\x9F"
    "e \xE2\x82\xAC";

TEST(BStringText, RoundTripsNonAsciiUtf8) {
    const _bstr_t text(kGermanEuro);
    EXPECT_EQ(text.length(), 7u);
    EXPECT_EQ(std::wcscmp(static_cast<const wchar_t*>(text), L"Gr\u00F6\u00DFe \u20AC"), 0);
    EXPECT_STREQ(static_cast<const char*>(text), kGermanEuro);
}

TEST(BStringText, KeepsCharactersBeyondTheBasicPlane) {
    const char* clef = "\xF0\x9D\x84\x9E";  // U+1D11E
    const _bstr_t text(clef);
    EXPECT_EQ(text.length(), static_cast<unsigned int>(sizeof(wchar_t) == 2 ? 2 : 1));
    EXPECT_STREQ(static_cast<const char*>(text), clef);
}

TEST(BStringText, ReplacesEachInvalidSequenceWithOneReplacementCharacter) {
    // A stray continuation byte, a truncated three-byte sequence, an
    // overlong form and a byte that never occurs in UTF-8.
    const _bstr_t text(
        "a\x80"
        "b\xE2\x82"
        "c\xC0\xAF"
        "d\xFF");
    EXPECT_EQ(std::wcscmp(text, L"a\uFFFDb\uFFFDc\uFFFD\uFFFDd\uFFFD"), 0);
}

TEST(BStringText, NullInputIsEmpty) {
    const _bstr_t narrow(static_cast<const char*>(nullptr));
    const _bstr_t wide(static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(narrow.length(), 0u);
    EXPECT_STREQ(static_cast<const char*>(wide), "");
    EXPECT_EQ(std::wcscmp(_bstr_t(), L""), 0);
}

TEST(BStringText, NarrowFormFollowsModifications) {
    _bstr_t text("ab");
    EXPECT_STREQ(static_cast<const char*>(text), "ab");
    text += _bstr_t(L"\u00E9");
    EXPECT_STREQ(static_cast<const char*>(text), "ab\xC3\xA9");
    text = "x";
    EXPECT_STREQ(static_cast<const char*>(text), "x");
    text = L"y";
    EXPECT_STREQ(static_cast<const char*>(text), "y");
}

TEST(BStringValue, CopiesAndMovesAreIndependent) {
    _bstr_t original("one");
    _bstr_t copy(original);
    copy += "two";
    EXPECT_EQ(original, "one");
    _bstr_t moved(std::move(copy));
    EXPECT_EQ(moved, "onetwo");
    _bstr_t assigned;
    assigned = moved;
    EXPECT_EQ(assigned, moved);
}

TEST(BStringValue, ConcatenatesNarrowAndWideOperands) {
    const _bstr_t middle(L"-");
    EXPECT_EQ("a" + middle + _bstr_t("b"), L"a-b");
    EXPECT_EQ(L"a" + middle, "a-");
}

TEST(BStringValue, ComparesWithEveryOperandKind) {
    const _bstr_t text(kGermanEuro);
    EXPECT_TRUE(text == kGermanEuro);
    EXPECT_TRUE(kGermanEuro == text);
    EXPECT_TRUE(text == L"Gr\u00F6\u00DFe \u20AC");
    EXPECT_TRUE(L"x" != text);
    EXPECT_TRUE(text != "x");
    EXPECT_TRUE(_bstr_t("a") < _bstr_t("b"));
}

}  // namespace
