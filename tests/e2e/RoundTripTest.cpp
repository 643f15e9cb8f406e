// Every controller type and subtype over random servers: what is captured, reset and deployed from
// the captured policies is captured the same again.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

/// How a family's drives are addressed.
enum class Address {
    enclosureSlot,  ///< enclosures of any number, or none
    smallEnclosure, ///< enclosures 1 to 4
    channelDevice,
    channelId,
    id,
};

/// One RAID level as a policy names it, with the numbers of drives that an array of it can have and
/// the drives' worth of room that redundancy takes.
struct Level {
    static constexpr int half = -1;
    const char* name;
    int least;
    int step; ///< 0: no other number
    int lost; ///< half: half of all
};
constexpr Level raid0{"0", 1, 1, 0};
constexpr Level raid0FromTwo{"0", 2, 1, 0};
constexpr Level raid1{"1", 2, 0, Level::half};
constexpr Level raid1E{"1E", 3, 1, Level::half};
constexpr Level raid5{"5", 3, 1, 1};
constexpr Level raid5E{"5E", 4, 1, 2};
constexpr Level raid5EE{"5EE", 4, 1, 2};
constexpr Level raid6{"6", 4, 1, 2};
constexpr Level raid10{"10", 4, 2, Level::half};
constexpr Level raid50{"50", 6, 2, 2};
constexpr Level raid60{"60", 8, 2, 4};
constexpr Level volume{"VOLUME", 1, 0, 0};

using Levels = std::vector<Level>;
const Levels megaRaid = {raid0, raid1, raid5, raid6, raid10, raid50, raid60};
const Levels megaRaidWithout6 = {raid0, raid1, raid5, raid10, raid50};
const Levels megaRaidPlain = {raid0, raid1, raid10};

/// What a capture and the deployment of its policies cannot keep, by utility. The policies of these
/// tests leave it out, and the README says it in the same words.
struct Loss {
    const char* utility;
    const char* lost;
};
// clang-format off
constexpr std::array<Loss, 20> losses = {{
    {"MEGACLI",       "names of virtual disks"},
    {"MEGACLI",       "RAID 50 and 60 of more than two spans"},
    {"MEGACLI",       "hot spares in no enclosure"},
    {"MEGACLI",       "a stripe size of 8 KB, or of 1 MB and more"},
    {"MEGACLI",       "a stripe size of 256 or 512 KB"},
    {"MEGACLI",       "drives in enclosures beside drives in none"},
    {"ARCCONF",       "write-back where the controller's own mode is another"},
    {"ARCCONF",       "read-ahead on where the controller's own mode is off"},
    {"ARCCONF",       "the stripe size of a mirror; of RAID 6 and 60 with many drives"},
    {"ARCCONF",       "a stripe size of 8 KB"},
    {"ARCCONF",       "members that the listing calls missing"},
    {"HRCONF",        "cache modes"},
    {"HRCONF",        "the stripe size of a mirror"},
    {"HRCONF",        "a logical drive smaller than its array"},
    {"HRCONF",        "`SIMPLE VOLUME`"},
    {"QTCSEND",       "cache, read-ahead, stripe size, rebuild rate"},
    {"CFGGEN",        "cache modes, stripe size"},
    {"CFGGEN",        "drives in enclosures above 4 or slots above 35"},
    {"CFGGEN1.02.02", "a logical drive smaller than its array"},
    {"HYPERWIN",      "which drives an array takes; the stripe size of a mirror; a second controller"},
}};
// clang-format on

/// What is random for a family beside its drives.
struct Settings {
    std::vector<const char*> stripes;    ///< words of `StripeSize`
    std::vector<const char*> readAheads; ///< words of `ReadAhead`
    std::vector<const char*> caches;     ///< last field of `Logical.<n>`
    std::size_t arrays = 2;              ///< most arrays
    int mostDrives = 16;                 ///< in an array
    bool hotspares = true;
    bool sizes = true;   ///< logical drives may be smaller than their arrays
    unsigned rounds = 1; ///< how often more servers play each level, with hot spares and without
};
const Settings megaRaidManySettings{
    {"16", "32", "64", "128"}, {"ADAPTIVE", "ON", "OFF"}, {"ON", "OFF"}, 3, 16, true, true, 4};
