#include "readers/StateTranslation.h"

#include "foundation/Printer.h"

namespace zolex {

CString deriveState(std::span<const StateWord> words, const CString& state, Printer& printer) {
    for (const StateWord& row : words) {
        if (state.equalsNoCase(row.word)) {
            return row.derived;
        }
    }
    printer.tracef("***** Unable to recognize input state: %s\n", state.c_str());
    return unknownState;
}

} // namespace zolex
