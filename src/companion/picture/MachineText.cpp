#include "companion/picture/MachineText.h"

#include "companion/families/FamilyCodes.h"
#include "companion/picture/Roles.h"
#include "companion/text/Sizes.h"
#include "companion/text/Table.h"
#include "companion/text/Utf8.h"
#include "companion/text/Words.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::size_t headIndent = 14;  ///< as wide as "Controller 1  "
constexpr std::size_t layoutIndent = 5; ///< behind the sign of a line

class MachineWriter {
  public:
    MachineWriter(const ControllerSnapshot& controller, const TextStyle& style, bool verbose)
        : controller_(controller), style_(style), width_(static_cast<std::size_t>(style.width)),
          verbose_(verbose) {}

    std::string write() {
        head();
        if (controller_.failed) {
            line("  ! ", printable(controller_.utility) + " failed: nothing more is known",
                 Emphasis::bad);
        } else if (controller_.drives.empty()) {
            out_ += "  No drives\n";
        } else {
            drives();
        }
        for (const Finding& finding : controller_.findings) {
            this->finding(finding);
        }
        if (!controller_.failed) {
            troubles();
            layout();
        }
        if (verbose_) {
            volumesOfSystem();
            commands();
        }
        return std::move(out_);
    }

  private:
    /// A text behind its sign, folded.
    void line(std::string_view sign, const std::string& text, Emphasis emphasis) {
        const std::size_t indent = sign.size();
        std::string folded = foldedWords(text, indent, indent, width_);
        out_ += emphasized(std::string(sign) + folded, emphasis, style_) + "\n";
    }

    /// Pieces that no line holds are folded at their blanks.
    void foldLong(std::vector<std::string>& pieces, std::size_t first) const {
        for (std::string& piece : pieces) {
            if (first + columnsOf(piece) > width_) {
                piece = foldedWords(piece, first, headIndent, width_);
            }
        }
    }

    void head() {
        const std::string name = "Controller " + std::to_string(controller_.number) + "  ";
        std::vector<std::string> first{productText(controller_)};
        if (!controller_.facts.serialNumber.empty()) {
            first.push_back("serial " + printable(controller_.facts.serialNumber));
        }
        std::vector<std::string> second;
        if (const std::string pci = pciText(controller_); !pci.empty()) {
            second.push_back(pci);
        }
        if (!controller_.facts.firmwareVersion.empty()) {
            second.push_back("firmware " + printable(controller_.facts.firmwareVersion));
        }
        const std::string indent(headIndent, ' ');
        out_ += emphasized(name, Emphasis::heading, style_);
        foldLong(first, name.size());
        foldLong(second, headIndent);
        out_ += emphasized(foldedText(first, "  ", name.size(), headIndent, width_), Emphasis::bold,
                           style_) +
                "\n";
        if (!second.empty()) {
            out_ += indent + foldedText(second, "  ", headIndent, headIndent, width_) + "\n";
        }
        if (const std::vector<std::string> abilities = abilitiesOf(controller_.facts);
            !abilities.empty()) {
            out_ += indent + foldedText(abilities, ", ", headIndent, headIndent, width_) + "\n";
        }
    }

    [[nodiscard]] static Emphasis emphasisOf(const MachineDrive& drive) {
        switch (roleOf(drive)) {
        case Role::failed:
            return Emphasis::bad;
        case Role::foreign:
        case Role::unknown:
            return Emphasis::warning;
        default:
            return drive.facts.state == DriveState::rebuilding || !troubleOf(drive.facts).empty()
                       ? Emphasis::warning
                       : Emphasis::plain;
        }
    }

    /// How much of drives and states is written, so that the tables fit.
    struct Brevity {
        bool wholeStates = true;   ///< else up to the first comma
        bool manufacturers = true; ///< before the models
        bool models = true;        ///< else the ends of the serial numbers alone
        bool states = true;
        bool drives = true;         ///< models and serial numbers
        std::size_t columns = 1000; ///< of drives and of states
    };

