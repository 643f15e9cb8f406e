#include "inventory/ControllerList.h"

#include "driver/Application.h"
#include "show/Dumps.h"
#include "support/FakePlatform.h"
#include "support/Scan.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex {
namespace {

constexpr std::uint16_t maker = ZOLEX_MAKER_PCI_VENDOR_ID;
constexpr const char* tracedScanOrders = "Entering ControllerList::setControllerScanOrders\n"
                                         "Exiting ControllerList::setControllerScanOrders\n";
constexpr const char* tooMany =
    "\n#### ERROR\n\tMore than 36 RAID controllers found; only the first 36 are used.\n\n";

struct Ids {
    std::uint16_t vendor;
    std::uint16_t device;
    std::uint16_t subsystemVendor = 0;
    std::uint16_t subsystem = 0;
    std::uint32_t classCode = 0x010400;
};

PciDevice device(const Ids& ids, std::uint16_t bus = 2, std::uint16_t number = 0,
                 std::uint16_t function = 0) {
    PciDevice device;
    device.vendorId = ids.vendor;
    device.deviceId = ids.device;
    device.subsystemVendorId = ids.subsystemVendor;
    device.subsystemId = ids.subsystem;
    device.classCode = ids.classCode;
    device.bus = bus;
    device.device = number;
    device.function = function;
    return device;
}

/// A machine with PCI devices, or with a controller-definition file.
class ScannedMachine {
  public:
    explicit ScannedMachine(std::int32_t verbosity = 9) : application(platform) {
        application.printer().setVerbosity(verbosity);
    }
    ScannedMachine& with(const PciDevice& pciDevice) {
        platform.devices.push_back(pciDevice);
        return *this;
    }
    /// What the initialisation prints.
    std::string initialize() {
        EXPECT_TRUE(test::scan(list, application));
        EXPECT_EQ(platform.consoleFake.error, "");
        return platform.consoleFake.takeOutput();
    }
    [[nodiscard]] const RAIDController& operator[](std::size_t i) const {
        return *list.controller(i);
    }

    test::FakePlatform platform;
    Application application;
    ControllerList list;
};

TEST(ControllerList, AFreshListIsEmpty) {
    const ControllerList list;
    EXPECT_EQ(list.count(), 0U);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(list.controller(i), nullptr);
    }
}

TEST(ControllerList, HoldsThirtySixControllers) {
    ControllerList list;
    for (std::size_t i = 0; i < 36; ++i) {
        RAIDController* added = list.add();
        ASSERT_NE(added, nullptr);
        EXPECT_EQ(list.controller(i), added);
        EXPECT_EQ(list.count(), i + 1);
    }
    EXPECT_EQ(list.add(), nullptr);
    EXPECT_EQ(list.count(), 36U);
    EXPECT_EQ(list.controller(36), nullptr);
}

// The PCI devices of the machine

TEST(ControllerList, AMachineWithoutPciDevicesHasNoControllers) {
    ScannedMachine machine;
    EXPECT_EQ(machine.initialize(), std::string("Entering ControllerList::initialize\n"
                                                "Total number of PCI devices=0\n") +
                                        tracedScanOrders + "Exiting ControllerList::initialize\n");
    EXPECT_EQ(machine.list.count(), 0U);
    EXPECT_EQ(machine.platform.children, (std::vector<std::string>{"hwdetect.exe /i"}));
}

