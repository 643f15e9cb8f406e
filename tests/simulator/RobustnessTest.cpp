#include "model/State.h"
#include "setup/Samples.h"
#include "simulator/Mutation.h"
#include "simulator/SimulatorSupport.h"

namespace zolex_sim::test {
namespace {

TEST(Robustness, DefinitionsOfAnyBytes) {
    Random random(1);
    int sound = 0;
    for (int i = 0; i < 1500; ++i) {
        std::string text(samples()[below(random, samples().size())].definition);
        text = mutated(text, random);
        Problem problem;
        Server server = readDefinition(text, problem);
        if (!problem.found()) {
            // Whatever is let through must be playable.
            ++sound;
            for (const char* options : {"-LdPdInfo -a0", "-pdList -a0", "-adpallinfo -a0",
                                        "-CFGCLR -A0", "-CfgLdAdd R0 [32:0] -a0"}) {
                megacli(server, options);
            }
            showServer(server, {});
        }
    }
    EXPECT_GT(sound, 50);
    for (int i = 0; i < 2000; ++i) {
        std::string text;
        for (std::size_t n = below(random, 200); n > 0; --n) {
            text += anyByte(random);
        }
        Problem problem;
        readDefinition(text, problem);
        EXPECT_TRUE(problem.found());
    }
}

TEST(Robustness, DeepNestingAndHugeNumbers) {
    for (const std::string& text :
         {std::string(1'000'000, '['), std::string(200'000, '[') + std::string(200'000, ']'),
          R"({"machineType": )" + std::string(200'000, '[') + std::string(200'000, ']') + "}",
          R"({"machineType": 1e999999})" + std::string(),
          R"({"machineType": "1", "serialNumber": "2", "faults": [{"match": "", "delayMs": )" +
              std::string(100'000, '9') + "}]}"}) {
        Problem problem;
        readDefinition(text, problem);
        EXPECT_TRUE(problem.found());
        EXPECT_LT(problem.text().size(), 1000U);
    }
}

TEST(Robustness, StatesOfAnyBytes) {
    Random random(2);
    const std::string definition(sampleNamed("configured")->definition);
    const Server initial = serverOf(definition);
    const std::string whole = writeState(initial);
    int sound = 0;
    for (int i = 0; i < 1500; ++i) {
        Problem problem;
        Server server = initial;
        readState(mutated(whole, random), server, problem);
        if (!problem.found()) {
            ++sound;
            EXPECT_EQ(megacli(server, "-LdPdInfo -a0").exitCode, 0);
            EXPECT_EQ(megacli(server, "-pdList -a0").exitCode, 0);
            EXPECT_EQ(megacli(server, "-adpallinfo -a0").exitCode, 0);
            Problem again;
            Server copy = initial;
            readState(writeState(server), copy, again);
            EXPECT_EQ(again.text(), "");
        }
    }
    EXPECT_GT(sound, 20);
}

TEST(Robustness, CommandLinesOfAnyWords) {
    Random random(3);
    const std::vector<std::string> sound = {
        "-LdPdInfo -a0",
        "-pdList -a0",
        "-adpallinfo -a0",
        "-CFGCLR -A0 -SILENT",
        "-CFGFOREIGN -CLEAR -A0 -SILENT",
        "-PDHSP { -Set } -PhysDrv [ 32:0 , 32:1 ] -a0",
        "-PDHSP -Rmv -PhysDrv [ 32:0 ] -a0",
        "-CfgLdDel -L0 , 1 -a0",
        "-CfgLdAdd R5 [ 32:0 , 32:1 , 32:2 ] WB ADRA { -sz100 } -strpsz 64 -a0",
        "-CfgSpanAdd R10 -Array0 [ 32:0 , 32:1 ] -Array1 [ 32:2 , 32:3 ] WT NORA -strpsz 8 -a0"};
    std::vector<std::string> words = {"", "R6", "R60", ":0", "0:0", "-a1", "-A", "0", "-sz"};
    for (const std::string& options : sound) {
        for (const std::string& word : splitWords(options)) {
            words.push_back(word);
        }
    }
    Server server = serverOf(std::string(samples().front().definition));
    int accepted = 0;
    int refused = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::vector<std::string> arguments = splitWords(sound[below(random, sound.size())]);
        for (std::size_t n = below(random, 4); n > 0; --n) {
            arguments[below(random, arguments.size())] =
                below(random, 5) == 0 ? std::string(below(random, 9), anyByte(random))
                                      : words[below(random, words.size())];
        }
        arguments.insert(arguments.begin(), "MEGACLI");
        const std::string before = dump(server.controllers.front());
        const PlayResult result = playUtility(server, arguments);
        ++(result.exitCode == 0 ? accepted : refused);
        EXPECT_NE(result.exitCode, 49);
        if (!result.changed) {
            EXPECT_EQ(dump(server.controllers.front()), before);
        }
    }
    EXPECT_GT(accepted, 1000);
    EXPECT_GT(refused, 1000);
}

/// Random sound commands: whatever their order, the state stays one that can be read back.
TEST(Robustness, LongRunsOfCommandsKeepASoundState) {
    Random random(4);
    const std::string definition(sampleNamed("enclosures")->definition);
    const Server initial = serverOf(definition);
    Server server = initial;
    const std::vector<Drive> drives = server.controllers[0].drives;
    int created = 0;
    int removed = 0;
    for (int i = 0; i < 1500; ++i) {
        const auto list = [&](std::size_t count) {
            std::vector<std::string> locations;
            for (std::size_t n = 0; n < count; ++n) {
                locations.push_back(toText(drives[below(random, drives.size())].location));
            }
            return join(locations, ",");
        };
        std::string options;
        switch (below(random, 10)) {
        case 0:
            options = "-CFGCLR -A0";
            break;
        case 1:
            options = "-PDHSP {-Set} -PhysDrv[" + list(1) + "] -a0";
            break;
        case 2:
            options = "-CfgSpanAdd R10 -Array0[" + list(2) + "] -Array1[" + list(2) + "] -a0";
            break;
        case 3:
            options = "-CfgLdAdd R5 [" + list(3) + "] {-sz" +
                      std::to_string(below(random, 300'000)) + "} -a0";
            break;
        case 4:
            options = "-CfgLdAdd R1 [" + list(2) + "] WB RA -strpsz 128 -a0";
            break;
        case 5:
            options = "-CfgLdDel -L" + std::to_string(below(random, 8)) + " -a0";
            break;
        case 6:
            options = "-PDHSP -Rmv -PhysDrv[" + list(1) + "] -a0";
            break;
        default:
            options = "-CfgLdAdd R0 [" + list(1 + below(random, 2)) + "] -a0";
            break;
        }
        const PlayResult result = megacli(server, options);
        created += result.output.find("Created") != std::string::npos ? 1 : 0;
        removed += result.output.find("Deleted") != std::string::npos ||
                           result.output.find("Remove Physical Drive at") != std::string::npos
                       ? 1
                       : 0;
        Problem problem;
        Server copy = initial;
        readState(writeState(server), copy, problem);
        ASSERT_EQ(problem.text(), "") << options;
        ASSERT_EQ(dump(copy.controllers[0]), dump(server.controllers[0]));
        ASSERT_EQ(writeState(copy), writeState(server));
    }
    EXPECT_GT(created, 100);
    EXPECT_GT(removed, 30);
}

} // namespace
} // namespace zolex_sim::test
