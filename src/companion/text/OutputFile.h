#pragma once

#include <string>
#include <string_view>

namespace zolex {
class FileSystem;
}

namespace zolex::companion {

/// Writes a file as a whole: beside it under a name of its own, which then takes its place. When
/// anything fails, a file that was there stays as it was. A device or a pipe is written as it is; a
/// folder, a symbolic link and a file that must not be written are refused.
/// Empty, or what went wrong: "out.ini: no space is left on the device".
[[nodiscard]] std::string replaceFile(FileSystem& files, std::string_view name,
                                      std::string_view content);

/// What the system said of the call that failed last, in words that are the same on every system
/// for what is common: "there is no such file or folder".
[[nodiscard]] std::string lastSystemError();

/// The system's part of replaceFile.
namespace output_file {

/// The name as the system takes it: "\" is "/" where that is what parts folders.
[[nodiscard]] std::string systemName(std::string_view name);
/// What has the name now.
enum class Standing { nothing, file, protectedFile, folder, link, device };

[[nodiscard]] Standing standing(const std::string& name);
/// Whether two names are of one file, or would be: "plan.json" and "./plan.json".
[[nodiscard]] bool areOne(const std::string& one, const std::string& other);
/// Gives `from` the rights of `to` where that is a file, and then its name, in one step.
[[nodiscard]] bool moveOver(const std::string& from, const std::string& to);
/// A number that no other process has now.
[[nodiscard]] unsigned long processNumber();

} // namespace output_file

} // namespace zolex::companion
