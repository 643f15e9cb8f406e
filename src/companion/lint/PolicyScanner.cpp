#include "companion/findings/Finding.h"
#include "companion/lint/FindingSink.h"
#include "companion/lint/Keywords.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/Rules.h"
#include "companion/lint/ValueChecks.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

// What zolex takes of a policies file.
constexpr std::size_t longestRead = 255; ///< bytes of a line; what is beyond is another line
constexpr std::size_t mostEntries = 50;
constexpr std::size_t mostPolicies = 100;
constexpr std::size_t longestLine = std::size_t{16} << 20U; ///< no file with a longer one is read
constexpr std::string_view namePrefix = "Policy.";

bool isNameCharacter(char c) {
    const char lower = text::lower(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
           c == '-';
}

bool hasNamePrefix(std::string_view name) {
    return text::equalsNoCase(name.substr(0, namePrefix.size()), namePrefix);
}

bool isPolicyName(std::string_view name) {
    return name.size() > namePrefix.size() && hasNamePrefix(name) &&
           std::all_of(name.begin() + namePrefix.size(), name.end(), isNameCharacter);
}

/// The name with what no name may hold as "-".
std::string mendedName(std::string_view name) {
    // Blanks and a second "[" before it are no part of it.
    name = text::trim(name.substr(std::min(name.find_first_not_of(" \t["), name.size())));
    std::string rest(text::trim(hasNamePrefix(name) ? name.substr(namePrefix.size()) : name));
    const bool isReadable = std::any_of(rest.begin(), rest.end(), isNameCharacter);
    for (char& c : rest) {
        c = isNameCharacter(c) ? c : '-';
    }
    return std::string(namePrefix) + (isReadable ? rest : "name");
}

/// What zolex reads as one line: a line of the file, or 255 bytes of a longer one.
struct ReadLine {
    std::string_view text; ///< without its line end
    TextPlace start;
    bool isRest = false; ///< what is beyond the first 255 bytes

    /// The place of a byte of it.
    [[nodiscard]] TextPlace place(std::size_t byte) const {
        return {start.line, start.column + static_cast<std::int32_t>(byte),
                start.byte + static_cast<std::int64_t>(byte)};
    }
    /// A part of it.
    [[nodiscard]] Piece piece(std::size_t first, std::size_t length) const {
        return {std::string(text.substr(first, length)), place(first), place(first + length)};
    }
    [[nodiscard]] Piece trimmed(std::size_t first, std::size_t length) const {
        const std::string_view whole = text.substr(first, length);
        const std::string_view inner = text::trim(whole);
        const std::size_t before =
            inner.empty() ? 0 : static_cast<std::size_t>(inner.data() - whole.data());
        return piece(first + before, inner.size());
    }
};

/// What kind of line zolex sees.
enum class LineKind { nothing, comment, header, entry };

struct Body {
    std::size_t first = 0; ///< first byte that is no space; the line's length without one
    LineKind kind = LineKind::nothing;
    /// The first byte that is neither space nor tab, when tabs before it hide a "[" or ";".
    char hidden = '\0';
};

Body bodyOf(std::string_view line) {
    Body body;
    body.first = std::min(line.find_first_not_of(' '), line.size());
    const char first = body.first < line.size() ? line[body.first] : '\r';
    body.kind = first == '\r'  ? LineKind::nothing
                : first == ';' ? LineKind::comment
                : first == '[' ? LineKind::header
                               : LineKind::entry;
    if (first == '\t') {
        const std::size_t inner = line.find_first_not_of(" \t");
        if (inner != std::string_view::npos && (line[inner] == '[' || line[inner] == ';')) {
            body.hidden = line[inner];
        }
    }
    return body;
}

/// The id in capitals when there are rules that begin so; empty otherwise. A bare "ZX" would
/// silence everything.
std::string knownId(std::string_view text) {
    std::string id(text);
    std::transform(id.begin(), id.end(), id.begin(), text::upper);
    const std::span<const Rule> all = rules();
    const bool isKnown =
        id.size() > 2 && std::any_of(all.begin(), all.end(),
                                     [&id](const Rule& rule) { return rule.id.starts_with(id); });
    return isKnown ? id : std::string();
}

/// The rule ids of "; zolexctl: ignore ZX411,ZX5"; none for any other comment.
std::vector<std::string> ignoredRules(std::string_view comment) {
    const auto takeWord = [&comment](std::string_view word) {
        comment.remove_prefix(std::min(comment.find_first_not_of(" \t;"), comment.size()));
        if (!text::equalsNoCase(comment.substr(0, word.size()), word)) {
            return false;
        }
        comment.remove_prefix(word.size());
        return true;
    };
    std::vector<std::string> rules;
    if (!takeWord("zolexctl:") || !takeWord("ignore") || comment.empty() ||
        (comment[0] != ' ' && comment[0] != '\t')) {
        return rules;
    }
    while (!comment.empty()) {
        comment.remove_prefix(std::min(comment.find_first_not_of(" \t,"), comment.size()));
        const std::string_view id = comment.substr(0, comment.find_first_of(" \t,"));
        comment.remove_prefix(id.size());
        if (std::string known = knownId(id); !known.empty()) {
            rules.push_back(std::move(known));
        }
    }
    return rules;
}

/// One reading of a policies file.
class Scanner {
  public:
    Scanner(std::string file, std::string text) : sink_(file) {
        document_.file = std::move(file);
        document_.text = std::move(text);
    }

    PolicyDocument run() {
        findLines();
        checkEncoding();
        for (std::size_t i = 0; i < document_.lineStarts.size() && !isOver_; ++i) {
            scanLine(static_cast<std::int32_t>(i + 1));
        }
        endPolicy();
        if (document_.policies.empty() && !hasShapeError()) {
            sink_.addToFile("ZX013", "no policy in the file",
                            {"a policy begins with a line such as [Policy.web]"});
        }
        document_.findings = sink_.take();
        std::stable_sort(
            document_.findings.begin(), document_.findings.end(),
            [](const Finding& a, const Finding& b) { return a.start.byte < b.start.byte; });
        return std::move(document_);
    }

  private:
    /// Whether something is found that explains why there is no policy.
    [[nodiscard]] bool hasShapeError() const {
        const std::vector<Finding>& all = sink_.findings();
        return std::any_of(all.begin(), all.end(), [](const Finding& finding) {
            return finding.severity == Severity::error && finding.code != "ZX002";
        });
    }

    void findLines() {
        const std::string& text = document_.text;
        for (std::size_t at = 0; at < text.size();) {
            document_.lineStarts.push_back(at);
            const std::size_t end = text.find('\n', at);
            at = end == std::string::npos ? text.size() : end + 1;
        }
    }

    /// ZX002. What else is found in such a file is of no use to anybody.
    void checkEncoding() {
        using namespace std::string_view_literals;
        const std::string_view text = document_.text;
        const std::vector<std::string> help = {
            "save it as plain text: ASCII, or UTF-8 without a byte-order mark"};
        const TextPlace begin{1, 1, 0};
        const auto markEnd = [](std::int32_t length) { return TextPlace{1, 1 + length, length}; };
        if (text.starts_with("\xEF\xBB\xBF")) {
            sink_.add("ZX002", begin, markEnd(3), "byte-order mark before the first line", help);
        } else if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
            sink_.add("ZX002", begin, markEnd(2), "the file is UTF-16", help);
        } else if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
            const bool looksWide = nul <= 1 && text.size() >= 4 && (text[3] == '\0') == (nul == 1);
            sink_.add("ZX002", document_.placeOf(nul), document_.placeOf(nul + 1),
                      looksWide ? "the file is UTF-16 without a byte-order mark"
                                : "NUL byte in the file",
                      help);
        }
    }

    /// One line of the file, as zolex takes it apart.
    void scanLine(std::int32_t number) {
        const std::string_view line = document_.line(number);
        const TextPlace start{
            number, 1,
            static_cast<std::int64_t>(document_.lineStarts[static_cast<std::size_t>(number) - 1])};
        if (line.size() > longestLine) {
            sink_.add("ZX001", start, start, "a line of more than 16 MB",
                      {"zolex reads no file with such a line"});
            isOver_ = true;
            return;
        }
        const ReadLine first{line.substr(0, longestRead), start, false};
        isFaulty_ = false;
        scanPart(first);
        if (line.size() > longestRead) {
            scanRest(line, start);
        }
    }

    /// What stands beyond 255 bytes.
    void scanRest(std::string_view line, const TextPlace& start) {
        const bool wasFaulty = isFaulty_;
        const bool wasSkipping = isSkipping_;
        bool isHarmless = true;
        for (std::size_t at = longestRead; at < line.size() && !isFaulty_ && !isOver_;
             at += longestRead) {
            const ReadLine whole{line, start, false};
            const ReadLine part{line.substr(at, longestRead), whole.place(at), true};
            const LineKind kind = bodyOf(part.text).kind;
            isHarmless = isHarmless && (kind == LineKind::nothing || kind == LineKind::comment);
            scanPart(part);
        }
        if (wasFaulty || (wasSkipping && isSkipping_)) {
            return;
        }
        const ReadLine whole{line, start, false};
        const bool isComment = bodyOf(line).kind == LineKind::comment;
        Finding& finding = sink_.add("ZX012", whole.place(longestRead), whole.place(line.size()),
                                     "line of " + std::to_string(line.size()) +
                                         " characters: what is beyond 255 is read as another line",
                                     {isComment ? "make two lines of the comment"
                                                : "shorten it: no entry goes on in a second line"});
        if (!isFaulty_) {
            finding.refusedBy = RefusedBy::nobody;
            finding.severity = isHarmless ? Severity::warning : Severity::error;
            finding.detail = isHarmless ? "Nothing is lost: what is beyond is blank or a comment."
                                        : "zolex takes the file, with what stands there.";
        } else if (current_ != none) {
            // The entry is cut: nothing is to be said of its value.
            std::vector<DocumentEntry>& entries = policy().entries;
            while (!entries.empty() && entries.back().keyword.start.line == start.line) {
                entries.pop_back();
            }
            policy().isIncomplete = true;
        }
    }

    void scanPart(const ReadLine& line) {
        const Body body = bodyOf(line.text);
        if (body.kind == LineKind::nothing) {
            return;
        }
        if (body.kind == LineKind::comment) {
            if (!line.isRest) {
                keepIgnored(ignoredRules(line.text.substr(body.first)));
            }
            return;
        }
        const bool opens = body.kind == LineKind::header || body.hidden == '[';
        placeIgnored(line.start.line, opens);
        if (body.hidden != '\0') {
            scanHidden(line, body);
        } else if (opens) {
            scanHeader(line, body.first);
        } else if (isSkipping_) {
            return;
        } else if (current_ == none) {
            failAt(line, "ZX003", line.trimmed(body.first, line.text.size() - body.first),
                   "text before the first policy",
                   {"a policy begins with a line such as [Policy.web]"});
            isSkipping_ = true;
        } else if (policy().entries.size() == mostEntries) {
            tooManyEntries(line, body.first);
        } else {
            scanEntry(line, body.first);
        }
    }

    /// ZX014. What was meant is read on, so that nothing else is found of it.
    void scanHidden(const ReadLine& line, const Body& body) {
        const std::size_t inner = line.text.find_first_not_of(" \t");
        const bool isComment = body.hidden == ';';
        if (isComment && isSkipping_) {
            return;
        }
        failAt(line, "ZX014", line.piece(body.first, inner - body.first),
               isComment ? "tab before the \";\": to zolex this line is no comment"
                         : "tab before the \"[\": to zolex this line begins no policy",
               {"take the tab out, or write blanks"});
        if (!isComment) {
            scanHeader(line, inner);
        }
    }

    void scanHeader(const ReadLine& line, std::size_t bracket) {
        endPolicy();
        isSkipping_ = false;
        const std::size_t end = line.text.find(']', bracket);
        const bool isClosed = end != std::string_view::npos;
        const Piece name = isClosed ? line.piece(bracket + 1, end - bracket - 1)
                                    : line.trimmed(bracket + 1, line.text.size() - bracket - 1);
        const Piece bracketPiece = line.piece(bracket, 1);
        if (!isClosed) {
            failAt(line, "ZX003", bracketPiece, "no \"]\" at the end of the policy's name",
                   {"write [" + mendedName(name.text) + "]"});
        } else if (!isPolicyName(name.text)) {
            failAt(line, "ZX004", name, "invalid name of a policy: " + quoted(name.text),
                   {"a name is Policy. and letters, digits, \".\", \"_\" or \"-\": [" +
                    mendedName(name.text) + "]"});
        } else if (const DocumentPolicy* first = findPolicy(name.text)) {
            Finding* finding =
                failAt(line, "ZX005", name, "a second policy of the name " + quoted(name.text),
                       {"give it another name; letter case makes no difference"});
            if (finding != nullptr) {
                finding->otherStart = first->name.start;
                finding->otherEnd = first->name.end;
                finding->other = "first here";
            }
        }
        if (!hasNamePrefix(name.text)) {
            current_ = none;
            isSkipping_ = true;
            return;
        }
        if (document_.policies.size() == mostPolicies) {
            failAt(line, "ZX010", name, "more than 100 policies",
                   {"zolex takes 100; make another file for the others"});
            isOver_ = true;
            return;
        }
        current_ = document_.policies.size();
        DocumentPolicy& added = document_.policies.emplace_back();
        added.name = name;
        added.header = bracketPiece.start;
    }

    /// ZX011: the policy has 50 entries.
    void tooManyEntries(const ReadLine& line, std::size_t first) {
        failAt(line, "ZX011", line.trimmed(first, line.text.size() - first),
               "more than 50 entries in " + policy().name.text,
               {"zolex takes 50 and reads the next line as the begin of a policy"});
        policy().isQuiet = true;
        policy().isIncomplete = true;
        isSkipping_ = true;
    }

    void scanEntry(const ReadLine& line, std::size_t first) {
        const std::size_t equals = line.text.find('=');
        if (equals == std::string_view::npos) {
            const Piece whole = line.trimmed(first, line.text.size() - first);
            if (whole.text.empty()) {
                failAt(line, "ZX006", line.piece(first, line.text.size() - first),
                       "a line of tabs: to zolex it is not blank", {"take the tabs out"});
            } else {
                failAt(line, "ZX006", whole, "no \"=\": " + quoted(whole.text),
                       {helpForLine(whole.text)});
            }
            policy().isIncomplete = true;
            return;
        }
        DocumentEntry entry;
        entry.keyword = line.trimmed(0, equals);
        entry.value = line.trimmed(equals + 1, line.text.size() - equals - 1);
        if (!isKnownKeyword(entry.keyword.text) && !isLaterKeyword(entry.keyword.text)) {
            failKeyword(line, entry.keyword);
            return;
        }
        policy().entries.push_back(std::move(entry));
    }

    static std::string helpForLine(std::string_view line) {
        const std::size_t end = std::min(line.find_first_of(" \t:"), line.size());
        const std::string_view rest = text::trim(line.substr(end), " \t:");
        const std::optional<std::string> keyword = usualSpelling(line.substr(0, end));
        return keyword && !rest.empty()
                   ? "write " + *keyword + " = " + std::string(rest)
                   : "every line is KEYWORD = VALUE; a comment begins with \";\"";
    }

    void failKeyword(const ReadLine& line, const Piece& keyword) {
        std::vector<std::string> help;
        if (const std::optional<std::string> nearest = nearestKeyword(keyword.text)) {
            help.push_back("did you mean " + *nearest + "?");
        } else {
            help.push_back(keywordHelp(keyword.text));
        }
        failAt(line, "ZX007", keyword,
               keyword.text.empty() ? "no keyword before the \"=\""
                                    : "unknown keyword " + quoted(keyword.text),
               std::move(help));
        policy().isIncomplete = true;
    }

    /// A fault of the line. Beyond its first 255 bytes ZX012 tells it. The finding, if there is
    /// one.
    Finding* failAt(const ReadLine& line, std::string_view rule, const Piece& piece,
                    std::string summary, std::vector<std::string> help) {
        isFaulty_ = true;
        return line.isRest ? nullptr : &sink_.add(rule, piece, std::move(summary), std::move(help));
    }

    /// What can be said of a policy when all of it has been read.
    void endPolicy() {
        if (current_ == none) {
            return;
        }
        const DocumentPolicy& ended = policy();
        checkRepeats(ended);
        const bool mayHaveIt = ended.isIncomplete && !ended.isQuiet;
        if (!mayHaveIt && ended.effective("AppliesTo.1") == nullptr) {
            sink_.add("ZX009", ended, "no AppliesTo.1 in " + ended.name.text,
                      {ended.isQuiet ? "zolex must find it among the first 50 entries"
                                     : "add AppliesTo.1 = ALL, or which controllers it is for"});
        }
        current_ = none;
    }

    /// ZX008. A second AppliesTo.1 tells of a lost header; what repeats behind it is no fault of
    /// its own, unless zolex tells of it.
    void checkRepeats(const DocumentPolicy& policy) {
        const std::vector<DocumentEntry>& all = policy.entries;
        bool isLost = false;
        for (const DocumentEntry& entry : all) {
            const DocumentEntry* first = policy.find(entry.keyword.text);
            if (first == &entry || (isLost && &entry != firstRepeat(all))) {
                continue;
            }
            const bool isHeader = text::equalsNoCase(entry.keyword.text, "AppliesTo.1");
            isLost = isLost || isHeader;
            Finding& finding =
                sink_.add("ZX008", entry.keyword,
                          entry.keyword.text + " is in " + policy.name.text + " twice",
                          {isHeader ? "is the [Policy.NAME] of a second policy missing before it?"
                                    : "leave one of the two lines"});
            finding.otherStart = first->keyword.start;
            finding.otherEnd = first->keyword.end;
            finding.other = "first here";
        }
    }

    /// The repeat that zolex tells of: that of the first keyword that is repeated.
    static const DocumentEntry* firstRepeat(const std::vector<DocumentEntry>& all) {
        for (std::size_t i = 0; i < all.size(); ++i) {
            for (std::size_t k = i + 1; k < all.size(); ++k) {
                if (text::equalsNoCase(all[i].keyword.text, all[k].keyword.text)) {
                    return &all[k];
                }
            }
        }
        return nullptr;
    }

    void keepIgnored(std::vector<std::string> rules) {
        for (std::string& id : rules) {
            if (std::find(pending_.begin(), pending_.end(), id) == pending_.end()) {
                pending_.push_back(std::move(id));
            }
        }
    }

    /// The ids of comments before this line hold for it, or for the policy that it opens.
    void placeIgnored(std::int32_t line, bool opensPolicy) {
        constexpr std::int32_t lastLine = std::numeric_limits<std::int32_t>::max();
        if (opensPolicy && policyIgnored_ != none) {
            document_.ignored[policyIgnored_].lastLine = line - 1;
            policyIgnored_ = none;
        }
        if (pending_.empty()) {
            return;
        }
        document_.ignored.push_back({std::move(pending_), line, opensPolicy ? lastLine : line});
        pending_.clear();
        if (opensPolicy) {
            policyIgnored_ = document_.ignored.size() - 1;
        }
    }

    [[nodiscard]] const DocumentPolicy* findPolicy(std::string_view name) const {
        const auto found = std::find_if(
            document_.policies.begin(), document_.policies.end(),
            [name](const DocumentPolicy& row) { return text::equalsNoCase(row.name.text, name); });
        return found == document_.policies.end() ? nullptr : &*found;
    }
    DocumentPolicy& policy() { return document_.policies[current_]; }

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    PolicyDocument document_;
    FindingSink sink_;
    std::size_t current_ = none;       ///< policy whose entries are read
    bool isSkipping_ = false;          ///< up to the next header
    bool isFaulty_ = false;            ///< the line has a fault
    bool isOver_ = false;              ///< zolex reads no further
    std::vector<std::string> pending_; ///< to be ignored in the next line that is no comment
    std::size_t policyIgnored_ = none; ///< what is ignored for the policy that is read
};

} // namespace

PolicyDocument scanPolicies(std::string file, std::string text) {
    return Scanner(std::move(file), std::move(text)).run();
}

} // namespace zolex::companion
