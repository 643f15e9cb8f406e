#include "driver/ZOLEX.h"

#include <array>

namespace zolex {

namespace {

// clang-format off
/// The usage after its banner, a line each.
constexpr std::array<const char*, 29> usageLines{{
    "Command Line Tool for Policy-based RAID Configuration and Replication ",
    "Deploy mode (Requires /f or /d):",
    "   ZOLEX /f:<f> /d /o:<f> /p:<d> /e1 /e2 /e3 /y /t:<d> /a /s:<a,b> /v:<l>",
    "Capture mode (Requires /c and /f):",
    "   ZOLEX /c[:<p>] /f:<f> /p:<d> /t:<d> /e2 /e3 /v:<l>",
    "Restore-defaults mode (Requires /r):",
    "   ZOLEX /r /e2 /v:<l> /y",
    "Any mode:",
    "   ZOLEX @params",
    "",
    "Where:",
    "/f:<f>   -- Path and file name of the policies file.",
    "/d       -- Use default settings for all RAID controllers (no policies file).",
    "/c[:<p>] -- Capture mode. <p> is optional list of parameters for AppliesTo.1.",
    "            <p> can be list of the following: m,s,t,c,d.  Default is t,d.",
    "/r       -- Restore-defaults mode.",
    "/o:<f>   -- Path and file name where the output-script file should be created.",
    "            Default value is \"zolexout.bat\" in the current directory.",
    "/p:<d>   -- Path to append before each configuration command.",
    "            Only use if configuration commands are not already in search path.",
    "/e1      -- Return error if no policy found to configure a controller.",
    "/e2      -- Return error if no RAID controllers were found.",
    "/e3      -- Return error if no drives attached to one or more controllers.",
    "/y       -- Don't prompt before erasing the configurations of controllers.",
    "/t:<d>   -- Path where temp space is available. Default is current directory.",
    "/a       -- Run the output-script file automatically after ZOLEX exits.",
    "/v:<l>   -- Verbose level, where l is: 0 (silent), 3 (default), or 5 (max).",
    "@params  -- Pass parameters in an text file with a space between each param.",
    "/?       -- Print ZOLEX usage.",
}};
// clang-format on

} // namespace

void ZOLEX::printUsage() {
    constexpr int bannerWidth = 70;
    printer().printf(level::always, "%-*s\n", bannerWidth, "ZOLEX Version 2.20");
    for (const char* line : usageLines) {
        printer().printf(level::always, "%s\n", line);
    }
}

} // namespace zolex
