#include "Simulator.h"

#include "model/ServerFolder.h"
#include "model/Text.h"
#include "roles/Faults.h"
#include "roles/Roles.h"
#include "setup/Init.h"

#include <array>
#include <fstream>
#include <ostream>
#include <string_view>

namespace zolex_sim {
namespace {

constexpr int ownFailure = 1;

constexpr std::string_view usage =
    "Usage: zolex-sim init DIR [--definition FILE | --sample NAME]\n"
    "                                     lay out a virtual server in a folder\n"
    "       zolex-sim show                print the server's state\n"
    "       zolex-sim util UTILITY ...    play a configuration utility (what UTIL.BAT calls)\n"
    "       zolex-sim hwdetect /i         play the hardware detector\n"
    "       zolex-sim fakeraid N MODEL    play the stand-in for all utilities\n"
    "The server is in the folder ZOLEX_SIM_DIR, or else beside the program.\n";

// What the server plays, by the word that asks for it. The fault section knows a command by this
// word and its arguments, or by its arguments alone. A program that has the word for its name plays
// the role too where the last column says so.
struct Role {
    std::string_view word;
    PlayResult (*play)(Server&, const std::vector<std::string>&);
    bool wordInCommand;
    bool byProgramName;
};
// clang-format off
constexpr std::array<Role, 4> roles = {{
    {"util",     playUtility,  false, false},
    {"hwdetect", playDetector, true,  true},
    {"fakeraid", playFakeraid, true,  true},
    {"show",     showServer,   true,  false},
}};
// clang-format on

const Role* roleNamed(std::string_view word) {
    for (const Role& role : roles) {
        if (equalsIgnoringCase(role.word, word)) {
            return &role;
        }
    }
    return nullptr;
}

// The utilities that a program plays which has one of their usual names, so that a UTIL.BAT made
// for the vendors' programs can be tried with copies of this one.
struct UtilityProgram {
    std::string_view name;
    std::string_view utility;
};
// clang-format off
constexpr std::array<UtilityProgram, 12> utilityPrograms = {{
    {"MegaCli64",     "MEGACLI"},
    {"MegaCli",       "MEGACLI"},
    {"arcconf",       "ARCCONF"},
    {"hrconf",        "HRCONF"},
    {"qtcsend",       "QTCSEND"},
    {"cfggen",        "CFGGEN"},
    {"cfggen1.02.02", "CFGGEN1.02.02"},
    {"hyperwin",      "HYPERWIN"},
    {"storcli64",     "storcli64"},
    {"storcli",       "storcli"},
    {"perccli64",     "perccli64"},
    {"perccli",       "perccli"},
}};
// clang-format on

/// The name of a program without its folder and the suffix ".exe".
std::string_view bareName(std::string_view program) {
    std::string_view name = program.substr(program.find_last_of("/\\") + 1);
    constexpr std::string_view suffix = ".exe";
    if (name.size() > suffix.size() &&
        equalsIgnoringCase(name.substr(name.size() - suffix.size()), suffix)) {
        name.remove_suffix(suffix.size());
    }
    return name;
}

/// The role of a program of this name; null for the simulator's own name.
const Role* roleOfProgram(std::string_view name) {
    const Role* role = roleNamed(name);
    return role != nullptr && role->byProgramName ? role : nullptr;
}

/// The utility that a program of this name plays; empty for none.
std::string utilityOfProgram(std::string_view name) {
    for (const UtilityProgram& program : utilityPrograms) {
        if (equalsIgnoringCase(program.name, name)) {
            return std::string(program.utility);
        }
    }
    return {};
}

/// A command on a server that has been loaded.
class Session {
  public:
    Session(const Environment& environment, std::ostream& output, std::ostream& error)
        : environment_(environment), folder_(environment.folder, environment.failsToSave),
          output_(output), error_(error) {}

    int play(const Role& role, const std::vector<std::string>& arguments) {
        Server server = folder_.load(problem_);
        if (problem_.found()) {
            return tellProblem();
        }
        const std::string command =
            (role.wordInCommand ? std::string(role.word) + " " : "") + join(arguments, " ");
        const FaultMatch match = countFaults(server, command);
        if (match.counted) {
            // At once, so that the count holds also when the command is made to fail.
            folder_.save(server, problem_);
        }
        if (problem_.found()) {
            return tellProblem();
        }
        if (match.due != nullptr) {
            playFault(*match.due);
            if (match.due->exitCode) {
                return *match.due->exitCode;
            }
        }
        const PlayResult result = role.play(server, arguments);
        if (result.changed) {
            folder_.save(server, problem_);
        }
        if (problem_.found()) {
            return tellProblem();
        }
        if (result.leavesLog) {
            leaveLog(arguments);
        }
        output_ << result.output << std::flush;
        return result.exitCode;
    }

  private:
    /// Adds the command to the log file in the current folder.
    void leaveLog(const std::vector<std::string>& arguments) const {
        if (!environment_.current.empty()) {
            std::ofstream log(environment_.current / "storcli.log", std::ios::app);
            log << join(arguments, " ") << "\n";
        }
    }

    void playFault(const Fault& fault) {
        if (fault.delayMs > 0 && environment_.pause) {
            environment_.pause(std::chrono::milliseconds(fault.delayMs));
        }
        output_ << faultOutput(fault) << std::flush;
    }

    int tellProblem() {
        error_ << "zolex-sim: " << problem_.text() << "\n";
        return ownFailure;
    }

    const Environment& environment_;
    ServerFolder folder_;
    Problem problem_;
    std::ostream& output_;
    std::ostream& error_;
};

} // namespace

int runSimulator(const std::vector<std::string>& arguments, const Environment& environment,
                 std::ostream& output, std::ostream& error) {
    Session session(environment, output, error);
    if (!arguments.empty()) {
        const std::string_view name = bareName(arguments.front());
        if (const Role* role = roleOfProgram(name)) {
            return session.play(*role, {arguments.begin() + 1, arguments.end()});
        }
        if (const std::string utility = utilityOfProgram(name); !utility.empty()) {
            std::vector<std::string> command = arguments;
            command.front() = utility;
            return session.play(*roleNamed("util"), command);
        }
    }
    if (arguments.size() < 2) {
        error << usage;
        return ownFailure;
    }
    const std::vector<std::string> rest(arguments.begin() + 2, arguments.end());
    if (equalsIgnoringCase(arguments[1], "init")) {
        return initialise(rest, environment.program, output, error);
    }
    if (const Role* role = roleNamed(arguments[1])) {
        return session.play(*role, rest);
    }
    if (arguments[1] == "--help" || arguments[1] == "help") {
        output << usage << sampleList();
        return 0;
    }
    error << "zolex-sim: unknown command " << arguments[1] << "\n" << usage;
    return ownFailure;
}

} // namespace zolex_sim
