// What each utility is told from outside: default policies, drives that are not to be used, exit
// codes that are accepted, resets that are tried again.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

using Lines = std::vector<std::string>;

std::string controller(const std::string& utility, const std::string& model,
                       const std::string& fields, const std::string& drives) {
    return R"({"utility": ")" + utility + R"(", "model": ")" + model + "\", " + fields +
           R"(, "drives": [)" + drives + "]}";
}

std::string pci(int bus, const std::string& vendor, const std::string& device,
                const std::string& subsystemVendor = "0x0000",
                const std::string& subsystem = "0x0000") {
    return R"("pci": {"bus": )" + std::to_string(bus) + R"(, "device": 1, "vendorId": ")" + vendor +
           R"(", "deviceId": ")" + device + R"(", "subsystemVendorId": ")" + subsystemVendor +
           R"(", "subsystemId": ")" + subsystem + "\"}";
}

std::string serverOf(const std::string& controllers, const std::string& faults = "") {
    return R"({"machineType": "8837", "serialNumber": "KQ12345", "faults": [)" + faults +
           R"(], "controllers": [)" + controllers + "]}";
}

const std::string b1 = pci(2, "0x9005", "0x0285", "0x1F3D", "0x02F2");
const std::string b2 = pci(2, "0x9005", "0x0285", "0x1F3D", "0x034D");
const std::string a8 = pci(2, "0x9005", "0x0285", "0x9005", "0x0290");
const std::string b7 = pci(2, "0x9005", "0x0286") + R"(, "productName": "Norvik Kestrix B7")";
const std::string b8 = pci(2, "0x9005", "0x0286") + R"(, "productName": "Norvik Kestrix B8")";
const std::string twoDrives = R"({"channel": 0, "device": 0, "count": 2, "sizeMB": 70006})";

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

Lines withPrefix(const Lines& options) {
    Lines lines;
    for (const std::string& option : options) {
        lines.push_back("UTIL.BAT " + option);
    }
    return lines;
}

TEST(FamiliesTest, DefaultPoliciesOfEachSample) {
    struct Row {
        const char* sample;
        Lines commands;
    };
    const std::vector<Row> rows = {
        {"arcconf",
         {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 Method QUICK MAX 5 "
          "0 0 0 1 0 2 0 3 0 4 0 5 0 6 NOPROMPT ",
          "ARCCONF SETSTATE 1 DEVICE 0 7 HSP"}},
        {"hrconf",
         {"HRCONF CREATE 1 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 Init_Priority HIGH "
          "Init_Method QUICK MAX 10 0 0 0 1 0 2 0 3 NOPROMPT ",
          "HRCONF SETSTATE 1 DEVICE 1 10 HSP noprompt"}},
        {"qtcsend",
         {"QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 5 1 0 1 1 1 2 1 3 1 4 NOPROMPT",
          "QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 1 2 0 2 1 NOPROMPT",
          "QTCSEND SETSTATE 1 2 2 HSP"}},
        {"cfggen",
         {"CFGGEN 0 CREATE IME MAX 1:0 1:1 1:2 1:3 1:4 1:5 qsync NOPROMPT",
          "CFGGEN 0 HOTSPARE 2:1 "}},
        {"cfggen-scsi",
         {"CFGGEN1.02.02 0 CREATE IM MAX 0 1 qsync NOPROMPT", "CFGGEN1.02.02 0 HOTSPARE 2 ",
          "CFGGEN1.02.02 1 CREATE IM MAX 5 6 qsync NOPROMPT", "CFGGEN1.02.02 1 HOTSPARE 9 "}},
        {"hyperwin", {"HYPERWIN /AM  /S "}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sample);
        VirtualServer server;
        ASSERT_EQ(0, server.simulator({"init", ".", "--sample", row.sample}).exitCode);
        // One of the samples is configured at first.
        ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
        const ProgramRun run = server.zolex({"/d"});
        EXPECT_EQ(0, run.exitCode) << run.output;
        EXPECT_EQ(withPrefix(row.commands), linesAfter(run.output, "Deploy Command="));
        // Over a configuration that is there already every utility refuses it, with its reason.
        const ProgramRun again = server.zolex({"/d"});
        EXPECT_EQ(11, again.exitCode);
        EXPECT_TRUE(contains(again.output, "Deploy Command Standard Output:\n"));
        EXPECT_TRUE(contains(again.output, "is not free") || contains(again.output, "There is a "))
            << again.output;
    }
}

#ifndef _WIN32 // twelve servers take too long in an emulator
TEST(FamiliesTest, SamplePoliciesOfEachSampleAreDeployed) {
    for (const char* sample : {"single", "enclosures", "two-controllers", "later", "arcconf",
                               "hrconf", "qtcsend", "cfggen", "cfggen-scsi", "hyperwin", "mixed"}) {
        VirtualServer server;
        ASSERT_EQ(0, server.simulator({"init", ".", "--sample", sample}).exitCode);
        const ProgramRun run = server.zolex({"/f:sample-policies.ini"});
        EXPECT_EQ(0, run.exitCode) << sample << "\n" << run.output;
    }
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    EXPECT_EQ(11, server.zolex({"/f:sample-policies.ini"}).exitCode);
    EXPECT_EQ(0, server.zolex({"/r", "/y", "/f:sample-policies.ini"}).exitCode);
}
#endif

