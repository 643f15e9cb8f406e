#pragma once

#include "foundation/CString.h"
#include "policies/Policy.h"

#include <memory>

namespace zolex {

class Application;

/// What is known of the policies file before it is read.
enum class PoliciesFile {
    asItIs,  ///< nothing
    missing, ///< it was missing; what is there now has no policies
    busy,    ///< another run has it: it counts as one that cannot be opened
};

/// Reads and validates the policies file named in the settings. The first fault ends the read; it
/// has then been reported.
class PolicyReader {
  public:
    explicit PolicyReader(Application& application);
    ~PolicyReader();

    /// Scan and, when there are policies, validate; with "/d" only the built-in policy is made.
    bool read(PoliciesFile state = PoliciesFile::asItIs);
    /// First pass: the file's shape and the policies' names.
    bool scan(PoliciesFile state = PoliciesFile::asItIs);
    /// Second pass: keywords and values, into the policy list.
    bool validate();
    /// The trimmed value of `keyword` in policy `policyName`, letter case ignored; `defaultValue`
    /// when the policy has no such keyword. "File not found" when there is no file.
    CString lookUp(const CString& policyName, const CString& keyword, const CString& defaultValue);

    /// The policies read; null before a successful read.
    [[nodiscard]] const PolicyList* policies() const;
    /// Whether the file held a policy of this name (letter case ignored), after a scan.
    [[nodiscard]] bool hasPolicy(const CString& name) const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace zolex
