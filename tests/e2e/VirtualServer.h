#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zolex::e2e {

/// What a program did.
struct ProgramRun {
    int exitCode = -1;
    std::string output; ///< standard output, CR LF folded
    std::string error;  ///< standard error, CR LF folded
};

/// A server that exists only as files, in a folder of its own that goes away with it.
class VirtualServer {
  public:
    /// Lays out the server of a definition (JSON text); of the default sample when it is empty.
    explicit VirtualServer(const std::string& definition = {});
    ~VirtualServer();
    VirtualServer(const VirtualServer&) = delete;
    VirtualServer& operator=(const VirtualServer&) = delete;

    /// Whether the folder was laid out.
    [[nodiscard]] bool isReady() const { return ready_; }
    /// Runs the program with `input` as standard input: as it is shipped, or with pauses that take
    /// no time where it would pause.
    ProgramRun zolex(const std::vector<std::string>& arguments, const std::string& input = {});
    /// Runs the program as it is shipped, with all its pauses.
    ProgramRun shippedZolex(const std::vector<std::string>& arguments,
                            const std::string& input = {});
    /// Runs the virtual server's own program.
    ProgramRun simulator(const std::vector<std::string>& arguments);
    /// Runs the program as it is shipped, without the standard streams of these numbers.
    ProgramRun zolexWithout(const std::string& closed, const std::vector<std::string>& arguments);
    /// Runs any program in the server's folder.
    ProgramRun start(const std::string& program, const std::vector<std::string>& arguments) {
        return run(program, arguments, {});
    }
    /// The same with `input` as standard input, and without the standard streams of these numbers.
    ProgramRun start(const std::string& program, const std::vector<std::string>& arguments,
                     const std::string& input, const std::string& closed = {}) {
        return run(program, arguments, input, closed);
    }

    /// Variables of the environment for the runs to come.
    std::map<std::string, std::string> environment;

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
    [[nodiscard]] std::string read(const std::string& name) const;
    void write(const std::string& name, const std::string& content) const;
    [[nodiscard]] bool exists(const std::string& name) const;

  private:
    /// Whether the shipped program would pause: before it deploys, and before each command of
    /// CFGGEN.
    [[nodiscard]] bool needsNoPauses(const std::vector<std::string>& arguments) const;
    ProgramRun run(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& input, const std::string& closed = {});
    /// Adds the run to the transcript of the test, when transcripts are kept.
    ProgramRun record(const std::vector<std::string>& arguments, ProgramRun run) const;

    std::filesystem::path folder_;
    bool ready_ = false;
};

/// The text without what differs from capture to capture: the header comments with date and time.
std::string withoutComments(const std::string& policies);

/// Each line of `text` that begins with `start`, without it.
std::vector<std::string> linesAfter(const std::string& text, const std::string& start);

/// Whether `part` stands in `text`.
inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace zolex::e2e
