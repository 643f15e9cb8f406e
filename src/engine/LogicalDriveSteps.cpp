#include "engine/Planning.h"
#include "engine/RAIDConfigCreator.h"
#include "foundation/TraceScope.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zolex {

namespace {

constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

/// The numbers of drives that a RAID level takes. Columns: level; type (anyCode: every other);
/// least and most drives; whether the number must be even. The first row that fits level and type
/// counts; a level without a row takes no number.
struct DriveCountRule {
    std::int32_t raidLevel;
    std::int32_t type;
    std::size_t least;
    std::size_t most;
    bool even;
};
// clang-format off
constexpr std::array<DriveCountRule, 14> driveCountRules{{
    {raid_level::raid0,   controller_type::hrconf3, 2, noLimit, false},
    {raid_level::raid0,   controller_type::hrconf4, 1, 4,       false},
    {raid_level::raid0,   controller_type::lsiSas,  1, 10,      false},
    {raid_level::raid0,   anyCode,                  1, noLimit, false},
    {raid_level::raid1,   anyCode,                  2, 2,       false},
    {raid_level::raid1E,  anyCode,                  3, noLimit, false},
    {raid_level::raid5,   anyCode,                  3, noLimit, false},
    {raid_level::raid5E,  anyCode,                  4, noLimit, false},
    {raid_level::raid5EE, anyCode,                  4, noLimit, false},
    {raid_level::raid6,   anyCode,                  4, noLimit, false},
    {raid_level::raid10,  anyCode,                  4, noLimit, false},
    {raid_level::raid50,  anyCode,                  6, noLimit, true},
    {raid_level::raid60,  anyCode,                  8, noLimit, true},
    {raid_level::volume,  anyCode,                  1, noLimit, false},
}};
// clang-format on

/// Null for a level that takes no number of drives.
const DriveCountRule* findDriveCountRule(std::int32_t raidLevel, std::int32_t type) {
    const auto* const found = std::find_if(
        driveCountRules.begin(), driveCountRules.end(), [&](const DriveCountRule& rule) {
            return rule.raidLevel == raidLevel && (rule.type == anyCode || rule.type == type);
        });
    return found == driveCountRules.end() ? nullptr : found;
}

bool takesDrives(const DriveCountRule& rule, std::size_t drives) {
    return drives >= rule.least && drives <= rule.most && (!rule.even || drives % 2 == 0);
}

/// "2", "1 to 4", "3 or more", "6 or more, even".
CString driveCountWords(const DriveCountRule& rule) {
    const auto textOf = [](std::size_t number) {
        return CString::fromInt(static_cast<std::int64_t>(number));
    };
    CString words = textOf(rule.least);
    if (rule.most == noLimit) {
        words.append(rule.even ? " or more, even" : " or more");
    } else if (rule.most != rule.least) {
        words.append(" to ").append(textOf(rule.most));
    }
    return words;
}

/// Empty when no level fits.
CString wantedLevel(std::int32_t raidLevel) {
    return raidLevel == raid_level::none ? CString() : CString(raidLevelWord(raidLevel));
}

/// "A, B" for two.
CString arrayLetters(std::size_t arrays) {
    CString letters;
    for (std::size_t i = 0; i < arrays; ++i) {
        letters.append(i == 0 ? "" : ", ").append(arrayLetter(i));
    }
    return letters;
}

/// Whole MB, kept within the range of a size.
std::int32_t storedMb(double mb) {
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    return mb >= largest ? std::numeric_limits<std::int32_t>::max()
           : mb > 0.0    ? static_cast<std::int32_t>(mb)
                         : 0;
}

/// The words of the supported RAID levels.
CString raidLevelWords(const CodeSet& codes) {
    CString words;
    for (std::int32_t code = raid_level::raid0; code <= raid_level::simpleVolume; ++code) {
        if (code != raid_level::notGiven && codes.contains(code)) {
            words.append(words.isEmpty() ? "" : ", ");
            words.append(raidLevelWord(code));
        }
    }
    return words;
}

/// Where a value comes from: an entry of the policy, or else the default. `kind` is that of the
/// entry.
Reason sourceOf(Reason::Subject subject, std::size_t logicalDrive, Reason::Kind kind,
                const CString& keyword, bool isGiven, std::int32_t asked, std::int32_t value) {
    Reason reason{.kind = isGiven ? kind : Reason::Kind::classDefault,
                  .subject = subject,
                  .index = static_cast<std::int32_t>(logicalDrive),
                  .value = value};
    if (isGiven) {
        reason.keyword = keyword;
        reason.asked = asked;
    }
    return reason;
}

} // namespace

bool RAIDConfigCreator::doLogicalDrives() {
    const TraceScope scope(report_, "RAIDConfigCreator::doLogicalDrives");
    return scope.returnValue(policy_.customLogicalDrives ? doCUSTOMLogicalDrives()
                                                         : doAUTOLogicalDrives());
}

