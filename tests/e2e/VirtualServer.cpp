#include "VirtualServer.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace zolex::e2e {

namespace {

std::string readWhole(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string foldLineEnds(const std::string& text) {
    std::string folded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') {
            folded += text[i];
        }
    }
    return folded;
}

std::string quoted(const std::string& text) {
#ifdef _WIN32
    return "\"" + text + "\"";
#else
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return result + "'";
#endif
}

int exitCodeOf(int status) {
#ifdef _WIN32
    return status;
#else
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
#endif
}

} // namespace

VirtualServer::VirtualServer(const std::string& definition) {
    static std::atomic<int> number{0};
    folder_ = std::filesystem::temp_directory_path() /
              ("zolex-e2e-" + std::to_string(getpid()) + "-" + std::to_string(number++));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    environment["ZOLEX_PCI_ROOT"] = (folder_ / "pci").string();
    std::vector<std::string> arguments = {"init", "."};
    if (!definition.empty()) {
        write("wanted.json", definition);
        arguments.insert(arguments.end(), {"--definition", "wanted.json"});
    }
    const ProgramRun run = simulator(arguments);
    ready_ = run.exitCode == 0;
}

VirtualServer::~VirtualServer() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

ProgramRun VirtualServer::zolex(const std::vector<std::string>& arguments,
                                const std::string& input) {
    return run(ZOLEX_UNPAUSED_PROGRAM, arguments, input);
}

ProgramRun VirtualServer::shippedZolex(const std::vector<std::string>& arguments,
                                       const std::string& input) {
    return run(ZOLEX_PROGRAM, arguments, input);
}

ProgramRun VirtualServer::simulator(const std::vector<std::string>& arguments) {
    return run(ZOLEX_SIMULATOR_PROGRAM, arguments, {});
}

ProgramRun VirtualServer::run(const std::string& program, const std::vector<std::string>& arguments,
                              const std::string& input) {
    const auto streams = folder_.string() + "-streams";
    std::filesystem::create_directories(streams);
    std::ofstream(streams + "/in", std::ios::binary) << input;
    std::string command = "cd " + quoted(folder_.string()) + " && ";
    for (const auto& [name, value] : environment) {
#ifdef _WIN32
        command += "set " + name + "=" + value + "&& ";
#else
        command += name + "=" + quoted(value) + " ";
#endif
    }
    command += quoted(program);
    for (const std::string& argument : arguments) {
        command += " " + quoted(argument);
    }
    command += " < " + quoted(streams + "/in") + " > " + quoted(streams + "/out") + " 2> " +
               quoted(streams + "/err");
    ProgramRun result;
    result.exitCode = exitCodeOf(std::system(command.c_str())); // NOLINT(cert-env33-c)
    result.output = foldLineEnds(readWhole(streams + "/out"));
    result.error = foldLineEnds(readWhole(streams + "/err"));
    std::filesystem::remove_all(streams);
    return result;
}

std::string VirtualServer::read(const std::string& name) const {
    return foldLineEnds(readWhole(folder_ / name));
}

void VirtualServer::write(const std::string& name, const std::string& content) const {
    std::ofstream(folder_ / name, std::ios::binary) << content;
}

bool VirtualServer::exists(const std::string& name) const {
    return std::filesystem::exists(folder_ / name);
}

std::string withoutComments(const std::string& policies) {
    std::string result;
    std::istringstream lines(policies);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(";")) {
            result += line + "\n";
        }
    }
    return result;
}

std::vector<std::string> linesAfter(const std::string& text, const std::string& start) {
    std::vector<std::string> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(start)) {
            found.push_back(line.substr(start.size()));
        }
    }
    return found;
}

} // namespace zolex::e2e
