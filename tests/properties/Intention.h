#pragma once

#include "model/Operations.h"
#include "model/RAIDController.h"
#include "model/Server.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {

/// What a plan means to the machine: its arrays, logical drives, cache modes and hot spares done
/// one by one on the model of the machine, without any command line. It is held against what the
/// command lines of the plan do.
class Intention {
  public:
    /// `target` is the controller as it stands; it is changed step by step. At most `mostSteps`
    /// are done.
    Intention(const RAIDController& planned, std::string_view utility,
              zolex_sim::Controller& target, std::size_t mostSteps)
        : planned_(planned), utility_(utility), target_(target), mostSteps_(mostSteps) {}

    /// Does the steps in order up to the first that the machine refuses. Command lines can be made
    /// for the plan.
    void carryOut();

    [[nodiscard]] std::size_t steps() const { return steps_; }
    /// The steps that make logical drives or hot spares.
    [[nodiscard]] std::size_t creations() const { return creations_; }
    /// The last step was refused: by the machine, or since the utility has no word for the level.
    [[nodiscard]] bool refused() const { return refusal_.has_value() || wordless_; }
    [[nodiscard]] bool wordless() const { return wordless_; }
    [[nodiscard]] const std::optional<zolex_sim::Refusal>& refusal() const { return refusal_; }

  private:
    bool creation(std::optional<zolex_sim::Refusal> refusal);
    bool carryOutArray(std::size_t array);
    bool create(std::size_t array, const LogicalDrive& drive);
    bool addOnArray(std::size_t array, const LogicalDrive& drive);
    bool setCaches(std::size_t array, const LogicalDrive& drive);
    bool carryOutHotspares();
    bool carryOutHyperwin();

    [[nodiscard]] const RAIDConfiguration& plan() const { return *planned_.captured(); }
    [[nodiscard]] bool isUtility(std::string_view name) const { return utility_ == name; }
    [[nodiscard]] zolex_sim::DriveLocation locate(std::int32_t channel, std::int32_t id) const;
    [[nodiscard]] std::optional<zolex_sim::RaidLevel> levelOf(const LogicalDrive& drive) const;
    [[nodiscard]] std::vector<std::vector<zolex_sim::DriveLocation>>
    spansOf(zolex_sim::RaidLevel level, const RaidArray& array) const;
    [[nodiscard]] std::optional<int> stripeOf(zolex_sim::RaidLevel level, std::size_t drives) const;

    const RAIDController& planned_;
    std::string_view utility_;
    zolex_sim::Controller& target_;
    std::size_t mostSteps_;
    std::size_t steps_ = 0;
    std::size_t creations_ = 0;
    std::optional<zolex_sim::Refusal> refusal_;
    bool wordless_ = false;
};

/// Arrays, logical drives and the status of every drive, but for the names of logical drives.
std::string describe(const zolex_sim::Controller& controller);

/// The same for what a capture and the deployment of its policies keep with every utility: arrays
/// with their members in order, RAID levels, and the status of each drive.
std::string layoutOf(const zolex_sim::Controller& controller);

} // namespace zolex::properties
