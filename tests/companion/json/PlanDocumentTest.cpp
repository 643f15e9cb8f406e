#include "companion/json/PlanDocument.h"

#include "companion/json/PlanDocuments.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/Texts.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

using test::between;

using test::agreedPlan;
using test::exampleFinding;
using test::exampleNothingToDoPlan;
using test::exampleRefusedPlan;
using test::fullPlan;
using test::keepDocument;
using test::planHead;

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(PlanDocument, BeginsWithWhatItIsOf) {
    const std::string text = planDocument(agreedPlan(), planHead());
    EXPECT_EQ(between(text, "{", "  \"controllers\""), R"({
  "format": "zolex-plan",
  "format_version": "1.0",
  "tool": {
    "name": "zolexctl",
    "version": "2.20",
    "argv": [
      "plan",
      "site.ini",
      "-o",
      "plan.json"
    ]
  },
  "made_at": "2026-11-21T21:05:00+01:00",
  "plan_id": "p-5f1c09ab77e2",
  "fingerprint": {
    "algorithm": "zolex-fp-1",
    "strength": "serials",
    "identity": {
      "sha256": "1111111111111111111111111111111111111111111111111111111111111111",
      "machine_type": "8837",
      "serial_number": "KQ10Z7V",
      "controllers": [
        {
          "number": 1,
          "pci": "0000:02:0e.0",
          "ids": "1000:0411:1000:1002",
          "model": "LSI-MegaRAID-8480",
          "serial_number": "1122334455"
        }
      ]
    },
    "state": {
      "sha256": "2222222222222222222222222222222222222222222222222222222222222222"
    }
  },
  "machine_source": "hwdetect.exe",
  "policies": {
    "file": "site.ini",
    "sha256": "7777777777777777777777777777777777777777777777777777777777777777",
    "count": 3,
    "diagnostics": []
  },
)");
    keepDocument("plan-by-hand", text);
}

