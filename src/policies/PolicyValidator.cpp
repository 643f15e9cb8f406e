#include "policies/PolicyValidator.h"

#include "controllers/Application.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <array>
#include <utility>

namespace zolex {

namespace {

constexpr std::array<std::string_view, 3> rebuildRateWords = {"HIGH", "MED", "LOW"};
constexpr std::array<std::string_view, 3> readAheadWords = {"ADAPTIVE", "ON", "OFF"};
constexpr std::array<std::string_view, 9> stripeSizeWords = {
    "16", "32", "64", "128", "256", "512", "1024", "2048", "4096",
};
constexpr std::array<std::string_view, 2> initWords = {"QUICK", "BUILD"};

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
    std::span<const std::string_view> words;
    const char* hint;
    CString Policy::*value; ///< where the text as read goes
};

std::optional<Policy> PolicyValidator::validate() {
    const WordRow rebuildRate = {keyword::rebuildRate, rebuildRateWords,
                                 "\tValid values are:  HIGH MED LOW\n", &Policy::rebuildRate};
    const WordRow readAhead = {keyword::readAhead, readAheadWords,
                               "\tValid values are:  ADAPTIVE ON OFF\n", &Policy::readAhead};
    const WordRow stripeSize = {keyword::stripeSize, stripeSizeWords,
                                "\tValid values are:  16 32 64 128 256 512 1024 2048 4096\n",
                                &Policy::stripeSize};
    const WordRow init = {keyword::init, initWords, "\tValid values are:  QUICK BUILD\n",
                          &Policy::init};

    policy_ = Policy();
    policy_.name = section_.name;
    const bool valid = readAppliesTo() && readWord(rebuildRate) && readWord(readAhead) &&
                       readWord(stripeSize) && readMode(keyword::arrayMode, policy_.customArrays) &&
                       readArrayDefaults() && readMaxLogicalDriveSize() && readArrays() &&
                       readHotspares() &&
                       readMode(keyword::logicalMode, policy_.customLogicalDrives) &&
                       readLogicalDefaults() && readLogicalDrives() && readWord(init);
    return valid ? std::optional(std::move(policy_)) : std::nullopt;
}

void PolicyValidator::printUnused() const {
    for (const PolicyEntry& entry : section_.entries) {
        if (keyword::isNeverLookedUp(entry.keyword)) {
            application_.printer().printf(level::progress, "\tNote:  %s, %s has no effect.\n",
                                          section_.name.c_str(), entry.keyword.c_str());
        }
    }
}

bool PolicyValidator::readWord(const WordRow& row) {
    const auto value = find(row.keyword);
    if (value && !policy_value::isOneOf(*value, row.words)) {
        return fail(row.keyword, " -- Invalid specifier:  ", *value, row.hint);
    }
    if (value) {
        policy_.*row.value = *value;
    }
    return true;
}

bool PolicyValidator::readMode(const char* keyword, bool& custom) {
    const auto value = find(keyword);
    if (value && !text::equalsNoCase(*value, "CUSTOM")) {
        return fail(keyword, " -- Invalid specifier:  ", *value, "\tValid values are:  CUSTOM\n");
    }
    custom = value.has_value();
    return true;
}

bool PolicyValidator::readAppliesTo() {
    for (std::int32_t n = 1; n <= keyword::lastAppliesTo; ++n) {
        const CString keyword = keyword::appliesTo + CString::fromInt(n);
        const auto value = find(keyword);
        if (!value && n == 1) {
            return failPolicy(" -- Each policy must have an AppliesTo.1\n");
        }
        if (value && !readSpecifiers(keyword, *value)) {
            return false;
        }
    }
    return true;
}

bool PolicyValidator::readSpecifiers(std::string_view keyword, std::string_view value) {
    AppliesTo entry;
    for (const std::string_view specifier : policy_value::splitAndTrim(value, ',')) {
        if (!readSpecifier(keyword, specifier, entry)) {
            return false;
        }
    }
    policy_.appliesTo.push_back(std::move(entry));
    return true;
}

bool PolicyValidator::readSpecifier(std::string_view keyword, std::string_view specifier,
                                    AppliesTo& entry) {
    if (text::equalsNoCase(specifier, "ALL")) {
        entry.all = true;
        return true;
    }
    const bool hasLetter = specifier.size() >= 2 && specifier[1] == ':';
    const std::string_view value = hasLetter ? specifier.substr(2) : std::string_view();
    switch (hasLetter ? text::lower(specifier[0]) : '\0') {
    case 'm':
        entry.machineType = value;
        return true;
    case 's':
        entry.serialNumber = value;
        return true;
    case 'c':
        return readSpecifierNumber(keyword, " -- Invalid controller number specified:  ", value,
                                   entry.controllerNumber);
    case 'o':
        return readSpecifierNumber(keyword, " -- Invalid scan order:  ", value, entry.scanOrder);
    case 'd':
        return readSpecifierNumber(keyword, " -- Invalid number of drives specified:  ", value,
                                   entry.numberOfDrives);
    case 't':
        entry.controllerType = value;
        return application_.catalogue().isValidControllerName(value) ||
               fail(keyword, " -- Invalid controller type:  ", value, {});
    default:
        return fail(keyword, " -- Invalid specifier:  ", specifier, {});
    }
}

bool PolicyValidator::readSpecifierNumber(std::string_view keyword, std::string_view head,
                                          std::string_view value, std::int32_t& number) {
    const auto parsed = policy_value::nonZeroNumber(value);
    number = parsed.value_or(notGiven);
    return parsed || fail(keyword, head, value, {});
}

bool PolicyValidator::readArrayDefaults() {
    const auto value = find(keyword::arrayDefaults);
    if (!value) {
        return true;
    }
    const auto fields = policy_value::split(*value, ':');
    if (fields.size() != 2) {
        // The message names Array_Mode, not the keyword at hand.
        return fail(keyword::arrayMode, " -- Invalid format:  ", *value,
                    "\tValid format is:  variance:hotspares.  Example: 10%:2.\n");
    }
    const auto hotspareCount = text::wholeNumber(fields[1]);
    if (!hotspareCount) {
        return fail(keyword::arrayDefaults, " -- Invalid specifier:  ", fields[1],
                    "\tValid values for hotspares are:  integers greater than or equal to zero.\n");
    }
    const auto variance = policy_value::variance(fields[0]);
    if (!variance) {
        return fail(keyword::arrayDefaults, " -- Invalid specifier:  ", fields[0],
                    "\tValid values are:  0% 5% 10% 100%\n");
    }
    policy_.arrayDefaults = {*variance, *hotspareCount};
    return true;
}

bool PolicyValidator::readMaxLogicalDriveSize() {
    const auto value = find(keyword::maxLogicalDriveSize);
    if (!value) {
        return true;
    }
    const auto size = text::wholeNumber(*value);
    if (!size) {
        return fail(keyword::maxLogicalDriveSize, " -- Invalid specifier:  ", *value, {});
    }
    if (application_.settings.debug) {
        application_.printer().printfAlways("DEBUG:plyreadr:readArrays:MaxLogical=%ld\n",
                                            static_cast<long>(*size));
    }
    policy_.maxLogicalDriveSize = *value;
    return true;
}

bool PolicyValidator::readArrays() {
    // One more than there may be, so that too many are seen.
    constexpr std::size_t lookedUp = Policy::maxArrays + 1;
    bool afterGap = false;
    for (std::size_t i = 0; i < lookedUp; ++i) {
        const CString keyword = arrayKeyword(i);
        const auto value = find(keyword);
        if (!value && i == 0 && policy_.customArrays) {
            return failPolicy(" -- Missing required entry in policies file:  Array.A\n"
                              "\tThis entry is required when Array_Mode = CUSTOM\n");
        }
        if (value && !readArray(keyword, *value, afterGap)) {
            return false;
        }
        afterGap = afterGap || !value;
    }
    return true;
}

bool PolicyValidator::readArray(std::string_view keyword, std::string_view value, bool afterGap) {
    RaidArray array;
    if (text::equalsNoCase(value, "ALL")) {
        array.allRemaining = true;
        array.text = value;
    } else if (const auto drives = policy_value::driveList(value)) {
        array = drives->toArray();
    } else {
        return fail(keyword, " -- Invalid format:  ", value, {});
    }
    if (afterGap) {
        return failPolicy(" -- Arrays must be specified in sequential-alphabetical order.\n"
                          "Array.A = ...\nArray.B = ...\nArray.C = ...\n");
    }
    if (!policy_.arrays.empty() && policy_.arrays.back().allRemaining) {
        CString text = " -- Invalid array specified:  ";
        text.append(keyword).append("\n");
        text.append("\tThe ALL keyword was specified for a previous array.\n");
        return failPolicy(text);
    }
    if (policy_.arrays.size() == Policy::maxArrays) {
        return failPolicy(" -- Too many arrays specified.\n"
                          "\tThe maximum number of arrays that you may specify is 16\n");
    }
    policy_.arrays.push_back(std::move(array));
    return true;
}

bool PolicyValidator::readHotspares() {
    const auto value = find(keyword::hotspares);
    if (!value) {
        return true;
    }
    const auto drives = policy_value::driveList(*value);
    if (!drives) {
        return fail(keyword::hotspares, " -- Invalid format:  ", *value, {});
    }
    if (drives->count() > Policy::maxHotspares) {
        return fail(keyword::hotspares, " -- Too many hot-spare drives specified.", {},
                    "\tThe maximum number of hot-spare drives that you may specify is 16\n");
    }
    policy_.hotspares = drives->toArray();
    return true;
}

bool PolicyValidator::readLogicalDefaults() {
    const auto value = find(keyword::logicalDefaults);
    if (!value) {
        return true;
    }
    const auto fields = policy_value::split(*value, ':');
    if (fields.size() != 2 && fields.size() != 3) {
        return fail(keyword::logicalDefaults, " -- Invalid format:  ", *value,
                    "\tValid format is:  size:raidlevel(:writecmode).  Example: 4096:0:AUTO.\n");
    }
    LogicalSpecification defaults;
    if (!readSpecification(keyword::logicalDefaults, fields, defaults)) {
        return false;
    }
    policy_.logicalDefaults = defaults;
    return true;
}

bool PolicyValidator::readLogicalDrives() {
    bool afterGap = false;
    for (std::int32_t n = 1; n <= keyword::lastLogical; ++n) {
        const CString keyword = keyword::logical + CString::fromInt(n);
        const auto value = find(keyword);
        if (!value && n == 1 && policy_.customLogicalDrives) {
            return failPolicy(" -- Missing required entry in policies file:  Logical.1\n"
                              "\tThis entry is required when Logical_Mode = CUSTOM\n");
        }
        if (value && !readLogicalDrive(keyword, *value, afterGap)) {
            return false;
        }
        afterGap = afterGap || !value;
    }
    return true;
}

bool PolicyValidator::readLogicalDrive(std::string_view keyword, std::string_view value,
                                       bool afterGap) {
    const auto fields = policy_value::split(value, ':');
    if (fields.size() != 3 && fields.size() != 4) {
        return fail(
            keyword, " -- Invalid format:  ", value,
            "\tValid format is:  array:size:raidlevel(:writecmode).  Example: A:4096:0:AUTO.\n");
    }
    const auto index = policy_value::arrayIndex(fields[0]);
    if (!index || static_cast<std::size_t>(*index) >= policy_.arrays.size()) {
        return fail(keyword, " -- Invalid array letter specified:  ", fields[0], {});
    }
    LogicalSpecification drive;
    drive.arrayIndex = *index;
    if (!readSpecification(keyword, std::span(fields).subspan(1), drive)) {
        return false;
    }
    if (sharesArrayWith5E(drive)) {
        return fail(keyword, " -- RAID levels 5E and 5EE only permit one logical drive per array.",
                    {}, {});
    }
    if (afterGap) {
        return fail(keyword, " -- Logical drives must be specified in sequential order.", {},
                    "Logical.1 = ...\nLogical.2 = ...\netc.\n");
    }
    policy_.logicalDrives.push_back(drive);
    return true;
}

/// `fields` are the size, the RAID level and, when there is a third, the write-cache mode.
bool PolicyValidator::readSpecification(std::string_view keyword,
                                        std::span<const std::string_view> fields,
                                        LogicalSpecification& specification) {
    const auto cache =
        fields.size() > 2 ? policy_value::writeCache(fields[2]) : write_cache::notGiven;
    if (!cache) {
        return fail(keyword, " -- Invalid write-cache mode specified:  ", fields[2],
                    "\tValid values are:  OFF ON\n");
    }
    const auto level = policy_value::raidLevel(fields[1]);
    if (!level) {
        return fail(keyword, " -- Invalid RAID level specified:  ", fields[1],
                    "\tValid values are:  1E 5E 5EE 10 VOLUME\n");
    }
    const auto size = policy_value::logicalDriveSize(fields[0]);
    if (!size) {
        return fail(keyword, " -- Invalid size specified:  ", fields[0],
                    "\tValid values are:  a percentage, a size in MB, or FILL\n");
    }
    specification.writeCache = *cache;
    specification.raidLevel = *level;
    specification.sizeMb = *size;
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

/// The value of a keyword; nothing when it is absent.
std::optional<std::string_view> PolicyValidator::find(std::string_view keyword) const {
    const std::string_view value = section_.lookUp(keyword);
    return value == absentKeyword ? std::nullopt : std::optional(value);
}

/// Reports a fault of one keyword, in one line and the further lines of `hint`. Always false.
bool PolicyValidator::fail(std::string_view keyword, std::string_view head, std::string_view value,
                           std::string_view hint) {
    CString message = CString::concatenate(section_.name, ", ", keyword);
    message.append(head).append(value).append("\n").append(hint);
    application_.printer().errorBlock(message);
    return false;
}

/// Reports a fault of the policy as a whole. Always false.
bool PolicyValidator::failPolicy(std::string_view text) {
    application_.printer().errorBlock(CString::concatenate(section_.name, text));
    return false;
}

} // namespace zolex
