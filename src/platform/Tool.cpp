#include "platform/Tool.h"

#include "foundation/Printer.h"
#include "platform/Platform.h"

#include <utility>

namespace zolex {

bool Tool::run(bool capture) {
    output_.reset();
    ChildResult result = platform_.runChild(command_, capture, limit_);
    switch (result.outcome) {
    case ChildOutcome::noPipe:
        printer_.printAlways("CreatePipe Faield:Tool::Tool()\n");
        return false;
    case ChildOutcome::notStarted:
        return false;
    case ChildOutcome::stillRunning:
        printer_.printfAlways(
            "\n### Process %s has failed to execute within the five minute limit.\n",
            command_.c_str());
        printer_.printAlways("Process cancelled.\n");
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
