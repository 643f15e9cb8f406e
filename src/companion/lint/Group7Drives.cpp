#include "companion/facts/CompareReadings.h"
#include "companion/lint/Entries.h"
#include "companion/lint/Levels.h"
#include "companion/lint/MachineCase.h"
#include "companion/lint/MemberLine.h"
#include "companion/text/Sizes.h"
#include "model/Codes.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::uint64_t bytesPerMb = 1024ULL * 1024ULL;

bool isBad(const MachineDrive& drive) {
    return drive.facts.state == DriveState::failed || drive.facts.state == DriveState::missing;
}

bool isInUse(const MachineDrive& drive) {
    return drive.facts.state == DriveState::member || drive.facts.state == DriveState::hotspare ||
           drive.facts.state == DriveState::rebuilding;
}

bool isBefore(DrivePosition a, DrivePosition b) {
    return a.channel != b.channel ? a.channel < b.channel : a.id < b.id;
}

std::string sizeOfMb(std::int64_t mb) {
    return sizeText(static_cast<std::uint64_t>(mb) * bytesPerMb);
}

/// Checks the drives that the plan of one controller takes.
class PlannedDrives {
  public:
    PlannedDrives(const MachineCase& machine, FindingSink& sink) : machine_(machine), sink_(sink) {}

    void check() {
        checkShiftedNumbers();
        if (!machine_.plan.layout) {
            return;
        }
        checkHealth();
        if (!machine_.isOfPlan) {
            checkUse();
        }
        const std::vector<RaidArray>& arrays = layout().arrays();
        for (std::size_t i = 0; i < arrays.size(); ++i) {
            checkSizes(i);
            checkKinds(i);
            checkRoom(i);
            checkOverfull(i);
            checkEnclosures(i);
            checkMemberLine(i);
        }
        checkJobs();
        checkHotspares();
        checkSizesAsked();
        checkRedundancy();
        checkNames();
        checkIdle();
    }

  private:
    [[nodiscard]] const RAIDConfiguration& layout() const { return *machine_.plan.layout; }
    [[nodiscard]] std::int32_t sizeAt(DrivePosition position) const {
        return machine_.controller.size(position.channel, position.id);
    }
    [[nodiscard]] static std::string nameOf(std::size_t array) {
        return std::string("Array.") + static_cast<char>('A' + array);
    }

    void add(std::string_view rule, const Piece* place, const std::string& summary,
             std::vector<std::string> help) {
        machine_.add(sink_, rule, place, summary, std::move(help));
    }

    // ZX701

    /// Where the drive would stand in policies, were it counted.
    [[nodiscard]] std::optional<DrivePosition> wouldBePosition(const MachineDrive& drive) const {
        const std::vector<DriveFacts>& all = machine_.detail.facts.drives;
        const auto positions = corePositions(machine_.controller.type(), machine_.detail.facts);
        for (std::size_t i = 0; i < positions.size(); ++i) {
            if (all[i].location == drive.facts.location) {
                return positions[i];
            }
        }
        return std::nullopt;
    }

    /// The first number that names another slot because this drive has none.
    [[nodiscard]] std::optional<std::int32_t> firstShifted(const MachineDrive& drive) const {
        const auto place = wouldBePosition(drive);
        for (const MachineDrive& other : machine_.detail.drives) {
            if (place && other.policyPosition && isBefore(*place, *other.policyPosition)) {
                return other.policyNumber;
            }
        }
        return std::nullopt;
    }

    void checkShiftedNumbers() {
        const MachineDrive* cause = nullptr;
        std::int32_t first = std::numeric_limits<std::int32_t>::max();
        for (const MachineDrive& drive : machine_.detail.drives) {
            const auto shifted = drive.policyNumber ? std::nullopt : firstShifted(drive);
            if (shifted && *shifted < first) {
                first = *shifted;
                cause = &drive;
            }
        }
        if (cause == nullptr || machine_.policy == nullptr) {
            return;
        }
        for (const DriveListView& list : machine_.policy->countingArrays()) {
            checkNumbers(list, first, *cause);
        }
        if (machine_.policy->hotspares) {
            checkNumbers(*machine_.policy->hotspares, first, *cause);
        }
    }

