#include "companion/json/RecordingLines.h"

#include "companion/json/Base64.h"
#include "companion/machine/Sha256.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {
namespace {

const std::string headerLine =
    R"({"format":"zolex-recording","format_version":"1.0",)"
    R"("tool":{"name":"zolexctl","version":"2.20","argv":["record","-o","a.zrec"]},)"
    R"("made_at":"2026-11-21T21:05:00+01:00","redacted":false,"system":"linux"})";

RecordingHeader header() {
    RecordingHeader header;
    header.toolVersion = "2.20";
    header.argv = {"record", "-o", "a.zrec"};
    header.madeAt = "2026-11-21T21:05:00+01:00";
    header.system = "linux";
    return header;
}

ChildCall recordedChild(std::string command, std::string output) {
    ChildCall call;
    call.command = std::move(command);
    call.limit = std::chrono::milliseconds(300000);
    call.result = {ChildOutcome::ended, 0, std::move(output)};
    call.duration = std::chrono::milliseconds(38);
    return call;
}

PciDevice device() {
    PciDevice device;
    device.vendorId = 0x1000;
    device.deviceId = 0x411;
    device.subsystemVendorId = 0x1000;
    device.subsystemId = 0x1002;
    device.bus = 2;
    device.device = 14;
    device.classCode = 0x10400;
    device.revision = 3;
    return device;
}

std::vector<std::pair<CallKind, std::string>> callsAndLines() {
    ChildCall failed = recordedChild("UTIL.BAT MEGACLI -pdList -a0", "\xFF\x01");
    failed.capture = false;
    failed.result.outcome = ChildOutcome::stillRunning;
    failed.result.exitCode = 4294967295U;
    LocalTimeCall time;
    time.time = {2026, 11, 21, 21, 5, 7, -90};
    UtilitiesCall utilities;
    utilities.found.wrapper = "/opt/raid/UTIL.BAT";
    utilities.found.programs["MEGACLI"] = "/opt/MegaCli64";
    utilities.found.named["ARCCONF"] = "C:\\tools\\a\xE4.exe";
    return {
        {PciCall{{device()}, 2},
         R"({"seq":1,"call":"pci","count":2,"devices":[{"bus":2,"device":14,"function":0,)"
         R"("ids":"1000:0411:1000:1002","class":"010400","revision":3}]})"},
        {recordedChild("hwdetect.exe /i", "Machine_Type=8837\r\n\t\"\\/ \xC3\xA4\x1B\x7F"),
         R"({"seq":2,"call":"child","command":"hwdetect.exe /i","capture":true,"limit_ms":300000,)"
         R"("outcome":"ended","exit_code":0,"duration_ms":38,)"
         "\"output\":\"Machine_Type=8837\\r\\n\\t\\\"\\\\/ \xC3\xA4\\u001b\x7F\"}"},
        {failed, R"({"seq":3,"call":"child","command":"UTIL.BAT MEGACLI -pdList -a0",)"
                 R"("capture":false,"limit_ms":300000,"outcome":"stillRunning",)"
                 R"("exit_code":4294967295,"duration_ms":38,"output_base64":"/wE="})"},
        {PauseCall{}, R"({"seq":4,"call":"pause"})"},
        {time, R"({"seq":5,"call":"local_time","year":2026,"month":11,"day":21,"hour":21,)"
               R"("minute":5,"second":7,"offset_minutes":-90})"},
        {FirmwareCall{{"8837", "KQ10Z7V", "no folder"}},
         R"({"seq":6,"call":"firmware","machine_type":"8837","serial_number":"KQ10Z7V",)"
         R"("fault":"no folder"})"},
        {utilities, R"({"seq":7,"call":"utilities","wrapper":"/opt/raid/UTIL.BAT","detector":"",)"
                    R"("programs":{"MEGACLI":"/opt/MegaCli64"},)"
                    R"("named":{"ARCCONF_base64":"QzpcdG9vbHNcYeQuZXhl"}})"},
    };
}

Recording exampleRecording() {
    Recording recording;
    recording.header = header();
    for (const auto& [call, line] : callsAndLines()) {
        recording.calls.push_back({call, 0});
    }
    return recording;
}

/// "3:17 error ZR104: text / help" of each finding.
std::string shown(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        const char* const severity = finding.severity == Severity::error     ? "error"
                                     : finding.severity == Severity::warning ? "warning"
                                                                             : "note";
        text += finding.file + ":" + std::to_string(finding.start.line) + ":" +
                std::to_string(finding.start.column) + " " + severity + " " + finding.code + ": " +
                finding.summary;
        for (const std::string& help : finding.help) {
            text += " / " + help;
        }
        text += "\n";
    }
    return text;
}

