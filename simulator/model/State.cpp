#include "model/State.h"

#include "model/Definition.h"
#include "model/Operations.h"
#include "model/StorcliFields.h"

#include <utility>

namespace zolex_sim {
namespace {

constexpr int stateFormat = 1;

Json spansJson(const Array& array) {
    Json spans = Json::array();
    for (const std::vector<DriveLocation>& span : array.spans) {
        Json members = Json::array();
        for (const DriveLocation& location : span) {
            members.push_back(toText(location));
        }
        spans.push_back(std::move(members));
    }
    return spans;
}

Json logicalDriveJson(const Controller& controller, std::size_t place) {
    const LogicalDrive& drive = controller.logicalDrives[place];
    Json json;
    if (controller.numberOf(place) != place) {
        json["number"] = controller.numberOf(place);
    }
    json["array"] = drive.array;
    json["level"] = rulesOf(drive.level).name;
    json["sizeMB"] = drive.sizeMb;
    json["stripeKB"] = drive.stripeKb;
    json["writePolicy"] = policyWord(drive.writePolicy);
    json["readPolicy"] = policyWord(drive.readPolicy);
    json["name"] = drive.name;
    if (drive.batteryProtected) {
        json["batteryProtected"] = true;
    }
    if (drive.partitioned) {
        json["partitioned"] = true;
    }
    return json;
}

Json controllerJson(const Controller& controller) {
    Json drives = Json::object();
    for (const Drive& drive : controller.drives) {
        drives[toText(drive.location)] = statusWord(drive.status);
    }
    Json arrays = Json::array();
    for (const Array& array : controller.arrays) {
        arrays.push_back(spansJson(array));
    }
    Json logicalDrives = Json::array();
    for (std::size_t place = 0; place < controller.logicalDrives.size(); ++place) {
        logicalDrives.push_back(logicalDriveJson(controller, place));
    }
    Json json;
    json["drives"] = std::move(drives);
    json["arrays"] = std::move(arrays);
    json["logicalDrives"] = std::move(logicalDrives);
    return json;
}

bool isMemberStatus(DriveStatus status) {
    return status == DriveStatus::online || status == DriveStatus::rebuild ||
           status == DriveStatus::failed;
}

void readDriveStatuses(Fields& fields, Controller& controller) {
    fields.object("drives", true, [&](Fields& drives) {
        for (Drive& drive : controller.drives) {
            drive.status = drives.word<DriveStatus>(toText(drive.location), statusNamed);
        }
    });
}

/// Every member exists, can be a member and belongs to one array only.
bool checkMembers(const Controller& controller, const Array& array, const std::string& path,
                  Problem& problem) {
    std::size_t members = 0;
    for (const std::vector<DriveLocation>& span : array.spans) {
        for (const DriveLocation& location : span) {
            ++members;
            const Drive* drive = controller.driveAt(location);
            if (drive == nullptr) {
                problem.report(path + ": there is no drive at " + toText(location));
            } else if (!isMemberStatus(drive->status) || controller.placeOf(location)) {
                problem.report(path + ": the drive at " + toText(location) +
                               " cannot belong to the array");
            }
        }
    }
    if (members == 0) {
        problem.report(path + ": the array has no drive");
    }
    return !problem.found();
}

void readArrays(Fields& fields, Controller& controller) {
    fields.list("arrays", [&](const Json& item, const std::string& path) {
        const Array array{readSpans(item, path, fields.problem())};
        if (!fields.problem().found() && checkMembers(controller, array, path, fields.problem())) {
            controller.arrays.push_back(array);
        }
    });
    for (const Drive& drive : controller.drives) {
        const bool member = controller.placeOf(drive.location).has_value();
        if (!member &&
            (drive.status == DriveStatus::online || drive.status == DriveStatus::rebuild)) {
            fields.complain("drives", "the drive at " + toText(drive.location) +
                                          " is in use but belongs to no array");
        }
    }
}

constexpr int greatestNumber = 65535; ///< of a logical drive

/// The number of the next logical drive; numbers rise.
std::optional<std::size_t> readNumber(Fields& fields, const Controller& controller) {
    const std::size_t place = controller.logicalDrives.size();
    const std::size_t least = place == 0 ? 0 : controller.numberOf(place - 1) + 1;
    if (!fields.has("number")) {
        if (least > place) {
            fields.complain("number", "is missing");
        }
        return std::nullopt;
    }
    return static_cast<std::size_t>(
        fields.number("number", static_cast<std::int64_t>(least), greatestNumber));
}

LogicalDrive readLogicalDrive(Fields& fields, const Controller& controller) {
    LogicalDrive drive;
    if (controller.arrays.empty()) {
        fields.complain("array", "there are no arrays");
        return drive;
    }
    drive.array = static_cast<std::size_t>(
        fields.number("array", 0, static_cast<std::int64_t>(controller.arrays.size()) - 1));
    drive.number = readNumber(fields, controller);
    const LogicalDriveFields found = readLogicalDriveFields(fields);
    if (!found.sizeMb || !found.stripeKb || !found.writePolicy || !found.readPolicy) {
        fields.complain("sizeMB", "size, stripe or policies are missing");
    }
    fields.finish();
    if (fields.problem().found()) {
        return drive;
    }
    drive.level = found.level;
    drive.sizeMb = *found.sizeMb;
    drive.stripeKb = *found.stripeKb;
    drive.writePolicy = *found.writePolicy;
    drive.readPolicy = *found.readPolicy;
    drive.name = found.name;
    drive.batteryProtected = found.batteryProtected.value_or(false);
    drive.partitioned = found.partitioned;
    std::optional<Refusal> refused =
        checkShape(controller, drive.level, controller.arrays[drive.array].spans);
    if (!refused) {
        refused = checkStripe(controller, drive.stripeKb);
    }
    if (refused) {
        fields.complain("level", refused->reason);
    } else if (drive.sizeMb > controller.roomLeft(drive.array, drive.level)) {
        fields.complain("sizeMB", "does not fit the array");
    }
    return drive;
}

void readLogicalDrives(Fields& fields, Controller& controller) {
    std::vector<bool> inUse(controller.arrays.size(), false);
    fields.list("logicalDrives", [&](const Json& item, const std::string& path) {
        Fields logicalDrive(item, path, fields.problem());
        LogicalDrive drive = readLogicalDrive(logicalDrive, controller);
        if (!fields.problem().found()) {
            inUse[drive.array] = true;
            controller.logicalDrives.push_back(std::move(drive));
        }
    });
    if (controller.logicalDrives.size() >
        static_cast<std::size_t>(controller.identity.maxLogicalDrives)) {
        fields.complain("logicalDrives", "there are too many");
    }
    for (const bool used : inUse) {
        if (!used) {
            fields.complain("arrays", "an array holds no logical drive");
        }
    }
}

void readControllers(Fields& fields, Server& server) {
    std::size_t read = 0;
    fields.list("controllers", [&](const Json& item, const std::string& path) {
        Fields state(item, path, fields.problem());
        if (read == server.controllers.size()) {
            fields.complain("controllers", "there are more than the definition has");
            return;
        }
        Controller& controller = server.controllers[read++];
        controller.arrays.clear();
        controller.logicalDrives.clear();
        readDriveStatuses(state, controller);
        if (!state.problem().found()) {
            readArrays(state, controller);
        }
        if (!state.problem().found()) {
            readLogicalDrives(state, controller);
        }
        state.finish();
    });
    if (read < server.controllers.size()) {
        fields.complain("controllers", "there are fewer than the definition has");
    }
}

void readStorcliControllers(Fields& fields, Server& server) {
    std::size_t read = 0;
    fields.list("storcli", [&](const Json& item, const std::string& path) {
        Fields state(item, path, fields.problem());
        if (read == server.storcliControllers.size()) {
            fields.complain("storcli", "there are more than the definition has");
            return;
        }
        storcli::readState(state, server.storcliControllers[read++]);
        state.finish();
    });
    if (read < server.storcliControllers.size()) {
        fields.complain("storcli", "there are fewer than the definition has");
    }
}

/// Faults may be added to a definition later, or taken out: counts that are missing are 0.
void readFaults(Fields& fields, Server& server) {
    std::size_t read = 0;
    fields.list("faultsSeen", [&](const Json& item, const std::string& path) {
        if (!item.is_number_unsigned() || item.get<std::uint64_t>() > 1'000'000) {
            fields.problem().report(path + ": is no count");
        } else if (read < server.faults.size()) {
            server.faults[read++].seen = static_cast<int>(item.get<std::uint64_t>());
        }
    });
}

} // namespace

std::string writeState(const Server& server) {
    Json controllers = Json::array();
    for (const Controller& controller : server.controllers) {
        controllers.push_back(controllerJson(controller));
    }
    Json faults = Json::array();
    for (const Fault& fault : server.faults) {
        faults.push_back(fault.seen);
    }
    Json state;
    state["format"] = stateFormat;
    state["controllers"] = std::move(controllers);
    for (const storcli::Controller& controller : server.storcliControllers) {
        state["storcli"].push_back(storcli::stateJson(controller));
    }
    state["faultsSeen"] = std::move(faults);
    return state.dump(2) + "\n";
}

void readState(std::string_view text, Server& server, Problem& problem) {
    const Json json = parseJson(text, problem);
    if (problem.found()) {
        return;
    }
    Fields fields(json, "", problem);
    fields.smallNumber("format", stateFormat, stateFormat);
    readControllers(fields, server);
    if (!problem.found()) {
        readStorcliControllers(fields, server);
    }
    readFaults(fields, server);
    fields.finish();
}

} // namespace zolex_sim
