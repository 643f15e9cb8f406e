#include "WindowsSources.h"

#include "platform/win32/SystemRegistry.h"

#include <windows.h>

namespace hwdetect {

namespace {

/// The SMBIOS table with its header; empty when the system has none, or no call for it. NT 5.2 has
/// the call from its first service pack on, so it is looked for at run time.
std::string systemTable() {
    using GetTable = UINT(WINAPI*)(DWORD provider, DWORD table, PVOID buffer, DWORD size);
    constexpr DWORD rawSmbios = 0x52534D42; // "RSMB"
    const auto getTable = reinterpret_cast<GetTable>(reinterpret_cast<void (*)()>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetSystemFirmwareTable")));
    if (getTable == nullptr) {
        return {};
    }
    std::string table(getTable(rawSmbios, 0, nullptr, 0), '\0');
    const UINT size = getTable(rawSmbios, 0, table.data(), static_cast<DWORD>(table.size()));
    table.resize(size <= table.size() ? size : 0);
    return table;
}

} // namespace

FirmwareAnswer askFirmware() {
    const auto registry = zolex::win32::makeSystemRegistry();
    return readWindowsSources(systemTable(), *registry);
}

} // namespace hwdetect
