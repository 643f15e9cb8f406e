#include "companion/rewriting/FamilyPolicies.h"

#include "companion/facts/Bytes.h"
#include "companion/families/Family.h"
#include "companion/families/ModelTexts.h"
#include "companion/families/SpanRules.h"
#include "companion/layout/Layout.h"
#include "companion/machine/Join.h"
#include "companion/rewriting/PolicyWriter.h"
#include "companion/rewriting/WantedLayout.h"
#include "companion/text/Terminal.h"
#include "companion/text/Words.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::size_t mostListedSpares = 8;
constexpr std::array<std::string_view, 7> levels = {"RAID0",  "RAID1",  "RAID5", "RAID6",
                                                    "RAID10", "RAID50", "RAID60"};

class FamilyPolicyWriter {
  public:
    FamilyPolicyWriter(const ControllerSnapshot& details, bool exact, bool namesNumber)
        : details_(details), exact_(exact), namesNumber_(namesNumber),
          layout_(capturedLayout(details.facts)) {}

    FamilyPolicy write() {
        if (details_.failed) {
            tell("ZC101", Severity::warning,
                 "its utility failed, so that there is no policy for it", {"zolexctl doctor"});
            return std::move(policy_);
        }
        if (layout_.groups.empty()) {
            tell(layout_.spares.empty() ? "ZC101" : "ZC102",
                 layout_.spares.empty() ? Severity::note : Severity::warning,
                 layout_.spares.empty() ? "it has no arrays, so that there is no policy for it"
                                        : "it has hot spares and no array: no policy can say that");
            return std::move(policy_);
        }
        tellHealth();
        if (!isSayable()) {
            return std::move(policy_);
        }
        for (const LayoutSpare& spare : layout_.spares) {
            hasDedicated_ = hasDedicated_ || spare.isDedicated;
        }
        policy_.text =
            "[Policy." + details_.model + "-" + std::to_string(details_.number) + "]\n\n" +
            policyEntry(std::string(keyword::appliesTo) + "1",
                        "t:" + typeOf() + ",d:" + std::to_string(details_.drives.size()) +
                            (namesNumber_ ? ",c:" + std::to_string(details_.number) : "")) +
            "\n" + settings() + arrays() + logicalDrives();
        tellNames();
        return std::move(policy_);
    }

  private:
    void tell(const char* code, Severity severity, const std::string& what,
              std::vector<std::string> help = {}) {
        policy_.findings.push_back(captureFinding(details_, code, severity, what, std::move(help)));
    }

    /// A model whose text is no type goes by its family.
    [[nodiscard]] const std::string& typeOf() const {
        return isKnownFamilyType(details_.model) ? details_.model : details_.utility;
    }

    bool isSayable() {
        std::size_t volumes = 0;
        for (const LayoutGroup& group : layout_.groups) {
            volumes += group.volumes.size();
            for (const LayoutVolume& volume : group.volumes) {
                if (std::find(levels.begin(), levels.end(), volume.raidType) == levels.end()) {
                    tell(
                        "ZC113", Severity::warning,
                        "it has a RAID level that policies cannot name, so that there is no policy "
                        "for it");
                    return false;
                }
            }
            for (const std::string& location : group.drives()) {
                if (numberOf(location).empty()) {
                    tell(
                        "ZC116", Severity::warning,
                        "a drive of an array is not listed (" + location +
                            "), so that there is no policy for it",
                        {"put it back or replace it, wait until it is rebuilt, and capture again"});
                    return false;
                }
            }
        }
        const auto most = static_cast<std::size_t>(keyword::lastLogical);
        if (layout_.groups.size() > mostPolicyArrays || volumes > most ||
            layout_.spares.size() > mostListedSpares) {
            tell("ZC116", Severity::warning,
                 "it has more than a policy can say: 8 arrays, 9 logical drives and 8 hot spares, "
                 "so that there is no policy for it");
            return false;
        }
        return true;
    }

