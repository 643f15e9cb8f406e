#include "conf/Session.h"

#include "model/Text.h"

namespace zolex_sim::conf {
namespace {

std::string banner(const Call& call) {
    return formatted("Controllers found: %zu\n", call.found);
}

} // namespace

PlayResult completed(const Call& call, const std::string& text, bool changed) {
    return {0, banner(call) + text + "\nCommand completed successfully.\n", changed};
}

PlayResult refused(const Call& call, const std::string& reason) {
    return {1, banner(call) + reason + "\n\nCommand aborted.\n", false};
}

PlayResult misunderstood(const Call& call) {
    return refused(call, call.words.complaint());
}

std::optional<PlayResult> takeConfirmation(Call& call) {
    if (call.words.atEnd()) {
        return refused(call, "The command has not been confirmed. Use NOPROMPT to run it without "
                             "a question.");
    }
    if (!call.words.take("NOPROMPT") || !call.words.atEnd()) {
        return misunderstood(call);
    }
    return std::nullopt;
}

} // namespace zolex_sim::conf
