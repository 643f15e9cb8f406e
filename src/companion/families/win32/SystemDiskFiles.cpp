#include "companion/families/md/DiskFiles.h"

namespace zolex::companion::md {

std::unique_ptr<DiskFiles> systemDiskFiles() {
    return nullptr;
}

} // namespace zolex::companion::md
