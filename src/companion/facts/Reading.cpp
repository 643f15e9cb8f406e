#include "companion/facts/Reading.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <map>

namespace zolex::companion {

namespace {

constexpr std::size_t longestUnknownKey = 80;
constexpr std::size_t longestQuote = 60;
/// Of one controller. No utility has so many: what a listing can make grow is bounded.
constexpr std::size_t mostLogicalDrives = 1024;
/// What the core's readers take as one line.
constexpr std::size_t longestCoreLine = 198;

std::string quoted(std::string_view text, std::size_t most = longestQuote) {
    const bool isWhole = text.size() <= most;
    return "\"" + cleanText(text.substr(0, most)) + (isWhole ? "\"" : "...\"");
}

bool holdsError(std::string_view text) {
    return text::containsNoCase(text, "error") || text::containsNoCase(text, "fail") ||
           text::containsNoCase(text, " not ");
}

std::string counted(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

} // namespace

/// The drives by what members are told by.
class Reading::DriveIndex {
  public:
    DriveIndex(const Facts& facts, const std::vector<std::string>& bays) {
        for (std::size_t i = 0; i < facts.drives.size(); ++i) {
            const DriveFacts& each = facts.drives[i];
            add(serials_, each.serialNumber, i);
            if (i < bays.size()) {
                add(bays_, bays[i], i);
            }
            if (each.number) {
                numbers_.emplace(*each.number, i);
            }
        }
    }

    [[nodiscard]] std::optional<std::size_t> ofSerial(std::string_view serial) const {
        return find(serials_, serial);
    }
    [[nodiscard]] std::optional<std::size_t> ofBay(std::string_view place) const {
        return find(bays_, place);
    }
    [[nodiscard]] std::optional<std::size_t> ofNumber(std::int32_t number) const {
        const auto found = numbers_.find(number);
        return found == numbers_.end() ? std::nullopt : std::optional(found->second);
    }

  private:
    using Names = std::unordered_map<std::string_view, std::size_t>;
    static constexpr std::size_t several = static_cast<std::size_t>(-1);

    static void add(Names& names, std::string_view name, std::size_t drive) {
        if (!name.empty() && !names.emplace(name, drive).second) {
            names[name] = several; // names nothing
        }
    }
    static std::optional<std::size_t> find(const Names& names, std::string_view name) {
        const auto found = names.find(name);
        return found == names.end() || found->second == several ? std::nullopt
                                                                : std::optional(found->second);
    }

