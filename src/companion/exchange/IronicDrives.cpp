#include "companion/exchange/IronicDrives.h"

#include "companion/families/Family.h"
#include "companion/families/ModelTexts.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"
#include "model/RAIDController.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <map>

namespace zolex::companion {

namespace {

constexpr std::size_t mostArrays = 8; ///< "A" to "H"
constexpr std::int32_t mostNumber =
    (RAIDController::channels - RAIDController::firstChannel) * RAIDController::ids;
constexpr const char* withMachine =
    "zolexctl record -o server.zrec on the server, and --machine server.zrec";

std::string locationsOf(const std::vector<IronicMember>& members) {
    std::string text;
    for (const IronicMember& member : members) {
        text += (text.empty() ? "" : " ") + member.location;
    }
    return text;
}

/// Whether a drive may be of the kind that a disk's hints ask for, as far as is told of it.
bool mayFit(const DriveFacts& drive, const IronicDisk& disk) {
    const auto agrees = [](const std::string& told, const std::string& asked) {
        return asked.empty() || told.empty() || text::equalsNoCase(told, asked);
    };
    return agrees(drive.mediaType, disk.diskType) && agrees(drive.protocol, disk.interfaceType);
}

/// The same of a drive that is to be chosen: an SSD must be known as one.
bool fits(const DriveFacts& drive, const IronicDisk& disk) {
    return mayFit(drive, disk) && (disk.diskType != "ssd" || !drive.mediaType.empty());
}

/// "free SSD SATA drives".
std::string kindWords(const IronicDisk& disk) {
    const auto upper = [](std::string word) {
        for (char& c : word) {
            c = text::upper(c);
        }
        return word.empty() ? word : word + " ";
    };
    return "free " + upper(disk.interfaceType) + upper(disk.diskType) + "drives";
}

/// "SAS HDD".
std::string kindOf(const DriveFacts& drive) {
    return drive.protocol + (drive.protocol.empty() || drive.mediaType.empty() ? "" : " ") +
           drive.mediaType;
}

class Placer {
  public:
    Placer(IronicTarget& target, const std::vector<IronicDisk>& disks, Models& models,
           const TellIronic& tell)
        : target_(target), disks_(disks), models_(models), tell_(tell),
          isShaky_(target.numbersAreShaky()) {}

    void run() {
        for (const std::size_t disk : target_.disks) {
            if (!disks_[disk].drives.empty()) {
                findNamed(disk);
            }
        }
        for (const std::size_t disk : target_.disks) {
            if (disks_[disk].drives.empty()) {
                choose(disk);
            }
        }
        for (const std::size_t disk : target_.disks) {
            group(disk);
        }
        for (IronicArray& array : target_.arrays) {
            putMaxLast(array);
        }
        if (target_.arrays.size() > mostArrays) {
            tell_(target_.arrays[mostArrays].disks.front(), "", "ZX954",
                  "it lies on other drives than those before, and policies have 8 arrays", {});
        }
    }

  private:
    // Drives that are named.

    void findNamed(std::size_t index) {
        const IronicDisk& disk = disks_[index];
        std::vector<IronicMember> members;
        for (std::size_t i = 0; i < disk.drives.size(); ++i) {
            const std::string property = "physical_disks[" + std::to_string(i) + "]";
            const auto member = target_.details == nullptr ? byNumber(index, property, i)
                                                           : onMachine(index, property, i);
            if (!member) {
                return;
            }
            if (std::find(members.begin(), members.end(), *member) != members.end()) {
                tell_(index, property, "ZX954", inQuotes(disk.drives[i]) + " is named twice", {});
                return;
            }
            members.push_back(*member);
        }
        if (disk.driveCount && *disk.driveCount != members.size()) {
            tell_(index, "number_of_physical_disks", "ZX954",
                  "it is " + std::to_string(*disk.driveCount) + ", and physical_disks names " +
                      countText(members.size(), "drive", "drives"),
                  {"take it out, or name so many"});
            return;
        }
        members_[index] = std::move(members);
    }

    std::optional<IronicMember> byNumber(std::size_t index, const std::string& property,
                                         std::size_t i) {
        const std::string& name = disks_[index].drives[i];
        const auto number = text::wholeNumber(name);
        if (number && *number >= 1 && *number <= mostNumber) {
            return IronicMember{std::to_string(*number), "drive " + std::to_string(*number)};
        }
        tell_(index, property, "ZX954",
              inQuotes(name) + " is no number of a drive, and without the server its location "
                               "cannot be looked up",
              {withMachine});
        return std::nullopt;
    }

