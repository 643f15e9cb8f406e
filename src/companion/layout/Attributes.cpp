#include "companion/layout/Attributes.h"

#include "companion/facts/Bytes.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zolex::companion {

namespace {

using Strip = ComparedAttributes::Strip;
using ReadCache = ComparedAttributes::ReadCache;

// Columns: the utility, its strip sizes, read cache, write cache, sizes, drives. The order does not
// matter.
// clang-format off
constexpr std::array<ComparedAttributes, 7> rows = {{
    {"MEGACLI",       Strip::all,     ReadCache::all,  true,  true,  true},
    {"ARCCONF",       Strip::striped, ReadCache::off,  true,  true,  true},
    {"HRCONF",        Strip::striped, ReadCache::none, false, false, true},
    {"QTCSEND",       Strip::none,    ReadCache::none, false, true,  true},
    {"CFGGEN",        Strip::none,    ReadCache::none, false, true,  true},
    {"CFGGEN1.02.02", Strip::none,    ReadCache::none, false, true,  true},
    {"HYPERWIN",      Strip::stripes, ReadCache::none, true,  true,  false},
}};
// clang-format on
constexpr ComparedAttributes all = {"", Strip::all, ReadCache::all, true, true, true};

/// A size whose text tells it from the other.
std::string sizeBeside(std::uint64_t bytes, std::uint64_t other) {
    std::string text = sizeText(bytes);
    return text == sizeText(other) ? std::to_string(bytes / bytesOfMb) + " MB" : text;
}

class VolumeComparison {
  public:
    VolumeComparison(const LayoutVolume& captured, const LayoutVolume& wanted,
                     const VolumePlace& place, const ComparedAttributes& attributes,
                     std::vector<std::string>& notComparable)
        : captured_(captured), wanted_(wanted), place_(place), attributes_(attributes),
          notComparable_(notComparable) {}

    std::vector<Difference> compare() {
        compareLevel();
        compareSize();
        compareStrip();
        compareWriteCache();
        compareReadCache();
        return std::move(differences_);
    }

  private:
    void compareLevel() {
        if (wanted_.raidType != captured_.raidType) {
            tell("raid_type", wanted_.raidType, captured_.raidType);
        }
    }

    void compareSize() {
        if (place_.sizeIsOpen || (!wanted_.fills && !wanted_.capacityBytes)) {
            return;
        }
        const bool isWhole = !attributes_.sizes && !wanted_.fills && captured_.fills;
        if (!captured_.capacityBytes || (isWhole && !isOfWantedSize())) {
            cannotCompare("capacity_bytes");
            return;
        }
        if (wanted_.fills ? isFilling() : isOfWantedSize()) {
            return;
        }
        const std::uint64_t found = *captured_.capacityBytes;
        const std::uint64_t size = wanted_.capacityBytes.value_or(0);
        const std::string text = size == 0 ? "" : sizeBeside(size, found);
        const std::string fill = text.empty() ? "fill" : "fill (" + text + ")";
        tell("capacity_bytes", wanted_.fills ? fill : text, sizeBeside(found, size));
    }

    [[nodiscard]] std::uint64_t granularity() const {
        return std::max(captured_.toleranceBytes, wanted_.toleranceBytes);
    }

    [[nodiscard]] bool isOfWantedSize() const {
        const std::uint64_t strip =
            captured_.stripSizeBytes.value_or(wanted_.stripSizeBytes.value_or(0));
        const std::uint64_t fullStripe =
            dataHalves(captured_.raidType, place_.drives, place_.spans) * strip / 2;
        const std::uint64_t found = *captured_.capacityBytes;
        const std::uint64_t size = *wanted_.capacityBytes;
        const std::uint64_t apart = std::max(found, size) - std::min(found, size);
        return apart <= granularity() + fullStripe + bytesOfMb;
    }

    /// Whether no room for another logical drive is left. What is behind others takes what these
    /// leave, however large that is.
    [[nodiscard]] bool isFilling() const {
        if (place_.roomIsKnown && !captured_.fills) {
            return false;
        }
        if (!place_.isFirst || !wanted_.capacityBytes) {
            return true;
        }
        const std::uint64_t size = *wanted_.capacityBytes;
        return *captured_.capacityBytes + fillMarginBytes + granularity() + metadataBytes(size) >=
               size;
    }

    void compareStrip() {
        if (!wanted_.stripSizeBytes) {
            return;
        }
        if (!stripIsCompared() || !captured_.stripSizeBytes) {
            cannotCompare("strip_size_bytes");
        } else if (*wanted_.stripSizeBytes != *captured_.stripSizeBytes) {
            tell("strip_size_bytes", stripSizeLine(*wanted_.stripSizeBytes),
                 stripSizeLine(*captured_.stripSizeBytes));
        }
    }

    [[nodiscard]] bool stripIsCompared() const {
        const std::string& level = wanted_.raidType;
        switch (attributes_.strip) {
        case Strip::all:
            return true;
        case Strip::striped:
            return level != "RAID1" && level != "None";
        case Strip::stripes:
            return level == "RAID0";
        case Strip::none:
            break;
        }
        return false;
    }

    /// Write-back with and without protection is one thing: policies know on and off.
    void compareWriteCache() {
        if (wanted_.writeCache.empty()) {
            return;
        }
        const bool wantedOff = wanted_.writeCache == "WriteThrough";
        const bool foundOff = captured_.writeCache == "WriteThrough";
        if (!attributes_.writeCache || captured_.writeCache.empty()) {
            cannotCompare("write_cache_policy");
        } else if (wantedOff != foundOff) {
            tell("write_cache_policy", writeCacheWords(wanted_.writeCache),
                 writeCacheWords(captured_.writeCache));
        }
    }

    void compareReadCache() {
        if (wanted_.readCache.empty()) {
            return;
        }
        const bool isCompared =
            attributes_.readCache == ReadCache::all ||
            (attributes_.readCache == ReadCache::off && wanted_.readCache == "Off");
        if (!isCompared || captured_.readCache.empty()) {
            cannotCompare("read_cache_policy");
        } else if (wanted_.readCache != captured_.readCache) {
            tell("read_cache_policy", readCacheWords(wanted_.readCache),
                 readCacheWords(captured_.readCache));
        }
    }

    void cannotCompare(const char* attribute) {
        if (std::find(notComparable_.begin(), notComparable_.end(), attribute) ==
            notComparable_.end()) {
            notComparable_.emplace_back(attribute);
        }
    }

    void tell(const char* attribute, std::string wanted, std::string found) {
        differences_.push_back({attribute, "", captured_.id, std::move(wanted), std::move(found)});
    }

    const LayoutVolume& captured_;
    const LayoutVolume& wanted_;
    const VolumePlace& place_;
    const ComparedAttributes& attributes_;
    std::vector<std::string>& notComparable_;
    std::vector<Difference> differences_;
};

} // namespace

const ComparedAttributes& comparedAttributes(std::string_view utility) {
    const auto* const row = std::find_if(
        rows.begin(), rows.end(), [utility](const auto& each) { return each.utility == utility; });
    return row == rows.end() ? all : *row;
}

std::vector<Difference> compareVolumes(const LayoutVolume& captured, const LayoutVolume& wanted,
                                       const VolumePlace& place,
                                       const ComparedAttributes& attributes,
                                       std::vector<std::string>& notComparable) {
    return VolumeComparison(captured, wanted, place, attributes, notComparable).compare();
}

} // namespace zolex::companion
