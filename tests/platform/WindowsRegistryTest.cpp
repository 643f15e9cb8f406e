#ifdef _WIN32

#include "platform/RegistryPciDeviceList.h"
#include "platform/win32/SystemRegistry.h"

#include "support/FakePlatform.h"
#include "support/OpenHandles.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>
#include <windows.h>

// The walk over keys of the system's own registry. They stand in a place of their own, under which
// the registry is shown to the walk.

namespace zolex {
namespace {

using namespace std::string_literals;

const std::string place = "SOFTWARE\\zolex-tests";
const std::string pci = place + "\\SYSTEM\\CurrentControlSet\\Enum\\PCI";

/// Makes the key and sets a value of it; the empty name is that of the default value.
void putValue(const std::string& path, const std::string& name, DWORD type,
              const std::string& data) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                             static_cast<DWORD>(data.size())),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

/// The keys below a place of the registry, as if it were the whole.
class PartOfRegistry : public Registry {
  public:
    std::unique_ptr<RegistryKey> open(const std::string& path) override {
        return system_->open(place + "\\" + path);
    }

  private:
    std::unique_ptr<Registry> system_ = win32::makeSystemRegistry();
};

/// A key whose value "Growing" becomes larger when its values have been looked at once.
class GrowingKey : public RegistryKey {
  public:
    GrowingKey(std::unique_ptr<RegistryKey> key, std::string path, int& moreData)
        : key_(std::move(key)), path_(std::move(path)), moreData_(moreData) {}

    std::optional<std::string> subkeyName(std::uint32_t index) override {
        return key_->subkeyName(index);
    }

    RegistryValue value(std::uint32_t index, std::span<char> data) override {
        RegistryValue value = key_->value(index, data);
        moreData_ += value.result == ERROR_MORE_DATA ? 1 : 0;
        if (value.result == ERROR_NO_MORE_ITEMS && data.empty()) {
            EXPECT_EQ(moreData_, 0);
            putValue(place + "\\" + path_, "Growing", REG_BINARY, std::string(5000, 'g'));
        }
        return value;
    }

  private:
    std::unique_ptr<RegistryKey> key_;
    std::string path_;
    int& moreData_;
};

class GrowingRegistry : public Registry {
  public:
    explicit GrowingRegistry(int& moreData) : moreData_(moreData) {}

    std::unique_ptr<RegistryKey> open(const std::string& path) override {
        auto key = part_.open(path);
        return key ? std::make_unique<GrowingKey>(std::move(key), path, moreData_) : nullptr;
    }

  private:
    PartOfRegistry part_;
    int& moreData_;
};

class WindowsRegistry : public ::testing::Test {
  protected:
    WindowsRegistry() { RegDeleteTreeA(HKEY_LOCAL_MACHINE, place.c_str()); }
    ~WindowsRegistry() override { RegDeleteTreeA(HKEY_LOCAL_MACHINE, place.c_str()); }

    static void makeKey(const std::string& path) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                                  nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    static void setDevice(const std::string& device, const std::string& ids,
                          const std::string& location) {
        const std::string key = pci + "\\" + device + "\\4&1a2b3c4d&0&0870";
        putValue(key, "HardwareID", REG_MULTI_SZ, ids);
        putValue(key, "LocationInformation", REG_SZ, location + "\0"s);
    }

    /// "bus:device.function vendor:device" of each record, in order.
    std::vector<std::string> walk() {
        RegistryPciDeviceList list(console_, std::make_unique<PartOfRegistry>());
        list.collect();
        count_ = list.count();
        std::vector<std::string> found;
        for (const PciDevice* d = list.next(); d != nullptr; d = list.next()) {
            std::string text(64, '\0');
            text.resize(static_cast<std::size_t>(std::snprintf(
                text.data(), text.size(), "%u:%u.%u %04x:%04x %04x:%04x %06x %x", unsigned{d->bus},
                unsigned{d->device}, unsigned{d->function}, unsigned{d->vendorId},
                unsigned{d->deviceId}, unsigned{d->subsystemVendorId}, unsigned{d->subsystemId},
                d->classCode, unsigned{d->revision})));
            found.push_back(text);
        }
        return found;
    }

