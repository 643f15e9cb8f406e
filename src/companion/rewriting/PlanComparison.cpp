#include "companion/rewriting/PlanComparison.h"

#include "commands/CommandLines.h"
#include "companion/rewriting/PolicyWriter.h"
#include "companion/text/Terminal.h"
#include "foundation/Report.h"
#include "model/TypeTraits.h"
#include "show/FaultTexts.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string_view>

namespace zolex::companion {

namespace {

constexpr std::size_t plannedSpans = 2; ///< of RAID 50 and 60, as zolex makes them
constexpr std::size_t mirrorDrives = 2;
constexpr std::uint64_t smallestStripKb = 8; ///< code 0

std::string locationsOf(const WantedLayout& layout, const std::vector<DrivePosition>& drives) {
    std::string text;
    for (const DrivePosition drive : drives) {
        text.append(text.empty() ? "" : " ").append(layout.locationOf(drive));
    }
    return text.empty() ? "no drives" : text;
}

std::string sizeText(std::int32_t sizeMb, bool fills) {
    return fills ? "all of its array" : std::to_string(sizeMb) + " MB";
}

std::string cacheText(std::int32_t writeCache) {
    return writeCache == write_cache::on    ? "write-back"
           : writeCache == write_cache::off ? "write-through"
                                            : "the controller's own cache mode";
}

/// Holds one plan against the layout that it shall make.
class Comparison {
  public:
    Comparison(const WantedLayout& layout, const RAIDConfiguration& planned)
        : layout_(layout), planned_(planned), traits_(traitsOf(layout.controller->type())) {}

    std::vector<Finding> compare() {
        compareArrays();
        compareLogicalDrives();
        compareHotspares();
        compareSettings();
        compareLines();
        return std::move(findings_);
    }

  private:
    void compareArrays() {
        for (std::size_t i = 0; i < layout_.arrays.size(); ++i) {
            const bool isThere = i < planned_.arrays().size();
            const std::vector<DrivePosition> made =
                isThere ? planned_.arrays()[i].drives() : std::vector<DrivePosition>();
            if (made != layout_.arrays[i]) {
                tell("ZC110", "array " + std::string(1, static_cast<char>('A' + i)) + " of " +
                                  locationsOf(layout_, layout_.arrays[i]) + " would come back of " +
                                  locationsOf(layout_, made));
            }
        }
    }

    void compareLogicalDrives() {
        for (std::size_t i = 0; i < layout_.logicalDrives.size(); ++i) {
            const WantedLogicalDrive& wanted = layout_.logicalDrives[i];
            if (i >= planned_.logicalDrives().size()) {
                tell("ZC104", "logical drive " + wanted.id + " would not come back");
                continue;
            }
            compareLogicalDrive(wanted, planned_.logicalDrives()[i]);
        }
    }

    void compareLogicalDrive(const WantedLogicalDrive& wanted, const LogicalDrive& made) {
        const std::string who = "logical drive " + wanted.id;
        const bool bothVolumes =
            wanted.raidLevel == raid_level::simpleVolume && made.raidLevel == raid_level::volume;
        if (made.raidLevel != wanted.raidLevel && !bothVolumes) {
            tell("ZC113", who + " of RAID level " + raidLevelWord(wanted.raidLevel) +
                              " would come back with " + raidLevelWord(made.raidLevel));
        }
        const bool fills = made.sizeMb == sizeFill;
        const bool sameSize =
            fills ? wanted.fills
                  : std::abs(std::int64_t{made.sizeMb} - wanted.sizeMb) <= wanted.toleranceMb;
        if (!sameSize && (traits_.explicitSizes || !fills)) {
            tell("ZC108", who + " of " + sizeText(wanted.sizeMb, false) + " would come back with " +
                              sizeText(made.sizeMb, fills));
        }
        compareStripSize(wanted);
        if (layout_.effects.writeCache && wanted.writeCache != write_cache::notGiven &&
            made.writeCache != wanted.writeCache) {
            tell("ZC112", who + " with " + cacheText(wanted.writeCache) + " would come back with " +
                              cacheText(made.writeCache));
        }
        compareReadCache(wanted);
    }

