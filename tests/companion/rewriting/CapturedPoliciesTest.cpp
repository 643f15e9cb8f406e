#include "companion/rewriting/CapturedPolicies.h"

#include "companion/machine/Capture.h"
#include "companion/rewriting/PolicyWriter.h"
#include "companion/support/SimulatedPlatform.h"
#include "companion/text/Terminal.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

constexpr const char* eightDrives =
    R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376, "serial": "3L"})";

CapturedPolicies capturedOf(const Snapshot& snapshot, bool exact = false) {
    return capturedPolicies(snapshot, {exact, {2026, 11, 21, 21, 5, 0}, "2.20"});
}

CapturedPolicies captured(const std::string& server, bool exact = false) {
    SimulatedPlatform platform(server);
    return capturedOf(captureMachine(platform, {}), exact);
}

/// A MegaRAID controller with these drives and virtual disks.
std::string megaRaid(const std::string& drives, const std::string& disks) {
    return R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [{
        "utility": "MEGACLI", "generation": "early", "model": "Kestrix-C1",
        "productName": "Norvik Kestrix C1", "maxStripeKB": 1024,
        "pci": {"bus": 2, "device": 14, "function": 0, "vendorId": "0x1000",
                "deviceId": "0x0060", "subsystemVendorId": "0x1F3D", "subsystemId": "0x0364"},
        "drives": [)" +
           drives + R"(], "virtualDisks": [)" + disks + "]}]}";
}

/// The findings, a line each.
std::string told(const CapturedPolicies& policies) {
    std::string text;
    for (const Finding& finding : policies.findings) {
        text += finding.summary + " [" + finding.code + "]\n";
        for (const std::string& help : finding.help) {
            text += "  " + help + "\n";
        }
    }
    return text;
}

/// The entry lines of the policies.
std::string entries(const CapturedPolicies& policies) {
    std::string text;
    std::string_view rest = policies.text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        if (!line.empty() && line.front() != ';' && line.front() != '[') {
            text.append(line).append("\n");
        }
        rest.remove_prefix(end + 1);
    }
    return text;
}

TEST(CapturedPolicies, OfAConfiguredServer) {
    const CapturedPolicies policies = captured("configured");
    EXPECT_TRUE(policies.comesBack);
    EXPECT_EQ(told(policies), "");
    EXPECT_EQ(policies.text,
              "; Written by zolexctl 2.20 on 2026-11-21 21:05 from machine type 8837, serial\n"
              ";  number KQ10Z7W.\n"
              "; Deploying it makes these arrays anew: what is on the drives is lost.\n"
              "\n"
              "; Controller 1: LSI-MegaRAID-8480, serial number 0000000001, PCI 0000:02:0e.0,\n"
              ";  8 drives\n"
              "\n"
              "[Policy.LSI-MegaRAID-8480-1]\n"
              "\n"
              "AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
              "\n"
              "StripeSize = 64\n"
              "ReadAhead = ADAPTIVE\n"
              "\n"
              "Array_Mode = CUSTOM\n"
              "; A: 32:0 32:1\n"
              "Array.A = 1,2\n"
              "; B: 32:2 32:3 32:4 32:5 32:6\n"
              "Array.B = 3,4,5,6,7\n"
              "\n"
              "; Hot spares: 32:7\n"
              "Hotspares = 8\n"
              "\n"
              "Logical_Mode = CUSTOM\n"
              "Logical.1 = A:FILL:1:ON\n"
              "Logical.2 = B:FILL:5:ON\n");
}

TEST(CapturedPolicies, WriteSizesInMbWhenTheyShallBeExact) {
    const CapturedPolicies policies = captured("configured", true);
    EXPECT_TRUE(policies.comesBack);
    EXPECT_NE(policies.text.find("Logical.1 = A:69376:1:ON\nLogical.2 = B:277504:5:ON\n"),
              std::string::npos)
        << policies.text;
}

TEST(CapturedPolicies, SayThatThereAreNoHotSparesAndKeepSizes) {
    const CapturedPolicies policies = captured("qtcsend");
    EXPECT_TRUE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: logical drive 1 has a strip size of 16 KB: zolex gives QTCSEND none, "
              "so that the controller's own comes back [ZC118]\n"
              "controller 1: logical drive 2 has a strip size of 16 KB: zolex gives QTCSEND none, "
              "so that the controller's own comes back [ZC118]\n");
    EXPECT_EQ(entries(policies), "AppliesTo.1 = t:Kestrix-A4,d:8\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2,3\n"
                                 "Array_Defaults = 0%:0\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:20000:5\n"
                                 "Logical.2 = A:15000:0\n");
}

