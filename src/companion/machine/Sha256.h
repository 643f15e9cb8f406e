#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zolex::companion {

/// SHA-256 of bytes that come in pieces.
class Sha256 {
  public:
    using Digest = std::array<std::uint8_t, 32>;

    void add(std::string_view bytes);
    /// The hash of all that was added. Nothing can be added afterwards.
    [[nodiscard]] Digest finish();

  private:
    void addBlock(const std::uint8_t* block);

    std::array<std::uint32_t, 8> state_{0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                        0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
    std::array<std::uint8_t, 64> block_{};
    std::uint64_t length_ = 0; ///< bytes so far
};

/// The hash of the bytes as 64 hexadecimal digits, in lower case.
[[nodiscard]] std::string sha256(std::string_view bytes);

} // namespace zolex::companion
