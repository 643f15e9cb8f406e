#include "driver/CommandLine.h"

#include "driver/ParameterParser.h"
#include "foundation/Report.h"
#include "foundation/TextFile.h"
#include "platform/CommandLineSplit.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex {

namespace {

// The switches, in the order in which an argument is compared with them. Columns: the text; how it
// is matched and valued. None is required, every value may be empty, none has companions.
struct Switch {
    const char* name;
    SwitchKind kind;
};
// clang-format off
constexpr std::array<Switch, 29> switches{{
    {"/f:",              SwitchKind::joined},
    {"/d",               SwitchKind::flag},
    {"/o:",              SwitchKind::joined},
    {"/p:",              SwitchKind::joined},
    {"/e1",              SwitchKind::flag},
    {"/e2",              SwitchKind::flag},
    {"/e3",              SwitchKind::flag},
    {"/y",               SwitchKind::flag},
    {"/b",               SwitchKind::flag},
    {"/r",               SwitchKind::flag},
    {"/r:",              SwitchKind::joined},
    {"/?",               SwitchKind::flag},
    {"/t:",              SwitchKind::joined},
    {"/a",               SwitchKind::flag},
    {"/s:",              SwitchKind::joined},
    {"/step2",           SwitchKind::flag},
    {"/step3",           SwitchKind::flag},
    {"/error",           SwitchKind::flag},
    {"/debug",           SwitchKind::flag},
    {"/c",               SwitchKind::flag},
    {"/c:",              SwitchKind::joined},
    {"/controllers:",    SwitchKind::joined},
    {"/v:",              SwitchKind::joined},
    {"@",                SwitchKind::joined},
    {"/noexecuteall",    SwitchKind::flag},
    {"/noexecutereset",  SwitchKind::flag},
    {"/noexecutecap",    SwitchKind::flag},
    {"/noexecutedeploy", SwitchKind::flag},
    {"/fake",            SwitchKind::flag},
}};

// Where each text goes.
struct TextSetting {
    const char* name;
    CString Settings::*field;
};
constexpr std::array<TextSetting, 7> textSettings{{
    {"@",             &Settings::parameterFile},
    {"/f:",           &Settings::policiesFile},
    {"/o:",           &Settings::outputScript},
    {"/p:",           &Settings::commandPathPrefix},
    {"/t:",           &Settings::tempDirectory},
    {"/controllers:", &Settings::controllerDefinitionFile},
    {"/c:",           &Settings::captureParameters},
}};

// Where each presence goes.
struct FlagSetting {
    const char* name;
    bool Settings::*field;
};
constexpr std::array<FlagSetting, 18> flagSettings{{
    {"/a",               &Settings::runAutomatically},
    {"/debug",           &Settings::debug},
    {"/y",               &Settings::noPrompt},
    {"/b",               &Settings::b},
    {"/e1",              &Settings::e1},
    {"/e2",              &Settings::e2},
    {"/e3",              &Settings::e3},
    {"/error",           &Settings::error},
    {"/d",               &Settings::defaults},
    {"/c",               &Settings::capture},
    {"/r",               &Settings::restore},
    {"/r:",              &Settings::restoreWithNumber},
    {"/?",               &Settings::help},
    {"/noexecuteall",    &Settings::noExecuteAll},
    {"/noexecutereset",  &Settings::noExecuteReset},
    {"/noexecutecap",    &Settings::noExecuteCapture},
    {"/noexecutedeploy", &Settings::noExecuteDeploy},
    {"/fake",            &Settings::fake},
}};
// clang-format on

/// The parameters that an open text file holds; nothing when reading it failed.
std::optional<std::vector<CString>> readParameters(TextFile& file) {
    std::string content;
    for (CString line; file.readLine(line);) {
        content.append(line.view());
    }
    if (file.failed()) {
        return std::nullopt;
    }
    const std::vector<std::string> parameters = splitCommandLine(content);
    return std::vector<CString>(parameters.begin(), parameters.end());
}

/// Reads a command line into its record.
class CommandLineRead {
  public:
    CommandLineRead(ParameterParser& parser, FileSystem& files, Report& report)
        : parser_(parser), files_(files), report_(report) {}

    CommandLine run(int argc, const char* const* argv) {
        report_.trace("Entering ZOLEX::parseCommandLine\n");
        ParameterParser::Result result = parser_.parse(argc, argv, false, true);
        if (result == ParameterParser::Result::success) {
            result = parseParameterFile();
            if (line_.fault) {
                report_.trace("Exiting ZOLEX::parseCommandLine(4)\n");
                return std::move(line_);
            }
        }
        switch (result) {
        case ParameterParser::Result::success:
            report_.trace("Exiting ZOLEX::parseCommandLine(3)\n");
            storeSettings();
            break;
        case ParameterParser::Result::unknownOrInvalid:
            line_.wantsUsage = true;
            fail(FaultKind::parameterUnknown, parser_.faultArgument());
            break;
        case ParameterParser::Result::internalError:
            line_.wantsUsage = true;
            fail(FaultKind::switchesInvalid, {});
            break;
        }
        return std::move(line_);
    }

