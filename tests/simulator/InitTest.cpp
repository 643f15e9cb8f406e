#include "setup/Init.h"
#include "setup/Samples.h"
#include "setup/ServerFiles.h"
#include "simulator/SimulatorSupport.h"

#include <algorithm>

namespace zolex_sim::test {
namespace {

namespace fs = std::filesystem;

class Init : public ::testing::Test {
  protected:
    Init() { parent_.write("program", "the program's bytes"); }

    Outcome init(const std::vector<std::string>& arguments, Target target = Target::posix) const {
        std::ostringstream output;
        std::ostringstream error;
        const int exitCode =
            initialise(arguments, parent_.path() / "program", output, error, target);
        return {exitCode, output.str(), error.str()};
    }
    [[nodiscard]] std::string place() const { return (parent_.path() / "server").string(); }
    [[nodiscard]] std::string read(const std::string& name) const {
        return parent_.read("server/" + name);
    }
    [[nodiscard]] bool exists(const std::string& name) const {
        return fs::exists(fs::path(place()) / name);
    }

    TemporaryFolder parent_;
};

#ifndef _WIN32 // names of the PCI tree have a ":", which no file has there
TEST_F(Init, LaysOutAFolderOnPosix) {
    const Outcome result = init({place()});
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.exitCode, 0);
    const std::string canonical = fs::canonical(place()).string();
    EXPECT_EQ(result.output, "Laid out a virtual server of machine type 8837 in " + place() +
                                 " (sample single).\n"
                                 "To run zolex on it:\n"
                                 "  cd '" +
                                 canonical +
                                 "'\n"
                                 "  export ZOLEX_PCI_ROOT='" +
                                 canonical +
                                 "/pci'\n"
                                 "  zolex /f:sample-policies.ini\n");
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(place())) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names,
              (std::vector<std::string>{"UTIL.BAT", "contlist.ini", "fakeraid", "hwdetect.exe",
                                        "pci", "pci-remove.reg", "pci.reg", "sample-policies.ini",
                                        "server.json", "state.json", "zolex-sim"}));
    EXPECT_EQ(read("server.json"), samples().front().definition);
    EXPECT_EQ(read("zolex-sim"), "the program's bytes");
    EXPECT_EQ(read("pci/0000:02:0e.0/vendor"), "0x1000\n");
    EXPECT_EQ(read("pci/0000:02:0e.0/device"), "0x0411\n");
    EXPECT_EQ(read("pci/0000:02:0e.0/subsystem_vendor"), "0x1000\n");
    EXPECT_EQ(read("pci/0000:02:0e.0/subsystem_device"), "0x1002\n");
    EXPECT_EQ(read("pci/0000:02:0e.0/class"), "0x010400\n");
    EXPECT_EQ(read("pci/0000:02:0e.0/revision"), "0x00\n");
    EXPECT_EQ(read("pci/0000:06:02.0/class"), "0x020000\n");
    EXPECT_EQ(Runner(place())({"show"}).exitCode, 0);
}
#endif

TEST_F(Init, ScriptsOfPosixSystems) {
    const std::vector<ServerFile> files = launchers(Server(), Target::posix);
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0].name, "UTIL.BAT");
    EXPECT_EQ(files[0].content, "here=${0%/*}\n"
                                "[ \"$here\" = \"$0\" ] && here=.\n"
                                "exec \"$here/zolex-sim\" util \"$@\"\n");
    EXPECT_EQ(files[1].name, "hwdetect.exe");
    EXPECT_EQ(files[1].content, "#!/bin/sh\n"
                                "here=${0%/*}\n"
                                "[ \"$here\" = \"$0\" ] && here=.\n"
                                "exec \"$here/zolex-sim\" hwdetect \"$@\"\n");
    EXPECT_EQ(files[2].name, "fakeraid");
    for (const ServerFile& file : files) {
        EXPECT_TRUE(file.executable);
    }
}

