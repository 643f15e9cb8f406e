// The program is killed at random moments of a run: whatever it was about, the policies file and
// the server are fit for the next run. ZOLEX_INTERRUPTIONS gives the number of kills.

#ifdef __linux__

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zolex::e2e {
namespace {

using std::chrono::microseconds;

constexpr int defaultKills = 42;

int killsOfEachMode() {
    constexpr int modes = 3;
    const char* wanted = std::getenv("ZOLEX_INTERRUPTIONS");
    return std::max(1, (wanted == nullptr ? defaultKills : std::atoi(wanted)) / modes);
}

/// A run of the program that can be killed, and the utilities that it has started.
class Victim {
  public:
    Victim(const VirtualServer& server, const std::vector<std::string>& arguments) {
        std::vector<char*> argv = {const_cast<char*>(ZOLEX_UNPAUSED_PROGRAM)};
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        const std::string folder = server.folder().string();
        const std::string devices = folder + "/pci";
        // What a killed program leaves behind becomes a child of this process.
        EXPECT_EQ(0, ::prctl(PR_SET_CHILD_SUBREAPER, 1));
        process_ = ::fork();
        if (process_ == 0) {
            ::setpgid(0, 0);
            const int nowhere = ::open("/dev/null", O_RDWR);
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
                ::dup2(nowhere, stream);
            }
            ::setenv("ZOLEX_PCI_ROOT", devices.c_str(), 1);
            if (::chdir(folder.c_str()) == 0) {
                ::execv(argv[0], argv.data());
            }
            ::_exit(127);
        }
        ::setpgid(process_, process_);
    }

    /// Kills the program alone, or with all that it has started.
    void kill(bool withChildren) { ::kill(withChildren ? -process_ : process_, SIGKILL); }

    /// Waits for the program and for what it has left behind. Whether it was killed; the exit code
    /// of one that was not is 0.
    bool wasKilled() {
        bool killed = false;
        int status = 0;
        for (pid_t ended = ::waitpid(-1, &status, 0); ended > 0;
             ended = ::waitpid(-1, &status, 0)) {
            if (ended == process_) {
                killed = WIFSIGNALED(status);
                EXPECT_TRUE(killed ? WTERMSIG(status) == SIGKILL : WEXITSTATUS(status) == 0);
            }
        }
        return killed;
    }

  private:
    pid_t process_ = -1;
};

/// Controllers of several families, the policies that the operator has, and what is made of them.
class InterruptionTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(server.isReady());
        server.environment["ZOLEX_SIM_DIR"] = server.folder().string();
        initial = server.read("state.json");
        ASSERT_EQ(0, server.zolex({"/d"}).exitCode);
        configured = server.read("state.json");
        ASSERT_NE(initial, configured);
        ASSERT_EQ(0, server.zolex({"/c", "/f:captured.ini"}).exitCode);
        captured = server.read("captured.ini");
        ASSERT_EQ(2U, linesAfter(captured, "[Policy.AUTO-").size()) << captured;
        show = server.simulator({"show"}).output;
        ASSERT_NE("", show);
    }

    /// A server with controllers of two families.
    static std::string definition() {
        return R"({"machineType": "8837", "serialNumber": "KQ12345", "controllers": [
            {"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
             "pci": {"bus": 2, "device": 1, "vendorId": "0x1000", "deviceId": "0x0411",
                     "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
             "drives": [{"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376}]},
            {"utility": "ARCCONF", "model": "Kestrix-B7",
             "pci": {"bus": 3, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
             "drives": [{"channel": 0, "device": 0, "count": 4, "sizeMB": 70006}]}]})";
    }

    /// How long such a run takes, from a server in this state.
    microseconds lengthOf(const std::vector<std::string>& arguments, const std::string& state) {
        std::vector<microseconds> lengths;
        for (int i = 0; i < 3; ++i) {
            server.write("state.json", state);
            server.write("p.ini", policies());
            const auto start = std::chrono::steady_clock::now();
            EXPECT_FALSE(Victim(server, arguments).wasKilled());
            lengths.push_back(
                std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - start));
        }
        std::sort(lengths.begin(), lengths.end());
        return lengths[1];
    }

    /// Starts a run from a server in this state and kills it; whether that met it alive. One kill
    /// in three comes in the last tenth of a run. The length follows the machine, which is not
    /// always equally busy.
    bool interrupt(const std::vector<std::string>& arguments, const std::string& state,
                   microseconds& length) {
        server.write("state.json", state);
        server.write("p.ini", policies());
        const bool late = random() % 3 == 0;
        std::uniform_int_distribution<microseconds::rep> moment(late ? length.count() * 9 / 10 : 0,
                                                                length.count() * 21 / 20);
        const bool withChildren = random() % 2 == 0;
        Victim victim(server, arguments);
        std::this_thread::sleep_for(microseconds(moment(random)));
        victim.kill(withChildren);
        const bool killed = victim.wasKilled();
        if (!killed) {
            length = length * 9 / 10;
        } else if (late) {
            length = length * 11 / 10;
        }
        return killed;
    }

    [[nodiscard]] std::string policies() const {
        return "; of the operator\n[Policy.none]\nAppliesTo.1 = m:0000\n" + captured +
               "; the last line has no end";
    }

    /// The next deploy and the next capture do what they do on a server that nothing has happened
    /// to. A controller that is configured, in part or whole, is reset before it is configured
    /// anew.
    void expectNextRunsWork(const std::string& deployed) {
        ASSERT_EQ(0, server.simulator({"show"}).exitCode) << "the state file is torn";
        const ProgramRun deploy = server.zolex({"/r", "/y", "/f:" + deployed, "/e1"});
        EXPECT_EQ(0, deploy.exitCode) << deploy.output;
        EXPECT_EQ(show, server.simulator({"show"}).output);
        std::filesystem::remove(server.folder() / "next.ini");
        EXPECT_EQ(0, server.zolex({"/c", "/f:next.ini"}).exitCode);
        EXPECT_EQ(withoutComments(captured), withoutComments(server.read("next.ini")));
        EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
    }

    void tell(const char* mode, int killed, int kills, microseconds length) {
        RecordProperty(std::string(mode) + "_killed_alive", killed);
        std::printf("%s: %d of %d runs of %lld ms were killed before their end\n", mode, killed,
                    kills, static_cast<long long>(length.count() / 1000));
        // Of a few runs, all may end before a kill that the machine was too busy to send in time.
        EXPECT_GT(killed, kills >= 100 ? kills / 4 : 0);
    }

    VirtualServer server{definition()};
    std::string initial;
    std::string configured;
    std::string captured;
    std::string show;
    std::mt19937 random{20260309};
};

