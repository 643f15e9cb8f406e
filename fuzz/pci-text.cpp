#include "platform/PciDeviceList.h"
#include "platform/PciText.h"
#include "platform/RegistryPciDeviceList.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::fuzz {
namespace {

/// Hardware ids and location of one device, as registry values.
using Values = std::vector<std::pair<std::string, std::string>>;

/// A registry of one device, whose calls give the results of a script.
class OneDeviceRegistry : public Registry {
  public:
    OneDeviceRegistry(Values values, std::string_view results)
        : values_(std::move(values)), results_(results) {}

    std::unique_ptr<RegistryKey> open(const std::string& path) override {
        const auto depth = std::count(path.begin(), path.end(), '\\');
        return nextResult() != registry_result::success
                   ? nullptr
                   : std::make_unique<Key>(*this, depth >= instanceDepth);
    }

  private:
    static constexpr long instanceDepth = 5;
    static constexpr long noMoreItems = 259;

    class Key : public RegistryKey {
      public:
        Key(OneDeviceRegistry& registry, bool isInstance)
            : registry_(registry), isInstance_(isInstance) {}

        std::optional<std::string> subkeyName(std::uint32_t index) override {
            if (isInstance_ || index > 1 || registry_.nextResult() != registry_result::success) {
                return std::nullopt;
            }
            return "key";
        }
        RegistryValue value(std::uint32_t index, std::span<char> data) override {
            if (index >= registry_.values_.size()) {
                return {noMoreItems, "", 0};
            }
            const auto& [name, content] = registry_.values_[index];
            const long result = registry_.nextResult();
            const std::size_t n = std::min(content.size(), data.size());
            std::copy_n(content.begin(), n, data.begin());
            return {result, name, content.size()};
        }

      private:
        OneDeviceRegistry& registry_;
        bool isInstance_;
    };

    long nextResult() {
        constexpr std::array results = {registry_result::success, registry_result::success,
                                        registry_result::moreData, 5L};
        if (results_.empty()) {
            return registry_result::success;
        }
        const auto choice = static_cast<unsigned char>(results_.front());
        results_.remove_prefix(1);
        return results[choice % results.size()];
    }

    Values values_;
    std::string_view results_;
};

/// Texts: hardware ids, location, folder name, content of a file, results of registry calls.
void readPciTexts(Input input) {
    PciDevice device;
    device.hardwareId = input.text();
    device.locationInformation = input.text();
    parseHardwareIds(device);
    parseLocation(device);
    Values values = {{"HardwareID", device.hardwareId},
                     {"LocationInformation", device.locationInformation},
                     {"DeviceDesc", "device"}};

    PciDevice folder;
    if (pci::parseFolderName(input.text(), folder)) {
        check(folder.bus <= 0xFF && folder.device <= 0xFF && folder.function <= 0xF,
              "place of a folder");
    } else {
        check(folder.bus == 0 && folder.device == 0 && folder.function == 0,
              "a name that is refused changes nothing");
    }
    check(pci::fileNumber(input.text(), 0xFFFF) <= 0xFFFF, "number of a file");

    const std::string_view results = input.rest();
    test::FakeConsole console;
    RegistryPciDeviceList list(console,
                               std::make_unique<OneDeviceRegistry>(std::move(values), results));
    check(!list.collect(), "collecting gives false");
    std::size_t listed = 0;
    while (const PciDevice* found = list.next()) {
        ++listed;
        check(found->bus <= 255 && found->device <= 31 && found->function <= 7, "place");
        if (results.empty()) {
            check(found->vendorId == device.vendorId && found->bus == device.bus &&
                      found->classCode == device.classCode,
                  "the list reads what its parts read");
        }
    }
    check(listed <= list.count(), "number of devices");
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readPciTexts(zolex::fuzz::Input(data, size));
    return 0;
}
