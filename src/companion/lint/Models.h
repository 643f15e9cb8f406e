#pragma once

#include "commands/CommandLines.h"
#include "engine/ConfigClasses.h"
#include "foundation/Fault.h"
#include "model/Configuration.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

/// What the planner and the command lines make of a controller model, found by asking them:
/// policies of one array are planned for controllers that exist here alone.
namespace zolex::companion {

/// A kind of controller that a model name stands for.
struct Kind {
    std::int32_t type = 0;
    std::int32_t subtype = 0;
    const ConfigDefaults* rules = nullptr;
    friend bool operator==(const Kind&, const Kind&) = default;
};

/// The kinds that are called so (letter case ignored), without those that are planned and commanded
/// alike. Empty for a name that no controller has.
[[nodiscard]] std::vector<Kind> kindsOf(std::string_view model);
/// One kind for each row of rules.
[[nodiscard]] const std::vector<Kind>& allKinds();
/// "MEGACLI".
[[nodiscard]] std::string utilityOf(std::int32_t controllerType);

/// Why a RAID level does not take a number of drives.
struct LevelRefusal {
    std::int32_t level = 0; ///< the default level where none is given; -1 when no level fits
    std::string possible;   ///< "3 or more"; empty when no level fits
};

/// The settings that a command line may tell.
struct LineSettings {
    std::int32_t stripeSize = stripe::none;
    std::int32_t readAhead = read_ahead::adaptive;
    std::int32_t rebuildRate = rebuild_rate::high;
    std::int32_t init = init_choice::quick;
    std::int32_t writeCache = write_cache::notGiven;
    std::int32_t sizeMb = sizeFill;
    friend bool operator<(const LineSettings& a, const LineSettings& b) {
        return a.asTuple() < b.asTuple();
    }

  private:
    [[nodiscard]] std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                             std::int32_t>
    asTuple() const {
        return {stripeSize, readAhead, rebuildRate, init, writeCache, sizeMb};
    }
};

/// What happens to further logical drives of an array.
enum class FurtherDrives {
    made,
    leftOut, ///< without a word
    refused,
};

/// Asks and remembers the answers.
class Models {
  public:
    /// Nothing when the level, or the default level, takes so many drives.
    const std::optional<LevelRefusal>& refusal(const Kind& kind, std::int32_t level,
                                               std::size_t drives);
    /// The level of an array that gives none; -1 when no level fits.
    [[nodiscard]] static std::int32_t levelOf(const Kind& kind, std::int32_t level,
                                              std::size_t drives);
    /// The lines of one array of so many drives with one logical drive.
    const CommandLines& lines(const Kind& kind, std::int32_t level, std::size_t drives,
                              const LineSettings& settings);
    /// Whether the utility can be told to make this level.
    bool hasCommand(const Kind& kind, std::int32_t level);
    /// The least number of drives that the level takes; 0 when it takes none.
    std::size_t leastDrives(const Kind& kind, std::int32_t level);
    /// How many of `drives` free ones an array takes that is given as ALL.
    std::size_t takenOfAll(const Kind& kind, std::int32_t level, std::size_t drives);
    FurtherDrives furtherDrives(const Kind& kind);
    /// Whether the lines say which drives an array is made of.
    bool namesDrives(const Kind& kind);
    /// Whether a hot spare may stand beside a logical drive of this level.
    bool takesHotspare(const Kind& kind, std::int32_t level);

  private:
    using KindKey = std::pair<std::int32_t, std::int32_t>; // type and subtype
    using Question = std::tuple<KindKey, std::int32_t, std::size_t>;
    std::map<Question, std::optional<LevelRefusal>> refusals_;
    std::map<std::tuple<Question, LineSettings>, CommandLines> lines_;
    std::map<Question, std::size_t> takenOfAll_;
    std::map<KindKey, FurtherDrives> furtherDrives_;
    std::map<KindKey, bool> namesDrives_;
    std::map<std::pair<KindKey, std::int32_t>, bool> takesHotspare_;
};

} // namespace zolex::companion
