#include "companion/cli/CommandLine.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using Words = std::vector<std::string>;

/// What is said of arguments that cannot be taken, both lines.
std::string faultOf(const Words& arguments) {
    const ArgumentReading reading = readArguments(arguments);
    return reading.fault + "\n" + reading.help;
}

Request requestOf(const Words& arguments) {
    const ArgumentReading reading = readArguments(arguments);
    EXPECT_EQ(reading.fault, "");
    EXPECT_FALSE(reading.wantsHelp);
    EXPECT_FALSE(reading.wantsVersion);
    return reading.request;
}

TEST(CommandLine, ReadsEveryOptionOfALookAtTheMachine) {
    const Request request = requestOf({"show",
                                       "--as",
                                       "policies",
                                       "--exact",
                                       "-o",
                                       "a.ini",
                                       "--record",
                                       "a.zrec",
                                       "--utilities",
                                       "/opt/raid",
                                       "--utility",
                                       "megacli=/opt/M=1",
                                       "--utility",
                                       "CFGGEN1.02.02=c",
                                       "--controller",
                                       "3,1",
                                       "--controller",
                                       "3",
                                       "--capture-limit-seconds",
                                       "20",
                                       "--machine-type",
                                       "8837",
                                       "--serial",
                                       "KQ10Z7V",
                                       "--color",
                                       "always",
                                       "--width",
                                       "100",
                                       "-v"});
    EXPECT_EQ(request.command, Command::show);
    EXPECT_EQ(request.format, Format::policies);
    EXPECT_TRUE(request.show.exact);
    EXPECT_EQ(request.outputFile, "a.ini");
    EXPECT_EQ(request.machine.record, "a.zrec");
    EXPECT_EQ(request.machine.utilitiesFolder, "/opt/raid");
    const std::map<std::string, std::string> utilities{{"MEGACLI", "/opt/M=1"},
                                                       {"CFGGEN1.02.02", "c"}};
    EXPECT_EQ(request.machine.utilities, utilities);
    EXPECT_EQ(request.machine.controllers, (std::vector<std::int32_t>{1, 3}));
    EXPECT_EQ(request.machine.captureLimit, std::chrono::seconds(20));
    EXPECT_EQ(request.machine.machineType, "8837");
    EXPECT_EQ(request.machine.serialNumber, "KQ10Z7V");
    EXPECT_EQ(request.colours, ColourWish::always);
    EXPECT_EQ(request.width, 100);
    EXPECT_TRUE(request.verbose);
    EXPECT_FALSE(request.quiet);
}

TEST(CommandLine, TakesOptionsBeforeAndBehindTheCommand) {
    const Request request =
        requestOf({"--recording", "a.zrec", "-q", "--color=never", "show", "--format=json"});
    EXPECT_EQ(request.command, Command::show);
    EXPECT_EQ(request.machine.recording, "a.zrec");
    EXPECT_TRUE(request.quiet);
    EXPECT_EQ(request.colours, ColourWish::never);
    EXPECT_EQ(request.format, Format::json);
    const Request same =
        requestOf({"--format", "json", "show", "--recording", "a.zrec", "--color", "never", "-q"});
    EXPECT_EQ(same.machine.recording, "a.zrec");
    EXPECT_EQ(same.format, Format::json);
    EXPECT_TRUE(same.quiet);
}

TEST(CommandLine, HasUsualValues) {
    const Request request = requestOf({"doctor"});
    EXPECT_EQ(request.command, Command::doctor);
    EXPECT_EQ(request.format, Format::text);
    EXPECT_EQ(request.colours, ColourWish::automatic);
    EXPECT_EQ(request.machine.captureLimit, std::chrono::seconds(300));
    EXPECT_EQ(request.machine.controllers, std::vector<std::int32_t>());
    EXPECT_EQ(request.width, std::nullopt);
    EXPECT_EQ(request.outputFile, "");
}

TEST(CommandLine, TakesFilesOfAnyName) {
    EXPECT_EQ(
        requestOf({"check", "[a,b]", "show", "/f:x.ini", "-", "--", "--fix", "-x"}).check.files,
        (Words{"[a,b]", "show", "/f:x.ini", "-", "--fix", "-x"}));
    EXPECT_EQ(requestOf({"show", "check"}).show.file, "check");
    EXPECT_EQ(requestOf({"show", "--", "-x"}).show.file, "-x");
}

