#pragma once

#include "companion/findings/Finding.h"
#include "companion/lint/Models.h"
#include "companion/lint/PolicyView.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Rules that need to know a model or a number of drives ask the AppliesTo entries of a policy: a
/// fault in each entry is an error, a fault in some a warning, and without a fault, or without what
/// the rule needs, they say nothing.
namespace zolex::companion {

enum class Answer { notGiven, fine, faulty };

/// The answers of all entries of a policy.
class Verdict {
  public:
    void add(const EntryView& entry, Answer answer);
    /// Nothing when no entry is at fault.
    [[nodiscard]] std::optional<Severity> severity() const;
    /// Those at fault.
    [[nodiscard]] const std::vector<const EntryView*>& faulty() const { return faulty_; }
    /// The models that they name, each once: "Kestrix-C7 and Kestrix-B8".
    [[nodiscard]] std::string models() const;

  private:
    std::size_t entries_ = 0;
    std::vector<const EntryView*> faulty_;
};

template <typename Judge>
[[nodiscard]] Verdict judgeEntries(const PolicyView& policy, Judge judge) {
    Verdict verdict;
    for (const EntryView& entry : policy.entries) {
        verdict.add(entry, entry.isReadable ? judge(entry) : Answer::notGiven);
    }
    return verdict;
}

/// By the kinds of controllers that an entry's model stands for: faulty when each of them is.
template <typename Judge>
[[nodiscard]] Verdict judgeKinds(const PolicyView& policy, Judge isFaulty) {
    return judgeEntries(policy, [&](const EntryView& entry) {
        const std::vector<Kind> kinds = kindsOf(entry.given.controllerType.view());
        if (kinds.empty()) {
            return Answer::notGiven;
        }
        for (const Kind& kind : kinds) {
            if (!isFaulty(kind)) {
                return Answer::fine;
            }
        }
        return Answer::faulty;
    });
}

/// The kinds that the policy's entries name, each once; empty unless each entry names a model.
[[nodiscard]] std::vector<Kind> kindsOfAll(const PolicyView& policy);

/// "AppliesTo.1 (line 4)".
[[nodiscard]] std::string placeOf(const EntryView& entry);
/// "a, b and c".
[[nodiscard]] std::string joinWords(const std::vector<std::string>& words,
                                    std::string_view last = " and ");
/// "1 drive", "2 drives".
[[nodiscard]] std::string countOf(std::size_t count, std::string_view what);
/// A drive as a list names it: "drive 3", "drive 1:2".
[[nodiscard]] std::string driveWords(const DriveView& drive);

} // namespace zolex::companion
