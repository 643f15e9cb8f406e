#include "companion/machine/Utilities.h"

#include "companion/families/Family.h"
#include "companion/machine/System.h"
#include "foundation/FileSystem.h"
#include "foundation/Text.h"
#include "model/Codes.h"
#include "model/TypeTraits.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::string_view wrapperName = "UTIL.BAT";
constexpr std::string_view detectorName = "hwdetect.exe";

constexpr std::array<std::string_view, 4> megacli = {"MegaCli64", "MegaCli", "megacli", "MEGACLI"};
constexpr std::array<std::string_view, 2> arcconf = {"arcconf", "ARCCONF"};
constexpr std::array<std::string_view, 2> hrconf = {"hrconf", "HRCONF"};
constexpr std::array<std::string_view, 2> qtcsend = {"qtcsend", "QTCSEND"};
constexpr std::array<std::string_view, 2> cfggen = {"cfggen", "CFGGEN"};
constexpr std::array<std::string_view, 2> cfggenScsi = {"cfggen1.02.02", "CFGGEN1.02.02"};
constexpr std::array<std::string_view, 2> hyperwin = {"hyperwin", "HYPERWIN"};

// Columns: the utility's word, its programs in the order in which they are looked for. The order of
// the rows is the one in which utilities are listed.
constexpr std::array<UtilityNames, 7> utilityRows = {{
    {"MEGACLI", megacli},
    {"ARCCONF", arcconf},
    {"HRCONF", hrconf},
    {"QTCSEND", qtcsend},
    {"CFGGEN", cfggen},
    {"CFGGEN1.02.02", cfggenScsi},
    {"HYPERWIN", hyperwin},
}};

constexpr std::array<std::string_view, 2> storcli2 = {"storcli2", "perccli2"};

constexpr std::array<UtilityNames, 1> undrivenRows = {{{"STORCLI2", storcli2}}};

constexpr std::string_view wordOf(std::int32_t type, std::string_view command) {
    return type == controller_type::none ? std::string_view()
                                         : command.substr(wrapperName.size() + 1);
}

std::string inFolder(const std::string& folder, std::string_view name, bool isWindows) {
    std::string path = folder.empty() ? "." : folder;
    if (path.back() != '/' && !(isWindows && path.back() == '\\')) {
        path += isWindows ? '\\' : '/';
    }
    return path.append(name);
}

/// The first folder that has a program of this name; empty for none.
std::string find(const ProgramFolders& folders, std::string_view name) {
    std::vector<std::string> places;
    if (!folders.utilities.empty()) {
        places.push_back(folders.utilities);
    }
    if (!folders.own.empty()) {
        places.push_back(folders.own);
    }
    places.emplace_back(".");
    places.insert(places.end(), folders.path.begin(), folders.path.end());
    for (const std::string& folder : places) {
        std::string path = inFolder(folder, name, folders.isWindows);
        if (folders.isProgram(path)) {
            return path;
        }
    }
    return {};
}

/// Enters the first program of a utility that is found, and the others of its names.
void findProgram(const ProgramFolders& folders, const UtilityNames& names, Utilities& utilities) {
    for (const std::string_view program : names.programs) {
        std::string path = find(folders, std::string(program) + (folders.isWindows ? ".exe" : ""));
        if (path.empty()) {
            continue;
        }
        if (utilities.programs.contains(names.utility)) {
            utilities.others[std::string(names.utility)].push_back(std::move(path));
        } else {
            utilities.programs.emplace(names.utility, std::move(path));
        }
    }
}

std::string upperCase(std::string_view word) {
    std::string upper(word);
    std::transform(upper.begin(), upper.end(), upper.begin(), text::upper);
    return upper;
}

} // namespace

std::span<const UtilityNames> utilityNames() {
    return utilityRows;
}

std::vector<UtilityNames> familyUtilityNames() {
    std::vector<UtilityNames> names;
    for (const Family* const family : families()) {
        if (!family->programs().empty()) {
            names.push_back({family->name(), family->programs()});
        }
    }
    return names;
}

std::span<const UtilityNames> undrivenUtilityNames() {
    return undrivenRows;
}

std::string_view utilityOfType(std::int32_t controllerType) {
    const TypeTraits& traits = traitsOf(controllerType);
    return wordOf(traits.controllerType, traits.utilityCommand);
}

ProgramFolders systemFolders(FileSystem& files, std::string utilitiesFolder) {
    ProgramFolders folders;
    folders.utilities = std::move(utilitiesFolder);
    folders.own = system::ownFolder();
    folders.path = system::searchPath();
    folders.isWindows = system::isWindows;
    folders.isProgram = [&files](const std::string& path) { return files.isFile(path); };
    return folders;
}

std::string Utilities::programOf(std::string_view utility) const {
    if (const auto given = named.find(utility); given != named.end()) {
        return given->second;
    }
    if (usesWrapper(utility)) {
        return wrapper;
    }
    const auto found = programs.find(utility);
    return found == programs.end() ? std::string() : found->second;
}

bool Utilities::usesWrapper(std::string_view utility) const {
    const bool isFoundFirst =
        findFamily(utility) != nullptr && programs.find(utility) != programs.end();
    return !wrapper.empty() && named.find(utility) == named.end() && !isFoundFirst;
}

std::vector<std::string> Utilities::argumentsOf(std::string_view commandLine) const {
    std::vector<std::string> arguments = splitCommandLine(commandLine);
    if (arguments.empty()) {
        return {};
    }
    if (arguments.front() == detectorName && !detector.empty()) {
        arguments.front() = detector;
        return arguments;
    }
    if (findFamily(arguments.front()) != nullptr) {
        arguments.insert(arguments.begin(), std::string(wrapperName));
    }
    if (arguments.front() != wrapperName || arguments.size() < 2) {
        return {};
    }
    const std::string program = programOf(arguments[1]);
    if (program.empty()) {
        return {};
    }
    if (!usesWrapper(arguments[1])) {
        arguments.erase(arguments.begin());
    }
    arguments.front() = program;
    return arguments;
}

std::string namingOption(std::string_view utility) {
    std::vector<UtilityNames> rows(utilityRows.begin(), utilityRows.end());
    const std::vector<UtilityNames> ofFamilies = familyUtilityNames();
    rows.insert(rows.end(), ofFamilies.begin(), ofFamilies.end());
    const auto row = std::find_if(rows.begin(), rows.end(), [utility](const UtilityNames& each) {
        return each.utility == utility;
    });
    std::string text = "zolexctl --utility ";
    text.append(utility).append("=/path/");
    return text.append(row == rows.end() ? utility : row->programs.front()).append(" doctor");
}

Utilities findUtilities(const ProgramFolders& folders,
                        const std::map<std::string, std::string>& named) {
    Utilities utilities;
    for (const auto& [word, path] : named) {
        utilities.named[upperCase(word)] = path;
    }
    utilities.wrapper = find(folders, wrapperName);
    utilities.detector = find(folders, detectorName);
    for (const UtilityNames& row : utilityRows) {
        findProgram(folders, row, utilities);
    }
    for (const UtilityNames& row : familyUtilityNames()) {
        findProgram(folders, row, utilities);
    }
    for (const UtilityNames& row : undrivenRows) {
        findProgram(folders, row, utilities);
    }
    return utilities;
}

} // namespace zolex::companion
