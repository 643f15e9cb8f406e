#pragma once

#include "companion/families/FamilyCodes.h"
#include "companion/findings/Finding.h"

#include <span>
#include <string_view>

namespace zolex::companion {

/// What can be wrong with a machine, its utilities or their listings, where no rule of the linter
/// says so.
struct ProblemCode {
    std::string_view id;    ///< "ZP101"
    Severity severity;      ///< usual one
    std::string_view title; ///< what it finds, in a few words
    std::string_view why;   ///< what it means for what zolex and zolexctl do
    std::string_view help;  ///< what to do
};

namespace problem {
inline constexpr std::string_view commandFailed = "ZP100";
inline constexpr std::string_view utilityMissing = "ZP101";
inline constexpr std::string_view utilityNotStarted = "ZP102";
inline constexpr std::string_view utilityStillRuns = "ZP103";
inline constexpr std::string_view utilityFailed = "ZP104";
inline constexpr std::string_view notAListing = "ZP105";
inline constexpr std::string_view listingRefused = "ZP106";
inline constexpr std::string_view otherModel = "ZP107";
inline constexpr std::string_view otherPciFunction = "ZP108";
inline constexpr std::string_view sameSerial = "ZP109";
inline constexpr std::string_view notAddressed = "ZP110";
inline constexpr std::string_view listingLimit = "ZP111";
inline constexpr std::string_view brokenBlock = "ZP112";
inline constexpr std::string_view readingsDiffer = "ZP113";
inline constexpr std::string_view exitCodesLost = "ZP114";
inline constexpr std::string_view detectorFailed = "ZP115";
inline constexpr std::string_view machineUnknown = "ZP116";
inline constexpr std::string_view tooManyControllers = "ZP117";
inline constexpr std::string_view temporaryFolder = "ZP118";
inline constexpr std::string_view clockWrong = "ZP119";
inline constexpr std::string_view noControllers = "ZP120";
inline constexpr std::string_view orderUnknown = "ZP121";
inline constexpr std::string_view namedOtherwise = "ZP122";
inline constexpr std::string_view textAnswer = family_code::textAnswer;
inline constexpr std::string_view notDriven = family_code::notDriven;
inline constexpr std::string_view drivenByBoth = "ZP140";
inline constexpr std::string_view tamperedController = "ZP141";
inline constexpr std::string_view familyNotAsked = "ZP142";
inline constexpr std::string_view documentUnreadable = "ZP190";
inline constexpr std::string_view otherDocument = "ZP191";
inline constexpr std::string_view otherVersion = "ZP192";
inline constexpr std::string_view documentBroken = "ZP193";
inline constexpr std::string_view documentWrong = "ZP194";
inline constexpr std::string_view documentTooLarge = "ZP195";
inline constexpr std::string_view policiesRefused = "ZP201";
inline constexpr std::string_view notCaptured = "ZP202";
inline constexpr std::string_view machineNotKnown = "ZP203";
inline constexpr std::string_view notPlanned = "ZP204";
inline constexpr std::string_view cannotBind = "ZP205";
inline constexpr std::string_view redundancyLost = "ZP206";
inline constexpr std::string_view spareIdle = "ZP207";
inline constexpr std::string_view degraded = "ZP208";
inline constexpr std::string_view spareOfOne = "ZP209";
inline constexpr std::string_view wellElsewhere = "ZP210";
inline constexpr std::string_view addingIsNotEnough = "ZP220";
inline constexpr std::string_view lineNotMade = "ZP221";
inline constexpr std::string_view takesAllDrives = "ZP222";
inline constexpr std::string_view foreignNotCleared = "ZP223";
inline constexpr std::string_view drivesUnlike = "ZP224";
inline constexpr std::string_view noRoom = "ZP225";
inline constexpr std::string_view spareNotMade = "ZP226";
inline constexpr std::string_view volumeInUse = "ZP227";
inline constexpr std::string_view otherMachine = "ZP239";
inline constexpr std::string_view stepRefused = "ZP240";
inline constexpr std::string_view stepWithoutEffect = "ZP241";
inline constexpr std::string_view endsOtherwise = "ZP242";
inline constexpr std::string_view notResumable = "ZP243";
inline constexpr std::string_view notRehearsed = "ZP244";
inline constexpr std::string_view notSupposed = "ZP245";
inline constexpr std::string_view recordedTwice = "ZP246";
inline constexpr std::string_view madeUpSerials = "ZP247";
inline constexpr std::string_view convertRefused = "ZP260";
inline constexpr std::string_view convertNoPolicy = "ZP261";
inline constexpr std::string_view convertNoController = "ZP262";
inline constexpr std::string_view convertCovering = "ZP263";
inline constexpr std::string_view convertLevels = "ZP264";
inline constexpr std::string_view convertPlaces = "ZP265";
inline constexpr std::string_view convertNoType = "ZP266";
inline constexpr std::string_view ironicUnreadable = "ZP270";
inline constexpr std::string_view ironicBroken = "ZP271";
inline constexpr std::string_view ironicWrong = "ZP272";
inline constexpr std::string_view ironicTooLarge = "ZP273";
inline constexpr std::string_view journalUnreadable = "ZA180";
inline constexpr std::string_view notAJournal = "ZA181";
inline constexpr std::string_view otherJournalVersion = "ZA182";
inline constexpr std::string_view journalBroken = "ZA183";
inline constexpr std::string_view journalWrong = "ZA184";
inline constexpr std::string_view journalTooLarge = "ZA185";
inline constexpr std::string_view journalChanged = "ZA186";
inline constexpr std::string_view nothingBegun = "ZA187";
inline constexpr std::string_view certificateUnreadable = "ZA190";
inline constexpr std::string_view notACertificate = "ZA191";
inline constexpr std::string_view otherCertificateVersion = "ZA192";
inline constexpr std::string_view certificateBroken = "ZA193";
inline constexpr std::string_view certificateWrong = "ZA194";
inline constexpr std::string_view certificateTooLarge = "ZA195";
inline constexpr std::string_view otherCertifiedMachine = "ZA196";
} // namespace problem

/// All of them, in the order of their ids.
[[nodiscard]] std::span<const ProblemCode> problemCodes();
/// Null when there is none of this id; letter case is ignored.
[[nodiscard]] const ProblemCode* findProblemCode(std::string_view id);

/// A finding of this code, with the usual severity and help. The code is one of the table.
[[nodiscard]] Finding problemFinding(std::string_view id, std::string summary,
                                     std::string detail = {});
/// Puts the name of a file in the place of "POLICIES" or "RECORDING" in what helps.
void nameInHelp(Finding& finding, std::string_view placeholder, std::string_view name);

} // namespace zolex::companion
