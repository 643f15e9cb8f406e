#include "driver/CommandList.h"

#include <utility>

namespace zolex {

bool CommandList::add(CString command) {
    if (count_ == slots) {
        return false;
    }
    commands_[count_++] = std::move(command);
    return true;
}

const CString* CommandList::get(std::size_t index) const {
    return index < fetchable && index < count_ ? &commands_[index] : nullptr;
}

} // namespace zolex
