#include "companion/layout/Compare.h"

#include "companion/layout/Attributes.h"
#include "companion/layout/DriveClasses.h"
#include "foundation/Text.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

using Locations = std::vector<std::string>;

/// What `a` has and `b` has not; both sorted.
Locations without(const Locations& a, const Locations& b) {
    Locations rest;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(rest),
                        locationStandsBefore);
    return rest;
}

/// "32:7 instead of 32:3".
std::string insteadText(const Locations& found, const Locations& wanted) {
    return locationsLine(found) + " instead of " + locationsLine(wanted);
}

std::string logicalDriveText(const LayoutVolume& volume) {
    return "LD " + (volume.id.empty() ? "?" : volume.id);
}

/// A group as matching sees it.
struct Side {
    Locations drives;   ///< sorted
    std::string flat;   ///< the classes of its drives
    std::string bySpan; ///< the same, span by span
    std::string key;    ///< of groups that can be the same: drives by class, levels
};

/// Which captured group a wanted one is held against, and how its drives stand.
struct Match {
    enum class How {
        none,
        inPlace,    ///< the very drives
        equal,      ///< equal drives
        standIn,    ///< a spare stands in for one of its drives
        moved,      ///< all of it stands, on drives that are not those of its list
        someDrives, ///< no more than some drives in common
    };
    How how = How::none;
    std::size_t captured = 0;
};

class LayoutComparison {
  public:
    LayoutComparison(const Facts& facts, const Layout& captured, const Layout& wanted,
                     const CompareTerms& terms)
        : captured_(captured), wanted_(wanted), attributes_(comparedAttributes(terms.utility)),
          classes_(facts), matches_(wanted.groups.size()), isTaken_(captured.groups.size()) {
        for (const LogicalDriveFacts& logical : facts.logicalDrives) {
            if (logical.spans.size() > 1) {
                hasToldSpans_.insert(logical.id);
            }
        }
        for (const LayoutGroup& group : captured.groups) {
            found_.push_back(sideOf(group));
        }
        for (const LayoutGroup& group : wanted.groups) {
            asked_.push_back(sideOf(group));
        }
    }

    Comparison compare() {
        if (attributes_.drives) {
            matchGroups();
        } else {
            matchInOrder();
        }
        for (std::size_t i = 0; i < matches_.size(); ++i) {
            result_.groups.push_back(tellGroup(i));
        }
        for (std::size_t i = 0; i < isTaken_.size(); ++i) {
            if (!isTaken_[i]) {
                tellSurplus(i);
            }
        }
        std::sort(result_.groupsInTheWay.begin(), result_.groupsInTheWay.end());
        compareSpares();
        tellHealth();
        orderNotComparable();
        result_.result = !result_.differences.empty()    ? Sameness::different
                         : !result_.equivalences.empty() ? Sameness::equivalent
                                                         : Sameness::same;
        return std::move(result_);
    }

  private:
    [[nodiscard]] Side sideOf(const LayoutGroup& group) const {
        Side side;
        side.drives = group.drives();
        side.flat = classes_.wordsOf(side.drives);
        std::vector<std::string> spans;
        for (const Locations& span : group.spans) {
            spans.push_back(classes_.wordsOf(span));
        }
        std::sort(spans.begin(), spans.end());
        for (const std::string& span : spans) {
            side.bySpan += span + "| ";
        }
        side.key = side.flat + "/";
        for (const LayoutVolume& volume : group.volumes) {
            side.key += " " + volume.raidType;
        }
        return side;
    }

    // Matching.

