#include "storcli/Create.h"

#include "model/Text.h"
#include "storcli/Targets.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

namespace zolex_sim::storcli {
namespace {

using Places = std::vector<DriveLocation>;
using Spans = std::vector<Places>;

constexpr std::size_t longestName = 15;

/// What the words of a command ask for.
struct Request {
    std::optional<Level> level;
    std::vector<std::optional<std::int64_t>> sizes; ///< in blocks; nothing: all that is left
    std::string name;
    Places drives;
    std::size_t drivesPerSpan = 0; ///< 0: not told
    std::optional<Cache> cache;
    std::optional<bool> readAhead;
    bool cachedIo = false;
    std::optional<int> stripKb;
    Places spares;
};

Refusal syntaxError(const std::string& word) {
    return {ownRefusal, "syntax error, unexpected " + word};
}

/// "100GB" or "1.5TB" in blocks of 512 bytes.
std::optional<std::int64_t> parseSize(std::string_view text) {
    struct Unit {
        std::string_view name;
        std::int64_t kib;
    };
    constexpr std::array<Unit, 4> units = {
        {{"KB", 1}, {"MB", 1 << 10}, {"GB", 1 << 20}, {"TB", std::int64_t{1} << 30}}};
    for (const Unit& unit : units) {
        if (text.size() < 3 || !equalsIgnoringCase(text.substr(text.size() - 2), unit.name)) {
            continue;
        }
        const std::string_view number = text.substr(0, text.size() - 2);
        const std::size_t point = number.find('.');
        const std::optional<std::int64_t> whole = parseWhole(number.substr(0, point));
        std::string fraction(point == std::string_view::npos ? "" : number.substr(point + 1));
        if (!whole || *whole > 1'000'000'000 || fraction.size() > 6) {
            return std::nullopt;
        }
        fraction.resize(6, '0');
        const std::optional<std::int64_t> millionths = parseWhole(fraction);
        if (!millionths || *whole * unit.kib > std::int64_t{1} << 50) {
            return std::nullopt;
        }
        return 2 * (*whole * unit.kib + *millionths * unit.kib / 1'000'000);
    }
    return std::nullopt;
}

bool readSizes(std::string_view text, Request& request) {
    while (true) {
        const std::size_t end = text.find(',');
        const std::string_view item = text.substr(0, end);
        const bool rest = equalsIgnoringCase(item, "all") || equalsIgnoringCase(item, "remaining");
        const std::optional<std::int64_t> blocks = rest ? std::nullopt : parseSize(item);
        if (!rest && !blocks) {
            return false;
        }
        request.sizes.push_back(blocks);
        if (end == std::string_view::npos) {
            return true;
        }
        text.remove_prefix(end + 1);
    }
}

/// "drives=...": a word with a value.
struct Option {
    std::string_view name;
    bool (*read)(std::string_view value, Request& request);
};
// clang-format off
constexpr std::array<Option, 11> options = {{
    {"type",       [](std::string_view value, Request& request) {
                       request.level = levelNamed(value);
                       return request.level.has_value(); }},
    {"size",       readSizes},
    {"name",       [](std::string_view value, Request& request) {
                       request.name = value;
                       return true; }},
    {"drives",     [](std::string_view value, Request& request) {
                       const std::optional<Places> places = parsePlaces(value);
                       request.drives = places.value_or(Places());
                       return places.has_value(); }},
    {"pdperarray", [](std::string_view value, Request& request) {
                       const std::optional<std::int64_t> number = parseWhole(value);
                       request.drivesPerSpan = static_cast<std::size_t>(number.value_or(0));
                       return number.has_value() && *number > 0 && *number <= 1024; }},
    {"strip",      [](std::string_view value, Request& request) {
                       const std::optional<std::int64_t> number = parseWhole(value);
                       request.stripKb = static_cast<int>(std::min<std::int64_t>(number.value_or(0), 1 << 20));
                       return number.has_value(); }},
    {"spares",     [](std::string_view value, Request& request) {
                       const std::optional<Places> places = parsePlaces(value);
                       request.spares = places.value_or(Places());
                       return places.has_value(); }},
    {"aftervd",    [](std::string_view value, Request& /*request*/) { return parseWhole(value).has_value(); }},
    {"pdcache",    [](std::string_view /*value*/, Request& /*request*/) { return true; }},
    {"pi",         [](std::string_view /*value*/, Request& /*request*/) { return true; }},
    {"emulationtype", [](std::string_view /*value*/, Request& /*request*/) { return true; }},
}};

struct Flag {
    std::string_view name;
    void (*set)(Request& request);
};
constexpr std::array<Flag, 9> flags = {{
    {"wt",     [](Request& request) { request.cache = Cache::writeThrough; }},
    {"wb",     [](Request& request) { request.cache = Cache::writeBack; }},
    {"awb",    [](Request& request) { request.cache = Cache::alwaysWriteBack; }},
    {"fwb",    [](Request& request) { request.cache = Cache::alwaysWriteBack; }},
    {"ra",     [](Request& request) { request.readAhead = true; }},
    {"nora",   [](Request& request) { request.readAhead = false; }},
    {"direct", [](Request& request) { request.cachedIo = false; }},
    {"cached", [](Request& request) { request.cachedIo = true; }},
    {"force",  [](Request& /*request*/) {}},
}};
// clang-format on

bool readWord(std::string_view word, Request& request) {
    if (const std::size_t mark = word.find('='); mark != std::string_view::npos) {
        const std::string_view name = word.substr(0, mark);
        const auto* const option =
            std::find_if(options.begin(), options.end(),
                         [&](const Option& known) { return equalsIgnoringCase(known.name, name); });
        return option != options.end() && option->read(word.substr(mark + 1), request);
    }
    const auto* const flag = std::find_if(flags.begin(), flags.end(), [&](const Flag& known) {
        return equalsIgnoringCase(known.name, word);
    });
    if (flag != flags.end()) {
        flag->set(request);
        return true;
    }
    if (word.size() < 2 || !equalsIgnoringCase(word.substr(0, 1), "r") || request.level) {
        return false;
    }
    request.level = levelNamed("RAID" + std::string(word.substr(1)));
    return request.level.has_value();
}

/// Checks a request and carries it out on a copy of the controller.
class Creation {
  public:
    Creation(Controller& controller, Request request)
        : controller_(controller), request_(std::move(request)), level_(*request_.level) {}

