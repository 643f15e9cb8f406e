#pragma once

#include <cstdint>

namespace zolex {
class ControllerList;
class RAIDConfiguration;
class RAIDController;
struct Policy;
} // namespace zolex

namespace zolex::fuzz {

/// What holds of a configuration that was read: its counts are within the record's limits, its
/// members at positions that drives can have, its codes among the known ones. The array that a
/// logical drive names, and sizes, are as the listing tells them; who uses them has to look.
void checkConfiguration(const RAIDConfiguration& configuration, std::int32_t controllerType);

/// The same of a controller that a reader has filled, its configuration included.
void checkController(const RAIDController& controller);

/// What holds of a validated policy.
void checkPolicy(const Policy& policy);

} // namespace zolex::fuzz
