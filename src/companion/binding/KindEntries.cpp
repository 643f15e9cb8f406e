#include "companion/binding/KindEntries.h"

#include "companion/text/Sizes.h"
#include "foundation/Text.h"
#include "model/Codes.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion {

namespace {

constexpr const char* drivesHelp =
    "write how many and which: 2 x SSD <500GB, rest of one size, all HDD, slots 32:0,32:1";
constexpr const char* sizeHelp = "sizes are <500GB, >1TB, =300GB or 200GB-400GB, without blanks";
constexpr const char* sparesHelp =
    "write how many, or which: 1, 1 covering A,B, slots 32:7, serials 3LQ2A000";
constexpr const char* levelHelp = "write levels between else: 6 else 5 else 1";
constexpr std::int32_t mostOfAnyController = 256; ///< drives of an array, in several spans
constexpr std::size_t longestQuoted = 40;

constexpr std::array<std::string_view, 2> mediaWords = {"SSD", "HDD"};
constexpr std::array<std::string_view, 5> protocolWords = {"SAS", "SATA", "SCSI", "PATA", "NVMe"};

struct SizeUnit {
    std::string_view name;
    std::uint64_t bytes;
    std::uint64_t scale; ///< show prints whole parts of a unit over this
};
/// The largest first.
constexpr std::array<SizeUnit, 5> sizeUnits{{{"PB", std::uint64_t{1} << 50U, 100},
                                             {"TB", std::uint64_t{1} << 40U, 100},
                                             {"GB", std::uint64_t{1} << 30U, 10},
                                             {"MB", std::uint64_t{1} << 20U, 1},
                                             {"KB", std::uint64_t{1} << 10U, 1}}};

/// Parts of a unit in bytes, to the nearest.
std::uint64_t bytesOf(std::uint64_t parts, const SizeUnit& unit, std::uint64_t scale) {
    return parts / scale * unit.bytes + (parts % scale * unit.bytes + scale / 2) / scale;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string inCapitals(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), text::upper);
    return result;
}

std::string quotedWord(std::string_view text) {
    return "\"" + std::string(text.substr(0, longestQuoted)) +
           (text.size() > longestQuoted ? "...\"" : "\"");
}

bool isWord(const KindWord& word, std::string_view text) {
    return text::equalsNoCase(word.text, text);
}

/// The words of a value; past its end stands an empty one.
class WordReader {
  public:
    WordReader(std::string_view value, std::int32_t column) : value_(value), column_(column) {
        split();
    }

    [[nodiscard]] const KindWord& peek() const { return words_[at_]; }
    [[nodiscard]] const KindWord& peekNext() const {
        return words_[std::min(at_ + 1, words_.size() - 1)];
    }
    [[nodiscard]] bool isAtEnd() const { return at_ + 1 == words_.size(); }
    const KindWord& take() {
        const KindWord& word = words_[at_];
        at_ += isAtEnd() ? 0 : 1;
        return word;
    }
    bool takeIf(std::string_view text) {
        const bool isThere = !isAtEnd() && isWord(peek(), text);
        at_ += isThere ? 1 : 0;
        return isThere;
    }
    /// What stands from the word at hand on, up to the word `end`, as the fields of a list between
    /// commas; blanks around them are no part of them.
    std::vector<KindWord> takeList(std::string_view end = {}, std::string_view otherEnd = {}) {
        const std::int32_t first = peek().column;
        std::int32_t last = first;
        while (!isAtEnd() && (end.empty() || !isWord(peek(), end)) &&
               (otherEnd.empty() || !isWord(peek(), otherEnd))) {
            last = take().endColumn;
        }
        return fields(first, last);
    }

  private:
    [[nodiscard]] std::int32_t columnOf(std::size_t byte) const {
        return column_ + static_cast<std::int32_t>(byte);
    }
    [[nodiscard]] KindWord part(std::size_t first, std::size_t end) const {
        return {std::string(value_.substr(first, end - first)), columnOf(first), columnOf(end)};
    }

