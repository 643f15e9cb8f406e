#include "companion/cli/CommandLine.h"

#include "companion/cli/Suggestion.h"
#include "companion/cli/Values.h"
#include "companion/text/Terminal.h"
#include "companion/text/TypedWord.h"
#include "foundation/Text.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <utility>

namespace zolex::companion {

namespace {

/// What is wrong with the arguments.
struct ArgumentFault {
    std::string what;
    std::string help;
};

std::string helpOf(Command command) {
    return command == Command::none ? "zolexctl --help"
                                    : "zolexctl " + std::string(rowOf(command).name) + " --help";
}

/// One option of the program or of a command, as the library keeps it.
struct KnownOption {
    const OptionRow* row;
    CLI::Option* option;
};

/// The program or one of its commands.
struct Level {
    CLI::App* app = nullptr;
    std::vector<KnownOption> options;
};

std::string libraryNames(const OptionRow& row) {
    std::string names(row.shortName);
    return names.append(row.shortName.empty() ? "" : ",").append(row.name);
}

/// The library's view of the tables.
class Parser {
  public:
    Parser() {
        prepare(levelOf(Command::none), root_, anyCommand);
        for (const CommandRow& row : commandRows()) {
            prepare(levelOf(row.command), *root_.add_subcommand(std::string(row.name)),
                    only(row.command));
        }
        root_.require_subcommand(0, 1);
    }

    /// Throws what the library throws.
    void parse(std::vector<std::string> arguments) {
        std::reverse(arguments.begin(), arguments.end());
        root_.parse(std::move(arguments)); // takes them from the back
    }

    [[nodiscard]] Command command() const {
        for (const CommandRow& row : commandRows()) {
            if (levelOf(row.command).app->parsed()) {
                return row.command;
            }
        }
        return Command::none;
    }

    /// What no option took: unknown options and words.
    [[nodiscard]] std::vector<std::string> rest(Command command) const {
        return levelOf(command).app->remaining();
    }

    /// The values of an option that stands where options of `command` stand.
    [[nodiscard]] std::vector<std::string> values(const OptionRow& row, Command command) const {
        for (const KnownOption& known : levelOf(command).options) {
            if (known.row == &row) {
                return known.option->results();
            }
        }
        return {};
    }

  private:
    static void prepare(Level& level, CLI::App& app, CommandSet commands) {
        level.app = &app;
        app.set_help_flag();
        app.allow_extras();
        // A path begins with "/" on other systems.
        app.allow_windows_style_options(false);
        for (const OptionRow& row : optionRows()) {
            if ((row.commands & commands) != 0) {
                level.options.push_back({&row, add(app, row)});
            }
        }
    }

    static CLI::Option* add(CLI::App& app, const OptionRow& row) {
        if (row.value.empty()) {
            return app.add_flag(libraryNames(row));
        }
        return app.add_option(libraryNames(row))
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }

    Level& levelOf(Command command) { return levels_.at(static_cast<std::size_t>(command)); }
    [[nodiscard]] const Level& levelOf(Command command) const {
        return levels_.at(static_cast<std::size_t>(command));
    }

