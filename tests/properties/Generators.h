#pragma once

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "policies/Policy.h"
#include "support/FakePlatform.h"

#include <rapidcheck.h>

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace zolex::properties {

// Numbers and lists

/// A whole number from `least` to `most`; shrinks towards `least`.
rc::Gen<int> number(int least, int most);

/// One of the values; shrinks towards the first.
template <typename Value>
Value oneOf(const std::vector<Value>& values) {
    return values.at(static_cast<std::size_t>(*number(0, static_cast<int>(values.size()) - 1)));
}

/// True in one of `n` cases; shrinks towards false.
inline bool oneIn(int n) {
    return *number(1, n) == n;
}

/// The numbers 1 to `count` in any order; shrinks towards the ascending one.
std::vector<int> shuffledNumbers(int count);

// Controllers without a machine

struct DriveSpec {
    std::int32_t channel = 0;
    std::int32_t id = 0;
    std::int32_t sizeMb = 0;
    bool used = false;
};

/// A controller record that planning could meet.
struct ControllerSpec {
    std::int32_t type = 12;
    std::int32_t subtype = 1;
    std::vector<DriveSpec> drives; ///< at different positions

    [[nodiscard]] std::unique_ptr<RAIDController> make() const;
    /// Drives of channels 1 to 4 with a size above 0: those that have a number.
    [[nodiscard]] int numberedDrives() const;
};
std::ostream& operator<<(std::ostream& out, const ControllerSpec& spec);

/// Any controller type and subtype with 0 to 144 drives of mixed sizes, some of size 0, some on
/// channel 0, some used already.
rc::Gen<ControllerSpec> controllers();

// Policies

/// What a policy is written for.
struct PolicyContext {
    std::string name = "Policy.random";
    std::string appliesTo = "ALL";
    int drives = 0;                  ///< drive numbers run from 1 to this
    std::vector<std::string> levels; ///< RAID levels that fit the controller
    std::vector<std::string> stripes = {"16", "32", "64", "128", "256", "512", "1024", "4096"};
    std::vector<std::string> positions; ///< drives as channel and id
    /// What the controller may refuse: levels of every kind, drives named twice or missing, sizes
    /// of any number of MB.
    bool wild = false;
    bool several = false;    ///< several logical drives on an array
    bool repeats = false;    ///< arrays of the drives of the array before, with room for both
    std::vector<int> nearMb; ///< numbers of MB that a size can be close to
    std::size_t mostArrays = 4;
    bool custom = true; ///< custom arrays and logical drives, besides automatic ones
};

/// The text of one section that is valid. Over many cases every keyword occurs.
rc::Gen<std::string> policyTexts(const PolicyContext& context);

/// The policies of a file of this text; a failure of the case when the file is not valid.
std::vector<Policy> parsePolicies(const std::string& text);

/// All words of RAID levels but AUTO.
const std::vector<std::string>& allLevels();

// Planning

/// Plans controllers by the rules of their type, without a word.
struct Planner {
    /// Keeps the plan in the record: the layout, and as used the drives that it takes.
    bool plan(RAIDController& controller, const Policy& policy);
    /// Whether the controller's class has every level of the plan.
    bool hasLevels(const RAIDController& controller, const RAIDConfiguration& plan);
};

/// Settings, hot spares, arrays and logical drives in one line; "none" for null.
std::string describe(const RAIDConfiguration* configuration);

} // namespace zolex::properties
