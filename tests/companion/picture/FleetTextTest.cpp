#include "companion/picture/FleetText.h"

#include "companion/picture/ExampleFleet.h"
#include "companion/picture/FleetHtml.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::exampleFleet;

constexpr const char* closing =
    "\n"
    "5 servers: 2 as planned, 1 same, 1 skipped, 1 error\n"
    "What is lost: nothing on 3 servers, 2 logical drives (203.0 GB) and 1 hot spare\n"
    "  on 1, not known of 1\n"
    "Never used by any server that could be planned: Policy.rest (site.ini:40),\n"
    "  Policy.web AppliesTo.2 (site.ini:5; no controller has d:6), Policy.web Array.C\n"
    "  (site.ini:9)\n"
    "Warnings: ZX703 on 1 server; -v shows each\n"
    "More on a server: zolexctl plan site.ini --recording fleet/r1u03.zrec\n";

constexpr const char* faults = "      site.ini:10:13: there is no drive 7 among 6 [ZX304]\n"
                               "      site.ini:10:13: there is no drive 8 among 6 [ZX304]\n"
                               "      site.ini:10:13: there is no drive 9 among 6 [ZX304]\n"
                               "      and 2 more faults, which -v shows\n";

TEST(FleetText, HasALineForEachServerAndWhatIsLost) {
    EXPECT_EQ(
        fleetText(exampleFleet(), {}),
        "server             policies used  result      loses                    commands\n"
        "r1u01     KQ10Z7V  web            as planned  nothing                         3\n"
        "r1u02     KQ10Z8A  web, db        as planned  2 LD, 203.0 GB, 1 spare        15\n"
        "r1u03     KQ10Z8B  web            ERROR       -                               -\n" +
            std::string(faults) +
            "<r1>&u04           none           skipped     nothing                         0\n"
            "      no policy fits: Policy.web asks for d:8, and it is 7\n"
            "r1u05     KQ10Z8D  web            same        nothing                         0\n" +
            std::string(closing));
}

TEST(FleetText, TellsOfWhichControllersASpecifierWasAsked) {
    Fleet fleet = exampleFleet();
    fleet.unused = {
        {UnusedPiece::Kind::policy, "Policy.rest", "", "", 40, ""},
        {UnusedPiece::Kind::specifier, "Policy.rest", "AppliesTo.1", "d:6", 41, "where"},
        {UnusedPiece::Kind::specifier, "Policy.rest", "AppliesTo.1", "c:2", 41, "where"},
    };
    EXPECT_EQ(
        unusedTexts(fleet),
        std::vector<std::string>{"Policy.rest (site.ini:40; where, no controller has d:6, c:2)"});
}

TEST(FleetText, TellsOnlyWhatIsWrongWhenQuiet) {
    FleetTextTerms terms;
    terms.quiet = true;
    EXPECT_EQ(fleetText(exampleFleet(), {}, terms),
              "server           policies used  result  loses  commands\n"
              "r1u03   KQ10Z8B  web            ERROR   -             -\n" +
                  std::string(faults));
    Fleet fleet = exampleFleet();
    fleet.servers.erase(fleet.servers.begin() + 2);
    EXPECT_EQ(fleetText(fleet, {}, terms), "");
}

TEST(FleetText, TellsWhatIsSupposedAndWhatCameOfFaults) {
    Fleet fleet = exampleFleet();
    fleet.suppositions = {{Supposition::Kind::fail, "32:3", 0}};
    fleet.everyFault = true;
    fleet.servers[1].faultsTried = 188;
    EXPECT_EQ(suppositionTexts(fleet),
              (std::vector<std::string>{"drive 32:3 has failed, on 4 of 5 servers"}));
    EXPECT_EQ(drillText(fleet), "Every single command was made to fail once (188 runs): resume "
                                "always ended as planned.");
    fleet.servers[1].unresumed = {{1, "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT"}};
    EXPECT_EQ(drillText(fleet),
              "Every single command was made to fail once (188 runs): resume always ended as "
              "planned, except MEGACLI -CFGCLR -A0 -SILENT on r1u02, which needs a new plan.");
    fleet.servers[1].faultsTried = 0;
    EXPECT_EQ(drillText(fleet), "No command was made to fail: there is none to run.");
    fleet.everyFault = false;
    EXPECT_EQ(drillText(fleet), "");
}

TEST(FleetText, HasColoursThatSayNothingByThemselves) {
    const Fleet fleet = exampleFleet();
    const std::string coloured = fleetText(fleet, {true, 80});
    std::string plain;
    for (std::size_t i = 0; i < coloured.size(); ++i) {
        if (coloured[i] == '\x1b') {
            i = coloured.find('m', i);
            continue;
        }
        plain += coloured[i];
    }
    EXPECT_EQ(plain, fleetText(fleet, {}));
    EXPECT_NE(coloured.find("\x1b[32mas planned\x1b[0m"), std::string::npos);
    EXPECT_NE(coloured.find("\x1b[31mERROR\x1b[0m"), std::string::npos);
    EXPECT_NE(coloured.find("\x1b[31m2 LD, 203.0 GB, 1 spare\x1b[0m"), std::string::npos);
}

TEST(FleetText, IsFoldedWhereThereIsNoRoom) {
    const std::string text = fleetText(exampleFleet(), {false, 40});
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        EXPECT_LE(end - start, 40U) << text.substr(start, end - start);
        start = end + 1;
    }
}

TEST(FleetText, SteersNoTerminal) {
    Fleet fleet = exampleFleet();
    fleet.servers[0].name = "a\x1b[2Jb";
    fleet.servers[0].serialNumber = "\x07";
    fleet.servers[3].reasons = {"c\x1b]0;d"};
    fleet.unused[0].policy = "Policy.\x1bx";
    const std::string text = fleetText(fleet, {});
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(text.find('\x07'), std::string::npos);
    EXPECT_NE(text.find("a?[2Jb"), std::string::npos);
}

TEST(FleetHtml, EscapesAllNames) {
    Fleet fleet = exampleFleet();
    fleet.policiesFile = "</title><script>";
    fleet.servers[0].policies = {"Policy.<b>\"'&"};
    fleet.servers[0].serialNumber = "<img src=x onerror=y>";
    fleet.servers[3].reasons = {"</section><script>alert(1)</script>"};
    fleet.unused[0].policy = "<i>";
    std::vector<std::string> sections;
    for (std::size_t i = 0; i < fleet.servers.size(); ++i) {
        sections.push_back(serverSection(fleet.servers[i], i));
    }
    const std::string page = fleetHtml(fleet, sections, "2026-11-22 09:17");
    for (const char* text : {"<b>\"", "<img", "alert(1)</s", "<i>", "<r1>", "</title><"}) {
        EXPECT_EQ(page.find(text), std::string::npos) << text;
    }
    EXPECT_NE(page.find("&lt;r1&gt;&amp;u04"), std::string::npos);
    std::size_t scripts = 0;
    for (std::size_t at = page.find("<script"); at != std::string::npos;
         at = page.find("<script", at + 1)) {
        ++scripts;
    }
    EXPECT_EQ(scripts, 1U);
    for (const char* text : {"http://", "https://", " src=\"", "url(http", "@import", "fetch("}) {
        EXPECT_EQ(page.find(text), std::string::npos) << text;
    }
}

} // namespace
} // namespace zolex::companion
