#pragma once

#include <string_view>

namespace zolex_sim {

/// Definitions of servers whose controllers are driven by ARCCONF and HRCONF.
constexpr std::string_view arcconfSample = R"json({
  // One controller with support for automatic failover and eight drives on one channel.
  "machineType": "8840",
  "serialNumber": "KQ52A1R",
  "controllers": [
    {
      "utility": "ARCCONF",
      "model": "Kestrix-B7",
      "productName": "Norvik Kestrix B7",
      "serialNumber": "1000001",
      "bios": "5.2-0 (15000)", "firmware": "5.2-0 (15000)", "bootBlock": "5.1-0 (15000)",
      "driver": "1.2-0 (29000)",
      "automaticFailover": "Enabled",
      "defaultBatteryProtected": true,
      "pci": { "bus": 4, "device": 1, "function": 0, "description": "RAID controller",
               "vendorId": "0x9005", "deviceId": "0x0286",
               "subsystemVendorId": "0x1F3D", "subsystemId": "0x9580",
               "class": "0x010400", "revision": "0x02" },
      "raidLevels": ["RAID0", "RAID1", "RAID1E", "RAID5", "RAID6", "RAID10", "VOLUME"],
      "minStripeKB": 16, "maxStripeKB": 1024,
      "enclosureDevices": [ { "channel": 2, "device": 0, "id": 0 } ],
      "drives": [
        { "channel": 0, "device": 0, "count": 8, "sizeMB": 69889, "rawSectors": 144420864,
          "revision": "B522", "serial": "NV7A0" }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x25d8", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

constexpr std::string_view hrconfSample = R"json({
  // One controller with drives on two parallel channels.
  "machineType": "8647",
  "serialNumber": "KQ08H2C",
  "controllers": [
    {
      "utility": "HRCONF",
      "model": "Kestrix-A10",
      "productName": "Norvik Kestrix A10",
      "serialNumber": "2000017",
      "bios": "4.30-17 (3152)", "firmware": "4.30-18 (3153)", "driver": "2.10-3 (41)",
      "channelDescription": "SCSI", "physicalSlot": 3, "installedMemory": "64 MB",
      "pci": { "bus": 2, "device": 7, "function": 0, "description": "RAID controller",
               "vendorId": "0x9005", "deviceId": "0x808f",
               "subsystemVendorId": "0x9005", "subsystemId": "0x005e",
               "class": "0x010400", "revision": "0x00" },
      "raidLevels": ["RAID0", "RAID1", "RAID10"],
      "minStripeKB": 16, "maxStripeKB": 64, "maxDrivesPerSpan": 4,
      "drives": [
        { "channel": 0, "device": 0, "count": 4, "sizeMB": 70006, "interface": "SCSI",
          "serial": "NV7B0" },
        { "channel": 1, "device": 8, "count": 3, "sizeMB": 70006, "interface": "SCSI",
          "serial": "NV7B1" }
      ]
    }
  ],
  "otherDevices": [
    { "bus": 0, "device": 0, "vendorId": "0x8086", "deviceId": "0x25c0", "class": "0x060000",
      "description": "Host bridge" }
  ]
}
)json";

} // namespace zolex_sim