    void matchGroups() {
        std::map<Locations, std::size_t> byDrives;
        std::map<std::string, std::vector<std::size_t>> byKey;
        std::map<std::string, std::vector<std::size_t>> byClasses;
        for (std::size_t i = 0; i < found_.size(); ++i) {
            if (!found_[i].drives.empty()) {
                byDrives.emplace(found_[i].drives, i);
            }
            byKey[found_[i].key].push_back(i);
            byClasses[found_[i].flat].push_back(i);
        }
        const auto inPlace = [&](std::size_t i, bool fitting) {
            const auto same = byDrives.find(asked_[i].drives);
            if (same != byDrives.end() && spansFit(i, same->second, true) &&
                (!fitting || fits(i, same->second))) {
                take(i, same->second, Match::How::inPlace);
            }
        };
        const auto alike = [&](std::size_t i, const auto& buckets, const std::string& key,
                               bool fitting, Match::How how) {
            const auto bucket = buckets.find(key);
            if (bucket == buckets.end()) {
                return;
            }
            for (const std::size_t other : bucket->second) {
                if (!isTaken_[other] && spansFit(i, other, false) && (!fitting || fits(i, other))) {
                    take(i, other, how);
                    return;
                }
            }
        };
        forWanted([&](std::size_t i) { inPlace(i, !wanted_.groups[i].isListed); });
        forWanted([&](std::size_t i) { standIn(i); });
        forWanted([&](std::size_t i) {
            if (!wanted_.groups[i].isListed) {
                alike(i, byKey, asked_[i].key, true, Match::How::equal);
            }
        });
        forWanted([&](std::size_t i) { inPlace(i, false); });
        forWanted([&](std::size_t i) {
            if (wanted_.groups[i].isListed) {
                alike(i, byKey, asked_[i].key, true, Match::How::moved);
            }
        });
        forWanted([&](std::size_t i) {
            if (!wanted_.groups[i].isListed) {
                alike(i, byClasses, asked_[i].flat, false, Match::How::equal);
            }
        });
        matchByCommonDrives();
    }

    template <typename Each>
    void forWanted(const Each& each) {
        for (std::size_t i = 0; i < matches_.size(); ++i) {
            if (matches_[i].how == Match::How::none) {
                each(i);
            }
        }
    }

    void take(std::size_t wanted, std::size_t captured, Match::How how) {
        if (!isTaken_[captured]) {
            isTaken_[captured] = true;
            matches_[wanted] = {how, captured};
        }
    }

    /// The utility chooses the drives: there is no more to hold against each other than the order.
    void matchInOrder() {
        for (std::size_t i = 0; i < std::min(matches_.size(), isTaken_.size()); ++i) {
            take(i, i, Match::How::inPlace);
            if (asked_[i].drives != found_[i].drives) {
                cannotCompare("drives");
            }
        }
    }

    /// Whether the spans are as wanted, as far as the listing tells them: the very drives, or their
    /// classes.
    [[nodiscard]] bool spansFit(std::size_t wanted, std::size_t captured, bool inPlace) const {
        const LayoutGroup& group = captured_.groups[captured];
        const LayoutGroup& other = wanted_.groups[wanted];
        const bool isTold = std::any_of(
            group.volumes.begin(), group.volumes.end(),
            [this](const LayoutVolume& volume) { return hasToldSpans_.count(volume.id) != 0; });
        const bool isOneLevel = !group.volumes.empty() && !other.volumes.empty() &&
                                group.volumes.front().raidType == other.volumes.front().raidType;
        if (!isTold || !isOneLevel) {
            return true;
        }
        return inPlace ? group.spans == other.spans
                       : found_[captured].bySpan == asked_[wanted].bySpan;
    }

    [[nodiscard]] VolumePlace placeOf(std::size_t captured, std::size_t volume) const {
        const Locations& drives = found_[captured].drives;
        VolumePlace place;
        place.drives = drives.size();
        place.spans = captured_.groups[captured].spans.size();
        place.isFirst = volume == 0;
        place.roomIsKnown =
            std::all_of(drives.begin(), drives.end(), [this](const std::string& location) {
                const DriveFacts* const drive = classes_.drive(location);
                return drive != nullptr && drive->capacityBytes.has_value();
            });
        return place;
    }