TEST(CommandLine, ReadsTheOptionsOfCheck) {
    const Request request =
        requestOf({"check", "a.ini", "--machine", "fleet", "--machine", "b.zrec", "--select",
                   "ZX5,zx301", "--ignore", "ZX", "--select", "ZX411", "--as-old", "--fix"});
    EXPECT_EQ(request.check.files, Words{"a.ini"});
    EXPECT_EQ(request.check.machines, (Words{"fleet", "b.zrec"}));
    EXPECT_EQ(request.check.select, (Words{"ZX5", "zx301", "ZX411"}));
    EXPECT_EQ(request.check.ignore, Words{"ZX"});
    EXPECT_TRUE(request.check.asOld);
    EXPECT_TRUE(request.check.fix);
}

TEST(CommandLine, ReadsTheOptionsOfConvert) {
    const Request request = requestOf(
        {"convert", "--to", "policies", "--machine", "a.zrec", "kinds.ini", "-o", "web1.ini"});
    EXPECT_EQ(request.command, Command::convert);
    EXPECT_EQ(request.convert.file, "kinds.ini");
    EXPECT_EQ(request.convert.to, "policies");
    EXPECT_EQ(request.convert.machine, "a.zrec");
    EXPECT_EQ(request.outputFile, "web1.ini");
    EXPECT_EQ(faultOf({"convert", "--to", "policies", "--machine", "a.zrec"}),
              "convert needs a policies file\nzolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--machine", "a.zrec", "kinds.ini"}),
              "convert needs --to policies, --to ironic or --from ironic\n"
              "zolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--to", "stone", "kinds.ini"}),
              "--to: \"stone\" is nothing to convert to: write policies or ironic\n"
              "zolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--to", "policies", "kinds.ini"}),
              "convert needs --machine: the drives are those of one server\n"
              "zolexctl record -o server.zrec, and --machine server.zrec");
    EXPECT_EQ(faultOf({"convert", "--to", "policies", "--machine", "a", "--machine", "b", "c"}),
              "convert takes one --machine\n"
              "zolexctl record -o server.zrec, and --machine server.zrec");
    EXPECT_EQ(faultOf({"convert", "--to", "policies", "--machine", "a", "b", "c"}),
              "convert does not take \"c\" besides \"b\"\nzolexctl convert --help");
}

TEST(CommandLine, ReadsTwoTypesOfConvert) {
    const Request moved =
        requestOf({"convert", "--model", "t:LSI-MegaRAID-8480=t:STORCLI", "old.ini"});
    EXPECT_EQ(moved.convert.file, "old.ini");
    EXPECT_EQ(moved.convert.to, "policies");
    EXPECT_EQ(moved.convert.fromType, "LSI-MegaRAID-8480");
    EXPECT_EQ(moved.convert.toType, "STORCLI");
    const Request bare = requestOf({"convert", "old.ini", "--model", "STORCLI=PERC-H7*"});
    EXPECT_EQ(bare.convert.fromType, "STORCLI");
    EXPECT_EQ(bare.convert.toType, "PERC-H7*");
    EXPECT_EQ(faultOf({"convert", "--to", "ironic", "--model", "STORCLI=MD", "old.ini"}),
              "--model with two types takes policies alone\n"
              "zolexctl convert --model STORCLI=MD POLICIES");
    EXPECT_EQ(faultOf({"convert", "--model", "t:STORCLI=t:Nothing", "old.ini"}),
              "--model: \"Nothing\" is no type that policies can name: write OLD=NEW, such as "
              "t:LSI-MegaRAID-8480=t:STORCLI\n"
              "zolexctl convert --help");
    EXPECT_EQ(requestOf({"convert", "--from", "ironic", "n7.json", "--model", "PERC-H755-Front"})
                  .convert.model,
              "PERC-H755-Front");
}

