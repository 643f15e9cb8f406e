#include "companion/json/RecordingLines.h"
#include "companion/machine/Capture.h"
#include "companion/recording/Redaction.h"
#include "companion/recording/ReplayPlatform.h"
#include "driver/ZOLEX.h"
#include "support/Check.h"
#include "support/ExitCodes.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace zolex::fuzz {
namespace {

using namespace companion;

/// What is found stands in the text; an error comes last, and instead of a recording.
void checkFindings(const RecordingReading& reading, std::string_view text) {
    const auto& findings = reading.findings;
    for (const Finding& finding : findings) {
        const bool isLast = &finding == &findings.back();
        check(finding.severity != Severity::error || (isLast && !reading.recording),
              "an error ends the reading");
        check(finding.start.line >= 1 && finding.start.column >= 1, "lines and columns from 1");
        check(finding.start.byte >= 0 &&
                  finding.start.byte <= static_cast<std::int64_t>(text.size()),
              "a finding stands in the text");
        check(!finding.code.empty() && !finding.summary.empty(), "a finding says something");
    }
    check(reading.recording || !findings.empty(), "what is not read has a reason");
}

/// What was read comes back as it is.
void checkWriting(const Recording& recording) {
    const std::string written = recordingText(recording);
    const RecordingReading again = readRecording(written, "again.zrec");
    check(again.recording && again.findings.empty(), "what was written is read");
    Recording same = *again.recording;
    same.header.argv = recording.header.argv;
    check(recordingText(same) == written, "what was read is written as it was");
}

/// Lengths of outputs and their line ends stay.
void checkRedaction(const Recording& recording) {
    Secrets secrets;
    addRecordedSecrets(recording.calls, secrets);
    Recording redacted = recording;
    redact(redacted, Redactor(secrets, "key"));
    check(redacted.calls.size() == recording.calls.size(), "calls stay");
    for (std::size_t i = 0; i < recording.calls.size(); ++i) {
        const auto* const before = std::get_if<ChildCall>(&recording.calls[i].call);
        const auto* const after = std::get_if<ChildCall>(&redacted.calls[i].call);
        if (before == nullptr || after == nullptr) {
            continue;
        }
        const std::string& old = before->result.output;
        const std::string& made = after->result.output;
        const bool isSameShape =
            std::equal(old.begin(), old.end(), made.begin(), made.end(),
                       [](char a, char b) { return (a == '\n') == (b == '\n'); });
        check(isSameShape, "columns stay");
    }
}

/// Both programs over the recording: what it lacks ends them, and nothing else.
void checkReplay(const Recording& recording) {
    test::FakePlatform system;
    ReplayPlatform machine(recording, system);
    try {
        const Snapshot snapshot = captureMachine(machine, {});
        check(snapshot.details.size() <= snapshot.controllers.count(), "details of controllers");
    } catch (const LackingCall& lacking) {
        check(*lacking.what() != '\0', "what is lacking has a name");
    }
    const std::array arguments = {"zolex", "/c", "/f:captured.ini"};
    try {
        check(isExitCode(ZOLEX::run(static_cast<int>(arguments.size()), arguments.data(), machine)),
              "exit code");
    } catch (const LackingCall& lacking) {
        check(*lacking.what() != '\0', "what is lacking has a name");
    }
    check(system.children.empty(), "nothing is started");
}

/// The whole input is a recording.
void readAny(std::string_view text) {
    const RecordingReading reading = readRecording(text, "a.zrec");
    checkFindings(reading, text);
    if (reading.recording) {
        checkWriting(*reading.recording);
        checkRedaction(*reading.recording);
        checkReplay(*reading.recording);
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readAny(zolex::fuzz::Input(data, size).rest());
    return 0;
}
