#include "companion/families/md/MdFamily.h"

#include "companion/families/md/DiskList.h"
#include "companion/families/md/MdCommands.h"
#include "companion/families/md/MdDecode.h"
#include "companion/families/md/MdHost.h"

#include <algorithm>
#include <array>

namespace zolex::companion::md {

namespace {

constexpr std::array<std::string_view, 1> programNames = {"mdadm"};
constexpr std::string_view commandFailed = "ZP100";
constexpr std::string_view utilityMissing = "ZP101";
constexpr std::string_view readingsDiffer = "ZP113";
constexpr std::string_view notRunning = " of zolexctl runs.";
constexpr std::string_view startHelp = "start it: mdadm --assemble --scan";

bool isGood(const FamilyListing& listing) {
    return listing.outcome == ChildOutcome::ended && listing.exitCode == 0;
}

std::string withoutEnd(std::string_view text) {
    return std::string(text.substr(0, text.find_last_not_of(" \t\r\n") + 1));
}

std::string lastLine(std::string_view output) {
    const std::string text = withoutEnd(output);
    return text.substr(text.rfind('\n') + 1);
}

/// One capture.
class Capture {
  public:
    Capture(Platform& platform, const FamilyRequest& request)
        : platform_(platform), request_(request) {}

    FamilyCapture take() {
        FamilyCapture capture;
        const FamilyListing listing = ask(std::string(drivesLine));
        std::optional<DiskList> list =
            isGood(listing) ? diskListFrom(listing.output) : std::nullopt;
        if (!list) {
            capture.findings.push_back({std::string(commandFailed),
                                        "The drives of Linux cannot be looked at",
                                        lastLine(listing.output),
                                        {}});
            return capture;
        }
        FamilyController controller;
        controller.model = "LINUX-MD";
        controller.listings.push_back(listing);
        askMdadm(controller, *list);
        controller.facts = factsOf(*list);
        controller.facts.firmwareVersion = version_;
        for (std::size_t i = 0; i < controller.listings.size(); ++i) {
            ListingReading reading;
            reading.isListing = isGood(controller.listings[i]);
            controller.facts.listings.push_back(reading);
        }
        capture.controllers.push_back(std::move(controller));
        return capture;
    }

  private:
    FamilyListing ask(const std::string& line) {
        if (request_.progress) {
            request_.progress(line);
        }
        FamilyListing listing;
        listing.command = line;
        const auto begin = std::chrono::steady_clock::now();
        const ChildResult result = platform_.runChild(line, true, request_.limit);
        listing.duration = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - begin);
        listing.outcome = result.outcome;
        listing.exitCode = result.exitCode;
        listing.output = result.output;
        return listing;
    }

    /// What mdadm tells of our arrays must be what their superblocks tell; else they are nobody's.
    void askMdadm(FamilyController& controller, DiskList& list) {
        const FamilyListing version = ask(std::string(versionLine));
        controller.listings.push_back(version);
        if (!isGood(version)) {
            controller.findings.push_back(
                {std::string(utilityMissing),
                 "mdadm cannot be run",
                 "Without it drives are shown, and no array can be made or removed.",
                 {"Install mdadm, or tell where it is: --utility MD=/path/mdadm"}});
            disown(list, "mdadm cannot be run");
            return;
        }
        version_ = lastLine(version.output);
        for (ListedArray& array : list.arrays) {
            if (!array.isOurs) {
                continue;
            }
            const FamilyListing told = ask(array.node.empty() ? examineLine(memberOf(list, array))
                                                              : detailLine(array.node));
            controller.listings.push_back(told);
            const auto keys = exportedKeys(told.output);
            const auto uuid = keys.find("MD_UUID");
            const auto name = keys.find("MD_NAME");
            const bool agrees = isGood(told) && uuid != keys.end() && uuid->second == array.uuid &&
                                name != keys.end() && name->second == array.name;
            if (!agrees) {
                array.whyNotStopped = "mdadm tells another name or UUID of it";
                controller.findings.push_back(
                    {std::string(readingsDiffer),
                     "mdadm and the superblocks tell different things of " + array.name,
                     lastLine(told.output),
                     {"Look at it: " + told.command.substr(told.command.find(' ') + 1)}});
            }
        }
    }

    /// One that has not dropped out.
    static std::string memberOf(const DiskList& list, const ListedArray& array) {
        const auto found =
            std::find_if(list.disks.begin(), list.disks.end(), [&array](const ListedDisk& disk) {
                return lists(array.members, disk.name) && !disk.isFailed();
            });
        return found == list.disks.end() ? array.members.at(0) : found->name;
    }

    static void disown(DiskList& list, const std::string& why) {
        for (ListedArray& array : list.arrays) {
            if (array.whyNotStopped.empty()) {
                array.whyNotStopped = why;
            }
        }
    }

    Platform& platform_;
    const FamilyRequest& request_;
    std::string version_;
};

class MdFamily : public Family {
  public:
    std::string_view name() const override { return "MD"; }
    std::span<const std::string_view> programs() const override { return programNames; }
    bool isOptIn() const override { return true; }
    bool isReading(std::string_view commandLine) const override {
        const std::optional<MdCommand> command = commandFrom(withoutEnd(commandLine));
        return command &&
               (command->verb == MdCommand::Verb::drives || command->verb == MdCommand::Verb::ask);
    }

