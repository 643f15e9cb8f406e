#include "companion/machine/Capture.h"

#include "companion/machine/UtilityPlatform.h"
#include "companion/support/SimulatedPlatform.h"
#include "model/State.h"
#include "setup/ServerFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

Utilities wrapped() {
    Utilities utilities;
    utilities.wrapper = "/srv/my tools/UTIL.BAT";
    utilities.detector = "/srv/my tools/hwdetect.exe";
    return utilities;
}

Utilities byUsualNames() {
    Utilities utilities;
    utilities.detector = "/srv/my tools/hwdetect.exe";
    for (const UtilityNames& names : utilityNames()) {
        utilities.programs.emplace(names.utility,
                                   "/srv/my tools/" + std::string(names.programs.front()));
    }
    return utilities;
}

std::vector<std::string> texts(const std::vector<Finding>& findings) {
    std::vector<std::string> result;
    for (const Finding& finding : findings) {
        result.push_back(finding.code + " " + finding.summary);
    }
    return result;
}

using Texts = std::vector<std::string>;

/// "no location state array" of each drive.
Texts drivesOf(const ControllerSnapshot& controller) {
    Texts rows;
    for (const MachineDrive& drive : controller.drives) {
        rows.push_back((drive.policyNumber ? std::to_string(*drive.policyNumber) : "-") + " " +
                       drive.facts.location + " " + drive.facts.reportedState +
                       (drive.array.empty() ? "" : " " + drive.array));
    }
    return rows;
}

/// A definition with one MegaRAID controller that has these drives.
std::string megaRaid(const std::string& drives) {
    return R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [{"utility": "MEGACLI",
        "model": "LSI-MegaRAID-8480", "pci": {"bus": 2, "device": 14, "vendorId": "0x1000",
        "deviceId": "0x0411", "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)" +
           drives + "]}]}";
}

/// Controllers of CFGGEN on these buses, one drive each, on a machine of this type.
std::string cfggens(const std::string& machineType, const std::vector<int>& buses) {
    std::string text =
        R"({"machineType": ")" + machineType + R"(", "serialNumber": "KQ1", "controllers": [)";
    int number = 0;
    for (const int bus : buses) {
        text += (number++ == 0 ? "" : ", ") +
                std::string(R"({"utility": "CFGGEN", "model": "LSI-SAS-RAID", "pci": {"bus": )") +
                std::to_string(bus) +
                R"(, "device": 0, "vendorId": "0x1000", "deviceId": "0x0050"}, "drives": [
                {"enclosure": 1, "slot": 0, "sizeMB": 70006, "serial": "S)" +
                std::to_string(bus) + R"("}]})";
    }
    return text + "]}";
}

/// Lets the utilities of the machine answer as another adapter would.
void swapAdapters(SimulatedPlatform& platform, const std::string& first,
                  const std::string& second) {
    platform.respond = [&platform, first, second](const std::string& line) {
        std::string changed = line;
        if (const std::size_t at = line.find(first); at != std::string::npos) {
            changed.replace(at, first.size(), second);
        } else if (const std::size_t other = line.find(second); other != std::string::npos) {
            changed.replace(other, second.size(), first);
        }
        return platform.play(changed);
    };
}

TEST(Capture, DrivesOfAPlainServerHaveTheirNumbers) {
    SimulatedPlatform platform("single");
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(snapshot.machine.machineType, "8837");
    EXPECT_EQ(snapshot.machine.serialNumber, "KQ10Z7V");
    EXPECT_EQ(snapshot.machineSource, "hwdetect.exe");
    ASSERT_EQ(snapshot.details.size(), 1U);
    const ControllerSnapshot& controller = snapshot.details[0];
    EXPECT_EQ(controller.number, 1);
    EXPECT_EQ(controller.model, "LSI-MegaRAID-8480");
    EXPECT_EQ(controller.utility, "MEGACLI");
    EXPECT_EQ(controller.adapter, 0);
    EXPECT_EQ(controller.pci, "0000:02:0e.0");
    EXPECT_EQ(controller.pciIds, "1000:0411:1000:1002");
    EXPECT_FALSE(controller.failed);
    EXPECT_TRUE(snapshot.isComplete());
    ASSERT_EQ(controller.commands.size(), 3U);
    EXPECT_EQ(controller.commands[1].command, "UTIL.BAT MEGACLI -pdList -a0 ");
    EXPECT_EQ(controller.commands[1].outcome, ChildOutcome::ended);
    ASSERT_EQ(controller.drives.size(), 8U);
    EXPECT_EQ(controller.drives[7].facts.location, "32:7");
    EXPECT_EQ(controller.drives[7].policyNumber, 8);
    EXPECT_EQ(controller.drives[7].policyPosition, (DrivePosition{1, 7}));
    EXPECT_TRUE(snapshot.findings.empty());
    EXPECT_TRUE(controller.findings.empty());
}

