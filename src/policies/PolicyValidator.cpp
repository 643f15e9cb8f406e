#include "policies/PolicyValidator.h"

#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <utility>

namespace zolex {

namespace {

constexpr const char* possibleNumber = "a whole number above 0";
constexpr const char* possibleDrives =
    "numbers above 0 or positions channel:id, separated by commas";

/// "Array." and the letter of an index.
CString arrayKeyword(std::size_t index) {
    CString result = keyword::array;
    result.append(static_cast<char>('A' + index));
    return result;
}

} // namespace

/// A keyword with one of a few words as its value.
struct PolicyValidator::WordRow {
    const char* keyword;
    const char* words;
    std::optional<std::int32_t> (*parse)(std::string_view);
    std::optional<std::int32_t> Policy::*value;
};

std::optional<Policy> PolicyValidator::validate() {
    policy_ = Policy();
    policy_.name = section_.name;
    const bool valid = readAll() && !isFaulty_;
    return valid ? std::optional(std::move(policy_)) : std::nullopt;
}

bool PolicyValidator::readAll() {
    // clang-format off
    static constexpr WordRow rebuildRate = {keyword::rebuildRate, "HIGH MED LOW",
        policy_value::rebuildRate, &Policy::rebuildRate};
    static constexpr WordRow readAhead = {keyword::readAhead, "ADAPTIVE ON OFF",
        policy_value::readAhead, &Policy::readAhead};
    static constexpr WordRow stripeSize = {keyword::stripeSize, "16 32 64 128 256 512 1024 2048 4096",
        policy_value::stripeSize, &Policy::stripeSize};
    static constexpr WordRow init = {keyword::init, "QUICK BUILD",
        policy_value::initChoice, &Policy::init};
    // clang-format on
    return goesOnAfter(readAppliesTo()) && goesOnAfter(readWord(rebuildRate)) &&
           goesOnAfter(readWord(readAhead)) && goesOnAfter(readWord(stripeSize)) &&
           goesOnAfter(readMode(keyword::arrayMode, policy_.customArrays)) &&
           goesOnAfter(readArrayDefaults()) && goesOnAfter(readMaxLogicalDriveSize()) &&
           readArrays() && goesOnAfter(readHotspares()) &&
           goesOnAfter(readMode(keyword::logicalMode, policy_.customLogicalDrives)) &&
           goesOnAfter(readLogicalDefaults()) && readLogicalDrives() && goesOnAfter(readWord(init));
}

void PolicyValidator::printUnused() const {
    for (const PolicyEntry& entry : section_.entries) {
        if (keyword::isNeverLookedUp(entry.keyword)) {
            report_.notef(level::progress, "\tNote:  %s, %s has no effect.\n",
                          section_.name.c_str(), entry.keyword.c_str());
        }
    }
}

bool PolicyValidator::readWord(const WordRow& row) {
    const PolicyEntry* entry = find(row.keyword);
    if (entry == nullptr) {
        return true;
    }
    const auto code = row.parse(entry->value);
    if (!code) {
        return fail(FaultKind::policyWordInvalid, *entry, entry->value, row.words);
    }
    policy_.*row.value = code;
    return true;
}

bool PolicyValidator::readMode(const char* keyword, bool& custom) {
    const PolicyEntry* entry = find(keyword);
    if (entry != nullptr && !text::equalsNoCase(entry->value, "CUSTOM")) {
        return fail(FaultKind::policyWordInvalid, *entry, entry->value, "CUSTOM");
    }
    custom = entry != nullptr;
    return true;
}

bool PolicyValidator::readAppliesTo() {
    for (std::int32_t n = 1; n <= keyword::lastAppliesTo; ++n) {
        const PolicyEntry* entry = find(keyword::appliesTo + CString::fromInt(n));
        // Without any such entry the scan has reported it.
        if (entry == nullptr && n == 1 && (!faults_.goOn() || section_.find(keyword_) != nullptr) &&
            !goesOnAfter(failMissing(FaultKind::policyAppliesToAbsent))) {
            return false;
        }
        if (entry != nullptr && !goesOnAfter(readSpecifiers(*entry))) {
            return false;
        }
    }
    return true;
}

bool PolicyValidator::readSpecifiers(const PolicyEntry& entry) {
    AppliesTo given;
    for (const std::string_view specifier : policy_value::splitAndTrim(entry.value, ',')) {
        if (!readSpecifier(entry, specifier, given)) {
            return false;
        }
    }
    policy_.appliesTo.push_back(std::move(given));
    return true;
}

bool PolicyValidator::readSpecifier(const PolicyEntry& entry, std::string_view specifier,
                                    AppliesTo& given) {
    if (text::equalsNoCase(specifier, "ALL")) {
        given.all = true;
        return true;
    }
    const bool hasLetter = specifier.size() >= 2 && specifier[1] == ':';
    const std::string_view value = hasLetter ? specifier.substr(2) : std::string_view();
    switch (hasLetter ? text::lower(specifier[0]) : '\0') {
    case 'm':
        given.machineType = value;
        return true;
    case 's':
        given.serialNumber = value;
        return true;
    case 'c':
        return readSpecifierNumber(entry, FaultKind::policyControllerNumberInvalid, value,
                                   given.controllerNumber);
    case 'o':
        return readSpecifierNumber(entry, FaultKind::policyScanOrderInvalid, value,
                                   given.scanOrder);
    case 'd':
        return readSpecifierNumber(entry, FaultKind::policyDriveCountInvalid, value,
                                   given.numberOfDrives);
    case 't':
        given.controllerType = value;
        return catalogue_.isValidControllerName(value) ||
               fail(FaultKind::policyControllerTypeInvalid, entry, value);
    default:
        return fail(FaultKind::policySpecifierInvalid, entry, specifier, "ALL m: s: c: o: t: d:");
    }
}

bool PolicyValidator::readSpecifierNumber(const PolicyEntry& entry, FaultKind kind,
                                          std::string_view value, std::int32_t& number) {
    const auto parsed = policy_value::nonZeroNumber(value);
    number = parsed.value_or(notGiven);
    return parsed || fail(kind, entry, value, possibleNumber);
}

bool PolicyValidator::readArrayDefaults() {
    const PolicyEntry* entry = find(keyword::arrayDefaults);
    if (entry == nullptr) {
        return true;
    }
    const auto fields = policy_value::split(entry->value, ':');
    if (fields.size() != 2) {
        return fail(FaultKind::policyArrayDefaultsInvalid, *entry, entry->value,
                    "variance:hotspares");
    }
    const auto hotspareCount = text::wholeNumber(fields[1]);
    if (!hotspareCount) {
        return fail(FaultKind::policyHotspareCountInvalid, *entry, fields[1],
                    "integers greater than or equal to zero");
    }
    const auto variance = policy_value::variance(fields[0]);
    if (!variance) {
        return fail(FaultKind::policyWordInvalid, *entry, fields[0], "0% 5% 10% 100%");
    }
    policy_.arrayDefaults = {*variance, *hotspareCount};
    return true;
}

bool PolicyValidator::readMaxLogicalDriveSize() {
    const PolicyEntry* entry = find(keyword::maxLogicalDriveSize);
    if (entry == nullptr) {
        return true;
    }
    const auto size = text::wholeNumber(entry->value);
    if (!size) {
        return fail(FaultKind::policyMaxSizeInvalid, *entry, entry->value, "a whole number");
    }
    if (debug_) {
        report_.notef(level::ungated, "DEBUG:plyreadr:readArrays:MaxLogical=%ld\n",
                      static_cast<long>(*size));
    }
    policy_.maxLogicalDriveSizeMb = size;
    return true;
}

bool PolicyValidator::readArrays() {
    // One more than there may be, so that too many are seen.
    constexpr std::size_t lookedUp = Policy::maxArrays + 1;
    bool afterGap = false;
    for (std::size_t i = 0; i < lookedUp; ++i) {
        const PolicyEntry* entry = find(arrayKeyword(i));
        if (entry == nullptr && i == 0 && policy_.customArrays &&
            isToBeTold(FaultKind::policyArrayMissing) &&
            !goesOnAfter(failMissing(FaultKind::policyArrayMissing))) {
            return false;
        }
        arrayCount_ = entry != nullptr ? i + 1 : arrayCount_;
        if (entry != nullptr && !goesOnAfter(readArray(*entry, afterGap))) {
            return false;
        }
        afterGap = afterGap || entry == nullptr;
    }
    return true;
}

/// A list at fault still has its place among the arrays.
bool PolicyValidator::readArray(const PolicyEntry& entry, bool afterGap) {
    RaidArray array;
    const auto drives = policy_value::driveList(entry.value);
    if (text::equalsNoCase(entry.value, "ALL")) {
        array.allRemaining = true;
        array.text = entry.value;
    } else if (drives) {
        array = drives->toArray();
    } else if (!goesOnAfter(
                   fail(FaultKind::policyDriveListInvalid, entry, entry.value, possibleDrives))) {
        return false;
    }
    if (!goesOnAfter(checkPlaceOfArray(entry, afterGap))) {
        return false;
    }
    policy_.arrays.push_back(std::move(array));
    return true;
}

bool PolicyValidator::checkPlaceOfArray(const PolicyEntry& entry, bool afterGap) {
    if (afterGap && !wasTold(FaultKind::policyArrayMissing) &&
        isToBeTold(FaultKind::policyArrayOrderInvalid)) {
        return failEntry(FaultKind::policyArrayOrderInvalid, entry);
    }
    if (!policy_.arrays.empty() && policy_.arrays.back().allRemaining) {
        return failEntry(FaultKind::policyArrayAfterAll, entry, keyword_);
    }
    if (policy_.arrays.size() == Policy::maxArrays) {
        return failEntry(FaultKind::policyArraysTooMany, entry);
    }
    return true;
}

bool PolicyValidator::readHotspares() {
    const PolicyEntry* entry = find(keyword::hotspares);
    if (entry == nullptr) {
        return true;
    }
    const auto drives = policy_value::driveList(entry->value);
    if (!drives) {
        return fail(FaultKind::policyDriveListInvalid, *entry, entry->value, possibleDrives);
    }
    if (drives->count() > Policy::maxHotspares) {
        return fail(FaultKind::policyHotsparesTooMany, *entry, entry->value);
    }
    policy_.hotspares = drives->toArray();
    return true;
}

bool PolicyValidator::readLogicalDefaults() {
    const PolicyEntry* entry = find(keyword::logicalDefaults);
    if (entry == nullptr) {
        return true;
    }
    const auto fields = policy_value::split(entry->value, ':');
    if (fields.size() != 2 && fields.size() != 3) {
        return fail(FaultKind::policyLogicalDefaultsInvalid, *entry, entry->value,
                    "size:raidlevel(:writecmode)");
    }
    LogicalSpecification defaults;
    if (!readSpecification(*entry, fields, defaults)) {
        return false;
    }
    policy_.logicalDefaults = defaults;
    return true;
}

bool PolicyValidator::readLogicalDrives() {
    bool afterGap = false;
    for (std::int32_t n = 1; n <= keyword::lastLogical; ++n) {
        const PolicyEntry* entry = find(keyword::logical + CString::fromInt(n));
        if (entry == nullptr && n == 1 && policy_.customLogicalDrives &&
            isToBeTold(FaultKind::policyLogicalMissing) &&
            !goesOnAfter(failMissing(FaultKind::policyLogicalMissing))) {
            return false;
        }
        if (entry != nullptr && !goesOnAfter(readLogicalDrive(*entry, afterGap))) {
            return false;
        }
        afterGap = afterGap || entry == nullptr;
    }
    return true;
}

bool PolicyValidator::readLogicalDrive(const PolicyEntry& entry, bool afterGap) {
    const auto fields = policy_value::split(entry.value, ':');
    if (fields.size() != 3 && fields.size() != 4) {
        return fail(FaultKind::policyLogicalInvalid, entry, entry.value,
                    "array:size:raidlevel(:writecmode)");
    }
    LogicalSpecification drive;
    if (!readArrayLetter(entry, fields[0], drive.arrayIndex) ||
        !readSpecification(entry, std::span(fields).subspan(1), drive)) {
        return false;
    }
    if (sharesArrayWith5E(drive) && isToBeTold(FaultKind::policyArrayShared, drive.arrayIndex)) {
        return failEntry(FaultKind::policyArrayShared, entry);
    }
    if (afterGap && !wasTold(FaultKind::policyLogicalMissing) &&
        isToBeTold(FaultKind::policyLogicalOrderInvalid)) {
        return failEntry(FaultKind::policyLogicalOrderInvalid, entry);
    }
    policy_.logicalDrives.push_back(drive);
    return true;
}

bool PolicyValidator::readArrayLetter(const PolicyEntry& entry, std::string_view letter,
                                      std::int32_t& index) {
    const auto parsed = policy_value::arrayIndex(letter);
    index = parsed.value_or(-1);
    const bool isKnown = parsed && static_cast<std::size_t>(index) < arrayCount_;
    if (isKnown || (parsed && (wasTold(FaultKind::policyArrayMissing) ||
                               !isToBeTold(FaultKind::policyArrayLetterInvalid, index)))) {
        return true;
    }
    return fail(FaultKind::policyArrayLetterInvalid, entry, letter, "the letter of an array");
}

/// `fields` are the size, the RAID level and, when there is a third, the write-cache mode.
bool PolicyValidator::readSpecification(const PolicyEntry& entry,
                                        std::span<const std::string_view> fields,
                                        LogicalSpecification& specification) {
    const auto cache =
        fields.size() > 2 ? policy_value::writeCache(fields[2]) : write_cache::notGiven;
    if (!cache) {
        return fail(FaultKind::policyWriteCacheInvalid, entry, fields[2], "OFF ON AUTO");
    }
    const auto level = policy_value::raidLevel(fields[1]);
    if (!level) {
        return fail(FaultKind::policyRaidLevelInvalid, entry, fields[1],
                    "0 1 1E 5 5E 5EE 6 10 50 60 VOLUME, SIMPLE VOLUME, AUTO");
    }
    const auto size = policy_value::logicalDriveSize(fields[0]);
    if (!size) {
        return fail(FaultKind::policySizeInvalid, entry, fields[0],
                    "a percentage, a size in MB, or FILL");
    }
    specification.writeCache = *cache;
    specification.raidLevel = *level;
    specification.size = *size;
    return true;
}

/// Whether the drive stands on the array of an earlier one and either of them is 5E or 5EE.
bool PolicyValidator::sharesArrayWith5E(const LogicalSpecification& specification) const {
    const auto is5E = [](const LogicalSpecification& drive) {
        return drive.raidLevel == raid_level::raid5E || drive.raidLevel == raid_level::raid5EE;
    };
    for (const LogicalSpecification& earlier : policy_.logicalDrives) {
        if (earlier.arrayIndex == specification.arrayIndex &&
            (is5E(earlier) || is5E(specification))) {
            return true;
        }
    }
    return false;
}

/// The entry of a keyword; null when it is absent or reads so.
const PolicyEntry* PolicyValidator::find(std::string_view keyword) {
    keyword_ = keyword;
    const PolicyEntry* entry = section_.find(keyword);
    return entry == nullptr || entry->value == absentKeyword ? nullptr : entry;
}

bool PolicyValidator::wasTold(FaultKind kind, std::int32_t array) const {
    return std::find(told_.begin(), told_.end(), Told{kind, array}) != told_.end();
}

/// Whether a fault that is reported once a policy (and array) is to be reported now. What a section
/// seems to lack may stand in the lines that were left out.
bool PolicyValidator::isToBeTold(FaultKind kind, std::int32_t array) {
    const bool lacks = kind != FaultKind::policyArrayShared;
    if ((lacks && section_.isIncomplete) || wasTold(kind, array)) {
        return false;
    }
    told_.push_back({kind, array});
    return true;
}

/// Reports a fault of `piece`, a part of the entry's value. Always false.
bool PolicyValidator::fail(FaultKind kind, const PolicyEntry& entry, std::string_view piece,
                           std::string_view possible) {
    const auto before = static_cast<std::int32_t>(piece.data() - entry.value.data());
    return add(kind, entry.line, entry.valueColumn + before, piece, possible);
}

/// Reports a fault of the place or the number of an entry. Always false.
bool PolicyValidator::failEntry(FaultKind kind, const PolicyEntry& entry, std::string_view wanted) {
    return add(kind, entry.line, entry.keywordColumn, wanted, {});
}

/// Reports that the keyword looked up last is missing. Always false.
bool PolicyValidator::failMissing(FaultKind kind) {
    return add(kind, section_.line, section_.column, {}, {});
}

bool PolicyValidator::add(FaultKind kind, std::int32_t line, std::int32_t column,
                          std::string_view wanted, std::string_view possible) {
    isFaulty_ = true;
    return faults_.add(kind, {line, column, section_.name, keyword_, 0}, wanted, possible);
}

} // namespace zolex
