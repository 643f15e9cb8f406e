#include "frontend/Words.h"

#include "model/Text.h"

namespace zolex_sim {

Words::Words(const std::vector<std::string>& arguments)
    : words_(splitWords(join(arguments, " "))) {}

std::string_view Words::current() const {
    return atEnd() ? std::string_view() : std::string_view(words_[position_]);
}

std::string_view Words::next() const {
    const bool exists = position_ + 1 < words_.size();
    return exists ? std::string_view(words_[position_ + 1]) : std::string_view();
}

bool Words::take(std::string_view word) {
    if (atEnd() || !equalsIgnoringCase(current(), word)) {
        return false;
    }
    ++position_;
    return true;
}

std::string Words::takeAny() {
    std::string word(current());
    position_ += atEnd() ? 0 : 1;
    return word;
}

std::optional<std::int64_t> Words::takeNumber(std::int64_t greatest) {
    const std::optional<std::int64_t> number = parseWhole(current());
    if (!number || *number > greatest) {
        return std::nullopt;
    }
    ++position_;
    return number;
}

bool Words::takeSize(std::optional<std::int64_t>& sizeMb) {
    if (take("MAX")) {
        sizeMb.reset();
        return true;
    }
    sizeMb = takeNumber(greatestSizeMb);
    return sizeMb.has_value();
}

std::optional<RaidLevel> Words::takeLevel() {
    for (const LevelRules& rules : allLevels()) {
        if (take(levelWord(rules.level))) {
            return rules.level;
        }
    }
    return std::nullopt;
}

std::optional<DriveLocation> Words::takePlace() {
    const std::optional<std::int64_t> channel = takeNumber(greatestPlaceNumber);
    const std::optional<std::int64_t> number =
        channel ? takeNumber(greatestPlaceNumber) : std::nullopt;
    return number
               ? std::optional(DriveLocation{static_cast<int>(*channel), static_cast<int>(*number)})
               : std::nullopt;
}

bool Words::takePlaces(std::string_view end, std::vector<DriveLocation>& places) {
    while (!atEnd() && !equalsIgnoringCase(current(), end)) {
        const std::optional<DriveLocation> place = takePlace();
        if (!place) {
            return false;
        }
        places.push_back(*place);
    }
    return !places.empty();
}

std::string Words::complaint() const {
    return atEnd() ? "The command line is not complete."
                   : "Unexpected parameter: " + std::string(current());
}

std::string_view levelWord(RaidLevel level) {
    constexpr std::string_view prefix = "RAID";
    const std::string_view name = rulesOf(level).name;
    return name.substr(name.substr(0, prefix.size()) == prefix ? prefix.size() : 0);
}

} // namespace zolex_sim
