#include "support/Input.h"

#include <utility>

namespace zolex::fuzz {

std::uint8_t Input::choice() {
    if (rest_.empty()) {
        return 0;
    }
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
}

std::string_view Input::text() {
    const std::size_t end = rest_.find(separator);
    const std::string_view taken = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    return taken;
}

std::string_view Input::rest() {
    return std::exchange(rest_, {});
}

} // namespace zolex::fuzz