TEST(CapturedPolicies, OfControllersWithoutArraysSayThatThereAreNone) {
    const CapturedPolicies policies = captured("two-controllers");
    // No file that zolex takes: whoever keeps it must know.
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: it has no arrays, so that there is no policy for it [ZC101]\n"
              "controller 2: it has no arrays, so that there is no policy for it [ZC101]\n"
              "no policy is in the file: zolex and zolexctl check refuse it [ZC119]\n"
              "  make the arrays first, or write policies by hand: man zolex-policies\n");
    EXPECT_EQ(policies.text,
              "; Written by zolexctl 2.20 on 2026-11-21 21:05 from machine type 7979, serial\n"
              ";  number KQ31C9A.\n"
              "; No policy is in this file: zolex and zolexctl check refuse it [ZC119].\n"
              "\n"
              "; Controller 1: LSI-MegaRAID-8480, serial number 0000000001, PCI 0000:02:0e.0,\n"
              ";  6 drives\n"
              "; - it has no arrays, so that there is no policy for it [ZC101]\n"
              "\n"
              "; Controller 2: Kestrix-D4, serial number 0000000002, PCI 0000:0a:00.0, 6\n"
              ";  drives\n"
              "; - it has no arrays, so that there is no policy for it [ZC101]\n");
}

TEST(CapturedPolicies, OfNoControllerSaySo) {
    EXPECT_EQ(capturedOf({}).text,
              "; Written by zolexctl 2.20 on 2026-11-21 21:05 from a machine of unknown type.\n"
              "; No policy is in this file: zolex and zolexctl check refuse it [ZC119].\n"
              "; There is no controller.\n");
}

TEST(CapturedPolicies, TellStripSizesThatNoPlanTakes) {
    for (const char* const kb : {"256", "8"}) {
        const CapturedPolicies policies = captured(
            megaRaid(eightDrives, R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]],
                                      "stripeKB": )" +
                                      std::string(kb) + "}"));
        EXPECT_FALSE(policies.comesBack);
        EXPECT_EQ(told(policies),
                  "controller 1: logical drive 0 with a strip size of " + std::string(kb) +
                      " KB would come back with 64 KB [ZC103]\n"
                      "  zolex refuses policies with this strip size on a Kestrix-C1\n");
        EXPECT_EQ(policies.text.find("\nStripeSize"), std::string::npos);
        EXPECT_NE(policies.text.find("; ! logical drive 0 with a strip size of " + std::string(kb) +
                                     " KB would come back with 64 KB\n"
                                     ";  [ZC103]\n"),
                  std::string::npos)
            << policies.text;
    }
}

TEST(CapturedPolicies, TellStripSizesAndNamesThatOnePolicyCannotHave) {
    const CapturedPolicies policies = captured(
        megaRaid(eightDrives,
                 R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "name": "data"},
           {"level": "RAID1", "spans": [["32:3", "32:4"]], "stripeKB": 32, "sizeMB": 3000})"));
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: logical drive 0 is called \"data\": policies give no names [ZC117]\n"
              "controller 1: logical drive 0 with a strip size of 64 KB would come back with 32 KB "
              "[ZC103]\n"
              "  a policy has one strip size for all its logical drives\n");
    EXPECT_NE(policies.text.find("Logical.1 = A:FILL:5:OFF\nLogical.2 = B:3000:1:OFF\n"),
              std::string::npos);
}

