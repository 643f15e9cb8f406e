#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim::conf {

/// An option that may stand before the size of a logical drive, and the words that may follow it.
struct CreateOption {
    std::string_view word;
    std::span<const std::string_view> values;
};

/// In what the two utilities differ.
struct Dialect {
    std::string_view utility;
    std::span<const CreateOption> createOptions; ///< besides those that both have
    bool simpleVolumes;                          ///< "SIMPLE VOLUME" asks for a volume of one drive
    bool removals;                               ///< single logical drives and spares can go
    /// The largest stripe size in KB of a level on so many drives; 0 without a limit of its own.
    int (*largestStripeKb)(RaidLevel level, std::size_t drives);
    /// The listing of one controller from the heading of its first section to the last section;
    /// controllers are numbered from 1.
    std::string (*listing)(const Controller& controller, std::size_t number);
};

/// Plays the utility of the dialect.
PlayResult playConf(const Dialect& dialect, Server& server,
                    const std::vector<std::string>& options);

} // namespace zolex_sim::conf
