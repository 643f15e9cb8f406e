#include "companion/cli/Options.h"

#include "companion/cli/Values.h"
#include "companion/rehearsal/Supposition.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

constexpr CommandSet lookers = only(Command::plan) | only(Command::diff) | only(Command::show) |
                               only(Command::doctor) | only(Command::record);
constexpr CommandSet changers = only(Command::apply) | only(Command::reset);
constexpr CommandSet guarding = only(Command::guard);
constexpr CommandSet writers = lookers | only(Command::check) | only(Command::rehearse) |
                               only(Command::convert) | only(Command::explain);

// command, name, usage, summary, purpose, formats, examples
constexpr std::array<CommandRow, commandCount - 1> commands{{
    {Command::plan, "plan", "plan POLICIES [OPTIONS]", "what would be done, and why",
     "Plans the controllers of this server by policies: what would be made on which drives and "
     "why, "
     "what would be lost, and every command line. The plan is played on a virtual copy of the "
     "server, in memory. It only reads: nothing on the server is changed. POLICIES is a policies "
     "file, or - for standard input.\n"
     "With -o the plan is kept in FILE, whose ending says what it is: .json, .svg, .html or .txt. "
     "Of a plan that cannot be carried out nothing is kept.\n"
     "Exit code: 0 planned, or nothing to do, 1 (--exit-code) there is something to do, 2 it "
     "cannot be carried out, or could not be made.",
     "text json svg html",
     "zolexctl plan site.ini\n"
     "zolexctl plan site.ini -o plan.json\n"
     "zolexctl plan site.ini --controller 2 -o plan.html\n"
     "zolexctl plan --default"},
    {Command::apply, "apply", "apply PLAN|--policies POLICIES|--resume JOURNAL [OPTIONS]",
     "carry out a plan, or go on with one",
     "Carries out a plan that was kept with zolexctl plan -o plan.json, on the very server and the "
     "very state that it was made for: on another server, or when anything has changed since, it "
     "is refused. What is lost has to be agreed to: on a terminal by typing the serial number of "
     "the server, elsewhere with --destroy. Each step is noted in a journal before it is begun, "
     "and in the end everything is read back and compared with the plan. With --policies it plans "
     "first, in the same run; with --resume it goes on with a run that was interrupted or "
     "stopped.\n"
     "A first Ctrl-C ends the run behind the command that is at work, a second one at once.\n"
     "Exit code: 0 every controller asked for is as planned, 2 it could not be told, or the plan "
     "is at fault, and nothing was changed, 3 refused, and nothing was changed, 4 stopped on the "
     "way, 5 every command was run, but what stands is another than planned, or could not be "
     "read.",
     "text json",
     "zolexctl apply plan.json\n"
     "zolexctl apply plan.json --destroy 7Q4K-2M9D --log apply.log\n"
     "zolexctl apply --policies site.ini --destroy own --certificates proofs\n"
     "zolexctl apply --resume plan.journal.jsonl"},
    {Command::reset, "reset", "reset [OPTIONS]", "factory defaults of controllers",
     "Deletes all logical drives, hot spares and foreign configurations of this server's "
     "controllers, or of some, by the commands of zolex /r. What is lost has to be agreed to, the "
     "run is noted in a journal (reset.journal.jsonl), and in the end everything is read back, all "
     "as with apply.\n"
     "Exit code: 0 nothing stands any more, else as of apply.",
     "text json",
     "zolexctl reset --controller 2\n"
     "zolexctl reset --destroy 7Q4K-2M9D"},
    {Command::diff, "diff", "diff POLICIES|PLAN|CERTIFICATE [OPTIONS]",
     "this server against policies, a plan, a proof",
     "Holds what stands on this server against what policies, or a plan that was kept with -o "
     "plan.json, want of it, or against what a certificate tells that a run has left, attribute by "
     "attribute. It only reads: nothing on the server is changed.\n"
     "Exit code: 0 the same, or equivalent, 1 different, 2 it could not be told.",
     "text json svg html",
     "zolexctl diff site.ini\n"
     "zolexctl diff plan.json --strict"},
    {Command::show, "show", "show [FILE] [OPTIONS]", "what is in this server",
     "Shows the controllers of this server, their drives, arrays, logical drives and hot spares. "
     "The column \"no\" is the number that policies use for a drive. It only reads: nothing on the "
     "server is changed. FILE is a recording, which is shown instead of this server, or a plan "
     "that was kept with zolexctl plan -o plan.json, or a journal or a certificate.\n"
     "Exit code: 0 it was shown, 1 (policies) something would not come back, 2 it could not be "
     "read.",
     "text json svg html policies",
     "zolexctl show\n"
     "zolexctl show --as html -o server.html\n"
     "zolexctl show --as policies -o before.ini"},
    {Command::check, "check", "check FILE... [OPTIONS]", "every fault of a policies file",
     "Reads policies files and tells all their faults at once, each with its place and with what "
     "to do. No server is needed, and none is looked at. FILE is a policies file, or - for "
     "standard input. With --machine the files are also held against recorded servers.\n"
     "Exit code: 0 no error and no warning, 1 there are some, 2 a file or a recorded controller "
     "could not be read.",
     "text concise json sarif github",
     "zolexctl check site.ini\n"
     "zolexctl check site.ini --machine fleet/"},
    {Command::doctor, "doctor", "doctor [OPTIONS]", "are the utilities there, are they read",
     "Looks whether everything that zolex and zolexctl run is there and tells the truth: the "
     "utilities and where they were found, whether their exit codes arrive, whether each listing "
     "is read to its end and what it does not tell, the machine's type and serial number. RAID "
     "controllers on the bus that nothing drives are told, and two utilities that drive one. "
     "It only reads: nothing on the server is changed.\n"
     "Exit code: 0 all is well, 1 there are findings, 2 it could not look.",
     "text json",
     "zolexctl doctor\nzolexctl doctor --utilities /opt/raid -v\n"
     "zolexctl doctor --utility STORCLI=/root/perccli64"},
    {Command::record, "record", "record -o FILE [OPTIONS]", "keep every utility call of a capture",
     "Looks at this server as show does, and keeps everything that was asked and answered in FILE. "
     "Each command that reads can be run on it later, on any system: zolexctl show FILE. It only "
     "reads: nothing on the server is changed.\n"
     "Exit code: 0 it was recorded, 1 recorded, but a utility failed, 2 it could not be written.",
     "text",
     "zolexctl record -o server.zrec\n"
     "zolexctl record --redact -o for-a-report.zrec"},
    {Command::replay, "replay", "replay FILE -- COMMAND [ARGUMENTS]",
     "run a command on a recording",
     "Runs a command of zolexctl, or zolex itself, on a recording instead of this server. Of this "
     "server nothing is read, and nothing is changed.\n"
     "Exit code: that of the command, or 2 when the recording cannot be read or lacks what the "
     "command asks for.",
     "",
     "zolexctl replay server.zrec -- show\nzolexctl replay server.zrec -- zolex /c:t,d /f:new.ini"},
    {Command::rehearse, "rehearse", "rehearse POLICIES FOLDER|RECORDING... [OPTIONS]",
     "one policies file on many recorded servers",
     "Plans each recorded server by the policies and plays the plan on a virtual copy of it, in "
     "memory: which policy it would use, what would be lost, how many commands it takes, and "
     "whether it ends as planned. Then all of them together, and what of the policies none of them "
     "uses. FOLDER stands for all recordings (*.zrec) in it. It touches no server.\n"
     "With --what-if a drive is supposed to have failed (fail:32:3), to be missing (missing:32:3) "
     "or to have another size, in MB as policies count (size:32:3=34715), on each server that has "
     "it.\n"
     "Exit code: 0 each server ends as planned, has nothing to do or is skipped, 1 a server ends "
     "in an error or otherwise than planned, 2 the policies could not be read, or there is nothing "
     "to rehearse.",
     "text json",
     "zolexctl rehearse site.ini fleet/\n"
     "zolexctl rehearse site.ini fleet/ --every-fault --html fleet.html\n"
     "zolexctl rehearse site.ini fleet/ --what-if fail:32:3"},
    {Command::convert, "convert", "convert --to WHAT|--from ironic|--model OLD=NEW FILE [OPTIONS]",
     "policies for zolex, from and to Ironic",
     "With --to policies it writes the policies of FILE as zolex takes them for one recorded "
     "server: Drives.<x>, Spares and Level.<x>, which only zolexctl knows, become the drives and "
     "levels that they are there. What was written is planned again, and the plan must be the "
     "same.\n"
     "With --to ironic it writes what policies make of one server as the RAID configuration that "
     "OpenStack's Ironic takes: logical disks with their levels, sizes and drives. The server is a "
     "recording, or a plan of these policies.\n"
     "With --from ironic it writes policies, of such a configuration: one for each controller "
     "that it names, or for that of --model. With --machine drives are found by their locations, "
     "free ones are chosen where none are named, and the policies are planned.\n"
     "With --model OLD=NEW it writes policies for controllers of one type as policies for those of "
     "another: t:OLD becomes t:NEW, and what such controllers cannot have is refused.\n"
     "FILE may be - for standard input. It touches no server.\n"
     "Exit code: 0 it was written, and what it does not say was told; 2 nothing was written.",
     "text",
     "zolexctl convert --to policies --machine web1.zrec kinds.ini -o web1.ini\n"
     "zolexctl convert --to ironic --machine web1.zrec web.ini -o node7.json\n"
     "zolexctl convert --from ironic node7.json --model LSI-MegaRAID-8480 -o n7.ini\n"
     "zolexctl convert --model t:LSI-MegaRAID-8480=t:STORCLI old.ini -o new.ini"},
    {Command::guard, "guard", "guard [OPTIONS] -- zolex [ARGUMENTS]",
     "zolex, but only when all of it can be done",
     "Stands in front of zolex, for command lines that exist. It reads the switches as zolex does, "
     "looks at this server, and plans what zolex would do, with zolex's own limits; then it has "
     "zolex do it on a virtual copy of the server, in memory. When zolex would not do all of it, "
     "or something else than the policies say, zolex is not started, and every reason is told. "
     "What would be lost has to be agreed to: on a terminal by typing the serial number of the "
     "server, elsewhere with --destroy. Only then zolex is started, with the very same arguments, "
     "and nothing stands between it and the terminal. What changes nothing, such as zolex /c, is "
     "started at once. zolex is looked for beside zolexctl, and then along the search path. What "
     "guard itself says goes to standard error.\n"
     "Exit code: that of zolex once it was started; before it, and nothing was changed then, 2 the "
     "command line, a file or the server could not be read, 3 refused.",
     "",
     "zolexctl guard -- zolex /r /y /f:site.ini\n"
     "zolexctl guard --destroy 7Q4K-2M9D -- zolex /r:2 /y"},
    {Command::explain, "explain", "explain CODE", "what a finding or an exit code means",
     "Tells what a finding of check means, what it does to a server, and what to write instead. A "
     "number is an exit code of zolex; exit-4 is exit code 4 of zolexctl.\n"
     "Exit code: 0 it was told, 2 there is no such code.",
     "text json", "zolexctl explain ZX411\nzolexctl explain 11"},
}};

