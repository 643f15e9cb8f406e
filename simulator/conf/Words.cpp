#include "conf/Words.h"

#include "model/Text.h"

namespace zolex_sim::conf {

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

} // namespace zolex_sim::conf
