#include "kwcore/platform/CString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <unordered_set>

namespace {

TEST(CStringConstruction, NullPointerReadsAsEmpty) {
    const char* none = nullptr;
    CString text(none);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_STREQ(text, "");
    text = "x";
    text = none;
    EXPECT_EQ(text.GetLength(), 0);
}

TEST(CStringConstruction, RepeatsACharacter) {
    EXPECT_EQ(CString('a', 3), "aaa");
    EXPECT_EQ(CString('a'), "a");
    EXPECT_TRUE(CString('a', -2).IsEmpty());
}

TEST(CStringConstruction, KeepsUtf8BytesUnchanged) {
    const char* utf8 =
        "Gr\xC3\xB6\xC3\x9F"
        "e \xE2\x82\xAC";
    CString text(utf8);
    EXPECT_EQ(text.GetLength(), static_cast<int>(std::strlen(utf8)));
    EXPECT_EQ(std::memcmp(text.GetString(), utf8, std::strlen(utf8)), 0);
    EXPECT_EQ(text.GetStdString(), std::string(utf8));
}

TEST(CStringAccess, OutOfRangeReadsNulAndWritesNothing) {
    CString text("ab");
    EXPECT_EQ(text.GetAt(1), 'b');
    EXPECT_EQ(text[2], '\0');
    EXPECT_EQ(text.GetAt(-1), '\0');
    text.SetAt(5, 'x');
    text.SetAt(-1, 'x');
    text.SetAt(0, 'z');
    EXPECT_EQ(text, "zb");
}

TEST(CStringFormat, FollowsPrintfRules) {
    CString text;
    text.Format("%d-%05.1f-%s-%c-%x", 42, 3.14159, "str", 'c', 255u);
    EXPECT_EQ(text, "42-003.1-str-c-ff");
}

TEST(CStringFormat, ProducesOutputOfAnyLength) {
    const std::string longArgument(100000, 'q');
    CString text;
    text.Format("<%s>", longArgument.c_str());
    ASSERT_EQ(text.GetLength(), 100002);
    EXPECT_EQ(text.Left(2), "<q");
    EXPECT_EQ(text.Right(2), "q>");
}

TEST(CStringFormat, MayReadItsOwnText) {
    CString text("abc");
    text.Format("%s+%s", text.GetString(), text.GetString());
    EXPECT_EQ(text, "abc+abc");
    text.AppendFormat("[%s]", text.GetString());
    EXPECT_EQ(text, "abc+abc[abc+abc]");
}

TEST(CStringConcatenation, JoinsEveryOperandKind) {
    const CString left("ab");
    EXPECT_EQ(left + CString("cd"), "abcd");
    EXPECT_EQ(left + "cd", "abcd");
    EXPECT_EQ("cd" + left, "cdab");
    EXPECT_EQ(left + 'c', "abc");
    EXPECT_EQ('c' + left, "cab");
    EXPECT_EQ(CString("x") + "y" + 'z' + left, "xyzab");
    CString text;
    text += left;
    text += "-";
    text += 'e';
    text += static_cast<const char*>(nullptr);
    EXPECT_EQ(text, "ab-e");
}

TEST(CStringComparison, WorksWithEitherOperandFirst) {
    const CString b("b");
    EXPECT_TRUE(b == "b");
    EXPECT_TRUE("b" == b);
    EXPECT_TRUE(b != "a");
    EXPECT_TRUE("a" != b);
    EXPECT_TRUE("a" < b);
    EXPECT_TRUE(b < "c");
    EXPECT_TRUE(b > "a");
    EXPECT_TRUE("c" > b);
    EXPECT_TRUE(b <= "b");
    EXPECT_TRUE("b" >= b);
    EXPECT_TRUE(b < CString("ba"));
    EXPECT_TRUE(CString("ba") >= b);
}

TEST(CStringComparison, ComparesContentNotPointers) {
    char buffer[] = "same";
    const CString text("same");
    EXPECT_TRUE(text == buffer);
    EXPECT_TRUE(buffer == text);
    EXPECT_TRUE(text == CString(buffer));
}

TEST(CStringComparison, OrdersBytesAsUnsigned) {
    EXPECT_TRUE(CString("z") < "\xC3\xA9");
    EXPECT_EQ(CString("z").Compare("\xC3\xA9"), -1);
    EXPECT_EQ(CString("b").Compare("a"), 1);
    EXPECT_EQ(CString("").Compare(nullptr), 0);
}

TEST(CStringComparison, CompareNoCaseFoldsAsciiOnly) {
    EXPECT_EQ(CString("Hello").CompareNoCase("hELLO"), 0);
    EXPECT_EQ(CString("abc").CompareNoCase("ABD"), -1);
    EXPECT_EQ(CString("abcd").CompareNoCase("ABC"), 1);
    // Folding goes to lower case, as _stricmp does: '_' sorts before letters.
    EXPECT_EQ(CString("_").CompareNoCase("A"), -1);
    EXPECT_NE(CString("\xC3\xA4").CompareNoCase("\xC3\x84"), 0);
}

TEST(CStringSearch, FindsCharactersAndSubstringsFromAStart) {
    const CString text("abcabc");
    EXPECT_EQ(text.Find('c'), 2);
    EXPECT_EQ(text.Find('c', 3), 5);
    EXPECT_EQ(text.Find('c', 6), -1);
    EXPECT_EQ(text.Find('c', -1), -1);
    EXPECT_EQ(text.Find("bc", 2), 4);
    EXPECT_EQ(text.Find("", 6), 6);
    EXPECT_EQ(text.Find("a", 7), -1);
    EXPECT_EQ(text.Find(static_cast<const char*>(nullptr)), -1);
    EXPECT_EQ(text.Find('x'), -1);
}

TEST(CStringSearch, ReverseFindGivesTheLastOccurrence) {
    EXPECT_EQ(CString("a/b/c").ReverseFind('/'), 3);
    EXPECT_EQ(CString("abc").ReverseFind('a'), 0);
    EXPECT_EQ(CString("abc").ReverseFind('x'), -1);
    EXPECT_EQ(CString().ReverseFind('x'), -1);
}

TEST(CStringExtraction, ClampsOutOfRangeArguments) {
    const CString text("hello");
    EXPECT_EQ(text.Left(2), "he");
    EXPECT_EQ(text.Left(-1), "");
    EXPECT_EQ(text.Left(99), "hello");
    EXPECT_EQ(text.Right(3), "llo");
    EXPECT_EQ(text.Right(-3), "");
    EXPECT_EQ(text.Right(99), "hello");
    EXPECT_EQ(text.Mid(1), "ello");
    EXPECT_EQ(text.Mid(-4), "hello");
    EXPECT_EQ(text.Mid(5), "");
    EXPECT_EQ(text.Mid(9), "");
    EXPECT_EQ(text.Mid(1, 3), "ell");
    EXPECT_EQ(text.Mid(-2, 3), "hel");
    EXPECT_EQ(text.Mid(3, 99), "lo");
    EXPECT_EQ(text.Mid(2, -1), "");
    EXPECT_EQ(text.Mid(0x7FFFFFFF, 0x7FFFFFFF), "");
}

TEST(CStringExtraction, SpansStopAtTheFirstMismatch) {
    const CString text("123abc");
    EXPECT_EQ(text.SpanIncluding("0123456789"), "123");
    EXPECT_EQ(text.SpanIncluding("abc"), "");
    EXPECT_EQ(text.SpanExcluding("ab"), "123");
    EXPECT_EQ(text.SpanExcluding("xyz"), "123abc");
    EXPECT_EQ(text.SpanIncluding(nullptr), "");
    EXPECT_EQ(text.SpanExcluding(nullptr), "123abc");
}

TEST(CStringCase, ChangesAsciiLettersOnly) {
    CString text(
        "Gr\xC3\xB6\xC3\x9F"
        "e-x");
    text.MakeUpper();
    EXPECT_EQ(text,
              "GR\xC3\xB6\xC3\x9F"
              "E-X");
    text.MakeLower();
    EXPECT_EQ(text,
              "gr\xC3\xB6\xC3\x9F"
              "e-x");
}

TEST(CStringReverse, KeepsUtf8SequencesWhole) {
    CString text(
        "ab\xE2\x82\xAC"
        "c");
    text.MakeReverse();
    EXPECT_EQ(text,
              "c\xE2\x82\xAC"
              "ba");
    CString plain("abc");
    EXPECT_EQ(plain.MakeReverse(), "cba");
}

TEST(CStringEditing, ReplaceCountsReplacements) {
    CString text("a.b.c");
    EXPECT_EQ(text.Replace('.', '/'), 2);
    EXPECT_EQ(text, "a/b/c");
    EXPECT_EQ(text.Replace('/', '/'), 0);
    EXPECT_EQ(text.Replace("/", "::"), 2);
    EXPECT_EQ(text, "a::b::c");
    EXPECT_EQ(text.Replace("::", nullptr), 2);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(text.Replace("", "x"), 0);
    EXPECT_EQ(text.Replace(nullptr, "x"), 0);
    EXPECT_EQ(text, "abc");
}

TEST(CStringEditing, ReplaceDoesNotRescanInsertedText) {
    CString text("aaa");
    EXPECT_EQ(text.Replace("aa", "aaa"), 1);
    EXPECT_EQ(text, "aaaa");
}

TEST(CStringEditing, RemoveCountsRemovedCharacters) {
    CString text("a-b-c-");
    EXPECT_EQ(text.Remove('-'), 3);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(text.Remove('x'), 0);
}

TEST(CStringEditing, InsertClampsTheIndexAndReturnsTheLength) {
    CString text("ac");
    EXPECT_EQ(text.Insert(1, 'b'), 3);
    EXPECT_EQ(text.Insert(99, "de"), 5);
    EXPECT_EQ(text.Insert(-5, '>'), 6);
    EXPECT_EQ(text.Insert(0, nullptr), 6);
    EXPECT_EQ(text, ">abcde");
}

TEST(CStringEditing, DeleteClampsAndReturnsTheLength) {
    CString text("abcdef");
    EXPECT_EQ(text.Delete(1, 2), 4);
    EXPECT_EQ(text, "adef");
    EXPECT_EQ(text.Delete(3, 99), 3);
    EXPECT_EQ(text.Delete(9), 3);
    EXPECT_EQ(text.Delete(-1), 2);
    EXPECT_EQ(text.Delete(0, -4), 2);
    EXPECT_EQ(text, "de");
}

TEST(CStringTrim, RemovesWhiteSpaceByDefault) {
    CString text(" \t\r\n x y \v\f");
    EXPECT_EQ(text.Trim(), "x y");
    CString blank("   ");
    EXPECT_TRUE(blank.Trim().IsEmpty());
}

TEST(CStringTrim, RemovesACharacterOrASet) {
    CString text("xxabcxx");
    EXPECT_EQ(text.TrimLeft('x'), "abcxx");
    EXPECT_EQ(text.TrimRight('x'), "abc");
    CString set("-+-value+-");
    EXPECT_EQ(set.Trim("+-"), "value");
    CString sides("..a..");
    EXPECT_EQ(sides.TrimLeft("."), "a..");
    EXPECT_EQ(sides.TrimRight(static_cast<const char*>(nullptr)), "a..");
    EXPECT_EQ(CString("ab").Trim("ab"), "");
}

TEST(CStringBuffer, ReleaseBufferMeasuresUpToTheTerminator) {
    CString text("abc");
    char* buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, "abc");
    std::strcpy(buffer, "longer!");
    text.ReleaseBuffer();
    EXPECT_EQ(text, "longer!");
    EXPECT_EQ(text.GetLength(), 7);
}

TEST(CStringBuffer, ExplicitLengthsAreClampedToTheBuffer) {
    CString text;
    char* buffer = text.GetBufferSetLength(8);
    std::memcpy(buffer, "12345678", 8);
    text.ReleaseBuffer(5);
    EXPECT_EQ(text, "12345");
    text.GetBuffer(0);
    text.ReleaseBuffer(100);
    EXPECT_EQ(text, "12345");
    text.GetBufferSetLength(-1);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CStringHash, EqualStringsHashEqually) {
    std::unordered_set<CString> set{CString("one"), CString("two")};
    EXPECT_EQ(set.count(CString("one")), 1u);
    EXPECT_EQ(set.count(CString("three")), 0u);
}

}  // namespace
