#include "companion/lint/Keywords.h"
#include "companion/lint/Levels.h"
#include "companion/lint/ValueChecks.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace zolex::companion {

namespace {

bool isSize(std::string_view text) {
    return policy_value::logicalDriveSize(text).has_value();
}
bool isLevel(std::string_view text) {
    return policy_value::raidLevel(text).has_value();
}
bool isCache(std::string_view text) {
    return policy_value::writeCache(text).has_value();
}
bool isLetter(std::string_view text) {
    return policy_value::arrayIndex(text).has_value();
}

/// The level that "RAID5", "RAID 5" or "R5" means; nothing for anything else.
std::optional<std::string> meantLevel(std::string_view text) {
    for (const std::string_view prefix : {"RAID", "R"}) {
        if (text::equalsNoCase(text.substr(0, prefix.size()), prefix)) {
            const std::string_view rest = text::trim(text.substr(prefix.size()), " \t-_");
            if (isLevel(rest)) {
                return std::string(rest);
            }
        }
    }
    return std::nullopt;
}

std::vector<std::string> sizeHelp(std::string_view text) {
    std::vector<std::string> help = commentHelp(text);
    help.emplace_back("a size is 1% to 100%, a number of MB without a unit, or FILL");
    return help;
}

std::vector<std::string> levelHelp(std::string_view text) {
    std::vector<std::string> help = commentHelp(text);
    if (const auto level = meantLevel(text)) {
        help.push_back("write " + *level);
    } else {
        help.emplace_back("levels are 0 1 1E 5 5E 5EE 6 10 50 60 VOLUME and AUTO");
    }
    return help;
}

std::vector<std::string> cacheHelp(std::string_view text) {
    std::vector<std::string> help = commentHelp(text);
    help.emplace_back("the write cache is ON, OFF or AUTO");
    return help;
}

/// A field of a logical drive.
struct FieldRow {
    bool (*isTaken)(std::string_view);
    std::string_view what;
    std::vector<std::string> (*help)(std::string_view);
};

constexpr std::array<FieldRow, 3> fieldRows = {{
    {isSize, "size", sizeHelp},
    {isLevel, "RAID level", levelHelp},
    {isCache, "write-cache mode", cacheHelp},
}};

void addField(FindingSink& sink, const Piece& value, const ColonField& field, std::string_view what,
              std::vector<std::string> help) {
    const std::string summary = field.trimmed.empty()
                                    ? "no " + std::string(what)
                                    : quoted(field.trimmed) + " is no " + std::string(what);
    sink.add("ZX106", field.piece(value), summary, std::move(help));
}

/// Size, level and cache, from field `first` on. False when one is at fault.
bool checkFields(const DocumentEntry& entry, const std::vector<ColonField>& fields,
                 std::size_t first, FindingSink& sink) {
    bool isFine = true;
    for (std::size_t i = first; i < fields.size(); ++i) {
        const FieldRow& row = fieldRows[i - first];
        if (row.isTaken(fields[i].raw)) {
            continue;
        }
        isFine = false;
        if (isBlanksFault(fields[i], row.isTaken)) {
            addBlanks(sink, entry.value, fields[i]);
        } else {
            addField(sink, entry.value, fields[i], row.what, row.help(fields[i].trimmed));
        }
    }
    return isFine;
}

/// One that could be read.
struct ReadDrive {
    const DocumentEntry* entry = nullptr;
    ColonField sizeField;
    std::int32_t array = 0;
    DriveSize size;
    std::int32_t level = 0;
};

/// The logical drives of one policy.
class LogicalDrives {
  public:
    LogicalDrives(const DocumentPolicy& policy, FindingSink& sink)
        : policy_(policy), sink_(sink), mayLack_(policy.isIncomplete || hasLaterKeyword(policy)) {}

    void check() {
        countArrays();
        checkDefaults();
        checkOrder();
        for (std::int32_t n = 1; n <= keyword::lastLogical; ++n) {
            if (const DocumentEntry* entry = find(n)) {
                checkOne(*entry);
            }
        }
        checkShared();
        checkSums();
    }

