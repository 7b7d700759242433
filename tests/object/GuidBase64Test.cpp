// The base-64 coder behind the XML64 and element forms, on arbitrary data.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "kwcore/object/CKWGuid.h"

namespace {

class GuidCodec : public CKWGuid {
public:
    using CKWGuid::Decode64;
    using CKWGuid::Encode64;
};

std::string Encode(const std::string& data) {
    char* text = GuidCodec::Encode64(data.data(), static_cast<int>(data.size()));
    const std::string result(text);
    delete[] text;
    return result;
}

std::string Decode(const std::string& text) {
    int length = static_cast<int>(text.size());
    char* bytes = GuidCodec::Decode64(text.data(), &length);
    const std::string result(bytes, static_cast<std::size_t>(length));
    delete[] bytes;
    return result;
}

std::string RandomBytes(std::size_t size) {
    static std::mt19937 random(7);
    std::string data;
    for (std::size_t i = 0; i < size; ++i) {
        data += static_cast<char>(random());
    }
    return data;
}

TEST(GuidBase64, EncodesWithTheUrlSafeAlphabetAndPadding) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foobar", "Zm9vYmFy"},
        {"\xFB\xEF\xFF", "--__"},
        {"\x80", "gA=="},
        {std::string("\x00\x80\x00", 3), "AIAA"},
        // A final pair's second byte from 0x80 up is merged sign-extended,
        // turning the first byte's bits to ones.
        {std::string("\x00\x80", 2), "_4A="},
        {"\x12\xFF", "__8="},
        {"\x12\x7F", "En8="},
    };
    for (const auto& [data, text] : cases) {
        EXPECT_EQ(Encode(data), text);
        EXPECT_EQ(CKWGuid::Encode64String(data.data(), data.size()), text);
    }
}

TEST(GuidBase64, BreaksLinesAfterEvery76CharactersButNotAtTheEnd) {
    EXPECT_EQ(Encode(RandomBytes(57)).size(), 76u);
    EXPECT_EQ(Encode(RandomBytes(58)).substr(76, 2), "\r\n");
    const std::string text = Encode(RandomBytes(1000));  // 1336 characters
    ASSERT_EQ(text.size(), 1336u + 17 * 2);
    for (std::size_t line = 1; line <= 17; ++line) {
        EXPECT_EQ(text.substr(line * 78 - 2, 2), "\r\n") << line;
    }
}

TEST(GuidBase64, DecodesSkippingForeignCharactersUpToTheFirstEqualsSign) {
    const std::pair<std::string, std::string> cases[] = {
        {"Zm9vYmFy", "foobar"},
        {"Zm9v\r\nYmFy", "foobar"},
        {" Z+m/9\tv.Y\x80m\xFF"
         "Fy",
         "foobar"},
        {std::string("Zm9v\0YmFy", 9), "foobar"},
        {"Zg==Zm9v", "f"},
        {"Zm9vYg", "foob"},  // a final incomplete group, completed with zero bits
        {"Zm9vYmE", "fooba"},
        {"Zm9vY", "foo"},
        {"_4A=", "\xFF\x80"},
    };
    for (const auto& [text, data] : cases) {
        EXPECT_EQ(Decode(text), data);
        const std::vector<BYTE> bytes = CKWGuid::Decode64Bytes(text.data(), text.size());
        EXPECT_EQ(std::string(bytes.begin(), bytes.end()), data);
    }
    int length = 4;
    char* bytes = GuidCodec::Decode64("Zm9vYmFy", &length);
    EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(length)), "foo");
    delete[] bytes;
}

TEST(GuidBase64, NullsAndNegativeLengthsAreSafe) {
    char* empty[] = {GuidCodec::Encode64(nullptr, 10), GuidCodec::Encode64("abc", -3)};
    int lengths[] = {12, -5};
    char* decoded[] = {GuidCodec::Decode64(nullptr, &lengths[0]),
                       GuidCodec::Decode64("Zm9v", &lengths[1])};
    for (int i = 0; i < 2; ++i) {
        EXPECT_STREQ(empty[i], "");
        EXPECT_NE(decoded[i], nullptr);
        EXPECT_EQ(lengths[i], 0);
        delete[] empty[i];
        delete[] decoded[i];
    }
    EXPECT_EQ(GuidCodec::Decode64("Zm9v", nullptr), nullptr);
    EXPECT_EQ(CKWGuid::Encode64String(nullptr, 4), "");
    EXPECT_TRUE(CKWGuid::Decode64Bytes(nullptr, 4).empty());
}

TEST(GuidBase64, RandomDataOfEveryLengthRoundTrips) {
    for (std::size_t size = 0; size <= 300; ++size) {
        for (int i = 0; i < 5; ++i) {
            std::string data = RandomBytes(size);
            if (size % 3 == 2) {
                data.back() = static_cast<char>(data.back() & 0x7F);  // clear of the quirk
            }
            EXPECT_EQ(Decode(Encode(data)), data) << "size " << size;
        }
    }
}

}  // namespace
