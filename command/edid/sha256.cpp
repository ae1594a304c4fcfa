#include "command/edid/sha256.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kBlockSize = 64;  // bytes
constexpr std::size_t kLengthSize = 8;  // bytes at the end of the last block

typedef std::array<std::uint32_t, 8> TState;

/// The first 32 bits of the fractional parts of the square roots of the first eight primes [5.3.3].
constexpr TState kStart = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                           0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};

/// The first 32 bits of the fractional parts of the cube roots of the first 64 primes [4.2.2].
constexpr std::uint32_t kRoundConstants[] = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

constexpr std::uint32_t Rotate(std::uint32_t word, unsigned int bits) { return word >> bits | word << (32 - bits); }

/// The message schedule [6.2.2, step 1].
std::array<std::uint32_t, 64> MakeSchedule(const std::uint8_t* block) {
  std::array<std::uint32_t, 64> words;
  for (std::size_t index = 0; index < 16; ++index) {
    const std::uint8_t* const bytes = block + 4 * index;
    words[index] = static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
                   static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
  }
  for (std::size_t index = 16; index < words.size(); ++index) {
    const std::uint32_t early = words[index - 15];
    const std::uint32_t late = words[index - 2];
    words[index] = words[index - 16] + (Rotate(early, 7) ^ Rotate(early, 18) ^ early >> 3) + words[index - 7] +
                   (Rotate(late, 17) ^ Rotate(late, 19) ^ late >> 10);
  }
  return words;
}

/// One round, which replaces d and h [6.2.2, step 3]. For the next round the caller passes the eight words rotated by
/// one place, which is faster than moving them.
inline void DoRound(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t& d, std::uint32_t e,
                    std::uint32_t f, std::uint32_t g, std::uint32_t& h, std::uint32_t word) {
  h += (Rotate(e, 6) ^ Rotate(e, 11) ^ Rotate(e, 25)) + (g ^ (e & (f ^ g))) + word;
  d += h;
  h += (Rotate(a, 2) ^ Rotate(a, 13) ^ Rotate(a, 22)) + ((a & b) | (c & (a | b)));
}

/// Adds one block to the state [6.2.2, steps 2 to 4].
void Compress(TState& state, const std::uint8_t* block) {
  const std::array<std::uint32_t, 64> words = MakeSchedule(block);
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t round = 0; round < words.size(); round += 8) {
    const auto word = [&](std::size_t index) { return kRoundConstants[round + index] + words[round + index]; };
    DoRound(a, b, c, d, e, f, g, h, word(0));
    DoRound(h, a, b, c, d, e, f, g, word(1));
    DoRound(g, h, a, b, c, d, e, f, word(2));
    DoRound(f, g, h, a, b, c, d, e, word(3));
    DoRound(e, f, g, h, a, b, c, d, word(4));
    DoRound(d, e, f, g, h, a, b, c, word(5));
    DoRound(c, d, e, f, g, h, a, b, word(6));
    DoRound(b, c, d, e, f, g, h, a, word(7));
  }
  const TState worked = {a, b, c, d, e, f, g, h};
  for (std::size_t index = 0; index < state.size(); ++index) state[index] += worked[index];
}

/// The rest of the message after its whole blocks, padded: a 1 bit, zeros, and the length in bits [5.1.1].
std::vector<std::uint8_t> MakeTail(const std::vector<std::uint8_t>& bytes, std::size_t begin) {
  std::vector<std::uint8_t> tail(bytes.begin() + static_cast<std::ptrdiff_t>(begin), bytes.end());
  tail.push_back(0x80);
  tail.resize((tail.size() + kLengthSize + kBlockSize - 1) / kBlockSize * kBlockSize);
  std::uint64_t length = std::uint64_t{bytes.size()} * 8;
  for (auto byte = tail.rbegin(); length != 0; ++byte, length >>= 8) *byte = static_cast<std::uint8_t>(length);
  return tail;
}

}  // namespace

std::string HashSha256(const std::vector<std::uint8_t>& bytes) {
  TState state = kStart;
  const std::size_t whole = bytes.size() / kBlockSize * kBlockSize;
  for (std::size_t begin = 0; begin < whole; begin += kBlockSize) Compress(state, bytes.data() + begin);
  const std::vector<std::uint8_t> tail = MakeTail(bytes, whole);
  for (std::size_t begin = 0; begin < tail.size(); begin += kBlockSize) Compress(state, tail.data() + begin);
  std::string text;
  text.reserve(2 * kBlockSize);
  for (const std::uint32_t word : state) {
    for (unsigned int shift = 32; shift > 0; shift -= 4) text += "0123456789abcdef"[word >> (shift - 4) & 0xFU];
  }
  return text;
}
