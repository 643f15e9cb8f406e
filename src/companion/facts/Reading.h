#pragma once

#include "companion/facts/FactValues.h"
#include "companion/facts/Facts.h"
#include "companion/facts/KeyTable.h"
#include "companion/facts/ListingLines.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zolex::companion {

/// A line without a ":" that begins a block, or that tells that there is none.
struct HeadingRow {
    std::string_view start; ///< what the line begins with, letter case ignored
    void (*begin)(Reading& reading, const ListingLine& line);
};

/// How one utility's listings are read.
struct UtilityTable {
    KeyLookup keys;
    std::span<const KeyRow> numberedKeys; ///< keys that go on, "Segment 0", by what they begin with
    std::span<const HeadingRow> headings;
    /// Takes a line without a ":" that is no heading; null where they say nothing.
    void (*takePlain)(Reading& reading, const ListingLine& line);
    /// Whether this is the line that the utility ends a listing with.
    bool (*endsListing)(const ListingLine& line);
    /// How its commands name the drive that is read; empty when the listing does not tell.
    std::string (*location)(const Reading& reading);
    std::string_view locationMissing; ///< what is wrong with a drive without a location
    std::size_t listings = 1;         ///< of a capture
    bool tellsDrives = true;          ///< sizes and states of drives
};

/// What a listing says of one member of a logical drive.
struct MemberDraft {
    std::string named;         ///< as the listing names it
    std::string location;      ///< as commands name it; empty: not known yet
    std::string bay;           ///< the place where it sits, when the member is told by that
    std::string otherLocation; ///< the location, unless a drive sits in the bay
    std::string mediaType;
    std::string serialNumber;
    std::optional<std::int32_t> number; ///< the utility's own number of the drive
    std::optional<std::int32_t> enclosure;
    std::optional<std::int32_t> slot;
    std::optional<std::int32_t> group; ///< the utility's own number of the array
    bool hasEnclosure = false;         ///< that it is in none is told as well
    bool isBlock = false;              ///< it has a block of its own
    bool isSerialFirst = false;        ///< its serial number tells better than its place
    bool isMissing = false;            ///< the listing itself says so
    ListingPlace place;
};

/// One logical drive while the listings are read.
struct LogicalDriveDraft {
    LogicalDriveFacts facts;
    std::vector<std::vector<MemberDraft>> spans;
    std::vector<std::int64_t> announcedInSpan; ///< beside `spans`; negative: not announced
    std::optional<std::int32_t> announcedSpans;
    std::optional<std::int32_t> announcedMembers;
    bool announcedPerSpan = false;
    bool isBroken = false; ///< what is wrong was told
};

/// A number of things that a listing announces.
struct Announcement {
    enum class What : std::uint8_t { drives, logicalDrives, failedDrives };
    What what = What::drives;
    std::int32_t count = 0;
    ListingPlace place;
    std::string key;
};

/// All that is known while the listings of one controller are read.
class Reading {
  public:
    explicit Reading(const UtilityTable& table) : table_(table) {}

    Facts facts;
    Block block = Block::none;
    DriveFacts drive;          ///< while `block` is Block::drive
    std::string bay;           ///< where it sits, when that is told too
    bool hasEnclosure = false; ///< that it is in none is told as well
    std::vector<LogicalDriveDraft> logicalDrives;
    std::unordered_map<std::string, std::vector<MemberDraft>> arrays; ///< listed by themselves
    std::string array; ///< the one whose list may go on
    std::vector<Announcement> announcements;
    std::optional<std::int32_t> channel; ///< that drives stand under
    std::optional<std::int32_t> pciBus, pciDevice, pciFunction;
    std::string commonReadCache;  ///< of all logical drives
    std::string protocol;         ///< of all drives, until they tell their own
    std::int32_t spare = 0;       ///< number of the drive that is one
    bool membersAsDrives = false; ///< members are told as drives
    bool hasHeading = false;      ///< of the controller
    bool isOver = false;          ///< what follows is of another controller

    /// Reads one listing.
    void read(std::size_t index, std::string_view listing);
    void addDrive(DriveFacts&& found);
    /// Takes the drives that another reading has found.
    void takeDrives(Reading& other);
    /// Puts together what the listings said.
    void finish();

