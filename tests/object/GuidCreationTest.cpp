// New GUIDs, the cipher that makes them, and the library's own GUID text
// functions where it has them.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <future>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "KWChaCha.h"
#include "kwcore/object/CKWGuid.h"
#include "kwcore/platform/Rpc.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

std::vector<GUID> NewGuids(std::size_t count) {
    std::vector<GUID> guids(count);
    for (GUID& guid : guids) {
        CKWGuid::CreateNewGUID().SetGUID(guid);
    }
    return guids;
}

std::size_t DistinctCount(const std::vector<GUID>& guids) {
    return std::set<CKWGuid>(guids.begin(), guids.end()).size();
}

TEST(GuidCreation, GuidsFromManyThreadsAreDistinctVersion4WithEveryOtherBitRandom) {
    std::vector<std::future<std::vector<GUID>>> threads;
    for (int t = 0; t < 8; ++t) {
        threads.push_back(std::async(std::launch::async, NewGuids, 20000));
    }
    std::vector<GUID> guids;
    for (auto& thread : threads) {
        const std::vector<GUID> some = thread.get();
        guids.insert(guids.end(), some.begin(), some.end());
    }
    EXPECT_EQ(DistinctCount(guids), guids.size());
    int ones[128] = {};
    for (const GUID& guid : guids) {
        EXPECT_TRUE(guid.Data3 >> 12 == 4 && (guid.Data4[0] & 0xC0) == 0x80);
        for (int bit = 0; bit < 128; ++bit) {
            ones[bit] += (reinterpret_cast<const BYTE*>(&guid)[bit / 8] >> (bit % 8)) & 1;
        }
    }
    const double count = static_cast<double>(guids.size());
    for (int bit = 0; bit < 128; ++bit) {
        const bool fixed = (bit >= 60 && bit < 64) || bit == 70 || bit == 71;  // version, variant
        EXPECT_TRUE(fixed || (ones[bit] > count * 0.48 && ones[bit] < count * 0.52)) << bit;
    }
}

// One block of four made at once, as the serialized bytes in hex.
std::string BlockText(const std::uint32_t (&key)[kwChaCha::kKeyWords],
                      const std::uint32_t (&nonce)[kwChaCha::kNonceWords], std::uint32_t firstBlock,
                      int lane) {
    unsigned char lanes[kwChaCha::kLanes * kwChaCha::kBlockBytes];
    kwChaCha::MakeFourBlocks(key, nonce, firstBlock, 20, lanes);
    std::string text;
    for (int word = 0; word < kwChaCha::kStateWords; ++word) {
        std::uint32_t value;
        std::memcpy(&value, lanes + (word * kwChaCha::kLanes + lane) * sizeof value, sizeof value);
        for (int byte = 0; byte < 4; ++byte) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", (value >> 8 * byte) & 0xFF);
            text += digits;
        }
    }
    return text;
}

// The generator's block core, run for 20 rounds, against the RFC 8439 vectors.
TEST(GuidCipher, QuarterRoundAndBlocksMatchTheChaCha20Vectors) {
    using kwChaCha::WordLanes;
    WordLanes a = kwChaCha::Broadcast(0x11111111), b = kwChaCha::Broadcast(0x01020304);
    WordLanes c = kwChaCha::Broadcast(0x9b8d6f43), d = kwChaCha::Broadcast(0x01234567);
    kwChaCha::QuarterRound(a, b, c, d);
    EXPECT_TRUE(a[0] == 0xea2a92f4 && b[0] == 0xcb1cf8ce && c[0] == 0x4581472e &&
                d[0] == 0x5881c4bb);

    struct Vector {
        std::uint32_t key[8];  // little-endian words of the key bytes
        std::uint32_t nonce[3];
        std::uint32_t counter;
        const char* block;  // the serialized block
    };
    const Vector vectors[] = {
        // 2.3.2: key 00 01 .. 1f, nonce 00 00 00 09 00 00 00 4a 00 00 00 00
        {{0x03020100, 0x07060504, 0x0b0a0908, 0x0f0e0d0c, 0x13121110, 0x17161514, 0x1b1a1918,
          0x1f1e1d1c},
         {0x09000000, 0x4a000000, 0},
         1,
         "10f1e7e4d13b5915500fdd1fa32071c4c7d1f4c733c068030422aa9ac3d46c4e"
         "d2826446079faa0914c2d705d98b02a2b5129cd1de164eb9cbd083e8a2503c4e"},
        // A.1 #1 and #2: all-zero key and nonce, counters 0 and 1
        {{},
         {},
         0,
         "76b8e0ada0f13d90405d6ae55386bd28bdd219b8a08ded1aa836efcc8b770dc7"
         "da41597c5157488d7724e03fb8d84a376a43b8f41518a11cc387b669b2ee6586"},
        {{},
         {},
         1,
         "9f07e7be5551387a98ba977c732d080dcb0f29a048e3656912c6533e32ee7aed"
         "29b721769ce64e43d57133b074d839d531ed1f28510afb45ace10a1f4b794d6f"},
    };
    for (const Vector& vector : vectors) {
        // The vector's block in every lane: made first, or after earlier blocks.
        for (std::uint32_t lane = 0; lane < kwChaCha::kLanes && lane <= vector.counter; ++lane) {
            EXPECT_EQ(BlockText(vector.key, vector.nonce, vector.counter - lane, lane),
                      vector.block)
                << vector.counter << ", lane " << lane;
        }
        // The later lanes are the blocks that follow.
        for (int lane = 1; lane < kwChaCha::kLanes; ++lane) {
            EXPECT_EQ(BlockText(vector.key, vector.nonce, vector.counter, lane),
                      BlockText(vector.key, vector.nonce, vector.counter + lane, 0))
                << vector.counter << ", lane " << lane;
        }
    }
}

