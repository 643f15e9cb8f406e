#pragma once

#include <filesystem>
#include <system_error>
#include <vector>

namespace zolex::test {

/// Removes a folder with all it holds, as far as it can be. A file that a child still has open may
/// be listed and then be gone, over which the library's own function goes round for ever on
/// Windows.
inline void removeTree(const std::filesystem::path& path) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (fs::is_directory(fs::symlink_status(path, ignored))) {
        std::vector<fs::path> entries;
        for (fs::directory_iterator entry(path, ignored), end; !ignored && entry != end;
             entry.increment(ignored)) {
            entries.push_back(entry->path());
        }
        for (const fs::path& entry : entries) {
            removeTree(entry);
        }
    }
    fs::remove(path, ignored);
}

} // namespace zolex::test
