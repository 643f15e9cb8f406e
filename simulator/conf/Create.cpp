#include "conf/Create.h"

#include "model/Operations.h"
#include "model/Text.h"

#include <algorithm>
#include <set>

namespace zolex_sim::conf {
namespace {

constexpr std::int64_t maxStripeKb = 65536;
constexpr std::size_t maxNameLength = 32;

/// What the command line asks for.
struct Wish {
    NewLogicalDrive request;
    bool simple = false; ///< a volume of one drive
    std::vector<DriveLocation> drives;
    std::set<std::string_view> options; ///< that have been given
};

/// Takes the option's word unless it has been given already.
bool takeOption(Call& call, Wish& wish, std::string_view option) {
    if (wish.options.count(option) > 0 || !call.words.take(option)) {
        return false;
    }
    wish.options.insert(option);
    return true;
}

bool takeStripe(Call& call, Wish& wish) {
    const std::optional<std::int64_t> stripe = call.words.takeNumber(maxStripeKb);
    wish.request.stripeKb = static_cast<int>(stripe.value_or(0));
    return stripe.has_value();
}

bool takeName(Call& call, Wish& wish) {
    const std::string_view word = call.words.current();
    const bool printable =
        std::all_of(word.begin(), word.end(), [](char c) { return c > ' ' && c <= '~'; });
    if (word.empty() || word.size() > maxNameLength || !printable) {
        return false;
    }
    wish.request.name = call.words.takeAny();
    return true;
}

bool takeValue(Call& call, const CreateOption& option) {
    return std::any_of(option.values.begin(), option.values.end(),
                       [&](std::string_view value) { return call.words.take(value); });
}

/// Takes all options; false at one whose value is not understood.
bool takeOptions(Call& call, Wish& wish) {
    while (true) {
        if (takeOption(call, wish, "Stripesize")) {
            if (!takeStripe(call, wish)) {
                return false;
            }
            continue;
        }
        if (takeOption(call, wish, "Name")) {
            if (!takeName(call, wish)) {
                return false;
            }
            continue;
        }
        const auto found = std::find_if(
            call.dialect.createOptions.begin(), call.dialect.createOptions.end(),
            [&](const CreateOption& option) { return takeOption(call, wish, option.word); });
        if (found == call.dialect.createOptions.end()) {
            return true;
        }
        if (!takeValue(call, *found)) {
            return false;
        }
    }
}

bool takeLevel(Call& call, Wish& wish) {
    if (call.dialect.simpleVolumes && call.words.take("SIMPLE")) {
        wish.simple = true;
        wish.request.level = RaidLevel::volume;
        return call.words.take("VOLUME");
    }
    const std::optional<RaidLevel> level = call.words.takeLevel();
    wish.request.level = level.value_or(wish.request.level);
    return level.has_value();
}

/// The spans that the level makes of the drives, in the order in which they are named: pairs, two
/// halves, or a single one.
std::vector<std::vector<DriveLocation>> spansOf(RaidLevel level,
                                                const std::vector<DriveLocation>& drives) {
    constexpr std::size_t pair = 2;
    std::size_t length = drives.size();
    if (level == RaidLevel::raid10) {
        length = pair;
    } else if (rulesOf(level).spanned) {
        length = (drives.size() + 1) / 2;
    }
    std::vector<std::vector<DriveLocation>> spans;
    for (std::size_t i = 0; i < drives.size(); ++i) {
        if (i % length == 0) {
            spans.emplace_back();
        }
        spans.back().push_back(drives[i]);
    }
    return spans;
}

/// Refuses what the utility itself refuses; sets what it leaves to the controller.
std::optional<std::string> complete(const Call& call, Wish& wish) {
    if (wish.simple && wish.drives.size() != 1) {
        return formatted("A simple volume takes 1 physical disk, not %zu.", wish.drives.size());
    }
    wish.request.spans = spansOf(wish.request.level, wish.drives);
    const int largest = call.dialect.largestStripeKb(wish.request.level, wish.drives.size());
    const int wanted = wish.request.stripeKb.value_or(
        std::min(call.controller->identity.defaultStripeKb,
                 largest > 0 ? largest : call.controller->identity.defaultStripeKb));
    if (largest > 0 && wanted > largest) {
        return formatted("A stripe size of %d kB is too large for %zu physical disks.", wanted,
                         wish.drives.size());
    }
    wish.request.stripeKb = wanted;
    if (wish.request.name.empty()) {
        wish.request.name = formatted("ARRAY%zu_LOGICAL%zu", call.controller->arrays.size(),
                                      call.controller->logicalDrives.size());
    }
    return std::nullopt;
}

} // namespace

PlayResult createFromWords(Call& call) {
    Wish wish;
    if (!call.words.take("LOGICALDRIVE") || !takeOptions(call, wish) ||
        !call.words.takeSize(wish.request.sizeMb) || !takeLevel(call, wish) ||
        !call.words.takePlaces("NOPROMPT", wish.drives)) {
        return misunderstood(call);
    }
    if (std::optional<PlayResult> unconfirmed = takeConfirmation(call)) {
        return *unconfirmed;
    }
    if (const std::optional<std::string> reason = complete(call, wish)) {
        return refused(call, *reason);
    }
    if (const std::optional<Refusal> refusal = createLogicalDrive(*call.controller, wish.request)) {
        return refused(call, refusal->reason);
    }
    return completed(call, "Creating logical drive: " + wish.request.name + "\n", true);
}

} // namespace zolex_sim::conf
