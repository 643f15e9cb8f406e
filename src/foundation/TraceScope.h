#pragma once

#include "foundation/Report.h"

namespace zolex {

/// The word that traces show for a result.
[[nodiscard]] constexpr const char* resultWord(bool result) {
    return result ? "true" : "false";
}

/// The two traces of a step that has one way in and one way out: "Entering NAME" when it is made,
/// and "Exiting NAME" with the result. The name must outlive it.
class TraceScope {
  public:
    TraceScope(Report& report, const char* name) : report_(report), name_(name) {
        report_.tracef("Entering %s\n", name_);
    }

    // Each traces the exit and gives the result on.
    bool returning(bool result) const {
        report_.tracef("Exiting %s, returning %s\n", name_, resultWord(result));
        return result;
    }
    bool returnValue(bool result) const {
        report_.tracef("Exiting %s, returnValue=%s\n", name_, resultWord(result));
        return result;
    }

  private:
    Report& report_;
    const char* name_;
};

} // namespace zolex