  private:
    [[nodiscard]] const DocumentEntry* find(std::int32_t number) const {
        return policy_.effective(keyword::logical + std::to_string(number));
    }

    [[nodiscard]] bool isCustom(std::string_view keyword) const {
        const DocumentEntry* mode = policy_.effective(keyword);
        return mode != nullptr && text::equalsNoCase(mode->value.text, "CUSTOM");
    }

    void countArrays() {
        for (char letter = 'A'; letter <= 'H'; ++letter) {
            if (policy_.effective(std::string(keyword::array) + letter) != nullptr) {
                arrayCount_ = letter - 'A' + 1;
            }
        }
        lacksArrays_ =
            mayLack_ || (isCustom(keyword::arrayMode) && policy_.effective("Array.A") == nullptr);
    }

    void checkDefaults() {
        const DocumentEntry* entry = policy_.effective(keyword::logicalDefaults);
        if (entry == nullptr) {
            return;
        }
        const std::vector<ColonField> fields = colonFields(entry->value);
        if (namesArray(fields)) {
            const std::string& value = entry->value.text;
            sink_.add("ZX106", fields.front().piece(entry->value),
                      "Logical_Defaults names no array: it holds for each",
                      {"write Logical_Defaults = " + value.substr(value.find(':') + 1)});
            return;
        }
        if (fields.size() == 2 || fields.size() == 3) {
            checkFields(*entry, fields, 0, sink_);
            return;
        }
        addForm(*entry, "it is size:level(:cache), such as 100%:5:ON");
    }

    /// Whether it is written like `Logical.<n>`: the letter of an array, and then what it shall be.
    static bool namesArray(const std::vector<ColonField>& fields) {
        return fields.size() >= 3 && fields.size() <= 4 && fields[0].raw.size() == 1 &&
               isSize(fields[1].raw) && isLevel(fields[2].raw);
    }

    void addForm(const DocumentEntry& entry, std::string example) {
        std::vector<std::string> help = commentHelp(entry.value.text);
        help.push_back(std::move(example));
        sink_.add("ZX106", entry.value,
                  entry.value.text.empty()
                      ? entry.keyword.text + " has no value"
                      : entry.keyword.text + " cannot be " + quoted(entry.value.text),
                  std::move(help));
    }

    /// ZX107.
    void checkOrder() {
        if (mayLack_) {
            return;
        }
        if (isCustom(keyword::logicalMode) && find(1) == nullptr) {
            sink_.add("ZX107", policy_,
                      "Logical_Mode = CUSTOM without Logical.1 in " + policy_.name.text,
                      {helpWithoutFirst()});
            return;
        }
        std::int32_t missing = 0;
        for (std::int32_t n = 1; n <= keyword::lastLogical; ++n) {
            const DocumentEntry* entry = find(n);
            if (entry == nullptr) {
                missing = missing == 0 ? n : missing;
            } else if (missing != 0) {
                const std::string wanted = keyword::logical + std::to_string(missing);
                sink_.add("ZX107", entry->keyword, entry->keyword.text + " without " + wanted,
                          {"numbers have no gap: call it " + wanted});
                return;
            }
        }
    }

    void checkOne(const DocumentEntry& entry) {
        const std::vector<ColonField> fields = colonFields(entry.value);
        if (fields.size() != 3 && fields.size() != 4) {
            addForm(entry, "it is array:size:level(:cache), such as A:FILL:5:ON");
            return;
        }
        const bool hasArray = checkArray(entry, fields[0]);
        if (!checkFields(entry, fields, 1, sink_) || !hasArray) {
            return;
        }
        drives_.push_back({&entry, fields[1], *policy_value::arrayIndex(fields[0].raw),
                           *policy_value::logicalDriveSize(fields[1].raw),
                           *policy_value::raidLevel(fields[2].raw)});
    }

