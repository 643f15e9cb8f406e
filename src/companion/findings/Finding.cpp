#include "companion/findings/Finding.h"

namespace zolex::companion {

std::string_view severityWord(Severity severity) {
    switch (severity) {
    case Severity::note:
        return "note";
    case Severity::warning:
        return "warning";
    case Severity::error:
        return "error";
    }
    return {};
}

} // namespace zolex::companion
