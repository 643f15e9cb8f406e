#include "companion/rehearsal/VirtualCopy.h"

#include "companion/facts/FactsReader.h"
#include "companion/families/storcli/StorcliDecode.h"
#include "foundation/Text.h"
#include "platform/CommandLineSplit.h"
#include "roles/Roles.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

namespace zolex::companion {

namespace {

/// What the virtual server is asked: the utility's word, then its options.
std::vector<std::string> utilityArguments(const std::string& utility,
                                          const std::vector<std::string>& argv) {
    if (argv.empty()) {
        return {};
    }
    const std::string& path = argv.front();
    const std::string_view program =
        std::string_view(path).substr(path.find_last_of("/\\") + 1); // npos + 1 is 0
    if (text::equalsNoCase(program, wrapperName)) {
        return {argv.begin() + 1, argv.end()};
    }
    std::vector<std::string> arguments = argv;
    arguments.front() = utility;
    return arguments;
}

/// Number of adapters before it, by which its commands name it.
std::size_t adaptersBefore(const ControllerSnapshot& original) {
    const bool fromZero = original.utility == "MEGACLI" || original.utility.starts_with("CFGGEN");
    if (original.utility == "HYPERWIN") {
        return 0; // its commands name none
    }
    const std::int32_t before = fromZero ? original.adapter : original.adapter - 1;
    return static_cast<std::size_t>(std::max(before, 0));
}

/// One controller of the utility without drives, for the numbers of the others.
zolex_sim::Controller placeholderOf(const std::string& utility) {
    zolex_sim::Controller controller;
    controller.identity.utility = utility;
    return controller;
}

/// One of STORCLI's that stands before all others on the bus.
zolex_sim::storcli::Controller storcliPlaceholder() {
    zolex_sim::storcli::Controller controller;
    controller.pci.bus = -1;
    return controller;
}

/// The line of a command, as families judge it.
std::string lineOf(const std::string& utility, const std::vector<std::string>& arguments) {
    std::string line = utility;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        line += " " + arguments[i];
    }
    return line;
}

void takeState(DriveFacts& drive, const DriveFacts& found) {
    drive.state = found.state;
    drive.health = found.health;
    drive.hotspare = found.hotspare;
    drive.isForeign = found.isForeign;
    drive.reportedState = found.reportedState;
}

/// Puts what is told of drives' states over those of the same locations.
void takeStates(std::vector<DriveFacts>& drives, const std::vector<DriveFacts>& found) {
    std::unordered_map<std::string_view, const DriveFacts*> byLocation;
    for (const DriveFacts& drive : found) {
        byLocation.emplace(drive.location, &drive);
    }
    for (DriveFacts& drive : drives) {
        if (const auto at = byLocation.find(drive.location); at != byLocation.end()) {
            takeState(drive, *at->second);
        }
    }
}

const zolex_sim::DriveLocation& firstMember(const zolex_sim::Array& array) {
    return array.spans.front().front();
}

/// What a state says of its arrays, by the first member of each.
class ArrayIndex {
  public:
    explicit ArrayIndex(const CopyState& state) : state_(state), volumes_(state.arrays.size()) {
        for (std::size_t i = 0; i < state.arrays.size(); ++i) {
            arrays_.emplace(firstMember(state.arrays[i]), i);
        }
        for (std::size_t place = 0; place < state.logicalDrives.size(); ++place) {
            volumes_[state.logicalDrives[place].array].push_back(place);
        }
    }

    [[nodiscard]] std::optional<std::size_t> find(const zolex_sim::Array& array) const {
        const auto at = arrays_.find(firstMember(array));
        return at == arrays_.end() ? std::nullopt : std::optional(at->second);
    }
    /// Places of the array's logical drives.
    [[nodiscard]] const std::vector<std::size_t>& volumes(std::size_t array) const {
        return volumes_[array];
    }
    /// Whether an array of this state is the same as one of the other, with its logical drives.
    [[nodiscard]] bool isSame(std::size_t array, const ArrayIndex& other,
                              std::size_t otherArray) const {
        const std::vector<std::size_t>& own = volumes_[array];
        const std::vector<std::size_t>& others = other.volumes_[otherArray];
        return state_.arrays[array] == other.state_.arrays[otherArray] &&
               std::equal(own.begin(), own.end(), others.begin(), others.end(),
                          [&](std::size_t a, std::size_t b) {
                              zolex_sim::LogicalDrive drive = state_.logicalDrives[a];
                              drive.array = otherArray;
                              zolex_sim::LogicalDrive before = other.state_.logicalDrives[b];
                              drive.number = drive.number.value_or(a);
                              before.number = before.number.value_or(b);
                              return drive == before;
                          });
    }

