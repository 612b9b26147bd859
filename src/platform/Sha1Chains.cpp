#include "platform/Sha1Chains.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <cpuid.h>
#include <immintrin.h>
#define VELMORA_SHA_INSTRUCTIONS 1
#endif

namespace {

#ifdef VELMORA_SHA_INSTRUCTIONS

#define SHA_TARGET __attribute__((target("sha,sse4.1,ssse3"), always_inline)) inline

// A state or a digest in the lanes the instructions use: A..D in one register, highest lane
// first, and E in the highest lane of another.
struct Lanes {
    __m128i abcd;
    __m128i e;
};

// One SHA-1 compression of `state` over a block whose 16 words are w0..w3 (four each).
SHA_TARGET Lanes compress(const Lanes &state, __m128i w0, __m128i w1, __m128i w2, __m128i w3)
{
    __m128i abcd = state.abcd;
    __m128i e0 = _mm_add_epi32(state.e, w0);
    __m128i e1 = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, e0, 0); // rounds 0-3
    e1 = _mm_sha1nexte_epu32(e1, w1);
    e0 = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, e1, 0); // 4-7
    w0 = _mm_sha1msg1_epu32(w0, w1);
    e0 = _mm_sha1nexte_epu32(e0, w2);
    e1 = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, e0, 0); // 8-11
    w1 = _mm_sha1msg1_epu32(w1, w2);
    w0 = _mm_xor_si128(w0, w2);

    // Rounds 12-67 follow one pattern, four at a time, the message words taking turns.
    __m128i *w[4] = {&w0, &w1, &w2, &w3};
#pragma GCC unroll 14
    for (int group = 3; group < 17; ++group) {
        __m128i &current = *w[group % 4];
        __m128i &next = *w[(group + 1) % 4];
        __m128i &after = *w[(group + 2) % 4];
        __m128i &last = *w[(group + 3) % 4];
        const int function = group / 5;
        __m128i &into = group % 2 == 0 ? e0 : e1;
        __m128i &other = group % 2 == 0 ? e1 : e0;
        into = _mm_sha1nexte_epu32(into, current);
        other = abcd;
        next = _mm_sha1msg2_epu32(next, current);
        switch (function) {
        case 0: abcd = _mm_sha1rnds4_epu32(abcd, into, 0); break;
        case 1: abcd = _mm_sha1rnds4_epu32(abcd, into, 1); break;
        case 2: abcd = _mm_sha1rnds4_epu32(abcd, into, 2); break;
        default: abcd = _mm_sha1rnds4_epu32(abcd, into, 3); break;
        }
        last = _mm_sha1msg1_epu32(last, current);
        after = _mm_xor_si128(after, current);
    }
    // 68-79: the schedule runs out.
    e1 = _mm_sha1nexte_epu32(e1, w1);
    e0 = abcd;
    w2 = _mm_sha1msg2_epu32(w2, w1);
    abcd = _mm_sha1rnds4_epu32(abcd, e1, 3); // 68-71
    w3 = _mm_xor_si128(w3, w1);
    e0 = _mm_sha1nexte_epu32(e0, w2);
    e1 = abcd;
    w3 = _mm_sha1msg2_epu32(w3, w2);
    abcd = _mm_sha1rnds4_epu32(abcd, e0, 3); // 72-75
    e1 = _mm_sha1nexte_epu32(e1, w3);
    e0 = abcd;
    abcd = _mm_sha1rnds4_epu32(abcd, e1, 3); // 76-79
    return {_mm_add_epi32(abcd, state.abcd), _mm_sha1nexte_epu32(e0, state.e)};
}

SHA_TARGET Lanes lanesOf(const std::uint32_t *words)
{
    return {_mm_set_epi32(int(words[0]), int(words[1]), int(words[2]), int(words[3])), _mm_set_epi32(int(words[4]), 0, 0, 0)};
}

SHA_TARGET Lanes lanesOf(const Sha1Chains::Digest &digest)
{
    std::uint32_t words[5];
    for (int i = 0; i < 5; ++i)
        words[i] = std::uint32_t(digest[size_t(4 * i)]) << 24 | std::uint32_t(digest[size_t(4 * i + 1)]) << 16
            | std::uint32_t(digest[size_t(4 * i + 2)]) << 8 | std::uint32_t(digest[size_t(4 * i + 3)]);
    return lanesOf(words);
}

