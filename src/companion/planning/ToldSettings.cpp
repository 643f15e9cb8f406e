#include "companion/planning/ToldSettings.h"

#include "commands/CommandLines.h"
#include "foundation/Report.h"
#include "model/TypeTraits.h"

#include <vector>

namespace zolex::companion {

namespace {

constexpr std::uint64_t smallestStripBytes = 8192; ///< code 0

/// A logical drive alone on its array.
struct OneDrive {
    const RAIDController& record;
    std::int32_t number;
    RaidArray array;
    LogicalDrive logical;
    std::int32_t stripeSize;
    std::int32_t readAhead;
    std::int32_t rebuildRate;
    std::int32_t init;

    OneDrive(const RAIDController& controller, std::int32_t controllerNumber,
             const RAIDConfiguration& configuration, std::size_t drive)
        : record(controller), number(controllerNumber),
          logical(configuration.logicalDrives().at(drive)), stripeSize(configuration.stripeSize),
          readAhead(configuration.readAhead), rebuildRate(configuration.rebuildRate),
          init(configuration.init) {
        array = configuration.arrays().at(static_cast<std::size_t>(logical.arrayIndex));
        logical.arrayIndex = 0;
    }

    [[nodiscard]] std::vector<CString> lines() const {
        RAIDConfiguration alone;
        alone.stripeSize = stripeSize;
        alone.readAhead = readAhead;
        alone.rebuildRate = rebuildRate;
        alone.init = init;
        alone.addArray(array);
        alone.addLogicalDrive(logical);
        SilentReport silent;
        return commandLines(record, number, alone, {}, silent).lines;
    }
    [[nodiscard]] std::vector<CString> linesWithStripeSize(std::int32_t code) const {
        OneDrive other = *this;
        other.stripeSize = code;
        return other.lines();
    }
    [[nodiscard]] std::vector<CString> linesWithReadAhead(std::int32_t code) const {
        OneDrive other = *this;
        other.readAhead = code;
        return other.lines();
    }
    [[nodiscard]] std::vector<CString> linesWithWriteCache(std::int32_t code) const {
        OneDrive other = *this;
        other.logical.writeCache = code;
        return other.lines();
    }
};

/// Utilities take no more than a level allows: then larger codes make the same line.
std::optional<std::uint64_t> stripSizeOf(const OneDrive& drive, const std::vector<CString>& own) {
    const std::int32_t code = finalStripeSize(drive.record.type(), drive.stripeSize);
    const bool isTold = code != stripe::none && (own != drive.linesWithStripeSize(stripe::kb8) ||
                                                 own != drive.linesWithStripeSize(stripe::kb16));
    if (!isTold) {
        return std::nullopt;
    }
    std::int32_t least = code;
    while (least > stripe::kb8 && drive.linesWithStripeSize(least - 1) == own) {
        --least;
    }
    return smallestStripBytes << static_cast<unsigned>(least);
}

std::string writeCacheOf(const OneDrive& drive, const std::vector<CString>& own) {
    const std::vector<CString> on = drive.linesWithWriteCache(write_cache::on);
    const std::vector<CString> off = drive.linesWithWriteCache(write_cache::off);
    if (on == off) {
        return {};
    }
    return own == on ? "UnprotectedWriteBack" : own == off ? "WriteThrough" : "";
}

std::string readCacheOf(const OneDrive& drive, const std::vector<CString>& own) {
    const std::vector<CString> on = drive.linesWithReadAhead(read_ahead::on);
    const std::vector<CString> adaptive = drive.linesWithReadAhead(read_ahead::adaptive);
    const std::vector<CString> off = drive.linesWithReadAhead(read_ahead::off);
    if (on == off && adaptive == off) {
        return {};
    }
    if (own == off) {
        return "Off";
    }
    // Where the two are one, no line tells them: it is what the controller does by itself.
    return on == adaptive ? "" : own == on ? "ReadAhead" : "AdaptiveReadAhead";
}

} // namespace

ToldSettings toldSettings(const RAIDController& record, std::int32_t number,
                          const RAIDConfiguration& configuration, std::size_t drive) {
    const OneDrive one(record, number, configuration, drive);
    const std::vector<CString> own = one.lines();
    ToldSettings told;
    told.stripSizeBytes = stripSizeOf(one, own);
    told.writeCache = writeCacheOf(one, own);
    told.readCache = readCacheOf(one, own);
    return told;
}

bool tellsInit(const RAIDController& record, std::int32_t number,
               const RAIDConfiguration& configuration) {
    if (configuration.logicalDrives().empty()) {
        return false;
    }
    OneDrive quick(record, number, configuration, 0);
    OneDrive build = quick;
    quick.init = init_choice::quick;
    build.init = init_choice::build;
    return quick.lines() != build.lines();
}

} // namespace zolex::companion
