#include "storcli/Storcli.h"

#include "model/Text.h"
#include "storcli/Changes.h"
#include "storcli/Listing.h"
#include "storcli/Reply.h"
#include "storcli/Targets.h"
#include "storcli/Words.h"

#include <algorithm>
#include <utility>

namespace zolex_sim::storcli {
namespace {

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

/// The word in lower case up to its "="; "del" is written out.
std::string verbWord(const std::string& word) {
    const std::size_t mark = std::min(word.find('='), word.size());
    std::string result = lowered(word.substr(0, mark)) + word.substr(mark);
    return result == "del" ? "delete" : result;
}

/// A command line without the words that are about its form.
struct CommandLine {
    Words words;
    bool json = false;
    bool nolog = false;
};

CommandLine readCommandLine(const std::vector<std::string>& arguments) {
    CommandLine line;
    line.words = arguments;
    while (!line.words.empty()) {
        if (equalsIgnoringCase(line.words.back(), "nolog")) {
            line.nolog = true;
        } else if (equalsIgnoringCase(line.words.back(), "j")) {
            line.json = true;
        } else {
            break;
        }
        line.words.pop_back();
    }
    return line;
}

/// Whether the words begin with those of a verb, the last one perhaps with a value.
bool begins(const Words& words, const std::string& verb) {
    const std::vector<std::string> wanted = splitWords(verb);
    if (words.size() < wanted.size()) {
        return false;
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (words[i] != wanted[i] && !(i > 0 && words[i].starts_with(wanted[i] + "="))) {
            return false;
        }
    }
    return true;
}

template <typename Change>
const Verb<Change>* verbOf(const std::vector<Verb<Change>>& verbs, const Words& words) {
    const auto found = std::find_if(verbs.begin(), verbs.end(), [&](const Verb<Change>& verb) {
        return begins(words, verb.words);
    });
    return found == verbs.end() ? nullptr : &*found;
}

bool isShow(const Words& words, const char* rest = "") {
    return join(words, " ") == std::string("show") + (*rest == '\0' ? "" : " ") + rest;
}

/// One command for one controller.
class Session {
  public:
    Session(Controller& controller, std::size_t number, const Target& target, const Words& words,
            const Effect* effect)
        : controller_(controller), view_{controller, number, effect}, target_(target),
          words_(words) {
        reply_.controller = number;
    }

    Reply play() {
        if (view_.effect != nullptr && view_.effect->kind == EffectKind::refused) {
            reply_.description = "Operation Failed.";
            tell("Ctrl", view_.number, Refusal{view_.effect->errorCode, "-"});
            return std::move(reply_);
        }
        switch (target_.subject) {
        case Subject::controller:
            onController();
            break;
        case Subject::enclosures:
            onEnclosures();
            break;
        case Subject::drives:
            onDrives();
            break;
        case Subject::volumes:
            onVolumes();
            break;
        case Subject::groups:
            onGroups();
            break;
        case Subject::foreign:
            onForeign();
            break;
        case Subject::cache:
            onCache();
            break;
        }
        return std::move(reply_);
    }

  private:
    void tell(const std::string& key, const Value& thing, const std::optional<Refusal>& refusal) {
        reply_.tell(controller_.version, key, thing, refusal);
    }

    void unsupported() { reply_.fail({ownRefusal, "Un-supported Command"}); }

    /// Newer versions write the end of their descriptions in small letters.
    void describe(std::string text) {
        constexpr std::string_view word = "Succeeded";
        const std::size_t place = text.find(word);
        if (controller_.version >= Version::v3703 && place != std::string::npos) {
            text[place] = 's';
        }
        reply_.description = std::move(text);
    }

    void onController() {
        if (isShow(words_) || isShow(words_, "all")) {
            reply_.data = controllerData(view_, words_.size() > 1);
            return;
        }
        const Verb<ControllerChange>* const verb = verbOf(controllerVerbs(), words_);
        if (verb == nullptr) {
            unsupported();
            return;
        }
        const std::optional<Refusal> refusal = verb->change(controller_, words_);
        if (!refusal) {
            describe(verb->done);
            reply_.changed = true;
            return;
        }
        reply_.fail(*refusal);
        Value row = Value::object();
        if (verb->words == "add vd") {
            row.add("VD", "0 KB").add("ErrCd", refusal->code).add("Status", "Failed");
            reply_.details.add(row.add("Description", refusal->message));
        } else {
            reply_.errorCode = 0;
            tell("Ctrl", view_.number, refusal);
        }
    }

