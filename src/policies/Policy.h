#pragma once

#include "foundation/CString.h"
#include "model/Codes.h"
#include "model/Configuration.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zolex {

/// What a policy is matched against: one controller of this machine.
struct MatchValues {
    CString machineType;
    CString serialNumber;
    CString controllerType; ///< model name
    std::int32_t controllerNumber = 0;
    std::int32_t scanOrder = 0;
    std::int32_t numberOfDrives = 0;
};

/// One `AppliesTo.<n>` entry: all specifiers that it gives must hold. Empty texts and numbers of 0
/// or below are not given.
struct AppliesTo {
    CString machineType;
    CString serialNumber;
    CString controllerType;
    std::int32_t controllerNumber = notGiven;
    std::int32_t scanOrder = notGiven;
    std::int32_t numberOfDrives = notGiven;
    bool all = false;

    /// Texts are compared without regard to case. An entry that gives nothing at all (such as
    /// "m:" alone) and is not for all controllers matches nothing: a policy replaces what is on a
    /// controller, so it takes a specifier that holds, or ALL.
    [[nodiscard]] bool matches(const MatchValues& values) const;
    /// Whether no text and no number is given.
    [[nodiscard]] bool givesNothing() const;

    friend bool operator==(const AppliesTo&, const AppliesTo&) = default;
};

/// `Array_Defaults`.
struct ArrayDefaults {
    std::int32_t variancePercent = 0;      ///< 0, 5, 10 or 100
    std::int32_t hotspareCount = notGiven; ///< -25: the class default

    friend bool operator==(const ArrayDefaults&, const ArrayDefaults&) = default;
};

/// How large a logical drive shall be.
struct DriveSize {
    enum class Kind {
        mb,      ///< `value` MB
        percent, ///< `value` percent of its array
        rest,    ///< what is left of its array
    };
    Kind kind = Kind::rest;
    std::int32_t value = 0; ///< above 0; 0 for the rest

    friend bool operator==(const DriveSize&, const DriveSize&) = default;
};

/// Size, RAID level and write-cache mode of `Logical_Defaults` and `Logical.<n>`.
struct LogicalSpecification {
    std::int32_t arrayIndex = -1; ///< 0 for "A"; -1 in `Logical_Defaults`
    DriveSize size;
    std::int32_t raidLevel = raid_level::notGiven;
    std::int32_t writeCache = write_cache::notGiven;

    friend bool operator==(const LogicalSpecification&, const LogicalSpecification&) = default;
};

/// How the names of captured policies begin.
inline constexpr const char* generatedPolicyPrefix = "Policy.AUTO-";

/// One validated policy.
struct Policy {
    static constexpr std::size_t maxArrays = 16;
    static constexpr std::size_t maxHotspares = 16;

    CString name;
    std::vector<AppliesTo> appliesTo;

    /// Whether the policy bears the name of a captured one (letter case ignored) and lists its
    /// arrays. Such a policy lists all that its controller had: without `Hotspares` the controller
    /// had none.
    [[nodiscard]] bool isGenerated() const;

    // Nothing when absent.
    std::optional<std::int32_t> rebuildRate; ///< rebuild_rate
    std::optional<std::int32_t> readAhead;   ///< read_ahead
    std::optional<std::int32_t> stripeSize;  ///< stripe
    std::optional<std::int32_t> init;        ///< init_choice
    std::optional<std::int32_t> maxLogicalDriveSizeMb;

    bool customArrays = false;        ///< `Array_Mode = CUSTOM`
    bool customLogicalDrives = false; ///< `Logical_Mode = CUSTOM`
    ArrayDefaults arrayDefaults;
    std::optional<LogicalSpecification> logicalDefaults;

    std::vector<RaidArray> arrays;                   ///< `Array.A`, `Array.B`, ...
    std::vector<LogicalSpecification> logicalDrives; ///< `Logical.1`, `Logical.2`, ...
    /// `Hotspares`: drive numbers or positions; absent when the keyword is.
    std::optional<RaidArray> hotspares;

    friend bool operator==(const Policy&, const Policy&) = default;
};

/// Policies in file order.
class PolicyList {
  public:
    static constexpr std::size_t maxPolicies = 100;

    /// False when the list is full.
    bool add(Policy policy);
    [[nodiscard]] const std::vector<Policy>& policies() const { return policies_; }
    [[nodiscard]] std::size_t count() const { return policies_.size(); }
    /// The first policy one of whose entries matches; null when none does.
    [[nodiscard]] const Policy* find(const MatchValues& values) const;

    friend bool operator==(const PolicyList&, const PolicyList&) = default;

  private:
    std::vector<Policy> policies_;
};

/// Name of the built-in policy that deploy uses with "/d".
inline constexpr const char* defaultPolicyName = "Policy.default";

/// The list that holds the built-in policy alone: it applies to every controller and leaves
/// everything to the defaults of the controller's class.
[[nodiscard]] PolicyList makeDefaultPolicyList();

} // namespace zolex
