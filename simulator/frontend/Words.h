#pragma once

#include "model/RaidLevel.h"
#include "model/Server.h"
#include "roles/PlayResult.h"

#include <array>
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
    /// Takes a drive's place in two words: its channel and its number on it. None when one of them
    /// is not there.
    std::optional<DriveLocation> takePlace();
    /// Takes places up to the word `end` or the end of the line; false when there is none, or where
    /// something else stands.
    bool takePlaces(std::string_view end, std::vector<DriveLocation>& places);

    /// What is wrong with the word at hand, or with the end that came too early.
    [[nodiscard]] std::string complaint() const;

  protected:
    /// The word behind the one at hand; empty when there is none.
    [[nodiscard]] std::string_view next() const;

  private:
    std::vector<std::string> words_;
    std::size_t position_ = 0;
};

/// A command of a utility: its word, and what plays it once the word has been taken.
template <typename Call>
struct Command {
    std::string_view word;
    PlayResult (*run)(Call&);
};

/// Takes the word at hand when it is that of a command; null at any other word.
template <typename Call, std::size_t n>
const Command<Call>* takeCommand(const std::array<Command<Call>, n>& commands, Words& words) {
    for (const Command<Call>& command : commands) {
        if (words.take(command.word)) {
            return &command;
        }
    }
    return nullptr;
}

/// The level's number such as "1E", or "VOLUME".
std::string_view levelWord(RaidLevel level);

} // namespace zolex_sim
