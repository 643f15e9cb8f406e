#pragma once

#include <cstddef>

namespace zolex::companion {

/// What the journal says last of a controller's steps.
enum class LastEvent {
    none,    ///< none of its steps was begun
    started, ///< step-started, and how it ended nobody has seen
    refused, ///< step-ended, not accepted
    done,    ///< step-ended, accepted; or step-found-done
};

/// Where a run stands on one controller. `last` is of step k.
struct ResumeCase {
    LastEvent last = LastEvent::none;
    bool isLastStep = false;   ///< k is the last step of the controller
    bool isRepeatable = false; ///< k
    bool isClear = false;      ///< k clears the controller as a whole
    bool standsBefore = false; ///< the layout is the one foreseen in front of k; of none: the first
    bool standsAfter = false;  ///< the layout is the one foreseen behind k
    bool isPartOfBefore = false; ///< some of what stood in front of k is gone, and nothing is new
};

enum class ResumeAction {
    begin,     ///< with the first step
    again,     ///< run k
    foundDone, ///< note that k has done its work; go on behind it
    behind,    ///< go on behind k
    verify,    ///< all steps are done
    stop,      ///< what stands is nothing that the plan foresaw at this place
};

[[nodiscard]] ResumeAction resumeAction(const ResumeCase& at);

} // namespace zolex::companion
