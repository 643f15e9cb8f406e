#include "companion/machine/Sha256.h"
#include "companion/planning/Steps.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zolex::companion {

namespace {

/// One line for a loss: what it is and how large. Its state is left out, since it may change by
/// itself, and so is the name that the system has for it.
std::string lineOfLoss(const Loss& loss) {
    std::string line = std::to_string(loss.controller) + "\t" + loss.kind + "\t" + loss.id + "\t" +
                       loss.raidType + "\t";
    for (const std::string& drive : loss.drives) {
        line += drive + " ";
    }
    line += "\t" + std::to_string(loss.capacityBytes);
    if (!loss.uniqueId.empty()) {
        line += "\t" + loss.uniqueId + "\t" + loss.name;
    }
    return line + "\n";
}

} // namespace

std::string consentCode(const std::string& identityHash, const std::vector<Loss>& losses) {
    if (losses.empty()) {
        return {};
    }
    std::vector<std::string> lines;
    lines.reserve(losses.size());
    for (const Loss& loss : losses) {
        lines.push_back(lineOfLoss(loss));
    }
    std::sort(lines.begin(), lines.end());
    Sha256 hash;
    hash.add(identityHash + "\n");
    for (const std::string& line : lines) {
        hash.add(line);
    }
    const Sha256::Digest digest = hash.finish();

    // Crockford's alphabet: no I, L, O and U. Five bits a digit.
    constexpr std::string_view alphabet = "0123456789ABCDEFGHJKMNPQRSTVWXYZ";
    constexpr std::size_t bytes = 5;
    constexpr unsigned bitsOfByte = 8;
    constexpr unsigned bitsOfDigit = 5;
    constexpr std::size_t half = 4;
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        bits = (bits << bitsOfByte) | digest[i];
    }
    std::string code;
    for (unsigned shift = bytes * bitsOfByte; shift > 0; shift -= bitsOfDigit) {
        if (code.size() == half) {
            code += '-';
        }
        code += alphabet[(bits >> (shift - bitsOfDigit)) % alphabet.size()];
    }
    return code;
}

} // namespace zolex::companion
