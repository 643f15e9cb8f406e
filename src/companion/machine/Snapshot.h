#pragma once

#include "companion/facts/Facts.h"
#include "companion/findings/Finding.h"
#include "foundation/Fault.h"
#include "inventory/ControllerList.h"
#include "model/Configuration.h"
#include "model/Machine.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// One reading command line of a capture and what came of it.
struct CapturedListing {
    std::string command; ///< as zolex would write it, without its newline
    ChildOutcome outcome = ChildOutcome::notStarted;
    std::uint32_t exitCode = 0;
    std::chrono::milliseconds duration{0};
};

/// One drive of a controller: what its utility says of it, and what policies call it.
struct MachineDrive {
    DriveFacts facts;
    std::optional<std::int32_t> policyNumber;    ///< from 1; nothing: policies cannot name it
    std::optional<DrivePosition> policyPosition; ///< channel and id in policies
    std::string array; ///< letter of its array, "A" to "Z", "AA", ...; or empty
};

/// One array: drives that belong together. Its letter is the one that a captured policy gives it,
/// in the order of the logical drives.
struct MachineArray {
    std::string letter;
    std::string id;                         ///< as the utility numbers it
    std::vector<std::string> drives;        ///< locations
    std::vector<std::size_t> logicalDrives; ///< indices into Facts::logicalDrives
};

/// One controller of a snapshot.
struct ControllerSnapshot {
    std::int32_t number = 0; ///< from 1, as zolex counts
    /// In Snapshot::controllers, or `noRecord` for a controller that zolex does not know.
    std::size_t index = 0;
    static constexpr std::size_t noRecord = static_cast<std::size_t>(-1);
    std::string model;        ///< "LSI-MegaRAID-8480"
    std::string utility;      ///< "MEGACLI"
    std::string program;      ///< of a family: as in FamilyRequest
    std::int32_t adapter = 0; ///< its number in the utility's commands
    std::string pci;          ///< "0000:02:0e.0"; empty when not known
    std::string pciIds;       ///< "1000:0411:1000:1002"; empty when not known
    std::vector<CapturedListing> commands;
    std::vector<std::string> listings; ///< what the utility printed, in the order of the commands
    Facts facts;
    std::vector<MachineDrive> drives; ///< those with a number first, in its order
    std::vector<MachineArray> arrays;
    std::vector<Finding> findings; ///< what is wrong with this controller or its listings
    bool failed = false;           ///< its utility failed: nothing beside the inventory is known
};

/// Where a family's controller stands among those of the machine.
struct FamilyPlace {
    std::int32_t number = 0; ///< from 1
    std::string utility;     ///< "STORCLI"
    /// Whether zolex knows the card too, by another utility: the number is the card's there.
    bool takesPlace = false;
};

/// A RAID controller on the bus that no utility has told of.
struct UndrivenFunction {
    std::string pci;      ///< "0000:02:0e.0"
    std::string pciIds;   ///< "1000:0411:1000:1002"
    std::string family;   ///< the word of the utility that would drive it
    bool isSure = false;  ///< it is a RAID controller; else it may be a host adapter
    bool isAsked = false; ///< that utility is there, and does not tell of it
};

/// Everything that is known of one machine at one moment.
struct Snapshot {
    Machine machine;
    std::string machineSource; ///< "hwdetect.exe", "firmware", "options"; empty: not known
    /// As zolex reads them, with their drives and captured layouts.
    ControllerList controllers;
    std::vector<ControllerSnapshot> details; ///< one for each controller asked for
    std::vector<FamilyPlace> families;       ///< all controllers of families, asked for or not
    std::vector<UndrivenFunction> undriven;  ///< in the order of the bus
    std::vector<Fault> faults;               ///< that the core reported meanwhile
    std::vector<std::string> coreMessages;   ///< the texts that zolex has for them, and notes
    std::vector<Finding> findings;           ///< of the machine as a whole

    /// How many controllers the machine has, asked for or not.
    [[nodiscard]] std::size_t count() const;
    /// Whether a family drives the controller of this number, counted from 1.
    [[nodiscard]] bool isOfFamily(std::int32_t number) const;
    /// Whether all controllers asked for could be captured.
    [[nodiscard]] bool isComplete() const;
};

} // namespace zolex::companion
