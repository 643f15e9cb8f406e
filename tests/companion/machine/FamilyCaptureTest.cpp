// Controllers of families among those that zolex knows.

#include "companion/families/StorcliListings.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Examination.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/UtilityPlatform.h"
#include "companion/support/SimulatedPlatform.h"

#include <algorithm>

namespace zolex::companion {
namespace {

using test::Lines;
using test::ListedController;

/// A MegaRAID card of the generation that zolex knows.
PciDevice oldCard(std::uint16_t bus) {
    PciDevice device;
    device.vendorId = 0x1000;
    device.deviceId = 0x0411;
    device.subsystemVendorId = 0x1000;
    device.subsystemId = 0x1002;
    device.bus = bus;
    device.classCode = 0x010400;
    return device;
}

PciDevice card(std::uint16_t vendor, std::uint16_t id, std::uint16_t bus) {
    PciDevice device = oldCard(bus);
    device.vendorId = vendor;
    device.deviceId = id;
    return device;
}

Utilities utilitiesWith(std::initializer_list<const char*> found) {
    Utilities utilities;
    for (const char* const name : found) {
        utilities.programs[name] = std::string("/opt/") + name;
    }
    return utilities;
}

/// The machine of the listings, with any cards.
struct FamilyMachine {
    ListedController server;
    zolex::test::FakePlatform platform;
    Utilities utilities = utilitiesWith({"STORCLI", "MEGACLI"});
    CaptureRequest request;

    FamilyMachine() {
        platform.respond = [this](const std::string& line) {
            std::string call = line;
            if (call.ends_with(" nolog")) {
                call.resize(call.size() - 6);
            }
            const auto found = server.answers.find(call);
            return found == server.answers.end() ? ChildResult{} : found->second;
        };
        request.machineType = "7X06";
        request.serialNumber = "KQ1";
        request.asksFamilies = true;
    }