TEST(CommandLine, ReadsTheOptionsOfConvertForIronic) {
    const Request to = requestOf({"convert", "--to", "ironic", "--machine", "a.zrec", "web.ini"});
    EXPECT_EQ(to.convert.to, "ironic");
    EXPECT_EQ(to.convert.from, "");
    EXPECT_EQ(to.convert.machine, "a.zrec");
    const Request from =
        requestOf({"convert", "--from", "ironic", "n7.json", "--model", "LSI-MegaRAID-8480"});
    EXPECT_EQ(from.convert.from, "ironic");
    EXPECT_EQ(from.convert.to, "");
    EXPECT_EQ(from.convert.file, "n7.json");
    EXPECT_EQ(from.convert.model, "LSI-MegaRAID-8480");
    EXPECT_EQ(from.convert.machine, "");
    EXPECT_EQ(faultOf({"convert", "--to", "ironic", "web.ini"}),
              "convert --to ironic needs --machine: Ironic wants sizes, and drives by name\n"
              "a recording, or zolexctl plan POLICIES -o plan.json, and --machine plan.json");
    EXPECT_EQ(faultOf({"convert", "--from", "ironic"}),
              "convert needs a RAID configuration\nzolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--from", "ironic", "--to", "policies", "n7.json"}),
              "convert takes --to or --from, not both\nzolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--from", "policies", "n7.json"}),
              "--from: \"policies\" is nothing to convert from: write ironic\n"
              "zolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--to", "ironic", "--model", "LSI-MegaRAID-8480", "web.ini"}),
              "--model is for --from ironic\nzolexctl convert --help");
    EXPECT_EQ(faultOf({"convert", "--from", "ironic", "--machine", "a", "--machine", "b", "c"}),
              "convert takes one --machine\n"
              "zolexctl record -o server.zrec, and --machine server.zrec");
    EXPECT_EQ(
        faultOf({"convert", "--from", "ironic", "n7.json", "--model", "LSI"})
            .substr(0, std::string_view("--model: \"LSI\" is no model that policies can name: "
                                        "STORCLI, ")
                           .size()),
        "--model: \"LSI\" is no model that policies can name: STORCLI, ");
}

TEST(CommandLine, RefusesToWriteOverWhatIsRead) {
    const std::string page = "\" is read, and would be replaced\nname another file with --html";
    const std::string output = "\" is read, and would be replaced\nname another file with -o";
    for (const char* const name : {"a.ini", "b.zrec", "c.zrec"}) {
        EXPECT_EQ(faultOf({"rehearse", "a.ini", "b.zrec", "c.zrec", "--html", name}),
                  std::string("--html: \"") + name + page);
        EXPECT_EQ(faultOf({"rehearse", "a.ini", "b.zrec", "c.zrec", "-o", name}),
                  std::string("-o: \"") + name + output);
    }
    for (const char* const name : {"a.ini", "b.zrec"}) {
        EXPECT_EQ(
            faultOf({"convert", "--to", "ironic", "--machine", "b.zrec", "a.ini", "-o", name}),
            std::string("-o: \"") + name + output);
    }
    const std::vector<Words> others = {{"plan", "x.json"},
                                       {"diff", "x.json"},
                                       {"show", "x.json"},
                                       {"check", "a.ini", "x.json"},
                                       {"check", "a.ini", "--machine", "x.json"},
                                       {"record", "--recording", "x.json"}};
    for (Words words : others) {
        words.insert(words.end(), {"-o", "x.json"});
        EXPECT_EQ(faultOf(words), "-o: \"x.json" + output) << words.front();
    }
    EXPECT_EQ(faultOf({"show", "--recording", "a.zrec", "--record", "a.zrec"}),
              "--record: \"a.zrec\" is read, and would be replaced\n"
              "name another file with --record");
    const Words streams = {"convert",           "--from", "ironic", "--model",
                           "LSI-MegaRAID-8480", "-",      "-o",     "-"};
    EXPECT_EQ(requestOf(streams).outputFile, "-");
}

