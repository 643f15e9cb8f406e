// Signals that end the program, and those that must not.

#ifdef __linux__

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zolex::e2e {
namespace {

using namespace std::chrono_literals;

constexpr const char* temporary = "ZOLEXM~~.TMP";

/// Whether the condition holds within a minute.
template <typename Condition>
bool comesTrue(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

class SignalsTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
        ASSERT_EQ(0, server.zolex({"/c", "/f:wanted.ini"}).exitCode);
    }

    /// Starts a capture into a pipe, which stops it where it has made its temporary file and opens
    /// the policies file to append to it: nobody reads the pipe.
    pid_t startCapture(const char* more, bool ignoresHangUp) {
        const std::string pipe = server.folder().string() + "/p.ini";
        EXPECT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
        const pid_t process = ::fork();
        if (process == 0) {
            const int nowhere = ::open("/dev/null", O_RDWR);
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
                ::dup2(nowhere, stream);
            }
            for (const auto& [name, value] : server.environment) {
                ::setenv(name.c_str(), value.c_str(), 1);
            }
            ::signal(SIGHUP, ignoresHangUp ? SIG_IGN : SIG_DFL);
            ::signal(SIGINT, SIG_DFL);
            if (::chdir(server.folder().c_str()) == 0) {
                ::execl(ZOLEX_PROGRAM, ZOLEX_PROGRAM, "/c", "/f:p.ini", more, nullptr);
            }
            ::_exit(127);
        }
        // It reads the names first, from an empty pipe.
        EXPECT_TRUE(comesTrue([&] {
            const int writer = ::open(pipe.c_str(), O_WRONLY | O_NONBLOCK);
            ::close(writer);
            return writer >= 0;
        }));
        EXPECT_TRUE(comesTrue([&] { return server.exists(temporary); }));
        std::this_thread::sleep_for(50ms);
        return process;
    }

    /// Lets a capture go on, which must end well, and gives what it has appended.
    std::string appendedBy(pid_t process) {
        const std::string pipe = server.folder().string() + "/p.ini";
        const int reader = ::open(pipe.c_str(), O_RDONLY);
        std::string appended(100'000, '\0');
        std::size_t length = 0;
        for (ssize_t n = 1; n > 0; length += static_cast<std::size_t>(n)) {
            n = ::read(reader, appended.data() + length, appended.size() - length);
        }
        ::close(reader);
        const int status = statusOf(process);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        appended.resize(length);
        return appended;
    }

    static int statusOf(pid_t process) {
        int status = -1;
        EXPECT_EQ(process, ::waitpid(process, &status, 0));
        return status;
    }

    VirtualServer server;
};

// Symptom: the temp file stayed behind.
TEST_F(SignalsTest, TheProgramEndsByTheSignalAndLeavesNoTemporaryFile) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(::strsignal(signal));
        const pid_t process = startCapture("/y", false);
        ::kill(process, signal);
        const int status = statusOf(process);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(signal, WTERMSIG(status));
        EXPECT_FALSE(server.exists(temporary));
        std::filesystem::remove(server.folder() / "p.ini");
    }
}

TEST_F(SignalsTest, ATemporaryFileThatIsKeptForDebuggingStays) {
    const pid_t process = startCapture("/debug", false);
    ::kill(process, SIGTERM);
    EXPECT_TRUE(WIFSIGNALED(statusOf(process)));
    EXPECT_TRUE(server.exists(temporary));
}

// Symptom: two runs at once had one temp file, and one of them appended what the other had
// captured.
TEST_F(SignalsTest, ARunThatIsStoppedKeepsATemporaryFileOfItsOwn) {
    const pid_t process = startCapture("/y", false);
    EXPECT_EQ(0, server.zolex({"/c:c", "/f:other.ini"}).exitCode);
    EXPECT_EQ(1U, linesAfter(server.read("other.ini"), "AppliesTo.1 = c:1").size());
    EXPECT_EQ(withoutComments(server.read("wanted.ini")), withoutComments(appendedBy(process)));
    EXPECT_FALSE(server.exists(temporary));
}

TEST_F(SignalsTest, ASignalThatIsIgnoredStaysIgnored) {
    const pid_t process = startCapture("/y", true);
    ::kill(process, SIGHUP);
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(0, ::waitpid(process, nullptr, WNOHANG)) << "it ended";
    EXPECT_TRUE(server.exists(temporary));
    EXPECT_EQ(withoutComments(server.read("wanted.ini")), withoutComments(appendedBy(process)));
    EXPECT_FALSE(server.exists(temporary));
}

// Symptom: the program was ended by its lost reader, within a capture or between two commands of a
// deployment.
TEST_F(SignalsTest, ALostReaderOfTheOutputEndsNothing) {
    server.start("sh", {"-c", "('" ZOLEX_PROGRAM "' /c /f:p.ini /v:9; echo $? >code.txt) | true"});
    EXPECT_TRUE(comesTrue([&] { return server.read("code.txt").ends_with("\n"); }));
    EXPECT_EQ("0\n", server.read("code.txt"));
    EXPECT_EQ(withoutComments(server.read("wanted.ini")), withoutComments(server.read("p.ini")));
}

TEST_F(SignalsTest, AUtilityHasItsSignalsAsBefore) {
    server.write("UTIL.BAT", "for s in PIPE XFSZ TERM; do\n"
                             "  sh -c \"kill -$s \\$\\$\"\n"
                             "  echo $? >>seen.txt\n"
                             "done\n" +
                                 server.read("UTIL.BAT"));
    EXPECT_EQ(0, server.zolex({"/c", "/f:p.ini"}).exitCode);
    EXPECT_TRUE(server.read("seen.txt").starts_with("141\n153\n143\n")) << server.read("seen.txt");
}

// Symptom: the program was ended by the signal, the policies file was torn and the temp file
// stayed.
TEST_F(SignalsTest, AFileThatMayNotGrowIsAWriteThatFails) {
    std::string before;
    for (int i = 0; i < 40; ++i) {
        before += "; a line of fifty bytes with its end, no policy  \n";
    }
    // Blocks of 512 bytes. The first limit is one of the temporary file.
    server.write("p.ini", "; short\n");
    server.start("sh", {"-c", "(code=0; ulimit -f 1; '" ZOLEX_PROGRAM
                              "' /c /f:p.ini || code=$?; echo code $code) 2>&1 | cat >out.txt"});
    EXPECT_NE(std::string::npos, server.read("out.txt").find("code 9\n")) << server.read("out.txt");
    EXPECT_NE(std::string::npos, server.read("out.txt").find("Could not write to temp space."));
    EXPECT_EQ("; short\n", server.read("p.ini"));
    EXPECT_FALSE(server.exists(temporary));

    server.write("p.ini", before);
    server.start("sh", {"-c", "(code=0; ulimit -f 4; '" ZOLEX_PROGRAM
                              "' /c /f:p.ini || code=$?; echo code $code) 2>&1 | cat >out.txt"});
    EXPECT_NE(std::string::npos, server.read("out.txt").find("code 9\n")) << server.read("out.txt");
    EXPECT_NE(std::string::npos,
              server.read("out.txt").find("Error writing to policies file.\n"
                                          "Warning: Partial data may have been written.\n"));
    EXPECT_TRUE(server.read("p.ini").starts_with(before));
    EXPECT_FALSE(server.exists(temporary));
}

} // namespace
} // namespace zolex::e2e

#endif
