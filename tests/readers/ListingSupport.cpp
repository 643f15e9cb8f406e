#include "readers/ListingSupport.h"

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/ConfigurationReader.h"
#include "readers/MegaCliListings.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

namespace zolex::test {

namespace {

using Lines = std::vector<std::string>;

std::string text(const CString& string) {
    return std::string(string.view());
}

std::string number(std::int64_t value) {
    return std::to_string(value);
}

std::string at(std::int32_t channel, std::int32_t id) {
    return number(channel) + ":" + number(id);
}

std::string state(const CString& word, const CString& derived) {
    return word.isEmpty() && derived.isEmpty() ? "" : " " + text(word) + "/" + text(derived);
}

std::string controllerLine(const RAIDController& controller) {
    std::string line = "controller";
    const auto add = [&line](const char* name, const std::string& value) {
        line += std::string(" ") + name + "=" + value;
    };
    const auto addVersion = [&add](const char* name, const std::optional<CString>& version) {
        if (version) {
            add(name, text(*version));
        }
    };
    if (controller.subtype() != subtypeNotSet) {
        add("subtype", number(controller.subtype()));
    }
    if (controller.slotNumber() != -1) {
        add("slot", number(controller.slotNumber()));
    }
    if (controller.busNumber() != -1) {
        add("bus", number(controller.busNumber()));
    }
    addVersion("bios", controller.biosVersion());
    addVersion("firmware", controller.firmwareVersion());
    addVersion("driver", controller.driverVersion());
    return line;
}

std::string driveLine(const RAIDController& controller, std::int32_t channel, std::int32_t id) {
    const RaidDisk& record = controller.driveRecord(channel, id);
    std::string line = "drive " + at(channel, id) + " " + number(controller.size(channel, id));
    if (controller.targetId(channel, id) != -1) {
        line += " t" + number(controller.targetId(channel, id));
    }
    if (controller.driveType(channel, id)) {
        line += " type " + text(*controller.driveType(channel, id));
    }
    if (record.sizeMb != -1) {
        line += " [" + at(record.channelNumber, record.id);
        line += record.diskNumber == -1 ? "" : ":" + number(record.diskNumber);
        line += " " + number(record.sizeMb) + "]";
    }
    line += record.serialNumber.isEmpty() ? "" : " " + text(record.serialNumber);
    line += state(record.state, record.derivedState);
    line += record.reportedLocation.isEmpty() ? "" : " in " + text(record.reportedLocation);
    line += controller.isUsed(channel, id) ? " used" : "";
    return line;
}

void addLayout(const RAIDConfiguration& configuration, Lines& lines) {
    lines.push_back("settings rebuild=" + number(configuration.rebuildRate) +
                    " readahead=" + number(configuration.readAhead) +
                    " stripe=" + number(configuration.stripeSize));
    char letter = 'A';
    for (const RaidArray& array : configuration.arrays()) {
        std::string line = std::string("array ") + letter++ + ":";
        for (const DrivePosition& drive : array.drives()) {
            line += " " + at(drive.channel, drive.id);
        }
        for (const std::int32_t driveNumber : array.driveNumbers()) {
            line += " #" + number(driveNumber);
        }
        lines.push_back(line);
    }
    for (const LogicalDrive& drive : configuration.logicalDrives()) {
        lines.push_back("logical level=" + number(drive.raidLevel) +
                        " size=" + number(drive.sizeMb) + " array=" + number(drive.arrayIndex) +
                        " cache=" + number(drive.writeCache) +
                        state(drive.state, drive.derivedState));
    }
    for (const Hotspare& hotspare : configuration.hotspares()) {
        lines.push_back("spare " + at(hotspare.channelNumber, hotspare.id) +
                        (hotspare.diskNumber == -1 ? "" : " disk " + number(hotspare.diskNumber)));
    }
}

Lines describe(const RAIDController& controller) {
    Lines lines = {controllerLine(controller)};
    for (std::int32_t channel = 0; channel < RAIDController::channels; ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            if (controller.size(channel, id) != RAIDController::noDrive ||
                controller.isUsed(channel, id)) {
                lines.push_back(driveLine(controller, channel, id));
            }
        }
    }
    if (controller.captured() != nullptr) {
        addLayout(*controller.captured(), lines);
    }
    return lines;
}

/// The lines of `a` that `b` has not (as often), each with `mark` in front of it.
void addMissing(Lines a, Lines b, const char* mark, Lines& difference) {
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    Lines missing;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(missing));
    for (const std::string& line : missing) {
        difference.push_back(mark + line);
    }
}

Lines differenceOf(const ListingResult& whole, const ListingResult& changed) {
    Lines difference;
    if (whole.read != changed.read) {
        difference.emplace_back(changed.read ? "true" : "false");
    }
    addMissing(whole.lines, changed.lines, "-", difference);
    addMissing(changed.lines, whole.lines, "+", difference);
    return difference;
}

/// `change` makes of the listing's lines and the number of one of them, from 0, other lines.
template <typename Change>
void expectLineEffects(const ListingOptions& options, const std::string& listing,
                       const std::vector<LineEffect>& effects, Change change) {
    const Lines lines = splitLines(listing);
    const ListingResult whole = readListing(options, listing);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto effect =
            std::find_if(effects.begin(), effects.end(),
                         [i](const LineEffect& candidate) { return candidate.line == i + 1; });
        const ListingResult changed = readListing(options, joinLines(change(lines, i)));
        Lines expected = effect == effects.end() ? Lines{} : effect->difference;
        Lines difference = differenceOf(whole, changed);
        std::sort(expected.begin(), expected.end());
        std::sort(difference.begin(), difference.end());
        EXPECT_EQ(difference, expected) << "line " << i + 1 << ": " << lines[i];
    }
}

} // namespace

