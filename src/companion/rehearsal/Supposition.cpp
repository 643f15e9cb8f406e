#include "companion/rehearsal/Supposition.h"

#include "companion/facts/Bytes.h"
#include "companion/recording/Recording.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/StorcliCopy.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"
#include "model/Definition.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace zolex::companion {

namespace {

using zolex_sim::DriveLocation;
using zolex_sim::DriveStatus;

struct KindWord {
    std::string_view word; ///< with its colon
    Supposition::Kind kind;
};
constexpr std::array<KindWord, 3> kindWords = {{
    {"fail:", Supposition::Kind::fail},
    {"missing:", Supposition::Kind::missing},
    {"size:", Supposition::Kind::size},
}};

/// Whether it is a place such as "32:3", "0:1", ":3" or "4".
bool isLocation(std::string_view text) {
    const auto isNumber = [](std::string_view part) {
        constexpr std::size_t longest = 5;
        return !part.empty() && part.size() <= longest &&
               part.find_first_not_of("0123456789") == std::string_view::npos;
    };
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return isNumber(text);
    }
    return (colon == 0 || isNumber(text.substr(0, colon))) && isNumber(text.substr(colon + 1));
}

/// Where the drive is in a copy of its controller.
DriveLocation placeInCopy(const DriveFacts& drive, const std::string& utility) {
    const bool hasSlots = utility == "MEGACLI" || utility == "CFGGEN";
    return hasSlots ? DriveLocation{drive.enclosure, drive.slot.value_or(0)}
                    : DriveLocation{drive.channel.value_or(1), drive.id.value_or(0)};
}

/// Gives the copy the PCI place of its original, "02:0e.0", which some listings tell.
void setPciPlace(zolex_sim::Controller& copy, std::string_view address) {
    const auto number = [address](std::size_t part) {
        int value = 0;
        for (const char digit : text::token(address, ":.", part)) {
            const auto place = std::string_view("0123456789abcdef").find(text::lower(digit));
            value = value * 16 + static_cast<int>(place & 0xFU);
        }
        return value;
    };
    copy.identity.pci.bus = copy.identity.block.bus = number(0);
    copy.identity.pci.device = number(1);
    copy.identity.pci.function = number(2);
}

/// A machine whose listings come from virtual copies where these are.
class SupposedPlatform : public Platform {
  public:
    explicit SupposedPlatform(Platform& machine) : machine_(machine) {}

    /// The copy answers the controller's listing commands.
    void put(const ControllerSnapshot& detail, VirtualCopy copy) {
        copies_.push_back(std::move(copy));
        for (const CapturedListing& listing : detail.commands) {
            copyOf_[callKey(listing.command)] = copies_.size() - 1;
        }
    }

    Console& console() override { return machine_.console(); }
    FileSystem& files() override { return machine_.files(); }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override {
        const auto at = copyOf_.find(callKey(commandLine));
        if (at == copyOf_.end()) {
            return machine_.runChild(commandLine, capture, limit);
        }
        PlayedLine played = copies_[at->second].play(splitCommandLine(commandLine));
        return {ChildOutcome::ended, static_cast<std::uint32_t>(played.exitCode),
                std::move(played.output)};
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return machine_.pciDevices(); }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return machine_.localTime(); }
    FirmwareNames firmware() override { return machine_.firmware(); }

  private:
    Platform& machine_;
    std::vector<VirtualCopy> copies_;
    std::map<std::string, std::size_t> copyOf_; ///< index, by the command line
};

/// Takes the drive out; the arrays that it was in miss a member.
void takeOut(zolex_sim::Controller& controller, const DriveLocation& location) {
    const auto drive =
        std::find_if(controller.drives.begin(), controller.drives.end(),
                     [&](const zolex_sim::Drive& each) { return each.location == location; });
    if (!controller.placeOf(location)) {
        controller.drives.erase(drive);
        return;
    }
    constexpr int nowhere = 70001; // no command can name it
    const DriveLocation gone{nowhere, static_cast<int>(drive - controller.drives.begin())};
    for (zolex_sim::Array& array : controller.arrays) {
        for (std::vector<DriveLocation>& span : array.spans) {
            std::replace(span.begin(), span.end(), location, gone);
        }
    }
    drive->location = drive->bay = gone;
    drive->status = DriveStatus::missing;
}

void change(zolex_sim::Controller& controller, const DriveLocation& location,
            const Supposition& supposition) {
    zolex_sim::Drive& drive = *controller.driveAt(location);
    if (supposition.kind == Supposition::Kind::fail) {
        drive.status = DriveStatus::failed;
        return;
    }
    if (supposition.kind == Supposition::Kind::missing) {
        takeOut(controller, location);
        return;
    }
    zolex_sim::Drive other = drive;
    other.sizeMb = supposition.sizeMb;
    other.rawSectors = other.nonCoercedSectors = other.sizeMb * zolex_sim::sectorsPerMb;
    if (!controller.placeOf(location)) {
        drive = std::move(other);
        return;
    }
    // It has taken the place of a member.
    const auto index = &drive - controller.drives.data();
    takeOut(controller, location);
    other.status = DriveStatus::good;
    controller.drives.insert(controller.drives.begin() + index, std::move(other));
}

