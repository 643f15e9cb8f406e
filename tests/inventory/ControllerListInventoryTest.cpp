#include "driver/Application.h"
#include "foundation/IniFile.h"
#include "inventory/ControllerList.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace zolex {
namespace {

constexpr const char* fileName = "contlist.ini";

/// One initialisation from an inventory file that holds `content`.
class Reading {
  public:
    explicit Reading(const std::string& content, std::int32_t verbosity = 9)
        : application(platform) {
        platform.fileFake.files[fileName] = content;
        application.printer().setVerbosity(verbosity);
        IniFile inventory(platform.fileFake, fileName, true);
        result = list.initialize(inventory, application.report());
        output = platform.consoleFake.output;
        EXPECT_EQ(platform.consoleFake.error, "");
        EXPECT_TRUE(platform.children.empty());
    }

    [[nodiscard]] const RAIDController& operator[](std::size_t i) const {
        return *list.controller(i);
    }

    test::FakePlatform platform;
    Application application;
    ControllerList list;
    bool result = false;
    std::string output;
};

std::string inventoryOf(const std::string& count) {
    return "[System]\nTotal_Number_Of_Controllers=" + count + "\n";
}

std::string controller(int n, const std::string& model) {
    const std::string name = "RAIDController." + std::to_string(n);
    return "[" + name + "]\nModel=" + model + "\n";
}

/// The section of the drives of controller n; each entry names its keys.
std::string drives(int n, const std::string& count, const std::string& entries) {
    return "[RAIDController." + std::to_string(n) +
           ".Physical]\nTotal_Number_Of_Physicals=" + count + "\n" + entries;
}

constexpr const char* entering = "Entering ControllerList::initialize(2)\n";
constexpr const char* scanOrders = "Entering ControllerList::setControllerScanOrders\n"
                                   "Exiting ControllerList::setControllerScanOrders\n";
constexpr const char* exitingTrue = "Exiting ControllerList::initialize(2), returning true\n";

std::string processing(std::int32_t type, std::int32_t subtype) {
    return "Processing controller type=" + std::to_string(type) +
           ", sub-type=" + std::to_string(subtype) + "\n";
}

std::string exitingFalse(int n) {
    return "Exiting ControllerList::initialize(2), returning false(" + std::to_string(n) + ")\n";
}

/// Checks a failed run at verbosity 9, and that below it only `shown` is printed.
void expectFault(const std::string& content, const std::string& tracesBefore,
                 const std::string& shown, int exitNumber, std::size_t created,
                 const std::string& tracesBeforeShown = "") {
    const Reading traced(content);
    EXPECT_FALSE(traced.result);
    EXPECT_EQ(traced.output,
              entering + tracesBefore + tracesBeforeShown + shown + exitingFalse(exitNumber));
    EXPECT_EQ(traced.list.count(), created);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(traced.list.controller(i) != nullptr, i < created) << i;
    }
    for (const std::int32_t verbosity : {-1, 0, 3, 5}) {
        const Reading quiet(content, verbosity);
        EXPECT_FALSE(quiet.result);
        EXPECT_EQ(quiet.output, shown) << verbosity;
    }
}