  private:
    const CopyState& state_;
    std::map<zolex_sim::DriveLocation, std::size_t> arrays_;
    std::vector<std::vector<std::size_t>> volumes_;
};

} // namespace

VirtualCopy::VirtualCopy(const ControllerSnapshot& original, std::int32_t controllerType,
                         zolex_sim::Controller copy)
    : utility_(original.utility), type_(controllerType), original_(original.facts) {
    for (const CapturedListing& listing : original.commands) {
        listings_.push_back(utilityArguments(utility_, splitCommandLine(listing.command)));
    }
    original_.logicalDrives.clear();
    original_.listings.clear();
    original_.broken.clear();
    server_.controllers.assign(adaptersBefore(original), placeholderOf(utility_));
    server_.controllers.push_back(std::move(copy));
}

VirtualCopy::VirtualCopy(const ControllerSnapshot& original, zolex_sim::storcli::Controller copy)
    : utility_(original.utility), type_(0), isStorcli_(true), adapter_(original.adapter),
      original_(original.facts) {
    for (const CapturedListing& listing : original.commands) {
        commands_.push_back(listing.command);
        listings_.push_back(utilityArguments(utility_, splitCommandLine(listing.command)));
    }
    original_.logicalDrives.clear();
    original_.listings.clear();
    original_.broken.clear();
    server_.storcliControllers.assign(static_cast<std::size_t>(std::max(adapter_, 0)),
                                      storcliPlaceholder());
    server_.storcliControllers.push_back(std::move(copy));
}

PlayedLine VirtualCopy::play(const std::vector<std::string>& argv) {
    const std::vector<std::string> arguments = utilityArguments(utility_, argv);
    zolex_sim::PlayResult result = zolex_sim::playUtility(server_, arguments);
    PlayedLine played{result.exitCode, std::move(result.output), false, {}, {}};
    const Family* const family = isStorcli_ ? findFamily(utility_) : nullptr;
    const std::string line = lineOf(utility_, arguments);
    if (family == nullptr || family->isReading(line)) {
        return played;
    }
    FamilyVerdict verdict =
        family->judge(line, static_cast<std::uint32_t>(played.exitCode), played.output);
    if (!verdict.isDone && !verdict.instead.empty() && verdict.instead != line) {
        return play(splitCommandLine(verdict.instead));
    }
    played.isRefused = !verdict.isDone;
    played.why = std::move(verdict.why);
    played.help = std::move(verdict.help);
    return played;
}

CopyState VirtualCopy::state() const {
    CopyState state;
    if (isStorcli_) {
        for (const zolex_sim::storcli::Drive& drive : storcli().drives) {
            state.storcli.drives.push_back({drive.state, drive.groups});
        }
        state.storcli.groups = storcli().groups;
        state.storcli.volumes = storcli().volumes;
        state.storcli.rebuildRate = storcli().rebuildRate;
        return state;
    }
    state.drives.reserve(copy().drives.size());
    for (const zolex_sim::Drive& drive : copy().drives) {
        state.drives.push_back(drive.status);
    }
    state.arrays = copy().arrays;
    state.logicalDrives = copy().logicalDrives;
    return state;
}

void VirtualCopy::restore(const CopyState& state) {
    if (isStorcli_) {
        zolex_sim::storcli::Controller& controller = server_.storcliControllers.back();
        for (std::size_t i = 0; i < state.storcli.drives.size(); ++i) {
            controller.drives[i].state = state.storcli.drives[i].state;
            controller.drives[i].groups = state.storcli.drives[i].groups;
        }
        controller.groups = state.storcli.groups;
        controller.volumes = state.storcli.volumes;
        controller.rebuildRate = state.storcli.rebuildRate;
        return;
    }
    for (std::size_t i = 0; i < state.drives.size(); ++i) {
        copy().drives[i].status = state.drives[i];
    }
    copy().arrays = state.arrays;
    copy().logicalDrives = state.logicalDrives;
}

