#pragma once

#include "model/Codes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace zolex {

/// In which words a utility is asked for its listings and reset.
enum class Dialect {
    conf,     ///< GETCONFIG and SETCONFIG; controllers are numbered from 1
    cfggen,   ///< DISPLAY and DELETE; adapters are numbered from 0
    hyperwin, ///< options of one letter; there is one controller
    megaCli,  ///< options with a minus; adapters are numbered from 0
};

/// How many command lines a controller needs.
struct LineCounts {
    std::size_t listings;       ///< lines that list the drives
    std::size_t layoutListings; ///< lines before them that list the layout, when it is wanted
    std::size_t resets;         ///< lines that return it to factory defaults
};

/// For which subtypes a write cache that is on is "wb"; it is "wbb" for the others.
enum class PlainWriteBack { never, ofSubtype1, always };

/// Which settings a generated policy names.
struct WrittenSettings {
    bool stripeSize;
    bool rebuildRate;
    bool readAhead;
    bool writeCache;
};

/// What a controller type is known by, besides its models and the rules by which it is planned
/// (engine/ConfigClasses.h). One row for each type.
struct TypeTraits {
    std::int32_t controllerType;
    std::string_view utilityCommand;           ///< command prefix of the utility
    std::array<std::int32_t, 2> acceptedCodes; ///< exit codes besides 0 that count; -1: none
    std::int32_t scanFamily;                   ///< types of one family are counted together
    Dialect dialect;
    LineCounts lines;
    std::int32_t secondsBeforeCommand; ///< pause before each command
    bool retriesReset;                 ///< a reset that is not accepted is tried again
    bool orderedByBus;                 ///< may be put in order of bus number

    bool drivesByTargetId;         ///< CFGGEN: drives are named by target id
    PlainWriteBack plainWriteBack; ///< ARCCONF
    std::int32_t stripeSize;       ///< code that takes the place of "none"
    bool explicitSizes;            ///< generated policies may give sizes in MB
    WrittenSettings writes;
};

/// The row of a controller type. Any other value has a row too, of type -1: no utility, 0 alone is
/// accepted.
[[nodiscard]] const TypeTraits& traitsOf(std::int32_t controllerType);

/// The stripe-size code that the utility of a type is given: that of the layout or, for "none", the
/// type's own, which may be "none" again.
[[nodiscard]] std::int32_t finalStripeSize(std::int32_t controllerType, std::int32_t stripeSize);

/// Whether the utility command of type 5 is one of the two whose commands are CFGGEN's: that of
/// type 10 or "UTIL.BAT CFGGEN1.02.02". Another one is addressed like HRCONF and ARCCONF.
[[nodiscard]] constexpr bool usesCfggenSyntax(std::string_view utility,
                                              std::string_view sasUtility) {
    return utility == sasUtility || utility == "UTIL.BAT CFGGEN1.02.02";
}

/// Whether a table has one row for each controller type and no other row. Its rows have a member
/// `controllerType`. Every table by type asserts this, so that a forgotten row does not compile.
template <typename Table>
[[nodiscard]] constexpr bool coversEveryType(const Table& table) {
    std::array<bool, controller_type::last + 1> found{};
    for (const auto& row : table) {
        if (row.controllerType < controller_type::first ||
            row.controllerType > controller_type::last) {
            return false;
        }
        bool& seen = found[static_cast<std::size_t>(row.controllerType)];
        if (seen) {
            return false;
        }
        seen = true;
    }
    return std::size(table) == static_cast<std::size_t>(controller_type::last);
}

} // namespace zolex
