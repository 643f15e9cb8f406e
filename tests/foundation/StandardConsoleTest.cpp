#include "foundation/Console.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

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

#ifdef _WIN32
int duplicate(int descriptor) {
    return ::_dup(descriptor);
}
void replaceDescriptor(int descriptor, int by) {
    ::_dup2(by, descriptor);
    ::_close(by);
}
int openForWriting(const char* name) {
    return ::_open(name, _O_CREAT | _O_TRUNC | _O_WRONLY | _O_TEXT, _S_IREAD | _S_IWRITE);
}
#else
int duplicate(int descriptor) {
    return ::dup(descriptor);
}
void replaceDescriptor(int descriptor, int by) {
    ::dup2(by, descriptor);
    ::close(by);
}
int openForWriting(const char* name) {
    return ::open(name, O_CREAT | O_TRUNC | O_WRONLY, 0600);
}
#endif

/// Sends a standard stream to a file while it lives. Nothing is flushed meanwhile.
class Redirection {
  public:
    Redirection(std::FILE* stream, int descriptor, const char* name)
        : stream_(stream), descriptor_(descriptor) {
        std::fflush(stream);
        before_ = duplicate(descriptor);
        replaceDescriptor(descriptor, openForWriting(name));
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection() {
        std::fflush(stream_);
        replaceDescriptor(descriptor_, before_);
    }

  private:
    std::FILE* stream_;
    int descriptor_;
    int before_ = -1;
};

TEST(StandardConsole, EachTextIsVisibleWhenTheCallReturns) {
    const test::TemporaryDirectory directory;
    std::vector<std::string> seen;
    {
        StandardConsole console;
        const Redirection output(stdout, 1, "out.txt");
        const Redirection error(stderr, 2, "err.txt");
        for (const char* text : {"one", " two", "; three"}) {
            console.writeOutput(text);
            seen.push_back(test::TemporaryDirectory::read("out.txt"));
            console.writeError(text);
            seen.push_back(test::TemporaryDirectory::read("err.txt"));
        }
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"one", "one", "one two", "one two", "one two; three",
                                              "one two; three"}));
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
