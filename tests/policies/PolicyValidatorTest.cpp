#include "policies/PolicyValidator.h"

#include "policies/PolicyTestSupport.h"
#include "support/DriveSizes.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

using test::errorBlock;
using test::PolicyReading;

std::string dump(const RaidArray& array) {
    std::string result = array.allRemaining ? "ALL" : "";
    for (const std::int32_t number : array.driveNumbers()) {
        result += std::to_string(number) + " ";
    }
    for (const DrivePosition& drive : array.drives()) {
        result += std::to_string(drive.channel) + ":" + std::to_string(drive.id) + " ";
    }
    return "<" + result + (array.tooManyDrives ? "and more>" : ">");
}

std::string dump(const LogicalSpecification& drive) {
    return "<" + std::to_string(drive.arrayIndex) + " " + test::sizeText(drive.size) + " " +
           std::to_string(drive.raidLevel) + " " + std::to_string(drive.writeCache) + ">";
}

/// What differs from an empty policy, in one line.
std::string dump(const Policy& policy) {
    std::string result;
    const auto add = [&result](const std::string& name, const std::string& value) {
        if (!value.empty()) {
            result += (result.empty() ? "" : " ") + name + "=" + value;
        }
    };
    add("rebuild", policy.rebuildRate ? rebuildRateWord(*policy.rebuildRate) : "");
    add("ahead", policy.readAhead ? readAheadWord(*policy.readAhead) : "");
    add("stripe", policy.stripeSize ? stripeSizeWord(*policy.stripeSize) : "");
    add("init", policy.init ? (*policy.init == init_choice::quick ? "QUICK" : "BUILD") : "");
    add("max", policy.maxLogicalDriveSizeMb ? std::to_string(*policy.maxLogicalDriveSizeMb) : "");
    add("arrays", policy.customArrays ? "CUSTOM" : "");
    add("logical", policy.customLogicalDrives ? "CUSTOM" : "");
    if (policy.arrayDefaults.variancePercent != 0 || policy.arrayDefaults.hotspareCount != -25) {
        add("adef", std::to_string(policy.arrayDefaults.variancePercent) + "/" +
                        std::to_string(policy.arrayDefaults.hotspareCount));
    }
    add("ldef", policy.logicalDefaults ? dump(*policy.logicalDefaults) : "");
    for (const RaidArray& array : policy.arrays) {
        add("A", dump(array));
    }
    for (const LogicalSpecification& drive : policy.logicalDrives) {
        add("L", dump(drive));
    }
    add("spares", policy.hotspares ? dump(*policy.hotspares) : "");
    return result;
}

/// A policy that applies to every controller, with further lines.
std::string policyWith(const std::string& lines) {
    return "[Policy.A]\nAppliesTo.1 = ALL\n" + lines + "\n";
}

struct ValueRow {
    std::string lines;
    std::string expected;
};

std::string list(int count, const std::string& item) {
    std::string result = item;
    for (int i = 1; i < count; ++i) {
        result += "," + item;
    }
    return result;
}

std::string repeat(int count, const std::string& item) {
    std::string result;
    for (int i = 0; i < count; ++i) {
        result += item;
    }
    return result;
}