    /// Whether all volumes are as wanted, and no others stand there.
    [[nodiscard]] bool fits(std::size_t wanted, std::size_t captured) const {
        const std::vector<LayoutVolume>& asked = wanted_.groups[wanted].volumes;
        const std::vector<LayoutVolume>& found = captured_.groups[captured].volumes;
        std::vector<std::string> ignored;
        for (std::size_t i = 0; i < asked.size() && asked.size() == found.size(); ++i) {
            if (!compareVolumes(found[i], asked[i], placeOf(captured, i), attributes_, ignored)
                     .empty()) {
                return false;
            }
        }
        return asked.size() == found.size();
    }

    /// One wanted spare stands in for a drive of the group, which is the spare now.
    void standIn(std::size_t wanted) {
        const LayoutGroup& group = wanted_.groups[wanted];
        if (!group.isListed || hasStandIn_) {
            return;
        }
        for (std::size_t i = 0; i < found_.size(); ++i) {
            if (isTaken_[i] || found_[i].drives.size() != asked_[wanted].drives.size()) {
                continue;
            }
            const Locations gone = without(asked_[wanted].drives, found_[i].drives);
            const Locations come = without(found_[i].drives, asked_[wanted].drives);
            if (gone.size() == 1 && come.size() == 1 &&
                haveChangedPlaces(gone.front(), come.front(), group.isByPairs) &&
                spansFitWith(wanted, i, gone.front(), come.front())) {
                hasStandIn_ = true;
                take(wanted, i, Match::How::standIn);
                return;
            }
        }
    }

    [[nodiscard]] bool spansFitWith(std::size_t wanted, std::size_t captured,
                                    const std::string& gone, const std::string& come) const {
        LayoutGroup group = wanted_.groups[wanted];
        for (Locations& span : group.spans) {
            std::replace(span.begin(), span.end(), gone, come);
        }
        Layout one;
        one.deepMirrors = wanted_.deepMirrors;
        one.groups.push_back(std::move(group));
        normalize(one);
        const std::vector<LayoutVolume>& volumes = captured_.groups[captured].volumes;
        const bool isTold =
            std::any_of(volumes.begin(), volumes.end(), [this](const LayoutVolume& volume) {
                return hasToldSpans_.count(volume.id) != 0;
            });
        return !isTold || one.groups.front().spans == captured_.groups[captured].spans;
    }

    /// Whether a wanted member is a spare now, and a wanted spare a member in its place.
    [[nodiscard]] bool haveChangedPlaces(const std::string& member, const std::string& spare,
                                         bool inOneEnclosure) const {
        return spareAt(wanted_.spares, spare) != nullptr &&
               spareAt(captured_.spares, member) != nullptr &&
               classes_.areInterchangeable(member, spare, inOneEnclosure);
    }

    static const LayoutSpare* spareAt(const std::vector<LayoutSpare>& spares,
                                      const std::string& location) {
        const auto found =
            std::find_if(spares.begin(), spares.end(),
                         [&](const LayoutSpare& spare) { return spare.location == location; });
        return found == spares.end() ? nullptr : &*found;
    }

    /// What is left: the captured group with the most of the wanted drives.
    void matchByCommonDrives() {
        std::map<std::string_view, std::size_t> owners;
        for (std::size_t i = 0; i < found_.size(); ++i) {
            for (const std::string& location : found_[i].drives) {
                owners.emplace(location, i);
            }
        }
        forWanted([&](std::size_t i) {
            std::map<std::size_t, std::size_t> common;
            for (const std::string& location : asked_[i].drives) {
                const auto owner = owners.find(location);
                if (owner != owners.end() && !isTaken_[owner->second]) {
                    ++common[owner->second];
                }
            }
            const auto most =
                std::max_element(common.begin(), common.end(),
                                 [](const auto& a, const auto& b) { return a.second < b.second; });
            if (most != common.end()) {
                take(i, most->first, Match::How::someDrives);
            }
        });
    }

    // Telling.

