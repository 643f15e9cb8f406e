#include "companion/recording/Redaction.h"

#include "companion/machine/Fingerprint.h"
#include "companion/machine/Sha256.h"
#include "companion/machine/Snapshot.h"
#include "companion/machine/System.h"
#include "foundation/Text.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <span>
#include <utility>

namespace zolex::companion {

namespace {

/// Bytes of the longest text that is taken for a serial number.
constexpr std::size_t longestSecret = 64;
/// Letters and digits that a secret has at least.
constexpr std::size_t shortestSecret = 4;
/// So many digits are no ordinary number any more.
constexpr std::size_t manyDigits = 8;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

std::size_t countOf(std::string_view text, bool (*is)(char)) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is));
}

std::string inCapitals(std::string_view text) {
    std::string capitals(text);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), text::upper);
    return capitals;
}

/// What stands around keys and values, in JSON too.
constexpr std::string_view jsonFrame = " \t\r\n\",{}[]";

/// Whether a text tells one thing from others at all.
bool isSecret(std::string_view text) {
    return text.size() <= longestSecret && !isPlaceholder(text) &&
           countOf(text, isDigit) + countOf(text, isLetter) >= shortestSecret &&
           text.find_first_of("\r\n") == std::string_view::npos;
}

void addTo(std::set<std::string>& secrets, std::string_view text) {
    if (const std::string_view trimmed = text::trim(text, jsonFrame); isSecret(trimmed)) {
        secrets.emplace(trimmed);
    }
}

/// A line "key : value" or "key = value".
struct KeyedLine {
    std::string_view key;
    std::string_view value; ///< with the blanks around it
};

KeyedLine keyedLine(std::string_view line) {
    const std::size_t mark = line.find_first_of(":=");
    if (mark == std::string_view::npos) {
        return {};
    }
    return {text::trim(line.substr(0, mark), jsonFrame), line.substr(mark + 1)};
}

/// Whether a text is JSON, of which all may stand in one line.
bool isJson(std::string_view text) {
    return text::trim(text, " \t\r\n").starts_with('{');
}

/// Calls `take` with each line, its line end included; of JSON with each key and its value.
template <typename Take>
void eachLine(std::string_view text, Take take) {
    const std::string_view ends = isJson(text) ? "\n,{[" : "\n";
    while (!text.empty()) {
        const std::size_t end = text.find_first_of(ends);
        const std::size_t size = end == std::string_view::npos ? text.size() : end + 1;
        take(text.substr(0, size));
        text.remove_prefix(size);
    }
}

bool hasWord(std::string_view key, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [key](std::string_view word) { return text::containsNoCase(key, word); });
}

bool namesSerialNumber(std::string_view key) {
    const std::string_view trimmed = text::trim(key, " \t");
    constexpr std::string_view word = "serial";
    return text::equalsNoCase(trimmed, "SN") ||
           hasWord(trimmed, {"serial no", "serial num", "serial_num", "serial#", "serial #"}) ||
           (trimmed.size() >= word.size() &&
            text::containsNoCase(trimmed.substr(trimmed.size() - word.size()), word));
}

bool namesAddress(std::string_view key) {
    return hasWord(key, {"sas address", "sasaddr", "wwn", "world wide", "world-wide", "guid",
                         "unique id", "naa id"});
}

/// The runs of eight hexadecimal digits and more of a value that are not all zeros.
void addAddresses(std::string_view value, std::set<std::string>& addresses) {
    for (std::size_t i = 0; i < value.size();) {
        if (value[i] == '0' && i + 1 < value.size() && text::lower(value[i + 1]) == 'x') {
            i += 2;
        }
        std::size_t end = i;
        while (end < value.size() && isHexDigit(value[end])) {
            ++end;
        }
        if (const std::string_view run = value.substr(i, end - i); run.size() >= manyDigits) {
            addTo(addresses, run);
        }
        i = std::max(end, i + 1);
    }
}

/// What the texts of one kind become.
class Inventor {
  public:
    Inventor(bool isHex, std::string key) : isHex_(isHex), key_(std::move(key)) {}

    /// A made-up text for each secret; secrets are in capitals, and each is there once.
    std::map<std::string, std::string> invent(const std::set<std::string>& secrets) {
        const std::vector<std::string> sorted(secrets.begin(), secrets.end());
        invent(sorted, 0, {});
        return std::move(madeUp_);
    }

  private:
    /// Goes through texts that are equal up to `position`, where `start` is their beginning made
    /// up.
    void invent(std::span<const std::string> texts, std::size_t position,
                const std::string& start) {
        // The shortest stands first.
        while (!texts.empty() && texts.front().size() == position) {
            madeUp_[texts.front()] = start;
            texts = texts.subspan(1);
        }
        if (texts.empty()) {
            return;
        }
        const std::string_view beginning = std::string_view(texts.front()).substr(0, position);
        std::string present;
        for (const std::string& text : texts) {
            if (present.empty() || present.back() != text[position]) {
                present += text[position];
            }
        }
        const std::string stand = standIns(present, beginning);
        for (std::size_t i = 0; i < present.size(); ++i) {
            const auto count = static_cast<std::size_t>(
                std::count_if(texts.begin(), texts.end(), [&](const std::string& text) {
                    return text[position] == present[i];
                }));
            invent(texts.first(count), position + 1, start + stand[i]);
            texts = texts.subspan(count);
        }
    }

