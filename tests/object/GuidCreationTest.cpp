// New GUIDs, and the library's own GUID text functions where it has them.
#include <gtest/gtest.h>

#include <cstring>
#include <future>
#include <random>
#include <set>
#include <string>
#include <vector>

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