const ValueRow valueAccepts[] = {
    {"", ""},
    {"RebuildRate = HIGH", "rebuild=HIGH"},
    {"RebuildRate = med", "rebuild=MED"},
    {"rebuildrate=LOW", "rebuild=LOW"},
    {"ReadAhead = ADAPTIVE", "ahead=ADAPTIVE"},
    {"ReadAhead = on", "ahead=ON"},
    {"ReadAhead = OFF", "ahead=OFF"},
    {"StripeSize = 16", "stripe=16"},
    {"StripeSize = 4096", "stripe=4096"},
    {"Init = QUICK", "init=QUICK"},
    {"Init = Build", "init=BUILD"},
    {"Array_Defaults = 0%:0", "adef=0/0"},
    {"Array_Defaults = 5%:02", "adef=5/2"},
    {"Array_Defaults = 10%:2147483647", "adef=10/2147483647"},
    {"Array_Defaults = 100%:1", "adef=100/1"},
    {"Max_Logical_Drive_Size = 0", "max=0"},
    {"Max_Logical_Drive_Size = 2147483647", "max=2147483647"},
    {"Array_Mode = custom\nArray.A = ALL", "arrays=CUSTOM A=<ALL>"},
    {"Array_Mode = CUSTOM\narray.a = all", "arrays=CUSTOM A=<ALL>"},
    {"Array.A = 1", "A=<1 >"},
    {"Array.A = 1 ,\t2, 010", "A=<1 2 10 >"},
    {"Array.A = 1:0, 2:35,01:2,0:0", "A=<1:0 2:35 1:2 0:0 >"},
    {"Array.B = ALL\nArray.A = 3", "A=<3 > A=<ALL>"},
    {"Array.A=1\nArray.B=2\nArray.C=3\nArray.D=4\nArray.E=5\nArray.F=6\nArray.G=7\nArray.H=1:1",
     "A=<1 > A=<2 > A=<3 > A=<4 > A=<5 > A=<6 > A=<7 > A=<1:1 >"},
    {"Array.A = " + list(32, "7"), "A=<" + repeat(32, "7 ") + ">"},
    {"Array.A = " + list(33, "7"), "A=<" + repeat(32, "7 ") + "and more>"},
    {"Array.A = " + list(33, "1:7"), "A=<" + repeat(32, "1:7 ") + "and more>"},
    {"Hotspares = 4", "spares=<4 >"},
    {"Hotspares = 1:4 , 0:5", "spares=<1:4 0:5 >"},
    {"Hotspares = " + list(16, "9"), "spares=<" + repeat(16, "9 ") + ">"},
    {"Logical_Defaults = 100%:5", "ldef=<-1 100% 3 2>"},
    {"Logical_Defaults = 1%:1E:OFF", "ldef=<-1 1% 2 0>"},
    {"Logical_Defaults = fill:simple volume:on", "ldef=<-1 FILL 13 1>"},
    {"Logical_Defaults = 4096:0:AUTO", "ldef=<-1 4096 0 2>"},
    {"Logical_Defaults = 050%:auto:auto", "ldef=<-1 50% 12 2>"},
    {"Array.A=1\nLogical.1 = A:FILL:0", "A=<1 > L=<0 FILL 0 2>"},
    {"Array.A=1\nLogical_Mode=CUSTOM\nLogical.1 = a:2147483647:1:ON",
     "logical=CUSTOM A=<1 > L=<0 2147483647 1 1>"},
    {"Array.A=1\nArray.B=ALL\nLogical.1=B:20%:5:OFF\nLogical.2=A:30%:5\nLogical.3=B:FILL:6",
     "A=<1 > A=<ALL> L=<1 20% 3 0> L=<0 30% 3 2> L=<1 FILL 6 2>"},
    {"Array.A=1\nLogical.1=A:FILL:10\nLogical.2=A:FILL:50\nLogical.3=A:FILL:60\n"
     "Logical.4=A:FILL:VOLUME\nLogical.5=A:1:AUTO\nLogical.6=A:1:6\nLogical.7=A:1:5\n"
     "Logical.8=A:1:1e\nLogical.9=A:1:0",
     "A=<1 > L=<0 FILL 7 2> L=<0 FILL 8 2> L=<0 FILL 9 2> L=<0 FILL 10 2> L=<0 1 12 2> "
     "L=<0 1 6 2> L=<0 1 3 2> L=<0 1 2 2> L=<0 1 0 2>"},
    {"Array.A=1\nArray.B=2\nLogical.1=A:FILL:5E\nLogical.2=B:FILL:5EE",
     "A=<1 > A=<2 > L=<0 FILL 4 2> L=<1 FILL 5 2>"},
    // The text that stands for an absent keyword.
    {"RebuildRate = ^~", ""},
};

TEST(PolicyValidatorTest, AcceptedValuesLandInThePolicy) {
    for (const ValueRow& row : valueAccepts) {
        PolicyReading reading;
        ASSERT_TRUE(reading.read(policyWith(row.lines))) << row.lines << reading.output();
        EXPECT_EQ(reading.output(), "") << row.lines;
        EXPECT_EQ(dump(reading.policy()), row.expected) << row.lines;
    }
}

TEST(PolicyValidatorTest, EveryStripeSizeOfTheListIsAccepted) {
    for (const char* size : {"16", "32", "64", "128", "256", "512", "1024", "2048", "4096"}) {
        PolicyReading reading;
        ASSERT_TRUE(reading.read(policyWith(std::string("StripeSize = ") + size))) << size;
        EXPECT_STREQ(stripeSizeWord(reading.policy().stripeSize.value()), size);
    }
}

