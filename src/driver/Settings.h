#pragma once

#include "foundation/CString.h"

#include <cstdint>

namespace zolex {

/// What the command line asks for. Strings default to empty, flags to false; -1 means unset.
/// The verbosity is not here: it is the printer's.
struct Settings {
    CString policiesFile;             ///< "/f:"; read in deploy, written in capture
    CString outputScript;             ///< "/o:"; the driver puts "ZOLEXOUT.BAT" when empty
    CString commandPathPrefix;        ///< "/p:"; ends in "\" when not empty
    CString tempDirectory;            ///< "/t:"; ends in "\" when not empty
    CString programPath;              ///< first argument of the vector
    CString controllerDefinitionFile; ///< "/controllers:"; read instead of the hardware scan
    CString parameterFile;            ///< "@"
    CString captureParameters;        ///< "/c:"; AppliesTo parameters for capture
    bool runAutomatically = false;    ///< "/a"
    std::int32_t sValueA = -1;        ///< "/s:"; stored only
    std::int32_t sValueB = -1;
    std::int32_t step = -1;          ///< "/step2", "/step3"; the driver makes -1 a 1
    bool debug = false;              ///< "/debug": extra dumps, the temp file is kept
    bool e1 = false;                 ///< "/e1": a controller without a policy is an error
    bool e2 = false;                 ///< "/e2": no controllers is an error
    bool e3 = false;                 ///< "/e3": a controller without drives is an error
    bool noPrompt = false;           ///< "/y"
    bool b = false;                  ///< "/b"; stored only
    bool error = false;              ///< "/error"; stored only
    bool defaults = false;           ///< "/d": deploy without a policies file
    bool capture = false;            ///< "/c" or a non-empty "/c:"
    bool restore = false;            ///< "/r"
    bool restoreWithNumber = false;  ///< "/r:"
    std::int32_t restoreNumber = -1; ///< number of the one controller to restore; -1 for all
    bool help = false;               ///< "/?"
    bool noExecuteAll = false;       ///< "/noexecuteall"
    bool noExecuteReset = false;     ///< "/noexecutereset"
    bool noExecuteCapture = false;   ///< "/noexecutecap"
    bool noExecuteDeploy = false;    ///< "/noexecutedeploy"
    bool fake = false;               ///< "/fake": controllers come from "contlist.ini"
};

} // namespace zolex
