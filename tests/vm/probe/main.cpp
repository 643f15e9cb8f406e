/// What the family of Linux md sees and does, for jobs of the emulated machine:
///     vm-probe list                           drives with what bars them, and our arrays
///     vm-probe create LEVEL STRIP NAME DRIVE... [+ SPARE...]
///     vm-probe delete ARRAY                   by its name
///     vm-probe run LINE                       one command line
///     vm-probe hold DEVICE                    opens it alone, says "held", and waits
/// LEVEL is "RAID5"; STRIP in KB, 0: none told; NAME "-": none. MDADM in the environment is started
/// in the place of mdadm, and drives of 16 MiB are large enough.
#include "companion/families/Family.h"
#include "companion/families/md/MdFamily.h"
#include "companion/machine/ProgramStart.h"
#include "platform/Platform.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace zolex;
using namespace zolex::companion;

/// The machine, whose command lines the family carries out.
class Machine : public Platform {
  public:
    Console& console() override { return system_->console(); }
    FileSystem& files() override { return system_->files(); }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return system_->pciDevices(); }
    void pauseOneSecond() override { system_->pauseOneSecond(); }
    LocalTime localTime() override { return system_->localTime(); }

    ChildResult runChild(std::string_view line, bool, std::chrono::milliseconds limit) override {
        FamilyMachine machine;
        machine.start = [this](const std::vector<std::string>& arguments,
                               std::chrono::milliseconds most) {
            return runProgram(*system_, arguments, true, most);
        };
        machine.pauseOneSecond = [this] { system_->pauseOneSecond(); };
        const char* const program = std::getenv("MDADM");
        machine.program = program == nullptr ? "/programs/mdadm" : program;
        machine.leastDriveBytes = std::uint64_t{16} << 20U;
        return md::family().carryOut(machine, line, limit).value_or(ChildResult());
    }

  private:
    std::unique_ptr<Platform> system_ = makeSystemPlatform();
};

Facts look(Machine& machine) {
    FamilyRequest request;
    request.isAskedFor = true;
    const FamilyCapture capture = md::family().capture(machine, request);
    for (const FamilyFinding& finding : capture.findings) {
        std::printf("! %s: %s\n", finding.summary.c_str(), finding.detail.c_str());
    }
    if (capture.controllers.empty()) {
        return {};
    }
    for (const FamilyFinding& finding : capture.controllers[0].findings) {
        std::printf("! %s: %s\n", finding.summary.c_str(), finding.detail.c_str());
    }
    return capture.controllers[0].facts;
}

const char* word(DriveState state) {
    switch (state) {
    case DriveState::free:
        return "free";
    case DriveState::member:
        return "member";
    case DriveState::hotspare:
        return "spare";
    case DriveState::rebuilding:
        return "rebuilding";
    case DriveState::failed:
        return "failed";
    case DriveState::jbod:
        return "in use";
    default:
        return "other";
    }
}

int list(Machine& machine) {
    const Facts facts = look(machine);
    for (const DriveFacts& drive : facts.drives) {
        std::printf("%s: %s%s%s\n", drive.location.c_str(), word(drive.state),
                    drive.barred.empty() ? "" : "; ", drive.barred.c_str());
    }
    for (const LogicalDriveFacts& volume : facts.logicalDrives) {
        std::printf("%s: %s, %s, strip %llu, %llu bytes:", volume.id.c_str(),
                    volume.raidType.c_str(), volume.reportedState.c_str(),
                    static_cast<unsigned long long>(volume.stripSizeBytes.value_or(0)),
                    static_cast<unsigned long long>(volume.capacityBytes.value_or(0)));
        for (const std::vector<std::string>& span : volume.spans) {
            std::printf(" [");
            for (const std::string& drive : span) {
                std::printf(" %s", drive.c_str());
            }
            std::printf(" ]");
        }
        std::printf("\n");
    }
    return 0;
}

int run(Machine& machine, const std::string& line) {
    std::printf("%s\n", line.c_str());
    const ChildResult result = machine.runChild(line, true, std::chrono::minutes(2));
    std::printf("%s", result.output.c_str());
    const FamilyVerdict verdict = md::family().judge(line, result.exitCode, result.output);
    std::printf("%s\n", verdict.isDone ? "done" : ("not done: " + verdict.why).c_str());
    return result.outcome == ChildOutcome::ended ? static_cast<int>(result.exitCode) : 255;
}

int create(Machine& machine, int count, char** words) {
    VolumeWish wish;
    wish.raidType = words[0];
    std::uint64_t strip = 0;
    const std::string_view told = words[1];
    std::from_chars(told.data(), told.data() + told.size(), strip);
    if (strip != 0) {
        wish.stripSizeBytes = strip * 1024;
    }
    wish.name = std::string_view(words[2]) == "-" ? "" : words[2];
    wish.spans.emplace_back();
    bool isSpare = false;
    for (int i = 3; i < count; ++i) {
        if (std::string_view(words[i]) == "+") {
            isSpare = true;
        } else {
            (isSpare ? wish.spares : wish.spans[0]).emplace_back(words[i]);
        }
    }
    const std::string why = md::family().whyNotMade(wish, Facts());
    if (!why.empty()) {
        std::printf("not made: %s\n", why.c_str());
        return 1;
    }
    return run(machine, md::family().createVolume(0, wish));
}

int remove(Machine& machine, const std::string& name) {
    const Facts facts = look(machine);
    const auto volume =
        std::find_if(facts.logicalDrives.begin(), facts.logicalDrives.end(),
                     [&name](const LogicalDriveFacts& one) { return one.id == name; });
    if (volume == facts.logicalDrives.end()) {
        std::printf("no array %s\n", name.c_str());
        return 1;
    }
    for (const DriveFacts& drive : facts.drives) {
        if (drive.covers == std::vector<std::string>{name}) {
            const int code =
                run(machine, md::family().removeSpare(0, drive.location, drive.covers));
            if (code != 0) {
                return code;
            }
        }
    }
    const std::string line = md::family().deleteVolume(0, *volume);
    if (line.empty()) {
        std::printf("not deleted: %s\n", volume->reportedState.c_str());
        return 1;
    }
    return run(machine, line);
}

int hold(const char* device) {
    if (::open(device, O_RDONLY | O_EXCL | O_CLOEXEC) < 0) {
        std::perror(device);
        return 1;
    }
    std::puts("held");
    std::fflush(stdout);
    for (;;) {
        ::pause();
    }
}

} // namespace

int main(int count, char** words) {
    const std::string verb = count > 1 ? words[1] : "";
    if (verb == "hold" && count == 3) {
        return hold(words[2]);
    }
    Machine machine;
    if (verb == "list" && count == 2) {
        return list(machine);
    }
    if (verb == "create" && count > 5) {
        return create(machine, count - 2, words + 2);
    }
    if (verb == "delete" && count == 3) {
        return remove(machine, words[2]);
    }
    if (verb == "run" && count == 3) {
        return run(machine, words[2]);
    }
    std::fputs("vm-probe list | create | delete | run | hold\n", stderr);
    return 2;
}
