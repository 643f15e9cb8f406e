#include "commands/CommandSource.h"

#include "foundation/FileSystem.h"
#include "foundation/Report.h"
#include "model/RAIDController.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

/// What stands in front of every command line.
const char* lineStart(const SourceOptions& options) {
    return options.remarks ? "REM * " : "";
}

/// Everything up to the utility's own parameters.
CString commandStart(const SourceOptions& options, const TypeTraits& traits) {
    return CString::concatenate(lineStart(options), options.style.pathPrefix,
                                traits.utilityCommand);
}

bool isKnown(const TypeTraits& traits) {
    return traits.controllerType != controller_type::none;
}

/// The controller as CFGGEN and MEGACLI number it.
std::int32_t adapter(const RAIDController& controller) {
    return controller.scanOrder() - 1;
}

/// The option that selects a MEGACLI listing; the adapter's number follows it directly. The first
/// is that of the layout.
const char* megaCliOption(std::size_t listing) {
    static constexpr std::array<const char*, 3> options = {" -LdPdInfo -a", " -pdList -a",
                                                           " -adpallinfo -a"};
    return options[std::min(listing, options.size() - 1)];
}

/// Writes the pieces of an error section until one fails; then the file is closed.
class SectionWriter {
  public:
    explicit SectionWriter(File& script) : script_(script) {}

    void write(const CString& text) {
        if (good_ && script_.write(text) != text.length()) {
            fail();
        }
    }
    /// False after a failure, also when the bytes could not be handed to the system.
    bool finish() {
        if (good_ && !script_.flush()) {
            fail();
        }
        return good_;
    }

  private:
    void fail() {
        good_ = false;
        script_.close();
    }

    File& script_;
    bool good_ = true;
};

/// `problem` says what went wrong with controller %2; `note` is a line of its own, or empty.
bool writeSection(const SourceOptions& options, File& script, const char* problem,
                  const CString& note) {
    constexpr const char* ruler =
        "REM *---------------------------------------------------------------*\n";
    SectionWriter section(script);
    section.write(":ERROR\n");
    section.write(ruler);
    section.write("REM * Perform error handling.\n");
    section.write(ruler);
    section.write("ECHO ### ERROR\n");
    section.write(problem);
    section.write("ECHO      Received error return code %3 from the %4 command.\n");
    if (!note.isEmpty()) {
        section.write(note);
    }
    section.write(
        formatText("%s%s %s%s", options.scriptPrefix.c_str(), "ZLXERR.BAT", "/error", "\n\n"));
    return section.finish();
}

} // namespace

std::size_t GetConfigFiles::numberOfCommands(const RAIDController& controller) const {
    const LineCounts& lines = traitsOf(controller.type()).lines;
    return lines.listings + (options().withLayout ? lines.layoutListings : 0);
}

CString GetConfigFiles::getCommand(const RAIDController& controller, std::int32_t number,
                                   std::size_t index) {
    report().tracef(
        "Entering GetConfigFiles::getCommand, controller type=%d, num=%d, comandNum=%d\n",
        controller.type(), number, static_cast<int>(index));
    const TypeTraits& traits = traitsOf(controller.type());
    if (!isKnown(traits)) {
        return CString::concatenate(lineStart(options()), "\nGOTO ERROR\n");
    }
    const std::size_t listing = index + (options().withLayout ? 0 : traits.lines.layoutListings);
    CString line = commandStart(options(), traits);
    switch (traits.dialect) {
    case Dialect::conf:
        line.append(formatText(" GETCONFIG %d AL", controller.scanOrder()));
        break;
    case Dialect::cfggen:
        line.append(formatText(" %d DISPLAY ", adapter(controller)));
        break;
    case Dialect::hyperwin:
        line.append(formatText(" /L /D%u0 ", static_cast<unsigned>(listing)));
        break;
    case Dialect::megaCli:
        line.append(formatText("%s%d ", megaCliOption(listing), adapter(controller)));
        break;
    }
    line.append("\n");
    return line;
}

bool GetConfigFiles::writeErrorSection(File& script) {
    return writeSection(options(), script,
                        "ECHO      Error gathering information from controller %2.\n", CString());
}

std::size_t RestoreDefaults::numberOfCommands(const RAIDController& controller) const {
    return traitsOf(controller.type()).lines.resets;
}

CString RestoreDefaults::getCommand(const RAIDController& controller, std::int32_t /*number*/,
                                    std::size_t index) {
    const TypeTraits& traits = traitsOf(controller.type());
    if (!isKnown(traits)) {
        return {};
    }
    const bool clearForeign = index > 0;
    CString line = commandStart(options(), traits);
    switch (traits.dialect) {
    case Dialect::conf:
        line.append(formatText(" SETCONFIG %d DEFAULT NOPROMPT", controller.scanOrder()));
        break;
    case Dialect::cfggen:
        line.append(formatText(" %d DELETE NOPROMPT", adapter(controller)));
        break;
    case Dialect::hyperwin:
        line.append(" /Ea");
        break;
    case Dialect::megaCli:
        line.append(formatText(" %s%d -SILENT",
                               clearForeign ? "-CFGFOREIGN -CLEAR -A" : "-CFGCLR -A",
                               adapter(controller)));
        break;
    }
    return line;
}

bool RestoreDefaults::writeErrorSection(File& script) {
    const CString familyUtility = traitsOf(controller_type::family).utilityCommand;
    CString note = formatText("IF \"%s\"==\"%s\" ", "%4", familyUtility.c_str());
    note.append("ECHO      Note: Be sure that the qtcraspi.sys DOS device driver is loaded.\n");
    return writeSection(options(), script,
                        "ECHO      Error restoring controller %2 to factory-default settings.\n",
                        note);
}

} // namespace zolex
