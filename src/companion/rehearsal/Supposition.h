#pragma once

#include "companion/machine/Capture.h"
#include "companion/machine/Snapshot.h"
#include "platform/Platform.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// What is supposed of one drive: "fail:32:3", "missing:32:3", "size:32:3=34715".
struct Supposition {
    enum class Kind { fail, missing, size };
    Kind kind = Kind::fail;
    std::string location;    ///< as the utility's commands say it: "32:3", ":3", "4"
    std::int64_t sizeMb = 0; ///< of kind size

    /// "drive 32:3 has failed".
    [[nodiscard]] std::string words() const;
};

/// Nothing for a text that is none.
[[nodiscard]] std::optional<Supposition> suppositionOf(std::string_view text);
/// What is wrong with the text; empty when nothing is.
[[nodiscard]] std::string faultOfSupposition(std::string_view text);

/// A machine in which what is supposed is so.
struct SupposedMachine {
    std::vector<bool> holds;          ///< for each supposition: whether the machine has the drive
    std::optional<Snapshot> snapshot; ///< nothing: none of the drives is there, or it cannot be
    std::string because;              ///< why it cannot be; empty: it can
};

/// Captures the machine of `snapshot` again, with what is supposed of its drives: on the virtual
/// copies of the controllers that have them. A drive of this location is meant on each controller.
/// A member of another size stands for a drive that has taken its place. `machine` and `request`
/// are those of the snapshot.
[[nodiscard]] SupposedMachine suppose(const Snapshot& snapshot,
                                      const std::vector<Supposition>& suppositions,
                                      Platform& machine, const CaptureRequest& request);

} // namespace zolex::companion
