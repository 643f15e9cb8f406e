#include "companion/picture/Svg.h"

#include "companion/picture/Html.h"
#include "companion/picture/Palette.h"
#include "companion/support/ExampleSnapshot.h"
#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace zolex::companion {
namespace {

using test::exampleDrive;
using test::exampleLogicalDrive;
using test::exampleSnapshot;
using test::keepDocument;
using test::makeMember;

/// What stands from `begin` up to and with `end`.
std::string piece(const std::string& text, const std::string& begin, const std::string& end) {
    const std::size_t first = text.find(begin);
    if (first == std::string::npos) {
        return "no " + begin;
    }
    const std::size_t last = text.find(end, first);
    return text.substr(first, last + end.size() - first);
}

std::string slotOf(const std::string& svg, const std::string& location) {
    const std::size_t at = svg.find("data-location=\"" + location + "\"");
    if (at == std::string::npos) {
        return "no " + location;
    }
    const std::size_t begin = svg.rfind("<g ", at);
    return svg.substr(begin, svg.find("</g>\n", at) - begin);
}

TEST(Svg, ASlotTellsWhatIsInIt) {
    const std::string svg = machineSvg(exampleSnapshot());
    EXPECT_EQ(
        slotOf(svg, "32:0"),
        R"(<g class="slot member" data-location="32:0"><title>32:0: drive 1 of policies, NORVIK NV73455S, serial 3LQ2A000, 67.8 GB, Online; in array A</title>
<rect x="12" y="74" width="56" height="88" rx="3" class="box frame" fill="#56b4e9"/>
<text x="40" y="88" text-anchor="middle" class="strong" fill="#000000">32:0</text>
<text x="40" y="107" text-anchor="middle" class="number" fill="#000000">1</text>
<text x="40" y="121" text-anchor="middle" fill="#000000">67.8 GB</text>
<text x="40" y="133" text-anchor="middle" fill="#000000">A000</text>
<text x="40" y="154" text-anchor="middle" class="mark" fill="#000000">A</text>
)");
    EXPECT_EQ(
        slotOf(svg, "32:2"),
        R"(<g class="slot failed" data-location="32:2"><title>32:2: policies have no number for it, NORVIK NV73455S, serial 3LQ2A002, 67.8 GB, Failed; not usable</title>
<rect x="136" y="74" width="56" height="88" rx="3" class="box" fill="#ffffff" stroke="#b00020" stroke-width="2"/>
<path class="cross" d="M140 78L188 158M188 78L140 158" stroke="#f4b0b0" stroke-width="4" fill="none"/>
<text x="164" y="88" text-anchor="middle" class="strong" fill="#000000">32:2</text>
<text x="164" y="107" text-anchor="middle" class="number" fill="#000000">-</text>
<text x="164" y="121" text-anchor="middle" fill="#000000">67.8 GB</text>
<text x="164" y="133" text-anchor="middle" fill="#000000">A002</text>
<text x="164" y="154" text-anchor="middle" class="mark" fill="#7a0016">x</text>
)");
    const std::string spare = slotOf(svg, "32:6");
    EXPECT_NE(spare.find("fill=\"url(#spare)\""), std::string::npos) << spare;
    EXPECT_NE(spare.find(">*</text>"), std::string::npos) << spare;
    EXPECT_NE(spare.find("; hot spare</title>"), std::string::npos) << spare;
    const std::string worn = slotOf(svg, "32:4");
    EXPECT_NE(worn.find(">4 !</text>"), std::string::npos) << worn;
    EXPECT_NE(worn.find("; 12 media errors, 1 predicted failure</title>"), std::string::npos)
        << worn;
    const std::string free = slotOf(svg, "32:7");
    EXPECT_NE(free.find("class=\"box frame\" fill=\"#ffffff\""), std::string::npos) << free;
    EXPECT_NE(free.find(">free</text>"), std::string::npos) << free;
}

TEST(Svg, TheWholeHasATitleAndADescription) {
    const std::string svg = machineSvg(exampleSnapshot());
    EXPECT_EQ(piece(svg, "<title>", "</desc>"),
              "<title>Machine 8837, serial KQ10Z7V, controller 1</title>\n"
              "<desc>Controller 1, LSI MegaRAID SAS 8480E (LSI-MegaRAID-8480): 8 drives (1 free, 1 "
              "hot spare, 1 failed), 2 arrays. LD 0 RAID1 67.8 GB optimal. LD 1 RAID5 135.5 GB "
              "optimal.</desc>");
    EXPECT_EQ(piece(machineSvg(Snapshot()), "<desc>", "</desc>"),
              "<desc>No RAID controller.</desc>");
}

TEST(Svg, ArraysBehindTheEighthAreHatched) {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details[0];
    controller.drives.clear();
    controller.arrays.clear();
    controller.facts.logicalDrives.clear();
    for (std::int32_t i = 0; i < 18; ++i) {
        const std::string letter(1, static_cast<char>('A' + i));
        controller.drives.push_back(exampleDrive(8, i, i + 1, "S"));
        makeMember(controller.drives.back(), letter);
        const std::string location = "8:" + std::to_string(i);
        controller.facts.logicalDrives.push_back(
            exampleLogicalDrive(std::to_string(i), "RAID0", 69376, {location}));
        controller.arrays.push_back(
            {letter, std::to_string(i), {location}, {static_cast<std::size_t>(i)}});
    }
    const std::string svg = machineSvg(snapshot);
    EXPECT_NE(slotOf(svg, "8:7").find("fill=\"#000000\""), std::string::npos);
    EXPECT_NE(slotOf(svg, "8:8").find("fill=\"url(#array-8)\""), std::string::npos);
    EXPECT_NE(slotOf(svg, "8:15").find("fill=\"url(#array-15)\""), std::string::npos);
    EXPECT_NE(slotOf(svg, "8:16").find("fill=\"#56b4e9\""), std::string::npos);
    EXPECT_NE(slotOf(svg, "8:16").find(">Q</text>"), std::string::npos);
    EXPECT_EQ(piece(svg, "<pattern id=\"array-8\"", "</pattern>"),
              "<pattern id=\"array-8\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
              "patternTransform=\"rotate(45)\"><rect width=\"8\" height=\"8\" fill=\"#56b4e9\"/>"
              "<rect width=\"3\" height=\"8\" fill=\"#ffffff\"/></pattern>");
    keepDocument("machine-of-18-arrays.svg", svg);
    keepDocument("machine-of-18-arrays.html", machineHtml(snapshot, ""));
}

TEST(Svg, WhatIsTooLongForASlotIsWrittenSmallerAndThenCut) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details[0].drives[7].facts.location = "12345:678";
    const std::string smaller = slotOf(machineSvg(snapshot), "12345:678");
    EXPECT_NE(
        smaller.find(" style=\"font-size:9.4px\" class=\"strong\" fill=\"#000000\">12345:678<"),
        std::string::npos)
        << smaller;
    snapshot.details[0].drives[7].facts.location = std::string(40, '7');
    const std::string cut = slotOf(machineSvg(snapshot), std::string(40, '7'));
    EXPECT_NE(
        cut.find(" style=\"font-size:5.0px\" class=\"strong\" fill=\"#000000\">77777777777777...<"),
        std::string::npos)
        << cut;
}

