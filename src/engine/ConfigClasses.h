#pragma once

#include <cstdint>
#include <memory>

namespace zolex {

class Application;
class RAIDConfigCreator;

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