TEST(Inventory, ReadsControllersAndTheirDrives) {
    const Reading run(inventoryOf("2") + controller(1, "Kestrix-C1") +
                      "BIOSVersion= MT25 \nFirmwareVersion=1.11\n"
                      "[RAIDController.1.Array]\nTotal_Number_Of_Arrays=0\n" +
                      drives(1, "2",
                             "Channel.1=1\nID.1=0\nSize.1=69618\nType.1=SAS\n"
                             "Channel.2=4\nID.2=35\nSize.2=139236\nType.2=\n") +
                      controller(2, "LSI-SAS-RAID"));
    ASSERT_TRUE(run.result);
    EXPECT_EQ(run.output,
              entering + processing(12, 2) + processing(10, -1) + scanOrders + exitingTrue);
    ASSERT_EQ(run.list.count(), 2U);
    EXPECT_EQ(run[0].type(), 12);
    EXPECT_EQ(run[0].subtype(), 2);
    EXPECT_EQ(run[0].scanOrder(), 1);
    EXPECT_TRUE(*run[0].biosVersion() == "MT25");
    EXPECT_TRUE(*run[0].firmwareVersion() == "1.11");
    EXPECT_EQ(run[0].numberOfDrives(), 2);
    EXPECT_EQ(run[0].size(1, 0), 69618);
    EXPECT_TRUE(*run[0].driveType(1, 0) == "SAS");
    EXPECT_EQ(run[0].targetId(1, 0), -1);
    EXPECT_FALSE(run[0].isUsed(1, 0));
    EXPECT_EQ(run[0].size(4, 35), 139236);
    EXPECT_FALSE(run[0].driveType(4, 35).has_value());
    EXPECT_EQ(run[0].captured(), nullptr);
    EXPECT_TRUE(run[0].pciLocation().isEmpty());
    EXPECT_EQ(run[1].type(), 10);
    EXPECT_EQ(run[1].subtype(), -1);
    EXPECT_EQ(run[1].numberOfDrives(), 0);
    // Versions that are absent are empty texts, not none.
    EXPECT_TRUE(run[1].biosVersion()->isEmpty());
    EXPECT_TRUE(run[1].firmwareVersion()->isEmpty());
    EXPECT_EQ(run.list.controller(2), nullptr);
    EXPECT_EQ(run.list.controller(36), nullptr);
}

TEST(Inventory, PrintsNothingBelowTheTracesWhenAllIsWell) {
    for (const std::int32_t verbosity : {-1, 0, 3, 5, 8}) {
        EXPECT_EQ(Reading(inventoryOf("1") + controller(1, "Kestrix-A1"), verbosity).output, "");
    }
}

TEST(Inventory, TakesCarriageReturnsLetterCaseAndComments) {
    const Reading run("; inventory\r\n[SYSTEM]\r\ntotal_number_of_controllers = 1\r\n\r\n"
                      "[raidcontroller.1]\r\nMODEL = Kestrix-A8\r\n"
                      "[RAIDCONTROLLER.1.PHYSICAL]\r\ntotal_number_of_physicals=1\r\n"
                      "channel.1=2\r\nid.1=3\r\nsize.1=1000\r\ntype.1=SCSI\r\n");
    ASSERT_TRUE(run.result);
    EXPECT_EQ(run[0].type(), 2);
    EXPECT_EQ(run[0].size(2, 3), 1000);
    EXPECT_TRUE(*run[0].driveType(2, 3) == "SCSI");
}

TEST(Inventory, WithoutControllersItFails) {
    const std::string block = "\n#### ERROR\n\tNo Controllers Found in Inventory File\n\n";
    for (const char* content :
         {"", "[System]\n", "[System]\nTotal_Number_Of_Controllers=0\n",
          "[System]\nTotal_Number_Of_Controllers=-1\n", "[System]\nTotal_Number_Of_Controllers=\n",
          "[System]\nTotal_Number_Of_Controllers=abc\n", "Total_Number_Of_Controllers=1\n",
          "[RAIDController.1]\nModel=Kestrix-A1\n"}) {
        expectFault(content, "", block, 1, 0);
    }
    test::FakePlatform platform;
    Application application(platform);
    IniFile missing(platform.fileFake, "absent.ini", true);
    ControllerList list;
    EXPECT_FALSE(list.initialize(missing, application.report()));
    EXPECT_EQ(platform.consoleFake.output, block);
}

TEST(Inventory, AControllerWithoutAModelFails) {
    const std::string shown =
        "ReadString for section='RAIDController.1', item='Model' returned value=\n";
    expectFault(inventoryOf("1"), "", shown, 2, 0);
    expectFault(inventoryOf("1") + "[RAIDController.1]\nBIOSVersion=1\n", "", shown, 2, 0);
    expectFault(inventoryOf("1") + controller(1, ""), "", shown, 2, 0);
    expectFault(inventoryOf("1") + controller(1, " \t"), "", shown, 2, 0);
    expectFault(inventoryOf("1") + controller(2, "Kestrix-A1"), "", shown, 2, 0);
    // The controllers before it stay.
    expectFault(inventoryOf("3") + controller(1, "Kestrix-A1") + controller(3, "Kestrix-A1"),
                processing(1, 1),
                "ReadString for section='RAIDController.2', item='Model' returned value=\n", 2, 1);
}

