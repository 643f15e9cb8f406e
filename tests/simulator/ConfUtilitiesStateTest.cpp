#include "model/State.h"
#include "setup/Samples.h"
#include "simulator/ConfSupport.h"

#include <random>

namespace zolex_sim::test {
namespace {

TEST(ConfDefinition, FieldsOfTheFamilies) {
    const Server server = ConfServer{"ARCCONF",
                                     R"({"channel": 1, "device": 4, "count": 2, "sizeMB": 10},
                                        {"channel": 0, "device": 9, "sizeMB": 10, "enclosure": 5,
                                         "slot": 6, "interface": "SATA"},
                                        {"channel": 0, "device": 10, "sizeMB": 10,
                                         "interface": "SCSI"})",
                                     ""}
                              .server();
    std::vector<std::string> found;
    for (const Drive& drive : server.controllers[0].drives) {
        found.push_back(toText(drive.location) + " " + toText(drive.bay) + " " +
                        drive.transferSpeed);
    }
    EXPECT_EQ(found, (std::vector<std::string>{"1:4 0:4 SAS 3.0 Gb/s", "1:5 0:5 SAS 3.0 Gb/s",
                                               "0:9 5:6 SATA 3.0 Gb/s", "0:10 0:10 Ultra320"}));
    const ControllerIdentity& identity = server.controllers[0].identity;
    EXPECT_EQ(identity.levels.size(), 10U);
    EXPECT_EQ(identity.defaultStripeKb, 256);
    EXPECT_EQ(identity.defaultWritePolicy, WritePolicy::writeBack);
    EXPECT_EQ(identity.defaultReadPolicy, ReadPolicy::ahead);
    EXPECT_EQ(ConfServer({"HRCONF", "", ""}).server().controllers[0].identity.levels.size(), 4U);
    EXPECT_EQ(ConfServer({"HRCONF", "", ""}).server().controllers[0].identity.defaultStripeKb, 64);
}

TEST(ConfDefinition, FaultsNameTheField) {
    const struct {
        const char* drives;
        const char* fields;
        const char* problem;
    } rows[] = {
        {R"({"device": 0, "sizeMB": 10})", "", "controllers[0].drives[0].channel: is missing"},
        {R"({"channel": 0, "sizeMB": 10})", "", "controllers[0].drives[0].device: is missing"},
        {R"({"channel": 256, "device": 0, "sizeMB": 10})", "",
         "controllers[0].drives[0].channel: must be a whole number from 0 to 255"},
        {R"({"channel": 0, "device": 1, "count": 2, "sizeMB": 10},
            {"channel": 0, "device": 2, "sizeMB": 10})",
         "", "controllers[0].drives[1].slot: there is already a drive at 0:2"},
        {"", R"("raidLevels": ["RAID5E"],)", "controllers[0].raidLevels[0]: unknown RAID level"},
        {"", R"("showsReadCache": 1,)", "controllers[0].showsReadCache: must be true or false"},
        {"", R"("physicalSlot": "x",)",
         "controllers[0].physicalSlot: must be a whole number from 0 to 255"},
        {"", R"("enclosureDevices": [{"channel": 0}],)",
         "controllers[0].enclosureDevices[0].device: is missing"},
        {"", R"("enclosureDevices": [{"channel": 0, "device": 1, "slot": 2}],)",
         "controllers[0].enclosureDevices[0].slot: unknown field"},
        {R"({"channel": 0, "device": 0, "sizeMB": 10})",
         R"("virtualDisks": [{"level": "VOLUME", "spans": [["0:0"]], "batteryProtected": "yes"}],)",
         "controllers[0].virtualDisks[0].batteryProtected: must be true or false"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(problemOf(ConfServer{"ARCCONF", row.drives, row.fields}.definition()),
                  row.problem);
    }
    // What is only these families' is unknown elsewhere.
    EXPECT_EQ(problemOf(definitionWith(R"({"channel": 0, "slot": 0, "sizeMB": 10})")),
              "controllers[0].drives[0].channel: unknown field");
    EXPECT_EQ(problemOf(definitionWith("", R"("physicalSlot": 1,)")),
              "controllers[0].physicalSlot: unknown field");
    EXPECT_EQ(problemOf(definitionWith("", R"("raidLevels": ["VOLUME"],)")),
              "controllers[0].raidLevels[0]: unknown RAID level");
}

TEST(ConfState, IsKeptAcrossRuns) {
    const TemporaryFolder folder;
    folder.write("server.json",
                 ConfServer{"ARCCONF", R"({"channel": 0, "device": 0, "count": 9, "sizeMB": 1000})",
                            R"("automaticFailover": "Enabled",)"}
                     .definition());
    const Runner runner(folder.path());
    const auto run = [&](const std::string& options) {
        std::vector<std::string> arguments = splitWords(options);
        arguments.insert(arguments.begin(), {"util", "ARCCONF"});
        return runner(arguments);
    };
    EXPECT_EQ(run("CREATE 1 LOGICALDRIVE Stripesize 64 Name ARRAY0_LOGICAL0 MAX 5EE 0 0 0 1 0 2 "
                  "0 3 NOPROMPT")
                  .exitCode,
              0);
    EXPECT_EQ(
        run("CREATE 1 LOGICALDRIVE Name ARRAY1_LOGICAL1 MAX VOLUME 0 4 0 5 NOPROMPT").exitCode, 0);
    EXPECT_EQ(run("SETCACHE 1 LOGICALDRIVE 1 wbb NOPROMPT").exitCode, 0);
    EXPECT_EQ(run("SETCACHE 1 LOGICALDRIVE 2 roff NOPROMPT").exitCode, 0);
    EXPECT_EQ(run("SETSTATE 1 DEVICE 0 8 HSP").exitCode, 0);
    const std::string before = folder.read("state.json");
    const std::string listing = run("GETCONFIG 1 AL").output;
    EXPECT_NE(listing.find("RAID level                               : 5EE\n"), std::string::npos);
    EXPECT_NE(listing.find("Enabled (write-back) when protected by battery\n"), std::string::npos);
    EXPECT_NE(listing.find("RAID level                               : Spanned_volume\n"),
              std::string::npos);
    EXPECT_NE(listing.find("Read-cache mode                          : Disabled\n"),
              std::string::npos);
    EXPECT_NE(listing.find("State                              : Hot Spare\n"), std::string::npos);
    // Neither listings nor refusals touch the file.
    const Outcome refused = run("CREATE 1 LOGICALDRIVE Name X MAX VOLUME 0 8 NOPROMPT");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.output, "Controllers found: 1\n"
                              "The physical disk at 0:8 is not free: it is hotspare.\n"
                              "\n"
                              "Command aborted.\n");
    EXPECT_EQ(folder.read("state.json"), before);
    EXPECT_EQ(run("SETCONFIG 1 DEFAULT NOPROMPT").exitCode, 0);
    EXPECT_EQ(run("GETCONFIG 1 AL").output.find("Logical drive number"), std::string::npos);
}

