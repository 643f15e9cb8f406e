#include "companion/commands/MachineAccess.h"

#include "companion/commands/RecordingOutput.h"
#include "companion/commands/UnaskedFamilies.h"
#include "companion/json/RecordingFile.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/ReadOnlyPlatform.h"
#include "companion/machine/System.h"
#include "companion/machine/UtilityPlatform.h"
#include "companion/recording/FolderEntries.h"
#include "companion/recording/RecordingPlatform.h"
#include "companion/recording/ReplayPlatform.h"
#include "companion/text/Timestamp.h"
#include "foundation/Text.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

using Look = std::function<int(Platform& machine, const Utilities& utilities)>;

constexpr std::string_view recordAgain = "record the machine again: zolexctl record -o FILE.zrec";

/// "server.zrec:3:17: "exit_code" is missing [ZR104]".
std::string placedText(const Finding& finding) {
    std::string text = printable(finding.file);
    if (finding.start.line > 0) {
        text +=
            ":" + std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column);
    }
    return text + ": " + printable(finding.summary) + " [" + finding.code + "]";
}

int failWithFinding(Context& context, const Finding& finding) {
    return failWith(context, placedText(finding),
                    finding.help.empty() ? recordAgain : std::string_view(finding.help.front()));
}

/// Tells notes and warnings; false after an error.
bool tellFindings(Context& context, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::error) {
            failWithFinding(context, finding);
            return false;
        }
        context.platform.console().writeError(findingLine(finding, context.errorStyle));
    }
    return true;
}

/// Whoever looks can do nothing else: only reading command lines go through, and no file but the
/// outputs is written.
int lookReading(Context& context, Platform& machine, const Utilities& utilities, const Look& look) {
    ReadOnlyPlatform reading(machine, {context.outputFile, context.machine.record});
    return look(reading, utilities);
}

int lookRecorded(Context& context, Platform& machine, const Utilities& utilities,
                 const Look& look) {
    int code = exit_code::notPossible;
    const auto bytes =
        makeRecording(context, {context.machine.record, "--record"},
                      recordingHeader(context, machine.localTime()), [&](RecordingWriter& writer) {
                          writer.keep(UtilitiesCall{utilities});
                          RecordingPlatform recorder(machine, writer);
                          code = lookReading(context, recorder, utilities, look);
                      });
    return bytes ? code : exit_code::notPossible;
}

int lookAt(Context& context, Platform& machine, const Utilities& utilities, const Look& look) {
    return context.machine.record.empty() ? lookReading(context, machine, utilities, look)
                                          : lookRecorded(context, machine, utilities, look);
}

bool endsInZrec(std::string_view name) {
    constexpr std::string_view ending = ".zrec";
    if (name.size() <= ending.size()) {
        return false;
    }
    const std::string_view end = name.substr(name.size() - ending.size());
    return std::equal(end.begin(), end.end(), ending.begin(),
                      [](char a, char b) { return text::lower(a) == b; });
}

Finding recordingFault(const std::string& file, std::string_view what) {
    Finding finding = problemFinding(problem::commandFailed, printable(what));
    finding.help = {std::string(recordAgain)};
    finding.file = file;
    return finding;
}

} // namespace

std::string findingLine(const Finding& finding, const TextStyle& style) {
    const bool isNote = finding.severity == Severity::note;
    const std::string word = isNote ? emphasized("note:", Emphasis::heading, style)
                                    : emphasized("warning:", Emphasis::warning, style);
    return word + " " + placedText(finding) + "\n";
}

RecordingHeader recordingHeader(Context& context, const LocalTime& now) {
    RecordingHeader header;
    header.toolVersion = ZOLEX_VERSION;
    header.argv = context.argv;
    header.madeAt = timestampOf(now);
    header.system = system::isWindows ? "windows" : "linux";
    return header;
}

Utilities utilitiesOf(Context& context) {
    Utilities utilities =
        findUtilities(systemFolders(context.platform.files(), context.machine.utilitiesFolder),
                      context.machine.utilities);
    utilities.leastDriveBytes = context.machine.leastDriveBytes;
    return utilities;
}

