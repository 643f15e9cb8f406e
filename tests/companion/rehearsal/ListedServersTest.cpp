// Listings of servers as they are: what is copied of them, and what is not and why.

#include "companion/facts/FactsReader.h"
#include "companion/layout/NormalForm.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/Originals.h"
#include "model/RAIDController.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace zolex::companion