TEST(CapturedPolicies, TellThreeSpans) {
    const CapturedPolicies policies = captured(
        megaRaid(R"({"enclosure": 32, "slot": 0, "count": 12, "sizeMB": 69376, "serial": "3L"})",
                 R"({"level": "RAID50", "spans": [["32:0", "32:1", "32:2"],
                     ["32:3", "32:4", "32:5"], ["32:6", "32:7", "32:8"]]})"));
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: logical drive 0, RAID 50 of 3 spans, would come back of 2 [ZC105]\n"
              "controller 1: as the server is now, zolex would refuse the policy: Could not use "
              "Policy.Kestrix-C1-1 to configure Kestrix-C1 controller. The number of drives in the "
              "Array.A cannot accommodate the RAID level specified. Not enough same size drives "
              "to accommodate requested configuration [ZC107]\n");
}

TEST(CapturedPolicies, NameTheDrivesAgainForEachLogicalDriveOnThem) {
    const CapturedPolicies policies = captured(megaRaid(
        eightDrives, R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "sizeMB": 10000},
                        {"level": "RAID5", "array": 0, "sizeMB": 20000},
                        {"level": "RAID5", "array": 0})"));
    EXPECT_TRUE(policies.comesBack);
    EXPECT_NE(entries(policies).find("Array.A = 1,2,3\nArray.B = 1,2,3\nArray.C = 1,2,3\n"
                                     "Array_Defaults = 0%:0\nLogical_Mode = CUSTOM\n"
                                     "Logical.1 = A:10000:5:OFF\nLogical.2 = B:20000:5:OFF\n"
                                     "Logical.3 = C:FILL:5:OFF\n"),
              std::string::npos)
        << policies.text;
}

TEST(CapturedPolicies, OfADegradedServerNamePositions) {
    const CapturedPolicies policies = captured(megaRaid(
        R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376, "serial": "3L"},
           {"enclosure": 32, "slot": 2, "sizeMB": 69376, "serial": "4L", "status": "failed"},
           {"enclosure": 32, "slot": 3, "count": 4, "sizeMB": 69376, "serial": "5L"})",
        R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]]})"));
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: logical drive 0 is Degraded: the policy may not be what it was when "
              "it was well [ZC106]\n"
              "  mend it first, then capture again\n"
              "controller 1: as the server is now, zolex would refuse the policy: "
              "Policy.Kestrix-C1-1, Array.A -- The following drive does not exist: 1:2 Kestrix-C1 "
              "controller. Not enough same size drives to accommodate requested configuration "
              "[ZC107]\n");
    EXPECT_NE(policies.text.find("AppliesTo.1 = t:Kestrix-C1\n"), std::string::npos);
    EXPECT_NE(policies.text.find("; A: 32:0 32:1 32:2\nArray.A = 1:0,1:1,1:2\n"),
              std::string::npos);
}

