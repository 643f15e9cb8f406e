#include "frontend/Words.h"

#include "model/Text.h"

namespace zolex_sim {

namespace {

constexpr std::int64_t greatestSmallNumber = 65535;

} // namespace

Words::Words(const std::vector<std::string>& arguments)
    : words_(splitWords(join(arguments, " "))) {}

std::string_view Words::current() const {
    return atEnd() ? std::string_view() : std::string_view(words_[position_]);
}

bool Words::take(std::string_view word) {
    if (atEnd() || !equalsIgnoringCase(current(), word)) {
        return false;
    }
    ++position_;
    return true;
}

std::optional<std::int64_t> Words::takeNumber() {
    const std::optional<std::int64_t> number = parseWhole(current());
    if (number) {
        ++position_;
    }
    return number;
}

std::optional<int> Words::takeSmallNumber() {
    const std::optional<std::int64_t> number = parseWhole(current());
    if (!number || *number > greatestSmallNumber) {
        return std::nullopt;
    }
    ++position_;
    return static_cast<int>(*number);
}

std::string Words::takeAny() {
    return atEnd() ? std::string() : words_[position_++];
}

std::string Words::complaint() const {
    return atEnd() ? "the command line is not complete"
                   : "\"" + std::string(current()) + "\" is not understood";
}

} // namespace zolex_sim