    Names serials_;
    Names bays_;
    std::unordered_map<std::int32_t, std::size_t> numbers_;
};

void Reading::read(std::size_t index, std::string_view listing) {
    listing_ = index;
    isListing_ = isClosed_ = isOver = hasHeading = false;
    block = Block::none;
    facts.listings.resize(std::max(facts.listings.size(), index + 1));
    beginnings_.fill({});
    ListingLines lines(listing);
    std::optional<ListingLine> first; // or the first that tells of an error, of what is no listing
    bool tellsError = false;
    while (!isOver && lines.next()) {
        if (takeExpected(lines)) {
            continue;
        }
        const ListingLine& line = lines.takeApart();
        if (line.text.empty()) {
            continue;
        }
        if (!first || (!isListing_ && !tellsError && holdsError(line.text))) {
            first = lines.complete();
            tellsError = holdsError(line.text);
        }
        if (line.hasKey) {
            takeKey(lines);
        } else {
            takePlain(lines.complete());
        }
    }
    if (!first) {
        broken(ListingPlace{index, 1}, "the listing is empty");
    } else if (!isListing_) {
        broken(*first, "no listing, but " + quoted(first->text));
    }
    endListing(lines.line());
}

/// Takes the line when it is the one that came here the last time: most are.
bool Reading::takeExpected(ListingLines& lines) {
    const std::uint8_t number = nextRow_[lastRow_];
    const std::string_view beginning = beginnings_[number];
    if (beginning.empty() || !lines.beginsWith(beginning)) {
        return false;
    }
    const KeyRow& row = table_.keys.row(number);
    if ((row.blocks & in(block)) == 0) {
        return false;
    }
    lastRow_ = number;
    if (row.take == nullptr) {
        ++counts().keys;
        isClosed_ = false;
    } else {
        lines.takeApart(beginning, row.key.size());
        take(row, lines.complete());
    }
    return true;
}

void Reading::takeKey(ListingLines& lines) {
    const KeyRow* const row = rowOf(lines);
    if (row != nullptr) {
        take(*row, lines.complete());
    } else {
        ++counts().keys;
        isClosed_ = false;
        noteUnknown(lines.line());
    }
}

void Reading::take(const KeyRow& row, const ListingLine& line) {
    ++counts().keys;
    isClosed_ = false;
    if (row.take != nullptr) {
        ++counts().keysUsed;
        row.take(*this, line);
        isListing_ = isListing_ || !isClosed_; // a last line alone is no listing
    }
}

void Reading::takeOtherKey(const ListingLine& line, std::size_t mark) {
    ListingLine other = line;
    other.key = text::trim(line.text.substr(0, mark));
    const KeyRow* const row = table_.keys.find(block, other.key);
    if (row == nullptr) {
        return;
    }
    other.hasKey = true;
    other.rest = line.text.substr(std::min(mark, line.text.size() - 1) + 1);
    other.value = text::trim(other.rest);
    take(*row, other);
}

const KeyRow* Reading::rowOf(const ListingLines& lines) {
    const KeyRow* const row = table_.keys.find(block, lines.line().key);
    if (row == nullptr) {
        return numberedRow(lines.line().key);
    }
    const std::uint8_t number = table_.keys.numberOf(*row);
    nextRow_[lastRow_] = number;
    beginnings_[number] = lines.beginning();
    lastRow_ = number;
    return row;
}

const KeyRow* Reading::numberedRow(std::string_view key) const {
    const auto row = std::find_if(
        table_.numberedKeys.begin(), table_.numberedKeys.end(), [&](const KeyRow& each) {
            return (each.blocks & in(block)) != 0 && key.size() > each.key.size() &&
                   text::equalsNoCase(key.substr(0, each.key.size()), each.key);
        });
    return row == table_.numberedKeys.end() ? nullptr : &*row;
}

void Reading::noteUnknown(const ListingLine& line) {
    if (block == Block::other) {
        return;
    }
    const std::string key = cleanText(line.key.substr(0, longestUnknownKey));
    auto [entry, isNew] = counts().unknownKeys.try_emplace(key);
    if (isNew) {
        entry->second.line = line.number;
    }
    ++entry->second.count;
}

void Reading::takePlain(const ListingLine& line) {
    if (table_.endsListing(line)) {
        isClosed_ = true;
        return;
    }
    const auto row =
        std::find_if(table_.headings.begin(), table_.headings.end(), [&](const HeadingRow& each) {
            return text::equalsNoCase(line.text.substr(0, each.start.size()), each.start);
        });
    if (row != table_.headings.end()) {
        isListing_ = true;
        isClosed_ = false;
        row->begin(*this, line);
    } else if (table_.takePlain != nullptr) {
        table_.takePlain(*this, line);
    }
}

void Reading::endListing(const ListingLine& last) {
    leave(Block::none);
    counts().isListing = isListing_;
    if (isListing_ && !isClosed_ && !isOver) {
        broken(last, "the listing breaks off: its last line is missing");
    }
}

void Reading::leave(Block next) {
    if (block == Block::drive) {
        endDrive();
    }
    block = next;
    isBlockBroken_ = false;
}

void Reading::beginDrive(const ListingLine& line) {
    leave(Block::drive);
    ++counts().blocks;
    drive = DriveFacts();
    drive.place = place(line);
    drive.channel = channel;
    bay.clear();
    hasEnclosure = false;
}

void Reading::dropDrive() {
    ++counts().blocksRead;
    block = Block::other;
}

std::string_view Reading::missingOfDrive() const {
    if (!table_.tellsDrives) {
        return {};
    }
    if (drive.reportedState.empty()) {
        return "without a state";
    }
    const bool isThere = drive.state != DriveState::failed && drive.state != DriveState::missing;
    return isThere && !drive.capacityBytes ? "without a size" : "";
}

void Reading::endDrive() {
    drive.location = table_.location(*this);
    if (drive.location.empty()) {
        if (!isBlockBroken_) {
            broken(drive.place, std::string(table_.locationMissing));
        }
        return;
    }
    if (driveAt_.contains(drive.location)) {
        broken(drive.place, "physical drive " + drive.location + " is listed a second time");
        return;
    }
    const std::string_view missing = missingOfDrive();
    if (!missing.empty() && !isBlockBroken_) {
        broken(drive.place, "physical drive " + drive.location + " " + std::string(missing));
    }
    counts().blocksRead += missing.empty() && !isBlockBroken_ ? 1 : 0;
    if (drive.isForeign && drive.state == DriveState::free) {
        drive.state = DriveState::foreign;
    }
    const bool isFailing =
        drive.predictedFailureCount.value_or(0) > 0 || drive.mediaErrorCount.value_or(0) > 0;
    if (isFailing && drive.health == Health::ok) {
        drive.health = Health::warning;
    }
    addDrive(std::move(drive));
}

void Reading::addDrive(DriveFacts&& found) {
    driveAt_.emplace(found.location, facts.drives.size());
    bays_.push_back(std::move(bay));
    facts.drives.push_back(std::move(found));
}

LogicalDriveDraft* Reading::beginLogicalDrive(const ListingLine& line, std::string id) {
    leave(Block::logicalDrive);
    ++counts().blocks;
    if (logicalDrives.size() == mostLogicalDrives) {
        block = Block::other;
        if (!hasTooMany_) {
            broken(line, "more than " + std::to_string(mostLogicalDrives) +
                             " logical drives: the others are not read");
        }
        hasTooMany_ = true;
        return nullptr;
    }
    LogicalDriveDraft& draft = logicalDrives.emplace_back();
    draft.facts.id = std::move(id);
    draft.facts.place = place(line);
    return &draft;
}

void Reading::beginSpan(std::int64_t announced) {
    if (LogicalDriveDraft* draft = logicalDrive()) {
        draft->spans.emplace_back();
        draft->announcedInSpan.push_back(announced);
    }
}

MemberDraft* Reading::addMember(const ListingLine& line, std::string named, bool isBlock) {
    LogicalDriveDraft* const draft = logicalDrive();
    if (draft == nullptr) {
        return nullptr;
    }
    if (draft->spans.empty()) {
        beginSpan(-1);
    }
    MemberDraft& member = draft->spans.back().emplace_back();
    member.named = named.empty() ? cleanText(line.key.substr(0, longestQuote)) : std::move(named);
    member.place = place(line);
    member.isBlock = isBlock;
    counts().blocks += isBlock ? 1 : 0;
    return &member;
}

MemberDraft* Reading::beginMember(const ListingLine& line, std::string named) {
    leave(Block::member);
    return addMember(line, std::move(named), true);
}

MemberDraft* Reading::member() {
    LogicalDriveDraft* const draft = logicalDrive();
    return draft == nullptr || draft->spans.empty() || draft->spans.back().empty()
               ? nullptr
               : &draft->spans.back().back();
}

void Reading::checkLength(const ListingLine& line) {
    if (line.length > longestCoreLine) {
        broken(line, "line of " + std::to_string(line.length) + " bytes: zolex takes " +
                         std::to_string(longestCoreLine) + " of them as one line");
    }
}

void Reading::takeState(const ListingLine& line) {
    if (line.value != lastState_) {
        lastState_ = line.value;
        lastMeaning_ = driveStateMeaning(line.value);
    }
    drive.reportedState = cleanText(line.value);
    drive.state = lastMeaning_.state;
    drive.health = lastMeaning_.health;
    drive.hotspare = lastMeaning_.hotspare;
}

void Reading::announce(Announcement::What what, const ListingLine& line, std::int32_t count) {
    announcements.push_back({what, count, place(line), cleanText(line.key)});
}

void Reading::takeDrives(Reading& other) {
    facts.drives = std::move(other.facts.drives);
    bays_ = std::move(other.bays_);
    driveAt_ = std::move(other.driveAt_);
}

void Reading::finish() {
    const DriveIndex index(facts, bays_);
    for (LogicalDriveDraft& draft : logicalDrives) {
        finishMembers(draft, index);
        const std::string missing = missingOf(draft);
        if (!missing.empty()) {
            broken(draft.facts.place, "logical drive " + draft.facts.id + " " + missing);
        } else {
            ++facts.listings[draft.facts.place.listing].blocksRead;
        }
        if (draft.facts.readCache.empty()) {
            draft.facts.readCache = commonReadCache;
        }
    }
    nameArrays();
    for (LogicalDriveDraft& draft : logicalDrives) {
        facts.logicalDrives.push_back(std::move(draft.facts));
    }
    checkAnnouncements();
    std::stable_sort(
        facts.broken.begin(), facts.broken.end(), [](const BrokenBlock& a, const BrokenBlock& b) {
            return a.place.listing != b.place.listing ? a.place.listing < b.place.listing
                                                      : a.place.line < b.place.line;
        });
}

/// Finds the drives, of an array that is listed by itself once for all of its logical drives.
void Reading::finishMembers(LogicalDriveDraft& draft, const DriveIndex& index) {
    if (draft.spans.empty() && !draft.facts.array.empty()) {
        if (const auto listed = arrays.find(draft.facts.array); listed != arrays.end()) {
            const auto [found, isNew] = locatedArrays_.try_emplace(listed->first);
            if (isNew) {
                found->second = locate(listed->second, index);
            }
            draft.facts.spans.push_back(found->second);
            draft.announcedInSpan.push_back(-1);
        }
    }
    for (const std::vector<MemberDraft>& span : draft.spans) {
        draft.facts.spans.push_back(locate(span, index));
    }
}

std::vector<std::string> Reading::locate(const std::vector<MemberDraft>& span,
                                         const DriveIndex& index) {
    std::vector<std::string> locations;
    locations.reserve(span.size());
    for (const MemberDraft& each : span) {
        locations.push_back(locate(each, index));
    }
    return locations;
}

/// The drive that a member is: the one with its serial number, or with its number, or where it is
/// said to sit, or with the location that it names.
std::string Reading::locate(const MemberDraft& member, const DriveIndex& index) {
    const std::optional<std::size_t> bySerial = index.ofSerial(member.serialNumber);
    std::optional<std::size_t> byPlace;
    if (const auto named = driveAt_.find(member.location); named != driveAt_.end()) {
        byPlace = named->second;
    } else if (member.number) {
        byPlace = index.ofNumber(*member.number);
    } else if (byPlace = index.ofBay(member.bay); !byPlace) {
        const auto other = driveAt_.find(member.otherLocation);
        byPlace = other == driveAt_.end() ? std::nullopt : std::optional(other->second);
    }
    if (bySerial && byPlace && bySerial != byPlace) {
        broken(member.place, "member " + member.named + " is drive " +
                                 facts.drives[*byPlace].location + " by its place, and " +
                                 facts.drives[*bySerial].location + " by its serial number");
    } else if (!byPlace && !member.isMissing && (!bySerial || !member.location.empty())) {
        broken(member.place, "member " + member.named + " is not among the physical drives");
    } else if (member.isBlock) {
        ++facts.listings[member.place.listing].blocksRead;
    }
    const std::optional<std::size_t> at =
        bySerial && (member.isSerialFirst || !byPlace) ? bySerial : byPlace;
    if (!at) {
        return member.location.empty() ? member.named : member.location;
    }
    DriveFacts& found = facts.drives[*at];
    found.mediaType = found.mediaType.empty() ? member.mediaType : found.mediaType;
    return found.location;
}

std::string Reading::missingOf(const LogicalDriveDraft& draft) const {
    const std::vector<std::vector<std::string>>& spans = draft.facts.spans;
    std::size_t members = 0;
    for (const std::vector<std::string>& span : spans) {
        members += span.size();
    }
    if (draft.isBroken) {
        return {};
    }
    if (draft.facts.raidType.empty()) {
        return draft.facts.reportedLevel.empty()
                   ? "without a RAID level"
                   : "has an unknown RAID level, " + quoted(draft.facts.reportedLevel);
    }
    if (!draft.facts.capacityBytes && table_.tellsDrives) {
        return "without a size";
    }
    if (members == 0) {
        return "without members";
    }
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const std::int64_t announced = draft.announcedInSpan[i];
        if (announced >= 0 && static_cast<std::size_t>(announced) != spans[i].size()) {
            return "announces " + std::to_string(announced) + " members in span " +
                   std::to_string(i) + ", and " + std::to_string(spans[i].size()) +
                   (spans[i].size() == 1 ? " is listed" : " are listed");
        }
    }
    if (draft.announcedSpans && static_cast<std::size_t>(*draft.announcedSpans) != spans.size()) {
        return "announces " +
               counted(static_cast<std::size_t>(*draft.announcedSpans), "span", "spans") +
               ", and " + std::to_string(spans.size()) +
               (spans.size() == 1 ? " is listed" : " are listed");
    }
    if (draft.announcedMembers) {
        const auto announced = static_cast<std::size_t>(*draft.announcedMembers) *
                               (draft.announcedPerSpan ? spans.size() : 1);
        if (announced != members) {
            return "announces " + counted(announced, "member", "members") + ", and " +
                   std::to_string(members) + (members == 1 ? " is listed" : " are listed");
        }
    }
    return {};
}

void Reading::checkAnnouncements() {
    if (facts.listings.size() < table_.listings) {
        return; // what was announced may stand elsewhere
    }
    for (const Announcement& each : announcements) {
        std::size_t found = facts.drives.size();
        std::string_view what = "physical drive";
        if (each.what == Announcement::What::logicalDrives) {
            found = facts.logicalDrives.size();
            what = "logical drive";
        } else if (each.what == Announcement::What::failedDrives) {
            found = static_cast<std::size_t>(
                std::count_if(facts.drives.begin(), facts.drives.end(),
                              [](const DriveFacts& d) { return d.state == DriveState::failed; }));
            what = "failed drive";
        }
        if (found != static_cast<std::size_t>(each.count)) {
            broken(each.place, quoted(each.key) + " says " + std::to_string(each.count) + ", and " +
                                   std::to_string(found) + " " + std::string(what) +
                                   (found == 1 ? " is listed" : "s are listed"));
        }
    }
}

/// Logical drives over the same drives share an array. It has the utility's number where that is
/// told of each, else they are counted from 0.
void Reading::nameArrays() {
    const auto groupOf = [](const LogicalDriveDraft& draft) {
        std::optional<std::int32_t> group;
        for (const std::vector<MemberDraft>& span : draft.spans) {
            for (const MemberDraft& member : span) {
                if (!member.group || (group && group != member.group)) {
                    return std::optional<std::int32_t>();
                }
                group = member.group;
            }
        }
        return group;
    };
    const bool hasGroups =
        std::all_of(logicalDrives.begin(), logicalDrives.end(),
                    [&](const LogicalDriveDraft& draft) { return groupOf(draft).has_value(); });
    std::map<std::vector<std::string>, std::size_t> arrayOf;
    std::size_t count = 0;
    for (LogicalDriveDraft& draft : logicalDrives) {
        if (!draft.facts.array.empty()) {
            continue;
        }
        if (hasGroups) {
            draft.facts.array = std::to_string(*groupOf(draft));
            continue;
        }
        std::vector<std::string> members = draft.facts.drives();
        std::sort(members.begin(), members.end());
        const auto [entry, isNew] = arrayOf.emplace(std::move(members), count);
        count += isNew ? 1 : 0;
        draft.facts.array = std::to_string(entry->second);
    }
}

} // namespace zolex::companion
