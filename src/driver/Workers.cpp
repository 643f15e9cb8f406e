#include "driver/ZOLEX.h"

#include "commands/CommandSource.h"
#include "policies/PolicyGenerator.h"
#include "policies/PolicyReader.h"
#include "readers/DiskInformation.h"

#include <new>

namespace zolex {

std::unique_ptr<Tool> ZOLEX::makeRunner() {
    return std::unique_ptr<Tool>(new (std::nothrow) Tool(platform(), printer(), childLimit));
}

std::unique_ptr<CommandSource> ZOLEX::makeCaptureSource() {
    return std::unique_ptr<CommandSource>(new (std::nothrow) GetConfigFiles(*this));
}

std::unique_ptr<CommandSource> ZOLEX::makeRestoreSource() {
    return std::unique_ptr<CommandSource>(new (std::nothrow) RestoreDefaults(*this));
}

std::unique_ptr<DiskInformation> ZOLEX::makeDiskInformation() {
    return std::unique_ptr<DiskInformation>(new (std::nothrow) DiskInformation(*this));
}

std::unique_ptr<PolicyReader> ZOLEX::makePolicyReader() {
    return std::unique_ptr<PolicyReader>(new (std::nothrow) PolicyReader(*this));
}

std::unique_ptr<PolicyGenerator> ZOLEX::makePolicyGenerator() {
    return std::unique_ptr<PolicyGenerator>(new (std::nothrow) PolicyGenerator(*this));
}

} // namespace zolex