    void split() {
        for (std::size_t at = 0; at < value_.size();) {
            if (isBlank(value_[at])) {
                ++at;
                continue;
            }
            const std::size_t first = at;
            while (at < value_.size() && !isBlank(value_[at])) {
                ++at;
            }
            words_.push_back(part(first, at));
        }
        words_.push_back(part(value_.size(), value_.size()));
    }

    [[nodiscard]] std::vector<KindWord> fields(std::int32_t firstColumn,
                                               std::int32_t endColumn) const {
        std::vector<KindWord> result;
        const auto end = static_cast<std::size_t>(endColumn - column_);
        for (std::size_t at = static_cast<std::size_t>(firstColumn - column_);;) {
            const std::size_t comma = std::min(value_.find(',', at), end);
            std::size_t first = at;
            std::size_t last = comma;
            while (first < last && isBlank(value_[first])) {
                ++first;
            }
            while (last > first && isBlank(value_[last - 1])) {
                --last;
            }
            result.push_back(part(first, last));
            if (comma == end) {
                return result;
            }
            at = comma + 1;
        }
    }

    std::string_view value_;
    std::int32_t column_;
    std::vector<KindWord> words_;
    std::size_t at_ = 0;
};

/// A word at fault ends the reading.
struct Fail {
    KindFault fault;
};

[[noreturn]] void fail(const KindWord& word, std::string what, std::string help) {
    throw Fail{{word, std::move(what), std::move(help)}};
}

[[noreturn]] void failUnexpected(const KindWord& word, const std::string& wanted,
                                 const std::string& help) {
    fail(word,
         word.text.empty() ? wanted + " is missing"
                           : quotedWord(word.text) + " stands where " + wanted + " is wanted",
         help);
}

std::int32_t countOf(const KindWord& word, std::int32_t most, const char* things,
                     const char* help) {
    const bool isNumber =
        !word.text.empty() && std::all_of(word.text.begin(), word.text.end(),
                                          [](char c) { return c >= '0' && c <= '9'; });
    if (!isNumber) {
        failUnexpected(word, std::string("a number of ") + things, help);
    }
    const std::optional<std::int32_t> number = text::wholeNumber(word.text);
    if (!number || *number < 1 || *number > most) {
        fail(word,
             quotedWord(word.text) + " is no number of " + things + " from 1 to " +
                 std::to_string(most),
             help);
    }
    return *number;
}

/// A list of slots or serial numbers.
std::vector<KindWord> namesOf(WordReader& words, const char* thing, std::int32_t most,
                              const char* help, std::string_view end = {},
                              std::string_view otherEnd = {}) {
    std::vector<KindWord> names = words.takeList(end, otherEnd);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const KindWord& name = names[i];
        if (name.text.empty()) {
            fail(name, std::string("a ") + thing + " is missing", help);
        }
        if (std::any_of(name.text.begin(), name.text.end(), isBlank)) {
            fail(name, "no comma between the words of " + quotedWord(name.text), help);
        }
        if (i == static_cast<std::size_t>(most)) {
            fail(name, "more than " + std::to_string(most) + " drives", help);
        }
        const auto before = names.begin() + static_cast<std::ptrdiff_t>(i);
        if (std::any_of(names.begin(), before, [&name](const KindWord& other) {
                return text::equalsNoCase(other.text, name.text);
            })) {
            fail(name, quotedWord(name.text) + " stands there twice", "name each drive once");
        }
    }
    return names;
}

/// One size of a condition, and its words: "500 GB".
struct ReadSize {
    std::uint64_t bytes = 0;
    std::string words;
};