    /// A policy has one read-ahead mode, and logical drives can have several.
    void compareReadCache(const WantedLogicalDrive& wanted) {
        const bool isTold = wanted.facts != nullptr && !wanted.facts->readCache.empty();
        if (!layout_.effects.readAhead || !isTold) {
            return;
        }
        const std::int32_t mode = readAheadOf(wanted.facts->readCache);
        // What the whole controller loses is told with the settings.
        if (!isSameReadAhead(mode, planned_.readAhead) &&
            isSameReadAhead(layout_.readAhead, planned_.readAhead)) {
            findings_.push_back(captureFinding(
                details(), "ZC112", Severity::warning,
                "logical drive " + wanted.id + " with read-ahead " + readAheadWord(mode) +
                    " would come back with " + readAheadWord(planned_.readAhead),
                {"a policy has one read-ahead mode for all its logical drives"}));
        }
    }

    /// ARCCONF and HRCONF know on and off alone.
    [[nodiscard]] bool isSameReadAhead(std::int32_t one, std::int32_t other) const {
        return traits_.dialect == Dialect::megaCli
                   ? one == other
                   : (one == read_ahead::off) == (other == read_ahead::off);
    }

    static std::int32_t readAheadOf(std::string_view readCache) {
        if (readCache == "Off") {
            return read_ahead::off;
        }
        return readCache == "ReadAhead" ? read_ahead::on : read_ahead::adaptive;
    }

    /// In KB; 0 where it is not told, or says nothing.
    [[nodiscard]] std::uint64_t stripSizeOf(const WantedLogicalDrive& drive) const {
        constexpr std::uint64_t kilobyte = 1024;
        const bool isMirror =
            drive.raidLevel == raid_level::raid1 &&
            (traits_.dialect == Dialect::conf || traits_.dialect == Dialect::hyperwin);
        if (!layout_.effects.stripeSize || isMirror) {
            return 0;
        }
        if (drive.facts != nullptr && drive.facts->stripSizeBytes) {
            return *drive.facts->stripSizeBytes / kilobyte;
        }
        return layout_.stripeSize == stripe::none ? 0 : smallestStripKb << layout_.stripeSize;
    }

    void compareStripSize(const WantedLogicalDrive& wanted) {
        const std::int32_t code = finalStripeSize(layout_.controller->type(), planned_.stripeSize);
        const std::uint64_t kb = stripSizeOf(wanted);
        if (kb == 0 || code == stripe::none || kb == smallestStripKb << code) {
            return;
        }
        const bool isTaken = takesStripSize(*layout_.controller, layout_.stripeSize);
        findings_.push_back(captureFinding(
            details(), "ZC103", Severity::warning,
            "logical drive " + wanted.id + " with a strip size of " + std::to_string(kb) +
                " KB would come back with " + stripeSizeWord(code) + " KB",
            {isTaken ? "a policy has one strip size for all its logical drives"
                     : "zolex refuses policies with this strip size on a " + details().model}));
    }

    void compareHotspares() {
        std::vector<DrivePosition> made;
        for (const Hotspare& hotspare : planned_.hotspares()) {
            made.push_back({hotspare.channelNumber, hotspare.id});
        }
        const bool same = made.size() == layout_.hotspares.size() &&
                          std::is_permutation(made.begin(), made.end(), layout_.hotspares.begin());
        if (!same) {
            tell("ZC111", "hot spares " + locationsOf(layout_, layout_.hotspares) +
                              " would come back as " + locationsOf(layout_, made));
        }
    }

    void compareSettings() {
        if (layout_.effects.readAhead && !isSameReadAhead(layout_.readAhead, planned_.readAhead)) {
            tell("ZC112", std::string("read-ahead ") + readAheadWord(layout_.readAhead) +
                              " would come back as " + readAheadWord(planned_.readAhead));
        }
        if (layout_.effects.rebuildRate && planned_.rebuildRate != layout_.rebuildRate) {
            tell("ZC112", std::string("rebuild rate ") + rebuildRateWord(layout_.rebuildRate) +
                              " would come back as " + rebuildRateWord(planned_.rebuildRate));
        }
    }

