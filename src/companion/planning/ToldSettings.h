#pragma once

#include "model/Configuration.h"
#include "model/RAIDController.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace zolex::companion {

/// What the command lines of a logical drive tell its controller. What they do not tell is the
/// controller's own.
struct ToldSettings {
    std::optional<std::uint64_t> stripSizeBytes;
    std::string writeCache; ///< as in LayoutVolume
    std::string readCache;
};

/// Found by making the lines with other settings. `drive` is the index of the logical drive.
[[nodiscard]] ToldSettings toldSettings(const RAIDController& record, std::int32_t number,
                                        const RAIDConfiguration& configuration, std::size_t drive);

/// Whether the lines tell how logical drives are initialized.
[[nodiscard]] bool tellsInit(const RAIDController& record, std::int32_t number,
                             const RAIDConfiguration& configuration);

} // namespace zolex::companion
