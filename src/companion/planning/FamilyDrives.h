#pragma once

#include "companion/families/Family.h"
#include "companion/lint/PolicyView.h"
#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// The drives of a controller of a family as policies name them: by number, by channel and id, by
/// location.
class FamilyDrives {
  public:
    enum class Use {
        good,
        foreign, ///< good once the layouts of other controllers are cleared
        bad,
    };

    /// With `failedMembersStay`, failed and missing members of arrays that stand count as good. All
    /// arguments must outlive the object.
    FamilyDrives(const ControllerSnapshot& controller, const Family& family,
                 bool failedMembersStay);

    /// In the order of their numbers, which count from 1.
    [[nodiscard]] const std::vector<const MachineDrive*>& all() const { return drives_; }
    /// Null without one.
    [[nodiscard]] const MachineDrive* find(const DriveView& view) const;
    /// Whether a pair names one drive by the enclosure's position and another by its id.
    [[nodiscard]] bool isAmbiguous(const DriveView& view) const;
    [[nodiscard]] Use useOf(const MachineDrive& drive) const;
    [[nodiscard]] bool isGood(const MachineDrive& drive) const { return useOf(drive) == Use::good; }
    /// Why a bad one cannot be planned with.
    [[nodiscard]] std::string whyNot(const MachineDrive& drive) const;
    /// 0: not known.
    [[nodiscard]] static std::uint64_t bytesOf(const MachineDrive& drive) {
        return drive.facts.capacityBytes.value_or(0);
    }

  private:
    const Family& family_;
    bool failedMembersStay_;
    std::vector<const MachineDrive*> drives_;
    /// By channel, from 1: the drives in no enclosure first, then enclosures by their ids.
    std::vector<std::optional<std::int32_t>> channels_;
    std::map<std::pair<std::optional<std::int32_t>, std::int32_t>, const MachineDrive*> bySlot_;
};

} // namespace zolex::companion
