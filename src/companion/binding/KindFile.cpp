#include "companion/binding/KindFile.h"

#include "companion/binding/BoundPolicies.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyLines.h"
#include "policies/PolicyScan.h"
#include "policies/PolicySection.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace zolex::companion {

namespace {

constexpr char lastLetter = 'H';

KindWord wordAt(std::string_view line, std::string_view part) {
    const auto column = static_cast<std::int32_t>(part.data() - line.data()) + 1;
    return {std::string(part), column, column + static_cast<std::int32_t>(part.size())};
}

std::string_view readPart(std::string_view line) {
    return line.substr(0, PolicyLines::maxLength);
}

std::optional<KindFileEntry> entryOf(std::string_view whole, std::size_t index) {
    const std::string_view line = readPart(whole);
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return std::nullopt;
    }
    KindFileEntry entry;
    entry.line = index;
    entry.keyword = wordAt(whole, text::trim(line.substr(0, equals)));
    const std::string_view rest = line.substr(equals + 1);
    const std::string_view value = text::trim(rest);
    entry.value = value;
    entry.valueColumn = wordAt(whole, value.empty() ? rest.substr(0, 0) : value).column;
    entry.isTooLong = whole.size() > PolicyLines::maxLength;
    return entry;
}

bool isPolicyName(std::string_view name) {
    constexpr std::string_view prefix = "Policy.";
    return text::equalsNoCase(name.substr(0, prefix.size()), prefix);
}

std::string keywordOf(const char* name, char letter) {
    return std::string(name) + letter;
}

/// Reads the entries of one section and holds them against each other.
class SectionReader {
  public:
    SectionReader(const KindFileSection& section, std::vector<BindingFault>& faults)
        : section_(section), faults_(faults) {}

    KindSection run() {
        for (const KindFileEntry& entry : section_.entries) {
            if (isKindKeyword(entry.keyword.text) && isFirst(entry)) {
                readEntry(entry);
            }
        }
        const auto byLetter = [](const auto& a, const auto& b) { return a.letter < b.letter; };
        std::sort(result_.drives.begin(), result_.drives.end(), byLetter);
        std::sort(result_.levels.begin(), result_.levels.end(), byLetter);
        if (result_.drives.empty() && !isFaulty_) {
            tellLackOfDrives();
        } else {
            checkOthers();
            checkGaps();
            checkLevels();
            checkCovers();
            checkNames();
        }
        return std::move(result_);
    }

  private:
    void add(const char* code, const KindFileEntry& entry, const KindWord& word, std::string what,
             std::string help) {
        faults_.push_back({code, entry.keyword.text, static_cast<std::int32_t>(entry.line) + 1,
                           word.column, word.endColumn, std::move(what), std::move(help)});
    }
    void addAtKeyword(const char* code, const KindFileEntry& entry, std::string what,
                      std::string help) {
        add(code, entry, entry.keyword, std::move(what), std::move(help));
    }

    [[nodiscard]] bool isFirst(const KindFileEntry& entry) const {
        return section_.find(entry.keyword.text) == &entry;
    }

    void readEntry(const KindFileEntry& entry) {
        if (entry.isTooLong) {
            addAtKeyword("ZX112", entry,
                         "the line of " + entry.keyword.text + " is longer than 255 characters",
                         "shorten it: no entry goes on in a second line");
            isFaulty_ = true;
        } else if (text::equalsNoCase(entry.keyword.text, "Spares")) {
            result_.sparesEntry = &entry;
            take("ZX113", entry, readSparesWish(entry.value, entry.valueColumn),
                 [this](SparesWish wish) { result_.spares = std::move(wish); });
        } else if (isSpansKeyword(entry.keyword.text)) {
            readSpans(entry);
        } else if (entry.letter() > lastLetter) {
            addAtKeyword("ZX312", entry, "there is no array " + std::string(1, entry.letter()),
                         "arrays are A to H");
            isFaulty_ = true;
        } else if (text::lower(entry.keyword.text.front()) == 'd') {
            take("ZX112", entry, readDrivesWish(entry.value, entry.valueColumn),
                 [&](DrivesWish wish) {
                     result_.drives.push_back({entry.letter(), &entry, std::move(wish)});
                 });
        } else {
            take("ZX114", entry, readLevelWish(entry.value, entry.valueColumn),
                 [&](LevelWish wish) {
                     result_.levels.push_back({entry.letter(), &entry, std::move(wish)});
                 });
        }
    }