    void compareLines() {
        SilentReport report;
        const CommandLines made =
            commandLines(*layout_.controller, layout_.details->number, planned_, {}, report);
        if (made.fault) {
            tell("ZC114", "no commands can be made of the policy: " + faultLine(*made.fault));
            return;
        }
        if (traits_.dialect != Dialect::megaCli) {
            return;
        }
        compareDriveNames(made.lines);
        for (std::size_t i = 0; i < planned_.logicalDrives().size(); ++i) {
            const std::int32_t array = planned_.logicalDrives()[i].arrayIndex;
            const bool isLater = std::any_of(
                planned_.logicalDrives().begin(),
                planned_.logicalDrives().begin() + static_cast<std::ptrdiff_t>(i),
                [array](const LogicalDrive& earlier) { return earlier.arrayIndex == array; });
            if (isLater) {
                tell("ZC104", "logical drive " + layout_.logicalDrives[i].id +
                                  " would not come back: zolex makes the first of an array only");
            }
        }
    }

    /// The drives that the lines of MEGACLI name must be those that are meant.
    void compareDriveNames(const std::vector<CString>& lines) {
        std::set<std::string> meant;
        for (const std::vector<DrivePosition>& array : layout_.arrays) {
            for (const DrivePosition drive : array) {
                meant.insert(layout_.locationOf(drive));
            }
        }
        for (const DrivePosition drive : layout_.hotspares) {
            meant.insert(layout_.locationOf(drive));
        }
        std::set<std::string> told;
        for (const CString& line : lines) {
            namesIn(line.c_str(), told);
        }
        if (details().drives.empty() || told == meant) {
            return;
        }
        bool othersAreNamed = false;
        for (const std::string& name : told) {
            if (meant.count(name) == 0) {
                othersAreNamed = true;
                tell("ZC115", "the commands would name the drive " + name +
                                  ", which is none of those that are meant");
            }
        }
        // 32:2 is written :2 where a drive is in no enclosure, and :2 can be meant as well.
        for (const std::string& name : meant) {
            if (!othersAreNamed && told.count(name) == 0) {
                tell("ZC115", "the commands would not name the drive " + name +
                                  ", which is one of those that are meant");
            }
        }
    }

    /// The names between "[" and "]".
    static void namesIn(std::string_view line, std::set<std::string>& names) {
        for (std::size_t open = line.find('['); open != std::string_view::npos;
             open = line.find('[', open + 1)) {
            std::string_view list = line.substr(open + 1);
            list = list.substr(0, list.find(']'));
            while (!list.empty()) {
                const std::size_t end = list.find_first_of(", ");
                if (end != 0) {
                    names.emplace(list.substr(0, end));
                }
                list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
            }
        }
    }

    [[nodiscard]] const ControllerSnapshot& details() const { return *layout_.details; }

    void tell(const char* code, const std::string& what) {
        findings_.push_back(captureFinding(details(), code, Severity::warning, what));
    }

