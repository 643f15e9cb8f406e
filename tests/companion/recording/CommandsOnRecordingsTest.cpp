#include "companion/commands/Commands.h"
#include "companion/recording/RecordedRuns.h"

#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <string>
#include <vector>

namespace zolex::companion {
namespace {

using namespace test;

/// A command of zolexctl that looks at a machine.
struct LookingCommand {
    std::string name;
    std::function<int(Context&)> run;
};

std::vector<LookingCommand> lookingCommands() {
    std::vector<LookingCommand> commands;
    const std::vector<std::pair<std::string, Format>> formats = {
        {"text", Format::text}, {"json", Format::json},         {"svg", Format::svg},
        {"html", Format::html}, {"policies", Format::policies},
    };
    for (const auto& [name, format] : formats) {
        commands.push_back({"show " + name, [format = format](Context& context) {
                                context.format = format;
                                return show(context, {});
                            }});
    }
    commands.push_back({"show -v", [](Context& context) {
                            context.verbose = true;
                            return show(context, {});
                        }});
    commands.push_back({"show --exact", [](Context& context) {
                            context.format = Format::policies;
                            ShowOptions options;
                            options.exact = true;
                            return show(context, options);
                        }});
    commands.push_back({"show --controller 1", [](Context& context) {
                            context.machine.controllers = {1};
                            return show(context, {});
                        }});
    commands.push_back({"show --controller 9", [](Context& context) {
                            context.machine.controllers = {9};
                            return show(context, {});
                        }});
    commands.push_back({"show --serial", [](Context& context) {
                            context.machine.serialNumber = "XY12345";
                            return show(context, {});
                        }});
    commands.push_back({"doctor", [](Context& context) { return doctor(context); }});
    commands.push_back({"doctor -v", [](Context& context) {
                            context.verbose = true;
                            return doctor(context);
                        }});
    commands.push_back({"doctor json", [](Context& context) {
                            context.format = Format::json;
                            return doctor(context);
                        }});
    return commands;
}

/// Durations, and the room for temporary files, as one: they are never the same twice.
std::string withoutMeasures(const std::string& text) {
    static const std::regex inText("[0-9]+ ms *|[0-9.]+ [KMGT]B free");
    static const std::regex inDocuments("(\"duration_ms\": *|\"free_bytes\": *|"
                                        "exit code [0-9]+</td><td class=\"right\">)[0-9]+");
    return std::regex_replace(std::regex_replace(text, inText, "N "), inDocuments, "$1N");
}

/// Holds what two runs show against each other; measures count only where they are all the same.
void expectSame(Seen one, Seen other, const std::string& what) {
    if (one != other) {
        one.output = withoutMeasures(one.output);
        other.output = withoutMeasures(other.output);
    }
    EXPECT_EQ(one, other) << what;
}

Seen onMachine(FakePlatform& machine, const LookingCommand& command) {
    Context context = contextOf(machine);
    return seen(machine, [&] { return command.run(context); });
}

Seen onRecording(const LookingCommand& command) {
    Elsewhere system;
    Context context = contextOf(system);
    context.machine.recording = "a.zrec";
    Seen result = seen(system, [&] { return command.run(context); });
    EXPECT_TRUE(system.children.empty()) << command.name;
    return result;
}

void expectSameCommandsOnRecording(FakePlatform& machine, const std::string& name) {
    const Seen recorded = runRecord(machine, "a.zrec");
    ASSERT_EQ("", recorded.error) << name;
    for (const LookingCommand& command : lookingCommands()) {
        expectSame(onMachine(machine, command), onRecording(command), name + ": " + command.name);
    }
}

TEST(CommandsOnRecordings, GiveWhatTheyGiveOnTheMachine) {
    const TemporaryDirectory folder;
    layOut(folder);
    for (const std::string& sample : SimulatedPlatform::samples()) {
        Server server(sample);
        expectSameCommandsOnRecording(server, sample);
        configure(server, folder);
        expectSameCommandsOnRecording(server, sample + ", configured");
    }
}

TEST(CommandsOnRecordings, ThatWereMadeWhileAnotherRanGiveTheSame) {
    const TemporaryDirectory folder;
    layOut(folder);
    Server server("single");
    configure(server, folder);
    for (const LookingCommand& command : lookingCommands()) {
        Context context = contextOf(server);
        context.machine.record = "a.zrec";
        const Seen live = seen(server, [&] { return command.run(context); });
        expectSame(live, onRecording(command), command.name);
        expectSame(live, onMachine(server, command), command.name);
    }
}

} // namespace
} // namespace zolex::companion
