#include "megacli/Megacli.h"

#include "megacli/Listings.h"
#include "megacli/Tokens.h"
#include "model/Operations.h"
#include "model/Text.h"

#include <array>
#include <optional>
#include <utility>

namespace zolex_sim::megacli {
namespace {

constexpr int invalidInput = 0x01;

/// One command line on its way.
struct Call {
    Server& server;
    Tokens tokens;
    Controller* controller = nullptr; ///< the adapter that the command line names
    std::int64_t adapter = -1;
};

PlayResult ended(int exitCode, const std::string& text, bool changed = false) {
    return {exitCode, banner() + text + formatted("\nExit Code: 0x%02x\n", exitCode), changed};
}

PlayResult invalid(const Call& call) {
    if (call.tokens.atEnd()) {
        return ended(invalidInput, "Invalid input: the command line is not complete\n");
    }
    return ended(invalidInput,
                 "Invalid input at or near token " + std::string(call.tokens.current()) + "\n");
}

/// Takes the adapter option; false when there is none, or a second one.
bool takeAdapter(Call& call) {
    return call.adapter < 0 && call.tokens.takeNumbered("-a", call.adapter);
}

/// Finds the controller once the whole command line has been read.
std::optional<PlayResult> findAdapter(Call& call) {
    if (!call.tokens.atEnd() || call.adapter < 0) {
        return invalid(call);
    }
    const std::vector<Controller*> adapters = call.server.adaptersOf("MEGACLI");
    if (static_cast<std::uint64_t>(call.adapter) >= adapters.size()) {
        return ended(invalidInput, "User specified controller is not present.\n");
    }
    call.controller = adapters[static_cast<std::size_t>(call.adapter)];
    return std::nullopt;
}

// Exit codes in the order of the kinds. 0x31 is none of them: callers take it for a success.
constexpr std::array<int, 10> refusalCodes = {
    0x3c, // the level is not supported
    0x0c, // no such drive
    0x03, // a drive named twice
    0x26, // a drive that is not free
    0x1b, // the number of drives or spans
    0x1c, // the stripe size
    0x1d, // the size
    0x1e, // too many virtual disks
    0x0c, // no such virtual disk
    0x32, // a drive that is no hot spare
};
static_assert(refusalCodes.size() == static_cast<std::size_t>(RefusalKind::notHotSpare) + 1);

PlayResult refused(const Call& call, const std::string& what, const Refusal& refusal) {
    return ended(refusalCodes[static_cast<std::size_t>(refusal.kind)],
                 formatted("Adapter %lld: ", static_cast<long long>(call.adapter)) + what +
                     " Failed\n\nFW error description: \n  " + refusal.reason + "  \n");
}

/// The array that the request asks to share: one of exactly its drives, none of which is failed.
std::optional<std::size_t> sharedArray(const Controller& controller,
                                       const NewLogicalDrive& request) {
    for (const std::vector<DriveLocation>& span : request.spans) {
        for (const DriveLocation& location : span) {
            const Drive* drive = controller.driveAt(location);
            if (drive == nullptr || drive->status != DriveStatus::online) {
                return std::nullopt;
            }
        }
    }
    return controller.arrayOf(request.spans);
}

PlayResult list(Call& call, std::string (*listing)(const Controller&, int)) {
    while (takeAdapter(call)) {
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    return {0, listing(*call.controller, static_cast<int>(call.adapter)), false};
}

PlayResult listLogicalDrives(Call& call) {
    return list(call, logicalDriveListing);
}
PlayResult listDrives(Call& call) {
    return list(call, driveListing);
}
PlayResult listAdapter(Call& call) {
    return list(call, adapterListing);
}

// The level words of the creating commands.
struct LevelWord {
    std::string_view word;
    RaidLevel level;
};
// clang-format off
constexpr std::array<LevelWord, 7> levelWords = {{
    {"R0",  RaidLevel::raid0},
    {"R1",  RaidLevel::raid1},
    {"R5",  RaidLevel::raid5},
    {"R6",  RaidLevel::raid6},
    {"R10", RaidLevel::raid10},
    {"R50", RaidLevel::raid50},
    {"R60", RaidLevel::raid60},
}};
// clang-format on

bool takeLevel(Call& call, bool spanned, RaidLevel& level) {
    for (const LevelWord& entry : levelWords) {
        if (rulesOf(entry.level).spanned == spanned && call.tokens.take(entry.word)) {
            level = entry.level;
            return true;
        }
    }
    return false;
}

bool takeSpans(Call& call, NewLogicalDrive& request) {
    while (call.tokens.take("-Array" + std::to_string(request.spans.size()))) {
        request.spans.emplace_back();
        if (!call.tokens.takeLocations(request.spans.back())) {
            return false;
        }
    }
    return !request.spans.empty();
}

/// Takes one setting that has not been given yet.
bool takeSetting(Call& call, NewLogicalDrive& request) {
    Tokens& tokens = call.tokens;
    const std::string word(tokens.current());
    if (const auto policy = writePolicyNamed(word); policy && !request.writePolicy) {
        request.writePolicy = policy;
        return tokens.take(word);
    }
    if (const auto policy = readPolicyNamed(word); policy && !request.readPolicy) {
        request.readPolicy = policy;
        return tokens.take(word);
    }
    std::int64_t number = 0;
    if (!request.stripeKb && tokens.takeNumbered("-strpsz", number)) {
        // What no stripe size can be is refused like one that the controller does not know.
        request.stripeKb = number > 1'000'000 ? 0 : static_cast<int>(number);
        return true;
    }
    if (!request.sizeMb && tokens.takeNumbered("-sz", number)) {
        request.sizeMb = number;
        return true;
    }
    return takeAdapter(call);
}

bool takeSettings(Call& call, NewLogicalDrive& request) {
    while (!call.tokens.atEnd()) {
        const bool braced = call.tokens.take("{");
        if (!takeSetting(call, request) || (braced && !call.tokens.take("}"))) {
            return false;
        }
    }
    return true;
}

PlayResult create(Call& call, NewLogicalDrive& request) {
    if (!takeSettings(call, request)) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    Controller& controller = *call.controller;
    const std::size_t number = controller.nextNumber();
    const std::optional<std::size_t> array = sharedArray(controller, request);
    if (const std::optional<Refusal> refusal =
            array ? zolex_sim::addLogicalDrive(controller, *array, request)
                  : createLogicalDrive(controller, request)) {
        return refused(call, "Configure Adapter", *refusal);
    }
    const auto adapter = static_cast<long long>(call.adapter);
    return ended(0,
                 formatted("Adapter %lld: Created VD %zu\n\nAdapter %lld: Configured the "
                           "Adapter!!\n",
                           adapter, number, adapter),
                 true);
}

PlayResult addLogicalDrive(Call& call) {
    NewLogicalDrive request;
    request.spans.emplace_back();
    if (!takeLevel(call, false, request.level) ||
        !call.tokens.takeLocations(request.spans.back())) {
        return invalid(call);
    }
    return create(call, request);
}

PlayResult addSpannedDrive(Call& call) {
    NewLogicalDrive request;
    if (!takeLevel(call, true, request.level) || !takeSpans(call, request)) {
        return invalid(call);
    }
    return create(call, request);
}

/// Takes "-L0" or "-L0,1,2".
bool takeNumbers(Call& call, std::vector<std::size_t>& numbers) {
    std::int64_t number = 0;
    if (!call.tokens.takeNumbered("-L", number)) {
        return false;
    }
    numbers.push_back(static_cast<std::size_t>(number));
    while (call.tokens.take(",")) {
        const std::optional<std::int64_t> further = call.tokens.takeNumber(greatestPlaceNumber);
        if (!further) {
            return false;
        }
        numbers.push_back(static_cast<std::size_t>(*further));
    }
    return true;
}

PlayResult deleteLogicalDrives(Call& call) {
    std::vector<std::size_t> numbers;
    if (!takeNumbers(call, numbers) || !takeAdapter(call)) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    if (const std::optional<Refusal> refusal = removeLogicalDrives(*call.controller, numbers)) {
        return refused(call, "Delete Virtual Drive", *refusal);
    }
    std::string text;
    for (const std::size_t number : numbers) {
        text += formatted("Adapter %lld: Deleted Virtual Drive-%zu(target id-%zu)\n",
                          static_cast<long long>(call.adapter), number, number);
    }
    return ended(0, text, true);
}

/// What "-PDHSP" does with the drives that it names.
struct SpareDeed {
    const char* name; ///< "Set"
    std::optional<Refusal> (*run)(Controller&, const std::vector<DriveLocation>&);
};

/// Takes "-Set", with or without braces, or "-Rmv".
std::optional<SpareDeed> takeSpareDeed(Tokens& tokens) {
    if (tokens.take("-Rmv")) {
        return SpareDeed{"Remove", removeSpares};
    }
    const bool braced = tokens.take("{");
    if (!tokens.take("-Set") || (braced && !tokens.take("}"))) {
        return std::nullopt;
    }
    return SpareDeed{"Set", addSpares};
}

PlayResult changeSpares(Call& call) {
    const std::optional<SpareDeed> deed = takeSpareDeed(call.tokens);
    std::vector<DriveLocation> locations;
    if (!deed || !call.tokens.take("-PhysDrv") || !call.tokens.takeLocations(locations) ||
        !takeAdapter(call)) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    if (const std::optional<Refusal> refusal = deed->run(*call.controller, locations)) {
        return refused(call, std::string(deed->name) + " Physical Drive as Hot Spare", *refusal);
    }
    std::string text;
    for (const DriveLocation& location : locations) {
        text += formatted("Adapter: %lld: %s Physical Drive at %s as Hot Spare Success.\n",
                          static_cast<long long>(call.adapter), deed->name,
                          placeText(location).c_str());
    }
    return ended(0, text, true);
}

bool takeClearOptions(Call& call) {
    bool silent = false;
    while (!call.tokens.atEnd()) {
        if (takeAdapter(call)) {
            continue;
        }
        if (silent || !call.tokens.take("-Silent")) {
            return false;
        }
        silent = true;
    }
    return true;
}

PlayResult clearAll(Call& call) {
    if (!takeClearOptions(call)) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    clearConfiguration(*call.controller);
    return ended(0,
                 formatted("Adapter %lld: Configuration is Cleared.\n",
                           static_cast<long long>(call.adapter)),
                 true);
}

/// Counts or clears the foreign configurations.
PlayResult playForeign(Call& call) {
    const bool scans = call.tokens.take("-Scan");
    if ((!scans && !call.tokens.take("-Clear")) || !takeClearOptions(call)) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    const auto adapter = static_cast<long long>(call.adapter);
    const std::size_t count = call.controller->foreignGroups().size();
    if (count == 0) {
        return ended(0,
                     formatted("There is no foreign configuration on controller %lld.\n", adapter));
    }
    if (scans) {
        return ended(0, formatted("There are %zu foreign configuration(s) on controller %lld.\n",
                                  count, adapter));
    }
    clearForeign(*call.controller);
    std::string text;
    for (std::size_t number = 0; number < count; ++number) {
        text += formatted("Foreign configuration %zu is cleared on controller %lld.\n", number,
                          adapter);
    }
    return ended(0, text, true);
}

// clang-format off
constexpr std::array<Command<Call>, 9> commands = {{
    {"-LdPdInfo",   listLogicalDrives},
    {"-PdList",     listDrives},
    {"-AdpAllInfo", listAdapter},
    {"-CfgLdAdd",   addLogicalDrive},
    {"-CfgSpanAdd", addSpannedDrive},
    {"-CfgLdDel",   deleteLogicalDrives},
    {"-PDHSP",      changeSpares},
    {"-CfgClr",     clearAll},
    {"-CfgForeign", playForeign},
}};
// clang-format on

} // namespace

PlayResult play(Server& server, const std::vector<std::string>& options) {
    Call call{server, Tokens(options)};
    const Command<Call>* command = takeCommand(commands, call.tokens);
    return command == nullptr ? invalid(call) : command->run(call);
}

} // namespace zolex_sim::megacli