SHA_TARGET Sha1Chains::Digest digestOf(const Lanes &lanes)
{
    const std::uint32_t words[5] = {std::uint32_t(_mm_extract_epi32(lanes.abcd, 3)), std::uint32_t(_mm_extract_epi32(lanes.abcd, 2)),
                                    std::uint32_t(_mm_extract_epi32(lanes.abcd, 1)), std::uint32_t(_mm_extract_epi32(lanes.abcd, 0)),
                                    std::uint32_t(_mm_extract_epi32(lanes.e, 3))};
    Sha1Chains::Digest digest{};
    for (int i = 0; i < 5; ++i)
        for (int b = 0; b < 4; ++b)
            digest[size_t(4 * i + b)] = static_cast<unsigned char>(words[i] >> (24 - 8 * b));
    return digest;
}

// HMAC of a digest: each half hashes one block after its pad's, the digest with SHA-1's
// padding for 64 + 20 bytes.
SHA_TARGET Lanes hmacOfDigest(const Lanes &inner, const Lanes &outer, const Lanes &message)
{
    const __m128i padding = _mm_set_epi32(0, int(0x80000000u), 0, 0);
    const __m128i zero = _mm_setzero_si128();
    const __m128i length = _mm_set_epi32(0, 0, 0, (64 + 20) * 8);
    const Lanes hashed = compress(inner, message.abcd, _mm_or_si128(message.e, padding), zero, length);
    return compress(outer, hashed.abcd, _mm_or_si128(hashed.e, padding), zero, length);
}

__attribute__((target("sha,sse4.1,ssse3"))) void runLanes(const Sha1Chains::State &innerState, const Sha1Chains::State &outerState,
                                                         std::vector<Sha1Chains::Digest> &chains, int rounds)
{
    const Lanes inner = lanesOf(innerState.data());
    const Lanes outer = lanesOf(outerState.data());
    // Two chains at a time: while one compression waits on its last instruction, the other's
    // instructions run.
    size_t chain = 0;
    for (; chain + 1 < chains.size(); chain += 2) {
        Lanes u1 = lanesOf(chains[chain]);
        Lanes u2 = lanesOf(chains[chain + 1]);
        Lanes sum1 = u1;
        Lanes sum2 = u2;
        for (int round = 1; round < rounds; ++round) {
            u1 = hmacOfDigest(inner, outer, u1);
            u2 = hmacOfDigest(inner, outer, u2);
            sum1 = {_mm_xor_si128(sum1.abcd, u1.abcd), _mm_xor_si128(sum1.e, u1.e)};
            sum2 = {_mm_xor_si128(sum2.abcd, u2.abcd), _mm_xor_si128(sum2.e, u2.e)};
        }
        chains[chain] = digestOf(sum1);
        chains[chain + 1] = digestOf(sum2);
    }
    for (; chain < chains.size(); ++chain) {
        Lanes u = lanesOf(chains[chain]);
        Lanes sum = u;
        for (int round = 1; round < rounds; ++round) {
            u = hmacOfDigest(inner, outer, u);
            sum = {_mm_xor_si128(sum.abcd, u.abcd), _mm_xor_si128(sum.e, u.e)};
        }
        chains[chain] = digestOf(sum);
    }
}

#endif

}

bool Sha1Chains::available()
{
#ifdef VELMORA_SHA_INSTRUCTIONS
    static const bool present = [] {
        unsigned a = 0, b = 0, c = 0, d = 0;
        if (!__get_cpuid(1, &a, &b, &c, &d) || !(c & bit_SSSE3) || !(c & bit_SSE4_1))
            return false;
        return __get_cpuid_count(7, 0, &a, &b, &c, &d) && (b & bit_SHA);
    }();
    return present;
#else
    return false;
#endif
}

void Sha1Chains::run(const State &inner, const State &outer, std::vector<Digest> &chains, int rounds)
{
#ifdef VELMORA_SHA_INSTRUCTIONS
    runLanes(inner, outer, chains, rounds);
#else
    (void)inner;
    (void)outer;
    (void)chains;
    (void)rounds;
#endif
}
