#include "companion/commands/Commands.h"
#include "companion/commands/FilesPlatform.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/recording/RecordedRuns.h"
#include "companion/support/KeptDocument.h"
#include "support/FakePlatform.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zolex::companion {
namespace {

const std::string sound = "[Policy.web]\n"
                          "AppliesTo.1 = ALL\n";
const std::string faulty = "[Policy.web]\n"
                           "AppliesTo.1 = ALL \n"
                           "init = SLOW\n";

/// The document with an empty version of the tool.
std::string withoutVersion(std::string document) {
    const std::string key = "\"version\": \"";
    const std::size_t at = document.find(key) + key.size();
    return document.erase(at, document.find('"', at) - at);
}

/// The text with the line ends that the system writes.
std::string systemLines(std::string text) {
#ifdef _WIN32
    std::erase(text, '\r');
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) {
        text.insert(at, "\r");
    }
#endif
    return text;
}

/// Runs check in a folder of its own.
class CheckTest : public testing::Test {
  protected:
    int run(const CheckOptions& options) { return check(context, options); }
    int run(std::vector<std::string> files) {
        CheckOptions options;
        options.files = std::move(files);
        return run(options);
    }
    std::string output() { return platform.consoleFake.takeOutput(); }
    std::string error() { return std::exchange(platform.consoleFake.error, {}); }
    static std::string read(const std::string& name) {
        return zolex::test::TemporaryDirectory::read(name);
    }

    zolex::test::TemporaryDirectory folder;
    test::FilesPlatform platform;
    Context context{platform, {}, Format::text, {}, {}, {}, false, false, {"check", "p.ini"}};
};

TEST_F(CheckTest, TellsAllFaultsOfAFile) {
    folder.write("p.ini", faulty);
    EXPECT_EQ(run({"p.ini"}), 1);
    EXPECT_EQ(output(), "p.ini:2:18: note: blanks at the end of the line [ZX901]\n"
                        "   2 | AppliesTo.1 = ALL\n"
                        "     |                  ^\n"
                        "   help: zolexctl check --fix takes them out\n"
                        "\n"
                        "p.ini:3:1: note: init is usually written Init [ZX902]\n"
                        "   3 | init = SLOW\n"
                        "     | ^^^^\n"
                        "   help: zolexctl check --fix writes it so\n"
                        "\n"
                        "p.ini:3:8: error: Init cannot be \"SLOW\" [ZX101]\n"
                        "   3 | init = SLOW\n"
                        "     |        ^^^^\n"
                        "   help: Init is QUICK or BUILD\n"
                        "\n"
                        "1 error, 2 notes in 1 file (1 policy). zolexctl explain ZX101 tells "
                        "more.\n");
    EXPECT_EQ(error(), "");
}

TEST_F(CheckTest, EndsWith0WithoutErrorsAndWarnings) {
    folder.write("p.ini", sound);
    folder.write("q.ini", sound + "hotspares = 2\n");
    EXPECT_EQ(run({"p.ini"}), 0);
    EXPECT_EQ(output(), "no findings in 1 file (1 policy).\n");
    context.format = Format::concise;
    CheckOptions notes;
    notes.files = {"p.ini", "q.ini"};
    notes.select = {"ZX9"};
    EXPECT_EQ(run(notes), 0);
    EXPECT_EQ(output(), "q.ini:3:1: note: hotspares is usually written Hotspares [ZX902]\n");
    folder.write("w.ini", "[Policy.a]\nAppliesTo.1 = m: 1\n");
    EXPECT_EQ(run({"w.ini"}), 1);
    EXPECT_EQ(output(), "w.ini:2:17: warning: the blanks behind the \":\" are part of the value "
                        "[ZX111]\n");
}

TEST_F(CheckTest, QuietIsWithoutTheSum) {
    folder.write("p.ini", sound);
    context.quiet = true;
    EXPECT_EQ(run({"p.ini"}), 0);
    EXPECT_EQ(output(), "");
}

TEST_F(CheckTest, SelectsAndIgnoresRules) {
    folder.write("p.ini", faulty);
    context.format = Format::concise;
    CheckOptions options;
    options.files = {"p.ini"};
    options.select = {"zx9"};
    options.ignore = {"ZX902"};
    EXPECT_EQ(run(options), 0);
    EXPECT_EQ(output(), "p.ini:2:18: note: blanks at the end of the line [ZX901]\n");
    options.select = {"ZX101", "ZX902"};
    EXPECT_EQ(run(options), 1);
    EXPECT_EQ(output(), "p.ini:3:8: error: Init cannot be \"SLOW\" [ZX101]\n");
}

