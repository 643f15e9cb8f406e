#include "companion/lint/MachineCase.h"

#include "companion/machine/Fingerprint.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

const Piece* placeIn(const MachineCase& machine, const DriveListView& list,
                     DrivePosition position) {
    for (const DriveView& view : list.drives) {
        const MachineDrive* drive = machine.drive(view);
        if (drive != nullptr && drive->policyPosition == position) {
            return &view.piece;
        }
    }
    return &list.entry->value;
}

} // namespace

std::string machineName(const Snapshot& snapshot) {
    const std::string serial = snapshot.machine.serialNumber.c_str();
    return isPlaceholder(serial) ? snapshot.machine.machineType.c_str() : serial;
}

std::string MachineCase::name() const {
    const std::string machine = machineName(snapshot);
    return "controller " + std::to_string(detail.number) + (machine.empty() ? "" : " of ") +
           machine;
}

std::string MachineCase::told(const std::string& summary) const {
    return isOfPlan ? summary : name() + ": " + summary;
}

const MachineDrive* MachineCase::drive(DrivePosition position) const {
    const auto found =
        std::find_if(detail.drives.begin(), detail.drives.end(),
                     [&](const MachineDrive& each) { return each.policyPosition == position; });
    return found == detail.drives.end() ? nullptr : &*found;
}

const MachineDrive* MachineCase::drive(const DriveView& view) const {
    if (view.number == 0) {
        return drive(view.position);
    }
    const auto found =
        std::find_if(detail.drives.begin(), detail.drives.end(),
                     [&](const MachineDrive& each) { return each.policyNumber == view.number; });
    return found == detail.drives.end() ? nullptr : &*found;
}

const Piece* MachineCase::place(std::size_t array, DrivePosition position) const {
    if (policy == nullptr || !policy->customArrays) {
        return nullptr;
    }
    const DriveListView* list = policy->array(static_cast<std::int32_t>(array));
    return list == nullptr ? nullptr : placeIn(*this, *list, position);
}

const Piece* MachineCase::placeOfHotspare(DrivePosition position) const {
    return policy == nullptr || !policy->hotspares ? nullptr
                                                   : placeIn(*this, *policy->hotspares, position);
}

Finding& MachineCase::add(FindingSink& sink, std::string_view rule, const Piece* place,
                          const std::string& summary, std::vector<std::string> help) const {
    const std::string text = told(summary);
    return place != nullptr    ? sink.add(rule, *place, text, std::move(help))
           : policy != nullptr ? sink.add(rule, *policy->policy, text, std::move(help))
                               : sink.addToFile(rule, text, std::move(help));
}

std::string driveWords(const MachineDrive& drive) {
    std::string more = drive.facts.reportedState;
    if (!drive.facts.serialNumber.empty()) {
        more += (more.empty() ? "serial " : ", serial ") + drive.facts.serialNumber;
    }
    return drive.facts.location + (more.empty() ? "" : " (" + more + ")");
}

std::string someDrives(const std::vector<const MachineDrive*>& drives, std::size_t most) {
    std::string text;
    for (std::size_t i = 0; i < std::min(drives.size(), most); ++i) {
        text += (i == 0 ? "" : ", ") + drives[i]->facts.location;
    }
    return drives.size() > most ? text + " and " + std::to_string(drives.size() - most) + " more"
                                : text;
}

} // namespace zolex::companion
