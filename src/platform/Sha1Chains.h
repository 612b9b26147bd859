#pragma once

#include <array>
#include <cstdint>
#include <vector>

// The rounds of PBKDF2-HMAC-SHA1 after the first, worked out with the processor's SHA
// instructions where it has them. Each round is two SHA-1 compressions of one block, each
// waiting for the one before, so the time is the compression's latency: kept in registers
// and two chains interleaved, a catalogue's key takes a quarter of the time OpenSSL's one-block
// calls do, on one core instead of two.
namespace Sha1Chains {

using Digest = std::array<unsigned char, 20>;
// SHA-1's state after hashing one block: h0..h4.
using State = std::array<std::uint32_t, 5>;

// Whether this processor has the instructions; run() must not be called otherwise.
bool available();

// For each chain, given U1 (the first round's HMAC) in `chains`: computes U2..U`rounds` from the
// HMAC key's inner and outer states (the pads already hashed) and leaves U1 ^ U2 ^ ... there.
void run(const State &inner, const State &outer, std::vector<Digest> &chains, int rounds);

}
