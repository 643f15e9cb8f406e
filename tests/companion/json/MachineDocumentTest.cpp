#include "companion/json/MachineDocument.h"

#include "companion/support/ExampleSnapshot.h"
#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace zolex::companion {
namespace {

using test::exampleLogicalDrive;
using test::exampleSnapshot;
using test::keepDocument;

const DocumentHead showHead{{"show", "--format", "json"}, "2026-11-21T21:05:00+01:00"};

/// The text from `begin` on, `lines` lines of it.
std::string linesFrom(const std::string& text, const std::string& begin, int lines) {
    const std::size_t at = text.find(begin);
    if (at == std::string::npos) {
        return "no " + begin;
    }
    std::size_t end = at;
    for (int i = 0; i < lines; ++i) {
        end = text.find('\n', end) + 1;
    }
    return text.substr(at, end - at);
}

TEST(MachineDocument, BeginsWithWhatItIs) {
    const std::string text = machineDocument(exampleSnapshot(), showHead);
    EXPECT_EQ(linesFrom(text, "{", 14), R"({
  "format": "zolex-machine",
  "format_version": "1.0",
  "tool": {
    "name": "zolexctl",
    "version": "2.20",
    "argv": [
      "show",
      "--format",
      "json"
    ]
  },
  "made_at": "2026-11-21T21:05:00+01:00",
  "fingerprint": {
)");
    EXPECT_NE(text.find("\n  \"machine_type\": \"8837\",\n  \"serial_number\": \"KQ10Z7V\",\n"),
              std::string::npos);
    EXPECT_EQ(text.back(), '\n');
    keepDocument("machine-by-hand", text);
}

TEST(MachineDocument, TellsADriveWithTheWordsOfTheField) {
    const std::string text = machineDocument(exampleSnapshot(), showHead);
    EXPECT_EQ(linesFrom(text, "          \"location\": \"32:2\"", 28),
              R"(          "location": "32:2",
          "enclosure": 32,
          "slot": 2,
          "channel": null,
          "id": 2,
          "policy_number": null,
          "policy_position": null,
          "array": null,
          "serial_number": "3LQ2A002",
          "manufacturer": "NORVIK",
          "model": "NV73455S",
          "revision": "S527",
          "protocol": "SAS",
          "media_type": "HDD",
          "capacity_bytes": 72746008576,
          "capacity_tolerance_bytes": 0,
          "status": {
            "health": "Critical",
            "state": "Disabled"
          },
          "drive_state": "failed",
          "reported_state": "Failed",
          "media_error_count": 0,
          "other_error_count": 0,
          "predicted_failure_count": 0,
          "temperature_celsius": null,
          "hotspare_type": "None",
          "foreign": false
)");
    EXPECT_NE(text.find("\"policy_position\": \"1:3\","), std::string::npos);
    EXPECT_NE(text.find("\"state\": \"StandbySpare\""), std::string::npos);
}

TEST(MachineDocument, TellsTheLayout) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details[0].facts.logicalDrives[0].raidType = "None";
    const std::string text = machineDocument(snapshot, showHead);
    EXPECT_EQ(linesFrom(text, "      \"layout\": {", 13), R"(      "layout": {
        "arrays": [
          {
            "id": "0",
            "letter": "A",
            "drives": [
              "32:0",
              "32:1"
            ],
            "logical_drives": [
              "0"
            ]
          },
)");
    EXPECT_EQ(linesFrom(text, "            \"raid_type\": \"None\"", 26),
              R"(            "raid_type": "None",
            "policy_level": "VOLUME",
            "reported_level": "RAID1",
            "spans": [
              [
                "32:0",
                "32:1"
              ]
            ],
            "capacity_bytes": 72746008576,
            "capacity_tolerance_bytes": 0,
            "strip_size_bytes": 65536,
            "write_cache_policy": "UnprotectedWriteBack",
            "read_cache_policy": "AdaptiveReadAhead",
            "status": {
              "health": "OK",
              "state": "Enabled"
            },
            "reported_state": "Optimal"
          },
          {
            "id": "1",
            "name": null,
            "array": "1",
            "raid_type": "RAID5",
            "policy_level": null,
)");
    EXPECT_EQ(linesFrom(text, "        \"hotspares\": [", 7), R"(        "hotspares": [
          {
            "location": "32:6",
            "hotspare_type": "Global"
          }
        ],
        "foreign_configurations": [],
)");
}

TEST(MachineDocument, AFindingIsADiagnostic) {
    EXPECT_EQ(
        linesFrom(machineDocument(exampleSnapshot(), showHead), "      \"diagnostics\": [", 12),
        R"(      "diagnostics": [
        {
          "code": "ZX701",
          "severity": "warning",
          "refused_by": null,
          "summary": "32:2 is failed and has no number: policies' drive 3 is 32:3 now",
          "detail": null,
          "help": [],
          "range": null
        }
      ]
    }
)");
}