/// What reading says; "read" at its end when there is a recording.
std::string outcomeOf(std::string_view text) {
    const RecordingReading reading = readRecording(text, "a.zrec");
    return shown(reading.findings) + (reading.recording ? "read" : "");
}

/// A recording without its end, whose second line is this one.
std::string outcomeOfLine(const std::string& line) {
    return outcomeOf(headerLine + "\n" + line + "\n");
}

TEST(RecordingLines, AreOneObjectEach) {
    EXPECT_EQ(headerLine, recordingHeaderLine(header()));
    std::size_t seq = 0;
    for (const auto& [call, line] : callsAndLines()) {
        EXPECT_EQ(line, recordingCallLine(++seq, call));
    }
    EXPECT_EQ(R"({"seq":8,"call":"end","calls":7,"sha256":"abc"})", recordingEndLine(7, "abc"));
}

TEST(RecordingLines, AreReadAsTheyWereWritten) {
    const std::string text = recordingText(exampleRecording());
    const RecordingReading reading = readRecording(text, "a.zrec");
    EXPECT_EQ("", shown(reading.findings));
    ASSERT_TRUE(reading.recording.has_value());
    EXPECT_TRUE(reading.recording->isComplete);
    EXPECT_EQ("a.zrec", reading.recording->file);
    EXPECT_EQ(8, reading.recording->calls.back().line);
    // What was read writes the same lines; the arguments are not kept.
    Recording again = *reading.recording;
    again.header.argv = header().argv;
    EXPECT_EQ(text, recordingText(again));
}

TEST(RecordingLines, MayEndInCrLf) {
    std::string text = recordingText(exampleRecording());
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) {
        text.insert(at, "\r");
    }
    EXPECT_EQ("read", outcomeOf(text));
}

TEST(RecordingLines, MayHaveBlanksBetweenTheirParts) {
    const std::string line =
        "{ \"seq\" : 1 , \"call\" : \"child\", \"command\":\"a\", \"capture\":true,"
        "\"limit_ms\":1,\"outcome\":\"ended\",\"exit_code\":0,"
        "\"duration_ms\":1,\t\"output\" :\t\"x\\ny\" }";
    const RecordingReading reading = readRecording(headerLine + "\n" + line + "\n", "a.zrec");
    ASSERT_TRUE(reading.recording.has_value()) << shown(reading.findings);
    EXPECT_EQ("x\ny", std::get<ChildCall>(reading.recording->calls.at(0).call).result.output);
}

TEST(RecordingLines, OutputsOfAnyBytesComeBack) {
    std::string every;
    for (int i = 0; i < 256; ++i) {
        every += static_cast<char>(i);
    }
    const std::vector<std::string> outputs = {
        "",        "\\",       "\"",    "a\\\"b",           std::string(1, '\0'),
        every,     "\xC3\xA4", "\xC3",  "\xF0\x9F\x98\x80", "\"output\":\"x\"",
        "\\u0041", "\b\f\v",   "end\\", "\xE2\x80\xA8"};
    for (const std::string& output : outputs) {
        Recording recording;
        recording.calls.push_back({recordedChild("\"output\":\"" + output, output), 0});
        const RecordingReading reading = readRecording(recordingText(recording), "a.zrec");
        ASSERT_TRUE(reading.recording.has_value()) << shown(reading.findings);
        const auto& call = std::get<ChildCall>(reading.recording->calls.at(0).call);
        EXPECT_EQ(output, call.result.output);
        EXPECT_EQ("\"output\":\"" + output, call.command);
    }
}

TEST(RecordingLines, OfALaterMinorVersionAreReadWithoutWhatIsNew) {
    std::string text = headerLine;
    text.replace(text.find("1.0"), 3, "1.7");
    text.insert(1, "\"colour\":\"red\",");
    text += "\n{\"seq\":1,\"call\":\"pause\",\"why\":{\"output\":\"x\"}}\n"
            "{\"seq\":2,\"call\":\"weather\",\"rain\":true}\n"
            "{\"seq\":3,\"call\":\"pause\"}\n";
    text += recordingEndLine(3, sha256(text)) + "\n";
    EXPECT_EQ("a.zrec:3:17 note ZR109: a call of the unknown kind \"weather\" is left "
              "out\nread",
              outcomeOf(text));
    EXPECT_EQ(2U, readRecording(text, "a.zrec").recording->calls.size());
}