TEST(ConfState, StatesThatContradictThemselvesAreRefused) {
    const ConfServer conf{"ARCCONF", R"({"channel": 0, "device": 0, "count": 4, "sizeMB": 1000})",
                          ""};
    Server server = conf.server();
    playLine(server, "ARCCONF CREATE 1 LOGICALDRIVE Name A MAX 1E 0 0 0 1 0 2 NOPROMPT");
    const std::string whole = writeState(server);
    const struct {
        const char* from;
        const char* to;
        const char* problem;
    } rows[] = {
        {"\"RAID1E\"", "\"RAID5E\"",
         "controllers[0].logicalDrives[0].level: RAID5E is not supported by this controller."},
        {"\"RAID1E\"", "\"RAID5EE\"",
         "controllers[0].logicalDrives[0].level: RAID5EE takes 4 to 32 physical disks in a span, "
         "not 3."},
        {"1500", "1501", "controllers[0].logicalDrives[0].sizeMB: does not fit the array"},
        {"\"name\": \"A\"", "\"name\": \"A\", \"batteryProtected\": 1",
         "controllers[0].logicalDrives[0].batteryProtected: must be true or false"},
    };
    for (const auto& row : rows) {
        std::string text = whole;
        const std::size_t found = text.find(row.from);
        ASSERT_NE(found, std::string::npos) << row.from;
        text.replace(found, std::string(row.from).size(), row.to);
        Problem problem;
        Server copy = conf.server();
        readState(text, copy, problem);
        EXPECT_EQ(problem.text(), row.problem);
    }
}

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

