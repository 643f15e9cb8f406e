#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

/// RAID levels of the utility: how many drives an array of the level can have.
struct Level {
    const char* name;
    int least;
    int step; ///< the number of drives grows by it
};
constexpr Level levels[] = {{"0", 1, 1},  {"1", 2, 0},  {"5", 3, 1}, {"6", 4, 1},
                            {"10", 4, 2}, {"50", 6, 2}, {"60", 8, 2}};

struct Plan {
    std::string policy;
    std::string description;
};

/// Random servers and policies for them; repeatable by its seed.
class RandomServer {
  public:
    explicit RandomServer(unsigned seed) : random_(seed) {}

    /// A server with one to four enclosures and enough drives for arrays of `level`.
    std::string definition(const char* generation) {
        const int enclosures = number(1, 4);
        std::string drives;
        for (int i = 0; i < enclosures; ++i) {
            // The first enclosure alone takes an array of any level, and hot spares.
            const int inThis = i == 0 ? number(12, 16) : number(1, 9);
            drives += (i > 0 ? ", " : "");
            drives += R"({"enclosure": )" + std::to_string(8 + i * number(5, 60) + i * 70) +
                      R"(, "slot": )" + std::to_string(number(0, 3)) + R"(, "count": )" +
                      std::to_string(inThis) + R"(, "sizeMB": )" + std::to_string(size()) + "}";
            drives_ += inThis;
        }
        return R"({"machineType": "8837", "serialNumber": "KQ12345", "controllers": [{
            "utility": "MEGACLI", "model": "LSI-MegaRAID-8480", "generation": ")" +
               std::string(generation) + R"(",
            "pci": {"bus": 2, "device": 1, "vendorId": "0x1000", "deviceId": "0x0060",
                    "subsystemVendorId": "0x1F3D", "subsystemId": "0x0364"},
            "drives": [)" +
               drives + "]}]}";
    }

    /// A policy of up to three arrays, the first of `level`, and up to three hot spares.
    Plan plan(const Level& level, bool withHotspares) {
        std::vector<int> free(static_cast<std::size_t>(drives_));
        for (int i = 0; i < drives_; ++i) {
            free[static_cast<std::size_t>(i)] = i + 1;
        }
        std::shuffle(free.begin(), free.end(), random_);
        Plan plan;
        std::string arrays;
        std::string logical;
        const int wanted = number(1, 3);
        const Level* wish = &level;
        int made = 0;
        for (int i = 0; i < wanted; ++i) {
            const int n = drivesFor(*wish, static_cast<int>(free.size()));
            if (n > 0) {
                const char letter = static_cast<char>('A' + made);
                arrays += std::string("Array.") + letter + " = " + take(free, n) + "\n";
                logical += "Logical." + std::to_string(made + 1) + " = " + letter +
                           (number(0, 2) == 0 ? ":40%:" : ":FILL:") + wish->name +
                           (number(0, 1) == 0 ? ":ON" : ":OFF") + "\n";
                plan.description += std::string(wish->name) + "x" + std::to_string(n) + " ";
                ++made;
            }
            wish = &levels[static_cast<std::size_t>(number(0, 6))];
        }
        const int spares =
            withHotspares ? std::min<int>(number(1, 3), static_cast<int>(free.size())) : 0;
        static constexpr const char* stripes[] = {"16", "32", "64", "128"};
        static constexpr const char* reads[] = {"ADAPTIVE", "ON", "OFF"};
        plan.policy = std::string("[Policy.random]\nAppliesTo.1 = ALL\nStripeSize = ") +
                      stripes[number(0, 3)] + "\nReadAhead = " + reads[number(0, 2)] +
                      "\nArray_Mode = CUSTOM\n" + arrays +
                      (spares > 0 ? "Hotspares = " + take(free, spares) + "\n"
                                  : std::string("Array_Defaults = 0%:0\n")) +
                      "Logical_Mode = CUSTOM\n" + logical;
        return plan;
    }

  private:
    int number(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }

    int size() {
        static constexpr int sizes[] = {34464, 69376, 139236, 285148, 475883, 1906394};
        return sizes[number(0, 5)];
    }