TEST(RecordingLines, FirstLinesThatAreNone) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", "a.zrec:1:1 error ZR101: the file is empty\n"},
        {"\n", "a.zrec:1:1 error ZR101: this is no recording: this is no JSON object: "
               "syntax error while parsing value - unexpected end of input; expected '[', '{', or "
               "a literal\n"},
        {"[Policy.A]\n",
         "a.zrec:1:2 error ZR101: this is no recording: this is no JSON object: syntax "
         "error while parsing value - invalid literal\n"},
        {"[]\n", "a.zrec:1:1 error ZR101: this is no recording: this is no JSON object\n"},
        {"{}\n", "a.zrec:1:1 error ZR101: this is no recording: \"format\" is not "
                 "\"zolex-recording\"\n"},
        {"{\"format\":\"zolex-plan\",\"format_version\":\"1.0\"}\n",
         "a.zrec:1:11 error ZR101: this is no recording: \"format\" is not "
         "\"zolex-recording\"\n"},
        {"{\"format\":7}\n", "a.zrec:1:11 error ZR104: \"format\" is no text\n"},
        {"{\"format\":\"zolex-recording\"}\n",
         "a.zrec:1:1 error ZR104: \"format_version\" is missing\n"},
        {"{\"format\":\"zolex-recording\",\"format_version\":\"1\"}\n",
         "a.zrec:1:46 error ZR104: \"format_version\" is no version such as \"1.0\"\n"},
        {"{\"format\":\"zolex-recording\",\"format_version\":\"1.-1\"}\n",
         "a.zrec:1:46 error ZR104: \"format_version\" is no version such as \"1.0\"\n"},
        {"{\"format\":\"zolex-recording\",\"format_version\":\"2.0\"}\n",
         "a.zrec:1:46 error ZR102: this recording has format version 2.0, of which this "
         "program knows nothing: it reads version 1 / a zolexctl that knows version 2 reads "
         "it\n"},
        {"{\"format\":\"zolex-recording\",\"format_version\":\"1.0\",\"made_at\":true}\n",
         "a.zrec:1:62 error ZR104: \"made_at\" is no text\n"},
    };
    for (const auto& [text, expected] : rows) {
        EXPECT_EQ(expected, outcomeOf(text));
    }
}

