#include "readers/StateTranslation.h"

#include "foundation/Report.h"

namespace zolex {

CString deriveState(std::span<const StateWord> words, const CString& state, Report& report) {
    for (const StateWord& row : words) {
        if (state.equalsNoCase(row.word)) {
            return row.derived;
        }
    }
    report.tracef("***** Unable to recognize input state: %s\n", state.c_str());
    return unknownState;
}

} // namespace zolex
