#include "companion/commands/ShowPlan.h"

#include "companion/json/PlanDocument.h"
#include "companion/picture/PlanPicture.h"
#include "companion/picture/PlanText.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Timestamp.h"

namespace zolex::companion {

namespace {

std::string shownPlan(const Context& context, const PlanReading& reading, const std::string& file) {
    switch (context.format) {
    case Format::json:
        return planDocument(*reading.plan, reading.head);
    case Format::svg:
        return planSvg(*reading.plan);
    case Format::html:
        return planHtml(*reading.plan, reading.head.madeAt, file);
    default:
        PlanTextTerms terms;
        terms.verbose = context.verbose;
        terms.savedTo = file;
        return planText(*reading.plan, context.style, terms);
    }
}

} // namespace

int showPlan(Context& context, const std::string& file) {
    const PlanReading reading = readPlanFile(context.platform.files(), file);
    if (!reading.plan) {
        context.platform.console().writeError(
            diagnosticsText(reading.findings, {}, context.errorStyle));
        if (context.format == Format::json) {
            const DocumentHead head{context.argv, timestampOf(context.platform.localTime())};
            static_cast<void>(deliver(context, failedPlanDocument(reading.findings, head)));
        }
        return exit_code::notPossible;
    }
    if (context.format == Format::policies) {
        return failWith(context, "a plan cannot be shown as policies",
                        "its policies are " + printable(reading.plan->policiesFile));
    }
    return deliver(context, shownPlan(context, reading, file)) ? exit_code::done
                                                               : exit_code::notPossible;
}

} // namespace zolex::companion