TEST(RecordingLines, OtherLinesThatAreNone) {
    const std::string start = "{\"seq\":1,\"call\":\"child\",\"command\":\"a\",\"capture\":true,"
                              "\"limit_ms\":1,";
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"{\"seq\":1,\"call\":\"pause\"",
         "24 error ZR103: this is no JSON object: syntax error "
         "while parsing object - unexpected end of input; expected '}'"},
        {"{\"seq\":1,}", "10 error ZR103: this is no JSON object: syntax error while "
                         "parsing object key - unexpected '}'; expected string literal"},
        {"{\"call\":\"pause\"}", "1 error ZR104: \"seq\" is missing"},
        {"{\"seq\":2,\"call\":\"pause\"}",
         "8 error ZR104: \"seq\" is 2 instead of 1: lines are missing"},
        {"{\"seq\":1.5,\"call\":\"pause\"}",
         "8 error ZR104: \"seq\" is no whole number from 0 to 2147483647"},
        {"{\"seq\":18446744073709551615,\"call\":\"pause\"}",
         "8 error ZR104: \"seq\" is no whole number from 0 to 2147483647"},
        {"{\"seq\":1}", "1 error ZR104: \"call\" is missing"},
        {"{\"seq\":1,\"call\":{\"call\":\"pause\"}}", "17 error ZR104: \"call\" is no text"},
        {start + "\"outcome\":\"done\",\"duration_ms\":1}",
         "77 error ZR104: \"outcome\" is none of noPipe, notStarted, stillRunning, ended, "
         "notClosed"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":-1}",
         "113 error ZR104: \"exit_code\" is no whole number from 0 to 4294967295"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":4294967296}",
         "113 error ZR104: \"exit_code\" is no whole number from 0 to 4294967295"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0}",
         "1 error ZR104: \"output\" is missing"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0,\"output\":[]}",
         "124 error ZR104: \"output\" is no text"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0,\"output\":\"a\\x\"}",
         "127 error ZR103: this is no JSON text: syntax error while parsing value - "
         "invalid string: forbidden character after backslash"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0,\"output\":\"a\xFFz\"}",
         "126 error ZR103: this is no JSON text: syntax error while parsing value - "
         "invalid string: ill-formed UTF-8 byte"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0,\"output\":\"abc\" x}",
         "130 error ZR103: this is no JSON object: syntax error while parsing object - "
         "invalid literal"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0,\"output_base64\":\"a\"}",
         "131 error ZR104: \"output_base64\" is no base64"},
        {start + "\"outcome\":\"ended\",\"duration_ms\":1,\"exit_code\":0,\"output\":\"a}",
         "127 error ZR103: this is no JSON object: syntax error while parsing value - "
         "invalid string: missing closing quote"},
        {"{\"seq\":1,\"call\":\"pci\",\"devices\":{}}", "33 error ZR104: \"devices\" is no list"},
        {"{\"seq\":1,\"call\":\"pci\",\"devices\":[7]}",
         "33 error ZR104: \"devices\" lacks devices[0].bus"},
        {"{\"seq\":1,\"call\":\"pci\",\"devices\":[{\"bus\":65536}]}",
         "33 error ZR104: \"devices[0].bus\" is no whole number from 0 to 65535"},
        {"{\"seq\":1,\"call\":\"pci\",\"devices\":[{\"bus\":0,\"device\":0,\"function\":0,\"ids\":"
         "\"1:2:3\",\"class\":\"0\"}]}",
         "33 error ZR104: \"devices\" has devices[0].ids, which are no four hexadecimal "
         "numbers"},
        {"{\"seq\":1,\"call\":\"pci\",\"devices\":[{\"bus\":0,\"device\":0,\"function\":0,\"ids\":"
         "\"1:2:3:4\",\"class\":\"x\"}]}",
         "33 error ZR104: \"devices\" has devices[0].class, which is no hexadecimal "
         "number"},
        {"{\"seq\":1,\"call\":\"local_time\",\"year\":2026,\"month\":13}",
         "50 error ZR104: \"month\" is no whole number from 1 to 12"},
        {"{\"seq\":1,\"call\":\"firmware\",\"machine_type\":\"8837\"}",
         "1 error ZR104: \"serial_number\" is missing"},
        {"{\"seq\":1,\"call\":\"utilities\",\"wrapper\":\"\",\"detector\":\"\",\"programs\":[]}",
         "67 error ZR104: \"programs\" is no object"},
        {"{\"seq\":1,\"call\":\"end\",\"calls\":0}", "1 error ZR104: \"sha256\" is missing"},
    };
    for (const auto& [line, expected] : rows) {
        const std::string text = headerLine + "\n" + line + "\n";
        const std::vector<Finding> findings = readRecording(text, "a.zrec").findings;
        EXPECT_EQ("a.zrec:2:" + expected + "\n", shown(findings)) << line;
        // Byte and column are the same place.
        const auto lineStart = static_cast<std::int64_t>(headerLine.size() + 1);
        EXPECT_EQ(lineStart + findings.back().start.column - 1, findings.back().start.byte);
    }
}

TEST(RecordingLines, BeyondTheBoundsAreRefused) {
    EXPECT_EQ("a.zrec:2:1048577 error ZR105: the line is longer than 1048576 bytes, "
              "its output not counted\n",
              outcomeOfLine("{\"seq\":1,\"call\":\"pause\",\"x\":\"" +
                            std::string(mostLineBesideOutput, 'x') + "\"}"));
    Recording recording;
    recording.calls.push_back({recordedChild("a", std::string(mostChildOutput, 'x')), 0});
    EXPECT_EQ("read", outcomeOf(recordingText(recording)));
    recording.calls[0].call = recordedChild("a", std::string(mostChildOutput + 1, 'x'));
    EXPECT_NE(std::string::npos,
              outcomeOf(recordingText(recording))
                  .find("error ZR105: \"output\" is longer than 33554432 bytes\n"));
    recording.calls.assign(mostRecordedCalls, {PauseCall{}, 0});
    EXPECT_EQ("read", outcomeOf(recordingText(recording)));
    recording.calls.push_back({PauseCall{}, 0});
    EXPECT_NE(std::string::npos, outcomeOf(recordingText(recording))
                                     .find("error ZR105: the recording has more than 100000 "
                                           "calls\n"));
}