    void checkNumbers(const DriveListView& list, std::int32_t first, const MachineDrive& cause) {
        // A number that no drive has is a fault of the plan.
        const auto shifted =
            std::find_if(list.drives.begin(), list.drives.end(), [&](const DriveView& view) {
                return view.number >= first && machine_.drive(view) != nullptr;
            });
        if (shifted == list.drives.end()) {
            return;
        }
        add("ZX701", &shifted->piece,
            "drive " + std::to_string(shifted->number) + " is " +
                machine_.drive(*shifted)->facts.location + " now, as " + driveWords(cause) +
                " has no number",
            {"each number from " + std::to_string(first) + " on names the next drive",
             "replace " + cause.facts.location + " first, or write channel:id"});
    }

    // ZX702, ZX703

    void checkHealth() {
        const std::vector<RaidArray>& arrays = layout().arrays();
        for (std::size_t i = 0; i < arrays.size(); ++i) {
            for (const DrivePosition position : arrays[i].drives()) {
                checkHealth(machine_.drive(position), machine_.place(i, position), nameOf(i));
            }
        }
        for (const Hotspare& spare : layout().hotspares()) {
            const DrivePosition position{spare.channelNumber, spare.id};
            checkHealth(machine_.drive(position), machine_.placeOfHotspare(position),
                        "the hot spares");
        }
    }

    void checkHealth(const MachineDrive* drive, const Piece* place, const std::string& where) {
        if (drive == nullptr) {
            return;
        }
        if (isBad(*drive)) {
            add("ZX702", place,
                drive->facts.location +
                    (drive->facts.serialNumber.empty()
                         ? ""
                         : " (serial " + drive->facts.serialNumber + ")") +
                    " is " + drive->facts.reportedState + ", and goes into " + where,
                {"replace " + drive->facts.location + ", or take it out of the list"});
            return;
        }
        const std::uint64_t media = drive->facts.mediaErrorCount.value_or(0);
        const std::uint64_t predicted = drive->facts.predictedFailureCount.value_or(0);
        if (media == 0 && predicted == 0) {
            return;
        }
        std::string what;
        if (media > 0) {
            what = countText(media, "media error", "media errors");
        }
        if (predicted > 0) {
            what += (what.empty() ? "" : ", ") +
                    countText(predicted, "predicted failure", "predicted failures");
        }
        add("ZX703", place, drive->facts.location + " has " + what + ", and goes into " + where,
            {"replace " + drive->facts.location + " before the array is made"});
    }

    // ZX605, ZX710

    void checkUse() {
        std::vector<const MachineDrive*> used;
        for (const RaidArray& array : layout().arrays()) {
            for (const DrivePosition position : array.drives()) {
                addUsed(position, used);
            }
        }
        for (const Hotspare& spare : layout().hotspares()) {
            addUsed({spare.channelNumber, spare.id}, used);
        }
        if (!used.empty()) {
            add("ZX605", nullptr,
                machine_.policy->name() + " needs " + countOf(used.size(), "drive") +
                    " in use: " + someDrives(used),
                {"without /r the utility refuses the first command for them, exit code 11",
                 "zolex /r erases all arrays of all controllers first, with their data"});
        }
    }

    void addUsed(DrivePosition position, std::vector<const MachineDrive*>& used) const {
        const MachineDrive* drive = machine_.drive(position);
        if (drive != nullptr && isInUse(*drive) &&
            std::find(used.begin(), used.end(), drive) == used.end()) {
            used.push_back(drive);
        }
    }

    // ZX704

    void checkSizes(std::size_t array) {
        constexpr std::int64_t worthMentioning = 50; // one part in so many
        const std::vector<DrivePosition>& drives = layout().arrays()[array].drives();
        const auto [smallest, largest] = extremes(drives);
        if (!smallest ||
            sizeAt(*largest) - sizeAt(*smallest) <= sizeAt(*smallest) / worthMentioning) {
            return;
        }
        std::int64_t unused = 0;
        for (const DrivePosition position : drives) {
            unused += sizeAt(position) - sizeAt(*smallest);
        }
        const MachineDrive* small = machine_.drive(*smallest);
        const MachineDrive* large = machine_.drive(*largest);
        add("ZX704", machine_.place(array, *smallest),
            nameOf(array) + " leaves " + sizeOfMb(unused) + " of its drives unused",
            {locationWords(small) + " has " + sizeOfMb(sizeAt(*smallest)) + ", " +
             locationWords(large) + " has " + sizeOfMb(sizeAt(*largest))});
    }