    bool checkArray(const DocumentEntry& entry, const ColonField& field) {
        const auto index = policy_value::arrayIndex(field.raw);
        if (!index) {
            if (isBlanksFault(field, isLetter)) {
                addBlanks(sink_, entry.value, field);
            } else {
                addField(sink_, entry.value, field, "letter of an array",
                         {"it is array:size:level(:cache), such as A:FILL:5:ON"});
            }
            return false;
        }
        if (*index < arrayCount_ || lacksArrays_) {
            return true;
        }
        const std::string keyword = std::string(keyword::array) + text::upper(field.raw.front());
        sink_.add("ZX106", field.piece(entry.value), "no " + keyword + " in " + policy_.name.text,
                  {*index < 8 ? "add " + keyword + " = 1,2 or name another array"
                              : std::string("arrays are Array.A to Array.H")});
        return false;
    }

    /// ZX109, once an array.
    void checkShared() {
        for (std::size_t i = 1; i < drives_.size(); ++i) {
            const ReadDrive& drive = drives_[i];
            const auto isBeside = [&drive](const ReadDrive& earlier) {
                return earlier.array == drive.array && (is5E(earlier.level) || is5E(drive.level));
            };
            const auto end = drives_.begin() + static_cast<std::ptrdiff_t>(i);
            const auto earlier = std::find_if(drives_.begin(), end, isBeside);
            if (earlier == end ||
                std::find(shared_.begin(), shared_.end(), drive.array) != shared_.end()) {
                continue;
            }
            shared_.push_back(drive.array);
            Finding& finding =
                sink_.add("ZX109", drive.entry->keyword,
                          "RAID 5E and 5EE take a whole array: two logical drives on Array." +
                              std::string(1, static_cast<char>('A' + drive.array)),
                          {"give it an array of its own, or another level"});
            finding.otherStart = earlier->entry->keyword.start;
            finding.otherEnd = earlier->entry->keyword.end;
            finding.other = "the other one";
        }
    }

    [[nodiscard]] std::string helpWithoutFirst() const {
        for (std::int32_t n = 2; n <= keyword::lastLogical; ++n) {
            if (const DocumentEntry* entry = find(n)) {
                return "numbers have no gap: call " + entry->keyword.text + " Logical.1";
            }
        }
        return "add Logical.1 = A:FILL:5 or the logical drive that it shall have";
    }

    /// ZX110.
    void checkSums() {
        for (std::int32_t array = 0; array < arrayCount_; ++array) {
            checkSum(array);
        }
    }

    void checkSum(std::int32_t array) {
        const std::string name = std::string(keyword::array) + static_cast<char>('A' + array);
        std::int32_t sum = 0;
        const ReadDrive* fill = nullptr;
        for (const ReadDrive& drive : drives_) {
            if (drive.array != array) {
                continue;
            }
            if (fill != nullptr) {
                Finding& finding =
                    sink_.add("ZX110", fill->sizeField.piece(fill->entry->value),
                              "FILL leaves nothing of " + name + " to " + drive.entry->keyword.text,
                              {"put the logical drive with FILL last"});
                finding.otherStart = drive.entry->keyword.start;
                finding.otherEnd = drive.entry->keyword.end;
                finding.other = "gets nothing";
                return;
            }
            if (drive.size.kind == DriveSize::Kind::rest) {
                fill = &drive;
            } else if (drive.size.kind == DriveSize::Kind::percent) {
                const bool wasFine = sum <= wholeArray;
                sum += drive.size.value;
                if (wasFine && sum > wholeArray) {
                    sink_.add("ZX110", drive.sizeField.piece(drive.entry->value),
                              "logical drives of " + std::to_string(sum) + "% on " + name,
                              {"percentages are of the whole array: all together at most 100%"});
                }
            }
        }
    }

    static constexpr std::int32_t wholeArray = 100;

    const DocumentPolicy& policy_;
    FindingSink& sink_;
    bool mayLack_;             ///< what is missing may stand in lines at fault
    bool lacksArrays_ = false; ///< so that the letters are not known
    std::int32_t arrayCount_ = 0;
    std::vector<ReadDrive> drives_;
    std::vector<std::int32_t> shared_;
};

} // namespace

void checkLogicalDrives(const DocumentPolicy& policy, FindingSink& sink) {
    LogicalDrives(policy, sink).check();
}

} // namespace zolex::companion