TEST(Svg, NothingFromOutsideBecomesMarkup) {
    Snapshot snapshot = exampleSnapshot();
    const std::string evil = "</text><script>alert('1')</script>\x01\xFF\"&\xEF\xBF\xBF";
    snapshot.machine = {evil.c_str(), evil.c_str()};
    ControllerSnapshot& controller = snapshot.details[0];
    for (std::string* text : {&controller.model, &controller.utility, &controller.pci,
                              &controller.pciIds, &controller.facts.productName,
                              &controller.facts.serialNumber, &controller.facts.firmwareVersion,
                              &controller.facts.rebuildRate, &controller.commands[0].command,
                              &controller.findings[0].summary, &controller.findings[0].detail,
                              &controller.findings[0].code, &controller.arrays[0].letter}) {
        *text = evil;
    }
    controller.facts.raidTypes = {evil};
    controller.facts.foreignConfigurations = {evil};
    controller.findings[0].help = {evil};
    snapshot.findings = controller.findings;
    snapshot.coreMessages = {evil};
    for (MachineDrive& drive : controller.drives) {
        for (std::string* text :
             {&drive.facts.location, &drive.facts.serialNumber, &drive.facts.manufacturer,
              &drive.facts.model, &drive.facts.reportedState, &drive.facts.protocol,
              &drive.facts.mediaType, &drive.array}) {
            *text = evil;
        }
    }
    controller.drives[1].array.clear();
    for (LogicalDriveFacts& logicalDrive : controller.facts.logicalDrives) {
        for (std::string* text : {&logicalDrive.id, &logicalDrive.name, &logicalDrive.raidType,
                                  &logicalDrive.reportedState}) {
            *text = evil;
        }
    }
    controller.arrays[0].drives = {evil, evil};
    const std::string svg = machineSvg(snapshot);
    const std::string html = machineHtml(snapshot, evil);
    for (const std::string* text : {&svg, &html}) {
        EXPECT_EQ(text->find("<script"), std::string::npos);
        EXPECT_EQ(text->find('\x01'), std::string::npos);
        EXPECT_EQ(text->find('\xFF'), std::string::npos);
        EXPECT_EQ(text->find("\xEF\xBF\xBF"), std::string::npos);
        EXPECT_NE(text->find("&lt;script&gt;"), std::string::npos);
    }
    keepDocument("machine-with-markup.svg", svg);
    keepDocument("machine-with-markup.html", html);
}

