#include "SmbiosTable.h"

#include <algorithm>
#include <cstddef>

namespace hwdetect {

namespace {

constexpr unsigned systemStructure = 1;
constexpr unsigned endOfTable = 127;

// A structure: its type, the length of its formatted part and a handle of two bytes; in the
// formatted part a text is a number, from 1, of the texts that follow it. 0 is none.
constexpr std::size_t headerLength = 4;
constexpr std::size_t productNameAt = 5;
constexpr std::size_t serialNumberAt = 7;

unsigned byteAt(std::string_view bytes, std::size_t position) {
    return position < bytes.size() ? static_cast<unsigned char>(bytes[position]) : 0U;
}

struct Structure {
    unsigned type = 0;
    std::string_view formatted;
    std::string_view texts; ///< each with its NUL

    [[nodiscard]] std::string text(std::size_t position) const {
        const unsigned number = byteAt(formatted, position);
        std::string_view rest = texts;
        for (unsigned i = 1; i < number && !rest.empty(); ++i) {
            rest.remove_prefix(rest.find('\0') + 1);
        }
        return number == 0 ? std::string() : std::string(rest.substr(0, rest.find('\0')));
    }
};

/// Takes the first structure from the table; nothing when it is not whole.
std::optional<Structure> takeStructure(std::string_view& table) {
    Structure structure;
    structure.type = byteAt(table, 0);
    const std::size_t length = byteAt(table, 1);
    if (length < headerLength || length > table.size()) {
        return std::nullopt;
    }
    // Two NULs end the texts, also where there are none.
    const std::size_t end = table.find(std::string_view("\0\0", 2), length);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    structure.formatted = table.substr(0, length);
    structure.texts = table.substr(length, end + 1 - length);
    table.remove_prefix(end + 2);
    return structure;
}

} // namespace

std::optional<MachineNames> readSmbiosTable(std::string_view table) {
    while (const auto structure = takeStructure(table)) {
        if (structure->type == systemStructure) {
            return MachineNames{structure->text(productNameAt), structure->text(serialNumberAt)};
        }
        if (structure->type == endOfTable) {
            break;
        }
    }
    return std::nullopt;
}

std::optional<MachineNames> readRawSmbiosData(std::string_view data) {
    constexpr std::size_t lengthAt = 4;
    constexpr std::size_t tableAt = 8;
    if (data.size() < tableAt) {
        return std::nullopt;
    }
    std::size_t length = 0;
    for (std::size_t i = tableAt; i > lengthAt; --i) {
        length = length * 256 + byteAt(data, i - 1);
    }
    return readSmbiosTable(data.substr(tableAt, std::min(length, data.size() - tableAt)));
}

} // namespace hwdetect