const Settings megaRaidSettings{
    {"16", "32", "64", "128"}, {"ADAPTIVE", "ON", "OFF"}, {"ON", "OFF"}};
const Settings arcconfSettings{{"16", "64", "256"}, {"ON", "OFF"}, {"OFF", ""}};
const Settings arcconf2Settings{{"16", "32", "64"}, {"ON", "OFF"}, {"OFF", ""}};
const Settings hrconfSettings{{"16", "32", "64"}, {}, {""}, 2, 16, true, false};
const Settings hrconf4Settings{{"16", "32", "64"}, {}, {""}, 2, 4, true, false};
const Settings qtcsendSettings{{}, {}, {""}};
const Settings cfggenSettings{{}, {}, {""}, 2, 6};
const Settings cfggen1078Settings{{}, {}, {""}, 2, 10};
const Settings cfggenScsiSettings{{}, {}, {""}, 2, 2, true, false};
const Settings hyperwinSettings{{"32", "64", "1024"}, {}, {"ON", "OFF"}, 1, 2, false, false};

struct Family {
    const char* model; ///< as the program names it
    const char* utility;
    const char* ids;   ///< JSON of the PCI ids
    const char* extra; ///< JSON of further fields of the controller
    Address address;
    Levels levels;
    Settings settings;
    /// What tells it from another family of its model. Then its drives have a slot unlike their
    /// device number, too.
    const char* variant = "";
};

constexpr const char* withExpander =
    R"("productName": "Norvik Kestrix B7", "automaticFailover": "Enabled", "expander": true,)";
constexpr const char* newest = R"("generation": "newest",)";
constexpr const char* newestWithExpander = R"("generation": "newest", "expander": true,)";
constexpr const char* withFailover =
    R"("productName": "Norvik Kestrix B7", "automaticFailover": "Enabled",)";
constexpr const char* b8Name = R"("productName": "Norvik Kestrix B8",)";

std::string lsi(const char* device, const char* vendor = "0x0000",
                const char* subsystem = "0x0000") {
    return std::string(R"("vendorId": "0x1000", "deviceId": ")") + device +
           R"(", "subsystemVendorId": ")" + vendor + R"(", "subsystemId": ")" + subsystem + "\"";
}

