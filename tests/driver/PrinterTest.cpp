#include "driver/Printer.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace zolex {
namespace {

constexpr std::int32_t verbosities[] = {-1, 0, 3, 5, 8, 9, 10};

/// Keeps each text apart, as it is handed over.
class PieceConsole : public Console {
  public:
    void writeOutput(std::string_view text) override { pieces.emplace_back(text); }
    void writeError(std::string_view /*text*/) override { ADD_FAILURE() << "standard error"; }
    int readCharacter() override { return -1; }

    std::vector<std::string> pieces;
};

TEST(Printer, AMessageIsShownWhenItsLevelIsAtMostTheVerbosity) {
    for (const std::int32_t verbosity : verbosities) {
        for (const std::int32_t messageLevel :
             {level::unset, level::always, level::shortage, level::progress, level::detail,
              level::traces, std::numeric_limits<std::int32_t>::min(),
              std::numeric_limits<std::int32_t>::max()}) {
            test::FakeConsole console;
            Printer printer(console);
            printer.setVerbosity(verbosity);
            printer.print("message\n", messageLevel);
            printer.printf(messageLevel, "number %d\n", 5);
            const bool shown = messageLevel <= verbosity;
            EXPECT_EQ(console.output, shown ? "message\nnumber 5\n" : "")
                << messageLevel << " at " << verbosity;
            EXPECT_EQ(printer.shows(messageLevel), shown);
        }
    }
}

TEST(Printer, TheVerbosityIsUnsetAtFirstAndHidesEvenLevelZero) {
    test::FakeConsole console;
    Printer printer(console);
    EXPECT_EQ(printer.verbosity(), -1);
    EXPECT_FALSE(printer.isVerbose());
    printer.print("usage\n", level::always);
    printer.print("Started ZOLEX.\n", level::progress);
    printer.trace("Entering ZOLEX::main\n");
    EXPECT_EQ(console.output, "");
}

TEST(Printer, VerboseMeansFiveOrMore) {
    test::FakeConsole console;
    Printer printer(console);
    for (const std::int32_t verbosity : verbosities) {
        printer.setVerbosity(verbosity);
        EXPECT_EQ(printer.verbosity(), verbosity);
        EXPECT_EQ(printer.isVerbose(), verbosity >= 5) << verbosity;
    }
}

TEST(Printer, TracesAppearFromNine) {
    for (const std::int32_t verbosity : verbosities) {
        test::FakeConsole console;
        Printer printer(console);
        printer.setVerbosity(verbosity);
        printer.trace("Entering ZOLEX::main\n");
        printer.trace("Exiting ZOLEX::main(8)\n");
        EXPECT_EQ(console.output,
                  verbosity >= 9 ? "Entering ZOLEX::main\nExiting ZOLEX::main(8)\n" : "")
            << verbosity;
    }
}

TEST(Printer, TracesTakeIntegersAndStrings) {
    test::FakeConsole console;
    Printer printer(console);
    printer.setVerbosity(9);
    printer.tracef("a=%d\n", -1);
    printer.tracef("b=%s\n", "text");
    printer.tracef("c=%s %s\n", "one", "two");
    printer.tracef("d=%s %d\n", "one", 2);
    printer.tracef("e=%s %d %d\n", "one", 2, 3);
    printer.tracef("f=%d %d\n", 1, 2);
    printer.tracef("Entering ZOLEX::checkForErrors, controllerNum=%d, RC=%d, Mode=%d\n", 1, 49, 2);
    EXPECT_EQ(console.takeOutput(),
              "a=-1\nb=text\nc=one two\nd=one 2\ne=one 2 3\nf=1 2\n"
              "Entering ZOLEX::checkForErrors, controllerNum=1, RC=49, Mode=2\n");
    printer.setVerbosity(8);
    printer.tracef("a=%d\n", -1);
    EXPECT_EQ(console.output, "");
}

TEST(Printer, AtVerbosityZeroOnlyLevelZeroAndTheUngatedTextsAppear) {
    test::FakeConsole console;
    Printer printer(console);
    printer.setVerbosity(0);
    printer.print("level 0\n", level::always);
    printer.print("level 1\n", level::shortage);
    printer.print("level 3\n", level::progress);
    printer.print("level 5\n", level::detail);
    printer.trace("trace\n");
    printer.tracef("trace %d\n", 1);
    printer.printAlways("Executing:x\n");
    printer.printfAlways("Deploy Command=%s\n", "y");
    printer.errorBlock("fault");
    printer.debugLine("insight");
    EXPECT_EQ(console.output, "level 0\nExecuting:x\nDeploy Command=y\n\n#### ERROR\n\tfault\n"
                              "#### DEBUG:  insight");
    EXPECT_EQ(console.error, "");
}

TEST(Printer, AtVerbosityFiveTracesDoNotAppear) {
    test::FakeConsole console;
    Printer printer(console);
    printer.setVerbosity(5);
    printer.print("detail\n", level::detail);
    printer.trace("Entering x\n");
    EXPECT_EQ(console.output, "detail\n");
}

TEST(Printer, UngatedTextsAppearAtEveryVerbosity) {
    for (const std::int32_t verbosity : verbosities) {
        test::FakeConsole console;
        Printer printer(console);
        printer.setVerbosity(verbosity);
        printer.printAlways("a");
        printer.printfAlways("%s", "b");
        printer.errorBlock("c");
        printer.debugLine("d");
        EXPECT_EQ(console.output, "ab\n#### ERROR\n\tc\n#### DEBUG:  d") << verbosity;
    }
}

TEST(Printer, AMessageIsNoFormat) {
    test::FakeConsole console;
    Printer printer(console);
    printer.setVerbosity(9);
    printer.print("100%s %d%%\n", level::always);
    printer.printAlways("%n\n");
    printer.trace("%x\n");
    printer.errorBlock("%s\n");
    printer.debugLine("%d");
    EXPECT_EQ(console.output, "100%s %d%%\n%n\n%x\n\n#### ERROR\n\t%s\n\n#### DEBUG:  %d");
}

TEST(Printer, AnErrorBlockAddsItsOwnNewline) {
    test::FakeConsole console;
    Printer printer(console);
    printer.errorBlock("No Controllers Found in Inventory File\n");
    printer.errorBlock("");
    EXPECT_EQ(console.output,
              "\n#### ERROR\n\tNo Controllers Found in Inventory File\n\n\n#### ERROR\n\t\n");
}

TEST(Printer, EachTextIsHandedOverWholeAndAtOnce) {
    PieceConsole console;
    Printer printer(console);
    printer.setVerbosity(9);
    const std::string longText(3000, 'x');
    printer.printf(level::always, "%s|\n", longText.c_str());
    printer.errorBlock("fault");
    printer.debugLine("insight");
    printer.printfAlways("%s|\n", longText.c_str());
    EXPECT_EQ(console.pieces, (std::vector<std::string>{longText + "|\n", "\n#### ERROR\n\tfault\n",
                                                        "#### DEBUG:  insight", longText + "|\n"}));
    EXPECT_EQ(&printer.console(), &console);
}

} // namespace
} // namespace zolex
