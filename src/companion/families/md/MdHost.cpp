#include "companion/families/md/MdHost.h"

#include <algorithm>

namespace zolex::companion::md {

namespace {

constexpr int attempts = 5;
constexpr std::string_view idFolder = "/dev/disk/by-id/";

ChildResult ended(std::uint32_t exitCode, std::string output) {
    ChildResult result;
    result.outcome = ChildOutcome::ended;
    result.exitCode = exitCode;
    result.output = std::move(output);
    return result;
}

ChildResult refusal(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += "zolexctl: " + line + "\n";
    }
    return ended(MdHost::refused, text);
}

bool isDone(const ChildResult& result) {
    return result.outcome == ChildOutcome::ended && result.exitCode == 0;
}

const ListedDisk* diskWithId(const DiskList& list, const std::string& id) {
    const auto found = std::find_if(list.disks.begin(), list.disks.end(),
                                    [&id](const ListedDisk& disk) { return disk.id == id; });
    return found == list.disks.end() ? nullptr : &*found;
}

const ListedArray* arrayNamed(const DiskList& list, const std::string& name) {
    const auto found =
        std::find_if(list.arrays.begin(), list.arrays.end(),
                     [&name](const ListedArray& array) { return array.name == name; });
    return found == list.arrays.end() ? nullptr : &*found;
}

std::string untouched(const std::string& drive, const std::string& why) {
    return drive + " is not touched: " + why;
}

} // namespace

DiskList MdHost::list(std::optional<std::vector<std::string>> whole) const {
    DiskScan scan;
    scan.whole = std::move(whole);
    scan.files = files_;
    scan.roots = roots_;
    if (machine_.leastDriveBytes != 0) {
        scan.leastBytes = machine_.leastDriveBytes;
    }
    if (machine_.start) {
        scan.run =
            [this](const std::vector<std::string>& arguments) -> std::optional<ProgramAnswer> {
            if (files_->resolved(arguments[0]).empty()) {
                return std::nullopt;
            }
            const ChildResult result = machine_.start(arguments, limit_);
            return result.outcome == ChildOutcome::ended
                       ? std::optional(ProgramAnswer{result.exitCode, result.output})
                       : std::nullopt;
        };
    }
    return listDisks(scan);
}

ChildResult MdHost::mdadm(const std::vector<std::string>& arguments) const {
    if (machine_.program.empty()) {
        return {};
    }
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), machine_.program);
    return machine_.start(words, limit_);
}

ChildResult MdHost::run(std::string_view line, std::chrono::milliseconds limit) {
    limit_ = limit;
    if (files_ == nullptr) {
        return refusal({"md is a part of Linux, and this is another system."});
    }
    const std::optional<MdCommand> command = commandFrom(line);
    if (!command) {
        return refusal({"this is no command line that zolexctl runs mdadm with."});
    }
    switch (command->verb) {
    case MdCommand::Verb::drives:
        return ended(0, toText(list()));
    case MdCommand::Verb::ask:
        return mdadm(command->arguments);
    case MdCommand::Verb::create:
        return create(*command);
    case MdCommand::Verb::remove:
        return remove(*command);
    case MdCommand::Verb::addSpare:
        return addSpare(*command);
    case MdCommand::Verb::removeSpare:
        return removeSpare(*command);
    }
    return {};
}

/// Starts mdadm as soon as `check` has nothing against it, and again while it finds something busy.
/// Arrays and drives are told to mdadm by the names of the kernel's that `check` gives: links in
/// /dev/md and /dev/disk/by-id may lead anywhere by the time that mdadm follows them.
template <typename Check>
ChildResult MdHost::attempt(const std::vector<std::string>& arguments, const Check& check) {
    ChildResult result;
    for (int i = 0; i < attempts; ++i) {
        if (i != 0 && machine_.pauseOneSecond) {
            machine_.pauseOneSecond();
        }
        const Refusal why = check();
        if (!why.lines.empty()) {
            result = refusal(why.lines);
            if (why.mayPass) {
                continue;
            }
            return result;
        }
        std::vector<std::string> words = arguments;
        if (!why.node.empty()) {
            words.at(1) = "/dev/" + why.node;
        }
        for (std::string& word : words) {
            const auto drive = word.starts_with(idFolder)
                                   ? why.drives.find(word.substr(idFolder.size()))
                                   : why.drives.end();
            if (drive != why.drives.end()) {
                word = "/dev/" + drive->second;
            }
        }
        result = mdadm(words);
        if (result.outcome != ChildOutcome::ended || result.exitCode == 0 ||
            result.output.find("busy") == std::string::npos) {
            return result;
        }
    }
    return result;
}

