#include "companion/commands/Commands.h"
#include "companion/commands/Explanations.h"
#include "companion/json/ExplainDocument.h"
#include "companion/text/Timestamp.h"

namespace zolex::companion {

int explain(Context& context, const std::string& code) {
    const std::optional<Explanation> explanation = explanationOf(code);
    if (!explanation) {
        const std::optional<std::string> nearest = nearestCode(code);
        return failWith(context, "there is no code \"" + printable(code) + "\"",
                        nearest
                            ? "zolexctl explain " + *nearest + " is the nearest"
                            : "codes are such as ZX411, 11 (of zolex) and exit-4 (of zolexctl)");
    }
    const std::string text =
        context.format == Format::json
            ? explainDocument(*explanation,
                              {context.argv, timestampOf(context.platform.localTime())})
            : explanationText(*explanation, context.style);
    return deliver(context, text) ? exit_code::done : exit_code::notPossible;
}

} // namespace zolex::companion