const std::string words = "\tValid values are:  ";
const std::string stripes = words + "16 32 64 128 256 512 1024 2048 4096\n";
const std::string variances = words + "0% 5% 10% 100%\n";
const std::string spareHint =
    "\tValid values for hotspares are:  integers greater than or equal to zero.\n";
const std::string arrayFormat = "\tValid format is:  variance:hotspares.  Example: 10%:2.\n";
const std::string defaultsFormat =
    "\tValid format is:  size:raidlevel(:writecmode).  Example: 4096:0:AUTO.\n";
const std::string logicalFormat =
    "\tValid format is:  array:size:raidlevel(:writecmode).  Example: A:4096:0:AUTO.\n";
const std::string cacheHint = words + "OFF ON\n";
const std::string levelHint = words + "1E 5E 5EE 10 VOLUME\n";
const std::string sizeHint = words + "a percentage, a size in MB, or FILL\n";
const std::string letterOrder = "Policy.A -- Arrays must be specified in sequential-alphabetical "
                                "order.\nArray.A = ...\nArray.B = ...\nArray.C = ...\n";
const std::string numberOrder = " -- Logical drives must be specified in sequential order.\n"
                                "Logical.1 = ...\nLogical.2 = ...\netc.\n";

const ValueRow settingRejects[] = {
    {"RebuildRate = fast",
     "Policy.A, RebuildRate -- Invalid specifier:  fast\n\tValid values are:  HIGH MED LOW\n"},
    {"rebuildrate =", "Policy.A, RebuildRate -- Invalid specifier:  \n" + words + "HIGH MED LOW\n"},
    {"ReadAhead = ADAPT",
     "Policy.A, ReadAhead -- Invalid specifier:  ADAPT\n" + words + "ADAPTIVE ON OFF\n"},
    {"StripeSize = 8", "Policy.A, StripeSize -- Invalid specifier:  8\n" + stripes},
    {"StripeSize = 016", "Policy.A, StripeSize -- Invalid specifier:  016\n" + stripes},
    {"StripeSize = 8192", "Policy.A, StripeSize -- Invalid specifier:  8192\n" + stripes},
    {"Array_Mode = AUTO",
     "Policy.A, Array_Mode -- Invalid specifier:  AUTO\n" + words + "CUSTOM\n"},
    {"Logical_Mode = AUTO",
     "Policy.A, Logical_Mode -- Invalid specifier:  AUTO\n" + words + "CUSTOM\n"},
    {"Init = SLOW", "Policy.A, Init -- Invalid specifier:  SLOW\n" + words + "QUICK BUILD\n"},
    {"Max_Logical_Drive_Size = 1x", "Policy.A, Max_Logical_Drive_Size -- Invalid specifier:  1x\n"},
    {"Max_Logical_Drive_Size = -1", "Policy.A, Max_Logical_Drive_Size -- Invalid specifier:  -1\n"},
    {"Max_Logical_Drive_Size = 2147483648",
     "Policy.A, Max_Logical_Drive_Size -- Invalid specifier:  2147483648\n"},
    // The format message names another keyword on purpose.
    {"Array_Defaults = 10%", "Policy.A, Array_Mode -- Invalid format:  10%\n" + arrayFormat},
    {"Array_Defaults =", "Policy.A, Array_Mode -- Invalid format:  \n" + arrayFormat},
    {"Array_Defaults = 10%:1:2",
     "Policy.A, Array_Mode -- Invalid format:  10%:1:2\n" + arrayFormat},
    {"Array_Defaults = 11%:x", "Policy.A, Array_Defaults -- Invalid specifier:  x\n" + spareHint},
    {"Array_Defaults = 10%:-1", "Policy.A, Array_Defaults -- Invalid specifier:  -1\n" + spareHint},
    {"Array_Defaults = 10%: 1", "Policy.A, Array_Defaults -- Invalid specifier:   1\n" + spareHint},
    {"Array_Defaults = 10%:", "Policy.A, Array_Defaults -- Invalid specifier:  \n" + spareHint},
    {"Array_Defaults = 11%:1", "Policy.A, Array_Defaults -- Invalid specifier:  11%\n" + variances},
    {"Array_Defaults = 10:1", "Policy.A, Array_Defaults -- Invalid specifier:  10\n" + variances},
    {"Array_Defaults = 10% :1",
     "Policy.A, Array_Defaults -- Invalid specifier:  10% \n" + variances},
    {"Logical_Defaults = 100%",
     "Policy.A, Logical_Defaults -- Invalid format:  100%\n" + defaultsFormat},
    {"Logical_Defaults =", "Policy.A, Logical_Defaults -- Invalid format:  \n" + defaultsFormat},
    {"Logical_Defaults = 1:0:ON:1",
     "Policy.A, Logical_Defaults -- Invalid format:  1:0:ON:1\n" + defaultsFormat},
    {"Logical_Defaults = 0:7:yes",
     "Policy.A, Logical_Defaults -- Invalid write-cache mode specified:  yes\n" + cacheHint},
    {"Logical_Defaults = 1:0:",
     "Policy.A, Logical_Defaults -- Invalid write-cache mode specified:  \n" + cacheHint},
    {"Logical_Defaults = 0:7",
     "Policy.A, Logical_Defaults -- Invalid RAID level specified:  7\n" + levelHint},
    {"Logical_Defaults = 1: 5",
     "Policy.A, Logical_Defaults -- Invalid RAID level specified:   5\n" + levelHint},
    {"Logical_Defaults = 0:5",
     "Policy.A, Logical_Defaults -- Invalid size specified:  0\n" + sizeHint},
    {"Logical_Defaults = 0%:5",
     "Policy.A, Logical_Defaults -- Invalid size specified:  0%\n" + sizeHint},
    {"Logical_Defaults = 101%:5",
     "Policy.A, Logical_Defaults -- Invalid size specified:  101%\n" + sizeHint},
    {"Logical_Defaults = %:5",
     "Policy.A, Logical_Defaults -- Invalid size specified:  %\n" + sizeHint},
    {"Logical_Defaults = 2147483648:5",
     "Policy.A, Logical_Defaults -- Invalid size specified:  2147483648\n" + sizeHint},
    {"Logical_Defaults = :5",
     "Policy.A, Logical_Defaults -- Invalid size specified:  \n" + sizeHint},
};

