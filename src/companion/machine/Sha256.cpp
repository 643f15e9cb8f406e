#include "companion/machine/Sha256.h"

#include <algorithm>
#include <bit>

namespace zolex::companion {

namespace {

// clang-format off
constexpr std::array<std::uint32_t, 64> roundConstants = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};
// clang-format on

constexpr std::size_t blockSize = 64;
constexpr std::size_t lengthAt = 56; ///< where the length stands in the last block

std::uint32_t bigEndian(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24U | std::uint32_t{bytes[1]} << 16U |
           std::uint32_t{bytes[2]} << 8U | std::uint32_t{bytes[3]};
}

} // namespace

void Sha256::addBlock(const std::uint8_t* block) {
    std::array<std::uint32_t, 64> words{};
    for (std::size_t i = 0; i < 16; ++i) {
        words[i] = bigEndian(block + i * 4);
    }
    for (std::size_t i = 16; i < words.size(); ++i) {
        const std::uint32_t early = words[i - 15];
        const std::uint32_t late = words[i - 2];
        words[i] = words[i - 16] + (std::rotr(early, 7) ^ std::rotr(early, 18) ^ early >> 3U) +
                   words[i - 7] + (std::rotr(late, 17) ^ std::rotr(late, 19) ^ late >> 10U);
    }
    auto [a, b, c, d, e, f, g, h] = state_;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                    ((e & f) ^ (~e & g)) + roundConstants[i] + words[i];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> sums = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < sums.size(); ++i) {
        state_[i] += sums[i];
    }
}

void Sha256::add(std::string_view bytes) {
    std::size_t used = length_ % blockSize;
    length_ += bytes.size();
    while (!bytes.empty()) {
        const std::size_t taken = std::min(blockSize - used, bytes.size());
        std::copy_n(bytes.begin(), taken, block_.begin() + static_cast<std::ptrdiff_t>(used));
        bytes.remove_prefix(taken);
        used += taken;
        if (used == blockSize) {
            addBlock(block_.data());
            used = 0;
        }
    }
}

Sha256::Digest Sha256::finish() {
    const std::uint64_t bits = length_ * 8;
    const std::size_t used = length_ % blockSize;
    const std::size_t zeros = (used < lengthAt ? lengthAt : lengthAt + blockSize) - used - 1;
    std::string ending = '\x80' + std::string(zeros, '\0');
    for (unsigned shift = 64; shift > 0; shift -= 8) {
        ending += static_cast<char>(bits >> (shift - 8) & 0xFFU);
    }
    add(ending);
    Digest digest{};
    for (std::size_t i = 0; i < digest.size(); ++i) {
        digest[i] = static_cast<std::uint8_t>(state_[i / 4] >> (24 - i % 4 * 8) & 0xFFU);
    }
    return digest;
}

std::string sha256(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    Sha256 hash;
    hash.add(bytes);
    std::string text;
    for (const std::uint8_t byte : hash.finish()) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

} // namespace zolex::companion
