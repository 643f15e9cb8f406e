#include "Listings.h"

#include "foundation/CString.h"

#include <algorithm>

namespace zolex::bench {

namespace {

constexpr int ids = 36;
constexpr int channels = 4;
constexpr int membersPerArray = 16;
constexpr int mostArrays = 8;

/// Where drive `index` stands, counted from 0.
struct Place {
    explicit Place(int index) : channel(index / ids % channels), id(index % ids) {}
    int channel;
    int id;
};

int arraysOf(int drives) {
    return std::min(drives / membersPerArray + (drives < membersPerArray ? 1 : 0), mostArrays);
}

int membersOf(int drives) {
    return std::min(drives, membersPerArray);
}

void append(std::string& text, const CString& more) {
    text += more.view();
}

// MEGACLI

std::string megaCliDrive(int index) {
    const Place place(index);
    std::string text;
    append(text, formatText("Enclosure Device ID: %d\r\n"
                            "Slot Number: %d\r\n"
                            "Drive's position: DiskGroup: 0, Span: 0, Arm: 0\r\n"
                            "Enclosure position: 1\r\n"
                            "Device Id: %d\r\n"
                            "WWN: 5000C500A10B%04X\r\n",
                            place.channel + 8, place.id, index, static_cast<unsigned>(index)));
    text += "Sequence Number: 2\r\n"
            "Media Error Count: 0\r\n"
            "Other Error Count: 0\r\n"
            "Predictive Failure Count: 0\r\n"
            "Last Predictive Failure Event Seq Number: 0\r\n"
            "PD Type: SAS\r\n"
            "\r\n"
            "Raw Size: 1.819 TB [0xe8e088b0 Sectors]\r\n"
            "Non Coerced Size: 1.818 TB [0xe8d088b0 Sectors]\r\n"
            "Coerced Size: 1.818 TB [0xe8b6d000 Sectors]\r\n"
            "Sector Size:  512\r\n"
            "Firmware state: Online, Spun Up\r\n"
            "Commissioned Spare : No\r\n"
            "Emergency Spare : No\r\n"
            "Device Firmware Level: 0004\r\n"
            "Shield Counter: 0\r\n"
            "Successful diagnostics completion on :  N/A\r\n"
            "SAS Address(0): 0x5000c500a10b0000\r\n"
            "SAS Address(1): 0x0\r\n"
            "Connected Port Number: 0(path0) \r\n"
            "Inquiry Data: NORVIK  NV2000NM0023    0004Z1X0A000            \r\n"
            "FDE Capable: Not Capable\r\n"
            "FDE Enable: Disable\r\n"
            "Secured: Unsecured\r\n"
            "Locked: Unlocked\r\n"
            "Needs EKM Attention: No\r\n"
            "Foreign State: None \r\n"
            "Device Speed: 6.0Gb/s \r\n"
            "Link Speed: 6.0Gb/s \r\n"
            "Media Type: Hard Disk Device\r\n"
            "Drive Temperature :29C (84.20 F)\r\n"
            "PI Eligibility:  No \r\n"
            "Drive is formatted for PI information:  No\r\n"
            "PI: No PI\r\n"
            "Port-0 :\r\n"
            "Port status: Active\r\n"
            "Port's Linkspeed: 6.0Gb/s \r\n"
            "Port-1 :\r\n"
            "Port status: Active\r\n"
            "Port's Linkspeed: Unknown \r\n"
            "Drive has flagged a S.M.A.R.T alert : No\r\n"
            "\r\n\r\n";
    return text;
}

std::string megaCliConfiguration(int drives, const CString& adapter) {
    std::string text(adapter.view());
    append(text, formatText("Number of Virtual Disks: %d\r\n", arraysOf(drives)));
    for (int array = 0; array < arraysOf(drives); ++array) {
        append(text, formatText("Virtual Drive: %d (Target Id: %d)\r\n"
                                "Name                :\r\n"
                                "RAID Level          : Primary-5, Secondary-0, RAID Level "
                                "Qualifier-3\r\n"
                                "Size                : 27.281 TB\r\n"
                                "Sector Size         : 512\r\n"
                                "State               : Optimal\r\n"
                                "Strip Size          : 64 KB\r\n"
                                "Number Of Drives    : %d\r\n",
                                array, array, membersOf(drives)));
        append(text,
               formatText("Span Depth          : 1\r\n"
                          "Default Cache Policy: WriteBack, ReadAhead, Direct, No Write Cache if "
                          "Bad BBU\r\n"
                          "Current Cache Policy: WriteBack, ReadAhead, Direct, No Write Cache if "
                          "Bad BBU\r\n"
                          "Default Access Policy: Read/Write\r\n"
                          "Current Access Policy: Read/Write\r\n"
                          "Disk Cache Policy   : Disk's Default\r\n"
                          "Encryption Type     : None\r\n"
                          "Is VD Cached: No\r\n"
                          "Number of Spans: 1\r\n"
                          "Span: 0 - Number of PDs: %d\r\n\r\n",
                          membersOf(drives)));
        for (int member = 0; member < membersOf(drives); ++member) {
            append(text, formatText("PD: %d Information\r\n", member));
            text += megaCliDrive(array * membersPerArray + member);
        }
    }
    return text + "\r\nExit Code: 0x00\r\n";
}

constexpr const char* megaCliAdapter =
    "==============================================================================\r\n"
    "                    Versions\r\n"
    "                ================\r\n"
    "Product Name    : LSI MegaRAID SAS 8480E\r\n"
    "Serial No       : 1122334455\r\n"
    "FW Package Build: 6.0.1-0080\r\n"
    "\r\n"
    "                Image Versions In Flash:\r\n"
    "                ================\r\n"
    "FW Version         : 1.11.50-0300\r\n"
    "BIOS Version       : NV10-1\r\n"
    "WebBIOS Version    : 1.1-32-e_11-Rel\r\n"
    "\r\n"
    "                Capabilities\r\n"
    "                ================\r\n"
    "RAID Level Supported             : RAID0, RAID1, RAID5, RAID6, RAID10, RAID50, RAID60\r\n"
    "Supported Drives                 : SAS, SATA\r\n"
    "\r\nExit Code: 0x00\r\n";

// ARCCONF and HRCONF

constexpr const char* rule =
    "----------------------------------------------------------------------\r\n";

std::string heading(const char* title) {
    return std::string(rule) + title + "\r\n" + rule;
}

/// The members of array `array`, at most as many as fit into a line that is read whole.
std::string confMembers(int array, int drives) {
    std::string text;
    for (int member = 0; member < membersOf(drives); ++member) {
        const Place place(array * membersPerArray + member);
        append(text, formatText("%d,%d ", place.channel, place.id));
    }
    return text;
}

std::string confDevice(int index, const char* more) {
    const Place place(index);
    std::string text;
    append(text, formatText("      Device #%d\r\n"
                            "         Device is a Hard drive\r\n"
                            "         State                              : Online\r\n"
                            "         Supported                          : Yes\r\n"
                            "         Transfer Speed                     : SAS 3.0 Gb/s\r\n"
                            "         Reported Channel,Device            : %d,%d\r\n",
                            index, place.channel, place.id));
    text += more;
    append(text, formatText("         Vendor                             : NORVIK\r\n"
                            "         Model                              : NV73455S\r\n"
                            "         Firmware                           : B522\r\n"
                            "         Serial number                      : NV7A%04d\r\n"
                            "         Size                               : 70006 MB\r\n"
                            "         Write Cache                        : Disabled "
                            "(write-through)\r\n"
                            "         FRU                                : None\r\n"
                            "         PFA                                : No\r\n",
                            index));
    return text;
}

std::string confLogicalDrive(int array, int drives) {
    std::string text;
    append(text, formatText("Logical drive number %d\r\n"
                            "   Logical drive name                       : ARRAY%d\r\n"
                            "   RAID level                               : 5\r\n"
                            "   Status of logical drive                  : Okay\r\n"
                            "   Size                                     : 1050090 MB\r\n"
                            "   Stripe-unit size                         : 64 KB\r\n"
                            "   Write-cache mode                         : Disabled "
                            "(write-through)\r\n"
                            "   Number of segments                       : %d\r\n"
                            "   Drive(s) (Channel,Device)                : ",
                            array + 1, array, membersOf(drives)));
    return text + confMembers(array, drives) +
           "\r\n   Defunct segments                         : No\r\n";
}

std::string confListing(int drives, const char* controller, const char* moreOfDevice) {
    std::string text = "Controllers found: 1\r\n" + heading("Controller information") + controller +
                       heading("Logical drive information");
    for (int array = 0; array < arraysOf(drives); ++array) {
        text += confLogicalDrive(array, drives);
    }
    text += "\r\n" + heading("Physical Device information");
    for (int drive = 0; drive < drives; ++drive) {
        text += confDevice(drive, moreOfDevice);
    }
    return text + "\r\nCommand completed successfully.\r\n";
}

// QTCSEND and CFGGEN

constexpr const char* blockRule =
    "------------------------------------------------------------------------\r\n";

std::string blockHeading(const char* title) {
    return std::string(blockRule) + title + "\r\n" + blockRule;
}

std::string qtcsendArrays(int drives) {
    std::string text;
    for (int array = 0; array < arraysOf(drives); ++array) {
        append(text, formatText("   Logical drive number %d\r\n"
                                "      Status of logical drive              : Okay (OKY)\r\n"
                                "      RAID level                           : 5\r\n"
                                "      Size (in MB)                         : 34714\r\n"
                                "      Write cache status                   : Write back (WB)\r\n"
                                "      Number of chunks                     : %d\r\n"
                                "      Stripe-unit size                     : 16 KB\r\n"
                                "      Part of array                        : %c\r\n",
                                array + 1, membersOf(drives), 'A' + array));
    }
    for (int array = 0; array < arraysOf(drives); ++array) {
        append(text, formatText("   Array %c                                 :", 'A' + array));
        for (int member = 0; member < membersOf(drives); ++member) {
            const Place place(array * membersPerArray + member);
            text += member > 0 && member % 8 == 0 ? "\r\n" + std::string(44, ' ') : std::string();
            append(text, formatText(" %d,%d", place.channel + 1, place.id));
        }
        text += "\r\n";
    }
    return text;
}

} // namespace

std::vector<std::string> megaCliListings(int drives, int number) {
    const CString adapter = formatText("\r\nAdapter #%d\r\n\r\n", number);
    std::string list(adapter.view());
    for (int drive = 0; drive < drives; ++drive) {
        list += megaCliDrive(drive);
    }
    return {megaCliConfiguration(drives, adapter), list + "\r\nExit Code: 0x00\r\n",
            std::string(adapter.view()) + megaCliAdapter};
}

std::string arcconfListing(int drives) {
    return confListing(drives,
                       "   Controller Status                        : Okay\r\n"
                       "   Controller Model                         : Norvik Kestrix B8\r\n"
                       "   Physical Slot                            : 0\r\n"
                       "   Logical drives/Offline/Critical          : 8/0/0\r\n"
                       "   --------------------------------------------------------\r\n"
                       "   Controller Version Information\r\n"
                       "   --------------------------------------------------------\r\n"
                       "   BIOS                                     : 5.2-0 (15000)\r\n"
                       "   Firmware                                 : 5.2-0 (15000)\r\n"
                       "   Driver                                   : 1.2-0 (29000)\r\n"
                       "   --------------------------------------------------------\r\n",
                       "         Reported Location                  : Enclosure 0, Slot 0\r\n");
}

std::string hrconfListing(int drives) {
    return confListing(drives,
                       "   Controller Status                        : Okay\r\n"
                       "   Physical Slot                            : 3\r\n",
                       "");
}

std::string qtcsendListing(int drives) {
    std::string text = "Norvik Kestrix Send Utility 7.12.02\r\n"
                       "Read configuration has been initiated for controller 1\r\n" +
                       blockHeading("Controller information") +
                       "   Controller type                         : Kestrix-A4\r\n"
                       "   BIOS version                            : 7.12.02\r\n"
                       "   Firmware version                        : 7.12.05\r\n"
                       "   Slot                                    : 3\r\n"
                       "   Controller name                         : Null Config\r\n"
                       "   Rebuild rate                            : High\r\n"
                       "   Readahead cache setting                 : Adaptive\r\n"
                       "   Stripe-unit size                        : 16 KB\r\n" +
                       blockHeading("Logical drive information") + qtcsendArrays(drives) +
                       blockHeading("Physical device information");
    int channel = 0;
    for (int drive = 0; drive < drives; ++drive) {
        const Place place(drive);
        // No listing has more than the four channels.
        if (drive % ids == 0 && channel < channels) {
            append(text, formatText("   Channel #%d:\r\n"
                                    "      Initiator at SCSI ID 7\r\n",
                                    ++channel));
        }
        append(text, formatText("      Target on SCSI ID %d\r\n"
                                "         Device is a Hard disk\r\n"
                                "         SCSI ID                           : %d\r\n"
                                "         State                             : Online (ONL)\r\n"
                                "         Size (in MB)/(in sectors)         : 17357/35548160\r\n"
                                "         Serial No                         : NV9B%04d\r\n"
                                "         Device ID                         : NORVIK  NV18401S\r\n",
                                place.id, place.id, drive));
    }
    return text;
}

std::string cfggenListing(int drives) {
    std::string text = "LSI Logic IR Configuration Utility 2.00.15\r\n"
                       "Read configuration has been initiated for controller 0\r\n" +
                       blockHeading("Controller information") +
                       "  Controller type                         : SAS1064E\r\n"
                       "  BIOS version                            : 6.12.01.00\r\n"
                       "  Firmware version                        : 1.18.84.00\r\n"
                       "  Concurrent commands supported           : 511\r\n"
                       "  Slot                                    : Unknown\r\n"
                       "  Bus                                     : 2\r\n" +
                       blockHeading("IR Volume information") +
                       "IR volume 1\r\n"
                       "  Volume ID                               : 0\r\n"
                       "  Status of volume                        : Okay (OKY)\r\n"
                       "  RAID level                              : 1\r\n"
                       "  Size (in MB)                            : 69618\r\n"
                       "  Physical hard disks (Target ID)         : 1 4\r\n" +
                       blockHeading("Physical device information") + "Initiator at ID #112\r\n";
    for (int drive = 0; drive < drives; ++drive) {
        const Place place(drive);
        append(text, formatText("Target on ID #%d\r\n"
                                "  Device is a Hard disk\r\n"
                                "  Enclosure #                             : %d\r\n"
                                "  Slot #                                  : %d\r\n"
                                "  Target ID                               : %d\r\n"
                                "  State                                   : Ready (RDY)\r\n"
                                "  Size (in MB)/(in sectors)               : 70006/143374000\r\n"
                                "  Manufacturer                            : NORVIK\r\n"
                                "  Model Number                            : NV73401S\r\n"
                                "  Firmware Revision                       : B51D\r\n"
                                "  Serial No                               : NV9B%04d\r\n"
                                "  Drive Type                              : SAS\r\n",
                                drive, place.channel + 1, place.id, drive, drive));
    }
    return text;
}

std::vector<std::string> hyperwinListings(int drives) {
    std::string text;
    for (int drive = 0; drive < drives; ++drive) {
        append(text, formatText("HyperWin Command Line Utility 1.07\r\n"
                                "Adapter 0, drive %d\r\n"
                                "Error Code (hex)                : %s\r\n",
                                drive + 1, drive < 2 ? "0000" : "000a"));
    }
    return {"HyperWin Command Line Utility 1.07\r\n"
            "Adapter 0\r\n"
            "LOGICAL_ARRAY                   : 0\r\n"
            "+WRITE_CACHE\r\n"
            "RAID_MODE                       : STRIPE\r\n"
            "STRIPE_SIZE                     : 128KB\r\n"
            "TOTAL_PHYSICAL_DRIVES           : 2\r\n"
            "Error Code (hex)                : 0000\r\n",
            text};
}

} // namespace zolex::bench
