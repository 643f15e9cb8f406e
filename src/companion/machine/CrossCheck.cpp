#include "companion/machine/CrossCheck.h"

#include "companion/machine/Fingerprint.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/text/Words.h"
#include "model/Codes.h"
#include "model/ControllerCatalogue.h"

#include "foundation/Text.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

struct ModelName {
    std::string model;
    std::string squeezed;
};

/// The models that PCI rows and subtypes of each type name.
std::vector<ModelName> allModels() {
    constexpr std::int32_t mostSubtype = 14;
    std::vector<ModelName> models;
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        for (std::int32_t subtype = subtypeNotSet; subtype <= mostSubtype; ++subtype) {
            const CString name = ControllerCatalogue::getControllerName(type, subtype);
            // A name without a number ("Kestrix controller") is that of a family.
            if (ControllerCatalogue::isValidControllerName(name) &&
                name.view().find_first_of("0123456789") != std::string_view::npos) {
                models.push_back({std::string(name.view()), lettersAndDigits(name)});
            }
        }
    }
    return models;
}

/// Whether the name is in the text and no digit stands behind it.
bool holdsName(std::string_view text, std::string_view name) {
    for (std::size_t at = text.find(name); at != std::string_view::npos;
         at = text.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        if (end == text.size() || text[end] < '0' || text[end] > '9') {
            return true;
        }
    }
    return false;
}

std::string function(const FunctionIdentity& identity) {
    return identity.pci.empty() ? "its PCI function" : "the PCI function " + identity.pci;
}

void checkModel(const FunctionIdentity& identity, ControllerSnapshot& snapshot) {
    const std::string named = modelInName(snapshot.facts.productName);
    const std::string before =
        std::string(ControllerCatalogue::getControllerName(identity.type, identity.subtype).view());
    // A function of the oldest family tells its model; of others the listing may tell more.
    const bool listingDecides =
        identity.type != controller_type::family || identity.subtype == subtypeNotSet;
    if (named.empty() || named == before || (listingDecides && named == snapshot.model)) {
        return;
    }
    snapshot.findings.push_back(problemFinding(
        problem::otherModel,
        "the listing is of a " + named + ", " + function(identity) + " of a " + before,
        "product name in the listing: " + snapshot.facts.productName));
}

/// Whether an address "02:0e.0", which may have a domain before it, is of the function.
bool isAddressOf(std::string_view told, std::string_view pci) {
    return text::equalsNoCase(told, pci) ||
           (pci.size() > told.size() &&
            text::equalsNoCase(told, pci.substr(pci.size() - told.size())));
}

void checkPci(const FunctionIdentity& identity, ControllerSnapshot& snapshot) {
    const Facts& facts = snapshot.facts;
    if (!facts.pciIds.empty() && !identity.pciIds.empty() &&
        !text::equalsNoCase(facts.pciIds, identity.pciIds)) {
        snapshot.findings.push_back(
            problemFinding(problem::otherPciFunction,
                           "the listing is of a controller with the PCI ids " + facts.pciIds +
                               ", " + function(identity) + " has " + identity.pciIds));
    }
    if (!facts.pciAddress.empty() && !identity.pci.empty() &&
        !isAddressOf(facts.pciAddress, identity.pci)) {
        snapshot.findings.push_back(problemFinding(
            problem::otherPciFunction,
            "the listing is of the PCI function " + facts.pciAddress + ", not of " + identity.pci));
    }
}

} // namespace

std::string modelInName(std::string_view productName) {
    static const std::vector<ModelName> models = allModels();
    const std::string name = lettersAndDigits(productName);
    std::string_view found;
    std::size_t longest = 0;
    for (const ModelName& model : models) {
        if (model.squeezed.size() > longest && holdsName(name, model.squeezed)) {
            found = model.model;
            longest = model.squeezed.size();
        }
    }
    return std::string(found);
}

void checkAgainstFunction(const FunctionIdentity& identity, ControllerSnapshot& snapshot) {
    checkModel(identity, snapshot);
    checkPci(identity, snapshot);
}

void checkSerialNumbers(const std::vector<ToldSerial>& told, Snapshot& snapshot) {
    const auto isIn = [&snapshot](const ToldSerial& one) {
        return std::any_of(
            snapshot.details.begin(), snapshot.details.end(),
            [&one](const ControllerSnapshot& each) { return each.number == one.number; });
    };
    for (auto second = told.begin(); second != told.end(); ++second) {
        if (isPlaceholder(second->serialNumber)) {
            continue;
        }
        const auto first = std::find_if(told.begin(), second, [&second](const ToldSerial& each) {
            return each.serialNumber == second->serialNumber &&
                   (each.utility == second->utility || each.mayBeAnywhere || second->mayBeAnywhere);
        });
        if (first != second && (isIn(*first) || isIn(*second))) {
            snapshot.findings.push_back(
                problemFinding(problem::sameSerial,
                               "the listings of controllers " + std::to_string(first->number) +
                                   " and " + std::to_string(second->number) +
                                   " tell the same serial number, " + second->serialNumber));
        }
    }
}

} // namespace zolex::companion