    [[nodiscard]] std::string numberOf(const std::string& location) const {
        for (std::size_t i = 0; i < details_.drives.size(); ++i) {
            if (details_.drives[i].facts.location == location) {
                return std::to_string(
                    details_.drives[i].policyNumber.value_or(static_cast<std::int32_t>(i) + 1));
            }
        }
        return {};
    }

    /// What all volumes have in common; nothing where they differ.
    template <typename Value>
    std::optional<Value> common(Value LayoutVolume::*attribute, const char* words) {
        std::set<Value> values;
        for (const LayoutGroup& group : layout_.groups) {
            for (const LayoutVolume& volume : group.volumes) {
                values.insert(volume.*attribute);
            }
        }
        if (values.size() > 1) {
            tell("ZC116", Severity::warning,
                 std::string("its logical drives differ in ") + words +
                     ", and a policy has one: it is left to the controller");
            return std::nullopt;
        }
        return *values.begin();
    }

    std::string settings() {
        std::string text;
        const auto strip = common(&LayoutVolume::stripSizeBytes, "strip size");
        if (strip && *strip) {
            const std::string kb = std::to_string(**strip / bytesOfKb);
            if (policy_value::stripeSize(kb)) {
                text += policyEntry(keyword::stripeSize, kb);
            } else {
                tell("ZC112", Severity::warning,
                     "its strip size is " + kb +
                         " KB, which no policy can say: it is left to the controller");
            }
        }
        const auto read = common(&LayoutVolume::readCache, "read-ahead");
        if (read && !read->empty()) {
            text += policyEntry(keyword::readAhead, *read == "Off"         ? "OFF"
                                                    : *read == "ReadAhead" ? "ON"
                                                                           : "ADAPTIVE");
        }
        const Family* const family = findFamily(details_.utility);
        if (const std::size_t spans = family == nullptr ? 0 : unusualSpans(*family); spans > 0) {
            text += policyEntry("Spans", std::to_string(spans));
        }
        return text.empty() ? text : text + "\n";
    }

    /// How many spans the groups have where those that are chosen would be others; 0: they are not.
    std::size_t unusualSpans(const Family& family) {
        const FamilyLimits limits = family.limits(details_.facts);
        std::set<std::size_t> all;
        bool isUnusual = false;
        for (const LayoutGroup& group : layout_.groups) {
            if (group.spans.size() < 2) {
                continue;
            }
            all.insert(group.spans.size());
            const SpanChoice choice =
                chooseSpans(group.volumes.front().raidType, group.drives().size(), 0, limits);
            isUnusual = isUnusual || choice.drivesPerSpan != group.spans.front().size();
        }
        if (!isUnusual) {
            return 0;
        }
        if (all.size() > 1) {
            tell("ZC116", Severity::warning,
                 "its arrays have other numbers of spans than would be chosen, and a policy has "
                 "one");
            return 0;
        }
        return *all.begin();
    }

    [[nodiscard]] static std::string letterOf(std::size_t group) { return arrayLetters(group); }

    /// Drives in the order of their spans, which is the one in which they are cut.
    [[nodiscard]] static std::vector<std::string> drivesOf(const LayoutGroup& group) {
        std::vector<std::string> drives;
        for (const std::vector<std::string>& span : group.spans) {
            drives.insert(drives.end(), span.begin(), span.end());
        }
        return drives;
    }

    std::string arrays() {
        std::string text = hasDedicated_ ? "" : policyEntry(keyword::arrayMode, "CUSTOM");
        for (std::size_t i = 0; i < layout_.groups.size(); ++i) {
            const std::vector<std::string> drives = drivesOf(layout_.groups[i]);
            if (hasDedicated_) {
                text += policyEntry("Drives." + letterOf(i), "slots " + joined(drives, ","));
                continue;
            }
            std::vector<std::string> numbers;
            numbers.reserve(drives.size());
            for (const std::string& location : drives) {
                numbers.push_back(numberOf(location));
            }
            text += policyEntry(keyword::array + letterOf(i), joined(numbers, ","));
        }
        return text + spares() + "\n";
    }

