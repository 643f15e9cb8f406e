#include "companion/commands/GuardCodes.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion {

namespace {

using enum Severity;

// Columns: id, severity, title, why, help. Order: by id.
constexpr auto guardRows = std::to_array<ProblemCode>({
    {guard_problem::wordNotUnderstood, error, "a word of zolex's command line is not understood",
     "zolex takes a mistyped switch into the value before it, such as the name of the policies "
     "file, and may have erased controllers before it finds no such file.",
     "zolexctl guard -- zolex /? lists the switches; put a name with blanks into double quotes"},
    {guard_problem::fileNotRead, error, "a file that the command line names cannot be read",
     "zolex goes on without its parameter file, and finds a missing policies file only when the "
     "controllers have been erased.",
     "name a file that is there"},
    {guard_problem::switchesExclude, error, "switches exclude one another, or one is missing",
     "zolex ends with exit code 4 and does nothing.", "zolexctl guard -- zolex /? lists them"},
    {guard_problem::noSuchNumber, error, "/r:N names no controller",
     "zolex erases nothing then and ends with 0, or goes on to the deployment.",
     "zolexctl show tells the numbers"},
    {guard_problem::inventedInput, error, "invented drives, and commands that run",
     "zolex would run commands on this server that were made for drives of a file, or of a "
     "stand-in for the utilities.",
     "add /noexecuteall to look at the commands, or leave the invented input out"},
    {guard_problem::skippedController, error, "zolex would leave a controller without layout",
     "No policy is for it, or it has no drives. zolex says \"Skipped\" and ends with 0; with /r "
     "it has erased the controller before.",
     "add a policy for it, or let it pass: zolexctl guard --accept ZA206 -- zolex ..."},
    {guard_problem::asksAgain, error, "zolex would ask again, and deploy whatever is answered",
     "Without /y zolex asks before it erases. When that is declined, or nobody answers, it "
     "deploys all the same, on drives that are in use.",
     "add /y: guard asks before zolex is started"},
    {guard_problem::programMissing, error, "a program that zolex needs is missing",
     "zolex runs every utility through UTIL.BAT, and before policies are used it asks "
     "hwdetect.exe. It finds out that one is missing when controllers have been erased.",
     "put it beside zolex, or into a folder of the search path"},
    {guard_problem::wouldFail, error, "zolex would end with an error",
     "zolex itself was run on a virtual copy of this server, in memory. What it ends with there it "
     "ends with here, when the commands before that have been run.",
     "mend what its last lines tell: zolexctl plan POLICIES tells more"},
    {guard_problem::endsElsewhere, error, "zolex would end otherwise than the policies say",
     "zolex itself was run on a virtual copy of this server, in memory, and said that all is well. "
     "What stands there then is not what the policies ask for.",
     "zolexctl plan POLICIES makes commands for all of it"},
    {guard_problem::zolexMissing, error, "zolex itself is not found, or cannot be started",
     "It is looked for beside zolexctl, and then along the search path.",
     "put zolex beside zolexctl"},
    {guard_problem::notAgreed, error, "what would be lost was not agreed to",
     "zolex was not started, and nothing was changed.",
     "look at the list of losses, and give its code: --destroy CODE"},
    {guard_problem::changedMeanwhile, error, "something has changed while guard looked or asked",
     "What was judged is not what zolex would find. It was not started.", "run the command again"},
    {guard_problem::locked, error, "another run changes this server",
     "Two runs at once would configure each other's drives. zolex was not started.",
     "wait for the other run to end"},
    {guard_problem::notPlayed, warning, "the run could not be played on a copy",
     "Controllers that cannot be copied in memory are judged by their listings alone.",
     "zolexctl plan POLICIES tells what cannot be copied"},
    {guard_problem::runsAllTheSame, note, "a switch holds back less than it seems to",
     "/noexecutedeploy holds back the deployment, /noexecutereset the restore, and neither the "
     "other.",
     "/noexecuteall holds back both"},
    {guard_problem::drivesInUse, error, "zolex would stop at a drive that is in use",
     "Without /r zolex removes nothing. The utility refuses the first command for drives of a "
     "logical drive or a hot spare, and the run ends with exit code 11, half done.",
     "zolexctl plan POLICIES tells what stands as wanted, and removes no more than is needed"},
    {guard_problem::endedElsewhere, error, "zolex ended with 0, and something else stands",
     "zolex believes what its utilities say. The server was read again behind it. The exit code "
     "stays that of zolex.",
     "zolexctl diff POLICIES tells all of it, and zolexctl plan POLICIES what mends it"},
});

} // namespace

std::span<const ProblemCode> guardCodes() {
    return guardRows;
}

const ProblemCode* findGuardCode(std::string_view id) {
    const auto* const row =
        std::find_if(guardRows.begin(), guardRows.end(),
                     [id](const ProblemCode& each) { return text::equalsNoCase(each.id, id); });
    return row == guardRows.end() ? nullptr : row;
}

Finding guardFinding(std::string_view id, std::string summary, std::vector<std::string> help) {
    Finding finding;
    finding.code = id;
    if (const ProblemCode* const row = findGuardCode(id)) {
        finding.severity = row->severity;
        if (help.empty()) {
            help.emplace_back(row->help);
        }
    }
    finding.refusedBy = RefusedBy::plan;
    finding.summary = std::move(summary);
    finding.help = std::move(help);
    return finding;
}

} // namespace zolex::companion
