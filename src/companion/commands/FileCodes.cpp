#include "companion/commands/FileCodes.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

using enum Severity;

// Columns: id, severity, title, why, help. Order: by id.
constexpr std::array<ProblemCode, 29> fileRows = {{
    {"ZC101", note, "a controller is not in captured policies",
     "It has no arrays, or its utility failed: no section of the file is for it, and zolex skips "
     "it.",
     "make its arrays first, or see why its utility fails: zolexctl doctor"},
    {"ZC102", warning, "hot spares without an array",
     "A policy makes spares beside arrays. Deployed, the file makes none on this controller.",
     "make its arrays first, or note the spares elsewhere"},
    {"ZC103", warning, "a strip size would not come back",
     "A policy has one strip size for all its logical drives, and zolex refuses some sizes.",
     "zolexctl explain ZX403 tells the sizes; the data itself comes from a backup in any case"},
    {"ZC104", warning, "a logical drive would not come back", "zolex makes no command for it.",
     "split its array, or make it by hand"},
    {"ZC105", warning, "the spans of an array cannot be said",
     "A policy divides the drives otherwise: pairs for RAID 10, two halves for 50 and 60.",
     "make it by hand, or take another level"},
    {"ZC106", warning, "a logical drive is not well",
     "What is captured of a degraded server may not be what it was.",
     "mend it first, then capture again"},
    {"ZC107", warning, "zolex would refuse the captured policy",
     "The file cannot be deployed as it stands on this controller.",
     "zolexctl check FILE tells what to mend"},
    {"ZC108", warning, "a size would not come back",
     "The size is rounded, or this model's policies cannot say one.",
     "zolexctl show --as policies --exact writes sizes in MB"},
    {"ZC109", note, "zolex reads other members than the listing tells",
     "A capture made by zolex itself would name other drives.",
     "take the policies that zolexctl writes"},
    {"ZC110", warning, "an array would be made of other drives",
     "The policy names them otherwise than they stand now.", "look at the numbers: zolexctl show"},
    {"ZC111", warning, "hot spares would come back otherwise",
     "Policies have spares for a whole controller alone, and name them by number.",
     "set the spare for one array by hand"},
    {"ZC112", warning, "a setting would come back otherwise",
     "A policy has one cache and read-ahead mode and one rebuild rate for all its logical drives.",
     "set it by hand afterwards"},
    {"ZC113", warning, "a RAID level that policies cannot name",
     "The logical drive would come back with another level, or not at all.", "make it by hand"},
    {"ZC114", warning, "no commands can be made of the captured policy",
     "zolex ends with exit code 11 when it deploys the file.",
     "zolexctl check FILE tells what to mend"},
    {"ZC115", warning, "the commands would name other drives",
     "A drive cannot be said in the utility's command line.", "make this array by hand"},
    {"ZC116", warning, "there is more than policies can hold",
     "What is beyond is left out of the file.", "make the rest by hand"},
    {"ZC117", note, "a logical drive has a name",
     "Policies give no names: it would come back without one.", "name it by hand afterwards"},
    {"ZC118", note, "a strip size is the utility's own",
     "zolex gives this utility none, so that the controller's own comes back.",
     "set it by hand where it matters"},
    {"ZC119", warning, "there is no policy in the captured file",
     "No controller has arrays that policies can say. zolex and zolexctl check refuse such a file.",
     "make the arrays first, or write policies by hand: man zolex-policies"},
    {"ZR100", error, "a recording cannot be read",
     "Nothing is known of the machine that it stands for.",
     "name another file, or record again: zolexctl record -o FILE.zrec"},
    {"ZR101", error, "a file is no recording", "It does not begin as a recording does.",
     "record the machine again: zolexctl record -o FILE.zrec"},
    {"ZR102", error, "a recording of another format version",
     "A later zolexctl has made it, in a format that this one does not know.",
     "read it with the zolexctl that made it, or a later one"},
    {"ZR103", error, "a line of a recording is broken",
     "The file was changed, or damaged on its way.",
     "copy it again, or record again: zolexctl record -o FILE.zrec"},
    {"ZR104", error, "a value of a recording is missing or wrong",
     "The file was changed, or damaged on its way.",
     "copy it again, or record again: zolexctl record -o FILE.zrec"},
    {"ZR105", error, "a recording is too large", "It has more lines or bytes than any capture has.",
     "is it a recording at all? Record again: zolexctl record -o FILE.zrec"},
    {"ZR106", warning, "a recording was changed",
     "Its lines are not those that were written; what it tells may not be true.",
     "record the machine again: zolexctl record -o FILE.zrec"},
    {"ZR107", note, "the last line of a recording was cut",
     "It is left out; the lines before it can be used.",
     "record again when something is missing: zolexctl record -o FILE.zrec"},
    {"ZR108", note, "a recording has no end", "It was interrupted; what it holds can be used.",
     "record again when something is missing: zolexctl record -o FILE.zrec"},
    {"ZR109", warning, "a recording has a call that is not known",
     "A later zolexctl has made it. The call is passed over.", "read it with a later zolexctl"},
}};

} // namespace

std::span<const ProblemCode> fileCodes() {
    return fileRows;
}

const ProblemCode* findFileCode(std::string_view id) {
    const auto* const row =
        std::find_if(fileRows.begin(), fileRows.end(),
                     [id](const ProblemCode& each) { return text::equalsNoCase(each.id, id); });
    return row == fileRows.end() ? nullptr : row;
}

} // namespace zolex::companion
