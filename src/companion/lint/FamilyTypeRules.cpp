#include "companion/binding/FamilyTypes.h"
#include "companion/families/Family.h"
#include "companion/lint/Entries.h"
#include "companion/lint/Lint.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/RuleGroups.h"
#include "companion/machine/Snapshot.h"
#include "foundation/Text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

namespace {

/// "t:MD or t:STORCLI".
std::string drivenTypes() {
    std::vector<std::string> names;
    for (const Family* const family : families()) {
        names.push_back("t:" + std::string(family->name()));
    }
    return joinWords(names, " or ");
}

std::string beginningsWords() {
    std::string words;
    for (const std::string_view begin : modelBeginnings()) {
        words += (words.empty() ? "" : ", ") + std::string(begin);
    }
    return words;
}

/// Checks the types of one policy that zolex does not know.
class FamilyTypeCheck {
  public:
    FamilyTypeCheck(const PolicyView& policy, FindingSink& sink) : sink_(sink) {
        for (const EntryView& entry : policy.entries) {
            for (Piece& field : fieldsOf(entry.entry->value, ',')) {
                const bool isType = field.text.size() > 2 && text::lower(field.text[0]) == 't' &&
                                    field.text[1] == ':';
                if (isType && isFamilyType(valueOf(field))) {
                    types_.push_back(std::move(field));
                }
            }
        }
    }

    void check() {
        const bool namesFamily = std::any_of(types_.begin(), types_.end(), [](const Piece& type) {
            return findFamily(valueOf(type)) != nullptr;
        });
        for (const Piece& type : types_) {
            sink_.add("ZX610", type, "zolex refuses this file: it does not know " + type.text,
                      {"keep the policies for such controllers in a file of their own"});
            const std::string_view value = valueOf(type);
            if (isFamilyName(value) && findFamily(value) == nullptr) {
                sink_.add("ZX208", type,
                          type.text + " holds for no controller: its utility is not driven yet",
                          {"write " + drivenTypes() + ", or the text of a model"});
            } else if (!namesFamily && !isKnownFamilyType(value)) {
                sink_.add("ZX208", type,
                          "no model is known to be called \"" + std::string(value) + "\"",
                          {"zolexctl show names the model of each controller",
                           "known ones begin with " + beginningsWords(),
                           "t:STORCLI holds for each model that storcli or perccli drives"});
            }
        }
    }

  private:
    static std::string_view valueOf(const Piece& type) {
        return std::string_view(type.text).substr(2);
    }

    FindingSink& sink_;
    std::vector<Piece> types_;
};

} // namespace

void checkFamilyTypes(const PolicyDocument& document, FindingSink& sink) {
    for (const PolicyView& policy : viewPolicies(document)) {
        if (!policy.policy->isQuiet) {
            FamilyTypeCheck(policy, sink).check();
        }
    }
}

void dropTypesOf(const Snapshot& machine, const PolicyDocument& document,
                 std::vector<Finding>& findings) {
    std::erase_if(findings, [&](const Finding& finding) {
        if (finding.code != "ZX208") {
            return false;
        }
        constexpr std::size_t letters = 2; // "t:"
        const auto first = static_cast<std::size_t>(finding.start.byte);
        const auto end = static_cast<std::size_t>(finding.end.byte);
        const std::string value = document.text.substr(first, end - first).substr(letters);
        return std::any_of(machine.details.begin(), machine.details.end(), [&](const auto& each) {
            return each.index == ControllerSnapshot::noRecord &&
                   familyTypeHolds(value, each.utility, each.model, each.pciIds);
        });
    });
}

} // namespace zolex::companion
