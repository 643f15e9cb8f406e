#include "policies/PolicyLines.h"

#include <algorithm>

namespace zolex {

int PolicyLines::peek() {
    if (at_ == filled_) {
        at_ = 0;
        filled_ = file_.read(buffer_);
    }
    return at_ == filled_ ? endOfFile : static_cast<unsigned char>(buffer_[at_]);
}

int PolicyLines::get() {
    int character = peek();
    if (character == endOfFile) {
        return endOfFile;
    }
    ++at_;
    if (character == '\r' && peek() == '\n') {
        character = '\n';
        ++at_;
    }
    return character;
}

std::size_t PolicyLines::takeRun(std::size_t length) {
    const char* const start = buffer_.data() + at_;
    std::string_view run(start, std::min(filled_ - at_, maxLength - length));
    run = run.substr(0, run.find('\n'));
    run = run.substr(0, run.find('\r'));
    std::copy(run.begin(), run.end(), line_.begin() + static_cast<std::ptrdiff_t>(length));
    at_ += run.size();
    return run.size();
}

bool PolicyLines::next(std::string_view& line) {
    std::size_t length = 0;
    while (length < maxLength && wholeLength_ <= longestLine) {
        if (const std::size_t run = takeRun(length); run > 0) {
            length += run;
            wholeLength_ += run;
            continue;
        }
        const int character = get();
        if (character == endOfFile) {
            break;
        }
        line_[length++] = static_cast<char>(character);
        ++wholeLength_;
        if (character == '\n') {
            ++number_;
            wholeLength_ = 0;
            break;
        }
    }
    line = std::string_view(line_.data(), length);
    isTerminated_ = line.ends_with('\n');
    column_ = nextColumn_;
    nextColumn_ = isTerminated_ ? 1 : nextColumn_ + length;
    return length != 0 && !failed();
}

bool PolicyLines::nextMeaningful(std::string_view& line) {
    while (next(line)) {
        const std::string_view body = withoutLeadingSpaces(line);
        const bool skipped = body.empty() || body[0] == ';' || body[0] == '\n' || body[0] == '\r';
        if (!skipped) {
            return true;
        }
    }
    return false;
}

std::string_view withoutLeadingSpaces(std::string_view line) noexcept {
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    return line;
}

bool isSectionHeader(std::string_view line) noexcept {
    return withoutLeadingSpaces(line).substr(0, 1) == "[";
}

} // namespace zolex
