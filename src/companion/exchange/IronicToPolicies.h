#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

struct IronicRequest {
    std::string file;                  ///< name of the document as it was given
    std::string model;                 ///< controller model that is meant; or empty
    const Snapshot* machine = nullptr; ///< whose drives are meant; or null
    std::string version;               ///< of this program, for the comments
};

/// Policies that were made of a RAID configuration for Ironic.
struct IronicPolicies {
    std::string text; ///< empty with an error
    /// Errors: why it is not possible. Else what policies cannot say, and what was chosen; in the
    /// order of the document.
    std::vector<Finding> findings;
    std::size_t policies = 0;
    std::size_t arrays = 0;
    std::size_t logicalDrives = 0;
};

/// Writes one policy for each controller that the document means. It is checked, and with a machine
/// planned: the plan must make just these logical drives on just these drives.
[[nodiscard]] IronicPolicies policiesOf(std::string_view ironic, const IronicRequest& request);

} // namespace zolex::companion