    void onEnclosures() {
        if (!isShow(words_) && !isShow(words_, "all")) {
            unsupported();
            return;
        }
        Value rows = Value::list();
        for (const Enclosure& enclosure : controller_.enclosures) {
            if (!target_.enclosures ||
                std::find(target_.enclosures->begin(), target_.enclosures->end(), enclosure.id) !=
                    target_.enclosures->end()) {
                Value row = Value::object();
                row.add("EID", enclosure.id).add("State", "OK").add("Slots", enclosure.slots);
                rows.add(row.add("ProdID", enclosure.product));
            }
        }
        if (rows.isEmpty()) {
            reply_.fail({ownRefusal, "Enclosure not found"});
            return;
        }
        reply_.data.add("Properties", std::move(rows));
    }

    /// The drives that the path names and that there are.
    [[nodiscard]] std::vector<DriveLocation> namedDrives() const {
        std::vector<DriveLocation> places;
        for (const Drive& drive : controller_.drives) {
            const bool inEnclosure = drive.place.enclosure.has_value();
            if (drive.isThere() && inEnclosure == target_.inEnclosures &&
                named(target_.items, drive.place.slot) &&
                (!inEnclosure || named(target_.enclosures, *drive.place.enclosure))) {
                places.push_back(drive.place);
            }
        }
        return places;
    }
    static bool named(const Numbers& numbers, int number) {
        return !numbers || std::find(numbers->begin(), numbers->end(), number) != numbers->end();
    }

    /// The rows of the drives that the path names and that there are not.
    void tellMissingDrives() {
        if (!target_.items || (target_.inEnclosures && !target_.enclosures)) {
            return;
        }
        const std::vector<int> none = {-1};
        for (const int enclosure : target_.inEnclosures ? *target_.enclosures : none) {
            for (const int slot : *target_.items) {
                const DriveLocation place{enclosure < 0 ? std::nullopt : std::optional(enclosure),
                                          slot};
                const Drive* const drive = controller_.driveAt(place);
                if (drive == nullptr || !drive->isThere()) {
                    tell("Drive", pathText(view_.number, place),
                         Refusal{ownRefusal, "Drive not found"});
                }
            }
        }
    }

    void onDrives() {
        const std::vector<DriveLocation> places = namedDrives();
        const bool shows = isShow(words_) || isShow(words_, "all");
        const Verb<DriveChange>* const verb = verbOf(driveVerbs(), words_);
        if (!shows && verb == nullptr && !isShow(words_, "rebuild")) {
            unsupported();
            return;
        }
        if (places.empty() && (!target_.items || (target_.inEnclosures && !target_.enclosures))) {
            reply_.fail({ownRefusal, "No drive found!"});
            return;
        }
        tellMissingDrives();
        if (verb != nullptr) {
            changeDrives(*verb, places);
        } else if (shows) {
            showDrives(places, words_.size() > 1);
        } else {
            showRebuild(places);
        }
    }

    void changeDrives(const Verb<DriveChange>& verb, const std::vector<DriveLocation>& places) {
        for (const DriveLocation& place : places) {
            const std::optional<Refusal> refusal =
                verb.change(controller_, *controller_.driveAt(place), words_);
            reply_.changed = reply_.changed || !refusal;
            tell("Drive", pathText(view_.number, place), refusal);
        }
        describe(reply_.errorCode == 0 ? verb.done : verb.refused);
        if (reply_.errorCode == 0) {
            reply_.details = Value::list();
        }
    }

    void showDrives(const std::vector<DriveLocation>& places, bool all) {
        Value rows = Value::list();
        for (const DriveLocation& place : places) {
            const Drive& drive = *controller_.driveAt(place);
            const bool sick = all && view_.effect != nullptr &&
                              view_.effect->kind == EffectKind::sickDrive &&
                              place == affectedDrive(view_);
            tell("Drive", pathText(view_.number, place),
                 sick ? std::optional(Refusal{driveAnswersNot, "-"}) : std::nullopt);
            rows.add(driveRow(view_, drive));
            if (all) {
                const std::string name = "Drive " + pathText(view_.number, place);
                reply_.data.add(name, Value::list().add(driveRow(view_, drive)));
                if (!sick) {
                    reply_.data.add(name + " - Detailed Information", driveDetails(view_, drive));
                }
            }
        }
        if (!all && !rows.isEmpty()) {
            reply_.data.add("Drive Information", std::move(rows));
        }
        describe(reply_.errorCode == 0 ? "Show Drive Information Succeeded."
                                       : "Show Drive Information Failed.");
        if (reply_.errorCode == 0) {
            reply_.details = Value::list();
        }
    }

    void showRebuild(const std::vector<DriveLocation>& places) {
        Value rows = Value::list();
        for (const DriveLocation& place : places) {
            const bool rebuilds = controller_.driveAt(place)->state == DriveState::rebuild;
            Value row = Value::object();
            row.add("Drive-ID", pathText(view_.number, place));
            row.add("Progress%", rebuilds ? Value(37) : Value("-"));
            row.add("Status", rebuilds ? "In progress" : "Not in progress");
            rows.add(row.add("Estimated Time Left", rebuilds ? "2 Hours 11 Minutes" : "-"));
        }
        reply_.data.add("Drive Rebuild Status", std::move(rows));
        describe("Show Drive Rebuild Status Succeeded.");
    }