    void readSpans(const KindFileEntry& entry) {
        const auto spans = text::wholeNumber(entry.value);
        if (!spans || *spans < 2 || *spans > mostKindSpans) {
            add("ZX112", entry, {entry.value, entry.valueColumn, entry.endColumn()},
                "Spans is no number of spans",
                "write 2 to " + std::to_string(mostKindSpans) +
                    ", or take the line out: as few as divide evenly");
            return;
        }
        result_.spansEntry = &entry;
        result_.spans = *spans;
    }

    template <typename Wish, typename Keep>
    void take(const char* code, const KindFileEntry& entry, KindReading<Wish> reading,
              const Keep& keep) {
        if (reading.wish) {
            keep(std::move(*reading.wish));
            return;
        }
        isFaulty_ = true;
        add(code, entry, reading.fault->word, reading.fault->what, reading.fault->help);
    }

    /// Spares and levels need arrays that are told in the same way.
    void tellLackOfDrives() {
        if (result_.sparesEntry != nullptr) {
            addAtKeyword("ZX312", *result_.sparesEntry, "Spares without Drives.A",
                         section_.hasAny(keyword::array)
                             ? "write Hotspares, or Drives.<x> = slots ... for each array"
                             : "write Array_Defaults = 0%:1, or Drives.A = all");
        }
        for (const KindSection::Level& level : result_.levels) {
            addAtKeyword("ZX312", *level.entry, noDrives(*level.entry, level.letter),
                         "write the level into Logical.<n>, or the array as Drives.<x>");
        }
    }

    static std::string noDrives(const KindFileEntry& entry, char letter) {
        return entry.keyword.text + " without " + keywordOf("Drives.", letter);
    }

    /// ZX311: what the entries stand in the place of.
    void checkOthers() {
        for (const KindFileEntry& entry : section_.entries) {
            const std::string_view own = entry.keyword.text;
            constexpr std::string_view array = keyword::array;
            if (text::equalsNoCase(own.substr(0, array.size()), array)) {
                addAtKeyword("ZX311", entry, entry.keyword.text + " beside Drives.<x>",
                             "write its drives as Drives." + std::string(1, entry.letter()) +
                                 " = slots 32:0,32:1");
            } else if (text::equalsNoCase(own, keyword::hotspares)) {
                addAtKeyword("ZX311", entry, "Hotspares beside Drives.<x>",
                             "write Spares = 1, or Spares = slots 32:7");
            } else if (text::equalsNoCase(own, keyword::arrayDefaults)) {
                addAtKeyword("ZX311", entry, "Array_Defaults beside Drives.<x>",
                             "take the line out, and write Spares = 1 for a hot spare");
            }
        }
    }

    void checkGaps() {
        for (char letter = 'A'; letter < lastLetter; ++letter) {
            const KindFileEntry* const next =
                section_.find("Drives.", static_cast<char>(letter + 1));
            if (section_.find("Drives.", letter) == nullptr && next != nullptr) {
                addAtKeyword("ZX312", *next,
                             next->keyword.text + " without " + keywordOf("Drives.", letter),
                             "letter the arrays from A, without a gap");
            }
        }
    }

    void checkLevels() {
        for (const KindSection::Level& level : result_.levels) {
            if (section_.find("Drives.", level.letter) == nullptr) {
                addAtKeyword("ZX312", *level.entry, noDrives(*level.entry, level.letter),
                             "write its drives as " + keywordOf("Drives.", level.letter));
            }
            for (const KindFileEntry& entry : section_.entries) {
                if (isLogicalOf(entry, level.letter)) {
                    addAtKeyword("ZX311", *level.entry,
                                 level.entry->keyword.text + " beside " + entry.keyword.text +
                                     " of the same array",
                                 "leave one of them");
                    break;
                }
            }
        }
    }

