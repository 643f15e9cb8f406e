#include "show/FloorFaultTexts.h"
#include "show/TextPieces.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::show {

namespace {

/// What the text of a fault begins with.
enum class Begin {
    nothing,
    line,      ///< "Line " and the number
    policy,    ///< name of the policy
    entry,     ///< name of the policy, ", " and the keyword
    arrayMode, ///< the same with Array_Mode for the keyword
};

/// What stands between head and tail.
enum class Middle { nothing, wanted, file };

/// A row of the texts. After the tail of policyWordInvalid stands what is possible.
struct Row {
    FaultKind kind;
    Begin begin;
    const char* head;
    Middle middle;
    const char* tail;
};

// Order does not matter.
// clang-format off
constexpr std::array<Row, 40> rows{{
    {FaultKind::policiesUnreadable,       Begin::nothing, "Could not open policies file:  ", Middle::file, "\n"},
    {FaultKind::policiesMissing,          Begin::nothing, "\tYou must specify at least one policy in the policies file.\n", Middle::nothing, ""},
    {FaultKind::policyCharacterInvalid,   Begin::line, " -- Invalid character:  ", Middle::wanted, "\n"},
    {FaultKind::policyDeclarationInvalid, Begin::line, " -- Invalid policy declaration.\n", Middle::nothing, ""},
    {FaultKind::policyNameInvalid,        Begin::line, " -- Invalid or duplicate policy name:  ", Middle::wanted, "\n"},
    {FaultKind::policiesTooMany,          Begin::line, " -- Too many policies specified.\n", Middle::nothing, "\tThe maximum number of policies that you may specify is 100\n"},
    {FaultKind::policyLineInvalid,        Begin::line, " -- Line not in keyword = value format:  ", Middle::wanted, ""},
    {FaultKind::policyKeywordInvalid,     Begin::line, " -- Invalid keyword:  ", Middle::wanted, "\n"},
    {FaultKind::policyKeywordRepeated,    Begin::policy, " -- Duplicate keywords found:  ", Middle::wanted, ""},
    {FaultKind::policyWithoutAppliesTo,   Begin::policy, " -- Each policy must have an AppliesTo.1", Middle::nothing, ""},
    {FaultKind::policyAppliesToAbsent,    Begin::policy, " -- Each policy must have an AppliesTo.1\n", Middle::nothing, ""},
    {FaultKind::policyWordInvalid,        Begin::entry, " -- Invalid specifier:  ", Middle::wanted, "\n\tValid values are:  "},
    {FaultKind::policySpecifierInvalid,   Begin::entry, " -- Invalid specifier:  ", Middle::wanted, "\n"},
    {FaultKind::policyControllerNumberInvalid, Begin::entry, " -- Invalid controller number specified:  ", Middle::wanted, "\n"},
    {FaultKind::policyScanOrderInvalid,   Begin::entry, " -- Invalid scan order:  ", Middle::wanted, "\n"},
    {FaultKind::policyControllerTypeInvalid, Begin::entry, " -- Invalid controller type:  ", Middle::wanted, "\n"},
    {FaultKind::policyDriveCountInvalid,  Begin::entry, " -- Invalid number of drives specified:  ", Middle::wanted, "\n"},
    {FaultKind::policyArrayDefaultsInvalid, Begin::arrayMode, " -- Invalid format:  ", Middle::wanted, "\n\tValid format is:  variance:hotspares.  Example: 10%:2.\n"},
    {FaultKind::policyHotspareCountInvalid, Begin::entry, " -- Invalid specifier:  ", Middle::wanted, "\n\tValid values for hotspares are:  integers greater than or equal to zero.\n"},
    {FaultKind::policyMaxSizeInvalid,     Begin::entry, " -- Invalid specifier:  ", Middle::wanted, "\n"},
    {FaultKind::policyArrayMissing,       Begin::policy, " -- Missing required entry in policies file:  Array.A\n", Middle::nothing, "\tThis entry is required when Array_Mode = CUSTOM\n"},
    {FaultKind::policyDriveListInvalid,   Begin::entry, " -- Invalid format:  ", Middle::wanted, "\n"},
    {FaultKind::policyArrayOrderInvalid,  Begin::policy, " -- Arrays must be specified in sequential-alphabetical order.\n", Middle::nothing, "Array.A = ...\nArray.B = ...\nArray.C = ...\n"},
    {FaultKind::policyArrayAfterAll,      Begin::policy, " -- Invalid array specified:  ", Middle::wanted, "\n\tThe ALL keyword was specified for a previous array.\n"},
    {FaultKind::policyArraysTooMany,      Begin::policy, " -- Too many arrays specified.\n", Middle::nothing, "\tThe maximum number of arrays that you may specify is 16\n"},
    {FaultKind::policyHotsparesTooMany,   Begin::entry, " -- Too many hot-spare drives specified.\n", Middle::nothing, "\tThe maximum number of hot-spare drives that you may specify is 16\n"},
    {FaultKind::policyLogicalDefaultsInvalid, Begin::entry, " -- Invalid format:  ", Middle::wanted, "\n\tValid format is:  size:raidlevel(:writecmode).  Example: 4096:0:AUTO.\n"},
    {FaultKind::policyLogicalMissing,     Begin::policy, " -- Missing required entry in policies file:  Logical.1\n", Middle::nothing, "\tThis entry is required when Logical_Mode = CUSTOM\n"},
    {FaultKind::policyLogicalInvalid,     Begin::entry, " -- Invalid format:  ", Middle::wanted, "\n\tValid format is:  array:size:raidlevel(:writecmode).  Example: A:4096:0:AUTO.\n"},
    {FaultKind::policyArrayLetterInvalid, Begin::entry, " -- Invalid array letter specified:  ", Middle::wanted, "\n"},
    {FaultKind::policyWriteCacheInvalid,  Begin::entry, " -- Invalid write-cache mode specified:  ", Middle::wanted, "\n\tValid values are:  OFF ON\n"},
    {FaultKind::policyRaidLevelInvalid,   Begin::entry, " -- Invalid RAID level specified:  ", Middle::wanted, "\n\tValid values are:  1E 5E 5EE 10 VOLUME\n"},
    {FaultKind::policySizeInvalid,        Begin::entry, " -- Invalid size specified:  ", Middle::wanted, "\n\tValid values are:  a percentage, a size in MB, or FILL\n"},
    {FaultKind::policyArrayShared,        Begin::entry, " -- RAID levels 5E and 5EE only permit one logical drive per array.\n", Middle::nothing, ""},
    {FaultKind::policyLogicalOrderInvalid, Begin::entry, " -- Logical drives must be specified in sequential order.\n", Middle::nothing, "Logical.1 = ...\nLogical.2 = ...\netc.\n"},
    {FaultKind::captureParametersInvalid, Begin::nothing, "Improper syntax for the following parameter:  ", Middle::wanted, ""},
    {FaultKind::temporaryUnwritable,      Begin::nothing, "Could not write to temp space.  ZOLEX requires temp space to run.\n", Middle::nothing, ""},
    {FaultKind::temporaryNotRemoved,      Begin::nothing, "Could not delete temp file:  ", Middle::file, "\n"},
    {FaultKind::policiesUnwritable,       Begin::nothing, "Could not open policies file for writing:  ", Middle::file, ""},
    {FaultKind::policiesWrittenInPart,    Begin::nothing, "Error writing to policies file.\n", Middle::nothing, "Warning: Partial data may have been written.\n"},
}};
// clang-format on

CString beginning(Begin begin, const Fault& fault) {
    switch (begin) {
    case Begin::line:
        return CString::concatenate("Line ", CString::fromInt(fault.number));
    case Begin::policy:
        return fault.place.section;
    case Begin::entry:
        return CString::concatenate(fault.place.section, ", ", fault.place.keyword);
    case Begin::arrayMode:
        // The message names Array_Mode, not the keyword at hand.
        return CString::concatenate(fault.place.section, ", ", "Array_Mode");
    case Begin::nothing:
        break;
    }
    return {};
}

std::string_view valueOf(Middle middle, const Fault& fault) {
    switch (middle) {
    case Middle::wanted:
        return fault.wanted;
    case Middle::file:
        return fault.place.file;
    case Middle::nothing:
        break;
    }
    return {};
}

} // namespace

std::optional<std::vector<FaultText>> policyFaultTexts(const Fault& fault) {
    if (fault.kind == FaultKind::policyLookUpUnreadable) {
        return output(formatText("File not found:  %s \n", fault.place.file.c_str()));
    }
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&fault](const Row& one) { return one.kind == fault.kind; });
    if (row == rows.end()) {
        return std::nullopt;
    }
    FaultText text;
    text.place = fault.kind == FaultKind::temporaryNotRemoved ? FaultText::Place::error
                                                              : FaultText::Place::errorBlock;
    text.text = beginning(row->begin, fault);
    text.text.append(row->head).append(valueOf(row->middle, fault)).append(row->tail);
    if (fault.kind == FaultKind::policyWordInvalid) {
        text.text.append(fault.possible).append("\n");
    }
    return std::vector<FaultText>{std::move(text)};
}

} // namespace zolex::show