    std::optional<IronicMember> onMachine(std::size_t index, const std::string& property,
                                          std::size_t i) {
        const std::string& name = disks_[index].drives[i];
        const std::vector<MachineDrive>& drives = target_.details->drives;
        auto found = std::find_if(drives.begin(), drives.end(), [&name](const MachineDrive& row) {
            return row.facts.location == name;
        });
        if (found == drives.end()) {
            found = std::find_if(drives.begin(), drives.end(), [&name](const MachineDrive& row) {
                return row.policyNumber && std::to_string(*row.policyNumber) == name;
            });
        }
        if (found == drives.end()) {
            tell_(index, property, "ZX954",
                  inQuotes(name) + " is no drive of controller " +
                      std::to_string(target_.details->number),
                  {"zolexctl show RECORDING lists the drives"});
            return std::nullopt;
        }
        if (!found->policyNumber || !found->policyPosition) {
            tell_(index, property, "ZX954",
                  inQuotes(name) + " has no number in policies: it is " +
                      printable(found->facts.reportedState),
                  {"zolexctl show RECORDING lists the drives"});
            return std::nullopt;
        }
        if (!mayFit(found->facts, disks_[index])) {
            tell_(index, property, "ZX954",
                  inQuotes(name) + " is a drive of kind " + kindOf(found->facts) +
                      ", and disk_type or interface_type asks for another",
                  {"take the hint out, or name another drive"});
            return std::nullopt;
        }
        return memberOf(*found);
    }

    [[nodiscard]] IronicMember memberOf(const MachineDrive& drive) const {
        return {isShaky_ ? std::to_string(drive.policyPosition->channel) + ":" +
                               std::to_string(drive.policyPosition->id)
                         : std::to_string(*drive.policyNumber),
                drive.facts.location};
    }

    // Drives that are chosen.

    [[nodiscard]] bool isTaken(const IronicMember& member) const {
        return std::any_of(members_.begin(), members_.end(), [&member](const auto& row) {
            return std::find(row.second.begin(), row.second.end(), member) != row.second.end();
        });
    }

    /// How many drives a level takes at least, on this model too.
    std::size_t leastOf(const IronicDisk& disk) {
        std::size_t least = leastDrivesOf(disk.raidLevel);
        if (target_.kind) {
            const auto level = policy_value::raidLevel(policyLevelOf(disk.raidLevel));
            least = std::max(least, level ? models_.leastDrives(*target_.kind, *level) : 0);
        }
        return least;
    }

    void choose(std::size_t index) {
        const IronicDisk& disk = disks_[index];
        if (target_.details == nullptr) {
            chooseNumbers(index);
            return;
        }
        const std::size_t wanted = disk.driveCount ? *disk.driveCount : leastOf(disk);
        std::vector<IronicMember> members;
        for (const MachineDrive& drive : target_.details->drives) {
            if (members.size() < wanted && drive.policyNumber && drive.policyPosition &&
                drive.facts.state == DriveState::free && !drive.facts.isForeign &&
                drive.facts.barred.empty() && drive.facts.health != Health::critical &&
                fits(drive.facts, disk) && !isTaken(memberOf(drive))) {
                members.push_back(memberOf(drive));
            }
        }
        if (members.size() < wanted) {
            tell_(index, disk.driveCount ? "number_of_physical_disks" : "", "ZX954",
                  kindWords(disk) + ": " + std::to_string(wanted) + " wanted, and controller " +
                      std::to_string(target_.details->number) + " has " +
                      (members.empty() ? "none" : std::to_string(members.size())) +
                      " that no other takes",
                  {"zolexctl show RECORDING lists the drives"});
            return;
        }
        tell_(index, "", "ZX954",
              "the first " + kindWords(disk) + " are taken: " + locationsOf(members), {})
            .severity = Severity::note;
        members_[index] = std::move(members);
    }

    void chooseNumbers(std::size_t index) {
        const IronicDisk& disk = disks_[index];
        if (disk.driveCount) {
            tell_(index, "number_of_physical_disks", "ZX954",
                  "drives have to be chosen, and no server is told to choose them of",
                  {withMachine});
            return;
        }
        const std::size_t wanted = leastOf(disk);
        std::vector<IronicMember> members;
        std::string numbers;
        for (std::int32_t number = 1; number <= mostNumber && members.size() < wanted; ++number) {
            IronicMember member{std::to_string(number), "drive " + std::to_string(number)};
            if (!isTaken(member)) {
                numbers += (numbers.empty() ? "" : ", ") + member.listed;
                members.push_back(std::move(member));
            }
        }
        tell_(index, "", "ZX954",
              "no drives are named: " + std::string(wanted == 1 ? "drive " : "drives ") + numbers +
                  (wanted == 1 ? " is" : " are") + " written, the least number for RAID " +
                  std::string(policyLevelOf(disk.raidLevel)),
              {std::string("to choose among free drives: ") + withMachine})
            .severity = Severity::warning;
        members_[index] = std::move(members);
    }

