#include "model/BlockFields.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

namespace zolex_sim {
namespace {

constexpr int slotStep = 4; ///< enclosures have a multiple of so many slots

std::optional<std::string> rebuildPriorityNamed(std::string_view word) {
    for (const char* priority : {"High", "Medium", "Low"}) {
        if (word == priority) {
            return priority;
        }
    }
    return std::nullopt;
}

EnclosureBox readEnclosure(Fields& fields) {
    EnclosureBox box;
    box.number = fields.smallNumber("number", 0, 65535);
    box.logicalId = fields.bits("logicalId", ~std::uint64_t{0}, 0);
    box.slots = fields.smallNumber("slots", 1, 65536);
    return box;
}

int slotsFor(const Controller& controller, int enclosure) {
    int slots = 0;
    for (const Drive& drive : controller.drives) {
        if (drive.location.enclosure == enclosure) {
            slots = std::max(slots, drive.location.slot + 1);
        }
    }
    return (slots + slotStep - 1) / slotStep * slotStep;
}

} // namespace

BlockIdentity readBlockIdentity(Fields& fields, const UtilityTraits& utility,
                                const PciFunction& pci) {
    BlockIdentity block;
    block.controllerName = fields.text("controllerName", "Null Config", 16);
    block.rebuildPriority =
        fields.word<std::string>("rebuildPriority", rebuildPriorityNamed, "High");
    if (fields.has("physicalSlot")) {
        block.slot = fields.smallNumber("physicalSlot", 0, 255);
    }
    block.bus = fields.smallNumber("busNumber", 0, 255, pci.bus);
    block.initiatorId = fields.smallNumber("initiatorId", 0, 65535, utility.initiatorId);
    fields.list("enclosures", [&](const Json& item, const std::string& path) {
        Fields enclosure(item, path, fields.problem());
        block.enclosures.push_back(readEnclosure(enclosure));
        enclosure.finish();
    });
    return block;
}

void readIdDrive(Fields& fields, Drive& drive, const UtilityTraits& utility) {
    drive.location.enclosure = fields.smallNumber("channel", 1, utility.drives.lastChannel, 1);
    drive.location.slot = fields.smallNumber("id", 0, utility.drives.lastId);
}

void completeEnclosures(Controller& controller, std::size_t number, Problem& problem) {
    constexpr std::uint64_t firstLogicalId = 0x500062b000000000U;
    std::vector<EnclosureBox>& boxes = controller.identity.block.enclosures;
    for (const std::optional<int>& enclosure : controller.enclosures()) {
        if (enclosure && std::none_of(boxes.begin(), boxes.end(), [&](const EnclosureBox& box) {
                return box.number == *enclosure;
            })) {
            boxes.push_back(
                {*enclosure,
                 firstLogicalId + (std::uint64_t{number} << 16) + static_cast<unsigned>(*enclosure),
                 slotsFor(controller, *enclosure)});
        }
    }
    std::set<int> targets;
    for (const Drive& drive : controller.drives) {
        if (!targets.insert(drive.deviceId).second) {
            problem.report("controllers[" + std::to_string(number) +
                           "].drives: two drives have the target id " +
                           std::to_string(drive.deviceId));
        }
    }
}

} // namespace zolex_sim