/// "500GB", "1.82TB": up to seven digits, and up to three behind a point.
std::optional<ReadSize> sizeOf(std::string_view text) {
    constexpr std::size_t mostWhole = 7;
    constexpr std::size_t mostDecimals = 3;
    const auto digits = [&text] {
        const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
        const std::string_view found = text.substr(0, end);
        text.remove_prefix(end);
        return found;
    };
    const std::string_view whole = digits();
    std::string_view decimals;
    if (whole.empty() || whole.size() > mostWhole) {
        return std::nullopt;
    }
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        decimals = digits();
        if (decimals.empty() || decimals.size() > mostDecimals) {
            return std::nullopt;
        }
    }
    std::uint64_t parts = 0;
    std::uint64_t scale = 1;
    for (const std::string_view run : {whole, decimals}) {
        for (const char c : run) {
            parts = parts * 10 + static_cast<std::uint64_t>(c - '0');
        }
    }
    for (std::size_t i = 0; i < decimals.size(); ++i) {
        scale *= 10;
    }
    for (const std::string_view name : {"TB", "GB", "MB"}) {
        if (text::equalsNoCase(text, name)) {
            const auto* const unit =
                std::find_if(sizeUnits.begin(), sizeUnits.end(),
                             [name](const SizeUnit& row) { return row.name == name; });
            std::string words(whole);
            words += decimals.empty() ? "" : "." + std::string(decimals);
            return ReadSize{bytesOf(parts, *unit, scale), words + " " + std::string(name)};
        }
    }
    return std::nullopt;
}

bool looksLikeSize(std::string_view word) {
    return !word.empty() && (word[0] == '<' || word[0] == '>' || word[0] == '=' ||
                             (word[0] >= '0' && word[0] <= '9'));
}

[[noreturn]] void failSize(const KindWord& word) {
    fail(word, quotedWord(word.text) + " is no size", sizeHelp);
}

SizeCondition conditionOf(const KindWord& word) {
    const std::string_view text = word.text;
    SizeCondition condition;
    if (text[0] != '<' && text[0] != '>' && text[0] != '=') {
        const std::size_t dash = std::min(text.find('-'), text.size());
        const auto low = sizeOf(text.substr(0, dash));
        const auto high = sizeOf(text.substr(std::min(dash + 1, text.size())));
        if (!low || !high) {
            failSize(word);
        }
        if (low->bytes > high->bytes) {
            fail(word, "the first size of " + quotedWord(word.text) + " is the larger one",
                 "write the smaller one first: 200GB-400GB");
        }
        condition.kind = SizeCondition::Kind::between;
        condition.low = low->bytes;
        condition.high = high->bytes;
        condition.words = "from " + low->words + " to " + high->words;
        return condition;
    }
    const auto size = sizeOf(text.substr(1));
    if (!size) {
        failSize(word);
    }
    const bool isBelow = text[0] == '<';
    const bool isAbove = text[0] == '>';
    condition.kind = isBelow   ? SizeCondition::Kind::below
                     : isAbove ? SizeCondition::Kind::above
                               : SizeCondition::Kind::about;
    condition.low = size->bytes;
    condition.words = (isBelow ? "below " : isAbove ? "above " : "of ") + size->words;
    return condition;
}

std::optional<std::string> wordAmong(const KindWord& word, const std::string_view* begin,
                                     const std::string_view* end) {
    const auto* const found =
        std::find_if(begin, end, [&word](std::string_view row) { return isWord(word, row); });
    return found == end ? std::nullopt : std::optional(std::string(*found));
}

class DrivesReader {
  public:
    DrivesReader(std::string_view value, std::int32_t column) : words_(value, column) {}

    DrivesWish run() {
        if (words_.takeIf("slots")) {
            return byName(KindForm::slots, "slot");
        }
        if (words_.takeIf("serials")) {
            return byName(KindForm::serials, "serial number");
        }
        readOrder();
        readAmount();
        while (!words_.isAtEnd()) {
            readCondition();
        }
        return std::move(wish_);
    }

  private:
    DrivesWish byName(KindForm form, const char* thing) {
        wish_.form = form;
        wish_.names = namesOf(words_, thing, mostOfAnyController, drivesHelp);
        return std::move(wish_);
    }

    void readOrder() {
        if (words_.takeIf("smallest")) {
            wish_.order = DrivesWish::Order::smallest;
        } else if (words_.takeIf("largest")) {
            wish_.order = DrivesWish::Order::largest;
        }
    }

    void readAmount() {
        if (words_.takeIf("rest")) {
            wish_.amount = DrivesWish::Amount::rest;
        } else if (words_.takeIf("all")) {
            wish_.amount = DrivesWish::Amount::all;
        } else {
            wish_.count = countOf(words_.take(), mostOfAnyController, "drives", drivesHelp);
            if (!words_.takeIf("x")) {
                failUnexpected(words_.peek(), "\"x\"", drivesHelp);
            }
        }
    }

