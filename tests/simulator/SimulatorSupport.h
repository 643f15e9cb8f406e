#pragma once

#include "Simulator.h"
#include "model/AtomicFile.h"
#include "model/Definition.h"
#include "model/Fields.h"
#include "model/Server.h"
#include "model/Text.h"
#include "roles/Roles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zolex_sim::test {

/// A folder that goes away with the test.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::random_device random;
        path_ = std::filesystem::temp_directory_path() / formatted("zolex-sim-%08x", random());
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::string read(const std::string& name) const {
        return readFile(path_ / name, std::size_t{100} << 20).value_or("(no file)");
    }
    void write(const std::string& name, const std::string& text) const {
        ASSERT_TRUE(replaceFile(path_ / name, text));
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            found.push_back(entry.path().filename().string());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

  private:
    std::filesystem::path path_;
};

/// What a run of the program came to.
struct Outcome {
    int exitCode = -1;
    std::string output;
    std::string error;
};

/// Runs the program on the server of a folder; delays are recorded instead of taken.
class Runner {
  public:
    explicit Runner(const std::filesystem::path& folder) {
        environment.folder = folder;
        environment.program = folder / "server.json"; // any file will do
        environment.pause = [this](std::chrono::milliseconds time) { pauses.push_back(time); };
    }

    Outcome operator()(std::vector<std::string> arguments,
                       const std::string& program = "/opt/zolex-sim") const {
        arguments.insert(arguments.begin(), program);
        std::ostringstream output;
        std::ostringstream error;
        const int exitCode = runSimulator(arguments, environment, output, error);
        return {exitCode, output.str(), error.str()};
    }
    /// A command line of UTIL.BAT, split at blanks as a shell does.
    Outcome util(const std::string& options) const {
        std::vector<std::string> arguments = splitWords(options);
        arguments.insert(arguments.begin(), {"util", "MEGACLI"});
        return (*this)(arguments);
    }

    Environment environment;
    std::vector<std::chrono::milliseconds> pauses;
};

/// A definition with one controller; `controller` holds further fields, each followed by a comma,
/// `drives` the drives' fields, `rest` further fields of the server, each after a comma.
inline std::string definitionWith(const std::string& drives, const std::string& controller = "",
                                  const std::string& rest = "") {
    return R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [{
      "utility": "MEGACLI", "model": "LSI-MegaRAID-8480", )" +
           controller + R"(
      "pci": {"bus": 2, "device": 1, "vendorId": "0x1000", "deviceId": "0x0411"},
      "drives": [)" +
           drives + "]}]" + rest + "}";
}

/// The server of a definition that must be sound.
inline Server serverOf(const std::string& definition) {
    Problem problem;
    Server server = readDefinition(definition, problem);
    EXPECT_EQ(problem.text(), "");
    return server;
}

/// Plays MEGACLI on a server in memory.
inline PlayResult megacli(Server& server, const std::string& options) {
    std::vector<std::string> arguments = splitWords(options);
    arguments.insert(arguments.begin(), "MEGACLI");
    return playUtility(server, arguments);
}

/// One line about a controller: the statuses of its drives, its arrays, its logical drives.
inline std::string dump(const Controller& controller) {
    std::vector<std::string> parts;
    parts.reserve(controller.drives.size() + controller.logicalDrives.size());
    for (const Drive& drive : controller.drives) {
        parts.push_back(toText(drive.location) + "=" + std::string(statusWord(drive.status)));
    }
    for (const LogicalDrive& drive : controller.logicalDrives) {
        std::string spans;
        for (const std::vector<DriveLocation>& span : controller.arrays[drive.array].spans) {
            spans += "[" + toText(span) + "]";
        }
        parts.push_back(formatted("%s %s %lldMB %dkB %s %s",
                                  std::string(rulesOf(drive.level).name).c_str(), spans.c_str(),
                                  static_cast<long long>(drive.sizeMb), drive.stripeKb,
                                  std::string(policyWord(drive.writePolicy)).c_str(),
                                  std::string(policyWord(drive.readPolicy)).c_str()));
    }
    return join(parts, " | ");
}

/// What is wrong with a definition.
inline std::string problemOf(const std::string& definition) {
    Problem problem;
    readDefinition(definition, problem);
    return problem.text();
}

} // namespace zolex_sim::test
