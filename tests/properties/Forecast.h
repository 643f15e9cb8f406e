#pragma once

#include "model/RAIDController.h"
#include "model/Server.h"
#include "properties/Limits.h"
#include "properties/VirtualMachine.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {

/// What becomes of a plan by the documented limits of the utilities alone, without asking the
/// machine: the commands that it refuses and all that it could object to in them, or the layout
/// that comes of the plan.
class Forecast {
  public:
    Forecast(const RAIDController& planned, const Family& family, const VirtualController& machine);

    /// Why no command line can be made for the plan; none when they can. The program then says so
    /// in these words.
    [[nodiscard]] Cause generatorCause() const { return generatorCause_; }
    [[nodiscard]] std::string_view complaint() const { return complaint_; }

    /// A command that makes a logical drive or hot spares.
    struct Step {
        const LogicalDrive* drive = nullptr; ///< null: hot spares
        std::size_t array = 0;
        bool first = true;    ///< of its array
        bool shared = false;  ///< of exactly the drives of an array that is there already
        bool leftOut = false; ///< an odd member of RAID 10, which MEGACLI takes in pairs
        double roomMb = 0;
        std::set<Cause> causes; ///< empty: the machine accepts
    };
    /// In order, up to the first that is refused.
    [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }
    [[nodiscard]] bool refused() const { return !steps_.empty() && !steps_.back().causes.empty(); }

    /// The listing shows the drive as a free one. With most utilities that holds for one of a
    /// foreign configuration, too.
    [[nodiscard]] bool isShownAsFree(std::int32_t channel, std::int32_t id) const;

    /// What of the plan the utility does not carry out in the steps that it accepts.
    [[nodiscard]] const std::set<std::string>& deviations() const { return deviations_; }

    /// Arrays with their members, logical drives and hot spares when all steps are done.
    [[nodiscard]] std::string layout() const;

  private:
    using Place = std::pair<int, int>;
    using Places = std::vector<Place>;
    struct Made {
        std::size_t array = 0;
        std::int32_t level = 0;
        std::int64_t sizeMb = 0;
    };

    void judgeGenerator();
    void judgeHyperwinGenerator();
    void refuseCommands(Cause cause, std::string_view complaint);
    void carryOut();
    bool carryOutArray(std::size_t array);
    bool carryOutHotspares();
    [[nodiscard]] std::optional<std::size_t> sharedArray(std::int32_t level,
                                                         const Places& members) const;
    bool finish(Step step);
    void noteDeviations(std::size_t array, const Places& members);
    void checkPlaces(const Places& places, std::set<Cause>& causes) const;
    void checkLevel(const LogicalDrive& drive, std::size_t members, std::set<Cause>& causes) const;
    void checkSize(Step& step, std::int64_t sizeMb, double room) const;
    [[nodiscard]] double roomOn(std::size_t array, std::int32_t level) const;
    [[nodiscard]] std::int64_t restFor(std::size_t array, const LogicalDrive& drive) const;

    [[nodiscard]] const RAIDConfiguration& plan() const { return *planned_.captured(); }
    [[nodiscard]] bool isUtility(std::string_view name) const { return name == family_.utility; }
    [[nodiscard]] Place placeOf(std::int32_t channel, std::int32_t id) const;
    [[nodiscard]] Places membersOf(std::size_t array, const LogicalDrive& drive) const;
    [[nodiscard]] double roomOf(std::int32_t level, const Places& members) const;
    [[nodiscard]] std::vector<const LogicalDrive*> drivesOn(std::size_t array) const;

    const RAIDController& planned_;
    const Family& family_;
    const VirtualController& machine_;
    std::map<Place, const VirtualDrive*> drives_;
    Cause generatorCause_ = Cause::none;
    std::string_view complaint_;
    std::vector<Step> steps_;
    std::set<Place> taken_;
    std::vector<Places> arrays_;
    std::vector<std::vector<std::set<Place>>> spans_; ///< of each of them
    std::vector<Made> made_;
    std::set<Place> spares_;
    std::set<std::string> deviations_;
};

/// The layout of a controller as a forecast writes it.
std::string layoutText(const zolex_sim::Controller& controller);

} // namespace zolex::properties
