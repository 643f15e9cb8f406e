#pragma once

#include "companion/recording/Recording.h"

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

struct Snapshot;

/// What tells a machine from all others.
struct Secrets {
    std::set<std::string> serialNumbers; ///< of the machine, its controllers and its drives
    std::set<std::string> addresses;     ///< hexadecimal digits: SAS addresses, world-wide names
    std::set<std::string> names;         ///< that people gave to logical drives
};

/// What the facts of the machine tell. Placeholders and what has fewer than four letters and digits
/// are none: they tell nothing from anything.
[[nodiscard]] Secrets secretsOf(const Snapshot& snapshot);

/// Adds what stands in the recorded texts behind a key that names a serial number or an address,
/// whether the facts know it or not.
void addRecordedSecrets(const std::vector<RecordedCall>& calls, Secrets& secrets);

/// Puts made-up texts in the place of secrets. Each has the length of the other; a digit stands for
/// a digit, a letter for a letter, a hexadecimal digit of an address for such a one, all else
/// stays. Equal ones stay equal, different ones different, and their order is kept. Without the key
/// nobody finds the way back.
class Redactor {
  public:
    Redactor(const Secrets& secrets, std::string_view key);

    /// The text with each secret replaced. A secret that could be an ordinary word or number (it
    /// has no digit, or fewer than eight digits and no letter) is replaced on lines alone that tell
    /// of serial numbers; names on lines whose key is a name and that hold nothing else.
    [[nodiscard]] std::string redacted(std::string_view text) const;
    /// A text that is a serial number as a whole.
    [[nodiscard]] std::string redactedSerialNumber(std::string_view text) const;

    // Of texts that differ.
    [[nodiscard]] std::size_t serialNumbers() const { return serialNumbers_; }
    [[nodiscard]] std::size_t addresses() const { return addresses_; }
    [[nodiscard]] std::size_t names() const { return names_.size(); }

  private:
    struct Entry {
        std::string secret; ///< in capitals
        std::string madeUp; ///< in capitals
        bool isDistinct = false;
    };
    static constexpr std::size_t startSize = 4; ///< bytes of a secret by which it is looked up

    void add(const std::map<std::string, std::string>& madeUp);
    void redactLine(std::string_view line, std::string& result) const;
    [[nodiscard]] const Entry* entryAt(std::string_view line, std::size_t at,
                                       bool tellsSerials) const;

    std::map<std::string, std::string> names_;                          ///< as they are given
    std::map<std::array<char, startSize>, std::vector<Entry>> entries_; ///< longest first
    std::size_t serialNumbers_ = 0;
    std::size_t addresses_ = 0;
};

/// Replaces what the redactor knows in every text of the recording, which is then marked so.
void redact(Recording& recording, const Redactor& redactor);

/// A key that nobody can guess.
[[nodiscard]] std::string randomKey();

} // namespace zolex::companion
