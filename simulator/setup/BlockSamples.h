#pragma once

#include <string_view>

namespace zolex_sim {

/// Definitions of servers whose controllers are driven by QTCSEND, the CFGGEN utilities and
/// HYPERWIN.
constexpr std::string_view qtcsendSample = R"json({
  // One controller with drives on two parallel channels; an array holds two logical drives.
  "machineType": "8665",
  "serialNumber": "KQ01Q4S",
  "controllers": [
    {
      "utility": "QTCSEND",
      "model": "Kestrix-A4",
      "bios": "7.12.02", "firmware": "7.12.05", "physicalSlot": 3,
      "pci": { "bus": 3, "device": 2, "function": 0, "description": "RAID controller",
               "vendorId": "0x1f3d", "deviceId": "0x01bd", "class": "0x010400" },
      "drives": [
        { "channel": 1, "id": 0, "count": 5, "sizeMB": 17357, "model": "NV18401S",
          "revision": "B51A", "serial": "NV6A0" },
        { "channel": 2, "id": 0, "count": 3, "sizeMB": 34715, "model": "NV36401S",
          "revision": "B51A", "serial": "NV6B0" }
      ],
      "virtualDisks": [
        { "level": "RAID5", "spans": [["1:0", "1:1", "1:2"]], "sizeMB": 20000 },
        { "level": "RAID0", "array": 0, "sizeMB": 15000 }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x1166", "deviceId": "0x0009", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

constexpr std::string_view cfggenSample = R"json({
  // One SAS adapter with eight drives in two enclosures.
  "machineType": "8843",
  "serialNumber": "KQ61S2P",
  "controllers": [
    {
      "utility": "CFGGEN",
      "model": "LSI-SAS-RAID", "productName": "SAS1064E",
      "bios": "6.12.01.00", "firmware": "1.18.84.00",
      "pci": { "bus": 2, "device": 0, "function": 0, "description": "SAS controller",
               "vendorId": "0x1000", "deviceId": "0x0056", "class": "0x010000",
               "revision": "0x02" },
      "drives": [
        { "enclosure": 1, "slot": 0, "count": 6, "sizeMB": 70006, "rawSectors": 143374000,
          "model": "NV73401S", "revision": "B51D", "serial": "NV9B0", "targetId": 1 },
        { "enclosure": 2, "slot": 0, "count": 2, "sizeMB": 140013, "rawSectors": 286748000,
          "model": "NV14601S", "revision": "B51D", "serial": "NV9C0", "targetId": 8 }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x25d8", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

constexpr std::string_view cfggenScsiSample = R"json({
  // One adapter with two functions, each a parallel channel with drives of its own.
  "machineType": "8832",
  "serialNumber": "KQ33M6T",
  "controllers": [
    {
      "utility": "CFGGEN1.02.02",
      "model": "LSI-SCSI-RAID", "productName": "LSI1030",
      "bios": "5.10.02", "firmware": "1.03.23",
      "pci": { "bus": 2, "device": 7, "function": 0, "description": "SCSI controller",
               "vendorId": "0x1000", "deviceId": "0x0030", "class": "0x010000",
               "revision": "0x07" },
      "drives": [
        { "id": 0, "count": 3, "sizeMB": 34715, "model": "NV36401S", "revision": "B51A",
          "serial": "NV5A0" }
      ]
    },
    {
      "utility": "CFGGEN1.02.02",
      "model": "LSI-SCSI-RAID", "productName": "LSI1030",
      "bios": "5.10.02", "firmware": "1.03.23",
      "pci": { "bus": 2, "device": 7, "function": 1, "description": "SCSI controller",
               "vendorId": "0x1000", "deviceId": "0x0030", "class": "0x010000",
               "revision": "0x07" },
      "drives": [
        { "id": 5, "count": 4, "sizeMB": 70006, "model": "NV73401S", "revision": "B51A",
          "serial": "NV5B0" }
      ]
    }
  ]
}
)json";

constexpr std::string_view hyperwinSample = R"json({
  // One IDE adapter with two drives.
  "machineType": "8482",
  "serialNumber": "KQ12D8W",
  "controllers": [
    {
      "utility": "HYPERWIN",
      "model": "LSI-IDEal-RAID",
      "pci": { "bus": 1, "device": 5, "function": 0, "description": "IDE controller",
               "vendorId": "0x1166", "deviceId": "0x0213", "class": "0x010400" },
      "drives": [
        { "id": 0, "count": 2, "sizeMB": 38154, "model": "NV40IDE", "revision": "A100",
          "serial": "NV4A0" }
      ]
    }
  ]
}
)json";

constexpr std::string_view mixedSample = R"json({
  // One controller of each utility, with so few drives that one run configures them all. The SAS
  // adapter stands before the IDE one: zolex numbers the two kinds together, and the command lines
  // of the SAS adapter alone hold the number.
  "machineType": "8671",
  "serialNumber": "KQ77X9Z",
  "controllers": [
    {
      "utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
      "pci": { "bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
               "subsystemVendorId": "0x1000", "subsystemId": "0x1002" },
      "drives": [ { "enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376, "serial": "MX1" } ]
    },
    {
      "utility": "ARCCONF", "model": "Kestrix-B7", "automaticFailover": "Enabled",
      "pci": { "bus": 3, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286" },
      "raidLevels": ["RAID0", "RAID1", "RAID1E", "RAID5", "RAID6", "RAID10", "VOLUME"],
      "minStripeKB": 16, "maxStripeKB": 1024,
      "drives": [ { "channel": 0, "device": 0, "count": 3, "sizeMB": 70006, "serial": "MX2" } ]
    },
    {
      "utility": "HRCONF", "model": "Kestrix-A10",
      "pci": { "bus": 4, "device": 7, "vendorId": "0x9005", "deviceId": "0x808f" },
      "raidLevels": ["RAID0", "RAID1", "RAID10"],
      "minStripeKB": 16, "maxStripeKB": 64, "maxDrivesPerSpan": 4,
      "drives": [ { "channel": 0, "device": 0, "count": 2, "sizeMB": 70006, "serial": "MX3" } ]
    },
    {
      "utility": "QTCSEND", "model": "Kestrix-A7",
      "pci": { "bus": 5, "device": 2, "vendorId": "0x9005", "deviceId": "0x0250" },
      "drives": [ { "channel": 1, "id": 0, "count": 3, "sizeMB": 17357, "serial": "MX4" } ]
    },
    {
      "utility": "CFGGEN1.02.02", "model": "LSI-SCSI-RAID", "productName": "LSI1030",
      "pci": { "bus": 6, "device": 7, "vendorId": "0x1000", "deviceId": "0x0030",
               "class": "0x010000" },
      "drives": [ { "id": 0, "count": 3, "sizeMB": 34715, "serial": "MX5" } ]
    },
    {
      "utility": "CFGGEN", "model": "LSI-SAS-RAID", "productName": "SAS1064E",
      "pci": { "bus": 7, "device": 0, "vendorId": "0x1000", "deviceId": "0x0050",
               "class": "0x010000" },
      "drives": [ { "enclosure": 1, "slot": 0, "count": 3, "sizeMB": 70006, "serial": "MX6" } ]
    },
    {
      "utility": "HYPERWIN", "model": "LSI-IDEal-RAID",
      "pci": { "bus": 8, "device": 5, "vendorId": "0x1166", "deviceId": "0x0213" },
      "drives": [ { "id": 0, "count": 2, "sizeMB": 38154, "serial": "MX7" } ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x25d8", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

} // namespace zolex_sim