    [[nodiscard]] static std::string driveName(const DriveFacts& facts, const Brevity& brevity) {
        if (!brevity.drives) {
            return {};
        }
        const bool bare = !brevity.manufacturers && !facts.model.empty();
        std::string model = bare ? printable(facts.model) : modelOf(facts);
        std::string serial = printable(lastCharacters(facts.serialNumber, 4));
        if (!brevity.models && !serial.empty()) {
            return serial;
        }
        const std::size_t room = std::max(brevity.columns - columnsOf(serial) - 1, std::size_t{8});
        model = shortened(model, room);
        return model + (model.empty() || serial.empty() ? "" : " ") + serial;
    }

    [[nodiscard]] static std::string stateOf(const DriveFacts& facts, const Brevity& brevity) {
        std::string state = brevity.states ? printable(facts.reportedState) : std::string();
        if (!brevity.wholeStates) {
            state.resize(std::min(state.find(','), state.size()));
        }
        return shortened(state, brevity.columns);
    }

    /// The tables of the drives, one line of names before the drives of each row.
    [[nodiscard]] Table driveTable(const std::vector<DriveRow>& rows,
                                   const Brevity& brevity) const {
        Table table(0);
        for (const DriveRow& row : rows) {
            table.add({{"no", Emphasis::dim, true},
                       {"location", Emphasis::dim},
                       {"size", Emphasis::dim, true},
                       {brevity.drives ? "drive" : "", Emphasis::dim},
                       {brevity.states ? "state" : "", Emphasis::dim},
                       {"in", Emphasis::dim}});
            for (const DriveRow::Slot& slot : row.slots) {
                if (slot.drive) {
                    table.add(cellsOf(controller_.drives[*slot.drive], brevity));
                }
            }
        }
        return table;
    }

    [[nodiscard]] static std::vector<TableCell> cellsOf(const MachineDrive& drive,
                                                        const Brevity& brevity) {
        const Emphasis emphasis = emphasisOf(drive);
        const Emphasis strong = emphasis == Emphasis::plain ? Emphasis::bold : emphasis;
        return {{numberOf(drive), strong, true},
                {printable(drive.facts.location), emphasis},
                {sizeText(drive.facts.capacityBytes), emphasis, true},
                {driveName(drive.facts, brevity), emphasis},
                {stateOf(drive.facts, brevity), emphasis},
                {jobOf(drive), strong}};
    }

    /// The titles stand before the tables where there is room for it; else above them, and what is
    /// still too wide is shortened.
    void drives() {
        const std::vector<DriveRow> rows = driveRowsOf(controller_);
        constexpr std::size_t indent = 2;
        std::size_t titleColumns = 0;
        for (const DriveRow& row : rows) {
            titleColumns = std::max(titleColumns, columnsOf(row.title));
        }
        titleColumns += indent + 2;
        Table table = driveTable(rows, {});
        const bool isBeside = titleColumns + table.width() <= width_;
        if (!isBeside) {
            titleColumns = 2 * indent;
            shorten(table, rows, width_ - titleColumns);
        }
        const std::vector<std::string> lines = table.lines(style_);
        const std::string blanks(titleColumns, ' ');
        std::size_t next = 0;
        for (const DriveRow& row : rows) {
            out_.append(indent, ' ');
            out_ += emphasized(row.title, Emphasis::heading, style_);
            if (isBeside) {
                out_.append(titleColumns - indent - columnsOf(row.title), ' ');
            } else {
                out_ += "\n" + blanks;
            }
            out_ += lines[next++];
            for (const DriveRow::Slot& slot : row.slots) {
                if (slot.drive) {
                    out_ += blanks + lines[next++];
                }
            }
        }
    }

    /// Makes the table anew, as much shorter as it must be.
    void shorten(Table& table, const std::vector<DriveRow>& rows, std::size_t width) const {
        Brevity brevity;
        const auto fits = [&] { return table.width() <= width; };
        const auto make = [&] { table = driveTable(rows, brevity); };
        if (!fits()) {
            brevity.wholeStates = false;
            make();
        }
        if (!fits()) {
            brevity.manufacturers = false;
            make();
        }
        for (std::size_t columns = 32; columns >= 12 && !fits(); --columns) {
            brevity.columns = columns;
            make();
        }
        if (!fits()) {
            brevity.models = false;
            make();
        }
        if (!fits()) {
            brevity.states = false;
            make();
        }
        if (!fits()) {
            brevity.drives = false;
            make();
        }
    }