TEST_F(CheckTest, ReadsStandardInput) {
    platform.consoleFake.answers = faulty;
    context.format = Format::concise;
    EXPECT_EQ(run({"-"}), 1);
    EXPECT_EQ(output(), "<stdin>:2:18: note: blanks at the end of the line [ZX901]\n"
                        "<stdin>:3:1: note: init is usually written Init [ZX902]\n"
                        "<stdin>:3:8: error: Init cannot be \"SLOW\" [ZX101]\n");
}

TEST_F(CheckTest, TellsOfAFileThatCannotBeReadAndChecksTheOthers) {
    folder.write("p.ini", faulty);
    folder.write("sub/x", "");
    CheckOptions options;
    options.files = {"none.ini", "sub", "p.ini"};
    options.select = {"ZX1"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(output(),
              "none.ini: error: the file cannot be read: there is no such file or folder\n"
              "          [ZX001]\n"
              "   help: give the name of a policies file, or - for standard input\n"
              "\n"
              "sub: error: the file cannot be read: it is a folder [ZX001]\n"
              "   help: give the name of a policies file, or - for standard input\n"
              "\n"
              "p.ini:3:8: error: Init cannot be \"SLOW\" [ZX101]\n"
              "   3 | init = SLOW\n"
              "     |        ^^^^\n"
              "   help: Init is QUICK or BUILD\n"
              "\n"
              "3 errors in 3 files (1 policy). zolexctl explain ZX001 tells more.\n");
}

/// A file that another process writes: each read of it from its begin gives other bytes.
class RestlessFiles : public FileSystem {
  public:
    class Restless : public File {
      public:
        std::size_t read(std::span<char> bytes) override {
            if (isRead_) {
                return 0;
            }
            isRead_ = true;
            bytes[0] = next_++;
            return 1;
        }
        std::size_t write(std::string_view /*bytes*/) override { return 0; }
        bool failed() const override { return fails; }
        bool rewind() override {
            isRead_ = false;
            return rewinds;
        }
        bool flush() override { return true; }
        bool close() override { return true; }
        bool rewinds = true;
        bool fails = false;

      private:
        char next_ = 'a';
        bool isRead_ = false;
    };
    std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
        auto file = std::make_unique<Restless>();
        file->rewinds = rewinds;
        file->fails = fails;
        return file;
    }
    bool remove(std::string_view /*name*/) override { return false; }
    bool rewinds = true;
    bool fails = false;
};

class RestlessPlatform : public zolex::test::FakePlatform {
  public:
    FileSystem& files() override { return restless; }
    RestlessFiles restless;
};

TEST_F(CheckTest, BelievesNoFileThatChangesOrFailsWhileItIsRead) {
    RestlessPlatform restless;
    PoliciesText text = readPoliciesText(restless, "p.ini");
    ASSERT_TRUE(text.fault.has_value());
    EXPECT_EQ(text.fault->code, "ZX001");
    EXPECT_EQ(text.fault->summary, "the file changes while it is read");
    EXPECT_EQ(text.text, "");
    restless.restless.rewinds = false; // a pipe
    EXPECT_EQ(readPoliciesText(restless, "p.ini").text, "a");
    restless.restless.fails = true;
    text = readPoliciesText(restless, "p.ini");
    ASSERT_TRUE(text.fault.has_value());
    EXPECT_EQ(text.fault->summary.substr(0, 39),
              "the file cannot be read to its end: " + text.fault->summary.substr(36, 3));
}

TEST_F(CheckTest, ReadsNoFileOfMoreThan64MegaBytes) {
    folder.write("p.ini", std::string(mostPoliciesBytes + 1, ';'));
    const PoliciesText text = readPoliciesText(platform, "p.ini");
    ASSERT_TRUE(text.fault.has_value());
    EXPECT_EQ(text.fault->summary, "the file is larger than 64 MB");
}

