#include "companion/families/md/DiskList.h"
#include "companion/families/md/MdCommands.h"
#include "companion/families/md/MdDecode.h"
#include "companion/families/md/MdFamily.h"
#include "companion/families/md/MdHost.h"
#include "companion/families/md/Signatures.h"
#include "companion/families/md/VolumeUses.h"
#include "companion/machine/FamilyJoin.h"
#include "companion/support/MadeUpDisks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

/// The family of Linux md over a machine that is made up.
namespace zolex::companion::md {

namespace {

constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30U;

using test::MadeUpFiles;
using test::put;
using test::superblockHead;
using test::zeros;

struct MdTest : testing::Test {
    MadeUpFiles files;
    FamilyMachine machine;
    std::vector<std::string> calls; ///< of mdadm
    std::vector<ChildResult> answers;
    int pauses = 0;

    MdTest() {
        machine.program = "/sbin/mdadm";
        machine.pauseOneSecond = [this] { ++pauses; };
        machine.start = [this](const std::vector<std::string>& arguments,
                               std::chrono::milliseconds) {
            std::string call;
            for (const std::string& argument : arguments) {
                call += (call.empty() ? "" : " ") + argument;
            }
            calls.push_back(call);
            ChildResult result;
            result.outcome = ChildOutcome::ended;
            if (!answers.empty()) {
                result = answers.front();
                answers.erase(answers.begin());
            }
            return result;
        };
        files.addDrive("sda", 0);
        files.addDrive("sdb", 1);
        files.addDrive("sdc", 2);
    }

    ChildResult run(const std::string& line) {
        return MdHost(machine, &files).run(line, std::chrono::seconds(1));
    }

