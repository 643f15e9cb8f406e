#include "megacli/Tokens.h"

#include "model/Text.h"

#include <utility>

namespace zolex_sim::megacli {
namespace {

std::string spaced(const std::vector<std::string>& arguments) {
    std::string text;
    for (const char c : join(arguments, " ")) {
        if (std::string_view("[]{},").find(c) == std::string_view::npos) {
            text += c;
        } else {
            text += {' ', c, ' '};
        }
    }
    return text;
}

} // namespace

Tokens::Tokens(const std::vector<std::string>& arguments) : Words({spaced(arguments)}) {}

bool Tokens::takeNumbered(std::string_view name, std::int64_t& number) {
    if (atEnd() || !startsWithIgnoringCase(current(), name)) {
        return false;
    }
    std::string_view digits = current().substr(name.size());
    const bool apart = digits.empty();
    if (apart) {
        digits = next();
    }
    const std::optional<std::int64_t> found = parseWhole(digits);
    if (!found) {
        return false;
    }
    number = *found;
    takeAny();
    if (apart) {
        takeAny();
    }
    return true;
}

bool Tokens::takeLocations(std::vector<DriveLocation>& locations) {
    const Tokens start = *this;
    std::vector<DriveLocation> found;
    bool complete = take("[");
    while (complete) {
        const std::optional<DriveLocation> location = parseLocation(current());
        if (!location) {
            complete = false;
            break;
        }
        found.push_back(*location);
        takeAny();
        if (take("]")) {
            break;
        }
        complete = take(",");
    }
    if (!complete) {
        *this = start;
        return false;
    }
    locations = std::move(found);
    return true;
}

} // namespace zolex_sim::megacli
