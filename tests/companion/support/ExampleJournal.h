#pragma once

#include "companion/execution/Journal.h"
#include "companion/json/JournalLines.h"
#include "companion/machine/Sha256.h"

#include <string>
#include <vector>

/// A journal for the tests of what is written, read and shown, made by hand.
namespace zolex::companion::test {

inline std::string exampleJournalTime(int second) {
    const std::string digits = std::to_string(second);
    return "2026-11-21T21:06:" + std::string(digits.size() < 2 ? 1 : 0, '0') + digits + "+00:00";
}

inline Fingerprint exampleJournalFingerprint() {
    Fingerprint fingerprint;
    fingerprint.strength = Strength::serials;
    fingerprint.identity = std::string(64, '1');
    fingerprint.state = std::string(64, '2');
    fingerprint.machineType = "8837";
    fingerprint.serialNumber = "KQ10Z7V";
    fingerprint.controllers = {
        {1, "0000:02:0e.0", "1000:0411:1000:1002", "LSI-MegaRAID-8480", "1122334455"}};
    return fingerprint;
}

inline JournalBegin exampleJournalBegin() {
    JournalBegin begin;
    begin.planId = "p-5f1c09ab77e2";
    begin.planHash = std::string(64, '5');
    begin.planFile = "plan.json";
    begin.fingerprint = exampleJournalFingerprint();
    begin.toolVersion = "1.1.0";
    begin.process = {4700, "81230"};
    begin.consent = "7Q4K-2M9D";
    begin.steps = 3;
    return begin;
}

inline JournalStepStarted exampleStepStarted(std::int32_t step, const std::string& command,
                                             char before, char after) {
    JournalStepStarted started;
    started.step = step;
    started.controller = 1;
    started.command = command;
    started.expectedBefore = std::string(64, before);
    started.expectedAfter = std::string(64, after);
    return started;
}

inline JournalStepEnded exampleStepEnded(std::int32_t step, std::uint32_t exitCode,
                                         const std::string& output, std::int64_t milliseconds) {
    JournalStepEnded ended;
    ended.step = step;
    ended.exitCode = exitCode;
    ended.accepted = exitCode == 0;
    ended.durationMs = milliseconds;
    ended.output = output;
    ended.outputBytes = output.size();
    return ended;
}

/// A run that was interrupted in its second step, was gone on with, found the step done, and was
/// stopped by its third.
inline std::vector<JournalEvent> exampleJournalEvents() {
    const std::string clear = "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT";
    const std::string first = "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:0,32:1 ]   WB   ADRA   "
                              "-strpsz 64  -a0";
    const std::string second = "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4,32:5,32:6 ]   "
                               "WB   ADRA   -strpsz 64  -a0";
    return {exampleJournalBegin(),
            JournalCaptured{
                CapturePurpose::guard, std::string(64, '2'), {{1, std::string(64, 'a')}}, ""},
            JournalAgreed{"7Q4K-2M9D", "typed-serial", "root"},
            exampleStepStarted(1, clear, 'a', 'b'),
            JournalChild{1, {4711, "81240"}, "plan.journal.jsonl.out"},
            exampleStepEnded(1, 0, "Exit Code: 0x00\r\n", 2100),
            exampleStepStarted(2, first, 'b', 'c'),
            JournalChild{2, {4712, "81260"}, "plan.journal.jsonl.out"},
            JournalCaptured{CapturePurpose::resume,
                            std::string(64, '3'),
                            {{1, std::string(64, 'c')}},
                            "resume.zrec"},
            JournalStepFoundDone{2, "its array stands"},
            exampleStepStarted(3, second, 'c', 'd'),
            JournalChild{3, {4720, ""}, "plan.journal.jsonl.out"},
            exampleStepEnded(3, 38,
                             "FW error description:\n  The physical disk at 32:5 is not free: it "
                             "is online.\n\nExit Code: 0x26\n",
                             212),
            JournalVerified{JournalVerified::Result::different,
                            {"Logical.2 is missing", "hot spare 32:7 is missing"}},
            JournalEnd{4,
                       {{1, ControllerResult::Result::failed, 3, 3, "the utility refused step 3"},
                        {2, ControllerResult::Result::skipped, 0, 0, "no policy is for it"}},
                       "the utility refused step 3"}};
}

/// The lines of these events, each a second after the one before.
inline std::string journalText(const std::vector<JournalEvent>& events) {
    std::string text;
    std::string prev = firstJournalHash();
    int number = 0;
    for (const JournalEvent& event : events) {
        ++number;
        const std::string line = journalLine(static_cast<std::uint64_t>(number),
                                             exampleJournalTime(number), prev, event);
        prev = sha256(line);
        text += line + "\n";
    }
    return text;
}

inline std::string exampleJournalText() {
    return journalText(exampleJournalEvents());
}

} // namespace zolex::companion::test