    std::string why(const std::string& name) {
        DiskScan scan;
        scan.files = &files;
        for (const ListedDisk& disk : listDisks(scan).disks) {
            if (disk.name == name) {
                return disk.why;
            }
        }
        return "not listed";
    }
};

VolumeWish mirror(const std::string& first = "ata-DISK_S-sda",
                  const std::string& second = "ata-DISK_S-sdb") {
    VolumeWish wish;
    wish.raidType = "RAID1";
    wish.name = "data";
    wish.spans = {{first, second}};
    return wish;
}

const std::string mirrorLine =
    "MD --create /dev/md/zolex-data --metadata=1.2 \"--homehost=<none>\" --name=zolex-data "
    "--level=1 --raid-devices=2 --bitmap=internal /dev/disk/by-id/ata-DISK_S-sda "
    "/dev/disk/by-id/ata-DISK_S-sdb";

TEST_F(MdTest, ADriveThatNothingUsesIsACandidate) {
    EXPECT_EQ(why("sda"), "");
    DiskScan scan;
    scan.files = &files;
    const ListedDisk disk = listDisks(scan).disks.at(0);
    EXPECT_EQ(disk.id, "ata-DISK_S-sda");
    EXPECT_EQ(disk.serialNumber, "S-sda");
    EXPECT_EQ(disk.protocol, "SATA");
    EXPECT_EQ(disk.mediaType, "HDD");
    EXPECT_EQ(disk.channel, 3);
    EXPECT_EQ(disk.target, 0);
    EXPECT_EQ(disk.bytes, 2 * gibibyte);
}

TEST_F(MdTest, EachRefusalOfADriveHasItsReason) {
    files.files["/sys/block/sda/removable"] = "1\n";
    EXPECT_EQ(why("sda"), "it is removable");
    files.files["/sys/block/sda/removable"] = "0\n";
    files.files["/sys/block/sda/ro"] = "1\n";
    EXPECT_EQ(why("sda"), "it is read-only");
    files.files["/sys/block/sda/ro"] = "0\n";
    files.addDrive("sdd", 3, gibibyte - 4096);
    EXPECT_EQ(why("sdd"), "it is too small: 1024 MB");
    files.addDrive("sdd", 3);
    files.links.erase("/dev/disk/by-id/ata-DISK_S-sdd");
    files.links.erase("/dev/disk/by-id/wwn-0x5000sdd");
    EXPECT_EQ(why("sdd"), "it has no name in /dev/disk/by-id");
    files.addDrive("sdd", 3);
    files.files["/sys/block/sdd/device/vpd_pg80"] = files.files["/sys/block/sda/device/vpd_pg80"];
    EXPECT_EQ(why("sda"), "it has the serial number of sdd, too");
    files.addDrive("sdd", 3);
    files.files["/sys/block/sda/device/wwid"] = "naa.5000c500a1b2c3d4\n"; // by two ways
    files.files["/sys/block/sdd/device/wwid"] = "naa.5000c500a1b2c3d4\n";
    EXPECT_EQ(why("sda"), "it has the WWN of sdd, too");
    EXPECT_EQ(why("sdd"), "it has the WWN of sda, too");
    files.files["/sys/block/sdd/device/wwid"] = "naa.5000c500a1b2c3d5\n";
    EXPECT_EQ(why("sda"), "");
    files.addDrive("sdd", 3);
    files.files["/sys/block/sda/holders/dm-0"] = "";
    EXPECT_EQ(why("sda"), "in use: held by dm-0");
    files.files.erase("/sys/block/sda/holders/dm-0");
    files.files["/sys/block/sda/sda1/partition"] = "1\n";
    EXPECT_EQ(why("sda"), "in use: it has partitions (sda1)");
    files.files.erase("/sys/block/sda/sda1/partition");
    files.faults["/dev/sda"] = "Device or resource busy";
    EXPECT_EQ(why("sda"), "in use: it cannot be opened alone: Device or resource busy");
    files.faults.clear();
    files.drives["sda"].head.clear();
    EXPECT_EQ(why("sda"), "its first and last MiB cannot be read");
    files.drives["sda"].head = superblockHead("srv:data", 'a', 1, 2, 0);
    EXPECT_EQ(why("sda"), "in use: member of the md array srv:data, which does not run");
    files.drives["sda"].head = zeros();
    files.drives["sda"].head[7] = 'x';
    EXPECT_EQ(why("sda"), "in use: it carries unknown data in its first 4 KiB");
    EXPECT_EQ(why("sdb"), "");
}

TEST_F(MdTest, WhatIsNoWholeDriveOfTheMachineIsNotListed) {
    for (const char* const name :
         {"loop0", "ram0", "zram0", "sr0", "dm-0", "md1", "nbd0", "rbd0", "sda1"}) {
        files.addDrive(name, 9);
        EXPECT_EQ(why(name), name == std::string("sda1") ? "" : "not listed") << name;
    }
    files.addDrive("nvme0c0n1", 9);
    files.files["/sys/block/nvme0c0n1/hidden"] = "1\n";
    EXPECT_EQ(why("nvme0c0n1"), "not listed");
}

TEST_F(MdTest, MountsAndSwapAreFollowedToTheirDrives) {
    files.files["/proc/self/mountinfo"] = "20 1 8:0 / /srv/my\\040data rw - ext4 /dev/sda rw\n"
                                          "21 1 0:33 / /pool rw shared:1 - btrfs /dev/sdb rw\n"
                                          "22 1 253:0 / / rw - ext4 /dev/mapper/root rw\n";
    files.files["/sys/block/dm-0/dev"] = "253:0\n";
    files.files["/sys/block/dm-0/slaves/sdc"] = "";
    files.files["/proc/swaps"] = "Filename Type Size Used Priority\n/dev/sdd partition 9 0 -2\n";
    files.addDrive("sdd", 3);
    EXPECT_EQ(why("sda"), "in use: mounted at /srv/my data");
    EXPECT_EQ(why("sdb"), "in use: mounted at /pool");
    EXPECT_EQ(why("sdc"), "in use: it holds the system's root");
    EXPECT_EQ(why("sdd"), "in use: the system swaps to it");
}

TEST_F(MdTest, ALoopDeviceOverADriveUsesIt) {
    files.files["/sys/block/sda/sda1/partition"] = "1\n";
    files.files["/sys/block/loop0/loop/backing_file"] = "/dev/sdb\n";
    files.files["/sys/block/loop1/loop/backing_file"] = "/dev/sda1\n";
    files.files["/sys/block/loop2/loop/backing_file"] = "/srv/sdc\n";
    files.files["/sys/block/loop3/loop/backing_file"] = "\n";
    EXPECT_EQ(why("sdb"), "in use: loop0 is over it");
    EXPECT_EQ(why("sda"), "in use: loop1 is over it");
    EXPECT_EQ(why("sdc"), "");
    files.files["/sys/block/loop2/loop/backing_file"] = "/dev/sdc (deleted)\n";
    EXPECT_EQ(why("sdc"), "in use: loop2 is over it");
}

/// Logical drives of a controller are disks of the system: they are found by their ids.
TEST_F(MdTest, WhatTheSystemUsesALogicalDriveForIsNoted) {
    Facts facts;
    const auto add = [&facts](const char* id, const char* device, const char* uniqueId) {
        LogicalDriveFacts& volume = facts.logicalDrives.emplace_back();
        volume.id = id;
        volume.device = device;
        volume.uniqueId = uniqueId;
    };
    add("239", "/dev/sda", "600AAA01"); // the kernel calls it sdb by now
    add("238", "/dev/sdc", "");         // tells no id
    add("237", "/dev/sdc", "600aaa03"); // is none of this system's
    add("236", "", "");
    add("235", "/dev/sda", "");
    files.files["/sys/block/sdb/device/wwid"] = "naa.600aaa01\n";
    files.files["/sys/block/sdc/device/wwid"] = "naa.600aaa09\n";
    files.files["/sys/block/sdb/sdb1/partition"] = "1\n";
    files.files["/sys/block/sdb/sdb1/dev"] = "8:17\n";
    files.files["/sys/block/sda/holders/dm-0"] = "";
    files.files["/proc/self/mountinfo"] = "20 1 8:17 / /srv rw - ext4 /dev/sdb1 rw\n";
    files.files["/proc/swaps"] = "Filename Type Size Used Priority\n/dev/sdc partition 9 0 -2\n";
    noteUses(files, {}, facts);
    std::string told;
    for (const LogicalDriveFacts& volume : facts.logicalDrives) {
        told += volume.id + " " + volume.device + ": " + volume.usedAs + "\n";
    }
    EXPECT_EQ(told, "239 /dev/sdb: mounted at /srv\n"
                    "238 /dev/sdc: the system swaps to it\n"
                    "237 /dev/sdc: \n"
                    "236 : \n"
                    "235 /dev/sda: held by dm-0\n");
}

/// A pool of drives is mounted by its name: only who opens the device finds that it is taken.
TEST_F(MdTest, WhatIsToBeDeletedIsOpened) {
    Facts facts;
    for (const char* const device : {"/dev/sda", "/dev/sdb", "/dev/sdz"}) {
        facts.logicalDrives.emplace_back().device = device;
    }
    const auto told = [&] {
        std::string text;
        for (const LogicalDriveFacts& volume : facts.logicalDrives) {
            text += volume.device + ": " + volume.usedAs + "\n";
        }
        return text;
    };
    files.files["/proc/self/mountinfo"] = "20 1 0:40 / /srv rw - zfs tank/srv rw\n";
    files.faults["/dev/sda"] = "Device or resource busy";
    files.faults["/dev/sdb"] = "No such file or directory";
    files.faults["/dev/sdz"] = "Device or resource busy"; // is none of this system's
    noteUses(files, {}, facts);
    EXPECT_EQ(told(), "/dev/sda: \n/dev/sdb: \n/dev/sdz: \n");
    noteHolders(files, {}, facts);
    EXPECT_EQ(told(), "/dev/sda: opened by somebody\n/dev/sdb: \n/dev/sdz: \n");
    files.files.erase("/proc/self/mountinfo");
    files.faults.erase("/dev/sda");
    noteHolders(files, {}, facts);
    EXPECT_EQ(told(), "/dev/sda: \n/dev/sdb: whether it is mounted cannot be told\n/dev/sdz: \n");
}

TEST_F(MdTest, WhatBlkidFindsBarsADriveToo) {
    files.files["/usr/sbin/blkid"] = "";
    DiskScan scan;
    scan.files = &files;
    std::uint32_t code = 0;
    scan.run = [&code](const std::vector<std::string>& arguments) -> std::optional<ProgramAnswer> {
        if (arguments[0] != "/usr/sbin/blkid") {
            return std::nullopt;
        }
        EXPECT_EQ(arguments[1], "-p");
        return ProgramAnswer{code, code == 0 ? "DEVNAME=/dev/sda\nTYPE=ufs\n" : ""};
    };
    EXPECT_EQ(listDisks(scan).disks[0].why, "in use: it carries ufs (blkid)");
    code = 8;
    EXPECT_EQ(listDisks(scan).disks[0].why, "in use: it carries several signatures (blkid)");
    code = 2;
    EXPECT_EQ(listDisks(scan).disks[0].why, "");
}

/// A program that fails has found nothing out. A small blkid knows none of the options, and no more
/// than some file systems.
TEST_F(MdTest, AProbeThatFailsDoesNotTellThatNothingIsThere) {
    DiskScan scan;
    scan.files = &files;
    std::map<std::string, std::optional<ProgramAnswer>> programs;
    scan.run = [&programs](const std::vector<std::string>& arguments) {
        return programs.at(arguments.at(0));
    };
    const auto why = [&] { return listDisks(scan).disks.at(0).why; };
    const auto isThere = [&](const char* program, std::optional<ProgramAnswer> answer) {
        files.files[program] = "";
        programs[program] = std::move(answer);
    };
    isThere("/sbin/blkid", ProgramAnswer{4, "error: I/O\n"});
    EXPECT_EQ(why(), "what it carries cannot be told: blkid ended with 4");
    isThere("/sbin/blkid", std::nullopt);
    EXPECT_EQ(why(), "what it carries cannot be told: blkid did not end");
    isThere("/sbin/wipefs", ProgramAnswer{0, ""});
    EXPECT_EQ(why(), "");
    isThere("/sbin/wipefs", ProgramAnswer{0, "{\"signatures\": [{\"type\":\"ufs\"}]}"});
    EXPECT_EQ(why(), "in use: it carries ufs (wipefs)");
    isThere("/sbin/wipefs", ProgramAnswer{1, ""});
    EXPECT_EQ(why(), "what it carries cannot be told: blkid did not end");
    files.files.erase("/sbin/blkid");
    EXPECT_EQ(why(), "what it carries cannot be told: wipefs ended with 1");
    files.files.erase("/sbin/wipefs");
    EXPECT_EQ(why(), "");
    files.drives["sda"].head[500000] = 'x';
    EXPECT_EQ(why(), "in use: it carries unknown data in its first MiB");
    for (const std::uint32_t code : {0U, 1U, 127U}) {
        isThere("/sbin/blkid", ProgramAnswer{code, ""});
        EXPECT_EQ(why(), "in use: it carries unknown data in its first MiB");
    }
    isThere("/sbin/blkid", ProgramAnswer{0, "/dev/sda: UUID=\"1-2\" TYPE=\"minix\"\n"});
    EXPECT_EQ(why(), "in use: it carries minix (blkid)");
    isThere("/sbin/blkid", ProgramAnswer{2, ""});
    EXPECT_EQ(why(), "");
    isThere("/sbin/wipefs", ProgramAnswer{0, "{\"signatures\": [{\"type\":\"ufs\"}]}"});
    EXPECT_EQ(why(), "in use: it carries ufs (wipefs)");
    isThere("/sbin/wipefs", ProgramAnswer{1, ""});
    EXPECT_EQ(why(), "");
}

/// mdadm leaves the bitmap of an array where it was.
TEST(MdSignatures, RemainsOfABitmapAreNoUnknownData) {
    DriveEnds ends{zeros(), zeros(), 3 * gibibyte};
    EXPECT_FALSE(hasUnknownData(ends));
    constexpr std::size_t bitmap = 8192;
    ends.head.replace(bitmap, 4, "bitm");
    put(ends.head, bitmap + 40, 2 * gibibyte / 512, 8);
    put(ends.head, bitmap + 52, std::uint64_t{1} << 26U, 4);
    ends.head.replace(bitmap + 256, 4096 - 256, std::string(4096 - 256, '\xff'));
    EXPECT_FALSE(hasUnknownData(ends));
    ends.head[bitmap + 4096] = 'x';
    EXPECT_TRUE(hasUnknownData(ends));
    put(ends.head, bitmap + 40, 40000 * (std::uint64_t{1} << 26U) / 512, 8);
    EXPECT_FALSE(hasUnknownData(ends)); // of a larger array
    ends.head[bitmap - 1] = 'x';
    EXPECT_TRUE(hasUnknownData(ends));
    ends.head[bitmap - 1] = '\0';
    ends.head[bitmap] = 'x';
    EXPECT_TRUE(hasUnknownData(ends));
}

struct SignatureCase {
    const char* name;
    bool atEnd;
    std::size_t place; ///< from the beginning, or before the end
    std::string bytes;
};

TEST(MdSignatures, AreFoundWhereTheyStand) {
    const std::vector<SignatureCase> cases = {
        {"a GPT partition table", false, 512, "EFI PART"},
        {"a GPT partition table", false, 4096, "EFI PART"},
        {"the second table of a GPT", true, 512, "EFI PART"},
        {"an MBR partition table or boot sector", false, 510, "\x55\xaa"},
        {"ext2, ext3 or ext4", false, 1080, "\x53\xef"},
        {"xfs", false, 0, "XFSB"},
        {"btrfs", false, 65600, "_BHRfS_M"},
        {"LVM2", false, 512, "LABELONE"},
        {"LUKS", false, 0, "LUKS\xba\xbe"},
        {"LUKS", false, 16384, "SKUL\xba\xbe"},
        {"RAID of Intel's firmware (IMSM)", true, 1024, "Intel Raid ISM Cfg Sig. "},
        {"RAID of a controller (DDF)", true, 512, "\xde\x11\xde\x11"},
        {"swap", false, 4086, "SWAPSPACE2"},
        {"swap", false, 65526, "SWAPSPACE2"},
        {"zfs", false, 131072 + 1024, std::string("\x0c\xb1\xba\0\0\0\0\0", 8)},
        {"gfs2", false, 65536, "\x01\x16\x19\x70"},
        {"udf", false, 32769, "BEA01"},
        {"udf", false, 36865, "NSR02"},
        {"udf", false, 34817, "NSR03"},
        {"iso9660", false, 32769, "CD001"},
        {"reiserfs", false, 65588, "ReIsEr2Fs"},
        {"reiser4", false, 65536, "ReIsEr4"},
        {"bcachefs", false, 4120,
         "\xc6\x85\x73\xf6\x66\xce\x90\xa9\xd9\x6a\x60\xcf\x80\x3d\xf7\xef"},
        {"drbd", true, 4036, "\x83\x74\x02\x6d"},
        {"unknown data in its first 4 KiB", false, 4095, "x"},
    };
    for (const SignatureCase& each : cases) {
        DriveEnds ends{zeros(), zeros(), 3 * gibibyte};
        EXPECT_TRUE(signaturesOf(ends).empty());
        std::string& part = each.atEnd ? ends.tail : ends.head;
        part.replace(each.atEnd ? part.size() - each.place : each.place, each.bytes.size(),
                     each.bytes);
        EXPECT_EQ(signaturesOf(ends), std::vector<std::string>{each.name}) << each.place;
    }
}

TEST(MdSignatures, SuperblocksOfEachVersionAreFound) {
    DriveEnds ends{superblockHead("zolex-data", 'a', 5, 3, 1), zeros(), 3 * gibibyte};
    const auto newest = superblockOf(ends);
    ASSERT_TRUE(newest);
    EXPECT_EQ(newest->version, "1.2");
    EXPECT_EQ(newest->name, "zolex-data");
    EXPECT_EQ(newest->uuid, "61616161:61616161:61616161:61616161");
    EXPECT_EQ(newest->level, 5);
    EXPECT_EQ(newest->raidDisks, 3U);
    EXPECT_EQ(newest->chunkBytes, 65536U);
    EXPECT_EQ(newest->role, 1U);
    EXPECT_TRUE(signaturesOf(ends).empty());
    const std::string superblock = ends.head.substr(4096, 1024);
    ends.head = zeros();
    ends.tail.replace(ends.tail.size() - 8192, superblock.size(), superblock);
    EXPECT_EQ(superblockOf(ends)->version, "1.0");
    ends.tail = zeros();
    put(ends.tail, ends.tail.size() - 65536, 0xa92b4efc, 4);
    EXPECT_EQ(superblockOf(ends)->version, "0.90");
    ends.tail = zeros();
    EXPECT_FALSE(superblockOf(ends));
}

TEST(MdCommands, AreWrittenForEachLevel) {
    EXPECT_EQ(createLine(mirror()), mirrorLine);
    VolumeWish wish;
    wish.raidType = "RAID5";
    wish.spans = {{"a", "b", "c"}};
    wish.stripSizeBytes = 65536;
    wish.spares = {"d"};
    EXPECT_EQ(createLine(wish),
              "MD --create /dev/md/zolex-bea92a47 --metadata=1.2 \"--homehost=<none>\" "
              "--name=zolex-bea92a47 --level=5 --raid-devices=3 --chunk=64 --spare-devices=1 "
              "--bitmap=internal /dev/disk/by-id/a /dev/disk/by-id/b /dev/disk/by-id/c "
              "/dev/disk/by-id/d");
    wish.raidType = "RAID1E";
    wish.spares.clear();
    wish.name = "x";
    EXPECT_NE(createLine(wish).find(" --level=10 --raid-devices=3 "), std::string::npos);
    wish.raidType = "RAID0";
    EXPECT_EQ(createLine(wish),
              "MD --create /dev/md/zolex-x --metadata=1.2 \"--homehost=<none>\" --name=zolex-x "
              "--level=0 --raid-devices=3 --chunk=64 /dev/disk/by-id/a /dev/disk/by-id/b "
              "/dev/disk/by-id/c");
    for (const char* const level : {"RAID4", "RAID50", "RAID60", "None", "RAID6", "RAID10"}) {
        wish.raidType = level;
        EXPECT_EQ(createLine(wish), "") << level;
    }
    EXPECT_EQ(deleteLine("zolex-x", "", {"a", "b"}),
              "MD --stop /dev/md/zolex-x --zero-superblock /dev/disk/by-id/a /dev/disk/by-id/b");
    EXPECT_EQ(deleteLine("zolex-x", "3e2f1a00:01234567:89abcdef:00000000", {"a"}),
              "MD --stop /dev/md/zolex-x --uuid=3e2f1a00:01234567:89abcdef:00000000 "
              "--zero-superblock /dev/disk/by-id/a");
    EXPECT_EQ(deleteLine("data", "", {"a"}), "");
}

TEST(MdCommands, DrivesThatDifferTooMuchAreRefusedBeforeMdadmAsks) {
    Facts facts;
    for (const char* const location : {"ata-DISK_S-sda", "ata-DISK_S-sdb"}) {
        DriveFacts& drive = facts.drives.emplace_back();
        drive.location = location;
        drive.capacityBytes = 1000 * gibibyte;
    }
    EXPECT_EQ(whyNoArray(mirror(), facts), "");
    facts.drives[0].capacityBytes = 1011 * gibibyte;
    EXPECT_EQ(whyNoArray(mirror(), facts),
              "its drives differ by more than 1 % (1000.0 GB and 1011.0 GB), which mdadm makes no "
              "array of unless it is forced");
}

/// mdadm keeps a part of each drive, and asks where more than a hundredth of the rest is left.
TEST(MdCommands, ASizeThatMdadmWouldAskAboutIsRefused) {
    constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;
    Facts facts;
    VolumeWish wish;
    wish.spans.emplace_back();
    for (int i = 0; i < 4; ++i) {
        DriveFacts& drive = facts.drives.emplace_back();
        drive.location = "d" + std::to_string(i);
        drive.capacityBytes = 200 * gibibyte;
        wish.spans[0].push_back(drive.location);
    }
    const std::vector<std::pair<std::string, std::uint64_t>> levels = {
        {"RAID1", 1}, {"RAID5", 3}, {"RAID6", 2}, {"RAID10", 2}};
    for (const auto& [raidType, data] : levels) {
        wish.raidType = raidType;
        wish.capacityBytes.reset();
        EXPECT_EQ(whyNoArray(wish, facts), "") << raidType;
        const auto why = [&](std::uint64_t share) {
            wish.capacityBytes = data * share;
            return whyNoArray(wish, facts);
        };
        // 204800 MiB, less 129; of these a hundredth may be left.
        EXPECT_EQ(why(204671 * mebibyte), "") << raidType;
        EXPECT_EQ(why(204672 * mebibyte), "of that size it takes 204672 MB of each drive, where "
                                          "mdadm leaves 204671 MB: FILL takes all")
            << raidType;
        EXPECT_EQ(why(202625 * mebibyte), "") << raidType;
        EXPECT_EQ(
            why(202624 * mebibyte),
            "of that size it takes 202624 MB of each drive, and mdadm makes none of less than "
            "99 % (204671 MB here) unless it is forced: FILL takes all")
            << raidType;
    }
    facts.drives[3].capacityBytes = 201 * gibibyte;
    EXPECT_NE(whyNoArray(wish, facts), "");
    wish.capacityBytes = 2 * (204671 * mebibyte); // of the smaller drive all
    EXPECT_EQ(whyNoArray(wish, facts), "");
    wish.capacityBytes.reset();
    for (DriveFacts& drive : facts.drives) {
        drive.capacityBytes = gibibyte;
    }
    wish.stripSizeBytes = gibibyte;
    EXPECT_EQ(whyNoArray(wish, facts), "a drive of 1.0 GB has no room for a strip of 1.0 GB");
    wish.stripSizeBytes = gibibyte / 2;
    EXPECT_EQ(whyNoArray(wish, facts), "");
}

TEST_F(MdTest, NoLineEverForcesMdadm) {
    for (const std::string word : {"--run", "-R", "--force", "-f", "--assume-clean", "--level=x",
                                   "--name=other", "--bitmap=none", "/dev/sda"}) {
        std::string line = mirrorLine;
        line.insert(line.find(" --level"), " " + word);
        EXPECT_EQ(run(line).exitCode, MdHost::refused) << word;
        EXPECT_EQ(run(mirrorLine + " " + word).exitCode, MdHost::refused) << word;
    }
    for (const char* const line :
         {"MD", "MD --run /dev/md/zolex-a", "MD --stop /dev/md/zolex-a", "MD --stop --scan",
          "MD --zero-superblock /dev/sda", "MD --manage /dev/md/zolex-a --fail /dev/sda",
          "MD --stop /dev/md127 --zero-superblock /dev/disk/by-id/a", "MD --detail /dev/md1",
          "MD --stop /dev/md/zolex-a --uuid=3e2f1a00:01234567:89abcdef --zero-superblock "
          "/dev/disk/by-id/a",
          "MD --stop /dev/md/zolex-a --uuid=3e2f1a00:01234567:89abcdef:0000000g "
          "--zero-superblock /dev/disk/by-id/a",
          "MD --stop /dev/md/zolex-a --uuid=3e2f1a00:01234567:89abcdef:00000000 "
          "--zero-superblock"}) {
        EXPECT_EQ(run(line).exitCode, MdHost::refused) << line;
    }
    EXPECT_TRUE(calls.empty());
    for (const char* const level : {"RAID0", "RAID1", "RAID5", "RAID6", "RAID10", "RAID1E"}) {
        for (std::size_t drives = 2; drives < 9; ++drives) {
            VolumeWish wish;
            wish.raidType = level;
            wish.spans.emplace_back();
            for (std::size_t i = 0; i < drives; ++i) {
                wish.spans[0].push_back("d" + std::to_string(i));
            }
            const std::string line = createLine(wish);
            EXPECT_EQ(line.find("--run"), std::string::npos);
            EXPECT_EQ(line.find("--force"), std::string::npos);
            EXPECT_EQ(line.empty(), !whyNoArray(wish, Facts()).empty());
        }
    }
}

TEST_F(MdTest, MdadmIsStartedForDrivesThatNothingUses) {
    EXPECT_EQ(run(mirrorLine).exitCode, 0U);
    EXPECT_EQ(calls, std::vector<std::string>{
                         "/sbin/mdadm --create /dev/md/zolex-data --metadata=1.2 "
                         "--homehost=<none> --name=zolex-data --level=1 --raid-devices=2 "
                         "--bitmap=internal /dev/sda "
                         "/dev/sdb"});
}

/// What is made is clean before the command ends: the next one finds nothing at work. What fails
/// is not waited for, and that waiting fails is no failure of what was made.
TEST_F(MdTest, WhatIsMadeIsWaitedForUntilItIsClean) {
    files.links["/dev/md/zolex-data"] = "/dev/md127";
    files.files["/run/udev/control"] = "";
    files.files["/usr/bin/udevadm"] = "";
    ChildResult failed;
    failed.outcome = ChildOutcome::ended;
    failed.exitCode = 1;
    ChildResult good = failed;
    good.exitCode = 0;
    answers = {good, good, failed};
    EXPECT_EQ(run(mirrorLine).exitCode, 0U);
    ASSERT_EQ(calls.size(), 3U);
    EXPECT_TRUE(calls[0].starts_with("/sbin/mdadm --create /dev/md/zolex-data ")) << calls[0];
    EXPECT_EQ(calls[1], "/usr/bin/udevadm settle --timeout=10");
    EXPECT_EQ(calls[2], "/sbin/mdadm --wait-clean /dev/md/zolex-data");
    calls.clear();
    answers = {failed};
    EXPECT_EQ(run(mirrorLine).exitCode, 1U);
    EXPECT_EQ(calls.size(), 1U);
    calls.clear();
    files.links.erase("/dev/md/zolex-data"); // there is nothing by this name to wait for
    EXPECT_EQ(run(mirrorLine).exitCode, 0U);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[1], "/usr/bin/udevadm settle --timeout=10");
}

TEST_F(MdTest, MdadmIsNotStartedForADriveThatIsRefused) {
    const MadeUpFiles before = files;
    const std::vector<std::function<void()>> uses = {
        [this] { files.files["/proc/self/mountinfo"] = "1 1 8:16 / /srv rw - ext4 /dev/sdb rw\n"; },
        [this] { files.files["/sys/block/sdb/sdb1/partition"] = "1\n"; },
        [this] { files.files["/proc/swaps"] = "/dev/sdb partition 9 0 -2\n"; },
        [this] { files.drives["sdb"].head.replace(512, 8, "LABELONE"); },
        [this] { files.drives["sdb"].head.replace(0, 4, "LUKS"); },
        [this] { files.drives["sdb"].head = superblockHead("srv:x", 'b', 1, 2, 0); },
        [this] { files.drives["sdb"].head.replace(0, 4, "XFSB"); },
        [this] { files.files["/sys/block/sdb/ro"] = "1\n"; },
        [this] { files.faults["/dev/sdb"] = "Device or resource busy"; },
        [this] { files.links.erase("/dev/disk/by-id/ata-DISK_S-sdb"); },
        [this] { files.drives["sdb"].head = superblockHead("zolex-data", 'b', 1, 2, 0); },
    };
    for (std::size_t i = 0; i < uses.size(); ++i) {
        files = before;
        uses[i]();
        const ChildResult result = run(mirrorLine);
        EXPECT_EQ(result.exitCode, MdHost::refused) << i;
        EXPECT_NE(result.output.find("touched"), std::string::npos) << result.output;
    }
    EXPECT_TRUE(calls.empty());
}

TEST_F(MdTest, WhatIsBusyIsAskedForFiveTimes) {
    ChildResult busy;
    busy.outcome = ChildOutcome::ended;
    busy.exitCode = 2;
    busy.output = "mdadm: cannot open /dev/disk/by-id/x: Device or resource busy\n";
    answers.assign(9, busy);
    EXPECT_EQ(run(mirrorLine).exitCode, 2U);
    EXPECT_EQ(calls.size(), 5U);
    EXPECT_EQ(pauses, 4);
    answers.assign(2, busy);
    EXPECT_EQ(run(mirrorLine).exitCode, 0U);
    EXPECT_EQ(calls.size(), 8U);
}

TEST_F(MdTest, OnlyOurOwnArraysAreStopped) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    const std::string line = "MD --stop /dev/md/zolex-data --zero-superblock "
                             "/dev/disk/by-id/ata-DISK_S-sda /dev/disk/by-id/ata-DISK_S-sdb";
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'b', 1, 2, 1);
    EXPECT_EQ(run(line).output.substr(0, 79),
              "zolexctl: zolex-data is not touched: it is not proved that zolexctl has made it");
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.files["/proc/self/mountinfo"] = "1 1 9:127 / /srv rw - ext4 /dev/md127 rw\n";
    EXPECT_EQ(run(line).output, "zolexctl: zolex-data is not touched: mounted at /srv.\n");
    files.files.erase("/proc/self/mountinfo");
    files.files["/sys/block/md127/holders/dm-1"] = "";
    EXPECT_EQ(run(line).output, "zolexctl: zolex-data is not touched: held by dm-1.\n");
    files.files.erase("/sys/block/md127/holders/dm-1");
    files.drives["sda"].tail.replace(DriveEnds::most - 512, 8, "EFI PART");
    EXPECT_EQ(run(line).output,
              "zolexctl: zolex-data is not touched: ata-DISK_S-sda carries the second table of a "
              "GPT, too. Clear what is on the array first: wipefs --all /dev/md/zolex-data\n");
    files.drives["sda"].tail = zeros();
    EXPECT_TRUE(calls.empty());
    (void)run(line);
    EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --stop /dev/md127"});
}

