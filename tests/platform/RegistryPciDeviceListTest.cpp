#include "platform/RegistryPciDeviceList.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace zolex {
namespace {

using test::FakeConsole;
using namespace std::string_literals;

const std::string root = "SYSTEM\\CurrentControlSet\\Enum\\PCI";
const std::string ids = "PCI\\VEN_1000&DEV_0060&SUBSYS_10061000&REV_04\0\0"s;

constexpr long noMoreItems = 259;

/// What the keys hold, and what the calls came to.
struct Tree {
    struct Key {
        std::vector<std::string> subkeys;
        std::vector<std::pair<std::string, std::string>> values;
    };
    std::map<std::string, Key> keys;
    int failingCall = 0; ///< the call, from 1, that fails; 0: none
    int calls = 0;
    int open = 0;
    std::vector<std::string> opened;

    bool fails() { return ++calls == failingCall; }

    /// Adds an instance key with its two levels of keys above.
    Key& instance(const std::string& device, const std::string& name) {
        auto& devices = keys[root].subkeys;
        if (std::find(devices.begin(), devices.end(), device) == devices.end()) {
            devices.push_back(device);
        }
        keys[root + "\\" + device].subkeys.push_back(name);
        return keys[root + "\\" + device + "\\" + name];
    }
};

class FakeKey : public RegistryKey {
  public:
    FakeKey(Tree& tree, const Tree::Key& key) : tree_(tree), key_(key) { ++tree_.open; }
    ~FakeKey() override { --tree_.open; }

    std::optional<std::string> subkeyName(std::uint32_t index) override {
        if (tree_.fails() || index >= key_.subkeys.size()) {
            return std::nullopt;
        }
        return key_.subkeys[index];
    }

    RegistryValue value(std::uint32_t index, std::span<char> data) override {
        if (tree_.fails()) {
            return {5, "HardwareID", 7};
        }
        if (index >= key_.values.size()) {
            return {noMoreItems, "HardwareID", 7};
        }
        const auto& [name, content] = key_.values[index];
        if (name.empty()) { // stands for a value whose name is too long
            return {registry_result::moreData, "", content.size()};
        }
        if (data.empty()) {
            return {registry_result::success, name, content.size()};
        }
        if (content.size() > data.size()) {
            return {registry_result::moreData, name, content.size()};
        }
        for (const char byte : data) {
            EXPECT_EQ(byte, '\0') << "the buffer still holds an earlier value";
        }
        std::copy(content.begin(), content.end(), data.begin());
        return {registry_result::success, name, content.size()};
    }

  private:
    Tree& tree_;
    const Tree::Key& key_;
};

class FakeRegistry : public Registry {
  public:
    explicit FakeRegistry(Tree& tree) : tree_(tree) {}
    std::unique_ptr<RegistryKey> open(const std::string& path) override {
        tree_.opened.push_back(path);
        const auto key = tree_.keys.find(path);
        if (tree_.fails() || key == tree_.keys.end()) {
            return nullptr;
        }
        return std::make_unique<FakeKey>(tree_, key->second);
    }

  private:
    Tree& tree_;
};

class RegistryWalk : public ::testing::Test {
  protected:
    /// Collects from the tree: "count: vendor-device@bus.device.function ..." in order.
    std::string collect() {
        RegistryPciDeviceList list(console, std::make_unique<FakeRegistry>(tree));
        EXPECT_FALSE(list.collect());
        std::string text = std::to_string(list.count()) + ":";
        while (const PciDevice* device = list.next()) {
            devices.push_back(*device);
            text += formatText(" %04x-%04x@%d.%d.%d", unsigned{device->vendorId},
                               unsigned{device->deviceId}, int{device->bus}, int{device->device},
                               int{device->function})
                        .view();
        }
        EXPECT_EQ(tree.open, 0) << "a key was left open";
        EXPECT_EQ(console.output, "");
        return text;
    }

    static std::string place(int bus, int device, int function) {
        return "@pci.sys,#65536;PCI bus %1, device %2, function %3;(" + std::to_string(bus) + "," +
               std::to_string(device) + "," + std::to_string(function) + ")\0"s;
    }