    Snapshot capture() {
        request.utilities = &utilities;
        return captureMachine(platform, request);
    }
};

Lines summaryOf(const Snapshot& snapshot) {
    Lines lines;
    for (const ControllerSnapshot& each : snapshot.details) {
        lines.push_back(std::to_string(each.number) + " " + each.utility + " " + each.model +
                        (each.index == ControllerSnapshot::noRecord ? " no record" : "") +
                        (each.failed ? " failed" : ""));
    }
    for (const Finding& finding : snapshot.findings) {
        lines.push_back(finding.code + " " + finding.summary);
    }
    return lines;
}

TEST(FamilyCapture, AControllerThatZolexDoesNotKnow) {
    FamilyMachine machine;
    const Snapshot snapshot = machine.capture();
    EXPECT_EQ(summaryOf(snapshot), Lines({"1 STORCLI MegaRAID-N3916-16i-8GB no record"}));
    EXPECT_EQ(snapshot.count(), 1U);
    EXPECT_TRUE(snapshot.isOfFamily(1));
    const ControllerSnapshot& controller = snapshot.details.at(0);
    EXPECT_EQ(controller.pci, "0000:c1:00.0");
    EXPECT_EQ(controller.commands.size(), 4U);
    ASSERT_EQ(controller.drives.size(), 16U);
    Lines drives;
    for (const MachineDrive& drive : controller.drives) {
        drives.push_back(
            std::to_string(drive.policyNumber.value_or(0)) + " " + drive.facts.location + " " +
            std::to_string(drive.policyPosition.value_or(DrivePosition()).channel) + ":" +
            std::to_string(drive.policyPosition.value_or(DrivePosition()).id) + " " + drive.array);
    }
    EXPECT_EQ(drives,
              Lines({"1 252:0 1:0 A", "2 252:1 1:1 A", "3 252:2 1:2 B", "4 252:3 1:3 B",
                     "5 252:4 1:4 B", "6 252:5 1:5 B", "7 252:6 1:6 C", "8 252:7 1:7 C",
                     "9 252:8 1:8 C", "10 252:9 1:9 C", "11 252:10 1:10 ", "12 252:11 1:11 ",
                     "13 252:12 1:12 ", "14 252:13 1:13 ", "15 252:14 1:14 ", "16 252:15 1:15 "}));
    EXPECT_EQ(fingerprintOf(snapshot).strength, Strength::serials);
}

TEST(FamilyCapture, ItStandsBehindThoseThatZolexKnows) {
    FamilyMachine machine;
    machine.platform.devices = {oldCard(2)};
    const Snapshot snapshot = machine.capture();
    ASSERT_EQ(snapshot.details.size(), 2U);
    EXPECT_EQ(snapshot.details[0].utility, "MEGACLI");
    EXPECT_EQ(snapshot.details[0].number, 1);
    EXPECT_EQ(snapshot.details[1].utility, "STORCLI");
    EXPECT_EQ(snapshot.details[1].number, 2);
    machine.request.controllers = {2};
    EXPECT_EQ(summaryOf(machine.capture()), Lines({"2 STORCLI MegaRAID-N3916-16i-8GB no record"}));
    machine.request.controllers = {3};
    EXPECT_THROW(machine.capture(), NoSuchController);
}

TEST(FamilyCapture, StorcliStandsBeforeMegacliWhereBothDriveACard) {
    FamilyMachine machine;
    machine.platform.devices = {oldCard(0xc1)};
    EXPECT_EQ(summaryOf(machine.capture()),
              Lines({"1 STORCLI MegaRAID-N3916-16i-8GB no record",
                     "ZP140 controller 1 is driven by STORCLI and by MEGACLI: STORCLI is used"}));
    const bool asksMegacli = std::any_of(
        machine.platform.children.begin(), machine.platform.children.end(),
        [](const std::string& line) { return line.find("MEGACLI") != std::string::npos; });
    EXPECT_FALSE(asksMegacli);
}

/// The listings of the machine, of a card in another domain.
void moveToDomain(FamilyMachine& machine, const std::string& domain) {
    std::string& text = machine.server.answers.at("STORCLI /c0 show all J").output;
    const std::string told = "\"00:c1:00:00\"";
    const std::size_t place = text.find(told);
    ASSERT_NE(place, std::string::npos);
    text.replace(place, told.size(), "\"" + domain + ":c1:00:00\"");
}

TEST(FamilyCapture, ACardInAnotherDomainIsThatOfItsUtility) {
    FamilyMachine machine;
    moveToDomain(machine, "01");
    machine.platform.devices = {card(0x1000, 0x10e2, 0xc1)};
    machine.platform.devices[0].domain = 1;
    const Snapshot snapshot = machine.capture();
    EXPECT_EQ(summaryOf(snapshot), Lines({"1 STORCLI MegaRAID-N3916-16i-8GB no record"}));
    EXPECT_EQ(snapshot.details.at(0).pci, "0001:c1:00.0");
    EXPECT_EQ(snapshot.undriven.size(), 0U);
}

/// It must not be planned twice.
TEST(FamilyCapture, ACardThatTwoUtilitiesTellOfWithoutItsPlaceIsToldTwice) {
    FamilyMachine machine;
    machine.platform.devices = {oldCard(2)};
    test::SimulatedPlatform megacli(
        R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [{"utility": "MEGACLI",
        "model": "LSI-MegaRAID-8480", "serialNumber": "SV1", "pci": {"bus": 2, "device": 0,
        "vendorId": "0x1000", "deviceId": "0x0411", "subsystemVendorId": "0x1000",
        "subsystemId": "0x1002"}, "drives": [
        {"enclosure": 252, "slot": 0, "sizeMB": 70006}]}]})");
    const auto storcli = machine.platform.respond;
    machine.platform.respond = [&](const std::string& line) {
        return line.find("MEGACLI") == std::string::npos ? storcli(line) : megacli.play(line);
    };
    const auto findingsOfMachine = [](const Snapshot& snapshot) {
        Lines lines;
        for (const Finding& finding : snapshot.findings) {
            lines.push_back(finding.code + " " + finding.summary);
        }
        return lines;
    };
    const Snapshot before = machine.capture();
    ASSERT_EQ(before.details.size(), 2U);
    ASSERT_EQ(before.details[0].facts.serialNumber, "SV1");
    machine.server.edit("/c0 show all J", before.details[1].facts.serialNumber, "SV1");
    EXPECT_EQ(findingsOfMachine(machine.capture()), Lines()); // it is at another place
    machine.server.edit("/c0 show all J", "\"PCI Address\"", "\"Address\"");
    machine.server.edit("/c0 show all J", "\"Bus Number\"", "\"Number\"");
    const Lines told = {"ZP109 the listings of controllers 1 and 2 tell the same serial number, "
                        "SV1"};
    EXPECT_EQ(findingsOfMachine(machine.capture()), told);
    for (const std::int32_t number : {1, 2}) {
        machine.request.controllers = {number};
        const Snapshot one = machine.capture();
        EXPECT_EQ(one.details.size(), 1U);
        EXPECT_EQ(findingsOfMachine(one), told) << number;
    }
}

TEST(FamilyCapture, CardsAtOnePlaceInTwoDomainsAreTwo) {
    FamilyMachine machine;
    moveToDomain(machine, "0002");
    machine.platform.devices = {oldCard(0xc1), oldCard(0xc1), card(0x1000, 0x10e2, 0xc1)};
    machine.platform.devices[1].domain = 2;
    machine.platform.devices[2].domain = 3;
    const Snapshot snapshot = machine.capture();
    ASSERT_EQ(snapshot.details.size(), 2U);
    EXPECT_EQ(snapshot.details[0].utility + " " + snapshot.details[0].pci, "MEGACLI 0000:c1:00.0");
    EXPECT_EQ(snapshot.details[1].utility + " " + snapshot.details[1].pci, "STORCLI 0002:c1:00.0");
    ASSERT_EQ(snapshot.undriven.size(), 1U);
    EXPECT_EQ(snapshot.undriven[0].pci, "0003:c1:00.0");
}

TEST(FamilyCapture, NamingMegacliKeepsIt) {
    FamilyMachine machine;
    machine.platform.devices = {oldCard(0xc1)};
    machine.utilities.named["MEGACLI"] = "/opt/MegaCli64";
    const Snapshot snapshot = machine.capture();
    ASSERT_EQ(snapshot.details.size(), 1U);
    EXPECT_EQ(snapshot.details[0].utility, "MEGACLI");
    ASSERT_FALSE(snapshot.findings.empty());
    EXPECT_EQ(snapshot.findings[0].summary,
              "controller 1 is driven by STORCLI and by MEGACLI: MEGACLI is used, because it was "
              "named");
}

TEST(FamilyCapture, MegacliIsUsedWhereStorcliFails) {
    FamilyMachine machine;
    machine.platform.devices = {oldCard(0xc1)};
    machine.server.edit("/c0 show all J", "\"Physical Drives\" : 16", "\"Physical Drives\" : 17");
    const Snapshot snapshot = machine.capture();
    ASSERT_EQ(snapshot.details.size(), 1U);
    EXPECT_EQ(snapshot.details[0].utility, "MEGACLI");
    ASSERT_FALSE(snapshot.findings.empty());
    EXPECT_EQ(snapshot.findings[0].summary, "controller 1 is driven by STORCLI and by MEGACLI: "
                                            "MEGACLI is used, because STORCLI fails");
    EXPECT_EQ(snapshot.findings[0].detail,
              "the listing is not whole: 16 of 17 physical drives are listed");
    // There is nothing to fall back to.
    machine.utilities = utilitiesWith({"STORCLI"});
    EXPECT_EQ(summaryOf(machine.capture()),
              Lines({"1 STORCLI MegaRAID-N3916-16i-8GB no record failed",
                     "ZP140 controller 1 is driven by STORCLI and by MEGACLI: STORCLI is used"}));
}

TEST(FamilyCapture, AFailureThatTellsNoPlaceIsThatOfTheOneCard) {
    FamilyMachine machine;
    machine.platform.devices = {oldCard(2)};
    machine.server.answer("/c0 show all J", "Status = Success\n");
    const Lines megacliIsUsed = {
        "1 MEGACLI LSI-MegaRAID-8480 failed",
        "ZP140 controller 1 is driven by STORCLI and by MEGACLI: MEGACLI is used, because STORCLI "
        "fails"};
    EXPECT_EQ(summaryOf(machine.capture()), megacliIsUsed);
    // It may be another one, which is on the bus too.
    machine.platform.devices = {oldCard(2), card(0x1000, 0x10e2, 0xc1)};
    EXPECT_EQ(summaryOf(machine.capture()),
              Lines({"1 MEGACLI LSI-MegaRAID-8480 failed",
                     "2 STORCLI MegaRAID-N3916-16i-8GB no record failed"}));
    // The text says where it is.
    machine.server.answer("/c0 show all J", "Status = Success\nPCI Address = 00:02:00:00\n");
    EXPECT_EQ(summaryOf(machine.capture()), megacliIsUsed);
}

TEST(FamilyCapture, IsAskedOnlyWhereItIsThere) {
    FamilyMachine machine;
    machine.utilities = utilitiesWith({"MEGACLI", "STORCLI2"});
    EXPECT_EQ(summaryOf(machine.capture()), Lines());
    machine.utilities = utilitiesWith({"STORCLI"});
    machine.request.asksFamilies = false;
    EXPECT_EQ(summaryOf(machine.capture()), Lines());
    for (const std::string& line : machine.platform.children) {
        EXPECT_EQ(line.find("STORCLI"), std::string::npos) << line;
        EXPECT_EQ(line.find("MD"), std::string::npos) << line;
    }
}

TEST(FamilyCapture, HardwareThatIsNotGenuineIsRefused) {
    for (const char* const id : {"4320", "4323", "4324", "4327"}) { // 10e0, 10e3, 10e4, 10e7
        FamilyMachine machine;
        machine.server.edit("/c0 show all J", "\"Device Id\" : 4322",
                            "\"Device Id\" : " + std::string(id));
        const Snapshot snapshot = machine.capture();
        ASSERT_EQ(snapshot.details.size(), 1U);
        EXPECT_TRUE(snapshot.details[0].failed) << id;
        ASSERT_EQ(snapshot.details[0].findings.size(), 1U);
        EXPECT_EQ(snapshot.details[0].findings[0].code, "ZP141");
        EXPECT_TRUE(snapshot.details[0].drives.empty());
    }
}

TEST(FamilyCapture, ThroughUtilBatOnlyWhenItIsNotFoundByItsOwnName) {
    Utilities utilities = utilitiesWith({});
    utilities.wrapper = "/srv/UTIL.BAT";
    EXPECT_EQ(utilities.argumentsOf("STORCLI show J nolog"),
              Lines({"/srv/UTIL.BAT", "STORCLI", "show", "J", "nolog"}));
    utilities.programs["STORCLI"] = "/opt/storcli64";
    EXPECT_EQ(utilities.argumentsOf("STORCLI show J nolog"),
              Lines({"/opt/storcli64", "show", "J", "nolog"}));
    utilities.named["STORCLI"] = "/root/perccli64";
    EXPECT_EQ(utilities.argumentsOf("STORCLI show J nolog"),
              Lines({"/root/perccli64", "show", "J", "nolog"}));
}

TEST(FamilyCapture, WhatSomebodyIsToTypeBeginsWithTheProgramThatWasFound) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"/opt/storcli", "storcli"},
        {"C:\\tools\\PERCCLI64.EXE", "perccli64"},
        {"perccli.exe", "perccli"},
        {"/opt/my raid tool", ""},
        {"/opt/storcli64/wrapper.sh", ""}};
    for (const auto& [path, name] : rows) {
        FamilyMachine machine;
        machine.utilities.programs["STORCLI"] = path;
        machine.server.edit("/c0 show all J", "\"Any Offline VD Cache Preserved\" : \"No\"",
                            "\"Any Offline VD Cache Preserved\" : \"Yes\"");
        const Snapshot snapshot = machine.capture();
        ASSERT_EQ(snapshot.details.size(), 1U) << path;
        EXPECT_EQ(snapshot.details[0].program, name) << path;
        ASSERT_EQ(snapshot.details[0].findings.size(), 1U) << path;
        EXPECT_EQ(snapshot.details[0].findings[0].help.front(),
                  "see of which: " + (name.empty() ? "storcli64" : name) +
                      " /c0 show preservedcache");
    }
}