TEST_F(Init, LaysOutAFolderForWindows) {
    const Outcome result = init({place(), "--sample", "later"}, Target::windows);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(read("UTIL.BAT"), "@\"%~dp0ZOLEX-SIM.EXE\" util %*\r\n");
    for (const char* program : {"ZOLEX-SIM.EXE", "hwdetect.exe", "fakeraid.exe"}) {
        EXPECT_EQ(read(program), "the program's bytes") << program;
        EXPECT_FALSE(fs::is_symlink(fs::path(place()) / program));
    }
    EXPECT_EQ(read("pci/0000-06-00.0/vendor"), "0x1000\n");
    EXPECT_EQ(read("pci/0000-06-00.0/class"), "0x010400\n");
    EXPECT_TRUE(exists("pci.reg"));
    EXPECT_TRUE(exists("pci-remove.reg"));
    std::string canonical = fs::canonical(place()).make_preferred().string();
    EXPECT_EQ(result.output.substr(result.output.find('\n') + 1),
              "To run zolex on it:\n  cd /d \"" + canonical + "\"\n  set \"ZOLEX_PCI_ROOT=" +
                  canonical + "\\pci\"\n  ZOLEX /f:sample-policies.ini\n");
}

TEST_F(Init, ZolexIsCalledByItsPathWhereItStandsWithTheSimulator) {
    const auto lastLine = [this](Target target) {
        const std::string output = init({place()}, target).output;
        return output.substr(output.rfind("\n  ") + 1);
    };
    const fs::path folder = parent_.path();
    fs::create_directory(folder / "ZOLEX.EXE"); // a folder is no program
    EXPECT_EQ(lastLine(Target::windows), "  ZOLEX /f:sample-policies.ini\n");
    fs::remove(folder / "ZOLEX.EXE");
    parent_.write("ZOLEX.EXE", "");
    EXPECT_EQ(lastLine(Target::windows),
              "  \"" + (folder / "ZOLEX.EXE").string() + "\" /f:sample-policies.ini\n");
    fs::remove(folder / "ZOLEX.EXE");
    parent_.write("zolex", "");
    EXPECT_EQ(lastLine(Target::posix),
              "  '" + (folder / "zolex").string() + "' /f:sample-policies.ini\n");
}

TEST_F(Init, ThePrintedCommandsHoldFolderNamesWithQuotesAndBlanks) {
    const Outcome result = init({(parent_.path() / "Bob's server").string()});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_NE(result.output.find("Bob'\\''s server'\n  export ZOLEX_PCI_ROOT='"),
              std::string::npos);
    EXPECT_NE(result.output.find("Bob'\\''s server/pci'\n"), std::string::npos);
}

/// The texts of a multi-string as the registry file writes it.
std::string hexadecimal(const std::string& bytes) {
    std::vector<std::string> parts;
    for (const char c : bytes) {
        parts.push_back(formatted("%02x", static_cast<unsigned>(static_cast<unsigned char>(c))));
    }
    return join(parts, ",");
}

/// What follows the comment that a registry file begins with.
std::string afterComment(const std::string& text) {
    const std::size_t key = text.find("\r\n[");
    for (std::size_t at = 12; at < key; at = text.find("\r\n", at) + 2) {
        EXPECT_TRUE(text[at] == ';' || text[at] == '\r') << text.substr(at, 20);
    }
    return text.substr(key + 2);
}

