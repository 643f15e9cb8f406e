#pragma once

#include "model/RaidLevel.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim {

/// Greatest number of an adapter, a channel or a drive that is understood.
constexpr std::int64_t greatestPlaceNumber = 65535;
/// Greatest size that is understood, in MB.
constexpr std::int64_t greatestSizeMb = 1'000'000'000'000;

/// The words of one command line, read from front to back. Letter case is ignored.
class Words {
  public:
    explicit Words(const std::vector<std::string>& arguments);

    [[nodiscard]] bool atEnd() const { return position_ == words_.size(); }
    /// The word at hand; empty at the end.
    [[nodiscard]] std::string_view current() const;

    /// Takes the word at hand when it is this one.
    bool take(std::string_view word);
    /// Takes the word at hand, whatever it is; empty at the end.
    std::string takeAny();
    /// Takes the word at hand when it is a whole number up to `greatest`.
    std::optional<std::int64_t> takeNumber(std::int64_t greatest);
    /// Takes a size in MB, or "MAX", which leaves `sizeMb` empty; false at any other word.
    bool takeSize(std::optional<std::int64_t>& sizeMb);
    /// Takes a level's number such as "1E", or "VOLUME".
    std::optional<RaidLevel> takeLevel();

    /// What is wrong with the word at hand, or with the end that came too early.
    [[nodiscard]] std::string complaint() const;

  private:
    std::vector<std::string> words_;
    std::size_t position_ = 0;
};

/// The level's number such as "1E", or "VOLUME".
std::string_view levelWord(RaidLevel level);

} // namespace zolex_sim