const ValueRow driveRejects[] = {
    {"Array_Mode = CUSTOM", "Policy.A -- Missing required entry in policies file:  Array.A\n"
                            "\tThis entry is required when Array_Mode = CUSTOM\n"},
    {"Array_Mode = CUSTOM\nArray.B = x",
     "Policy.A -- Missing required entry in policies file:  Array.A\n"
     "\tThis entry is required when Array_Mode = CUSTOM\n"},
    {"Array.A = 1 2", "Policy.A, Array.A -- Invalid format:  1 2\n"},
    {"array.a =", "Policy.A, Array.A -- Invalid format:  \n"},
    {"Array.A = 0", "Policy.A, Array.A -- Invalid format:  0\n"},
    {"Array.A = 1,", "Policy.A, Array.A -- Invalid format:  1,\n"},
    {"Array.A = ,1", "Policy.A, Array.A -- Invalid format:  ,1\n"},
    {"Array.A = 1,2:1", "Policy.A, Array.A -- Invalid format:  1,2:1\n"},
    {"Array.A = 2:1, 1", "Policy.A, Array.A -- Invalid format:  2:1, 1\n"},
    {"Array.A = 1,ALL", "Policy.A, Array.A -- Invalid format:  1,ALL\n"},
    {"Array.A = 1:00", "Policy.A, Array.A -- Invalid format:  1:00\n"},
    {"Array.A = 1:", "Policy.A, Array.A -- Invalid format:  1:\n"},
    {"Array.A = 1:2:3", "Policy.A, Array.A -- Invalid format:  1:2:3\n"},
    {"Array.A = 1: 2", "Policy.A, Array.A -- Invalid format:  1: 2\n"},
    {"Array.A = -1", "Policy.A, Array.A -- Invalid format:  -1\n"},
    {"Array.A = 2147483648", "Policy.A, Array.A -- Invalid format:  2147483648\n"},
    {"Array.B = 1", letterOrder},
    {"Array.A = 1\nArray.C = 2", letterOrder},
    {"Array.A = 1\nArray.C = x", "Policy.A, Array.C -- Invalid format:  x\n"},
    {"Array.A = ALL\nArray.C = 2", letterOrder},
    {"Array.A = ALL\nArray.B = 2", "Policy.A -- Invalid array specified:  Array.B\n"
                                   "\tThe ALL keyword was specified for a previous array.\n"},
    {"Array.A = 1\nArray.B = ALL\nArray.C = ALL",
     "Policy.A -- Invalid array specified:  Array.C\n"
     "\tThe ALL keyword was specified for a previous array.\n"},
    {"Hotspares = ALL", "Policy.A, Hotspares -- Invalid format:  ALL\n"},
    {"Hotspares =", "Policy.A, Hotspares -- Invalid format:  \n"},
    {"Hotspares = 1,1:1", "Policy.A, Hotspares -- Invalid format:  1,1:1\n"},
    {"Hotspares = " + list(17, "9"),
     "Policy.A, Hotspares -- Too many hot-spare drives specified.\n"
     "\tThe maximum number of hot-spare drives that you may specify is 16\n"},
    {"Hotspares = " + list(17, "0"),
     "Policy.A, Hotspares -- Invalid format:  " + list(17, "0") + "\n"},
    {"Logical_Mode = CUSTOM", "Policy.A -- Missing required entry in policies file:  Logical.1\n"
                              "\tThis entry is required when Logical_Mode = CUSTOM\n"},
    {"Logical_Mode = CUSTOM\nLogical.2 = x",
     "Policy.A -- Missing required entry in policies file:  Logical.1\n"
     "\tThis entry is required when Logical_Mode = CUSTOM\n"},
    {"Array.A=1\nLogical.1 = A:FILL",
     "Policy.A, Logical.1 -- Invalid format:  A:FILL\n" + logicalFormat},
    {"Array.A=1\nLogical.1 = A:FILL:0:ON:x",
     "Policy.A, Logical.1 -- Invalid format:  A:FILL:0:ON:x\n" + logicalFormat},
    {"Array.A=1\nLogical.1 = B:x:x:x",
     "Policy.A, Logical.1 -- Invalid array letter specified:  B\n"},
    {"Logical.1 = A:FILL:0", "Policy.A, Logical.1 -- Invalid array letter specified:  A\n"},
    {"Array.A=1\nLogical.1 = AA:FILL:0",
     "Policy.A, Logical.1 -- Invalid array letter specified:  AA\n"},
    {"Array.A=1\nLogical.1 = :FILL:0",
     "Policy.A, Logical.1 -- Invalid array letter specified:  \n"},
    {"Array.A=1\nLogical.1 = A :FILL:0",
     "Policy.A, Logical.1 -- Invalid array letter specified:  A \n"},
    {"Array.A=1\nLogical.1 = 1:FILL:0",
     "Policy.A, Logical.1 -- Invalid array letter specified:  1\n"},
    {"Array.A=1\nLogical.1 = A:x:x:x",
     "Policy.A, Logical.1 -- Invalid write-cache mode specified:  x\n" + cacheHint},
    {"Array.A=1\nLogical.1 = A:x:x",
     "Policy.A, Logical.1 -- Invalid RAID level specified:  x\n" + levelHint},
    {"Array.A=1\nLogical.1 = A:x:0",
     "Policy.A, Logical.1 -- Invalid size specified:  x\n" + sizeHint},
    {"Array.A=1\nLogical.1=A:10%:0\nLogical.2=A:FILL:5E",
     "Policy.A, Logical.2 -- RAID levels 5E and 5EE only permit one logical drive per array.\n"},
    {"Array.A=1\nLogical.1=A:10%:5ee\nLogical.2=A:FILL:0",
     "Policy.A, Logical.2 -- RAID levels 5E and 5EE only permit one logical drive per array.\n"},
    {"Array.A=1\nLogical.1=A:10%:5EE\nLogical.3=A:FILL:0",
     "Policy.A, Logical.3 -- RAID levels 5E and 5EE only permit one logical drive per array.\n"},
    {"Array.A=1\nLogical.2 = A:FILL:0", "Policy.A, Logical.2" + numberOrder},
    {"Array.A=1\nLogical.1=A:10%:0\nLogical.4=A:10%:0\nLogical.5=A:10%:0",
     "Policy.A, Logical.4" + numberOrder},
    {"Array.A=1\nLogical.1=A:10%:0\nLogical.4=A:10%:x",
     "Policy.A, Logical.4 -- Invalid RAID level specified:  x\n" + levelHint},
};

