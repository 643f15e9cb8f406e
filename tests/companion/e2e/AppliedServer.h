#pragma once

#include "PlannedServer.h"

#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::e2e {

/// The text with each match of a pattern replaced.
inline std::string withEach(const std::string& text, const char* pattern, const char* other) {
    return std::regex_replace(text, std::regex(pattern), other);
}

/// What apply printed, without what two runs of the same need not have in common: times, hashes,
/// numbers of processes.
inline std::string withoutTimesOfRun(std::string text) {
    text = withEach(text, "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:.]+([+-][0-9:]+|Z)", "TIME");
    text = withEach(text, "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}(:[0-9]{2})?", "TIME");
    text = withEach(text, " +[0-9]+\\.[0-9]+ s", " N s");
    text = withEach(text, "[0-9]+ bytes printed", "N bytes printed");
    text = withEach(text, " +[0-9]+ ms", " N s");
    text = withEach(text, "[0-9a-f]{64}", "HASH");
    text = withEach(text, "[0-9a-f]{8}\\.\\.\\.[0-9a-f]{8}", "HASH");
    return withEach(text, "pid [0-9]+", "pid N");
}

/// The lines of a text.
inline std::vector<std::string> linesOf(const std::string& text) {
    return linesAfter(text, "");
}

/// The value of the first `"name":"value"` or `"name": "value"`.
inline std::string valueOf(const std::string& document, const std::string& name) {
    std::smatch match;
    const std::regex pattern("\"" + name + "\": ?\"([^\"]*)\"");
    return std::regex_search(document, match, pattern) ? match[1].str() : "";
}

/// A virtual server that zolexctl may change, with a temporary folder of its own. Captures that
/// must be equal follow each other at once.
class AppliedServer : public PlannedServer {
  public:
    explicit AppliedServer(const std::string& what) : PlannedServer(what) {
        const std::string own = (folder() / "tmp").string();
        std::filesystem::create_directories(own);
        for (const char* const name : {"TMPDIR", "TEMP", "TMP"}) {
            environment[name] = own;
        }
        environment["ZOLEX_SETTLE_MS"] = "1";
        definition_ = read("server.json");
    }

    /// The program that has no pauses.
    [[nodiscard]] std::string program() const {
        const bool pauses = definition_.find("\"CFGGEN") != std::string::npos;
        return pauses ? ZOLEXCTL_UNPAUSED_PROGRAM : ZOLEXCTL_PROGRAM;
    }

    /// Runs a command that may change the server. No lock and no output of a child may be left.
    ProgramRun change(const std::vector<std::string>& arguments, const std::string& input = {},
                      const std::string& closed = {}) {
        ProgramRun run = start(program(), arguments, input, closed);
        expectNothingLeft();
        return run;
    }
    ProgramRun apply(std::vector<std::string> arguments, const std::string& input = {},
                     const std::string& closed = {}) {
        arguments.insert(arguments.begin(), "apply");
        return change(arguments, input, closed);
    }
    /// A run that must leave the server and its folder as they are.
    ProgramRun refused(const std::vector<std::string>& arguments, const std::string& input = {},
                       const std::string& closed = {}) {
        const std::string before = read("state.json");
        const std::vector<std::string> files = names();
        ProgramRun run = apply(arguments, input, closed);
        EXPECT_EQ(read("state.json"), before) << "the server has changed";
        EXPECT_EQ(names(), files) << "a file was left or taken away";
        return run;
    }

