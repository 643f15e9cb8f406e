#pragma once

#include "model/Server.h"

#include <cstdint>
#include <string>

namespace zolex_sim::cfggen {

/// What an adapter's drives are attached by. It decides how the two utilities name drives and what
/// they show of them.
enum class Bus : std::uint8_t { sas, scsi };

/// The number by which the adapter knows the drive.
int targetId(const Drive& drive, Bus bus);

/// The blocks of the DISPLAY command: the adapter, its volumes, its drives and its enclosures.
std::string listing(const Controller& controller, Bus bus);

} // namespace zolex_sim::cfggen
