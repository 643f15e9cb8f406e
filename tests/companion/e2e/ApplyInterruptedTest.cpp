// apply that is interrupted, ended, run twice at once, and asked at a terminal.

#ifdef __linux__

#include "AppliedServer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zolex::e2e {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds patience{30000};

/// A run of zolexctl that has not ended. With a terminal its three streams are one.
class Running {
  public:
    Running(const AppliedServer& server, const std::vector<std::string>& arguments,
            bool terminal = false)
        : output_(server.folder().string() + "-" + std::to_string(++number_) + ".out"),
          error_(server.folder().string() + "-" + std::to_string(number_) + ".err") {
        std::string slave;
        if (terminal) {
            terminal_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
            EXPECT_EQ(0, ::grantpt(terminal_) | ::unlockpt(terminal_));
            slave = ::ptsname(terminal_);
        }
        const std::string program = server.program();
        std::vector<char*> argv = {const_cast<char*>(program.c_str())};
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        const std::string folder = server.folder().string();
        process_ = ::fork();
        if (process_ == 0) {
            ::setsid();
            for (const auto& [name, value] : server.environment) {
                ::setenv(name.c_str(), value.c_str(), 1);
            }
            ::setenv("TERM", "xterm", 1);
            const int in = ::open(terminal ? slave.c_str() : "/dev/null", O_RDWR);
            const int flags = O_WRONLY | O_CREAT | O_TRUNC;
            const int out = terminal ? in : ::open(output_.c_str(), flags, 0644);
            const int err = terminal ? in : ::open(error_.c_str(), flags, 0644);
            if (terminal) {
                ::ioctl(in, TIOCSCTTY, 0);
            }
            ::dup2(in, STDIN_FILENO);
            ::dup2(out, STDOUT_FILENO);
            ::dup2(err, STDERR_FILENO);
            if (::chdir(folder.c_str()) == 0) {
                ::execv(argv[0], argv.data());
            }
            ::_exit(127);
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ended();
        }
        if (terminal_ >= 0) {
            ::close(terminal_);
        }
        std::error_code ignored;
        std::filesystem::remove(output_, ignored);
        std::filesystem::remove(error_, ignored);
    }

    void signal(int number) const { EXPECT_EQ(0, ::kill(process_, number)); }
    [[nodiscard]] pid_t process() const { return process_; }

    /// What stands on the terminal up to a text, which is waited for.
    std::string seen(const std::string& text) {
        const auto until = Clock::now() + patience;
        while (terminalText_.find(text) == std::string::npos && Clock::now() < until && more()) {
        }
        EXPECT_NE(terminalText_.find(text), std::string::npos) << terminalText_;
        return terminalText_;
    }
    /// Types at the terminal.
    void type(const std::string& keys) const {
        EXPECT_EQ(static_cast<ssize_t>(keys.size()), ::write(terminal_, keys.data(), keys.size()));
    }

    /// Waits for the end, but not for ever; 128 and the number of a signal that ended it.
    ProgramRun ended() {
        ProgramRun run;
        if (terminal_ >= 0) {
            while (more()) {
            }
        }
        int status = 0;
        const auto until = Clock::now() + patience;
        pid_t found = 0;
        while ((found = ::waitpid(process_, &status, WNOHANG)) == 0 && Clock::now() < until) {
            std::this_thread::sleep_for(milliseconds(2));
        }
        if (found == 0) {
            ADD_FAILURE() << "it does not end";
            ::kill(process_, SIGKILL);
            found = ::waitpid(process_, &status, 0);
        }
        EXPECT_EQ(process_, found);
        process_ = -1;
        run.exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        run.output = terminal_ >= 0 ? terminalText_ : contentOf(output_);
        run.error = contentOf(error_);
        return run;
    }

