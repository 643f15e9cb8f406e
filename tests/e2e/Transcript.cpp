#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace zolex::e2e {

namespace {

/// The text with each `part` replaced.
std::string replaced(std::string text, const std::string& part, const std::string& by) {
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + by.size())) {
        text.replace(at, part.size(), by);
    }
    return text;
}

} // namespace

ProgramRun VirtualServer::record(const std::vector<std::string>& arguments, ProgramRun run) const {
    const char* folder = std::getenv("ZOLEX_E2E_TRANSCRIPTS");
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    if (folder == nullptr || test == nullptr) {
        return run;
    }
    const std::string name = std::string(test->test_suite_name()) + "." + test->name() + ".txt";
    const auto path = std::filesystem::path(folder) / replaced(name, "/", "-");
    static std::filesystem::path current; // each test of this process begins its own anew
    const auto mode = path == current ? std::ios::app : std::ios::trunc;
    current = path;
    std::ofstream file(path, std::ios::binary | mode);
    file << "$ zolex";
    for (const std::string& argument : arguments) {
        file << " " << argument;
    }
    file << "\n" << replaced(run.output, folder_.string(), "<folder>");
    if (!run.error.empty()) {
        file << "-- standard error\n" << replaced(run.error, folder_.string(), "<folder>");
    }
    file << "-- exit code " << run.exitCode << "\n";
    return run;
}

} // namespace zolex::e2e
