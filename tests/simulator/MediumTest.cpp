// Where the listings tell solid-state drives, and that nothing else of them changes.

#include "simulator/BlockSupport.h"

#include <map>

namespace zolex_sim::test {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The lines of one listing that are not in the other, with "- " before those that it lost.
Lines changedLines(const std::string& from, const std::string& to) {
    std::map<std::string, int> left;
    for (const std::string& line : linesOf(from)) {
        ++left[line];
    }
    Lines changed;
    for (const std::string& line : linesOf(to)) {
        if (left[line]-- <= 0) {
            changed.push_back(line);
        }
    }
    for (const auto& [line, count] : left) {
        for (int i = 0; i < count; ++i) {
            changed.push_back("- " + line);
        }
    }
    return changed;
}

struct Listed {
    const char* utility;
    const char* generation;
    const char* command;
    Lines changed; ///< once the first of the drives is a solid-state drive
};

constexpr const char* twoPlaces = R"({"PLACE": 1, "ID": 0, "sizeMB": 1000 MEDIUM},
                                     {"PLACE": 1, "ID": 1, "sizeMB": 1000})";

std::string replaced(std::string text, const std::string& word, const std::string& by) {
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word)) {
        text.replace(at, word.size(), by);
    }
    return text;
}

/// Two drives in one array.
std::string definition(const Listed& listed, const std::string& medium) {
    const std::string utility = listed.utility;
    const bool isConf = utility == "ARCCONF" || utility == "HRCONF";
    const bool hasSlots = utility == "MEGACLI" || utility == "CFGGEN";
    std::string drives = replaced(twoPlaces, "PLACE", hasSlots ? "enclosure" : "channel");
    drives = replaced(drives, "ID", hasSlots ? "slot" : isConf ? "device" : "id");
    drives = replaced(drives, " MEDIUM", medium);
    const std::string level = R"("virtualDisks": [{"level": "RAID1", "spans": [["1:0", "1:1"]]}],)";
    return definitionOf(utility, drives,
                        "\"generation\": \"" + std::string(listed.generation) + "\"," + level);
}

std::string listing(const Listed& listed, const std::string& medium) {
    Server server = serverOf(definition(listed, medium));
    const PlayResult result = play(server, listed.utility + std::string(" ") + listed.command);
    EXPECT_EQ(result.exitCode, 0);
    return result.output;
}

TEST(Medium, IsListedWhereTheUtilityTellsIt) {
    const Lines megacli = {"Media Type: Solid State Device", "- Media Type: Hard Disk Device"};
    const Lines arcconf = {"         SSD                                : Yes"};
    const std::string member =
        "   Device 0                                 : Present (1000MB, SAS, ";
    const Listed rows[] = {
        {"MEGACLI", "early", "-pdList -a0", megacli},
        {"MEGACLI", "early", "-LdPdInfo -a0", megacli},
        {"MEGACLI", "later", "-pdList -a0", megacli},
        {"MEGACLI", "later", "-LdPdInfo -a0", megacli},
        {"MEGACLI", "later", "-adpallinfo -a0", {}},
        {"ARCCONF", "early", "GETCONFIG 1 AL", arcconf},
        {"ARCCONF", "later", "GETCONFIG 1 AL", arcconf},
        {"ARCCONF",
         "newest",
         "GETCONFIG 1 AL",
         {member + "SSD, Connector:0, Device:0) ZS000000", arcconf.front(),
          "- " + member + "HDD, Connector:0, Device:0) ZS000000"}},
        {"HRCONF", "early", "GETCONFIG 1 AL", {}},
        {"QTCSEND", "early", "GETCONFIG 1 AL", {}},
        {"CFGGEN",
         "early",
         "0 DISPLAY",
         {"  Drive Type                              : SAS_SSD",
          "- "
          "  Drive Type                              : SAS"}},
        {"CFGGEN1.02.02", "early", "0 DISPLAY", {}},
        {"HYPERWIN", "early", "/L /D00", {}},
    };
    for (const Listed& row : rows) {
        SCOPED_TRACE(row.utility + std::string(" ") + row.generation + " " + row.command);
        const std::string disks = listing(row, "");
        EXPECT_EQ(listing(row, R"(, "medium": "HDD")"), disks);
        EXPECT_EQ(changedLines(disks, listing(row, R"(, "medium": "ssd")")), row.changed);
    }
}

TEST(Medium, OtherWordsAreFaults) {
    Problem problem;
    readDefinition(definition({"MEGACLI", "early", "", {}}, R"(, "medium": "tape")"), problem);
    EXPECT_EQ(problem.text(), "controllers[0].drives[0].medium: unknown word \"tape\"");
}

TEST(Medium, IsShown) {
    Server server = serverOf(definition({"MEGACLI", "early", "", {}}, R"(, "medium": "ssd")"));
    EXPECT_EQ(showServer(server, {}).output,
              "Machine type 8837, serial number KQ1\n"
              "\n"
              "Controller 1: M, MEGACLI, PCI 2:0:0 1000:0050:0000:0000\n"
              "  drive 1:0            1000 MB  SAS  ZS000000             online, ssd\n"
              "  drive 1:1            1000 MB  SAS  ZS000001             online\n"
              "  array 0: [1:0,1:1]\n"
              "  logical drive 0: array 0, RAID1, 1000 MB, stripe 64 KB, WT, NORA\n");
}

} // namespace
} // namespace zolex_sim::test
