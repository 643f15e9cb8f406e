#include "platform/posix/SysfsPciDeviceList.h"

#include "platform/PciText.h"
#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>

namespace zolex::posix {

namespace {

constexpr std::uint32_t highest16 = 0xFFFF;

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};

std::string rootDirectory() {
    const char* const named = std::getenv("ZOLEX_PCI_ROOT");
    return named != nullptr && *named != '\0' ? named : "/sys/bus/pci/devices";
}

/// Names of the entries, in ascending order: the system gives them in any.
std::vector<std::string> entriesOf(const std::string& path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir(path.c_str()));
    while (directory) {
        const dirent* const entry = ::readdir(directory.get());
        if (entry == nullptr) {
            break;
        }
        names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// The number in a file, at most `highest`; 0 when there is none.
std::uint32_t numberIn(const std::string& path, std::uint32_t highest) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 64> buffer{};
    const ssize_t length = ::read(file.get(), buffer.data(), buffer.size());
    if (length <= 0) {
        return 0;
    }
    return pci::fileNumber({buffer.data(), static_cast<std::size_t>(length)}, highest);
}

std::uint16_t shortNumberIn(const std::string& path) {
    return static_cast<std::uint16_t>(numberIn(path, highest16));
}

} // namespace

std::vector<PciDevice> SysfsPciDeviceList::enumerate() {
    const std::string root = rootDirectory();
    std::vector<PciDevice> devices;
    for (const std::string& name : entriesOf(root)) {
        PciDevice device;
        if (!pci::parseFolderName(name, device)) {
            continue;
        }
        std::string folder = root;
        folder.append("/").append(name).append("/");
        device.vendorId = shortNumberIn(folder + "vendor");
        device.deviceId = shortNumberIn(folder + "device");
        device.subsystemVendorId = shortNumberIn(folder + "subsystem_vendor");
        device.subsystemId = shortNumberIn(folder + "subsystem_device");
        device.classCode = numberIn(folder + "class", 0xFFFFFFFF);
        device.revision = shortNumberIn(folder + "revision");
        devices.push_back(device);
    }
    return devices;
}

} // namespace zolex::posix