    int drivesFor(const Level& level, int available) {
        if (available < level.least) {
            return 0;
        }
        const int steps =
            level.step == 0 ? 0 : (std::min(available, 16) - level.least) / level.step;
        return level.least + level.step * number(0, std::min(steps, 4));
    }

    static std::string take(std::vector<int>& free, int n) {
        std::string text;
        for (int i = 0; i < n; ++i) {
            text += (i > 0 ? "," : "") + std::to_string(free.back());
            free.pop_back();
        }
        return text;
    }

    std::mt19937 random_;
    int drives_ = 0;
};

struct Case {
    std::size_t level;
    bool withHotspares;
    const char* generation;
};

void PrintTo(const Case& one, std::ostream* stream) {
    *stream << levels[one.level].name << (one.withHotspares ? " with hot spares, " : ", ")
            << one.generation;
}

class RoundTripTest : public testing::TestWithParam<Case> {};

/// What a capture wrote, without the comments and the policy's name.
std::string layout(const VirtualServer& server, const std::string& file) {
    const std::string text = withoutComments(server.read(file));
    return text.substr(std::min(text.size(), text.find("AppliesTo.")));
}

TEST_P(RoundTripTest, CaptureResetDeployCaptureGivesTheSameLayout) {
    const Case& one = GetParam();
    constexpr unsigned rounds = 4;
    for (unsigned round = 0; round < rounds; ++round) {
        const auto seed = static_cast<unsigned>(one.level * 1000 + (one.withHotspares ? 500 : 0) +
                                                (one.generation[0] == 'l' ? 250 : 0) + round);
        SCOPED_TRACE(seed);
        RandomServer random(seed + 1);
        VirtualServer server(random.definition(one.generation));
        ASSERT_TRUE(server.isReady());
        const Plan plan = random.plan(levels[one.level], one.withHotspares);
        SCOPED_TRACE(plan.policy);
        server.write("wanted.ini", plan.policy);
        const ProgramRun first = server.zolex({"/f:wanted.ini"});
        ASSERT_EQ(0, first.exitCode) << first.output;

        const ProgramRun captured = server.zolex({"/c", "/f:captured.ini"});
        ASSERT_EQ(0, captured.exitCode) << captured.output;
        ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
        const ProgramRun empty = server.zolex({"/c", "/f:empty.ini"});
        ASSERT_EQ(0, empty.exitCode);
        ASSERT_FALSE(server.exists("empty.ini")) << empty.output;
        const ProgramRun second = server.zolex({"/f:captured.ini"});
        ASSERT_EQ(0, second.exitCode) << second.output;
        ASSERT_EQ(0, server.zolex({"/c", "/f:again.ini"}).exitCode);

        const std::string wanted = layout(server, "captured.ini");
        EXPECT_FALSE(linesAfter(wanted, "Array.A = ").empty());
        EXPECT_EQ(wanted, layout(server, "again.ini"));
        // The capture holds what was asked for, in the order asked for.
        for (const char* key :
             {"StripeSize = ", "ReadAhead = ", "Array.A = ", "Array.B = ", "Array.C = "}) {
            EXPECT_EQ(linesAfter(plan.policy, key), linesAfter(wanted, key)) << key;
        }
        EXPECT_EQ(linesAfter(plan.policy, "Hotspares = ").size(),
                  linesAfter(wanted, "Hotspares = ").size());
    }
}

std::vector<Case> cases() {
    std::vector<Case> all;
    for (std::size_t level = 0; level < std::size(levels); ++level) {
        for (const bool withHotspares : {false, true}) {
            for (const char* generation : {"early", "later"}) {
                all.push_back({level, withHotspares, generation});
            }
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(MegaRaid, RoundTripTest, testing::ValuesIn(cases()),
                         [](const testing::TestParamInfo<Case>& tested) {
                             return std::string("Raid") + levels[tested.param.level].name +
                                    (tested.param.withHotspares ? "WithHotspares" : "") +
                                    tested.param.generation;
                         });

} // namespace
} // namespace zolex::e2e
