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

} // namespace
} // namespace zolex