TEST(ControllerList, FindsControllersInTheOrderOfTheirLocations) {
    ScannedMachine machine;
    machine.with(device({0x1000, 0x0060, maker, 0x0364}, 17, 31, 7))
        .with(device({0x10DE, 0x1234}, 3, 1, 0))
        .with(device({0x1000, 0x0411, 0x1000, 0x1002}, 2, 0, 0));
    machine.platform.results = {
        test::FakePlatform::ended(0, "Machine_Type = 8837\nSerial_Number=KX1\n")};
    const CString makersId = formatText("%04X", maker);
    EXPECT_EQ(machine.initialize(), "Entering ControllerList::initialize\n"
                                    "Total number of PCI devices=3\n"
                                    "Creating new RAIDController with: 2:0:0:1000:0411:1000:1002\n"
                                    " Controller Name: LSI-MegaRAID-8480, Type: 12, Subtype: 1\n"
                                    "Creating new RAIDController with: 17:31:7:1000:0060:" +
                                        std::string(makersId.view()) +
                                        ":0364\n"
                                        " Controller Name: Kestrix-C1, Type: 12, Subtype: 2\n" +
                                        tracedScanOrders + "Exiting ControllerList::initialize\n");
    ASSERT_EQ(machine.list.count(), 2U);
    EXPECT_EQ(machine[0].type(), 12);
    EXPECT_EQ(machine[0].subtype(), 1);
    EXPECT_EQ(machine[0].scanOrder(), 1);
    EXPECT_EQ(machine[0].pciFunction(), 0);
    EXPECT_TRUE(machine[0].pciLocation() == "2:0:0:1000:0411:1000:1002");
    EXPECT_EQ(machine[0].numberOfDrives(), 0);
    EXPECT_EQ(machine[1].subtype(), 2);
    EXPECT_EQ(machine[1].scanOrder(), 2);
    EXPECT_EQ(machine[1].pciFunction(), 7);
    EXPECT_EQ(machine[1].busNumber(), -1);
    EXPECT_EQ(machine[1].slotNumber(), -1);
    EXPECT_TRUE(machine.application.machine->machineType == "8837");
    EXPECT_TRUE(machine.application.machine->serialNumber == "KX1");
    EXPECT_TRUE(machine.application.machine.has_value());
}

TEST(ControllerList, PrintsNothingBelowTheTraces) {
    for (const std::int32_t verbosity : {-1, 0, 3, 5, 8}) {
        ScannedMachine machine(verbosity);
        machine.with(device({0x1000, 0x0060, maker, 0x0364}));
        EXPECT_EQ(machine.initialize(), "");
        EXPECT_EQ(machine.list.count(), 1U);
    }
}

TEST(ControllerList, DevicesOutsideTheOrderAreCountedButNotLookedAt) {
    ScannedMachine machine;
    machine.with(device({0x1000, 0x0056}, 256))
        .with(device({0x1000, 0x0056}, 3, 1))
        .with(device({0x1000, 0x0056}, 3, 32));
    EXPECT_EQ(machine.initialize(), "Entering ControllerList::initialize\n"
                                    "Total number of PCI devices=3\n"
                                    "Creating new RAIDController with: 3:1:0:1000:0056:0000:0000\n"
                                    " Controller Name: LSI-SAS-RAID, Type: 10, Subtype: -1\n" +
                                        std::string(tracedScanOrders) +
                                        "Exiting ControllerList::initialize\n");
    EXPECT_EQ(machine.list.count(), 1U);
}

TEST(ControllerList, WritesIdsAsFourLargeHexadecimalDigits) {
    ScannedMachine machine;
    machine.with(device({0x8086, 0x24DF, 0xABCD, 0x000F}, 255, 31, 0));
    machine.initialize();
    ASSERT_EQ(machine.list.count(), 1U);
    EXPECT_TRUE(machine[0].pciLocation() == "255:31:0:8086:24DF:ABCD:000F");
    EXPECT_EQ(machine[0].type(), 3);
    EXPECT_EQ(machine[0].subtype(), -1);
}

