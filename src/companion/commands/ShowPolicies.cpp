#include "companion/commands/ShowPolicies.h"

#include "companion/rewriting/CapturedPolicies.h"
#include "companion/text/Diagnostics.h"

#include <algorithm>

namespace zolex::companion {

int showPolicies(Context& context, const ShowOptions& options, const Snapshot& snapshot,
                 const LocalTime& time) {
    CapturedPolicies captured =
        capturedPolicies(snapshot, {options.exact, time, std::string(ZOLEX_VERSION)});
    if (!deliver(context, captured.text)) {
        return exit_code::notPossible;
    }
    if (context.quiet) {
        captured.findings.erase(std::remove_if(captured.findings.begin(), captured.findings.end(),
                                               [](const Finding& finding) {
                                                   return finding.severity == Severity::note;
                                               }),
                                captured.findings.end());
    }
    if (!captured.findings.empty()) {
        context.platform.console().writeError(
            diagnosticsText(captured.findings, {}, context.errorStyle));
    }
    return captured.comesBack ? exit_code::done : exit_code::found;
}

} // namespace zolex::companion
