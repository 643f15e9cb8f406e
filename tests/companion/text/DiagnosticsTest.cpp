#include "companion/text/Diagnostics.h"

#include "companion/text/SourceExcerpt.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

/// The place of a byte of the text.
TextPlace placeIn(std::string_view text, std::size_t byte) {
    TextPlace place{1, 1, static_cast<std::int64_t>(byte)};
    for (std::size_t i = 0; i < byte; ++i) {
        place.column = text[i] == '\n' ? 1 : place.column + 1;
        place.line += text[i] == '\n' ? 1 : 0;
    }
    return place;
}

/// An error at the first `piece` behind `from` in the text.
Finding findingAt(std::string_view text, std::string_view piece, std::size_t from = 0) {
    Finding finding;
    finding.code = "ZX301";
    finding.summary = "drive 4 is listed twice in Array.B";
    finding.file = "site.ini";
    const std::size_t at = text.find(piece, from);
    finding.start = placeIn(text, at);
    finding.end = placeIn(text, at + piece.size());
    return finding;
}

std::string textOf(const Finding& finding, std::string_view text, const TextStyle& style = {}) {
    const SourceFile source{"site.ini", text};
    return diagnosticsText({&finding, 1}, {&source, 1}, style);
}

constexpr std::string_view site = "[Policy.a]\n"
                                  "Array.A = 1,2\r\n"
                                  "Array.B = 2,3,4,4\r\n"
                                  "\tInit = \xC3\xBC\xE2\x82\xAC \xFF \033[0m!\n";

TEST(Diagnostics, ADetailOfSeveralLinesKeepsThem) {
    Finding finding;
    finding.code = "ZP240";
    finding.summary = "step 2 would be refused";
    finding.detail = "UTIL.BAT MEGACLI -PDHSP\n\nFailed\t!\nExit Code: 0x26";
    EXPECT_EQ(diagnosticsText({&finding, 1}, {}, {}), "error: step 2 would be refused [ZP240]\n"
                                                      "   UTIL.BAT MEGACLI -PDHSP\n"
                                                      "   Failed?!\n"
                                                      "   Exit Code: 0x26\n");
}

TEST(Diagnostics, ShowsTheLineAMarkAndWhatHelps) {
    Finding finding = findingAt(site, "4\r");
    finding.help = {"zolex takes it twice, and MEGACLI refuses the command (exit 3)"};
    EXPECT_EQ(textOf(finding, site),
              "site.ini:3:17: error: drive 4 is listed twice in Array.B [ZX301]\n"
              "   3 | Array.B = 2,3,4,4\n"
              "     |                 ^\n"
              "   help: zolex takes it twice, and MEGACLI refuses the command (exit 3)\n");
}

TEST(Diagnostics, ShowsASecondPlaceBeforeOrBehind) {
    Finding finding = findingAt(site, "2,3");
    finding.end = finding.start;
    ++finding.end.column;
    finding.summary = "drive 2 is in Array.A and in Array.B";
    finding.otherStart = findingAt(site, "2\r").start;
    finding.otherEnd = findingAt(site, "2\r").start;
    finding.other = "first here";
    const std::string before = textOf(finding, site);
    EXPECT_EQ(before, "site.ini:3:11: error: drive 2 is in Array.A and in Array.B [ZX301]\n"
                      "   2 | Array.A = 1,2\n"
                      "     |             - first here\n"
                      "   3 | Array.B = 2,3,4,4\n"
                      "     |           ^\n");
    std::swap(finding.start, finding.otherStart);
    std::swap(finding.end, finding.otherEnd);
    EXPECT_EQ(textOf(finding, site),
              "site.ini:2:13: error: drive 2 is in Array.A and in Array.B [ZX301]\n"
              "   2 | Array.A = 1,2\n"
              "     |             ^\n"
              "   3 | Array.B = 2,3,4,4\n"
              "     |           - first here\n");
}

