#include "commands/ARCCommands.h"
#include "commands/CFGGENCommands.h"
#include "commands/GeneratorFixture.h"
#include "commands/HRCommands.h"
#include "commands/HYPERWINCommands.h"
#include "commands/MEGAWinCommands.h"
#include "commands/QTCSENDCommands.h"
#include "driver/CommandList.h"

#include <typeinfo>

namespace zolex::test {
namespace {

TEST(GeneratorTable, EveryTypeHasTheGeneratorOfItsUtility) {
    struct Row {
        std::int32_t type;
        const std::type_info& generator;
        const char* trace;
    };
    const Row rows[] = {
        {1, typeid(QTCSENDCommands), "Creating QTCSENDCommands\n"},
        {2, typeid(ARCCommands), "Creating ARCCommands\n"},
        {3, typeid(HRCommands), "Creating HRCommands\n"},
        {4, typeid(HRCommands), "Creating HRCommands\n"},
        {5, typeid(CFGGENCommands), "Creating CFGGENCommands\n"},
        {6, typeid(HYPERWINCommands), "Creating HYPERWINCommands\n"},
        {7, typeid(ARCCommands), "Creating ARCCommands\n"},
        {8, typeid(HRCommands), "Creating HRCommands\n"},
        {9, typeid(HRCommands), "Creating HRCommands\n"},
        {10, typeid(CFGGENCommands), "Creating CFGGENCommands\n"},
        {11, typeid(ARCCommands), "Creating ARCCommands\n"},
        {12, typeid(MEGAWinCommands), "Creating MEGAWinCommands\n"},
    };
    const RAIDController controller;
    const RAIDConfiguration layout;
    const CommandStyle style;
    SilentReport report;
    for (const Row& row : rows) {
        const GeneratorEntry* entry = findGenerator(row.type);
        ASSERT_NE(entry, nullptr) << row.type;
        EXPECT_EQ(entry->controllerType, row.type);
        EXPECT_STREQ(entry->creationTrace, row.trace);
        const std::unique_ptr<CommandGenerator> generator =
            entry->create({controller, 1, layout, style, report});
        ASSERT_NE(generator, nullptr);
        const CommandGenerator& made = *generator;
        EXPECT_TRUE(typeid(made) == row.generator) << row.type;
    }
}

TEST(GeneratorTable, OtherTypesHaveNone) {
    for (const std::int32_t type : {-1, 0, 13, 2147483647}) {
        EXPECT_EQ(findGenerator(type), nullptr) << type;
    }
}

using GeneratorsTogether = GeneratorFixture;

TEST_F(GeneratorsTogether, AppendToOneListOfWhichSixteenCanBeFetched) {
    CommandList list;
    for (std::int32_t run = 0; run < 2; ++run) {
        makeController(controller_type::family, 1, run + 1);
        for (std::int32_t i = 0; i < 8; ++i) {
            addArrayOf(1, 1, i);
            addLogicalDrive(i, raid_level::raid0);
        }
        addHotspare(1, 10);
        addHotspare(1, 11);
        EXPECT_TRUE(generate());
        keep(list);
    }
    Lines fetched;
    while (const CString* line = list.get(fetched.size())) {
        fetched.emplace_back(line->view());
    }
    ASSERT_EQ(fetched.size(), 16U);
    EXPECT_EQ(fetched[9], "UTIL.BAT QTCSEND SETSTATE 1 1 11 HSP");
    EXPECT_EQ(fetched[10], "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 0 1 0 NOPROMPT");
    EXPECT_EQ(fetched[15], "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 0 1 5 NOPROMPT");
    EXPECT_EQ(output(), "");
}

/// A plan with as many lines as the type's generator makes: eight arrays, eight hot spares and
/// both cache lines, or the one array of a type that has no more.
class FullCommandList : public GeneratorFixture {
  protected:
    void makeLargestPlan(std::int32_t type, std::int32_t scanOrder) {
        makeController(type, 1, scanOrder);
        plan().readAhead = read_ahead::off;
        const bool oneArray = type == controller_type::lsiIde;
        for (std::int32_t i = 0; i < (oneArray ? 1 : 8); ++i) {
            addArrayOf(2, 1, 2 * i);
            addLogicalDrive(i, raid_level::raid1, sizeFill, write_cache::on);
        }
        for (std::int32_t i = 0; i < (oneArray ? 0 : 8); ++i) {
            addHotspare(2, i);
        }
    }
};

TEST_F(FullCommandList, FourControllersWithMoreLinesThanItHoldsAreGeneratedWithoutAMessage) {
    // Symptom: generating for the controller whose lines passed the thirty-second printed "More
    // than 32 configuration commands were generated." and failed, so that a deploy run ended with
    // 11 although it never runs more than sixteen commands.
    struct Row {
        std::int32_t type;
        const char* first;
        const char* sixteenth;
    };
    // clang-format off
    const Row rows[] = {
        {1,  "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 1 1 0 1 1 NOPROMPT",
             "UTIL.BAT QTCSEND SETSTATE 1 2 7 HSP"},
        {4,  "UTIL.BAT HRCONF CREATE 1 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Init_Priority HIGH "
             "Init_Method QUICK MAX 1 0 0 0 1 NOPROMPT ",
             "UTIL.BAT HRCONF SETSTATE 1 DEVICE 1 7 HSP noprompt"},
        {7,  "UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method QUICK "
             "MAX 1 0 0 0 1 NOPROMPT ",
             "UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY5_LOGICAL5 Method QUICK "
             "MAX 1 0 10 0 11 NOPROMPT "},
        {10, "UTIL.BAT CFGGEN 0 CREATE IM MAX 1:0 1:1 qsync NOPROMPT",
             "UTIL.BAT CFGGEN 0 HOTSPARE 2:7 "},
        {12, "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ -1:0,-1:1 ]   WB   NORA   -strpsz 64  -a0",
             "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ -1:12,-1:13 ]   WB   NORA   -strpsz 64  -a1"},
    };
    // clang-format on
    for (const Row& row : rows) {
        CommandList list;
        std::size_t made = 0;
        for (std::int32_t number = 1; number <= 4; ++number) {
            makeLargestPlan(row.type, number);
            EXPECT_TRUE(generate()) << row.type << " " << number;
            keep(list);
            made += lines().size();
        }
        EXPECT_EQ(output(), "") << row.type;
        EXPECT_GT(made, CommandList::slots) << row.type;
        EXPECT_FALSE(list.add("one more")) << row.type;
        ASSERT_NE(list.get(15), nullptr);
        EXPECT_EQ(list.get(0)->view(), row.first);
        EXPECT_EQ(list.get(15)->view(), row.sixteenth);
        EXPECT_EQ(list.get(16), nullptr);
    }
}

TEST_F(FullCommandList, IsNoLimitOfTheLinesThatAreMade) {
    CommandList list;
    for (std::int32_t number = 1; number <= 3; ++number) {
        makeLargestPlan(controller_type::arcconf7, number);
        EXPECT_TRUE(generate());
        keep(list);
        // A line and two for the caches for each of eight drives, and eight hot spares.
        ASSERT_EQ(lines().size(), 32U) << number;
        EXPECT_EQ(lines().back(),
                  "UTIL.BAT ARCCONF SETSTATE " + std::to_string(number) + " DEVICE 1 7 HSP");
    }
    EXPECT_FALSE(list.add("one more"));
}

TEST_F(FullCommandList, GeneratingTwiceGivesEqualLinesAndTracesAndLeavesTheArguments) {
    showTraces();
    style.pathPrefix = "C:\\R\\";
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        makeLargestPlan(type, 1);
        ASSERT_EQ(plan().stripeSize, stripe::none);
        const RAIDController record = controller;
        const CommandStyle given = style;
        EXPECT_TRUE(generate()) << type;
        const CommandLines first = generated;
        const std::string traces = output();
        EXPECT_TRUE(generate()) << type;
        EXPECT_EQ(generated, first) << type;
        EXPECT_EQ(output(), traces) << type;
        EXPECT_EQ(controller, record) << type;
        EXPECT_EQ(style, given) << type;
        EXPECT_FALSE(first.lines.empty()) << type;
        EXPECT_EQ(traces.find("#### ERROR"), std::string::npos) << type;
    }
}

TEST_F(FullCommandList, ALayoutIsTakenFromTheArgumentAndNotFromTheRecord) {
    makeLargestPlan(controller_type::megaRaid, 1);
    const RAIDConfiguration layout = plan();
    EXPECT_TRUE(generate());
    const CommandLines first = generated;
    controller.setCaptured(RAIDConfiguration());
    EXPECT_EQ(commandLines(controller, 4, layout, style, report), first);
}

} // namespace
} // namespace zolex::test
