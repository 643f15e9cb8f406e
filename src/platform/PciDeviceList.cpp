#include "platform/PciDeviceList.h"

#include "foundation/Console.h"
#include "platform/PciText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <tuple>

namespace zolex {

namespace {

/// Takes tokens from a text one after another. A token is a run of bytes that are no delimiters;
/// the delimiters before it and the one after it are taken along.
class Tokens {
  public:
    explicit Tokens(std::string_view text) : rest_(text) {}

    std::optional<std::string_view> next(std::string_view delimiters) {
        const std::size_t begin = rest_.find_first_not_of(delimiters);
        if (begin == std::string_view::npos) {
            rest_ = {};
            return std::nullopt;
        }
        const std::size_t end = std::min(rest_.find_first_of(delimiters, begin), rest_.size());
        const std::string_view token = rest_.substr(begin, end - begin);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return token;
    }

  private:
    std::string_view rest_;
};

/// Keeps the hardware id fields that have been seen, so that the first occurrence stays.
struct HardwareIdFields {
    std::optional<std::uint32_t> vendor;
    std::optional<std::uint32_t> device;
    std::optional<std::uint32_t> subsystem;
    std::optional<std::uint32_t> classCode;
    std::optional<std::uint32_t> revision;

    std::optional<std::uint32_t>* field(std::string_view key) {
        if (key == "PCI\\VEN") {
            return &vendor;
        }
        if (key == "DEV") {
            return &device;
        }
        if (key == "SUBSYS") {
            return &subsystem;
        }
        if (key == "CC") {
            return &classCode;
        }
        return key == "REV" ? &revision : nullptr;
    }
};

void readHardwareId(std::string_view id, HardwareIdFields& fields) {
    constexpr std::string_view delimiters = "&_";
    Tokens tokens(id);
    while (const auto key = tokens.next(delimiters)) {
        std::optional<std::uint32_t>* const field = fields.field(*key);
        if (field == nullptr) {
            continue;
        }
        const auto value = tokens.next(delimiters);
        if (value && !*field) {
            *field = pci::leadingHex(*value);
        }
    }
}

std::uint16_t low16(std::uint32_t value) {
    return static_cast<std::uint16_t>(value & 0xFFFFU);
}

/// One number of a location: its value, and which placeholder it was written as, if it was.
struct LocationNumber {
    std::uint16_t value = 0;
    std::optional<std::uint16_t> placeholder;
    bool read = false;

    void take(std::optional<std::string_view> token) {
        if (!token || read) {
            return;
        }
        std::string_view digits = *token;
        digits.remove_prefix(std::min(digits.find_first_not_of(' '), digits.size()));
        const bool isPlaceholder = digits.starts_with('%');
        if (isPlaceholder) {
            digits.remove_prefix(1);
        }
        value = pci::leadingDecimal(digits).value_or(0);
        if (isPlaceholder) {
            placeholder = value;
        }
        read = true;
    }
};

constexpr std::string_view locationDelimiters = " ,;";

/// Reads the tuple that begins with `token` and gives its numbers to the placeholders.
void fillPlaceholders(std::string_view token, Tokens& tokens,
                      std::span<LocationNumber* const> numbers) {
    std::optional<std::string_view> part = token.substr(1);
    if (part->empty()) {
        part = tokens.next(locationDelimiters);
    }
    for (std::uint16_t position = 1; position <= 3 && part; ++position) {
        const auto value = pci::leadingDecimal(*part);
        for (LocationNumber* number : numbers) {
            if (value && number->placeholder == position) {
                number->value = *value;
            }
        }
        if (part->find(')') != std::string_view::npos) {
            return;
        }
        part = tokens.next(locationDelimiters);
    }
}

bool isInRange(const PciDevice& device) {
    return device.bus <= 255 && device.device <= 31 && device.function <= 7;
}

} // namespace

void parseHardwareIds(PciDevice& device) {
    HardwareIdFields fields;
    Tokens ids(device.hardwareId);
    while (const auto id = ids.next(std::string_view("\0", 1))) {
        readHardwareId(*id, fields);
    }
    device.vendorId = low16(fields.vendor.value_or(device.vendorId));
    device.deviceId = low16(fields.device.value_or(device.deviceId));
    if (fields.subsystem) {
        device.subsystemVendorId = low16(*fields.subsystem);
        device.subsystemId = low16(*fields.subsystem >> 16U);
    }
    device.classCode = fields.classCode.value_or(device.classCode);
    device.revision = low16(fields.revision.value_or(device.revision));
}

void parseLocation(PciDevice& device) {
    const std::string_view raw = device.locationInformation;
    Tokens tokens(raw.substr(0, raw.find('\0')));
    LocationNumber bus;
    LocationNumber slot;
    LocationNumber function;
    const std::array numbers{&bus, &slot, &function};

    tokens.next(",;"); // the resource that the text stands for, or the part that names the bus
    while (const auto token = tokens.next(locationDelimiters)) {
        if (*token == "bus") {
            bus.take(tokens.next(","));
        } else if (*token == "device") {
            slot.take(tokens.next(" ,"));
        } else if (*token == "function") {
            function.take(tokens.next(locationDelimiters));
        } else if (token->starts_with('(') && bus.placeholder && function.read) {
            fillPlaceholders(*token, tokens, numbers);
            break;
        }
    }
    device.bus = bus.read ? bus.value : device.bus;
    device.device = slot.read ? slot.value : device.device;
    device.function = function.read ? function.value : device.function;
}

void PCI_DevList_VC::complain() {
    console_.writeOutput("Unimplemented SubClass PCI_DevList_VC Virtual funciton\n");
}

bool PCI_DevList_VC::rescan() {
    complain();
    return false;
}

const PciDevice* PCI_DevList_VC::next() {
    complain();
    return nullptr;
}

void PCI_DevList_VC::reset() {
    complain();
}

std::size_t PCI_DevList_VC::count() {
    complain();
    return 0;
}

int PCI_DevList_VC::spare() {
    complain();
    return 0;
}

bool PCI_DevList_VC::collect() {
    complain();
    return false;
}

const PciDevice* OrderedPciDeviceList::next() {
    return current_ < devices_.size() ? &devices_[current_++] : nullptr;
}

bool OrderedPciDeviceList::collect() {
    devices_ = enumerate();
    count_ = devices_.size();
    std::erase_if(devices_, [](const PciDevice& device) { return !isInRange(device); });
    std::stable_sort(devices_.begin(), devices_.end(), [](const PciDevice& a, const PciDevice& b) {
        return std::tie(a.bus, a.device, a.function) < std::tie(b.bus, b.device, b.function);
    });
    current_ = 0;
    return false;
}

} // namespace zolex
