#include "setup/Samples.h"

#include "model/Text.h"
#include "setup/BlockSamples.h"
#include "setup/ConfSamples.h"
#include "setup/StorcliSamples.h"

#include <array>

namespace zolex_sim {
namespace {

constexpr std::string_view single = R"({
  // One MegaRAID controller with eight drives in one enclosure.
  "machineType": "8837",
  "serialNumber": "KQ10Z7V",
  "controllers": [
    {
      "utility": "MEGACLI",
      "generation": "early",
      "model": "LSI-MegaRAID-8480",
      "productName": "LSI MegaRAID SAS 8480E",
      "serialNumber": "1122334455",
      "pci": { "bus": 2, "device": 14, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x0411",
               "subsystemVendorId": "0x1000", "subsystemId": "0x1002",
               "class": "0x010400", "revision": "0x00" },
      "drives": [
        { "enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376, "rawSectors": 143374336,
          "interface": "SAS", "vendor": "NORVIK", "model": "NV73455S", "revision": "S527",
          "serial": "3LQ2A", "sasAddress": "0x5000c5000a100000" }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x25c0", "class": "0x060000",
      "description": "Host bridge" },
    { "bus": 6, "device": 2, "vendorId": "0x14e4", "deviceId": "0x164c", "class": "0x020000",
      "description": "Ethernet controller" }
  ]
}
)";

constexpr std::string_view enclosures = R"({
  // One MegaRAID controller with drives of several kinds in three enclosures.
  "machineType": "8863",
  "serialNumber": "KQ22B1F",
  "controllers": [
    {
      "utility": "MEGACLI",
      "generation": "early",
      "model": "Kestrix-D4",
      "productName": "MegaRAID SAS 6G",
      "pci": { "bus": 4, "device": 0, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x0079",
               "subsystemVendorId": "0x1000", "subsystemId": "0x9260",
               "class": "0x010400", "revision": "0x03" },
      "drives": [
        { "enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376, "serial": "3LQ2B" },
        { "enclosure": 32, "slot": 2, "count": 4, "sizeMB": 139392, "serial": "3NM7B",
          "model": "NV146855S" },
        { "enclosure": 64, "slot": 0, "count": 6, "sizeMB": 139392, "serial": "3NM7C",
          "model": "NV146855S" },
        { "enclosure": 96, "slot": 2, "count": 3, "sizeMB": 139392, "serial": "9QG4D",
          "model": "NV160NS", "interface": "SATA" }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x25d8", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)";

constexpr std::string_view twoControllers = R"({
  // Two MegaRAID controllers of different generations.
  "machineType": "7979",
  "serialNumber": "KQ31C9A",
  "controllers": [
    {
      "utility": "MEGACLI",
      "generation": "early",
      "model": "LSI-MegaRAID-8480",
      "productName": "LSI MegaRAID SAS 8480E",
      "pci": { "bus": 2, "device": 14, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x0411",
               "subsystemVendorId": "0x1000", "subsystemId": "0x1002" },
      "drives": [
        { "enclosure": 32, "slot": 0, "count": 6, "sizeMB": 69376, "serial": "3LQ2E" }
      ]
    },
    {
      "utility": "MEGACLI",
      "generation": "later",
      "model": "Kestrix-D4",
      "productName": "MegaRAID SAS 6G",
      "firmware": "2.120.53-1235",
      "bios": "3.22.00_4.11.05.00_0x05020000",
      "pci": { "bus": 10, "device": 0, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x0079",
               "subsystemVendorId": "0x1000", "subsystemId": "0x9260" },
      "drives": [
        { "enclosure": 252, "slot": 0, "count": 6, "sizeMB": 1906394, "rawSectors": 3907029168,
          "model": "NV2000NM0023", "revision": "0004", "serial": "Z1X0A", "deviceId": 8 }
      ]
    }
  ]
}
)";

constexpr std::string_view later = R"({
  // One MegaRAID controller of the later generation, which writes sizes in GB and TB.
  "machineType": "8839",
  "serialNumber": "KQ47D2M",
  "controllers": [
    {
      "utility": "MEGACLI",
      "generation": "later",
      "model": "Kestrix-D4",
      "productName": "MegaRAID SAS 6G",
      "firmwarePackage": "12.12.0-0048",
      "firmware": "2.120.53-1235",
      "bios": "3.22.00_4.11.05.00_0x05020000",
      "pci": { "bus": 6, "device": 0, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x0079",
               "subsystemVendorId": "0x1000", "subsystemId": "0x9260",
               "class": "0x010400", "revision": "0x05" },
      "drives": [
        { "enclosure": 252, "slot": 0, "count": 2, "sizeMB": 285148, "model": "NV300MM0006",
          "revision": "0003", "serial": "S0K1B", "deviceId": 8 },
        { "enclosure": 252, "slot": 2, "count": 6, "sizeMB": 1906394, "rawSectors": 3907029168,
          "model": "NV2000NM0023", "revision": "0004", "serial": "Z1X0A", "deviceId": 10,
          "sasAddress": "0x5000c500a10b0000" }
      ]
    }
  ]
}
)";

constexpr std::string_view configured = R"({
  // The default server, configured already: a mirrored pair, RAID 5 and a hot spare.
  "machineType": "8837",
  "serialNumber": "KQ10Z7W",
  "controllers": [
    {
      "utility": "MEGACLI",
      "generation": "early",
      "model": "LSI-MegaRAID-8480",
      "productName": "LSI MegaRAID SAS 8480E",
      "pci": { "bus": 2, "device": 14, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x0411",
               "subsystemVendorId": "0x1000", "subsystemId": "0x1002" },
      "drives": [
        { "enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376, "serial": "3LQ2F" },
        { "enclosure": 32, "slot": 7, "sizeMB": 69376, "serial": "3LQ2F007",
          "status": "hotspare" }
      ],
      "virtualDisks": [
        { "level": "RAID1", "spans": [["32:0", "32:1"]], "writePolicy": "WB",
          "readPolicy": "ADRA" },
        { "level": "RAID5", "spans": [["32:2", "32:3", "32:4", "32:5", "32:6"]],
          "writePolicy": "WB", "readPolicy": "ADRA" }
      ]
    }
  ]
}
)";

