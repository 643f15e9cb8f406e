#include "setup/Init.h"

#include "model/AtomicFile.h"
#include "model/Definition.h"
#include "model/ServerFolder.h"
#include "model/State.h"
#include "model/Text.h"
#include "setup/Samples.h"
#include "setup/ServerFiles.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <string_view>
#include <system_error>

namespace zolex_sim {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view usage =
    "Usage: zolex-sim init DIR [--definition FILE | --sample NAME]\n";

/// What the command line of "init" asks for.
struct Request {
    fs::path folder;
    std::string origin; ///< of the definition, for messages
    std::string definition;
};

std::optional<Request> readRequest(const std::vector<std::string>& arguments, std::ostream& error) {
    const bool plain = arguments.size() == 1;
    if ((!plain && arguments.size() != 3) || arguments.front().empty()) {
        error << usage << sampleList();
        return std::nullopt;
    }
    Request request;
    request.folder = arguments.front();
    if (!plain && arguments[1] == "--definition") {
        const std::optional<std::string> text = readFile(arguments[2], ServerFolder::maxFileSize);
        if (!text) {
            error << "zolex-sim: cannot read the definition file " << arguments[2] << "\n";
            return std::nullopt;
        }
        request.origin = "definition file " + arguments[2];
        request.definition = *text;
        return request;
    }
    if (!plain && arguments[1] != "--sample") {
        error << usage << sampleList();
        return std::nullopt;
    }
    const Sample* sample = plain ? &samples().front() : sampleNamed(arguments[2]);
    if (sample == nullptr) {
        error << "zolex-sim: there is no sample " << arguments[2] << "\n" << sampleList();
        return std::nullopt;
    }
    request.origin = "sample " + std::string(sample->name);
    request.definition = sample->definition;
    return request;
}

/// Writes the folder of one server.
class FolderWriter {
  public:
    FolderWriter(fs::path folder, fs::path program, Target target)
        : folder_(std::move(folder)), program_(std::move(program)), target_(target) {}

    /// False at the first thing that could not be written; see failure().
    bool write(const Server& server, std::string_view definition) {
        const std::vector<ServerFile> files = filesOf(server, definition);
        return prepare(server, files) && writeFiles(files) && placePrograms(server);
    }

    /// What could not be done.
    [[nodiscard]] const std::string& failure() const { return failure_; }

  private:
    bool fail(const std::string& what, const fs::path& path) {
        failure_ = what + " " + path.string();
        return false;
    }

    /// Makes the folder and takes the PCI tree of an earlier server away. In a folder that is not a
    /// server's a folder "pci" and files of somebody else's stay untouched.
    bool prepare(const Server& server, const std::vector<ServerFile>& files) {
        std::error_code error;
        fs::create_directories(folder_, error);
        if (!fs::is_directory(folder_, error)) {
            return fail("cannot make the folder", folder_);
        }
        const fs::path pci = folder_ / "pci";
        if (fs::exists(folder_ / "server.json", error)) {
            fs::remove_all(pci, error);
            return error ? fail("cannot remove", pci) : removeEarlier();
        }
        if (fs::exists(pci, error)) {
            return fail("this is not a server's folder, but it has a folder", pci);
        }
        for (const ServerFile& file : files) {
            if (fs::exists(fs::symlink_status(folder_ / file.name, error))) {
                return fail("this is not a server's folder, but it has a file",
                            folder_ / file.name);
            }
        }
        for (const std::string& name : rolePrograms(server)) {
            if (fs::exists(fs::symlink_status(folder_ / name, error))) {
                return fail("this is not a server's folder, but it has a file", folder_ / name);
            }
        }
        return true;
    }

    /// Takes away what an earlier server had and this one may not have.
    bool removeEarlier() {
        for (const char* name :
             {"sample-policies.ini", "storcli64", "storcli64.exe", "perccli64", "perccli64.exe"}) {
            const fs::path path = folder_ / name;
            std::error_code error;
            if (!fs::equivalent(path, program_, error) || fs::is_symlink(path, error)) {
                fs::remove(path, error);
            }
        }
        return true;
    }

    bool writeFile(const ServerFile& file) {
        const fs::path path = folder_ / file.name;
        std::error_code error;
        fs::create_directories(path.parent_path(), error);
        if (!replaceFile(path, file.content)) {
            return fail("cannot write", path);
        }
        if (file.executable) {
            fs::permissions(path,
                            fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                                fs::perms::others_read | fs::perms::others_exec,
                            error);
        }
        return true;
    }

    [[nodiscard]] std::vector<ServerFile> filesOf(const Server& server,
                                                  std::string_view definition) const {
        std::vector<ServerFile> files = pciTree(server, target_);
        files.push_back(pciRegistry(server));
        files.push_back(pciRegistryRemoval(server));
        files.push_back(inventory(server));
        if (!server.controllers.empty() || server.storcliControllers.empty()) {
            files.push_back(samplePolicies(server));
        }
        for (ServerFile& launcher : launchers(server, target_)) {
            files.push_back(std::move(launcher));
        }
        files.push_back({"server.json", std::string(definition)});
        files.push_back({"state.json", writeState(server)});
        return files;
    }

    bool writeFiles(const std::vector<ServerFile>& files) {
        return std::all_of(files.begin(), files.end(),
                           [this](const ServerFile& file) { return writeFile(file); });
    }