TEST_F(MdTest, AnArrayStaysWhereADriveOfItServesSomethingElse) {
    const std::string line = "MD --stop /dev/md/zolex-data --zero-superblock "
                             "/dev/disk/by-id/ata-DISK_S-sda /dev/disk/by-id/ata-DISK_S-sdb";
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    const MadeUpFiles before = files;
    const std::vector<std::pair<std::function<void()>, std::string>> uses = {
        {[this] { files.files["/sys/block/sdb/sdb1/partition"] = "1\n"; },
         "it has partitions (sdb1)"},
        {[this] {
             files.files["/proc/self/mountinfo"] = "1 1 8:16 / /srv rw - ext4 /dev/sdb rw\n";
         },
         "mounted at /srv"},
        {[this] { files.files["/sys/block/sdb/holders/dm-0"] = ""; }, "held by dm-0"},
        {[this] { files.faults["/dev/sdb"] = "Device or resource busy"; },
         "it cannot be opened alone: Device or resource busy"},
    };
    for (const auto& [use, why] : uses) {
        files = before;
        use();
        const std::string text = "ata-DISK_S-sdb: in use: " + why;
        EXPECT_EQ(run(line).output, "zolexctl: zolex-data is not touched: " + text + ".\n");
        DiskScan scan;
        scan.files = &files;
        const Facts facts = factsOf(listDisks(scan));
        EXPECT_EQ(facts.logicalDrives.at(0).reportedState, "stopped, " + text);
        EXPECT_EQ(facts.logicalDrives.at(0).health, Health::warning);
        EXPECT_EQ(family().whyNotDeleted(facts.logicalDrives.at(0)), text);
        EXPECT_EQ(family().whyNotUsable(*facts.drive("ata-DISK_S-sdb")), "in use: " + why);
    }
    EXPECT_TRUE(calls.empty());
    files = before;
    (void)run(line);
    EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --zero-superblock "
                                              "/dev/sda "
                                              "/dev/sdb"});
}

