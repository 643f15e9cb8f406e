#include "commands/CommandSource.h"

#include "controllers/Application.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

constexpr const char* cfggenScsiUtility = "UTIL.BAT CFGGEN1.02.02";

/// What stands in front of every command line: a remark where the controllers come from an
/// inventory file, so that the line cannot run.
CString lineStart(const Application& application) {
    return application.settings.fake ? "REM * " : "";
}

/// Everything up to the utility's own parameters.
CString commandStart(Application& application, std::int32_t type) {
    CString line = lineStart(application);
    line.append(application.settings.commandPathPrefix);
    line.append(application.catalogue().getUtilityCommand(type));
    return line;
}

/// The controller as CFGGEN and MEGACLI number it.
std::int32_t adapter(const RAIDController& controller) {
    return controller.scanOrder() - 1;
}

/// The option that selects a MEGACLI listing; the adapter's number follows it directly. The
/// listing of logical drives is taken only in capture mode.
const char* megaCliOption(bool capture, std::size_t index) {
    static constexpr std::array<const char*, 3> options = {" -LdPdInfo -a", " -pdList -a",
                                                           " -adpallinfo -a"};
    const std::size_t first = capture ? 0 : 1;
    return options[std::min(first + index, options.size() - 1)];
}

/// HYPERWIN's listing of drive 0 is taken only in capture mode.
CString hyperwinOption(bool capture, std::size_t index) {
    const std::size_t first = capture ? 0 : 1;
    return formatText("/D%u0 ", static_cast<unsigned>(first + index));
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
bool writeSection(Application& application, File& script, const char* problem,
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
    section.write(formatText("%s%s %s%s", application.settings.tempDirectory.c_str(), "ZLXERR.BAT",
                             "/error", "\n\n"));
    return section.finish();
}

} // namespace

bool usesCfggenSyntax(std::string_view utility, std::string_view sasUtility) {
    return utility == sasUtility || utility == cfggenScsiUtility;
}

bool CommandSource::takesAdapterNumber(std::int32_t type) const {
    const ControllerCatalogue& catalogue = application().catalogue();
    return type == controller_type::lsiSas ||
           (type == controller_type::lsiScsi &&
            usesCfggenSyntax(catalogue.getUtilityCommand(type),
                             catalogue.getUtilityCommand(controller_type::lsiSas)));
}

std::size_t GetConfigFiles::numberOfCommands(const RAIDController& controller) const {
    const bool severalListings = controller.type() == controller_type::megaRaid ||
                                 controller.type() == controller_type::lsiIde;
    if (!severalListings) {
        return 1;
    }
    return application().settings.capture ? 3 : 2;
}

CString GetConfigFiles::getCommand(const RAIDController& controller, std::int32_t number,
                                   std::size_t index) {
    const std::int32_t type = controller.type();
    application().printer().tracef(
        "Entering GetConfigFiles::getCommand, controller type=%d, num=%d, comandNum=%d\n", type,
        number, static_cast<int>(index));
    if (type < controller_type::first || type > controller_type::last) {
        return CString::concatenate(lineStart(application()), "\nGOTO ERROR\n");
    }
    const bool capture = application().settings.capture;
    CString line = commandStart(application(), type);
    if (type == controller_type::megaRaid) {
        line.append(formatText("%s%d ", megaCliOption(capture, index), adapter(controller)));
    } else if (type == controller_type::lsiIde) {
        line.append(" /L ");
        line.append(hyperwinOption(capture, index));
    } else if (takesAdapterNumber(type)) {
        line.append(formatText(" %d DISPLAY ", adapter(controller)));
    } else {
        line.append(formatText(" GETCONFIG %d AL", controller.scanOrder()));
    }
    line.append("\n");
    return line;
}

bool GetConfigFiles::writeErrorSection(File& script) {
    return writeSection(application(), script,
                        "ECHO      Error gathering information from controller %2.\n", CString());
}

std::size_t RestoreDefaults::numberOfCommands(const RAIDController& controller) const {
    return controller.type() == controller_type::megaRaid ? 2 : 1;
}

CString RestoreDefaults::getCommand(const RAIDController& controller, std::int32_t /*number*/,
                                    std::size_t index) {
    const std::int32_t type = controller.type();
    if (type < controller_type::first || type > controller_type::last) {
        return {};
    }
    CString line = commandStart(application(), type);
    if (type == controller_type::megaRaid) {
        const bool clearForeign = index > 0;
        line.append(formatText(" %s%d -SILENT",
                               clearForeign ? "-CFGFOREIGN -CLEAR -A" : "-CFGCLR -A",
                               adapter(controller)));
    } else if (type == controller_type::lsiIde) {
        line.append(" /Ea");
    } else if (takesAdapterNumber(type)) {
        line.append(formatText(" %d DELETE NOPROMPT", adapter(controller)));
    } else {
        line.append(formatText(" SETCONFIG %d DEFAULT NOPROMPT", controller.scanOrder()));
    }
    return line;
}

bool RestoreDefaults::writeErrorSection(File& script) {
    const CString familyUtility =
        application().catalogue().getUtilityCommand(controller_type::family);
    CString note = formatText("IF \"%s\"==\"%s\" ", "%4", familyUtility.c_str());
    note.append("ECHO      Note: Be sure that the qtcraspi.sys DOS device driver is loaded.\n");
    return writeSection(application(), script,
                        "ECHO      Error restoring controller %2 to factory-default settings.\n",
                        note);
}

} // namespace zolex