TEST(Diagnostics, ShowsBothPlacesOfOneLineBelowIt) {
    Finding finding = findingAt(site, "4\r");
    finding.otherStart = findingAt(site, "4,4").start;
    finding.otherEnd = finding.otherStart;
    finding.other = "first here";
    EXPECT_EQ(textOf(finding, site),
              "site.ini:3:17: error: drive 4 is listed twice in Array.B [ZX301]\n"
              "   3 | Array.B = 2,3,4,4\n"
              "     |                 ^\n"
              "     |               - first here\n");
}

TEST(Diagnostics, CountsCharactersAndLetsNothingSteerTheTerminal) {
    Finding finding = findingAt(site, "!");
    finding.summary = "a \033[31mred\n summary";
    finding.help = {"he\blp"};
    finding.detail = "de\ttail";
    EXPECT_EQ(textOf(finding, site), "site.ini:4:21: error: a ?[31mred? summary [ZX301]\n"
                                     "   4 |  Init = \xC3\xBC\xE2\x82\xAC ? ?[0m!\n"
                                     "     |                  ^\n"
                                     "   de?tail\n"
                                     "   help: he?lp\n");
}

TEST(Diagnostics, ShowsNoLineForWhatIsMissing) {
    Finding policy = findingAt(site, "[Policy.a");
    policy.severity = Severity::warning;
    policy.summary = "Policy.a can never be used";
    EXPECT_EQ(textOf(policy, site), "site.ini:1:1: warning: Policy.a can never be used [ZX301]\n");
    Finding file = policy;
    file.start = file.end = {1, 1, 0};
    file.severity = Severity::note;
    EXPECT_EQ(textOf(file, site), "site.ini:1:1: note: Policy.a can never be used [ZX301]\n");
    file.start = file.end = {};
    EXPECT_EQ(textOf(file, site), "site.ini: note: Policy.a can never be used [ZX301]\n");
    file.file.clear();
    EXPECT_EQ(textOf(file, site), "note: Policy.a can never be used [ZX301]\n");
}

TEST(Diagnostics, ShowsNoLineOfAnotherTextOrOutsideIt) {
    Finding finding = findingAt(site, "4\r");
    finding.start.byte = 10000;
    const std::string head = "site.ini:3:17: error: drive 4 is listed twice in Array.B [ZX301]\n";
    EXPECT_EQ(textOf(finding, site), head);
    finding.start.byte = 3; // less than its column
    EXPECT_EQ(textOf(finding, site), head);
    const SourceFile other{"other.ini", site};
    const Finding sound = findingAt(site, "4\r");
    EXPECT_EQ(diagnosticsText({&sound, 1}, {&other, 1}, {}), head);
}

TEST(Diagnostics, FoldsLongTextsBelowTheirFirstWord) {
    Finding finding = findingAt(site, "1,2");
    finding.severity = Severity::warning;
    finding.code = "ZX501";
    finding.summary = "no Hotspares: drive 4 becomes the hot spare, and is listed in Array.B";
    finding.start = {9, 1, 0};
    finding.help = {"add Hotspares = 4 and take 4 out, or Array_Defaults = 0%:0 for none of "
                    "them at all"};
    EXPECT_EQ(diagnosticsText({&finding, 1}, {}, {}),
              "site.ini:9:1: warning: no Hotspares: drive 4 becomes the hot spare, and is\n"
              "              listed in Array.B [ZX501]\n"
              "   help: add Hotspares = 4 and take 4 out, or Array_Defaults = 0%:0 for none of\n"
              "         them at all\n");
    finding.file = "a/name/that/is/too/long/to/indent/by.ini";
    finding.help.clear();
    EXPECT_EQ(diagnosticsText({&finding, 1}, {}, {}),
              "a/name/that/is/too/long/to/indent/by.ini:9:1: warning: no Hotspares: drive 4\n"
              "    becomes the hot spare, and is listed in Array.B [ZX501]\n");
}