/// One that dropped out long ago, and one that was copied, keep what they carry.
TEST_F(MdTest, NoDriveIsZeroedThatIsNotNamed) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.drives["sdc"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    const auto start = machine.start;
    machine.start = [&](const std::vector<std::string>& arguments,
                        std::chrono::milliseconds limit) {
        if (arguments.at(1) == "--stop") {
            std::erase_if(files.files, [](const auto& file) {
                return file.first.find("md127") != std::string::npos;
            });
        }
        return start(arguments, limit);
    };
    EXPECT_EQ(run("MD --stop /dev/md/zolex-data --zero-superblock "
                  "/dev/disk/by-id/ata-DISK_S-sda /dev/disk/by-id/ata-DISK_S-sdb")
                  .exitCode,
              0U);
    EXPECT_EQ(calls, (std::vector<std::string>{"/sbin/mdadm --stop /dev/md127",
                                               "/sbin/mdadm --zero-superblock "
                                               "/dev/sda "
                                               "/dev/sdb"}));
}

TEST_F(MdTest, SparesAreOfTheArrayThatWasJudgedWhereverItsLinkLeads) {
    files.addDrive("sdd", 3);
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.links["/dev/md/zolex-data"] = "/dev/md126"; // somebody's
    EXPECT_EQ(
        run("MD --manage /dev/md/zolex-data --add-spare /dev/disk/by-id/ata-DISK_S-sdd").exitCode,
        0U);
    files.drives["sdd"].head = superblockHead("zolex-data", 'a', 1, 2, 2);
    files.files["/sys/block/md127/md/dev-sdd/state"] = "spare\n";
    files.files["/sys/block/md127/md/dev-sdd/slot"] = "none\n";
    (void)run("MD --manage /dev/md/zolex-data --remove /dev/disk/by-id/ata-DISK_S-sdd");
    EXPECT_EQ(calls, (std::vector<std::string>{"/sbin/mdadm --manage /dev/md127 --add-spare "
                                               "/dev/sdd",
                                               "/sbin/mdadm --manage /dev/md127 --remove "
                                               "/dev/sdd"}));
}

