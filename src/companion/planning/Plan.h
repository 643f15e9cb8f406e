#pragma once

#include "companion/binding/BoundPolicies.h"
#include "companion/findings/Finding.h"
#include "companion/layout/Compare.h"
#include "companion/layout/Layout.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/Snapshot.h"
#include "model/Configuration.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// One specifier of an AppliesTo entry, held against a controller.
struct SpecifierMatch {
    std::string specifier; ///< "d:6"
    bool holds = false;
    std::string actual; ///< "8"
};

struct EntryMatch {
    std::string keyword; ///< "AppliesTo.1"
    std::int32_t line = 0;
    bool matched = false;
    std::vector<SpecifierMatch> specifiers; ///< all of them
};

/// Why a policy is the controller's, or not.
struct PolicyMatch {
    std::string name;
    std::int32_t line = 0;
    std::optional<bool> matched; ///< nothing: not asked, an earlier one matched
    std::vector<EntryMatch> entries;
};

/// Why something is planned as it is. Codes: listed, all-remaining, like-first, first-free,
/// largest-last, class-default, policy-default, given, captured-policy, left-to-controller; of
/// bound drives: by-slot, by-serial, by-kind, rest, spare.
struct PlanReason {
    std::string code;
    std::string keyword;   ///< entry of the policy; or empty
    std::int32_t line = 0; ///< of it; 0: none
    std::string as;        ///< how the entry names it: "3"; what a kind says of it
    friend bool operator==(const PlanReason&, const PlanReason&) = default;
};

struct PlannedDrive {
    std::string location;
    PlanReason reason;
};

struct PlannedArray {
    std::string id;                   ///< letter
    std::uint64_t capacityBytes = 0;  ///< number of drives times the smallest
    std::vector<PlannedDrive> drives; ///< in the order of the command line
    /// Of each span, where the command line says so; 0: as the level has it.
    std::size_t drivesPerSpan = 0;
};

struct PlannedVolume {
    std::string id; ///< "Logical.1"; "Logical.N" for automatic ones too
    std::string array;
    std::string raidType;
    std::string sizePolicy; ///< "FILL", "50%", "10000 MB"
    std::uint64_t capacityBytes = 0;
    std::uint64_t toleranceBytes = 0;
    bool fills = false;
    std::optional<std::uint64_t> stripSizeBytes; ///< nothing: the controller's own
    std::string writeCache;                      ///< as in LayoutVolume
    std::string readCache;
    std::map<std::string, PlanReason> reasons; ///< by the attribute's name
};

struct PlannedSpare {
    std::string location;
    std::vector<std::string> covers; ///< letters
    PlanReason reason;
    bool isDedicated = false; ///< to the arrays that it covers
};

enum class Strategy { none, add, rebuild };
/// "none", "add", "rebuild".
[[nodiscard]] std::string_view strategyWord(Strategy strategy);

/// Why a strategy: {"drives-in-use", "LD 1 lies on 32:2 32:3 32:4", ...}.
struct StrategyReason {
    std::string code; ///< "blank", "missing", "drives-in-use", "different", "only-whole-clear",
                      ///< "foreign", "asked", "set"
    std::string text; ///< for people
    std::string logicalDrive;
    std::vector<std::string> drives;
};

enum class Disposition { planned, already, skipped, refused };
/// "planned", "already", "skipped", "refused".
[[nodiscard]] std::string_view dispositionWord(Disposition disposition);

/// What is lost when the plan is carried out.
struct Loss {
    std::int32_t controller = 0;
    std::string kind; ///< "logical_drive", "hotspare", "foreign"
    std::string id;   ///< of the logical drive; location of a spare or a foreign drive
    std::string raidType;
    std::vector<std::string> drives;
    std::uint64_t capacityBytes = 0;
    std::string status; ///< the utility's word
    // Of the logical drive, where its utility tells them.
    std::string name{};
    std::string device{};   ///< as the system names it; it may change by itself
    std::string uniqueId{}; ///< as in LogicalDriveFacts
    friend bool operator==(const Loss&, const Loss&) = default;
};

/// One command line of the plan.
struct PlanStep {
    std::int32_t step = 0; ///< from 1, over all controllers
    std::int32_t controller = 0;
    /// "clear", "clear-foreign", "delete-logical-drive", "remove-spare", "create-array",
    /// "create-logical-drive", "create-spare", "set".
    std::string action;
    bool deletes = false;
    bool isRepeatable = false;     ///< running it again is harmless; else it must change the layout
    std::string command;           ///< as zolex would write it, for eyes
    std::vector<std::string> argv; ///< what is run: program and arguments
    std::vector<std::int32_t> acceptedExitCodes;
    std::int32_t pauseBeforeSeconds = 0;
    std::vector<std::string> creates;  ///< "A", "Logical.1", "32:7"
    std::vector<std::string> destroys; ///< ids of losses
    std::string summary;               ///< for people: "create A: RAID1 on 32:0 32:1"
    /// How the line differs from the one that zolex writes; empty: not at all.
    std::string differsFromZolex;
    std::string expectedAfter; ///< hash of the controller's layout afterwards; of the rehearsal
};

