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

/// Drives of the array as numbers, first to last.
std::string numbers(std::size_t first, std::size_t last) {
    std::vector<std::string> items;
    for (std::size_t i = first; i <= last; ++i) {
        items.push_back(std::to_string(i));
    }
    return join(items, ",");
}

/// One array with its logical drive, as it is collected for a policy.
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

std::string policy(const Controller& controller, std::size_t number, std::size_t drives) {
    const Layout layout = layoutFor(controller, drives);
    std::string text = formatted("\n[Policy.sample-%zu]\n\n"
                                 "; Controller %zu: %s with %zu drives.\n"
                                 "AppliesTo.1 = c:%zu\n\n"
                                 "StripeSize = 64\nReadAhead = ADAPTIVE\n\nArray_Mode = CUSTOM\n",
                                 number, number, controller.identity.model.c_str(), drives, number);
    for (std::size_t i = 0; i < layout.parts.size(); ++i) {
        const Part& part = layout.parts[i];
        text +=
            formatted("; Array %c: %s.\nArray.%c = %s\n", static_cast<int>('A' + i), part.comment,
                      static_cast<int>('A' + i), numbers(part.first, part.last).c_str());
    }
    if (layout.spare != 0) {
        text += formatted("\n; It takes over when a drive of any array fails.\nHotspares = %zu\n",
                          layout.spare);
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
        const std::size_t drives = countedDrives(*controller).size();
        if (drives > 0) {
            text += policy(*controller, number, drives);
        }
    }
    return {"sample-policies.ini", text};
}

} // namespace zolex_sim
