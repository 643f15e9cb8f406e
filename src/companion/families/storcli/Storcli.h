#pragma once

#include "companion/families/Family.h"

namespace zolex::companion {

/// Today's MegaRAID and PERC controllers, by a utility that answers in JSON.
class Storcli : public Family {
  public:
    [[nodiscard]] std::string_view name() const override { return "STORCLI"; }
    [[nodiscard]] std::span<const std::string_view> programs() const override;
    [[nodiscard]] bool isReading(std::string_view commandLine) const override;
    /// Where the utility has refused "nolog".
    [[nodiscard]] bool leavesFiles(std::string_view commandLine) const override;
    [[nodiscard]] FamilyCapture capture(Platform& platform,
                                        const FamilyRequest& request) const override;

    [[nodiscard]] FamilyLimits limits(const Facts& facts) const override;
    [[nodiscard]] std::string whyNotUsable(const DriveFacts& drive) const override;
    [[nodiscard]] std::string makeGood(std::int32_t adapter,
                                       const DriveFacts& drive) const override;
    [[nodiscard]] std::string createVolume(std::int32_t adapter,
                                           const VolumeWish& wish) const override;
    [[nodiscard]] std::string deleteVolume(std::int32_t adapter,
                                           const LogicalDriveFacts& volume) const override;
    [[nodiscard]] std::string addSpare(std::int32_t adapter, const std::string& location,
                                       const std::vector<std::string>& arrays) const override;
    [[nodiscard]] std::string removeSpare(std::int32_t adapter, const std::string& location,
                                          const std::vector<std::string>& arrays) const override;
    [[nodiscard]] bool numbersArraysAnew() const override { return true; }
    [[nodiscard]] std::string clearForeign(std::int32_t adapter) const override;
    [[nodiscard]] std::string setCache(std::int32_t adapter, const LogicalDriveFacts& volume,
                                       std::string_view attribute,
                                       std::string_view value) const override;
    [[nodiscard]] std::string setRebuildRate(std::int32_t adapter,
                                             std::string_view rate) const override;
    [[nodiscard]] FamilyVerdict judge(std::string_view commandLine, std::uint32_t exitCode,
                                      std::string_view output) const override;
};

} // namespace zolex::companion
