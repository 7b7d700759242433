// CKWTokenizer: pieces between separators, and the library-wide instance.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kwcore/platform/CKWTokenizer.h"

namespace {

TEST(Tokenizer, SplitsAtEverySeparatorKeepingEmptyPieces) {
    CKWTokenizer tokens(",");
    EXPECT_EQ(tokens.Tokenize("1,,3,"), 4);
    std::vector<std::string> pieces;
    for (int i = -1; i <= 4; ++i) {
        pieces.emplace_back(tokens.GetToken(i));
    }
    EXPECT_EQ(pieces, (std::vector<std::string>{"", "1", "", "3", "", ""}));
    EXPECT_EQ(tokens.Tokenize(""), 0);
    EXPECT_EQ(tokens.GetTokenCount(), 0);
    EXPECT_EQ(tokens.Tokenize("no separator"), 1);
    EXPECT_EQ(std::string(tokens.GetToken(0)), "no separator");
}

TEST(Tokenizer, AnyCharacterOfTheSetSeparates) {
    CKWTokenizer tokens(";|");
    EXPECT_EQ(tokens.Tokenize("a;b|c"), 3);
    EXPECT_EQ(std::string(tokens.GetToken(2)), "c");
    tokens.SetSeparators("");
    EXPECT_EQ(tokens.Tokenize("a;b|c"), 1);
    EXPECT_EQ(std::string(tokens.GetSeparators()), "");
}

TEST(Tokenizer, LibraryTokenizerIsOneObjectSplittingAtCommas) {
    CKWTokenizer& shared = CKWTokenizer::GetLibraryTokenizer();
    EXPECT_EQ(&shared, &CKWTokenizer::GetLibraryTokenizer());
    EXPECT_EQ(std::string(shared.GetSeparators()), ",");
    EXPECT_EQ(shared.Tokenize("x,y"), 2);
}

}  // namespace