TEST(FamilyCapture, OneThatItsUtilityDoesNotTellOf) {
    FamilyMachine machine;
    machine.server.answer("show J", ListedController::overview({}));
    machine.platform.devices = {card(0x1000, 0x10e2, 0xc1)};
    const Snapshot snapshot = machine.capture();
    ASSERT_EQ(snapshot.undriven.size(), 1U);
    EXPECT_EQ(undrivenText(snapshot.undriven[0]),
              "a RAID controller (1000:10e2:1000:1002) is on the bus, and STORCLI tells of none "
              "there");
    EXPECT_EQ(undrivenHelp(snapshot.undriven[0]),
              "run the utility by hand, and look whether the driver of the controller is loaded");
    const auto helps = [&]() {
        for (const SubjectFinding& each : examine(snapshot, machine.utilities, {}, {}).findings) {
            if (each.finding.code == "ZP139") {
                return each.finding.help;
            }
        }
        return std::vector<std::string>();
    };
    EXPECT_EQ(helps().size(), 1U);
    machine.utilities.others["STORCLI"] = {"/opt/my tools/perccli64"};
    ASSERT_EQ(helps().size(), 2U);
    EXPECT_EQ(helps().back(), "ask another one that is there: zolexctl --utility "
                              "\"STORCLI=/opt/my tools/perccli64\" show");
    // Named by the user, it is the one that is meant.
    machine.utilities.named["STORCLI"] = "/opt/storcli64";
    EXPECT_EQ(helps().size(), 1U);
}

