#pragma once

#include "companion/execution/Journal.h"
#include "companion/findings/Finding.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Journals as texts: JSON, one object a line, each with the hash of the line before. Lines end
/// with LF; a CR before it is no part of the line.
namespace zolex::companion {

/// Bytes of the largest journal that is read.
inline constexpr std::size_t mostJournalBytes = std::size_t{512} << 20U;
/// Bytes of a line; the first one, which may hold a plan, can be longer by twice the largest plan.
inline constexpr std::size_t mostJournalLineBytes = std::size_t{16} << 20U;
inline constexpr std::size_t mostJournalEvents = std::size_t{1} << 20U;

/// What stands in the place of the hash of the line before the first.
[[nodiscard]] std::string firstJournalHash();

/// One line without its line end. `prev` is the hash of the line before. Texts of an event that are
/// longer than a reader takes are cut.
[[nodiscard]] std::string journalLine(std::uint64_t seq, std::string_view at, std::string_view prev,
                                      const JournalEvent& event);

/// What came of reading a journal.
struct JournalReading {
    std::optional<JournalHistory> journal; ///< nothing: it cannot be read; `findings` says why
    std::vector<Finding> findings;         ///< at most one: an error, with its line
    std::string text;                      ///< of a file: its whole lines
};

/// Reads the text of a file. A last line that was cut counts as not written. Events that a later
/// minor version may have added are passed over. Nothing is trusted: the chain of hashes, numbers,
/// types and lengths are checked.
[[nodiscard]] JournalReading readJournal(std::string_view text, std::string_view fileName);

} // namespace zolex::companion
