#include "VirtualServer.h"

#include "Programs.h"
#include "support/RemoveTree.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>
#include <sstream>

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

} // namespace

VirtualServer::VirtualServer(const std::string& definition) {
    static std::atomic<int> number{0};
    folder_ = std::filesystem::temp_directory_path() /
              ("zolex-e2e-" + std::to_string(processId()) + "-" + std::to_string(number++));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    environment["ZOLEX_PCI_ROOT"] = (folder_ / "pci").string();
    environment["ZOLEX_SIM_DIR"] = folder_.string();
    std::vector<std::string> arguments = {"init", "."};
    if (!definition.empty()) {
        write("wanted.json", definition);
        arguments.insert(arguments.end(), {"--definition", "wanted.json"});
    }
    ready_ = simulator(arguments).exitCode == 0;
}

VirtualServer::~VirtualServer() {
    test::removeTree(folder_);
}

ProgramRun VirtualServer::zolex(const std::vector<std::string>& arguments,
                                const std::string& input) {
    return record(arguments, run(needsNoPauses(arguments) ? ZOLEX_UNPAUSED_PROGRAM : ZOLEX_PROGRAM,
                                 arguments, input));
}

bool VirtualServer::needsNoPauses(const std::vector<std::string>& arguments) const {
    const auto isGiven = [&arguments](const std::string& name) {
        return std::any_of(arguments.begin(), arguments.end(),
                           [&name](const std::string& given) { return given.starts_with(name); });
    };
    const bool deploys = !isGiven("/c") && !(isGiven("/r") && arguments.back() == "/y");
    return deploys || environment.contains("ZOLEX_TEST_CHILD_LIMIT") ||
           read("server.json").find("\"CFGGEN\"") != std::string::npos;
}

ProgramRun VirtualServer::shippedZolex(const std::vector<std::string>& arguments,
                                       const std::string& input) {
    return record(arguments, run(ZOLEX_PROGRAM, arguments, input));
}

ProgramRun VirtualServer::zolexWithout(const std::string& closed,
                                       const std::vector<std::string>& arguments) {
    return record(arguments, run(ZOLEX_PROGRAM, arguments, {}, closed));
}

ProgramRun VirtualServer::simulator(const std::vector<std::string>& arguments) {
    return run(ZOLEX_SIMULATOR_PROGRAM, arguments, {});
}

ProgramRun VirtualServer::run(const std::string& program, const std::vector<std::string>& arguments,
                              const std::string& input, const std::string& closed) {
    const std::filesystem::path streams = folder_.string() + "-streams";
    std::filesystem::create_directories(streams);
    std::ofstream(streams / "in", std::ios::binary) << input;
    ProgramRun result;
    result.exitCode = runProgram({program, arguments, folder_, environment, streams / "in",
                                  streams / "out", streams / "err", closed});
    result.output = foldLineEnds(readWhole(streams / "out"));
    result.error = foldLineEnds(readWhole(streams / "err"));
    // A child that outlasts its run can still hold them.
    test::removeTree(streams);
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
