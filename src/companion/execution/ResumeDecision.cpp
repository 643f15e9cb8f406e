#include "companion/execution/ResumeDecision.h"

namespace zolex::companion {

ResumeAction resumeAction(const ResumeCase& at) {
    switch (at.last) {
    case LastEvent::none:
        return at.standsBefore ? ResumeAction::begin : ResumeAction::stop;
    case LastEvent::done:
        return at.isLastStep    ? ResumeAction::verify
               : at.standsAfter ? ResumeAction::behind
                                : ResumeAction::stop;
    case LastEvent::refused:
        // One that changes nothing that is listed is run again.
        return at.standsBefore  ? ResumeAction::again
               : at.standsAfter ? ResumeAction::foundDone
                                : ResumeAction::stop;
    case LastEvent::started:
        break;
    }
    if (at.standsBefore || (at.isRepeatable && at.standsAfter) ||
        (at.isClear && at.isPartOfBefore)) {
        return ResumeAction::again;
    }
    return at.standsAfter ? ResumeAction::foundDone : ResumeAction::stop;
}

} // namespace zolex::companion
