#include "companion/commands/LossText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion {
namespace {

Loss volumeLoss(const std::string& id, const std::string& name, const std::string& device) {
    Loss loss;
    loss.controller = 1;
    loss.kind = "logical_drive";
    loss.id = id;
    loss.raidType = "RAID1";
    loss.drives = {"252:0", "252:1"};
    loss.capacityBytes = 1000000000000;
    loss.name = name;
    loss.device = device;
    return loss;
}

TEST(LossText, NamesStandBesideTheDrivesWhereThereIsRoom) {
    EXPECT_EQ(
        lossLines({volumeLoss("239", "system", "/dev/sda"), volumeLoss("8", "", "/dev/sdb")}, {}),
        "  - LD 239  RAID1  931.3 GB  252:0 252:1  \"system\", /dev/sda  controller 1\n"
        "  - LD 8    RAID1  931.3 GB  252:0 252:1  /dev/sdb            controller 1\n");
}

TEST(LossText, NamesStandBelowWhereALineHasNoRoomForThem) {
    EXPECT_EQ(lossLines({volumeLoss("239", "system", "/dev/sda"),
                         volumeLoss("8", "a-name-of-many-letters", "/dev/disk/by-id/sdb"),
                         volumeLoss("7", "", "")},
                        {}),
              R"(  - LD 239  RAID1  931.3 GB  252:0 252:1  controller 1
      "system", /dev/sda
  - LD 8    RAID1  931.3 GB  252:0 252:1  controller 1
      "a-name-of-many-letters", /dev/disk/by-id/sdb
  - LD 7    RAID1  931.3 GB  252:0 252:1  controller 1
)");
}

} // namespace
} // namespace zolex::companion