    [[nodiscard]] ListingPlace place(const ListingLine& line) const {
        return {listing_, line.number};
    }
    void broken(const ListingLine& line, std::string what) {
        isBlockBroken_ = true;
        broken(place(line), std::move(what));
    }
    void broken(ListingPlace where, std::string what) {
        facts.broken.push_back({where, std::move(what)});
    }
    /// Whether something of this utility was read.
    [[nodiscard]] bool isListing() const { return isListing_; }
    /// The listing's last line has come.
    void close() { isClosed_ = true; }

    /// Takes a line whose value stands behind another mark than ":", at `mark`, when its key is
    /// known.
    void takeOtherKey(const ListingLine& line, std::size_t mark);

    // Blocks. Beginning one ends the one before.
    void leave(Block next);
    void beginDrive(const ListingLine& line);
    /// What began as a drive is another device.
    void dropDrive();
    /// Null when there are too many, which is told.
    LogicalDriveDraft* beginLogicalDrive(const ListingLine& line, std::string id);
    /// Null in front of the first logical drive.
    [[nodiscard]] LogicalDriveDraft* logicalDrive() {
        return logicalDrives.empty() ? nullptr : &logicalDrives.back();
    }
    /// Opens a span for so many members; negative: not announced.
    void beginSpan(std::int64_t announced);
    /// Begins the block of a member. Null in front of the first logical drive.
    MemberDraft* beginMember(const ListingLine& line, std::string named);
    /// A member that a line of the logical drive tells.
    MemberDraft* addMember(const ListingLine& line, std::string named, bool isBlock = false);
    /// The latest member of the latest logical drive; null when there is none.
    [[nodiscard]] MemberDraft* member();
    /// A line that the core's readers would take for two.
    void checkLength(const ListingLine& line);

    /// Takes the drive's state from its utility's word.
    void takeState(const ListingLine& line);
    void announce(Announcement::What what, const ListingLine& line, std::int32_t count);

    [[nodiscard]] ListingReading& counts() { return facts.listings[listing_]; }

  private:
    class DriveIndex;

    void takeKey(ListingLines& lines);
    bool takeExpected(ListingLines& lines);
    void take(const KeyRow& row, const ListingLine& line);
    [[nodiscard]] const KeyRow* rowOf(const ListingLines& lines);
    void takePlain(const ListingLine& line);
    [[nodiscard]] const KeyRow* numberedRow(std::string_view key) const;
    void noteUnknown(const ListingLine& line);
    void endListing(const ListingLine& last);
    void endDrive();
    [[nodiscard]] std::string_view missingOfDrive() const;
    void finishMembers(LogicalDriveDraft& draft, const DriveIndex& index);
    [[nodiscard]] std::string locate(const MemberDraft& member, const DriveIndex& index);
    [[nodiscard]] std::vector<std::string> locate(const std::vector<MemberDraft>& span,
                                                  const DriveIndex& index);
    [[nodiscard]] std::string missingOf(const LogicalDriveDraft& draft) const;
    void checkAnnouncements();
    void nameArrays();

    const UtilityTable& table_;
    std::size_t listing_ = 0;
    bool isListing_ = false;
    bool isClosed_ = false;
    /// Blocks are alike: the row that came behind each row the last time, and what the line of each
    /// row began with. The number behind the last row stands for the beginning.
    std::array<std::uint8_t, KeyLookup::noRow + 1> nextRow_{};
    std::array<std::string_view, KeyLookup::noRow + 1> beginnings_{};
    std::uint8_t lastRow_ = KeyLookup::noRow;
    std::unordered_map<std::string, std::vector<std::string>> locatedArrays_;
    bool hasTooMany_ = false;
    bool isBlockBroken_ = false; ///< something is wrong with the block, and was told
    std::unordered_map<std::string, std::size_t> driveAt_; ///< index of a location
    std::vector<std::string> bays_;                        ///< beside `facts.drives`
    std::string lastState_;
    StateMeaning lastMeaning_;
};

} // namespace zolex::companion