    void finding(const Finding& finding) {
        const Emphasis emphasis = finding.severity == Severity::error  ? Emphasis::bad
                                  : finding.severity == Severity::note ? Emphasis::dim
                                                                       : Emphasis::warning;
        line(finding.severity == Severity::note ? "    " : "  ! ", printable(finding.summary),
             emphasis);
        if (verbose_ && !finding.detail.empty()) {
            line("    ", printable(finding.detail), Emphasis::plain);
        }
        // What keeps a controller from being configured is told with what helps.
        const bool isBar = finding.code == family_code::cachePreserved;
        for (const std::string& help : finding.help) {
            if (verbose_ || controller_.failed || isBar) {
                line("    help: ", printable(help), Emphasis::dim);
            }
        }
    }

    /// What is wrong with drives that are not failed.
    void troubles() {
        for (const MachineDrive& drive : controller_.drives) {
            const std::string trouble = troubleOf(drive.facts);
            if (roleOf(drive) != Role::failed && !trouble.empty()) {
                line("  ! ",
                     printable(drive.facts.location) + " has " + trouble +
                         (drive.array.empty() ? "" : ", and is in array " + drive.array),
                     Emphasis::warning);
            }
        }
    }

    /// One line of the layout: sign, drives, and what they are.
    struct LayoutLine {
        TableCell sign;
        std::vector<std::string> drives;
        std::vector<TableCell> what;
    };

    [[nodiscard]] static std::vector<TableCell> cellsOf(const LogicalDriveFacts& logicalDrive) {
        const Emphasis state = logicalDrive.health == Health::critical  ? Emphasis::bad
                               : logicalDrive.health == Health::warning ? Emphasis::warning
                               : logicalDrive.health == Health::ok      ? Emphasis::good
                                                                        : Emphasis::plain;
        return {{"LD " + printable(logicalDrive.id)},
                {levelOf(logicalDrive)},
                {sizeText(logicalDrive.capacityBytes), Emphasis::plain, true},
                {stateText(logicalDrive.reportedState), state},
                {cacheOf(logicalDrive)},
                {logicalDrive.stripSizeBytes ? sizeText(*logicalDrive.stripSizeBytes) : "",
                 Emphasis::plain, true},
                {logicalDrive.name.empty() ? "" : "\"" + printable(logicalDrive.name) + "\"",
                 Emphasis::dim}};
    }

    /// What the system knows the logical drives by.
    void volumesOfSystem() {
        for (const LogicalDriveFacts& each : controller_.facts.logicalDrives) {
            std::vector<std::string> told;
            for (const std::string& text :
                 {each.device, each.uniqueId.empty() ? "" : "id " + each.uniqueId, each.usedAs}) {
                if (!text.empty()) {
                    told.push_back(printable(text));
                }
            }
            if (!told.empty()) {
                line("     ", "LD " + printable(each.id) + ": " + joined(told, ", "),
                     Emphasis::plain);
            }
        }
    }

    [[nodiscard]] std::vector<LayoutLine> arrayLines() const {
        std::vector<LayoutLine> lines;
        for (const MachineArray& array : controller_.arrays) {
            LayoutLine line{{array.letter, Emphasis::bold}, locationRanges(array.drives), {}};
            for (const std::size_t index : array.logicalDrives) {
                line.what = cellsOf(controller_.facts.logicalDrives.at(index));
                lines.push_back(line);
                line.sign.text.clear();
                line.drives.clear();
            }
        }
        return lines;
    }

    void addEmptyArrays(std::vector<LayoutLine>& lines) const {
        for (const MachineArray& array : controller_.arrays) {
            if (array.logicalDrives.empty()) {
                lines.push_back({{array.letter, Emphasis::bold},
                                 locationRanges(array.drives),
                                 {{"no logical drive"}}});
            }
        }
    }

    /// Whether its state is what the system uses it for.
    [[nodiscard]] static bool isUsed(const DriveFacts& facts) {
        return !facts.barred.empty() && facts.barred == facts.reportedState;
    }

