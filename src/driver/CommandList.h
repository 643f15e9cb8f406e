#pragma once

#include "foundation/CString.h"

#include <array>
#include <cstddef>

namespace zolex {

/// The commands that a deploy run keeps. 32 can be added, the first 16 can be fetched; the list
/// is never cleared during a run.
class CommandList {
  public:
    static constexpr std::size_t slots = 32;
    static constexpr std::size_t fetchable = 16;

    /// Puts the command into the first empty slot; false when all are used.
    bool add(CString command);
    /// Null for an empty slot and for an index above 15.
    [[nodiscard]] const CString* get(std::size_t index) const;

  private:
    std::array<CString, slots> commands_;
    std::size_t count_ = 0;
};

} // namespace zolex
