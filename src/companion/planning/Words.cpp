#include "companion/planning/Plan.h"

namespace zolex::companion {

std::string_view strategyWord(Strategy strategy) {
    switch (strategy) {
    case Strategy::none:
        return "none";
    case Strategy::add:
        return "add";
    case Strategy::rebuild:
        break;
    }
    return "rebuild";
}

std::string_view dispositionWord(Disposition disposition) {
    switch (disposition) {
    case Disposition::planned:
        return "planned";
    case Disposition::already:
        return "already";
    case Disposition::skipped:
        return "skipped";
    case Disposition::refused:
        break;
    }
    return "refused";
}

} // namespace zolex::companion