    FakeConsole console;
    Tree tree;
    std::vector<PciDevice> devices;
};

TEST_F(RegistryWalk, AMissingOrEmptyKeyGivesNoDevices) {
    EXPECT_EQ(collect(), "0:");
    tree.keys[root];
    EXPECT_EQ(collect(), "0:");
    tree.keys[root].subkeys = {"VEN_1000"};
    tree.keys[root + "\\VEN_1000"];
    EXPECT_EQ(collect(), "0:");
}

TEST_F(RegistryWalk, OneRecordAnInstanceInOrderOfPlace) {
    tree.instance("VEN_1000", "3&1").values = {{"LocationInformation", place(2, 1, 0)},
                                               {"HardwareID", ids}};
    tree.instance("VEN_1000", "3&2").values = {{"HardwareID", ids},
                                               {"LocationInformation", place(1, 4, 0)}};
    tree.instance("VEN_8086", "0&0").values = {{"HardwareID", "PCI\\VEN_8086&DEV_1960\0\0"s},
                                               {"LocationInformation", place(1, 3, 7)}};
    EXPECT_EQ(collect(), "3: 8086-1960@1.3.7 1000-0060@1.4.0 1000-0060@2.1.0");
    EXPECT_EQ(tree.opened,
              (std::vector<std::string>{root, root + "\\VEN_1000", root + "\\VEN_1000\\3&1",
                                        root + "\\VEN_1000\\3&2", root + "\\VEN_8086",
                                        root + "\\VEN_8086\\0&0"}));
}

TEST_F(RegistryWalk, KeepsTheRawValuesAndTheLargestSize) {
    tree.instance("V", "1").values = {{"Class", std::string(300, 'c')},
                                      {"DeviceDesc", "RAID\0"s},
                                      {"CompatibleIDs", "PCI\\CC_0104\0\0"s},
                                      {"HardwareID", ids},
                                      {"LocationInformation", place(2, 1, 0)}};
    collect();
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices[0].hardwareId, ids);
    EXPECT_EQ(devices[0].locationInformation, place(2, 1, 0));
    EXPECT_EQ(devices[0].deviceDescription, "RAID\0"s);
    EXPECT_EQ(devices[0].compatibleIds, "PCI\\CC_0104\0\0"s);
    EXPECT_EQ(devices[0].largestValue, 300U);
    for (const CString& text : devices[0].texts) {
        EXPECT_TRUE(text.isEmpty());
    }
    EXPECT_EQ(devices[0].numbers, (std::array{-1, -1}));
    EXPECT_EQ(devices[0].classCode, 0U) << "the class comes from the hardware ids alone";
}

TEST_F(RegistryWalk, ValueNamesAreTakenWithExactCase) {
    tree.instance("V", "1").values = {{"HARDWAREID", ids},
                                      {"HardwareIDs", ids},
                                      {"Hardware", ids},
                                      {"locationinformation", place(1, 1, 1)}};
    EXPECT_EQ(collect(), "1: 0000-0000@0.0.0");
}

TEST_F(RegistryWalk, AnInstanceWithoutValuesKeepsZeros) {
    tree.instance("V", "1");
    tree.instance("V", "2").values = {{"HardwareID", ""}, {"LocationInformation", ""}};
    EXPECT_EQ(collect(), "2: 0000-0000@0.0.0 0000-0000@0.0.0");
    EXPECT_EQ(devices[0].largestValue, 0U);
}

TEST_F(RegistryWalk, AKeyThatCannotBeOpenedHidesNothingBesideIt) {
    tree.instance("A", "1").values = {{"HardwareID", ids}};
    tree.instance("A", "2").values = {{"HardwareID", ids}};
    tree.instance("B", "1").values = {{"HardwareID", ids}};
    tree.keys.erase(root + "\\A\\1");
    EXPECT_EQ(collect(), "3: 0000-0000@0.0.0 1000-0060@0.0.0 1000-0060@0.0.0");
    tree.keys.erase(root + "\\A");
    EXPECT_EQ(collect(), "1: 1000-0060@0.0.0");
}

TEST_F(RegistryWalk, MoreDataDoesNotEndTheValues) {
    tree.instance("V", "1").values = {{"", std::string(500, 'x')}, {"HardwareID", ids}};
    EXPECT_EQ(collect(), "1: 1000-0060@0.0.0");
    EXPECT_EQ(devices[0].largestValue, 500U);
}

TEST_F(RegistryWalk, PlacesOutOfRangeDropOutButAreCounted) {
    tree.instance("V", "1").values = {{"LocationInformation", place(0, 32, 0)}};
    tree.instance("V", "2").values = {{"LocationInformation", place(255, 31, 7)}};
    EXPECT_EQ(collect(), "2: 0000-0000@255.31.7");
}

TEST_F(RegistryWalk, AnyCallMayFail) {
    tree.instance("A", "1").values = {{"HardwareID", ids}, {"LocationInformation", place(1, 0, 0)}};
    tree.instance("A", "2").values = {{"HardwareID", ids}, {"LocationInformation", place(2, 0, 0)}};
    tree.instance("B", "1").values = {{"HardwareID", ids}, {"LocationInformation", place(3, 0, 0)}};
    const std::string whole = "3: 1000-0060@1.0.0 1000-0060@2.0.0 1000-0060@3.0.0";
    EXPECT_EQ(collect(), whole);
    const int all = tree.calls;
    int unharmed = 0;
    for (int n = 1; n <= all; ++n) {
        tree.calls = 0;
        tree.failingCall = n;
        devices.clear();
        const std::string text = collect();
        unharmed += text == whole ? 1 : 0;
        for (const PciDevice& device : devices) {
            // A record holds what its key says, or nothing: never parts of another one.
            EXPECT_TRUE(device.vendorId == 0x1000 || device.vendorId == 0) << n;
            EXPECT_TRUE(device.hardwareId == ids || device.hardwareId.empty()) << n;
        }
    }
    // Only the calls that find the end of a list fail without loss: the values of each of three
    // instances twice, the instances of two devices, and the devices.
    EXPECT_EQ(unharmed, 3 * 2 + 2 + 1);
}

} // namespace
} // namespace zolex