    /// Makes a plan that is there afterwards; its consent code, or "".
    std::string plan(const std::vector<std::string>& arguments) {
        std::vector<std::string> all = {"plan"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        if (std::find(all.begin(), all.end(), "-o") == all.end()) {
            all.insert(all.end(), {"-o", "plan.json"});
        }
        const ProgramRun run = zolexctl(all);
        EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
        const std::string name = *(std::find(all.begin(), all.end(), "-o") + 1);
        return valueOf(read(name), "consent");
    }
    /// The arguments with those that agree to a plan's losses.
    static std::vector<std::string> agreed(std::vector<std::string> arguments,
                                           const std::string& consent) {
        if (!consent.empty()) {
            arguments.insert(arguments.end(), {"--destroy", consent});
        }
        return arguments;
    }

    /// What stands on the server, as its own program tells.
    std::string shown() { return simulator({"show"}).output; }

    /// Plays a command of a utility on the server, as somebody else would.
    void util(const std::vector<std::string>& arguments) {
        std::vector<std::string> all = {"util"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const ProgramRun run = simulator(all);
        EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    }

    /// The server's commands go wrong as the faults of a definition say from now on; "": none.
    void setFaults(const std::string& faults) const {
        std::string text = definition_;
        text.resize(text.rfind('}'));
        write("server.json", text + (faults.empty() ? "" : ", \"faults\": [" + faults + "]") + "}");
    }
    /// The definition is another from now on; its drives and controllers must stay the same.
    void redefine(std::string_view piece, std::string_view other) {
        definition_ = with(definition_, piece, other);
        write("server.json", definition_);
    }

    /// From now on each call of a utility is written down.
    void logCalls() {
        if (!readingCalls_.empty()) {
            write("calls", "");
            return;
        }
#ifdef _WIN32
        write("UTIL.BAT", "@>>\"%~dp0calls\" echo %*\r\n@\"%~dp0ZOLEX-SIM.EXE\" util %*\r\n");
#else
        std::filesystem::rename(folder() / "UTIL.BAT", folder() / "utility");
        write("UTIL.BAT", "#!/bin/sh\necho \"$*\" >>\"${0%/*}/calls\"\n"
                          "exec \"${0%/*}/utility\" \"$@\"\n");
        std::filesystem::permissions(folder() / "UTIL.BAT", std::filesystem::perms::owner_all);
#endif
        EXPECT_EQ(zolexctl({"show"}).exitCode, 0);
        readingCalls_ = linesOf(read("calls"));
        EXPECT_FALSE(readingCalls_.empty()) << "nothing was written down";
        write("calls", "");
    }
    /// The calls since then that are none of a capture.
    [[nodiscard]] std::vector<std::string> changingCalls() const {
        std::vector<std::string> calls = linesOf(read("calls"));
        std::erase_if(calls, [this](const std::string& call) {
            return std::find(readingCalls_.begin(), readingCalls_.end(), call) !=
                   readingCalls_.end();
        });
        return calls;
    }
    /// Whether the machine was captured since then.
    [[nodiscard]] bool wasCaptured() const {
        return !read("calls").empty();
    }

    /// The events of a journal, "step-ended 3" where they have a step.
    [[nodiscard]] std::vector<std::string> events(const std::string& journal) const {
        std::vector<std::string> found;
        for (const std::string& line : linesOf(read(journal))) {
            std::smatch step;
            static const std::regex number("\"step\": ?([0-9]+)");
            const std::string event = valueOf(line, "event");
            const bool hasStep =
                event.find("step") != std::string::npos || event.find("child") == 0;
            found.push_back(hasStep && std::regex_search(line, step, number)
                                ? event + " " + step[1].str()
                                : event);
        }
        return found;
    }

    /// The names of the files in the server's folder and in its temporary one.
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder())) {
            found.push_back(std::filesystem::relative(entry.path(), folder()).generic_string());
        }
        std::erase_if(found, [](const std::string& name) { return name == "calls"; });
        std::sort(found.begin(), found.end());
        return found;
    }

    void expectNothingLeft() const {
        for (const std::string& name : names()) {
            EXPECT_FALSE(name.ends_with(".lock") || name.ends_with(".out") ||
                         name.ends_with(".folder") || name.ends_with("storcli.log"))
                << name << " was left";
        }
    }

    /// The server is as a policies file or plan says.
    void expectSame(const std::string& file) {
        const ProgramRun diff = zolexctl({"diff", file});
        EXPECT_EQ(diff.exitCode, 0) << file << "\n" << diff.output << diff.error;
    }
    /// A plan from what stands has nothing to do.
    void expectNothingToDo(const std::string& policies) {
        const ProgramRun plan = zolexctl({"plan", policies, "--exit-code"});
        EXPECT_EQ(plan.exitCode, 0) << plan.output << plan.error;
    }

  private:
    std::string definition_;
    std::vector<std::string> readingCalls_;
};

} // namespace zolex::e2e
