#include "kwcore/platform/CString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using Ints = std::vector<int>;
using Strings = std::vector<CString>;

// Braced lists evaluate left to right, so a list of calls below is a sequence
// of edits.

TEST(CStringBasics, NullReadsAsEmptyOutOfRangeAccessIsHarmlessAndOperandsKeepTheirOrder) {
    const char* none = nullptr;
    CString text(none);
    text += none;
    EXPECT_TRUE(text.IsEmpty() && CString('a', -2).IsEmpty());
    text = "ab";
    text.SetAt(5, 'x');
    text.SetAt(-1, 'x');
    text.SetAt(0, 'z');
    EXPECT_TRUE(text == "zb" && text[2] == '\0' && text.GetAt(-1) == '\0');
    EXPECT_EQ('<' + ("x" + text + "y") + '>' + CString("!"), "<xzby>!");
    EXPECT_EQ(text + CString("1") + "2" + '3', "zb123");
    text = none;
    EXPECT_TRUE(text.IsEmpty());
    text = 'q';
    EXPECT_EQ(text, "q");
    text = std::string("r\0s", 3);
    EXPECT_EQ(text.GetLength(), 3);
}

TEST(CStringFormat, FollowsPrintfAtAnyLengthAndMayReadItsOwnText) {
    CString text;
    text.Format("%d-%05.1f-%s-%c-%x", 42, 3.14159, "str", 'c', 255u);
    EXPECT_EQ(text, "42-003.1-str-c-ff");
    const std::string longArgument(100000, 'q');
    text.Format("<%s>", longArgument.c_str());
    EXPECT_EQ(text.GetStdString(), "<" + longArgument + ">");
    text = "abc";
    text.Format("%s+%s", text.GetString(), text.GetString());
    EXPECT_EQ(text, "abc+abc");
    text.AppendFormat("[%s]", text.GetString());
    EXPECT_EQ(text, "abc+abc[abc+abc]");
    text.Format(static_cast<const char*>(nullptr));  // no format: empty
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CStringComparison, ComparesUnsignedBytesWithEitherOperandFirstAndFoldsOnlyAsciiCase) {
    char buffer[] = "b";
    const CString b(buffer);
    EXPECT_TRUE(buffer == b && "a" != b && "a" < b && "c" > b && "b" >= b && b < CString("ba"));
    // Every operator and operand order agrees with Compare, bytes unsigned.
    const char* const texts[] = {"", "a", "ab", "b", "\xC3\xA9"};
    for (const char* x : texts) {
        for (const char* y : texts) {
            const CString cx(x), cy(y);
            const int order = cx.Compare(y);
            SCOPED_TRACE(std::string(x) + " against " + y);
            EXPECT_EQ(
                (Ints{cx == cy, cx == y, x == cy, cx != cy, cx != y, x != cy}),
                (Ints{order == 0, order == 0, order == 0, order != 0, order != 0, order != 0}));
            EXPECT_EQ((Ints{cx<cy, cx<y, x<cy, cx> cy, cx> y, x> cy}),
                      (Ints{order<0, order<0, order<0, order> 0, order> 0, order> 0}));
            EXPECT_EQ(
                (Ints{cx <= cy, cx <= y, x <= cy, cx >= cy, cx >= y, x >= cy}),
                (Ints{order <= 0, order <= 0, order <= 0, order >= 0, order >= 0, order >= 0}));
            EXPECT_EQ(std::hash<CString>()(cx) == std::hash<CString>()(cy), order == 0);
        }
    }
    // CompareNoCase folds to lower case as _stricmp does: '_' sorts before letters.
    EXPECT_EQ((Ints{CString("z").Compare("\xC3\xA9"), b.Compare("a"), CString().Compare(nullptr),
                    CString("Hello").CompareNoCase("hELLO"), CString("abc").CompareNoCase("ABD"),
                    CString("abcd").CompareNoCase("ABC"), CString("_").CompareNoCase("A"),
                    CString("\xC3\xA4").CompareNoCase("\xC3\x84")}),
              (Ints{-1, 1, 0, 0, -1, 1, -1, 1}));
}

TEST(CStringSearch, FindsFromAStartAndGivesMinusOneOutsideTheText) {
    const CString text("abcabc");
    EXPECT_EQ((Ints{text.Find('c'), text.Find('c', 3), text.Find('c', 6), text.Find('c', -1),
                    text.Find('x'), text.Find("bc", 2), text.Find("", 6), text.Find("a", 7),
                    text.Find(static_cast<const char*>(nullptr)), CString("a/b/c").ReverseFind('/'),
                    CString("abc").ReverseFind('a'), CString().ReverseFind('x'),
                    text.FindOneOf("xc"), text.FindOneOf("xyz"), text.FindOneOf("")}),
              (Ints{2, 5, -1, -1, -1, 4, 6, -1, -1, 3, 0, -1, 2, -1, -1}));
}