TEST(CapturedPolicies, TellDrivesThatTheCommandsWouldNotName) {
    const CapturedPolicies spare = captured(megaRaid(
        R"({"slot": 0, "count": 4, "sizeMB": 69376, "serial": "3L"},
           {"slot": 4, "sizeMB": 69376, "serial": "4L", "status": "hotspare"})",
        R"({"level": "RAID5", "spans": [[":0", ":1", ":2"]]})"));
    EXPECT_EQ(told(spare), "controller 1: the commands would name the drive 0:4, which is none of "
                           "those that are meant [ZC115]\n");
    const CapturedPolicies mixed = captured(megaRaid(
        R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376, "serial": "3L"},
           {"slot": 0, "count": 2, "sizeMB": 69376, "serial": "4L"})",
        R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})"));
    EXPECT_EQ(told(mixed), "controller 1: the commands would name the drive :0, which is none of "
                           "those that are meant [ZC115]\n"
                           "controller 1: the commands would name the drive :1, which is none of "
                           "those that are meant [ZC115]\n");
    EXPECT_FALSE(mixed.comesBack);
    const CapturedPolicies doubled = captured(megaRaid(
        R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376, "serial": "3L"},
           {"slot": 0, "count": 2, "sizeMB": 69376, "serial": "4L"})",
        R"({"level": "RAID1", "spans": [["32:0", "32:1"]]},
           {"level": "RAID1", "spans": [[":0", ":1"]]})"));
    EXPECT_EQ(told(doubled), "controller 1: the commands would not name the drive 32:0, which is "
                             "one of those that are meant [ZC115]\n"
                             "controller 1: the commands would not name the drive 32:1, which is "
                             "one of those that are meant [ZC115]\n");
    EXPECT_FALSE(doubled.comesBack);
}

TEST(CapturedPolicies, TellReadAheadThatOnePolicyCannotHave) {
    const CapturedPolicies policies =
        captured(megaRaid(eightDrives,
                          R"({"level": "RAID1", "spans": [["32:0", "32:1"]], "readPolicy": "RA"},
           {"level": "RAID1", "spans": [["32:2", "32:3"]], "readPolicy": "ADRA"},
           {"level": "RAID1", "spans": [["32:4", "32:5"]], "readPolicy": "NORA"})"));
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: logical drive 0 with read-ahead ON would come back with OFF [ZC112]\n"
              "  a policy has one read-ahead mode for all its logical drives\n"
              "controller 1: logical drive 1 with read-ahead ADAPTIVE would come back with OFF "
              "[ZC112]\n"
              "  a policy has one read-ahead mode for all its logical drives\n");
}