TEST(PlanDocument, TellsTheControllerAndWhyItsPolicy) {
    const std::string text = planDocument(agreedPlan(), planHead());
    EXPECT_EQ(between(text, "      \"number\": 1,\n      \"captured\"", "      \"supported\""),
              R"(      "number": 1,
      "captured": true,
      "model": "LSI-MegaRAID-8480",
      "utility": "MEGACLI",
      "adapter": 0,
      "pci": "0000:02:0e.0",
      "pci_ids": "1000:0411:1000:1002",
      "product_name": "LSI MegaRAID SAS 8480E",
      "serial_number": "1122334455",
      "firmware_version": "1.11.50-0300",
)");
    EXPECT_EQ(
        between(text, "      \"outcome\"", "          {\n            \"name\": \"Policy.web\""),
        R"(      "outcome": "planned",
      "outcome_reason": null,
      "policy": {
        "name": "Policy.web",
        "line": 17,
        "matched_by": "AppliesTo.1",
        "considered": [
          {
            "name": "Policy.db",
            "line": 3,
            "matched": false,
            "entries": [
              {
                "keyword": "AppliesTo.1",
                "line": 4,
                "matched": false,
                "specifiers": [
                  {
                    "specifier": "t:LSI-MegaRAID-8480",
                    "holds": true,
                    "actual": "LSI-MegaRAID-8480"
                  },
                  {
                    "specifier": "d:6",
                    "holds": false,
                    "actual": "8"
                  }
                ]
              }
            ]
          },
)");
    EXPECT_TRUE(holds(text, R"(            "name": "Policy.rest",
            "line": 40,
            "matched": null,
            "entries": []
)"));
}

TEST(PlanDocument, TellsWhatStands) {
    const std::string text = planDocument(agreedPlan(), planHead());
    EXPECT_EQ(between(text, "      \"before\"", "          {\n            \"id\": \"1\""),
              R"(      "before": {
        "arrays": [
          {
            "id": "0",
            "drives": [
              "32:0",
              "32:1"
            ],
            "spans": [
              [
                "32:0",
                "32:1"
              ]
            ],
            "listed": false
          },
)");
    EXPECT_TRUE(holds(text, R"(            "id": "0",
            "array": "0",
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
)"));
    EXPECT_EQ(between(planDocument(fullPlan(), planHead()), "        \"hotspares\": [",
                      "        \"layout_sha256\""),
              R"(        "hotspares": [
          {
            "location": "32:7",
            "hotspare_type": "Dedicated",
            "covers": [],
            "listed": false
          }
        ],
        "foreign_drives": [
          "32:5"
        ],
)");
}

TEST(PlanDocument, TellsWhatIsWantedAndWhy) {
    const std::string text = planDocument(agreedPlan(), planHead());
    EXPECT_EQ(
        between(text, "      \"after\"", "              {\n                \"location\": \"32:1\""),
        R"(      "after": {
        "rebuild_rate": "HIGH",
        "initialize_type": "Fast",
        "strip_size_bytes": 65536,
        "read_cache_policy": "AdaptiveReadAhead",
        "arrays": [
          {
            "id": "A",
            "capacity_bytes": 145492017152,
            "drives": [
              {
                "location": "32:0",
                "reason": {
                  "code": "listed",
                  "keyword": "Array.A",
                  "line": 25,
                  "as": "1"
                }
              },
)");
    EXPECT_EQ(between(text, "            \"id\": \"Logical.2\"", "              \"raid_type\""),
              R"(            "id": "Logical.2",
            "array": "B",
            "raid_type": "RAID5",
            "size": {
              "policy": "FILL",
              "fills": true
            },
            "capacity_bytes": 290984034304,
            "capacity_tolerance_bytes": 0,
            "strip_size_bytes": 65536,
            "write_cache_policy": "UnprotectedWriteBack",
            "read_cache_policy": "AdaptiveReadAhead",
            "reasons": {
              "capacity_bytes": {
                "code": "given",
                "keyword": "Logical.2",
                "line": 29,
                "as": "FILL"
              },
)");
    EXPECT_TRUE(holds(text, R"(        "hotspares": [
          {
            "location": "32:7",
            "hotspare_type": "Global",
            "covers": [
              "A",
              "B"
            ],
            "reason": {
              "code": "listed",
              "keyword": "Hotspares",
              "line": 27,
              "as": "8"
            }
          }
        ]
      },
)"));
}

TEST(PlanDocument, TellsTheStrategyTheBindingsAndTheComparison) {
    const std::string text = planDocument(fullPlan(), planHead());
    EXPECT_EQ(between(text, "      \"strategy\"", "      \"warnings\""), R"~(      "strategy": {
        "name": "rebuild",
        "because": [
          {
            "code": "drives-in-use",
            "text": "array B needs 32:5 and 32:6 besides 32:2-32:4 (LD 1)",
            "logical_drive": "1",
            "drives": [
              "32:2",
              "32:3",
              "32:4"
            ]
          }
        ]
      },
      "old_command": {
        "differences": [
          "zolex would need an empty controller: it has no line that deletes one logical drive"
        ]
      },
)~");
    EXPECT_EQ(between(text, "      \"bindings\"", "      \"drives\""), R"(      "bindings": [
        {
          "keyword": "Drives.B",
          "line": 26,
          "value": "5 x HDD",
          "becomes": "Array.B = 3,4,5,6,7",
          "drives": [
            {
              "location": "32:2",
              "code": "by-kind",
              "why": "HDD, 67.8 GB: the first of 5"
            }
          ],
          "why": "they are of one size"
        }
      ],
)");
    EXPECT_EQ(
        between(text, "          {\n            \"attribute\": \"missing\"", "      \"strategy\""),
        R"~(          {
            "attribute": "missing",
            "location": "32:7",
            "logical_drive": null,
            "wanted": "hot spare 32:7 (covers A, B)",
            "found": "none; 32:7 is free"
          }
        ],
        "equivalences": [
          "an equivalence"
        ],
        "not_compared": [
          "strip_size_bytes"
        ],
        "health": [
          "LD 0 is degraded: 32:1 failed"
        ]
      },
)~");
    keepDocument("plan-full", text);
}

TEST(PlanDocument, EndsWithLossesStepsAndTheRehearsal) {
    const std::string text = planDocument(agreedPlan(), planHead());
    EXPECT_EQ(between(text, "  \"destroys\"", "    {\n      \"step\": 2"),
              R"(  "destroys": {
    "consent": "8XXW-A52B",
    "capacity_bytes": 145492017152,
    "items": [
      {
        "controller": 1,
        "kind": "logical_drive",
        "id": "1",
        "raid_type": "RAID5",
        "drives": [
          "32:2",
          "32:3",
          "32:4"
        ],
        "capacity_bytes": 145492017152,
        "status": "Optimal",
        "built_by": null
      }
    ]
  },
  "steps": [
    {
      "step": 1,
      "controller": 1,
      "action": "delete-logical-drive",
      "actions": [
        "delete"
      ],
      "creates": [],
      "destroys": [
        "1"
      ],
      "summary": "delete LD 1",
      "command": "UTIL.BAT MEGACLI -CfgLdDel -L1 -a0",
      "argv": [
        "UTIL.BAT",
        "MEGACLI",
        "-CfgLdDel",
        "-L1",
        "-a0"
      ],
      "accepted_exit_codes": [
        0
      ],
      "pause_before_seconds": 0,
      "repeatable": false,
      "differs_from_zolex": "zolex would need an empty controller: it has no line that deletes one logical drive",
      "expected_after": {
        "layout_sha256": "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
      }
    },
)");
    EXPECT_EQ(between(text, "  \"rehearsal\"", "      \"bbbb"), R"(  "rehearsal": {
    "done": true,
    "ends_as_planned": true,
    "duration_ms": 1,
    "faults_tried": 3,
    "resumes_as_planned": 3,
    "not_done_because": [],
    "layouts": {
      "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa": [
        "RAID1 fill: 32:0 32:1"
      ],
)");
    EXPECT_EQ(between(text, "  \"old_command\": {\n    \"would_run\"", "}"),
              R"(  "old_command": {
    "would_run": [
      "zolex /r /y /f:site.ini"
    ],
    "differences": [
      "zolex would need an empty controller: it has no line that deletes one logical drive"
    ]
  },
  "accepted": [],
  "core_messages": [],
  "diagnostics": []
)");
}

TEST(PlanDocument, WhereNothingIsLostThereIsNothingToAgreeTo) {
    const std::string text = planDocument(exampleNothingToDoPlan(), planHead());
    EXPECT_TRUE(holds(text, R"(      "outcome": "already",
      "outcome_reason": "equivalent: the spare is 32:3 instead of 32:7",
)"));
    EXPECT_TRUE(holds(text, R"(  "destroys": {
    "consent": null,
    "capacity_bytes": 0,
    "items": []
  },
  "steps": [],
)"));
    keepDocument("plan-already", text);
}

TEST(PlanDocument, OneThatCannotBeCarriedOutHasItsFaultsAndNoSteps) {
    MachinePlan plan = exampleRefusedPlan();
    plan.policiesFindings = {exampleFinding("ZX101", Severity::error, "a fault of the file")};
    const std::string text = planDocument(plan, planHead());
    EXPECT_FALSE(holds(text, "\"steps\""));
    EXPECT_EQ(text.substr(text.find("\n  \"diagnostics\"")), R"(
  "diagnostics": [
    {
      "code": "ZX101",
      "severity": "error",
      "refused_by": null,
      "summary": "a fault of the file",
      "detail": null,
      "help": [],
      "range": null,
      "controller": null
    },
    {
      "code": "ZX701",
      "severity": "error",
      "refused_by": null,
      "summary": "Array.B lists drive 3, and 32:2 has no number since it failed",
      "detail": "drive 3 is 32:3 now",
      "help": [
        "write slots: Drives.B = slots 32:3,32:4,32:5,32:6,32:7",
        "zolexctl plan site.ini --accept ZX701"
      ],
      "range": {
        "filename": "site.ini",
        "start": {
          "line": 26,
          "column": 13,
          "byte": 612
        },
        "end": {
          "line": 26,
          "column": 14,
          "byte": 613
        }
      },
      "controller": 1
    }
  ]
}
)");
    keepDocument("plan-refused", text);
}

TEST(PlanDocument, ACommandThatFailsHasADocumentToo) {
    const std::string text = failedPlanDocument(
        {exampleFinding("ZP100", Severity::error, "there is no controller 9")}, planHead());
    EXPECT_TRUE(holds(text, "\n  \"plan_id\": null,\n  \"fingerprint\": null,\n")) << text;
    EXPECT_TRUE(holds(text, "\n  \"controllers\": [],\n")) << text;
    EXPECT_TRUE(holds(text, "\"summary\": \"there is no controller 9\"")) << text;
    EXPECT_FALSE(holds(text, "\"steps\"")) << text;
    keepDocument("plan-not-made", text);
}

TEST(PlanDocument, TheIdIsOfWhatIsDoneAndWhen) {
    MachinePlan plan = agreedPlan();
    plan.id.clear();
    const std::string id = planIdOf(plan, "2026-11-21T21:05:00+01:00");
    EXPECT_EQ(14U, id.size());
    EXPECT_EQ("p-", id.substr(0, 2));
    EXPECT_EQ(std::string::npos, id.find_first_not_of("0123456789abcdef", 2));
    EXPECT_EQ(id, planIdOf(plan, "2026-11-21T21:05:00+01:00"));
    EXPECT_TRUE(holds(planDocument(plan, planHead()), "\n  \"plan_id\": \"" + id + "\",\n"));
    EXPECT_NE(id, planIdOf(plan, "2026-11-21T21:05:01+01:00"));
    MachinePlan other = plan;
    other.controllers[0].steps[2].argv.back() = "-a1";
    EXPECT_NE(id, planIdOf(other, "2026-11-21T21:05:00+01:00"));
    other = plan;
    other.fingerprint.state = std::string(64, '3');
    EXPECT_NE(id, planIdOf(other, "2026-11-21T21:05:00+01:00"));
    other = plan;
    other.policiesHash = std::string(64, '3');
    EXPECT_NE(id, planIdOf(other, "2026-11-21T21:05:00+01:00"));
}

TEST(PlanDocument, WhatALogicalDriveHasForItselfIsNotToldOfAll) {
    MachinePlan plan = agreedPlan();
    plan.controllers[0].volumes[1].stripSizeBytes = 131072;
    plan.controllers[0].volumes[1].readCache = "Off";
    EXPECT_TRUE(holds(planDocument(plan, planHead()), R"(        "initialize_type": "Fast",
        "strip_size_bytes": null,
        "read_cache_policy": null,
)"));
}

TEST(PlanDocument, AControllerThatFailedHasNoLayout) {
    MachinePlan plan = exampleRefusedPlan();
    plan.controllers[0].controller.failed = true;
    plan.controllers[0].arrays.clear();
    plan.controllers[0].volumes.clear();
    plan.controllers[0].spares.clear();
    const std::string text = planDocument(plan, planHead());
    EXPECT_TRUE(holds(text, "\n      \"captured\": false,\n"));
    EXPECT_TRUE(holds(text, "\n      \"before\": null,\n      \"after\": null,\n"
                            "      \"comparison\": null,\n"));
    keepDocument("plan-not-captured", text);
}

} // namespace
} // namespace zolex::companion