TEST_F(MdTest, AFailedDriveStandsWhereItWas) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.files["/sys/block/md127/md/dev-sdb/state"] = "faulty\n";
    files.files["/sys/block/md127/md/dev-sdb/slot"] = "none\n";
    files.files["/sys/block/md127/md/degraded"] = "1\n";
    DiskScan scan;
    scan.files = &files;
    const Facts facts = factsOf(listDisks(scan));
    EXPECT_EQ(facts.logicalDrives.at(0).reportedState, "degraded");
    EXPECT_EQ(facts.logicalDrives.at(0).spans,
              (std::vector<std::vector<std::string>>{{"ata-DISK_S-sda", "ata-DISK_S-sdb"}}));
    EXPECT_EQ(facts.drive("ata-DISK_S-sdb")->state, DriveState::failed);
}

/// The kernel still lists what was pulled. What is dead says nothing, and takes nothing away.
TEST_F(MdTest, AFailedMemberTakesNoArrayAway) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.files["/sys/block/md127/md/dev-sda/state"] = "faulty\n";
    files.files["/sys/block/md127/md/dev-sda/slot"] = "none\n";
    files.files["/sys/block/md127/md/degraded"] = "1\n";
    files.drives["sda"].head.clear();
    DiskScan scan;
    scan.files = &files;
    const MadeUpFiles dead = files;
    for (const bool isPulled : {false, true}) {
        files = dead;
        if (isPulled) {
            std::erase_if(files.files, [](const auto& file) {
                return file.first.starts_with("/sys/block/sda/");
            });
            std::erase_if(files.links, [](const auto& link) {
                return link.second == "/dev/sda" || link.first.starts_with("/sys/block/sda/");
            });
        }
        const Facts facts = factsOf(listDisks(scan));
        ASSERT_EQ(facts.logicalDrives.size(), 1U);
        const std::string first = isPulled ? "Missing" : "ata-DISK_S-sda";
        EXPECT_EQ(facts.logicalDrives[0].spans,
                  (std::vector<std::vector<std::string>>{{first, "ata-DISK_S-sdb"}}));
        EXPECT_EQ(facts.logicalDrives[0].reportedState, "degraded");
        EXPECT_EQ(family().whyNotDeleted(facts.logicalDrives[0]), "");
        EXPECT_EQ(facts.drive("ata-DISK_S-sdb")->state, DriveState::member);
        EXPECT_EQ(family().whyNotUsable(*facts.drive("ata-DISK_S-sdb")), "");
        if (!isPulled) {
            EXPECT_EQ(facts.drive("ata-DISK_S-sda")->state, DriveState::failed);
        }
        calls.clear();
        (void)run(family().deleteVolume(0, facts.logicalDrives[0]));
        EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --stop /dev/md127"});
    }
}

