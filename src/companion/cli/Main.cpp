#include "companion/cli/Main.h"

#include "companion/cli/CommandLine.h"
#include "companion/cli/Help.h"
#include "companion/cli/Pieces.h"
#include "companion/commands/Commands.h"
#include "companion/families/md/VolumeUses.h"
#include "companion/machine/CarryOut.h"
#include "companion/text/StreamState.h"
#include "companion/text/StyleChoice.h"
#include "platform/FolderPciDeviceList.h"
#include "platform/Platform.h"

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

TextStyle styleFor(StandardStream stream, const Request& request) {
    StyleWishes wishes;
    wishes.colours = request.colours;
    wishes.width = request.width;
    wishes.toFile = stream == StandardStream::output && !request.outputFile.empty() &&
                    request.outputFile != "-";
    wishes.stream = streamState(stream);
    wishes.noColor = environmentVariable("NO_COLOR");
    wishes.cliColorForce = environmentVariable("CLICOLOR_FORCE");
    wishes.columns = environmentVariable("COLUMNS");
    return chooseStyle(wishes);
}

Context makeContext(const Request& request, const std::vector<std::string>& arguments,
                    Platform& platform) {
    return {platform,
            request.machine,
            request.format,
            request.outputFile,
            styleFor(StandardStream::output, request),
            styleFor(StandardStream::error, request),
            request.quiet,
            request.verbose,
            arguments};
}

/// Linux alone is asked. Of a server whose bus stands in a folder it is what stands beside that.
void noteOfSystem(Facts& facts, void (*note)(md::DiskFiles&, const md::Roots&, Facts&)) {
    const std::unique_ptr<md::DiskFiles> files = md::systemDiskFiles();
    if (files == nullptr) {
        return;
    }
    md::Roots roots;
    if (const std::string bus = namedPciRoot(); !bus.empty()) {
        roots = {bus + "/../sys", bus + "/../proc", bus + "/../dev"};
    }
    note(*files, roots, facts);
}

int runArguments(const std::vector<std::string>& arguments, Platform& platform);

/// A command of zolexctl behind "--" runs as if the recording were among its own options; zolex is
/// the command's own affair.
int runReplay(Context& context, const Request& request) {
    if (request.replay.command.front() == "zolex") {
        return replay(context, request.replay);
    }
    std::vector<std::string> arguments{"--recording", request.replay.file};
    arguments.insert(arguments.end(), request.replay.command.begin(), request.replay.command.end());
    return runArguments(arguments, context.platform);
}

int runCommand(Context& context, const Request& request) {
    switch (request.command) {
    case Command::plan:
        return plan(context, request.plan);
    case Command::apply:
        return apply(context, request.apply);
    case Command::reset:
        return reset(context, request.apply);
    case Command::diff:
        return diff(context, request.diff);
    case Command::show:
        return show(context, request.show);
    case Command::check:
        return check(context, request.check);
    case Command::doctor:
        return doctor(context);
    case Command::record:
        return record(context, request.record);
    case Command::replay:
        return runReplay(context, request);
    case Command::rehearse:
        return rehearseFleet(context, request.rehearse);
    case Command::convert:
        return convert(context, request.convert);
    case Command::guard:
        return guard(context, request.guard);
    case Command::explain:
        return explain(context, request.code);
    case Command::none:
        break;
    }
    return exit_code::notPossible;
}

int answer(const ArgumentReading& reading, Context& context) {
    if (!reading.fault.empty()) {
        return failWith(context, reading.fault, reading.help);
    }
    if (reading.wantsHelp || reading.wantsVersion) {
        context.platform.console().writeOutput(reading.wantsHelp ? helpText(reading.request.command)
                                                                 : versionText());
        return exit_code::done;
    }
    if (reading.request.command == Command::none) {
        context.platform.console().writeError(helpText(Command::none));
        return exit_code::notPossible;
    }
    return runCommand(context, reading.request);
}

int runArguments(const std::vector<std::string>& arguments, Platform& platform) {
    const ArgumentReading reading = readArguments(arguments);
    Context context = makeContext(reading.request, arguments, platform);
    context.canAsk = streamState(StandardStream::input).isTerminal &&
                     streamState(StandardStream::error).isTerminal;
    context.rewritesLines = streamState(StandardStream::output).isTerminal;
    context.showsProgress = !reading.request.quiet && streamState(StandardStream::error).isTerminal;
    context.doPieces = doPieces;
    context.noteUses = [](Facts& facts) { noteOfSystem(facts, md::noteUses); };
    context.noteHolders = [](Facts& facts) { noteOfSystem(facts, md::noteHolders); };
    int code = exit_code::notPossible;
    try {
        code = answer(reading, context);
    } catch (const std::bad_alloc&) {
        failWith(context, "there is not enough memory", "nothing on the server was changed");
    } catch (const std::exception& error) {
        failWith(context, printable(error.what()), "nothing on the server was changed");
    }
    // What became of a server is told before what became of the output.
    return outputIsWritten(context) || code > exit_code::notPossible ? code
                                                                     : exit_code::notPossible;
}

} // namespace

int runProgram(int argc, const char* const* argv, Platform& platform) {
    try {
        if (argc > 1 && std::string_view(argv[1]) == carryOutWord) {
            return carryOut(platform, std::vector<std::string>(argv + 1, argv + argc));
        }
        return runArguments(argc > 1 ? std::vector<std::string>(argv + 1, argv + argc)
                                     : std::vector<std::string>(),
                            platform);
    } catch (...) {
        platform.console().writeError("error: there is not enough memory\n");
    }
    return exit_code::notPossible;
}

} // namespace zolex::companion
