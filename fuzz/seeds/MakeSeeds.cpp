// Writes the first inputs of every target into a folder: what the utilities of the virtual server
// print before and after its policies are deployed, the files that fit it, and some texts by hand.

#include "companion/json/CertificateDocument.h"
#include "companion/json/PlanDocument.h"
#include "companion/json/RecordingLines.h"
#include "companion/planning/Steps.h"
#include "companion/recording/RecordingPlatform.h"
#include "companion/support/ExampleCertificate.h"
#include "companion/support/ExampleJournal.h"
#include "companion/support/ExamplePlan.h"
#include "driver/ZOLEX.h"
#include "foundation/CString.h"
#include "setup/Samples.h"
#include "support/FakePlatform.h"
#include "support/Input.h"
#include "support/VirtualServer.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::fuzz {
namespace {

using namespace std::string_literals;

class SeedWriter {
  public:
    explicit SeedWriter(std::filesystem::path folder) : folder_(std::move(folder)) {}

    void write(const std::string& target, const std::string& input) {
        const std::filesystem::path path = folder_ / target;
        std::filesystem::create_directories(path);
        std::ofstream file(path / std::to_string(++count_[target]), std::ios::binary);
        file << input;
        good_ = good_ && file.flush().good();
    }
    [[nodiscard]] bool good() const { return good_; }

  private:
    std::filesystem::path folder_;
    std::map<std::string, int> count_;
    bool good_ = true;
};

// Which target reads the listings of a utility, and which of that target's controller types has it;
// a controller type that has it.
struct Utility {
    std::string_view name;
    const char* target;
    int type;
    int controllerType;
};
// clang-format off
constexpr std::array<Utility, 7> utilities = {{
    {"MEGACLI",       "mega-reader", 0, 12},
    {"ARCCONF",       "arc-reader",  1, 7},
    {"HRCONF",        "hr-reader",   1, 8},
    {"QTCSEND",       "kx-reader",   0, 1},
    {"CFGGEN1.02.02", "kx-reader",   1, 5},
    {"CFGGEN",        "kx-reader",   2, 10},
    {"HYPERWIN",      "ide-reader",  0, 6},
}};
// clang-format on

/// The first byte of a reader's input.
char readerChoice(bool capture, int type) {
    return static_cast<char>((capture ? 1 : 0) | type << 4);
}

/// Keeps the listings of a run, by the utility and the controller that they are about.
class Listings {
  public:
    void add(std::string_view command, const std::string& output) {
        constexpr std::array<std::string_view, 6> options = {
            " -LdPdInfo ", " -pdList ", " -adpallinfo ", " GETCONFIG ", " DISPLAY ", " /L "};
        for (const std::string_view option : options) {
            const std::size_t at = command.find(option);
            if (at != std::string_view::npos) {
                const std::string utility = word(command, 1);
                const bool numberStandsBefore = option == " DISPLAY ";
                const std::string number =
                    option == " /L " ? ""s : word(command, numberStandsBefore ? 2 : 3);
                std::string& outputs = outputs_[utility + " " + number];
                outputs += (outputs.empty() ? ""s : "\f"s) + output;
            }
        }
    }
    void write(bool capture, SeedWriter& seeds) const {
        for (const auto& [key, outputs] : outputs_) {
            for (const Utility& utility : utilities) {
                if (word(key, 0) == utility.name) {
                    seeds.write(utility.target, readerChoice(capture, utility.type) + outputs);
                    seeds.write("facts", static_cast<char>(utility.controllerType - 1) + outputs);
                }
            }
        }
    }

  private:
    static std::string word(std::string_view line, std::size_t index) {
        const CString token = CString(line).trim().token(" ", index);
        return std::string(token.view());
    }

