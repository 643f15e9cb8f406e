#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto error = Severity::error;
constexpr auto warning = Severity::warning;
constexpr auto note = Severity::note;
constexpr auto nobody = RefusedBy::nobody;

/// Group 9, by id: style, and from ZX950 on what convert drops or refuses between policies and the
/// RAID configuration of OpenStack's Ironic, which no check of a policies file finds.
// clang-format off
constexpr std::array<Rule, 12> rows = {{
    {"ZX901", note, nobody, "blanks at the end of a line",
     "zolex trims them. They are of no use, and a tab that stands alone on a line makes "
     "zolex refuse the file.",
     "zolexctl check --fix FILE takes them out and changes nothing else in those lines."},
    {"ZX902", note, nobody, "a keyword in unusual letter case",
     "zolex takes keywords in any letter case. One way of writing them makes a file easier "
     "to search.",
     "zolexctl check --fix FILE writes it as usual:"
     "\n  Hotspares = 8"},
    {"ZX950", error, nobody, "a RAID level that the other side has not",
     "Ironic has the levels JBOD, 0, 1, 2, 5, 6, 1+0, 5+0 and 6+0, and policies have 0, 1, 1E, 5, "
     "5E, 5EE, 6, 10, 50, 60 and VOLUME. A logical drive of another level would be another one: "
     "nothing is written.",
     "Take a level that both have, and that takes so many drives. Of two drives that is a mirror:"
     "\n  \"raid_level\": \"1\""},
    {"ZX951", warning, nobody, "a hint for the choice of drives is left out",
     "disk_type and interface_type are hints by which Ironic chooses drives. Policies for zolex "
     "name drives and do not ask for kinds. Without a recording the hint is lost; with one the "
     "drives are chosen by it, once.",
     "Have the drives of the server chosen:"
     "\n  zolexctl convert --from ironic node.json --machine server.zrec -o site.ini"},
    {"ZX952", warning, nobody, "the name of a volume, or which one is the root, is left out",
     "Policies neither name a logical drive nor say from which one the system starts.",
     "Keep volume_name and is_root_volume where the node is described. The order of the logical "
     "drives stays."},
    {"ZX953", error, nobody, "software RAID",
     "The controller \"software\", and drives that are told by objects with hints, ask for RAID by "
     "the operating system. No RAID controller makes it, and no policy can say it: nothing is "
     "written.",
     "Take these logical disks out of the file, or name a controller and its drives:"
     "\n  \"controller\": \"LSI-MegaRAID-8480\", \"physical_disks\": [\"32:0\", \"32:1\"]"},
    {"ZX954", error, nobody, "drives that cannot be found, or not so many",
     "A drive is known by its location, as zolexctl show tells it, or by its number in policies. A "
     "name that only a driver of Ironic knows could be any drive: nothing is written.",
     "Look at the drives, and name them so:\n  zolexctl show server.zrec\n"
     "  zolexctl convert --from ironic node.json --machine server.zrec -o site.ini"},
    {"ZX955", error, nobody, "logical disks that share drives",
     "Logical disks on the same drives need share_physical_disks, and a utility that makes more "
     "than one logical drive on an array; most refuse the second, or make the first alone. Drives "
     "that are shared in part make no array anywhere. Nothing is written.",
     "Give each logical disk drives of its own, or make one of them."},
    {"ZX956", note, nobody, "a size is written otherwise",
     "Ironic has sizes in whole GiB, policies in MB. From Ironic nothing is lost: 100 is 102400 MB. "
     "To Ironic what is beyond whole GiB is lost, and less than 1 GiB cannot be said. Some "
     "utilities cannot be told a size: then the logical drive fills its array.",
     "Write sizes that are whole GiB, or FILL:\n  Logical.1 = A:102400:5:ON"},
    {"ZX957", warning, nobody, "hot spares are left out",
     "Ironic cannot say hot spares: a node that it configures has none, and a failed drive is not "
     "replaced until somebody comes.",
     "Make them behind Ironic, by the policies:\n  zolexctl plan site.ini -o plan.json"},
    {"ZX958", warning, nobody, "a setting is left out",
     "Ironic cannot say strip sizes, cache modes, read-ahead, rebuild rates and initialisations: "
     "what its driver takes is used.",
     "Look at what was made, and compare it:\n  zolexctl diff site.ini"},
    {"ZX959", note, nobody, "a controller is named otherwise, or left out",
     "A driver of Ironic has its own names for controllers and drives; zolexctl knows models "
     "(t:), numbers (c:) and the locations of its utilities. A controller without a policy is left "
     "out. Where it cannot be told which controller is meant, nothing is written.",
     "Say which it is:\n"
     "  zolexctl convert --from ironic node.json --model LSI-MegaRAID-8480"},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup9() noexcept {
    return rows;
}

} // namespace zolex::companion