    FamilyCapture capture(Platform& platform, const FamilyRequest& request) const override {
        return request.isAskedFor ? Capture(platform, request).take() : FamilyCapture();
    }

    bool carriesOut() const override { return true; }
    std::optional<ChildResult> carryOut(const FamilyMachine& machine, std::string_view commandLine,
                                        std::chrono::milliseconds limit) const override {
        const std::unique_ptr<DiskFiles> files = systemDiskFiles();
        return MdHost(machine, files.get()).run(withoutEnd(commandLine), limit);
    }

    FamilyLimits limits(const Facts& facts) const override {
        FamilyLimits limits;
        limits.raidTypes = facts.raidTypes;
        limits.mostVolumesPerGroup = 1;
        limits.leastStripBytes = facts.minStripSizeBytes.value_or(0);
        limits.mostStripBytes = facts.maxStripSizeBytes.value_or(0);
        limits.mixesProtocols = true;
        limits.mixesMedia = true;
        limits.hasDedicatedSpares = true;
        limits.deepMirrors = DeepMirrors::ofAll;
        return limits;
    }

    std::string whyNotUsable(const DriveFacts& drive) const override {
        if (!drive.barred.empty()) {
            return drive.barred;
        }
        return drive.state == DriveState::failed ? "it has failed" : "";
    }

    std::string whyNotMade(const VolumeWish& wish, const Facts& facts) const override {
        return whyNoArray(wish, facts);
    }

    std::string createVolume(std::int32_t, const VolumeWish& wish) const override {
        return createLine(wish);
    }

    std::string whyNotDeleted(const LogicalDriveFacts& volume) const override {
        const std::size_t use = volume.reportedState.find(useSeparator);
        return use == std::string::npos ? std::string()
                                        : volume.reportedState.substr(use + useSeparator.size());
    }

    bool listsInOrder() const override { return true; }

    std::optional<FamilyIdle> whyIdle(const LogicalDriveFacts& volume) const override {
        return volume.device.empty()
                   ? std::optional(FamilyIdle{"active", "stopped", std::string(startHelp)})
                   : std::nullopt;
    }

    std::string deleteVolume(std::int32_t, const LogicalDriveFacts& volume) const override {
        if (!whyNotDeleted(volume).empty()) {
            return {};
        }
        std::vector<std::string> drives = volume.drives();
        std::erase(drives, "Missing");
        return deleteLine(volume.id, volume.uniqueId, drives);
    }

    std::string addSpare(std::int32_t, const std::string& location,
                         const std::vector<std::string>& arrays) const override {
        return arrays.empty() ? std::string() : addSpareLine(arrays[0], location);
    }
    std::string removeSpare(std::int32_t, const std::string& location,
                            const std::vector<std::string>& arrays) const override {
        return arrays.empty()
                   ? std::string()
                   : removeSpareLine(arrays[0].substr(0, arrays[0].find(removedFrom)), location);
    }
    std::string clearForeign(std::int32_t) const override { return {}; }
    std::string setCache(std::int32_t, const LogicalDriveFacts&, std::string_view,
                         std::string_view) const override {
        return {};
    }
    std::string setRebuildRate(std::int32_t, std::string_view) const override { return {}; }

    FamilyVerdict judge(std::string_view commandLine, std::uint32_t exitCode,
                        std::string_view output) const override {
        FamilyVerdict verdict;
        verdict.isDone = exitCode == 0;
        if (verdict.isDone) {
            return verdict;
        }
        verdict.why = lastLine(output);
        if (verdict.why.empty()) {
            verdict.why = "mdadm ended with " + std::to_string(exitCode);
        }
        const bool isTooSmall = output.find("exceeds size") != std::string_view::npos;
        const bool isAsked = output.find("Continue creating array") != std::string_view::npos;
        const std::size_t question = output.find("mdadm: ");
        if (isAsked && question != std::string_view::npos) {
            verdict.why =
                withoutEnd(output.substr(question, output.find('\n', question) - question));
            verdict.help = {
                isTooSmall ? "mdadm would go on only if it were forced to; take the drives whole: "
                             "FILL as the size"
                           : "mdadm would go on only if it were forced to; look at the drive, and "
                             "clear it if nobody needs it: wipefs DRIVE"};
        } else if (exitCode == MdHost::refused && commandLine.starts_with("MD --create")) {
            verdict.help = {"See what uses it: lsblk, and zolexctl show --family md"};
        } else if (exitCode == MdHost::refused && output.find(MdHost::another) != output.npos) {
            verdict.help = {"See what it is, and plan again: zolexctl show --family md"};
        } else if (exitCode == MdHost::refused && output.find(notRunning) != output.npos) {
            verdict.help = {std::string(startHelp)};
        }
        return verdict;
    }
};

} // namespace

const Family& family() {
    static const MdFamily only;
    return only;
}

} // namespace zolex::companion::md