    /// For each of these characters, which are in order, one of its kind, in the same order.
    [[nodiscard]] std::string standIns(const std::string& present, std::string_view beginning) {
        std::string result = present;
        replaceAmong(present, result, "0123456789", beginning);
        replaceAmong(present, result, isHex_ ? "ABCDEF" : "ABCDEFGHIJKLMNOPQRSTUVWXYZ", beginning);
        return result;
    }

    void replaceAmong(const std::string& present, std::string& result, std::string_view kind,
                      std::string_view beginning) {
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < present.size(); ++i) {
            // A zero in front stays one: nothing becomes a number of another length.
            const bool isLeadingZero = beginning.empty() && present[i] == '0';
            if (kind.find(present[i]) != std::string_view::npos && !isLeadingZero) {
                places.push_back(i);
            }
        }
        std::string choice(beginning.empty() && isDigit(kind.front()) ? kind.substr(1) : kind);
        shuffle(choice, std::string(1, kind.front()).append(beginning));
        choice.resize(places.size());
        std::sort(choice.begin(), choice.end());
        for (std::size_t i = 0; i < places.size(); ++i) {
            result[places[i]] = choice[i];
        }
    }

    /// Into an order that the key and `what` decide.
    void shuffle(std::string& characters, const std::string& what) const {
        Sha256 hash;
        hash.add(key_);
        hash.add(what);
        const Sha256::Digest random = hash.finish();
        for (std::size_t i = characters.size(); i > 1; --i) {
            std::swap(characters[i - 1], characters[random.at(i) % i]);
        }
    }

    bool isHex_;
    std::string key_;
    std::map<std::string, std::string> madeUp_;
};

/// What becomes of the secrets of a kind; none of them is made up for another.
std::map<std::string, std::string> inventFor(const std::set<std::string>& secrets, bool isHex,
                                             std::string_view key) {
    std::set<std::string> capitals;
    for (const std::string& secret : secrets) {
        capitals.insert(inCapitals(secret));
    }
    constexpr int mostAttempts = 100;
    std::map<std::string, std::string> result;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        result = Inventor(isHex, std::string(key) + "/" + std::to_string(attempt)).invent(capitals);
        const bool isFree = std::none_of(result.begin(), result.end(), [&](const auto& pair) {
            return capitals.count(pair.second) != 0;
        });
        if (isFree) {
            break;
        }
    }
    return result;
}

/// The made-up text with small letters where the text has them.
std::string inLettersOf(std::string_view text, std::string_view madeUp) {
    std::string result(madeUp);
    for (std::size_t i = 0; i < result.size(); ++i) {
        if (text[i] != text::upper(text[i])) {
            result[i] = text::lower(result[i]);
        }
    }
    return result;
}

/// Whether something of letters and digits does not go on to the left of a place; the "0x" of a
/// number is no part of it.
bool beginsAt(std::string_view line, std::size_t at) {
    if (at == 0 || (!isDigit(line[at - 1]) && !isLetter(line[at - 1]))) {
        return true;
    }
    return at >= 2 && text::lower(line[at - 1]) == 'x' && line[at - 2] == '0' &&
           beginsAt(line, at - 2);
}

bool endsAt(std::string_view line, std::size_t end) {
    return end == line.size() || (!isDigit(line[end]) && !isLetter(line[end]));
}

} // namespace

Secrets secretsOf(const Snapshot& snapshot) {
    Secrets secrets;
    addTo(secrets.serialNumbers, snapshot.machine.serialNumber);
    for (const ControllerSnapshot& controller : snapshot.details) {
        addTo(secrets.serialNumbers, controller.facts.serialNumber);
        for (const DriveFacts& drive : controller.facts.drives) {
            addTo(secrets.serialNumbers, drive.serialNumber);
            addAddresses(drive.wwn, secrets.addresses);
        }
        for (const LogicalDriveFacts& drive : controller.facts.logicalDrives) {
            addTo(secrets.names, drive.name);
        }
    }
    return secrets;
}

void addRecordedSecrets(const std::vector<RecordedCall>& calls, Secrets& secrets) {
    for (const RecordedCall& recorded : calls) {
        if (const auto* const firmware = std::get_if<FirmwareCall>(&recorded.call)) {
            addTo(secrets.serialNumbers, firmware->names.serialNumber);
        }
        const auto* const child = std::get_if<ChildCall>(&recorded.call);
        if (child == nullptr) {
            continue;
        }
        eachLine(child->result.output, [&](std::string_view line) {
            const KeyedLine keyed = keyedLine(line);
            if (namesSerialNumber(keyed.key)) {
                addTo(secrets.serialNumbers, keyed.value);
            } else if (namesAddress(keyed.key)) {
                addAddresses(keyed.value, secrets.addresses);
            }
        });
    }
}

