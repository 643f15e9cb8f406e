#include "LintText.h"

#include "commands/CommandLines.h"
#include "companion/lint/Models.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/Reach.h"
#include "companion/lint/Rules.h"
#include "engine/PlanController.h"
#include "engine/PolicyMatch.h"
#include "foundation/Report.h"
#include "model/Definition.h"
#include "model/RAIDController.h"
#include "policies/PolicyFile.h"
#include "setup/Samples.h"
#include "setup/ServerFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <set>

namespace zolex::companion {
namespace {

PolicyList readAll(const std::string& text) {
    SilentReport silent;
    const PolicyFile file = readPolicies(text, ControllerCatalogue(), PolicyOptions(), silent);
    EXPECT_TRUE(file.policies.has_value()) << text;
    return file.policies.value_or(PolicyList());
}

class Chance {
  public:
    explicit Chance(std::uint32_t seed) : engine_(seed) {}
    /// 0 to `below` - 1.
    std::size_t pick(std::size_t below) { return engine_() % below; }
    template <std::size_t Count>
    std::string of(const std::array<const char*, Count>& choices) {
        return choices.at(pick(Count));
    }

  private:
    std::mt19937 engine_;
};

// --- matching

constexpr std::array<const char*, 12> specifiers = {
    "m:8837", "m:8838", "m:",   "s:A1", "t:Kestrix-C7", "t:LSI-IDEal-RAID",
    "c:1",    "c:2",    "c:37", "d:2",  "d:3",          "ALL"};

std::string randomMatching(Chance& chance) {
    std::string text;
    const std::size_t policies = 1 + chance.pick(6);
    for (std::size_t p = 0; p < policies; ++p) {
        text += "[Policy.p" + std::to_string(p) + "]\n";
        const std::size_t entries = 1 + chance.pick(3);
        for (std::size_t e = 1; e <= entries; ++e) {
            text += "AppliesTo." + std::to_string(e) + " = " + chance.of(specifiers);
            for (std::size_t more = chance.pick(3); more > 0; --more) {
                text += "," + chance.of(specifiers);
            }
            text += "\n";
        }
    }
    return text;
}

std::vector<MatchValues> someControllers() {
    std::vector<MatchValues> all;
    for (const char* machine : {"8837", "8838", "9999"}) {
        for (const char* serial : {"a1", "B2"}) {
            for (const char* model : {"Kestrix-C7", "LSI-IDEal-RAID", "Kestrix-B1"}) {
                for (std::int32_t number = 1; number <= 3; ++number) {
                    for (std::int32_t drives = 0; drives <= 3; ++drives) {
                        if (drives > 2 && std::string(model) == "LSI-IDEal-RAID") {
                            continue; // there is none
                        }
                        all.push_back({machine, serial, model, number, 1, drives});
                    }
                }
            }
        }
    }
    return all;
}

TEST(Reach, NoPolicyAndNoEntryThatIsUsedIsSaidToBeDead) {
    Chance chance(20261122);
    const std::vector<MatchValues> controllers = someControllers();
    std::size_t deadPolicies = 0;
    std::size_t deadEntries = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::string text = randomMatching(chance);
        const PolicyDocument document = scanPolicies("p.ini", text);
        const std::vector<PolicyView> views = viewPolicies(document);
        const auto fates = findFates(views);
        const PolicyList policies = readAll(text);
        std::set<std::size_t> used;
        std::set<std::pair<std::size_t, std::size_t>> usedEntries;
        for (const MatchValues& values : controllers) {
            const auto found = findPolicy(policies, values, nullptr);
            if (!found) {
                continue;
            }
            used.insert(*found);
            const auto& entries = policies.policies()[*found].appliesTo;
            const auto first =
                std::find_if(entries.begin(), entries.end(),
                             [&](const AppliesTo& entry) { return entry.matches(values); });
            usedEntries.insert({*found, static_cast<std::size_t>(first - entries.begin())});
        }
        for (std::size_t p = 0; p < fates.size(); ++p) {
            const bool isDead = isShadowed(fates[p], p);
            deadPolicies += isDead ? 1 : 0;
            EXPECT_FALSE(isDead && used.count(p) > 0) << text;
            for (std::size_t e = 0; e < fates[p].size(); ++e) {
                const bool isDeadEntry = fates[p][e].fate != Fate::live;
                deadEntries += isDeadEntry ? 1 : 0;
                EXPECT_FALSE(isDeadEntry && usedEntries.count({p, e}) > 0)
                    << "policy " << p << " entry " << e << "\n"
                    << text;
            }
        }
    }
    EXPECT_GT(deadPolicies, 500U);
    EXPECT_GT(deadEntries, 2000U);
}

// --- plans

constexpr std::array<const char*, 10> models = {
    "LSI-MegaRAID-8480", "Kestrix-C7", "Kestrix-C9", "Kestrix-B1",   "Kestrix-B8",
    "Kestrix-A1",        "Kestrix-A8", "Kestrix-A9", "LSI-SAS-RAID", "LSI-SCSI-RAID"};
constexpr std::array<const char*, 9> levels = {"0", "1", "1E", "5", "6", "10", "50", "60", "AUTO"};
constexpr std::array<const char*, 4> strips = {"16", "64", "256", "1024"};

std::string randomList(Chance& chance, std::size_t most) {
    std::string list;
    for (std::size_t count = 1 + chance.pick(9); count > 0; --count) {
        list += (list.empty() ? "" : ",") + std::to_string(1 + chance.pick(most));
    }
    return list;
}

/// A policy that zolex reads, for one model and number of drives.
std::string randomLayout(Chance& chance, std::string& model, std::size_t& drives) {
    model = chance.of(models);
    drives = 2 + chance.pick(12);
    std::string text = "[Policy.p]\nAppliesTo.1 = t:" + model + ",d:" + std::to_string(drives) +
                       "\nArray_Mode = CUSTOM\n";
    const std::size_t arrays = 1 + chance.pick(2);
    for (std::size_t i = 0; i < arrays; ++i) {
        const std::size_t most = drives + (chance.pick(20) == 0 ? 1 : 0);
        text += std::string("Array.") + static_cast<char>('A' + i) + " = " +
                randomList(chance, most) + "\n";
    }
    if (chance.pick(2) == 0) {
        text += "Hotspares = " + std::to_string(1 + chance.pick(drives + 1)) + "\n";
    } else {
        text += "Array_Defaults = 0%:" + std::to_string(chance.pick(3)) + "\n";
    }
    if (chance.pick(3) != 0) {
        text += "Logical_Mode = CUSTOM\n";
        const std::size_t logical = 1 + chance.pick(3);
        for (std::size_t i = 1; i <= logical; ++i) {
            const char letter = static_cast<char>('A' + chance.pick(arrays));
            text += "Logical." + std::to_string(i) + " = " + letter + ":FILL:" + chance.of(levels) +
                    "\n";
        }
    } else if (chance.pick(2) == 0) {
        text += "Logical_Defaults = FILL:" + chance.of(levels) + "\n";
    }
    if (chance.pick(3) == 0) {
        text += "StripeSize = " + chance.of(strips) + "\n";
    }
    return text;
}

RAIDController equalDrives(const Kind& kind, std::size_t drives) {
    RAIDController controller;
    controller.setType(kind.type);
    controller.setSubtype(kind.subtype);
    controller.setScanOrder(1);
    for (std::size_t id = 0; id < drives; ++id) {
        controller.setSizeAndTarget(1, static_cast<std::int32_t>(id), 70000, 32);
    }
    return controller;
}

/// Whether zolex makes neither a plan nor its command lines.
bool isRefused(const std::string& text, const Kind& kind, std::size_t drives) {
    SilentReport silent;
    const PolicyList policies = readAll(text);
    const RAIDController controller = equalDrives(kind, drives);
    const ControllerPlan plan =
        planByPolicy(controller, 1, policies.policies().front(), {.reasons = false}, silent);
    if (plan.outcome == Outcome::refused) {
        return true;
    }
    return plan.layout && commandLines(controller, 1, *plan.layout, {}, silent).fault;
}

TEST(PlanRules, AnErrorOfThePlanIsToldExactlyWhereThereIsNoPlan) {
    Chance chance(4711);
    std::size_t refused = 0;
    std::size_t planned = 0;
    for (int round = 0; round < 5000; ++round) {
        std::string model;
        std::size_t drives = 0;
        const std::string text = randomLayout(chance, model, drives);
        const std::vector<Finding> findings = lint(scanPolicies("p.ini", text), {});
        const bool isTold =
            std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
                return finding.severity == Severity::error && finding.refusedBy == RefusedBy::plan;
            });
        const Kind kind = kindsOf(model).front();
        const bool isPlanless = isRefused(text, kind, drives);
        (isPlanless ? refused : planned) += 1;
        ASSERT_EQ(isTold, isPlanless) << text << textOf(findings);
    }
    EXPECT_GT(refused, 500U);
    EXPECT_GT(planned, 500U);
}

// --- what is shipped

TEST(ShippedSamples, HaveNothingButNumbersWithoutD) {
    for (const char* name : {"automatic.ini", "by-location.ini", "web-server.ini"}) {
        const std::string path = std::string(ZOLEX_TEST_DATA) + "/../../packaging/samples/" + name;
        std::FILE* const file = std::fopen(path.c_str(), "rb");
        ASSERT_NE(file, nullptr) << path;
        std::string text(10000, '\0');
        text.resize(std::fread(text.data(), 1, text.size(), file));
        std::fclose(file);
        EXPECT_GT(text.size(), 100U);
        EXPECT_EQ(lintText(text, {}), "") << name;
    }
}

TEST(ShippedSamples, OfTheVirtualServerHaveNothingButNumbersWithoutD) {
    ASSERT_EQ(zolex_sim::samples().size(), 12U);
    for (const zolex_sim::Sample& sample : zolex_sim::samples()) {
        zolex_sim::Problem problem;
        const zolex_sim::Server server = zolex_sim::readDefinition(sample.definition, problem);
        const std::string text = zolex_sim::samplePolicies(server).content;
        EXPECT_EQ(lintText(text, {}, {"ZX309"}), "") << sample.name;
    }
}

} // namespace
} // namespace zolex::companion