TEST(FamiliesTest, DrivesThatFailedOrAreForeignAreNotUsed) {
    const std::string arcconfDrives =
        R"({"channel": 0, "device": 0, "sizeMB": 70006},
           {"channel": 0, "device": 1, "sizeMB": 70006, "status": "failed"},
           {"channel": 0, "device": 2, "sizeMB": 70006, "status": "foreign"},
           {"channel": 0, "device": 3, "count": 4, "sizeMB": 70006})";
    const Lines arcconfCommands = {
        "ARCCONF CREATE 1 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 Method QUICK MAX 5 "
        "0 0 0 3 0 4 0 5 NOPROMPT ",
        "ARCCONF SETSTATE 1 DEVICE 0 6 HSP"};
    struct Row {
        std::string controller;
        Lines commands;
    };
    const std::vector<Row> rows = {
        {controller("ARCCONF", "Kestrix-B1", b1, arcconfDrives), arcconfCommands},
        {controller("ARCCONF", "Kestrix-B2", b2 + R"(, "generation": "later")", arcconfDrives),
         arcconfCommands},
        {controller("HRCONF", "Kestrix-B3", pci(2, "0x9005", "0x043F"), arcconfDrives),
         {"HRCONF CREATE 1 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 Init_Priority HIGH "
          "Init_Method QUICK MAX 10 0 0 0 3 0 4 0 5 NOPROMPT ",
          "HRCONF SETSTATE 1 DEVICE 0 6 HSP noprompt"}},
        {controller("QTCSEND", "Kestrix-A1", pci(2, "0x1F3D", "0x002E"),
                    R"({"channel": 1, "id": 0, "sizeMB": 17357},
                       {"channel": 1, "id": 1, "sizeMB": 17357, "status": "failed"},
                       {"channel": 1, "id": 2, "count": 3, "sizeMB": 17357})"),
         {"QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 5 1 0 1 2 1 3 NOPROMPT",
          "QTCSEND SETSTATE 1 1 4 HSP"}},
        {controller("CFGGEN", "LSI-SAS-1078-IR", pci(2, "0x1000", "0x0062"),
                    R"({"enclosure": 1, "slot": 0, "sizeMB": 70006, "status": "failed"},
                       {"enclosure": 1, "slot": 1, "count": 3, "sizeMB": 70006})"),
         {"CFGGEN 0 CREATE IM MAX 1:1 1:2 qsync NOPROMPT", "CFGGEN 0 HOTSPARE 1:3 "}},
        {controller("HYPERWIN", "LSI-IDEal-RAID", pci(2, "0x1166", "0x0213"),
                    R"({"id": 0, "sizeMB": 38154},
                       {"id": 1, "sizeMB": 38154, "status": "failed"})"),
         {"HYPERWIN /AS64  /S "}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.controller);
        VirtualServer server(serverOf(row.controller));
        ASSERT_TRUE(server.isReady());
        const ProgramRun run = server.zolex({"/d"});
        EXPECT_EQ(0, run.exitCode) << run.output;
        EXPECT_EQ(withPrefix(row.commands), linesAfter(run.output, "Deploy Command="));
    }
}

TEST(FamiliesTest, AResetThatFailsOnceIsTriedAgainWithTypes7And11) {
    struct Row {
        std::string controller;
        std::string occurrence; ///< 0: the reset fails each time
        std::size_t runs;
        int exitCode;
    };
    const std::string b3 = pci(2, "0x9005", "0x043F");
    const std::vector<Row> rows = {
        {controller("ARCCONF", "Kestrix-B1", b1, twoDrives), "1", 2, 0},
        {controller("ARCCONF", "Kestrix-B2", b2, twoDrives), "1", 2, 0},
        {controller("ARCCONF", "Kestrix-B8", b8, twoDrives), "1", 2, 0},
        {controller("ARCCONF", "Kestrix-B7", b7, twoDrives), "1", 2, 0},
        {controller("ARCCONF", "Kestrix-B1", b1, twoDrives), "0", 2, 7},
        {controller("ARCCONF", "Kestrix-A8", a8, twoDrives), "1", 1, 7},
        {controller("HRCONF", "Kestrix-B3", b3, twoDrives), "1", 1, 7},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.controller);
        VirtualServer server(
            serverOf(row.controller, R"({"match": "SETCONFIG", "exitCode": 9, "occurrence": )" +
                                         row.occurrence + "}"));
        ASSERT_TRUE(server.isReady());
        const ProgramRun run = server.zolex({"/r", "/y"});
        EXPECT_EQ(row.exitCode, run.exitCode) << run.output;
        EXPECT_EQ(row.runs, countOf(run.output, "Executing:UTIL.BAT "));
        EXPECT_EQ(row.exitCode != 0, contains(run.output, "Received error return code 9 from the"));
    }
}