    std::map<std::string, std::string> outputs_;
};

std::string pciTexts(const PciDevice& device) {
    const CString ids = formatText("PCI\\VEN_%04X&DEV_%04X&SUBSYS_%04X%04X&REV_%02X&CC_%06X",
                                   device.vendorId, device.deviceId, device.subsystemId,
                                   device.subsystemVendorId, device.revision, device.classCode);
    const CString later = formatText("@pci.sys,#65536;PCI bus %%1, device %%2, function "
                                     "%%3;(%d,%d,%d)",
                                     device.bus, device.device, device.function);
    const CString early = formatText("PCI bus %d, device %d, function %d", device.bus,
                                     device.device, device.function);
    const CString folder =
        formatText("0000:%02x:%02x.%x", device.bus, device.device, device.function);
    const CString& location = device.bus % 2 == 0 ? later : early;
    return std::string(ids) + "\0\0\f"s + std::string(location) + "\f" + std::string(folder) +
           "\f0x0104\n\f";
}

/// A recording of a capture, unless it is longer than inputs are.
void writeRecording(test::FakePlatform& platform, SeedWriter& seeds) {
    constexpr std::size_t most = 12000;
    companion::CallList kept;
    companion::RecordingPlatform recorder(platform, kept);
    const std::array arguments = {"zolex", "/c", "/f:recorded.ini"};
    ZOLEX::run(static_cast<int>(arguments.size()), arguments.data(), recorder);
    companion::Recording recording;
    recording.header.madeAt = "2026-11-21T21:05:00+00:00";
    recording.header.system = "linux";
    recording.calls = std::move(kept.calls);
    for (companion::RecordedCall& recorded : recording.calls) {
        if (auto* const child = std::get_if<companion::ChildCall>(&recorded.call)) {
            child->duration = {}; // the same each time
        }
    }
    if (const std::string text = companion::recordingText(recording); text.size() <= most) {
        seeds.write("recording", text);
    }
}

void runOnSample(unsigned sample, SeedWriter& seeds) {
    Input noTexts("");
    VirtualServer server(sample, "", noTexts);
    test::FakePlatform platform;
    auto& files = platform.fileFake.files;
    files["policies.ini"] = server.policies();
    files["contlist.ini"] = server.inventory();
    platform.devices = server.devices();
    const auto run = [&](const char* first, const char* second, bool capture) {
        Listings listings;
        platform.respond = [&](std::string_view command) {
            ChildResult result = server.run(command);
            listings.add(command, result.output);
            return result;
        };
        const std::array arguments = {"zolex", first, second};
        ZOLEX::run(static_cast<int>(arguments.size()), arguments.data(), platform);
        listings.write(capture, seeds);
    };
    for (const std::string& policies : {server.policies(), ""s}) {
        run("/c", "/f:captured.ini", true); // before and after its policies are deployed
        seeds.write("policies-reader", "\5" + files["captured.ini"]);
        seeds.write("check", files["captured.ini"]);
        if (!policies.empty()) {
            seeds.write("policies-reader", "\xC"s + policies);
            seeds.write("check", policies);
            seeds.write("bind",
                        std::string(9, '\0') + policies +
                            "[Policy.kinds]\nAppliesTo.1 = ALL\nDrives.A = 2 x HDD\n"
                            "Drives.B = rest of one size\nSpares = 1\nLevel.B = 6 else 5\n");
            run("/f:policies.ini", "/v:3", false);
        }
    }
    platform.respond = [&](std::string_view command) { return server.run(command); };
    writeRecording(platform, seeds);
    seeds.write("inventory", "\0"s + server.inventory());
    seeds.write("ini-file", "[Added]\nkey = value\f" + server.inventory());
    seeds.write("ini-file", "; comment\f" + server.policies());
    seeds.write("command-line", "/fake\n/c:t,d\n/f:policies.ini\f\f" + server.inventory());
    seeds.write("hwdetect", "\0"s + server.run("hwdetect.exe /i").output);
    for (const PciDevice& device : server.devices()) {
        seeds.write("pci-text", pciTexts(device));
    }
    constexpr char modes = 12;
    for (char mode = 0; mode < modes; ++mode) {
        const std::string choices = {mode, static_cast<char>(sample), '\0', '\0'};
        seeds.write("whole-run", choices + "\f\f\f\f");
    }
}

/// A call of each kind.
void writeCalls(SeedWriter& seeds) {
    companion::Recording recording;
    companion::UtilitiesCall found;
    found.found.wrapper = "UTIL.BAT";
    found.found.programs["MEGACLI"] = "/opt/a\xFF";
    companion::ChildCall child;
    child.command = "hwdetect.exe /i";
    child.result = {ChildOutcome::ended, 0, "Serial_Number=KQ10Z7V\r\n\xFF\t\"\\"};
    const std::array<companion::CallKind, 6> calls{found,
                                                   companion::PciCall{{PciDevice{}}, 2},
                                                   child,
                                                   companion::PauseCall{},
                                                   companion::LocalTimeCall{},
                                                   companion::FirmwareCall{{"8837", "S1", ""}}};
    for (const companion::CallKind& call : calls) {
        recording.calls.push_back({call, 0});
    }
    seeds.write("recording", companion::recordingText(recording));
}

/// The document without blanks and line ends between its parts.
std::string compact(const std::string& document) {
    std::string text;
    bool isLineStart = false;
    for (const char c : document) {
        isLineStart = c == '\n' || (isLineStart && c == ' ');
        if (!isLineStart) {
            text += c;
        }
    }
    return text;
}

/// One that is carried out, one with nothing to do, one that is refused and one that was not made.
void writePlans(SeedWriter& seeds) {
    const companion::DocumentHead head{{"plan", "site.ini"}, "2026-11-21T21:05:00+00:00"};
    companion::MachinePlan plan = companion::test::examplePlan();
    plan.consent = companion::consentCode(plan.fingerprint.identity, plan.losses());
    plan.controllers[0].considered.clear(); // shorter than the longest input that is kept
    seeds.write("plan", compact(companion::planDocument(plan, head)));
    seeds.write("plan",
                compact(companion::planDocument(companion::test::exampleNothingToDoPlan(), head)));
    plan = companion::test::exampleRefusedPlan();
    plan.controllers[0].considered.clear();
    seeds.write("plan", compact(companion::planDocument(plan, head)));
    companion::Finding finding;
    finding.code = "ZP120";
    finding.summary = "there is no RAID controller";
    seeds.write("plan", compact(companion::failedPlanDocument({finding}, head)));
}

/// Runs that were stopped, interrupted and carried out, and the certificate of one.
void writeRuns(SeedWriter& seeds) {
    std::vector<companion::JournalEvent> events = companion::test::exampleJournalEvents();
    const std::string stopped = companion::test::journalText(events);
    seeds.write("journal", stopped);
    seeds.write("journal", stopped.substr(0, stopped.size() - 9));
    events[12] = companion::test::exampleStepEnded(3, 0, "", 900);
    events[13] = companion::JournalVerified{companion::JournalVerified::Result::asPlanned, {}};
    events[14] = companion::JournalEnd{};
    seeds.write("journal", companion::test::journalText(events));
    const companion::DocumentHead head{{"apply", "plan.json"}, "2026-11-21T21:06:20+00:00"};
    seeds.write("certificate", compact(companion::certificateDocument(
                                   companion::test::exampleCertificate(), head)));
}

/// A kind of RAID configuration each, without a server and for the first sample.
void writeConfigurations(SeedWriter& seeds) {
    for (const char* disks :
         {R"({"raid_level": "5", "size_gb": "MAX", "is_root_volume": true})",
          R"({"raid_level": "1", "size_gb": 10, "disk_type": "hdd", "volume_name": "a"},
 {"raid_level": "0", "size_gb": 20, "interface_type": "sas", "number_of_physical_disks": 2})",
          R"({"raid_level": "1+0", "size_gb": 9, "controller": "LSI-MegaRAID-8480",
  "physical_disks": ["32:0", "32:1", "3", "4"]})",
          R"({"raid_level": "6", "size_gb": 1, "share_physical_disks": true,
  "controller": "c:1", "physical_disks": ["1", "2"]})",
          R"({"raid_level": "JBOD", "size_gb": 0, "controller": "software",
  "physical_disks": [{"size": "> 100"}]})"}) {
        const std::string text = std::string("{\"logical_disks\": [\n ") + disks + "]}\n";
        seeds.write("ironic", "\0"s + text);
        seeds.write("ironic", "\1"s + text);
    }
}

