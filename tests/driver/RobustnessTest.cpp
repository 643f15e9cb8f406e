// Whatever bytes the inputs hold, a run ends by itself with a documented exit code.

#include "support/ModeRun.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace zolex {
namespace {

bool isDocumented(int exitCode) {
    constexpr std::array<int, 11> codes = {0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11};
    return std::find(codes.begin(), codes.end(), exitCode) != codes.end();
}

class Chaos {
  public:
    explicit Chaos(unsigned seed) : random_(seed) {}

    std::size_t number(std::size_t below) { return random_() % below; }

    /// Random bytes, or `text` with some bytes changed, dropped, doubled or cut off.
    std::string spoil(std::string text) {
        if (number(8) == 0) {
            text.clear();
            for (std::size_t n = number(600); n > 0; --n) {
                text += static_cast<char>(number(256));
            }
            return text;
        }
        for (std::size_t n = number(12); n > 0 && !text.empty(); --n) {
            const std::size_t at = number(text.size());
            switch (number(5)) {
            case 0:
                text[at] = static_cast<char>(number(256));
                break;
            case 1:
                text.erase(at, number(40));
                break;
            case 2:
                text.insert(at, text.substr(at, number(80)));
                break;
            case 3:
                text.insert(at, std::string(number(400), text[at]));
                break;
            default:
                text.resize(at);
            }
        }
        return text;
    }