TEST_F(Init, PciRegistry) {
    const Server server = serverOf(definitionWith("", "", R"(, "otherDevices": [
        {"bus": 18, "device": 3, "function": 5, "vendorId": "0x8086", "deviceId": "0x25ab",
         "subsystemVendorId": "0x1f3d", "subsystemId": "0x0363", "class": "0x060001",
         "revision": "0xb1", "description": "A \"quoted\" \\ bridge"}])"));
    const std::string text = pciRegistry(server).content;
    EXPECT_EQ(text.substr(0, 12), "REGEDIT4\r\n\r\n");
    const std::string start = "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\"
                              "VEN_1000&DEV_0411&SUBSYS_00000000&REV_00\\4&1a2b3c4d&0&0208]\r\n"
                              "\"DeviceDesc\"=\"PCI device\"\r\n";
    EXPECT_EQ(afterComment(text).substr(0, start.size()), start);
    using namespace std::string_literals;
    const std::string second =
        "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\"
        "VEN_8086&DEV_25AB&SUBSYS_03631F3D&REV_B1\\4&1a2b3c4d&0&121D]\r\n"
        "\"DeviceDesc\"=\"A \\\"quoted\\\" \\\\ bridge\"\r\n"
        "\"HardwareID\"=hex(7):" +
        hexadecimal("PCI\\VEN_8086&DEV_25AB&SUBSYS_03631F3D&REV_B1\0"
                    "PCI\\VEN_8086&DEV_25AB&SUBSYS_03631F3D\0"
                    "PCI\\VEN_8086&DEV_25AB&CC_060001\0"
                    "PCI\\VEN_8086&DEV_25AB&CC_0600\0\0"s) +
        "\r\n\"CompatibleIDs\"=hex(7):" +
        hexadecimal("PCI\\VEN_8086&DEV_25AB&REV_B1\0PCI\\VEN_8086&DEV_25AB\0"
                    "PCI\\CC_060001\0PCI\\CC_0600\0\0"s) +
        "\r\n\"LocationInformation\"=\"@System32\\\\drivers\\\\pci.sys,#65536;PCI bus %1, "
        "device %2, function %3;(18,3,5)\"\r\n\r\n";
    ASSERT_GT(text.size(), second.size());
    EXPECT_EQ(text.substr(text.size() - second.size()), second);
}

TEST_F(Init, TheRegistryFileOfRemovalNamesTheKeysThatAreEnteredAndNoOther) {
    for (const Sample& sample : samples()) {
        Problem problem;
        const Server server = readDefinition(sample.definition, problem);
        std::string entered;
        std::istringstream lines(pciRegistry(server).content);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("[")) {
                entered += "[-" + line.substr(1) + "\n\r\n";
            }
        }
        const ServerFile removal = pciRegistryRemoval(server);
        EXPECT_EQ(removal.name, "pci-remove.reg");
        EXPECT_EQ(removal.content.substr(0, 12), "REGEDIT4\r\n\r\n");
        EXPECT_EQ(afterComment(removal.content), entered) << sample.name;
    }
}

TEST_F(Init, Inventory) {
    const Server server = serverOf(R"({"machineType": "8837", "serialNumber": "KQ1",
      "controllers": [
        {"utility": "MEGACLI", "model": "Second", "bios": "B2", "firmware": "F2",
         "pci": {"bus": 9, "device": 0, "vendorId": 1, "deviceId": 1}},
        {"utility": "MEGACLI", "model": "First", "bios": "B1", "firmware": "F1",
         "pci": {"bus": 3, "device": 0, "vendorId": 1, "deviceId": 1},
         "drives": [
           {"enclosure": 64, "slot": 1, "sizeMB": 100},
           {"enclosure": 32, "slot": 5, "sizeMB": 200, "interface": "SATA"},
           {"enclosure": 64, "slot": 0, "sizeMB": 300},
           {"enclosure": 64, "slot": 36, "sizeMB": 300},
           {"enclosure": 64, "slot": 7, "sizeMB": 300, "status": "failed"},
           {"slot": 35, "sizeMB": 400}]}]})");
    EXPECT_EQ(inventory(server).name, "contlist.ini");
    EXPECT_EQ(inventory(server).content,
              "; Inventory of the server of machine type 8837.\n"
              "[System]\nTotal_Number_Of_Controllers=2\n\n"
              "[RAIDController.1]\nModel=First\nBIOSVersion=B1\nFirmwareVersion=F1\n\n"
              "[RAIDController.1.Array]\nTotal_Number_Of_Arrays=0\n\n"
              "[RAIDController.1.Physical]\nTotal_Number_Of_Physicals=4\n"
              "Channel.1=1\nID.1=0\nSize.1=300\nType.1=SAS\n"
              "Channel.2=1\nID.2=1\nSize.2=100\nType.2=SAS\n"
              "Channel.3=2\nID.3=5\nSize.3=200\nType.3=SATA\n"
              "Channel.4=3\nID.4=35\nSize.4=400\nType.4=SAS\n\n"
              "[RAIDController.2]\nModel=Second\nBIOSVersion=B2\nFirmwareVersion=F2\n\n"
              "[RAIDController.2.Array]\nTotal_Number_Of_Arrays=0\n\n"
              "[RAIDController.2.Physical]\nTotal_Number_Of_Physicals=0\n\n");
}