std::vector<std::string> ListingResult::of(const std::string& word) const {
    std::vector<std::string> found;
    for (const std::string& line : lines) {
        if (line.rfind(word + " ", 0) == 0) {
            found.push_back(line.substr(word.size() + 1));
        }
    }
    return found;
}

std::string ListingResult::summary() const {
    const auto count = [this](const char* word) {
        return number(static_cast<int>(of(word).size()));
    };
    return std::string(read ? "true" : "false") + " d=" + count("drive") + " a=" + count("array") +
           " l=" + count("logical") + " s=" + count("spare");
}

ListingResult readListing(const ListingOptions& options, const std::vector<std::string>& outputs) {
    FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(options.verbosity);
    RAIDController controller;
    controller.setType(options.type);
    const std::unique_ptr<ConfigurationReader> reader =
        findReader(options.type)
            ->create({.layout = options.capture, .dumpRecords = options.debug},
                     application.report());
    ListingResult result;
    result.read = reader->readConfiguration(controller, outputs);
    result.output = platform.consoleFake.takeOutput();
    result.lines = describe(controller);
    EXPECT_EQ(platform.consoleFake.error, "");
    return result;
}

ListingResult readListing(const ListingOptions& options, const std::string& output) {
    return readListing(options, std::vector<std::string>{output});
}

std::string DeviceBlock::drive() const {
    std::string line = "drive " + position + " " + size + " [" + position + " " + size + "]";
    for (const std::string& part : {serialNumber, state}) {
        line += part.empty() ? "" : " " + part;
    }
    line += location.empty() ? "" : " in " + location;
    return line + (used ? " used" : "");
}

std::vector<LineEffect> effectsOfLostLines(const DeviceBlock& block, const DeviceLines& lines) {
    const std::string drive = "-" + block.drive();
    Lines gone = {drive};
    if (block.spare) {
        gone.push_back("-spare " + block.position);
    }
    DeviceBlock other = block;
    other.state.clear();
    other.used = true;
    Lines stateLost = gone;
    stateLost.push_back("+" + other.drive());
    // Without a size there is no drive, but a hot spare or a used position all the same.
    Lines sizeLost = {drive};
    if (block.used) {
        sizeLost.push_back("+drive " + block.position + " -1 " + block.serialNumber + " " +
                           block.state + " used");
    }
    std::vector<LineEffect> effects = {{block.heading, gone},
                                       {block.heading + lines.kind, gone},
                                       {block.heading + lines.state, stateLost},
                                       {block.heading + lines.position, gone},
                                       {block.heading + lines.size, sizeLost}};
    other = block;
    other.serialNumber.clear();
    effects.push_back({block.heading + lines.serialNumber, {drive, "+" + other.drive()}});
    if (lines.location != 0) {
        other = block;
        other.location.clear();
        effects.push_back({block.heading + lines.location, {drive, "+" + other.drive()}});
    }
    return effects;
}

std::string withoutLineTraces(const std::string& output) {
    Lines kept = splitLines(output);
    kept.erase(std::remove_if(kept.begin(), kept.end(),
                              [](const std::string& line) {
                                  return line.find("Reader::nextLine") != std::string::npos;
                              }),
               kept.end());
    return joinLines(kept);
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t found = text.find(from);
    if (found == std::string::npos) {
        ADD_FAILURE() << "not in the text: " << from;
        return text;
    }
    return text.replace(found, from.size(), to);
}

void expectLostLines(const ListingOptions& options, const std::string& listing,
                     const std::vector<LineEffect>& effects) {
    expectLineEffects(options, listing, effects, [](Lines lines, std::size_t i) {
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(i));
        return lines;
    });
}

void expectDoubledLines(const ListingOptions& options, const std::string& listing,
                        const std::vector<LineEffect>& effects) {
    expectLineEffects(options, listing, effects, [](Lines lines, std::size_t i) {
        const std::string line = lines[i];
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(i), line);
        return lines;
    });
}

void expectCuts(const ListingOptions& options, const std::string& listing,
                const std::vector<CutResult>& results) {
    const ListingResult whole = readListing(options, listing);
    std::size_t wholeLines = 0;
    std::size_t row = 0;
    ListingResult expected;
    for (std::size_t bytes = 0; bytes <= listing.size(); ++bytes) {
        const ListingResult cut = readListing(options, listing.substr(0, bytes));
        if (bytes == 0 || listing[bytes - 1] == '\n') {
            wholeLines += bytes == 0 ? 0 : 1;
            row += row + 1 < results.size() && results[row + 1].lines == wholeLines ? 1 : 0;
            EXPECT_EQ(cut.summary(), results[row].summary) << wholeLines << " lines";
            expected = cut;
        }
        ASSERT_EQ(cut.lines, expected.lines) << bytes << " bytes";
        ASSERT_EQ(cut.read, expected.read) << bytes << " bytes";
    }
    EXPECT_EQ(row + 1, results.size());
    EXPECT_EQ(expected.lines, whole.lines);
}

void expectSameWithCrLf(const ListingOptions& options, const std::string& listing) {
    const ListingResult whole = readListing(options, listing);
    const ListingResult crLf = readListing(options, withCrLf(listing));
    EXPECT_EQ(crLf.read, whole.read);
    EXPECT_EQ(crLf.lines, whole.lines);
    EXPECT_EQ(crLf.output, whole.output);
}

} // namespace zolex::test