void expectRejected(std::span<const ValueRow> rows) {
    for (const ValueRow& row : rows) {
        PolicyReading reading;
        EXPECT_FALSE(reading.read(policyWith(row.lines))) << row.lines;
        EXPECT_EQ(reading.output(), errorBlock(row.expected)) << row.lines;
        EXPECT_EQ(reading.reader.policies(), nullptr) << row.lines;
    }
}

TEST(PolicyValidatorTest, SettingsThatAreRefused) {
    expectRejected(settingRejects);
}

TEST(PolicyValidatorTest, ArraysHotSparesAndLogicalDrivesThatAreRefused) {
    expectRejected(driveRejects);
}

/// Keywords in the order in which they are validated, each with a faulty value.
const ValueRow order[] = {
    {"AppliesTo.1 = x", "Policy.A, AppliesTo.1 -- Invalid specifier:  x\n"},
    {"AppliesTo.2 = x", "Policy.A, AppliesTo.2 -- Invalid specifier:  x\n"},
    {"RebuildRate = x",
     "Policy.A, RebuildRate -- Invalid specifier:  x\n" + words + "HIGH MED LOW\n"},
    {"ReadAhead = x",
     "Policy.A, ReadAhead -- Invalid specifier:  x\n" + words + "ADAPTIVE ON OFF\n"},
    {"StripeSize = x", "Policy.A, StripeSize -- Invalid specifier:  x\n" + stripes},
    {"Array_Mode = x", "Policy.A, Array_Mode -- Invalid specifier:  x\n" + words + "CUSTOM\n"},
    {"Array_Defaults = x", "Policy.A, Array_Mode -- Invalid format:  x\n" + arrayFormat},
    {"Max_Logical_Drive_Size = x", "Policy.A, Max_Logical_Drive_Size -- Invalid specifier:  x\n"},
    {"Array.A = x", "Policy.A, Array.A -- Invalid format:  x\n"},
    {"Array.B = x", "Policy.A, Array.B -- Invalid format:  x\n"},
    {"Hotspares = x", "Policy.A, Hotspares -- Invalid format:  x\n"},
    {"Logical_Mode = x", "Policy.A, Logical_Mode -- Invalid specifier:  x\n" + words + "CUSTOM\n"},
    {"Logical_Defaults = x", "Policy.A, Logical_Defaults -- Invalid format:  x\n" + defaultsFormat},
    {"Logical.1 = x", "Policy.A, Logical.1 -- Invalid format:  x\n" + logicalFormat},
    {"Logical.2 = x", "Policy.A, Logical.2 -- Invalid format:  x\n" + logicalFormat},
    {"Init = x", "Policy.A, Init -- Invalid specifier:  x\n" + words + "QUICK BUILD\n"},
};

