// QTCSEND, the CFGGEN utilities and HYPERWIN on any input: command lines of any words, long runs of
// commands, damaged definitions and states.

#include "model/State.h"
#include "setup/Samples.h"
#include "simulator/BlockSupport.h"
#include "simulator/Mutation.h"

namespace zolex_sim::test {
namespace {

// Servers with one controller, and command lines that it understands.
struct Subject {
    const char* name;
    const char* utility;
    const char* drives;
    std::vector<const char*> commands;
};

const std::vector<Subject>& subjects() {
    static const std::vector<Subject> all = {
        {"Qtcsend",
         "QTCSEND",
         R"({"channel": 1, "id": 0, "count": 8, "sizeMB": 1000},
            {"channel": 2, "id": 3, "count": 4, "sizeMB": 901})",
         {"GETCONFIG 1 AL", "SETCONFIG 1 DEFAULT NOPROMPT", "SETSTATE 1 2 3 HSP",
          "CREATE 1 LOGICALDRIVE NEWARRAY 500 5 1 0 1 1 2 4 NOPROMPT",
          "CREATE 1 LOGICALDRIVE NEWARRAY MAX 1E 1 2 1 3 1 4 NOPROMPT",
          "CREATE 1 LOGICALDRIVE NEWARRAY 77 0 1 5 1 6 NOPROMPT",
          "CREATE 1 LOGICALDRIVE A 100 0 NOPROMPT", "CREATE 1 LOGICALDRIVE B 33 1 NOPROMPT",
          "CREATE 1 LOGICALDRIVE C MAX 1E NOPROMPT"}},
        {"Cfggen",
         "CFGGEN",
         R"({"enclosure": 1, "slot": 0, "count": 8, "sizeMB": 1000},
            {"enclosure": 2, "slot": 3, "count": 4, "sizeMB": 901})",
         {"0 DISPLAY", "0 DELETE NOPROMPT", "0 HOTSPARE 2:3", "0 HOTSPARE 1:7",
          "0 CREATE IM MAX 1:0 1:1 qsync NOPROMPT", "0 CREATE IS 500 1:2 2:4 NOPROMPT",
          "0 CREATE IME MAX 1:3 1:4 1:5 NOPROMPT"}},
        {"CfggenScsi",
         "CFGGEN1.02.02",
         R"({"id": 0, "count": 9, "sizeMB": 1000})",
         {"0 DISPLAY", "0 DELETE NOPROMPT", "0 HOTSPARE 4", "0 CREATE IM MAX 0 1 qsync NOPROMPT",
          "0 CREATE IM 500 2 3 NOPROMPT"}},
        {"Hyperwin",
         "HYPERWIN",
         R"({"id": 0, "count": 2, "sizeMB": 38154})",
         {"/L /D00", "/L /D10", "/Ea", "/AM /S", "/AS64 /S", "/A S128 /! /S", "/OW", "/O WR"}},
    };
    return all;
}

class BlockRobustness : public testing::TestWithParam<std::size_t> {
  protected:
    [[nodiscard]] static const Subject& subject() { return subjects()[GetParam()]; }
    [[nodiscard]] static std::string definition() {
        return definitionOf(subject().utility, subject().drives);
    }
    /// Some of the understood command lines with some words exchanged.
    static std::vector<std::string> anyWords(Random& random) {
        const auto soundWords = [&] {
            return splitWords(subject().commands[below(random, subject().commands.size())]);
        };
        std::vector<std::string> words = soundWords();
        for (std::size_t n = below(random, 4); n > 0; --n) {
            std::string& word = words[below(random, words.size())];
            const std::vector<std::string> others = soundWords();
            word = below(random, 5) == 0
                       ? std::string(below(random, 9), static_cast<char>(below(random, 256)))
                       : others[below(random, others.size())];
        }
        words.insert(words.begin(), subject().utility);
        return words;
    }
    static std::string listing(Server& server) {
        std::string text;
        for (const char* options : {"0 DISPLAY", "GETCONFIG 1 AL", "/L /D00", "/L /D20"}) {
            text += play(server, std::string(subject().utility) + " " + options).output;
        }
        return text;
    }
};

/// What a command leaves can be read back, is listed alike, and is what it was when it refused.
TEST_P(BlockRobustness, CommandLinesOfAnyWords) {
    Random random(11);
    const Server initial = serverOf(definition());
    Server server = initial;
    int accepted = 0;
    int refused = 0;
    std::size_t most = 0;
    for (int i = 0; i < 1000; ++i) {
        const std::vector<std::string> words = anyWords(random);
        const std::string before = writeState(server);
        const PlayResult result = playUtility(server, words);
        ASSERT_TRUE(result.exitCode == 0 || result.exitCode == 1);
        ++(result.exitCode == 0 ? accepted : refused);
        most = std::max(most, server.controllers[0].logicalDrives.size());
        const std::string after = writeState(server);
        if (!result.changed || result.exitCode != 0) {
            ASSERT_EQ(after, before) << join(words, " ");
        }
        Problem problem;
        Server copy = initial;
        readState(after, copy, problem);
        ASSERT_EQ(problem.text(), "") << join(words, " ");
        ASSERT_EQ(dump(copy.controllers[0]), dump(server.controllers[0]));
    }
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 100);
    const auto limit = static_cast<std::size_t>(initial.controllers[0].identity.maxLogicalDrives);
    EXPECT_GE(most, std::min<std::size_t>(limit, 4));
    EXPECT_LE(most, limit);
    EXPECT_FALSE(listing(server).empty());
}

TEST_P(BlockRobustness, DefinitionsAndStatesOfAnyBytes) {
    Random random(12);
    Server configured = serverOf(definition());
    for (const char* options : subject().commands) {
        if (options != subject().commands[1] && options != std::string("/Ea")) {
            play(configured, std::string(subject().utility) + " " + options);
        }
    }
    ASSERT_FALSE(configured.controllers[0].logicalDrives.empty());
    const std::string whole = writeState(configured);
    const Server initial = serverOf(definition());
    int soundStates = 0;
    for (int i = 0; i < 800; ++i) {
        Problem problem;
        Server server = initial;
        readState(mutated(whole, random), server, problem);
        if (!problem.found()) {
            ++soundStates;
            EXPECT_FALSE(listing(server).empty());
        }
    }
    int soundDefinitions = 0;
    for (int i = 0; i < 250; ++i) {
        Problem problem;
        Server server = readDefinition(mutated(definition(), random), problem);
        if (!problem.found()) {
            // Whatever is let through must be playable.
            ++soundDefinitions;
            for (int command = 0; command < 10; ++command) {
                playUtility(server, anyWords(random));
            }
            EXPECT_FALSE(listing(server).empty());
        }
    }
    EXPECT_GT(soundStates, 5);
    EXPECT_GT(soundDefinitions, 20);
}

INSTANTIATE_TEST_SUITE_P(Utilities, BlockRobustness,
                         testing::Range<std::size_t>(0, subjects().size()),
                         [](const testing::TestParamInfo<std::size_t>& tested) {
                             return subjects()[tested.param].name;
                         });

} // namespace
} // namespace zolex_sim::test
