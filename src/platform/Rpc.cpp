// The rpcrt4 GUID functions on platforms without rpcrt4.
//
// GUIDs are made on the object-creation path, so one must cost nanoseconds,
// not a system call (getrandom costs tens of nanoseconds per GUID even in large
// blocks). Each thread keeps a small pool of random bytes made by ChaCha12
// under a key read from the kernel's generator: twelve rounds, as the rand
// crate's default generator uses, leave a wide margin for identifiers that
// must be unique and unguessable, at half the cost of twenty. Each refill
// replaces the key with the first bytes it makes ("fast key erasure"), so the
// pool never reveals earlier GUIDs; a fresh key comes from the kernel every
// few thousand GUIDs and in a forked child, so parent and child never hand
// out the same GUIDs.
#if !defined(_WIN32)

#include "kwcore/platform/Rpc.h"

#include "KWChaCha.h"

#include <pthread.h>
#include <sys/random.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using kwChaCha::kBlockBytes;
using kwChaCha::kKeyWords;
using kwChaCha::kLanes;

constexpr int kChaChaRounds = 12;
// The stream is told apart by its key alone.
constexpr std::uint32_t kNoNonce[kwChaCha::kNonceWords] = {};

// ------------------------------------------------------- per-thread pool

constexpr std::size_t kPoolBytes = 8 * kBlockBytes;
constexpr std::size_t kKeyBytes = kKeyWords * sizeof(std::uint32_t);
// 256 refills of 30 GUIDs each between two keys from the kernel.
constexpr unsigned kRefillsPerKernelKey = 256;

// All zero means "empty, no key": a thread starts so, and a forked child is
// put back so.
struct RandomPool {
    std::uint32_t key[kKeyWords];
    unsigned char bytes[kPoolBytes];
    std::size_t remaining;
    unsigned refillsLeft;
};

thread_local RandomPool t_pool;

bool ReadKernelRandom(void* buffer, std::size_t size) {
    auto* bytes = static_cast<unsigned char*>(buffer);
    while (size > 0) {
        const ssize_t got = getrandom(bytes, size, 0);
        if (got < 0 && errno != EINTR) {
            return false;
        }
        if (got > 0) {
            bytes += got;
            size -= static_cast<std::size_t>(got);
        }
    }
    return true;
}

// The only thread left in a child is the one that forked: its pool has the
// parent's key, so it must not make another byte with it.
void ForgetPoolInChild() {
    t_pool = RandomPool{};
}

void WatchForForks() {
    static const int registered = pthread_atfork(nullptr, nullptr, &ForgetPoolInChild);
    static_cast<void>(registered);
}

bool TakeKernelKey(RandomPool& pool) {
    WatchForForks();
    if (!ReadKernelRandom(pool.key, kKeyBytes)) {
        return false;
    }
    pool.refillsLeft = kRefillsPerKernelKey;
    return true;
}

bool Refill(RandomPool& pool) {
    if (pool.refillsLeft == 0 && !TakeKernelKey(pool)) {
        return false;
    }
    --pool.refillsLeft;
    kwChaCha::MakeFourBlocks(pool.key, kNoNonce, 0, kChaChaRounds, pool.bytes);
    kwChaCha::MakeFourBlocks(pool.key, kNoNonce, kLanes, kChaChaRounds,
                             pool.bytes + kLanes * kBlockBytes);
    std::memcpy(pool.key, pool.bytes, kKeyBytes);
    pool.remaining = kPoolBytes - kKeyBytes;
    return true;
}

// ------------------------------------------------------------ text form

constexpr std::size_t kTextLength = 36;
constexpr const char* kLowerDigits = "0123456789abcdef";

bool IsHyphenPosition(std::size_t position) {
    return position == 8 || position == 13 || position == 18 || position == 23;
}

bool IsHyphenAfterByte(int byte) {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

int HexDigitValue(char ch) {
    if (ch >= '0' && ch <= '9') {
        return ch - '0';
    }
    if (ch >= 'a' && ch <= 'f') {
        return ch - 'a' + 10;
    }
    if (ch >= 'A' && ch <= 'F') {
        return ch - 'A' + 10;
    }
    return -1;
}

// The text shows Data1, Data2 and Data3 as numbers, then the Data4 bytes.
void ToTextOrder(const UUID& uuid, unsigned char (&bytes)[16]) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<unsigned char>(uuid.Data1 >> (24 - 8 * i));
    }
    bytes[4] = static_cast<unsigned char>(uuid.Data2 >> 8);
    bytes[5] = static_cast<unsigned char>(uuid.Data2);
    bytes[6] = static_cast<unsigned char>(uuid.Data3 >> 8);
    bytes[7] = static_cast<unsigned char>(uuid.Data3);
    std::memcpy(bytes + 8, uuid.Data4, 8);
}

