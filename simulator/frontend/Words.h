#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim {

/// The words of one command line, read from front to back. Letter case is ignored.
class Words {
  public:
    explicit Words(const std::vector<std::string>& arguments);

    [[nodiscard]] bool atEnd() const { return position_ == words_.size(); }
    /// The word at hand; empty at the end.
    [[nodiscard]] std::string_view current() const;

    /// Takes this word, or takes nothing and is false.
    bool take(std::string_view word);
    /// Takes a whole number of at most 18 digits, or takes nothing.
    std::optional<std::int64_t> takeNumber();
    /// Takes a number that a place or an adapter can have, at most 65535, or takes nothing.
    std::optional<int> takeSmallNumber();
    /// Takes whatever stands next; empty at the end.
    std::string takeAny();

    /// What is wrong with the word at hand, as a line for the user.
    [[nodiscard]] std::string complaint() const;

  private:
    std::vector<std::string> words_;
    std::size_t position_ = 0;
};

} // namespace zolex_sim
