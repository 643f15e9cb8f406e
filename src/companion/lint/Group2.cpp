#include "companion/lint/Entries.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/Reach.h"
#include "companion/lint/RuleGroups.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// "Policy.all (line 28)".
std::string placeOf(const PolicyView& policy) {
    return policy.name() + " (line " + std::to_string(policy.policy->header.line) + ")";
}

/// Checks how the policies of one file are chosen.
class Matching {
  public:
    Matching(const std::vector<PolicyView>& policies, FindingSink& sink)
        : policies_(policies), fates_(findFates(policies)), sink_(sink) {}

    void check() {
        for (std::size_t p = 0; p < policies_.size(); ++p) {
            if (!policies_[p].policy->isQuiet) {
                checkPolicy(p);
            }
        }
        checkHoles();
    }

  private:
    void checkPolicy(std::size_t p) {
        const bool isDead = isShadowed(fates_[p], p);
        if (isDead) {
            tellDeadPolicy(p);
        }
        for (std::size_t e = 0; e < policies_[p].entries.size(); ++e) {
            const EntryView& entry = policies_[p].entries[e];
            checkRepeats(entry);
            switch (fates_[p][e].fate) {
            case Fate::nothing:
                tellNothing(entry);
                break;
            case Fate::untrue:
                tellUntrue(entry);
                break;
            case Fate::shadowed:
                if (!isDead) {
                    tellDeadEntry(p, entry, fates_[p][e].shadow);
                }
                break;
            case Fate::live:
            case Fate::unknown:
                break;
            }
        }
    }

    void tellDeadPolicy(std::size_t p) {
        std::vector<std::string> before;
        for (const EntryFate& fate : fates_[p]) {
            const bool isOther = fate.fate == Fate::shadowed && fate.shadow.policy != p;
            const std::string place = isOther ? placeOf(policies_[fate.shadow.policy]) : "";
            if (isOther && std::find(before.begin(), before.end(), place) == before.end()) {
                before.push_back(place);
            }
        }
        sink_.add("ZX201", *policies_[p].policy, policies_[p].name() + " can never be used",
                  {"each controller that it fits fits " + joinWords(before, " or ") + " before it",
                   "put it before that one, or take it out"});
    }

    void tellDeadEntry(std::size_t p, const EntryView& entry, const EntryPlace& shadow) {
        const PolicyView& policy = policies_[shadow.policy];
        const EntryView& first = policy.entries[shadow.entry];
        const std::string owner = shadow.policy == p ? "" : " of " + policy.name();
        sink_.add("ZX202", entry.entry->value,
                  entry.entry->keyword.text + " adds no controller to " + policies_[p].name(),
                  {"each controller that it fits fits " + first.entry->keyword.text + owner +
                   " (line " + std::to_string(first.entry->keyword.start.line) + ") before it"});
    }

    void tellNothing(const EntryView& entry) {
        sink_.add("ZX205", entry.entry->value,
                  entry.entry->keyword.text + " gives nothing, so it matches no controller",
                  {"write a value behind the colon, or ALL for every controller"});
    }

    void tellUntrue(const EntryView& entry) {
        const Untrue untrue = findUntrue(entry);
        sink_.add("ZX206", untrue.specifier->whole,
                  entry.entry->keyword.text +
                      " can hold for no controller: " + limitWords(entry, untrue),
                  {"zolexctl show tells number, model and drives of each controller"});
    }

    static std::string limitWords(const EntryView& entry, const Untrue& untrue) {
        const std::string most = std::to_string(untrue.most) + " at most";
        switch (untrue.specifier->letter) {
        case 'c':
            return "a machine has " + most;
        case 'o':
            return "a utility has " + most;
        default:
            return (untrue.isModels ? std::string(entry.given.controllerType.c_str())
                                    : std::string("a controller")) +
                   " has " + std::to_string(untrue.most) + " drives at most";
        }
    }