    void onVolumes() {
        std::vector<int> numbers;
        for (const Volume& volume : controller_.volumes) {
            if (named(target_.items, volume.number)) {
                numbers.push_back(volume.number);
            }
        }
        const Verb<VolumeChange>* const verb = verbOf(volumeVerbs(), words_);
        const bool all = isShow(words_, "all");
        if (verb == nullptr && !isShow(words_) && !all && !isShow(words_, "init")) {
            unsupported();
            return;
        }
        for (const int number : target_.items.value_or(std::vector<int>())) {
            if (controller_.volumeNumbered(number) == nullptr) {
                reply_.description = verb != nullptr ? verb->refused : "Invalid VD number";
                tell("VD", number, Refusal{ownRefusal, "Invalid VD number"});
            }
        }
        if (!target_.items && numbers.empty()) {
            noVolumes(verb != nullptr);
        } else if (verb != nullptr) {
            changeVolumes(*verb, numbers);
        } else {
            showVolumes(numbers, all);
        }
    }

    void noVolumes(bool change) {
        if (change) {
            reply_.fail({ownRefusal, "No VDs have been configured"});
        } else {
            reply_.description = "No VDs have been configured.";
        }
    }

    void changeVolumes(const Verb<VolumeChange>& verb, const std::vector<int>& numbers) {
        for (const int number : numbers) {
            const std::optional<Refusal> refusal = verb.change(controller_, number, words_);
            reply_.changed = reply_.changed || !refusal;
            tell("VD", number, refusal);
        }
        describe(reply_.errorCode == 0 ? verb.done : verb.refused);
    }

    void showVolumes(const std::vector<int>& numbers, bool all) {
        Value rows = Value::list();
        for (const int number : numbers) {
            const Volume& volume = *controller_.volumeNumbered(number);
            if (isShow(words_, "init")) {
                Value row = Value::object();
                row.add("VD", number).add("Operation", "INIT").add("Progress%", "-");
                rows.add(row.add("Status", "Not in progress").add("Estimated Time Left", "-"));
                continue;
            }
            rows.add(volumeRow(view_, volume));
            if (all) {
                reply_.data.add(formatted("/c%zu/v%d", view_.number, number),
                                Value::list().add(volumeRow(view_, volume)));
                reply_.data.add(formatted("PDs for VD %d", number), memberRows(view_, volume));
                reply_.data.add(formatted("VD%d Properties", number),
                                volumeProperties(view_, volume));
            }
        }
        if (!all && !rows.isEmpty()) {
            reply_.data.add(isShow(words_, "init") ? "VD Operation Status" : "Virtual Drives",
                            std::move(rows));
        }
    }

    void onGroups() {
        const bool known =
            !target_.items ||
            std::all_of(target_.items->begin(), target_.items->end(), [&](int number) {
                return static_cast<std::size_t>(number) < controller_.groups.size();
            });
        if (!isShow(words_) && !isShow(words_, "all")) {
            unsupported();
        } else if (!known) {
            reply_.fail({ownRefusal, "Invalid drive group number"});
        } else {
            reply_.data = groupData(view_);
            describe("Show Diskgroup Succeeded");
        }
    }

    void onForeign() {
        const bool shows = isShow(words_) || isShow(words_, "all");
        if (!shows && (words_.empty() || words_.front() != "delete")) {
            unsupported();
            return;
        }
        const std::vector<const ForeignSet*> sets = foreignSets(controller_);
        const bool whole = std::none_of(sets.begin(), sets.end(),
                                        [](const ForeignSet* set) { return set->missing > 0; });
        if (sets.empty()) {
            reply_.description = "No foreign configuration found.";
            tell("Controller", view_.number, Refusal{wrongState, "No foreign configuration"});
        } else if (!shows) {
            clearForeign(controller_);
            reply_.changed = true;
            describe("Successfully deleted foreign configuration");
        } else if (!whole) {
            reply_.description = "Operation on foreign configuration Failed";
            tell("Controller", view_.number,
                 Refusal{foreignIncomplete, "incomplete foreign configuration"});
        } else {
            reply_.data = foreignData(view_);
            reply_.description = "Operation on foreign configuration Succeeded";
        }
    }

    void onCache() {
        if (!isShow(words_) && !isShow(words_, "all")) {
            unsupported();
            return;
        }
        if (controller_.battery == Battery::none) {
            reply_.description = "None";
            tell("Ctrl", view_.number, Refusal{ownRefusal, "Cachevault is absent!"});
            return;
        }
        Value row = Value::object();
        row.add("Property", "State");
        row.add("Value", controller_.battery == Battery::optimal ? "Optimal" : "Failed");
        reply_.data.add("Cachevault_Info", Value::list().add(row));
    }

