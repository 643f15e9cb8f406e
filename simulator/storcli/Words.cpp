#include "storcli/Words.h"

#include "model/Text.h"

#include <array>
#include <string_view>

namespace zolex_sim::storcli {
namespace {

// In the order of the enumerations.
constexpr std::array<std::string_view, 6> versions = {
    "",
    "007.1017.0000.0000 May 10, 2019",
    "007.1616.0000.0000 Dec 24, 2020",
    "007.2507.0000.0000 Mar 11, 2024",
    "007.3703.0000.0000 Jan 14, 2026",
    "008.0005.0000.0010 Feb 22, 2023",
};
constexpr std::array<std::string_view, 12> driveWords = {"UGood", "UBad",   "JBOD",  "Onln",
                                                         "Rbld",  "Cpybck", "Offln", "Failed",
                                                         "GHS",   "DHS",    "UGood", "Msng"};
constexpr std::array<std::string_view, 4> volumeWords = {"Optl", "Pdgd", "Dgrd", "OfLn"};

std::string decimalText(std::int64_t bytes) {
    constexpr std::int64_t tera = 1'000'000'000'000;
    const bool large = bytes >= tera;
    const std::int64_t hundredths = bytes / ((large ? tera : tera / 1000) / 100);
    return formatted("%lld.%02lld %s", static_cast<long long>(hundredths / 100),
                     static_cast<long long>(hundredths % 100), large ? "TB" : "GB");
}

/// `units` 1024ths, cut to three places.
std::string thousandths(std::int64_t units, const char* unit) {
    const std::int64_t cut = units * 1000 / 1024;
    return formatted("%lld.%03lld %s", static_cast<long long>(cut / 1000),
                     static_cast<long long>(cut % 1000), unit);
}

} // namespace

std::string versionText(Version version) {
    return std::string(versions[static_cast<std::size_t>(version)]);
}

std::string sizeText(const Controller& controller, std::int64_t sectors, int sectorBytes,
                     bool ofDrive) {
    const std::int64_t bytes = sectors * sectorBytes;
    if (ofDrive && controller.branding == Branding::hpe) {
        return decimalText(bytes);
    }
    const bool iec = controller.version == Version::second;
    const std::int64_t kib = bytes >> 10;
    if (kib >= std::int64_t{1} << 30) {
        return thousandths(kib >> 20, iec ? "TiB" : "TB");
    }
    if (kib < 1 << 20) {
        return thousandths(kib, iec ? "MiB" : "MB");
    }
    if (controller.version == Version::first) {
        const std::int64_t tenths = kib * 10 >> 20;
        return formatted("%lld.%lld GB", static_cast<long long>(tenths / 10),
                         static_cast<long long>(tenths % 10));
    }
    return thousandths(kib >> 10, iec ? "GiB" : "GB");
}

std::string stripText(int stripKb) {
    return stripKb < 1024 ? formatted("%d KB", stripKb) : thousandths(stripKb, "MB");
}

std::string placeText(const DriveLocation& place) {
    return (place.enclosure ? std::to_string(*place.enclosure) : std::string(" ")) + ":" +
           std::to_string(place.slot);
}

std::string pathText(std::size_t controller, const DriveLocation& place) {
    return formatted("/c%zu", controller) +
           (place.enclosure ? formatted("/e%d", *place.enclosure) : std::string()) +
           formatted("/s%d", place.slot);
}

std::string stateText(DriveState state) {
    return std::string(driveWords[static_cast<std::size_t>(state)]);
}

std::string stateText(VolumeState state) {
    return std::string(volumeWords[static_cast<std::size_t>(state)]);
}

std::string cacheText(const Controller& controller, const Volume& volume) {
    const bool sound = controller.battery == Battery::optimal;
    std::string write(wordOf(volume.cache));
    if (volume.cache == Cache::writeBack && !sound && controller.showsRunningCache) {
        write = "WT";
    } else if (volume.cache == Cache::alwaysWriteBack && controller.branding == Branding::perc) {
        write = "FWB";
    }
    return (volume.readAhead ? "R" : "NR") + write + (volume.cachedIo ? "C" : "D");
}

} // namespace zolex_sim::storcli