/// Relative luminance of "#rrggbb".
double luminance(std::string_view colour) {
    double sum = 0;
    const double weights[] = {0.2126, 0.7152, 0.0722};
    for (std::size_t i = 0; i < 3; ++i) {
        const int byte = std::stoi(std::string(colour.substr(1 + 2 * i, 2)), nullptr, 16);
        const double value = byte / 255.0;
        sum += weights[i] *
               (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return sum;
}

double contrast(std::string_view a, std::string_view b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

TEST(Palette, TextCanBeReadOnEveryColour) {
    for (const ArrayColour& colour : arrayColours) {
        EXPECT_GE(contrast(colour.ink, colour.fill), 4.5) << colour.fill;
        EXPECT_GE(contrast(colour.ink, colour.hatch), 4.5) << colour.hatch;
    }
    EXPECT_FALSE(isHatched(7));
    EXPECT_TRUE(isHatched(8));
    EXPECT_TRUE(isHatched(15));
    EXPECT_FALSE(isHatched(16));
}

TEST(Html, APageHoldsAllThatIsKnown) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details[0].findings[0].help = {"name drives by their slot"};
    const std::string html = machineHtml(snapshot, "2026-11-21T21:05:00+01:00");
    EXPECT_EQ(html.substr(0, html.find("<style>")),
              "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
              "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
              "<title>Machine 8837, serial KQ10Z7V</title>\n");
    EXPECT_EQ(piece(html, "<h1>", "</header>"),
              "<h1>Machine 8837, serial KQ10Z7V</h1>\n"
              "<p class=\"dim\">1 controller, 8 drives, 2 logical drives, read "
              "2026-11-21T21:05:00+01:00</p>\n</header>");
    EXPECT_EQ(
        piece(html, "<ul ", "</ul>"),
        "<ul class=\"findings\">\n<li>! 32:2 is failed and has no number: policies&#39; drive "
        "3 is 32:3 now <span class=\"dim\">ZX701</span><span class=\"help\">name drives by "
        "their slot</span></li>\n</ul>");
    EXPECT_EQ(
        piece(html, "<table class=\"drives\">", "</tr>\n</thead>"),
        "<table class=\"drives\">\n<caption>Drives</caption>\n<thead><tr><th class=\"right\">no"
        "</th><th>location</th><th>in</th><th class=\"right\">size</th><th>drive</th>"
        "<th>serial</th><th>type</th><th>state</th><th>trouble</th></tr>\n</thead>");
    EXPECT_NE(html.find("<tr><td class=\"right\">-</td><td class=\"code\">32:2</td><td>-</td>"
                        "<td class=\"right\">67.8 GB</td><td>NORVIK NV73455S</td>"
                        "<td class=\"code\">3LQ2A002</td><td>SAS HDD</td><td>Failed</td>"
                        "<td class=\"bad\">! failed</td></tr>\n"),
              std::string::npos);
    EXPECT_NE(html.find("<td>1</td><td>-</td><td>RAID5</td><td class=\"right\">135.5 GB</td>"
                        "<td>optimal</td><td>write-back</td><td>64 KB</td>"
                        "<td class=\"code\">32:3-32:5</td></tr>\n"),
              std::string::npos);
    EXPECT_NE(html.find("<details><summary>How it was read</summary>"), std::string::npos);
    EXPECT_NE(html.find("<pre>A message of the core.\n</pre>"), std::string::npos);
    keepDocument("machine-by-hand.html", html);
}

TEST(Html, AControllerThatFailedHasNoPicture) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details[0].failed = true;
    const std::string html = machineHtml(snapshot, "");
    EXPECT_EQ(html.find("<svg"), std::string::npos);
    EXPECT_NE(html.find("<p class=\"bad\">It could not be read: MEGACLI failed.</p>"),
              std::string::npos);
}

TEST(Html, IdsAreUniqueInAPageOfSeveralControllers) {
    Snapshot snapshot = exampleSnapshot();
    snapshot.details.push_back(snapshot.details[0]);
    const std::string html = machineHtml(snapshot, "");
    EXPECT_NE(html.find("<pattern id=\"c0-spare\""), std::string::npos);
    EXPECT_NE(html.find("<pattern id=\"c1-spare\""), std::string::npos);
    EXPECT_NE(html.find("fill=\"url(#c1-spare)\""), std::string::npos);
    EXPECT_EQ(html.find("<g class=\"legend\">"), html.rfind("<g class=\"legend\">"));
}

} // namespace
} // namespace zolex::companion
