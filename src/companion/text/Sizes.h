#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zolex::companion {

/// A size for people, in the units that the utilities use (1 GB is 2^30 bytes): "512 MB",
/// "67.8 GB", "1.82 TB".
[[nodiscard]] std::string sizeText(std::uint64_t bytes);
/// The same, "?" for a size that is not known.
[[nodiscard]] std::string sizeText(std::optional<std::uint64_t> bytes);

/// "12 drives", "1 drive".
[[nodiscard]] std::string countText(std::size_t count, const char* one, const char* many);

} // namespace zolex::companion