    void readCondition() {
        const KindWord& word = words_.take();
        if (const auto media = wordAmong(word, mediaWords.begin(), mediaWords.end())) {
            once(word, !wish_.media.empty(), "a media type");
            wish_.media = *media;
        } else if (const auto protocol =
                       wordAmong(word, protocolWords.begin(), protocolWords.end())) {
            once(word, !wish_.protocol.empty(), "a protocol");
            wish_.protocol = *protocol;
        } else if (isWord(word, "any")) {
            readSizeWord(word);
            wish_.anySize = true;
        } else if (isWord(word, "of")) {
            if (!words_.takeIf("one")) {
                failUnexpected(words_.peek(), "\"one size\"", drivesHelp);
            }
            readSizeWord(word);
        } else if (looksLikeSize(word.text)) {
            once(word, wish_.size.has_value(), "a size");
            wish_.size = conditionOf(word);
        } else {
            fail(word, quotedWord(word.text) + " says nothing of drives",
                 "say SSD or HDD, SAS, SATA, SCSI or PATA, a size such as <500GB, or any size");
        }
    }

    void readSizeWord(const KindWord& word) {
        if (!words_.takeIf("size")) {
            failUnexpected(words_.peek(), "\"size\"", drivesHelp);
        }
        once(word, isSizeRuleGiven_, "any size or of one size");
        isSizeRuleGiven_ = true;
    }

    static void once(const KindWord& word, bool isGiven, const char* thing) {
        if (isGiven) {
            fail(word, std::string(thing) + " is given twice", "leave one of them");
        }
    }

    WordReader words_;
    DrivesWish wish_;
    bool isSizeRuleGiven_ = false;
};

class SparesReader {
  public:
    SparesReader(std::string_view value, std::int32_t column) : words_(value, column) {}

    SparesWish run() {
        SparesWish wish;
        if (words_.takeIf("slots")) {
            wish.form = KindForm::slots;
            readNamed("slots", "slot", wish);
            return wish;
        }
        if (words_.takeIf("serials")) {
            wish.form = KindForm::serials;
            readNamed("serials", "serial number", wish);
            return wish;
        }
        do {
            wish.groups.push_back(readGroup());
        } while (words_.takeIf("and"));
        if (!words_.isAtEnd()) {
            fail(words_.peek(), quotedWord(words_.peek().text) + " is no \"and\"", sparesHelp);
        }
        return wish;
    }

  private:
    /// Names, and the arrays that they cover where some do: "slots 32:6 covering A and slots 32:7".
    void readNamed(std::string_view form, const char* thing, SparesWish& wish) {
        bool coversSome = false;
        do {
            SpareGroup group;
            std::vector<KindWord> names =
                namesOf(words_, thing, mostKindSpares, sparesHelp, "covering", "and");
            group.count = static_cast<std::int32_t>(names.size());
            total_ += group.count;
            if (total_ > mostKindSpares) {
                fail(names.front(), "more than " + std::to_string(mostKindSpares) + " drives",
                     sparesHelp);
            }
            wish.names.insert(wish.names.end(), names.begin(), names.end());
            readCovers(group);
            coversSome = coversSome || !group.covers.empty();
            wish.groups.push_back(std::move(group));
        } while (words_.takeIf("and") && takeForm(form));
        if (!words_.isAtEnd()) {
            fail(words_.peek(), quotedWord(words_.peek().text) + " is no \"and\"", sparesHelp);
        }
        if (!coversSome) {
            wish.groups.clear();
        }
    }

    bool takeForm(std::string_view form) {
        if (!words_.takeIf(form)) {
            failUnexpected(words_.peek(), "\"" + std::string(form) + "\"", sparesHelp);
        }
        return true;
    }

    SpareGroup readGroup() {
        SpareGroup group;
        const KindWord& word = words_.take();
        group.count = countOf(word, mostKindSpares, "hot spares", sparesHelp);
        total_ += group.count;
        if (total_ > mostKindSpares) {
            fail(word, "more than " + std::to_string(mostKindSpares) + " hot spares", sparesHelp);
        }
        readCovers(group);
        return group;
    }

