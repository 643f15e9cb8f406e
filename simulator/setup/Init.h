#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace zolex_sim {

/// The system that a folder is laid out for.
enum class Target : std::uint8_t { posix, windows };

/// The system that this program was built for.
Target hostTarget();

/// The command "init DIR [--definition FILE | --sample NAME]": lays out a folder with the server in
/// its initial state and everything that a run needs. `program` is this executable. A server that
/// the folder held before is replaced. Returns the exit code.
int initialise(const std::vector<std::string>& arguments, const std::filesystem::path& program,
               std::ostream& output, std::ostream& error, Target target = hostTarget());

/// The names of the samples with a word about each.
std::string sampleList();

} // namespace zolex_sim
