#pragma once

#include "foundation/Report.h"
#include "policies/PolicyFaults.h"
#include "policies/PolicyLines.h"
#include "policies/PolicySection.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zolex {

/// The first pass over a policies file: its shape, the names of its policies and their keywords.
/// Values are kept as they stand.
class PolicyScan {
  public:
    /// `file` is open for reading. All must outlive this object.
    PolicyScan(File& file, PolicyFaults& faults, Report& report)
        : faults_(faults), report_(report), lines_(file) {}

    /// Reads the file to its end or, unless the read goes on, to the first fault; whether there was
    /// none.
    bool run();
    /// The policies in file order.
    [[nodiscard]] std::vector<PolicySection>& sections() { return sections_; }

  private:
    bool advance();
    bool readSection();
    bool readHeader();
    void skipSection();
    bool readEntries(PolicySection& section);
    bool readEntry(PolicySection& section);
    void leaveOutEntry(PolicySection& section);
    bool checkKeywords(const PolicySection& section);
    [[nodiscard]] bool isNewName(std::string_view name) const;
    bool failAtLine(FaultKind kind, std::string_view piece, std::string_view possible = {});

    PolicyFaults& faults_;
    Report& report_;
    PolicyLines lines_;
    std::string_view line_; ///< the line at hand
    bool haveLine_ = false;
    std::int64_t faultyLine_ = 0; ///< line of the file with the latest fault
    std::vector<PolicySection> sections_;
};

/// The text between "[" and the first "]" of a line that begins with "["; nothing without a "]".
[[nodiscard]] std::optional<std::string_view> headerName(std::string_view line) noexcept;
/// Whether a policy may have this name: "Policy." (letter case ignored), then at least one
/// character, all of them letters, digits, ".", "_" or "-".
[[nodiscard]] bool isValidPolicyName(std::string_view name) noexcept;

} // namespace zolex
