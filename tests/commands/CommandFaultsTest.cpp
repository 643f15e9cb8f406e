#include "commands/GeneratorFixture.h"
#include "commands/MEGAWinCommands.h"
#include "model/ControllerCatalogue.h"
#include "support/FaultList.h"

namespace zolex::test {
namespace {

/// Faults as records. The texts stand in the tests of the generators.
class CommandFaults : public GeneratorFixture {
  protected:
    /// A fault of the controller at list position 4.
    static Fault faultOf(FaultKind kind, const char* model) {
        Fault fault;
        fault.kind = kind;
        fault.place.section = "Policy.1";
        fault.place.model = model;
        fault.place.controller = 4;
        return fault;
    }
    static Fault faultOf(FaultKind kind, const char* model, std::int32_t array) {
        Fault fault = faultOf(kind, model);
        fault.place.array = array;
        return fault;
    }

    /// Generates and expects the fault, both returned and reported, after `lines` lines.
    void expectFault(const Fault& fault, std::size_t count) {
        EXPECT_FALSE(generate());
        ASSERT_TRUE(generated.fault.has_value());
        EXPECT_EQ(*generated.fault, fault);
        EXPECT_EQ(lines().size(), count);
        EXPECT_EQ(keeper.faults, std::vector<Fault>{fault});
        keeper.faults.clear();
    }

    bool generate() {
        generated = commandLines(controller, 4, plan(), style, keeper);
        return !generated.fault;
    }

    FaultList keeper;
};

TEST_F(CommandFaults, OfATypeWithoutGenerator) {
    makeController(13, 1, 1);
    Fault fault = faultOf(FaultKind::typeWithoutGenerator, "ERROR-NO-CONTROLLER");
    fault.number = 13;
    expectFault(fault, 0);
}

TEST_F(CommandFaults, OfALayoutWithoutArray) {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        makeController(type, 1, 1);
        expectFault(faultOf(FaultKind::layoutWithoutArray,
                            ControllerCatalogue::getControllerName(type, 1).c_str()),
                    0);
    }
}

TEST_F(CommandFaults, OfAnArrayWithoutLogicalDrive) {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        makeController(type, 1, 1);
        addArrayOf(2);
        expectFault(faultOf(FaultKind::arrayWithoutLogicalDrive,
                            ControllerCatalogue::getControllerName(type, 1).c_str(), 0),
                    0);
    }
    makeController(controller_type::family, 1, 1);
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    expectFault(faultOf(FaultKind::arrayWithoutLogicalDrive, "Kestrix-A1", 1), 1);
}

TEST_F(CommandFaults, OfASecondLogicalDrive) {
    struct Row {
        std::int32_t type;
        FaultKind kind;
        const char* model;
        std::size_t lines;
    };
    const Row rows[] = {
        {controller_type::arcconf7, FaultKind::secondLogicalDrive, "Kestrix-B2", 1},
        {controller_type::lsiSas, FaultKind::secondLogicalDrive, "LSI-SAS-1078-IR", 1},
        {controller_type::hrconf8, FaultKind::oneLogicalDriveOnly, "Kestrix-B3", 1},
        {controller_type::lsiIde, FaultKind::oneLogicalDriveOnly, "LSI-IDEal-RAID", 0},
    };
    for (const Row& row : rows) {
        makeController(row.type, 1, 1);
        plan().readAhead = read_ahead::on;
        addArrayOf(2);
        addLogicalDrive(0, raid_level::raid1);
        addLogicalDrive(0, raid_level::raid1);
        expectFault(faultOf(row.kind, row.model, 0), row.lines);
    }
}

TEST_F(CommandFaults, OfHyperwin) {
    const auto prepare = [this](std::int32_t level, std::int32_t size, std::int32_t hotspares) {
        makeController(controller_type::lsiIde, 1, 1);
        addArrayOf(2);
        addLogicalDrive(0, level, size);
        for (std::int32_t i = 0; i < hotspares; ++i) {
            addHotspare(1, 2 + i);
        }
    };
    prepare(raid_level::raid1, -50, 0);
    Fault fill = faultOf(FaultKind::fillOnly, "LSI-IDEal-RAID", 0);
    fill.number = -50;
    expectFault(fill, 0);
    prepare(raid_level::raid1, sizeFill, 1);
    expectFault(faultOf(FaultKind::hotspareBesideMirror, "LSI-IDEal-RAID"), 0);
    prepare(raid_level::raid0, sizeFill, 3);
    Fault hotspares = faultOf(FaultKind::oneHotspareOnly, "LSI-IDEal-RAID");
    hotspares.number = 3;
    expectFault(hotspares, 0);
}

TEST_F(CommandFaults, OfMegaCli) {
    makeController(controller_type::megaRaid, 1, 1);
    addArrayOf(1);
    addLogicalDrive(0, raid_level::raid0);
    addHotspare(1, 1);
    addHotspare(5, 3);
    addHotspare(6, 4);
    Fault misplaced = faultOf(FaultKind::hotspareOutsidePositions, "LSI-MegaRAID-8480");
    misplaced.place.channel = 5;
    misplaced.place.id = 3;
    expectFault(misplaced, 1);

    MEGAWinCommands generator({controller, 4, plan(), style, keeper});
    CString list;
    EXPECT_FALSE(generator.appendSpans(raid_level::raid5, plan().arrays().front(), list));
    Fault spans = faultOf(FaultKind::levelWithoutSpans, "LSI-MegaRAID-8480");
    spans.number = raid_level::raid5;
    EXPECT_EQ(keeper.faults, std::vector<Fault>{spans});
}

} // namespace
} // namespace zolex::test
