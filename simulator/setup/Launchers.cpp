#include "setup/ServerFiles.h"

#include <string_view>

namespace zolex_sim {
namespace {

/// A script that starts the program beside it in a role.
std::string script(std::string_view head, std::string_view role) {
    return std::string(head) + "here=${0%/*}\n" + "[ \"$here\" = \"$0\" ] && here=.\n" +
           "exec \"$here/zolex-sim\" " + std::string(role) + " \"$@\"\n";
}

} // namespace

std::vector<ServerFile> launchers(Target target) {
    if (target == Target::windows) {
        return {{"UTIL.BAT", "@\"%~dp0ZOLEX-SIM.EXE\" util %*\r\n"}};
    }
    return {{"UTIL.BAT", script("", "util"), true},
            {"hwdetect.exe", script("#!/bin/sh\n", "hwdetect"), true},
            {"fakeraid", script("#!/bin/sh\n", "fakeraid"), true}};
}

} // namespace zolex_sim
