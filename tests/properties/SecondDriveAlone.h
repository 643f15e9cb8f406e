#pragma once

#include "properties/VirtualMachine.h"

#include <string_view>

namespace zolex::properties {

/// HYPERWIN tells of an array of one drive how many it has, and not that it is the second: such
/// controllers get no drives.
inline VirtualServer withoutSecondDriveAlone(VirtualServer server) {
    for (VirtualController& controller : server.controllers) {
        const bool isSecondAlone =
            families().at(controller.family).utility == std::string_view("HYPERWIN") &&
            !controller.drives.empty() && controller.drives.front().place != 0;
        if (isSecondAlone) {
            controller.drives.clear();
        }
    }
    return server;
}

} // namespace zolex::properties