TEST(CommandLine, ReadsTheOptionsOfPlan) {
    const Request request = requestOf(
        {"plan",      "site.ini",    "--exit-code",  "--strategy", "add",         "--no-rehearsal",
         "--accept",  "zx701,ZX703", "--timings",    "a.zrec",     "--accept",    "ZX501",
         "--timings", "b.zrec",      "--controller", "2",          "--recording", "c.zrec",
         "--format",  "json",        "-o",           "Plan.HTML"});
    EXPECT_EQ(request.command, Command::plan);
    EXPECT_EQ(request.plan.file, "site.ini");
    EXPECT_FALSE(request.plan.classDefaults);
    EXPECT_TRUE(request.plan.exitCode);
    EXPECT_EQ(request.plan.strategy, StrategyWish::add);
    EXPECT_FALSE(request.plan.rehearse);
    EXPECT_EQ(request.plan.accept, (Words{"ZX701", "ZX703", "ZX501"}));
    EXPECT_EQ(request.plan.timings, (Words{"a.zrec", "b.zrec"}));
    EXPECT_EQ(request.machine.controllers, std::vector<std::int32_t>{2});
    EXPECT_EQ(request.machine.recording, "c.zrec");
    // The file goes by its ending, standard output by --format.
    EXPECT_EQ(request.format, Format::json);
    EXPECT_EQ(request.plan.savedFile, "Plan.HTML");
    EXPECT_EQ(request.plan.savedFormat, Format::html);
    EXPECT_EQ(request.outputFile, "");
}

TEST(CommandLine, HasUsualValuesOfPlanAndDiff) {
    const Request plan = requestOf({"plan", "-"});
    EXPECT_EQ(plan.plan.file, "-");
    EXPECT_FALSE(plan.plan.exitCode);
    EXPECT_EQ(plan.plan.strategy, StrategyWish::automatic);
    EXPECT_TRUE(plan.plan.rehearse);
    EXPECT_EQ(plan.plan.savedFile, "");
    EXPECT_EQ(requestOf({"plan", "a.ini", "-o", "-"}).plan.savedFile, "");
    EXPECT_TRUE(requestOf({"plan", "--default"}).plan.classDefaults);
    EXPECT_EQ(requestOf({"plan", "a", "--strategy", "rebuild"}).plan.strategy,
              StrategyWish::rebuild);
    EXPECT_EQ(requestOf({"plan", "a", "-o", "p.svg"}).plan.savedFormat, Format::svg);
    EXPECT_EQ(requestOf({"plan", "a", "-o", "p.json"}).plan.savedFormat, Format::json);
    EXPECT_EQ(requestOf({"plan", "a", "-o", "p.txt"}).plan.savedFormat, Format::text);
    const Request diff = requestOf({"diff", "plan.json", "--strict", "-o", "d.out"});
    EXPECT_EQ(diff.command, Command::diff);
    EXPECT_EQ(diff.diff.file, "plan.json");
    EXPECT_TRUE(diff.diff.strict);
    EXPECT_EQ(diff.outputFile, "d.out");
    EXPECT_FALSE(requestOf({"diff", "site.ini"}).diff.strict);
}

TEST(CommandLine, SaysWhatIsWrongWithPlanAndDiff) {
    EXPECT_EQ(faultOf({"plan"}), "plan needs a policies file, or --default\nzolexctl plan --help");
    EXPECT_EQ(faultOf({"plan", "a.ini", "--default"}),
              "--default plans without policies, not by \"a.ini\"\nleave one of them out");
    EXPECT_EQ(faultOf({"plan", "a", "b"}),
              "plan does not take \"b\" besides \"a\"\nzolexctl plan --help");
    for (const char* const name : {"plan.xml", "plan", ".json", "a.json/b", "plan.json.bak"}) {
        EXPECT_EQ(faultOf({"plan", "a", "-o", name}),
                  "-o: \"" + std::string(name) +
                      "\" ends with none of .json, .svg, .html, .txt\n"
                      "zolexctl plan site.ini -o plan.json");
    }
    EXPECT_EQ(faultOf({"plan", "a", "--strategy", "clear"}),
              "--strategy: \"clear\" is none of auto, add and rebuild\nzolexctl plan --help");
    for (const char* const id : {"ZX9999", "701", "exit-4", "", "ZX"}) {
        EXPECT_EQ(faultOf({"plan", "a", "--accept", id}),
                  "--accept: there is no finding \"" + std::string(id) +
                      "\"; they are such as ZX701\nzolexctl plan --help");
    }
    EXPECT_EQ(faultOf({"plan", "a", "--strict"}),
              "plan does not take --strict\nzolexctl plan --help");
    EXPECT_EQ(faultOf({"plan", "a", "--format", "sarif"}),
              "--format: \"sarif\" is no format of plan\n"
              "plan can write text, json, svg, html");
    EXPECT_EQ(faultOf({"diff"}), "diff needs a policies file or a plan\nzolexctl diff --help");
    EXPECT_EQ(faultOf({"diff", "a", "--accept", "ZX701"}),
              "diff does not take --accept\nzolexctl diff --help");
}