/// What is at work and cannot say so makes it unsure whose the array is: it is shown, and stays.
TEST_F(MdTest, AMemberAtWorkThatDoesNotSaySoKeepsTheArray) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    DiskScan scan;
    scan.files = &files;
    const MadeUpFiles before = files;
    for (const bool isRead : {false, true}) {
        files = before;
        const std::string why =
            isRead ? "its superblock does not tell of zolex-data" : "it cannot be read";
        const std::string faulty = isRead ? "ata-DISK_S-sdb" : "ata-DISK_S-sda";
        const std::string good = isRead ? "ata-DISK_S-sda" : "ata-DISK_S-sdb";
        if (isRead) {
            files.drives["sdb"].head = superblockHead("zolex-data", 'b', 1, 2, 1);
        } else {
            files.drives["sda"].head.clear();
        }
        const DiskList list = listDisks(scan);
        EXPECT_FALSE(list.arrays.at(0).isOurs);
        EXPECT_EQ(diskListFrom(toText(list)), list);
        const Facts facts = factsOf(list);
        ASSERT_EQ(facts.logicalDrives.size(), 1U);
        EXPECT_EQ(facts.logicalDrives[0].reportedState, "active, " + faulty + ": " + why);
        EXPECT_EQ(facts.logicalDrives[0].health, Health::warning);
        EXPECT_EQ(family().whyNotDeleted(facts.logicalDrives[0]), faulty + ": " + why);
        EXPECT_EQ(family().whyNotUsable(*facts.drive(faulty)), why);
        EXPECT_EQ(family().whyNotUsable(*facts.drive(good)), "");
        EXPECT_EQ(facts.drive(good)->state, DriveState::member);
        EXPECT_EQ(run("MD --stop /dev/md/zolex-data --zero-superblock "
                      "/dev/disk/by-id/ata-DISK_S-sda /dev/disk/by-id/ata-DISK_S-sdb")
                      .exitCode,
                  MdHost::refused);
    }
    // A partition is no drive of ours, and such an array is shown by its drives alone.
    files = before;
    files.files["/sys/block/md127/md/dev-sdc1/state"] = "in_sync\n";
    files.files["/sys/block/md127/md/dev-sdc1/slot"] = "1\n";
    files.files["/sys/block/sdc/sdc1/partition"] = "1\n";
    EXPECT_TRUE(factsOf(listDisks(scan)).logicalDrives.empty());
    EXPECT_TRUE(calls.empty());
}

TEST_F(MdTest, OurArraysAreLogicalDrivesAndOthersBarTheirDrives) {
    files.addDrive("sdd", 3);
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.addArray("md126", "raid1", {"sdc", "sdd"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.drives["sdc"].head = superblockHead("srv:old", 'b', 1, 2, 0);
    files.drives["sdd"].head = superblockHead("srv:old", 'b', 1, 2, 1);
    DiskScan scan;
    scan.files = &files;
    const DiskList list = listDisks(scan);
    EXPECT_EQ(diskListFrom(toText(list)), list);
    const Facts facts = factsOf(list);
    ASSERT_EQ(facts.logicalDrives.size(), 1U);
    const LogicalDriveFacts& volume = facts.logicalDrives[0];
    EXPECT_EQ(volume.id, "zolex-data");
    EXPECT_EQ(volume.name, "data");
    EXPECT_EQ(volume.raidType, "RAID1");
    EXPECT_EQ(volume.reportedState, "active");
    EXPECT_EQ(volume.spans,
              (std::vector<std::vector<std::string>>{{"ata-DISK_S-sda", "ata-DISK_S-sdb"}}));
    EXPECT_EQ(facts.drive("ata-DISK_S-sda")->state, DriveState::member);
    EXPECT_EQ(facts.drive("ata-DISK_S-sdc")->barred, "in use: member of the md array srv:old");
    EXPECT_EQ(family().whyNotUsable(*facts.drive("ata-DISK_S-sda")), "");
    EXPECT_NE(family().whyNotUsable(*facts.drive("ata-DISK_S-sdc")), "");
}

/// Hosts are numbered as their modules are loaded, and serial numbers are any.
TEST_F(MdTest, DrivesAreCountedByThePlaceOfTheirAdapter) {
    const auto putAt = [this](const std::string& name, const std::string& place) {
        files.links["/sys/block/" + name + "/device"] = "/sys/devices/pci0000:00/" + place;
    };
    files.addDrive("sdd", 3);
    files.addDrive("nvme0n1", 4);
    putAt("sda", "0000:0a:00.0/host7/target7:0:10/7:0:10:0");
    putAt("sdb", "0000:10:00.0/host2/target2:0:0/2:0:0:0");
    putAt("sdc", "0000:0a:00.0/host7/target7:0:9/7:0:9:0");
    putAt("sdd", "10000:00:01.0/host1/target1:0:0/1:0:0:0");
    putAt("nvme0n1", "0000:00:06.0/0000:0b:00.0/nvme/nvme0");
    DiskScan scan;
    scan.files = &files;
    FamilyController controller;
    controller.facts = factsOf(listDisks(scan));
    std::string counted;
    for (const MachineDrive& drive : familySnapshot(family(), controller, 1).drives) {
        counted += std::to_string(drive.policyNumber.value_or(0)) + " " +
                   drive.facts.location.substr(drive.facts.location.rfind('-') + 1) + "\n";
    }
    EXPECT_EQ(counted, "1 sdc\n2 sda\n3 nvme0n1\n4 sdb\n5 sdd\n");
}

/// A stick shifts no number, wherever its adapter is; units of a target come in their order.
TEST_F(MdTest, WhatIsPluggedInForAWhileIsCountedLast) {
    const auto putAt = [this](const std::string& name, const std::string& place) {
        files.links["/sys/block/" + name + "/device"] = "/sys/devices/pci0000:00/" + place;
    };
    for (const char* const name : {"sdd", "sde", "sdf", "sdg"}) {
        files.addDrive(name, name[2] - 'a');
    }
    putAt("sda", "0000:00:09.0/host2/target2:0:7/2:0:7:1");
    putAt("sdb", "0000:00:09.0/host2/target2:1:0/2:1:0:0");
    putAt("sdc", "0000:00:09.0/host2/target2:0:7/2:0:7:0");
    putAt("sdd", "0000:00:01.0/usb2/2-1/2-1:1.0/host6/target6:0:0/6:0:0:0");
    putAt("sde", "0000:00:01.0/usb2/2-1/2-1.4/2-1.4:1.0/host5/target5:0:0/5:0:0:0");
    putAt("sdf", "0000:00:02.0/host4/target4:0:0/4:0:0:0");
    files.files["/sys/block/sdf/removable"] = "1\n";
    putAt("sdg", "0000:00:0a.0/host1/target1:0:0/1:0:0:0");
    DiskScan scan;
    scan.files = &files;
    const DiskList list = listDisks(scan);
    std::string counted;
    for (const ListedDisk& disk : list.disks) {
        counted += disk.name + " " + disk.function + "\n";
    }
    EXPECT_EQ(counted, "sdc 0000:00:09.0\nsda 0000:00:09.0\nsdb 0000:00:09.0\n"
                       "sdg 0000:00:0a.0\n"
                       "sde 0000:00:01.0\nsdd 0000:00:01.0\nsdf 0000:00:02.0\n");
    EXPECT_EQ(diskListFrom(toText(list)), list);
}

TEST_F(MdTest, StatesComeFromTheKernel) {
    files.addArray("md127", "raid5", {"sda", "sdb", "sdc"});
    unsigned role = 0;
    for (const char* const name : {"sda", "sdb", "sdc"}) {
        files.drives[name].head = superblockHead("zolex-data", 'a', 5, 3, role++);
    }
    const auto facts = [this] {
        DiskScan scan;
        scan.files = &files;
        return factsOf(listDisks(scan));
    };
    const std::string member = "/sys/block/md127/md/dev-sdc/";
    // As it is right after it was made.
    files.files[member + "state"] = "spare\n";
    files.files["/sys/block/md127/md/degraded"] = "1\n";
    files.files["/sys/block/md127/md/sync_action"] = "recover\n";
    EXPECT_EQ(facts().logicalDrives[0].reportedState, "recovering");
    EXPECT_EQ(facts().logicalDrives[0].health, Health::ok);
    EXPECT_EQ(facts().drives[2].state, DriveState::rebuilding);
    files.files[member + "state"] = "faulty\n";
    files.files[member + "slot"] = "none\n";
    EXPECT_EQ(facts().logicalDrives[0].reportedState, "degraded");
    EXPECT_EQ(facts().drives[2].state, DriveState::failed);
    EXPECT_EQ(facts().logicalDrives[0].spans[0][2], "ata-DISK_S-sdc");
    files.files[member + "state"] = "spare\n";
    EXPECT_EQ(facts().drives[2].hotspare, HotspareKind::dedicated);
    EXPECT_EQ(facts().drives[2].covers, std::vector<std::string>{"zolex-data"});
}

/// Without its journal an array is lost: neither it nor its drives are ever planned on.
TEST_F(MdTest, AnArrayWithAWriteJournalStaysAsItIs) {
    files.addArray("md127", "raid5", {"sda", "sdb", "sdc"});
    unsigned role = 0;
    for (const char* const name : {"sda", "sdb", "sdc", "sdd", "sde"}) {
        if (role > 2) {
            files.addDrive(name, static_cast<int>(role));
            files.files[std::string("/sys/block/md127/md/dev-") + name + "/state"] = "spare\n";
            files.files[std::string("/sys/block/md127/md/dev-") + name + "/slot"] = "none\n";
        }
        std::string& head = files.drives[name].head;
        head = superblockHead("zolex-data", 'a', 5, 3, role++);
        put(head, 4096 + 8, 512, 4);
        put(head, 4096 + 256 + 2 * 3, 0xfffd, 2);
    }
    files.files["/sys/block/md127/md/dev-sdd/state"] = "journal,in_sync\n";
    files.files["/sys/block/md127/md/dev-sdd/slot"] = "journal\n";
    const std::string journal = "ata-DISK_S-sdd";
    const std::string removal = "MD --manage /dev/md/zolex-data --remove /dev/disk/by-id/";
    for (const bool runs : {true, false}) {
        if (!runs) {
            std::erase_if(files.files, [](const auto& file) {
                return file.first.find("md127") != std::string::npos;
            });
        }
        DiskScan scan;
        scan.files = &files;
        const DiskList list = listDisks(scan);
        EXPECT_EQ(diskListFrom(toText(list)), list);
        const Facts facts = factsOf(list);
        ASSERT_EQ(facts.logicalDrives.size(), 1U) << runs;
        EXPECT_EQ(family().whyNotDeleted(facts.logicalDrives[0]), "it has a write journal");
        EXPECT_EQ(family().deleteVolume(0, facts.logicalDrives[0]), "");
        EXPECT_EQ(facts.drive("ata-DISK_S-sda")->state, DriveState::member);
        EXPECT_EQ(facts.drive(journal)->state, DriveState::jbod);
        EXPECT_EQ(family().whyNotUsable(*facts.drive(journal)),
                  "in use: write journal of the md array zolex-data");
        EXPECT_EQ(family().whyNotUsable(*facts.drive("ata-DISK_S-sde")),
                  "in use: hot spare of the md array zolex-data");
        for (const char* const drive : {"ata-DISK_S-sdd", "ata-DISK_S-sde"}) {
            EXPECT_EQ(run(removal + drive).exitCode, MdHost::refused) << runs;
        }
        EXPECT_EQ(run(deleteLine("zolex-data", "",
                                 {"ata-DISK_S-sda", "ata-DISK_S-sdb", "ata-DISK_S-sdc"}))
                      .exitCode,
                  MdHost::refused);
    }
    EXPECT_TRUE(calls.empty());
}

/// What a superblock tells of its own drive is kept apart.
TEST(MdSignatures, PartsOfAnArrayAreToldApart) {
    const std::vector<std::pair<std::uint64_t, Superblock::Part>> parts = {
        {2, Superblock::Part::member},       {0xffff, Superblock::Part::spare},
        {0xfffd, Superblock::Part::journal}, {0xfffe, Superblock::Part::faulty},
        {3, Superblock::Part::faulty},
    };
    for (const auto& [role, part] : parts) {
        DriveEnds ends{superblockHead("zolex-data", 'a', 5, 3, 4), zeros(), 3 * gibibyte};
        put(ends.head, 4096 + 256 + 2 * 4, role, 2);
        EXPECT_EQ(superblockOf(ends)->part, part) << role;
        EXPECT_EQ(superblockOf(ends)->role.has_value(), part == Superblock::Part::member);
    }
}

/// What dropped out of an array that does not run says that it is in it: those that were written
/// later know better.
TEST_F(MdTest, OfAnArrayThatDoesNotRunTheFreshestSuperblockIsBelieved) {
    constexpr std::size_t eventsAt = 4096 + 200;
    constexpr std::size_t rolesAt = 4096 + 256;
    const auto make = [this](const std::string& name, unsigned device, std::uint64_t events) {
        std::string& head = files.drives[name].head;
        head = superblockHead("zolex-data", 'a', 1, 2, device);
        put(head, eventsAt, events, 8);
    };
    const auto told = [this] {
        DiskScan scan;
        scan.files = &files;
        const Facts facts = factsOf(listDisks(scan));
        std::string text = facts.logicalDrives.at(0).reportedState + ":";
        for (const DriveFacts& drive : facts.drives) {
            text +=
                " " + drive.location.substr(drive.location.size() - 3) + " " + drive.reportedState;
        }
        for (const std::string& drive : facts.logicalDrives.at(0).drives()) {
            text += " " + drive.substr(drive.size() - 3);
        }
        return text;
    };
    make("sda", 0, 17);
    make("sdb", 1, 18); // one may be a step behind
    EXPECT_EQ(told(), "stopped: sda in_sync sdb in_sync sdc free sda sdb");
    make("sdb", 1, 15);
    EXPECT_EQ(told(), "degraded: sda in_sync sdb removed sdc free sda sdb");
    // A spare took its place.
    make("sdc", 2, 17);
    for (const char* const name : {"sda", "sdc"}) {
        put(files.drives[name].head, rolesAt + 2, 0xfffe, 2);
        put(files.drives[name].head, rolesAt + 4, 1, 2);
    }
    EXPECT_EQ(told(), "stopped: sda in_sync sdb removed sdc in_sync sda sdc");
    // It dropped out with the last events: the others list it no more.
    make("sdb", 1, 17);
    EXPECT_EQ(told(), "stopped: sda in_sync sdb removed sdc in_sync sda sdc");
    const std::string line = deleteLine("zolex-data", "", {"ata-DISK_S-sda", "ata-DISK_S-sdc"});
    EXPECT_EQ(run(line).exitCode, 0U);
    EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --zero-superblock "
                                              "/dev/sda "
                                              "/dev/sdc"});
    // A copy of a member.
    files.drives["sdb"].head = files.drives["sda"].head;
    EXPECT_EQ(told(), "stopped: sda in_sync sdb removed sdc in_sync sda sdc");
    put(files.drives["sdb"].head, eventsAt, 18, 8);
    EXPECT_EQ(told(), "stopped: sda removed sdb in_sync sdc in_sync sdb sdc");
}