/// How the plan was played on a copy of the machine.
struct Rehearsal {
    bool done = false;
    /// Where it could not be done, in whole or for some controllers: "not rehearsed: ..." lines.
    std::vector<std::string> notDoneBecause;
    bool endsAsPlanned = false;
    std::int64_t durationMs = 0;
    std::int32_t faultsTried = 0;
    std::int32_t resumesAsPlanned = 0;
    std::vector<std::int32_t> notResumable;                  ///< numbers of the other steps
    std::map<std::string, std::vector<std::string>> layouts; ///< lines of each layout, by its hash
};

/// What zolex would do otherwise.
struct OldCommand {
    std::vector<std::string> wouldRun;    ///< "zolex /r /y /f:site.ini"
    std::vector<std::string> differences; ///< for people
};

/// The plan of one controller.
struct ControllerPlanning {
    /// What the controller is and has; without the texts of its listings.
    ControllerSnapshot controller;
    Disposition disposition = Disposition::refused;
    std::string because; ///< of already, skipped and refused: for people
    /// Errors that make it refused. Like warnings they do not name the controller, and stand in the
    /// order of the policies file.
    std::vector<Finding> diagnostics;
    std::vector<Finding> warnings; ///< notes, and errors that were accepted, too
    std::string policy;            ///< name; or empty
    std::int32_t policyLine = 0;
    std::string matchedBy; ///< "AppliesTo.1"
    std::vector<PolicyMatch> considered;
    std::vector<Binding> bindings; ///< of entries that tell drives by what they are
    Layout before;
    /// Hash of the layout that stands, of a plan that was read; empty: layoutHash of the facts.
    std::string beforeHash;
    Layout after;
    std::vector<PlannedArray> arrays;
    std::vector<PlannedVolume> volumes;
    std::vector<PlannedSpare> spares;
    std::string rebuildRate;                        ///< "HIGH", "MEDIUM", "LOW"
    std::string initializeType;                     ///< "Fast", "Slow"; empty: the controller's own
    std::optional<RAIDConfiguration> configuration; ///< as the core plans it
    Comparison comparison;
    Strategy strategy = Strategy::none;
    std::vector<StrategyReason> strategyBecause;
    std::vector<Loss> losses;
    std::vector<PlanStep> steps;
    std::vector<std::string> oldDifferences; ///< what zolex does otherwise with this controller
};

/// The plan of a machine.
struct MachinePlan {
    /// "p-" and twelve hexadecimal digits: of fingerprint, policies, steps and time.
    std::string id;
    std::string machineSource; ///< as in Snapshot
    Fingerprint fingerprint;
    std::string policiesFile; ///< empty with the built-in defaults
    std::string command;      ///< makes it again: "zolexctl plan site.ini"; empty: not known
    std::string policiesHash; ///< SHA-256 of its bytes
    std::size_t policiesCount = 0;
    std::vector<Finding> policiesFindings; ///< of the file alone
    std::vector<Finding> diagnostics;      ///< of the machine as a whole
    std::vector<ControllerPlanning> controllers;
    std::string consent;               ///< "7Q4K-2M9D"; empty when nothing is lost
    std::vector<std::string> accepted; ///< ids of errors that were let pass
    Rehearsal rehearsal;
    OldCommand oldCommand; ///< of the run over all controllers
    std::vector<std::string> coreMessages;

    /// Whether it can be carried out as it stands: no fault anywhere.
    [[nodiscard]] bool isApplicable() const;
    /// Whether something would be done.
    [[nodiscard]] bool changesSomething() const;
    [[nodiscard]] std::vector<Loss> losses() const;
    [[nodiscard]] std::uint64_t lostBytes() const;
    /// Of all controllers; none of a plan that is not applicable.
    [[nodiscard]] std::vector<PlanStep> steps() const;
};

enum class StrategyWish { automatic, add, rebuild };

struct PlanRequest {
    std::string policiesFile; ///< name as it was given
    std::string policiesText;
    bool classDefaults = false; ///< "--default": no policies, as "zolex /d"
    StrategyWish strategy = StrategyWish::automatic;
    std::vector<std::string> accept; ///< ids of errors to let pass
    /// What is typed to ask for it, but for accept: "zolexctl plan site.ini --controller 2". Empty:
    /// the policies alone.
    std::string command;
};

/// What is typed to ask for the plan, with these ids of errors to let pass.
[[nodiscard]] std::string planCommand(const PlanRequest& request,
                                      const std::vector<std::string>& accept);

/// What is typed to make this plan again from what is there; of one that was read, as far as it
/// tells.
[[nodiscard]] std::string planCommand(const MachinePlan& plan);

struct PoliciesReading;

/// Plans the captured machine. Reads only. A fault on any controller leaves no steps anywhere that
/// would run, and all faults are told. It is not rehearsed yet, and has no id.
[[nodiscard]] MachinePlan planMachine(const Snapshot& snapshot, const PlanRequest& request);
/// The same by policies that were read before, for many machines: readPlanPolicies(request).
[[nodiscard]] MachinePlan planMachine(const Snapshot& snapshot, const PlanRequest& request,
                                      const PoliciesReading& reading);

/// The wanted layout of a planned controller, from its arrays, volumes and spares.
[[nodiscard]] Layout layoutOf(const ControllerPlanning& planning);

} // namespace zolex::companion
