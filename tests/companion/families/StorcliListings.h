#pragma once

#include "companion/families/storcli/Storcli.h"
#include "companion/families/storcli/StorcliDecode.h"
#include "companion/json/MachinePieces.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace zolex::companion::test {

using Lines = std::vector<std::string>;

inline std::string listing(const std::string& name) {
    return zolex::test::readTestData(name);
}

/// The text with each `from` replaced; a failure when there is none.
inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    for (; at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// The same of the first alone.
inline std::string replacedOnce(std::string text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

/// What the utility prints, and how it ends, call by call.
struct ListedController {
    std::map<std::string, ChildResult> answers;
    std::vector<std::string> calls;

    ListedController() {
        answer("show J", overview({{"0", "MegaRAID N3916-16i 8GB"}}));
        answer("/c0 show all J", listing("storcli-c0-show-all.json"));
        answer("/c0/eall/sall show all J", listing("storcli-c0-eall-sall-show-all.json"));
        answer("/c0/vall show all J", listing("storcli-c0-vall-show-all.json"));
        answer("/c0/fall show J", listing("storcli-c0-fall-show.json"));
    }

    static std::string overview(const std::vector<std::pair<std::string, std::string>>& listed) {
        std::string rows;
        for (const auto& [number, model] : listed) {
            rows += (rows.empty() ? "" : ",") + std::string("{\"Ctl\":") + number +
                    ",\"Model\":\"" + model + "\"}";
        }
        return "{\"Controllers\":[{\"Command Status\":{\"CLI Version\":\"007.2507\",\"Status\":"
               "\"Success\",\"Description\":\"None\"},\"Response Data\":{\"Number of "
               "Controllers\":" +
               std::to_string(listed.size()) + ",\"System Overview\":[" + rows + "]}}]}\n";
    }

    void answer(const std::string& call, std::string output, std::uint32_t exitCode = 0) {
        answers["STORCLI " + call] = {ChildOutcome::ended, exitCode, std::move(output)};
    }

    /// Edits the answer to a call.
    void edit(const std::string& call, const std::string& from, const std::string& to) {
        std::string& output = answers.at("STORCLI " + call).output;
        output = replaced(std::move(output), from, to);
    }
    void editOnce(const std::string& call, const std::string& from, const std::string& to) {
        std::string& output = answers.at("STORCLI " + call).output;
        output = replacedOnce(std::move(output), from, to);
    }

    FamilyCapture capture() {
        zolex::test::FakePlatform platform;
        platform.respond = [this](const std::string& line) {
            calls.push_back(line);
            std::string call = line;
            if (call.ends_with(" nolog")) {
                if (refusesNoLog) {
                    return ChildResult{ChildOutcome::ended, refusalCode,
                                       "{\"Controllers\":[{\"Command Status\":{\"Status\":"
                                       "\"Failure\",\"Description\":\"Un-supported Command\"}}]}"};
                }
                call.resize(call.size() - 6);
            }
            const auto found = answers.find(call);
            return found == answers.end() ? ChildResult{} : found->second;
        };
        FamilyRequest request;
        request.program = program;
        return Storcli().capture(platform, request);
    }
    /// The one controller.
    FamilyController controller() {
        FamilyCapture captured = capture();
        EXPECT_EQ(captured.controllers.size(), 1U);
        return captured.controllers.empty() ? FamilyController()
                                            : std::move(captured.controllers.front());
    }

    bool refusesNoLog = false;
    std::string program; ///< as in FamilyRequest
    std::uint32_t refusalCode = 255;
};

inline std::string word(DriveState state) {
    return std::string(driveStateWord(state));
}

inline std::string word(Health health) {
    return health == Health::ok         ? "ok"
           : health == Health::warning  ? "warning"
           : health == Health::critical ? "critical"
                                        : "unknown";
}

inline std::string word(const std::optional<std::uint64_t>& number) {
    return number ? std::to_string(*number) : "-";
}

/// Everything that is told of a drive.
inline std::string describe(const DriveFacts& drive) {
    std::string text =
        drive.location + " " + drive.serialNumber + " \"" + drive.manufacturer + "\" \"" +
        drive.model + "\" " + drive.revision + " " + drive.protocol + " " + drive.mediaType + " " +
        word(drive.capacityBytes) +
        (drive.capacityTolerance > 0 ? "+" + std::to_string(drive.capacityTolerance) : "") +
        " of " + (drive.blockSizeBytes ? std::to_string(*drive.blockSizeBytes) : "-") + " " +
        drive.reportedState + " " + word(drive.state) + " " + word(drive.health) + " errors " +
        word(drive.mediaErrorCount) + " " + word(drive.otherErrorCount) + " " +
        word(drive.predictedFailureCount) + " C " +
        (drive.temperatureCelsius ? std::to_string(*drive.temperatureCelsius) : "-") + " wwn " +
        drive.wwn;
    for (const std::string& array : drive.covers) {
        text += " covers " + array;
    }
    text += drive.hotspare == HotspareKind::global      ? " global"
            : drive.hotspare == HotspareKind::dedicated ? " dedicated"
                                                        : "";
    text += drive.isForeign ? " is foreign" : "";
    return text + (drive.barred.empty() ? "" : " barred: " + drive.barred);
}

inline std::string describe(const LogicalDriveFacts& volume) {
    std::string spans;
    for (const std::vector<std::string>& span : volume.spans) {
        spans += "(";
        for (const std::string& member : span) {
            spans += (spans.back() == '(' ? "" : " ") + member;
        }
        spans += ")";
    }
    return volume.id + " \"" + volume.name + "\" in " + volume.array + " " + volume.raidType + " " +
           spans + " " + word(volume.capacityBytes) +
           (volume.capacityTolerance > 0 ? "+" + std::to_string(volume.capacityTolerance) : "") +
           " strip " + word(volume.stripSizeBytes) + " " + volume.writeCache + " " +
           volume.readCache + " " + volume.reportedState + " " + word(volume.health) + " " +
           volume.device;
}

template <typename Each>
Lines describeAll(const std::vector<Each>& all) {
    Lines lines;
    for (const Each& each : all) {
        lines.push_back(describe(each));
    }
    return lines;
}

inline Lines findingsOf(const std::vector<FamilyFinding>& findings) {
    Lines lines;
    for (const FamilyFinding& finding : findings) {
        lines.push_back(finding.code + " " + finding.summary);
    }
    return lines;
}

} // namespace zolex::companion::test