TEST_F(Init, SamplePoliciesFitTheDrives) {
    const struct {
        int drives;
        const char* levels;
        const char* policy; ///< its lines without comments, blank lines and settings
    } rows[] = {
        {0, "", ""},
        {1, "", "Array.A = 1\nLogical.1 = A:FILL:0:ON\n"},
        {2, "", "Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n"},
        {3, "", "Array.A = 1,2,3\nLogical.1 = A:FILL:5:ON\n"},
        {4, "", "Array.A = 1,2,3\nHotspares = 4\nLogical.1 = A:FILL:5:ON\n"},
        {6, "",
         "Array.A = 1,2\nArray.B = 3,4,5\nHotspares = 6\n"
         "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:5:ON\n"},
        {24, "",
         "Array.A = 1,2\nArray.B = 3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18\n"
         "Hotspares = 24\nLogical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:5:ON\n"},
        {4, R"("raidLevels": ["RAID0"],)", "Array.A = 1,2,3,4\nLogical.1 = A:FILL:0:ON\n"},
    };
    for (const auto& row : rows) {
        const std::string drives =
            row.drives == 0
                ? ""
                : formatted(R"({"enclosure": 1, "slot": 0, "count": %d, "sizeMB": 9})", row.drives);
        const std::string text =
            samplePolicies(serverOf(definitionWith(drives, row.levels))).content;
        std::istringstream lines(text);
        std::string found;
        for (std::string line; std::getline(lines, line);) {
            ASSERT_LE(line.size(), 250U);
            if (line.rfind("Array.", 0) == 0 || line.rfind("Logical.", 0) == 0 ||
                line.rfind("Hotspares", 0) == 0) {
                found += line + "\n";
            }
        }
        EXPECT_EQ(found, row.policy) << row.drives;
        EXPECT_EQ(text.find("[Policy.sample-1]") != std::string::npos, row.drives > 0);
    }
}

std::vector<std::string> linesOf(const std::string& text, const std::vector<const char*>& keys) {
    std::istringstream lines(text);
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);) {
        if (std::any_of(keys.begin(), keys.end(),
                        [&line](const char* key) { return line.rfind(key, 0) == 0; })) {
            found.push_back(line);
        }
    }
    return found;
}

