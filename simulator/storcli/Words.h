#pragma once

#include "model/StorcliController.h"

#include <cstdint>
#include <string>

namespace zolex_sim::storcli {

/// "007.2507.0000.0000 Mar 11, 2024"; empty for versions that do not tell theirs.
std::string versionText(Version version);

/// A size in sectors as the utility cuts it: "893.750 GB", "7.277 TB". The unit is binary; that of
/// drives under HPE's branding is decimal.
std::string sizeText(const Controller& controller, std::int64_t sectors, int sectorBytes,
                     bool ofDrive);

/// "64 KB", "1.000 MB".
std::string stripText(int stripKb);

/// "252:3", or " :3" without an enclosure.
std::string placeText(const DriveLocation& place);

/// "/c0/e252/s3", or "/c0/s3".
std::string pathText(std::size_t controller, const DriveLocation& place);

/// "Onln", "UGood", ...
std::string stateText(DriveState state);
/// "Optl", "Pdgd", "Dgrd", "OfLn".
std::string stateText(VolumeState state);

/// "RWBD": read ahead, write cache, I/O.
std::string cacheText(const Controller& controller, const Volume& volume);

} // namespace zolex_sim::storcli
