#include "model/Text.h"
#include "setup/ServerFiles.h"

#include <algorithm>

namespace zolex_sim {
namespace {

constexpr std::size_t maxArrayDrives = 16;

constexpr const char* introduction =
    "; Sample policies for this server: one for each controller that has drives.\n"
    ";\n"
    "; A policy begins with its name in brackets. AppliesTo says which controllers it is for:\n"
    ";   c:1  the first controller          t:LSI-MegaRAID-8480  every controller of this type\n"
    ";   d:8  controllers with 8 drives     m:8837               servers of this machine type\n"
    ";   ALL  every controller\n"
    "; All specifiers of one line must hold; a further AppliesTo.2 line is one more chance.\n"
    ";\n"
    "; Drives are numbered from 1: enclosure by enclosure, and slot by slot in each.\n"
    "; A logical drive is array:size:RAID level:write cache. The size is FILL (all that is left),\n"
    "; a percentage such as 50%, or a number of MB. A single line of defaults instead of the\n"
    "; CUSTOM modes lets zolex choose the drives:\n"
    ";\n"
    ";   Array_Defaults = 10%:1\n"
    ";   Logical_Defaults = 100%:AUTO:ON\n";

/// Numbers of drives, as policies count them.
using Numbers = std::vector<std::size_t>;

/// The drives of the array, first to last of those that the policy uses (from 1).
std::string numbers(const Numbers& used, std::size_t first, std::size_t last) {
    std::vector<std::string> items;
    for (std::size_t i = first; i <= last; ++i) {
        items.push_back(std::to_string(used.at(i - 1)));
    }
    return join(items, ",");
}

/// The numbers of the drives that a new array can take.
Numbers freeDrives(const Controller& controller, const std::vector<const Drive*>& counted) {
    Numbers found;
    for (std::size_t i = 0; i < counted.size(); ++i) {
        if (controller.isFree(*counted[i])) {
            found.push_back(i + 1);
        }
    }
    return found;
}

/// 1 to `count`.
Numbers allDrives(std::size_t count) {
    Numbers found;
    for (std::size_t number = 1; number <= count; ++number) {
        found.push_back(number);
    }
    return found;
}

/// One array with its logical drive, as it is collected for a policy. The drives are counted among
/// those that the policy uses, from 1.
struct Part {
    std::size_t first;
    std::size_t last;
    const char* level;
    const char* comment;
};

struct Layout {
    std::vector<Part> parts;
    std::size_t spare = 0; ///< 0: none
};

/// The best level for drives first to last: RAID 5 from three on, a mirror of two, striped mirrors,
/// else RAID 0, or a mirror of the first two where the controller knows nothing else.
Part dataPart(const Controller& controller, std::size_t first, std::size_t last) {
    const std::size_t count = last - first + 1;
    if (count >= 3 && controller.supports(RaidLevel::raid5)) {
        return {first, last, "5", "RAID 5 for the data"};
    }
    if (count == 2 && controller.supports(RaidLevel::raid1)) {
        return {first, last, "1", "a mirrored pair"};
    }
    if (count >= 4 && count % 2 == 0 && controller.supports(RaidLevel::raid10)) {
        return {first, last, "10", "striped mirrors for the data"};
    }
    if (count >= 3 && controller.supports(RaidLevel::raid1E)) {
        return {first, last, "1E", "an enhanced mirror for the data"};
    }
    if (!controller.supports(RaidLevel::raid0)) {
        return {first, std::min(first + 1, last), "1", "a mirrored pair"};
    }
    return {first, last, "0", "a striped array"};
}

/// A mirrored pair for the system, the rest for data, and the last drive to spare.
Layout layoutFor(const Controller& controller, std::size_t drives) {
    Layout layout;
    const bool mirror = controller.supports(RaidLevel::raid1);
    const std::size_t most =
        std::min(maxArrayDrives, static_cast<std::size_t>(controller.identity.maxDrivesPerSpan));
    if (drives >= 6 && mirror) {
        layout.spare = drives;
        layout.parts.push_back({1, 2, "1", "a mirrored pair for the system"});
        layout.parts.push_back(dataPart(controller, 3, std::min(drives - 1, 2 + most)));
        return layout;
    }
    const bool mirrorsOnly = !controller.supports(RaidLevel::raid0);
    const bool redundant =
        controller.supports(RaidLevel::raid5) || controller.supports(RaidLevel::raid1E);
    const bool withSpare = mirrorsOnly ? drives >= 3 : drives >= 4 && redundant;
    layout.spare = withSpare ? drives : 0;
    const std::size_t last = layout.spare != 0 ? drives - 1 : drives;
    layout.parts.push_back(dataPart(controller, 1, std::min(last, most)));
    return layout;
}

/// What a policy says of drives that are in arrays already.
std::string noteOnConfigured(std::size_t free, std::size_t drives) {
    if (free == drives) {
        return "";
    }
    if (free > 0) {
        return "; The other drives are in arrays already, or not to be used: they stay as they "
               "are.\n";
    }
    return "; It is configured already: no drive is free. This policy is for zolex /r /f:..., "
           "which\n"
           "; first erases all arrays of every controller, and their data.\n";
}

std::string policy(const Controller& controller, std::size_t number,
                   const std::vector<const Drive*>& counted) {
    const Numbers free = freeDrives(controller, counted);
    const Numbers used = free.empty() ? allDrives(counted.size()) : free;
    const Layout layout = layoutFor(controller, used.size());
    std::string text = formatted("\n[Policy.sample-%zu]\n\n"
                                 "; Controller %zu: %s with %zu drives.\n",
                                 number, number, controller.identity.model.c_str(), counted.size());
    text += noteOnConfigured(free.size(), counted.size());
    text += formatted("AppliesTo.1 = c:%zu\n\n"
                      "StripeSize = 64\nReadAhead = ADAPTIVE\n\nArray_Mode = CUSTOM\n",
                      number);
    for (std::size_t i = 0; i < layout.parts.size(); ++i) {
        const Part& part = layout.parts[i];
        text +=
            formatted("; Array %c: %s.\nArray.%c = %s\n", static_cast<int>('A' + i), part.comment,
                      static_cast<int>('A' + i), numbers(used, part.first, part.last).c_str());
    }
    if (layout.spare != 0) {
        text += formatted("\n; It takes over when a drive of any array fails.\nHotspares = %s\n",
                          numbers(used, layout.spare, layout.spare).c_str());
    } else if (used.size() != counted.size()) {
        text += "\n; No hot spare, neither by the controller's default.\nArray_Defaults = 0%:0\n";
    }
    text += "\nLogical_Mode = CUSTOM\n";
    for (std::size_t i = 0; i < layout.parts.size(); ++i) {
        text += formatted("Logical.%zu = %c:FILL:%s:ON\n", i + 1, static_cast<int>('A' + i),
                          layout.parts[i].level);
    }
    return text;
}

} // namespace

ServerFile samplePolicies(const Server& server) {
    std::string text = introduction;
    std::size_t number = 0;
    for (const Controller* controller : server.controllersInPciOrder()) {
        ++number;
        const std::vector<const Drive*> counted = countedDrives(*controller);
        if (!counted.empty()) {
            text += policy(*controller, number, counted);
        }
    }
    return {"sample-policies.ini", text};
}

bool samplePoliciesNeedReset(const Server& server) {
    const auto& all = server.controllers;
    return std::any_of(all.begin(), all.end(), [](const Controller& controller) {
        const std::vector<const Drive*> counted = countedDrives(controller);
        return !counted.empty() && freeDrives(controller, counted).empty();
    });
}

} // namespace zolex_sim