TEST_F(Init, SamplePoliciesUseTheDrivesThatAreFree) {
    const std::vector<const char*> keys = {"Array", "Hotspares", "Logical."};
    const auto policiesOf = [](const char* sample) {
        return samplePolicies(serverOf(std::string(sampleNamed(sample)->definition))).content;
    };
    // Drives 1 to 3 are an array.
    const std::string partly = policiesOf("qtcsend");
    EXPECT_EQ(linesOf(partly, keys),
              (std::vector<std::string>{"Array_Mode = CUSTOM", "Array.A = 4,5,6,7", "Hotspares = 8",
                                        "Logical.1 = A:FILL:5:ON"}));
    EXPECT_NE(partly.find("; The other drives are in arrays already"), std::string::npos);
    // None is free.
    const std::string whole = policiesOf("configured");
    EXPECT_EQ(linesOf(whole, {"Array.", "Hotspares"}),
              (std::vector<std::string>{"Array.A = 1,2", "Array.B = 3,4,5,6,7", "Hotspares = 8"}));
    EXPECT_NE(whole.find("erases all arrays"), std::string::npos);
    for (const Sample& sample : samples()) {
        const Server server = serverOf(std::string(sample.definition));
        EXPECT_EQ(samplePoliciesNeedReset(server), sample.name == "configured") << sample.name;
        EXPECT_EQ(samplePolicies(server).content.find("erases") != std::string::npos,
                  sample.name == "configured")
            << sample.name;
    }
}

TEST_F(Init, AFewFreeDrivesGetNoHotSpareOfTheControllersDefault) {
    const std::string definition =
        definitionWith(R"({"enclosure": 1, "slot": 0, "count": 2, "sizeMB": 9},
                          {"enclosure": 1, "slot": 2, "sizeMB": 9, "status": "hotspare"},
                          {"enclosure": 1, "slot": 3, "sizeMB": 9, "status": "foreign"})");
    EXPECT_EQ(linesOf(samplePolicies(serverOf(definition)).content, {"Array", "Hotspares"}),
              (std::vector<std::string>{"Array_Mode = CUSTOM", "Array.A = 1,2",
                                        "Array_Defaults = 0%:0"}));
}

TEST_F(Init, AServerWithoutFreeDrivesIsCapturedFirst) {
    const std::string output = init({place(), "--sample", "configured"}, Target::posix).output;
    EXPECT_NE(output.find("To write its arrays as policies:\n  cd "), std::string::npos) << output;
    EXPECT_NE(output.find("\n  zolex /c /f:captured.ini\nTo erase its arrays and make those of the "
                          "sample policies:\n  zolex /r /f:sample-policies.ini\n"),
              std::string::npos)
        << output;
}

TEST_F(Init, TakesADefinitionFile) {
    parent_.write("mine.json", definitionWith(R"({"slot": 0, "sizeMB": 9})"));
    const std::string file = (parent_.path() / "mine.json").string();
    EXPECT_EQ(init({place(), "--definition", file}, Target::windows).exitCode, 0);
    EXPECT_EQ(read("server.json"), parent_.read("mine.json"));
    parent_.write("mine.json", "{}");
    const Outcome bad = init({place(), "--definition", file}, Target::windows);
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_EQ(bad.error, "zolex-sim: definition file " + file + ": machineType: is missing\n");
    const Outcome none = init({place(), "--definition", file + "x"}, Target::windows);
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.error, "zolex-sim: cannot read the definition file " + file + "x\n");
}

TEST_F(Init, RefusesWhatItDoesNotUnderstand) {
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {""},
                                                         {place(), "--sample"},
                                                         {place(), "--definition"},
                                                         {place(), "single"},
                                                         {place(), "--server", "single"},
                                                         {place(), "--sample", "single", "more"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const Outcome result = init(arguments);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.error.substr(0, 27), "Usage: zolex-sim init DIR [");
    }
    EXPECT_EQ(init({place(), "--sample", "none"}).error.substr(0, 36),
              "zolex-sim: there is no sample none\nS");
    EXPECT_FALSE(exists(""));
}

TEST_F(Init, ReplacesAnEarlierServer) {
    EXPECT_EQ(init({place()}, hostTarget()).exitCode, 0);
    const Runner run(place());
    EXPECT_EQ(run.util("-CfgLdAdd R0 [32:0] -a0").exitCode, 0);
    EXPECT_EQ(init({place(), "--sample", "two-controllers"}, hostTarget()).exitCode, 0);
    EXPECT_FALSE(exists("pci/0000:06:02.0"));
    EXPECT_NE(run({"show"}).output.find("Controller 2"), std::string::npos);
    EXPECT_EQ(run({"show"}).output.find("online"), std::string::npos);
}