std::string VirtualCopy::lostSpare(const CopyState& before) const {
    using zolex_sim::storcli::DriveState;
    for (std::size_t i = 0; i < before.storcli.drives.size(); ++i) {
        const zolex_sim::storcli::Drive& drive = storcli().drives[i];
        if (before.storcli.drives[i].state == DriveState::dedicatedSpare &&
            drive.state == DriveState::globalSpare) {
            return toText(drive.place);
        }
    }
    return {};
}

std::string VirtualCopy::doubtfulSpare(const CopyState& before) const {
    if (isStorcli_) {
        return lostSpare(before);
    }
    const std::vector<zolex_sim::Drive>& drives = copy().drives;
    const auto spare =
        std::find_if(drives.begin(), drives.end(), [](const zolex_sim::Drive& drive) {
            return drive.status == zolex_sim::DriveStatus::dedicated;
        });
    return copy().arrays.size() < before.arrays.size() && spare != drives.end()
               ? toText(spare->location)
               : std::string();
}

Facts VirtualCopy::readFrom(zolex_sim::Server& server) const {
    std::vector<std::string> texts;
    texts.reserve(listings_.size());
    for (const std::vector<std::string>& arguments : listings_) {
        texts.push_back(std::move(zolex_sim::playUtility(server, arguments).output));
    }
    return readFacts(type_, texts);
}

Facts VirtualCopy::readStorcli() {
    FamilyController controller;
    controller.adapter = adapter_;
    for (std::size_t i = 0; i < listings_.size(); ++i) {
        zolex_sim::PlayResult played = zolex_sim::playUtility(server_, listings_[i]);
        FamilyListing& listing = controller.listings.emplace_back();
        listing.command = commands_[i];
        listing.outcome = ChildOutcome::ended;
        listing.exitCode = static_cast<std::uint32_t>(played.exitCode);
        listing.output = std::move(played.output);
    }
    decodeStorcli(controller);
    return std::move(controller.facts);
}

Facts VirtualCopy::read() {
    if (!isStorcli_) {
        return readFrom(server_);
    }
    Facts facts = readStorcli();
    if (first_.empty()) {
        first_ = facts.drives;
    }
    return facts;
}

/// A drive is as it was captured until a command has changed it.
void VirtualCopy::takeChanges(std::vector<DriveFacts>& drives,
                              const std::vector<DriveFacts>& found) const {
    std::unordered_map<std::string_view, const DriveFacts*> before;
    for (const DriveFacts& drive : first_) {
        before.emplace(drive.location, &drive);
    }
    std::vector<DriveFacts> changed;
    for (const DriveFacts& drive : found) {
        const auto first = before.find(drive.location);
        const bool isSame = first != before.end() && first->second->state == drive.state &&
                            first->second->reportedState == drive.reportedState &&
                            first->second->isForeign == drive.isForeign &&
                            first->second->covers == drive.covers;
        if (!isSame) {
            changed.push_back(drive);
        }
    }
    takeStates(drives, changed);
    for (DriveFacts& drive : drives) {
        const auto at =
            std::find_if(changed.begin(), changed.end(), [&drive](const DriveFacts& each) {
                return each.location == drive.location;
            });
        if (at != changed.end()) {
            drive.covers = at->covers;
            drive.barred = at->barred;
        }
    }
}

Facts VirtualCopy::inPlaceOfOriginal(Facts found) const {
    Facts facts = original_;
    if (isStorcli_) {
        takeChanges(facts.drives, found.drives);
        facts.logicalDrives = std::move(found.logicalDrives);
        if (found.foreignConfigurations.empty()) {
            facts.foreignConfigurations.clear();
        }
        return facts;
    }
    takeStates(facts.drives, found.drives);
    facts.logicalDrives = std::move(found.logicalDrives);
    facts.foreignConfigurations = std::move(found.foreignConfigurations);
    facts.broken = std::move(found.broken);
    return facts;
}