    StandingGroup tellGroup(std::size_t wanted) {
        const Match& match = matches_[wanted];
        if (match.how == Match::How::none) {
            for (const LayoutVolume& volume : wanted_.groups[wanted].volumes) {
                tellMissing(wanted, volume);
            }
            return {};
        }
        const bool isElsewhere =
            match.how == Match::How::moved || match.how == Match::How::someDrives;
        if (isElsewhere) {
            tellDrives(wanted, match);
        }
        StandingGroup standing = tellVolumes(wanted, match);
        // What stands on equal drives and is not as wanted is in the way there, not here.
        const bool isNoUse = match.how == Match::How::equal && standing.volumesThatStand == 0;
        if (isElsewhere || isNoUse) {
            result_.groupsInTheWay.push_back(match.captured);
            return {};
        }
        if (match.how == Match::How::equal) {
            tellEqualDrives(wanted, match.captured);
        }
        standing.captured = match.captured;
        return standing;
    }

    void tellDrives(std::size_t wanted, const Match& match) {
        const LayoutGroup& group = captured_.groups[match.captured];
        const bool isMoved = match.how == Match::How::moved;
        // The same drives in other spans, too.
        tell(isMoved ? "moved" : "drives", "", group.volumes.front().id,
             spansLine(wanted_.groups[wanted].spans), spansLine(group.spans));
    }

    StandingGroup tellVolumes(std::size_t wanted, const Match& match) {
        const std::vector<LayoutVolume>& asked = wanted_.groups[wanted].volumes;
        const std::vector<LayoutVolume>& found = captured_.groups[match.captured].volumes;
        StandingGroup standing;
        bool stands = true;
        bool standsButForCaches = true;
        for (std::size_t i = 0; i < std::min(asked.size(), found.size()); ++i) {
            VolumePlace place = placeOf(match.captured, i);
            place.sizeIsOpen = match.how == Match::How::someDrives;
            const std::vector<Difference> differences =
                compareVolumes(found[i], asked[i], place, attributes_, result_.notComparable);
            result_.differences.insert(result_.differences.end(), differences.begin(),
                                       differences.end());
            stands = stands && differences.empty();
            standsButForCaches = standsButForCaches && areOfCaches(differences);
            standing.volumesThatStand += stands ? 1 : 0;
            standing.volumesButForCaches += standsButForCaches ? 1 : 0;
        }
        for (std::size_t i = found.size(); i < asked.size(); ++i) {
            tellMissing(wanted, asked[i]);
        }
        for (std::size_t i = asked.size(); i < found.size(); ++i) {
            tellSurplus(match.captured, found[i]);
        }
        standing.isWhole =
            standing.volumesThatStand == asked.size() && asked.size() == found.size();
        return standing;
    }

    static bool areOfCaches(const std::vector<Difference>& differences) {
        return std::all_of(differences.begin(), differences.end(), [](const Difference& each) {
            return each.attribute == "write_cache_policy" || each.attribute == "read_cache_policy";
        });
    }

    void tellMissing(std::size_t wanted, const LayoutVolume& volume) {
        tell("missing", "", volume.id,
             layoutVolumeLine(volume) + ": " + spansLine(wanted_.groups[wanted].spans), "none");
    }

    void tellSurplus(std::size_t captured, const LayoutVolume& volume) {
        tell("surplus", "", volume.id, "none",
             layoutVolumeLine(volume) + ": " + spansLine(captured_.groups[captured].spans));
    }

    void tellSurplus(std::size_t captured) {
        for (const LayoutVolume& volume : captured_.groups[captured].volumes) {
            tellSurplus(captured, volume);
        }
        result_.groupsInTheWay.push_back(captured);
    }

