#include "WindowsSources.h"

#include "InventedTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace hwdetect {
namespace {

using namespace std::string_literals;

using Values = std::vector<std::pair<std::string, std::string>>;

class MemoryKey : public zolex::RegistryKey {
  public:
    explicit MemoryKey(Values values) : values_(std::move(values)) {}
    std::optional<std::string> subkeyName(std::uint32_t /*index*/) override { return {}; }
    zolex::RegistryValue value(std::uint32_t index, std::span<char> data) override {
        if (index >= values_.size()) {
            return {259, "", 0};
        }
        const auto& [name, content] = values_[index];
        if (data.size() < content.size() && !data.empty()) {
            return {zolex::registry_result::moreData, "", content.size()};
        }
        if (!data.empty()) {
            std::copy(content.begin(), content.end(), data.begin());
        }
        return {zolex::registry_result::success, name, content.size()};
    }

  private:
    Values values_;
};

class MemoryRegistry : public zolex::Registry {
  public:
    std::unique_ptr<zolex::RegistryKey> open(const std::string& path) override {
        opened.push_back(path);
        const auto key = keys.find(path);
        return key == keys.end() ? nullptr : std::make_unique<MemoryKey>(key->second);
    }

    std::map<std::string, Values> keys;
    std::vector<std::string> opened;
};

const std::string driverKey = "SYSTEM\\CurrentControlSet\\Services\\mssmbios\\Data";
const std::string biosKey = "HARDWARE\\DESCRIPTION\\System\\BIOS";
const std::string table =
    test::raw(test::systemStructure({"Norvik", "Kestrel 3650", "00", "KQ1234X"}));
const std::string other = test::raw(test::systemStructure({"Norvik", "Other", "00", "7"}));

TEST(WindowsSources, TheTableOfTheSystemIsEnough) {
    MemoryRegistry registry;
    registry.keys[driverKey] = {{"SMBiosData", other}};
    const FirmwareAnswer answer = readWindowsSources(table, registry);
    EXPECT_EQ(answer.names, (MachineNames{"Kestrel 3650", "KQ1234X"}));
    EXPECT_EQ(answer.typeFault + answer.serialFault, "");
    EXPECT_TRUE(registry.opened.empty());
}

TEST(WindowsSources, WithoutOneTheDriversCopyIsRead) {
    MemoryRegistry registry;
    registry.keys[driverKey] = {
        {"AcpiData", "x"}, {"", ""}, {"smbiosdata", other}, {"SMBiosData", table}};
    for (const std::string& none : {""s, "\0\0"s, test::raw("")}) {
        const FirmwareAnswer answer = readWindowsSources(none, registry);
        EXPECT_EQ(answer.names, (MachineNames{"Kestrel 3650", "KQ1234X"}));
        EXPECT_EQ(answer.typeFault + answer.serialFault, "");
    }
}

TEST(WindowsSources, TheBiosKeyTellsTheMachineTypeWhereNoTableDoes) {
    MemoryRegistry registry;
    registry.keys[biosKey] = {{"BaseBoardProduct", "B\0"s}, {"SystemProductName", "Kestrel\0"s}};
    const FirmwareAnswer answer = readWindowsSources("", registry);
    EXPECT_EQ(answer.names, (MachineNames{"Kestrel", ""}));
    EXPECT_EQ(answer.typeFault, "");
    EXPECT_EQ(answer.serialFault, "Windows shows no SMBIOS table of this machine");
    const FirmwareAnswer half =
        readWindowsSources(test::raw(test::systemStructure({"N", " ", "v", "S"})), registry);
    EXPECT_EQ(half.names.serialNumber, "S");
}

TEST(WindowsSources, ATableThatLeavesTheTypeOutIsFilledFromTheBiosKey) {
    MemoryRegistry registry;
    registry.keys[biosKey] = {{"SystemProductName", "Kestrel"}};
    const std::string untyped =
        test::raw(test::structure(1, "\x01"s + "\0\x01\x02"s, {"Norvik", "KQ1234X"}));
    const FirmwareAnswer answer = readWindowsSources(untyped, registry);
    EXPECT_EQ(answer.names, (MachineNames{"Kestrel", "KQ1234X"}));
    EXPECT_EQ(answer.typeFault + answer.serialFault, "");
}

TEST(WindowsSources, WithoutAnyBothAreFaults) {
    MemoryRegistry registry;
    registry.keys[driverKey] = {{"SMBiosData", "no table"}};
    registry.keys[biosKey] = {{"SystemProductName", ""}};
    const FirmwareAnswer answer = readWindowsSources("", registry);
    EXPECT_EQ(answer.names, MachineNames{});
    EXPECT_EQ(answer.typeFault,
              "Windows shows neither an SMBIOS table nor the name of this machine");
    EXPECT_EQ(answer.serialFault, "Windows shows no SMBIOS table of this machine");
}

TEST(WindowsSources, AValueIsFoundByItsWholeName) {
    MemoryRegistry registry;
    registry.keys["K"] = {{"Name2", "2"}, {"Name", "1"}};
    EXPECT_EQ(registryValue(registry, "K", "Name"), "1");
    EXPECT_EQ(registryValue(registry, "K", "name"), std::nullopt);
    EXPECT_EQ(registryValue(registry, "L", "Name"), std::nullopt);
}

} // namespace
} // namespace hwdetect
