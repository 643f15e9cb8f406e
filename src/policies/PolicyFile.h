#pragma once

#include "foundation/CString.h"
#include "foundation/Fault.h"
#include "foundation/FileSystem.h"
#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "policies/Policy.h"
#include "policies/PolicySection.h"

#include <optional>
#include <string_view>
#include <vector>

namespace zolex {

/// How policies are read.
struct PolicyOptions {
    CString file;                ///< name of the file, for its faults
    bool mayBeEmpty = false;     ///< no policies are no fault
    bool notesWhenEmpty = false; ///< and are mentioned
    bool debug = false;          ///< sizes are shown as they are read
    /// Whether the read goes on after a fault and gives all of them. In order not to find what
    /// follows from an earlier fault,
    /// - text that begins no section is skipped up to the next header, and so is a section without
    ///   "]" or whose name does not begin with "Policy.", or the 101st with all after it;
    /// - an entry line that is at fault is left out, with all of its line in the file, and then
    ///   nothing is said of what the section lacks;
    /// - of a section with two AppliesTo.1, which has lost a header, only the first of the repeated
    ///   keywords is reported;
    /// - the rest of a value at fault is not looked at, and the value counts as given;
    /// - the order of arrays, the order of logical drives, an array letter and an array shared with
    ///   5E or 5EE are each reported once a policy.
    bool goOn = false;
};

/// What a policies file holds.
struct PolicyFile {
    /// The policies as they are written; none when the scan has ended at a fault.
    std::vector<PolicySection> sections;
    /// The validated policies; nothing with a fault.
    std::optional<PolicyList> policies;
    /// In the order found: those of all lines, then those of the values. At most one unless the
    /// read goes on.
    std::vector<Fault> faults;

    /// Whether there is a policy of this name, letter case ignored.
    [[nodiscard]] bool hasPolicy(std::string_view name) const;
};

/// Reads policies: scans them and validates keywords and values. Each fault is reported when it is
/// found. `catalogue` knows the model names.
[[nodiscard]] PolicyFile readPolicies(std::string_view text, const ControllerCatalogue& catalogue,
                                      const PolicyOptions& options, Report& report);
/// The same from a file, read from where it stands. A null `file` is one that could not be opened,
/// a fault unless it `isNew`: to be made, and without policies so far.
[[nodiscard]] PolicyFile readPolicies(File* file, bool isNew, const ControllerCatalogue& catalogue,
                                      const PolicyOptions& options, Report& report);

/// The trimmed value of the first `keyword` in the first section `policyName`, letter case ignored;
/// `defaultValue` without one. What is at fault elsewhere does not matter.
[[nodiscard]] CString lookUpPolicy(File& file, std::string_view policyName,
                                   std::string_view keyword, std::string_view defaultValue);

} // namespace zolex
