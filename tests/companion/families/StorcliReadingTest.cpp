// Whole listings, read as a person reads them.

#include "companion/families/StorcliListings.h"

namespace zolex::companion {
namespace {

using namespace test; // NOLINT: the words of these tests

constexpr const char* ssd = " \"ATA\" \"NVS960-D\" N101 SATA SSD 959656755200 of 512 ";
constexpr const char* hdd = " \"NORVIK\" \"NV8000SAS12\" N101 SAS HDD 8001558806528 of 512 ";

std::string drive(const std::string& location, const std::string& serial, const char* kind,
                  const std::string& rest) {
    return location + " " + serial + kind + rest;
}

TEST(StorcliReading, TheDrivesOfAServer) {
    const Lines wanted = {
        drive("252:0", "NV004100", ssd, "Onln member ok errors 0 0 0 C 24 wwn 500AAA0000004200"),
    };
    StorcliServer server;
    const FamilyController controller = server.controller();
    EXPECT_EQ(describeAll(controller.facts.drives), wanted);
    EXPECT_EQ(describeAll(controller.facts.logicalDrives), Lines());
    EXPECT_EQ(findingsOf(controller.findings), Lines());
    EXPECT_EQ(server.calls, Lines());
}

} // namespace
} // namespace zolex::companion