Redactor::Redactor(const Secrets& secrets, std::string_view key) {
    const std::string text(key);
    const auto addresses = inventFor(secrets.addresses, true, text + "address");
    std::set<std::string> others;
    for (const std::string& secret : secrets.serialNumbers) {
        if (addresses.count(inCapitals(secret)) == 0) {
            others.insert(secret);
        }
    }
    const auto serialNumbers = inventFor(others, false, text + "serial");
    add(addresses);
    add(serialNumbers);
    addresses_ = addresses.size();
    serialNumbers_ = serialNumbers.size();
    const auto names = inventFor(secrets.names, false, text + "name");
    for (const std::string& name : secrets.names) {
        names_[name] = inLettersOf(name, names.at(inCapitals(name)));
    }
    for (auto& [start, list] : entries_) {
        std::stable_sort(list.begin(), list.end(), [](const Entry& a, const Entry& b) {
            return a.secret.size() > b.secret.size();
        });
    }
}

void Redactor::add(const std::map<std::string, std::string>& madeUp) {
    for (const auto& [secret, text] : madeUp) {
        Entry entry{secret, text};
        const std::size_t digits = countOf(secret, isDigit);
        entry.isDistinct = digits >= manyDigits || (digits > 0 && countOf(secret, isLetter) > 0);
        std::array<char, startSize> start{};
        std::copy_n(secret.begin(), startSize, start.begin());
        entries_[start].push_back(std::move(entry));
    }
}

const Redactor::Entry* Redactor::entryAt(std::string_view line, std::size_t at,
                                         bool tellsSerials) const {
    std::array<char, startSize> start{};
    std::transform(line.begin() + static_cast<std::ptrdiff_t>(at),
                   line.begin() + static_cast<std::ptrdiff_t>(at + startSize), start.begin(),
                   text::upper);
    const auto found = entries_.find(start);
    if (found == entries_.end()) {
        return nullptr;
    }
    const std::string rest = inCapitals(line.substr(at, longestSecret));
    for (const Entry& entry : found->second) {
        if (!rest.starts_with(entry.secret)) {
            continue;
        }
        const bool begins = beginsAt(line, at);
        const bool ends = endsAt(line, at + entry.secret.size());
        const bool isLong = entry.secret.size() >= manyDigits;
        const bool hasLetter = countOf(entry.secret, isLetter) > 0;
        // An inquiry text runs the serial number together with what stands beside it.
        if ((tellsSerials && (begins || ends)) || (entry.isDistinct && begins && ends) ||
            (entry.isDistinct && isLong && hasLetter)) {
            return &entry;
        }
    }
    return nullptr;
}

void Redactor::redactLine(std::string_view line, std::string& result) const {
    const KeyedLine keyed = keyedLine(line);
    if (hasWord(keyed.key, {"name"})) {
        const std::string_view value = text::trim(keyed.value, jsonFrame);
        if (const auto name = names_.find(std::string(value)); name != names_.end()) {
            const auto begin = static_cast<std::size_t>(value.data() - line.data());
            result.append(line.substr(0, begin)).append(name->second);
            result += line.substr(begin + value.size());
            return;
        }
    }
    const bool tellsSerials =
        namesSerialNumber(keyed.key) || namesAddress(keyed.key) || hasWord(keyed.key, {"inquiry"});
    for (std::size_t at = 0; at < line.size();) {
        const Entry* const entry =
            at + startSize <= line.size() ? entryAt(line, at, tellsSerials) : nullptr;
        if (entry == nullptr) {
            result += line[at];
            ++at;
            continue;
        }
        result += inLettersOf(line.substr(at, entry->secret.size()), entry->madeUp);
        at += entry->secret.size();
    }
}

std::string Redactor::redacted(std::string_view text) const {
    std::string result;
    result.reserve(text.size());
    eachLine(text, [&](std::string_view line) { redactLine(line, result); });
    return result;
}

std::string Redactor::redactedSerialNumber(std::string_view text) const {
    if (text.size() >= startSize) {
        const Entry* const entry = entryAt(text, 0, true);
        if (entry != nullptr && entry->secret.size() == text.size()) {
            return inLettersOf(text, entry->madeUp);
        }
    }
    return redacted(text);
}

void redact(Recording& recording, const Redactor& redactor) {
    recording.header.isRedacted = true;
    for (std::string& argument : recording.header.argv) {
        argument = redactor.redactedSerialNumber(argument);
    }
    for (RecordedCall& recorded : recording.calls) {
        if (auto* const child = std::get_if<ChildCall>(&recorded.call)) {
            child->result.output = redactor.redacted(child->result.output);
        } else if (auto* const firmware = std::get_if<FirmwareCall>(&recorded.call)) {
            firmware->names.serialNumber =
                redactor.redactedSerialNumber(firmware->names.serialNumber);
        }
    }
}

std::string randomKey() {
    std::random_device device;
    std::string key = std::to_string(system::elapsed().count());
    constexpr int words = 8;
    for (int i = 0; i < words; ++i) {
        key += "/" + std::to_string(device());
    }
    return key;
}

} // namespace zolex::companion
