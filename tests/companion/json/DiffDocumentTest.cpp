#include "companion/json/DiffDocument.h"

#include "companion/support/ExamplePlan.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/Texts.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

using test::between;

using test::exampleDiff;
using test::exampleFinding;
using test::keepDocument;

const DocumentHead diffHead{{"diff", "site.ini", "--format", "json"}, "2026-11-21T21:05:00+01:00"};

TEST(DiffDocument, TellsTheWorstAndEachController) {
    const std::string text = diffDocument(exampleDiff(), diffHead);
    EXPECT_EQ(between(text, "  \"wanted_by\"", "      \"captured\""), R"~(  "wanted_by": {
    "file": "site.ini",
    "kind": "policies"
  },
  "result": "different",
  "controllers": [
    {
      "number": 1,
      "model": "LSI-MegaRAID-8480",
      "result": "different",
      "because": null,
      "policy": "Policy.web",
      "policy_line": 17,
      "differences": [
        {
          "attribute": "strip_size_bytes",
          "location": null,
          "logical_drive": "1",
          "wanted": "64 KB",
          "found": "128 KB"
        },
        {
          "attribute": "write_cache_policy",
          "location": null,
          "logical_drive": "1",
          "wanted": "write-back",
          "found": "write-through"
        },
        {
          "attribute": "missing",
          "location": "32:7",
          "logical_drive": null,
          "wanted": "hot spare 32:7 (covers A, B)",
          "found": "none; 32:7 is free"
        }
      ],
      "equivalences": [],
      "not_compared": [],
      "health": [],
      "adding_is_enough": false,
      "takes_rebuild": [
        "strip size"
      ],
      "to_remove": [],
)~");
    EXPECT_EQ(between(text, "      \"number\": 2", "      \"captured\""), R"~(      "number": 2,
      "model": "Kestrix-B7",
      "result": "equivalent",
      "because": null,
      "policy": "Policy.db",
      "policy_line": 3,
      "differences": [],
      "equivalences": [
        "the spare is 1:4 and would be planned as 1:5 (equal drives)"
      ],
      "not_compared": [
        "write_cache_policy"
      ],
      "health": [],
      "adding_is_enough": null,
      "takes_rebuild": [],
      "to_remove": [],
)~");
    keepDocument("diff-by-hand", text);
}

TEST(DiffDocument, HasBothLayouts) {
    const std::string text = diffDocument(exampleDiff(), diffHead);
    const std::string second = text.substr(text.find("\"number\": 2"));
    EXPECT_EQ(between(second, "      \"wanted\": {", "      \"diagnostics\""),
              R"(      "wanted": {
        "arrays": [
          {
            "id": "A",
            "drives": [
              "1:0",
              "1:1"
            ],
            "spans": [
              [
                "1:0",
                "1:1"
              ]
            ],
            "listed": false
          }
        ],
        "logical_drives": [
          {
            "id": "Logical.1",
            "array": "A",
            "raid_type": "RAID1",
            "capacity_bytes": 72746008576,
            "capacity_tolerance_bytes": 0,
            "fills": true,
            "strip_size_bytes": 65536,
            "write_cache_policy": "UnprotectedWriteBack",
            "read_cache_policy": "AdaptiveReadAhead",
            "status": {
              "health": "OK",
              "state": "Enabled"
            },
            "reported_state": "Optimal"
          }
        ],
        "hotspares": [
          {
            "location": "1:5",
            "hotspare_type": "Global",
            "covers": [
              "A"
            ],
            "listed": false
          }
        ],
        "foreign_drives": []
      },
)");
}

TEST(DiffDocument, SaysWhyAControllerCouldNotBeTold) {
    MachineDiff diff = exampleDiff();
    diff.wantedBy = "plan.json";
    diff.isByPlan = true;
    diff.result = ControllerDiff::Result::unknown;
    diff.controllers[0] = {};
    diff.controllers[0].number = 1;
    diff.controllers[0].because = "its utility failed";
    diff.controllers[0].diagnostics = {
        exampleFinding("ZP104", Severity::error, "MEGACLI ended with 1")};
    diff.controllers[1] = {};
    diff.controllers[1].number = 2;
    diff.controllers[1].result = ControllerDiff::Result::skipped;
    diff.controllers[1].because = "no policy is for this controller";
    const std::string text = diffDocument(diff, diffHead);
    EXPECT_EQ(between(text, "  \"wanted_by\"", "    {\n      \"number\": 2"),
              R"(  "wanted_by": {
    "file": "plan.json",
    "kind": "plan"
  },
  "result": "unknown",
  "controllers": [
    {
      "number": 1,
      "model": null,
      "result": "unknown",
      "because": "its utility failed",
      "policy": null,
      "policy_line": null,
      "differences": [],
      "equivalences": [],
      "not_compared": [],
      "health": [],
      "adding_is_enough": null,
      "takes_rebuild": [],
      "to_remove": [],
      "captured": null,
      "wanted": null,
      "diagnostics": [
        {
          "code": "ZP104",
          "severity": "error",
          "refused_by": null,
          "summary": "MEGACLI ended with 1",
          "detail": null,
          "help": [],
          "range": null
        }
      ]
    },
)");
    keepDocument("diff-unknown", text);
}

TEST(DiffDocument, ACommandThatFailsHasADocumentToo) {
    const std::string text = failedDiffDocument(
        {exampleFinding("ZP100", Severity::error, "there is no controller 9")}, diffHead);
    EXPECT_EQ(text.substr(text.find("\n  \"fingerprint\"")), R"(
  "fingerprint": null,
  "wanted_by": {
    "file": null,
    "kind": "policies"
  },
  "result": "unknown",
  "controllers": [],
  "diagnostics": [
    {
      "code": "ZP100",
      "severity": "error",
      "refused_by": null,
      "summary": "there is no controller 9",
      "detail": null,
      "help": [],
      "range": null
    }
  ]
}
)");
    keepDocument("diff-not-made", text);
}

} // namespace
} // namespace zolex::companion
