#include "platform/Tool.h"

#include "foundation/Report.h"
#include "platform/Platform.h"

#include <utility>

namespace zolex {

bool Tool::run(bool capture) {
    output_.reset();
    ChildResult result = platform_.runChild(command_, capture, limit_);
    switch (result.outcome) {
    case ChildOutcome::noPipe:
        report_.fault({.kind = FaultKind::childPipe, .wanted = command_});
        return false;
    case ChildOutcome::notStarted:
        return false;
    case ChildOutcome::stillRunning:
        report_.fault({.kind = FaultKind::childStillRunning, .wanted = command_});
        return false;
    case ChildOutcome::ended:
    case ChildOutcome::notClosed:
        break;
    }
    exitCode_ = result.exitCode;
    output_ = std::make_shared<CapturedOutput>(std::move(result.output));
    return result.outcome == ChildOutcome::ended;
}

} // namespace zolex