TEST(Diagnostics, CutsALongLineAroundTheMark) {
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += "part" + std::to_string(i) + ",";
    }
    TextStyle style;
    style.width = 50;
    const auto excerpt = [&](std::string_view piece) {
        return sourceExcerpt(findingAt(text, piece), text, style);
    };
    EXPECT_EQ(excerpt("part0"), "   1 | part0,part1,part2,part3,part4,part5,part...\n"
                                "     | ^^^^^\n");
    EXPECT_EQ(excerpt("part20"), "   1 | ...,part18,part19,part20,part21,part22,p...\n"
                                 "     |                   ^^^^^^\n");
    EXPECT_EQ(excerpt("part39"), "   1 | ...4,part35,part36,part37,part38,part39,\n"
                                 "     |                                  ^^^^^^\n");
    // A mark that is longer than the room.
    for (const std::string& line : {excerpt(text), excerpt(text.substr(100))}) {
        EXPECT_LE(line.find('\n'), 50U);
        EXPECT_LE(line.size(), 102U);
        EXPECT_NE(line.find("^^^^"), std::string::npos);
    }
}

TEST(Diagnostics, HasColours) {
    TextStyle style;
    style.colours = true;
    Finding finding = findingAt(site, "1,2");
    finding.help = {"help"};
    EXPECT_EQ(textOf(finding, site, style),
              "\033[1msite.ini:2:11:\033[0m \033[31merror\033[0m: drive 4 is listed twice in "
              "Array.B [ZX301]\n"
              "   2 | Array.A = 1,2\n"
              "     |           \033[32m^^^\033[0m\n"
              "   \033[36mhelp:\033[0m help\n");
}

TEST(Diagnostics, PutsAnEmptyLineBetweenTwo) {
    std::vector<Finding> findings(2);
    findings[0].code = "ZX1";
    findings[0].summary = "one";
    findings[1].code = "ZX2";
    findings[1].summary = "two";
    EXPECT_EQ(diagnosticsText(findings, {}, {}), "error: one [ZX1]\n\nerror: two [ZX2]\n");
    EXPECT_EQ(diagnosticsText({}, {}, {}), "");
}

TEST(Diagnostics, AreOneLineEach) {
    Finding finding = findingAt(site, "4\r");
    finding.help = {"no help"};
    finding.summary += "\n";
    EXPECT_EQ(conciseDiagnostics({&finding, 1}, {}),
              "site.ini:3:17: error: drive 4 is listed twice in Array.B? [ZX301]\n");
}

TEST(Diagnostics, AreWorkflowCommands) {
    Finding finding = findingAt(site, "4\r");
    finding.file = "a,b:c%.ini";
    finding.summary = "50% of it\r\n::error::no command";
    finding.help = {"first: this", "then, that"};
    finding.detail = "a detail";
    EXPECT_EQ(githubDiagnostics({&finding, 1}),
              "::error file=a%2Cb%3Ac%25.ini,line=3,col=17,endLine=3,endColumn=19,title=ZX301::"
              "50%25 of it??::error::no command%0Aa detail%0Ahelp: first: this%0Ahelp: then, "
              "that\n");
    Finding bare;
    bare.code = "ZX013";
    bare.summary = "nothing";
    bare.severity = Severity::note;
    EXPECT_EQ(githubDiagnostics({&bare, 1}), "::notice title=ZX013::nothing\n");
    bare.severity = Severity::warning;
    bare.file = "p.ini";
    bare.start = bare.end = {1, 1, 0};
    EXPECT_EQ(githubDiagnostics({&bare, 1}),
              "::warning file=p.ini,line=1,col=1,title=ZX013::nothing\n");
}

TEST(Diagnostics, AreCounted) {
    std::vector<Finding> findings(6);
    findings[0].severity = Severity::warning;
    findings[1].severity = Severity::note;
    findings[2].severity = Severity::note;
    const FindingCounts counts = countFindings(findings);
    EXPECT_EQ(countsText(counts), "3 errors, 1 warning, 2 notes");
    EXPECT_EQ(countsText({}), "no findings");
    EXPECT_EQ(countsText({1, 0, 0}), "1 error");
    EXPECT_EQ(countsText({0, 2, 1}), "2 warnings, 1 note");
}

} // namespace
} // namespace zolex::companion