TEST(Inventory, AModelThatIsUnknownFails) {
    const std::string block =
        "\n#### ERROR\n\tNon-supported Controller Found in Inventory File\n\n";
    const std::string log = "Non-supported Controller Found in Inventory File\n";
    for (const char* model : {"Kestrix-Z9", "kestrix-a1", "ERROR-NO-CONTROLLER", "12"}) {
        expectFault(inventoryOf("1") + controller(1, model), processing(-1, -1), block, 3, 0, log);
    }
    // A name that has a subtype but no type.
    expectFault(inventoryOf("1") + controller(1, "LSI-MegaRAID"), processing(-1, 12), block, 3, 0,
                log);
    expectFault(inventoryOf("2") + controller(1, "Kestrix-D4") + controller(2, "x"),
                processing(12, 14) + processing(-1, -1), block, 3, 1, log);
}

TEST(Inventory, ADriveWithoutAChannelFails) {
    const std::string start = inventoryOf("1") + controller(1, "Kestrix-A8");
    expectFault(start + drives(1, "1", "ID.1=0\nSize.1=1\n"), processing(2, -1),
                "ReadInteger for section='RAIDController.1.Physical', item='Channel.1' "
                "returned Drive channel=-1\n",
                4, 1);
    expectFault(start + drives(1, "1", "Channel.1=-7\nID.1=0\nSize.1=1\n"), processing(2, -1),
                "ReadInteger for section='RAIDController.1.Physical', item='Channel.1' "
                "returned Drive channel=-7\n",
                4, 1);
    // The number of drives is believed: the second is missing.
    expectFault(start + drives(1, "2147483647", "Channel.1=1\nID.1=0\nSize.1=1\n"),
                processing(2, -1),
                "ReadInteger for section='RAIDController.1.Physical', item='Channel.2' "
                "returned Drive channel=-1\n",
                4, 1);
}

TEST(Inventory, ADriveWithoutAnIdFails) {
    const std::string start = inventoryOf("1") + controller(1, "Kestrix-A8");
    expectFault(start + drives(1, "1", "Channel.1=1\nSize.1=1\n"), processing(2, -1),
                "ReadInteger for section='RAIDController.1.Physical', item='ID.1' "
                "returned Drive id=-1\n",
                5, 1);
    expectFault(start + drives(1, "1", "Channel.1=1\nID.1=-3\nSize.1=1\n"), processing(2, -1),
                "ReadInteger for section='RAIDController.1.Physical', item='ID.1' "
                "returned Drive id=-3\n",
                5, 1);
}

TEST(Inventory, ADriveWithoutASizeFails) {
    const std::string shown =
        "ReadString for section='RAIDController.1.Physical', item='Size.1' returned value=\n";
    const std::string start = inventoryOf("1") + controller(1, "Kestrix-A8");
    expectFault(start + drives(1, "1", "Channel.1=1\nID.1=0\n"), processing(2, -1), shown, 6, 1);
    expectFault(start + drives(1, "1", "Channel.1=1\nID.1=0\nSize.1= \n"), processing(2, -1), shown,
                6, 1);
}

TEST(Inventory, MoreThanThirtySixControllersFail) {
    std::string content;
    for (int n = 1; n <= 37; ++n) {
        content += controller(n, "Kestrix-A1");
    }
    const std::string block =
        "\n#### ERROR\n\tMore than 36 controllers found in Inventory File\n\n";
    expectFault(inventoryOf("37") + content, "", block, 7, 0);
    expectFault(inventoryOf("2147483647") + content, "", block, 7, 0);
    expectFault(inventoryOf("99999999999999999999") + content, "", block, 7, 0);
    const Reading most(inventoryOf("36") + content);
    EXPECT_TRUE(most.result);
    EXPECT_EQ(most.list.count(), 36U);
    EXPECT_NE(most.list.controller(35), nullptr);
    EXPECT_EQ(most.list.controller(36), nullptr);
}

