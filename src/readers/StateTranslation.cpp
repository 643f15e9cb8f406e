#include "readers/StateTranslation.h"

#include "foundation/Report.h"
#include "foundation/Text.h"

namespace zolex {

std::string_view deriveState(std::span<const StateWord> words, std::string_view state,
                             Report& report) {
    for (const StateWord& row : words) {
        if (text::equalsNoCase(state, row.word)) {
            return row.derived;
        }
    }
    report.tracef("***** Unable to recognize input state: %s\n", CString(state).c_str());
    return unknownState;
}

} // namespace zolex
