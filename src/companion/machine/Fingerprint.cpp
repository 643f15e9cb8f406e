#include "companion/machine/Fingerprint.h"

#include "companion/facts/Bytes.h"
#include "companion/families/Family.h"
#include "companion/layout/NormalForm.h"
#include "companion/machine/Sha256.h"
#include "companion/text/Words.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

// Texts, letters and digits in lower case, that firmware has in the place of a serial number.
constexpr std::array<std::string_view, 24> placeholders = {"none",
                                                           "null",
                                                           "unknown",
                                                           "na",
                                                           "notspecified",
                                                           "notapplicable",
                                                           "notavailable",
                                                           "notprovided",
                                                           "tobefilledbyoem",
                                                           "tobefilled",
                                                           "defaultstring",
                                                           "default",
                                                           "systemserialnumber",
                                                           "chassisserialnumber",
                                                           "baseboardserialnumber",
                                                           "serialnumber",
                                                           "serial",
                                                           "sn",
                                                           "oem",
                                                           "invalid",
                                                           "empty",
                                                           "0123456789",
                                                           "1234567890",
                                                           "123456789"};

/// A field of the text that is hashed: its length keeps the fields apart.
void append(std::string& text, std::string_view field) {
    text += std::to_string(field.size());
    text += ':';
    text += field;
    text += '\n';
}

std::string_view toldSerial(std::string_view serial) {
    return isPlaceholder(serial) ? std::string_view() : serial;
}

/// Which logical drives stand, where their utility tells them apart: one that was deleted and made
/// anew under the same number on the same drives is another one.
std::string idsText(const ControllerSnapshot& controller) {
    std::vector<std::string> volumes;
    for (const LogicalDriveFacts& volume : controller.facts.logicalDrives) {
        if (!volume.uniqueId.empty() || !volume.name.empty()) {
            std::string& text = volumes.emplace_back();
            append(text, volume.id);
            append(text, volume.uniqueId);
            append(text, volume.name);
        }
    }
    std::sort(volumes.begin(), volumes.end());
    std::string all;
    for (const std::string& volume : volumes) {
        all += volume;
    }
    return all;
}

enum class OfVolumes { layout, layoutAndIds };

std::string stateText(const ControllerSnapshot& controller, OfVolumes told) {
    std::vector<std::string> drives;
    for (const MachineDrive& drive : controller.drives) {
        const DriveFacts& facts = drive.facts;
        std::string text;
        append(text, facts.location);
        append(text, !facts.serialNumber.empty() ? facts.serialNumber
                     : !facts.wwn.empty()        ? facts.wwn
                                                 : facts.inquiry);
        append(text, facts.capacityBytes ? std::to_string(*facts.capacityBytes / bytesOfMb) : "");
        append(text, driveCondition(facts));
        if (!facts.barred.empty()) {
            append(text, facts.barred);
        }
        drives.push_back(std::move(text));
    }
    std::sort(drives.begin(), drives.end());
    std::string all;
    append(all, std::to_string(controller.number));
    append(all, controller.failed ? "failed" : "captured");
    append(all, std::to_string(drives.size()));
    for (const std::string& drive : drives) {
        all += drive;
    }
    append(all, normalForm(controller.facts));
    // Of controllers that zolex knows nothing is added: their plans of long ago hold.
    if (told == OfVolumes::layoutAndIds && findFamily(controller.utility) != nullptr) {
        all += idsText(controller);
    }
    return all;
}

std::string stateHash(const Snapshot& snapshot, OfVolumes told) {
    std::string state;
    append(state, Fingerprint::algorithm);
    for (const ControllerSnapshot& controller : snapshot.details) {
        state += stateText(controller, told);
    }
    return sha256(state);
}

Strength strengthOf(const Snapshot& snapshot) {
    bool controllers = !snapshot.details.empty();
    bool drives = false;
    bool allDrives = true;
    for (const ControllerSnapshot& controller : snapshot.details) {
        controllers = controllers && !isPlaceholder(controller.facts.serialNumber);
        for (const MachineDrive& drive : controller.drives) {
            const bool told =
                !isPlaceholder(drive.facts.serialNumber) || !isPlaceholder(drive.facts.wwn);
            drives = drives || told;
            allDrives = allDrives && told;
        }
    }
    if (controllers && drives && allDrives) {
        return Strength::serials;
    }
    if (drives && allDrives) {
        return Strength::drives;
    }
    return isPlaceholder(snapshot.machine.serialNumber) ? Strength::positions : Strength::machine;
}

} // namespace

bool isPlaceholder(std::string_view serialNumber) {
    const std::string text = lettersAndDigits(serialNumber);
    return text.empty() || text.find_first_not_of('0') == std::string::npos ||
           text.find_first_not_of('x') == std::string::npos ||
           text.find_first_not_of('f') == std::string::npos ||
           std::find(placeholders.begin(), placeholders.end(), text) != placeholders.end();
}

std::string_view driveCondition(const DriveFacts& drive) {
    switch (drive.state) {
    case DriveState::failed:
        return "failed";
    case DriveState::missing:
        return "missing";
    case DriveState::foreign:
        return "foreign";
    case DriveState::rebuilding:
        return "rebuilding";
    case DriveState::jbod:
        return "shown to the system";
    default:
        return drive.health == Health::critical ? "failed" : "good";
    }
}

std::string_view strengthWord(Strength strength) {
    switch (strength) {
    case Strength::serials:
        return "serials";
    case Strength::drives:
        return "drives";
    case Strength::machine:
        return "machine";
    case Strength::positions:
        break;
    }
    return "positions";
}

Fingerprint fingerprintOf(const Snapshot& snapshot) {
    Fingerprint print;
    print.strength = strengthOf(snapshot);
    print.machineType = snapshot.machine.machineType.view();
    print.serialNumber = toldSerial(snapshot.machine.serialNumber);
    for (const ControllerSnapshot& controller : snapshot.details) {
        Fingerprint::Controller& part = print.controllers.emplace_back();
        part.number = controller.number;
        part.pci = controller.pci;
        part.ids = controller.pciIds;
        part.model = controller.model;
        part.serialNumber = toldSerial(controller.facts.serialNumber);
    }
    print.identity = identityHash(print);
    print.state = stateHash(snapshot, OfVolumes::layoutAndIds);
    return print;
}

std::string stateWithoutIds(const Snapshot& snapshot) {
    return stateHash(snapshot, OfVolumes::layout);
}

std::string identityHash(const Fingerprint& print) {
    std::string identity;
    append(identity, Fingerprint::algorithm);
    append(identity, print.machineType);
    append(identity, print.serialNumber);
    for (const Fingerprint::Controller& controller : print.controllers) {
        append(identity, std::to_string(controller.number));
        append(identity, controller.pci);
        append(identity, controller.ids);
        append(identity, controller.model);
        append(identity, controller.serialNumber);
    }
    return sha256(identity);
}

std::string layoutHash(const Facts& facts) {
    return sha256(normalForm(facts));
}

} // namespace zolex::companion
