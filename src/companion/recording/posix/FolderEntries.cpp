#include "companion/recording/FolderEntries.h"

#include "platform/posix/SystemPciFolders.h"

#include <utility>

namespace zolex::companion {

std::optional<std::vector<std::string>> folderEntries(const std::string& folder) {
    // Every folder holds itself and the one above.
    std::vector<std::string> names = posix::makeSystemPciFolders()->entries(folder);
    return names.empty() ? std::nullopt : std::optional(std::move(names));
}

} // namespace zolex::companion
