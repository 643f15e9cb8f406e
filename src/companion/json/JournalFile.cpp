#include "companion/json/JournalFile.h"

#include "companion/json/DocumentReading.h"
#include "companion/json/JournalPieces.h"
#include "companion/json/RecordingLines.h"

#include <utility>
#include <variant>

namespace zolex::companion {

JournalReading readJournalFile(FileSystem& files, const std::string& name) {
    FileBytes bytes = readBytes(files, name, journalCodes, mostJournalBytes);
    if (!bytes.findings.empty()) {
        return {std::nullopt, std::move(bytes.findings), {}};
    }
    JournalReading reading = readJournal(bytes.text, name);
    if (reading.journal) {
        bytes.text.resize(static_cast<std::size_t>(reading.journal->bytes));
        reading.text = std::move(bytes.text);
    }
    return reading;
}

JournalFile::JournalFile(std::unique_ptr<DurableFile> file, Clock clock)
    : file_(std::move(file)), clock_(std::move(clock)), prev_(firstJournalHash()) {}

JournalFile::JournalFile(std::unique_ptr<DurableFile> file, Clock clock,
                         const JournalHistory& history)
    : file_(std::move(file)), clock_(std::move(clock)), seq_(history.lastSeq),
      prev_(history.lastHash), hash_(history.hash) {}

bool JournalFile::write(const JournalEvent& event) {
    if (!isGood_) {
        return false;
    }
    std::string line = journalLine(seq_ + 1, clock_(), prev_, event);
    isGood_ = file_->append(line + "\n");
    if (isGood_) {
        ++seq_;
        prev_ = sha256(line);
        hash_.add(line);
        hash_.add("\n");
        if (std::holds_alternative<JournalVerified>(event)) {
            verifiedHash_ = hexDigits(Sha256(hash_).finish());
        }
        lastLine_ = std::move(line);
    }
    return isGood_;
}

} // namespace zolex::companion