TEST(ControllerList, GoesOnWithoutTheMachineInformation) {
    ScannedMachine machine;
    machine.with(device({0x1000, 0x0056}));
    machine.platform.results = {test::FakePlatform::ended(3)};
    EXPECT_EQ(machine.initialize(), "Entering ControllerList::initialize\n"
                                    "ZOLEXSupport.gatherHardwareInfo: Return code is 3.\n"
                                    "Machine type and serial number could not be obtained.\n"
                                    "Total number of PCI devices=1\n"
                                    "Creating new RAIDController with: 2:0:0:1000:0056:0000:0000\n"
                                    " Controller Name: LSI-SAS-RAID, Type: 10, Subtype: -1\n" +
                                        std::string(tracedScanOrders) +
                                        "Exiting ControllerList::initialize\n");
    EXPECT_EQ(machine.list.count(), 1U);
    EXPECT_FALSE(machine.application.machine.has_value());
    ScannedMachine without(3);
    without.platform.results = {{ChildOutcome::notStarted, 0, ""}};
    EXPECT_EQ(without.initialize(), "ZOLEXSupport.gatherHardwareInfo:Execution failed.\n");
    EXPECT_FALSE(without.application.machine.has_value());
}

/// The type and subtype of the one device of a machine; -1, -1 when it is no controller.
std::pair<std::int32_t, std::int32_t> kindOf(const Ids& ids) {
    ScannedMachine machine;
    machine.with(device(ids));
    machine.initialize();
    if (machine.list.count() == 0) {
        return {-1, -1};
    }
    return {machine[0].type(), machine[0].subtype()};
}

using Kind = std::pair<std::int32_t, std::int32_t>;

TEST(ControllerList, RecognisesADeviceOfEveryRow) {
    PciRowCursor cursor;
    int rows = 0;
    for (PciRow row = cursor.nextPciRow(); row.type != -1; row = cursor.nextPciRow()) {
        ++rows;
        const bool generic = row.subsystemVendorId == 0xFFFF;
        const Ids ids = {row.vendorId, row.deviceId,
                         generic ? std::uint16_t{0x4242} : row.subsystemVendorId,
                         generic ? std::uint16_t{0x4343} : row.subsystemId};
        EXPECT_EQ(kindOf(ids), Kind(row.type, row.subtype)) << row.vendorId << ":" << row.deviceId;
        // No row knows these.
        EXPECT_EQ(kindOf({0xABCD, row.deviceId}), Kind(-1, -1));
        EXPECT_EQ(kindOf({row.vendorId, 0xABCD}), Kind(-1, -1));
    }
    EXPECT_EQ(rows, 35);
}