    std::optional<Refusal> run() {
        using Step = std::optional<Refusal> (Creation::*)();
        constexpr std::array<Step, 7> steps = {&Creation::checkWords, &Creation::findDrives,
                                               &Creation::makeSpans,  &Creation::checkStates,
                                               &Creation::checkKinds, &Creation::checkSpares,
                                               &Creation::makeVolumes};
        for (const Step step : steps) {
            if (std::optional<Refusal> refusal = (this->*step)()) {
                return refusal;
            }
        }
        return std::nullopt;
    }

  private:
    std::optional<Refusal> checkWords() {
        if (!controller_.supports(level_)) {
            return Refusal{ownRefusal, "RAID level is not supported."};
        }
        if (controller_.preservedCache) {
            return Refusal{cachePinned, "controller has data in cache for offline or missing VDs"};
        }
        if (request_.name.size() > longestName) {
            return Refusal{ownRefusal, "VD name is longer than 15 characters."};
        }
        const int strip = request_.stripKb.value_or(controller_.defaultStripKb);
        if (strip < controller_.minStripKb || strip > controller_.maxStripKb ||
            (strip & (strip - 1)) != 0) {
            return Refusal{invalidParameter, "invalid strip size"};
        }
        return std::nullopt;
    }

    std::optional<Refusal> findDrives() {
        if (request_.drives.empty()) {
            return syntaxError("$end, expecting drives");
        }
        std::set<DriveLocation> seen;
        for (const DriveLocation& place : request_.drives) {
            const Drive* const drive = controller_.driveAt(place);
            if (drive == nullptr || !drive->isThere()) {
                return Refusal{ownRefusal, "Drive not found"};
            }
            if (!seen.insert(place).second) {
                return Refusal{invalidParameter, "a drive is named twice"};
            }
            drives_.push_back(drive);
        }
        return std::nullopt;
    }