MdHost::Refusal MdHost::whyNotWritten(const MdCommand& command, bool isNew) const {
    const DiskList now = list(command.drives);
    Refusal refusal;
    const ListedArray* const array = arrayNamed(now, command.array);
    if (isNew && array != nullptr) {
        refusal.lines.push_back("there is an array " + command.array + " already.");
    }
    if (!isNew && (array == nullptr || !array->isOurs || array->node.empty())) {
        refusal.lines.push_back("no array " + command.array + " of zolexctl runs.");
    }
    refusal.mayPass = refusal.lines.empty();
    refusal.node = isNew || array == nullptr ? "" : array->node;
    for (const std::string& id : command.drives) {
        const ListedDisk* const disk = diskWithId(now, id);
        std::string why = disk == nullptr ? "no drive has this name now" : disk->why;
        if (disk != nullptr && why.empty()) {
            const auto in =
                std::find_if(now.arrays.begin(), now.arrays.end(), [disk](const ListedArray& one) {
                    return lists(one.members, disk->name);
                });
            why = in == now.arrays.end() ? "" : "in use: member of " + in->name;
        }
        if (disk != nullptr) {
            refusal.drives[id] = disk->name;
        }
        if (!why.empty()) {
            refusal.mayPass =
                refusal.mayPass && why.find("it cannot be opened alone: ") != std::string::npos;
            refusal.lines.push_back(untouched(id, why) + ".");
        }
    }
    return refusal;
}

/// Until udev has made its links, and the array is clean.
void MdHost::settle(const std::string& array) const {
    for (const char* const udevadm : {"/usr/bin/udevadm", "/bin/udevadm", "/sbin/udevadm"}) {
        if (!files_->resolved("/run/udev/control").empty() && !files_->resolved(udevadm).empty()) {
            (void)machine_.start({udevadm, "settle", "--timeout=10"}, limit_);
            break;
        }
    }
    if (!array.empty() && !files_->resolved(roots_.dev + "/md/" + array).empty()) {
        (void)mdadm({"--wait-clean", "/dev/md/" + array});
    }
}

ChildResult MdHost::create(const MdCommand& command) {
    ChildResult result = attempt(command.arguments, [&] { return whyNotWritten(command, true); });
    if (isDone(result)) {
        settle(command.array);
    }
    return result;
}

ChildResult MdHost::addSpare(const MdCommand& command) {
    return attempt(command.arguments, [&] { return whyNotWritten(command, false); });
}

/// Zeroes the superblocks of drives that are in no running array, as long as they tell of the array
/// of this UUID. Of spares nothing else than a spare's is zeroed.
ChildResult MdHost::zero(const std::vector<std::string>& ids, const std::string& uuid,
                         bool areSpares) {
    std::vector<std::string> words = {"--zero-superblock"};
    for (const std::string& id : ids) {
        words.push_back(std::string(idFolder) + id);
    }
    return ids.empty() ? ended(0, {}) : attempt(words, [&] {
        const DiskList now = list(std::vector<std::string>());
        Refusal refusal;
        for (const std::string& id : ids) {
            const ListedDisk* const disk = diskWithId(now, id);
            const std::string why =
                disk == nullptr        ? "no drive has this name now"
                : !disk->array.empty() ? "it is in a running array again: " + disk->array
                : !disk->superblock || !disk->superblock->name.starts_with(ownPrefix)
                    ? "it has no superblock of ours any more"
                : disk->superblock->uuid != uuid ? "its superblock tells of another array"
                : areSpares && disk->superblock->part != Superblock::Part::spare
                    ? "its superblock is none of a spare"
                    : disk->why;
            if (disk != nullptr) {
                refusal.drives[id] = disk->name;
            }
            if (!why.empty()) {
                refusal.lines.push_back(untouched(id, why) + ".");
            }
        }
        return refusal;
    });
}

