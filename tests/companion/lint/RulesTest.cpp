#include "MachineText.h"

#include "companion/lint/Rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zolex::companion {
namespace {

using test::arcServer;
using test::megaServer;

/// A file, and a machine where the rule needs one, that the rule finds something in.
struct Input {
    std::string rule;
    std::string machine; ///< definition; or empty
    std::string policies;
};

std::vector<Input> inputs() {
    return {
        {"ZX201", "", R"([Policy.all]
AppliesTo.1 = ALL
[Policy.rest]
AppliesTo.1 = t:Kestrix-C7
)"},
        {"ZX202", "", R"([Policy.one]
AppliesTo.1 = m:8837
[Policy.two]
AppliesTo.1 = m:8838
AppliesTo.2 = m:8837,d:4
)"},
        {"ZX203", "", R"([Policy.one]
AppliesTo.1 = t:Kestrix-X1
)"},
        {"ZX204", "", R"([Policy.one]
AppliesTo.1 = c:1,c:2
)"},
        {"ZX205", "", R"([Policy.one]
AppliesTo.1 = m: ,s:
)"},
        {"ZX206", "", R"([Policy.one]
AppliesTo.1 = c:37
AppliesTo.2 = o:16
AppliesTo.3 = d:145
AppliesTo.4 = t:LSI-IDEal-RAID,d:3
)"},
        {"ZX207", "", R"([Policy.six]
AppliesTo.1 = t:Kestrix-C7,d:6
[Policy.eight]
AppliesTo.1 = t:Kestrix-C7,d:8
)"},
        {"ZX208", "", R"([Policy.one]
AppliesTo.1 = t:SSACLI
)"},
        {"ZX301", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1, 2,1
Hotspares = 8,8
)"},
        {"ZX302", "", R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 2,3
Hotspares = 8
)"},
        {"ZX303", "", R"([Policy.one]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,5:0,0:3
Hotspares = 1:36
)"},
        {"ZX304", "", R"([Policy.one]
AppliesTo.1 = m:8837,d:4
AppliesTo.2 = m:8838,d:6
Array_Mode = CUSTOM
Array.A = 1,7
Hotspares = 2
)"},
        {"ZX305", "", R"([Policy.one]
AppliesTo.1 = m:8837,d:40
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,32,33
Hotspares = 40
)"},
        {"ZX307", "", R"([Policy.one]
AppliesTo.1 = m:8837,d:8
Array.A = 1,2
Array.B = 2,2
)"},
        {"ZX308", "", R"([Policy.one]
AppliesTo.1 = m:8837,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"},
        {"ZX309", "", R"([Policy.one]
AppliesTo.1 = m:8837,d:8
AppliesTo.2 = m:8838
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 8
)"},
        {"ZX310", "", R"([Policy.one]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 10%:0
)"},
        {"ZX311", "", R"([Policy.one]
AppliesTo.1 = d:8
Drives.A = 2 x SSD
Hotspares = 8
)"},
        {"ZX312", "", R"([Policy.one]
AppliesTo.1 = d:8
Drives.B = 2 x SSD
)"},
        {"ZX313", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = ALL
Drives.A = 2 x SSD
)"},
        {"ZX401", "", R"([Policy.one]
AppliesTo.1 = t:Kestrix-C7,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"},
        {"ZX402", "", R"([Policy.one]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Hotspares = 1:7
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5
)"},
        {"ZX403", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
StripeSize = 256
)"},
        {"ZX404", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:10:ON
)"},
        {"ZX405", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:50%:5:ON
)"},
        {"ZX406", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:69300:1:ON
)"},
        {"ZX407", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
Logical_Defaults = FILL:5EE
)"},
        {"ZX408", "", R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:5:ON
)"},
        {"ZX409", "", R"([Policy.one]
AppliesTo.1 = ALL
Max_Logical_Drive_Size = 100000
)"},
        {"ZX410", "", R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8
Logical.1 = A:FILL:1
Logical.2 = B:FILL:1
)"},
        {"ZX411", "", R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
)"},
        {"ZX412", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"},
        {"ZX501", "", R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
)"},
        {"ZX502", "", R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8,4
)"},
        {"ZX503", "", R"([Policy.one]
AppliesTo.1 = d:20
Hotspares = 1,2,3,4,5,6,7,8,9
)"},
        {"ZX504", "", R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1
Array.B = 2
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
Logical.2 = B:FILL:VOLUME
)"},
        {"ZX505", "", R"([Policy.AUTO-LSI-MegaRAID-8480-1]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
)"},
        {"ZX601", arcServer(R"({"channel": 0, "device": 0, "count": 18, "sizeMB": 69889})"),
         R"([Policy.web]
AppliesTo.1 = t:Kestrix-B7,d:18
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array.C = 5,6
Array.D = 7,8
Array.E = 9,10
Array.F = 11,12
Array.G = 13,14
Array.H = 15,16
Hotspares = 17,18
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
Logical.3 = C:FILL:1:ON
Logical.4 = D:FILL:1:ON
Logical.5 = E:FILL:1:ON
Logical.6 = F:FILL:1:ON
Logical.7 = G:FILL:1:ON
Logical.8 = H:FILL:1:ON
)"},
        {"ZX602", "", R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
Array_Mode = CUSTOM
Array.A = 1:4,1:5,1:6,1:7,1:8,1:9,1:10,1:11,1:12,1:13,1:14,1:15,1:16,1:17,1:18,1:19,1:20,1:21,1:22,1:23,1:24,1:25,1:26,1:27,1:28,1:29,1:30,1:31,1:32,1:33,1:34,1:35
Array_Defaults = 0%:0
)"},
        {"ZX603", "", R"([Policy.one]
AppliesTo.1 = ALL
AppliesTo.16 = ALL
)"},
        {"ZX604", "", R"([Policy.one]
AppliesTo.1 = m:8837,s:KQ10Z7V
StripeSize = 256
)"},
        {"ZX605",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})",
                    R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
)"},
        {"ZX610", "", R"([Policy.one]
AppliesTo.1 = t:STORCLI,d:8
AppliesTo.2 = t:MegaRAID-9560-8i-4GB
)"},
        {"ZX701", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 6, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"},
        {"ZX702", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "bad"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376, "status": "bad"})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 4
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"},
        {"ZX703", megaServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "sizeMB": 69376, "mediaErrors": 12, "predictiveFailures": 1},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "mediaErrors": 1})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"},
        {"ZX704", megaServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "count": 2, "sizeMB": 139392})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"},
        {"ZX705", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 33, "slot": 0, "count": 2, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:0:ON
)"},
        {"ZX706", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 139392},
{"enclosure": 32, "slot": 2, "count": 1, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"},
        {"ZX707", megaServer(R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
[Policy.db]
AppliesTo.1 = m:8840
AppliesTo.2 = s:KQ10Z8C,c:1
)"},
        {"ZX708", megaServer(""), R"([Policy.web]
AppliesTo.1 = ALL
)"},
        {"ZX709",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 1, "sizeMB": 69376})", "", "None"),
         R"([Policy.web]
AppliesTo.1 = ALL
Logical_Defaults = FILL:0
)"},
        {"ZX710", megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "foreign"})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"},
        {"ZX711", megaServer(R"({"slot": 0, "count": 4, "sizeMB": 69376})"), R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 4
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"},
        {"ZX712", megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
         R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"},
    };
}

