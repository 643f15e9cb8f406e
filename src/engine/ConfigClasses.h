#pragma once

#include "engine/TabledConfig.h"

#include <cstdint>
#include <memory>

namespace zolex {

/// Controllers of type 1.
class KXConfig : public TabledConfig {
  public:
    explicit KXConfig(Application& application);
};

/// Controllers of types 2, 7 and 11.
class KXTConfig : public TabledConfig {
  public:
    explicit KXTConfig(Application& application);
};

/// Controllers of types 3, 8 and 9.
class SATAConfig : public TabledConfig {
  public:
    explicit SATAConfig(Application& application);
};

/// Controllers of type 4.
class SCSIConfig : public TabledConfig {
  public:
    explicit SCSIConfig(Application& application);
};

/// Controllers of types 5 and 10. They have no stripe size: any code is accepted and none is the
/// default.
class LSIConfig : public TabledConfig {
  public:
    explicit LSIConfig(Application& application);
};

/// Controllers of type 6.
class IDEConfig : public TabledConfig {
  public:
    explicit IDEConfig(Application& application);
};

/// Controllers of type 12.
class MEGAConfig : public TabledConfig {
  public:
    explicit MEGAConfig(Application& application);
};

/// One row for each controller type: the configuration class that plans it, and the line that its
/// creation logs (empty: none).
struct ConfigClassEntry {
    std::int32_t controllerType;
    const char* creationTrace;
    std::unique_ptr<RAIDConfigCreator> (*create)(Application& application);
};

/// The row of a controller type; null outside 1 to 12.
[[nodiscard]] const ConfigClassEntry* findConfigClass(std::int32_t controllerType);

} // namespace zolex