TEST(MachineDocument, WhatIsNotKnownIsNull) {
    Snapshot snapshot;
    snapshot.details.emplace_back().number = 1;
    snapshot.details[0].utility = "MEGACLI";
    snapshot.details[0].drives.emplace_back().facts.location = "0:1";
    snapshot.details[0].facts.logicalDrives.emplace_back().id = "0";
    snapshot.details[0].arrays.push_back({"A", "", {}, {0}});
    const std::string text = machineDocument(snapshot, showHead);
    EXPECT_NE(text.find("\n  \"machine_type\": null,\n  \"serial_number\": null,\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("        \"raid_types\": null,\n        \"strip_size_bytes\": null\n"),
              std::string::npos)
        << text;
    keepDocument("machine-unknown", text);
}

/// Not every reader of JSON keeps a number beyond 2^53 exact, and a text must be UTF-8.
TEST(MachineDocument, NumbersAndTextsAreSuchThatEveryReaderTakesThem) {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details[0];
    controller.drives[0].facts.capacityBytes = (std::uint64_t{1} << 53U) + 1;
    controller.drives[1].facts.capacityBytes = std::uint64_t{1} << 53U;
    controller.drives[0].facts.mediaErrorCount = std::numeric_limits<std::uint64_t>::max();
    controller.drives[0].facts.temperatureCelsius = -5;
    controller.facts.productName = "a\xFF\x01\"\\";
    const std::string text = machineDocument(snapshot, showHead);
    EXPECT_NE(text.find("\"product_name\": \"a\xEF\xBF\xBD\\u0001\\\"\\\\\""), std::string::npos);
    EXPECT_NE(text.find("\"capacity_bytes\": 9007199254740992,"), std::string::npos);
    EXPECT_EQ(text.find("9007199254740993"), std::string::npos);
    EXPECT_EQ(text.find("18446744073709551615"), std::string::npos);
    EXPECT_NE(text.find("\"temperature_celsius\": -5"), std::string::npos);
    keepDocument("machine-of-odd-values", text);
}

TEST(MachineDocument, AControllerThatFailedHasNoLayoutAndTheMachineNoFingerprint) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details[0].failed = true;
    snapshot.details[0].commands[0].outcome = ChildOutcome::stillRunning;
    const std::string text = machineDocument(snapshot, showHead);
    EXPECT_NE(text.find("\n  \"fingerprint\": null,\n"), std::string::npos);
    EXPECT_NE(text.find("\n      \"captured\": false,\n"), std::string::npos);
    EXPECT_NE(text.find("\n      \"layout\": null,\n"), std::string::npos);
    EXPECT_EQ(linesFrom(text, "          \"outcome\"", 4), R"(          "outcome": "still-running",
          "exit_code": null,
          "duration_ms": 380,
          "reading": null
)");
    keepDocument("machine-failed", text);
}

TEST(MachineDocument, ACommandThatFailsHasADocumentToo) {
    Finding finding;
    finding.code = "ZP100";
    finding.summary = "there is no controller 9";
    const std::string text = failedMachineDocument({finding}, showHead);
    EXPECT_NE(text.find("\n  \"controllers\": [],\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\"summary\": \"there is no controller 9\""), std::string::npos) << text;
    keepDocument("machine-not-seen", text);
}

} // namespace
} // namespace zolex::companion