    /// A specifier's letter that stands twice.
    void checkRepeats(const EntryView& entry) {
        const std::vector<SpecifierView>& all = entry.specifiers;
        for (std::size_t i = 0; i < all.size(); ++i) {
            const auto isSame = [&](const SpecifierView& each) {
                return each.letter == all[i].letter && all[i].letter != '*';
            };
            const auto next =
                std::find_if(all.begin() + static_cast<std::ptrdiff_t>(i) + 1, all.end(), isSame);
            if (next == all.end()) {
                continue;
            }
            Finding& finding = sink_.add("ZX204", next->whole,
                                         std::string(1, next->letter) + ": stands twice in " +
                                             entry.entry->keyword.text + ": " + next->whole.text +
                                             " counts, " + all[i].whole.text + " does not",
                                         {"for either of both write a further entry, such as " +
                                          freeEntry(entry) + " = " + all[i].whole.text});
            finding.otherStart = all[i].whole.start;
            finding.otherEnd = all[i].whole.end;
            finding.other = "has no effect";
        }
    }

    /// The first AppliesTo keyword that the policy of this entry does not have.
    [[nodiscard]] std::string freeEntry(const EntryView& entry) const {
        for (const PolicyView& policy : policies_) {
            const bool isOwner =
                std::any_of(policy.entries.begin(), policy.entries.end(),
                            [&](const EntryView& each) { return each.entry == entry.entry; });
            for (int n = 1; isOwner; ++n) {
                std::string keyword = "AppliesTo." + std::to_string(n);
                if (policy.policy->find(keyword) == nullptr) {
                    return keyword;
                }
            }
        }
        return "AppliesTo.2";
    }

    /// Models that several policies name, while none takes every controller of the model.
    void checkHoles() {
        struct Named {
            const SpecifierView* first = nullptr;
            std::size_t lastPolicy = 0;
            std::size_t policies = 0;
        };
        std::map<std::string, Named> models;
        std::vector<std::string> order;
        bool takesAll = false;
        std::map<std::string, bool> taken;
        for (std::size_t p = 0; p < policies_.size(); ++p) {
            for (const EntryView& entry : policies_[p].entries) {
                if (!entry.isReadable) {
                    return; // it may be the one that takes the rest
                }
                AppliesTo rest = entry.given;
                rest.controllerType = "";
                const std::string model = entry.given.controllerType.c_str();
                const bool isWide = rest.givesNothing() && (entry.given.all || !model.empty());
                takesAll = takesAll || (isWide && model.empty());
                if (model.empty()) {
                    continue;
                }
                taken[model] = taken[model] || isWide;
                Named& named = models[model];
                if (named.first == nullptr) {
                    order.push_back(model);
                    named.first = typeOf(entry);
                }
                named.policies += named.policies == 0 || named.lastPolicy != p ? 1 : 0;
                named.lastPolicy = p;
            }
        }
        for (const std::string& model : order) {
            const Named& named = models[model];
            if (!takesAll && !taken[model] && named.policies > 1 && named.first != nullptr) {
                sink_.add(
                    "ZX207", named.first->whole,
                    std::to_string(named.policies) + " policies name " + model +
                        ", and none takes those that the others leave",
                    {"such controllers are skipped; for all of them: AppliesTo.1 = t:" + model});
            }
        }
    }

    static const SpecifierView* typeOf(const EntryView& entry) {
        const auto found =
            std::find_if(entry.specifiers.rbegin(), entry.specifiers.rend(),
                         [](const SpecifierView& each) { return each.letter == 't'; });
        return found == entry.specifiers.rend() ? nullptr : &*found;
    }

    const std::vector<PolicyView>& policies_;
    const std::vector<std::vector<EntryFate>> fates_;
    FindingSink& sink_;
};

} // namespace

void checkGroup2(const PolicyDocument& document, FindingSink& sink) {
    const std::vector<PolicyView> policies = viewPolicies(document);
    Matching(policies, sink).check();
}

} // namespace zolex::companion
