#pragma once

#include "companion/facts/Facts.h"

#include <span>
#include <string>

/// The readings of the utilities. Each takes the listings of one capture.
namespace zolex::companion {

[[nodiscard]] Facts readMegacli(std::span<const std::string> listings);
[[nodiscard]] Facts readArcconf(std::span<const std::string> listings);
[[nodiscard]] Facts readHrconf(std::span<const std::string> listings);
[[nodiscard]] Facts readQtcsend(std::span<const std::string> listings);
[[nodiscard]] Facts readCfggen(std::span<const std::string> listings);
/// CFGGEN's twin for a parallel bus.
[[nodiscard]] Facts readCfggenScsi(std::span<const std::string> listings);
[[nodiscard]] Facts readHyperwin(std::span<const std::string> listings);

} // namespace zolex::companion