// clang-format off
constexpr std::array<Sample, 12> all = {{
    {"single",          "one controller, one enclosure (the default)", single},
    {"enclosures",      "one controller, three enclosures",            enclosures},
    {"two-controllers", "two controllers",                             twoControllers},
    {"later",           "one controller of the later generation",      later},
    {"configured",      "one controller, configured already",          configured},
    {"arcconf",         "one controller driven by ARCCONF",            arcconfSample},
    {"hrconf",          "one controller driven by HRCONF",             hrconfSample},
    {"qtcsend",         "one controller driven by QTCSEND, configured", qtcsendSample},
    {"cfggen",          "one controller driven by CFGGEN",             cfggenSample},
    {"cfggen-scsi",     "two controllers driven by CFGGEN1.02.02",     cfggenScsiSample},
    {"hyperwin",        "one controller driven by HYPERWIN",           hyperwinSample},
    {"mixed",           "one controller of each utility",              mixedSample},
}};
constexpr std::array<Sample, 3> ofToday = {{
    {"storcli",         "one controller driven by STORCLI, configured", storcliSample},
    {"storcli-blank",   "one controller driven by STORCLI, two enclosures", storcliBlankSample},
    {"percli",          "one controller driven by PERCCLI, configured", percliSample},
}};
// clang-format on

} // namespace

std::span<const Sample> samples() {
    return all;
}

std::span<const Sample> samplesOfToday() {
    return ofToday;
}

const Sample* sampleNamed(std::string_view name) {
    // It was misspelt; both names hold.
    name = equalsIgnoringCase(name, "perccli") ? "percli" : name;
    for (const std::span<const Sample> list : {samples(), samplesOfToday()}) {
        for (const Sample& sample : list) {
            if (equalsIgnoringCase(sample.name, name)) {
                return &sample;
            }
        }
    }
    return nullptr;
}

} // namespace zolex_sim