    void readCovers(SpareGroup& group) {
        if (!words_.takeIf("covering")) {
            return;
        }
        group.covers = words_.takeList("and");
        for (KindWord& letter : group.covers) {
            const char c = letter.text.size() == 1 ? text::upper(letter.text[0]) : '\0';
            if (c < 'A' || c > 'H') {
                failUnexpected(letter, "the letter of an array", sparesHelp);
            }
            letter.text = std::string(1, c);
        }
    }

    WordReader words_;
    std::int32_t total_ = 0;
};

LevelWish readChoices(WordReader words) {
    LevelWish wish;
    do {
        const KindWord& word = words.take();
        const std::optional<std::int32_t> level =
            word.text.empty() ? std::nullopt : policy_value::raidLevel(word.text);
        if (!level || *level == raid_level::notGiven) {
            failUnexpected(word, "a RAID level", levelHelp);
        }
        if (std::any_of(
                wish.choices.begin(), wish.choices.end(),
                [&level](const LevelWish::Choice& other) { return other.level == *level; })) {
            fail(word, quotedWord(word.text) + " stands there twice", "leave one of them");
        }
        wish.choices.push_back({{inCapitals(word.text), word.column, word.endColumn}, *level});
    } while (words.takeIf("else"));
    if (!words.isAtEnd()) {
        fail(words.peek(), quotedWord(words.peek().text) + " is no \"else\"", levelHelp);
    }
    return wish;
}

template <typename Wish, typename Read>
KindReading<Wish> readWith(const Read& read) {
    try {
        return {read(), std::nullopt};
    } catch (const Fail& failure) {
        return {std::nullopt, failure.fault};
    }
}

bool isLetterOfKeyword(std::string_view text) {
    const char letter = text.size() == 1 ? text::upper(text[0]) : '\0';
    return letter >= 'A' && letter <= 'Z';
}

} // namespace

bool isSpansKeyword(std::string_view keyword) {
    return text::equalsNoCase(keyword, "Spans");
}

bool isKindKeyword(std::string_view keyword) {
    if (text::equalsNoCase(keyword, "Spares") || isSpansKeyword(keyword)) {
        return true;
    }
    const std::size_t dot = keyword.find('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string_view name = keyword.substr(0, dot);
    return (text::equalsNoCase(name, "Drives") || text::equalsNoCase(name, "Level")) &&
           isLetterOfKeyword(keyword.substr(dot + 1));
}

std::uint64_t shownSize(std::uint64_t bytes) {
    for (const SizeUnit& unit : sizeUnits) {
        if (bytes >= unit.bytes) {
            const std::uint64_t rest = bytes % unit.bytes;
            return bytesOf(bytes / unit.bytes * unit.scale +
                               (rest * unit.scale + unit.bytes / 2) / unit.bytes,
                           unit, unit.scale);
        }
    }
    return bytes;
}

bool SizeCondition::holds(std::uint64_t bytes) const {
    constexpr std::uint64_t hundredth = 100;
    switch (kind) {
    case Kind::below:
        return bytes < low;
    case Kind::above:
        return bytes > low;
    case Kind::about:
        return bytes >= low - low / hundredth && bytes <= low + low / hundredth;
    case Kind::between:
        return bytes >= low && bytes <= high;
    }
    return false;
}

std::string DrivesWish::kindWords() const {
    std::string words = protocol;
    words += words.empty() || media.empty() ? media : " " + media;
    words += words.empty() ? "drives" : "";
    return size ? words + " " + size->words : words;
}

KindReading<DrivesWish> readDrivesWish(std::string_view value, std::int32_t column) {
    return readWith<DrivesWish>([&] { return DrivesReader(value, column).run(); });
}

KindReading<SparesWish> readSparesWish(std::string_view value, std::int32_t column) {
    return readWith<SparesWish>([&] { return SparesReader(value, column).run(); });
}

KindReading<LevelWish> readLevelWish(std::string_view value, std::int32_t column) {
    return readWith<LevelWish>([&] { return readChoices(WordReader(value, column)); });
}

} // namespace zolex::companion
