// Arrays of Linux itself, as a machine recorded them: for machines on which there are none.

#include "companion/commands/Commands.h"
#include "companion/recording/RecordedRuns.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace zolex::companion {
namespace {

using namespace test;

constexpr const char* policies = "[Policy.md]\n"
                                 "AppliesTo.1 = t:MD\n"
                                 "StripeSize = 64\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array_Defaults = 0%:0\n"
                                 "Array.A = 1,2,3\n"
                                 "Array.B = 4,5\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:5\n"
                                 "Logical.2 = B:FILL:1\n";

struct LinuxMd : testing::Test {
    TemporaryDirectory folder;
    Elsewhere system;

    LinuxMd() {
        std::ifstream in(ZOLEX_TEST_DATA "/linux-md.zrec", std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        folder.write("md.zrec", content.str());
        folder.write("md.ini", policies);
    }

    Context context(bool asks) {
        Context context = contextOf(system);
        context.machine.recording = "md.zrec";
        if (asks) {
            context.machine.families = {"MD"};
        }
        return context;
    }
    Seen shown(bool asks) {
        Context looking = context(asks);
        return seen(system, [&] { return show(looking, {}); });
    }
    Seen compared(bool asks) {
        Context looking = context(asks);
        DiffOptions options;
        options.file = "md.ini";
        return seen(system, [&] { return diff(looking, options); });
    }
    Seen planned(bool asks, const char* file = "md.ini") {
        Context looking = context(asks);
        PlanOptions options;
        options.file = file;
        return seen(system, [&] { return plan(looking, options); });
    }
};

TEST_F(LinuxMd, IsShown) {
    const Seen seen = shown(true);
    EXPECT_EQ(seen.exitCode, 0);
    EXPECT_EQ(seen.output, R"(Machine 8837, serial KQ10Z7V
Controller 1  Linux md (LINUX-MD)
              firmware mdadm - v4.2 - 2021-12-30 - Debian 4.2-5
              levels 0 1 1E 5 6 10, strip 4-1048576 KB
  Channel 0
    no  location              size  drive               state               in
     1  scsi-0QEMU_KA71001X  20 MB  QEMU HARDDISK 001X  in_sync             A
     2  scsi-0QEMU_KA71002X  20 MB  QEMU HARDDISK 002X  faulty              A
     3  scsi-0QEMU_KA71003X  20 MB  QEMU HARDDISK 003X  in_sync             A
     4  scsi-0QEMU_KA71004X  20 MB  QEMU HARDDISK 004X  in_sync             B
     5  scsi-0QEMU_KA71005X  20 MB  QEMU HARDDISK 005X  in_sync             B
     6  scsi-0QEMU_KA71006X  20 MB  QEMU HARDDISK 006X  in use: it carr...  JBOD
     7  scsi-0QEMU_KA71007X  20 MB  QEMU HARDDISK 007X  free                free
  A  scsi-0QEMU_KA71001X scsi-0QEMU_KA71002X scsi-0QEMU_KA71003X
     LD zolex-38136987  RAID5  38 MB  degraded  64 KB
  B  scsi-0QEMU_KA71004X scsi-0QEMU_KA71005X
     LD zolex-a2fddb5a  RAID1  19 MB  active
  x  scsi-0QEMU_KA71002X
     faulty, serial KA71002X, of array A
  =  scsi-0QEMU_KA71006X
     in use: it carries swap
  .  scsi-0QEMU_KA71007X
     1 free drive, 20 MB
)");
    EXPECT_TRUE(system.children.empty());
}

TEST_F(LinuxMd, IsComparedWithItsPolicies) {
    const Seen seen = compared(true);
    EXPECT_EQ(seen.exitCode, 0) << seen.error;
    EXPECT_EQ(seen.output,
              R"(Controller 1  LINUX-MD  Policy.md (md.ini:1)                                same
  = the same layout
  ! LD zolex-38136987 is degraded: scsi-0QEMU_KA71002X failed

The controller is as the policies say.
)");
    EXPECT_TRUE(system.children.empty());
}

TEST_F(LinuxMd, ADriveInUseIsNotPlannedWith) {
    folder.write("swap.ini", "[Policy.md]\nAppliesTo.1 = t:LINUX-MD\nArray_Mode = CUSTOM\n"
                             "Array_Defaults = 0%:0\nArray.A = 6,7\nLogical_Mode = CUSTOM\n"
                             "Logical.1 = A:FILL:1\n");
    const Seen seen = planned(true, "swap.ini");
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_NE(seen.output.find("Array.A names scsi-0QEMU_KA71006X: in use: it carries swap"),
              std::string::npos)
        << seen.output;
}

TEST_F(LinuxMd, IsNotLookedAtUnlessItIsAskedFor) {
    const Seen seen = shown(false);
    EXPECT_EQ(seen.output.find("MD"), std::string::npos) << seen.output;
    const std::string why =
        "error: no supported RAID controller was found; Policy.md is for t:MD, and the arrays of "
        "Linux itself are looked at only where --family md asks for them\n";
    EXPECT_EQ(planned(false).error,
              why + "  help: zolexctl plan md.ini --recording md.zrec --family md\n");
    EXPECT_EQ(planned(false).exitCode, 2);
    EXPECT_EQ(compared(false).error,
              why + "  help: zolexctl diff md.ini --recording md.zrec --family md\n");
    EXPECT_EQ(compared(false).exitCode, 2);
}

#ifdef _WIN32
TEST_F(LinuxMd, IsNoPartOfWindows) {
    Context looking = contextOf(system);
    looking.machine.families = {"MD"};
    const Seen seen = test::seen(system, [&] { return show(looking, {}); });
    EXPECT_EQ(seen.exitCode, 2);
    EXPECT_EQ(seen.error, "error: --family md: md is a part of Linux, and this is Windows\n"
                          "  help: look at a recording of a Linux machine: --recording FILE\n");
    EXPECT_TRUE(system.children.empty());
}
#endif

} // namespace
} // namespace zolex::companion