TEST(PolicyValidatorTest, KeywordsAreValidatedInAFixedOrder) {
    // The lines stand in reverse; the first of the order is reported.
    for (std::size_t first = 0; first < std::size(order); ++first) {
        std::string content = "[Policy.A]\n";
        for (std::size_t i = std::size(order); i > first; --i) {
            content += order[i - 1].lines + "\n";
        }
        content += first > 0 ? "AppliesTo.1 = ALL\n" : "";
        PolicyReading reading;
        EXPECT_FALSE(reading.read(content));
        EXPECT_EQ(reading.output(), errorBlock(order[first].expected));
    }
}

// A byte 0 in a value hid what stood behind it.
TEST(PolicyValidatorTest, AByteZeroIsPartOfTheValue) {
    PolicyReading reading;
    EXPECT_FALSE(reading.read(policyWith(std::string("Array.A = 1\0,2", 14))));
    EXPECT_EQ(reading.output(), errorBlock("Policy.A, Array.A -- Invalid format:  1\n"));
    EXPECT_FALSE(reading.read(policyWith(std::string("AppliesTo.2=t:Kestrix-C1\0", 25))));
    EXPECT_EQ(reading.output(),
              errorBlock("Policy.A, AppliesTo.2 -- Invalid controller type:  Kestrix-C1\n"));
}

TEST(PolicyValidatorTest, TheFirstFaultyPolicyEndsTheRead) {
    PolicyReading reading;
    EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1=ALL\n[policy.b]\nAppliesTo.1=ALL\nInit=x\n"
                              "[Policy.C]\nAppliesTo.1=x\n"));
    EXPECT_EQ(reading.output(),
              errorBlock("policy.b, Init -- Invalid specifier:  x\n" + words + "QUICK BUILD\n"));
    EXPECT_EQ(reading.reader.policies(), nullptr);
}