class CaptureOfSample : public testing::TestWithParam<std::string> {};

/// Each sample through UTIL.BAT and by the utilities' own names: everything is read, nothing is
/// changed, and the numbers are those that the virtual server counts.
TEST_P(CaptureOfSample, IsWholeAndChangesNothing) {
    std::vector<std::vector<std::string>> drives;
    for (const Utilities& utilities : {wrapped(), byUsualNames()}) {
        SimulatedPlatform system(GetParam());
        const std::string before = zolex_sim::writeState(system.server);
        UtilityPlatform platform(system, utilities);
        const Snapshot snapshot = captureMachine(platform, {});
        EXPECT_EQ(zolex_sim::writeState(system.server), before);
        EXPECT_EQ(texts(snapshot.findings), Texts());
        EXPECT_EQ(snapshot.machine.machineType.view(), system.server.machineType);
        EXPECT_EQ(snapshot.machine.serialNumber.view(), system.server.serialNumber);
        ASSERT_EQ(snapshot.details.size(), system.server.controllers.size());
        const auto controllers = system.server.controllersInPciOrder();
        for (std::size_t i = 0; i < controllers.size(); ++i) {
            const ControllerSnapshot& controller = snapshot.details[i];
            EXPECT_EQ(texts(controller.findings), Texts());
            EXPECT_FALSE(controller.failed);
            EXPECT_EQ(controller.utility, controllers[i]->identity.utility);
            const auto counted = zolex_sim::countedDrives(*controllers[i]);
            ASSERT_EQ(controller.drives.size(), counted.size());
            for (std::size_t drive = 0; drive < counted.size(); ++drive) {
                EXPECT_EQ(controller.drives[drive].policyNumber,
                          static_cast<std::int32_t>(drive) + 1);
                const std::string told = controller.drives[drive].facts.serialNumber;
                EXPECT_EQ(told, controller.utility == "HYPERWIN" ? "" : counted[drive]->serial);
            }
            drives.push_back(drivesOf(controller));
        }
    }
    const auto half = static_cast<std::ptrdiff_t>(drives.size() / 2);
    EXPECT_TRUE(std::equal(drives.begin(), drives.begin() + half, drives.begin() + half));
}

INSTANTIATE_TEST_SUITE_P(Samples, CaptureOfSample, testing::ValuesIn(SimulatedPlatform::samples()),
                         [](const auto& sample) {
                             std::string name = sample.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(Capture, ArraysAndTheirDrivesHaveLetters) {
    SimulatedPlatform platform("configured");
    const Snapshot snapshot = captureMachine(platform, {});
    const ControllerSnapshot& controller = snapshot.details.at(0);
    EXPECT_EQ(drivesOf(controller),
              (Texts{"1 32:0 Online A", "2 32:1 Online A", "3 32:2 Online B", "4 32:3 Online B",
                     "5 32:4 Online B", "6 32:5 Online B", "7 32:6 Online B", "8 32:7 Hotspare"}));
    ASSERT_EQ(controller.arrays.size(), 2U);
    EXPECT_EQ(controller.arrays[1].letter, "B");
    EXPECT_EQ(controller.arrays[1].logicalDrives, std::vector<std::size_t>{1});
    EXPECT_EQ(controller.arrays[1].drives, (Texts{"32:2", "32:3", "32:4", "32:5", "32:6"}));
}

TEST(Capture, OnlyReadingLinesAreRunWithTheLimitAndThePausesThatTheirUtilityNeeds) {
    SimulatedPlatform platform("mixed");
    CaptureRequest request;
    request.limit = std::chrono::seconds(7);
    Texts progress;
    request.progress = [&progress](const std::string& text) { progress.push_back(text); };
    static_cast<void>(captureMachine(platform, request));
    EXPECT_EQ(platform.children,
              (Texts{"hwdetect.exe /i", "UTIL.BAT MEGACLI -LdPdInfo -a0 \n",
                     "UTIL.BAT MEGACLI -pdList -a0 \n", "UTIL.BAT MEGACLI -adpallinfo -a0 \n",
                     "UTIL.BAT ARCCONF GETCONFIG 1 AL\n", "UTIL.BAT HRCONF GETCONFIG 1 AL\n",
                     "UTIL.BAT QTCSEND GETCONFIG 1 AL\n", "UTIL.BAT CFGGEN1.02.02 0 DISPLAY \n",
                     "UTIL.BAT CFGGEN 0 DISPLAY \n", "UTIL.BAT HYPERWIN /L /D00 \n",
                     "UTIL.BAT HYPERWIN /L /D10 \n", "UTIL.BAT HYPERWIN /L /D20 \n"}));
    for (const std::chrono::milliseconds limit : platform.limits) {
        EXPECT_EQ(limit, std::chrono::seconds(7));
    }
    EXPECT_EQ(platform.pauses, 15);
    EXPECT_EQ(progress.size(), platform.children.size());
    EXPECT_EQ(progress.front(), "hardware detector");
    EXPECT_EQ(progress.at(4), "controller 2 of 7: UTIL.BAT ARCCONF GETCONFIG 1 AL");
    EXPECT_EQ(progress.back(), "controller 7 of 7: UTIL.BAT HYPERWIN /L /D20");
}

TEST(Capture, AControllerThatFailsEndsNothingElse) {
    SimulatedPlatform platform("mixed");
    platform.respond = [&platform](const std::string& line) {
        return line.find("ARCCONF") == std::string::npos
                   ? platform.play(line)
                   : SimulatedPlatform::ended(5, "\n\n  Controller not found.\r\n\x1B[2Jsecond\n");
    };
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_FALSE(snapshot.isComplete());
    ASSERT_EQ(snapshot.details.size(), 7U);
    for (const ControllerSnapshot& controller : snapshot.details) {
        EXPECT_EQ(controller.failed, controller.utility == "ARCCONF");
        EXPECT_EQ(controller.drives.empty(), controller.utility == "ARCCONF");
    }
    const ControllerSnapshot& failed = snapshot.details[1];
    EXPECT_EQ(texts(failed.findings),
              Texts{"ZP104 UTIL.BAT ARCCONF GETCONFIG 1 AL ended with exit code 5"});
    EXPECT_EQ(failed.findings[0].detail, "Controller not found.\n?[2Jsecond");
    EXPECT_EQ(failed.commands.at(0).exitCode, 5U);
    EXPECT_EQ(failed.model, "Kestrix-B7");
}

TEST(Capture, ExitCodesThatTheUtilityHasForSuccessAreAccepted) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        ChildResult result = platform.play(line);
        result.exitCode = line.find("MEGACLI") == std::string::npos ? 0 : 49;
        return result;
    };
    EXPECT_TRUE(captureMachine(platform, {}).isComplete());
}