TEST_F(CheckTest, WritesADocument) {
    folder.write("p.ini", faulty);
    context.format = Format::json;
    context.outputFile = "out.json";
    CheckOptions options;
    options.files = {"p.ini", "none.ini"};
    options.select = {"ZX1"};
    platform.now = {2026, 11, 21, 21, 5, 0};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(output(), "");
    const std::string document = read("out.json");
    test::keepDocument("check-faults", document);
    EXPECT_EQ(withoutVersion(document), systemLines(R"({
  "format": "zolex-check",
  "format_version": "1.0",
  "tool": {
    "name": "zolexctl",
    "version": "",
    "argv": [
      "check",
      "p.ini"
    ]
  },
  "made_at": "2026-11-21T21:05:00+00:00",
  "valid": false,
  "error_count": 2,
  "warning_count": 0,
  "note_count": 0,
  "diagnostics": [
    {
      "code": "ZX101",
      "severity": "error",
      "refused_by": "zolex",
      "summary": "Init cannot be \"SLOW\"",
      "detail": null,
      "help": [
        "Init is QUICK or BUILD"
      ],
      "range": {
        "filename": "p.ini",
        "start": {
          "line": 3,
          "column": 8,
          "byte": 39
        },
        "end": {
          "line": 3,
          "column": 12,
          "byte": 43
        }
      }
    },
    {
      "code": "ZX001",
      "severity": "error",
      "refused_by": "zolex",
      "summary": "the file cannot be read: there is no such file or folder",
      "detail": null,
      "help": [
        "give the name of a policies file, or - for standard input"
      ],
      "range": {
        "filename": "none.ini",
        "start": null,
        "end": null
      }
    }
  ]
}
)"));
}

TEST_F(CheckTest, WritesADocumentOfASoundFile) {
    folder.write("p.ini", sound);
    context.format = Format::json;
    EXPECT_EQ(run({"p.ini"}), 0);
    const std::string document = output();
    test::keepDocument("check-sound", document);
    EXPECT_NE(document.find("\"valid\": true,\n  \"error_count\": 0,\n"), std::string::npos);
    EXPECT_NE(document.find("\"diagnostics\": []\n}\n"), std::string::npos);
}

TEST_F(CheckTest, WritesSarifWithColumnsInCharacters) {
    folder.write("a b.ini", "[Policy.a]\nAppliesTo.1 = s:\xC3\xBC,c:0\nAppliesTo.1 = ALL\n");
    context.format = Format::sarif;
    CheckOptions options;
    options.files = {"a b.ini"};
    options.select = {"ZX0", "ZX203"};
    EXPECT_EQ(run(options), 1);
    const std::string document = output();
    EXPECT_NE(document.find(R"(      "columnKind": "unicodeCodePoints",
      "results": [
        {
          "ruleId": "ZX203",
          "ruleIndex": 0,
          "level": "error",
          "message": {
            "text": "\"0\" is no controller number\nhelp: c: takes a whole number from 1"
          },
          "locations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "a%20b.ini"
                },
                "region": {
                  "startLine": 2,
                  "startColumn": 21,
                  "endLine": 2,
                  "endColumn": 22
                }
              }
            }
          ]
        },
        {
          "ruleId": "ZX008",
          "ruleIndex": 1,
          "level": "error",
)"),
              std::string::npos)
        << document;
    EXPECT_NE(document.find(R"("relatedLocations": [
            {
              "physicalLocation": {
                "artifactLocation": {
                  "uri": "a%20b.ini"
                },
                "region": {
                  "startLine": 2,
                  "startColumn": 1,
                  "endLine": 2,
                  "endColumn": 12
                }
              },
              "message": {
                "text": "first here"
              }
            }
          ])"),
              std::string::npos)
        << document;
    EXPECT_EQ(document.substr(0, 94), R"({
  "$schema": "https://json.schemastore.org/sarif-2.1.0.json",
  "version": "2.1.0",
  "runs")");
}

TEST_F(CheckTest, WritesWorkflowCommands) {
    folder.write("p.ini", faulty);
    context.format = Format::github;
    CheckOptions options;
    options.files = {"p.ini"};
    options.select = {"ZX1"};
    EXPECT_EQ(run(options), 1);
    EXPECT_EQ(output(), "::error file=p.ini,line=3,col=8,endLine=3,endColumn=12,title=ZX101::Init "
                        "cannot be \"SLOW\"%0Ahelp: Init is QUICK or BUILD\n");
}