    void tellEqualDrives(std::size_t wanted, std::size_t captured) {
        const Locations gone = without(asked_[wanted].drives, found_[captured].drives);
        const Locations come = without(found_[captured].drives, asked_[wanted].drives);
        // A drive that has changed places with a spare is told with the spare.
        const bool isTold =
            gone.size() == 1 && haveChangedPlaces(gone.front(), come.front(), false);
        const std::string who = logicalDriveText(captured_.groups[captured].volumes.front());
        if (isTold) {
            return;
        }
        result_.equivalences.push_back(gone.empty()
                                           ? who + " has its drives in other spans: " +
                                                 spansLine(captured_.groups[captured].spans)
                                           : who + " lies on " + insteadText(come, gone));
    }

    void tell(const char* attribute, std::string location, std::string logicalDrive,
              std::string wanted, std::string found) {
        result_.differences.push_back({attribute, std::move(location), std::move(logicalDrive),
                                       std::move(wanted), std::move(found)});
    }

    void cannotCompare(const char* attribute) {
        if (std::find(result_.notComparable.begin(), result_.notComparable.end(), attribute) ==
            result_.notComparable.end()) {
            result_.notComparable.emplace_back(attribute);
        }
    }

    /// In the order of the attributes, whatever the order of the groups.
    void orderNotComparable() {
        std::sort(result_.notComparable.begin(), result_.notComparable.end());
    }

    // Spares.

    void compareSpares() {
        const std::vector<LayoutSpare>& asked = wanted_.spares;
        std::vector<bool> isUsed(captured_.spares.size());
        result_.spares.assign(asked.size(), "");
        const auto place = [&](const auto& isFit) {
            for (std::size_t i = 0; i < asked.size(); ++i) {
                for (std::size_t k = 0; k < isUsed.size() && result_.spares[i].empty(); ++k) {
                    if (!isUsed[k] && isFit(asked[i], captured_.spares[k])) {
                        isUsed[k] = true;
                        result_.spares[i] = captured_.spares[k].location;
                    }
                }
            }
        };
        place([](const LayoutSpare& one, const LayoutSpare& other) {
            return one.location == other.location;
        });
        if (!attributes_.drives) {
            place([this](const LayoutSpare&, const LayoutSpare&) {
                cannotCompare("drives");
                return true;
            });
        }
        place([this](const LayoutSpare& one, const LayoutSpare& other) {
            return hasChangedPlaces(one, other);
        });
        place([this](const LayoutSpare& one, const LayoutSpare& other) {
            return !one.isListed &&
                   classes_.areInterchangeable(one.location, other.location, false);
        });
        for (std::size_t i = 0; i < asked.size(); ++i) {
            tellSpare(i);
        }
        tellOtherSpares(isUsed);
    }

    /// A spare that stands in for a drive of one group, and that drive is the spare now.
    bool hasChangedPlaces(const LayoutSpare& wanted, const LayoutSpare& found) {
        for (std::size_t i = 0; i < matches_.size(); ++i) {
            const Match& match = matches_[i];
            const bool isStandIn = match.how == Match::How::standIn;
            const bool isEqual = match.how == Match::How::equal && !hasStandIn_;
            if ((isStandIn || isEqual) && holds(asked_[i].drives, found.location) &&
                holds(found_[match.captured].drives, wanted.location) &&
                classes_.areInterchangeable(wanted.location, found.location, false)) {
                hasStandIn_ = hasStandIn_ || wanted.isListed;
                return true;
            }
        }
        return false;
    }

    static bool holds(const Locations& drives, const std::string& location) {
        return std::find(drives.begin(), drives.end(), location) != drives.end();
    }

    void tellSpare(std::size_t index) {
        const LayoutSpare& wanted = wanted_.spares[index];
        std::string& location = result_.spares[index];
        const LayoutSpare* const found =
            location.empty() ? nullptr : spareAt(captured_.spares, location);
        if (found == nullptr) {
            missingSpares_.push_back(index);
            return;
        }
        if (!coversAsMuch(wanted, *found)) {
            tell("hotspare_type", location, "", kindText(wanted, wanted.covers),
                 kindText(*found, wantedIdsOf(coveredBy(*found))));
            result_.sparesInTheWay.push_back(location);
            location.clear();
            return;
        }
        if (location != wanted.location && attributes_.drives) {
            result_.equivalences.push_back("the spare is " +
                                           insteadText({location}, {wanted.location}));
        }
    }

