#pragma once

#include "companion/planning/Plan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// A machine with one controller of a family, made by hand.
class FamilyServer {
  public:
    explicit FamilyServer(const char* model = "PERC-H755-Front") {
        snapshot.machine.machineType = "R750";
        snapshot.machine.serialNumber = "ABC123";
        ControllerSnapshot& controller = snapshot.details.emplace_back();
        controller.number = 1;
        controller.index = ControllerSnapshot::noRecord;
        controller.model = model;
        controller.utility = "STORCLI";
        controller.facts.productName = model;
        controller.facts.deepMirrors = DeepMirrors::ofPairs;
        snapshot.families = {{1, "STORCLI", false}};
    }

    [[nodiscard]] ControllerSnapshot& controller() { return snapshot.details.front(); }

    DriveFacts& add(std::int32_t enclosure, std::int32_t slot, std::uint64_t gb = 1000,
                    const char* protocol = "SAS", const char* media = "HDD") {
        DriveFacts drive;
        drive.location = std::to_string(enclosure) + ":" + std::to_string(slot);
        drive.enclosure = enclosure;
        drive.slot = slot;
        drive.serialNumber = "S" + std::to_string(enclosure) + "N" + std::to_string(slot);
        drive.protocol = protocol;
        drive.mediaType = media;
        drive.capacityBytes = gb << 30U;
        drive.blockSizeBytes = 512;
        drive.reportedState = "UGood";
        drive.state = DriveState::free;
        drive.health = Health::ok;
        controller().facts.drives.push_back(drive);
        return controller().facts.drives.back();
    }
    void addDrives(std::int32_t count, std::uint64_t gb = 1000) {
        for (std::int32_t slot = 0; slot < count; ++slot) {
            add(252, slot, gb);
        }
    }

    /// A logical drive over drives "252:N"; span by span.
    LogicalDriveFacts& addVolume(const char* id, const char* array, const char* level,
                                 const std::vector<std::vector<std::int32_t>>& spans,
                                 std::uint64_t gb) {
        LogicalDriveFacts volume;
        volume.id = id;
        volume.array = array;
        volume.raidType = level;
        volume.reportedState = "Optl";
        volume.health = Health::ok;
        volume.capacityBytes = gb << 30U;
        for (const std::vector<std::int32_t>& span : spans) {
            volume.spans.emplace_back();
            for (const std::int32_t slot : span) {
                DriveFacts& drive = driveAt(slot);
                volume.spans.back().push_back(drive.location);
                drive.state = DriveState::member;
                drive.reportedState = "Onln";
            }
        }
        controller().facts.logicalDrives.push_back(volume);
        return controller().facts.logicalDrives.back();
    }
    DriveFacts& driveAt(std::int32_t slot) {
        for (DriveFacts& drive : controller().facts.drives) {
            if (drive.slot == slot) {
                return drive;
            }
        }
        return controller().facts.drives.front();
    }
    void makeSpare(std::int32_t slot, const std::vector<std::string>& arrays = {}) {
        DriveFacts& drive = driveAt(slot);
        drive.state = DriveState::hotspare;
        drive.reportedState = arrays.empty() ? "GHS" : "DHS";
        drive.hotspare = arrays.empty() ? HotspareKind::global : HotspareKind::dedicated;
        drive.covers = arrays;
    }

    /// The drives as they are joined with their numbers, and the plan.
    MachinePlan plan(const std::string& policies, StrategyWish strategy = StrategyWish::automatic) {
        join();
        PlanRequest request;
        request.policiesFile = "site.ini";
        request.policiesText = policies;
        request.strategy = strategy;
        return planMachine(snapshot, request);
    }
    MachinePlan defaults() {
        join();
        PlanRequest request;
        request.classDefaults = true;
        return planMachine(snapshot, request);
    }

    Snapshot snapshot;

  private:
    void join() {
        ControllerSnapshot& own = controller();
        own.drives.clear();
        for (const DriveFacts& drive : own.facts.drives) {
            MachineDrive joined;
            joined.facts = drive;
            joined.policyNumber = static_cast<std::int32_t>(own.drives.size()) + 1;
            for (const LogicalDriveFacts& volume : own.facts.logicalDrives) {
                for (const std::vector<std::string>& span : volume.spans) {
                    for (const std::string& location : span) {
                        joined.array = location == drive.location ? "A" : joined.array;
                    }
                }
            }
            own.drives.push_back(std::move(joined));
        }
    }
};

/// What is planned, for eyes: arrays, volumes, spares, losses and commands, or why not.
inline std::string planLines(const MachinePlan& plan) {
    std::string text;
    const auto findings = [&text](const std::vector<Finding>& all, bool errorsOnly) {
        for (const Finding& finding : all) {
            if (errorsOnly && finding.severity != Severity::error) {
                continue;
            }
            text += std::string(severityWord(finding.severity)) + " " + finding.code + ": " +
                    finding.summary + "\n";
            if (!finding.help.empty()) {
                text += "  help: " + finding.help.front() + "\n";
            }
        }
    };
    findings(plan.diagnostics, true);
    findings(plan.policiesFindings, true);
    for (const ControllerPlanning& controller : plan.controllers) {
        text += std::string(dispositionWord(controller.disposition)) +
                (controller.because.empty() ? "" : ": " + controller.because) + "\n";
        findings(controller.diagnostics, false);
        for (const std::string& line : layoutLines(controller.after)) {
            text += line + "\n";
        }
        for (const Loss& loss : controller.losses) {
            text += "loses " + loss.kind + " " + loss.id + "\n";
        }
        for (const PlanStep& step : controller.steps) {
            text += step.command + "\n";
        }
    }
    return text;
}

/// A policies file with one policy of these entries.
inline std::string policy(const std::string& entries, const std::string& applies = "t:STORCLI") {
    return "[Policy.one]\nAppliesTo.1 = " + applies + "\n" + entries;
}
/// The same, where what is not told is not there.
inline std::string custom(const std::string& entries) {
    return policy("Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\nArray_Defaults = 0%:0\n" + entries);
}

} // namespace zolex::companion