    // Arrays.

    void group(std::size_t index) {
        const auto own = members_.find(index);
        if (own == members_.end()) {
            return; // told
        }
        for (IronicArray& array : target_.arrays) {
            const bool meets = std::any_of(
                own->second.begin(), own->second.end(), [&array](const IronicMember& member) {
                    return std::find(array.members.begin(), array.members.end(), member) !=
                           array.members.end();
                });
            if (meets) {
                share(array, index, own->second);
                return;
            }
        }
        target_.arrays.push_back({own->second, {index}});
    }

    void share(IronicArray& array, std::size_t index, const std::vector<IronicMember>& members) {
        const std::size_t first = array.disks.front();
        const std::string other = "logical_disks[" + std::to_string(first) + "]";
        if (array.members.size() != members.size() ||
            !std::is_permutation(members.begin(), members.end(), array.members.begin())) {
            tell_(index, "physical_disks", "ZX955",
                  "some of these drives are those of " + other +
                      ", and an array has all its drives for itself",
                  {"name the same drives, or others"});
        } else if (!disks_[index].shares || !disks_[first].shares) {
            tell_(index, "physical_disks", "ZX955",
                  "these are the drives of " + other + ", and not both say share_physical_disks",
                  {"name other drives, or add \"share_physical_disks\": true to both"});
        } else if (!makesSeveral() && !target_.kind) {
            tell_(index, "share_physical_disks", "ZX955",
                  "whether the controller makes a second logical drive on these drives is not "
                  "known without its model",
                  {"name the model: --model LSI-MegaRAID-8480"});
        } else if (!makesSeveral() && models_.furtherDrives(*target_.kind) != FurtherDrives::made) {
            tell_(index, "share_physical_disks", "ZX955",
                  utilityOf(target_.kind->type) + " takes one logical drive on these drives, and " +
                      other + " is it",
                  {"name other drives, or make one logical disk of both"});
        } else {
            array.disks.push_back(index);
        }
    }

    /// Texts of models are those of STORCLI's, but for "LINUX-MD".
    static const Family* familyOf(const std::string& type) {
        const Family* const named = findFamily(type);
        return named != nullptr || !isFamilyType(type) || isFamilyName(type) ||
                       text::equalsNoCase(type, "LINUX-MD")
                   ? named
                   : findFamily("STORCLI");
    }

    /// Whether it is a controller of a family that makes several logical drives on one array.
    [[nodiscard]] bool makesSeveral() const {
        const Family* const family = target_.details != nullptr
                                         ? findFamily(target_.details->utility)
                                         : familyOf(target_.model);
        const Facts none;
        return family != nullptr &&
               family->limits(target_.details == nullptr ? none : target_.details->facts)
                       .mostVolumesPerGroup > 1;
    }

    /// What takes the rest of the space is made last.
    void putMaxLast(IronicArray& array) {
        std::stable_partition(array.disks.begin(), array.disks.end(),
                              [this](std::size_t disk) { return disks_[disk].sizeGb.has_value(); });
        const auto count = std::count_if(array.disks.begin(), array.disks.end(),
                                         [this](std::size_t disk) { return !disks_[disk].sizeGb; });
        if (count > 1) {
            tell_(array.disks.back(), "size_gb", "ZX956",
                  "another logical disk on these drives takes the rest of the space, too",
                  {"say \"MAX\" once"})
                .severity = Severity::error;
        }
    }

    IronicTarget& target_;
    const std::vector<IronicDisk>& disks_;
    Models& models_;
    const TellIronic& tell_;
    bool isShaky_;
    std::map<std::size_t, std::vector<IronicMember>> members_; ///< by disk
};

} // namespace

bool IronicTarget::numbersAreShaky() const {
    return details != nullptr &&
           std::any_of(details->drives.begin(), details->drives.end(),
                       [](const MachineDrive& drive) { return !drive.policyNumber; });
}

void placeDisks(IronicTarget& target, const std::vector<IronicDisk>& disks, Models& models,
                const TellIronic& tell) {
    Placer(target, disks, models, tell).run();
}

} // namespace zolex::companion