    Controller& controller_;
    View view_;
    const Target& target_;
    const Words& words_;
    Reply reply_;
};

/// A controller and its number.
struct Numbered {
    std::size_t number;
    Controller* controller;
};

/// The controllers that this utility drives. Those of the second generation have their own, and
/// are not seen by this one.
std::vector<Numbered> drivenControllers(Server& server) {
    std::vector<Numbered> found;
    for (Controller* const controller : server.storcliInPciOrder()) {
        if (controller->version != Version::second) {
            found.push_back({found.size(), controller});
        }
    }
    return found;
}

Reply overview(const std::vector<Numbered>& controllers) {
    Reply reply;
    Value rows = Value::list();
    Value adapters = Value::list();
    for (const Numbered& numbered : controllers) {
        const View view{*numbered.controller, numbered.number};
        if (numbered.controller->hostAdapter) {
            adapters.add(adapterRow(view));
        } else {
            rows.add(overviewRow(view));
        }
    }
    reply.data.add("Number of Controllers", controllers.size());
    reply.data.add("Host Name", "virtual").add("Operating System ", "Linux 6.1.0-18-amd64");
    if (!rows.isEmpty()) {
        reply.data.add("System Overview", std::move(rows));
    }
    if (!adapters.isEmpty()) {
        reply.data.add("IT System Overview", std::move(adapters));
    }
    return reply;
}

Reply refusalOf(const std::string& text, std::optional<std::size_t> controller = std::nullopt) {
    Reply reply;
    reply.controller = controller;
    reply.fail({ownRefusal, text});
    return reply;
}

std::vector<Reply> answer(Server& server, const Words& words) {
    const std::vector<Numbered> controllers = drivenControllers(server);
    if (isShow(words) || isShow(words, "all") || isShow(words, "ctrlcount")) {
        return {overview(controllers)};
    }
    const std::optional<Target> target = words.empty() ? std::nullopt : parseTarget(words.front());
    if (!target) {
        return {refusalOf(words.empty() ? "syntax error, unexpected $end"
                                        : "syntax error, unexpected " + words.front())};
    }
    const Words rest(words.begin() + 1, words.end());
    std::vector<Reply> replies;
    for (const Numbered& numbered : controllers) {
        if (!target->controller || *target->controller == numbered.number) {
            replies.push_back(Session(*numbered.controller, numbered.number, *target, rest,
                                      server.effect ? &*server.effect : nullptr)
                                  .play());
        }
    }
    if (!replies.empty()) {
        return replies;
    }
    return {controllers.empty()
                ? refusalOf("No Controller found")
                : refusalOf(formatted("Controller %zu not found", target->controller.value_or(0)),
                            target->controller.value_or(0))};
}

/// Does to the answers what a fault asks for.
void spoil(const std::optional<Effect>& effect, std::vector<Reply>& replies) {
    for (Reply& reply : replies) {
        if (effect && effect->kind == EffectKind::unknownKey && !reply.data.isEmpty()) {
            reply.data.addEverywhere("Norvik Extension", "on");
        }
        if (effect && effect->kind == EffectKind::missingSection) {
            reply.data.remove(effect->section);
        }
    }
}

} // namespace

PlayResult play(Server& server, const std::vector<std::string>& arguments) {
    CommandLine line = readCommandLine(arguments);
    std::transform(line.words.begin(), line.words.end(), line.words.begin(), verbWord);
    const std::vector<Numbered> controllers = drivenControllers(server);
    const bool refusesNolog =
        line.nolog && std::any_of(controllers.begin(), controllers.end(),
                                  [](const Numbered& one) { return one.controller->refusesNolog; });
    std::vector<Reply> replies = refusesNolog
                                     ? std::vector<Reply>{refusalOf("Un-supported Command")}
                                     : answer(server, line.words);
    spoil(server.effect, replies);
    const std::optional<Effect> effect = std::exchange(server.effect, std::nullopt);
    const Version version =
        controllers.empty() ? Version::v2507 : controllers.front().controller->version;
    const bool json = line.json && !(effect && effect->kind == EffectKind::plainText);
    PlayResult result;
    result.output = json ? jsonText(replies, version) : plainText(replies, version);
    if (effect && effect->kind == EffectKind::truncated) {
        result.output.resize(result.output.size() / 2);
    }
    for (const Reply& reply : replies) {
        result.exitCode = result.exitCode != 0 ? result.exitCode : reply.errorCode & 0xff;
        result.changed = result.changed || reply.changed;
    }
    result.leavesLog = !line.nolog;
    return result;
}

} // namespace zolex_sim::storcli