const std::vector<std::string>& soundLines() {
    static const std::vector<std::string> lines = {
        "GETCONFIG 1 AL",
        "CREATE 1 LOGICALDRIVE Stripesize 64 Name ARRAY0_LOGICAL0 MAX 10 0 0 0 1 0 2 0 3 NOPROMPT",
        "CREATE 1 LOGICALDRIVE Name ARRAY0_LOGICAL0 Method QUICK 500 1 0 0 0 1 NOPROMPT",
        "CREATE 1 LOGICALDRIVE Name A Init_Priority HIGH Init_Method QUICK MAX 1 0 1 0 2 NOPROMPT",
        "CREATE 1 LOGICALDRIVE Name A MAX SIMPLE VOLUME 0 3 NOPROMPT",
        "SETCACHE 1 LOGICALDRIVE 1 wbb NOPROMPT",
        "SETSTATE 1 DEVICE 0 2 HSP noprompt",
        "SETCONFIG 1 DEFAULT NOPROMPT",
    };
    return lines;
}

TEST(ConfRobustness, CommandLinesOfAnyWords) {
    Random random(11);
    std::vector<std::string> words = {"", "6", "60", "5EE", "-1", "99999999999999999999", "roff"};
    for (const std::string& line : soundLines()) {
        for (const std::string& word : splitWords(line)) {
            words.push_back(word);
        }
    }
    int accepted = 0;
    int refused = 0;
    constexpr const char* fiveDrives = R"({"channel": 0, "device": 0, "count": 5, "sizeMB": 1000})";
    Server arcconf = ConfServer{"ARCCONF", fiveDrives, ""}.server();
    Server hrconf = ConfServer{"HRCONF", fiveDrives, ""}.server();
    for (int i = 0; i < 4000; ++i) {
        const char* utility = i % 2 == 0 ? "ARCCONF" : "HRCONF";
        Server& server = i % 2 == 0 ? arcconf : hrconf;
        std::vector<std::string> arguments =
            splitWords(soundLines()[below(random, soundLines().size())]);
        for (std::size_t n = below(random, 3); n > 0; --n) {
            std::string& word = arguments[below(random, arguments.size())];
            word = words[below(random, words.size())];
            if (below(random, 5) == 0) {
                word.assign(below(random, 9), '\0');
                for (char& c : word) {
                    c = static_cast<char>(below(random, 256));
                }
            }
        }
        arguments.insert(arguments.begin(), utility);
        const std::string before = writeState(server);
        const PlayResult result = playUtility(server, arguments);
        ++(result.exitCode == 0 ? accepted : refused);
        EXPECT_EQ(result.output.ends_with(result.exitCode == 0
                                              ? "\nCommand completed successfully.\n"
                                              : "\n\nCommand aborted.\n"),
                  true);
        if (!result.changed) {
            EXPECT_EQ(writeState(server), before);
        }
    }
    EXPECT_GT(accepted, 400);
    EXPECT_GT(refused, 1000);
}

