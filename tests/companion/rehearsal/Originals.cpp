#include "companion/rehearsal/Originals.h"

#include "companion/facts/FactsReader.h"
#include "companion/facts/VirtualListings.h"

#include <algorithm>

namespace zolex::companion::test {

namespace {

std::size_t below(std::mt19937& random, std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
}

/// Most of these are free.
std::string anyDrive(const Facts& facts, std::mt19937& random) {
    std::vector<std::string> free;
    for (const DriveFacts& drive : facts.drives) {
        if (drive.state == DriveState::free) {
            free.push_back(drive.location);
        }
    }
    if (free.empty() || below(random, 8) == 0) {
        return facts.drives.empty() ? "0:0"
                                    : facts.drives[below(random, facts.drives.size())].location;
    }
    return free[below(random, free.size())];
}

/// "0:1" as "0", "1"; "3" as it is.
void addPlace(std::vector<std::string>& line, const std::string& location) {
    const std::size_t colon = location.find(':');
    line.push_back(location.substr(0, colon));
    if (colon != std::string::npos) {
        line.push_back(location.substr(colon + 1));
    }
}

std::vector<std::string> megacliLine(const Facts& facts, std::mt19937& random) {
    const std::string drive = anyDrive(facts, random);
    switch (below(random, 8)) {
    case 0:
        return {"-CfgLdDel", "-L" + std::to_string(below(random, 3)), "-a0"};
    case 1:
        return {"-PDHSP", "{", "-Set", "}", "-PhysDrv[", drive, "]", "-a0"};
    case 2:
        return {"-PDHSP", "-Rmv", "-PhysDrv[", drive, "]", "-a0"};
    case 3:
        return {below(random, 4) == 0 ? "-CFGCLR" : "-CfgClr2", "-A0", "-SILENT"};
    case 4:
        return {"-CFGFOREIGN", "-CLEAR", "-A0", "-SILENT"};
    case 5:
        return {"-CfgLdAdd", "R1",     "[",  drive + "," + anyDrive(facts, random),
                "]",         "-sz100", "-a0"};
    default:
        return {"-CfgLdAdd", "R0", "[", drive, "]", "WB", "-strpsz", "128", "-a0"};
    }
}

std::vector<std::string> confLine(const Facts& facts, std::mt19937& random) {
    std::vector<std::string> line;
    const std::string volume = std::to_string(1 + below(random, 3));
    switch (below(random, 7)) {
    case 0:
        return {"DELETE", "1", "LOGICALDRIVE", volume, "NOPROMPT"};
    case 1:
        return {"SETCACHE", "1", "LOGICALDRIVE", volume, "wt", "NOPROMPT"};
    case 2:
        line = {"SETSTATE", "1", "DEVICE"};
        addPlace(line, anyDrive(facts, random));
        line.push_back(below(random, 2) == 0 ? "HSP" : "RDY");
        return line;
    case 3:
        return {"SETCONFIG", below(random, 4) == 0 ? "1" : "2", "DEFAULT", "NOPROMPT"};
    default:
        line = {"CREATE", "1", "LOGICALDRIVE", "MAX", below(random, 2) == 0 ? "1" : "VOLUME"};
        addPlace(line, anyDrive(facts, random));
        addPlace(line, anyDrive(facts, random));
        line.emplace_back("NOPROMPT");
        return line;
    }
}

std::vector<std::string> qtcsendLine(const Facts& facts, std::mt19937& random) {
    std::vector<std::string> line;
    switch (below(random, 6)) {
    case 0:
        line = {"SETSTATE", "1"};
        addPlace(line, anyDrive(facts, random));
        line.emplace_back("HSP");
        return line;
    case 1:
        return {"SETCONFIG", below(random, 4) == 0 ? "1" : "2", "DEFAULT", "NOPROMPT"};
    case 2:
        return {"CREATE", "1", "LOGICALDRIVE", below(random, 2) == 0 ? "A" : "B",
                "50",     "0", "NOPROMPT"};
    default:
        line = {"CREATE", "1", "LOGICALDRIVE", "NEWARRAY", below(random, 2) == 0 ? "100" : "MAX",
                "0"};
        addPlace(line, anyDrive(facts, random));
        line.emplace_back("NOPROMPT");
        return line;
    }
}

std::vector<std::string> cfggenLine(const Facts& facts, std::mt19937& random) {
    const std::string drive = anyDrive(facts, random);
    switch (below(random, 5)) {
    case 0:
        return {"0", "HOTSPARE", drive};
    case 1:
        return {below(random, 3) == 0 ? "0" : "1", "DELETE", "NOPROMPT"};
    default:
        return {"0", "CREATE", "IM", "MAX", drive, anyDrive(facts, random), "NOPROMPT"};
    }
}

std::vector<std::string> hyperwinLine(std::mt19937& random) {
    const std::vector<std::vector<std::string>> lines = {
        {"/AM", "/S"}, {"/AS64", "/S"}, {"/AS64", "/!", "/S"}, {"/Ea"}, {"/OW"}, {"/OWR"}};
    return lines[below(random, lines.size())];
}

} // namespace

std::vector<std::string> listingCommandsOf(const std::string& utility) {
    if (utility == "MEGACLI") {
        return {"-LdPdInfo -a0", "-pdList -a0", "-adpallinfo -a0"};
    }
    if (utility == "HYPERWIN") {
        return {"/L /D00", "/L /D10", "/L /D20"};
    }
    return {utility.starts_with("CFGGEN") ? "0 DISPLAY" : "GETCONFIG 1 AL"};
}

ControllerSnapshot originalOf(zolex_sim::Server& server) {
    const zolex_sim::Controller& controller = server.controllers.front();
    ControllerSnapshot original;
    original.number = 1;
    original.utility = controller.identity.utility;
    original.model = controller.identity.model;
    original.adapter =
        original.utility == "MEGACLI" || original.utility.starts_with("CFGGEN") ? 0 : 1;
    for (const std::string& command : listingCommandsOf(original.utility)) {
        original.commands.push_back({"UTIL.BAT " + original.utility + " " + command});
    }
    original.listings = listingsOf(server, controller);
    original.facts = readFacts(typeOf(controller), original.listings);
    return original;
}

MadeCopy copyOf(const ControllerSnapshot& original, const zolex_sim::Controller& controller) {
    return copyController(original, typeOf(controller));
}

std::vector<std::string> randomLine(const Facts& facts, const std::string& utility,
                                    std::mt19937& random) {
    std::vector<std::string> line = utility == "MEGACLI"            ? megacliLine(facts, random)
                                    : utility == "QTCSEND"          ? qtcsendLine(facts, random)
                                    : utility == "HYPERWIN"         ? hyperwinLine(random)
                                    : utility.starts_with("CFGGEN") ? cfggenLine(facts, random)
                                                                    : confLine(facts, random);
    line.insert(line.begin(), {"UTIL.BAT", utility});
    return line;
}

std::vector<std::string> layoutFacts(const Facts& facts) {
    std::vector<std::string> lines;
    for (const DriveFacts& drive : facts.drives) {
        lines.push_back(drive.location + " " + drive.reportedState + " " +
                        std::to_string(static_cast<int>(drive.state)) + " " +
                        std::to_string(static_cast<int>(drive.health)) + " " +
                        std::to_string(static_cast<int>(drive.hotspare)) +
                        (drive.isForeign ? " foreign" : ""));
    }
    for (const LogicalDriveFacts& volume : facts.logicalDrives) {
        std::string line = "LD " + volume.id + " " + volume.raidType + " " +
                           std::to_string(volume.capacityBytes.value_or(0)) + " " +
                           std::to_string(volume.stripSizeBytes.value_or(0)) + " " +
                           volume.writeCache + " " + volume.readCache + " " + volume.reportedState +
                           " " + std::to_string(static_cast<int>(volume.health));
        for (const std::vector<std::string>& span : volume.spans) {
            line += " (";
            for (const std::string& member : span) {
                line += " " + member;
            }
            line += " )";
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace zolex::companion::test