  private:
    std::mt19937 random_;
};

const std::string policies = "; comment\n[Policy.x]\nAppliesTo.1 = t:LSI-MegaRAID-8480,d:5\n"
                             "AppliesTo.2 = ALL\nStripeSize = 64\nRebuildRate = LOW\n"
                             "ReadAhead = ON\nInit = BUILD\nArray_Defaults = 10%:1\n"
                             "Array_Mode = CUSTOM\nArray.A = 1,2\nArray.B = ALL\nHotspares = 3\n"
                             "Logical_Mode = CUSTOM\nLogical.1 = A:50%:1:ON\n"
                             "Logical.2 = B:FILL:AUTO\n[Policy.y]\nAppliesTo.1 = c:1\n"
                             "Logical_Defaults = 100%:AUTO:AUTO\n";

TEST(RobustnessTest, PoliciesFile) {
    Chaos chaos(1);
    for (int round = 0; round < 1500; ++round) {
        test::ModeRun run;
        run.addMegaRaid();
        run.platform.fileFake.files["p.ini"] = chaos.spoil(policies);
        EXPECT_TRUE(isDocumented(run.run({"/f:p.ini", round % 3 == 0 ? "/v:9" : "/v:3"})));
    }
}

TEST(RobustnessTest, PoliciesFileThatIsCapturedInto) {
    Chaos chaos(2);
    for (int round = 0; round < 500; ++round) {
        test::ModeRun run;
        run.addMegaRaid();
        run.driveList = test::readTestData("megacli-pdlist-early.txt");
        run.configurationList = test::readTestData("megacli-ldpdinfo-early.txt");
        const std::string before = chaos.spoil(policies);
        run.platform.fileFake.files["p.ini"] = before;
        const int exitCode = run.run({"/c", "/f:p.ini"});
        EXPECT_TRUE(exitCode == 0 || exitCode == 9);
        // What stood there before stays.
        EXPECT_TRUE(run.platform.fileFake.files["p.ini"].starts_with(before));
        EXPECT_EQ(exitCode == 9, run.platform.fileFake.files["p.ini"] == before);
    }
}

TEST(RobustnessTest, InventoryFile) {
    const std::string inventory =
        "[System]\nTotal_Number_Of_Controllers=2\nmachType=1\nserial=2\n[RAIDController.1]\n"
        "Model=Kestrix-C1\nBIOSVersion=1\nFirmwareVersion=2\n[RAIDController.1.Array]\n"
        "Total_Number_Of_Arrays=1\nMembers.1=x\n[RAIDController.1.Physical]\n"
        "Total_Number_Of_Physicals=2\nChannel.1=1\nID.1=0\nSize.1=70000\nType.1=SAS\n"
        "Channel.2=1\nID.2=1\nSize.2=70000\n[RAIDController.2]\nModel=LSI-SAS-RAID\n";
    Chaos chaos(3);
    for (int round = 0; round < 1000; ++round) {
        test::ModeRun run;
        run.platform.fileFake.files["contlist.ini"] = chaos.spoil(inventory);
        EXPECT_TRUE(isDocumented(run.run({"/fake", "/d", "/v:9", "/debug"})));
    }
}

TEST(RobustnessTest, InventoryFileWithHugeCounts) {
    for (const char* key : {"Total_Number_Of_Arrays", "Total_Number_Of_Physicals"}) {
        test::ModeRun run;
        run.platform.fileFake.files["contlist.ini"] =
            std::string("[System]\nTotal_Number_Of_Controllers=1\n[RAIDController.1]\n"
                        "Model=Kestrix-C1\n[RAIDController.1.Array]\n") +
            key + "=2147483647\n[RAIDController.1.Physical]\n" + key + "=2147483647\n";
        EXPECT_TRUE(isDocumented(run.run({"/fake", "/d"})));
    }
}

TEST(RobustnessTest, DefinitionFile) {
    const std::string definition = "[Controller.0]\nType=12\nSubType=2\nC1S0=70000\nC1S1=70000\n"
                                   "C2S35=70000\n[Controller.1]\nType=10\nSubType=1\nC1S0=5\n";
    Chaos chaos(4);
    for (int round = 0; round < 1000; ++round) {
        test::ModeRun run;
        run.platform.fileFake.files["c.ini"] = chaos.spoil(definition);
        EXPECT_TRUE(isDocumented(run.run({"/controllers:c.ini", "/d", "/v:9"})));
    }
}

TEST(RobustnessTest, UtilityOutput) {
    struct Family {
        std::uint16_t vendor;
        std::uint16_t device;
        std::uint16_t subsystemVendor;
        std::uint16_t subsystem;
        const char* listing;
    };
    constexpr std::uint16_t maker = ZOLEX_MAKER_PCI_VENDOR_ID;
    const std::vector<Family> families = {
        {0x1000, 0x0411, 0x1000, 0x1002, "megacli-pdlist-later.txt"},
        {0x9005, 0x0286, 0, 0, "arcconf-getconfig-segments.txt"},
        {0x9005, 0x0285, maker, 0x034D, "arcconf-getconfig-plain.txt"},
        {0x9005, 0x808F, 0, 0, "arcconf-getconfig-plain.txt"},
        {0x1000, 0x0050, 0, 0, "cfggen-display.txt"},
        {0x1000, 0x0030, 0, 0, "cfggen-display.txt"},
        {maker, 0x002E, 0, 0, "cfggen-display.txt"},
        {0x1166, 0x0213, 0, 0, "cfggen-display.txt"},
    };
    Chaos chaos(5);
    for (const Family& family : families) {
        const std::string listing = test::readTestData(family.listing);
        const std::string layout = test::readTestData("megacli-ldpdinfo-later.txt");
        for (int round = 0; round < 150; ++round) {
            test::ModeRun run;
            run.addDevice(family.vendor, family.device, family.subsystemVendor, family.subsystem);
            run.driveList = chaos.spoil(listing);
            run.configurationList = chaos.spoil(layout);
            run.adapterList = chaos.spoil(run.adapterList);
            const std::string spoiled = chaos.spoil(listing);
            run.respond = [&spoiled](const std::string&) {
                return test::FakePlatform::ended(0, spoiled);
            };
            const bool capture = round % 2 == 0;
            EXPECT_TRUE(
                isDocumented(capture ? run.run({"/c", "/f:p.ini", round % 3 == 0 ? "/v:9" : "/v:3"})
                                     : run.run({"/d", round % 3 == 0 ? "/v:9" : "/v:3"})));
        }
    }
}

TEST(RobustnessTest, HardwareDetectorOutput) {
    Chaos chaos(6);
    for (int round = 0; round < 300; ++round) {
        test::ModeRun run;
        run.addMegaRaid();
        run.hardware = chaos.spoil("Machine_Type = 8837\r\nSerial_Number=KQ12345\n");
        EXPECT_TRUE(isDocumented(run.run({"/d"})));
    }
}

} // namespace
} // namespace zolex