TEST(CommandLine, ReadsRecordReplayAndExplain) {
    EXPECT_TRUE(requestOf({"record", "--redact", "-oa.zrec"}).record.redact);
    EXPECT_EQ(requestOf({"record", "-oa.zrec"}).outputFile, "a.zrec");
    const Request replay =
        requestOf({"replay", "a.zrec", "--", "zolex", "/c:t,d", "--", "show", "--help"});
    EXPECT_EQ(replay.replay.file, "a.zrec");
    EXPECT_EQ(replay.replay.command, (Words{"zolex", "/c:t,d", "--", "show", "--help"}));
    EXPECT_EQ(requestOf({"explain", "exit-4"}).code, "exit-4");
}

TEST(CommandLine, ReadsWhatIsCarriedOut) {
    const Request saved = requestOf({"apply",
                                     "plan.json",
                                     "--destroy",
                                     "7q4k 2m9d",
                                     "--certificate",
                                     "c.json",
                                     "--certificates",
                                     "proofs",
                                     "--journal",
                                     "j.jsonl",
                                     "--controller",
                                     "2,1",
                                     "--careful",
                                     "--keep-going",
                                     "--allow-skipped",
                                     "--limit-seconds",
                                     "60",
                                     "--capture-limit-seconds",
                                     "9",
                                     "--log",
                                     "a.log",
                                     "--format",
                                     "json",
                                     "--timings",
                                     "a.zrec"});
    EXPECT_EQ(saved.apply.plan, "plan.json");
    EXPECT_EQ(saved.apply.destroy, (DestroyWish{DestroyWish::Kind::code, "7Q4K-2M9D"}));
    EXPECT_EQ(saved.apply.certificate, "c.json");
    EXPECT_EQ(saved.apply.certificates, "proofs");
    EXPECT_EQ(saved.apply.journal, "j.jsonl");
    EXPECT_EQ(saved.machine.controllers, (std::vector<std::int32_t>{1, 2}));
    EXPECT_TRUE(saved.apply.careful && saved.apply.keepGoing && saved.apply.allowSkipped);
    EXPECT_EQ(saved.apply.stepLimit, std::chrono::seconds(60));
    EXPECT_EQ(saved.machine.captureLimit, std::chrono::seconds(9));
    EXPECT_EQ(saved.apply.log, "a.log");
    EXPECT_EQ(saved.format, Format::json);
    EXPECT_EQ(saved.apply.timings, std::vector<std::string>{"a.zrec"});

    const Request now = requestOf({"apply", "--policies", "site.ini", "--strategy", "add",
                                   "--accept", "zx701", "--destroy", "any"});
    EXPECT_EQ(now.apply.policies.file, "site.ini");
    EXPECT_EQ(now.apply.policies.strategy, StrategyWish::add);
    EXPECT_EQ(now.apply.policies.accept, std::vector<std::string>{"ZX701"});
    EXPECT_EQ(now.apply.destroy.kind, DestroyWish::Kind::any);
    EXPECT_EQ(requestOf({"apply", "--resume", "j.jsonl"}).apply.resume, "j.jsonl");
    EXPECT_EQ(requestOf({"apply", "plan.json"}).apply.destroy.kind, DestroyWish::Kind::ask);
    EXPECT_EQ(requestOf({"reset", "--controller", "2", "--destroy", "never"}).apply.destroy.kind,
              DestroyWish::Kind::never);
}