UUID FromTextOrder(const unsigned char (&bytes)[16]) {
    UUID uuid;
    uuid.Data1 = static_cast<DWORD>(bytes[0]) << 24 | static_cast<DWORD>(bytes[1]) << 16 |
                 static_cast<DWORD>(bytes[2]) << 8 | bytes[3];
    uuid.Data2 = static_cast<WORD>(bytes[4] << 8 | bytes[5]);
    uuid.Data3 = static_cast<WORD>(bytes[6] << 8 | bytes[7]);
    std::memcpy(uuid.Data4, bytes + 8, 8);
    return uuid;
}

void WriteText(const UUID& uuid, char* text) {
    unsigned char bytes[16];
    ToTextOrder(uuid, bytes);
    for (int i = 0; i < 16; ++i) {
        if (IsHyphenAfterByte(i)) {
            *text++ = '-';
        }
        *text++ = kLowerDigits[bytes[i] >> 4];
        *text++ = kLowerDigits[bytes[i] & 0x0F];
    }
    *text = '\0';
}

// Reads no further than the first character that does not fit, so a short
// text is never read past its terminator.
bool ReadText(const char* text, unsigned char (&bytes)[16]) {
    int byte = 0;
    for (std::size_t position = 0; position < kTextLength;) {
        if (IsHyphenPosition(position)) {
            if (text[position++] != '-') {
                return false;
            }
            continue;
        }
        const int high = HexDigitValue(text[position]);
        if (high < 0) {
            return false;
        }
        const int low = HexDigitValue(text[position + 1]);
        if (low < 0) {
            return false;
        }
        bytes[byte++] = static_cast<unsigned char>(high << 4 | low);
        position += 2;
    }
    return text[kTextLength] == '\0';
}

}  // namespace

RPC_STATUS UuidCreate(UUID* uuid) {
    if (uuid == nullptr) {
        return RPC_S_INVALID_ARG;
    }
    RandomPool& pool = t_pool;
    if (pool.remaining == 0 && !Refill(pool)) {
        *uuid = UUID{};
        return RPC_S_OUT_OF_RESOURCES;
    }
    UUID random;
    std::memcpy(&random, pool.bytes + kPoolBytes - pool.remaining, sizeof random);
    pool.remaining -= sizeof random;
    random.Data3 = static_cast<WORD>((random.Data3 & 0x0FFF) | 0x4000);
    random.Data4[0] = static_cast<BYTE>((random.Data4[0] & 0x3F) | 0x80);
    *uuid = random;
    return RPC_S_OK;
}

RPC_STATUS UuidToStringA(const UUID* uuid, RPC_CSTR* stringUuid) {
    if (stringUuid == nullptr) {
        return RPC_S_INVALID_ARG;
    }
    *stringUuid = nullptr;
    auto* text = static_cast<char*>(std::malloc(kTextLength + 1));
    if (text == nullptr) {
        return RPC_S_OUT_OF_MEMORY;
    }
    WriteText(uuid != nullptr ? *uuid : UUID{}, text);
    *stringUuid = reinterpret_cast<RPC_CSTR>(text);
    return RPC_S_OK;
}

RPC_STATUS UuidFromStringA(RPC_CSTR stringUuid, UUID* uuid) {
    if (uuid == nullptr) {
        return RPC_S_INVALID_ARG;
    }
    if (stringUuid == nullptr) {
        *uuid = UUID{};
        return RPC_S_OK;
    }
    unsigned char bytes[16];
    if (!ReadText(reinterpret_cast<const char*>(stringUuid), bytes)) {
        return RPC_S_INVALID_STRING_UUID;
    }
    *uuid = FromTextOrder(bytes);
    return RPC_S_OK;
}

RPC_STATUS RpcStringFreeA(RPC_CSTR* string) {
    if (string != nullptr) {
        std::free(*string);
        *string = nullptr;
    }
    return RPC_S_OK;
}

#endif  // !_WIN32