/// The drives that have changed since, and the arrays that are not kept, with all their members.
zolex_sim::Controller VirtualCopy::changedPart(const CopyState& before,
                                               const std::vector<bool>& isArrayKept) const {
    const zolex_sim::Controller& whole = copy();
    zolex_sim::Controller part;
    part.identity = whole.identity;
    std::vector<zolex_sim::DriveLocation> members;
    std::vector<std::size_t> newIndex(whole.arrays.size());
    for (std::size_t i = 0; i < whole.arrays.size(); ++i) {
        if (isArrayKept[i]) {
            continue;
        }
        newIndex[i] = part.arrays.size();
        part.arrays.push_back(whole.arrays[i]);
        for (const std::vector<zolex_sim::DriveLocation>& span : whole.arrays[i].spans) {
            members.insert(members.end(), span.begin(), span.end());
        }
    }
    std::sort(members.begin(), members.end());
    for (std::size_t i = 0; i < whole.drives.size(); ++i) {
        const zolex_sim::Drive& drive = whole.drives[i];
        if (drive.status != before.drives[i] ||
            std::binary_search(members.begin(), members.end(), drive.location)) {
            part.drives.push_back(drive);
        }
    }
    for (std::size_t place = 0; place < whole.logicalDrives.size(); ++place) {
        if (!isArrayKept[whole.logicalDrives[place].array]) {
            zolex_sim::LogicalDrive& drive =
                part.logicalDrives.emplace_back(whole.logicalDrives[place]);
            drive.array = newIndex[drive.array];
            drive.number = whole.numberOf(place);
        }
    }
    return part;
}

Facts VirtualCopy::capture(const CopyState& before, Facts facts) {
    // HYPERWIN tells members by what is not listed.
    if (isStorcli_ || utility_ == "HYPERWIN" ||
        facts.logicalDrives.size() != before.logicalDrives.size()) {
        return capture();
    }
    const CopyState now = state();
    const ArrayIndex index(now);
    const ArrayIndex earlier(before);
    // The place that each logical drive of a kept array had.
    std::vector<std::optional<std::size_t>> placeBefore(now.logicalDrives.size());
    std::vector<bool> isArrayKept(now.arrays.size());
    for (std::size_t array = 0; array < now.arrays.size(); ++array) {
        const std::optional<std::size_t> same = earlier.find(now.arrays[array]);
        isArrayKept[array] = same && index.isSame(array, earlier, *same);
        for (const auto& span : now.arrays[array].spans) {
            for (const zolex_sim::DriveLocation& member : span) {
                const auto place =
                    static_cast<std::size_t>(copy().driveAt(member) - copy().drives.data());
                isArrayKept[array] =
                    isArrayKept[array] && now.drives[place] == before.drives[place];
            }
        }
        for (std::size_t i = 0; isArrayKept[array] && i < index.volumes(array).size(); ++i) {
            placeBefore[index.volumes(array)[i]] = earlier.volumes(*same)[i];
        }
    }
    zolex_sim::Server part;
    part.controllers.assign(server_.controllers.size() - 1, placeholderOf(utility_));
    part.controllers.push_back(changedPart(before, isArrayKept));
    Facts found = readFrom(part);
    takeStates(facts.drives, found.drives);
    std::vector<LogicalDriveFacts> volumes;
    auto next = found.logicalDrives.begin();
    for (std::size_t place = 0; place < now.logicalDrives.size(); ++place) {
        if (!placeBefore[place] && next == found.logicalDrives.end()) {
            return capture(); // a listing that tells of less than there is
        }
        LogicalDriveFacts& volume = volumes.emplace_back(
            placeBefore[place] ? facts.logicalDrives[*placeBefore[place]] : std::move(*next++));
        volume.array = std::to_string(now.logicalDrives[place].array);
        if (utility_ == "QTCSEND" || utility_.starts_with("CFGGEN")) {
            volume.id = std::to_string(place + 1); // they number by place
        }
    }
    facts.logicalDrives = std::move(volumes);
    return facts;
}

} // namespace zolex::companion
