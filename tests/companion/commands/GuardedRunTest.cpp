#include "companion/commands/GuardedRun.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion {
namespace {

/// What a run does, in one line.
std::string textOf(const GuardedRun& run) {
    if (!run.faults.empty()) {
        return "[" + run.faults.front().code + "] " + run.faults.front().summary;
    }
    std::string text;
    const auto add = [&text](const std::string& word) { text += (text.empty() ? "" : " ") + word; };
    if (run.resets) {
        add(run.resetNumber == GuardedRun::everyController
                ? "resets"
                : "resets:" + std::to_string(run.resetNumber));
    }
    if (run.plans) {
        add("plans:" + (run.classDefaults ? std::string("defaults") : run.policiesFile));
    }
    if (run.deploys) {
        add("deploys");
    }
    if (run.captures) {
        add("captures");
    }
    if (run.needsPolicy) {
        add("e1");
    }
    if (run.needsDrives) {
        add("e3");
    }
    for (const Finding& refusal : run.refusals) {
        add("refused:" + refusal.code);
    }
    for (const Finding& note : run.notes) {
        add("note:" + note.code);
    }
    return text.empty() ? "nothing" : text;
}

struct Line {
    std::vector<std::string> words;
    const char* does;
};

std::vector<Line> lines() {
    return {
        // What changes nothing.
        {{}, "nothing"},
        {{"/?"}, "nothing"},
        {{"/?", "/r", "/y"}, "nothing"},
        {{"/e2"}, "nothing"},
        {{"/c", "/f:new.ini"}, "captures"},
        {{"/c:t,d", "/f:new.ini", "/e3"}, "captures e3"},
        {{"/f:web.ini", "/noexecuteall"}, "plans:web.ini"},
        {{"/r", "/y", "/d", "/noexecuteall"}, "plans:defaults"},
        {{"/f:web.ini", "/noexecutedeploy"}, "plans:web.ini"},
        {{"/r", "/y", "/noexecutereset"}, "nothing"},
        {{"/fake", "/r", "/y", "/f:web.ini"}, "plans:web.ini"},
        {{"/controllers:c.ini", "/f:web.ini", "/noexecuteall"}, "plans:web.ini"},
        // What changes a server.
        {{"/f:web.ini"}, "plans:web.ini deploys"},
        {{"/F:WEB.INI", "/E1", "/E3"}, "plans:WEB.INI deploys e1 e3"},
        {{"/d"}, "plans:defaults deploys"},
        {{"/r", "/y"}, "resets"},
        {{"/r", "/y", "/f:web.ini"}, "resets plans:web.ini deploys"},
        {{"/r:2", "/y", "/f:web.ini"}, "resets:2 plans:web.ini deploys"},
        {{"/r:2", "/y"}, "resets:2"},
        {{"/r:1", "/y", "/c", "/f:new.ini"}, "resets:1 captures"},
        {{"@params"}, "resets plans:my web.ini deploys"},
        {{"/y", "@two"}, "resets plans:web.ini deploys"},
        {{"/f:", "web.ini"}, "plans:web.ini deploys"},
        {{"/f:my web.ini", "/y"}, "plans:my web.ini deploys"},
        // What is held back, and what is not.
        {{"/r", "/y", "/f:web.ini", "/noexecutedeploy"}, "resets plans:web.ini note:ZA216"},
        {{"/r", "/y", "/f:web.ini", "/noexecutereset"}, "plans:web.ini deploys note:ZA216"},
        // What is never right on a server.
        {{"/r", "/f:web.ini"}, "resets plans:web.ini deploys refused:ZA207"},
        {{"/r"}, "resets note:ZA207"},
        {{"/r", "/noexecutedeploy", "/d"}, "resets plans:defaults refused:ZA207 note:ZA216"},
        {{"/controllers:c.ini", "/d"}, "plans:defaults deploys refused:ZA205"},
        {{"/controllers:c.ini", "/r", "/y"}, "resets refused:ZA205"},
        {{"/noexecutecap", "/d"}, "plans:defaults deploys refused:ZA205"},
        // What is not understood.
        {{"/x"}, "[ZA201] zolex has no switch \"/x\""},
        {{"web.ini"}, "[ZA201] zolex has no switch \"web.ini\""},
        {{"/r", "/y", "/f:x.ini", "/noexecutall"},
         "[ZA201] zolex takes \"/noexecutall\" into the value of /f:, which becomes \"x.ini "
         "/noexecutall\""},
        {{"/f:x.ini", "noexecuteall"},
         "[ZA201] zolex takes \"noexecuteall\" into the value of /f:, which becomes \"x.ini "
         "noexecuteall\""},
        {{"/f:", "/noexecutall"},
         "[ZA201] zolex takes \"/noexecutall\" into the value of /f:, which becomes "
         "\"/noexecutall\""},
        {{"/y", "/f:x.ini", "/y"},
         "[ZA201] zolex takes \"/y\" into the value of /f:, which becomes \"x.ini /y\""},
        {{"/d", "/p:dir", "/noexecutal"},
         "[ZA201] zolex takes \"/noexecutal\" into the value of /p:, which becomes \"dir "
         "/noexecutal\""},
        {{"@joined"},
         "[ZA201] zolex takes \"/nonsense\" into the value of /f:, which becomes \"web.ini "
         "/nonsense\""},
        {{"/r:x", "/y"}, "[ZA201] /r:x is no number of a controller"},
        {{"/r:0", "/y"}, "[ZA201] /r:0 is no number of a controller"},
        {{"/r:-1", "/y"}, "[ZA201] /r:-1 is no number of a controller"},
        {{"/r:", "/y"}, "[ZA201] /r: is no number of a controller"},
        {{"/r:2x", "/y"}, "[ZA201] /r:2x is no number of a controller"},
        {{"/r:99999999999", "/y"}, "[ZA201] /r:99999999999 is no number of a controller"},
        {{"@none", "/r", "/y"},
         "[ZA202] the parameter file \"none\" cannot be opened: zolex would go on without it"},
    };
}

TEST(GuardedRun, IsWhatTheWordsAskFor) {
    zolex::test::FakeFileSystem files;
    files.files["params"] = "/r /y \"/f:my web.ini\"\n";
    files.files["two"] = "/r\n /f:web.ini\n";
    files.files["joined"] = "/d /f:web.ini /nonsense";
    for (const Line& line : lines()) {
        EXPECT_EQ(textOf(readGuardedRun(line.words, files)), line.does) << typedRun(line.words);
    }
}

TEST(GuardedRun, OfSwitchesThatExcludeOneAnotherIsNone) {
    zolex::test::FakeFileSystem files;
    const std::vector<std::vector<std::string>> excluded = {
        {"/r", "/c", "/f:x.ini"}, {"/r:1", "/d"}, {"/c", "/d"}, {"/r", "/r:1"},
        {"/f:x.ini", "/d"},       {"/y"},         {"/e1"},      {"/v:7", "/d"}};
    for (const std::vector<std::string>& words : excluded) {
        const GuardedRun run = readGuardedRun(words, files);
        ASSERT_EQ(run.faults.size(), 1U) << typedRun(words);
        EXPECT_EQ(run.faults.front().code, "ZA203") << typedRun(words);
        EXPECT_FALSE(run.changesSomething());
    }
}

TEST(GuardedRun, ErasesTheControllersThatAreNamed) {
    zolex::test::FakeFileSystem files;
    const GuardedRun all = readGuardedRun({"/r", "/y"}, files);
    EXPECT_TRUE(all.resetsController(1));
    EXPECT_TRUE(all.resetsController(2));
    const GuardedRun second = readGuardedRun({"/r:2", "/y"}, files);
    EXPECT_FALSE(second.resetsController(1));
    EXPECT_TRUE(second.resetsController(2));
    EXPECT_FALSE(readGuardedRun({"/d"}, files).resetsController(1));
}

TEST(GuardedRun, IsTypedWithQuotesWhereTheyAreNeeded) {
    EXPECT_EQ(typedRun({"/r", "/y", "/f:my web.ini", ""}), "zolex /r /y \"/f:my web.ini\" \"\"");
}

} // namespace
} // namespace zolex::companion
