#pragma once

#include "foundation/CString.h"
#include "foundation/FileSystem.h"
#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "policies/PolicyFile.h"

namespace zolex {

/// Where policies come from.
struct PolicySource {
    CString file;
    bool builtIn = false; ///< no file is read, only the built-in policy is made
    bool capture = false; ///< policies will be appended: the file may be missing or without any
    bool fake = false;    ///< and then it is not mentioned
    bool debug = false;   ///< sizes are shown as they are read
};

/// What is known of the policies file before it is read.
enum class PoliciesFile {
    asItIs,  ///< nothing
    missing, ///< it was missing; what is there now has no policies
    busy,    ///< another run has it: it counts as one that cannot be opened
};

/// Opens policies files and keeps what was read of the latest. The first fault ends a read; it has
/// then been reported.
class PolicyReader {
  public:
    PolicyReader(FileSystem& files, const ControllerCatalogue& catalogue, Report& report)
        : files_(files), catalogue_(catalogue), report_(report) {}

    /// Scan and, when there are policies, validate.
    bool read(const PolicySource& source, PoliciesFile state = PoliciesFile::asItIs);
    /// The trimmed value of `keyword` in policy `policyName` of file `name` as it is now, letter
    /// case ignored; `defaultValue` when the policy has no such keyword. "File not found" when
    /// there is no file.
    CString lookUp(const CString& name, const CString& policyName, const CString& keyword,
                   const CString& defaultValue);

    /// The policies read; null before a successful read.
    [[nodiscard]] const PolicyList* policies() const {
        return file_.policies ? &*file_.policies : nullptr;
    }
    /// Whether the file held a policy of this name (letter case ignored), after a scan.
    [[nodiscard]] bool hasPolicy(const CString& name) const { return file_.hasPolicy(name); }
    [[nodiscard]] const PolicyFile& file() const { return file_; }

  private:
    FileSystem& files_;
    const ControllerCatalogue& catalogue_;
    Report& report_;
    PolicyFile file_;
};

} // namespace zolex