// The same of a controller that STORCLI drives.

bool isMember(const zolex_sim::storcli::Controller& controller, const DriveLocation& place) {
    return controller.placeOf(place).has_value();
}

/// Takes the drive out; the array that it was in misses a member.
void takeOut(zolex_sim::storcli::Controller& controller, const DriveLocation& place) {
    const auto drive =
        controller.drives.begin() + (controller.driveAt(place) - controller.drives.data());
    if (!isMember(controller, place)) {
        controller.drives.erase(drive);
        return;
    }
    constexpr int nowhere = 70001; // no command can name it
    const DriveLocation gone{nowhere, static_cast<int>(drive - controller.drives.begin())};
    for (zolex_sim::storcli::Group& group : controller.groups) {
        for (std::vector<DriveLocation>& span : group.spans) {
            std::replace(span.begin(), span.end(), place, gone);
        }
    }
    drive->place = gone;
    drive->state = zolex_sim::storcli::DriveState::missing;
}

void change(zolex_sim::storcli::Controller& controller, const DriveLocation& place,
            const Supposition& supposition) {
    using zolex_sim::storcli::DriveState;
    if (supposition.kind == Supposition::Kind::missing) {
        takeOut(controller, place);
        return;
    }
    zolex_sim::storcli::Drive& drive = *controller.driveAt(place);
    if (supposition.kind == Supposition::Kind::fail) {
        drive.state = isMember(controller, place) ? DriveState::failed : DriveState::bad;
        drive.groups.clear();
        return;
    }
    zolex_sim::storcli::Drive other = drive;
    other.sectors = std::int64_t{supposition.sizeMb} * (1 << 20) / other.sectorBytes;
    other.rawSectors = other.sectors + (std::int64_t{512} << 20) / other.sectorBytes;
    if (!isMember(controller, place)) {
        drive = std::move(other);
        return;
    }
    takeOut(controller, place); // another one has taken the place of a member
    other.state = DriveState::good;
    controller.drives.push_back(std::move(other));
}

/// Whether the listings tell what is supposed.
bool isTold(const Facts& facts, const Supposition& supposition) {
    const DriveFacts* const drive = facts.drive(supposition.location);
    switch (supposition.kind) {
    case Supposition::Kind::fail:
        return drive != nullptr && drive->state == DriveState::failed;
    case Supposition::Kind::missing:
        return drive == nullptr || drive->state == DriveState::missing;
    case Supposition::Kind::size:
        break;
    }
    if (drive == nullptr || !drive->capacityBytes) {
        return false;
    }
    const std::uint64_t wanted = static_cast<std::uint64_t>(supposition.sizeMb) * bytesOfMb;
    const std::uint64_t found = *drive->capacityBytes;
    return std::max(wanted, found) - std::min(wanted, found) <=
           std::max(drive->capacityTolerance, bytesOfMb);
}

/// Supposes things of one machine.
class Supposing {
  public:
    Supposing(const Snapshot& snapshot, const std::vector<Supposition>& suppositions,
              Platform& machine)
        : snapshot_(snapshot), suppositions_(suppositions), platform_(machine) {
        result_.holds.resize(suppositions.size());
    }

    SupposedMachine run(const CaptureRequest& request) {
        bool isAny = false;
        for (const ControllerSnapshot& detail : snapshot_.details) {
            const std::vector<std::size_t> own = ofController(detail);
            isAny = isAny || !own.empty();
            if (!own.empty() && !put(detail, own)) {
                return std::move(result_);
            }
        }
        if (!isAny) {
            return std::move(result_);
        }
        Snapshot supposed = captureMachine(platform_, request);
        checkTold(supposed);
        if (result_.because.empty()) {
            result_.snapshot = std::move(supposed);
        }
        return std::move(result_);
    }

  private:
    std::vector<std::size_t> ofController(const ControllerSnapshot& detail) {
        std::vector<std::size_t> own;
        for (std::size_t i = 0; i < suppositions_.size(); ++i) {
            if (detail.facts.drive(suppositions_[i].location) != nullptr) {
                result_.holds[i] = true;
                own.push_back(i);
            }
        }
        return own;
    }