TEST_F(Init, LeavesAFolderOfSomebodyElseAlone) {
    fs::create_directories(fs::path(place()) / "pci");
    parent_.write("server/pci/mine", "mine");
    const Outcome result = init({place()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.error, "zolex-sim: this is not a server's folder, but it has a folder " +
                                (fs::path(place()) / "pci").string() + "\n");
    EXPECT_EQ(read("pci/mine"), "mine");
    EXPECT_FALSE(exists("server.json"));
}

TEST_F(Init, LeavesFilesOfSomebodyElseAlone) {
    for (const Target target : {Target::posix, Target::windows}) {
        for (const std::string& name : {std::string("UTIL.BAT"), std::string("hwdetect.exe"),
                                        std::string("sample-policies.ini")}) {
            SCOPED_TRACE(name);
            fs::create_directory(place());
            parent_.write("server/" + name, "mine");
            const Outcome result = init({place()}, target);
            EXPECT_EQ(result.exitCode, 1);
            EXPECT_EQ(result.error, "zolex-sim: this is not a server's folder, but it has a file " +
                                        (fs::path(place()) / name).string() + "\n");
            EXPECT_EQ(read(name), "mine");
            EXPECT_FALSE(exists("server.json"));
            EXPECT_FALSE(exists("pci"));
            fs::remove_all(place());
        }
    }
}

TEST_F(Init, FilesThatItDoesNotWriteMayBeThere) {
    fs::create_directory(place());
    parent_.write("server/policies.ini", "mine");
    EXPECT_EQ(init({place()}).exitCode, 0);
    EXPECT_EQ(read("policies.ini"), "mine");
}

TEST_F(Init, AFolderThatCannotBeMadeIsTold) {
    parent_.write("server", "a file");
    const Outcome result = init({place()});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.error, "zolex-sim: cannot make the folder " + place() + "\n");
}

/// Listing and reset commands of a utility's first controller.
std::vector<std::string> harmlessCommands(const std::string& utility) {
    if (utility == "MEGACLI") {
        return {"MEGACLI -LdPdInfo -a0", "MEGACLI -pdList -a0", "MEGACLI -adpallinfo -a0",
                "MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT", "MEGACLI -CFGCLR -A0 -SILENT"};
    }
    if (utility == "CFGGEN" || utility == "CFGGEN1.02.02") {
        return {utility + " 0 DISPLAY", utility + " 0 DELETE NOPROMPT"};
    }
    if (utility == "HYPERWIN") {
        return {"HYPERWIN /L /D00", "HYPERWIN /L /D10", "HYPERWIN /L /D20", "HYPERWIN /Ea"};
    }
    return {utility + " GETCONFIG 1 AL", utility + " SETCONFIG 1 DEFAULT NOPROMPT"};
}

TEST_F(Init, EverySampleIsPlayable) {
    for (const Sample& sample : samples()) {
        EXPECT_EQ(init({place(), "--sample", std::string(sample.name)}, hostTarget()).exitCode, 0);
        const Runner run(place());
        EXPECT_EQ(run({"show"}).exitCode, 0) << sample.name;
        EXPECT_EQ(run({"hwdetect", "/i"}).exitCode, 0) << sample.name;
        const Server server = serverOf(std::string(sample.definition));
        EXPECT_FALSE(server.controllers.empty()) << sample.name;
        for (const Controller& controller : server.controllers) {
            for (const std::string& command : harmlessCommands(controller.identity.utility)) {
                EXPECT_EQ(run(splitWords("util " + command)).exitCode, 0)
                    << sample.name << " " << command;
            }
        }
    }
}

} // namespace
} // namespace zolex_sim::test