TEST(CommandLine, RefusesWhatDoesNotGoTogetherToBeCarriedOut) {
    const std::string help = "\nzolexctl apply --help";
    EXPECT_EQ(faultOf({"apply"}),
              "apply needs a plan, --policies or --resume\n"
              "zolexctl plan site.ini -o plan.json, and zolexctl apply plan.json");
    EXPECT_EQ(faultOf({"apply", "plan.json", "--policies", "site.ini"}),
              "apply takes one of a plan, --policies and --resume" + help);
    EXPECT_EQ(faultOf({"apply", "plan.json", "--recording", "a.zrec"}),
              "apply does not take --recording" + help);
    EXPECT_EQ(faultOf({"apply", "plan.json", "-o", "x"}), "apply does not take -o" + help);
    EXPECT_EQ(faultOf({"apply", "plan.json", "--strategy", "add"}),
              "--strategy does not go with a plan that is made already\n"
              "plan again, with this option: zolexctl plan site.ini -o plan.json");
    EXPECT_EQ(faultOf({"apply", "--resume", "j", "--controller", "1"}),
              "--controller does not go with --resume\nthe journal says what the run is for");
    EXPECT_EQ(faultOf({"apply", "plan.json", "--destroy", "yes"}),
              "--destroy: \"yes\" is none of never, own and any, and no code such as 7Q4K-2M9D" +
                  help);
    EXPECT_EQ(faultOf({"apply", "plan.json", "--destroy", "own"}),
              "--destroy own needs --certificates: without one nothing is known to be your own\n"
              "name the folder of the certificates: --certificates proofs");
    EXPECT_EQ(faultOf({"reset", "plan.json"}),
              "reset does not take \"plan.json\"\nzolexctl reset --help");
    EXPECT_EQ(faultOf({"reset", "--resume", "j"}),
              "reset does not take --resume\nzolexctl reset --help");
    EXPECT_EQ(faultOf({"plan", "site.ini", "--destroy", "any"}),
              "plan does not take --destroy\nzolexctl plan --help");
}

TEST(CommandLine, KnowsCodesHoweverTheyAreTyped) {
    const DestroyWish code{DestroyWish::Kind::code, "7Q10-2M9D"};
    for (const char* const typed : {"7Q10-2M9D", "7q102m9d", " 7QIO 2M9D\t", "7-q-l-o-2m9d"}) {
        EXPECT_EQ(destroyWishOf(typed), code) << typed;
    }
    EXPECT_EQ(destroyWishOf("P-0123456789AB"),
              (DestroyWish{DestroyWish::Kind::code, "p-0123456789ab"}));
    for (const char* const typed : {"", "7Q10-2M9", "7Q10-2M9DD", "7U10-2M9D", "Any", "p-01"}) {
        EXPECT_FALSE(destroyWishOf(typed)) << typed;
    }
}

TEST(CommandLine, KnowsHelpAndVersion) {
    EXPECT_TRUE(readArguments({"--help"}).wantsHelp);
    EXPECT_EQ(readArguments({"--help"}).request.command, Command::none);
    EXPECT_TRUE(readArguments({"check", "-h"}).wantsHelp);
    EXPECT_EQ(readArguments({"--help", "check"}).request.command, Command::check);
    EXPECT_TRUE(readArguments({"--version"}).wantsVersion);
    EXPECT_EQ(readArguments({}).request.command, Command::none);
    EXPECT_FALSE(readArguments({}).wantsHelp);
}