    const WantedLayout& layout_;
    const RAIDConfiguration& planned_;
    const TypeTraits& traits_;
    std::vector<Finding> findings_;
};

bool isOfSpans(std::int32_t raidLevel) {
    return raidLevel == raid_level::raid50 || raidLevel == raid_level::raid60;
}

/// What the spans of a logical drive would become, where it is not what they are.
std::string spanFault(const WantedLogicalDrive& drive) {
    const std::vector<std::vector<std::string>>& spans = drive.facts->spans;
    const std::string who = "logical drive " + drive.id + ", ";
    if (isOfSpans(drive.raidLevel) && spans.size() > 1 && spans.size() != plannedSpans) {
        return who + "RAID " + raidLevelWord(drive.raidLevel) + " of " +
               std::to_string(spans.size()) + " spans, would come back of " +
               std::to_string(plannedSpans);
    }
    const bool largeMirror = std::any_of(
        spans.begin(), spans.end(), [](const auto& span) { return span.size() > mirrorDrives; });
    if (drive.raidLevel == raid_level::raid10 && spans.size() > 1 && largeMirror) {
        return who +
               "RAID 10 of mirrors of more than two drives, would come back of mirrors of two";
    }
    return {};
}

/// What controllers of QTCSEND take by themselves.
constexpr std::uint64_t usualQtcSendStripKb = 16;

void tellLogicalDrive(const WantedLayout& layout, const WantedLogicalDrive& drive,
                      std::vector<Finding>& findings) {
    const auto tell = [&](const char* code, Severity severity, const std::string& what,
                          std::vector<std::string> help = {}) {
        findings.push_back(captureFinding(*layout.details, code, severity, what, std::move(help)));
    };
    const LogicalDriveFacts& facts = *drive.facts;
    const std::string who = "logical drive " + drive.id;
    if (const std::string fault = spanFault(drive); !fault.empty()) {
        tell("ZC105", Severity::warning, fault);
    }
    if (facts.health == Health::warning || facts.health == Health::critical) {
        tell("ZC106", Severity::warning,
             who + " is " + (facts.reportedState.empty() ? "not well" : facts.reportedState) +
                 ": the policy may not be what it was when it was well",
             {"mend it first, then capture again"});
    }
    const TypeTraits& traits = traitsOf(layout.controller->type());
    // No line for QTCSEND holds one; others are told none for levels that have none.
    const bool isNeverTold = layout.controller->type() == controller_type::family;
    if (traits.writes.stripeSize && !layout.effects.stripeSize && facts.stripSizeBytes &&
        (isNeverTold || drive.raidLevel != raid_level::raid1)) {
        const std::uint64_t kb = *facts.stripSizeBytes / 1024;
        tell("ZC118", isNeverTold && kb != usualQtcSendStripKb ? Severity::warning : Severity::note,
             who + " has a strip size of " + std::to_string(kb) + " KB: zolex gives " +
                 layout.details->utility + " none, so that the controller's own comes back");
    }
    if (!facts.name.empty()) {
        tell("ZC117", Severity::note,
             who + " is called \"" + printable(facts.name) + "\": policies give no names");
    }
}

} // namespace

std::vector<Finding> comparePlan(const WantedLayout& layout, const ControllerPlan& plan) {
    if (plan.outcome != Outcome::planned || !plan.layout) {
        const std::string why = plan.fault ? faultLine(*plan.fault)
                                : plan.outcome == Outcome::tooFewDrives
                                    ? "the controller has too few drives"
                                    : "the policy is not for it";
        return {captureFinding(*layout.details, "ZC107", Severity::warning,
                               "as the server is now, zolex would refuse the policy: " + why)};
    }
    return Comparison(layout, *plan.layout).compare();
}

std::vector<Finding> unsayable(const WantedLayout& layout) {
    std::vector<Finding> findings;
    for (const WantedLogicalDrive& drive : layout.logicalDrives) {
        if (drive.facts != nullptr) {
            tellLogicalDrive(layout, drive, findings);
        }
    }
    for (const MachineDrive& drive : layout.details->drives) {
        if (drive.facts.hotspare == HotspareKind::dedicated) {
            findings.push_back(captureFinding(*layout.details, "ZC111", Severity::warning,
                                              "hot spare " + drive.facts.location +
                                                  " is for one array and would come back for all"));
        }
    }
    return findings;
}

std::string faultLine(const Fault& fault) {
    std::string text;
    for (const FaultText& piece : show::faultTexts(fault)) {
        text += piece.text.c_str();
    }
    std::string line;
    for (const char c : text) {
        const bool isBlank = c == '\n' || c == '\r' || c == '\t' || c == ' ';
        if (!isBlank) {
            line += c;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    while (!line.empty() && (line.back() == ' ' || line.back() == '.')) {
        line.pop_back();
    }
    return line;
}

} // namespace zolex::companion
