#include "megacli/Tokens.h"

#include "model/Text.h"

namespace zolex_sim::megacli {

Tokens::Tokens(const std::vector<std::string>& arguments) {
    std::string spaced;
    for (const char c : join(arguments, " ")) {
        if (std::string_view("[]{},").find(c) == std::string_view::npos) {
            spaced += c;
        } else {
            spaced += {' ', c, ' '};
        }
    }
    tokens_ = splitWords(spaced);
}

std::string_view Tokens::current() const {
    return atEnd() ? std::string_view() : std::string_view(tokens_[position_]);
}

bool Tokens::take(std::string_view word) {
    if (atEnd() || !equalsIgnoringCase(current(), word)) {
        return false;
    }
    ++position_;
    return true;
}

bool Tokens::takeNumber(std::string_view name, std::int64_t& number) {
    if (atEnd() || !startsWithIgnoringCase(current(), name)) {
        return false;
    }
    std::string_view digits = current().substr(name.size());
    const bool apart = digits.empty() && position_ + 1 < tokens_.size();
    if (apart) {
        digits = tokens_[position_ + 1];
    }
    const std::optional<std::int64_t> found = parseWhole(digits);
    if (!found) {
        return false;
    }
    number = *found;
    position_ += apart ? 2 : 1;
    return true;
}

bool Tokens::takeLocations(std::vector<DriveLocation>& locations) {
    const std::size_t start = position_;
    std::vector<DriveLocation> found;
    bool complete = take("[");
    while (complete) {
        const std::optional<DriveLocation> location = parseLocation(current());
        if (!location) {
            complete = false;
            break;
        }
        found.push_back(*location);
        ++position_;
        if (take("]")) {
            break;
        }
        complete = take(",");
    }
    if (!complete) {
        position_ = start;
        return false;
    }
    locations = std::move(found);
    return true;
}

} // namespace zolex_sim::megacli
