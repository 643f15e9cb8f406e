#include "platform/posix/SystemPciFolders.h"

#include "platform/posix/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace zolex::posix {

namespace {

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

class SystemPciFolders : public PciFolders {
  public:
    std::vector<std::string> entries(const std::string& folder) override {
        std::vector<std::string> names;
        const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir(folder.c_str()));
        while (directory) {
            const dirent* const entry = ::readdir(directory.get());
            if (entry == nullptr) {
                break;
            }
            names.emplace_back(entry->d_name);
        }
        return names;
    }

    std::string start(const std::string& file, std::size_t most) override {
        const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        std::string bytes(most, '\0');
        const ssize_t length = ::read(opened.get(), bytes.data(), bytes.size());
        bytes.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
        return bytes;
    }
};

} // namespace

std::unique_ptr<PciFolders> makeSystemPciFolders() {
    return std::make_unique<SystemPciFolders>();
}

} // namespace zolex::posix
