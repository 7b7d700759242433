// The base-64 coder behind the XML64 and element forms, on arbitrary data.
#include <gtest/gtest.h>

#include <iterator>
#include <memory>
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

using Buffer = std::unique_ptr<char[]>;  // Encode64 and Decode64 allocate with new[]

std::string Encoded(const std::string& data) {
    return CKWGuid::Encode64String(data.data(), data.size());
}

std::string Decoded(const std::string& text) {
    const std::vector<BYTE> bytes = CKWGuid::Decode64Bytes(text.data(), text.size());
    return std::string(bytes.begin(), bytes.end());
}

TEST(GuidBase64, EncodesWithTheUrlSafeAlphabetAndPaddingAndDecodesBack) {
    const std::string data[] = {
        "",        "f", "fo", "foobar", "\xFB\xEF\xFF", "\x80", std::string("\x00\x80\x00", 3),
        "\x12\x7F"};
    const std::string text[] = {"", "Zg==", "Zm8=", "Zm9vYmFy", "--__", "gA==", "AIAA", "En8="};
    for (std::size_t i = 0; i < std::size(data); ++i) {
        EXPECT_EQ(Encoded(data[i]), text[i]);
        EXPECT_EQ(Decoded(text[i]), data[i]);
    }
    // A final pair's second byte from 0x80 up is merged sign-extended,
    // turning the first byte's bits to ones.
    EXPECT_EQ(Encoded(std::string("\x00\x80", 2)), "_4A=");
    EXPECT_EQ(Encoded("\x12\xFF"), "__8=");
    EXPECT_EQ(Decoded("_4A="), "\xFF\x80");
}

TEST(GuidBase64, DecodingSkipsForeignCharactersStopsAtEqualsAndCompletesAShortGroup) {
    for (const std::string& text : {std::string("Zm9v\r\nYmFy"), std::string("Zm9v\0YmFy", 9),
                                    std::string(" Z+m/9\tv.Y\x80m\xFF!Fy")}) {
        EXPECT_EQ(Decoded(text), "foobar");
    }
    EXPECT_EQ(Decoded("Zg==Zm9v"), "f");
    EXPECT_EQ(Decoded("Zm9vYg"), "foob");
    EXPECT_EQ(Decoded("Zm9vYmE"), "fooba");
    EXPECT_EQ(Decoded("Zm9vY"), "foo");
    EXPECT_EQ(CKWGuid::Decode64Bytes("Zm9vYmFy", 4), std::vector<BYTE>({'f', 'o', 'o'}));
}

TEST(GuidBase64, RandomDataOfEveryLengthRoundTripsInLinesOf76) {
    std::mt19937 random(7);
    for (std::size_t size = 0; size <= 300; ++size) {
        std::string data;
        while (data.size() < size) {
            data += static_cast<char>(random());
        }
        if (size % 3 == 2) {
            data.back() = static_cast<char>(data.back() & 0x7F);  // clear of the quirk
        }
        const std::string text = Encoded(data);
        const std::size_t characters = (size + 2) / 3 * 4;
        EXPECT_EQ(text.size(), characters + (characters == 0 ? 0 : (characters - 1) / 76 * 2));
        for (std::size_t at = 76; at < text.size(); at += 78) {
            EXPECT_EQ(text.substr(at, 2), "\r\n") << size;
        }
        EXPECT_EQ(Decoded(text), data) << size;
        const Buffer raw(GuidCodec::Encode64(data.data(), static_cast<int>(size)));
        int length = static_cast<int>(text.size());
        const Buffer bytes(GuidCodec::Decode64(raw.get(), &length));
        EXPECT_STREQ(raw.get(), text.c_str());
        EXPECT_EQ(std::string(bytes.get(), static_cast<std::size_t>(length)), data);
    }
}

TEST(GuidBase64, NullsAndNegativeLengthsGiveNothing) {
    int lengths[] = {12, -5};
    const Buffer buffers[] = {Buffer(GuidCodec::Decode64(nullptr, &lengths[0])),
                              Buffer(GuidCodec::Decode64("Zm9v", &lengths[1])),
                              Buffer(GuidCodec::Encode64(nullptr, 10)),
                              Buffer(GuidCodec::Encode64("abc", -3))};
    EXPECT_TRUE(lengths[0] == 0 && lengths[1] == 0 && buffers[0] && buffers[1]);
    EXPECT_TRUE(buffers[2] && buffers[3] && !buffers[2][0] && !buffers[3][0]);
    EXPECT_EQ(GuidCodec::Decode64("Zm9v", nullptr), nullptr);
    EXPECT_TRUE(CKWGuid::Encode64String(nullptr, 4).empty() &&
                CKWGuid::Decode64Bytes(nullptr, 4).empty());
}

}  // namespace
