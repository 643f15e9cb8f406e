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

} // namespace
} // namespace zolex::test