TEST(Inventory, ADrivePositionOutOfRangeFails) {
    struct Position {
        const char* channel;
        const char* id;
    };
    const std::string start = inventoryOf("1") + controller(1, "Kestrix-A8");
    for (const Position& position : {Position{"5", "0"}, Position{"1", "36"}, Position{"5", "36"},
                                     Position{"2147483647", "2147483647"}}) {
        expectFault(start + drives(1, "1",
                                   std::string("Channel.1=") + position.channel +
                                       "\nID.1=" + position.id + "\nSize.1=1\n"),
                    processing(2, -1),
                    std::string("\n#### ERROR\n\tDrive position out of range in Inventory File:  "
                                "channel=") +
                        position.channel + ", id=" + position.id + "\n\n",
                    8, 1);
    }
    for (const Position& position :
         {Position{"0", "0"}, Position{"0", "35"}, Position{"4", "0"}, Position{"4", "35"}}) {
        const Reading run(start + drives(1, "1",
                                         std::string("Channel.1=") + position.channel +
                                             "\nID.1=" + position.id + "\nSize.1=77\n"));
        EXPECT_TRUE(run.result);
        EXPECT_EQ(run[0].size(std::stoi(position.channel), std::stoi(position.id)), 77);
        EXPECT_EQ(run[0].numberOfDrives(), position.channel[0] == '0' ? 0 : 1);
    }
}

TEST(Inventory, SizesAreLeadingIntegers) {
    struct Row {
        const char* text;
        std::int32_t size;
        std::int32_t drives;
    };
    constexpr Row rows[] = {
        {"69618", 69618, 1}, {"abc", 0, 1}, {"0", 0, 1},  {"  12 MB", 12, 1},
        {"+7", 7, 1},        {"-5", -5, 1}, {"1x", 1, 1}, {"4294967295", 2147483647, 1},
        {"-1", -1, 0},
    };
    for (const Row& row : rows) {
        const Reading run(
            inventoryOf("1") + controller(1, "Kestrix-A8") +
            drives(1, "1", "Channel.1=1\nID.1=0\nSize.1=" + std::string(row.text) + "\n"));
        EXPECT_TRUE(run.result) << row.text;
        EXPECT_EQ(run[0].size(1, 0), row.size) << row.text;
        EXPECT_EQ(run[0].numberOfDrives(), row.drives) << row.text;
    }
}

TEST(Inventory, ArrayMembersNeverChangeTheResult) {
    const std::string start = inventoryOf("1") + controller(1, "Kestrix-C2") +
                              drives(1, "1", "Channel.1=1\nID.1=0\nSize.1=10\nType.1=SAS\n");
    const std::string header = "[RAIDController.1.Array]\n";
    for (const std::string& arrays :
         {std::string(), header, header + "Total_Number_Of_Arrays=2\n",
          header + "Total_Number_Of_Arrays=2\nMembers.1=1:0,1:1\nMembers.2=\n",
          header + "Total_Number_Of_Arrays=-1\nMembers.1=9:99\n",
          header + "Total_Number_Of_Arrays=abc\n",
          // A number that no file holds takes no time that no file asks for.
          header + "Total_Number_Of_Arrays=2147483647\nMembers.1=x\n"}) {
        const Reading run(start + arrays);
        EXPECT_TRUE(run.result) << arrays;
        EXPECT_EQ(run.output, entering + processing(12, 3) + scanOrders + exitingTrue) << arrays;
        ASSERT_EQ(run.list.count(), 1U);
        EXPECT_EQ(run[0].captured(), nullptr);
        EXPECT_EQ(run[0].numberOfDrives(), 1);
        EXPECT_FALSE(run[0].isUsed(1, 0));
    }
}

TEST(Inventory, NumbersHaveNoLeadingZeros) {
    expectFault(inventoryOf("1") + "[RAIDController.01]\nModel=Kestrix-A1\n", "",
                "ReadString for section='RAIDController.1', item='Model' returned value=\n", 2, 0);
    std::string content = inventoryOf("12");
    for (int n = 1; n <= 12; ++n) {
        content += controller(n, n < 10 ? "Kestrix-A1" : "Kestrix-C1");
    }
    const Reading run(content);
    ASSERT_TRUE(run.result);
    EXPECT_EQ(run[8].type(), 1);
    EXPECT_EQ(run[9].type(), 12);
    EXPECT_EQ(run[11].type(), 12);
}