TEST(CommandLine, TakesZolexBehindGuard) {
    const Request request = requestOf({"guard", "--destroy", "7q4k2m9d", "--accept", "za206,ZX701",
                                       "--", "zolex", "/r", "--help", "-x"});
    EXPECT_EQ(request.command, Command::guard);
    EXPECT_EQ(request.guard.command, (std::vector<std::string>{"zolex", "/r", "--help", "-x"}));
    EXPECT_EQ(request.guard.destroy, (DestroyWish{DestroyWish::Kind::code, "7Q4K-2M9D"}));
    EXPECT_EQ(request.guard.accept, (std::vector<std::string>{"ZA206", "ZX701"}));
    EXPECT_EQ(requestOf({"guard", "--", "zolex"}).guard.destroy.kind, DestroyWish::Kind::ask);
    const std::string help = "\nzolexctl guard -- zolex /r /y /f:site.ini";
    EXPECT_EQ(faultOf({"guard"}), "guard needs zolex and its arguments behind --" + help);
    EXPECT_EQ(faultOf({"guard", "--"}), "guard needs zolex and its arguments behind --" + help);
    EXPECT_EQ(
        faultOf({"guard", "zolex", "/r"}),
        "guard does not take \"zolex\"\nzolex stands behind --: zolexctl guard -- zolex /r /y "
        "/f:site.ini");
    EXPECT_EQ(faultOf({"guard", "--destroy", "own", "--", "zolex", "/r"}),
              "--destroy own needs --certificates: without one nothing is known to be your own\n"
              "name the folder of the certificates: --certificates proofs");
    for (const char* const option : {"--recording", "--controller", "--serial", "--utility"}) {
        EXPECT_EQ(faultOf({"guard", option, "1", "--", "zolex"}),
                  std::string("guard does not take ") + option + "\nzolexctl guard --help");
    }
    EXPECT_EQ(faultOf({"guard", "--accept", "ZA999", "--", "zolex"}),
              "--accept: there is no finding \"ZA999\"; they are such as ZX701\n"
              "zolexctl guard --help");
}

TEST(CommandLine, NamesTheNearestRightWord) {
    EXPECT_EQ(faultOf({"shwo"}), "there is no command \"shwo\"; did you mean show?\n"
                                 "zolexctl --help");
    EXPECT_EQ(faultOf({"shwo", "--as", "text", "x"}),
              "there is no command \"shwo\"; did you mean show?\nzolexctl --help");
    EXPECT_EQ(faultOf({"frobnicate"}), "there is no command \"frobnicate\"\nzolexctl --help");
    EXPECT_EQ(faultOf({"show", "--fromat", "json"}),
              "there is no option \"--fromat\"; did you mean --format?\nzolexctl show --help");
    EXPECT_EQ(faultOf({"--fromat=json", "show"}),
              "there is no option \"--fromat\"; did you mean --format?\nzolexctl show --help");
    EXPECT_EQ(faultOf({"--colour"}),
              "there is no option \"--colour\"; did you mean --color?\nzolexctl --help");
    EXPECT_EQ(faultOf({"show", "-x"}), "there is no option \"-x\"\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "a\033[2J", "-\033"}),
              "there is no option \"-?\"\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--as", "jsn"}),
              "--as: \"jsn\" is no format of show; did you mean json?\n"
              "show can write text, json, svg, html, policies");
    EXPECT_EQ(faultOf({"show", "--utility", "MEGACL=x"}),
              "--utility: \"MEGACL\" is no utility; did you mean MEGACLI?\nzolexctl show --help");
}

TEST(CommandLine, SaysWhichCommandDoesNotTakeAnOption) {
    EXPECT_EQ(faultOf({"show", "--fix"}), "show does not take --fix\nzolexctl show --help");
    EXPECT_EQ(faultOf({"--fix", "show"}), "show does not take --fix\nzolexctl show --help");
    EXPECT_EQ(faultOf({"explain", "ZX1", "--recording", "a"}),
              "explain does not take --recording\nzolexctl explain --help");
    EXPECT_EQ(faultOf({"replay", "-o", "a", "b", "--", "show"}),
              "replay does not take -o\nzolexctl replay --help");
    EXPECT_EQ(faultOf({"check", "a", "--format", "svg"}),
              "--format: \"svg\" is no format of check\n"
              "check can write text, concise, json, sarif, github");
    EXPECT_EQ(faultOf({"show", "--format", "sarif"}),
              "--format: \"sarif\" is no format of show\n"
              "show can write text, json, svg, html, policies");
}

