// The ChaCha block function, four consecutive blocks at a time, behind the
// GUID generator. The round count is a parameter so the core can be checked
// against the published 20-round vectors while the generator runs 12; the
// generator passes a constant, so its loop compiles as before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kwChaCha {

// One state word of four consecutive blocks.
typedef std::uint32_t WordLanes __attribute__((vector_size(16)));

constexpr int kLanes = 4;
constexpr int kStateWords = 16;
constexpr std::size_t kBlockBytes = 64;
constexpr std::size_t kKeyWords = 8;
constexpr std::size_t kNonceWords = 3;

inline WordLanes Broadcast(std::uint32_t word) {
    return WordLanes{word, word, word, word};
}

template <int Bits>
WordLanes RotateLeft(WordLanes lanes) {
    return (lanes << Bits) | (lanes >> (32 - Bits));
}

inline void QuarterRound(WordLanes& a, WordLanes& b, WordLanes& c, WordLanes& d) {
    a += b;
    d = RotateLeft<16>(d ^ a);
    c += d;
    b = RotateLeft<12>(b ^ c);
    a += b;
    d = RotateLeft<8>(d ^ a);
    c += d;
    b = RotateLeft<7>(b ^ c);
}

inline void DoubleRound(WordLanes (&x)[kStateWords]) {
    QuarterRound(x[0], x[4], x[8], x[12]);
    QuarterRound(x[1], x[5], x[9], x[13]);
    QuarterRound(x[2], x[6], x[10], x[14]);
    QuarterRound(x[3], x[7], x[11], x[15]);
    QuarterRound(x[0], x[5], x[10], x[15]);
    QuarterRound(x[1], x[6], x[11], x[12]);
    QuarterRound(x[2], x[7], x[8], x[13]);
    QuarterRound(x[3], x[4], x[9], x[14]);
}

// Writes the four blocks with counters firstBlock .. firstBlock + 3 after
// rounds rounds (an even count), word by word across the blocks (word 0 of
// each, then word 1, ...): the generator takes any fixed order of the key
// stream, and this one needs no transposing. Words are in host byte order.
inline void MakeFourBlocks(const std::uint32_t (&key)[kKeyWords],
                           const std::uint32_t (&nonce)[kNonceWords], std::uint32_t firstBlock,
                           int rounds, unsigned char* out) {
    static constexpr std::uint32_t kSigma[4] = {0x61707865, 0x3320646e, 0x79622d32, 0x6b206574};
    WordLanes input[kStateWords];
    for (int i = 0; i < 4; ++i) {
        input[i] = Broadcast(kSigma[i]);
    }
    for (std::size_t i = 0; i < kKeyWords; ++i) {
        input[4 + i] = Broadcast(key[i]);
    }
    input[12] = Broadcast(firstBlock) + WordLanes{0, 1, 2, 3};
    for (std::size_t i = 0; i < kNonceWords; ++i) {
        input[13 + i] = Broadcast(nonce[i]);
    }

    WordLanes x[kStateWords];
    std::memcpy(x, input, sizeof x);
    for (int round = 0; round < rounds; round += 2) {
        DoubleRound(x);
    }
    for (int word = 0; word < kStateWords; ++word) {
        const WordLanes sum = x[word] + input[word];
        std::memcpy(out + word * sizeof sum, &sum, sizeof sum);
    }
}

}  // namespace kwChaCha