    static std::string locationWords(const MachineDrive* drive) {
        return drive == nullptr ? std::string("a drive") : drive->facts.location;
    }

    [[nodiscard]] std::pair<std::optional<DrivePosition>, std::optional<DrivePosition>>
    extremes(const std::vector<DrivePosition>& drives) const {
        std::optional<DrivePosition> smallest;
        std::optional<DrivePosition> largest;
        for (const DrivePosition position : drives) {
            smallest = !smallest || sizeAt(position) < sizeAt(*smallest) ? position : smallest;
            largest = !largest || sizeAt(position) > sizeAt(*largest) ? position : largest;
        }
        return {smallest, largest};
    }

    void checkKinds(std::size_t array) {
        const std::vector<DrivePosition>& drives = layout().arrays()[array].drives();
        checkWords(array, drives, &DriveFacts::protocol);
        checkWords(array, drives, &DriveFacts::mediaType);
    }

    void checkWords(std::size_t array, const std::vector<DrivePosition>& drives,
                    std::string DriveFacts::*member) {
        const MachineDrive* first = nullptr;
        for (const DrivePosition position : drives) {
            const MachineDrive* drive = machine_.drive(position);
            if (drive == nullptr || (drive->facts.*member).empty()) {
                continue;
            }
            if (first == nullptr) {
                first = drive;
            } else if (drive->facts.*member != first->facts.*member) {
                add("ZX704", machine_.place(array, position),
                    nameOf(array) + " has " + first->facts.*member + " and " +
                        drive->facts.*member + " drives",
                    {first->facts.location + " is " + first->facts.*member + ", " +
                     drive->facts.location + " is " + drive->facts.*member});
                return;
            }
        }
    }

    /// The size of a logical drive that is planned, in MB; nothing for the rest of its array.
    [[nodiscard]] std::optional<double> usedMb(const RaidArray& array,
                                               const LogicalDrive& logical) const {
        const double usable = usableFraction(logical.raidLevel, array.driveCount());
        if (logical.sizeMb == sizeFill || usable <= 0.0) {
            return std::nullopt;
        }
        return logical.sizeMb / usable;
    }

    /// Room that no logical drive uses although the policy gives sizes in MB: it was written for
    /// smaller drives.
    void checkRoom(std::size_t index) {
        constexpr double part = 0.1;
        const RaidArray& array = layout().arrays()[index];
        double left = static_cast<double>(array.capacityMb);
        const Piece* place = nullptr;
        for (std::size_t i = 0; i < layout().logicalDrives().size(); ++i) {
            const LogicalDrive& logical = layout().logicalDrives()[i];
            if (logical.arrayIndex != static_cast<std::int32_t>(index)) {
                continue;
            }
            const std::optional<double> used = usedMb(array, logical);
            if (!used) {
                return;
            }
            left -= *used;
            const LogicalView* view = viewOf(i);
            const bool isMb = view != nullptr && view->given.size.kind == DriveSize::Kind::mb;
            place = isMb ? &view->size : place;
        }
        if (place != nullptr && left > part * static_cast<double>(array.capacityMb)) {
            add("ZX704", place,
                nameOf(index) + " leaves " + sizeOfMb(static_cast<std::int64_t>(left)) +
                    " of its drives unused",
                {"the drives are larger than the sizes are for; FILL takes all that is left"});
        }
    }

    /// What the arrays before this one, of the same drives, take of them, in MB.
    [[nodiscard]] double usedBefore(std::size_t index) const {
        const std::vector<DrivePosition> own = sortedDrives(index);
        double used = 0.0;
        for (const LogicalDrive& logical : layout().logicalDrives()) {
            const auto array = static_cast<std::size_t>(logical.arrayIndex);
            if (array < index && sortedDrives(array) == own) {
                const RaidArray& other = layout().arrays()[array];
                used += usedMb(other, logical).value_or(static_cast<double>(other.capacityMb));
            }
        }
        return used;
    }