#if !defined(_WIN32)  // fork and the text functions below are the system's on Windows
TEST(GuidCreation, ParentAndForkedChildNeverShareGuids) {
    NewGuids(1);  // the parent's per-thread random bytes, which a child inherits
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    if (fork() == 0) {
        const std::vector<GUID> guids = NewGuids(2000);
        _exit(write(channel[1], guids.data(), guids.size() * sizeof(GUID)) > 0 ? 0 : 1);
    }
    close(channel[1]);
    std::vector<GUID> all = NewGuids(2000);
    for (GUID guid; read(channel[0], &guid, sizeof guid) == sizeof guid;) {
        all.push_back(guid);
    }
    close(channel[0]);
    wait(nullptr);
    ASSERT_EQ(all.size(), 4000u);
    EXPECT_EQ(DistinctCount(all), all.size());
}

const UUID kMarker = {0xDEADBEEF, 0x1111, 0x2222, {3, 3, 3, 3, 3, 3, 3, 3}};

RPC_STATUS Parse(std::string text, UUID& uuid) {
    return UuidFromStringA(reinterpret_cast<RPC_CSTR>(&text[0]), &uuid);
}

TEST(GuidPlatformText, OnlyThe36CharacterFormParsesAndNullArgumentsAreSafe) {
    const std::string text = "95E11590-e209-41b1-811a-263330087175-0123456789abcdef";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        UUID uuid = kMarker;
        const RPC_STATUS status = Parse(text.substr(0, length), uuid);
        EXPECT_EQ(status, length == 36 ? RPC_S_OK : RPC_S_INVALID_STRING_UUID) << length;
        EXPECT_EQ(std::memcmp(&uuid, &kMarker, sizeof uuid) == 0, length != 36) << length;
    }
    UUID uuid = kMarker;
    EXPECT_EQ(UuidFromStringA(nullptr, &uuid), RPC_S_OK);  // the empty GUID, as rpcrt4 gives
    EXPECT_EQ(CKWGuid(uuid), CKWGuid());
    RPC_CSTR written = nullptr;
    ASSERT_EQ(UuidToStringA(nullptr, &written), RPC_S_OK);
    EXPECT_STREQ(reinterpret_cast<const char*>(written), "00000000-0000-0000-0000-000000000000");
    EXPECT_TRUE(RpcStringFreeA(&written) == RPC_S_OK && written == nullptr);
    EXPECT_TRUE(RpcStringFreeA(nullptr) == RPC_S_OK && UuidCreate(nullptr) == RPC_S_INVALID_ARG);
    EXPECT_TRUE(UuidFromStringA(nullptr, nullptr) == RPC_S_INVALID_ARG &&
                UuidToStringA(&uuid, nullptr) == RPC_S_INVALID_ARG);
}

// libuuid, when the system has it, judges the 36-character text; its uuid_t
// holds the bytes in text order.
template <typename Function>
Function LibUuid(const char* name) {
    static void* const library = dlopen("libuuid.so.1", RTLD_NOW);
    return library != nullptr ? reinterpret_cast<Function>(dlsym(library, name)) : nullptr;
}

TEST(GuidPlatformText, AgreesWithLibUuidOnRandomAndMutatedTexts) {
    const auto unparse = LibUuid<void (*)(const BYTE*, char*)>("uuid_unparse_lower");
    const auto parse = LibUuid<int (*)(const char*, BYTE*)>("uuid_parse");
    if (unparse == nullptr || parse == nullptr) {
        GTEST_SKIP() << "libuuid is not installed";
    }
    std::mt19937 random(5);
    for (const GUID& guid : NewGuids(40000)) {
        std::string text = CKWGuid(guid).GetSTLStringSQL();
        if (random() % 2 == 0) {
            text[random() % 36] = static_cast<char>(1 + random() % 255);
        }
        UUID ours = kMarker;
        BYTE theirs[16];
        const bool accepted = Parse(text, ours) == RPC_S_OK;
        ASSERT_EQ(accepted, parse(text.c_str(), theirs) == 0) << text;
        if (accepted) {
            RPC_CSTR written = nullptr;
            ASSERT_EQ(UuidToStringA(&ours, &written), RPC_S_OK);
            char expected[37];
            unparse(theirs, expected);
            EXPECT_STREQ(reinterpret_cast<const char*>(written), expected);
            RpcStringFreeA(&written);
        }
    }
}
#endif

}  // namespace