/// mdadm was cut off before the superblock of a spare was zeroed.
TEST_F(MdTest, ASpareThatWasRemovedAndNotClearedIsClearedLater) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    unsigned role = 0;
    for (const char* const name : {"sda", "sdb", "sdc"}) {
        files.drives[name].head = superblockHead("zolex-data", 'a', 1, 2, role++);
    }
    const std::string spare = "ata-DISK_S-sdc";
    const auto look = [this] {
        DiskScan scan;
        scan.files = &files;
        return factsOf(listDisks(scan));
    };
    const DriveFacts told = *look().drive(spare);
    EXPECT_EQ(told.state, DriveState::hotspare);
    EXPECT_EQ(told.reportedState, "removed spare");
    EXPECT_EQ(told.health, Health::warning);
    EXPECT_EQ(told.covers, std::vector<std::string>{"zolex-data (removed)"});
    const std::string line = family().removeSpare(0, spare, told.covers);
    EXPECT_EQ(line, removeSpareLine("zolex-data", spare));
    EXPECT_EQ(run(line).exitCode, 0U);
    EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --zero-superblock /dev/sdc"});
    // One that was a member is none, and stays.
    calls.clear();
    put(files.drives["sdc"].head, 4096 + 160, 1, 4);
    EXPECT_EQ(look().drive(spare)->state, DriveState::failed);
    EXPECT_EQ(run(line).exitCode, MdHost::refused);
    EXPECT_TRUE(calls.empty());
}

/// Of an array whose members are gone the spares go with what is left of it.
TEST_F(MdTest, SparesOfWhichTheMembersAreGoneAreNamed) {
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 5, 3, 3);
    files.drives["sdc"].head = superblockHead("zolex-data", 'a', 5, 3, 4);
    DiskScan scan;
    scan.files = &files;
    const Facts facts = factsOf(listDisks(scan));
    ASSERT_EQ(facts.logicalDrives.size(), 1U);
    EXPECT_EQ(facts.logicalDrives[0].health, Health::critical);
    EXPECT_EQ(facts.drive("ata-DISK_S-sdb")->state, DriveState::failed);
    const std::string line = family().deleteVolume(0, facts.logicalDrives[0]);
    EXPECT_NE(line.find(" --zero-superblock /dev/disk/by-id/ata-DISK_S-sdb "
                        "/dev/disk/by-id/ata-DISK_S-sdc"),
              std::string::npos)
        << line;
    EXPECT_EQ(run(line).exitCode, 0U);
    EXPECT_EQ(calls.size(), 1U);
}