/// Arrays beyond those that a file can name, from "A".
PolicySection sectionWithArrays(int count) {
    PolicySection section;
    section.name = "Policy.A";
    section.addEntry("AppliesTo.1 = ALL");
    for (int i = 0; i < count; ++i) {
        section.addEntry(std::string("Array.") + static_cast<char>('A' + i) + " = 1");
    }
    return section;
}

TEST(PolicyValidatorTest, SixteenArraysAreTheMost) {
    PolicyReading reading;
    const PolicySection sixteen = sectionWithArrays(16);
    const auto validate = [&reading](const PolicySection& section) {
        Report& report = reading.application.report();
        PolicyFaults faults("p.ini", false, report);
        return PolicyValidator(section, reading.application.catalogue(), false, faults, report)
            .validate();
    };
    const auto policy = validate(sixteen);
    ASSERT_TRUE(policy.has_value());
    EXPECT_EQ(policy->arrays.size(), 16U);
    const PolicySection seventeen = sectionWithArrays(17);
    EXPECT_FALSE(validate(seventeen).has_value());
    EXPECT_EQ(reading.output(),
              errorBlock("Policy.A -- Too many arrays specified.\n"
                         "\tThe maximum number of arrays that you may specify is 16\n"));
}

TEST(PolicyValidatorTest, KeywordsThatAreNeverLookedUpAreNamedAfterTheirPolicy) {
    const std::string content = "[Policy.A]\nAppliesTo.1=ALL\nappliesto.16=x\nAppliesTo.02=x\n"
                                "Logical.10=x\nLOGICAL.01=x\n[Policy.B]\nAppliesTo.1=ALL\n";
    const std::string notes = "\tNote:  Policy.A, appliesto.16 has no effect.\n"
                              "\tNote:  Policy.A, AppliesTo.02 has no effect.\n"
                              "\tNote:  Policy.A, Logical.10 has no effect.\n"
                              "\tNote:  Policy.A, LOGICAL.01 has no effect.\n";
    PolicyReading reading;
    ASSERT_TRUE(reading.read(content));
    EXPECT_EQ(reading.output(), notes);

    reading.application.printer().setVerbosity(level::detail);
    ASSERT_TRUE(reading.read(content));
    EXPECT_EQ(reading.output(), "\tScanning policies ...\n\tPolicy.A\n\tPolicy.B\n"
                                "\tValidating keywords and values ...\n\tPolicy.A\n" +
                                    notes + "\tPolicy.B\n");

    reading.application.printer().setVerbosity(level::always);
    ASSERT_TRUE(reading.read(content));
    EXPECT_EQ(reading.output(), "");

    // A policy that fails has no notes.
    reading.application.printer().setVerbosity(level::progress);
    EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1=ALL\nAppliesTo.16=x\nHotspares=x\n"));
    EXPECT_EQ(reading.output(), errorBlock("Policy.A, Hotspares -- Invalid format:  x\n"));
}

TEST(PolicyValidatorTest, TheMaximumSizeIsShownWithTheDebugFlagAtEveryVerbosity) {
    PolicyReading reading;
    reading.application.settings.debug = true;
    reading.application.printer().setVerbosity(level::always);
    ASSERT_TRUE(reading.read(policyWith("Max_Logical_Drive_Size = 0512")));
    EXPECT_EQ(reading.output(), "DEBUG:plyreadr:readArrays:MaxLogical=512\n");
    // It is read before the arrays.
    EXPECT_FALSE(reading.read(policyWith("Array.A = x\nMax_Logical_Drive_Size = 1")));
    EXPECT_EQ(reading.output(), "DEBUG:plyreadr:readArrays:MaxLogical=1\n" +
                                    errorBlock("Policy.A, Array.A -- Invalid format:  x\n"));
    EXPECT_FALSE(reading.read(policyWith("Max_Logical_Drive_Size = x")));
    EXPECT_EQ(reading.output(),
              errorBlock("Policy.A, Max_Logical_Drive_Size -- Invalid specifier:  x\n"));
    ASSERT_TRUE(reading.read(policyWith("")));
    EXPECT_EQ(reading.output(), "");
}

} // namespace
} // namespace zolex