TEST(Capture, EveryEndOfAChildIsTold) {
    struct Row {
        ChildResult result;
        const char* text;
    };
    const Row rows[] = {
        {{ChildOutcome::notStarted, 0, ""},
         "ZP102 UTIL.BAT MEGACLI -LdPdInfo -a0 cannot be started"},
        {{ChildOutcome::noPipe, 0, ""},
         "ZP102 no pipe for the output of UTIL.BAT MEGACLI -LdPdInfo -a0"},
        {{ChildOutcome::stillRunning, 0, ""},
         "ZP103 UTIL.BAT MEGACLI -LdPdInfo -a0 did not end within 300 s"},
        {{ChildOutcome::ended, 1, ""},
         "ZP104 UTIL.BAT MEGACLI -LdPdInfo -a0 ended with exit code 1"},
        {{ChildOutcome::notClosed, 255, "no"},
         "ZP104 UTIL.BAT MEGACLI -LdPdInfo -a0 ended with exit code 255"},
    };
    for (const Row& row : rows) {
        SimulatedPlatform platform("single");
        platform.respond = [&](const std::string& line) {
            return line.find("-LdPdInfo") == std::string::npos ? platform.play(line) : row.result;
        };
        const Snapshot snapshot = captureMachine(platform, {});
        EXPECT_EQ(texts(snapshot.details.at(0).findings), Texts{row.text});
        EXPECT_TRUE(snapshot.details[0].failed);
        EXPECT_EQ(snapshot.details[0].commands.size(), 1U);
    }
}

/// A utility that prints an error and ends with 0 all the same.
TEST(Capture, AnErrorInThePlaceOfAListingIsTold) {
    struct Row {
        const char* output;
        Texts findings;
    };
    const Row rows[] = {
        {"", {"ZP105 UTIL.BAT ARCCONF GETCONFIG 1 AL ended with exit code 0 and printed nothing"}},
        {"\n \r\n",
         {"ZP105 UTIL.BAT ARCCONF GETCONFIG 1 AL ended with exit code 0 and printed nothing"}},
        {"Error: no access\n",
         {"ZP105 UTIL.BAT ARCCONF GETCONFIG 1 AL ended with exit code 0, but printed: Error: no "
          "access"}},
        {"hello\n", {"ZP105 what the utility printed is no listing"}},
    };
    for (const Row& row : rows) {
        SimulatedPlatform platform("arcconf");
        platform.respond = [&](const std::string& line) {
            return line.find("ARCCONF") == std::string::npos
                       ? platform.play(line)
                       : SimulatedPlatform::ended(0, row.output);
        };
        const Snapshot snapshot = captureMachine(platform, {});
        EXPECT_EQ(texts(snapshot.details.at(0).findings), row.findings);
        EXPECT_TRUE(snapshot.details[0].failed);
    }
}