    /// The drives that are supposed to be other, in the copy.
    template <typename Controller, typename Place>
    bool changeAll(const ControllerSnapshot& detail, const std::vector<std::size_t>& own,
                   Controller& controller, const Place& placeInCopy) {
        for (const std::size_t index : own) {
            const std::string& location = suppositions_[index].location;
            const DriveLocation place = placeInCopy(*detail.facts.drive(location));
            if (controller.driveAt(place) == nullptr) {
                return fail(detail.number, "its copy has no drive " + location);
            }
            change(controller, place, suppositions_[index]);
        }
        changed_.push_back(detail.number);
        return true;
    }

    bool putOfFamily(const ControllerSnapshot& detail, const std::vector<std::size_t>& own) {
        const MadeCopy made = copyController(detail, 0);
        if (!made.copy) {
            return fail(detail.number, made.because);
        }
        zolex_sim::storcli::Controller changed = made.copy->storcli();
        if (!changeAll(detail, own, changed, storcli_copy::placeOf)) {
            return false;
        }
        platform_.put(detail, VirtualCopy(detail, std::move(changed)));
        return true;
    }

    bool put(const ControllerSnapshot& detail, const std::vector<std::size_t>& own) {
        if (detail.index == ControllerSnapshot::noRecord) {
            return putOfFamily(detail, own);
        }
        const RAIDController* const record = snapshot_.controllers.controller(detail.index);
        MadeCopy made;
        made.because = "it was not captured";
        if (record != nullptr) {
            made = copyController(detail, record->type());
        }
        if (!made.copy) {
            return fail(detail.number, made.because);
        }
        zolex_sim::Controller changed = made.copy->controller();
        setPciPlace(changed, detail.facts.pciAddress);
        const auto place = [&detail](const DriveFacts& drive) {
            return placeInCopy(drive, detail.utility);
        };
        if (!changeAll(detail, own, changed, place)) {
            return false;
        }
        platform_.put(detail, VirtualCopy(detail, record->type(), std::move(changed)));
        return true;
    }

    bool fail(std::int32_t controller, const std::string& because) {
        result_.because = "controller " + std::to_string(controller) + ": " + because;
        return false;
    }

    void checkTold(const Snapshot& supposed) {
        for (const ControllerSnapshot& detail : supposed.details) {
            if (std::find(changed_.begin(), changed_.end(), detail.number) == changed_.end()) {
                continue;
            }
            for (std::size_t i = 0; i < suppositions_.size(); ++i) {
                const ControllerSnapshot& before = originalOf(detail.number);
                if (before.facts.drive(suppositions_[i].location) != nullptr &&
                    !isTold(detail.facts, suppositions_[i])) {
                    fail(detail.number, "the listings of " + detail.utility +
                                            " would not tell that " + suppositions_[i].words());
                    return;
                }
            }
        }
    }

    [[nodiscard]] const ControllerSnapshot& originalOf(std::int32_t number) const {
        return *std::find_if(
            snapshot_.details.begin(), snapshot_.details.end(),
            [number](const ControllerSnapshot& each) { return each.number == number; });
    }

    const Snapshot& snapshot_;
    const std::vector<Supposition>& suppositions_;
    SupposedPlatform platform_;
    SupposedMachine result_;
    std::vector<std::int32_t> changed_; ///< numbers of controllers
};

} // namespace

std::string Supposition::words() const {
    const std::string drive = "drive " + printable(location);
    switch (kind) {
    case Kind::fail:
        return drive + " has failed";
    case Kind::missing:
        return drive + " is missing";
    case Kind::size:
        break;
    }
    return drive + " has " + std::to_string(sizeMb) + " MB";
}

std::optional<Supposition> suppositionOf(std::string_view text) {
    for (const KindWord& row : kindWords) {
        if (!text.starts_with(row.word)) {
            continue;
        }
        Supposition result;
        result.kind = row.kind;
        std::string_view rest = text.substr(row.word.size());
        if (row.kind == Supposition::Kind::size) {
            const std::size_t equals = rest.find('=');
            const auto size = equals == std::string_view::npos
                                  ? std::nullopt
                                  : text::wholeNumber(rest.substr(equals + 1));
            if (!size || *size < 1 || *size > zolex_sim::maxDriveSizeMb) {
                return std::nullopt;
            }
            result.sizeMb = *size;
            rest = rest.substr(0, equals);
        }
        result.location = rest;
        return isLocation(rest) ? std::optional(std::move(result)) : std::nullopt;
    }
    return std::nullopt;
}

std::string faultOfSupposition(std::string_view text) {
    return suppositionOf(text)
               ? std::string()
               : "\"" + printable(text) +
                     "\" is none of fail:32:3, missing:32:3 and size:32:3=34715 (in MB)";
}

SupposedMachine suppose(const Snapshot& snapshot, const std::vector<Supposition>& suppositions,
                        Platform& machine, const CaptureRequest& request) {
    return Supposing(snapshot, suppositions, machine).run(request);
}

} // namespace zolex::companion