std::set<std::string> codesOf(const Input& input) {
    const PolicyDocument document = scanPolicies("p.ini", input.policies);
    std::vector<Finding> findings;
    if (input.machine.empty()) {
        findings = lint(document, {});
    } else {
        test::SimulatedPlatform platform(input.machine);
        const Snapshot snapshot = captureMachine(platform, {});
        findings = lint(document, {&snapshot}, {});
    }
    std::set<std::string> codes;
    for (const Finding& finding : findings) {
        codes.insert(finding.code);
    }
    return codes;
}

TEST(Rules, EachOfGroups2To7FindsSomething) {
    const std::vector<Input> all = inputs();
    for (const Rule& rule : rules()) {
        if (rule.id < "ZX2" || rule.id >= "ZX8") {
            continue;
        }
        const auto input = std::find_if(
            all.begin(), all.end(), [&rule](const Input& each) { return each.rule == rule.id; });
        ASSERT_NE(input, all.end()) << "no input for " << rule.id;
        EXPECT_EQ(codesOf(*input).count(std::string(rule.id)), 1U) << rule.id;
    }
}

TEST(Rules, EachFindingIsOfARule) {
    for (const Input& input : inputs()) {
        for (const std::string& code : codesOf(input)) {
            EXPECT_NE(findRule(code), nullptr) << code;
        }
    }
}

TEST(Rules, StandInOrderAndSayWhatTheyMean) {
    std::string_view before;
    for (const Rule& rule : rules()) {
        EXPECT_LT(before, rule.id);
        before = rule.id;
        EXPECT_FALSE(rule.title.empty()) << rule.id;
        EXPECT_FALSE(rule.why.empty()) << rule.id;
        EXPECT_FALSE(rule.help.empty()) << rule.id;
        EXPECT_EQ(findRule(rule.id), &rule);
    }
    EXPECT_EQ(findRule("zx411"), findRule("ZX411"));
    EXPECT_EQ(findRule("ZX41"), nullptr);
}

} // namespace
} // namespace zolex::companion
