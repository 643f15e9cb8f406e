#pragma once

#include "driver/Printer.h"
#include "foundation/Report.h"

namespace zolex {

/// Prints what the core reports: faults in their prescribed texts, notes and traces by verbosity.
class PrinterReport : public Report {
  public:
    explicit PrinterReport(Printer& printer) : printer_(printer) {}

    void fault(const Fault& fault) override;
    void note(std::int32_t level, std::string_view text) override { printer_.print(text, level); }
    void trace(std::string_view text) override { printer_.trace(text); }
    [[nodiscard]] bool shows(std::int32_t level) const override { return printer_.shows(level); }

  private:
    Printer& printer_;
};

} // namespace zolex