/// MEGACLI ends its errors with the line that ends its listings, and a wrapper may lose the code.
TEST(Capture, AnErrorThatEndsAsAListingDoesIsTold) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        return line.find("MEGACLI") == std::string::npos
                   ? platform.play(line)
                   : SimulatedPlatform::ended(0, "Failed to get data.\n\nExit Code: 0x01\n");
    };
    const Snapshot snapshot = captureMachine(platform, {});
    Texts expected;
    for (const char* const verb : {"-LdPdInfo", "-pdList", "-adpallinfo"}) {
        expected.push_back(std::string("ZP105 UTIL.BAT MEGACLI ") + verb +
                           " -a0 ended with exit code 0, but printed: Failed to get data.");
    }
    EXPECT_EQ(texts(snapshot.details.at(0).findings), expected);
    EXPECT_TRUE(snapshot.details[0].failed);
}

TEST(Capture, OneListingThatIsAnErrorIsToldAndTheOthersCount) {
    SimulatedPlatform platform("single");
    platform.respond = [&platform](const std::string& line) {
        return line.find("-adpallinfo") == std::string::npos
                   ? platform.play(line)
                   : SimulatedPlatform::ended(0, "Failed to get adapter data\n");
    };
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(texts(snapshot.details.at(0).findings),
              Texts{"ZP105 UTIL.BAT MEGACLI -adpallinfo -a0 ended with exit code 0, but printed: "
                    "Failed to get adapter data"});
    EXPECT_FALSE(snapshot.details[0].failed);
    EXPECT_EQ(snapshot.details[0].drives.size(), 8U);
}

TEST(Capture, ControllersCanBeNamedAndKeepTheirNumbers) {
    SimulatedPlatform platform("mixed");
    CaptureRequest request;
    request.controllers = {6, 2};
    const Snapshot snapshot = captureMachine(platform, request);
    ASSERT_EQ(snapshot.details.size(), 2U);
    EXPECT_EQ(snapshot.details[0].number, 2);
    EXPECT_EQ(snapshot.details[1].number, 6);
    EXPECT_EQ(snapshot.details[1].index, 5U);
    EXPECT_EQ(snapshot.controllers.count(), 7U);
    EXPECT_EQ(platform.children, (Texts{"hwdetect.exe /i", "UTIL.BAT ARCCONF GETCONFIG 1 AL\n",
                                        "UTIL.BAT CFGGEN 0 DISPLAY \n"}));
}

TEST(Capture, AControllerThatDoesNotExistIsAnErrorBeforeAnyUtilityIsAsked) {
    struct Row {
        const char* sample;
        std::int32_t number;
        const char* text;
    };
    for (const Row& row :
         {Row{"mixed", 9, "there is no controller 9: this machine has 7"},
          Row{"single", 2, "there is no controller 2: this machine has one, number 1"},
          Row{"single", 0, "there is no controller 0: this machine has one, number 1"}}) {
        SimulatedPlatform platform(row.sample);
        CaptureRequest request;
        request.controllers = {1, row.number};
        try {
            static_cast<void>(captureMachine(platform, request));
            FAIL();
        } catch (const NoSuchController& missing) {
            EXPECT_STREQ(missing.what(), row.text);
            EXPECT_EQ(missing.number(), row.number);
        }
        EXPECT_EQ(platform.children, Texts{"hwdetect.exe /i"});
    }
}

TEST(Capture, AMachineWithoutControllersIsEmpty) {
    SimulatedPlatform platform("single");
    platform.devices.clear();
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_TRUE(snapshot.details.empty());
    EXPECT_TRUE(snapshot.isComplete());
    EXPECT_EQ(snapshot.machine.machineType, "8837");
}

