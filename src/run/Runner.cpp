#include "run/Runner.h"

#include "model/ControllerCatalogue.h"
#include "model/TypeTraits.h"
#include "platform/Platform.h"

namespace zolex {

void Runner::pause(int seconds) {
    for (int second = 0; second < seconds; ++second) {
        platform_.pauseOneSecond();
        events_.secondPassed();
    }
    events_.pauseEnded();
}

bool Runner::run(std::int32_t controllerType, const CString& commandLine) {
    commandLine_ = commandLine;
    tool_->setCommand(commandLine);
    events_.starting(commandLine);
    if (const int seconds = traitsOf(controllerType).secondsBeforeCommand; seconds > 0) {
        pause(seconds);
    }
    return tool_->run(true);
}

bool Runner::runAgain() {
    events_.starting(commandLine_);
    return tool_->run(true);
}

bool isAccepted(std::int32_t controllerType, std::uint32_t exitCode) {
    for (std::int32_t slot = 1; slot <= 3; ++slot) {
        const std::int32_t accepted =
            ControllerCatalogue::getAcceptedReturnCode(controllerType, slot);
        if (accepted >= 0 && exitCode == static_cast<std::uint32_t>(accepted)) {
            return true;
        }
    }
    return false;
}

} // namespace zolex