CaptureRequest captureRequest(Context& context, const Utilities* utilities) {
    CaptureRequest request;
    request.utilities = utilities;
    request.machineType = context.machine.machineType;
    request.serialNumber = context.machine.serialNumber;
    request.controllers = context.machine.controllers;
    request.limit = context.machine.captureLimit;
    request.asksFamilies = true;
    request.families = context.machine.families;
    if (context.machine.recording.empty()) {
        request.noteUses = context.noteUses;
        request.noteHolders = context.noteHolders;
    }
    // A recording answers at once.
    if (context.showsProgress && context.machine.recording.empty()) {
        request.progress = [&context](const std::string& text) {
            context.platform.console().writeError(
                emphasized(printable(text), Emphasis::dim, context.errorStyle) + "\n");
        };
    }
    return request;
}

std::optional<Recording> loadRecording(Context& context, const std::string& file) {
    RecordingReading reading = readRecordingFile(context.platform.files(), file);
    if (!tellFindings(context, reading.findings)) {
        return std::nullopt;
    }
    return std::move(reading.recording);
}

int lookAtMachine(Context& context, const Look& look) {
    if (context.machine.recording.empty()) {
        if (const std::string why = whyFamilyNotHere(context); !why.empty()) {
            return failWith(context, why,
                            "look at a recording of a Linux machine: --recording FILE");
        }
        const Utilities utilities = utilitiesOf(context);
        UtilityPlatform machine(context.platform, utilities);
        return lookAt(context, machine, utilities, look);
    }
    const std::optional<Recording> recording = loadRecording(context, context.machine.recording);
    if (!recording) {
        return exit_code::notPossible;
    }
    ReplayPlatform machine(*recording, context.platform);
    try {
        return lookAt(context, machine, machine.utilities(), look);
    } catch (const LackingCall& lacking) {
        return failWith(context, printable(lacking.what()), recordAgain);
    }
}

std::vector<std::string> recordingsOf(const std::string& path) {
    const auto entries = folderEntries(path);
    if (!entries) {
        return {path};
    }
    std::vector<std::string> names;
    for (const std::string& entry : *entries) {
        if (endsInZrec(entry)) {
            std::string& name = names.emplace_back(path);
            name.append(path.ends_with('/') ? "" : "/").append(entry);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::optional<Finding> lookAtRecorded(Context& context, const std::string& file,
                                      std::vector<Finding>& told,
                                      const std::function<void(Recorded machine)>& look) {
    RecordingReading reading = readRecordingFile(context.platform.files(), file);
    for (Finding& finding : reading.findings) {
        if (finding.severity != Severity::error) {
            told.push_back(std::move(finding));
            continue;
        }
        if (finding.help.empty()) {
            finding.help = {std::string(recordAgain)};
        }
        return std::move(finding);
    }
    CaptureRequest request = captureRequest(context, nullptr);
    request.progress = nullptr;
    request.noteUses = nullptr; // it may be another machine
    request.noteHolders = nullptr;
    ReplayPlatform machine(*reading.recording, context.platform);
    try {
        look({reading.recording->header, machine, request, captureMachine(machine, request)});
    } catch (const LackingCall& lacking) {
        return recordingFault(file, lacking.what());
    }
    return std::nullopt;
}

RecordedMachines loadMachines(Context& context, const std::vector<std::string>& paths) {
    RecordedMachines all;
    for (const std::string& path : paths) {
        const std::vector<std::string> files = recordingsOf(path);
        if (files.empty()) {
            all.faults.push_back(recordingFault(path, "no recording (*.zrec) is in this folder"));
        }
        for (const std::string& file : files) {
            std::vector<Finding> told;
            auto fault = lookAtRecorded(context, file, told, [&](Recorded machine) {
                all.machines.push_back({file, std::move(machine.snapshot)});
            });
            for (const Finding& finding : told) {
                context.platform.console().writeError(findingLine(finding, context.errorStyle));
            }
            if (fault) {
                all.faults.push_back(*std::move(fault));
            }
        }
    }
    return all;
}

} // namespace zolex::companion