bool RAIDConfigCreator::doAUTOLogicalDrives() {
    const TraceScope scope(report_, "RAIDConfigCreator::doAUTOLogicalDrives");
    bool done = true;
    for (std::size_t i = 0; done && i < layout_.arrays().size(); ++i) {
        const LogicalDrive drive = automaticLogicalDrive(i);
        done = isRAIDLevelOK(drive) && addLogicalDrive(drive);
    }
    return scope.returning(done);
}

LogicalDrive RAIDConfigCreator::automaticLogicalDrive(std::size_t arrayIndex) {
    const LogicalSpecification defaults = policy_.logicalDefaults.value_or(LogicalSpecification());
    const bool givesLevel = defaults.raidLevel != raid_level::notGiven;
    const bool givesCache = defaults.writeCache != write_cache::notGiven;
    LogicalDrive drive;
    drive.arrayIndex = static_cast<std::int32_t>(arrayIndex);
    drive.raidLevel = givesLevel
                          ? defaults.raidLevel
                          : rules_.defaultRAIDLevel(layout_.arrays()[arrayIndex].driveCount());
    drive.sizeMb = plannedSize(defaults.size, drive.raidLevel, arrayIndex);
    drive.writeCache = givesCache ? defaults.writeCache : rules_.writeCache;
    const auto source = [&](Reason::Subject subject, bool isGiven, std::int32_t asked,
                            std::int32_t value) {
        explain([&] {
            return sourceOf(subject, layout_.logicalDrives().size(), Reason::Kind::policyDefault,
                            keyword::logicalDefaults, isGiven, asked, value);
        });
    };
    source(Reason::Subject::raidLevel, givesLevel, defaults.raidLevel, drive.raidLevel);
    explain([&] {
        Reason reason = sourceOf(Reason::Subject::size, layout_.logicalDrives().size(),
                                 Reason::Kind::policyDefault, keyword::logicalDefaults,
                                 policy_.logicalDefaults.has_value(), 0, drive.sizeMb);
        reason.askedSize = defaults.size;
        return reason;
    });
    source(Reason::Subject::writeCache, givesCache, defaults.writeCache, drive.writeCache);
    return drive;
}

bool RAIDConfigCreator::doCUSTOMLogicalDrives() {
    const TraceScope scope(report_, "RAIDConfigCreator::doCUSTOMLogicalDrives");
    const auto failed = [this](int exit) {
        report_.tracef("Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, returning false(%d)\n",
                       exit);
        return false;
    };
    for (const LogicalSpecification& entry : policy_.logicalDrives) {
        const auto arrayIndex = static_cast<std::size_t>(entry.arrayIndex);
        if (arrayIndex >= layout_.arrays().size()) {
            Fault fault = makeLogicalFault(FaultKind::planArrayUnknown, entry.arrayIndex);
            fault.wanted.append(arrayLetter(arrayIndex));
            fault.possible = arrayLetters(layout_.arrays().size());
            refuse(std::move(fault));
            return failed(1);
        }
        LogicalDrive drive;
        drive.arrayIndex = entry.arrayIndex;
        drive.raidLevel = entry.raidLevel != raid_level::notGiven
                              ? entry.raidLevel
                              : rules_.defaultRAIDLevel(layout_.arrays()[arrayIndex].driveCount());
        drive.writeCache = entry.writeCache;
        if (!rules_.raidLevels.contains(drive.raidLevel)) {
            Fault fault = makeLogicalFault(FaultKind::planRaidLevelUnsupported, entry.arrayIndex);
            fault.wanted = wantedLevel(drive.raidLevel);
            fault.possible = raidLevelWords(rules_.raidLevels);
            refuse(std::move(fault));
            return failed(2);
        }
        drive.sizeMb = plannedSize(entry.size, drive.raidLevel, arrayIndex);
        explainCustom(entry, drive);
        if (!isRAIDLevelOK(drive)) {
            return failed(3);
        }
        if (!addLogicalDrive(drive)) {
            return failed(4);
        }
    }
    return scope.returning(true);
}

void RAIDConfigCreator::explainCustom(const LogicalSpecification& entry,
                                      const LogicalDrive& drive) {
    const auto given = [&](Reason::Subject subject, bool isGiven, std::int32_t asked,
                           std::int32_t value) {
        return sourceOf(subject, layout_.logicalDrives().size(), Reason::Kind::given,
                        logicalKeyword(), isGiven, asked, value);
    };
    explain([&] {
        return given(Reason::Subject::raidLevel, entry.raidLevel != raid_level::notGiven,
                     entry.raidLevel, drive.raidLevel);
    });
    explain([&] {
        Reason reason = given(Reason::Subject::size, true, 0, drive.sizeMb);
        reason.askedSize = entry.size;
        return reason;
    });
    explain([&] {
        const bool isGiven = entry.writeCache != write_cache::notGiven;
        Reason reason =
            given(Reason::Subject::writeCache, isGiven, entry.writeCache, drive.writeCache);
        if (!isGiven) {
            reason.kind = Reason::Kind::leftToController;
        }
        return reason;
    });
}