/// ARCCONF is told "off" alone: a line that makes no command is left out.
TEST(CapturedPolicies, LeaveReadAheadOutWhereTheUtilityIsNotToldIt) {
    const auto arcConf = [](const std::string& readPolicy) {
        return captured(R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [{
            "utility": "ARCCONF", "model": "Kestrix-B7",
            "pci": {"bus": 4, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286",
                    "subsystemVendorId": "0x1F3D", "subsystemId": "0x9580"},
            "drives": [{"channel": 0, "device": 0, "count": 3, "sizeMB": 69376}],
            "virtualDisks": [{"level": "RAID5", "spans": [["0:0", "0:1", "0:2"]],
                              "readPolicy": ")" +
                        readPolicy + "\"}]}]}");
    };
    const std::string with = "StripeSize = 256\nReadAhead = OFF\n";
    const CapturedPolicies off = arcConf("NORA");
    EXPECT_NE(entries(off).find(with), std::string::npos) << entries(off);
    EXPECT_EQ(told(off), "");
    EXPECT_TRUE(off.comesBack);
    const CapturedPolicies on = arcConf("RA");
    EXPECT_EQ(entries(on), std::string(entries(off)).erase(entries(off).find(with) + 17, 16));
    EXPECT_EQ(told(on), "");
    EXPECT_TRUE(on.comesBack);
}

/// No command gives QTCSEND a strip size: what is not its own is lost, that of a mirror, too.
TEST(CapturedPolicies, TellStripSizesThatNoCommandGives) {
    const CapturedPolicies policies = captured(
        R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [{
            "utility": "QTCSEND", "model": "Kestrix-A4",
            "pci": {"bus": 3, "device": 2, "vendorId": "0x1F3D", "deviceId": "0x01BD",
                    "subsystemVendorId": 0, "subsystemId": 0},
            "drives": [{"channel": 1, "id": 0, "count": 5, "sizeMB": 69376}],
            "virtualDisks": [
                {"level": "RAID5", "spans": [["1:0", "1:1", "1:2"]], "stripeKB": 64},
                {"level": "RAID1", "spans": [["1:3", "1:4"]], "stripeKB": 32}]}]})");
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: logical drive 1 has a strip size of 64 KB: zolex gives QTCSEND none, "
              "so that the controller's own comes back [ZC118]\n"
              "controller 1: logical drive 2 has a strip size of 32 KB: zolex gives QTCSEND none, "
              "so that the controller's own comes back [ZC118]\n");
}

TEST(CapturedPolicies, TellHotSparesWithoutAnArray) {
    const CapturedPolicies policies = captured(megaRaid(
        R"({"enclosure": 32, "slot": 0, "sizeMB": 69376, "serial": "3L", "status": "hotspare"})",
        ""));
    EXPECT_FALSE(policies.comesBack);
    EXPECT_EQ(told(policies),
              "controller 1: it has hot spares and no array: no policy can say that [ZC102]\n"
              "no policy is in the file: zolex and zolexctl check refuse it [ZC119]\n"
              "  make the arrays first, or write policies by hand: man zolex-policies\n");
}

/// Two controllers of one model with as many drives: without its number each policy would be for
/// both, and the first would be taken.
TEST(CapturedPolicies, NameTheControllerWhereAnotherIsLikeIt) {
    SimulatedPlatform platform("configured");
    Snapshot snapshot = captureMachine(platform, {});
    RAIDController other = *snapshot.controllers.controller(0);
    snapshot.controllers.add(other);
    snapshot.details.push_back(snapshot.details[0]);
    snapshot.details[1].number = 2;
    snapshot.details[1].index = 1;
    const CapturedPolicies policies = capturedOf(snapshot);
    EXPECT_EQ(told(policies), "");
    EXPECT_NE(policies.text.find("AppliesTo.1 = t:LSI-MegaRAID-8480,d:8,c:1\n"), std::string::npos);
    EXPECT_NE(policies.text.find("AppliesTo.1 = t:LSI-MegaRAID-8480,d:8,c:2\n"), std::string::npos);
    EXPECT_NE(policies.text.find("[Policy.LSI-MegaRAID-8480-2]\n"), std::string::npos);
    // Of the second alone, as --controller 2 asks for it, the policy is the same.
    snapshot.details.erase(snapshot.details.begin());
    EXPECT_NE(capturedOf(snapshot).text.find("AppliesTo.1 = t:LSI-MegaRAID-8480,d:8,c:2\n"),
              std::string::npos);
}

/// A line of a listing that zolex cuts names another drive; the listing's own reading does not.
TEST(CapturedPolicies, TakeTheMembersThatTheListingNames) {
    SimulatedPlatform platform("configured");
    Snapshot snapshot = captureMachine(platform, {});
    RaidArray& array = snapshot.controllers.controller(0)->captured()->arrays()[0];
    array.setDrive(1, {1, 7});
    const CapturedPolicies policies = capturedOf(snapshot);
    EXPECT_EQ(told(policies), "controller 1: logical drive 0 lies on 32:0 32:1; zolex itself reads "
                              "32:0 32:7 in the listing [ZC109]\n"
                              "  the policy names the drives that the listing names\n");
    EXPECT_TRUE(policies.comesBack);
    EXPECT_NE(policies.text.find("Array.A = 1,2\n"), std::string::npos);
}

TEST(CapturedPolicies, CommentsAreShortAndCannotBecomeEntries) {
    EXPECT_EQ(commentLines("", "a\nArray.A = 1\x1b"), "; a?Array.A = 1?\n");
    EXPECT_EQ(commentLines(" A:", ""), "; A:\n");
    const std::string lines = commentLines(" !", std::string(300, 'x') + " " + "short");
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = lines.find('\n', start);
        EXPECT_EQ(lines[start], ';');
        EXPECT_LE(columnsOf(lines.substr(start, end - start)), 78U);
        start = end + 1;
    }
}

} // namespace
} // namespace zolex::companion