    std::optional<Refusal> makeSpans() {
        const Rules& rules = rulesOf(level_);
        if (rules.spanned && request_.drivesPerSpan == 0) {
            return Refusal{ownRefusal, "PDperArray is needed for this RAID level."};
        }
        const std::size_t count = request_.drives.size();
        const std::size_t arms = rules.spanned ? request_.drivesPerSpan : count;
        const bool isOdd = rules.redundancy < 0 && arms % 2 != 0; // mirrors are of pairs
        if (count % arms != 0 || arms < static_cast<std::size_t>(rules.minDrives) || isOdd ||
            (rules.spanned && count == arms)) {
            return Refusal{ownRefusal, "Invalid number of drives for the RAID level."};
        }
        if (arms > static_cast<std::size_t>(controller_.maxArms)) {
            return Refusal{ownRefusal, "Maximum number of arms exceeded."};
        }
        if (count / arms > static_cast<std::size_t>(controller_.maxSpans)) {
            return Refusal{ownRefusal, "Maximum number of spans exceeded."};
        }
        for (std::size_t i = 0; i < count; i += arms) {
            const auto first = request_.drives.begin() + static_cast<std::ptrdiff_t>(i);
            spans_.emplace_back(first, first + static_cast<std::ptrdiff_t>(arms));
        }
        return std::nullopt;
    }

    [[nodiscard]] bool has(DriveState state) const {
        return std::any_of(drives_.begin(), drives_.end(),
                           [&](const Drive* drive) { return drive->state == state; });
    }

    std::optional<Refusal> checkStates() {
        if (has(DriveState::foreign)) {
            return Refusal{ownRefusal, "Operation not allowed: the drive is foreign."};
        }
        const auto members = static_cast<std::size_t>(
            std::count_if(drives_.begin(), drives_.end(), [&](const Drive* drive) {
                return controller_.placeOf(drive->place).has_value();
            }));
        if (has(DriveState::jbod) || (members > 0 && members < drives_.size())) {
            return Refusal{configurationConflict, "Mix of configured and unconfigured drives"};
        }
        if (members > 0) {
            return checkGroup();
        }
        if (std::any_of(drives_.begin(), drives_.end(),
                        [](const Drive* drive) { return drive->state != DriveState::good; })) {
            return Refusal{wrongState, "device state doesn't support requested command"};
        }
        return std::nullopt;
    }

    /// The drives are members: a virtual drive more on their group.
    std::optional<Refusal> checkGroup() {
        const auto sorted = [](Spans spans) {
            for (Places& span : spans) {
                std::sort(span.begin(), span.end());
            }
            return spans;
        };
        const std::size_t group = controller_.placeOf(request_.drives.front())->array;
        if (sorted(controller_.groups[group].spans) != sorted(spans_)) {
            return Refusal{ownRefusal, "Operation not allowed: the drives are in use."};
        }
        if (controller_.levelOf(group) != level_) {
            return Refusal{configurationConflict, "the drive group has another RAID level"};
        }
        if (controller_.stateOf(level_, group) != VolumeState::optimal) {
            return Refusal{volumeNotOptimal, "the drive group is not optimal"};
        }
        group_ = group;
        return std::nullopt;
    }

    std::optional<Refusal> checkKinds() {
        const Drive& first = *drives_.front();
        bool mixesInterfaces = false;
        bool mixesMedia = false;
        bool disks = false;
        for (const Drive* const drive : drives_) {
            if (drive->sectorBytes != first.sectorBytes) {
                return Refusal{configurationConflict, "drives have different sector sizes"};
            }
            mixesInterfaces = mixesInterfaces || drive->interface != first.interface;
            mixesMedia = mixesMedia || drive->medium != first.medium;
            disks = disks || drive->medium == Medium::disk;
        }
        if (mixesMedia && !controller_.mixesMedia) {
            return Refusal{ownRefusal, "Mix of SSD and HDD in a VD is not allowed."};
        }
        if (mixesInterfaces &&
            !(disks ? controller_.mixesSasSataDisks : controller_.mixesSasSataSsds)) {
            return Refusal{mixedInterfaces, "Mix of SAS and SATA in a VD is not allowed"};
        }
        return std::nullopt;
    }