TEST_F(CheckTest, SaysWhatZolexWouldSay) {
    folder.write("p.ini", faulty);
    folder.write("q.ini", sound);
    CheckOptions options;
    options.asOld = true;
    options.files = {"p.ini"};
    EXPECT_EQ(run(options), 1);
    EXPECT_EQ(output(), "\n#### ERROR\n"
                        "\tPolicy.web, Init -- Invalid specifier:  SLOW\n"
                        "\tValid values are:  QUICK BUILD\n\n");
    options.files = {"q.ini"};
    EXPECT_EQ(run(options), 0);
    EXPECT_EQ(output(), "zolex takes this file.\n");
    options.files = {"q.ini", "p.ini", "none.ini"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(output(), "q.ini:\nzolex takes this file.\n"
                        "p.ini:\n\n#### ERROR\n"
                        "\tPolicy.web, Init -- Invalid specifier:  SLOW\n"
                        "\tValid values are:  QUICK BUILD\n\n");
    EXPECT_EQ(error(), "error: none.ini: the file cannot be read: there is no such file or folder\n"
                       "  help: give the name of a policies file, or - for standard input\n");
    context.format = Format::json;
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(error(), "error: --as-old prints the text of zolex and nothing else\n"
                       "  help: leave --fix and --format out\n");
}

TEST_F(CheckTest, MendsWhatIsSafeAndChecksWhatRemains) {
    folder.write("p.ini", "; one \r\n" + faulty + "\t\n  \n; \xFF\tend\t");
    CheckOptions options;
    options.files = {"p.ini"};
    options.fix = true;
    options.select = {"ZX101", "ZX9"};
    context.format = Format::concise;
    EXPECT_EQ(run(options), 1);
    EXPECT_EQ(read("p.ini"), systemLines("; one\r\n[Policy.web]\nAppliesTo.1 = ALL\n"
                                         "Init = SLOW\n\t\n\n; \xFF\tend"));
    EXPECT_EQ(error(), "p.ini: blanks taken off 4 lines, 1 keyword respelled\n");
    EXPECT_EQ(output(), "p.ini:4:8: error: Init cannot be \"SLOW\" [ZX101]\n");
    // Nothing more to mend.
    EXPECT_EQ(run(options), 1);
    EXPECT_EQ(error(), "");
}

TEST_F(CheckTest, MendsOnlyWhatIsSelectedAndNotIgnored) {
    const std::string text = "[Policy.web]\n"
                             "; zolexctl: ignore ZX901\n"
                             "AppliesTo.1 = ALL \n"
                             "hotspares = 1 \n"
                             "init = QUICK\n";
    folder.write("p.ini", text);
    CheckOptions options;
    options.files = {"p.ini"};
    options.fix = true;
    options.ignore = {"ZX902", "ZX5"};
    options.select = {"ZX9"};
    EXPECT_EQ(run(options), 0);
    EXPECT_EQ(error(), "p.ini: blanks taken off 1 line\n");
    EXPECT_EQ(output(), "no findings in 1 file (1 policy).\n");
    EXPECT_EQ(read("p.ini"), systemLines("[Policy.web]\n"
                                         "; zolexctl: ignore ZX901\n"
                                         "AppliesTo.1 = ALL \n"
                                         "hotspares = 1\n"
                                         "init = QUICK\n"));
}

TEST_F(CheckTest, DoesNotMendStandardInputOrWhatMustNotBeWritten) {
    CheckOptions options;
    options.fix = true;
    options.files = {"-"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(error(), "error: standard input cannot be mended\n"
                       "  help: name the file: zolexctl check --fix FILE\n");
    EXPECT_EQ(output(), "");
}

#ifndef _WIN32
TEST_F(CheckTest, KeepsTheRightsOfAFileThatIsMended) {
    folder.write("p.ini", sound + "init = QUICK\n");
    ASSERT_EQ(::chmod("p.ini", 0640), 0);
    CheckOptions options;
    options.fix = true;
    options.files = {"p.ini"};
    EXPECT_EQ(run(options), 0);
    struct stat status = {};
    ASSERT_EQ(::stat("p.ini", &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
    EXPECT_EQ(read("p.ini"), sound + "Init = QUICK\n");
}

TEST_F(CheckTest, LeavesAFileBehindALinkAsItWas) {
    folder.write("p.ini", sound + "init = QUICK\n");
    ASSERT_EQ(::symlink("p.ini", "link.ini"), 0);
    CheckOptions options;
    options.fix = true;
    options.files = {"link.ini"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(error(), "error: link.ini: it is a symbolic link, which would be lost; name the file "
                       "itself\n"
                       "  help: the file is as it was\n");
    EXPECT_EQ(read("p.ini"), sound + "init = QUICK\n");
}
#endif

TEST_F(CheckTest, EndsWith2WhenTheOutputCannotBeWritten) {
    folder.write("p.ini", sound);
    context.outputFile = "none/out.txt";
    EXPECT_EQ(run({"p.ini"}), 2);
    EXPECT_EQ(error(), "error: none/out.txt: there is no such file or folder\n"
                       "  help: name another file with -o; nothing was written\n");
}

TEST_F(CheckTest, LooksAtRecordedMachines) {
    test::layOut(folder);
    test::Server server("single");
    ASSERT_EQ(test::runRecord(server, "a.zrec").exitCode, 0);
    folder.write("p.ini", "[Policy.web]\nAppliesTo.1 = c:2\n");
    folder.write("fleet/a.zrec", read("a.zrec"));
    context.format = Format::concise;
    CheckOptions options;
    options.files = {"p.ini"};
    EXPECT_EQ(run(options), 0);
    EXPECT_EQ(output(), "");
    for (const char* machines : {"a.zrec", "fleet"}) {
        options.machines = {machines};
        EXPECT_EQ(run(options), 1);
        EXPECT_NE(output().find("[ZX707]\n"), std::string::npos);
        EXPECT_EQ(error(), "");
    }
}

TEST_F(CheckTest, TellsOfRecordingsThatCannotBeRead) {
    folder.write("p.ini", sound);
    CheckOptions options;
    options.files = {"p.ini"};
    options.machines = {"none.zrec"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(output(),
              "none.zrec: error: the file cannot be opened: there is no such file or folder\n"
              "           [ZR100]\n"
              "   help: record the machine again: zolexctl record -o FILE.zrec\n"
              "\n"
              "1 error in 1 file (1 policy). zolexctl explain ZR100 tells more.\n");
    EXPECT_EQ(error(), "");
    context.format = Format::json;
    EXPECT_EQ(run(options), 2);
    const std::string document = output();
    test::keepDocument("check-without-machine", document);
    EXPECT_NE(document.find("\"filename\": \"none.zrec\""), std::string::npos) << document;
}

TEST_F(CheckTest, GoesOnWithTheOtherRecordingsOfAFolder) {
    test::layOut(folder);
    test::Server server("single");
    ASSERT_EQ(test::runRecord(server, "a.zrec").exitCode, 0);
    folder.write("p.ini", "[Policy.web]\nAppliesTo.1 = c:2\n");
    folder.write("fleet/a.zrec", "no recording\n");
    folder.write("fleet/b.zrec", read("a.zrec"));
    context.format = Format::concise;
    CheckOptions options;
    options.files = {"p.ini"};
    options.machines = {"fleet"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(output(),
              "fleet/a.zrec:1:2: error: this is no recording: this is no JSON object: syntax error "
              "while parsing value - invalid literal [ZR101]\n"
              "p.ini:1:1: warning: controller 1 of KQ10Z7V: no policy fits (LSI-MegaRAID-8480, 8 "
              "drives) [ZX707]\n");
    EXPECT_EQ(error(), "");
}

TEST_F(CheckTest, EndsWith2WhenARecordingDoesNotShowAController) {
    test::layOut(folder);
    test::Server broken("two-controllers");
    zolex_sim::Fault fault;
    fault.match = "-pdList -a1";
    fault.exitCode = 3;
    broken.server.faults.push_back(fault);
    ASSERT_EQ(test::runRecord(broken, "a.zrec").exitCode, 1);
    test::Elsewhere empty;
    ASSERT_EQ(test::runRecord(empty, "b.zrec").exitCode, 2);
    folder.write("p.ini", "[Policy.web]\nAppliesTo.1 = ALL\n");
    CheckOptions options;
    options.files = {"p.ini"};
    options.machines = {"a.zrec", "b.zrec"};
    EXPECT_EQ(run(options), 2);
    EXPECT_EQ(output(), "a.zrec: error: controller 2 is not known: MEGACLI had failed [ZP104]\n"
                        "   help: zolexctl show --recording a.zrec tells more\n"
                        "\n"
                        "b.zrec: error: no RAID controller is in this recording [ZP120]\n"
                        "   help: zolexctl show --recording b.zrec tells more\n"
                        "\n"
                        "2 errors in 1 file (1 policy). zolexctl explain ZP104 tells more.\n");
    context.format = Format::json;
    EXPECT_EQ(run(options), 2);
    test::keepDocument("check-unknown-controllers", output());
}

} // namespace
} // namespace zolex::companion
