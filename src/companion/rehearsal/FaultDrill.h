#pragma once

#include "companion/planning/Plan.h"
#include "companion/rehearsal/VirtualCopy.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// Where a plan goes on after a step that was not accepted.
enum class ResumeAt {
    again,  ///< the step has done nothing, or running it again is harmless
    behind, ///< it has done its work
    nowhere ///< what stands is none of the layouts that were expected
};

/// Judges by the hash of the layout that is found, and those expected before and behind the step.
[[nodiscard]] ResumeAt resumeAt(std::string_view found, std::string_view before,
                                std::string_view after, bool isRepeatable);

/// The copy between two steps of the plan.
struct RehearsalStage {
    CopyState state;
    std::string layout; ///< hash
};

struct DrillResult {
    std::int32_t faultsTried = 0;           ///< steps that were made to fail
    std::int32_t resumesAsPlanned = 0;      ///< of them those where every way ended as planned
    std::vector<std::int32_t> notResumable; ///< numbers of the others
};

/// Whether what the step came to counts as success.
[[nodiscard]] bool isAccepted(const PlanStep& step, const PlayedLine& played);

/// Makes each step fail: once without doing anything, once having done its work, and one that is
/// repeatable is run a second time. Each time the plan goes on as a resumption would, and must come
/// to the state in which the rehearsal was at that place, or else to the layout of its end.
/// `stages` are those of the rehearsal, one more than steps.
[[nodiscard]] DrillResult drillFaults(VirtualCopy& copy, const std::vector<PlanStep>& steps,
                                      const std::vector<RehearsalStage>& stages);

} // namespace zolex::companion