TEST(CStringExtraction, ClampsOutOfRangeArgumentsAndSpansStopAtTheFirstMismatch) {
    const CString t("hello");
    EXPECT_EQ(t.Left(2) + '|' + t.Left(-1) + '|' + t.Left(99), "he||hello");
    EXPECT_EQ(t.Right(3) + '|' + t.Right(-3) + '|' + t.Right(99), "llo||hello");
    EXPECT_EQ(t.Mid(1) + '|' + t.Mid(-4) + '|' + t.Mid(5) + '|' + t.Mid(9), "ello|hello||");
    EXPECT_EQ(t.Mid(-2, 3) + '|' + t.Mid(3, 99) + '|' + t.Mid(2, -1) + '|' +
                  t.Mid(0x7FFFFFFF, 0x7FFFFFFF),
              "hel|lo||");
    const CString m("123abc");
    EXPECT_EQ(m.SpanIncluding("0123456789") + '|' + m.SpanIncluding("abc") + '|' +
                  m.SpanIncluding(nullptr),
              "123||");
    EXPECT_EQ(m.SpanExcluding("ab") + '|' + m.SpanExcluding(nullptr), "123|123abc");
}

TEST(CStringCase, ChangesAsciiLettersOnlyAndReversingKeepsUtf8SequencesWhole) {
    CString text("Gr\xC3\xB6\xC3\x9Fn-x");
    EXPECT_EQ(text.MakeUpper(), "GR\xC3\xB6\xC3\x9FN-X");
    EXPECT_EQ(text.MakeLower(), "gr\xC3\xB6\xC3\x9Fn-x");
    CString euro("xy\xE2\x82\xACz");
    EXPECT_EQ(euro.MakeReverse(), "z\xE2\x82\xACyx");
}

TEST(CStringEditing, ReplaceAndRemoveCountChangesAndNeverRescanInsertedText) {
    CString text("a.b.c");
    EXPECT_EQ((Ints{text.Replace('.', '/'), text.Replace('/', '/'), text.Replace("/", "::")}),
              (Ints{2, 0, 2}));
    EXPECT_EQ(text, "a::b::c");
    EXPECT_EQ((Ints{text.Replace("::", "--"), text.Replace("", "x"), text.Replace(nullptr, "x"),
                    text.Remove('-'), text.Remove('x'), text.Replace("b", nullptr)}),
              (Ints{2, 0, 0, 4, 0, 1}));
    EXPECT_EQ(text, "ac");
    CString run("aaa");
    EXPECT_TRUE(run.Replace("aa", "aaa") == 1 && run == "aaaa");
}

TEST(CStringEditing, InsertAndDeleteClampTheirArgumentsAndReturnTheLength) {
    CString text("ac");
    EXPECT_EQ((Ints{text.Insert(1, 'b'), text.Insert(99, "de"), text.Insert(-5, '>'),
                    text.Insert(0, nullptr)}),
              (Ints{3, 5, 6, 6}));
    EXPECT_EQ(text, ">abcde");
    EXPECT_EQ((Ints{text.Delete(1, 2), text.Delete(3, 99), text.Delete(9), text.Delete(-1),
                    text.Delete(0, -4)}),
              (Ints{4, 3, 3, 2, 2}));
    EXPECT_EQ(text, "cd");
}

TEST(CStringTrim, RemovesWhiteSpaceByDefaultOrACharacterOrASet) {
    CString xs("xxabcxx"), dots("..a..");
    EXPECT_EQ((Strings{CString(" \t\r\n x y \v\f").Trim(), CString("   ").Trim(),
                       CString("-+-value+-").Trim("+-"), CString("ab").Trim("ab"), xs.TrimLeft('x'),
                       xs.TrimRight('x'), CString("xxaxx").Trim('x'), dots.TrimLeft("."),
                       dots.TrimRight(static_cast<const char*>(nullptr))}),
              (Strings{"x y", "", "value", "", "abcxx", "abc", "a", "a..", "a.."}));
}

TEST(CStringBuffer, ReleaseBufferMeasuresToTheTerminatorOrClampsAGivenLength) {
    CString text("abc");
    EXPECT_STREQ(std::strcat(text.GetBuffer(10), "long!"), "abclong!");  // keeps the text
    text.ReleaseBuffer();
    EXPECT_EQ(text, "abclong!");
    std::memcpy(text.GetBufferSetLength(8), "12345678", 8);
    text.ReleaseBuffer(5);
    EXPECT_EQ(text, "12345");
    text.GetBuffer(0);
    text.ReleaseBuffer(100);
    EXPECT_EQ(text, "12345");
    text.GetBufferSetLength(-1);
    EXPECT_TRUE(text.IsEmpty());
}

}  // namespace
