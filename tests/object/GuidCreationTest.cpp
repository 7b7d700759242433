// New GUIDs, and the library's own GUID text functions where it has them.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <string>
#include <thread>
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

TEST(GuidCreation, DistinctVersion4GuidsWithEveryOtherBitRandom) {
    constexpr int kCount = 100000;
    const std::vector<GUID> guids = NewGuids(kCount);
    EXPECT_EQ(DistinctCount(guids), guids.size());
    int ones[128] = {};
    for (const GUID& guid : guids) {
        EXPECT_EQ(guid.Data3 >> 12, 4);
        EXPECT_EQ(guid.Data4[0] & 0xC0, 0x80);
        for (int bit = 0; bit < 128; ++bit) {
            ones[bit] += (reinterpret_cast<const BYTE*>(&guid)[bit / 8] >> (bit % 8)) & 1;
        }
    }
    for (int bit = 0; bit < 128; ++bit) {
        const bool fixed = (bit >= 60 && bit < 64) || bit == 70 || bit == 71;  // version, variant
        EXPECT_TRUE(fixed || (ones[bit] > kCount * 0.48 && ones[bit] < kCount * 0.52)) << bit;
    }
}

TEST(GuidCreation, ThreadsNeverShareGuids) {
    std::vector<std::vector<GUID>> perThread(8);
    std::vector<std::thread> threads;
    for (std::vector<GUID>& guids : perThread) {
        threads.emplace_back([&guids] { guids = NewGuids(20000); });
    }
    std::vector<GUID> all;
    for (std::size_t t = 0; t < threads.size(); ++t) {
        threads[t].join();
        all.insert(all.end(), perThread[t].begin(), perThread[t].end());
    }
    EXPECT_EQ(DistinctCount(all), all.size());
}

#if !defined(_WIN32)  // fork and the text functions below are the system's on Windows
TEST(GuidCreation, ParentAndForkedChildNeverShareGuids) {
    NewGuids(1);  // the parent's per-thread random bytes, which a child inherits
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    const pid_t child = fork();
    if (child == 0) {
        const std::vector<GUID> guids = NewGuids(2000);
        const auto size = static_cast<ssize_t>(guids.size() * sizeof(GUID));
        _exit(write(channel[1], guids.data(), static_cast<std::size_t>(size)) == size ? 0 : 1);
    }
    close(channel[1]);
    std::vector<GUID> all = NewGuids(2000);
    GUID guid;
    while (read(channel[0], &guid, sizeof guid) == sizeof guid) {
        all.push_back(guid);
    }
    close(channel[0]);
    waitpid(child, nullptr, 0);
    ASSERT_EQ(all.size(), 4000u);
    EXPECT_EQ(DistinctCount(all), all.size());
}

const UUID kMarker = {0xDEADBEEF, 0x1111, 0x2222, {3, 3, 3, 3, 3, 3, 3, 3}};

RPC_STATUS Parse(std::string text, UUID& uuid) {
    return UuidFromStringA(reinterpret_cast<RPC_CSTR>(&text[0]), &uuid);
}

TEST(GuidPlatformText, OnlyThe36CharacterFormParsesAndFailuresChangeNothing) {
    const std::string text = "95E11590-e209-41b1-811a-263330087175-0123456789abcdef";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        UUID uuid = kMarker;
        const RPC_STATUS status = Parse(text.substr(0, length), uuid);
        EXPECT_EQ(status, length == 36 ? RPC_S_OK : RPC_S_INVALID_STRING_UUID) << length;
        EXPECT_EQ(std::memcmp(&uuid, &kMarker, sizeof uuid) == 0, length != 36) << length;
    }
}

TEST(GuidPlatformText, NullArgumentsAreSafe) {
    UUID uuid = kMarker;
    EXPECT_EQ(UuidFromStringA(nullptr, &uuid), RPC_S_OK);  // the empty GUID, as rpcrt4 gives
    EXPECT_EQ(CKWGuid(uuid), CKWGuid());
    RPC_CSTR text = nullptr;
    ASSERT_EQ(UuidToStringA(nullptr, &text), RPC_S_OK);
    EXPECT_STREQ(reinterpret_cast<const char*>(text), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(RpcStringFreeA(&text), RPC_S_OK);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(RpcStringFreeA(nullptr), RPC_S_OK);
    EXPECT_EQ(UuidFromStringA(nullptr, nullptr), RPC_S_INVALID_ARG);
    EXPECT_EQ(UuidToStringA(&uuid, nullptr), RPC_S_INVALID_ARG);
    EXPECT_EQ(UuidCreate(nullptr), RPC_S_INVALID_ARG);
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
    for (const GUID& guid : NewGuids(20000)) {
        std::string text = CKWGuid(guid).GetSTLStringSQL();
        RPC_CSTR ours = nullptr;
        UuidToStringA(&guid, &ours);
        BYTE bytes[16];
        ASSERT_EQ(parse(text.c_str(), bytes), 0);
        char theirs[37];
        unparse(bytes, theirs);
        EXPECT_STREQ(reinterpret_cast<const char*>(ours), theirs);
        RpcStringFreeA(&ours);

        text[random() % 36] = static_cast<char>(1 + random() % 255);
        UUID parsed = kMarker;
        const bool accepted = Parse(text, parsed) == RPC_S_OK;
        ASSERT_EQ(accepted, parse(text.c_str(), bytes) == 0) << text;
        RPC_CSTR reparsed = nullptr;
        UuidToStringA(&parsed, &reparsed);
        unparse(bytes, theirs);
        EXPECT_TRUE(!accepted || std::strcmp(reinterpret_cast<const char*>(reparsed), theirs) == 0);
        RpcStringFreeA(&reparsed);
    }
}
#endif

}  // namespace