TEST(ControllerList, AnExactSubsystemDecidesAgainstAGenericRow) {
    struct Row {
        Ids ids;
        Kind kind;
    };
    const Row rows[] = {
        {{0x1000, 0x0060, maker, 0x0364}, {12, 2}},
        {{0x1000, 0x0060, maker, 0x0366}, {-1, -1}},
        {{0x1000, 0x0060, 0x1000, 0x0364}, {-1, -1}},
        {{0x9005, 0x0285, 0x9005, 0x0290}, {2, -1}},
        {{0x9005, 0x0285, maker, 0x02F2}, {7, 7}},
        {{0x9005, 0x0285, maker, 0x034D}, {7, 1}},
        {{0x9005, 0x0285, maker, 0x0290}, {-1, -1}},
        {{0x9005, 0x0285, 0x9005, 0x02F2}, {-1, -1}},
        {{0x9005, 0x0285, 0x0000, 0x0000}, {-1, -1}},
        {{0x9005, 0x0285, 0xFFFF, 0xFFFF}, {-1, -1}},
        {{0x1000, 0x0079, maker, 0x03B2}, {12, 12}},
        {{0x1000, 0x0079, maker, 0x03B4}, {12, 14}},
        {{0x1000, 0x0079, 0x1000, 0x03B2}, {12, 14}},
        {{0x1000, 0x0073, maker, 0x03B1}, {12, 8}},
        {{0x1000, 0x0073, 0x1000, 0x03B1}, {12, 10}},
        {{0x1000, 0x0411, 0x1000, 0x1001}, {-1, -1}},
        // The end marker is no controller.
        {{0x0000, 0x0000, 0xFFFF, 0xFFFF}, {-1, -1}},
        {{0x0000, 0x0000, 0x0000, 0x0000}, {-1, -1}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(kindOf(row.ids), row.kind)
            << std::hex << row.ids.vendor << ":" << row.ids.device << ":" << row.ids.subsystemVendor
            << ":" << row.ids.subsystem;
    }
}

TEST(ControllerList, TheClassTellsOneDeviceInRaidModeApart) {
    struct Row {
        std::uint32_t classCode;
        bool isController;
    };
    constexpr Row rows[] = {
        {0x010400, true},   {0x0104FF, true},   {0x010485, true},  {0x010100, false},
        {0x010500, false},  {0x000000, false},  {0x020400, false}, {0x01040000, false},
        {0x01010400, true}, {0xFF0104AA, true},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(kindOf({0x1166, 0x0213, 0, 0, row.classCode}),
                  row.isController ? Kind(6, 1) : Kind(-1, -1))
            << std::hex << row.classCode;
        // Any other device is taken whatever its class says.
        EXPECT_EQ(kindOf({0x1000, 0x0056, 0, 0, row.classCode}), Kind(10, -1));
    }
}

TEST(ControllerList, OnlyTheFirstThirtySixControllersOfTheBusAreUsed) {
    for (const unsigned found : {36U, 37U, 60U}) {
        ScannedMachine machine(3);
        for (std::uint16_t bus = 0; bus < found; ++bus) {
            machine.with(device({0x1000, 0x0079}, bus));
            machine.with(device({0x10DE, 0x0001}, bus, 1));
        }
        EXPECT_EQ(machine.initialize(), found > 36 ? tooMany : "") << found;
        EXPECT_EQ(machine.list.count(), 36U);
        EXPECT_TRUE(machine[35].pciLocation() == "35:0:0:1000:0079:0000:0000");
        EXPECT_EQ(machine[14].scanOrder(), 15);
        EXPECT_EQ(machine[15].scanOrder(), 0);
    }
}

// The controller-definition file

/// A machine whose controllers come from a definition file that holds `content`.
class Defined : public ScannedMachine {
  public:
    explicit Defined(const std::string& content, std::int32_t verbosity = 9)
        : ScannedMachine(verbosity) {
        with(device({0x1000, 0x0079}));
        application.settings.controllerDefinitionFile = "test\\definition.ini";
        platform.fileFake.files["test\\definition.ini"] = content;
    }
};

constexpr const char* twoDefined = "[Controller.0]\nType=12\nSubType=2\nC1S0=1000\n"
                                   "[Controller.1]\nType = 5x\n";

TEST(ControllerList, ReadsADefinitionFileInsteadOfTheBus) {
    Defined machine(twoDefined);
    EXPECT_EQ(machine.initialize(), std::string("Entering ControllerList::initialize\n"
                                                "Reading RAID controllers from file:  "
                                                "test\\definition.ini\n"
                                                "Number of controllers read:  2\n") +
                                        tracedScanOrders);
    ASSERT_EQ(machine.list.count(), 2U);
    EXPECT_EQ(machine[0].type(), 12);
    EXPECT_EQ(machine[0].subtype(), 2);
    EXPECT_EQ(machine[0].scanOrder(), 1);
    // Drives are not read yet.
    EXPECT_EQ(machine[0].numberOfDrives(), 0);
    EXPECT_TRUE(machine[0].pciLocation().isEmpty());
    EXPECT_EQ(machine[1].type(), 5);
    EXPECT_EQ(machine[1].subtype(), 0);
    EXPECT_EQ(machine[1].scanOrder(), 1);
    // The hardware detector is not asked: there is nothing to fail.
    EXPECT_TRUE(machine.platform.children.empty());
    EXPECT_EQ(machine.application.machine, zolex::Machine());
}

TEST(ControllerList, NamesTheDefinitionFileOnlyWhenVerbose) {
    for (const std::int32_t verbosity : {-1, 0, 3}) {
        EXPECT_EQ(Defined(twoDefined, verbosity).initialize(), "") << verbosity;
    }
    EXPECT_EQ(Defined(twoDefined, 5).initialize(),
              "Reading RAID controllers from file:  test\\definition.ini\n"
              "Number of controllers read:  2\n");
}

TEST(ControllerList, ADefinitionEndsAtTheFirstControllerWithoutAType) {
    struct Row {
        const char* content;
        std::size_t count;
    };
    constexpr Row rows[] = {
        {"", 0},
        {"[Controller.1]\nType=12\n", 0},
        {"[Controller.0]\nSubType=12\n", 0},
        {"[Controller.0]\nType=\n[Controller.1]\nType=1\n", 0},
        {"[Controller.0]\nType=1\n[Controller.2]\nType=1\n", 1},
        {"[controller.0]\nTYPE=1\n[CONTROLLER.1]\ntype=1\n", 2},
    };
    for (const Row& row : rows) {
        Defined machine(row.content, 3);
        machine.initialize();
        EXPECT_EQ(machine.list.count(), row.count) << row.content;
    }
    Defined absent("", 5);
    absent.platform.fileFake.files.clear();
    EXPECT_TRUE(test::scan(absent.list, absent.application));
    EXPECT_EQ(absent.platform.consoleFake.output,
              "Reading RAID controllers from file:  test\\definition.ini\n"
              "Number of controllers read:  0\n");
    EXPECT_EQ(absent.platform.consoleFake.error,
              "Could not open controller-definition file:  test\\definition.ini\n");
}

TEST(ControllerList, ADefinitionMayNameTypesThatDoNotExist) {
    Defined machine("[Controller.0]\nType=abc\n[Controller.1]\nType=-5\nSubType=99\n"
                    "[Controller.2]\nType=99999999999\n");
    machine.initialize();
    ASSERT_EQ(machine.list.count(), 3U);
    EXPECT_EQ(machine[0].type(), 0);
    EXPECT_EQ(machine[1].type(), -5);
    EXPECT_EQ(machine[1].subtype(), 99);
    EXPECT_EQ(machine[2].type(), 2147483647);
    // They count with the family of the others.
    EXPECT_EQ(machine[2].scanOrder(), 3);
}

TEST(ControllerList, OnlyTheFirstThirtySixControllersOfADefinitionAreUsed) {
    std::string content;
    for (int i = 0; i < 36; ++i) {
        content +=
            "[Controller." + std::to_string(i) + "]\nType=" + std::to_string(1 + i % 12) + "\n";
    }
    Defined most(content, 3);
    EXPECT_EQ(most.initialize(), "");
    EXPECT_EQ(most.list.count(), 36U);
    Defined beyond(content + "[Controller.36]\nType=1\n[Controller.37]\nType=1\n", 5);
    EXPECT_EQ(beyond.initialize(), "Reading RAID controllers from file:  test\\definition.ini\n" +
                                       std::string(tooMany) + "Number of controllers read:  36\n");
    EXPECT_EQ(beyond.list.count(), 36U);
}

// Dumps

TEST(ControllerList, DumpsEveryControllerBehindItsHeader) {
    ScannedMachine machine(-1);
    machine.list.add()->addDrive(1, 0, 500, "SAS");
    machine.list.add()->setCaptured(RAIDConfiguration());
    for (const bool withConfiguration : {false, true}) {
        std::string expected;
        for (std::size_t i = 0; i < 2; ++i) {
            const RAIDController& controller = machine[i];
            char header[80];
            std::snprintf(header, sizeof header, "**** Dumping RAIDController at address %p\n",
                          static_cast<const void*>(&controller));
            test::FakeConsole console;
            Printer printer(console);
            printer.printAlways(show::dumpText(controller, withConfiguration));
            expected += header + console.output;
        }
        const std::string dump = machine.list.dumpText(withConfiguration).c_str();
        EXPECT_EQ(dump, expected);
        EXPECT_EQ(dump.find("#### START Configuration dump ####\n") != std::string::npos,
                  withConfiguration);
    }
    ScannedMachine empty;
    EXPECT_EQ(empty.list.dumpText(true), "");
}

} // namespace
} // namespace zolex