CString RAIDConfigCreator::logicalKeyword() const {
    // Each entry before this one has become a logical drive.
    return keyword::logical +
           CString::fromInt(static_cast<std::int64_t>(layout_.logicalDrives().size() + 1));
}

Fault RAIDConfigCreator::makeLogicalFault(FaultKind kind, std::int32_t arrayIndex) const {
    Fault fault = makeFault(kind);
    if (policy_.customLogicalDrives) {
        fault.place.keyword = logicalKeyword();
    } else if (policy_.logicalDefaults) {
        fault.place.keyword = keyword::logicalDefaults;
    }
    fault.place.array = arrayIndex;
    return fault;
}

bool RAIDConfigCreator::addLogicalDrive(const LogicalDrive& drive) {
    if (layout_.addLogicalDrive(drive)) {
        return true;
    }
    Fault fault = makeLogicalFault(FaultKind::planTooManyLogicalDrives, drive.arrayIndex);
    fault.number = static_cast<std::int32_t>(RAIDConfiguration::maxLogicalDrives);
    return refuse(std::move(fault));
}

std::int32_t RAIDConfigCreator::plannedSize(const DriveSize& wanted, std::int32_t raidLevel,
                                            std::size_t arrayIndex) const {
    // A size this close to what is left takes all that is left.
    constexpr double closeMb = 139.0;

    const RaidArray& array = layout_.arrays()[arrayIndex];
    if (wanted.kind == DriveSize::Kind::rest) {
        return sizeFill;
    }
    const double fraction = usableFraction(raidLevel, array.driveCount());
    double size = wanted.value;
    if (wanted.kind == DriveSize::Kind::percent) {
        const double exact =
            fraction * static_cast<double>(array.capacityMb) * wanted.value / 100.0;
        size = static_cast<double>(roundedMb(exact));
    }
    const double difference = remainingMb(fraction, arrayIndex) - size;
    return std::abs(difference) <= closeMb ? sizeFill : storedMb(size);
}

double RAIDConfigCreator::remainingMb(double fraction, std::size_t arrayIndex) const {
    const RaidArray& array = layout_.arrays()[arrayIndex];
    auto rawMb = static_cast<double>(array.capacityMb);
    for (const LogicalDrive& planned : layout_.logicalDrives()) {
        if (static_cast<std::size_t>(planned.arrayIndex) != arrayIndex) {
            continue;
        }
        if (planned.sizeMb == sizeFill) {
            return 0.0;
        }
        rawMb -= planned.sizeMb /
                 static_cast<double>(usableFraction(planned.raidLevel, array.driveCount()));
    }
    return fraction * rawMb;
}

bool RAIDConfigCreator::isRAIDLevelOK(const LogicalDrive& drive) {
    const TraceScope scope(report_, "RAIDConfigCreator::isRAIDLevelOK");
    const auto arrayIndex = static_cast<std::size_t>(drive.arrayIndex);
    const std::size_t drives = layout_.arrays()[arrayIndex].driveCount();
    report_.tracef("Number of drives=%d, RAID level=%d, Controller type=%d\n",
                   static_cast<int>(drives), drive.raidLevel, controller_.type());
    const DriveCountRule* const rule = findDriveCountRule(drive.raidLevel, controller_.type());
    if (rule != nullptr && takesDrives(*rule, drives)) {
        return scope.returning(true);
    }
    Fault fault = makeLogicalFault(FaultKind::planRaidLevelDriveCount, drive.arrayIndex);
    fault.possible = rule != nullptr ? driveCountWords(*rule) : CString();
    fault.wanted = wantedLevel(drive.raidLevel);
    fault.number = static_cast<std::int32_t>(drives);
    return scope.returning(refuse(std::move(fault)));
}

std::int32_t RAIDConfigCreator::getArrayRAIDLevel(std::size_t arrayIndex) {
    report_.trace("Entering RAIDConfigCreator::getArrayRAIDLevel\n");
    std::int32_t found = raid_level::none;
    if (policy_.customLogicalDrives) {
        for (const LogicalSpecification& entry : policy_.logicalDrives) {
            if (static_cast<std::size_t>(entry.arrayIndex) == arrayIndex) {
                found = entry.raidLevel;
                break;
            }
        }
    }
    report_.tracef("Exiting RAIDConfigCreator::getArrayRAIDLevel, returning %d\n", found);
    return found;
}

} // namespace zolex