    [[nodiscard]] Locations coveredBy(const LayoutSpare& found) const {
        const DriveFacts* const drive = classes_.drive(found.location);
        return drive == nullptr ? Locations() : drive->covers;
    }

    /// Each captured array as the wanted one is called that it stands for.
    [[nodiscard]] Locations wantedIdsOf(Locations covers) const {
        for (std::string& id : covers) {
            for (std::size_t i = 0; i < wanted_.groups.size(); ++i) {
                if (matches_[i].how != Match::How::none &&
                    captured_.groups[matches_[i].captured].id == id) {
                    id = wanted_.groups[i].id;
                    break;
                }
            }
        }
        return covers;
    }

    /// "dedicated to A", "global".
    static std::string kindText(const LayoutSpare& spare, const Locations& covers) {
        std::string text = spare.isDedicated ? "dedicated" : "global";
        for (std::size_t i = 0; spare.isDedicated && i < covers.size(); ++i) {
            text += (i == 0 ? " to " : ", ") + covers[i];
        }
        return text;
    }

    /// A dedicated spare has its arrays, which some listings and some documents do not name.
    [[nodiscard]] bool coversAsMuch(const LayoutSpare& wanted, const LayoutSpare& found) const {
        if (wanted.isDedicated == found.isDedicated) {
            const Locations covers = coveredBy(found);
            return !wanted.isDedicated || wanted.covers.empty() || covers.empty() ||
                   coversTheSame(wanted, covers);
        }
        const auto redundant = static_cast<std::size_t>(std::count_if(
            wanted_.groups.begin(), wanted_.groups.end(), [](const LayoutGroup& group) {
                return std::any_of(
                    group.volumes.begin(), group.volumes.end(), [](const LayoutVolume& volume) {
                        return volume.raidType != "RAID0" && volume.raidType != "None";
                    });
            }));
        return redundant <= 1;
    }

    /// Whether the captured groups of these ids stand for those that the wanted spare is of.
    [[nodiscard]] bool coversTheSame(const LayoutSpare& wanted, const Locations& covers) const {
        for (std::size_t i = 0; i < wanted_.groups.size(); ++i) {
            const bool isWanted = std::find(wanted.covers.begin(), wanted.covers.end(),
                                            wanted_.groups[i].id) != wanted.covers.end();
            const bool stands = matches_[i].how != Match::How::none;
            const bool isCovered =
                stands && std::find(covers.begin(), covers.end(),
                                    captured_.groups[matches_[i].captured].id) != covers.end();
            if (isWanted != isCovered) {
                return false;
            }
        }
        return true;
    }

    void tellOtherSpares(const std::vector<bool>& isUsed) {
        Locations others;
        for (std::size_t i = 0; i < isUsed.size(); ++i) {
            if (!isUsed[i]) {
                others.push_back(captured_.spares[i].location);
            }
        }
        std::size_t next = 0;
        for (const std::size_t index : missingSpares_) {
            const LayoutSpare& wanted = wanted_.spares[index];
            const bool isMoved = wanted.isListed && next < others.size();
            if (isMoved) {
                tell("moved", wanted.location, "", "hot spare " + wanted.location,
                     "hot spare " + others[next]);
                result_.sparesInTheWay.push_back(others[next++]);
            } else {
                tell("missing", wanted.location, "", wantedSpareText(wanted),
                     "none" + useOf(wanted.location));
            }
        }
        for (; next < others.size(); ++next) {
            tell("surplus", others[next], "", "none", "hot spare");
            result_.sparesInTheWay.push_back(others[next]);
        }
        std::sort(result_.sparesInTheWay.begin(), result_.sparesInTheWay.end(),
                  locationStandsBefore);
    }