    std::string spares() {
        if (layout_.spares.empty()) {
            return policyEntry(keyword::arrayDefaults, "0%:0");
        }
        std::string text;
        for (const LayoutSpare& spare : layout_.spares) {
            if (hasDedicated_) {
                text += (text.empty() ? "" : " and ") + ("slots " + spare.location) + covers(spare);
            } else {
                text += (text.empty() ? "" : ",") + numberOf(spare.location);
            }
        }
        return policyEntry(hasDedicated_ ? "Spares" : keyword::hotspares, text);
    }

    /// " covering A" of a dedicated spare.
    [[nodiscard]] std::string covers(const LayoutSpare& spare) const {
        const DriveFacts* const drive = details_.facts.drive(spare.location);
        std::vector<std::string> letters;
        for (std::size_t i = 0; i < layout_.groups.size() && drive != nullptr; ++i) {
            if (spare.isDedicated && std::find(drive->covers.begin(), drive->covers.end(),
                                               layout_.groups[i].id) != drive->covers.end()) {
                letters.push_back(letterOf(i));
            }
        }
        return letters.empty() ? "" : " covering " + joined(letters, ",");
    }

    /// In MB. The utility cuts a size down to whole stripes, so that the next MB above what was cut
    /// makes the same again.
    [[nodiscard]] static std::string sizeOf(const LayoutVolume& volume) {
        const std::uint64_t bytes = volume.capacityBytes.value_or(0);
        return std::to_string((bytes + (volume.fills ? 0 : bytesOfMb - 1)) / bytesOfMb);
    }

    std::string logicalDrives() {
        std::string text = policyEntry(keyword::logicalMode, "CUSTOM");
        std::size_t number = 0;
        for (std::size_t i = 0; i < layout_.groups.size(); ++i) {
            for (const LayoutVolume& volume : layout_.groups[i].volumes) {
                const std::string size = volume.fills && !exact_ ? "FILL" : sizeOf(volume);
                const std::string cache = volume.writeCache.empty()             ? ""
                                          : volume.writeCache == "WriteThrough" ? ":OFF"
                                                                                : ":ON";
                std::string value = letterOf(i);
                value.append(":").append(size).append(":");
                value.append(volume.raidType.substr(4)).append(cache);
                text += policyEntry(keyword::logical + std::to_string(++number), value);
            }
        }
        return text + "\n";
    }

    void tellHealth() {
        for (const LogicalDriveFacts& volume : details_.facts.logicalDrives) {
            const bool isUnwell = volume.health != Health::ok && !volume.reportedState.empty();
            if (isUnwell || isSick(volume)) {
                tell("ZC106", Severity::warning,
                     "logical drive " + volume.id + " is " +
                         (isUnwell ? printable(volume.reportedState) : "not well") +
                         ": the policy may not be what it was when it was well",
                     {"mend it first, then capture again"});
            }
        }
    }

    /// Whether a drive of it has left. One that is being written to is no sign: so are arrays that
    /// were just made, and the logical drive has a word for the others.
    [[nodiscard]] bool isSick(const LogicalDriveFacts& volume) const {
        return std::any_of(volume.spans.begin(), volume.spans.end(), [this](const auto& span) {
            return std::any_of(span.begin(), span.end(), [this](const std::string& member) {
                const DriveFacts* const drive = details_.facts.drive(member);
                return drive == nullptr || drive->state == DriveState::failed ||
                       drive->state == DriveState::missing;
            });
        });
    }

    void tellNames() {
        for (const LogicalDriveFacts& volume : details_.facts.logicalDrives) {
            if (!volume.name.empty()) {
                tell("ZC117", Severity::note,
                     "logical drive " + volume.id + " is called \"" + printable(volume.name) +
                         "\": policies give no names");
            }
        }
    }

    const ControllerSnapshot& details_;
    const bool exact_;
    const bool namesNumber_;
    const Layout layout_;
    bool hasDedicated_ = false; ///< hot spares, which lists of numbers cannot say
    FamilyPolicy policy_;
};

} // namespace

FamilyPolicy familyPolicy(const ControllerSnapshot& details, bool exact, bool namesNumber) {
    return FamilyPolicyWriter(details, exact, namesNumber).write();
}

} // namespace zolex::companion
