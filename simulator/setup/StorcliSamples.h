#pragma once

#include <string_view>

namespace zolex_sim {

/// Definitions of servers with controllers of today, which STORCLI and PERCCLI drive. zolex does
/// not know these utilities.
constexpr std::string_view storcliSample = R"json({
  // One controller, in use already: the system on a mirror, data on RAID 5 and on two virtual
  // drives of one RAID 10 group, spares, drives that are bad, foreign and shown as they are, and
  // four that are free.
  "machineType": "7X06",
  "serialNumber": "KQ90S1M",
  "controllers": [
    {
      "utility": "STORCLI",
      "version": "007.2507",
      "branding": "lsi",
      "model": "MegaRAID N3916-16i 8GB",
      "serialNumber": "NX26400017",
      "pci": { "bus": 193, "device": 0, "function": 0, "description": "RAID controller",
               "vendorId": "0x1000", "deviceId": "0x10e2",
               "subsystemVendorId": "0x1000", "subsystemId": "0x4000" },
      "drives": [
        { "enclosure": 252, "slot": 0, "count": 2, "sectors": "0x6fb80000",
          "rawSectors": "0x6fc81ab0", "interface": "SATA", "medium": "ssd", "model": "NVS960-D",
          "serial": "NV0041" },
        { "enclosure": 252, "slot": 2, "count": 8, "sectors": "0x3a3800000",
          "rawSectors": "0x3a3912ab0", "serial": "NV0042" },
        { "enclosure": 252, "slot": 10, "sectors": "0x3a3800000", "rawSectors": "0x3a3912ab0",
          "serial": "NV0043000", "status": "hotspare" },
        { "enclosure": 252, "slot": 11, "sectors": "0x3a3800000", "rawSectors": "0x3a3912ab0",
          "serial": "NV0043001", "status": "dedicated", "groups": [1] },
        { "enclosure": 252, "slot": 12, "count": 4, "sectors": "0x3a3800000",
          "rawSectors": "0x3a3912ab0", "serial": "NV0044" },
        { "enclosure": 252, "slot": 16, "sectors": "0x3a3800000", "rawSectors": "0x3a3912ab0",
          "serial": "NV0045000", "status": "bad" },
        { "enclosure": 252, "slot": 17, "sectors": "0x6fb80000", "rawSectors": "0x6fc81ab0",
          "interface": "SATA", "medium": "ssd", "model": "NVS960-D", "serial": "NV0046000",
          "status": "jbod" },
        { "enclosure": 252, "slot": 18, "sectors": "0x3a3800000", "rawSectors": "0x3a3912ab0",
          "serial": "NV0047000" }
      ],
      "foreign": [ { "level": "RAID0", "drives": ["252:18"] } ],
      "virtualDrives": [
        { "level": "RAID1", "spans": [["252:0", "252:1"]], "stripKB": 64, "name": "system",
          "osDrive": "/dev/sda" },
        { "level": "RAID5", "spans": [["252:2", "252:3", "252:4", "252:5"]] },
        { "level": "RAID10", "spans": [["252:6", "252:7"], ["252:8", "252:9"]],
          "blocks": 327680000, "stripKB": 64, "writeCache": "WT", "readAhead": false,
          "name": "logs" },
        { "level": "RAID10", "group": 2, "stripKB": 1024, "name": "data" }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x09a2", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

constexpr std::string_view storcliBlankSample = R"json({
  // One controller with two enclosures of free drives.
  "machineType": "7X06",
  "serialNumber": "KQ91S2M",
  "controllers": [
    {
      "utility": "STORCLI",
      "version": "007.1616",
      "model": "MegaRAID N3516-16i",
      "vdNumbers": "up",
      "pci": { "bus": 94, "device": 0, "deviceId": "0x0014", "subsystemId": "0x9460" },
      "drives": [
        { "enclosure": 252, "slot": 0, "count": 4, "sectors": "0x6fb80000",
          "rawSectors": "0x6fc81ab0", "interface": "SATA", "medium": "ssd", "model": "NVS960-D",
          "serial": "NV0141" },
        { "enclosure": 62, "slot": 0, "count": 12, "sectors": "0x3a3800000",
          "rawSectors": "0x3a3912ab0", "serial": "NV0142", "deviceId": 20 }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x2020", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

constexpr std::string_view percliSample = R"json({
  // One PERC with eight drives on its backplane, a mirror on the first two.
  "machineType": "R750",
  "serialNumber": "KQ92P3C",
  "controllers": [
    {
      "utility": "STORCLI",
      "version": "007.1616",
      "branding": "perc",
      "model": "PERC H755 Front",
      "pci": { "bus": 101, "device": 0, "deviceId": "0x10e2", "subsystemVendorId": "0x1028",
               "subsystemId": "0x1ae1" },
      "drives": [
        { "enclosure": 64, "slot": 0, "count": 8, "sectors": "0x6fb80000",
          "rawSectors": "0x6fc81ab0", "interface": "SATA", "medium": "ssd", "model": "NVS960-D",
          "serial": "NV0241" }
      ],
      "virtualDrives": [
        { "level": "RAID1", "spans": [["64:0", "64:1"]], "name": "boot", "osDrive": "/dev/sda" }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x09a2", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

} // namespace zolex_sim
