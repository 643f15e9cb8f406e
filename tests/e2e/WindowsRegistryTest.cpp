#ifdef _WIN32

// Devices in the machine's registry, where ZOLEX_PCI_ROOT names no folder.

#include "Programs.h"
#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>
#include <windows.h>

namespace zolex::e2e {
namespace {

constexpr const char* noController =
    R"({"machineType": "8837", "serialNumber": "1", "controllers": []})";

bool importFile(const std::filesystem::path& server, const std::string& name) {
    const std::filesystem::path nothing = server / "import.txt";
    const int exitCode =
        runProgram({"reg", {"import", name}, server, {}, server / name, nothing, nothing, {}});
    std::error_code ignored;
    std::filesystem::remove(nothing, ignored);
    return exitCode == 0;
}

/// Makes the devices of a server's pci.reg those of this machine, the only ones.
bool plugIn(VirtualServer& server) {
    // Only the registry of an emulator is for tests to change.
    if (GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr) {
        return false;
    }
    server.environment.erase("ZOLEX_PCI_ROOT");
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Enum\\PCI");
    return importFile(server.folder(), "pci.reg");
}

/// The key of one instance, with what stands in it.
std::string instance(const std::string& name, const std::string& values) {
    return "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_1000&DEV_0411\\" + name +
           "]\r\n" + values + "\r\n";
}

std::string controllerAt(const std::string& location) {
    std::string ids;
    for (const char c : std::string("PCI\\VEN_1000&DEV_0411&SUBSYS_10021000&REV_07")) {
        constexpr const char* digits = "0123456789abcdef";
        const auto byte = static_cast<unsigned char>(c);
        ids += {digits[byte / 16], digits[byte % 16], ','};
    }
    return "\"HardwareID\"=hex(7):" + ids + "00,00\r\n\"LocationInformation\"=\"" + location +
           "\"\r\n";
}

TEST(WindowsRegistryTest, TheFormsOfALocationAreFoundInTheRegistry) {
    VirtualServer server(noController);
    ASSERT_TRUE(server.isReady());
    server.write("pci.reg", "REGEDIT4\r\n\r\n" +
                                instance("1", controllerAt("x, bus 5, device 6, function 7")) +
                                instance("2", "") +
                                instance("3", controllerAt("PCI bus 2, device 1, function 0")) +
                                instance("4", controllerAt("x, bus 256, device 0, function 0")));
    ASSERT_TRUE(plugIn(server));
    const ProgramRun run = server.zolex({"/c", "/f:c.ini", "/v:9"});
    EXPECT_EQ((std::vector<std::string>{"0:1:0:1000:0411:1000:1002", "5:6:7:1000:0411:1000:1002"}),
              linesAfter(run.output, "Creating new RAIDController with: "));
    EXPECT_NE(run.output.find("Found 2 supported RAID controllers.\n"
                              "\tController 1:  LSI-MegaRAID-8480\n"
                              "\tController 2:  LSI-MegaRAID-8480\n"),
              std::string::npos)
        << run.output;
}

TEST(WindowsRegistryTest, TheFilesOfALaidOutServerEnterItsDevicesAndRemoveThem) {
    VirtualServer server;
    ASSERT_TRUE(server.isReady());
    ASSERT_EQ(server.simulator({"init", ".", "--sample", "mixed"}).exitCode, 0);
    const auto controllers = [&server] {
        const ProgramRun run = server.zolex({"/c", "/f:c.ini", "/v:9"});
        EXPECT_EQ(run.exitCode, 0);
        return linesAfter(run.output, "Creating new RAIDController with: ");
    };
    const std::vector<std::string> inFolder = controllers();
    EXPECT_EQ(inFolder.size(), 7U);
    ASSERT_TRUE(plugIn(server));
    EXPECT_EQ(controllers(), inFolder);
    ASSERT_TRUE(importFile(server.folder(), "pci-remove.reg"));
    EXPECT_EQ(server.zolex({"/e2"}).exitCode, 2);
}

} // namespace
} // namespace zolex::e2e

#endif