TEST(CommandLine, ChecksTheValues) {
    for (const char* const width : {"39", "1001", "x", "", "-80", "80x", "99999999999999999999"}) {
        EXPECT_EQ(faultOf({"show", "--width", width}),
                  "--width: \"" + std::string(width) +
                      "\" is no number from 40 to 1000\nzolexctl show --help");
    }
    EXPECT_EQ(requestOf({"show", "--width", "40"}).width, 40);
    EXPECT_EQ(requestOf({"show", "--width", "1000"}).width, 1000);
    EXPECT_EQ(faultOf({"show", "--color", "blue"}),
              "--color: \"blue\" is none of auto, always and never\nzolexctl show --help");
    for (const char* const list : {"0", "1,", "x", "1000", "", "1;2"}) {
        EXPECT_EQ(faultOf({"show", "--controller", list}),
                  "--controller: \"" + std::string(list) +
                      "\" is no list of numbers from 1 to 999, such as 1 or 1,3\n"
                      "zolexctl show --help");
    }
    EXPECT_EQ(faultOf({"doctor", "--capture-limit-seconds", "0"}),
              "--capture-limit-seconds: \"0\" is no number from 1 to 86400\n"
              "zolexctl doctor --help");
    EXPECT_EQ(faultOf({"doctor", "--utility", "MEGACLI"}),
              "--utility: \"MEGACLI\" is not like MEGACLI=/opt/MegaRAID/MegaCli64\n"
              "zolexctl doctor --help");
    EXPECT_EQ(faultOf({"doctor", "--utility", "MEGACLI="}),
              "--utility: \"MEGACLI=\" names no program behind the \"=\"\nzolexctl doctor --help");
    EXPECT_EQ(faultOf({"doctor", "--utility", "MEGACLI=a", "--utility", "megacli=b"}),
              "--utility: \"megacli=b\" names this utility again\nzolexctl doctor --help");
    EXPECT_EQ(faultOf({"check", "a", "--select", "X1"}),
              "--select: \"X1\" is no rule, nor the beginning of one, such as ZX301 or ZX5\n"
              "zolexctl check --help");
    EXPECT_EQ(faultOf({"check", "a", "--select", "ZX5,ZX499"}),
              "--select: there is no rule \"ZX499\"\nzolexctl check --help");
    EXPECT_EQ(requestOf({"check", "a", "--ignore", "ZX499"}).check.ignore, Words{"ZX499"});
    EXPECT_EQ(faultOf({"show", "-o", ""}), "--output: the value is empty\nzolexctl show --help");
}

TEST(CommandLine, SaysWhatIsMissingOrTooMuch) {
    EXPECT_EQ(faultOf({"show", "-o"}), "--output needs a value\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--width"}), "--width needs a value\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--record", "--quiet"}),
              "--record needs a value\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--width", "80", "--width", "81"}),
              "--width is given twice\nzolexctl show --help");
    EXPECT_EQ(faultOf({"--width", "80", "show", "--width", "80"}),
              "--width is given twice\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--quiet=5"}), "--quiet takes no value\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "-qv"}),
              "--quiet and --verbose exclude each other\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--as", "json", "--format", "json"}),
              "--as and --format are the same; give one\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "a", "b"}),
              "show does not take \"b\" besides \"a\"\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "a", "--recording", "b"}),
              "show takes one recording, not \"a\" and \"b\"\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", ""}), "an argument is empty\nzolexctl show --help");
    EXPECT_EQ(faultOf({"show", "--exact"}),
              "--exact is for policies\nzolexctl show --as policies --exact");
    EXPECT_EQ(faultOf({"doctor", "a"}), "doctor does not take \"a\"\nzolexctl doctor --help");
    EXPECT_EQ(faultOf({"check"}), "check needs a policies file\nzolexctl check --help");
    EXPECT_EQ(faultOf({"explain"}),
              "explain needs a code, such as ZX411 or 11\nzolexctl explain --help");
    EXPECT_EQ(faultOf({"replay"}), "replay needs a recording\nzolexctl replay --help");
    EXPECT_EQ(faultOf({"replay", "a"}), "replay needs a command behind --\nzolexctl replay --help");
    EXPECT_EQ(faultOf({"replay", "a", "show"}),
              "replay does not take \"show\"\n"
              "the command stands behind --: zolexctl replay FILE -- show");
}

} // namespace
} // namespace zolex::companion