TEST(FamiliesTest, ExitCode2IsAcceptedOfTheScsiUtilityOnly) {
    struct Row {
        std::string controller;
        bool accepted;
    };
    const std::vector<Row> rows = {
        {controller("CFGGEN1.02.02", "LSI-SCSI-RAID", pci(2, "0x1000", "0x0030"),
                    R"({"id": 0, "count": 3, "sizeMB": 34715})"),
         true},
        {controller("CFGGEN", "LSI-SAS-RAID", pci(2, "0x1000", "0x0050"),
                    R"({"enclosure": 1, "slot": 0, "count": 3, "sizeMB": 70006})"),
         false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.controller);
        VirtualServer server(
            serverOf(row.controller,
                     R"({"match": "CREATE", "exitCode": 2}, {"match": "DELETE", "exitCode": 2},
                               {"match": "HOTSPARE", "exitCode": 2})"));
        ASSERT_TRUE(server.isReady());
        EXPECT_EQ(row.accepted ? 0 : 11, server.zolex({"/d"}).exitCode);
        EXPECT_EQ(row.accepted ? 0 : 7, server.zolex({"/r", "/y"}).exitCode);
    }
}

TEST(FamiliesTest, SeveralLogicalDrivesOfAnArrayComeBack) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "qtcsend"}).exitCode);
    ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
    // Three drives of 17357 MB: 10000 MB of RAID 5 take 15000, and two thirds of the rest are left.
    server.write("wanted.ini", "[Policy.x]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n"
                               "Array_Mode = CUSTOM\nArray.A = 6,7\nArray.B = 3,1,2\n"
                               "Logical_Mode = CUSTOM\nLogical.1 = B:10000:5\n"
                               "Logical.2 = A:FILL:1\nLogical.3 = B:FILL:5\n");
    const ProgramRun wanted = server.zolex({"/f:wanted.ini"});
    EXPECT_EQ(0, wanted.exitCode) << wanted.output;
    EXPECT_EQ(withPrefix({"QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 1 2 0 2 1 NOPROMPT",
                          "QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY 10000 5 1 2 1 0 1 1 NOPROMPT",
                          "QTCSEND CREATE 1 LOGICALDRIVE B 24714 5 NOPROMPT"}),
              linesAfter(wanted.output, "Deploy Command="));
    ASSERT_EQ(0, server.zolex({"/c", "/f:captured.ini"}).exitCode);
    const std::string captured = server.read("captured.ini");
    EXPECT_EQ((Lines{"3,1,2"}), linesAfter(captured, "Array.B = "));
    EXPECT_EQ((Lines{"B:10000:5:OFF"}), linesAfter(captured, "Logical.2 = "));
    EXPECT_EQ((Lines{"B:24714:5:OFF"}), linesAfter(captured, "Logical.3 = "));
    ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
    const ProgramRun again = server.zolex({"/f:captured.ini"});
    EXPECT_EQ(0, again.exitCode) << again.output;
    ASSERT_EQ(0, server.zolex({"/c", "/f:again.ini"}).exitCode);
    EXPECT_EQ(withoutComments(captured), withoutComments(server.read("again.ini")));
}

TEST(FamiliesTest, ControllersOfOneUtilityAreNumberedInTheOrderOfTheBus) {
    const std::string device = "0x01BD";
    VirtualServer server(
        serverOf(controller("QTCSEND", "Kestrix-A6", pci(3, "0x1F3D", device),
                            R"({"channel": 3, "id": 0, "count": 3, "sizeMB": 17357})") +
                 ", " +
                 controller("QTCSEND", "Kestrix-A2", pci(2, "0x1F3D", device),
                            R"({"channel": 1, "id": 0, "count": 2, "sizeMB": 17357})")));
    ASSERT_TRUE(server.isReady());
    EXPECT_EQ(withPrefix({"QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 1 1 0 1 1 NOPROMPT",
                          "QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 5 3 0 3 1 3 2 NOPROMPT"}),
              linesAfter(server.zolex({"/d"}).output, "Deploy Command="));
    EXPECT_EQ(withPrefix({"QTCSEND SETCONFIG 2 DEFAULT NOPROMPT"}),
              linesAfter(server.zolex({"/r:2", "/y"}).output, "Restore Command="));
    ASSERT_EQ(0, server.zolex({"/c", "/f:captured.ini"}).exitCode);
    EXPECT_EQ((Lines{"Kestrix-A2-1]"}), linesAfter(server.read("captured.ini"), "[Policy.AUTO-"));
}

} // namespace
} // namespace zolex::e2e
