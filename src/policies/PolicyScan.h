#pragma once

#include "policies/PolicyLines.h"
#include "policies/PolicySection.h"

#include <optional>
#include <string_view>
#include <vector>

namespace zolex {

class Application;

/// The first pass over a policies file: its shape, the names of its policies and their keywords.
/// Values are kept as they stand.
class PolicyScan {
  public:
    /// `file` is open for reading and must outlive this object.
    PolicyScan(Application& application, File& file) : application_(application), lines_(file) {}

    /// Reads the file to its end; false after the first fault, which has been reported.
    bool run();
    /// The policies in file order.
    [[nodiscard]] std::vector<PolicySection>& sections() { return sections_; }

  private:
    bool advance();
    bool readSection();
    bool readHeader();
    bool readEntries(PolicySection& section);
    bool checkKeywords(const PolicySection& section);
    [[nodiscard]] bool isNewName(std::string_view name) const;
    bool failAtLine(std::string_view head, std::string_view value, std::string_view tail);
    bool fail(std::string_view message);

    Application& application_;
    PolicyLines lines_;
    std::string_view line_; ///< the line at hand
    bool haveLine_ = false;
    std::vector<PolicySection> sections_;
};

/// The text between "[" and the first "]" of a line that begins with "["; nothing without a "]".
[[nodiscard]] std::optional<std::string_view> headerName(std::string_view line) noexcept;
/// Whether a policy may have this name: "Policy." (letter case ignored), then at least one
/// character, all of them letters, digits, ".", "_" or "-".
[[nodiscard]] bool isValidPolicyName(std::string_view name) noexcept;

} // namespace zolex