    static bool isLogicalOf(const KindFileEntry& entry, char letter) {
        constexpr std::string_view logical = keyword::logical;
        const std::string_view array =
            text::trim(std::string_view(entry.value).substr(0, entry.value.find(':')));
        return text::equalsNoCase(entry.keyword.text.substr(0, logical.size()), logical) &&
               array.size() == 1 && text::upper(array[0]) == letter;
    }

    void checkCovers() {
        if (!result_.spares) {
            return;
        }
        for (const SpareGroup& group : result_.spares->groups) {
            for (const KindWord& word : group.covers) {
                if (section_.find("Drives.", word.text[0]) == nullptr) {
                    add("ZX312", *result_.sparesEntry, word,
                        "Spares covers " + word.text + ", and there is no Drives." + word.text,
                        "name arrays of this policy");
                }
            }
        }
    }

    /// ZX312: a drive that two entries name.
    void checkNames() {
        std::map<std::pair<KindForm, std::string>, std::string> named;
        const auto check = [&](const KindFileEntry& entry, KindForm form,
                               const std::vector<KindWord>& names) {
            for (const KindWord& name : names) {
                std::string key = name.text;
                std::transform(key.begin(), key.end(), key.begin(), text::upper);
                const auto [found, isNew] =
                    named.emplace(std::pair(form, std::move(key)), entry.keyword.text);
                if (!isNew) {
                    add("ZX312", entry, name, name.text + " is in " + found->second + " already",
                        "name each drive once");
                }
            }
        };
        for (const KindSection::Drives& drives : result_.drives) {
            check(*drives.entry, drives.wish.form, drives.wish.names);
        }
        if (result_.spares) {
            check(*result_.sparesEntry, result_.spares->form, result_.spares->names);
        }
    }

    const KindFileSection& section_;
    std::vector<BindingFault>& faults_;
    KindSection result_;
    bool isFaulty_ = false; ///< an entry could not be read
};

} // namespace

const KindFileEntry* KindFileSection::find(std::string_view keyword) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [keyword](const KindFileEntry& entry) {
            return text::equalsNoCase(entry.keyword.text, keyword);
        });
    return found == entries.end() ? nullptr : &*found;
}

const KindFileEntry* KindFileSection::find(std::string_view keyword, char letter) const {
    return find(std::string(keyword) + letter);
}

bool KindFileSection::hasAny(std::string_view prefix) const {
    return std::any_of(entries.begin(), entries.end(), [prefix](const KindFileEntry& entry) {
        return text::equalsNoCase(std::string_view(entry.keyword.text).substr(0, prefix.size()),
                                  prefix);
    });
}

bool KindFileSection::hasKindEntries() const {
    return std::any_of(entries.begin(), entries.end(), [](const KindFileEntry& entry) {
        return isKindKeyword(entry.keyword.text);
    });
}

KindFile readKindFile(std::string_view text) {
    KindFile file;
    bool isInSection = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t newline = std::min(text.find('\n', at), text.size());
        const bool hasReturn = newline > at && newline < text.size() && text[newline - 1] == '\r';
        const std::size_t end = hasReturn ? newline - 1 : newline;
        const std::size_t next = std::min(newline + 1, text.size());
        const std::string_view line = text.substr(at, end - at);
        const std::size_t index = file.lines.size();
        file.lines.push_back(line);
        file.lineEnds.push_back(text.substr(end, next - end));
        at = next;
        const std::string_view body = withoutLeadingSpaces(readPart(line));
        if (isSectionHeader(line)) {
            const std::optional<std::string_view> name = headerName(body);
            isInSection = name && isPolicyName(*name);
            if (isInSection) {
                file.sections.push_back({std::string(*name), index, {}});
            }
        } else if (isInSection && !body.empty() && body.front() != ';') {
            if (std::optional<KindFileEntry> entry = entryOf(line, index)) {
                file.sections.back().entries.push_back(std::move(*entry));
            }
        }
    }
    return file;
}

KindSection readKindSection(const KindFileSection& section, std::vector<BindingFault>& faults) {
    return SectionReader(section, faults).run();
}

} // namespace zolex::companion
