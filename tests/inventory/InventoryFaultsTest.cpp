#include "foundation/IniFile.h"
#include "inventory/ControllerList.h"
#include "inventory/ZOLEXSupport.h"
#include "model/RAIDController.h"
#include "readers/DiskInformation.h"
#include "support/FakePlatform.h"
#include "support/FaultList.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace zolex::test {
namespace {

/// The faults of an inventory file that holds `content`.
std::vector<Fault> faultsOf(const std::string& content) {
    FakePlatform platform;
    platform.fileFake.files["contlist.ini"] = content;
    IniFile inventory(platform.fileFake, "contlist.ini", true);
    FaultList report;
    ControllerList controllers;
    EXPECT_FALSE(controllers.initialize(inventory, report));
    return report.faults;
}

// The texts stand in the tests of the inventory.
TEST(InventoryFaults, OfTheNumberOfControllersNameItsEntryAndTheRange) {
    for (const auto& [count, kind] : {std::pair{0, FaultKind::inventoryWithoutControllers},
                                      std::pair{37, FaultKind::inventoryTooManyControllers}}) {
        Fault fault;
        fault.kind = kind;
        fault.place.file = "contlist.ini";
        fault.place.section = "System";
        fault.place.keyword = "Total_Number_Of_Controllers";
        fault.number = count;
        fault.possible = "1 to 36";
        EXPECT_EQ(faultsOf("[System]\nTotal_Number_Of_Controllers=" + std::to_string(count) + "\n"),
                  std::vector<Fault>{fault});
    }
}

TEST(InventoryFaults, OfAPositionNameItsEntryAndTheRanges) {
    Fault fault;
    fault.kind = FaultKind::inventoryPositionInvalid;
    fault.place.file = "contlist.ini";
    fault.place.section = "RAIDController.1.Physical";
    fault.place.keyword = "Channel.1";
    fault.place.channel = 5;
    fault.place.id = 36;
    fault.possible = "channel 0 to 4, id 0 to 35";
    EXPECT_EQ(faultsOf("[System]\nTotal_Number_Of_Controllers=1\n"
                       "[RAIDController.1]\nModel=Kestrix-A1\n"
                       "[RAIDController.1.Physical]\nTotal_Number_Of_Physicals=1\n"
                       "Channel.1=5\nID.1=36\nSize.1=1\n"),
              std::vector<Fault>{fault});
}

TEST(InventoryFaults, OfAModelNameTheModelsThatThereAre) {
    Fault fault;
    fault.kind = FaultKind::inventoryModelUnknown;
    fault.place.file = "contlist.ini";
    fault.place.section = "RAIDController.1";
    fault.place.keyword = "Model";
    fault.wanted = "Kestrix-A0";
    fault.possible =
        "Kestrix-A1, Kestrix-A2, Kestrix-A3, Kestrix-A4, Kestrix-A5, Kestrix-A6, Kestrix-A7, "
        "Kestrix controller, Kestrix-A8, Kestrix-A9, Kestrix-A10, LSI-SCSI-RAID, LSI-IDEal-RAID, "
        "Kestrix-B1, Kestrix-B2, Kestrix-B3, Kestrix-B4, LSI-SAS-RAID, Kestrix-B5, Kestrix-B6, "
        "LSI-SAS-1078-IR, Kestrix-B7, Kestrix-B8, LSI-MegaRAID-8480, Kestrix-C1, Kestrix-C2, "
        "Kestrix-C3, Kestrix-C4, Kestrix-C5, Kestrix-C6, Kestrix-C7, Kestrix-C8, Kestrix-C9, "
        "Kestrix-D1, Kestrix-D2, Kestrix-D3, Kestrix-D4";
    EXPECT_EQ(faultsOf("[System]\nTotal_Number_Of_Controllers=1\n"
                       "[RAIDController.1]\nModel=Kestrix-A0\n"),
              std::vector<Fault>{fault});
}

TEST(InventoryFaults, OfTheDetectorNameItsCommandLine) {
    FakePlatform platform;
    platform.results.push_back(FakePlatform::ended(7, ""));
    FaultList report;
    EXPECT_FALSE(ZOLEXSupport::gatherHardwareInfo(
        std::make_unique<Tool>(platform, report, Tool::defaultLimit), report));
    Fault fault;
    fault.kind = FaultKind::detectorFailed;
    fault.wanted = "hwdetect.exe /i";
    fault.number = 7;
    EXPECT_EQ(report.faults, std::vector<Fault>{fault});
}

TEST(ListingFaults, NameTheNumberOfTheController) {
    ControllerList controllers;
    for (const std::int32_t type : {12, 12}) {
        RAIDController controller;
        controller.setType(type);
        controllers.add(std::move(controller));
    }
    const std::vector<std::vector<std::string>> listings{{"EOF\n", "EOF\n"}, {}};
    FaultList report;
    EXPECT_FALSE(DiskInformation({}, report).readDiskInformation(controllers, listings));
    ASSERT_EQ(report.faults.size(), 1U);
    EXPECT_EQ(report.faults[0].kind, FaultKind::listingMissing);
    EXPECT_EQ(report.faults[0].place.controller, 2);
}

/// Meets a drive outside the positions.
class OutsideReader : public ConfigurationReader {
  public:
    using ConfigurationReader::ConfigurationReader;

    bool readConfiguration(RAIDController& controller, Listings /*listings*/) override {
        beginController(controller);
        return checkPosition(5, 36);
    }
};

TEST(ListingFaults, OfADriveNameTheNumberOfTheController) {
    FaultList report;
    RAIDController controller;
    EXPECT_FALSE(OutsideReader({.number = 3}, report).readConfiguration(controller, {}));
    ASSERT_EQ(report.faults.size(), 1U);
    EXPECT_EQ(report.faults[0].kind, FaultKind::listingPositionInvalid);
    EXPECT_EQ(report.faults[0].place.controller, 3);
}

} // namespace
} // namespace zolex::test