// clang-format off
const std::vector<Family>& families() {
    static const std::array<std::string, 16> ids = {
        lsi("0x0411", "0x1000", "0x1002"), lsi("0x0060", "0x1F3D", "0x0364"),
        lsi("0x0060", "0x1F3D", "0x03AC"), lsi("0x0060", "0x1F3D", "0x03A2"),
        lsi("0x0060", "0x1F3D", "0x0365"), lsi("0x0060", "0x1F3D", "0x0363"),
        lsi("0x0060", "0x1F3D", "0x0379"), lsi("0x0073", "0x1F3D", "0x03B1"),
        lsi("0x0073"),                     lsi("0x0079", "0x1F3D", "0x03C7"),
        lsi("0x0079", "0x1F3D", "0x03B2"), lsi("0x0079", "0x1F3D", "0x03B3"),
        lsi("0x0079"),                     lsi("0x0050"),
        lsi("0x0062"),                     lsi("0x0030")};
    constexpr const char* family = R"("vendorId": "0x1F3D", "deviceId": "0x01BD")";
    static const std::vector<Family> all = {
        {"LSI-MegaRAID-8480", "MEGACLI", ids[0].c_str(), "", Address::enclosureSlot, megaRaidWithout6, megaRaidSettings},
        {"Kestrix-C1", "MEGACLI", ids[1].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidManySettings},
        {"Kestrix-C2", "MEGACLI", ids[2].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-C3", "MEGACLI", ids[3].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-C4", "MEGACLI", ids[4].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-C5", "MEGACLI", ids[5].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-C6", "MEGACLI", ids[6].c_str(), R"("generation": "later",)", Address::enclosureSlot, megaRaid, megaRaidManySettings},
        {"Kestrix-C7", "MEGACLI", ids[7].c_str(), R"("raidLevels": ["RAID0", "RAID1", "RAID10"],)", Address::enclosureSlot, megaRaidPlain, megaRaidSettings},
        // The utility tells that this one has RAID 5, which makes it another model.
        {"Kestrix-C8", "MEGACLI", ids[7].c_str(), "", Address::enclosureSlot, megaRaidWithout6, megaRaidSettings},
        {"Kestrix-C9", "MEGACLI", ids[8].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-D1", "MEGACLI", ids[9].c_str(), "", Address::enclosureSlot, megaRaidWithout6, megaRaidSettings},
        {"Kestrix-D2", "MEGACLI", ids[10].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-D3", "MEGACLI", ids[11].c_str(), "", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-D4", "MEGACLI", ids[12].c_str(), R"("generation": "later",)", Address::enclosureSlot, megaRaid, megaRaidSettings},
        {"Kestrix-A1", "QTCSEND", R"("vendorId": "0x1F3D", "deviceId": "0x002E")", "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A2", "QTCSEND", family, "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A3", "QTCSEND", family, "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A4", "QTCSEND", family, "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A5", "QTCSEND", family, "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A6", "QTCSEND", family, "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A7", "QTCSEND", family, "", Address::channelId, {raid0, raid1, raid1E, raid5, raid5E, raid5EE}, qtcsendSettings},
        {"Kestrix-A8", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x9005", "subsystemId": "0x0290")", "", Address::channelDevice, {raid0, raid1, raid5, raid10, volume}, arcconf2Settings},
        {"Kestrix-B1", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x1F3D", "subsystemId": "0x02F2")", "", Address::channelDevice, {raid0, raid1, raid1E, raid5, raid5EE, raid6, raid10, raid50, raid60, volume}, arcconfSettings},
        {"Kestrix-B2", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x1F3D", "subsystemId": "0x034D")", R"("generation": "later",)", Address::channelDevice, {raid0, raid1, raid1E, raid5, raid5EE, raid6, raid10, raid50, raid60, volume}, arcconfSettings},
        {"Kestrix-B8", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0286")", b8Name, Address::channelDevice, {raid0, raid1, raid10, volume}, arcconfSettings},
        {"Kestrix-B7", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0286")", withFailover, Address::channelDevice, {raid0, raid1, raid1E, raid5, raid6, raid10, volume}, arcconfSettings},
        {"Kestrix-A9", "HRCONF", R"("vendorId": "0x8086", "deviceId": "0x25B0")", "", Address::channelDevice, {raid0FromTwo, raid1}, hrconfSettings},
        {"Kestrix-A10", "HRCONF", R"("vendorId": "0x9005", "deviceId": "0x808F")", "", Address::channelDevice, {raid0, raid1, raid10}, hrconf4Settings},
        {"Kestrix-B3", "HRCONF", R"("vendorId": "0x9005", "deviceId": "0x043F")", "", Address::channelDevice, {raid0, raid1, raid10}, hrconfSettings},
        {"Kestrix-B4", "HRCONF", R"("vendorId": "0x8086", "deviceId": "0x27C3")", "", Address::channelDevice, {raid0, raid1, raid10, volume}, hrconfSettings},
        {"LSI-SAS-RAID", "CFGGEN", ids[13].c_str(), "", Address::smallEnclosure, {raid0, raid1, raid1E}, cfggenSettings},
        {"LSI-SAS-1078-IR", "CFGGEN", ids[14].c_str(), "", Address::smallEnclosure, {raid0, raid1}, cfggen1078Settings},
        {"LSI-SCSI-RAID", "CFGGEN1.02.02", ids[15].c_str(), "", Address::id, {raid1}, cfggenScsiSettings},
        {"LSI-IDEal-RAID", "HYPERWIN", R"("vendorId": "0x1166", "deviceId": "0x0213")", "", Address::id, {raid0FromTwo, raid1}, hyperwinSettings},
        {"Kestrix-B7", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0286")", withExpander, Address::channelDevice, {raid0, raid1, raid1E, raid5, raid6, raid10, volume}, arcconfSettings, "expander"},
        {"Kestrix-B2", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x1F3D", "subsystemId": "0x034D")", newest, Address::channelDevice, {raid0, raid1, raid1E, raid5, raid5EE, raid6, raid10, raid50, raid60, volume}, arcconfSettings, "newest"},
        {"Kestrix-B2", "ARCCONF", R"("vendorId": "0x9005", "deviceId": "0x0285", "subsystemVendorId": "0x1F3D", "subsystemId": "0x034D")", newestWithExpander, Address::channelDevice, {raid0, raid1, raid1E, raid5, raid5EE, raid6, raid10, raid50, raid60, volume}, arcconfSettings, "newest_expander"},
    };
    return all;
}
// clang-format on

/// A random server with one controller of a family, and policies for it; repeatable by its seed.
class RandomServer {
  public:
    RandomServer(const Family& family, unsigned seed) : family_(family), random_(seed) {}

    std::string definition() {
        return R"({"machineType": "8837", "serialNumber": "KQ12345", "controllers": [{"utility": ")" +
               std::string(family_.utility) + R"(", "model": ")" + family_.model + "\", " +
               family_.extra + R"("pci": {"bus": 2, "device": 1, "class": "0x010400", )" +
               family_.ids + R"(}, "drives": [)" + drives() + "]}]}";
    }

    /// A policy of one or more arrays, the first of `level`, with hot spares or without.
    std::string policy(const Level& level, bool withHotspares) {
        std::vector<int> free(static_cast<std::size_t>(drives_));
        for (int i = 0; i < drives_; ++i) {
            free[static_cast<std::size_t>(i)] = i + 1;
        }
        if (family_.address != Address::id) {
            std::shuffle(free.begin(), free.end(), random_);
        } else {
            std::reverse(free.begin(), free.end());
        }
        std::string arrays;
        std::string logical;
        const auto most = static_cast<int>(family_.settings.arrays);
        const Level* wish = &level;
        int made = 0;
        for (int wanted = number(1, most); wanted > 0; --wanted) {
            if (const int n = drivesFor(*wish, static_cast<int>(free.size())); n > 0) {
                const std::string drives = take(free, n);
                const auto add = [&](const char* size) {
                    const char letter = static_cast<char>('A' + made++);
                    arrays += std::string("Array.") + letter + " = " + drives + "\n";
                    const std::string cache = pick(family_.settings.caches);
                    logical += "Logical." + std::to_string(made) + " = " + letter + size +
                               wish->name + (cache.empty() ? "" : ":" + cache) + "\n";
                };
                const bool smaller = family_.settings.sizes && number(0, 2) == 0;
                add(smaller ? ":40%:" : ":FILL:");
                // A further array of the same drives is a further logical drive on them.
                if (smaller && wanted > 1 && family_.address == Address::enclosureSlot) {
                    add(":35%:");
                    --wanted;
                }
            }
            wish = &family_.levels[static_cast<std::size_t>(
                number(0, static_cast<int>(family_.levels.size()) - 1))];
        }
        const int spares = withHotspares && family_.settings.hotspares && !outside_
                               ? std::min<int>(number(1, 2), static_cast<int>(free.size()))
                               : 0;
        return std::string("[Policy.random]\nAppliesTo.1 = t:") + family_.model + "\n" +
               entry("StripeSize", pick(family_.settings.stripes)) +
               entry("ReadAhead", pick(family_.settings.readAheads)) + "Array_Mode = CUSTOM\n" +
               arrays +
               (spares > 0 ? "Hotspares = " + take(free, spares) + "\n"
                           : std::string("Array_Defaults = 0%:0\n")) +
               "Logical_Mode = CUSTOM\n" + logical;
    }

    /// MB of the drive of this number, which a policy names it by.
    [[nodiscard]] int sizeOf(int drive) const {
        return sizes_.at(static_cast<std::size_t>(drive - 1));
    }

  private:
    int number(int least, int most) { return std::uniform_int_distribution(least, most)(random_); }

    std::string pick(const std::vector<const char*>& words) {
        return words.empty()
                   ? ""
                   : words[static_cast<std::size_t>(number(0, static_cast<int>(words.size()) - 1))];
    }

    static std::string entry(const char* keyword, const std::string& value) {
        return value.empty() ? "" : std::string(keyword) + " = " + value + "\n";
    }

    std::string drives() {
        static constexpr std::array sizes = {17357, 34715, 70006, 140013};
        std::string text;
        const auto add = [&](const std::string& place, int count) {
            const int size =
                family_.settings.hotspares ? sizes[static_cast<std::size_t>(number(0, 3))] : 38154;
            text += (text.empty() ? "{" : ", {") + place + R"(, "count": )" +
                    std::to_string(count) + R"(, "sizeMB": )" + std::to_string(size) + "}";
            drives_ += count;
            sizes_.insert(sizes_.end(), static_cast<std::size_t>(count), size);
        };
        const int groups = number(1, family_.address == Address::enclosureSlot ? 4 : 3);
        switch (family_.address) {
        case Address::enclosureSlot:
            if (number(0, 5) == 0) { // drives that are in no enclosure
                add(R"("slot": 0)", number(12, 36));
                outside_ = true;
                break;
            }
            for (int i = 0, enclosure = number(0, 60); i < groups; ++i) {
                add(R"("enclosure": )" + std::to_string(enclosure) + R"(, "slot": )" +
                        std::to_string(number(0, 3)),
                    i == 0 ? number(12, 16) : number(1, 9));
                enclosure = (enclosure + number(1, 60)) % 255;
            }
            break;
        case Address::smallEnclosure:
            for (int i = 0; i < groups; ++i) {
                add(R"("enclosure": )" + std::to_string(i + 1) + R"(, "slot": )" +
                        std::to_string(number(0, 3)),
                    i == 0 ? 12 : number(1, 6));
            }
            break;
        case Address::channelDevice:
            for (int i = 0; i < groups; ++i) {
                add(R"("channel": )" + std::to_string(i) + R"(, "device": )" +
                        std::to_string(number(0, 3)) + bay(i),
                    i == 0 ? 12 : number(1, 6));
            }
            break;
        case Address::channelId:
            for (int i = 0; i < groups; ++i) {
                add(R"("channel": )" + std::to_string(i + 1) + R"(, "id": 0)",
                    i == 0 ? 12 : number(1, 6));
            }
            break;
        case Address::id:
            add(R"("id": 0)", family_.settings.hotspares ? number(4, 6) : 2);
            break;
        }
        return text;
    }

    /// Where the drives of a channel sit, for a family whose slots are unlike the device numbers.
    std::string bay(int channel) {
        return *family_.variant == '\0' ? ""
                                        : R"(, "enclosure": )" + std::to_string(channel) +
                                              R"(, "slot": )" + std::to_string(number(4, 9));
    }

    int drivesFor(const Level& level, int available) {
        const int most = std::min({available, family_.settings.mostDrives, 12});
        if (most < level.least) {
            return 0;
        }
        return level.step == 0
                   ? level.least
                   : level.least + level.step * number(0, (most - level.least) / level.step);
    }

    static std::string take(std::vector<int>& free, int n) {
        std::string text;
        for (int i = 0; i < n; ++i) {
            text += (i > 0 ? "," : "") + std::to_string(free.back());
            free.pop_back();
        }
        return text;
    }

    const Family& family_;
    std::mt19937 random_;
    int drives_ = 0;
    std::vector<int> sizes_; ///< in the order of their numbers
    bool outside_ = false;   ///< the drives are in no enclosure
};