    /// Drives with one job, as a line of the layout; none where there are no such drives.
    void addGroup(std::vector<LayoutLine>& lines, Role role, HotspareKind kind,
                  std::string_view sign, Emphasis emphasis, const char* one,
                  const char* many) const {
        std::vector<std::string> locations;
        std::uint64_t bytes = 0;
        for (const MachineDrive& drive : controller_.drives) {
            const bool isDedicated = drive.facts.hotspare == HotspareKind::dedicated;
            if (roleOf(drive) == role && !isUsed(drive.facts) &&
                (role != Role::hotspare || isDedicated == (kind == HotspareKind::dedicated))) {
                locations.push_back(drive.facts.location);
                bytes += drive.facts.capacityBytes.value_or(0);
            }
        }
        if (locations.empty()) {
            return;
        }
        std::string text = countText(locations.size(), one, many);
        text += bytes > 0 ? ", " + sizeText(bytes) : "";
        lines.push_back(
            {{std::string(sign), emphasis}, locationRanges(locations), {{text, emphasis}}});
    }

    /// Each with its use.
    void addUsed(std::vector<LayoutLine>& lines) const {
        for (const MachineDrive& drive : controller_.drives) {
            if (roleOf(drive) == Role::jbod && isUsed(drive.facts)) {
                lines.push_back({{"=", Emphasis::plain},
                                 {printable(drive.facts.location)},
                                 {{printable(drive.facts.barred), Emphasis::plain}}});
            }
        }
    }

    /// Failed drives stand each for itself: whoever changes one needs its serial number.
    void addFailed(std::vector<LayoutLine>& lines) const {
        for (const MachineDrive& drive : controller_.drives) {
            if (roleOf(drive) != Role::failed) {
                continue;
            }
            const DriveFacts& facts = drive.facts;
            std::string text = stateText(facts.reportedState);
            text =
                text.empty() ? (facts.state == DriveState::missing ? "missing" : "failed") : text;
            text += facts.serialNumber.empty() ? "" : ", serial " + printable(facts.serialNumber);
            text += drive.array.empty() ? "" : ", of array " + drive.array;
            lines.push_back(
                {{"x", Emphasis::bad}, {printable(facts.location)}, {{text, Emphasis::bad}}});
        }
    }

    /// Drives that an array names and no listing has.
    void addMissing(std::vector<LayoutLine>& lines) const {
        std::set<std::string_view> known;
        for (const MachineDrive& drive : controller_.drives) {
            known.insert(drive.facts.location);
        }
        for (const MachineArray& array : controller_.arrays) {
            for (const std::string& location : array.drives) {
                if (known.find(location) == known.end()) {
                    lines.push_back({{"x", Emphasis::bad},
                                     {printable(location)},
                                     {{"missing in array " + array.letter, Emphasis::bad}}});
                }
            }
        }
    }

    void layout() {
        const std::vector<LayoutLine> arrays = arrayLines();
        std::vector<LayoutLine> others;
        addEmptyArrays(others);
        addFailed(others);
        addMissing(others);
        addGroup(others, Role::hotspare, HotspareKind::global, "*", Emphasis::plain, "hot spare",
                 "hot spares");
        addGroup(others, Role::hotspare, HotspareKind::dedicated, "*", Emphasis::plain,
                 "dedicated hot spare", "dedicated hot spares");
        addGroup(others, Role::foreign, {}, "~", Emphasis::warning, "foreign drive",
                 "foreign drives");
        addUsed(others);
        addGroup(others, Role::jbod, {}, "=", Emphasis::plain,
                 "drive that the system sees as it is", "drives that the system sees as they are");
        addGroup(others, Role::unknown, {}, "?", Emphasis::warning, "drive in an unknown state",
                 "drives in an unknown state");
        addGroup(others, Role::free, {}, ".", Emphasis::good, "free drive", "free drives");

        std::size_t driveColumns = 0;
        const auto widen = [&](const std::vector<LayoutLine>& lines) {
            for (const LayoutLine& line : lines) {
                driveColumns = std::max(driveColumns, columnsOf(joined(line.drives, " ")));
            }
        };
        widen(arrays);
        widen(others);
        writeLines(arrays, driveColumns);
        writeLines(others, driveColumns);
        for (const std::string& foreign : controller_.facts.foreignConfigurations) {
            line("  ~  ", "foreign configuration: " + printable(foreign), Emphasis::warning);
        }
    }