TEST(Inventory, ALaterDriveAtTheSamePositionReplacesTheSize) {
    const Reading run(inventoryOf("1") + controller(1, "Kestrix-A8") +
                      drives(1, "2",
                             "Channel.1=1\nID.1=0\nSize.1=10\nType.1=SCSI\n"
                             "Channel.2=1\nID.2=0\nSize.2=20\n"));
    ASSERT_TRUE(run.result);
    EXPECT_EQ(run[0].numberOfDrives(), 1);
    EXPECT_EQ(run[0].size(1, 0), 20);
    EXPECT_TRUE(*run[0].driveType(1, 0) == "SCSI");
}

TEST(Inventory, EveryModelOfTheCatalogueCanStandInIt) {
    const ControllerCatalogue catalogue;
    for (std::int32_t type = 1; type <= 12; ++type) {
        for (std::int32_t subtype = -1; subtype <= 15; ++subtype) {
            const CString model = catalogue.getControllerName(type, subtype);
            const Reading run(inventoryOf("1") + controller(1, model.c_str()));
            EXPECT_EQ(run.result, !(model == "LSI-MegaRAID")) << model.view();
            if (run.result) {
                EXPECT_EQ(run[0].type(), catalogue.getControllerType(model));
                EXPECT_EQ(run[0].subtype(), catalogue.getControllerSubtype(model));
            }
        }
    }
}

/// Changes one place of the text.
void change(std::string& content, std::mt19937& random) {
    const std::size_t at = random() % content.size();
    const std::size_t number = content.find_first_of("0123456789", random() % content.size());
    switch (random() % 4) {
    case 0:
        content[at] = static_cast<char>(random() % 256);
        break;
    case 1:
        if (number != std::string::npos) {
            content.replace(number, 1, std::to_string(random() % 99));
        }
        break;
    case 2:
        content.erase(at, 1 + random() % 20);
        break;
    default:
        content.insert(at, content.substr(random() % content.size(), 1 + random() % 30));
        break;
    }
}

TEST(Inventory, AnyChangeOfAFileEndsInTrueOrInOneReportedFault) {
    const std::string valid =
        inventoryOf("2") + controller(1, "Kestrix-C1") + "BIOSVersion=1\nFirmwareVersion=2\n" +
        "[RAIDController.1.Array]\nTotal_Number_Of_Arrays=1\nMembers.1=1\n" +
        drives(1, "2",
               "Channel.1=1\nID.1=0\nSize.1=10\nType.1=SAS\nChannel.2=2\nID.2=9\nSize.2=20\n") +
        controller(2, "Kestrix-A8") + drives(2, "1", "Channel.1=4\nID.1=35\nSize.1=1\n");
    std::mt19937 random(36144);
    std::vector<int> seen(9);
    for (int run = 0; run < 2000; ++run) {
        std::string content = valid;
        for (std::size_t edits = 1 + random() % 4; edits > 0; --edits) {
            change(content, random);
        }
        const Reading result(content);
        if (result.result) {
            ++seen[0];
            EXPECT_TRUE(result.output.ends_with(exitingTrue));
            EXPECT_GE(result.list.count(), 1U);
            EXPECT_LE(result.list.count(), 36U);
            EXPECT_EQ(result.output.find("returning false"), std::string::npos);
        } else {
            int exits = 0;
            for (int n = 1; n <= 8; ++n) {
                const bool ended = result.output.ends_with(exitingFalse(n));
                exits += ended ? 1 : 0;
                seen[static_cast<std::size_t>(n)] += ended ? 1 : 0;
            }
            EXPECT_EQ(exits, 1) << result.output;
        }
    }
    // The changes reach every exit.
    for (std::size_t n = 0; n < seen.size(); ++n) {
        EXPECT_GT(seen[n], 0) << n;
    }
}

} // namespace
} // namespace zolex