// name, short name, value, text, commands, whether it repeats, what is wrong with a value
constexpr std::array<OptionRow, 51> options{{
    {"--exit-code", "", "", "end with 1 when there is something to do", only(Command::plan)},
    {"--strategy", "", "WORD", "auto, add (nothing is removed) or rebuild (all is made anew)",
     only(Command::plan) | only(Command::apply) | only(Command::rehearse), false, faultOfStrategy},
    {"--default", "", "", "what zolex /d makes of each controller, without policies",
     only(Command::plan)},
    {"--no-rehearsal", "", "", "do not play the plan on a virtual copy", only(Command::plan)},
    {"--accept", "", "IDS", "let these errors pass, such as ZX701",
     only(Command::plan) | only(Command::apply) | only(Command::rehearse) | guarding, true,
     faultOfAccepted},
    {"--every-fault", "", "", "make each command fail once, too", only(Command::rehearse)},
    {"--what-if", "", "FAULT",
     "suppose of a drive fail:32:3, missing:32:3 or size:32:3=34715 (in MB)",
     only(Command::rehearse), true, faultOfSupposition},
    {"--html", "", "FILE", "write a page with a picture of each server to FILE",
     only(Command::rehearse), false, faultOfText},
    {"--jobs", "", "N", "rehearse N servers at the same time (1)", only(Command::rehearse), false,
     faultOfJobs},
    {"--timings", "", "FILE", "tell usual times, from the calls in this recording",
     only(Command::plan) | changers, true, faultOfText},
    {"--policies", "", "FILE", "plan by these policies and carry it out", only(Command::apply),
     false, faultOfText},
    {"--resume", "", "JOURNAL", "go on with the run of this journal", only(Command::apply), false,
     faultOfText},
    {"--destroy", "", "WHAT",
     "what may be lost: never, own (what certificates tell of), any, or exactly what a code such "
     "as 7Q4K-2M9D stands for",
     changers | guarding, false, faultOfDestroy},
    {"--careful", "", "", "read everything back after each step", changers},
    {"--keep-going", "", "", "a step that fails ends its own controller alone", changers},
    {"--allow-skipped", "", "", "controllers that no policy fits are no reason to refuse",
     only(Command::apply) | only(Command::rehearse)},
    {"--journal", "", "FILE", "the journal of the run", changers, false, faultOfText},
    {"--certificate", "", "FILE", "write the proof of the run to FILE", changers, false,
     faultOfText},
    {"--certificates", "", "DIR",
     "certificates of earlier runs; the new one goes there too, unless --certificate is given",
     changers | guarding, false, faultOfText},
    {"--log", "", "FILE", "append every command, with what came of it, to FILE", changers, false,
     faultOfText},
    {"--limit-seconds", "", "N", "how long a step may take (3600)", changers, false, faultOfLimit},
    {"--strict", "", "", "equivalent and degraded count as different", only(Command::diff)},
    {"--exact", "", "", "policies with the size of each logical drive in MB, not FILL",
     only(Command::show)},
    {"--machine", "", "PATH",
     "the server that is meant: its recording; check takes a folder of them, convert --to ironic "
     "a plan",
     only(Command::check) | only(Command::convert), true, faultOfText},
    {"--to", "", "WHAT", "what to write of policies: policies, or ironic", only(Command::convert),
     false, faultOfTarget},
    {"--from", "", "ironic", "write policies, of a RAID configuration of Ironic",
     only(Command::convert), false, faultOfOrigin},
    {"--model", "", "MODEL",
     "the controller that is meant: LSI-MegaRAID-8480; or OLD=NEW, types of policies",
     only(Command::convert), false, faultOfModel},
    {"--select", "", "IDS", "only these rules, such as ZX301,ZX5", only(Command::check), true,
     faultOfSelected},
    {"--ignore", "", "IDS", "all but these rules", only(Command::check), true, faultOfRules},
    {"--as-old", "", "", "say what zolex itself would say of the file", only(Command::check)},
    {"--fix", "", "", "mend in the files what can be mended safely", only(Command::check)},
    {"--redact", "", "", "replace serial numbers and names by made-up ones", only(Command::record)},
    {"--format", "", "FORMAT", "how to write it", writers | changers},
    {"--as", "", "FORMAT", "the same as --format", only(Command::show)},
    {"--output", "-o", "FILE", "write to FILE, which is replaced as a whole", writers, false,
     faultOfText},
    {"--recording", "", "FILE", "look at this recording instead of the server", lookers, false,
     faultOfText},
    {"--record", "", "FILE", "keep every call of a utility in FILE", lookers | guarding, false,
     faultOfText},
    {"--controller", "", "N[,N]", "only these controllers, numbered from 1", lookers | changers,
     true, faultOfControllers},
    {"--utilities", "", "DIR", "the folder of UTIL.BAT and the utilities",
     lookers | changers | guarding, false, faultOfText},
    {"--utility", "", "NAME=PATH", "the program of a utility: MEGACLI=/opt/MegaCli64",
     lookers | changers, true, faultOfUtility},
    {"--family", "", "NAME", "ask this family, too: md, the arrays of Linux itself",
     lookers | changers, true, faultOfFamily},
    {"--md-min", "", "MB", "leave drives below this size alone with --family md (1024)",
     lookers | changers, false, faultOfMegabytes},
    {"--capture-limit-seconds", "", "N", "how long reading one listing may take (300)",
     lookers | changers | guarding, false, faultOfLimit},
    {"--machine-type", "", "TEXT", "the type of the machine, instead of asking for it",
     lookers | changers, false, faultOfText},
    {"--serial", "", "TEXT", "its serial number, instead of asking for it", lookers | changers,
     false, faultOfText},
    {"--color", "", "WHEN", "colours: auto, always or never", anyCommand, false, faultOfColour},
    {"--width", "", "N", "columns of the text, 40 to 1000", anyCommand, false, faultOfWidth},
    {"--quiet", "-q", "", "tell only what is wrong", anyCommand},
    {"--verbose", "-v", "", "tell more", anyCommand},
    {"--help", "-h", "", "show this help", anyCommand},
    {"--version", "", "", "show the version", only(Command::none)},
}};

} // namespace

std::span<const CommandRow> commandRows() {
    return commands;
}

std::span<const OptionRow> optionRows() {
    return options;
}

const CommandRow* findCommand(std::string_view name) {
    const auto* const found =
        std::find_if(commands.begin(), commands.end(),
                     [name](const CommandRow& row) { return row.name == name; });
    return found == commands.end() ? nullptr : found;
}

const CommandRow& rowOf(Command command) {
    return *std::find_if(commands.begin(), commands.end(),
                         [command](const CommandRow& row) { return row.command == command; });
}

} // namespace zolex::companion
