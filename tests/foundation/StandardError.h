#pragma once

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>

namespace zolex::test {

/// Matches the whole standard error of a death test; the carriage returns that a system's text mode
/// adds do not count.
class StandardErrorIs {
  public:
    using is_gtest_matcher = void;

    explicit StandardErrorIs(std::string expected) : expected_(std::move(expected)) {}

    bool MatchAndExplain(const std::string& actual, std::ostream* /*listener*/) const {
        std::string text = actual;
        text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
        return text == expected_;
    }
    void DescribeTo(std::ostream* os) const { *os << "is exactly:\n" << expected_; }
    void DescribeNegationTo(std::ostream* os) const { *os << "is not:\n" << expected_; }

  private:
    std::string expected_;
};

/// What the error reporter writes when memory for `detail` is short.
inline std::string memoryReport(const std::string& detail) {
    return "\n\nMemory Allocation Error\n\n"
           "Not enough memory is available for this application.\n\n"
           "Please close some programs to free up memory and try running\n"
           "this application again.\n\n" +
           detail + "\n";
}

} // namespace zolex::test
