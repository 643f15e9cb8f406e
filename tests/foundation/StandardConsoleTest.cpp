#include "foundation/Console.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

TEST(StandardConsole, TextsReachTheirStreams) {
    StandardConsole console;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    console.writeOutput("out %s\n");
    console.writeError("error %d\n");
    console.writeOutput("");
    console.writeOutput(std::string_view("a\0b", 3));
    // Captured through the descriptors: what was not flushed would be missing.
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error %d\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string("out %s\na\0b", 10));
}

TEST(StandardConsole, LineEndsOfAnotherKindStay) {
    // Symptom: the output of a child, whose lines end in CR LF, was shown with CR CR LF on Windows.
    StandardConsole console;
    testing::internal::CaptureStdout();
    console.writeOutput("one\r\ntwo\rthree\r\n\r\n");
    const std::string shown = testing::internal::GetCapturedStdout();
#ifdef _WIN32
    // Read back through a text stream, in which CR LF is the line end.
    EXPECT_EQ(shown, "one\ntwo\rthree\n\n");
#else
    EXPECT_EQ(shown, "one\r\ntwo\rthree\r\n\r\n");
#endif
}

TEST(StandardConsole, AReturnAtTheEndOfATextIsNotLost) {
    testing::internal::CaptureStdout();
    {
        StandardConsole console;
        console.writeOutput("cut here\r");
        console.writeOutput("\nand here\r");
        console.writeOutput("x\r");
    }
    const std::string shown = testing::internal::GetCapturedStdout();
#ifdef _WIN32
    EXPECT_EQ(shown, "cut here\nand here\rx\r");
#else
    EXPECT_EQ(shown, "cut here\r\nand here\rx\r");
#endif
}

TEST(LineEndFolder, FoldsPairsOverTheCutsOfAText) {
    // Symptom: a CR LF that the cut of a long line parted was shown as CR CR LF on Windows.
    const std::string text = "a\r\nb\rc\n\r\r\n\r\n\nd\r";
    const std::string folded = "a\nb\rc\n\r\n\n\nd\r";
    for (std::size_t first = 0; first <= text.size(); ++first) {
        for (std::size_t second = first; second <= text.size(); ++second) {
            LineEndFolder folder;
            std::string result = folder.fold(text.substr(0, first));
            result += folder.fold(text.substr(first, second - first));
            result += folder.fold(text.substr(second));
            EXPECT_EQ(result + folder.finish(), folded) << first << " " << second;
            EXPECT_EQ(folder.finish(), "");
        }
    }
}

} // namespace
} // namespace zolex