TEST_F(InterruptionTest, ACaptureAppendsAllOfItsPoliciesOrNone) {
    const std::vector<std::string> arguments = {"/c", "/f:p.ini"};
    microseconds length = lengthOf(arguments, configured);
    const std::string whole = server.read("p.ini");
    ASSERT_EQ(4U, linesAfter(whole, "[Policy.AUTO-").size());
    const int kills = killsOfEachMode();
    int killed = 0;
    int appended = 0;
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        killed += interrupt(arguments, configured, length) ? 1 : 0;
        const std::string left = server.read("p.ini");
        ASSERT_TRUE(left.starts_with(policies())) << "a policy that was there is damaged";
        if (left != policies()) {
            EXPECT_EQ(withoutComments(whole), withoutComments(left));
            ++appended;
        }
        // The file is one that the next capture appends to and that a deploy takes.
        EXPECT_EQ(0, server.zolex(arguments).exitCode);
        EXPECT_EQ(linesAfter(left, "[Policy.AUTO-").size() + 2,
                  linesAfter(server.read("p.ini"), "[Policy.AUTO-").size());
        EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
        expectNextRunsWork("p.ini");
    }
    RecordProperty("appended", appended);
    tell("capture", killed, kills, length);
}

TEST_F(InterruptionTest, AfterADeployTheNextOneSetsTheServerRight) {
    const std::vector<std::string> arguments = {"/f:p.ini"};
    microseconds length = lengthOf(arguments, initial);
    const int kills = killsOfEachMode();
    int killed = 0;
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        killed += interrupt(arguments, initial, length) ? 1 : 0;
        EXPECT_EQ(policies(), server.read("p.ini"));
        expectNextRunsWork("p.ini");
    }
    tell("deploy", killed, kills, length);
}

TEST_F(InterruptionTest, AfterARestoreTheNextOneSetsTheServerRight) {
    const std::vector<std::string> arguments = {"/r", "/y"};
    microseconds length = lengthOf(arguments, configured);
    const std::string factory = server.simulator({"show"}).output;
    ASSERT_NE(show, factory);
    const int kills = killsOfEachMode();
    int killed = 0;
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        killed += interrupt(arguments, configured, length) ? 1 : 0;
        EXPECT_EQ(policies(), server.read("p.ini"));
        ASSERT_EQ(0, server.simulator({"show"}).exitCode) << "the state file is torn";
        const ProgramRun restore = server.zolex(arguments);
        EXPECT_EQ(0, restore.exitCode) << restore.output;
        EXPECT_EQ(factory, server.simulator({"show"}).output);
        expectNextRunsWork("p.ini");
    }
    tell("restore", killed, kills, length);
}

} // namespace
} // namespace zolex::e2e

#endif
