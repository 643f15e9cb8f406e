#include "driver/ParameterParser.h"
#include "driver/ZOLEX.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace zolex {
namespace {

unsigned parseInto(ZOLEX& application, const std::vector<std::string>& arguments) {
    std::vector<const char*> argv = {"zolex"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    return static_cast<unsigned>(
        application.parseCommandLine(static_cast<int>(argv.size()), argv.data()));
}

class CommandLineTest : public testing::Test {
  protected:
    unsigned parse(const std::vector<std::string>& arguments) {
        return parseInto(application, arguments);
    }

    test::FakePlatform platform;
    ZOLEX application{platform};
    Settings& settings = application.settings;
    std::string& output = platform.consoleFake.output;
};

/// One line that names every setting that differs from its default.
std::string dump(const Settings& s, std::int32_t verbosity) {
    std::string text;
    const auto addText = [&text](const char* name, const CString& value) {
        if (!value.isEmpty()) {
            text += std::string(name) + "=" + value.c_str() + ";";
        }
    };
    const auto addNumber = [&text](const char* name, std::int32_t value) {
        if (value != -1) {
            text += std::string(name) + "=" + std::to_string(value) + ";";
        }
    };
    const auto addFlag = [&text](const char* name, bool value) {
        if (value) {
            text += std::string(name) + ";";
        }
    };
    addText("policies", s.policiesFile);
    addText("script", s.outputScript);
    addText("prefix", s.commandPathPrefix);
    addText("temp", s.tempDirectory);
    addText("definition", s.controllerDefinitionFile);
    addText("parameters", s.parameterFile);
    addText("capturelist", s.captureParameters);
    addNumber("a", s.sValueA);
    addNumber("b", s.sValueB);
    addNumber("step", s.step);
    addNumber("number", s.restoreNumber);
    addNumber("v", verbosity);
    addFlag("run", s.runAutomatically);
    addFlag("debug", s.debug);
    addFlag("e1", s.e1);
    addFlag("e2", s.e2);
    addFlag("e3", s.e3);
    addFlag("y", s.noPrompt);
    addFlag("bflag", s.b);
    addFlag("error", s.error);
    addFlag("defaults", s.defaults);
    addFlag("capture", s.capture);
    addFlag("restore", s.restore);
    addFlag("restoren", s.restoreWithNumber);
    addFlag("help", s.help);
    addFlag("noall", s.noExecuteAll);
    addFlag("noreset", s.noExecuteReset);
    addFlag("nocap", s.noExecuteCapture);
    addFlag("nodeploy", s.noExecuteDeploy);
    addFlag("fake", s.fake);
    return text;
}

TEST_F(CommandLineTest, Accepts) {
    struct Row {
        std::vector<std::string> arguments;
        const char* settings;
    };
    const std::vector<Row> rows = {
        {{"/f:x.ini"}, "policies=x.ini;"},
        {{"/f:C:\\My", "Policies.ini"}, "policies=C:\\My Policies.ini;"},
        {{"/f:a", "b", "/d"}, "policies=a b;defaults;"},
        {{"/f:", "x"}, "policies=x;"},
        {{"/f:", "x", "y"}, "policies=x y;"},
        {{"/f:a", ""}, "policies=a ;"},
        {{"/f:"}, ""},
        {{"/d", "/f:a", "/d"}, "policies=a /d;defaults;"},
        {{"/o:out.bat"}, "script=out.bat;"},
        {{"/p:C:\\tools"}, "prefix=C:\\tools\\;"},
        {{"/p:C:\\tools\\"}, "prefix=C:\\tools\\;"},
        {{"/p:"}, ""},
        {{"/t:tmp"}, "temp=tmp\\;"},
        {{"/t:tmp\\"}, "temp=tmp\\;"},
        {{"/controllers:c.ini"}, "definition=c.ini;"},
        {{"/e1", "/e2", "/e3"}, "e1;e2;e3;"},
        {{"/y", "/b", "/a", "/error", "/debug"}, "run;debug;y;bflag;error;"},
        {{"/r"}, "restore;"},
        {{"/r:"}, "number=0;restoren;"},
        {{"/r:2"}, "number=2;restoren;"},
        {{"/r:2x"}, "number=2;restoren;"},
        {{"/r:abc"}, "number=0;restoren;"},
        {{"/r:-1"}, "restoren;"},
        {{"/r", "/r:1"}, "number=1;restore;restoren;"},
        {{"/?"}, "help;"},
        {{"/c"}, "capture;"},
        {{"/c:"}, ""},
        {{"/c:m,s"}, "capturelist=m,s;capture;"},
        {{"/s:1,2"}, "a=1;b=2;"},
        {{"/s:x,"}, "a=0;b=0;"},
        {{"/s:"}, ""},
        {{"/step2"}, "step=2;"},
        {{"/step3"}, "step=3;"},
        {{"/step3", "/step2"}, "step=2;"},
        {{"/V:5"}, "v=5;"},
        {{"/v:5"}, "v=5;"},
        {{"/v:0"}, "v=0;"},
        {{"/v:3"}, "v=3;"},
        {{"/v:9"}, "v=9;"},
        {{"/v:5x"}, "v=5;"},
        {{"/v:5", "/x", "/d"}, "v=5;defaults;"}, // what is no switch belongs to the value
        {{"/v:"}, ""},
        {{"/noexecuteall", "/noexecutereset", "/noexecutecap", "/noexecutedeploy"},
         "noall;noreset;nocap;nodeploy;"},
        {{"/FAKE"}, "fake;"},
        {{"@"}, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        test::FakePlatform other;
        ZOLEX parsed(other);
        EXPECT_EQ(0U, parseInto(parsed, row.arguments));
        EXPECT_EQ(row.settings, dump(parsed.settings, parsed.printer().verbosity()));
        EXPECT_EQ("", other.consoleFake.output + other.consoleFake.error);
        EXPECT_TRUE(other.fileFake.opened.empty());
    }
}

TEST_F(CommandLineTest, Rejects) {
    struct Row {
        std::vector<std::string> arguments;
        const char* output;
    };
    constexpr const char* unknown = "\n#### ERROR\n\tUnknown parameter.\n\n";
    const std::vector<Row> rows = {
        {{"/x"}, unknown},
        {{""}, unknown},
        {{"policies.ini"}, unknown},
        {{"/d", "/d"}, unknown},
        {{"/f:a", "/f:b"}, unknown},
        {{"/dx"}, unknown},
        {{"/v:4"}, "\n#### ERROR\n\tVerbose level not supported:  4\n\n"},
        {{"/v:00"}, "\n#### ERROR\n\tVerbose level not supported:  00\n\n"},
        {{"/v:x"}, "\n#### ERROR\n\tVerbose level not supported:  x\n\n"},
        {{"/v:-5"}, "\n#### ERROR\n\tVerbose level not supported:  -5\n\n"},
        {{"/v:55555555555"}, "\n#### ERROR\n\tVerbose level not supported:  55555555555\n\n"},
        {{"/s:1"}, "\n#### ERROR\n\tImproper syntax for the following parameter:  1\n\n"},
        {{"/s:1,2,3"}, "\n#### ERROR\n\tImproper syntax for the following parameter:  1,2,3\n\n"},
        // A bad verbosity is reported before a bad pair.
        {{"/s:1", "/v:4"}, "\n#### ERROR\n\tVerbose level not supported:  4\n\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        test::FakePlatform other;
        ZOLEX parsed(other);
        EXPECT_EQ(4U, parseInto(parsed, row.arguments));
        // The level is still unset, so the usage does not appear.
        EXPECT_EQ(row.output, other.consoleFake.output);
    }
}

TEST_F(CommandLineTest, ParametersOfAFileFollowThoseOfTheCommandLine) {
    platform.fileFake.files["params.txt"] = "/v:5 \"/f:My File.ini\"\r\n\t/e1\n";
    EXPECT_EQ(0U, parse({"/e3", "@params.txt"}));
    EXPECT_EQ("policies=My File.ini;parameters=params.txt;v=5;e1;e3;",
              dump(settings, application.printer().verbosity()));
}

TEST_F(CommandLineTest, ParametersOfAFile) {
    struct Row {
        const char* content;
        const char* settings; ///< besides the file's name
    };
    const Row rows[] = {
        {"", ""},
        {" \t\r\n", ""},
        {"/d", "defaults;"},
        {"/f:a b\t/d\r\n/y\n", "policies=a b;y;defaults;"},
        {"/f:a\n\n   b.ini", "policies=a b.ini;"},
        {"/F:\"My  File\".ini /Y", "policies=My  File.ini;y;"},
        {"\"/f:not closed", "policies=not closed;"},
        {"/f:\"\" /d", "defaults;"},
        // Symptom: the CR of a CR LF inside double quotes became part of the value.
        {"\"/f:a\r\nb\"\r\n", "policies=a\nb;"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.content);
        test::FakePlatform other;
        other.fileFake.files["params.txt"] = row.content;
        ZOLEX parsed(other);
        EXPECT_EQ(0U, parseInto(parsed, {"@params.txt"}));
        EXPECT_EQ("", other.consoleFake.output + other.consoleFake.error);
        std::string changed = dump(parsed.settings, parsed.printer().verbosity());
        const std::string name = "parameters=params.txt;";
        ASSERT_NE(std::string::npos, changed.find(name));
        EXPECT_EQ(row.settings, changed.erase(changed.find(name), name.size()));
    }
}

TEST_F(CommandLineTest, AFaultInAParameterFileIsAFaultOfTheCommandLine) {
    const char* rows[] = {
        "/e3 /v:5",      // given on the command line already
        "more.ini /v:5", // the value before the file does not go on in it
        "/d @more.txt",  // a file names no further file
        "/d /x",         // no switch
        "\"\"",          // an empty parameter
    };
    for (const char* content : rows) {
        SCOPED_TRACE(content);
        test::FakePlatform other;
        other.fileFake.files["params.txt"] = content;
        ZOLEX parsed(other);
        EXPECT_EQ(4U, parseInto(parsed, {"/e3", "/f:a", "@params.txt"}));
        EXPECT_EQ("\n#### ERROR\n\tUnknown parameter.\n\n", other.consoleFake.output);
    }
}

TEST_F(CommandLineTest, AParameterFileIsNotReadAfterAFault) {
    platform.fileFake.files["params.txt"] = "/d";
    EXPECT_EQ(4U, parse({"@params.txt", "/d", "/d"}));
    EXPECT_TRUE(platform.fileFake.opened.empty());
}

TEST_F(CommandLineTest, AParameterFileThatCannotBeOpenedIsAWarning) {
    EXPECT_EQ(0U, parse({"@none.txt", "/d"}));
    EXPECT_EQ("Could not open parameter file:  none.txt\n", platform.consoleFake.error);
    EXPECT_EQ("", output);
    EXPECT_EQ("parameters=none.txt;defaults;", dump(settings, -1));
}

TEST_F(CommandLineTest, TracesWhenTheLevelIsAlreadySet) {
    application.printer().setVerbosity(level::traces);
    EXPECT_EQ(0U, parse({"/d"}));
    EXPECT_EQ("Entering ZOLEX::parseCommandLine\nExiting ZOLEX::parseCommandLine(3)\n", output);
    platform.consoleFake.takeOutput();
    EXPECT_EQ(4U, parse({"/x"}));
    EXPECT_TRUE(output.starts_with(
        "Entering ZOLEX::parseCommandLine\n\n#### ERROR\n\tUnknown parameter.\n\nZOLEX Version"));
    EXPECT_TRUE(output.ends_with("/?       -- Print ZOLEX usage.\n"
                                 "Exiting ZOLEX::parseCommandLine(1)\n"));
}

/// A program with one more switch, of a kind that there is not.
class WithAnOddSwitch : public ZOLEX {
  public:
    using ZOLEX::ZOLEX;

  protected:
    void addSwitches(ParameterParser& parser) override {
        parser.add("/odd", static_cast<SwitchKind>(6), false, true);
        ZOLEX::addSwitches(parser);
    }
};

TEST_F(CommandLineTest, ASwitchOfAnUnknownKindIsAnInternalError) {
    constexpr const char* fault =
        "\n#### ERROR\n\tInternal error processing command-line switches.\n\n";
    WithAnOddSwitch odd(platform);
    EXPECT_EQ(4U, parseInto(odd, {"/d"}));
    EXPECT_EQ(fault, platform.consoleFake.takeOutput());
    odd.printer().setVerbosity(level::traces);
    EXPECT_EQ(4U, parseInto(odd, {"/d"}));
    EXPECT_TRUE(output.starts_with(std::string("Entering ZOLEX::parseCommandLine\n") + fault +
                                   "ZOLEX Version"));
    EXPECT_TRUE(output.ends_with("Exiting ZOLEX::parseCommandLine(2)\n"));
}

TEST_F(CommandLineTest, UsageInFull) {
    application.printer().setVerbosity(level::always);
    application.printUsage();
    EXPECT_EQ("ZOLEX Version 2.20                                                    \n"
              "Command Line Tool for Policy-based RAID Configuration and Replication \n"
              "Deploy mode (Requires /f or /d):\n"
              "   ZOLEX /f:<f> /d /o:<f> /p:<d> /e1 /e2 /e3 /y /t:<d> /a /s:<a,b> /v:<l>\n"
              "Capture mode (Requires /c and /f):\n"
              "   ZOLEX /c[:<p>] /f:<f> /p:<d> /t:<d> /e2 /e3 /v:<l>\n"
              "Restore-defaults mode (Requires /r):\n"
              "   ZOLEX /r /e2 /v:<l> /y\n"
              "Any mode:\n"
              "   ZOLEX @params\n"
              "\n"
              "Where:\n"
              "/f:<f>   -- Path and file name of the policies file.\n"
              "/d       -- Use default settings for all RAID controllers (no policies file).\n"
              "/c[:<p>] -- Capture mode. <p> is optional list of parameters for AppliesTo.1.\n"
              "            <p> can be list of the following: m,s,t,c,d.  Default is t,d.\n"
              "/r       -- Restore-defaults mode.\n"
              "/o:<f>   -- Path and file name where the output-script file should be created.\n"
              "            Default value is \"zolexout.bat\" in the current directory.\n"
              "/p:<d>   -- Path to append before each configuration command.\n"
              "            Only use if configuration commands are not already in search path.\n"
              "/e1      -- Return error if no policy found to configure a controller.\n"
              "/e2      -- Return error if no RAID controllers were found.\n"
              "/e3      -- Return error if no drives attached to one or more controllers.\n"
              "/y       -- Don't prompt before erasing the configurations of controllers.\n"
              "/t:<d>   -- Path where temp space is available. Default is current directory.\n"
              "/a       -- Run the output-script file automatically after ZOLEX exits.\n"
              "/v:<l>   -- Verbose level, where l is: 0 (silent), 3 (default), or 5 (max).\n"
              "@params  -- Pass parameters in an text file with a space between each param.\n"
              "/?       -- Print ZOLEX usage.\n",
              output);
}

TEST_F(CommandLineTest, ArbitraryArgumentsEndWithADocumentedResult) {
    std::minstd_rand random(20260321); // repeatable
    const char* heads[] = {"/f:", "/v:", "/s:", "/r:", "/c:", "@", "/p:", "/", "", "/controllers:"};
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::string> arguments;
        for (auto i = random() % 6; i > 0; --i) {
            std::string argument = heads[random() % std::size(heads)];
            for (auto n = random() % 9; n > 0; --n) {
                argument += static_cast<char>(random() % 255 + 1);
            }
            arguments.push_back(argument);
        }
        test::FakePlatform other;
        ZOLEX parsed(other);
        const unsigned result = parseInto(parsed, arguments);
        EXPECT_TRUE(result == 0 || result == 4) << testing::PrintToString(arguments);
        EXPECT_EQ(result == 4, other.consoleFake.output.starts_with("\n#### ERROR\n"));
    }
}

} // namespace
} // namespace zolex