/// Random sound commands: whatever their order, the state stays one that can be read back.
TEST(ConfRobustness, LongRunsOfCommandsKeepASoundState) {
    Random random(12);
    for (const char* utility : {"ARCCONF", "HRCONF"}) {
        const ConfServer conf{utility,
                              R"({"channel": 0, "device": 0, "count": 14, "sizeMB": 1000},
                                 {"channel": 1, "device": 3, "count": 4, "sizeMB": 900})",
                              R"("automaticFailover": "Enabled",)"};
        Server server = conf.server();
        const std::vector<Drive> drives = server.controllers[0].drives;
        static constexpr const char* levels[] = {"0", "1",  "1E", "5",  "5EE",
                                                 "6", "10", "50", "60", "VOLUME"};
        static constexpr const char* modes[] = {"roff", "ron", "wb", "wbb", "wt"};
        int created = 0;
        for (int i = 0; i < 300; ++i) {
            const auto list = [&](std::size_t count) {
                std::string text;
                for (std::size_t n = 0; n < count; ++n) {
                    const DriveLocation& place = drives[below(random, drives.size())].location;
                    text += formatted(" %d %d", *place.enclosure, place.slot);
                }
                return text;
            };
            std::string options;
            switch (below(random, 8)) {
            case 0:
                options = "SETCONFIG 1 DEFAULT NOPROMPT";
                break;
            case 1:
                options = "SETSTATE 1 DEVICE" + list(1) + " HSP";
                break;
            case 2:
                options = formatted("SETCACHE 1 LOGICALDRIVE %zu %s NOPROMPT", 1 + below(random, 3),
                                    modes[below(random, 5)]);
                break;
            default:
                options =
                    formatted("CREATE 1 LOGICALDRIVE Name A %s %s",
                              below(random, 2) == 0 ? "MAX"
                                                    : std::to_string(below(random, 3000)).c_str(),
                              levels[below(random, 10)]) +
                    list(1 + below(random, 4)) + " NOPROMPT";
                break;
            }
            const PlayResult result = playLine(server, std::string(utility) + " " + options);
            created += result.output.find("Creating") != std::string::npos ? 1 : 0;
            EXPECT_EQ(playLine(server, std::string(utility) + " GETCONFIG 1 AL").exitCode, 0);
            Problem problem;
            Server copy = conf.server();
            readState(writeState(server), copy, problem);
            ASSERT_EQ(problem.text(), "") << options;
            ASSERT_EQ(writeState(copy), writeState(server)) << options;
        }
        EXPECT_GT(created, 20) << utility;
    }
}

TEST(ConfSamples, CanBeCapturedConfiguredAndReset) {
    const struct {
        const char* sample;
        std::vector<std::string> commands;
    } rows[] = {
        {"arcconf",
         {"ARCCONF CREATE 1 LOGICALDRIVE Stripesize 64 Name A MAX 6 0 0 0 1 0 2 0 3 NOPROMPT",
          "ARCCONF SETCACHE 1 LOGICALDRIVE 1 wt NOPROMPT", "ARCCONF SETSTATE 1 DEVICE 0 7 HSP",
          "ARCCONF GETCONFIG 1 AL", "ARCCONF SETCONFIG 1 DEFAULT NOPROMPT"}},
        {"hrconf",
         {"HRCONF CREATE 1 LOGICALDRIVE Stripesize 64 Name A MAX 10 0 0 0 1 1 8 1 9 NOPROMPT",
          "HRCONF SETSTATE 1 DEVICE 0 3 HSP noprompt", "HRCONF GETCONFIG 1 AL",
          "HRCONF SETCONFIG 1 DEFAULT NOPROMPT"}},
    };
    for (const auto& row : rows) {
        ASSERT_NE(sampleNamed(row.sample), nullptr);
        Server server = serverOf(std::string(sampleNamed(row.sample)->definition));
        for (const std::string& command : row.commands) {
            EXPECT_EQ(playLine(server, command).exitCode, 0) << command;
        }
    }
}

} // namespace
} // namespace zolex_sim::test