  private:
    static std::string contentOf(const std::string& name) {
        std::string text;
        if (std::FILE* file = std::fopen(name.c_str(), "rb")) {
            std::vector<char> piece(65536);
            for (std::size_t got = 1; got > 0;) {
                got = std::fread(piece.data(), 1, piece.size(), file);
                text.append(piece.data(), got);
            }
            std::fclose(file);
        }
        return text;
    }
    /// Reads what comes next on the terminal; false when it is closed or silent for long.
    bool more() {
        pollfd waited{terminal_, POLLIN, 0};
        char piece[4096];
        if (::poll(&waited, 1, static_cast<int>(patience.count())) <= 0) {
            return false;
        }
        const ssize_t got = ::read(terminal_, piece, sizeof piece);
        if (got > 0) {
            terminalText_.append(piece, static_cast<std::size_t>(got));
        }
        return got > 0;
    }

    static inline int number_ = 0;
    std::string output_;
    std::string error_;
    std::string terminalText_;
    int terminal_ = -1;
    pid_t process_ = -1;
};

/// A blank server and a plan of three steps, of which the first takes long.
class ApplyInterruptedTest : public testing::Test {
  protected:
    ApplyInterruptedTest() {
        server.write("web.ini", webPolicies);
        server.plan({"web.ini"});
        blank = server.shown();
    }
    /// The making of the mirror takes this long from now on.
    void slow(int time) {
        server.setFaults(R"({"match": "-CfgLdAdd R1", "delayMs": )" + std::to_string(time) + "}");
    }
    /// Until the journal has this event.
    void waitFor(const std::string& event) {
        const auto until = Clock::now() + patience;
        const auto isThere = [this, &event] {
            for (const std::string& one : server.events("plan.journal.jsonl")) {
                if (one == event) {
                    return true;
                }
            }
            return false;
        };
        while (!isThere()) {
            ASSERT_LT(Clock::now(), until) << event;
            std::this_thread::sleep_for(milliseconds(2));
        }
    }
    void expectConfigured() {
        server.expectSame("plan.json");
        server.expectNothingToDo("web.ini");
        server.expectNothingLeft();
    }
    void resume() {
        const ProgramRun run = server.apply({"--resume", "plan.journal.jsonl"});
        EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
        expectConfigured();
    }

    AppliedServer server{megaServer(eightDrives)};
    std::string blank;
};

TEST_F(ApplyInterruptedTest, OnceFinishesTheRunningCommandAndSaysWhatRemains) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(number);
        AppliedServer other(megaServer(eightDrives));
        other.write("web.ini", webPolicies);
        other.plan({"web.ini"});
        other.setFaults(R"({"match": "-CfgLdAdd R1", "delayMs": 500})");
        Running run(other, {"apply", "plan.json"});
        const auto until = Clock::now() + patience;
        while (other.read("plan.journal.jsonl").find("\"event\":\"child\"") == std::string::npos &&
               Clock::now() < until) {
            std::this_thread::sleep_for(milliseconds(2));
        }
        run.signal(number);
        const ProgramRun ended = run.ended();
        EXPECT_EQ(ended.exitCode, 4) << ended.output << ended.error;
        expectPieces(ended.error, {"error: ", "help: zolexctl apply --resume plan.journal.jsonl"});
        const std::vector<std::string> events = other.events("plan.journal.jsonl");
        EXPECT_EQ(events.back(), "end");
        EXPECT_EQ(std::count(events.begin(), events.end(), "step-ended 1"), 1);
        EXPECT_EQ(std::count(events.begin(), events.end(), "step-started 2"), 0);
        EXPECT_NE(other.shown().find("RAID1"), std::string::npos);
        EXPECT_EQ(other.shown().find("RAID5"), std::string::npos);
        other.expectNothingLeft();
        other.setFaults("");
        const ProgramRun resumed = other.apply({"--resume", "plan.journal.jsonl"});
        EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
        other.expectNothingToDo("web.ini");
    }
}