    /// ZX110: a size that is larger than what the logical drives before it leave. Percentages are
    /// judged with the file, and with a plan, which knows what they come to.
    void checkOverfull(std::size_t index) {
        const RaidArray& array = layout().arrays()[index];
        double left = static_cast<double>(array.capacityMb);
        left -= machine_.isOfPlan ? usedBefore(index) : 0.0;
        for (std::size_t i = 0; i < layout().logicalDrives().size(); ++i) {
            const LogicalDrive& logical = layout().logicalDrives()[i];
            const bool isToldAlready = left <= 0.0 && !machine_.isOfPlan;
            if (isToldAlready || logical.arrayIndex != static_cast<std::int32_t>(index)) {
                continue;
            }
            const LogicalView* view = viewOf(i);
            const std::optional<double> used = usedMb(array, logical);
            if (!used) {
                if (machine_.isOfPlan && left < 1.0 && view != nullptr) {
                    tellOverfull(*view, index, 0);
                }
                return;
            }
            const bool isJudged = view != nullptr && (machine_.isOfPlan ||
                                                      view->given.size.kind == DriveSize::Kind::mb);
            if (isJudged && *used > left + 1.0) {
                const auto room = static_cast<std::int64_t>(
                    std::max(left, 0.0) * usableFraction(logical.raidLevel, array.driveCount()));
                tellOverfull(*view, index, room);
            }
            left -= *used;
        }
    }

    void tellOverfull(const LogicalView& view, std::size_t index, std::int64_t room) {
        const DriveSize& size = view.given.size;
        const std::string asked = size.kind == DriveSize::Kind::rest ? std::string("FILL")
                                  : size.kind == DriveSize::Kind::percent
                                      ? std::to_string(size.value) + "%"
                                      : std::to_string(size.value);
        Finding& finding = machine_.add(
            sink_, "ZX110", &view.size,
            nameOf(index) + " has room for " + std::to_string(room) + " MB, and " +
                view.entry->keyword.text + " asks for " + asked,
            {machine_.detail.utility +
                 " refuses the command, exit code 11, when those before it are done",
             size.kind == DriveSize::Kind::rest ? "give the logical drives before it less"
                                                : "write FILL for all that is left"});
        finding.severity = Severity::error;
        finding.refusedBy = RefusedBy::utility;
    }

    /// The entry that gives the logical drive of this index.
    [[nodiscard]] const LogicalView* viewOf(std::size_t index) const {
        if (machine_.policy->customLogicalDrives) {
            return index < machine_.policy->logicalDrives.size()
                       ? &machine_.policy->logicalDrives[index]
                       : nullptr;
        }
        return machine_.policy->logicalDefaults ? &*machine_.policy->logicalDefaults : nullptr;
    }

    // ZX705

    void checkEnclosures(std::size_t array) {
        const bool isMirror =
            std::any_of(layout().logicalDrives().begin(), layout().logicalDrives().end(),
                        [array](const LogicalDrive& logical) {
                            return logical.arrayIndex == static_cast<std::int32_t>(array) &&
                                   (logical.raidLevel == raid_level::raid1 ||
                                    logical.raidLevel == raid_level::raid10);
                        });
        std::set<std::int32_t> all;
        for (const MachineDrive& drive : machine_.detail.drives) {
            if (drive.facts.enclosure) {
                all.insert(*drive.facts.enclosure);
            }
        }
        std::set<std::int32_t> own;
        for (const DrivePosition position : layout().arrays()[array].drives()) {
            const MachineDrive* drive = machine_.drive(position);
            if (drive == nullptr || !drive->facts.enclosure) {
                return;
            }
            own.insert(*drive->facts.enclosure);
        }
        if (isMirror && own.size() == 1 && all.size() > 1) {
            const auto other = std::find_if(all.begin(), all.end(),
                                            [&own](std::int32_t id) { return own.count(id) == 0; });
            const DrivePosition first = layout().arrays()[array].drives().front();
            add("ZX705", machine_.place(array, first),
                "both halves of " + nameOf(array) + " are in enclosure " +
                    std::to_string(*own.begin()),
                {"take one half from enclosure " + std::to_string(*other)});
        }
    }

