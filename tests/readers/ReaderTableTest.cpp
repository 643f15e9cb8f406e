#include "driver/Application.h"
#include "readers/ARCReader.h"
#include "readers/ConfigurationReader.h"
#include "readers/HRReader.h"
#include "readers/IDEReader.h"
#include "readers/KXReader.h"
#include "readers/MEGAReader.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <typeinfo>

namespace zolex::test {
namespace {

struct Expected {
    std::int32_t type;
    const char* creationTrace;
    const std::type_info& reader;
};

TEST(ReaderTableTest, EveryTypeHasItsReader) {
    FakePlatform platform;
    Application application(platform);
    const Expected rows[] = {
        {1, "Creating KXReader\n", typeid(KXReader)},
        {2, "Creating ARCReader\n", typeid(ARCReader)},
        {3, "Creating HRReader\n", typeid(HRReader)},
        {4, "Creating HRReader\n", typeid(HRReader)},
        {5, "Creating KXReader\n", typeid(KXReader)},
        {6, "Creating IDEReader\n", typeid(IDEReader)},
        {7, "Creating ARCReader\n", typeid(ARCReader)},
        {8, "Creating HRReader\n", typeid(HRReader)},
        {9, "Creating HRReader\n", typeid(HRReader)},
        {10, "Creating KXReader\n", typeid(KXReader)},
        {11, "Creating ARCReader\n", typeid(ARCReader)},
        {12, "Creating MEGAReader\n", typeid(MEGAReader)},
    };
    for (const Expected& row : rows) {
        const ReaderEntry* entry = findReader(row.type);
        ASSERT_NE(entry, nullptr) << row.type;
        EXPECT_EQ(entry->controllerType, row.type);
        EXPECT_STREQ(entry->creationTrace, row.creationTrace) << row.type;
        const auto reader = entry->create({}, application.report());
        ASSERT_NE(reader, nullptr);
        const ConfigurationReader& created = *reader;
        EXPECT_EQ(std::string(typeid(created).name()), row.reader.name()) << row.type;
    }
    EXPECT_EQ(platform.consoleFake.output, "");
}

TEST(ReaderTableTest, OtherTypesHaveNone) {
    for (const std::int32_t type : {-1, 0, 13, 100, std::numeric_limits<std::int32_t>::min(),
                                    std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(findReader(type), nullptr) << type;
    }
}

} // namespace
} // namespace zolex::test
