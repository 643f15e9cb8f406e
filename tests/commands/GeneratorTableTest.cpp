#include "commands/ARCCommands.h"
#include "commands/CFGGENCommands.h"
#include "commands/GeneratorFixture.h"
#include "commands/HRCommands.h"
#include "commands/HYPERWINCommands.h"
#include "commands/MEGAWinCommands.h"
#include "commands/QTCSENDCommands.h"

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
    FakePlatform platform;
    Application application(platform);
    for (const Row& row : rows) {
        const GeneratorEntry* entry = findGenerator(row.type);
        ASSERT_NE(entry, nullptr) << row.type;
        EXPECT_EQ(entry->controllerType, row.type);
        EXPECT_STREQ(entry->creationTrace, row.trace);
        const std::unique_ptr<CommandGenerator> generator = entry->create(application);
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
    for (std::int32_t run = 0; run < 2; ++run) {
        makeController(controller_type::family, 1, run + 1);
        for (std::int32_t i = 0; i < 8; ++i) {
            addArrayOf(1, 1, i);
            addLogicalDrive(i, raid_level::raid0);
        }
        addHotspare(1, 10);
        addHotspare(1, 11);
        EXPECT_TRUE(generate());
    }
    const Lines fetched = lines();
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
        Application fresh(platform);
        const GeneratorEntry* entry = findGenerator(row.type);
        ASSERT_NE(entry, nullptr);
        for (std::int32_t number = 1; number <= 4; ++number) {
            makeLargestPlan(row.type, number);
            const std::unique_ptr<CommandGenerator> generator = entry->create(fresh);
            generator->start(controller, number, fresh.catalogue().getUtilityCommand(row.type));
            EXPECT_TRUE(generator->generate()) << row.type << " " << number;
        }
        EXPECT_EQ(output(), "") << row.type;
        EXPECT_FALSE(fresh.commands().add("one more")) << row.type;
        ASSERT_NE(fresh.commands().get(15), nullptr);
        EXPECT_EQ(fresh.commands().get(0)->view(), row.first);
        EXPECT_EQ(fresh.commands().get(15)->view(), row.sixteenth);
        EXPECT_EQ(fresh.commands().get(16), nullptr);
    }
}

TEST_F(FullCommandList, LinesThatFindItFullLeaveEveryTraceInItsPlace) {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        Application fresh(platform);
        fresh.printer().setVerbosity(level::traces);
        const GeneratorEntry* entry = findGenerator(type);
        ASSERT_NE(entry, nullptr);
        const std::unique_ptr<CommandGenerator> generator = entry->create(fresh);
        const auto tracesOfGenerating = [&] {
            makeLargestPlan(type, 1);
            generator->start(controller, 1, fresh.catalogue().getUtilityCommand(type));
            EXPECT_TRUE(generator->generate()) << type;
            return output();
        };
        const std::string whileThereIsRoom = tracesOfGenerating();
        while (fresh.commands().add("earlier")) {
        }
        EXPECT_EQ(tracesOfGenerating(), whileThereIsRoom) << type;
        EXPECT_EQ(whileThereIsRoom.find("#### ERROR"), std::string::npos) << type;
    }
}

} // namespace
} // namespace zolex::test