    CLI::App root_{"", "zolexctl"};
    std::array<Level, commandCount> levels_; ///< by command; the first is the program
};

bool looksLikeOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

std::vector<std::string_view> optionNames(Command command) {
    std::vector<std::string_view> names;
    const CommandSet commands = command == Command::none ? anyCommand : only(command);
    for (const OptionRow& row : optionRows()) {
        if ((row.commands & commands) != 0) {
            names.push_back(row.name);
        }
    }
    return names;
}

std::vector<std::string_view> commandNames() {
    std::vector<std::string_view> names;
    for (const CommandRow& row : commandRows()) {
        names.push_back(row.name);
    }
    return names;
}

std::string didYouMean(std::string_view nearest) {
    return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

/// "show", or "zolexctl" without a command.
std::string ownName(Command command) {
    return command == Command::none ? "zolexctl" : std::string(rowOf(command).name);
}

[[noreturn]] void refuseOption(const std::string& option, Command command) {
    const std::string name = option.substr(0, option.find('='));
    const auto rows = optionRows();
    const bool isOfOthers = std::any_of(rows.begin(), rows.end(), [&](const OptionRow& row) {
        return row.name == name || (row.shortName == name && !name.empty());
    });
    if (isOfOthers) {
        throw ArgumentFault{ownName(command) + " does not take " + name, helpOf(command)};
    }
    throw ArgumentFault{"there is no option " + inQuotes(name) +
                            didYouMean(nearestWord(name, optionNames(command))),
                        helpOf(command)};
}

[[noreturn]] void refuseCommand(const std::string& word) {
    throw ArgumentFault{"there is no command " + inQuotes(word) +
                            didYouMean(nearestWord(word, commandNames())),
                        helpOf(Command::none)};
}

/// The options and words of one command line.
class Arguments {
  public:
    explicit Arguments(const std::vector<std::string>& arguments) {
        const auto mark = std::find(arguments.begin(), arguments.end(), "--");
        parse({arguments.begin(), mark});
        command_ = parser_.command();
        for (const std::string& word : parser_.rest(Command::none)) {
            if (looksLikeOption(word)) {
                refuseOption(word, command_);
            }
            refuseCommand(word);
        }
        if (command_ != Command::none) {
            takeWords();
        }
        behindMark_.assign(mark == arguments.end() ? mark : mark + 1, arguments.end());
        hasMark_ = mark != arguments.end();
        checkOptions();
    }

    [[nodiscard]] Command command() const { return command_; }
    /// Words behind the command's name, beside options.
    [[nodiscard]] const std::vector<std::string>& words() const { return words_; }
    /// What stands behind "--".
    [[nodiscard]] const std::vector<std::string>& behindMark() const { return behindMark_; }
    [[nodiscard]] bool hasMark() const { return hasMark_; }

    /// All values of an option, those before the command's name first.
    [[nodiscard]] std::vector<std::string> values(std::string_view name) const {
        for (const OptionRow& row : optionRows()) {
            if (row.name == name) {
                return valuesOf(row);
            }
        }
        return {};
    }
    [[nodiscard]] std::string value(std::string_view name) const {
        const std::vector<std::string> all = values(name);
        return all.empty() ? std::string() : all.front();
    }
    [[nodiscard]] bool has(std::string_view name) const { return !values(name).empty(); }
    /// All parts of all values.
    [[nodiscard]] std::vector<std::string> partsOf(std::string_view name) const {
        std::vector<std::string> result;
        for (const std::string& text : values(name)) {
            std::vector<std::string> more = parts(text);
            result.insert(result.end(), std::make_move_iterator(more.begin()),
                          std::make_move_iterator(more.end()));
        }
        return result;
    }

  private:
    void parse(const std::vector<std::string>& arguments) {
        try {
            parser_.parse(arguments);
        } catch (const CLI::ArgumentMismatch& mismatch) {
            // Its text begins with the option's name, as the table has it.
            const std::string text = mismatch.what();
            throw ArgumentFault{text.substr(0, text.find(':')) + " needs a value",
                                helpOf(parser_.command())};
        } catch (const CLI::Error& error) {
            throw ArgumentFault{error.what(), helpOf(parser_.command())};
        }
    }

    void takeWords() {
        for (std::string& word : words_ = parser_.rest(command_)) {
            if (looksLikeOption(word)) {
                refuseOption(word, command_);
            }
            if (word.empty()) {
                throw ArgumentFault{"an argument is empty", helpOf(command_)};
            }
        }
    }

    [[nodiscard]] std::vector<std::string> valuesOf(const OptionRow& row) const {
        std::vector<std::string> result = parser_.values(row, Command::none);
        if (command_ != Command::none) {
            std::vector<std::string> more = parser_.values(row, command_);
            result.insert(result.end(), std::make_move_iterator(more.begin()),
                          std::make_move_iterator(more.end()));
        }
        return result;
    }

    void checkOptions() const {
        for (const OptionRow& row : optionRows()) {
            const std::vector<std::string> all = valuesOf(row);
            if (!all.empty()) {
                checkOption(row, all);
            }
        }
    }

    void checkOption(const OptionRow& row, const std::vector<std::string>& all) const {
        const std::string name(row.name);
        if (command_ != Command::none && (row.commands & only(command_)) == 0 &&
            row.name != "--version") {
            refuseOption(name, command_);
        }
        if (row.value.empty()) {
            if (std::any_of(all.begin(), all.end(),
                            [](const std::string& value) { return value != "true"; })) {
                throw ArgumentFault{name + " takes no value", helpOf(command_)};
            }
            return;
        }
        if (!row.repeats && all.size() > 1) {
            throw ArgumentFault{name + " is given twice", helpOf(command_)};
        }
        for (const std::string& value : all) {
            // "-o --quiet": the value was forgotten.
            if (value.size() > 2 && value.compare(0, 2, "--") == 0) {
                throw ArgumentFault{name + " needs a value", helpOf(command_)};
            }
            std::string fault = row.fault == nullptr ? std::string() : row.fault(value);
            if (!fault.empty()) {
                throw ArgumentFault{fault.insert(0, ": ").insert(0, name), helpOf(command_)};
            }
        }
    }

    Parser parser_;
    Command command_ = Command::none;
    std::vector<std::string> words_;
    std::vector<std::string> behindMark_;
    bool hasMark_ = false;
};

std::vector<std::string_view> formatsOf(Command command) {
    std::vector<std::string_view> names;
    std::string_view rest = rowOf(command).formats;
    while (!rest.empty()) {
        const std::size_t end = rest.find(' ');
        names.push_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return names;
}

Format readFormat(const Arguments& arguments) {
    const Command command = arguments.command();
    const bool hasAs = arguments.has("--as");
    if (hasAs && arguments.has("--format")) {
        throw ArgumentFault{"--as and --format are the same; give one", helpOf(command)};
    }
    const std::string option = hasAs ? "--as" : "--format";
    if (!arguments.has(option)) {
        return Format::text;
    }
    const std::string given = arguments.value(option);
    const std::vector<std::string_view> possible = formatsOf(command);
    if (std::find(possible.begin(), possible.end(), given) != possible.end()) {
        return formatNamed(given).value_or(Format::text);
    }
    std::string list;
    for (const std::string_view name : possible) {
        list.append(list.empty() ? "" : ", ").append(name);
    }
    throw ArgumentFault{option + ": " + inQuotes(given) + " is no format of " + ownName(command) +
                            didYouMean(nearestWord(given, possible)),
                        ownName(command) + " can write " + list};
}

MachineOptions readMachine(const Arguments& arguments) {
    MachineOptions machine;
    machine.utilitiesFolder = arguments.value("--utilities");
    for (const std::string& text : arguments.values("--utility")) {
        auto named = utilityPath(text);
        if (named && !machine.utilities.insert(*std::move(named)).second) {
            throw ArgumentFault{"--utility: " + inQuotes(text) + " names this utility again",
                                helpOf(arguments.command())};
        }
    }
    for (const std::string& text : arguments.values("--family")) {
        machine.families.push_back(familyNamed(text));
    }
    if (arguments.has("--md-min")) {
        const auto megabytes = wholeNumber(arguments.value("--md-min"), 1, mostLeastMegabytes);
        machine.leastDriveBytes = static_cast<std::uint64_t>(megabytes.value_or(1)) << 20U;
    }
    machine.recording = arguments.value("--recording");
    machine.record = arguments.value("--record");
    for (const std::string& text : arguments.values("--controller")) {
        const std::vector<std::int32_t> numbers =
            controllerNumbers(text).value_or(std::vector<std::int32_t>());
        machine.controllers.insert(machine.controllers.end(), numbers.begin(), numbers.end());
    }
    std::sort(machine.controllers.begin(), machine.controllers.end());
    machine.controllers.erase(std::unique(machine.controllers.begin(), machine.controllers.end()),
                              machine.controllers.end());
    if (arguments.has("--capture-limit-seconds")) {
        machine.captureLimit = std::chrono::seconds(
            wholeNumber(arguments.value("--capture-limit-seconds"), 1, longestCaptureLimit)
                .value_or(1));
    }
    machine.machineType = arguments.value("--machine-type");
    machine.serialNumber = arguments.value("--serial");
    return machine;
}

void readGeneral(const Arguments& arguments, Request& request) {
    const std::string colour = arguments.value("--color");
    request.colours = colour == "always"  ? ColourWish::always
                      : colour == "never" ? ColourWish::never
                                          : ColourWish::automatic;
    if (arguments.has("--width")) {
        request.width = wholeNumber(arguments.value("--width"), smallestWidth, largestWidth);
    }
    request.quiet = arguments.has("--quiet");
    request.verbose = arguments.has("--verbose");
    if (request.quiet && request.verbose) {
        throw ArgumentFault{"--quiet and --verbose exclude each other",
                            helpOf(arguments.command())};
    }
    request.outputFile = arguments.value("--output");
}

/// The words behind the command's name, and those behind "--": at least and at most so many.
std::vector<std::string> wordsOf(const Arguments& arguments, std::size_t least, std::size_t most,
                                 std::string_view what) {
    std::vector<std::string> words = arguments.words();
    words.insert(words.end(), arguments.behindMark().begin(), arguments.behindMark().end());
    const Command command = arguments.command();
    if (words.size() < least) {
        throw ArgumentFault{ownName(command) + " needs " + std::string(what), helpOf(command)};
    }
    if (words.size() > most) {
        throw ArgumentFault{ownName(command) + " does not take " + inQuotes(words.at(most)) +
                                (most == 0 ? "" : " besides " + inQuotes(words.front())),
                            helpOf(command)};
    }
    return words;
}

/// What is read is not written over: it would be gone.
void refuseToReplace(const std::vector<std::string>& inputs, const std::string& option,
                     const std::string& output) {
    if (!output.empty() && output != "-" &&
        std::find(inputs.begin(), inputs.end(), output) != inputs.end()) {
        throw ArgumentFault{option + ": " + inQuotes(output) + " is read, and would be replaced",
                            "name another file with " + option};
    }
}

bool endsIn(const std::string& name, std::string_view ending) {
    return name.size() > ending.size() &&
           text::equalsNoCase(std::string_view(name).substr(name.size() - ending.size()), ending);
}

/// What the ending of a plan's file says.
Format formatOfFile(const std::string& name) {
    constexpr std::array<std::pair<std::string_view, Format>, 4> endings = {{
        {".json", Format::json},
        {".svg", Format::svg},
        {".html", Format::html},
        {".txt", Format::text},
    }};
    const auto* const row = std::find_if(endings.begin(), endings.end(), [&name](const auto& each) {
        return endsIn(name, each.first);
    });
    if (row == endings.end()) {
        throw ArgumentFault{"-o: " + inQuotes(name) + " ends with none of .json, .svg, .html, .txt",
                            "zolexctl plan site.ini -o plan.json"};
    }
    return row->second;
}

std::vector<std::string> acceptedIds(const Arguments& arguments) {
    std::vector<std::string> ids = arguments.partsOf("--accept");
    for (std::string& id : ids) {
        std::transform(id.begin(), id.end(), id.begin(), text::upper);
    }
    return ids;
}

/// How it is planned.
void readPlanning(const Arguments& arguments, PlanOptions& plan) {
    const std::string strategy = arguments.value("--strategy");
    plan.strategy = strategy == "add"       ? StrategyWish::add
                    : strategy == "rebuild" ? StrategyWish::rebuild
                                            : StrategyWish::automatic;
    plan.accept = acceptedIds(arguments);
}

void readPlan(const Arguments& arguments, Request& request) {
    PlanOptions& plan = request.plan;
    plan.classDefaults = arguments.has("--default");
    const std::vector<std::string> words = wordsOf(arguments, 0, 1, "");
    if (words.empty() && !plan.classDefaults) {
        throw ArgumentFault{"plan needs a policies file, or --default", helpOf(Command::plan)};
    }
    if (!words.empty() && plan.classDefaults) {
        throw ArgumentFault{"--default plans without policies, not by " + inQuotes(words.front()),
                            "leave one of them out"};
    }
    plan.file = words.empty() ? "" : words.front();
    // The text goes to standard output all the same.
    if (!request.outputFile.empty() && request.outputFile != "-") {
        plan.savedFormat = formatOfFile(request.outputFile);
        refuseToReplace({plan.file}, "-o", request.outputFile);
        plan.savedFile = std::exchange(request.outputFile, {});
    }
    plan.exitCode = arguments.has("--exit-code");
    plan.rehearse = !arguments.has("--no-rehearsal");
    readPlanning(arguments, plan);
    plan.timings = arguments.values("--timings");
}

void refuseOwnWithoutCertificates(const DestroyWish& wish, const std::string& certificates) {
    if (wish.kind == DestroyWish::Kind::own && certificates.empty()) {
        throw ArgumentFault{"--destroy own needs --certificates: without one nothing is known to "
                            "be your own",
                            "name the folder of the certificates: --certificates proofs"};
    }
}

/// What apply and reset have in common.
void readChanging(const Arguments& arguments, ApplyOptions& apply) {
    if (arguments.has("--destroy")) {
        apply.destroy = destroyWishOf(arguments.value("--destroy")).value_or(DestroyWish());
    }
    apply.careful = arguments.has("--careful");
    apply.keepGoing = arguments.has("--keep-going");
    apply.journal = arguments.value("--journal");
    apply.certificate = arguments.value("--certificate");
    apply.certificates = arguments.value("--certificates");
    apply.log = arguments.value("--log");
    if (arguments.has("--limit-seconds")) {
        apply.stepLimit = std::chrono::seconds(
            wholeNumber(arguments.value("--limit-seconds"), 1, longestCaptureLimit).value_or(1));
    }
    apply.timings = arguments.values("--timings");
    refuseOwnWithoutCertificates(apply.destroy, apply.certificates);
}

/// Options of one way to apply, given with another.
void refuseOthers(const Arguments& arguments, std::string_view way,
                  std::initializer_list<const char*> options, const std::string& help) {
    for (const char* const option : options) {
        if (arguments.has(option)) {
            throw ArgumentFault{std::string(option) + " does not go with " + std::string(way),
                                help};
        }
    }
}

void readApply(const Arguments& arguments, Request& request) {
    ApplyOptions& apply = request.apply;
    const std::vector<std::string> words = wordsOf(arguments, 0, 1, "");
    apply.plan = words.empty() ? "" : words.front();
    apply.policies.file = arguments.value("--policies");
    apply.resume = arguments.value("--resume");
    const int ways = (apply.plan.empty() ? 0 : 1) + (apply.policies.file.empty() ? 0 : 1) +
                     (apply.resume.empty() ? 0 : 1);
    if (ways == 0) {
        throw ArgumentFault{"apply needs a plan, --policies or --resume",
                            "zolexctl plan site.ini -o plan.json, and zolexctl apply plan.json"};
    }
    if (ways > 1) {
        throw ArgumentFault{"apply takes one of a plan, --policies and --resume",
                            helpOf(Command::apply)};
    }
    if (!apply.resume.empty()) {
        refuseOthers(arguments, "--resume",
                     {"--journal", "--controller", "--strategy", "--accept", "--allow-skipped"},
                     "the journal says what the run is for");
    }
    if (!apply.plan.empty()) {
        refuseOthers(arguments, "a plan that is made already", {"--strategy", "--accept"},
                     "plan again, with this option: zolexctl plan site.ini -o plan.json");
    }
    readPlanning(arguments, apply.policies);
    apply.allowSkipped = arguments.has("--allow-skipped");
    readChanging(arguments, apply);
}

void readDiff(const Arguments& arguments, Request& request) {
    request.diff.file = wordsOf(arguments, 1, 1, "a policies file or a plan").front();
    request.diff.strict = arguments.has("--strict");
    refuseToReplace({request.diff.file}, "-o", request.outputFile);
}

void readShow(const Arguments& arguments, Request& request) {
    const std::vector<std::string> words = wordsOf(arguments, 0, 1, "");
    if (!words.empty() && arguments.has("--recording")) {
        throw ArgumentFault{"show takes one recording, not " + inQuotes(words.front()) + " and " +
                                inQuotes(request.machine.recording),
                            helpOf(Command::show)};
    }
    request.show.file = words.empty() ? "" : words.front();
    refuseToReplace({request.show.file}, "-o", request.outputFile);
    request.show.exact = arguments.has("--exact");
    if (request.show.exact && request.format != Format::policies) {
        throw ArgumentFault{"--exact is for policies", "zolexctl show --as policies --exact"};
    }
}

void readCheck(const Arguments& arguments, Request& request) {
    request.check.files = wordsOf(arguments, 1, ~std::size_t{0}, "a policies file");
    request.check.machines = arguments.values("--machine");
    request.check.select = arguments.partsOf("--select");
    request.check.ignore = arguments.partsOf("--ignore");
    request.check.asOld = arguments.has("--as-old");
    request.check.fix = arguments.has("--fix");
    refuseToReplace(request.check.files, "-o", request.outputFile);
    refuseToReplace(request.check.machines, "-o", request.outputFile);
}

void readRehearse(const Arguments& arguments, Request& request) {
    RehearseOptions& rehearse = request.rehearse;
    std::vector<std::string> words = wordsOf(arguments, 1, ~std::size_t{0}, "a policies file");
    rehearse.policies.file = words.front();
    words.erase(words.begin());
    if (words.empty()) {
        throw ArgumentFault{"rehearse needs recordings, or folders of them",
                            "zolexctl rehearse " + typedWord(rehearse.policies.file) + " fleet/"};
    }
    rehearse.recordings = std::move(words);
    readPlanning(arguments, rehearse.policies);
    rehearse.everyFault = arguments.has("--every-fault");
    rehearse.allowSkipped = arguments.has("--allow-skipped");
    rehearse.page = arguments.value("--html");
    refuseToReplace({rehearse.policies.file}, "--html", rehearse.page);
    refuseToReplace({rehearse.policies.file}, "-o", request.outputFile);
    refuseToReplace(rehearse.recordings, "--html", rehearse.page);
    refuseToReplace(rehearse.recordings, "-o", request.outputFile);
    for (const std::string& text : arguments.values("--what-if")) {
        Supposition supposition = suppositionOf(text).value_or(Supposition());
        for (const Supposition& other : rehearse.suppositions) {
            if (other.location == supposition.location) {
                throw ArgumentFault{"--what-if: two things are supposed of drive " +
                                        printable(supposition.location),
                                    "suppose one at a time"};
            }
        }
        rehearse.suppositions.push_back(std::move(supposition));
    }
    if (arguments.has("--jobs")) {
        rehearse.jobs = wholeNumber(arguments.value("--jobs"), 1, mostJobs).value_or(1);
    }
}

/// "STORCLI" of "t:STORCLI".
std::string withoutSpecifier(const std::string& text) {
    const bool hasOne = text.starts_with("t:") || text.starts_with("T:");
    return hasOne ? text.substr(2) : text;
}

void readConvert(const Arguments& arguments, Request& request) {
    const bool isFrom = arguments.has("--from");
    request.convert.file =
        wordsOf(arguments, 1, 1, isFrom ? "a RAID configuration" : "a policies file").front();
    const std::string model = arguments.value("--model");
    if (const std::size_t equals = model.find('='); equals != std::string::npos) {
        if (isFrom || arguments.has("--to") || arguments.has("--machine")) {
            throw ArgumentFault{"--model with two types takes policies alone",
                                "zolexctl convert --model " + model + " POLICIES"};
        }
        request.convert.to = "policies";
        request.convert.fromType = withoutSpecifier(model.substr(0, equals));
        request.convert.toType = withoutSpecifier(model.substr(equals + 1));
        refuseToReplace({request.convert.file}, "-o", request.outputFile);
        return;
    }
    if (isFrom == arguments.has("--to")) {
        throw ArgumentFault{isFrom ? "convert takes --to or --from, not both"
                                   : "convert needs --to policies, --to ironic or --from ironic",
                            helpOf(Command::convert)};
    }
    request.convert.to = arguments.value("--to");
    request.convert.from = arguments.value("--from");
    request.convert.model = arguments.value("--model");
    if (!isFrom && arguments.has("--model")) {
        throw ArgumentFault{"--model is for --from ironic", helpOf(Command::convert)};
    }
    const std::vector<std::string> machines = arguments.values("--machine");
    if (machines.size() > 1) {
        throw ArgumentFault{"convert takes one --machine",
                            "zolexctl record -o server.zrec, and --machine server.zrec"};
    }
    if (machines.empty() && request.convert.to == "ironic") {
        throw ArgumentFault{"convert --to ironic needs --machine: Ironic wants sizes, and drives "
                            "by name",
                            "a recording, or zolexctl plan POLICIES -o plan.json, and --machine "
                            "plan.json"};
    }
    if (machines.empty() && !isFrom) {
        throw ArgumentFault{"convert needs --machine: the drives are those of one server",
                            "zolexctl record -o server.zrec, and --machine server.zrec"};
    }
    request.convert.machine = machines.empty() ? "" : machines.front();
    refuseToReplace({request.convert.file, request.convert.machine}, "-o", request.outputFile);
}

void readReplay(const Arguments& arguments, Request& request) {
    if (arguments.words().empty()) {
        throw ArgumentFault{"replay needs a recording", helpOf(Command::replay)};
    }
    if (arguments.words().size() > 1) {
        throw ArgumentFault{"replay does not take " + inQuotes(arguments.words().at(1)),
                            "the command stands behind --: zolexctl replay FILE -- show"};
    }
    if (arguments.behindMark().empty()) {
        throw ArgumentFault{"replay needs a command behind --", helpOf(Command::replay)};
    }
    request.replay.file = arguments.words().front();
    request.replay.command = arguments.behindMark();
}

void readGuard(const Arguments& arguments, Request& request) {
    const char* const zolexCall = "zolexctl guard -- zolex /r /y /f:site.ini";
    if (!arguments.words().empty()) {
        throw ArgumentFault{"guard does not take " + inQuotes(arguments.words().front()),
                            std::string("zolex stands behind --: ") + zolexCall};
    }
    if (arguments.behindMark().empty()) {
        throw ArgumentFault{"guard needs zolex and its arguments behind --", zolexCall};
    }
    GuardOptions& guard = request.guard;
    guard.command = arguments.behindMark();
    if (arguments.has("--destroy")) {
        guard.destroy = destroyWishOf(arguments.value("--destroy")).value_or(DestroyWish());
    }
    guard.certificates = arguments.value("--certificates");
    refuseOwnWithoutCertificates(guard.destroy, guard.certificates);
    guard.accept = acceptedIds(arguments);
}

void readRequest(const Arguments& arguments, Request& request) {
    readGeneral(arguments, request);
    request.format = readFormat(arguments);
    request.machine = readMachine(arguments);
    refuseToReplace({request.machine.recording}, "-o", request.outputFile);
    refuseToReplace({request.machine.recording}, "--record", request.machine.record);
    switch (request.command) {
    case Command::plan:
        return readPlan(arguments, request);
    case Command::apply:
        return readApply(arguments, request);
    case Command::reset:
        wordsOf(arguments, 0, 0, "");
        return readChanging(arguments, request.apply);
    case Command::diff:
        return readDiff(arguments, request);
    case Command::show:
        return readShow(arguments, request);
    case Command::check:
        return readCheck(arguments, request);
    case Command::doctor:
        wordsOf(arguments, 0, 0, "");
        return;
    case Command::record:
        wordsOf(arguments, 0, 0, "");
        request.record.redact = arguments.has("--redact");
        return;
    case Command::replay:
        return readReplay(arguments, request);
    case Command::rehearse:
        return readRehearse(arguments, request);
    case Command::convert:
        return readConvert(arguments, request);
    case Command::guard:
        return readGuard(arguments, request);
    case Command::explain:
        request.code = wordsOf(arguments, 1, 1, "a code, such as ZX411 or 11").front();
        return;
    case Command::none:
        return;
    }
}

} // namespace

ArgumentReading readArguments(const std::vector<std::string>& arguments) {
    ArgumentReading reading;
    try {
        const Arguments own(arguments);
        reading.request.command = own.command();
        reading.wantsVersion = own.has("--version");
        reading.wantsHelp = own.has("--help");
        if (!reading.wantsHelp && !reading.wantsVersion && own.command() != Command::none) {
            readRequest(own, reading.request);
        }
    } catch (const ArgumentFault& fault) {
        reading.fault = fault.what;
        reading.help = fault.help;
    }
    return reading;
}

} // namespace zolex::companion
