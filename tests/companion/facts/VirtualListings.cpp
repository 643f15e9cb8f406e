#include "companion/facts/VirtualListings.h"

#include "driver/Application.h"
#include "model/Definition.h"
#include "model/Operations.h"
#include "readers/ConfigurationReader.h"
#include "roles/Roles.h"
#include "setup/Samples.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion::test {

namespace {

using zolex_sim::DriveLocation;
using zolex_sim::DriveStatus;
using zolex_sim::Generation;
using zolex_sim::RaidLevel;

constexpr std::uint64_t mb = 1024 * 1024;

bool isConf(const zolex_sim::Controller& controller) {
    return controller.identity.utility == "ARCCONF" || controller.identity.utility == "HRCONF";
}

std::string locationOf(const zolex_sim::Controller& controller, const DriveLocation& location) {
    const std::string& utility = controller.identity.utility;
    if (utility == "HYPERWIN") {
        return std::to_string(location.slot + 1);
    }
    return utility == "CFGGEN1.02.02" ? std::to_string(location.slot) : toText(location);
}

std::string stateOf(const zolex_sim::Controller& controller, const zolex_sim::Drive& drive) {
    const std::string& utility = controller.identity.utility;
    const bool isBlock = utility == "QTCSEND" || utility.starts_with("CFGGEN");
    switch (drive.status) {
    case DriveStatus::good:
        return "free";
    case DriveStatus::bad:
        return isBlock ? "missing" : "failed";
    case DriveStatus::failed:
        return "failed";
    case DriveStatus::foreign:
        return isConf(controller) ? "jbod" : utility == "MEGACLI" ? "foreign" : "free";
    case DriveStatus::hotspare:
    case DriveStatus::dedicated:
        return "hotspare";
    case DriveStatus::online:
        return "member";
    case DriveStatus::rebuild:
        return utility == "HYPERWIN" ? "member" : "rebuilding";
    case DriveStatus::jbod:
        return "jbod";
    case DriveStatus::missing:
        break; // is not listed
    }
    return "?";
}

std::string_view stateName(DriveState state) {
    constexpr std::array<std::string_view, 9> names = {"unknown",  "free",       "member",
                                                       "hotspare", "rebuilding", "failed",
                                                       "missing",  "foreign",    "jbod"};
    return names.at(static_cast<std::size_t>(state));
}

/// The drives that the listing shows of a member line in the newest ARCCONF are those that answer.
std::string memberName(const zolex_sim::Controller& controller, const DriveLocation& location) {
    const bool isNewest = controller.identity.generation == Generation::newest;
    const bool isMissing = controller.driveAt(location)->status == DriveStatus::failed;
    return isNewest && isMissing ? "Missing" : locationOf(controller, location);
}

std::string joined(const std::vector<std::vector<std::string>>& spans) {
    std::string text;
    for (const std::vector<std::string>& span : spans) {
        text += "[";
        for (const std::string& member : span) {
            text += (text.back() == '[' ? "" : " ") + member;
        }
        text += "]";
    }
    return text;
}

std::string membersOf(const zolex_sim::Controller& controller,
                      const zolex_sim::LogicalDrive& drive) {
    std::vector<std::vector<std::string>> spans;
    for (const std::vector<DriveLocation>& span : controller.arrays[drive.array].spans) {
        // Only MEGACLI tells spans.
        if (spans.empty() || controller.identity.utility == "MEGACLI") {
            spans.emplace_back();
        }
        for (const DriveLocation& location : span) {
            spans.back().push_back(memberName(controller, location));
        }
    }
    if (controller.identity.utility == "HYPERWIN") {
        std::sort(spans.front().begin(), spans.front().end()); // it tells no order
    }
    return joined(spans);
}

bool tellsStrip(const zolex_sim::Controller& controller, const zolex_sim::LogicalDrive& drive) {
    const std::string& utility = controller.identity.utility;
    const bool hasSegments = !controller.identity.conf.failover.empty() ||
                             controller.identity.generation == Generation::newest;
    if (utility == "HYPERWIN") {
        return drive.level == RaidLevel::raid0;
    }
    if (isConf(controller)) {
        return drive.level != RaidLevel::volume &&
               (drive.level != RaidLevel::raid1 || (hasSegments && utility == "ARCCONF"));
    }
    return !utility.starts_with("CFGGEN");
}

std::string raidTypeOf(RaidLevel level) {
    return level == RaidLevel::volume ? "None" : std::string(rulesOf(level).name);
}

std::string healthOf(const zolex_sim::Controller& controller,
                     const zolex_sim::LogicalDrive& drive) {
    switch (controller.stateOf(drive)) {
    case zolex_sim::LogicalDriveState::optimal:
        return "ok";
    case zolex_sim::LogicalDriveState::offline:
        return "critical";
    default:
        return "warning";
    }
}

std::string_view healthName(Health health) {
    constexpr std::array<std::string_view, 4> names = {"unknown", "ok", "warning", "critical"};
    return names.at(static_cast<std::size_t>(health));
}

std::string writeCacheOf(const zolex_sim::Controller& controller,
                         const zolex_sim::LogicalDrive& drive) {
    const std::string& utility = controller.identity.utility;
    if (utility.starts_with("CFGGEN")) {
        return "";
    }
    if (drive.writePolicy == zolex_sim::WritePolicy::writeThrough) {
        return "WriteThrough";
    }
    const bool hasSegments = !controller.identity.conf.failover.empty() ||
                             controller.identity.generation == Generation::newest;
    const bool tellsBattery = utility == "ARCCONF" && hasSegments;
    return utility == "MEGACLI" || (tellsBattery && drive.batteryProtected)
               ? "ProtectedWriteBack"
               : "UnprotectedWriteBack";
}

/// The drives in the order in which the utility lists them.
std::vector<zolex_sim::Drive> listedDrives(const zolex_sim::Controller& controller) {
    std::vector<zolex_sim::Drive> drives = controller.drives;
    if (controller.identity.utility == "QTCSEND") {
        std::stable_sort(drives.begin(), drives.end(), [](const auto& a, const auto& b) {
            return a.location.enclosure < b.location.enclosure;
        });
    } else if (controller.identity.utility == "HYPERWIN") {
        std::sort(drives.begin(), drives.end(),
                  [](const auto& a, const auto& b) { return a.location < b.location; });
    }
    return drives;
}

template <typename Value>
std::string optionalText(const std::optional<Value>& value) {
    return value ? std::to_string(*value) : "-";
}

std::size_t below(std::mt19937& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

bool oneIn(std::mt19937& random, std::size_t count) {
    return below(random, count) == 0;
}

} // namespace

zolex_sim::Server definedServer(std::string_view definition) {
    zolex_sim::Problem problem;
    zolex_sim::Server server = zolex_sim::readDefinition(definition, problem);
    EXPECT_FALSE(problem.found());
    return server;
}

zolex_sim::Server sampleServer(std::string_view name) {
    return definedServer(zolex_sim::sampleNamed(name)->definition);
}

std::int32_t typeOf(const zolex_sim::Controller& controller) {
    const std::string& utility = controller.identity.utility;
    return utility == "MEGACLI"         ? controller_type::megaRaid
           : utility == "ARCCONF"       ? controller_type::arcconf7
           : utility == "HRCONF"        ? controller_type::hrconf8
           : utility == "QTCSEND"       ? controller_type::family
           : utility == "CFGGEN"        ? controller_type::lsiSas
           : utility == "CFGGEN1.02.02" ? controller_type::lsiScsi
                                        : controller_type::lsiIde;
}

std::vector<std::string> listingsOf(zolex_sim::Server& server,
                                    const zolex_sim::Controller& controller) {
    const std::string& utility = controller.identity.utility;
    const std::vector<zolex_sim::Controller*> adapters = server.adaptersOf(utility);
    const auto adapter =
        std::find(adapters.begin(), adapters.end(), &controller) - adapters.begin();
    const std::string fromZero = std::to_string(adapter);
    const std::string fromOne = std::to_string(adapter + 1);
    std::vector<std::vector<std::string>> commands;
    if (utility == "MEGACLI") {
        commands = {{"-LdPdInfo", "-a" + fromZero},
                    {"-pdList", "-a" + fromZero},
                    {"-adpallinfo", "-a" + fromZero}};
    } else if (utility == "HYPERWIN") {
        commands = {{"/L", "/D00"}, {"/L", "/D10"}, {"/L", "/D20"}};
    } else if (utility.starts_with("CFGGEN")) {
        commands = {{fromZero, "DISPLAY"}};
    } else {
        commands = {{"GETCONFIG", fromOne, "AL"}};
    }
    std::vector<std::string> listings;
    for (std::vector<std::string>& command : commands) {
        command.insert(command.begin(), utility);
        listings.push_back(zolex_sim::playUtility(server, command).output);
    }
    return listings;
}

CoreReading readByCore(std::int32_t type, const std::vector<std::string>& listings) {
    zolex::test::FakePlatform platform;
    Application application(platform);
    CoreReading reading;
    reading.controller.setType(type);
    const auto reader = findReader(type)->create({.layout = true}, application.report());
    reading.isRead = reader->readConfiguration(reading.controller, listings);
    return reading;
}

std::vector<std::string> describe(const Facts& facts) {
    std::vector<std::string> lines;
    for (const DriveFacts& drive : facts.drives) {
        lines.push_back(
            "drive " + drive.location + " " + std::string(stateName(drive.state)) + " \"" +
            drive.manufacturer + "\" \"" + drive.model + "\" \"" + drive.revision + "\" \"" +
            drive.serialNumber + "\" " + drive.protocol + " MB " +
            (drive.capacityBytes ? std::to_string(*drive.capacityBytes / mb) : "-") + " errors " +
            optionalText(drive.mediaErrorCount) + " " + optionalText(drive.otherErrorCount) + " " +
            optionalText(drive.predictedFailureCount) + " C " +
            optionalText(drive.temperatureCelsius));
    }
    for (const LogicalDriveFacts& drive : facts.logicalDrives) {
        lines.push_back(
            "logical " + drive.id + " \"" + drive.name + "\" array " + drive.array + " " +
            drive.raidType + " " + joined(drive.spans) + " strip " +
            (drive.stripSizeBytes ? std::to_string(*drive.stripSizeBytes / 1024) : "-") + " " +
            (drive.writeCache.empty() ? "-" : drive.writeCache) + " " +
            std::string(healthName(drive.health)));
    }
    return lines;
}

std::vector<std::string> describe(const zolex_sim::Controller& controller) {
    const std::string& utility = controller.identity.utility;
    const bool isMega = utility == "MEGACLI";
    const bool isIde = utility == "HYPERWIN";
    const bool isQtcsend = utility == "QTCSEND";
    const bool isLater = isMega && controller.identity.generation == Generation::later;
    std::vector<std::string> lines;
    for (const zolex_sim::Drive& drive : listedDrives(controller)) {
        const bool answers =
            drive.status != DriveStatus::bad && drive.status != DriveStatus::failed;
        const bool isMember = controller.placeOf(drive.location).has_value();
        if (isIde && !answers && !isMember) {
            continue;
        }
        const std::int64_t sizeMb =
            isConf(controller) ? drive.nonCoercedSectors / zolex_sim::sectorsPerMb : drive.sizeMb;
        const int predicted = isMega ? drive.predictiveFailures : drive.predictiveFailures > 0;
        lines.push_back("drive " + locationOf(controller, drive.location) + " " +
                        (isIde && !answers ? "missing" : stateOf(controller, drive)) + " \"" +
                        (isIde ? "" : drive.vendor) + "\" \"" + (isIde ? "" : drive.model) +
                        "\" \"" + (isIde || isQtcsend ? "" : drive.revision) + "\" \"" +
                        (isIde ? "" : drive.serial) + "\" " + (isIde ? "PATA" : drive.interface) +
                        " MB " + (isIde ? "-" : std::to_string(sizeMb)) + " errors " +
                        (isMega ? std::to_string(drive.mediaErrors) : "-") + " " +
                        (isMega ? std::to_string(drive.otherErrors) : "-") + " " +
                        (isMega || isConf(controller) ? std::to_string(predicted) : "-") + " C " +
                        (isLater ? std::to_string(drive.temperature) : "-"));
    }
    const bool hasSegments = !controller.identity.conf.failover.empty() ||
                             controller.identity.generation == Generation::newest;
    const bool countsFromZero = isMega || isIde || (utility == "ARCCONF" && hasSegments);
    for (std::size_t i = 0; i < controller.logicalDrives.size(); ++i) {
        const zolex_sim::LogicalDrive& drive = controller.logicalDrives[i];
        const std::string array = isQtcsend ? std::string(1, static_cast<char>('A' + drive.array))
                                            : std::to_string(drive.array);
        lines.push_back(
            "logical " + std::to_string(countsFromZero ? i : i + 1) + " \"" +
            (isMega || isConf(controller) ? drive.name : "") + "\" array " + array + " " +
            raidTypeOf(drive.level) + " " + membersOf(controller, drive) + " strip " +
            (tellsStrip(controller, drive) ? std::to_string(drive.stripeKb) : "-") + " " +
            (writeCacheOf(controller, drive).empty() ? "-" : writeCacheOf(controller, drive)) +
            " " + healthOf(controller, drive));
    }
    return lines;
}

std::vector<std::string> brokenLines(const Facts& facts) {
    std::vector<std::string> lines;
    for (const BrokenBlock& block : facts.broken) {
        lines.push_back(std::to_string(block.place.listing) + ":" +
                        std::to_string(block.place.line) + " " + block.what);
    }
    return lines;
}

namespace {

/// A controller without drives of a utility, in one of its forms.
zolex_sim::Server bareServer(std::mt19937& random) {
    constexpr std::array<std::string_view, 8> names = {
        "single", "later", "arcconf", "arcconf", "hrconf", "qtcsend", "cfggen", "cfggen-scsi"};
    const bool isIde = oneIn(random, 12);
    zolex_sim::Server server =
        sampleServer(isIde ? "hyperwin" : names[below(random, names.size())]);
    server.controllers.resize(1);
    zolex_sim::Controller& controller = server.controllers.front();
    zolex_sim::ControllerIdentity& identity = controller.identity;
    if (identity.utility == "ARCCONF") {
        identity.generation = static_cast<Generation>(below(random, 3));
        identity.conf.failover = oneIn(random, 2) ? "" : "Enabled";
        identity.conf.expander = identity.generation != Generation::early && oneIn(random, 2);
    }
    controller.drives.clear();
    controller.arrays.clear();
    controller.logicalDrives.clear();
    return server;
}

/// The places that drives of the controller can have, each once, in any order.
std::vector<DriveLocation> placesOf(const zolex_sim::Controller& controller, std::mt19937& random) {
    const std::string& utility = controller.identity.utility;
    const bool isScsi = utility == "QTCSEND" || utility == "CFGGEN1.02.02";
    std::vector<std::optional<int>> groups = {1, 2, 3, 4};
    if (utility == "MEGACLI") {
        groups = {32, 64, 252, 8, 9};
        groups.resize(1 + below(random, 5));
        if (oneIn(random, 3)) {
            groups.emplace_back();
        }
    } else if (isConf(controller)) {
        groups = {0, 1, 2, 3, 4};
    } else if (utility == "CFGGEN1.02.02" || utility == "HYPERWIN") {
        groups = {1};
    } else if (utility == "CFGGEN") {
        groups = {0, 1, 2, 3, 4, 5};
    }
    const int last = utility == "HYPERWIN" ? 1 : isScsi ? 15 : 39;
    std::vector<DriveLocation> places;
    for (const std::optional<int>& group : groups) {
        for (int slot = 0; slot <= last; ++slot) {
            if (!isScsi || slot != controller.identity.block.initiatorId) {
                places.push_back({group, slot});
            }
        }
    }
    std::shuffle(places.begin(), places.end(), random);
    places.resize(std::min(places.size(), below(random, 48)));
    return places;
}

void addDrives(zolex_sim::Controller& controller, std::mt19937& random) {
    const std::string& utility = controller.identity.utility;
    constexpr std::array<std::int64_t, 5> sizes = {300, 17357, 70006, 953344, 1907200};
    int number = 0;
    for (const DriveLocation& place : placesOf(controller, random)) {
        zolex_sim::Drive drive;
        drive.location = place;
        drive.sizeMb = sizes[below(random, 2) == 0 ? 2 : below(random, sizes.size())];
        const std::int64_t gap = utility == "MEGACLI" ? 512 * zolex_sim::sectorsPerMb : 0;
        drive.rawSectors = drive.sizeMb * zolex_sim::sectorsPerMb + gap;
        drive.nonCoercedSectors = drive.rawSectors - gap;
        const bool isScsi = utility == "QTCSEND" || utility == "CFGGEN1.02.02";
        drive.interface = isScsi ? "SCSI" : oneIn(random, 4) ? "SATA" : "SAS";
        drive.transferSpeed = drive.interface + " 3.0 Gb/s";
        drive.vendor = oneIn(random, 3) ? "NV" : "NORVIK";
        drive.model = oneIn(random, 3) ? "NV 73455 S" : "NV73455S";
        drive.revision = "S527";
        drive.serial = "SN" + std::to_string(1000 + number);
        drive.deviceId = 8 + number++;
        drive.bay = {0, drive.deviceId};
        drive.mediaErrors = oneIn(random, 9) ? 12 : 0;
        drive.otherErrors = oneIn(random, 9) ? 3 : 0;
        drive.predictiveFailures = oneIn(random, 9) ? 2 : 0;
        drive.temperature = static_cast<int>(20 + below(random, 30));
        controller.drives.push_back(drive);
    }
}

/// Takes so many free drives of one protocol into a span.
std::vector<DriveLocation> takeFree(std::vector<DriveLocation>& free, std::size_t count) {
    std::vector<DriveLocation> taken(free.end() - static_cast<std::ptrdiff_t>(count), free.end());
    free.resize(free.size() - count);
    return taken;
}

void addLogicalDrives(zolex_sim::Controller& controller, std::mt19937& random) {
    std::vector<DriveLocation> free;
    for (const zolex_sim::Drive& drive : controller.drives) {
        free.push_back(drive.location);
    }
    const std::vector<RaidLevel>& levels = controller.identity.levels;
    const int stripeKb = static_cast<int>(64U << below(random, 2));
    for (std::size_t tries = below(random, 6); tries > 0; --tries) {
        zolex_sim::NewLogicalDrive request;
        request.level = levels[below(random, levels.size())];
        const zolex_sim::LevelRules& rules = rulesOf(request.level);
        const std::size_t spans = rules.spanned ? 2 + below(random, 2) : 1;
        const std::size_t members = static_cast<std::size_t>(rules.minDrives) +
                                    (rules.maxDrives == 0 ? below(random, 4) : 0);
        const bool takesAll = controller.identity.utility == "HYPERWIN";
        if (free.size() < spans * members || (takesAll && free.size() != members)) {
            continue;
        }
        // The one drive of such an array is the first to zolex, wherever it is.
        if (takesAll && members == 1 && free.front().slot == 1) {
            continue;
        }
        for (std::size_t i = 0; i < spans; ++i) {
            request.spans.push_back(takeFree(free, members));
        }
        request.stripeKb = controller.identity.utility == "QTCSEND" ? 16 : stripeKb;
        request.name = oneIn(random, 2) ? "data" : "";
        request.writePolicy = oneIn(random, 2) ? zolex_sim::WritePolicy::writeBack
                                               : zolex_sim::WritePolicy::writeThrough;
        request.batteryProtected = oneIn(random, 2);
        zolex_sim::createLogicalDrive(controller, request);
    }
    if (!free.empty() && oneIn(random, 2) && controller.identity.utility != "HYPERWIN") {
        zolex_sim::addSpares(controller, takeFree(free, 1));
    }
}

void spoilDrives(zolex_sim::Controller& controller, std::mt19937& random) {
    if (oneIn(random, 2)) {
        return;
    }
    for (zolex_sim::Drive& drive : controller.drives) {
        if (drive.status == DriveStatus::online && oneIn(random, 9)) {
            drive.status = oneIn(random, 2) ? DriveStatus::failed : DriveStatus::rebuild;
        } else if (drive.status == DriveStatus::good && oneIn(random, 5)) {
            constexpr std::array<DriveStatus, 3> spoilt = {DriveStatus::failed, DriveStatus::bad,
                                                           DriveStatus::foreign};
            drive.status = spoilt[below(random, spoilt.size())];
        }
    }
}

} // namespace

zolex_sim::Server randomServer(std::mt19937& random) {
    zolex_sim::Server server = bareServer(random);
    zolex_sim::Controller& controller = server.controllers.front();
    addDrives(controller, random);
    addLogicalDrives(controller, random);
    spoilDrives(controller, random);
    return server;
}

} // namespace zolex::companion::test
