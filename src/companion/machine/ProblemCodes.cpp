#include "companion/machine/ProblemCodes.h"
#include "companion/families/FamilyCodes.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace zolex::companion {

namespace {

using enum Severity;

// Columns: id, severity, title, why, help. Order: by id.
// clang-format off
constexpr auto problemRows = std::to_array<ProblemCode>({
    {problem::journalUnreadable, error, "a journal cannot be read from its file",
     "Nothing was done. The file is missing, or this user has no right to read it.",
     "name the journal that apply has told of"},
    {problem::notAJournal, error, "a file is no journal",
     "Nothing was done. Its first line is not the begin of a run.",
     "name the journal that apply has told of"},
    {problem::otherJournalVersion, error,
     "a journal has a format version that this zolexctl does not know",
     "Nothing was done. A major version changes what names mean.",
     "go on with the zolexctl that began the run, or a later one"},
    {problem::journalBroken, error, "a line of a journal is no JSON",
     "Nothing was done. No end of a run, and no loss of power, leaves such a line: the file was "
     "edited, or damaged on its way.",
     "take the file as the run left it, or plan what is missing: zolexctl plan POLICIES"},
    {problem::journalWrong, error, "a value of a journal is missing or wrong",
     "Nothing was done. The file was edited, or damaged on its way.",
     "take the file as the run left it, or plan what is missing: zolexctl plan POLICIES"},
    {problem::journalTooLarge, error, "a journal is larger than any journal can be",
     "Nothing was done. The file is not one that zolexctl has written.",
     "name the journal that apply has told of"},
    {problem::journalChanged, error, "a journal was changed after it was written",
     "Nothing was done. Each line has the SHA-256 of the one before, and here it is another: what "
     "the journal tells need not be what was done.",
     "look at what stands, and plan what is missing: zolexctl plan POLICIES"},
    {problem::nothingBegun, error, "a journal has not even one whole line",
     "Nothing was begun: the run ended before its begin was on the disk, and no command that "
     "changes was started.",
     "remove the file, and apply the plan: zolexctl apply PLAN.json"},
    {problem::certificateUnreadable, error, "a certificate cannot be read from its file",
     "Nothing was done. The file is missing, or this user has no right to read it.",
     "name the file that apply --certificate has written"},
    {problem::notACertificate, error, "a document is no certificate",
     "Nothing was done. Other documents do not tell what a run has left on a machine.",
     "name the file that apply --certificate has written"},
    {problem::otherCertificateVersion, error,
     "a certificate has a format version that this zolexctl does not know",
     "Nothing was done. A major version changes what names mean.",
     "read it with the zolexctl that made it, or a later one"},
    {problem::certificateBroken, error, "a certificate is no JSON",
     "Nothing was done. The file was cut or edited.",
     "take the file as apply --certificate has written it"},
    {problem::certificateWrong, error,
     "something in a certificate is missing, wrong or contradicts another part",
     "Nothing was done. The place is in the summary: names, and numbers that count from 0.",
     "take the file as apply --certificate has written it"},
    {problem::certificateTooLarge, error, "a certificate is larger than any certificate can be",
     "Nothing was done. The file is not one that zolexctl has written.",
     "name the file that apply --certificate has written"},
    {problem::otherCertifiedMachine, error, "a certificate is of another machine",
     "Nothing can be compared: it tells nothing of this machine.",
     "name the certificate of this machine"},
    {problem::commandFailed, error, "a command of zolexctl could not do its work",
     "Nothing was changed; what it could not do is in its summary.",
     "do what its own help says, and run it again"},
    {problem::utilityMissing, error, "a utility that a controller needs is missing",
     "Nothing is known of the controller, and nothing can be done with it.",
     "install it, or name it: zolexctl --utility MEGACLI=/path/MegaCli64 doctor"},
    {problem::utilityNotStarted, error, "a utility cannot be started",
     "It is there, but the system does not run it: no right to, or not a program of this system.",
     "start the command by hand to see why"},
    {problem::utilityStillRuns, error, "a utility does not end, or prints without end",
     "What it prints is not used. It goes on by itself and may hold the controller.",
     "wait for it to end, or give it longer: --capture-limit-seconds 900"},
    {problem::utilityFailed, error, "a utility ends with an exit code that means failure",
     "zolex stops at it (exit code 4 when it captures), and nothing is known of the controller.",
     "start the command by hand; what it printed tells why"},
    {problem::notAListing, error, "what a utility printed is no listing, although it ended with 0",
     "zolex takes it for a controller without drives and says that all is well.",
     "start the command by hand; what it printed tells why"},
    {problem::listingRefused, error, "zolex does not understand a listing",
     "zolex stops at it, and policies have no drive numbers for this controller.",
     "zolexctl record --redact -o report.zrec, and report it"},
    {problem::otherModel, error, "the listing names another model than the PCI function",
     "The utility numbers its controllers otherwise than zolex: commands would reach another one.",
     "take one of the controllers out, or configure them by hand"},
    {problem::otherPciFunction, error, "the listing is of another PCI function",
     "The utility numbers its controllers otherwise than zolex: commands would reach another one.",
     "take one of the controllers out, or configure them by hand"},
    {problem::sameSerial, error, "two controllers have the same serial number",
     "One controller is shown under two numbers, by its utility or by two: one of them cannot be "
     "reached, or what is done to one is done to the other.",
     "start the listing commands by hand and compare them"},
    {problem::notAddressed, error, "a controller has no number in its utility's commands",
     "zolex counts 15 controllers of one utility, and HYPERWIN's commands name none: for more they "
     "would reach another one.",
     "take the surplus controllers out, or configure them by hand"},
    {problem::listingLimit, warning, "a listing has more than zolex can keep",
     "What is beyond is left out by zolex, when it captures and when it plans.",
     "zolexctl show has all of it"},
    {problem::brokenBlock, warning, "a block of a listing cannot be read to its end",
     "A drive or a logical drive in it may be missing or only half known.",
     "zolexctl record --redact -o report.zrec, and report it"},
    {problem::readingsDiffer, warning, "two readings of one listing differ",
     "zolex plans by the first reading; the second one tells otherwise.",
     "zolexctl record --redact -o report.zrec, and report it"},
    {problem::exitCodesLost, error, "the wrapper loses exit codes",
     "A command that fails would pass for one that succeeded, and nobody would know.",
     "let UTIL.BAT end with the code of the program: exit /b %ERRORLEVEL%, or exec in a script"},
    {problem::detectorFailed, warning, "hwdetect.exe fails",
     "zolex ends with exit code 5 when it plans; zolexctl asks the firmware instead.",
     "start hwdetect.exe /i by hand to see why"},
    {problem::machineUnknown, note, "the machine type is not known",
     "Policies that ask for a machine type (m:) match nothing.",
     "give it: --machine-type TYPE"},
    {problem::tooManyControllers, warning, "there are more controllers than zolex keeps",
     "Those beyond are left out.",
     "take the surplus controllers out"},
    {problem::temporaryFolder, warning, "the folder for temporary files cannot be used",
     "Utilities that write files there fail.",
     "set TMPDIR (TEMP on Windows) to a folder that can be written"},
    {problem::clockWrong, warning, "the clock of this machine is wrong",
     "Records and journals carry wrong times.",
     "set the clock"},
    {problem::noControllers, error, "there is no RAID controller",
     "No PCI function is one of a controller that zolex knows: it is not there, or switched off.",
     "look at the list of PCI functions and at the firmware's settings"},
    {problem::orderUnknown, warning, "the order of the controllers is not known for sure",
     "This machine's controllers are put in order of the bus that their listings tell.",
     "mend the listing that fails first; numbers of controllers may change then"},
    {problem::namedOtherwise, error, "a command line of zolex names another drive than policies do",
     "An array or a hot spare would be made of another drive than the one that was asked for.",
     "use drives in one enclosure only, or configure this controller by hand"},
    {family_code::textAnswer, error, "a utility answers in another form than JSON",
     "Nothing of the controller is known. A build that answers in text although JSON was asked for "
     "cannot be served. A command that the utility does not know, and a program that cannot be "
     "loaded, are answered so, too.",
     "run the command by hand, and look at what it prints"},
    {family_code::notWhole, error, "a listing tells less than it counts, or contradicts another",
     "Nothing is planned on this controller: a drive that is not listed, or that is in an array by "
     "one listing and free by another, may hold data.",
     "run the command by hand, and compare what it lists with what it counts"},
    {family_code::noDetails, warning, "a drive in use or a logical drive tells no details",
     "What could be lost with it is not known. It is shown, and nothing is planned on this "
     "controller.",
     "look at the drive: zolexctl show"},
    {family_code::unknownWord, warning, "a utility uses a word that zolexctl does not know",
     "The word is kept and shown. A drive in a state that is not known is never planned with.",
     "report it: zolexctl record --redact -o report.zrec"},
    {family_code::notTold, note, "a part of a listing is missing",
     "What it would tell is not known: firmware, limits, ids. All else is read.",
     "look whether a newer version of the utility tells it"},
    {family_code::toldTwice, note, "a listing tells one thing twice",
     "The first counts.", "look whether a newer version of the utility tells it once"},
    {family_code::cacheFallsBack, note, "a logical drive runs in another cache mode than is set",
     "Write-back falls back to write-through while a battery charges, or is missing. The mode that "
     "is set is compared with policies.",
     "look at the battery of the controller"},
    {family_code::saysFailure, warning, "a utility says failure, and lists what there is",
     "One drive that does not answer makes the utility fail as a whole. What it lists counts.",
     "look at the drives: zolexctl show"},
    {family_code::foreignIncomplete, warning, "a foreign configuration is incomplete",
     "Drives of it are missing, so that it cannot be imported as it is. It is never taken, and only "
     "cleared with consent.",
     "look for its other drives before it is cleared"},
    {family_code::cachePreserved, warning, "the cache keeps data of a logical drive",
     "Drives of a logical drive went away while data for it was in the cache, which keeps it until "
     "they are back or it is deleted. Until then the utility refuses to make a logical drive "
     "(error 84). zolexctl never deletes it: it may be the only copy of what was written last.",
     "Ask of which logical drive it is, bring its drives back, and let it be written:\n"
     "  storcli64 /c0 show preservedcache\n"
     "Deleting it loses that data for good:\n"
     "  storcli64 /c0/v239 delete preservedcache"},
    {family_code::freeNoDetails, warning, "a drive that is in nothing tells no details",
     "Its exact size and its serial number are not known. It is shown, and not planned with; all "
     "others are.",
     "look at the drive: zolexctl show"},
    {family_code::sizeTwice, warning, "a logical drive is told with two sizes",
     "The number of its blocks and its size in words are not the same, whatever the blocks are. The "
     "words count, as exactly as they are.",
     "compare them: storcli64 /c0/vall show all"},
    {family_code::notDriven, warning, "a RAID controller that zolexctl does not drive",
     "It is as it was: nothing of it is shown, planned or changed.",
     "configure it with its own utility"},
    {problem::drivenByBoth, note, "two utilities drive one controller",
     "One of them is used for all that is read and changed, so that both never work on one "
     "controller.",
     "name the program of the one to be used: zolexctl --utility MEGACLI=/path/MegaCli64 doctor"},
    {problem::tamperedController, error, "a controller calls itself unsupported or tampered with",
     "Its firmware reports ids that stand for hardware that is not genuine, or not sold. Nothing is "
     "planned on it.",
     "ask its maker"},
    {problem::familyNotAsked, warning, "policies are for controllers that were not asked for",
     "Arrays of Linux are made of drives that anything may use: neither mdadm is run nor a drive "
     "looked at, whatever policies say, unless the command asks for it.",
     "say it where it is meant: zolexctl plan POLICIES --family md"},
    {problem::documentUnreadable, error, "a plan cannot be read from its file",
     "Nothing was changed. The file is missing, or this user has no right to read it.",
     "name the file that zolexctl plan -o has written"},
    {problem::otherDocument, error, "a document is no plan",
     "Nothing was changed. Other documents tell of a machine or of policies, and of no steps.",
     "make a plan: zolexctl plan POLICIES -o PLAN.json"},
    {problem::otherVersion, error, "a plan has a format version that this zolexctl does not know",
     "Nothing was changed. A major version changes what names mean.",
     "make the plan again with this zolexctl: zolexctl plan POLICIES -o PLAN.json"},
    {problem::documentBroken, error, "a plan is no JSON",
     "Nothing was changed. The file was cut or edited.",
     "make the plan again: zolexctl plan POLICIES -o PLAN.json"},
    {problem::documentWrong, error, "something in a plan is missing, wrong or contradicts another part",
     "Nothing was changed. The place is in the summary: names, and numbers that count from 0.",
     "make the plan again: zolexctl plan POLICIES -o PLAN.json"},
    {problem::documentTooLarge, error, "a plan is larger than any plan can be",
     "Nothing was changed. The file is not one that zolexctl has written.",
     "make the plan again: zolexctl plan POLICIES -o PLAN.json"},
    {problem::policiesRefused, error, "the policies cannot be read",
     "zolex refuses the file, exit code 5, and nothing can be planned.",
     "Ask what is wrong with it:\n  zolexctl check site.ini"},
    {problem::notCaptured, error, "a controller could not be captured",
     "Nothing is known of its drives, so no plan can be made, and a plan for the other controllers "
     "alone might not be what is meant.",
     "Ask what is wrong with the utility, or plan the other controllers alone:\n  zolexctl doctor\n"
     "  zolexctl plan site.ini --controller 2"},
    {problem::machineNotKnown, error, "a policy asks for a name that is not known",
     "The machine type or the serial number of the machine could not be found out, and whether the "
     "policy is for this machine depends on it.",
     "Give it:\n  zolexctl plan site.ini --machine-type 8837 --serial KQ10Z7V"},
    {problem::notPlanned, error, "no plan can be made",
     "zolex ends with exit code 5 when it comes to this controller; a restore (/r) in the same "
     "command is done before.",
     "The finding tells what does not fit."},
    {problem::cannotBind, error, "an entry finds no drives",
     "An entry tells drives by what they are, and the controller has none or too few of them that "
     "are free for it.",
     "Ask what there is, and change the entry:\n  zolexctl show"},
    {problem::redundancyLost, warning, "redundancy is lost",
     "The logical drives that stand on the controller survive the failure of a drive; those that "
     "are planned do not.",
     "Take a level such as 1, 5 or 10 where the data matters."},
    {problem::spareIdle, warning, "a hot spare that covers nothing",
     "No array has a level that a spare can rebuild and members that are as small as the spare: it "
     "never steps in.",
     "Use the drive in an array, take a larger one, or say that there is none:\n"
     "  Array_Defaults = 0%:0"},
    {problem::degraded, warning, "what stands is as planned, but not well",
     "A drive has failed or is being rebuilt, or its utility calls a logical drive not well. "
     "Nothing is planned, as the layout is the one that the policy asks for.",
     "Replace the drive that is named as failed or missing; the controller rebuilds by itself. "
     "Where none is, look at what it does: zolexctl show"},
    {problem::spareOfOne, warning, "a hot spare is one of a single array",
     "The family has no spare for several arrays: this one is made with the first that has none "
     "yet, and the others have to get it from whoever watches over them.",
     "name a spare for each array: Spares = 1 covering A and 1 covering B"},
    {problem::wellElsewhere, warning, "a logical drive that is well goes for the place of its drives",
     "It is of the level that the policy asks for, on as many drives, but on others than the policy "
     "lists. That is so after a hot spare has taken the place of a drive that failed. Its data goes "
     "with it.",
     "name the drives on which it is, and it stays: zolexctl show"},
    {problem::addingIsNotEnough, error, "what is wanted cannot be reached by adding alone",
     "Something that stands on the controller is in the way, or its utility cannot add beside it. "
     "With --strategy add nothing is removed, so nothing is done.",
     "see what a rebuild would remove: zolexctl plan POLICIES --strategy auto"},
    {problem::lineNotMade, error, "a command line cannot be made",
     "The utility of the controller has no command for what is planned. zolex ends with exit code "
     "11 there, when the controllers before it have been configured.",
     "change the entry that the finding names, and try it: zolexctl plan POLICIES"},
    {problem::takesAllDrives, error, "the utility takes other drives than the policy lists",
     "HYPERWIN's command names no drives: it takes all that are free, and where there is a spare, "
     "the last of them for it.",
     "list all drives of the controller: Array.A = 1,2"},
    {problem::foreignNotCleared, error, "a planned drive carries a layout of another controller",
     "The utility refuses such a drive, and has no command that clears it.",
     "plan for other drives, or clear it in the controller's own set-up: zolexctl show"},
    {problem::drivesUnlike, error, "an array of drives that do not go together",
     "The controller refuses an array of drives whose sectors, protocols or media differ.",
     "Name drives of one kind:\n  Drives.A = 4 x SAS HDD"},
    {problem::noRoom, error, "a logical drive that has no room on its array",
     "The utility refuses a logical drive that is larger than what is left of the drives.",
     "Give it less, or the logical drives before it, or write FILL for the last one."},
    {problem::spareNotMade, error, "a hot spare that cannot be made as it is asked for",
     "A spare of some arrays alone has to be as large as their drives, of the same kind, and made "
     "together with one array, or for arrays that stand already.",
     "Write one spare for each array, or one for all:\n  Spares = 1 covering A and 1 covering B"},
    {problem::volumeInUse, error, "the running system uses what would be deleted",
     "Its device, or a partition of it, is mounted, swapped to, held by LVM, an array or "
     "encryption, or carries the system's root. Nothing is deleted, on any controller, as nobody "
     "wants a server without its system half way. Linux alone is asked, by the id of the logical "
     "drive; elsewhere, and of a recording, nothing is known of it.",
     "End what uses it, and plan again; where it is the system itself, start the server from "
     "another one:\n  lsblk\n  umount /srv"},
    {problem::otherMachine, error, "a plan is held against another machine than its own",
     "Its drives and controllers are others, though they may be called the same.",
     "plan for this machine, and compare with that: zolexctl diff POLICIES"},
    {problem::stepRefused, error, "a command of the plan was refused on a copy of the machine",
     "The commands were played on a virtual copy of the captured controllers. One that is refused "
     "there would be refused by the real utility too, when those before it have been run: the "
     "controller would stand half configured.",
     "change what the utility names, and try it: zolexctl plan POLICIES"},
    {problem::stepWithoutEffect, error, "a command that creates or deletes changed nothing",
     "On a virtual copy of the captured controllers the layout was the same before and behind it. "
     "It would not do what it is planned for.",
     "zolexctl record --redact -o report.zrec, and report it"},
    {problem::endsOtherwise, error, "the commands end in another layout than planned",
     "All commands were taken on a virtual copy of the captured controllers, but what stands there "
     "then is not what the policy asks for.",
     "zolexctl record --redact -o report.zrec, and report it"},
    {problem::notResumable, warning, "a run that stops at a step could not be resumed",
     "On a virtual copy of the captured controllers the step was made to fail, and the rest of the "
     "plan did not come to the planned end from there.",
     "should a run stop there, look at what stands and plan anew: zolexctl plan POLICIES"},
    {problem::notRehearsed, error, "a server of a fleet cannot be rehearsed",
     "There is a plan for it, but the controller cannot be copied: whether its utility takes the "
     "commands is not known. It counts as an error.",
     "look at its plan: zolexctl plan POLICIES --recording RECORDING"},
    {problem::notSupposed, error, "what is supposed cannot be so in a copy",
     "With --what-if a server is planned as its virtual copy is, and this one cannot be copied, or "
     "its listings would not tell of it.",
     "rehearse it without --what-if"},
    {problem::recordedTwice, warning, "two recordings are of one server",
     "It is counted twice: servers, losses and commands are fewer than told.",
     "keep the later recording alone in the folder"},
    {problem::madeUpSerials, warning, "policies ask for a serial number, and those are made up",
     "A recording made with --redact holds other serial numbers than its server: what asks for s: "
     "does not fit there.",
     "record the servers without --redact: zolexctl record -o server.zrec"},
    {problem::convertRefused, error, "policies for zolex cannot be made",
     "Nothing is written: what would be written is not what the policies say.",
     "zolexctl check POLICIES --machine RECORDING tells how they fit the machine"},
    {problem::convertNoPolicy, note, "a controller gets no policy",
     "zolex leaves the controller as it is.",
     "zolexctl check POLICIES --machine RECORDING tells why no policy is for it"},
    {problem::convertNoController, note, "a policy is for no controller of the machine",
     "Its drives cannot be told: it is not in what is written.",
     "keep the file that it stands in for the machines that it is for"},
    {problem::convertCovering, note, "what hot spares cover is left out",
     "zolex names the drives alone. Which arrays a hot spare stands in for is the controller's "
     "affair.",
     "keep the policies that were converted"},
    {problem::convertLevels, note, "the other levels are left out",
     "zolex takes one level. When drives are added or taken out, it is not chosen anew.",
     "convert the policies again when the drives change"},
    {problem::convertPlaces, note, "places of drives are counted anew",
     "Drives by channel and id: the channel is the place of the enclosure among those that the other "
     "utility lists, 1 being for drives in no enclosure where there are such.",
     "look at the places: zolexctl show"},
    {problem::convertNoType, error, "no policy is for controllers of the type",
     "No AppliesTo entry names it, and nothing would be changed.",
     "write it as the file has it: --model t:LSI-MegaRAID-8480=t:STORCLI"},
    {problem::ironicUnreadable, error, "a RAID configuration of Ironic cannot be read from its file",
     "Nothing was written. The file is missing, or this user has no right to read it.",
     "give the name of the file, or - for standard input"},
    {problem::ironicBroken, error, "a RAID configuration of Ironic is no JSON",
     "Nothing was written. The file was cut, or edited by hand.",
     "mend it where the text says, and hold it against schemas/ironic-raid.schema.json"},
    {problem::ironicWrong, error, "a RAID configuration of Ironic has a wrong name or value",
     "Nothing was written. Ironic refuses the configuration, too.",
     "mend it, and hold it against schemas/ironic-raid.schema.json"},
    {problem::ironicTooLarge, error,
     "a RAID configuration of Ironic is larger than any of one node can be",
     "Nothing was written. The file is another one.",
     "give the file that has logical_disks of one node"},
});
// clang-format on

} // namespace

std::span<const ProblemCode> problemCodes() {
    return problemRows;
}

const ProblemCode* findProblemCode(std::string_view id) {
    const auto* const row =
        std::find_if(problemRows.begin(), problemRows.end(),
                     [id](const ProblemCode& code) { return text::equalsNoCase(code.id, id); });
    return row == problemRows.end() ? nullptr : row;
}

Finding problemFinding(std::string_view id, std::string summary, std::string detail) {
    Finding finding;
    finding.code = id;
    finding.summary = std::move(summary);
    finding.detail = std::move(detail);
    if (const ProblemCode* const code = findProblemCode(id)) {
        finding.severity = code->severity;
        finding.help.emplace_back(code->help);
    }
    return finding;
}

void nameInHelp(Finding& finding, std::string_view placeholder, std::string_view name) {
    for (std::string& line : finding.help) {
        const std::size_t at = line.find(placeholder);
        if (at != std::string::npos) {
            line.replace(at, placeholder.size(), name);
        }
    }
}

} // namespace zolex::companion
