#pragma once

#include "companion/planning/Plan.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// How one controller stands to what is wanted of it.
struct ControllerDiff {
    enum class Result { same, equivalent, different, skipped, unknown };
    std::int32_t number = 0;
    std::string model;
    Result result = Result::unknown;
    std::string because; ///< of skipped and unknown: for people
    std::string policy;
    std::int32_t policyLine = 0;
    Comparison comparison;
    Layout captured;
    Layout wanted;
    /// The plan has an error: nothing would be done. Of different and unknown.
    bool isRefused = false;
    /// Of different that is not refused: whether adding is enough, else why not.
    bool addingIsEnough = false;
    std::vector<std::string> takesRebuild; ///< "strip size", "other drives"
    std::vector<std::string> toRemove;     ///< "LD 2", "hot spare 32:7"
    std::vector<Finding> diagnostics;      ///< of refused and unknown
    // By a certificate: what is not as it was, though the layout is.
    bool hasOtherDrives = false;
    bool hasVolumesMadeAnew = false;
    bool hasVolumesUntold = false; ///< they may have been made anew
};
/// "same", "equivalent", "different", "skipped", "unknown".
[[nodiscard]] std::string_view diffResultWord(ControllerDiff::Result result);

/// The machine against policies or a plan.
struct MachineDiff {
    std::string wantedBy; ///< name of the policies file, of the plan, or of the certificate
    bool isByPlan = false;
    bool isByCertificate = false;
    ControllerDiff::Result result = ControllerDiff::Result::unknown; ///< the worst of all
    std::vector<ControllerDiff> controllers;
    std::vector<Finding> diagnostics; ///< of the machine as a whole
    Fingerprint fingerprint;

    /// "policy", "plan", "certificate": who wants it.
    [[nodiscard]] std::string_view wisher() const;
};

/// The machine that the plan was made of against the plan.
[[nodiscard]] MachineDiff diffOf(const MachinePlan& plan);
/// A machine against a plan that was made earlier: of this machine, else every controller is
/// unknown and `diagnostics` tell why.
/// Of controllers that are named, only those.
[[nodiscard]] MachineDiff diffOf(const Snapshot& snapshot, const MachinePlan& earlier,
                                 const std::vector<std::int32_t>& controllers = {});

/// Gives `diff` what stands on a captured controller, held against what is wanted of it, and
/// whether adding is enough.
void compareStanding(ControllerDiff& diff, const ControllerSnapshot& details, Layout wanted);
/// The worst of all; unknown without controllers.
[[nodiscard]] ControllerDiff::Result worstOf(const std::vector<ControllerDiff>& controllers);
/// Which machine it is, by the controllers of an earlier fingerprint alone.
[[nodiscard]] Fingerprint fingerprintFor(const Snapshot& snapshot, const Fingerprint& earlier);
/// By what it is another machine: "it is of type 8837, the plan is of one of type 8840". `what` is
/// what was made earlier: "the plan". Empty: the same, or it cannot be said.
[[nodiscard]] std::string whatIsOther(const Fingerprint& found, const Fingerprint& earlier,
                                      const std::string& what);

} // namespace zolex::companion
