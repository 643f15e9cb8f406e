#include "platform/win32/SystemRegistry.h"

#include <array>
#include <windows.h>

namespace zolex::win32 {

namespace {

static_assert(registry_result::success == ERROR_SUCCESS);
static_assert(registry_result::moreData == ERROR_MORE_DATA);

/// Longest name of a subkey, its terminator included.
constexpr DWORD keyNameSize = 260;
/// Longest name of a value, its terminator included.
constexpr DWORD valueNameSize = 16384;

class SystemKey : public RegistryKey {
  public:
    explicit SystemKey(HKEY key) : key_(key) {}
    SystemKey(const SystemKey&) = delete;
    SystemKey& operator=(const SystemKey&) = delete;
    ~SystemKey() override { RegCloseKey(key_); }

    std::optional<std::string> subkeyName(std::uint32_t index) override {
        std::array<char, keyNameSize> name{};
        if (RegEnumKeyA(key_, index, name.data(), keyNameSize) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        return name.data();
    }

    RegistryValue value(std::uint32_t index, std::span<char> data) override {
        DWORD nameLength = valueNameSize;
        auto dataSize = static_cast<DWORD>(data.size());
        BYTE* const bytes = data.empty() ? nullptr : reinterpret_cast<BYTE*>(data.data());
        RegistryValue value;
        value.result = RegEnumValueA(key_, index, valueName_.data(), &nameLength, nullptr, nullptr,
                                     bytes, &dataSize);
        if (value.result == ERROR_SUCCESS) {
            value.name.assign(valueName_.data(), nameLength);
        }
        if (value.result == ERROR_SUCCESS || value.result == ERROR_MORE_DATA) {
            value.dataSize = dataSize;
        }
        return value;
    }

  private:
    HKEY key_;
    std::array<char, valueNameSize> valueName_{};
};

class SystemRegistry : public Registry {
  public:
    std::unique_ptr<RegistryKey> open(const std::string& path) override {
        HKEY key = nullptr;
        if (RegOpenKeyA(HKEY_LOCAL_MACHINE, path.c_str(), &key) != ERROR_SUCCESS) {
            return nullptr;
        }
        return std::make_unique<SystemKey>(key);
    }
};

} // namespace

std::unique_ptr<Registry> makeSystemRegistry() {
    return std::make_unique<SystemRegistry>();
}

} // namespace zolex::win32