/// udev, or somebody, makes the link of a drive anew while mdadm is being started.
TEST_F(MdTest, DrivesAreThoseThatWereJudgedWhereverTheirLinksLead) {
    const MadeUpFiles before = files;
    const auto start = machine.start;
    machine.start = [&](const std::vector<std::string>& arguments,
                        std::chrono::milliseconds limit) {
        files.links["/dev/disk/by-id/ata-DISK_S-sdb"] = "/dev/sdc"; // somebody's
        return start(arguments, limit);
    };
    EXPECT_EQ(run(mirrorLine).exitCode, 0U);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_TRUE(calls[0].ends_with(" --bitmap=internal /dev/sda /dev/sdb")) << calls[0];
    calls.clear();
    files = before;
    unsigned role = 0;
    for (const char* const name : {"sda", "sdb"}) {
        files.drives[name].head = superblockHead("zolex-data", 'a', 1, 2, role++);
    }
    EXPECT_EQ(run(deleteLine("zolex-data", "", {"ata-DISK_S-sda", "ata-DISK_S-sdb"})).exitCode, 0U);
    EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --zero-superblock /dev/sda /dev/sdb"});
}

/// The array is stopped, and meanwhile a drive is made one of another array of ours.
TEST_F(MdTest, NoSuperblockOfAnotherArrayIsZeroed) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    files.drives["sdc"].head = superblockHead("zolex-data", 'a', 1, 2, 2);
    files.files["/sys/block/md127/md/dev-sdc/state"] = "spare\n";
    files.files["/sys/block/md127/md/dev-sdc/slot"] = "none\n";
    const auto start = machine.start;
    machine.start = [&](const std::vector<std::string>& arguments,
                        std::chrono::milliseconds limit) {
        std::erase_if(files.files, [](const auto& file) {
            return file.first.find("md127/md/dev-sdc") != std::string::npos;
        });
        files.drives["sdc"].head = superblockHead("zolex-other", 'b', 1, 2, 2);
        return start(arguments, limit);
    };
    const ChildResult result = run(removeSpareLine("zolex-data", "ata-DISK_S-sdc"));
    EXPECT_EQ(result.exitCode, MdHost::refused);
    EXPECT_EQ(result.output, "zolexctl: ata-DISK_S-sdc is not touched: its superblock tells of "
                             "another array.\n");
    EXPECT_EQ(calls, std::vector<std::string>{"/sbin/mdadm --manage /dev/md127 --remove /dev/sdc"});
}

/// A machine whose answers are those of a host over files that are made up.
class HostPlatform : public Platform {
  public:
    HostPlatform(const FamilyMachine& machine, DiskFiles& files) : host_(machine, &files) {}
    std::vector<std::string> lines;

    Console& console() override { throw std::logic_error("console"); }
    FileSystem& files() override { throw std::logic_error("files"); }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { throw std::logic_error("bus"); }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return {}; }
    ChildResult runChild(std::string_view line, bool, std::chrono::milliseconds limit) override {
        lines.emplace_back(line);
        return host_.run(line, limit);
    }

  private:
    MdHost host_;
};

TEST_F(MdTest, NothingIsRunUnlessItIsAskedForByName) {
    HostPlatform platform(machine, files);
    FamilyRequest request;
    EXPECT_TRUE(family().capture(platform, request).controllers.empty());
    EXPECT_TRUE(platform.lines.empty());
    EXPECT_TRUE(calls.empty());
    request.isAskedFor = true;
    const FamilyCapture capture = family().capture(platform, request);
    ASSERT_EQ(capture.controllers.size(), 1U);
    EXPECT_EQ(capture.controllers[0].model, "LINUX-MD");
    EXPECT_EQ(capture.controllers[0].facts.drives.size(), 3U);
    EXPECT_EQ(platform.lines, (std::vector<std::string>{"MD drives", "MD --version"}));
}

TEST_F(MdTest, AnArrayOfWhichMdadmTellsOtherwiseIsNotDeleted) {
    files.addArray("md127", "raid1", {"sda", "sdb"});
    files.drives["sda"].head = superblockHead("zolex-data", 'a', 1, 2, 0);
    files.drives["sdb"].head = superblockHead("zolex-data", 'a', 1, 2, 1);
    HostPlatform platform(machine, files);
    FamilyRequest request;
    request.isAskedFor = true;
    ChildResult version;
    version.outcome = ChildOutcome::ended;
    version.output = "mdadm - v4.2\n";
    ChildResult detail = version;
    const auto deleting = [&] {
        answers = {version, detail};
        const FamilyCapture capture = family().capture(platform, request);
        return family().deleteVolume(0, capture.controllers.at(0).facts.logicalDrives.at(0));
    };
    detail.output = "MD_UUID=61616161:61616161:61616161:61616161\nMD_NAME=zolex-data\n";
    EXPECT_EQ(deleting(), "MD --stop /dev/md/zolex-data "
                          "--uuid=61616161:61616161:61616161:61616161 --zero-superblock "
                          "/dev/disk/by-id/ata-DISK_S-sda /dev/disk/by-id/ata-DISK_S-sdb");
    detail.output = "MD_UUID=61616161:61616161:61616161:61616161\nMD_NAME=srv:data\n";
    EXPECT_EQ(deleting(), "");
    EXPECT_EQ(calls.back(), "/sbin/mdadm --detail --export /dev/md127");
}

TEST(MdFamily, IsAskedForByNameAlone) {
    EXPECT_TRUE(family().isOptIn());
    EXPECT_TRUE(family().isReading("MD drives"));
    EXPECT_TRUE(family().isReading("MD --detail --export /dev/md127"));
    EXPECT_FALSE(family().isReading(mirrorLine));
    EXPECT_FALSE(family().isReading("MD --detail --export /dev/md127 --run"));
    FamilyMachine machine;
    EXPECT_EQ(MdHost(machine, nullptr).run("MD drives", std::chrono::seconds(1)).output,
              "zolexctl: md is a part of Linux, and this is another system.\n");
}

TEST(MdFamily, TellsWhatMdadmWouldHaveAsked) {
    const FamilyVerdict verdict = family().judge(
        mirrorLine, 1,
        "mdadm: /dev/sdb appears to contain an ext2fs file system\n       size=1K  mtime=now\n"
        "Continue creating array? mdadm: create aborted.\n");
    EXPECT_FALSE(verdict.isDone);
    EXPECT_EQ(verdict.why, "mdadm: /dev/sdb appears to contain an ext2fs file system");
    EXPECT_NE(verdict.help.at(0).find("wipefs"), std::string::npos);
    const FamilyVerdict small = family().judge(
        mirrorLine, 1,
        "mdadm: largest drive (/dev/disk/by-id/a) exceeds size (102400000K) by more than 1%\n"
        "Continue creating array? mdadm: create aborted.\n");
    EXPECT_EQ(small.help.at(0), "mdadm would go on only if it were forced to; take the drives "
                                "whole: FILL as the size");
    EXPECT_TRUE(family().judge(mirrorLine, 0, "").isDone);
    EXPECT_EQ(family().judge(mirrorLine, 2, "").why, "mdadm ended with 2");
}

TEST(MdList, TextsThatAreNoneGiveNothing) {
    EXPECT_FALSE(diskListFrom(""));
    EXPECT_FALSE(diskListFrom("{}"));
    EXPECT_FALSE(diskListFrom(std::string(100, '[')));
    const auto odd = diskListFrom(R"({"kind":"zolexctl drives of Linux","drives":[1,{"bytes":-1,)"
                                  R"("target":1e9,"channel":99999999999}],"arrays":7})");
    ASSERT_TRUE(odd);
    EXPECT_EQ(odd->disks.size(), 2U);
    EXPECT_EQ(odd->disks[1], ListedDisk());
}

} // namespace

} // namespace zolex::companion::md
