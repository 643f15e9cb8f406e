#include "policies/PolicyFile.h"

#include "show/FaultTexts.h"
#include "support/PolicyLines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex {
namespace {

using test::entries;
using test::policies;

PolicyFile read(std::string_view text, bool goOn) {
    SilentReport report;
    PolicyOptions options;
    options.file = "p.ini";
    options.goOn = goOn;
    return readPolicies(text, ControllerCatalogue(), options, report);
}

/// "line:column text", the first line of the text of each fault.
std::vector<std::string> faultsOf(std::string_view text, bool goOn = true) {
    std::vector<std::string> lines;
    for (const Fault& fault : read(text, goOn).faults) {
        const std::string shown(show::faultTexts(fault).at(0).text.view());
        lines.push_back(std::to_string(fault.place.line) + ":" +
                        std::to_string(fault.place.column) + " " +
                        shown.substr(0, shown.find('\n')));
    }
    return lines;
}

using Lines = std::vector<std::string>;

// One line of the file each; the mistakes are numbered.
const std::string mistakes = "  x = y\n"                          //  1
                             "[Policy.A\n"                        //  2
                             "Init = QUICK\n"                     //
                             "[Policy.B]\n"                       //
                             "AppliesTo.1 = ALL, c:1, o:0, d:x\n" //  3
                             "  Init\tQUICK\n"                    //  4
                             "\tColour = red\n"                   //  5
                             "StripeSize = 63\n"                  //  6
                             "[Policy.C]\n"                       //
                             "AppliesTo.1 = m:8840,t:Kestrix\n"   //  7
                             "Array_Mode = CUSTOM\n"              //
                             "Array.A = 1,2,x\n"                  //  8
                             "Array.C = 3\n"                      //  9
                             "Array.D = ALL\n"                    //
                             "init = FAST\n"                      // 10
                             "Logical.1 = A:FILL:7:ON\n"          // 11
                             "Logical.2 = C:50%:5:MAYBE\n"        // 12
                             "Logical.3 = B:101%:5\n"             // 13
                             "INIT = QUICK\n"                     // 14
                             "[Policy.b]\n"                       // 15
                             "AppliesTo.2 = ALL\n"                // 16
                             "ReadAhead = \n"                     // 17
                             "[General]\n"                        // 18
                             "a = b\n";

TEST(PolicyFileTest, AllFaultsOfAFileWithTheirPlaces) {
    EXPECT_EQ(faultsOf(mistakes),
              (Lines{
                  "1:3 Line 1 -- Invalid character:  x",
                  "2:1 Line 2 -- Invalid policy declaration.",
                  "6:1 Line 6 -- Line not in keyword = value format:    Init\tQUICK",
                  "7:2 Line 7 -- Invalid keyword:  Colour",
                  "19:1 Policy.C -- Duplicate keywords found:  init",
                  "20:2 Line 20 -- Invalid or duplicate policy name:  Policy.b",
                  "20:1 Policy.b -- Each policy must have an AppliesTo.1",
                  "23:2 Line 23 -- Invalid or duplicate policy name:  General",
                  "5:27 Policy.B, AppliesTo.1 -- Invalid scan order:  0",
                  "8:14 Policy.B, StripeSize -- Invalid specifier:  63",
                  "10:24 Policy.C, AppliesTo.1 -- Invalid controller type:  Kestrix",
                  "12:11 Policy.C, Array.A -- Invalid format:  1,2,x",
                  "13:1 Policy.C -- Arrays must be specified in sequential-alphabetical order.",
                  "16:20 Policy.C, Logical.1 -- Invalid RAID level specified:  7",
                  "17:21 Policy.C, Logical.2 -- Invalid write-cache mode specified:  MAYBE",
                  "18:15 Policy.C, Logical.3 -- Invalid size specified:  101%",
                  "15:8 Policy.C, Init -- Invalid specifier:  FAST",
                  "22:12 Policy.b, ReadAhead -- Invalid specifier:  ",
              }));
}

TEST(PolicyFileTest, TheFirstOfThemIsTheOneThatEndsARead) {
    std::string text = mistakes;
    while (!text.empty()) {
        const PolicyFile first = read(text, false);
        const PolicyFile all = read(text, true);
        ASSERT_EQ(first.faults.size(), 1U);
        EXPECT_EQ(first.faults.front(), all.faults.front());
        EXPECT_FALSE(first.policies.has_value());
        EXPECT_FALSE(all.policies.has_value());
        text.erase(0, text.find('\n') + 1);
    }
}

TEST(PolicyFileTest, AFaultSaysWhatWasGivenAndWhatIsPossible) {
    const PolicyFile file =
        read("[Policy.A]\nAppliesTo.1 = ALL\nLogical_Defaults = 5:RAID5:ON\n", false);
    Fault expected;
    expected.kind = FaultKind::policyRaidLevelInvalid;
    expected.place.file = "p.ini";
    expected.place.line = 3;
    expected.place.column = 22;
    expected.place.section = "Policy.A";
    expected.place.keyword = "Logical_Defaults";
    expected.wanted = "RAID5";
    expected.possible = "0 1 1E 5 5E 5EE 6 10 50 60 VOLUME, SIMPLE VOLUME, AUTO";
    ASSERT_EQ(file.faults.size(), 1U);
    EXPECT_EQ(file.faults.front(), expected);
}

struct OneMistake {
    std::string text;
    std::string fault;
};

const std::string begin = "[Policy.A]\nAppliesTo.1 = ALL\n";

// One mistake gave as many faults as there were lines after it.
const OneMistake mistakesOfOneFault[] = {
    {"a\nb\nc\n" + begin, "1:1 Line 1 -- Invalid character:  a"},
    {"[General]\na = b\nc\n" + begin, "1:2 Line 1 -- Invalid or duplicate policy name:  General"},
    {"[Policy.B\nAppliesTo.1 = x\nc\n" + begin, "1:1 Line 1 -- Invalid policy declaration."},
    {begin + begin, "3:2 Line 3 -- Invalid or duplicate policy name:  Policy.A"},
    {"[Policy.A]\nAppliesTo.1 ALL\n",
     "2:1 Line 2 -- Line not in keyword = value format:  AppliesTo.1 ALL"},
    {"[Policy.A]\nInit=QUICK\n", "1:1 Policy.A -- Each policy must have an AppliesTo.1"},
    {"[Policy.A]\nAppliesTo.1 = ^~\n", "1:1 Policy.A -- Each policy must have an AppliesTo.1"},
    {begin + "Init=QUICK\nINIT=BUILD\ninit=BUILD\n",
     "4:1 Policy.A -- Duplicate keywords found:  Init"},
    {begin + "Init=QUICK\nReadAhead=ON\n" + begin.substr(begin.find('A', 10)) +
         "Init=BUILD\nReadAhead=ON\n",
     "5:1 Policy.A -- Duplicate keywords found:  AppliesTo.1"},
    {"[Policy.A]\n" + entries(50) + "a\nb\nArray.A = x\n[Policy.B]\nAppliesTo.1 = ALL\n",
     "52:1 Line 52 -- Invalid character:  a"},
    {"[Policy.A]\n" + entries(49) + "Array_Mode = CUSTOM\nArray.A = 1\n",
     "52:1 Line 52 -- Invalid character:  A"},
    {policies(103) + "a\n", "201:1 Line 201 -- Too many policies specified."},
    {begin + std::string(255, 'x') + std::string(500, 'y') + "\n",
     "3:1 Line 2 -- Line not in keyword = value format:  " + std::string(255, 'x')},
    {begin + "Array_Mode = CUSTOM\nArray A = 1\nArray.B = 2\nArray.D = 3\nLogical.1 = D:FILL:0\n"
             "Logical.2 = H:FILL:0\n",
     "4:1 Line 4 -- Invalid keyword:  Array A"},
    {begin + "Array_Mode = CUSTOM\nArray.B = 1\nArray.D = 1\nLogical.1 = D:FILL:0\n"
             "Logical.2 = E:FILL:0\n",
     "1:1 Policy.A -- Missing required entry in policies file:  Array.A"},
    {begin + "Array.A = 1\nArray.C = 2\nArray.E = 3\nArray.G = 4\nLogical.1 = G:FILL:0\n",
     "4:1 Policy.A -- Arrays must be specified in sequential-alphabetical order."},
    {begin + "Array.A = ALL\nArray.B = 2\nArray.C = 3\nLogical.1 = C:FILL:0\n",
     "4:1 Policy.A -- Invalid array specified:  Array.B"},
    {begin + "Array.A = x\nArray.B = 2\nLogical.1 = B:FILL:0\n",
     "3:11 Policy.A, Array.A -- Invalid format:  x"},
    {begin + "Logical.1 = A:FILL:0\nLogical.2 = A:FILL:0\n",
     "3:13 Policy.A, Logical.1 -- Invalid array letter specified:  A"},
    {begin + "Array.A = 1\nLogical.1 = A:10%:5E\nLogical.2 = A:10%:0\nLogical.3 = A:10%:0\n",
     "5:1 Policy.A, Logical.2 -- RAID levels 5E and 5EE only permit one logical drive per array."},
    {begin + "Array.A = 1\nLogical_Mode = CUSTOM\nLogical.2 = A:10%:0\nLogical.4 = A:10%:0\n",
     "1:1 Policy.A -- Missing required entry in policies file:  Logical.1"},
    {begin + "Array.A = 1\nLogical.1 = A:9%:0\nLogical.3 = A:10%:0\nLogical.5 = A:10%:0\n",
     "5:1 Policy.A, Logical.3 -- Logical drives must be specified in sequential order."},
    {begin + "AppliesTo.2 = c:0,o:0,d:0,x\n",
     "3:17 Policy.A, AppliesTo.2 -- Invalid controller number specified:  0"},
    {"; nothing\n", "0:0 \tYou must specify at least one policy in the policies file."},
};

TEST(PolicyFileTest, OneMistakeIsOneFault) {
    for (const OneMistake& row : mistakesOfOneFault) {
        EXPECT_EQ(faultsOf(row.text), Lines{row.fault}) << row.text;
        EXPECT_EQ(faultsOf(row.text, false), Lines{row.fault}) << row.text;
    }
}

// What is cut off an entry on a long line was a line of its own, and the entry another fault.
TEST(PolicyFileTest, AnEntryThatIsCutShortIsOneFault) {
    std::string drives = "1";
    while (drives.size() < 300) {
        drives += ",1";
    }
    const std::string text = begin + "Hotspares = " + drives + "\nInit = x\n";
    const std::string rest = drives.substr(255 - std::string("Hotspares = ").size());
    EXPECT_EQ(faultsOf(text), (Lines{"3:256 Line 3 -- Line not in keyword = value format:  " + rest,
                                     "4:8 Policy.A, Init -- Invalid specifier:  x"}));
}

TEST(PolicyFileTest, EntriesKnowTheirPlaces) {
    const std::string blanks(250, ' ');
    const PolicyFile file =
        read("; c\r\n\n  [Policy.A]\r\n \tAppliesTo.1\t= \tALL \r\nInit=" + blanks +
                 "ReadAhead =ON\nInit =\n",
             true);
    ASSERT_EQ(file.sections.size(), 1U);
    EXPECT_EQ(file.sections[0].line, 3);
    EXPECT_EQ(file.sections[0].column, 3);
    const std::vector<PolicyEntry> expected = {{"AppliesTo.1", "ALL", 4, 3, 18},
                                               {"Init", "", 5, 1, 6},
                                               {"ReadAhead", "ON", 5, 256, 267},
                                               {"Init", "", 6, 1, 7}};
    EXPECT_EQ(file.sections[0].entries, expected);
}

TEST(PolicyFileTest, ValuesAreReadIntoCodes) {
    const PolicyFile file = read(begin + "RebuildRate = low\nReadAhead=On\nStripeSize=1024\n"
                                         "Init=build\nMax_Logical_Drive_Size=0512\n",
                                 false);
    ASSERT_TRUE(file.policies.has_value());
    const Policy& policy = file.policies->policies().at(0);
    EXPECT_EQ(policy.rebuildRate, rebuild_rate::low);
    EXPECT_EQ(policy.readAhead, read_ahead::on);
    EXPECT_EQ(policy.stripeSize, stripe::kb1024);
    EXPECT_EQ(policy.init, init_choice::build);
    EXPECT_EQ(policy.maxLogicalDriveSizeMb, 512);
    EXPECT_EQ(read(begin, false).policies->policies().at(0).rebuildRate, std::nullopt);
}

TEST(PolicyFileTest, EveryStripeSizeHasTheCodeOfItsWord) {
    for (std::int32_t code = stripe::kb16; code <= stripe::kb4096; ++code) {
        const PolicyFile file = read(begin + "StripeSize = " + stripeSizeWord(code), false);
        ASSERT_TRUE(file.policies.has_value());
        EXPECT_EQ(file.policies->policies().at(0).stripeSize, code);
    }
}

TEST(PolicyFileTest, SizesAreMegabytesPercentOrTheRest) {
    const PolicyFile file = read(begin + "Array.A = ALL\nLogical.1 = A:4096:0\n"
                                         "Logical.2 = A:25%:0\nLogical.3 = A:fill:0\n",
                                 false);
    ASSERT_TRUE(file.policies.has_value());
    std::vector<DriveSize> sizes;
    for (const LogicalSpecification& drive : file.policies->policies().at(0).logicalDrives) {
        sizes.push_back(drive.size);
    }
    EXPECT_EQ(sizes, (std::vector<DriveSize>{{DriveSize::Kind::mb, 4096},
                                             {DriveSize::Kind::percent, 25},
                                             {DriveSize::Kind::rest, 0}}));
}

/// Keeps what is reported.
class KeepingReport : public Report {
  public:
    void fault(const Fault& fault) override { faults.push_back(fault); }
    void note(std::int32_t /*level*/, std::string_view text) override { notes += text; }
    void trace(std::string_view /*text*/) override {}
    [[nodiscard]] bool shows(std::int32_t /*level*/) const override { return true; }

    std::vector<Fault> faults;
    std::string notes;
};

TEST(PolicyFileTest, FaultsAreReportedAsTheyAreFound) {
    KeepingReport report;
    PolicyOptions options;
    options.file = "p.ini";
    options.goOn = true;
    const PolicyFile file = readPolicies(mistakes, ControllerCatalogue(), options, report);
    EXPECT_EQ(report.faults, file.faults);
    EXPECT_EQ(report.notes, "\tScanning policies ...\n\tPolicy.B\n\tPolicy.C\n\tPolicy.b\n"
                            "\tValidating keywords and values ...\n"
                            "\tPolicy.B\n\tPolicy.C\n\tPolicy.b\n");
}

} // namespace
} // namespace zolex
