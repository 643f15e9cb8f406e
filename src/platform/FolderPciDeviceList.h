#pragma once

#include "platform/PciDeviceList.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex {

/// Folders that hold a PCI listing, as a system shows them.
class PciFolders {
  public:
    virtual ~PciFolders() = default;
    /// Names of the entries of a folder, in any order; none when it cannot be read.
    virtual std::vector<std::string> entries(const std::string& folder) = 0;
    /// The first bytes of a file, at most `most`; empty when there are none to be read at once.
    virtual std::string start(const std::string& file, std::size_t most) = 0;
};

/// The PCI functions that a folder lists: one folder a device, with the files vendor, device,
/// subsystem_vendor, subsystem_device, class and revision. A file that is missing or holds no
/// number leaves 0; folders that are not named as devices are passed over.
class FolderPciDeviceList : public OrderedPciDeviceList {
  public:
    FolderPciDeviceList(Console& console, std::string root, std::unique_ptr<PciFolders> folders)
        : OrderedPciDeviceList(console), root_(std::move(root)), folders_(std::move(folders)) {}

  protected:
    std::vector<PciDevice> enumerate() override;

  private:
    /// The number in a file, at most `highest`; 0 when there is none.
    std::uint32_t numberIn(const std::string& file, std::uint32_t highest);
    std::uint16_t shortNumberIn(const std::string& file);

    std::string root_;
    std::unique_ptr<PciFolders> folders_;
};

/// The folder that the environment variable ZOLEX_PCI_ROOT names; empty when it names none.
[[nodiscard]] std::string namedPciRoot();

} // namespace zolex
