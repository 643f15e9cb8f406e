#pragma once

#include "model/Machine.h"

#include <optional>

namespace zolex {

class FileSystem;
class Report;

/// The machine as the inventory file has it; absent keys give empty texts. Nothing, after a fault
/// that has been reported, when the file cannot be read.
[[nodiscard]] std::optional<Machine> machineOfInventoryFile(FileSystem& files, Report& report);

/// Whether the machine's controllers of type 10 are put in order of bus number.
[[nodiscard]] bool reordersByBusNumber(const Machine& machine);

} // namespace zolex
