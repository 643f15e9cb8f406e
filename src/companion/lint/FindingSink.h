#pragma once

#include "companion/findings/Finding.h"
#include "companion/lint/PolicyDocument.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

/// Collects the findings of one file. Severity and `refusedBy` are those of the rule's row; what is
/// otherwise is changed in the finding that `add` gives, which holds until the next call.
class FindingSink {
  public:
    explicit FindingSink(std::string file) : file_(std::move(file)) {}

    Finding& add(std::string_view rule, const TextPlace& start, const TextPlace& end,
                 std::string summary, std::vector<std::string> help = {});
    /// At a piece of the file.
    Finding& add(std::string_view rule, const Piece& piece, std::string summary,
                 std::vector<std::string> help = {}) {
        return add(rule, piece.start, piece.end, std::move(summary), std::move(help));
    }
    /// At the name of a policy: what is missing in it.
    Finding& add(std::string_view rule, const DocumentPolicy& policy, std::string summary,
                 std::vector<std::string> help = {});
    /// At line 1: what is missing in the file.
    Finding& addToFile(std::string_view rule, std::string summary,
                       std::vector<std::string> help = {});

    [[nodiscard]] const std::vector<Finding>& findings() const { return findings_; }
    [[nodiscard]] std::vector<Finding> take() { return std::move(findings_); }

  private:
    std::string file_;
    std::vector<Finding> findings_;
};

/// Points to another piece of the same file that the finding is about, and says what it is.
void pointTo(Finding& finding, const Piece& other, std::string what);

} // namespace zolex::companion