    test::FakeConsole console_;
    std::size_t count_ = 0;
};

TEST_F(WindowsRegistry, AMissingOrEmptyKeyGivesNoDevices) {
    EXPECT_EQ(walk(), std::vector<std::string>{});
    makeKey(pci);
    EXPECT_EQ(walk(), std::vector<std::string>{});
    EXPECT_EQ(count_, 0U);
}

TEST_F(WindowsRegistry, TheThreeFormsOfALocation) {
    setDevice(
        "VEN_1000&DEV_0060",
        "PCI\\VEN_1000&DEV_0060&SUBSYS_10061000&REV_04\0PCI\\VEN_1000&DEV_0060&CC_010400\0\0"s,
        "@System32\\drivers\\pci.sys,#65536;PCI bus %1, device %2, function %3;(2,1,0)");
    setDevice("VEN_9005&DEV_0285", "PCI\\VEN_9005&DEV_0285&SUBSYS_02999005&REV_01\0\0"s,
              "PCI bus 3, device 14, function 2");
    setDevice("VEN_1000&DEV_0411", "PCI\\VEN_1000&DEV_0411\0\0"s,
              "here, bus 5, device 6, function 7");
    EXPECT_EQ(walk(), (std::vector<std::string>{"0:14.2 9005:0285 9005:0299 000000 1",
                                                "2:1.0 1000:0060 1000:1006 010400 4",
                                                "5:6.7 1000:0411 0000:0000 000000 0"}));
}

TEST_F(WindowsRegistry, EveryInstanceIsARecordAlsoOfAnAbsentDevice) {
    const std::string device = pci + "\\VEN_1000&DEV_0411";
    makeKey(device + "\\3&11583659&0&10"); // no values at all
    putValue(device + "\\4&2&0&0870", "HardwareID", REG_MULTI_SZ, "PCI\\VEN_1000&DEV_0411\0\0"s);
    makeKey(device + "\\4&2&0&0870\\Device Parameters"); // a level below is not looked at
    EXPECT_EQ(walk(), (std::vector<std::string>{"0:0.0 0000:0000 0000:0000 000000 0",
                                                "0:0.0 1000:0411 0000:0000 000000 0"}));
    EXPECT_EQ(count_, 2U);
}

TEST_F(WindowsRegistry, RecordsOutOfRangeDropOutButAreCounted) {
    setDevice("A", "PCI\\VEN_1000&DEV_0001\0\0"s, "x, bus 256, device 0, function 0");
    setDevice("B", "PCI\\VEN_1000&DEV_0002\0\0"s, "x, bus 255, device 32, function 0");
    setDevice("C", "PCI\\VEN_1000&DEV_0003\0\0"s, "x, bus 255, device 31, function 8");
    setDevice("D", "PCI\\VEN_1000&DEV_0004\0\0"s, "x, bus 255, device 31, function 7");
    EXPECT_EQ(walk(), (std::vector<std::string>{"255:31.7 1000:0004 0000:0000 000000 0"}));
    EXPECT_EQ(count_, 4U);
}

TEST_F(WindowsRegistry, LargeValuesBesideDoNotHideTheOnesWanted) {
    const std::string key = pci + "\\VEN_1000&DEV_0060\\1";
    // Values of many sizes: each but the largest is shorter than the buffer. The first pass, which
    // has none, is told the size of every one.
    putValue(key, "Large", REG_BINARY, std::string(100'000, 'x'));
    putValue(key, "Empty", REG_BINARY, "");
    putValue(key, std::string(300, 'n'), REG_SZ, "a name longer than that of a key\0"s);
    putValue(key, "hardwareid2", REG_MULTI_SZ, "PCI\\VEN_2222\0\0"s);
    putValue(key, "LocationInformation", REG_SZ, "x, bus 1, device 2, function 3\0"s);
    putValue(key, "HardwareID", REG_MULTI_SZ, "PCI\\VEN_1000&DEV_0060\0\0"s);
    putValue(key, "CompatibleIDs", REG_MULTI_SZ, "PCI\\CC_0104\0\0"s);
    putValue(key, "DeviceDesc", REG_SZ, "RAID\0"s);
    EXPECT_EQ(walk(), (std::vector<std::string>{"1:2.3 1000:0060 0000:0000 000000 0"}));

    RegistryPciDeviceList list(console_, std::make_unique<PartOfRegistry>());
    list.collect();
    const PciDevice* device = list.next();
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->largestValue, 100'000U);
}

TEST_F(WindowsRegistry, AValueThatOutgrowsTheBufferDoesNotEndTheWalk) {
    const std::string key = pci + "\\VEN_1000&DEV_0060\\1";
    putValue(key, "Growing", REG_BINARY, std::string(10, 'g'));
    putValue(key, "HardwareID", REG_MULTI_SZ, "PCI\\VEN_1000&DEV_0060\0\0"s);
    putValue(key, "Large", REG_BINARY, std::string(300, 'x'));
    putValue(key, "LocationInformation", REG_SZ, "x, bus 1, device 2, function 3\0"s);
    int moreData = 0;
    RegistryPciDeviceList list(console_, std::make_unique<GrowingRegistry>(moreData));
    list.collect();
    EXPECT_EQ(moreData, 1);
    const PciDevice* device = list.next();
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->vendorId, 0x1000);
    EXPECT_EQ(device->deviceId, 0x0060);
    EXPECT_EQ(device->bus, 1);
    EXPECT_EQ(device->device, 2);
    EXPECT_EQ(device->function, 3);
    EXPECT_EQ(device->largestValue, 300U);
    EXPECT_EQ(list.next(), nullptr);
}

TEST_F(WindowsRegistry, RawValuesAreKeptByteForByte) {
    const std::string key = pci + "\\VEN_1000&DEV_0060\\1";
    const std::string ids = "PCI\\VEN_1000&DEV_0060&REV_04\0PCI\\VEN_1000&DEV_0060\0\0"s;
    const std::string location = "x, bus 1, device 2, function 3\0"s;
    const std::string compatible = "PCI\\CC_010400\0PCI\\CC_0104\0\0"s;
    putValue(key, "", REG_SZ, "the default value\0"s);
    putValue(key, "HardwareID", REG_MULTI_SZ, ids);
    putValue(key, "LocationInformation", REG_SZ, location);
    putValue(key, "DeviceDesc", REG_SZ, "RAID\0"s);
    putValue(key, "CompatibleIDs", REG_MULTI_SZ, compatible);
    RegistryPciDeviceList list(console_, std::make_unique<PartOfRegistry>());
    list.collect();
    const PciDevice* device = list.next();
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(device->hardwareId, ids);
    EXPECT_EQ(device->locationInformation, location);
    EXPECT_EQ(device->deviceDescription, "RAID\0"s);
    EXPECT_EQ(device->compatibleIds, compatible);
    EXPECT_EQ(device->revision, 4);
    EXPECT_EQ(device->bus, 1);
}

TEST_F(WindowsRegistry, NamesOfValuesAreTakenWithExactCase) {
    const std::string key = pci + "\\VEN_1000&DEV_0060\\1";
    putValue(key, "HARDWAREID", REG_MULTI_SZ, "PCI\\VEN_1000&DEV_0060\0\0"s);
    EXPECT_EQ(walk(), (std::vector<std::string>{"0:0.0 0000:0000 0000:0000 000000 0"}));
}

TEST_F(WindowsRegistry, AWalkClosesEveryKey) {
    for (const char* name : {"A", "B", "C"}) {
        for (const char* instance : {"1", "2"}) {
            putValue(pci + "\\" + name + "\\" + instance, "HardwareID", REG_MULTI_SZ,
                     "PCI\\VEN_1000&DEV_0060\0\0"s);
        }
    }
    RegistryPciDeviceList list(console_, std::make_unique<PartOfRegistry>());
    list.collect(); // whatever a first walk makes the system open
    const int before = test::openHandles();
    for (int i = 0; i < 5; ++i) {
        list.collect();
        EXPECT_EQ(list.count(), 6U);
    }
    EXPECT_EQ(test::openHandles(), before);
    // A key that stays open would be counted.
    const auto key = win32::makeSystemRegistry()->open(pci);
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(test::openHandles(), before + 1);
}

TEST_F(WindowsRegistry, ResultsOfTheSystemAreThoseOfTheSeam) {
    putValue(pci, "v", REG_SZ, "twelve bytes");
    const auto registry = win32::makeSystemRegistry();
    const auto key = registry->open(pci);
    ASSERT_NE(key, nullptr);
    std::vector<char> small(3);
    const RegistryValue more = key->value(0, small);
    EXPECT_EQ(more.result, registry_result::moreData);
    EXPECT_GE(more.dataSize, 12U);
    std::vector<char> enough(64);
    const RegistryValue whole = key->value(0, enough);
    EXPECT_EQ(whole.result, registry_result::success);
    EXPECT_EQ(whole.name, "v");
    EXPECT_EQ(std::string(enough.data(), 12), "twelve bytes");
    EXPECT_NE(key->value(1, enough).result, registry_result::success);
    EXPECT_EQ(key->subkeyName(0), std::nullopt);
    EXPECT_EQ(registry->open(pci + "\\none"), nullptr);
}

TEST_F(WindowsRegistry, NamesOfKeysUpToTheirGreatestLength) {
    const std::string name(255, 'k');
    makeKey(pci);
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, pci.c_str(), 0, KEY_ALL_ACCESS, &key),
              ERROR_SUCCESS);
    HKEY made = nullptr;
    EXPECT_EQ(
        RegCreateKeyExA(key, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &made, nullptr),
        ERROR_SUCCESS);
    RegCloseKey(made);
    RegCloseKey(key);
    const auto opened = win32::makeSystemRegistry()->open(pci);
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(opened->subkeyName(0), name);
}

TEST_F(WindowsRegistry, DevicesWithLongNamesAreWalked) {
    // The path of the whole key stays below 260 characters, the most that an emulator takes.
    putValue(pci + "\\" + std::string(100, 'd') + "\\" + std::string(100, 'i'), "HardwareID",
             REG_MULTI_SZ, "PCI\\VEN_1000&DEV_0060\0\0"s);
    EXPECT_EQ(walk(), (std::vector<std::string>{"0:0.0 1000:0060 0000:0000 000000 0"}));
}

} // namespace
} // namespace zolex

#endif
