#include "driver/ParameterParser.h"
#include "driver/ZOLEX.h"

#include "foundation/TextFile.h"
#include "platform/CommandLineSplit.h"

#include <array>
#include <optional>
#include <string>
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

constexpr unsigned success = 0;
constexpr unsigned commandLineError = 4;

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

/// Adds the parameters of the file that "@" names to those of the command line; nothing when they
/// could not be read, which has been reported.
std::optional<ParameterParser::Result> parseParameterFile(Application& application,
                                                          ParameterParser& parser) {
    CString name;
    if (!parser.lookUp("@", name) || name.isEmpty()) {
        return ParameterParser::Result::success;
    }
    TextFile file(application.platform().files());
    if (!file.open(name, "r")) {
        application.platform().console().writeError(
            formatText("Could not open parameter file:  %s\n", name.c_str()));
        return ParameterParser::Result::success;
    }
    const auto parameters = readParameters(file);
    if (!parameters) {
        application.printer().errorBlockf("Could not read parameter file:  %s\n", name.c_str());
        return std::nullopt;
    }
    return parser.parseMore(*parameters, true);
}

void endInBackslash(CString& directory) {
    if (!directory.isEmpty() && !directory.endsWith("\\")) {
        directory.append("\\");
    }
}

unsigned storeVerbosity(Printer& printer, const ParameterParser& parser) {
    CString value;
    parser.lookUp("/v:", value);
    if (value.isEmpty()) {
        return success;
    }
    const std::int32_t wanted = value.toInt();
    const bool isSilent = wanted == level::always && value == "0";
    if (!isSilent && wanted != level::progress && wanted != level::detail &&
        wanted != level::traces) {
        printer.errorBlockf("Verbose level not supported:  %s\n", value.c_str());
        return commandLineError;
    }
    printer.setVerbosity(wanted);
    return success;
}

unsigned storeSValues(Printer& printer, const ParameterParser& parser, Settings& settings) {
    CString value;
    parser.lookUp("/s:", value);
    if (value.isEmpty()) {
        return success;
    }
    if (value.tokenCount(",") != 2) {
        printer.errorBlockf("Improper syntax for the following parameter:  %s\n", value.c_str());
        return commandLineError;
    }
    settings.sValueA = value.token(",", 0).toInt();
    settings.sValueB = value.token(",", 1).toInt();
    return success;
}

unsigned storeSettings(Printer& printer, const ParameterParser& parser, Settings& settings) {
    for (const TextSetting& setting : textSettings) {
        parser.lookUp(setting.name, settings.*setting.field);
    }
    for (const FlagSetting& setting : flagSettings) {
        settings.*setting.field = parser.isFound(setting.name);
    }
    if (parser.isFound("/step2")) {
        settings.step = 2;
    } else if (parser.isFound("/step3")) {
        settings.step = 3;
    }
    if (const unsigned result = storeVerbosity(printer, parser); result != success) {
        return result;
    }
    if (CString number; parser.lookUp("/r:", number)) {
        settings.restoreNumber = number.toInt();
    }
    if (const unsigned result = storeSValues(printer, parser, settings); result != success) {
        return result;
    }
    if (!settings.captureParameters.isEmpty()) {
        settings.capture = true;
    }
    endInBackslash(settings.commandPathPrefix);
    endInBackslash(settings.tempDirectory);
    return success;
}

} // namespace

void ZOLEX::addSwitches(ParameterParser& parser) {
    for (const Switch& entry : switches) {
        parser.add(entry.name, entry.kind, false, true);
    }
}

unsigned ZOLEX::parseCommandLine(int argc, const char* const* argv) {
    printer().trace("Entering ZOLEX::parseCommandLine\n");
    ParameterParser parser;
    addSwitches(parser);
    auto result = parser.parse(argc, argv, false, true);
    if (result == ParameterParser::Result::success) {
        const auto more = parseParameterFile(*this, parser);
        if (!more) {
            printer().trace("Exiting ZOLEX::parseCommandLine(4)\n");
            return commandLineError;
        }
        result = *more;
    }
    if (result == ParameterParser::Result::unknownOrInvalid) {
        printer().errorBlock("Unknown parameter.\n");
        printUsage();
        printer().trace("Exiting ZOLEX::parseCommandLine(1)\n");
        return commandLineError;
    }
    if (result == ParameterParser::Result::internalError) {
        printer().errorBlock("Internal error processing command-line switches.\n");
        printUsage();
        printer().trace("Exiting ZOLEX::parseCommandLine(2)\n");
        return commandLineError;
    }
    printer().trace("Exiting ZOLEX::parseCommandLine(3)\n");
    return storeSettings(printer(), parser, settings);
}

} // namespace zolex
