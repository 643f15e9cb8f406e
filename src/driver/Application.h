#pragma once

#include "driver/Printer.h"
#include "driver/PrinterReport.h"
#include "driver/Settings.h"
#include "foundation/CString.h"
#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "model/Machine.h"
#include "platform/Platform.h"
#include "platform/Tool.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace zolex {

/// What every part of a run needs: settings, printers, platform, catalogue, machine information.
/// It knows nothing of the modes.
class Application {
  public:
    explicit Application(Platform& platform)
        : platform_(platform), printer_(platform.console()), report_(printer_) {}
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    [[nodiscard]] Platform& platform() { return platform_; }
    [[nodiscard]] Printer& printer() { return printer_; }
    [[nodiscard]] Report& report() { return report_; }
    [[nodiscard]] ControllerCatalogue& catalogue() { return catalogue_; }
    /// Model name of a controller's type and subtype.
    [[nodiscard]] CString controllerName(std::int32_t type, std::int32_t subtype) const {
        return catalogue_.getControllerName(type, subtype);
    }

    Settings settings;
    /// What the hardware detector told; nothing when it failed. It is not asked in a run from a
    /// controller-definition or an inventory file: then the texts are empty.
    std::optional<Machine> machine = Machine{};
    /// Of the plans: 12: too few drives for hot spares; 13: the drives do not fit the plan; 0: none
    /// of these.
    std::int32_t returnCode = 0;
    /// How long a child may run.
    std::chrono::milliseconds childLimit = Tool::defaultLimit;

  private:
    Platform& platform_;
    Printer printer_;
    PrinterReport report_;
    ControllerCatalogue catalogue_;
};

} // namespace zolex
