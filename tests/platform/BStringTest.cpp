#include "kwcore/platform/BString.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <utility>

namespace {

const char* const kGermanEuro = "Gr\xC3\xB6\xC3\x9Fn \xE2\x82\xAC";
const wchar_t* const kWideGermanEuro = L"Gr\u00F6\u00DFn \u20AC";

TEST(BStringText, RoundTripsUtf8ThroughWideCharacters) {
    const std::pair<const char*, const wchar_t*> cases[] = {
        {kGermanEuro, kWideGermanEuro},
        {"\xF0\x9D\x84\x9E", L"\U0001D11E"},  // beyond the basic plane: two units where 16 bits
        {"", L""}};
    for (const auto& [narrow, wide] : cases) {
        const _bstr_t fromNarrow(narrow);
        const _bstr_t fromWide(wide);
        EXPECT_EQ(std::wcscmp(fromNarrow, wide), 0) << narrow;
        EXPECT_EQ(fromNarrow.length(), std::wcslen(wide)) << narrow;
        EXPECT_STREQ(static_cast<const char*>(fromWide), narrow);
    }
}

TEST(BStringText, ReplacesEachInvalidSequenceAndReadsNullAsEmpty) {
    // A stray continuation byte, a truncated three-byte sequence, an
    // overlong form and a byte that never occurs in UTF-8.
    const _bstr_t text("a\x80g\xE2\x82h\xC0\xAFi\xFF");
    EXPECT_EQ(std::wcscmp(text, L"a\uFFFDg\uFFFDh\uFFFD\uFFFDi\uFFFD"), 0);
    const _bstr_t narrowNull(static_cast<const char*>(nullptr));
    const _bstr_t wideNull(static_cast<const wchar_t*>(nullptr));
    EXPECT_EQ(narrowNull.length() + wideNull.length(), 0u);
    EXPECT_STREQ(static_cast<const char*>(wideNull), "");
}

TEST(BStringValue, TheNarrowFormFollowsChangesAndCopiesAreIndependent) {
    _bstr_t text("ab");
    EXPECT_STREQ(static_cast<const char*>(text), "ab");
    text += _bstr_t(L"\u00E9");
    EXPECT_STREQ(static_cast<const char*>(text), "ab\xC3\xA9");
    text = L"y";
    EXPECT_STREQ(static_cast<const char*>(text), "y");
    _bstr_t copy(text);
    copy += "z";
    _bstr_t assigned;
    assigned = copy;
    assigned += "!";
    EXPECT_EQ(text, "y");
    EXPECT_EQ(_bstr_t(std::move(copy)), "yz");
    EXPECT_EQ(L"<" + _bstr_t(kGermanEuro) + ">", "<" + _bstr_t(kWideGermanEuro) + L">");
    EXPECT_TRUE(kGermanEuro == _bstr_t(kWideGermanEuro) && L"x" != text && text < _bstr_t("z"));
}

}  // namespace
