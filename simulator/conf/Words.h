#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim::conf {

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

  private:
    std::vector<std::string> words_;
    std::size_t position_ = 0;
};

} // namespace zolex_sim::conf