void writeByHand(SeedWriter& seeds) {
    writeCalls(seeds);
    writeConfigurations(seeds);
    writePlans(seeds);
    writeRuns(seeds);
    const std::string definition =
        "[Controller.0]\nType=12\nSubType=1\nC1S0=69376\nC1S1=69376\n[Controller.1]\nType=1\n";
    seeds.write("inventory", "\1" + definition);
    seeds.write("whole-run", "\xA\0\0\0\f\f\f"s + definition + "\f");
    seeds.write("whole-run", "\xB\0\0\0\f\f\f"s + definition + "\f");
    for (const char* arguments :
         {"/?", "/f:a b\n/v:9\n/e1\n/e3\n@params\f/e2 \"/t:a b\"\f", "/r:2\n/y\n/v:5\n/p:x\n/o:y",
          "/c:m,s\n/f:x\n/debug\n/s:1,2\n/step2", "/d\n/r\n/a\n/b\n/error", "/e2"}) {
        seeds.write("command-line", arguments);
    }
    seeds.write("parameter-parser",
                "\0\3\1/n:\f\f\f\f\3/f:\f-f\f/n:\f\f\30/d\f\f\f/n:\f/n:12\f/f:a\f"s);
    seeds.write("parameter-parser", "\2\2\3/j:\f\f\f\f\0/y\f\f\f\f/j:\fa\fb\f/y"s);
}

} // namespace
} // namespace zolex::fuzz

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: fuzz-seeds FOLDER\n");
        return 1;
    }
    zolex::fuzz::SeedWriter seeds(argv[1]);
    for (unsigned sample = 0; sample < zolex_sim::samples().size(); ++sample) {
        zolex::fuzz::runOnSample(sample, seeds);
    }
    zolex::fuzz::writeByHand(seeds);
    return seeds.good() ? 0 : 1;
}