    std::optional<Refusal> checkSpares() {
        for (const DriveLocation& place : request_.spares) {
            const Drive* const spare = controller_.driveAt(place);
            if (spare == nullptr || !spare->isThere()) {
                return Refusal{ownRefusal, "Drive not found"};
            }
            if (spare->state != DriveState::good ||
                std::find(request_.drives.begin(), request_.drives.end(), place) !=
                    request_.drives.end()) {
                return Refusal{wrongState, "device state doesn't support requested command"};
            }
            for (const Drive* const drive : drives_) {
                if (spare->blocks() < drive->blocks()) {
                    return Refusal{driveTooSmall, "disk doesn't have enough capacity"};
                }
            }
        }
        return std::nullopt;
    }

    std::optional<Refusal> makeVolumes() {
        Controller changed = controller_;
        if (!group_) {
            group_ = changed.groups.size();
            changed.groups.push_back({spans_});
            for (const DriveLocation& place : request_.drives) {
                changed.driveAt(place)->state = DriveState::online;
            }
        }
        if (request_.sizes.empty()) {
            request_.sizes.emplace_back();
        }
        for (const std::optional<std::int64_t>& size : request_.sizes) {
            if (std::optional<Refusal> refusal = makeVolume(changed, size)) {
                return refusal;
            }
        }
        for (const DriveLocation& place : request_.spares) {
            changed.driveAt(place)->state = DriveState::dedicatedSpare;
            changed.driveAt(place)->groups = {*group_};
        }
        controller_ = std::move(changed);
        return std::nullopt;
    }

    std::optional<Refusal> makeVolume(Controller& changed,
                                      const std::optional<std::int64_t>& size) {
        const std::int64_t room = changed.roomLeft(*group_, level_);
        Volume volume;
        volume.stripKb = request_.stripKb.value_or(changed.defaultStripKb);
        const std::int64_t stripe =
            std::int64_t{2} * volume.stripKb * Controller::dataDrives(level_, spans_);
        volume.blocks = size ? *size / stripe * stripe : room;
        if (volume.blocks == 0 || volume.blocks > room) {
            return Refusal{driveTooSmall, "disk doesn't have enough capacity"};
        }
        const auto onGroup =
            std::count_if(changed.volumes.begin(), changed.volumes.end(),
                          [&](const Volume& other) { return other.group == *group_; });
        const std::optional<int> number = changed.nextNumber();
        if (!number || onGroup >= changed.maxVolumesPerGroup) {
            return Refusal{tooManyVolumes, "no more virtual drives can be made"};
        }
        volume.number = *number;
        volume.group = *group_;
        volume.level = level_;
        volume.cache = request_.cache.value_or(changed.defaultCache);
        volume.readAhead = request_.readAhead.value_or(changed.defaultReadAhead);
        volume.cachedIo = request_.cachedIo;
        volume.name = request_.name;
        volume.device = changed.nextDevice();
        volume.consistent = rulesOf(level_).redundancy == 0;
        changed.enter(std::move(volume));
        return std::nullopt;
    }

    Controller& controller_;
    Request request_;
    Level level_;
    std::vector<const Drive*> drives_;
    Spans spans_;
    std::optional<std::size_t> group_;
};

} // namespace

std::optional<Refusal> addVolumes(Controller& controller, const std::vector<std::string>& words) {
    Request request;
    for (const std::string& word : words) {
        if (!readWord(word, request)) {
            return syntaxError(word);
        }
    }
    if (!request.level) {
        return syntaxError("$end, expecting the RAID level");
    }
    return Creation(controller, std::move(request)).run();
}

} // namespace zolex_sim::storcli