    /// Puts this program into the folder: a link where that is usual, else a copy.
    bool placeProgram(const fs::path& name) {
        const fs::path path = folder_ / name;
        std::error_code error;
        if (fs::equivalent(path, program_, error) && !fs::is_symlink(path, error)) {
            return true; // it runs from this very folder
        }
        fs::remove(path, error);
        if (target_ == Target::posix) {
            fs::create_symlink(program_, path, error);
            if (!error) {
                return true;
            }
        }
        fs::copy_file(program_, path, fs::copy_options::overwrite_existing, error);
        return error ? fail("cannot write", path) : true;
    }

    /// The roles that are played by a copy of this program under another name.
    [[nodiscard]] std::vector<std::string> rolePrograms(const Server& server) const {
        if (target_ != Target::windows) {
            return {};
        }
        std::vector<std::string> names = {"hwdetect.exe", "fakeraid.exe"};
        for (const std::string& name : utilitiesOfToday(server)) {
            names.push_back(name + ".exe");
        }
        return names;
    }

    bool placePrograms(const Server& server) {
        const std::vector<std::string> roles = rolePrograms(server);
        return placeProgram(target_ == Target::windows ? "ZOLEX-SIM.EXE" : "zolex-sim") &&
               std::all_of(roles.begin(), roles.end(),
                           [this](const std::string& name) { return placeProgram(name); });
    }

    fs::path folder_;
    fs::path program_;
    Target target_;
    std::string failure_;
};

/// A text as the shell of the system takes it as one word.
std::string quoted(const std::string& text, Target target) {
    if (target == Target::windows) {
        return "\"" + text + "\""; // no name of a file has a double quote there
    }
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return result + "'";
}

/// How zolex is called: by its path where it stands beside the simulator, as in the release, or in
/// the build tree; else by its name.
std::string calledZolex(const fs::path& program, Target target) {
    const std::string name = target == Target::windows ? "ZOLEX" : "zolex";
    const std::string file = target == Target::windows ? "ZOLEX.EXE" : "zolex";
    const fs::path folder = program.parent_path();
    for (const fs::path& place : {folder / file, folder.parent_path() / "src" / file}) {
        std::error_code error;
        if (place.is_absolute() && fs::is_regular_file(place, error)) {
            return quoted(place.string(), target);
        }
    }
    return name;
}

/// The commands to type, of which the last runs zolex with these parameters.
std::string commandLines(const std::string& place, const std::string& zolex,
                         const std::string& parameters, Target target) {
    if (target == Target::windows) {
        return "  cd /d " + quoted(place, target) + "\n  set \"ZOLEX_PCI_ROOT=" + place +
               "\\pci\"\n  " + zolex + " " + parameters + "\n";
    }
    return "  cd " + quoted(place, target) +
           "\n  export ZOLEX_PCI_ROOT=" + quoted(place + "/pci", target) + "\n  " + zolex + " " +
           parameters + "\n";
}

std::string nextSteps(const fs::path& folder, const fs::path& program, const Server& server,
                      Target target) {
    std::error_code error;
    const fs::path found = fs::weakly_canonical(folder, error);
    const std::string place = fs::path(error ? folder : found).make_preferred().string();
    const std::string zolex = calledZolex(program, target);
    if (server.controllers.empty() && !server.storcliControllers.empty()) {
        const std::string utility = utilitiesOfToday(server).front();
        return target == Target::windows
                   ? "To list its first controller:\n  cd /d " + quoted(place, target) + "\n  " +
                         utility + " /c0 show all J nolog\n"
                   : "To list its first controller:\n  cd " + quoted(place, target) + "\n  ./" +
                         utility + " /c0 show all J nolog\n";
    }
    if (samplePoliciesNeedReset(server)) {
        return "It is configured already. To write its arrays as policies:\n" +
               commandLines(place, zolex, "/c /f:captured.ini", target) +
               "To erase its arrays and make those of the sample policies:\n  " + zolex +
               " /r /f:sample-policies.ini\n";
    }
    return "To run zolex on it:\n" + commandLines(place, zolex, "/f:sample-policies.ini", target);
}

} // namespace

Target hostTarget() {
#ifdef _WIN32
    return Target::windows;
#else
    return Target::posix;
#endif
}

std::string sampleList() {
    std::string text = "Samples:\n";
    for (const std::span<const Sample> list : {samples(), samplesOfToday()}) {
        for (const Sample& sample : list) {
            text += formatted("  %-16s %s\n", std::string(sample.name).c_str(),
                              std::string(sample.about).c_str());
        }
    }
    return text;
}

int initialise(const std::vector<std::string>& arguments, const fs::path& program,
               std::ostream& output, std::ostream& error, Target target) {
    if (arguments.empty()) {
        error << usage << sampleList();
        return 1;
    }
    const std::optional<Request> request = readRequest(arguments, error);
    if (!request) {
        return 1;
    }
    Problem problem;
    const Server server = readDefinition(request->definition, problem);
    if (problem.found()) {
        error << "zolex-sim: " << request->origin << ": " << problem.text() << "\n";
        return 1;
    }
    FolderWriter writer(request->folder, program, target);
    if (!writer.write(server, request->definition)) {
        error << "zolex-sim: " << writer.failure() << "\n";
        return 1;
    }
    output << "Laid out a virtual server of machine type " << server.machineType << " in "
           << request->folder.string() << " (" << request->origin << ").\n"
           << nextSteps(request->folder, program, server, target);
    return 0;
}

} // namespace zolex_sim