ChildResult MdHost::removeSpare(const MdCommand& command) {
    const std::string& id = command.drives[0];
    const DiskList before = list(std::vector<std::string>());
    const ListedArray* const of = arrayNamed(before, command.array);
    const ListedDisk* const spare = diskWithId(before, id);
    // Of an array that does not run, or removed already, and cut off before it was cleared.
    if (of != nullptr && of->isOurs && spare != nullptr && lists(of->members, spare->name) &&
        spare->isSpareApart()) {
        return zero({id}, of->uuid, true);
    }
    std::string uuid;
    ChildResult result = attempt(command.arguments, [&] {
        const DiskList now = list(std::vector<std::string>());
        const ListedArray* const array = arrayNamed(now, command.array);
        const ListedDisk* const disk = diskWithId(now, id);
        Refusal refusal;
        if (array == nullptr || !array->isOurs || array->node.empty()) {
            refusal.lines.push_back("no array " + command.array + " of zolexctl runs.");
        } else if (disk == nullptr || disk->array != array->node || !disk->isSpare()) {
            refusal.lines.push_back(untouched(id, "it is no spare of " + command.array) + ".");
        } else {
            refusal.node = array->node;
            refusal.drives[id] = disk->name;
            uuid = array->uuid;
        }
        return refusal;
    });
    if (isDone(result)) {
        const std::string output = result.output;
        result = zero({id}, uuid, true);
        result.output = output + result.output;
    }
    return result;
}

/// The drives of the array are named, all but failed ones, and nothing uses it. What has been made
/// on it must be gone, too, where the drives would be barred by it afterwards.
std::vector<std::string> MdHost::whyNotRemoved(const MdCommand& command,
                                               const DiskList& now) const {
    const ListedArray* const array = arrayNamed(now, command.array);
    std::vector<std::string> lines;
    if (array == nullptr) {
        for (const std::string& id : command.drives) {
            const ListedDisk* const disk = diskWithId(now, id);
            if (disk == nullptr || disk->superblock || !disk->array.empty()) {
                lines.push_back(untouched(id, "it is not of an array " + command.array) + ".");
            }
        }
        return lines;
    }
    const std::string stays = command.array + " is not touched: ";
    if (!command.uuid.empty() && array->uuid != command.uuid) {
        return {stays + std::string(another) + "."};
    }
    if (!array->isOurs) {
        lines.push_back(stays + "it is not proved that zolexctl has made it.");
    }
    if (!array->whyNotStopped.empty()) {
        lines.push_back(stays + array->whyNotStopped + ".");
    }
    for (const std::string& id : command.drives) {
        const ListedDisk* const disk = diskWithId(now, id);
        if (disk == nullptr || (disk->superblock && !lists(array->members, disk->name))) {
            lines.push_back(untouched(id, "it is not of the array " + command.array) + ".");
        } else if (!disk->carries.empty()) {
            lines.push_back(stays + id + " carries " + disk->carries +
                            ", too. Clear what is on the array first: wipefs --all /dev/md/" +
                            command.array);
        }
    }
    for (const ListedDisk& disk : now.disks) {
        if (lists(array->members, disk.name) && disk.superblock && !disk.isFailed() &&
            !lists(command.drives, disk.id)) {
            lines.push_back(stays + disk.id + " is of it, too, and not named.");
        }
    }
    return lines;
}

ChildResult MdHost::remove(const MdCommand& command) {
    const DiskList before = list(command.drives);
    if (const std::vector<std::string> why = whyNotRemoved(command, before); !why.empty()) {
        return refusal(why);
    }
    const ListedArray* const array = arrayNamed(before, command.array);
    if (array == nullptr) {
        return ended(0, "zolexctl: there is no array " + command.array + " any more.\n");
    }
    std::string output;
    if (!array->node.empty()) {
        ChildResult stopped = attempt({"--stop", "/dev/" + array->node}, [&] {
            return Refusal{whyNotRemoved(command, list(command.drives)), false, {}, {}};
        });
        if (!isDone(stopped)) {
            return stopped;
        }
        output = stopped.output;
        settle({});
    }
    // What has dropped out of it and is not named was not agreed to be lost.
    std::vector<std::string> ids;
    for (const ListedDisk& disk : list(std::vector<std::string>()).disks) {
        if (disk.superblock && disk.superblock->uuid == array->uuid && disk.array.empty() &&
            lists(command.drives, disk.id)) {
            ids.push_back(disk.id);
        }
    }
    ChildResult result = zero(ids, array->uuid, false);
    result.output = output + result.output;
    if (isDone(result)) {
        settle({});
    }
    return result;
}

} // namespace zolex::companion::md