TEST_F(ApplyInterruptedTest, TwiceEndsAtOnceAndTheUtilityWorksOn) {
    slow(1500);
    const auto begin = Clock::now();
    Running run(server, {"apply", "plan.json"});
    waitFor("child 1");
    run.signal(SIGINT);
    std::this_thread::sleep_for(milliseconds(100));
    run.signal(SIGINT);
    const ProgramRun ended = run.ended();
    EXPECT_LT(Clock::now() - begin, milliseconds(1400));
    EXPECT_TRUE(ended.exitCode == 128 + SIGINT || ended.exitCode == 4) << ended.exitCode;
    EXPECT_EQ(server.shown(), blank);
    const ProgramRun resumed = server.apply({"--resume", "plan.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    EXPECT_NE((resumed.output + resumed.error).find("Waiting for"), std::string::npos)
        << resumed.output << resumed.error;
    expectConfigured();
}

/// A key of the terminal reaches zolexctl alone.
TEST_F(ApplyInterruptedTest, CtrlCAtATerminalDoesNotReachTheUtility) {
    slow(500);
    Running run(server, {"apply", "plan.json"}, true);
    waitFor("child 1");
    run.type("\x03");
    const ProgramRun ended = run.ended();
    EXPECT_EQ(ended.exitCode, 4) << ended.output;
    const std::vector<std::string> events = server.events("plan.journal.jsonl");
    EXPECT_EQ(std::count(events.begin(), events.end(), "step-ended 1"), 1);
    EXPECT_NE(server.shown().find("RAID1"), std::string::npos);
    server.setFaults("");
    resume();
}

TEST_F(ApplyInterruptedTest, BeforeTheFirstStepNothingIsDone) {
    server.setFaults(R"({"match": "-pdList", "delayMs": 500})");
    const std::vector<std::string> names = server.names();
    Running run(server, {"apply", "plan.json"});
    std::this_thread::sleep_for(milliseconds(200));
    run.signal(SIGTERM);
    const ProgramRun ended = run.ended();
    EXPECT_EQ(ended.exitCode, 3) << ended.output << ended.error;
    expectPieces(ended.error, {"error: ", "nothing was changed"});
    expectPieces(ended.output, {"Nothing was changed.\n"});
    EXPECT_EQ(server.shown(), blank);
    EXPECT_EQ(server.names(), names);
}

TEST_F(ApplyInterruptedTest, AStepThatIsTooSlowIsSaidToRunStill) {
    slow(2500);
    const ProgramRun run =
        server.start(ZOLEXCTL_PROGRAM, {"apply", "plan.json", "--limit-seconds", "1"});
    EXPECT_EQ(run.exitCode, 4) << run.output << run.error;
    expectPieces(run.error,
                 {"error: ", "(pid ", "still", "help: zolexctl apply --resume plan.journal.jsonl"});
    EXPECT_EQ((run.output + run.error).find("ancel"), std::string::npos) << run.error;
    EXPECT_EQ(server.shown(), blank);
    // Another run may not begin meanwhile.
    const ProgramRun other = server.start(ZOLEXCTL_PROGRAM, {"apply", "plan.json"});
    EXPECT_EQ(other.exitCode, 3) << other.output << other.error;
    server.plan({"web.ini", "-o", "second.json"});
    const ProgramRun second = server.start(ZOLEXCTL_PROGRAM, {"apply", "second.json"});
    EXPECT_EQ(second.exitCode, 3) << second.output << second.error;
    resume();
}

TEST_F(ApplyInterruptedTest, ASecondRunOfThePlanIsRefused) {
    slow(700);
    Running first(server, {"apply", "plan.json"});
    waitFor("child 1");
    const ProgramRun second = server.start(ZOLEXCTL_PROGRAM, {"apply", "plan.json"});
    EXPECT_EQ(second.exitCode, 3) << second.output << second.error;
    expectPieces(second.error,
                 {"error: plan.journal.jsonl: this run was begun on ", "has not ended [ZA106]\n"});
    const ProgramRun resumed =
        server.start(ZOLEXCTL_PROGRAM, {"apply", "--resume", "plan.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 3) << resumed.output << resumed.error;
    expectPieces(resumed.error, {"error: ", "pid " + std::to_string(first.process())});
    const ProgramRun ended = first.ended();
    EXPECT_EQ(ended.exitCode, 0) << ended.output << ended.error;
    expectConfigured();
}

TEST_F(ApplyInterruptedTest, AnotherPlanForTheMachineIsRefusedMeanwhile) {
    std::filesystem::create_directory(server.folder() / "other");
    server.plan({"web.ini", "-o", "other/plan.json"});
    slow(700);
    Running first(server, {"apply", "plan.json"});
    waitFor("child 1");
    const ProgramRun second = server.start(ZOLEXCTL_PROGRAM, {"apply", "other/plan.json"});
    EXPECT_EQ(second.exitCode, 3) << second.output << second.error;
    expectPieces(second.error, {"error: ", "pid " + std::to_string(first.process())});
    EXPECT_FALSE(server.exists("other/plan.journal.jsonl"));
    const ProgramRun ended = first.ended();
    EXPECT_EQ(ended.exitCode, 0) << ended.output << ended.error;
    expectConfigured();
}

TEST_F(ApplyInterruptedTest, TheLockOfARunThatIsGoneIsTakenOverWithALine) {
    slow(300);
    {
        Running first(server, {"apply", "plan.json"});
        waitFor("child 1");
        first.signal(SIGKILL);
        EXPECT_EQ(first.ended().exitCode, 128 + SIGKILL);
    }
    // The plan has a journal without an end.
    const ProgramRun again = server.start(ZOLEXCTL_PROGRAM, {"apply", "plan.json"});
    EXPECT_EQ(again.exitCode, 3) << again.output << again.error;
    expectPieces(again.error, {"error: ", "--resume plan.journal.jsonl"});
    const ProgramRun resumed = server.apply({"--resume", "plan.journal.jsonl"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.output << resumed.error;
    EXPECT_NE((resumed.output + resumed.error).find("taken over"), std::string::npos)
        << resumed.output << resumed.error;
    expectConfigured();
}

// --- consent at a terminal ---

class ApplyAtATerminal : public ApplyInterruptedTest {
  protected:
    ApplyAtATerminal() {
        server.write("less.ini", with(webPolicies, "3,4,5,6,7", "3,4,5"));
        server.deploy("less.ini");
        consent = server.plan({"web.ini"});
        blank = server.shown();
    }
    std::string consent;
};

constexpr const char* question = "Type the serial number of this machine";

TEST_F(ApplyAtATerminal, TheSerialNumberIsTyped) {
    Running run(server, {"apply", "plan.json"}, true);
    const std::string asked = run.seen(question);
    EXPECT_NE(asked.find("RAID5"), std::string::npos) << asked;
    EXPECT_EQ(server.shown(), blank) << "asked too late";
    run.type("KQ10Z7V\n");
    const ProgramRun ended = run.ended();
    EXPECT_EQ(ended.exitCode, 0) << ended.output;
    EXPECT_NE(server.read("plan.journal.jsonl").find("typed-serial"), std::string::npos);
    expectConfigured();
}

TEST_F(ApplyAtATerminal, AWrongOneMayBeTypedAgain) {
    Running run(server, {"apply", "plan.json"}, true);
    run.seen(question);
    run.type("KQ10Z7X\n\nKQ10Z7V\n");
    const ProgramRun ended = run.ended();
    EXPECT_EQ(ended.exitCode, 0) << ended.output;
    expectConfigured();
}

TEST_F(ApplyAtATerminal, WithoutTheRightAnswerNothingIsDone) {
    const std::vector<std::string> names = server.names();
    for (const char* const keys : {"y\nyes\nKQ10Z7X\nKQ10Z7V\n", "\x04", "\x03", "\n\n\n"}) {
        SCOPED_TRACE(keys);
        Running run(server, {"apply", "plan.json"}, true);
        run.seen(question);
        run.type(keys);
        const ProgramRun ended = run.ended();
        EXPECT_EQ(ended.exitCode, 3) << ended.output;
        EXPECT_NE(ended.output.find("Nothing was changed."), std::string::npos) << ended.output;
        EXPECT_EQ(server.shown(), blank);
        EXPECT_EQ(server.names(), names);
    }
}

} // namespace
} // namespace zolex::e2e

#endif