  private:
    /// Adds the parameters of the file that "@" names to those of the command line. One that cannot
    /// be opened is reported, and the rest counts.
    ParameterParser::Result parseParameterFile() {
        CString name;
        if (!parser_.lookUp("@", name) || name.isEmpty()) {
            return ParameterParser::Result::success;
        }
        TextFile file(files_);
        if (!file.open(name, "r")) {
            report_.fault({.kind = FaultKind::parameterFileMissing, .place = {.file = name}});
            return ParameterParser::Result::success;
        }
        const auto parameters = readParameters(file);
        if (!parameters) {
            line_.fault =
                Fault{.kind = FaultKind::parameterFileUnreadable, .place = {.file = name}};
            report_.fault(*line_.fault);
            return ParameterParser::Result::success;
        }
        return parser_.parseMore(*parameters, true);
    }

    void storeSettings() {
        Settings& settings = line_.settings;
        for (const TextSetting& setting : textSettings) {
            parser_.lookUp(setting.name, settings.*setting.field);
        }
        for (const FlagSetting& setting : flagSettings) {
            settings.*setting.field = parser_.isFound(setting.name);
        }
        if (parser_.isFound("/step2")) {
            settings.step = 2;
        } else if (parser_.isFound("/step3")) {
            settings.step = 3;
        }
        if (!storeVerbosity()) {
            return;
        }
        if (CString number; parser_.lookUp("/r:", number)) {
            settings.restoreNumber = number.toInt();
        }
        if (!storeSValues()) {
            return;
        }
        if (!settings.captureParameters.isEmpty()) {
            settings.capture = true;
        }
        endInBackslash(settings.commandPathPrefix);
        endInBackslash(settings.tempDirectory);
    }

    bool storeVerbosity() {
        CString value;
        parser_.lookUp("/v:", value);
        if (value.isEmpty()) {
            return true;
        }
        const std::int32_t wanted = value.toInt();
        const bool isSilent = wanted == level::always && value == "0";
        if (!isSilent && wanted != level::progress && wanted != level::detail &&
            wanted != level::traces) {
            return fail(FaultKind::verbosityUnsupported, value, "0 3 5 9");
        }
        line_.verbosity = wanted;
        return true;
    }

    bool storeSValues() {
        CString value;
        parser_.lookUp("/s:", value);
        if (value.isEmpty()) {
            return true;
        }
        if (value.tokenCount(",") != 2) {
            return fail(FaultKind::parameterSyntax, value, "a,b");
        }
        line_.settings.sValueA = value.token(",", 0).toInt();
        line_.settings.sValueB = value.token(",", 1).toInt();
        return true;
    }

    static void endInBackslash(CString& directory) {
        if (!directory.isEmpty() && !directory.endsWith("\\")) {
            directory.append("\\");
        }
    }

    /// Always false.
    bool fail(FaultKind kind, const CString& wanted, const char* possible = "") {
        line_.fault = Fault{.kind = kind, .wanted = wanted, .possible = possible};
        report_.fault(*line_.fault);
        return false;
    }

    ParameterParser& parser_;
    FileSystem& files_;
    Report& report_;
    CommandLine line_;
};

Fault conflict(const char* parameters) {
    return {.kind = FaultKind::parametersConflict, .wanted = parameters};
}

} // namespace

void addSwitches(ParameterParser& parser) {
    for (const Switch& entry : switches) {
        parser.add(entry.name, entry.kind, false, true);
    }
}

CommandLine readCommandLine(ParameterParser& parser, int argc, const char* const* argv,
                            FileSystem& files, Report& report) {
    return CommandLineRead(parser, files, report).run(argc, argv);
}

Combination checkCombinations(const Settings& settings) {
    const Settings& s = settings;
    const bool hasFile = !s.policiesFile.isEmpty();
    Combination result;
    if (!hasFile && !s.defaults && !s.restore) {
        if (!s.restoreWithNumber) {
            if (s.e2) {
                result.detectionCheck = true;
            } else {
                result.fault = Fault{.kind = FaultKind::parameterMissing, .wanted = "/f:"};
            }
            return result;
        }
        // Only the last two rules hold for "/r:" alone.
    } else if (s.restore && s.capture) {
        result.fault = conflict("/r /c");
    } else if (s.restoreWithNumber && s.defaults) {
        result.fault = conflict("/r: /d");
    } else if (!s.restoreWithNumber && s.capture && s.defaults) {
        result.fault = conflict("/c /d");
    } else if (s.restore && s.restoreWithNumber) {
        result.fault = conflict("/r /r:");
    }
    if (!result.fault && hasFile && s.defaults) {
        result.fault = conflict("/f: /d");
    }
    if (!result.fault && (s.e1 || s.e3) && s.runAutomatically) {
        result.fault = conflict("/e1 or /e3 with /a");
    }
    return result;
}

} // namespace zolex
