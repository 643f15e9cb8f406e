#pragma once

#include "companion/execution/ExecutionSystem.h"
#include "companion/execution/Journal.h"
#include "companion/json/JournalLines.h"
#include "companion/machine/Sha256.h"
#include "foundation/FileSystem.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace zolex::companion {

/// Reads the journal in a file. One that cannot be read, or is larger than mostJournalBytes, is a
/// finding too.
[[nodiscard]] JournalReading readJournalFile(FileSystem& files, const std::string& name);

/// Keeps events as lines of a file.
class JournalFile : public JournalKeeper {
  public:
    /// The time as a line tells it: RFC 3339 with its offset.
    using Clock = std::function<std::string()>;

    /// A new journal, in a file that is empty.
    JournalFile(std::unique_ptr<DurableFile> file, Clock clock);
    /// Goes on with one that was read; `file` is at the end of its whole lines.
    JournalFile(std::unique_ptr<DurableFile> file, Clock clock, const JournalHistory& history);

    /// After one that could not be written nothing more is written.
    [[nodiscard]] bool write(const JournalEvent& event) override;

    /// The line of the last event, without its line end; empty: none was written so far.
    [[nodiscard]] const std::string& lastLine() const { return lastLine_; }
    /// SHA-256 of all bytes of the file up to the last `verified`, its line end included; empty:
    /// none was written so far.
    [[nodiscard]] const std::string& hashUpToVerified() const { return verifiedHash_; }

  private:
    std::unique_ptr<DurableFile> file_;
    Clock clock_;
    std::uint64_t seq_ = 0;
    std::string prev_;
    Sha256 hash_;
    std::string lastLine_;
    std::string verifiedHash_;
    bool isGood_ = true;
};

} // namespace zolex::companion