TEST(FamilyCapture, ControllersThatNobodyDrives) {
    FamilyMachine machine;
    machine.utilities = utilitiesWith({"STORCLI2"});
    machine.platform.devices = {card(0x1000, 0x10e2, 0xc1), card(0x1000, 0x00a5, 3),
                                card(0x1000, 0x0097, 4), card(0x8086, 0x2922, 5)};
    machine.platform.devices[3].classCode = 0x010601;
    const Snapshot snapshot = machine.capture();
    EXPECT_EQ(summaryOf(snapshot), Lines());
    Lines told;
    for (const SubjectFinding& each : examine(snapshot, machine.utilities, {}, {}).findings) {
        told.push_back(each.subject + ": " + each.finding.summary);
    }
    EXPECT_EQ(Lines(told.begin(), told.begin() + std::min<std::ptrdiff_t>(5, std::ssize(told))),
              Lines({"machine: no PCI function is a RAID controller that zolex knows",
                     "PCI 0000:03:00.0: a RAID controller (1000:00a5:1000:1002) is on the bus, of "
                     "the utility STORCLI2, which zolexctl does not drive yet",
                     "PCI 0000:04:00.0: what may be a RAID controller (1000:0097:1000:1002) is on "
                     "the bus, of the utility SAS3IRCU, which zolexctl does not drive yet",
                     "PCI 0000:c1:00.0: a RAID controller (1000:10e2:1000:1002) is on the bus, and "
                     "STORCLI, which drives it, is missing",
                     "STORCLI2: /opt/STORCLI2 is there, and zolexctl does not drive it yet"}));
}

} // namespace
} // namespace zolex::companion