    // ZX602

    void checkMemberLine(std::size_t array) {
        const std::vector<DrivePosition>& drives = layout().arrays()[array].drives();
        const DriveListView* list = machine_.policy->customArrays
                                        ? machine_.policy->array(static_cast<std::int32_t>(array))
                                        : nullptr;
        const bool isToldAlready = list != nullptr && !list->isAll && !list->hasNumbers();
        const std::size_t read = membersRead(drives);
        if (isToldAlready || !listsMembersInOneLine(machine_.controller.type()) ||
            read == drives.size()) {
            return;
        }
        const MachineDrive* cut = machine_.drive(drives[read]);
        add("ZX602", machine_.place(array, drives[read]),
            machine_.detail.utility + " lists " + countOf(drives.size(), "drive") +
                " in a line of " + std::to_string(memberLine(drives).size()) +
                " bytes, and 198 are read",
            {"a capture names wrong drives from " + locationWords(cut) + " on"});
    }

    // ZX302, ZX501, ZX502: each drive has one job, whether numbers or positions name it.

    [[nodiscard]] std::optional<std::size_t> arrayOf(DrivePosition position,
                                                     std::size_t before) const {
        for (std::size_t i = 0; i < before; ++i) {
            const std::vector<DrivePosition>& drives = layout().arrays()[i].drives();
            if (std::find(drives.begin(), drives.end(), position) != drives.end()) {
                return i;
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] std::vector<DrivePosition> sortedDrives(std::size_t index) const {
        std::vector<DrivePosition> drives = layout().arrays()[index].drives();
        std::sort(drives.begin(), drives.end(), isBefore);
        return drives;
    }

    /// Whether an earlier array has the same drives: so MEGACLI makes further logical drives.
    [[nodiscard]] bool isRepeated(std::size_t array) const {
        const std::vector<DrivePosition> own = sortedDrives(array);
        for (std::size_t i = 0; i < array; ++i) {
            if (sortedDrives(i) == own) {
                return machine_.controller.type() == controller_type::megaRaid;
            }
        }
        return false;
    }

    void checkJobs() {
        const std::size_t arrays = layout().arrays().size();
        for (std::size_t i = 1; i < arrays; ++i) {
            for (const DrivePosition position : layout().arrays()[i].drives()) {
                const auto first = isRepeated(i) ? std::nullopt : arrayOf(position, i);
                if (first) {
                    add("ZX302", machine_.place(i, position),
                        locationWords(machine_.drive(position)) + " is in " + nameOf(*first) +
                            " and in " + nameOf(i),
                        {nameOf(*first) + " is made, and then " + machine_.detail.utility +
                         " refuses the command for " + nameOf(i)});
                }
            }
        }
        for (const Hotspare& spare : layout().hotspares()) {
            const DrivePosition position{spare.channelNumber, spare.id};
            if (const auto array = arrayOf(position, arrays)) {
                tellBusyHotspare(position, nameOf(*array));
            }
        }
    }

    void tellBusyHotspare(DrivePosition position, const std::string& array) {
        const std::string location = locationWords(machine_.drive(position));
        if (const Piece* place = machine_.placeOfHotspare(position)) {
            add("ZX502", place, location + " is a hot spare and in " + array,
                {array + " is made, and then " + machine_.detail.utility + " refuses the spare"});
            return;
        }
        machine_
            .add(sink_, "ZX501", nullptr,
                 "no Hotspares: " + location + " becomes the hot spare, and is listed in " + array,
                 {array + " is made, and then " + machine_.detail.utility + " refuses the spare",
                  "add Hotspares, or Array_Defaults = 0%:0 for none"})
            .severity = Severity::error;
    }

    // ZX706

    [[nodiscard]] bool isRedundant(std::size_t array) const {
        const auto isOnIt = [array](const LogicalDrive& logical) {
            return logical.arrayIndex == static_cast<std::int32_t>(array);
        };
        return std::any_of(layout().logicalDrives().begin(), layout().logicalDrives().end(),
                           [&](const LogicalDrive& logical) {
                               return isOnIt(logical) && canRebuild(logical.raidLevel);
                           });
    }

    /// Whether the policy says that the hot spares are for other arrays.
    [[nodiscard]] bool isUncovered(std::size_t array) const {
        const auto letter = static_cast<char>('A' + static_cast<int>(array));
        return machine_.uncovered.find(letter) != std::string::npos;
    }

    void checkHotspares() {
        for (std::size_t i = 0; i < layout().arrays().size(); ++i) {
            const auto smallest = extremes(layout().arrays()[i].drives()).first;
            if (!smallest || !isRedundant(i) || layout().hotspares().empty() || isUncovered(i)) {
                continue;
            }
            const auto covers = [&](const Hotspare& spare) {
                return sizeAt({spare.channelNumber, spare.id}) >= sizeAt(*smallest);
            };
            const std::vector<Hotspare>& spares = layout().hotspares();
            if (std::any_of(spares.begin(), spares.end(), covers)) {
                continue;
            }
            const DrivePosition spare{spares.front().channelNumber, spares.front().id};
            add("ZX706", machine_.placeOfHotspare(spare),
                locationWords(machine_.drive(spare)) + " is too small a hot spare for " + nameOf(i),
                {"it has " + sizeOfMb(sizeAt(spare)) + ", the smallest drive of " + nameOf(i) +
                 " has " + sizeOfMb(sizeAt(*smallest))});
        }
    }

    // ZX406

    void checkSizesAsked() {
        for (const Reason& reason : machine_.plan.reasons) {
            const bool isFilled = reason.subject == Reason::Subject::size &&
                                  reason.askedSize.kind == DriveSize::Kind::mb &&
                                  reason.value == sizeFill && reason.index >= 0;
            if (isFilled) {
                checkFilled(static_cast<std::size_t>(reason.index), reason.askedSize.value);
            }
        }
    }

    void checkFilled(std::size_t index, std::int32_t askedMb) {
        const LogicalDrive& logical = layout().logicalDrives().at(index);
        const RaidArray& array = layout().arrays().at(static_cast<std::size_t>(logical.arrayIndex));
        double left = static_cast<double>(array.capacityMb);
        for (std::size_t i = 0; i < index; ++i) {
            const LogicalDrive& other = layout().logicalDrives()[i];
            if (other.arrayIndex == logical.arrayIndex) {
                left -= usedMb(array, other).value_or(left);
            }
        }
        const auto all =
            static_cast<std::int64_t>(left * usableFraction(logical.raidLevel, array.driveCount()));
        const LogicalView* view = viewOf(index);
        if (all == askedMb || view == nullptr) {
            return;
        }
        add("ZX406", &view->size,
            "a size of " + std::to_string(askedMb) + " MB becomes all that is left, " +
                std::to_string(all) + " MB",
            {"write FILL, or a size that leaves more than 139 MB"});
    }

    // ZX411

    /// Logical drives without redundancy that nobody asked for.
    void checkRedundancy() {
        for (const Reason& reason : machine_.plan.reasons) {
            const bool isDefault = reason.subject == Reason::Subject::raidLevel &&
                                   reason.kind == Reason::Kind::classDefault && reason.index >= 0;
            if (!isDefault || canRebuild(reason.value)) {
                continue;
            }
            const LogicalDrive& logical =
                layout().logicalDrives().at(static_cast<std::size_t>(reason.index));
            const std::vector<DrivePosition>& drives =
                layout().arrays().at(static_cast<std::size_t>(logical.arrayIndex)).drives();
            std::vector<const MachineDrive*> members;
            for (const DrivePosition position : drives) {
                if (const MachineDrive* drive = machine_.drive(position)) {
                    members.push_back(drive);
                }
            }
            const bool isVolume = reason.value != raid_level::raid0;
            add("ZX411", nullptr,
                someDrives(members) + (members.size() == 1 ? " becomes a " : " become a ") +
                    (isVolume ? "" : "RAID ") + raidLevelWord(reason.value) + " without redundancy",
                {"one drive's failure loses all data of it"});
        }
    }

    // ZX711

    /// What MEGACLI's command line says where the drive is named; other utilities are told the
    /// position itself.
    void checkNames() {
        if (traitsOf(machine_.controller.type()).dialect != Dialect::megaCli) {
            return;
        }
        const std::vector<RaidArray>& arrays = layout().arrays();
        for (std::size_t i = 0; i < arrays.size(); ++i) {
            for (const DrivePosition position : arrays[i].drives()) {
                const std::string enclosure =
                    machine_.controller.channelReassignment() ? enclosureOf(position) : "";
                if (!checkName(position, enclosure, machine_.place(i, position))) {
                    break;
                }
            }
        }
        for (const Hotspare& spare : layout().hotspares()) {
            const DrivePosition position{spare.channelNumber, spare.id};
            const MachineDrive* drive = machine_.drive(position);
            // The lines of zolexctl name spares without an enclosure as they are.
            const bool isNamed =
                machine_.isOfPlan && drive != nullptr && drive->facts.location.starts_with(':');
            if (!isNamed) {
                checkName(position, enclosureOf(position), machine_.placeOfHotspare(position));
            }
        }
    }

    /// Whether the utility's command names no drives, and so makes its array of all there are.
    [[nodiscard]] bool takesAllDrives() const {
        return machine_.controller.type() == controller_type::lsiIde;
    }

    [[nodiscard]] std::string enclosureOf(DrivePosition position) const {
        return std::to_string(machine_.controller.targetId(position.channel, position.id));
    }

    bool checkName(DrivePosition position, const std::string& enclosure, const Piece* place) {
        const std::string named = enclosure + ":" + std::to_string(position.id);
        const MachineDrive* drive = machine_.drive(position);
        if (drive == nullptr || drive->facts.location == named) {
            return true;
        }
        Finding& finding = machine_.add(
            sink_, "ZX711", place,
            (machine_.isOfPlan ? "the command line says " : "zolex writes ") + named +
                " for drive " + drive->facts.location + ", which is another drive or none",
            {"use drives of enclosures alone, or of none alone; no hot spare without an "
             "enclosure"});
        if (machine_.isOfPlan) {
            finding.refusedBy = RefusedBy::plan; // zolexctl has no other line
        }
        return false;
    }

    // ZX712

    void checkIdle() {
        constexpr std::size_t mostNamed = 16;
        if (takesAllDrives() && !layout().arrays().empty()) {
            return;
        }
        std::vector<const MachineDrive*> idle;
        for (const MachineDrive& drive : machine_.detail.drives) {
            const bool isFree = drive.policyPosition && !isBad(drive) &&
                                (machine_.isOfPlan || !isInUse(drive)) &&
                                drive.facts.state != DriveState::foreign;
            const bool isOutside = !drive.policyPosition && drive.facts.state == DriveState::free;
            const bool hasJob = machine_.used
                                    ? machine_.used->contains(drive.facts.location)
                                    : drive.policyPosition && isPlanned(*drive.policyPosition);
            if (isOutside || (isFree && !hasJob)) {
                idle.push_back(&drive);
            }
        }
        if (!idle.empty()) {
            add("ZX712", nullptr,
                countOf(idle.size(), "drive") + (idle.size() == 1 ? " gets" : " get") +
                    " no job: " +
                    (machine_.isOfPlan ? someDrives(idle, mostNamed) : someDrives(idle)),
                {"list them, or leave it so"});
        }
    }

    [[nodiscard]] bool isPlanned(DrivePosition position) const {
        const auto holds = [position](const RaidArray& array) {
            return std::find(array.drives().begin(), array.drives().end(), position) !=
                   array.drives().end();
        };
        const auto isIt = [position](const Hotspare& spare) {
            return DrivePosition{spare.channelNumber, spare.id} == position;
        };
        return std::any_of(layout().arrays().begin(), layout().arrays().end(), holds) ||
               std::any_of(layout().hotspares().begin(), layout().hotspares().end(), isIt);
    }

    const MachineCase& machine_;
    FindingSink& sink_;
};

} // namespace

void checkDrives(const MachineCase& machine, FindingSink& sink) {
    if (machine.policy != nullptr) {
        PlannedDrives(machine, sink).check();
    }
}

} // namespace zolex::companion
