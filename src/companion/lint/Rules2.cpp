#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto note = Severity::note;
constexpr auto warning = Severity::warning;
constexpr auto error = Severity::error;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto zolex = RefusedBy::zolex;

/// Group 2, how policies are matched, by id.
// clang-format off
constexpr std::array<Rule, 8> rows = {{
    {"ZX201", warning, nobody, "a policy that can never be used",
     "The first policy that matches a controller is used. Each controller that this one is for "
     "fits an earlier one already, so nothing that stands in it ever happens: the server gets "
     "the earlier policy's layout, with exit code 0.",
     "Put the policy with more specifiers first, the one for all others last:\n"
     "  [Policy.eight]\n  AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
     "  [Policy.rest]\n  AppliesTo.1 = t:LSI-MegaRAID-8480"},
    {"ZX202", warning, nobody, "an AppliesTo entry that can never be used",
     "An earlier entry asks for less, so it holds wherever this one does. The entry changes "
     "nothing; when it stands in a later policy, its controllers get the earlier policy.",
     "Take the entry out, or put its policy before the other one."},
    {"ZX203", error, zolex, "a specifier that zolex refuses",
     "The file is refused, exit code 5. With /r in the same command the arrays are erased before "
     "the file is read.",
     "Write m: s: t: c: o: d: with a value, or ALL; c:, o: and d: take numbers from 1, t: a "
     "model as zolex spells it:\n  AppliesTo.1 = t:LSI-MegaRAID-8480,d:8"},
    {"ZX204", warning, nobody, "a specifier stands twice in one entry",
     "All specifiers of an entry must hold, and of two with the same letter the last alone "
     "counts: c:1,c:2 is controller 2. Controller 1 is skipped, and the run ends with exit "
     "code 0.",
     "Write one entry for each:\n  AppliesTo.1 = c:1\n  AppliesTo.2 = c:2"},
    {"ZX205", warning, nobody, "an AppliesTo entry that gives nothing",
     "A specifier without a value, such as \"m:\", is not asked for. An entry with no other one "
     "matches no controller: its controllers are skipped, exit code 0.",
     "Write the value, or ALL for every controller of every server."},
    {"ZX206", warning, nobody, "an AppliesTo entry that no controller fulfils",
     "There are at most 36 controllers in a machine, 15 of one utility, 144 drives on a "
     "controller and 2 on one of HYPERWIN. Behind m: and s: a comment is a part of the value, "
     "which no machine has. The entry matches nothing, and its controllers are skipped, exit "
     "code 0.",
     "zolexctl show tells number, model and drives of each controller."},
    {"ZX207", note, nobody, "several policies for one model, and none for the rest of it",
     "A controller of this model that none of them fits is skipped: it keeps what it has, and "
     "the run ends with exit code 0. One missing drive is enough where the policies ask for d:.",
     "End with a policy for the whole model, or leave it so and run zolex with /e1:\n"
     "  AppliesTo.1 = t:Kestrix-C7"},
    {"ZX208", warning, nobody, "a type that no controller may have",
     "t: names a family whose utility zolexctl does not drive yet, or a model that no usual brand "
     "calls so. Controllers that the entry is meant for are skipped, and the run ends with exit "
     "code 0. Nothing is said where the policy names a family, too, or where the machine that is "
     "looked at has such a model.",
     "Write the model as zolexctl show tells it, how it begins, or the family:\n"
     "  AppliesTo.1 = t:PERC-H7*\n  AppliesTo.2 = t:STORCLI"},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup2() noexcept {
    return rows;
}

} // namespace zolex::companion