    static std::string wantedSpareText(const LayoutSpare& spare) {
        std::string text = spare.isDedicated ? "dedicated hot spare" : "hot spare";
        for (std::size_t i = 0; i < spare.covers.size(); ++i) {
            text += (i == 0 ? " (covers " : ", ") + spare.covers[i];
        }
        return text + (spare.covers.empty() ? "" : ")");
    }

    /// "; 32:7 is free".
    [[nodiscard]] std::string useOf(const std::string& location) const {
        const DriveFacts* const drive = classes_.drive(location);
        if (drive == nullptr) {
            return "; there is no drive " + location;
        }
        const std::string_view word = stateWord(drive->state);
        return word.empty() ? std::string() : "; " + location + " is " + std::string(word);
    }

    static std::string_view stateWord(DriveState state) {
        switch (state) {
        case DriveState::free:
            return "free";
        case DriveState::member:
            return "a member of an array";
        case DriveState::rebuilding:
            return "rebuilding";
        case DriveState::failed:
            return "failed";
        case DriveState::missing:
            return "missing";
        case DriveState::foreign:
            return "foreign";
        case DriveState::jbod:
            return "a disk of its own";
        default:
            break;
        }
        return {};
    }

    // Health.

    void tellHealth() {
        for (std::size_t i = 0; i < captured_.groups.size(); ++i) {
            const std::string drives = unwellDrives(found_[i].drives);
            for (const LayoutVolume& volume : captured_.groups[i].volumes) {
                const bool isUnknown =
                    volume.health == Health::unknown && !volume.reportedState.empty();
                const bool isUnwell = volume.health == Health::warning ||
                                      volume.health == Health::critical || isUnknown;
                if (!isUnwell && drives.empty()) {
                    continue;
                }
                const std::string state = volume.reportedState.empty() ? "not well"
                                          : isUnknown                  ? volume.reportedState
                                                      : lowered(volume.reportedState);
                result_.health.push_back(logicalDriveText(volume) +
                                         (isUnwell ? " is " + state : std::string()) +
                                         (isUnknown ? ", which is not known" : "") +
                                         (drives.empty() ? "" : ": " + drives));
            }
        }
    }

    /// Words with capitals behind the first letter are left as they are.
    static std::string lowered(const std::string& word) {
        std::string text = word;
        const bool isWord =
            text.size() > 1 &&
            std::none_of(text.begin() + 1, text.end(), [](char c) { return text::lower(c) != c; });
        text[0] = isWord ? text::lower(text[0]) : text[0];
        return text;
    }

    [[nodiscard]] std::string unwellDrives(const Locations& drives) const {
        std::string text;
        for (const std::string& location : drives) {
            const DriveFacts* const drive = classes_.drive(location);
            const bool isUnwell = drive == nullptr || drive->state == DriveState::failed ||
                                  drive->state == DriveState::missing ||
                                  drive->state == DriveState::rebuilding;
            if (isUnwell) {
                text += (text.empty() ? "" : ", ") +
                        (drive == nullptr ? "a drive is missing"
                                          : location + " " + std::string(stateWord(drive->state)));
            }
        }
        return text;
    }

    const Layout& captured_;
    const Layout& wanted_;
    const ComparedAttributes& attributes_;
    DriveClasses classes_;
    std::set<std::string> hasToldSpans_; ///< ids of logical drives
    std::vector<Side> found_;
    std::vector<Side> asked_;
    std::vector<Match> matches_;
    std::vector<bool> isTaken_;
    bool hasStandIn_ = false;
    std::vector<std::size_t> missingSpares_;
    Comparison result_;
};

} // namespace

std::string_view samenessWord(Sameness sameness) {
    switch (sameness) {
    case Sameness::same:
        return "same";
    case Sameness::equivalent:
        return "equivalent";
    case Sameness::different:
        break;
    }
    return "different";
}

Comparison compareLayouts(const Facts& facts, const Layout& captured, const Layout& wanted,
                          const CompareTerms& terms) {
    return LayoutComparison(facts, captured, wanted, terms).compare();
}

} // namespace zolex::companion
