#pragma once

#include "engine/RAIDConfigCreator.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

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

/// What a configuration class answers for one kind of controller. `type` and `subtype` may be
/// anyCode.
struct ConfigDefaults {
    std::int32_t type;
    std::int32_t subtype;
    HotspareRule hotspares;
    std::int32_t writeCache;
    std::int32_t readAhead;
    std::int32_t stripeSize;
    std::int32_t leastDrives; ///< fewer drives on the controller cannot be configured
    CodeSet stripeSizes;      ///< supported
    CodeSet raidLevels;       ///< supported
    LevelsByDrives levels;
};

/// A configuration class whose answers stand in a table.
class TabledConfig : public RAIDConfigCreator {
  public:
    [[nodiscard]] std::int32_t defaultHotspareCount() const override;
    [[nodiscard]] std::int32_t defaultRAIDLevel(const RaidArray& array) const override;
    [[nodiscard]] std::int32_t defaultWriteCache(const RaidArray& array) const override;
    [[nodiscard]] std::int32_t defaultReadAhead() const override;
    [[nodiscard]] std::int32_t defaultStripeSize() const override;
    [[nodiscard]] bool canConfigure() const override;
    [[nodiscard]] bool supportsStripeSize(std::int32_t code) const override;
    [[nodiscard]] bool supportsRAIDLevel(std::int32_t code) const override;

  protected:
    /// `rows` outlives the object and has at least one row. The first row that fits the controller
    /// counts; the last stands for every other.
    TabledConfig(Application& application, std::span<const ConfigDefaults> rows)
        : RAIDConfigCreator(application), rows_(rows) {}

  private:
    [[nodiscard]] const ConfigDefaults& row() const;

    std::span<const ConfigDefaults> rows_;
};

} // namespace zolex
