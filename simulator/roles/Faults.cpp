#include "roles/Faults.h"

#include "model/Text.h"

#include <cstddef>

namespace zolex_sim {

FaultMatch countFaults(Server& server, std::string_view command) {
    FaultMatch match;
    for (Fault& fault : server.faults) {
        if (!containsIgnoringCase(command, fault.match)) {
            continue;
        }
        if (fault.seen < fault.occurrence) {
            ++fault.seen;
            match.counted = true;
        } else if (fault.occurrence > 0) {
            continue; // its turn has passed
        }
        if (match.due == nullptr && fault.seen == fault.occurrence) {
            match.due = &fault;
        }
    }
    server.effect = match.due != nullptr ? match.due->effect : std::nullopt;
    return match;
}

std::string faultOutput(const Fault& fault) {
    constexpr std::size_t lineLength = 80;
    std::string text = fault.output;
    const std::size_t end = text.size() + static_cast<std::size_t>(fault.outputBytes);
    text.resize(end, '.');
    for (std::size_t i = fault.output.size() + lineLength; i <= end; i += lineLength) {
        text[i - 1] = '\n';
    }
    if (fault.outputBytes > 0) {
        text.back() = '\n';
    }
    return text;
}

} // namespace zolex_sim
