// Listings of servers as they are: what is copied of them, and what is not and why.

#include "companion/facts/FactsReader.h"
#include "companion/layout/NormalForm.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/Originals.h"
#include "model/RAIDController.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <span>

namespace zolex::companion {
namespace {

struct Listed {
    const char* utility;
    std::int32_t type;
    std::vector<const char*> files;
    const char* because = "";
};

ControllerSnapshot originalOf(const Listed& listed) {
    ControllerSnapshot original;
    original.number = 1;
    original.utility = listed.utility;
    original.adapter =
        original.utility == "MEGACLI" || original.utility.starts_with("CFGGEN") ? 0 : 1;
    for (const std::string& command : test::listingCommandsOf(original.utility)) {
        original.commands.push_back({"UTIL.BAT " + original.utility + " " + command});
    }
    for (const char* const file : listed.files) {
        original.listings.push_back(zolex::test::readTestData(file));
    }
    original.facts = readFacts(listed.type, original.listings);
    return original;
}

TEST(ListedServers, AreCopied) {
    const Listed rows[] = {
        {"MEGACLI",
         controller_type::megaRaid,
         {"megacli-ldpdinfo-early.txt", "megacli-pdlist-early.txt", "megacli-adpallinfo.txt"}},
        {"MEGACLI",
         controller_type::megaRaid,
         {"megacli-ldpdinfo-later.txt", "megacli-pdlist-later.txt", "megacli-adpallinfo.txt"}},
        {"MEGACLI",
         controller_type::megaRaid,
         {"megacli-ldpdinfo-missing.txt", "megacli-pdlist-later.txt", "megacli-adpallinfo.txt"}},
        {"ARCCONF", controller_type::arcconf7, {"arcconf-getconfig-plain.txt"}},
        {"ARCCONF", controller_type::arcconf7, {"arcconf-getconfig-segments.txt"}},
        {"ARCCONF", controller_type::arcconf7, {"arcconf-getconfig-expander.txt"}},
        {"ARCCONF", controller_type::arcconf7, {"arcconf-getconfig-newer.txt"}},
        {"HRCONF",
         controller_type::hrconf8,
         {"hrconf-getconfig.txt"},
         // the caches of one logical drive are told, and of the other not
         "LD 2 of the copy has another strip size or cache mode"},
        {"QTCSEND", controller_type::family, {"qtcsend-getconfig.txt"}},
        {"CFGGEN", controller_type::lsiSas, {"cfggen-display.txt"}},
        {"HYPERWIN", controller_type::lsiIde, {"hyperwin-list.txt"}},
    };
    for (const Listed& row : rows) {
        SCOPED_TRACE(row.files.front());
        const ControllerSnapshot original = originalOf(row);
        const MadeCopy made = copyController(original, row.type);
        EXPECT_EQ(made.because, row.because);
        if (made.copy) {
            EXPECT_EQ(normalForm(made.facts), normalForm(original.facts));
        }
    }
}

/// A word of the listings that is another one on this server.
struct Oddity {
    const char* from;
    const char* to;
    const char* because = "";
    bool isLast = false; ///< only where the word is told last
};

void replaceIn(std::string& text, const Oddity& oddity) {
    const std::string_view from = oddity.from;
    for (std::size_t at = text.rfind(from); at != std::string::npos && at < text.size();
         at = at == 0 ? std::string::npos : text.rfind(from, at - 1)) {
        text.replace(at, from.size(), oddity.to);
        if (oddity.isLast) {
            return;
        }
    }
}

void expectCopied(const Listed& listed, std::span<const Oddity> oddities) {
    for (const Oddity& oddity : oddities) {
        SCOPED_TRACE(oddity.to);
        ControllerSnapshot original = originalOf(listed);
        const std::vector<std::string> before = original.listings;
        for (std::string& text : original.listings) {
            replaceIn(text, oddity);
        }
        EXPECT_NE(original.listings, before);
        original.facts = readFacts(listed.type, original.listings);
        const MadeCopy made = copyController(original, listed.type);
        EXPECT_EQ(made.because, oddity.because);
        if (made.copy) {
            EXPECT_EQ(normalForm(made.facts), normalForm(original.facts));
        }
    }
}

TEST(ListedServers, OddDrivesOfMegacliAreCopied) {
    constexpr const char* free = "Unconfigured(good), Spun Up";
    constexpr const char* spare = "Hotspare, Spun down";
    constexpr const char* cache = "ReadAhead, Direct, No Write Cache if Bad BBU";
    const Oddity oddities[] = {
        {"NORVIK  NV2000NM0023    0004Z1X0A003            ",
         "            Z1X0A003NORVIK NV2000NM0023 4K NATIVE          SN0004  "},
        {"0004Z1X0A003            ", "0004"},
        {"NORVIK  NV2000NM0023    0004Z1X0A00", ""},
        {"Temperature :29C (84.20 F)", "Temperature :-12C (10.40 F)"},
        {"Temperature :29C (84.20 F)", "Temperature : N/A"},
        {"Predictive Failure Count: 0", "Predictive Failure Count: 3"},
        {"Media Error Count: 0", "Media Error Count: 99999999999"},
        {"S.M.A.R.T alert : No", "S.M.A.R.T alert : Yes"},
        {"PD Type: SAS", "PD Type: SATA"},
        {"Media Type: Hard Disk Device", "Media Type: Solid State Device", "", true},
        {free, "Unconfigured(good), Spun down"},
        {free, "Unconfigured(bad)"},
        {free, "JBOD"},
        {free, "Failed"},
        {"Foreign State: None", "Foreign State: Foreign", "", true},
        {spare, "Hotspare, Spun Up"},
        {spare, "Hotspare, Spun down\nType: Dedicated"},
        {spare, "Sanitize", "drive 252:2 has a state that is not known, \"Sanitize\""},
        {"Online, Spun Up", "Rebuild", "", true},
        {"Online, Spun Up", "Failed", "", true},
        {"Online, Spun Up", "Offline", "", true},
        {"Online, Spun Up", "Copyback", "", true},
        {"Spun Up", "Spun up"},
        {cache, "ReadAheadNone, Cached, Write Cache OK if Bad BBU"},
        {cache, "ReadAdaptive, Direct, No Write Cache if Bad BBU"},
        {"Current Cache Policy: WriteBack", "Current Cache Policy: WriteThrough"},
        {"Enclosure Device ID: 252", "Enclosure Device ID: N/A"},
    };
    expectCopied(
        {"MEGACLI",
         controller_type::megaRaid,
         {"megacli-ldpdinfo-later.txt", "megacli-pdlist-later.txt", "megacli-adpallinfo.txt"}},
        oddities);
}

TEST(ListedServers, OddDrivesOfArcconfAreCopied) {
    const Oddity oddities[] = {
        {"NV7A0002", "NV7A0001"},
        {"NV7A000", ""},
        {": NV7A0003", ":"},
        {": Hot Spare", ": Global Hot-Spare"},
        {": Hot Spare", ": Ready"},
        {": Hot Spare", ": Raw (Pass Through)"},
        {": Hot Spare", ": Failed"},
        {": Hot Spare", ": Dedicated Hot-Spare"},
        {": Hot Spare", ": Erasing", "drive 0:2 has a state that is not known, \"Erasing\""},
        {": Online", ": Rebuilding", "", true},
        {": Online", ": Failed", "", true},
    };
    expectCopied({"ARCCONF", controller_type::arcconf7, {"arcconf-getconfig-segments.txt"}},
                 oddities);
}

} // namespace
} // namespace zolex::companion
