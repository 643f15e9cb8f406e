#include "setup/ServerFiles.h"

#include <algorithm>
#include <string_view>

namespace zolex_sim {
namespace {

/// A script that starts the program beside it in a role.
std::string script(std::string_view head, std::string_view role) {
    return std::string(head) + "here=${0%/*}\n" + "[ \"$here\" = \"$0\" ] && here=.\n" +
           "exec \"$here/zolex-sim\" " + std::string(role) + " \"$@\"\n";
}

} // namespace

std::vector<std::string> utilitiesOfToday(const Server& server) {
    std::vector<std::string> names;
    for (const storcli::Controller& controller : server.storcliControllers) {
        const char* name =
            controller.branding == storcli::Branding::perc ? "perccli64" : "storcli64";
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.emplace_back(name);
        }
    }
    return names;
}

std::vector<ServerFile> launchers(const Server& server, Target target) {
    if (target == Target::windows) {
        return {{"UTIL.BAT", "@\"%~dp0ZOLEX-SIM.EXE\" util %*\r\n"}};
    }
    std::vector<ServerFile> files = {{"UTIL.BAT", script("", "util"), true},
                                     {"hwdetect.exe", script("#!/bin/sh\n", "hwdetect"), true},
                                     {"fakeraid", script("#!/bin/sh\n", "fakeraid"), true}};
    for (const std::string& name : utilitiesOfToday(server)) {
        files.push_back({name, script("#!/bin/sh\n", "util " + name), true});
    }
    return files;
}

} // namespace zolex_sim