/// The numbers of a list, or of each of several lists, in ascending order.
std::vector<int> numbersOf(const std::vector<std::string>& lists) {
    std::vector<int> numbers;
    for (const std::string& list : lists) {
        std::istringstream items(list);
        for (std::string item; std::getline(items, item, ',');) {
            numbers.push_back(std::stoi(item));
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

/// The fields of a `Logical.<n>`.
struct LogicalFields {
    std::string array;
    std::string size;
    std::string level;
    std::string cache;
};

std::vector<LogicalFields> logicalFieldsOf(const std::string& policies) {
    std::vector<LogicalFields> drives;
    for (const char* key : {"Logical.1 = ", "Logical.2 = ", "Logical.3 = "}) {
        for (const std::string& value : linesAfter(policies, key)) {
            std::istringstream fields(value);
            LogicalFields drive;
            std::getline(fields, drive.array, ':');
            std::getline(fields, drive.size, ':');
            std::getline(fields, drive.level, ':');
            std::getline(fields, drive.cache, ':');
            drives.push_back(drive);
        }
    }
    return drives;
}

/// Array and RAID level of each `Logical.<n>`, and the write-cache mode when it is wanted.
std::vector<std::string> logicalDrivesOf(const std::string& policies, bool withCache) {
    std::vector<std::string> drives;
    for (const LogicalFields& drive : logicalFieldsOf(policies)) {
        drives.push_back(drive.array + " " + drive.level + (withCache ? " " + drive.cache : ""));
    }
    return drives;
}

/// Numbers of the drives of an array.
std::vector<int> membersOf(const std::string& policies, const LogicalFields& drive) {
    return numbersOf(linesAfter(policies, "Array." + drive.array + " = "));
}

/// Each captured size is the one that the policy asks for, reckoned from the drives.
void expectSizes(const Family& family, const RandomServer& random, const std::string& policy,
                 const std::string& captured) {
    const std::vector<LogicalFields> wanted = logicalFieldsOf(policy);
    const std::vector<LogicalFields> found = logicalFieldsOf(captured);
    ASSERT_EQ(wanted.size(), found.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        SCOPED_TRACE("Logical." + std::to_string(i + 1));
        if (!family.settings.sizes) {
            EXPECT_EQ("FILL", found[i].size);
            continue;
        }
        const std::vector<int> members = membersOf(policy, wanted[i]);
        int smallest = random.sizeOf(members.front());
        for (const int member : members) {
            smallest = std::min(smallest, random.sizeOf(member));
        }
        const auto level =
            std::find_if(family.levels.begin(), family.levels.end(),
                         [&](const Level& each) { return wanted[i].level == each.name; });
        const auto count = static_cast<double>(members.size());
        const double usable = level->lost == Level::half ? count / 2 : count - level->lost;
        const double share = wanted[i].size == "FILL" ? 1 : std::atof(wanted[i].size.c_str()) / 100;
        const double mb = usable * smallest * share;
        // Listings round to a thousandth of a TB.
        EXPECT_NEAR(mb, std::atof(found[i].size.c_str()), 1 + mb / 1000);
    }
}

/// The largest stripe in KB that ARCCONF makes of an array.
int largestStripe(const std::string& level, std::size_t drives) {
    if (level == "6") {
        return drives >= 12 ? 64 : drives >= 9 ? 128 : drives >= 6 ? 256 : 512;
    }
    return level == "60" && drives >= 12 ? 256 : level == "60" && drives >= 10 ? 512 : 1024;
}

/// The captured stripe size is that of the last logical drive that has one.
void expectStripe(const Family& family, const std::string& policy, const std::string& captured) {
    const std::vector<std::string> wanted = linesAfter(policy, "StripeSize = ");
    if (wanted.empty()) {
        return; // the utility takes none
    }
    const std::string utility = family.utility;
    const std::string_view extra = family.extra;
    // Listings with segments tell the stripe of a mirror too, which is none of the policy's.
    const bool tellsMirrors = extra.find("newest") != std::string_view::npos ||
                              extra.find("automaticFailover") != std::string_view::npos;
    std::string stripe;
    for (const LogicalFields& drive : logicalFieldsOf(policy)) {
        const bool plain = drive.level == "1" || drive.level == "VOLUME";
        if (utility == "MEGACLI" || !plain) {
            const int asked = std::stoi(wanted.front());
            const std::size_t drives = membersOf(policy, drive).size();
            stripe = std::to_string(
                utility == "ARCCONF" ? std::min(asked, largestStripe(drive.level, drives)) : asked);
        } else if (tellsMirrors && drive.level == "1") {
            stripe.clear();
        }
    }
    const std::vector<std::string> found = linesAfter(captured, "StripeSize = ");
    if (!stripe.empty()) {
        EXPECT_EQ(std::vector<std::string>{stripe}, found);
    } else if (utility != "ARCCONF") { // which gives a mirror one of its own
        EXPECT_EQ(std::vector<std::string>{}, found);
    }
}

class RoundTripTest : public testing::TestWithParam<std::size_t> {};

void roundTrip(const Family& family, const Level& level, bool withHotspares, unsigned seed) {
    RandomServer random(family, seed);
    VirtualServer server(random.definition());
    ASSERT_TRUE(server.isReady());
    const std::string policy = random.policy(level, withHotspares);
    SCOPED_TRACE(policy);
    server.write("wanted.ini", policy);
    const ProgramRun first = server.zolex({"/f:wanted.ini", "/e1"});
    ASSERT_EQ(0, first.exitCode) << first.output;
    const ProgramRun capture = server.zolex({"/c", "/f:captured.ini"});
    ASSERT_EQ(0, capture.exitCode) << capture.output;
    ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
    const ProgramRun empty = server.zolex({"/c", "/f:empty.ini"});
    ASSERT_EQ(0, empty.exitCode) << empty.output;
    ASSERT_FALSE(server.exists("empty.ini")) << server.read("empty.ini");
    const ProgramRun second = server.zolex({"/f:captured.ini", "/e1"});
    ASSERT_EQ(0, second.exitCode) << second.output << server.read("captured.ini");
    ASSERT_EQ(0, server.zolex({"/c", "/f:again.ini"}).exitCode);

    const std::string captured = withoutComments(server.read("captured.ini"));
    EXPECT_EQ(captured, withoutComments(server.read("again.ini")));
    EXPECT_NE(std::string::npos,
              captured.find(std::string("[Policy.AUTO-") + family.model + "-1]"));
    for (const char* key : {"Array.A = ", "Array.B = ", "Array.C = "}) {
        EXPECT_EQ(linesAfter(policy, key), linesAfter(captured, key)) << key;
    }
    EXPECT_EQ(numbersOf(linesAfter(policy, "Hotspares = ")),
              numbersOf(linesAfter(captured, "Hotspares = ")));
    const std::string utility = family.utility;
    const bool keepsCache = utility == "MEGACLI" || utility == "ARCCONF" || utility == "HYPERWIN";
    EXPECT_EQ(logicalDrivesOf(policy, keepsCache), logicalDrivesOf(captured, keepsCache));
    if (utility == "MEGACLI") {
        EXPECT_EQ(linesAfter(policy, "StripeSize = "), linesAfter(captured, "StripeSize = "));
    }
    if (!family.settings.readAheads.empty()) {
        EXPECT_EQ(linesAfter(policy, "ReadAhead = "), linesAfter(captured, "ReadAhead = "));
    }
    expectSizes(family, random, policy, captured);
    expectStripe(family, policy, captured);
}

TEST_P(RoundTripTest, CaptureResetDeployCaptureGivesTheSameLayout) {
    const Family& family = families()[GetParam()];
    unsigned seed = static_cast<unsigned>(GetParam()) * 1000;
    // Every second level: another model of the family begins with the other one.
    for (std::size_t i = GetParam() % 2 % family.levels.size(); i < family.levels.size(); i += 2) {
        const Level& level = family.levels[i];
        const bool withHotspares = ++seed % 2 == 0;
        SCOPED_TRACE(std::string("RAID ") + level.name + ", seed " + std::to_string(seed));
        roundTrip(family, level, withHotspares, seed);
    }
}

class MoreRoundTripsTest : public RoundTripTest {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(MoreRoundTripsTest);

TEST_P(MoreRoundTripsTest, MoreServersGiveTheSameLayout) {
    const Family& family = families()[GetParam()];
    unsigned seed = static_cast<unsigned>(GetParam()) * 1000 + 500;
    for (const Level& level : family.levels) {
        for (unsigned round = 0; round < 2 * family.settings.rounds; ++round) {
            const bool withHotspares = ++seed % 2 == 0;
            SCOPED_TRACE(std::string("RAID ") + level.name + ", seed " + std::to_string(seed));
            roundTrip(family, level, withHotspares, seed);
        }
    }
}

/// Captures a configured server, resets it, deploys the captured policies and captures again.
void expectDeployedWhole(VirtualServer& server, std::size_t commands) {
    ASSERT_EQ(0, server.zolex({"/c", "/f:captured.ini"}).exitCode);
    const std::string before = server.simulator({"show"}).output;
    ASSERT_EQ(0, server.zolex({"/r", "/y"}).exitCode);
    ASSERT_NE(before, server.simulator({"show"}).output);
    const ProgramRun deploy = server.zolex({"/f:captured.ini", "/v:5"});
    EXPECT_EQ(0, deploy.exitCode) << deploy.output << server.read("captured.ini");
    EXPECT_EQ(before, server.simulator({"show"}).output) << server.read("captured.ini");
    EXPECT_EQ(commands, linesAfter(server.read("captured.ini"), "Array.").size());
    ASSERT_EQ(0, server.zolex({"/c", "/f:again.ini"}).exitCode);
    EXPECT_EQ(withoutComments(server.read("captured.ini")),
              withoutComments(server.read("again.ini")));
}

std::string megaRaidServer(const std::string& drives, const std::string& disks) {
    return R"({"machineType": "8837", "serialNumber": "KQ12345", "controllers": [{
        "utility": "MEGACLI", "model": "Kestrix-C1", "pci": {"bus": 2, "device": 1,
        "class": "0x010400", )" +
           lsi("0x0060", "0x1F3D", "0x0364") + R"(}, "drives": [)" + drives +
           R"(], "virtualDisks": [)" + disks + "]}]}";
}

// A server with several virtual disks on a group of drives was deployed half: the second command
// was refused.
TEST(RoundTrip, SeveralVirtualDisksOnOneGroupOfDrives) {
    VirtualServer server(megaRaidServer(
        R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 70006})",
        R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2", "32:3"]], "sizeMB": 60000,
            "writePolicy": "WB"},
           {"level": "RAID5", "array": 0, "sizeMB": 100000, "writePolicy": "WT"},
           {"level": "RAID5", "array": 0, "writePolicy": "WB"},
           {"level": "RAID10", "spans": [["32:4", "32:5"], ["32:6", "32:7"]], "sizeMB": 50000,
            "writePolicy": "WB"},
           {"level": "RAID10", "array": 1, "writePolicy": "WT"})"));
    ASSERT_TRUE(server.isReady());
    expectDeployedWhole(server, 5);
}

// The utility knows drives in no enclosure by ":S". A hot spare's command names an enclosure, and
// enclosure 0 is none of theirs.
TEST(RoundTrip, DrivesInNoEnclosure) {
    const std::string disk = R"({"level": "RAID1", "spans": [[":0", ":1"]], "writePolicy": "WB"})";
    const std::string members = R"({"slot": 0, "count": 2, "sizeMB": 70006})";
    VirtualServer server(megaRaidServer(members, disk));
    ASSERT_TRUE(server.isReady());
    expectDeployedWhole(server, 1);

    VirtualServer withSpare(
        megaRaidServer(members + R"(, {"slot": 2, "sizeMB": 70006, "status": "hotspare"})", disk));
    ASSERT_TRUE(withSpare.isReady());
    ASSERT_EQ(0, withSpare.zolex({"/c", "/f:captured.ini"}).exitCode);
    EXPECT_EQ(std::vector<std::string>{"3"},
              linesAfter(withSpare.read("captured.ini"), "Hotspares = "));
    ASSERT_EQ(0, withSpare.zolex({"/r", "/y"}).exitCode);
    const ProgramRun deploy = withSpare.zolex({"/f:captured.ini"});
    EXPECT_EQ(11, deploy.exitCode) << deploy.output;
    EXPECT_NE(std::string::npos, deploy.output.find("There is no physical disk at 0:2."))
        << deploy.output;
}

TEST(RoundTripLosses, TheReadmeNamesEachLossOfEachUtility) {
    std::ifstream file(std::string(ZOLEX_TEST_DATA) + "/../../README.md");
    std::vector<std::string> rows;
    for (std::string line; std::getline(file, line);) {
        rows.push_back(line);
    }
    for (const Loss& loss : losses) {
        EXPECT_TRUE(std::any_of(rows.begin(), rows.end(),
                                [&loss](const std::string& row) {
                                    const std::size_t lost =
                                        row.find(std::string("| ") + loss.lost + " |");
                                    return lost != std::string::npos &&
                                           row.substr(0, lost).find(loss.utility) != row.npos;
                                }))
            << loss.utility << ": " << loss.lost;
    }
}

std::vector<std::size_t> familyNumbers() {
    std::vector<std::size_t> numbers(families().size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = i;
    }
    return numbers;
}

/// An emulator takes ten times longer to start a program: there these are played only when the
/// environment has ZOLEX_ALL_SERVERS.
std::vector<std::size_t> moreFamilyNumbers() {
#ifdef _WIN32
    if (std::getenv("ZOLEX_ALL_SERVERS") == nullptr) {
        return {};
    }
#endif
    return familyNumbers();
}

std::string modelOf(const testing::TestParamInfo<std::size_t>& tested) {
    const Family& family = families()[tested.param];
    std::string name =
        std::string(family.model) + (*family.variant == '\0' ? "" : "_") + family.variant;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Families, RoundTripTest, testing::ValuesIn(familyNumbers()), modelOf);
INSTANTIATE_TEST_SUITE_P(Families, MoreRoundTripsTest, testing::ValuesIn(moreFamilyNumbers()),
                         modelOf);

} // namespace
} // namespace zolex::e2e
