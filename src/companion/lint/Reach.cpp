#include "companion/lint/Reach.h"

#include "companion/lint/Models.h"
#include "foundation/Text.h"
#include "inventory/ControllerList.h"
#include "model/Codes.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace zolex::companion {

namespace {

constexpr auto mostControllers = static_cast<std::int32_t>(ControllerList::maxControllers);
constexpr std::int32_t mostDrives =
    (RAIDController::channels - RAIDController::firstChannel) * RAIDController::ids;
/// HYPERWIN's two positions.
constexpr std::int32_t mostDrivesOfIde = 2;

/// Specifiers that are given, each as letter and value in lower case, in order.
using Conditions = std::vector<std::string>;

void addText(Conditions& conditions, char letter, std::string_view value) {
    if (value.empty()) {
        return;
    }
    std::string condition(1, letter);
    for (const char c : value) {
        condition += text::lower(c);
    }
    conditions.push_back(std::move(condition));
}

void addNumber(Conditions& conditions, char letter, std::int32_t value) {
    if (value > 0) {
        conditions.push_back(std::string(1, letter) + std::to_string(value));
    }
}

Conditions conditionsOf(const AppliesTo& given) {
    Conditions conditions;
    addNumber(conditions, 'c', given.controllerNumber);
    addNumber(conditions, 'd', given.numberOfDrives);
    addText(conditions, 'm', given.machineType.view());
    addNumber(conditions, 'o', given.scanOrder);
    addText(conditions, 's', given.serialNumber.view());
    addText(conditions, 't', given.controllerType.view());
    return conditions; // the letters are in order, and each stands once
}

/// An earlier entry, and what it asks for.
struct Earlier {
    EntryPlace place;
    Conditions conditions;
};

const Earlier* findShadow(const std::vector<Earlier>& earlier, const Conditions& conditions) {
    const auto found = std::find_if(earlier.begin(), earlier.end(), [&](const Earlier& each) {
        return std::includes(conditions.begin(), conditions.end(), each.conditions.begin(),
                             each.conditions.end());
    });
    return found == earlier.end() ? nullptr : &*found;
}

bool isIde(const AppliesTo& given) {
    const std::vector<Kind> kinds = kindsOf(given.controllerType.view());
    return !kinds.empty() && std::all_of(kinds.begin(), kinds.end(), [](const Kind& kind) {
        return kind.type == controller_type::lsiIde;
    });
}

const SpecifierView* lastOf(const EntryView& entry, char letter) {
    const auto found =
        std::find_if(entry.specifiers.rbegin(), entry.specifiers.rend(),
                     [letter](const SpecifierView& each) { return each.letter == letter; });
    return found == entry.specifiers.rend() ? nullptr : &*found;
}

EntryFate fateOf(const EntryView& entry, const std::vector<Earlier>& earlier) {
    if (!entry.isReadable) {
        return {Fate::unknown, {}};
    }
    if (!entry.given.all && entry.given.givesNothing()) {
        return {Fate::nothing, {}};
    }
    if (findUntrue(entry).specifier != nullptr) {
        return {Fate::untrue, {}};
    }
    if (const Earlier* shadow = findShadow(earlier, conditionsOf(entry.given))) {
        return {Fate::shadowed, shadow->place};
    }
    return {};
}

} // namespace

Untrue findUntrue(const EntryView& entry) {
    const AppliesTo& given = entry.given;
    if (given.controllerNumber > mostControllers) {
        return {lastOf(entry, 'c'), mostControllers, false};
    }
    if (given.scanOrder > RAIDController::maxScanOrder) {
        return {lastOf(entry, 'o'), RAIDController::maxScanOrder, false};
    }
    if (given.numberOfDrives > mostDrives) {
        return {lastOf(entry, 'd'), mostDrives, false};
    }
    if (given.numberOfDrives > mostDrivesOfIde && isIde(given)) {
        return {lastOf(entry, 'd'), mostDrivesOfIde, true};
    }
    return {};
}

std::vector<std::vector<EntryFate>> findFates(const std::vector<PolicyView>& policies) {
    std::vector<std::vector<EntryFate>> fates(policies.size());
    std::vector<Earlier> earlier;
    for (std::size_t p = 0; p < policies.size(); ++p) {
        for (std::size_t e = 0; e < policies[p].entries.size(); ++e) {
            const EntryView& entry = policies[p].entries[e];
            const EntryFate fate = fateOf(entry, earlier);
            fates[p].push_back(fate);
            if (fate.fate == Fate::live) {
                earlier.push_back({{p, e}, conditionsOf(entry.given)});
            }
        }
    }
    return fates;
}

bool isShadowed(const std::vector<EntryFate>& fates, std::size_t policy) {
    const bool isDead = std::none_of(fates.begin(), fates.end(), [](const EntryFate& each) {
        return each.fate == Fate::live || each.fate == Fate::unknown;
    });
    return isDead && std::any_of(fates.begin(), fates.end(), [policy](const EntryFate& each) {
               return each.fate == Fate::shadowed && each.shadow.policy != policy;
           });
}

} // namespace zolex::companion