/// The failed drive keeps its slot and loses its number: all behind it are named by one less.
TEST(Capture, AFailedDriveShiftsTheNumbersBehindIt) {
    SimulatedPlatform platform(megaRaid(
        R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
           {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
           {"enclosure": 32, "slot": 3, "count": 2, "sizeMB": 69376})"));
    const Snapshot snapshot = captureMachine(platform, {});
    const ControllerSnapshot& controller = snapshot.details.at(0);
    EXPECT_EQ(drivesOf(controller),
              (Texts{"1 32:0 Unconfigured(good)", "2 32:1 Unconfigured(good)",
                     "3 32:3 Unconfigured(good)", "4 32:4 Unconfigured(good)", "- 32:2 Failed"}));
    EXPECT_EQ(
        texts(controller.findings),
        Texts{
            "ZX701 32:2 (Failed, serial ZS000002) has no number in policies: drive 3 is 32:3 now"});
    EXPECT_EQ(controller.findings[0].severity, Severity::warning);
}

TEST(Capture, AFailedDriveAtTheEndShiftsNothing) {
    SimulatedPlatform platform(
        megaRaid(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
                    {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"})"));
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(texts(snapshot.details.at(0).findings),
              Texts{"ZX701 32:2 (Failed, serial ZS000002) has no number in policies"});
}

/// Drives 1 to 4 stand in an enclosure and two others in none: zolex's command lines name the
/// latter when the former are meant.
TEST(Capture, ADriveInNoEnclosureBesideThoseInOneIsTold) {
    SimulatedPlatform platform(
        megaRaid(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
                    {"slot": 0, "count": 2, "sizeMB": 69376})"));
    const Snapshot snapshot = captureMachine(platform, {});
    const ControllerSnapshot& controller = snapshot.details.at(0);
    EXPECT_EQ(drivesOf(controller), (Texts{"1 32:0 Unconfigured(good)", "2 32:1 Unconfigured(good)",
                                           "3 32:2 Unconfigured(good)", "4 32:3 Unconfigured(good)",
                                           "5 :0 Unconfigured(good)", "6 :1 Unconfigured(good)"}));
    ASSERT_FALSE(controller.findings.empty());
    for (const Finding& finding : controller.findings) {
        EXPECT_EQ(finding.code, "ZP122") << finding.summary;
    }
}

TEST(Capture, DrivesInNoEnclosureAloneAreNamedAsTheirUtilityDoes) {
    SimulatedPlatform platform(megaRaid(R"({"slot": 0, "count": 3, "sizeMB": 69376})"));
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(
        drivesOf(snapshot.details.at(0)),
        (Texts{"1 :0 Unconfigured(good)", "2 :1 Unconfigured(good)", "3 :2 Unconfigured(good)"}));
    EXPECT_EQ(snapshot.details[0].drives[2].policyPosition, (DrivePosition{1, 2}));
}

TEST(Capture, DrivesBeyondWhatPoliciesCanNameAreTold) {
    SimulatedPlatform platform(megaRaid(R"({"enclosure": 1, "slot": 0, "sizeMB": 69376},
        {"enclosure": 2, "slot": 0, "sizeMB": 69376}, {"enclosure": 3, "slot": 0, "sizeMB": 69376},
        {"enclosure": 4, "slot": 0, "sizeMB": 69376}, {"enclosure": 5, "slot": 0, "sizeMB": 69376},
        {"enclosure": 1, "slot": 36, "sizeMB": 69376})"));
    const Snapshot snapshot = captureMachine(platform, {});
    const ControllerSnapshot& controller = snapshot.details.at(0);
    EXPECT_EQ(
        texts(controller.findings),
        (Texts{"ZX701 5:0 (Unconfigured(good), serial ZS000004) has no number in policies",
               "ZX701 1:36 (Unconfigured(good), serial ZS000005) has no number in policies"}));
    EXPECT_EQ(controller.findings.at(0).detail,
              "policies can name drives of 4 enclosures or channels, with numbers up to 35");
    EXPECT_EQ(controller.drives.size(), 6U);
}

/// The utility numbers its adapters otherwise than the bus: the listing is of another controller.
TEST(Capture, AListingOfAnotherPciFunctionIsTold) {
    SimulatedPlatform platform("two-controllers");
    swapAdapters(platform, "-a0", "-a1");
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(
        texts(snapshot.details.at(0).findings),
        Texts{"ZP108 the listing is of a controller with the PCI ids 1000:0079:1000:9260, the "
              "PCI function 0000:02:0e.0 has 1000:0411:1000:1002"});
    EXPECT_EQ(
        texts(snapshot.details.at(1).findings),
        Texts{"ZP108 the listing is of a controller with the PCI ids 1000:0411:1000:1002, the "
              "PCI function 0000:0a:00.0 has 1000:0079:1000:9260"});
}

TEST(Capture, AListingOfAnotherModelIsTold) {
    SimulatedPlatform platform(
        R"({"machineType": "8840", "serialNumber": "KQ1", "controllers": [
        {"utility": "ARCCONF", "model": "Kestrix-B7", "productName": "Norvik Kestrix B7",
         "serialNumber": "S1",
         "pci": {"bus": 2, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
         "drives": [{"channel": 0, "device": 0, "sizeMB": 70006}]},
        {"utility": "ARCCONF", "model": "Kestrix-B1", "productName": "Norvik Kestrix B1",
         "serialNumber": "S2",
         "pci": {"bus": 3, "device": 1, "vendorId": "0x9005", "deviceId": "0x0285",
                 "subsystemVendorId": "0x1F3D", "subsystemId": "0x02F2"},
         "drives": [{"channel": 0, "device": 0, "sizeMB": 70006}]}]})");
    EXPECT_TRUE(captureMachine(platform, {}).details.at(1).findings.empty());
    swapAdapters(platform, "GETCONFIG 1", "GETCONFIG 2");
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(texts(snapshot.details.at(0).findings),
              Texts{"ZP107 the listing is of a Kestrix-B1, the PCI function 0000:02:01.0 of a "
                    "Kestrix-B7"});
    EXPECT_EQ(texts(snapshot.details.at(1).findings),
              Texts{"ZP107 the listing is of a Kestrix-B7, the PCI function 0000:03:01.0 of a "
                    "Kestrix-B1"});
}

TEST(Capture, OneControllerUnderTwoNumbersIsTold) {
    SimulatedPlatform platform(
        R"({"machineType": "8840", "serialNumber": "KQ1", "controllers": [
        {"utility": "HRCONF", "model": "Kestrix-A10", "serialNumber": "S1",
         "pci": {"bus": 2, "device": 1, "vendorId": "0x9005", "deviceId": "0x808F"},
         "drives": [{"channel": 0, "device": 0, "sizeMB": 70006}]},
        {"utility": "HRCONF", "model": "Kestrix-A10", "serialNumber": "S2",
         "pci": {"bus": 3, "device": 1, "vendorId": "0x9005", "deviceId": "0x808F"},
         "drives": [{"channel": 0, "device": 0, "sizeMB": 70006}]}]})");
    EXPECT_EQ(texts(captureMachine(platform, {}).findings), Texts());
    platform.respond = [&platform](const std::string& line) {
        std::string changed = line;
        if (const std::size_t at = line.find("GETCONFIG 2"); at != std::string::npos) {
            changed.replace(at, 11, "GETCONFIG 1");
        }
        return platform.play(changed);
    };
    EXPECT_EQ(texts(captureMachine(platform, {}).findings),
              Texts{"ZP109 the listings of controllers 1 and 2 tell the same serial number, S1"});
}

TEST(Capture, NamesOfTheMachineComeFromOptionsTheDetectorAndTheFirmwareInThisOrder) {
    class Machine : public SimulatedPlatform {
      public:
        using SimulatedPlatform::SimulatedPlatform;
        FirmwareNames firmware() override {
            ++asked;
            return names;
        }
        FirmwareNames names{"System x", "FW123", ""};
        int asked = 0;
    };
    struct Row {
        const char* about;
        ChildResult detector;
        const char* type;   // option
        const char* serial; // option
        FirmwareNames firmware;
        std::string names; // expected: type, serial, source
        int asked;
        Texts findings;
    };
    const FirmwareNames fw{"System x", "FW123", ""};
    const auto ended = [](std::uint32_t code, const char* output) {
        return SimulatedPlatform::ended(code, output);
    };
    const char* const both = "Machine_Type=8837\nSerial_Number=KQ1\n";
    const Row rows[] = {
        {"detector", ended(0, both), "", "", fw, "8837 KQ1 hwdetect.exe", 0, {}},
        {"options", ended(0, both), "T", "S", fw, "T S options", 0, {}},
        {"one option", ended(0, both), "T", "", fw, "T KQ1 options", 0, {}},
        {"missing", {}, "", "", fw, "System x FW123 firmware", 1, {}},
        {"missing, options", {}, "T", "S", fw, "T S options", 0, {}},
        {"half", ended(0, "Machine_Type=8837\n"), "", "", fw, "8837 FW123 hwdetect.exe", 1, {}},
        {"failed",
         ended(2, both),
         "",
         "",
         fw,
         "System x FW123 firmware",
         1,
         {"ZP115 hwdetect.exe /i ended with exit code 2"}},
        {"failed, options", ended(2, both), "T", "S", fw, "T S options", 0, {}},
        {"hanging",
         {ChildOutcome::stillRunning, 0, ""},
         "",
         "",
         fw,
         "System x FW123 firmware",
         1,
         {"ZP115 hwdetect.exe /i did not end within 300 s"}},
        {"nothing",
         {},
         "",
         "",
         {"", "", "cannot read it"},
         "  ",
         1,
         {"ZP116 the machine type is not known",
          "ZX709 the serial number of the machine is not known"}},
        {"placeholder",
         {},
         "",
         "",
         {"System x", "Default string", ""},
         "System x Default string firmware",
         1,
         {"ZX709 the serial number of the machine is a placeholder: Default string"}},
    };
    for (const Row& row : rows) {
        Machine platform("single");
        platform.names = row.firmware;
        platform.respond = [&](const std::string& line) {
            return line == "hwdetect.exe /i" ? row.detector : platform.play(line);
        };
        CaptureRequest request;
        request.machineType = row.type;
        request.serialNumber = row.serial;
        const Snapshot snapshot = captureMachine(platform, request);
        EXPECT_EQ(std::string(snapshot.machine.machineType.view()) + " " +
                      std::string(snapshot.machine.serialNumber.view()) + " " +
                      snapshot.machineSource,
                  row.names)
            << row.about;
        EXPECT_EQ(platform.asked, row.asked) << row.about;
        EXPECT_EQ(texts(snapshot.findings), row.findings) << row.about;
        if (row.firmware.machineType.empty()) {
            ASSERT_EQ(snapshot.findings.size(), 2U);
            EXPECT_EQ(snapshot.findings[0].detail, "cannot read it");
            EXPECT_EQ(snapshot.findings[1].detail, "cannot read it");
        }
    }
}

/// Adapter 0 of the utility is the controller on the higher bus.
TEST(Capture, ControllersOfSomeMachinesArePutInOrderOfTheBusThatTheirListingsTell) {
    for (const char* const type : {"5941", "8837"}) {
        SimulatedPlatform platform(cfggens(type, {2, 7}));
        swapAdapters(platform, "CFGGEN 0", "CFGGEN 1");
        const Snapshot snapshot = captureMachine(platform, {});
        ASSERT_EQ(snapshot.details.size(), 2U);
        const ControllerSnapshot& first = snapshot.details[0];
        const ControllerSnapshot& second = snapshot.details[1];
        const bool reorders = std::string(type) == "5941";
        EXPECT_EQ(first.number, 1);
        EXPECT_EQ(first.pci, "0000:02:00.0");
        EXPECT_EQ(first.adapter, reorders ? 1 : 0);
        EXPECT_EQ(first.drives.at(0).facts.serialNumber, reorders ? "S2" : "S7");
        EXPECT_EQ(second.drives.at(0).facts.serialNumber, reorders ? "S7" : "S2");
        EXPECT_EQ(snapshot.controllers.controller(0)->driveRecord(1, 0).serialNumber,
                  reorders ? "S2" : "S7");
        EXPECT_EQ(texts(first.findings),
                  reorders ? Texts()
                           : Texts{"ZP108 the listing is of the PCI function 07:00.0, not of "
                                   "0000:02:00.0"});
    }
}

TEST(Capture, AControllerIsFoundByItsNumberAlsoWhereTheListingsOfAllTellTheOrder) {
    SimulatedPlatform platform(cfggens("5944", {2, 7, 9}));
    swapAdapters(platform, "CFGGEN 0", "CFGGEN 2");
    CaptureRequest request;
    request.controllers = {1};
    const Snapshot snapshot = captureMachine(platform, request);
    ASSERT_EQ(snapshot.details.size(), 1U);
    EXPECT_EQ(snapshot.details[0].drives.at(0).facts.serialNumber, "S2");
    EXPECT_EQ(snapshot.details[0].adapter, 2);
}

TEST(Capture, AnOrderThatHangsOnAListingThatFailsIsTold) {
    SimulatedPlatform platform(cfggens("5944", {2, 7}));
    platform.respond = [&platform](const std::string& line) {
        return line.find("CFGGEN 1") == std::string::npos ? platform.play(line)
                                                          : SimulatedPlatform::ended(3, "no\n");
    };
    EXPECT_EQ(texts(captureMachine(platform, {}).findings),
              Texts{"ZP121 the numbers of controllers are not sure: a listing that tells a bus is "
                    "missing"});
}

TEST(Capture, ControllersThatTheirUtilityCannotBeToldAreNotAsked) {
    std::vector<int> buses;
    for (int bus = 1; bus <= 17; ++bus) {
        buses.push_back(bus);
    }
    SimulatedPlatform platform(cfggens("8837", buses));
    const Snapshot snapshot = captureMachine(platform, {});
    ASSERT_EQ(snapshot.details.size(), 17U);
    EXPECT_EQ(platform.children.size(), 16U); // the detector's too
    for (const ControllerSnapshot& controller : snapshot.details) {
        EXPECT_EQ(controller.failed, controller.number > 15);
    }
    EXPECT_EQ(texts(snapshot.details[15].findings),
              Texts{"ZP110 more controllers of CFGGEN than zolex can name: this one is not asked"});
}

/// Its lines name no controller: what they list and change is on the first.
TEST(Capture, ASecondControllerOfHyperwinIsNotAsked) {
    const auto controller = [](int bus) {
        return R"({"utility": "HYPERWIN", "model": "LSI-IDEal-RAID", "pci": {"bus": )" +
               std::to_string(bus) +
               R"(, "device": 5, "vendorId": "0x1166", "deviceId": "0x0213"},
            "drives": [{"id": 0, "count": 2, "sizeMB": 38154}]})";
    };
    SimulatedPlatform platform(
        R"({"machineType": "8482", "serialNumber": "KQ1", "controllers": [)" + controller(1) +
        ", " + controller(2) + "]}");
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_FALSE(snapshot.details.at(0).failed);
    EXPECT_TRUE(snapshot.details.at(1).failed);
    EXPECT_TRUE(snapshot.details.at(1).drives.empty());
    EXPECT_EQ(texts(snapshot.details.at(1).findings),
              Texts{"ZP110 HYPERWIN's commands reach the first of its controllers alone: this one "
                    "is not asked"});
}

