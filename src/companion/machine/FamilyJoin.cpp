#include "companion/machine/FamilyJoin.h"

#include "companion/machine/Join.h"
#include "companion/machine/KnownFunctions.h"
#include "companion/machine/ProblemCodes.h"
#include "foundation/Text.h"

#include <algorithm>
#include <map>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

namespace zolex::companion {

namespace {

/// In no enclosure first.
auto placeOf(const DriveFacts& drive) {
    return std::tuple(drive.enclosure.value_or(-1), drive.slot.value_or(0),
                      std::string_view(drive.location));
}

void joinFamilyDrives(const Family& family, ControllerSnapshot& snapshot) {
    for (const DriveFacts& drive : snapshot.facts.drives) {
        snapshot.drives.emplace_back().facts = drive;
    }
    if (!family.listsInOrder()) {
        std::stable_sort(snapshot.drives.begin(), snapshot.drives.end(),
                         [](const MachineDrive& a, const MachineDrive& b) {
                             return placeOf(a.facts) < placeOf(b.facts);
                         });
    }
    std::map<std::int32_t, std::int32_t> channels;
    for (const MachineDrive& drive : snapshot.drives) {
        channels.emplace(drive.facts.enclosure.value_or(-1), 0);
    }
    std::int32_t next = 1;
    for (auto& [enclosure, channel] : channels) {
        channel = next++;
    }
    std::map<std::string_view, std::string_view> letters;
    for (const MachineArray& array : snapshot.arrays) {
        for (const std::string& drive : array.drives) {
            letters.emplace(drive, array.letter);
        }
    }
    std::int32_t number = 0;
    for (MachineDrive& drive : snapshot.drives) {
        drive.policyNumber = ++number;
        if (drive.facts.slot) {
            drive.policyPosition =
                DrivePosition{channels[drive.facts.enclosure.value_or(-1)], *drive.facts.slot};
        }
        if (const auto letter = letters.find(drive.facts.location); letter != letters.end()) {
            drive.array = letter->second;
        }
    }
}

} // namespace

std::string usualName(const Family& family, std::string_view path) {
    constexpr std::string_view suffix = ".exe";
    std::string_view name = path.substr(path.find_last_of("/\\") + 1);
    if (name.size() > suffix.size() &&
        text::equalsNoCase(name.substr(name.size() - suffix.size()), suffix)) {
        name.remove_suffix(suffix.size());
    }
    const std::span<const std::string_view> usual = family.programs();
    const auto found = std::find_if(usual.begin(), usual.end(), [name](std::string_view each) {
        return text::equalsNoCase(each, name);
    });
    return found == usual.end() ? std::string() : std::string(*found);
}

Finding familyFinding(const FamilyFinding& told) {
    Finding finding = problemFinding(told.code, told.summary, told.detail);
    if (!told.help.empty()) {
        finding.help = told.help;
    }
    return finding;
}

ControllerSnapshot familySnapshot(const Family& family, FamilyController controller,
                                  std::int32_t number) {
    ControllerSnapshot snapshot;
    snapshot.number = number;
    snapshot.index = ControllerSnapshot::noRecord;
    snapshot.model = std::move(controller.model);
    snapshot.utility = family.name();
    snapshot.program = std::move(controller.program);
    snapshot.adapter = controller.adapter;
    snapshot.pci = std::move(controller.pci);
    snapshot.pciIds = std::move(controller.pciIds);
    for (FamilyListing& listing : controller.listings) {
        snapshot.commands.push_back(
            {std::move(listing.command), listing.outcome, listing.exitCode, listing.duration});
        snapshot.listings.push_back(std::move(listing.output));
    }
    snapshot.facts = std::move(controller.facts);
    snapshot.failed = controller.failed;
    for (const FamilyFinding& told : controller.findings) {
        snapshot.findings.push_back(familyFinding(told));
    }
    if (isTamperedFunction(snapshot.pciIds)) {
        snapshot.failed = true;
        snapshot.findings.push_back(problemFinding(
            problem::tamperedController,
            "the controller calls itself unsupported or tampered with: " + snapshot.pciIds));
    }
    if (!snapshot.failed) {
        snapshot.arrays = joinArrays(snapshot.facts);
        joinFamilyDrives(family, snapshot);
    }
    return snapshot;
}

} // namespace zolex::companion
