#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zolex::fuzz {

/// One input, taken from front to back: bytes that choose, and texts that a form feed ends. What is
/// no longer there is 0 or empty, so that every input means something.
class Input {
  public:
    static constexpr char separator = '\f';

    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}
    explicit Input(std::string_view bytes) : rest_(bytes) {}

    /// The next byte.
    std::uint8_t choice();
    /// The bytes up to the next separator, which is dropped, or to the end.
    std::string_view text();
    /// All that is left.
    std::string_view rest();
    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

  private:
    std::string_view rest_;
};

} // namespace zolex::fuzz
