#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace zolex {

/// A set of codes 0 to 31, or every code.
class CodeSet {
  public:
    constexpr CodeSet(std::initializer_list<std::int32_t> codes) {
        for (const std::int32_t code : codes) {
            bits_ |= bit(code);
        }
    }
    /// The codes from `first` to `last`.
    [[nodiscard]] static constexpr CodeSet range(std::int32_t first, std::int32_t last) {
        CodeSet set{};
        for (std::int32_t code = first; code <= last; ++code) {
            set.bits_ |= bit(code);
        }
        return set;
    }
    [[nodiscard]] static constexpr CodeSet every() {
        CodeSet set{};
        set.every_ = true;
        return set;
    }
    [[nodiscard]] constexpr CodeSet with(std::int32_t code) const {
        CodeSet set = *this;
        set.bits_ |= bit(code);
        return set;
    }
    [[nodiscard]] constexpr bool contains(std::int32_t code) const {
        return every_ || (code >= 0 && code < 32 && (bits_ & bit(code)) != 0);
    }

  private:
    static constexpr std::uint32_t bit(std::int32_t code) { return std::uint32_t{1} << code; }

    std::uint32_t bits_ = 0;
    bool every_ = false;
};

/// When one hot spare is the default: from this number of drives on, and then either always or for
/// an odd number only. From 0: never.
struct HotspareRule {
    std::int32_t fromDrives;
    bool oddOnly;
};

/// Default RAID level of an array by its number of drives: 0, 1, 2, 3, 4, any greater even number,
/// any greater odd number.
using LevelsByDrives = std::array<std::int32_t, 7>;

/// The groups of rules: kinds of controllers that are planned alike.
enum class ConfigClass : std::int32_t {
    KXConfig,   ///< type 1
    KXTConfig,  ///< types 2, 7 and 11
    SATAConfig, ///< types 3, 8 and 9
    SCSIConfig, ///< type 4
    LSIConfig,  ///< types 5 and 10; they have no stripe size: any code is accepted
    IDEConfig,  ///< type 6
    MEGAConfig, ///< type 12
};

/// What planning logs before it works by the rules of a class; empty: nothing.
[[nodiscard]] const char* creationTrace(ConfigClass configClass);

/// The rules by which a kind of controller is planned. `subtype` may be anyCode.
struct ConfigDefaults {
    ConfigClass configClass;
    std::int32_t type;
    std::int32_t subtype;
    HotspareRule hotspares;
    std::int32_t writeCache;
    std::int32_t readAhead;
    std::int32_t stripeSize;
    std::int32_t leastDrives;    ///< fewer drives on the controller cannot be configured
    std::size_t mostArrayDrives; ///< of an array whose RAID level is not given
    bool oneArray;       ///< one automatic array; else they go on until no free drive remains
    bool channelsApart;  ///< an automatic array keeps to the channel of its first drive
    CodeSet stripeSizes; ///< supported
    CodeSet raidLevels;  ///< supported
    LevelsByDrives levels;

    [[nodiscard]] bool canConfigure(std::int32_t drives) const { return drives >= leastDrives; }
    [[nodiscard]] std::int32_t defaultHotspareCount(std::int32_t drives) const;
    /// RAID level code of an array of `drives` drives; -1 when no level fits.
    [[nodiscard]] std::int32_t defaultRAIDLevel(std::size_t drives) const;
};

/// The rules of a controller type and subtype; null for a type outside 1 to 12.
[[nodiscard]] const ConfigDefaults* rulesFor(std::int32_t type, std::int32_t subtype);

} // namespace zolex
