#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zolex_sim {

/// Steps of replacing a file, in order.
enum class ReplaceStep : std::uint8_t { create, write, close, sync, rename };

/// Asked before each step whether it is to fail; for tests.
using StepFailure = std::function<bool(ReplaceStep)>;

/// Replaces the file by one that holds `text`: whoever reads it at any moment finds either what it
/// held before or all of the new text, also when the power goes (on Linux). False when that failed;
/// the file is then what it was, and nothing is left beside it.
bool replaceFile(const std::filesystem::path& file, std::string_view text,
                 const StepFailure& fails = {});

/// The bytes of a file; nothing when it cannot be read or is larger than `limit` bytes.
std::optional<std::string> readFile(const std::filesystem::path& file, std::size_t limit);

} // namespace zolex_sim