TEST(Capture, MoreControllersThanZolexKeepsAreTold) {
    SimulatedPlatform platform("single");
    const PciDevice device = platform.devices.at(0);
    platform.devices.clear();
    for (int i = 0; i < 40; ++i) {
        platform.devices.push_back(device);
        platform.devices.back().bus = static_cast<std::uint16_t>(i);
        platform.devices.back().vendorId = 0x1000;
        platform.devices.back().deviceId = 0x0411;
        platform.devices.back().subsystemVendorId = 0x1000;
        platform.devices.back().subsystemId = 0x1002;
    }
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(snapshot.details.size(), 36U);
    EXPECT_EQ(texts(snapshot.findings).front(),
              "ZP117 there are more than 36 controllers; the others are left out");
}

TEST(Capture, WhatZolexLeavesOutOfALayoutIsTold) {
    std::string arrays;
    for (int i = 0; i < 9; ++i) {
        arrays += (i == 0 ? "" : ", ") + std::string(R"({"level": "RAID0", "spans": [["32:)") +
                  std::to_string(i) + R"("]]})";
    }
    std::string definition =
        megaRaid(R"({"enclosure": 32, "slot": 0, "count": 9, "sizeMB": 69376})");
    definition.insert(definition.rfind("}]}"), R"(, "virtualDisks": [)" + arrays + "]");
    SimulatedPlatform platform(definition);
    const Snapshot snapshot = captureMachine(platform, {});
    const ControllerSnapshot& controller = snapshot.details.at(0);
    EXPECT_EQ(controller.facts.logicalDrives.size(), 9U);
    EXPECT_EQ(controller.arrays.size(), 9U);
    ASSERT_FALSE(controller.findings.empty());
    for (const Finding& finding : controller.findings) {
        EXPECT_EQ(finding.code, "ZP111") << finding.summary;
    }
    EXPECT_EQ(snapshot.faults.size(), 1U);
    EXPECT_EQ(snapshot.coreMessages.size(), 1U);
}