TEST(RecordingLines, NestedWithoutEndAreRefused) {
    EXPECT_EQ("a.zrec:2:1048577 error ZR105: the line is longer than 1048576 bytes, "
              "its output not counted\n",
              outcomeOfLine(std::string(2 * mostLineBesideOutput, '[')));
    EXPECT_NE(std::string::npos,
              outcomeOfLine(std::string(mostLineBesideOutput, '[')).find("error ZR103"));
}

TEST(RecordingLines, ThatWereChangedAreTold) {
    std::string text = recordingText(exampleRecording());
    const std::string right = sha256(text.substr(0, text.find("{\"seq\":8")));
    text.replace(text.find("8837"), 4, "8838");
    const std::string found = sha256(text.substr(0, text.find("{\"seq\":8")));
    const std::string place = "a.zrec:9:1";
    EXPECT_EQ(place +
                  " warning ZR106: the recording was changed after it was made: its end says "
                  "sha256 " +
                  right + ", the lines before it have " + found + "\nread",
              outcomeOf(text));
}

TEST(RecordingLines, BehindTheEndAreRefused) {
    const std::string text = recordingText(Recording{}) + "{\"seq\":2,\"call\":\"pause\"}\n";
    EXPECT_EQ("a.zrec:3:1 error ZR103: a line stands behind the end of the recording\n",
              outcomeOf(text));
}

TEST(RecordingLines, CutAtAnyByteAreReadUpToThere) {
    const std::string text = recordingText(exampleRecording());
    const std::vector<std::string> lines = [&] {
        std::vector<std::string> all;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at) + 1;
            all.push_back(text.substr(at, end - at));
            at = end;
        }
        return all;
    }();
    for (std::size_t size = lines[0].size(); size < text.size(); ++size) {
        const RecordingReading reading = readRecording(text.substr(0, size), "a.zrec");
        ASSERT_TRUE(reading.recording.has_value()) << size;
        std::size_t whole = 0;
        std::size_t at = 0;
        for (const std::string& line : lines) {
            // The line end alone may be missing.
            at += line.size();
            whole += at - 1 <= size ? 1 : 0;
        }
        const bool hasEnd = whole == lines.size();
        EXPECT_EQ(whole - 1 - (hasEnd ? 1 : 0), reading.recording->calls.size()) << size;
        EXPECT_EQ(hasEnd, reading.recording->isComplete) << size;
        const bool isCut = text[size - 1] != '\n' && text[size] != '\n';
        const std::string findings = shown(reading.findings);
        EXPECT_EQ(isCut, findings.find("note ZR107: the last line was cut and is left out\n") !=
                             std::string::npos)
            << size;
        EXPECT_EQ(!hasEnd,
                  findings.find("note ZR108: the recording has no end: it was "
                                "interrupted. What it holds can be used\n") != std::string::npos)
            << size;
    }
}

TEST(RecordingLines, CutInTheFirstAreNoRecording) {
    for (std::size_t size = 0; size < headerLine.size(); ++size) {
        const RecordingReading reading = readRecording(headerLine.substr(0, size), "a.zrec");
        EXPECT_FALSE(reading.recording.has_value()) << size;
        ASSERT_EQ(1U, reading.findings.size()) << size;
        EXPECT_EQ("ZR101", reading.findings[0].code) << size;
    }
}

TEST(Base64, ComesBack) {
    EXPECT_EQ("", toBase64(""));
    EXPECT_EQ("Zg==", toBase64("f"));
    EXPECT_EQ("Zm8=", toBase64("fo"));
    EXPECT_EQ("Zm9v", toBase64("foo"));
    EXPECT_EQ("+/+/", toBase64("\xFB\xFF\xBF"));
    for (const std::string text : {"", "f", "fo", "foo", "foob", "\xFB\xFF\xBF\x01"}) {
        EXPECT_EQ(text, fromBase64(toBase64(text)).value_or("none"));
    }
    for (const std::string wrong :
         {"Z", "Zg", "Zg=", "=", "====", "Zg==Zg==", "Z===", "Zh==", "Zm9=", "Zm9v\n", "Zm9 "}) {
        EXPECT_EQ(std::nullopt, fromBase64(wrong)) << wrong;
    }
}

} // namespace
} // namespace zolex::companion
