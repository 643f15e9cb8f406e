#include "companion/commands/Commands.h"
#include "companion/commands/Explanations.h"
#include "companion/lint/Rules.h"
#include "companion/support/KeptDocument.h"
#include "companion/text/Utf8.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zolex::companion {
namespace {

struct Explained {
    int exitCode = -1;
    std::string output;
    std::string error;
};

Explained explained(const std::string& code, Format format = Format::text) {
    zolex::test::FakePlatform platform;
    Context context{platform, {}, format, {}, {}, {}, false, false, {}};
    context.argv = {"explain", code};
    Explained result;
    result.exitCode = explain(context, code);
    result.output = platform.consoleFake.output;
    result.error = platform.consoleFake.error;
    return result;
}

TEST(Explain, ARule) {
    const Explained result = explained("zx411");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output,
              "ZX411  RAID 0 over more than one drive\n"
              "  usually a note: nothing refuses it\n"
              "\n"
              "What it means for a server\n"
              "  When one of the drives fails, all data of the logical drive is lost. No hot\n"
              "  spare helps.\n"
              "\n"
              "What to do\n"
              "  Take 1, 10 or 5 where the data matters. Where it does not, say so in the line\n"
              "  before:\n"
              "    ; zolexctl: ignore ZX411\n");
}

TEST(Explain, ACodeOfARun) {
    EXPECT_EQ(explained("ZA121").output,
              "ZA121  a logical drive that stays is offline\n"
              "  usually an error\n"
              "\n"
              "What it means for a server\n"
              "  More of its drives have left than its level bears. They may only need their\n"
              "  cable back, and what is changed beside them may use them up. Nothing was\n"
              "  changed, or nothing more.\n"
              "\n"
              "What to do\n"
              "  bring back its drives, and apply again; --resume JOURNAL where it has begun\n");
}

TEST(Explain, AnExitCodeOfZolex) {
    EXPECT_EQ(explained("11").output,
              "11  a configuration command could not be made, or was refused\n"
              "  exit code of zolex\n"
              "\n"
              "What it means for a server\n"
              "  The commands before it were carried out: the server stands half configured.\n"
              "  The usual causes are drives that are in use already, a hot spare that is a\n"
              "  member, and several logical drives on one array.\n"
              "\n"
              "What to do\n"
              "  The run's last lines tell the command and the utility's answer. Look what\n"
              "  stands there now, and what the file says:\n"
              "    zolexctl show\n"
              "    zolexctl check site.ini\n");
}

TEST(Explain, AnExitCodeOfZolexctl) {
    EXPECT_EQ(explained("EXIT-2").output,
              "exit-2  it could not be told, or the plan cannot be carried out\n"
              "  exit code of zolexctl\n"
              "\n"
              "What it means for a server\n"
              "  A bad option, a file that cannot be read, a utility that failed, or a plan\n"
              "  with an error. Nothing was changed, and no output file was replaced.\n"
              "\n"
              "What to do\n"
              "  The line that begins with \"error:\" says what, the one behind it what to do.\n");
    EXPECT_EQ(explained("exit-4").exitCode, 0);
}

TEST(Explain, ACodeOfARecordingAndOneOfCapturedPolicies) {
    EXPECT_EQ(explained("zr107").output,
              "ZR107  the last line of a recording was cut\n"
              "  usually a note\n"
              "\n"
              "What it means for a server\n"
              "  It is left out; the lines before it can be used.\n"
              "\n"
              "What to do\n"
              "  record again when something is missing: zolexctl record -o FILE.zrec\n");
    for (const std::string& code :
         {std::string("ZC101"), std::string("ZC119"), std::string("ZR100"), std::string("ZR109")}) {
        EXPECT_EQ(explained(code).exitCode, 0) << code;
    }
}

TEST(Explain, AnUnknownCodeIsAnErrorThatNamesTheNearest) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"ZX499", "zolexctl explain ZX501 is the nearest"},
        {"zx0", "zolexctl explain ZX001 is the nearest"},
        {"6", "zolexctl explain 5 is the nearest"},
        {"99", "zolexctl explain 11 is the nearest"},
        {"exit-9", "zolexctl explain exit-5 is the nearest"},
        {"XZ411", "zolexctl explain ZX411 is the nearest"},
        {"exit4", "zolexctl explain exit-4 is the nearest"},
        {"", "codes are such as ZX411, 11 (of zolex) and exit-4 (of zolexctl)"},
        {"411", "zolexctl explain ZX411 is the nearest"},
        {"011", "zolexctl explain 11 is the nearest"},
    };
    for (const auto& [code, help] : cases) {
        const Explained result = explained(code);
        EXPECT_EQ(result.exitCode, 2) << code;
        EXPECT_EQ(result.output, "") << code;
        EXPECT_EQ(result.error, "error: there is no code \"" + code + "\"\n  help: " + help + "\n");
    }
    EXPECT_EQ(explained("\033[2J").error.find('\033'), std::string::npos);
}

TEST(Explain, EachCodeSaysWhatItMeansAndWhatToDoInEightyColumns) {
    std::set<std::string> seen;
    for (const std::string& code : explainedCodes()) {
        EXPECT_TRUE(seen.insert(code).second) << code;
        const std::optional<Explanation> explanation = explanationOf(code);
        ASSERT_TRUE(explanation) << code;
        EXPECT_EQ(explanation->code, code);
        EXPECT_FALSE(explanation->title.empty()) << code;
        EXPECT_FALSE(explanation->why.empty()) << code;
        EXPECT_FALSE(explanation->help.empty()) << code;
        const std::string text = explanationText(*explanation, TextStyle{false, 80});
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            EXPECT_LE(columnsOf(text.substr(start, end - start)), 80U)
                << text.substr(start, end - start);
            start = end + 1;
        }
    }
}

TEST(Explain, TheDocumentHasAllOfIt) {
    const std::string text = explained("ZX301", Format::json).output;
    EXPECT_NE(text.find("\"format\": \"zolex-explain\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"code\": \"ZX301\""), std::string::npos);
    EXPECT_NE(text.find("\"refused_by\": \"utility\""), std::string::npos);
    EXPECT_NE(text.find("\"exit_code_of\": null"), std::string::npos);
    test::keepDocument("explain-rule", text);
    test::keepDocument("explain-exit-code", explained("11", Format::json).output);
    test::keepDocument("explain-problem", explained("ZP101", Format::json).output);
}

} // namespace
} // namespace zolex::companion