/// A list of members beyond 198 bytes is cut by zolex: its last member becomes another drive.
TEST(Capture, AMemberThatZolexCutsFromALongLineIsTold) {
    std::string members;
    for (int device = 4; device < 36; ++device) {
        members += (device == 4 ? "\"2:" : ", \"2:") + std::to_string(device) + "\"";
    }
    std::string text = R"({"machineType": "8840", "serialNumber": "KQ1", "controllers": [
        {"utility": "ARCCONF", "model": "Kestrix-B7", "productName": "Norvik Kestrix B7",
         "pci": {"bus": 2, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
         "drives": [{"channel": 2, "device": 0, "count": 36, "sizeMB": 70006}],
         "virtualDisks": [{"level": "RAID0", "spans": [[)" +
                       members + "]]}]}]}";
    SimulatedPlatform platform(text);
    platform.respond = [&platform](const std::string& line) {
        ChildResult result = platform.play(line);
        // The utility may put blanks between the key and the list.
        const std::size_t key = result.output.find("Channel,Device");
        const std::size_t colon = result.output.find(':', key);
        if (key != std::string::npos) {
            const std::size_t end = result.output.find('\n', colon);
            if (end - key < 200) {
                result.output.insert(colon, std::string(200 - (end - key), ' '));
            }
        }
        return result;
    };
    const Snapshot snapshot = captureMachine(platform, {});
    EXPECT_EQ(texts(snapshot.details.at(0).findings),
              (Texts{"ZP113 logical drive 1: its members are not the same to zolex (32, and 29)",
                     "ZP112 UTIL.BAT ARCCONF GETCONFIG 1 AL, line 40: line of 213 bytes: zolex "
                     "takes 198 of them as one line"}));
}

/// On these utilities a failed drive keeps its number.
TEST(Capture, AFailedDriveKeepsItsNumberWhereZolexCountsIt) {
    for (const char* const sample : {"arcconf", "hrconf", "qtcsend"}) {
        SimulatedPlatform platform(sample);
        platform.server.controllers[0].drives[3].status = zolex_sim::DriveStatus::failed;
        const Snapshot snapshot = captureMachine(platform, {});
        const ControllerSnapshot& controller = snapshot.details.at(0);
        EXPECT_EQ(controller.drives.at(3).policyNumber, 4) << sample;
        EXPECT_EQ(controller.drives[3].facts.state, DriveState::failed) << sample;
        EXPECT_EQ(texts(controller.findings), Texts()) << sample;
    }
}

} // namespace
} // namespace zolex::companion