    /// What the drives are stands beside them, or below where there is no room, or folded.
    void writeLines(const std::vector<LayoutLine>& lines, std::size_t driveColumns) {
        Table table(0);
        for (const LayoutLine& line : lines) {
            table.add(line.what);
        }
        const std::vector<std::string> what = table.lines(style_);
        const bool isBeside = layoutIndent + driveColumns + 2 + table.width() <= width_;
        const bool isWhole = layoutIndent + table.width() <= width_;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const LayoutLine& line = lines[i];
            const std::string& sign = line.sign.text;
            out_ += "  " + emphasized(sign, line.sign.emphasis, style_);
            out_.append(sign.size() < 3 ? 3 - sign.size() : 1, ' ');
            if (isBeside) {
                const std::string drives = joined(line.drives, " ");
                out_ += drives + std::string(driveColumns + 2 - columnsOf(drives), ' ') + what[i];
                continue;
            }
            if (!line.drives.empty()) {
                out_ += foldedText(line.drives, " ", layoutIndent, layoutIndent, width_) + "\n" +
                        std::string(layoutIndent, ' ');
            }
            out_ += isWhole ? what[i] : foldedCells(line.what);
        }
    }

    [[nodiscard]] std::string foldedCells(const std::vector<TableCell>& cells) const {
        std::vector<std::string> pieces;
        for (const TableCell& cell : cells) {
            if (!cell.text.empty()) {
                pieces.push_back(
                    emphasized(foldedWords(cell.text, layoutIndent, layoutIndent, width_),
                               cell.emphasis, style_));
            }
        }
        return foldedText(pieces, "  ", layoutIndent, layoutIndent, width_) + "\n";
    }

    void commands() {
        for (std::size_t i = 0; i < controller_.commands.size(); ++i) {
            const CapturedListing& listing = controller_.commands[i];
            out_ += "  " + emphasized(printable(listing.command), Emphasis::dim, style_) + "\n";
            std::string end =
                outcomeText(listing) + ", " + std::to_string(listing.duration.count()) + " ms";
            if (i < controller_.facts.listings.size() && !controller_.failed) {
                const ListingReading& reading = controller_.facts.listings[i];
                end += ", " + std::to_string(reading.blocksRead) + " of " +
                       countText(reading.blocks, "block", "blocks") + " read, " +
                       std::to_string(reading.keysUsed) + " of " +
                       countText(reading.keys, "key", "keys") + " used";
            }
            out_ += "      " + emphasized(end, Emphasis::dim, style_) + "\n";
        }
    }

    const ControllerSnapshot& controller_;
    const TextStyle& style_;
    std::size_t width_;
    bool verbose_;
    std::string out_;
};

} // namespace

std::string machineText(const Snapshot& snapshot, const TextStyle& style, bool verbose) {
    std::string text = emphasized(machineTitle(snapshot), Emphasis::bold, style);
    if (verbose && !snapshot.machineSource.empty()) {
        text += emphasized(" (told by " + printable(snapshot.machineSource) + ")", Emphasis::dim,
                           style);
    }
    text += "\n";
    const auto width = static_cast<std::size_t>(style.width);
    for (const Finding& finding : snapshot.findings) {
        const bool isNote = finding.severity == Severity::note;
        text += emphasized((isNote ? "  " : "! ") +
                               foldedWords(printable(finding.summary), 2, 2, width),
                           finding.severity == Severity::error ? Emphasis::bad
                           : isNote                            ? Emphasis::dim
                                                               : Emphasis::warning,
                           style) +
                "\n";
    }
    for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
        text += i > 0 ? "\n" : "";
        text += MachineWriter(snapshot.details[i], style, verbose).write();
    }
    if (snapshot.details.empty()) {
        text += "No RAID controller\n";
    }
    if (verbose && !snapshot.coreMessages.empty()) {
        text += emphasized("\nMessages of the core", Emphasis::heading, style) + "\n";
        for (const std::string& message : snapshot.coreMessages) {
            text += "  " + foldedWords(printable(message), 2, 2, width) + "\n";
        }
    }
    return text;
}

} // namespace zolex::companion
