#include "engine/Planning.h"
#include "engine/RAIDConfigCreator.h"
#include "foundation/TraceScope.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>

namespace zolex {

bool RAIDConfigCreator::doHotspares() {
    const TraceScope scope(report_, "RAIDConfigCreator::doHotspares");
    return scope.returnValue(policy_.hotspares ? doCUSTOMHotspares() : doAUTOHotspares());
}

bool RAIDConfigCreator::doAUTOHotspares() {
    const TraceScope scope(report_, "RAIDConfigCreator::doAUTOHotspares");
    const std::int32_t count = automaticHotspareCount();
    for (std::int32_t made = 0; made < count; ++made) {
        const std::optional<DrivePosition> drive = largestFreeDrive();
        if (!drive) {
            Fault fault =
                makeHotspareFault(FaultKind::planHotspareShortage, keyword::arrayDefaults);
            fault.number = count;
            fault.possible = CString::fromInt(made); // each drive that was free became one
            return scope.returning(refuse(std::move(fault)));
        }
        if (!addHotspare(*drive, Reason::Kind::largestLast)) {
            return scope.returning(false);
        }
    }
    return scope.returning(true);
}

std::int32_t RAIDConfigCreator::automaticHotspareCount() {
    Reason reason{.subject = Reason::Subject::hotspareCount};
    const std::int32_t asked = policy_.arrayDefaults.hotspareCount;
    if (asked != notGiven) {
        reason.kind = Reason::Kind::policyDefault;
        reason.keyword = keyword::arrayDefaults;
        reason.asked = asked;
        reason.value = std::max(asked, 0);
    } else if (policy_.isGenerated()) {
        // A captured layout without hot spares must not get one: a spare taken here could be a
        // drive that one of its arrays lists.
        reason.kind = Reason::Kind::capturedPolicy;
    } else {
        reason.kind = Reason::Kind::classDefault;
        reason.value = rules_.defaultHotspareCount(controller_.numberOfDrives());
    }
    const std::int32_t count = reason.value;
    explain([&] { return std::move(reason); });
    return count;
}

std::optional<DrivePosition> RAIDConfigCreator::largestFreeDrive() const {
    std::optional<DrivePosition> best;
    for (const DrivePosition position : planningOrder) {
        if (isFree(position) && (!best || sizeAt(position) >= sizeAt(*best))) {
            best = position;
        }
    }
    return best;
}

bool RAIDConfigCreator::doCUSTOMHotspares() {
    const TraceScope scope(report_, "RAIDConfigCreator::doCUSTOMHotspares");
    const RaidArray& list = *policy_.hotspares;
    const std::size_t listed = list.driveNumbers().size() + list.drives().size();
    explain([&] {
        const auto count = static_cast<std::int32_t>(listed);
        return Reason{.kind = Reason::Kind::given,
                      .subject = Reason::Subject::hotspareCount,
                      .keyword = keyword::hotspares,
                      .asked = count,
                      .value = count};
    });
    const auto byNumber = [this](std::int32_t number) { return doHotspareByNumber(number); };
    const auto byLocation = [this](DrivePosition position) {
        return doHotspareByLocation(position);
    };
    // The list is of one kind; the first fault ends it.
    return scope.returning(
        std::all_of(list.driveNumbers().begin(), list.driveNumbers().end(), byNumber) &&
        std::all_of(list.drives().begin(), list.drives().end(), byLocation));
}

bool RAIDConfigCreator::doHotspareByNumber(std::int32_t number) {
    const TraceScope scope(report_, "RAIDConfigCreator::doHotspareByNumber");
    const std::optional<DrivePosition> position = getDriveNumber(number);
    return scope.returning(
        position ? addHotspare(*position, Reason::Kind::listed)
                 : refuseMissingDrive(
                       makeHotspareFault(FaultKind::planHotspareDriveMissing, keyword::hotspares),
                       number));
}

bool RAIDConfigCreator::doHotspareByLocation(DrivePosition position) {
    const TraceScope scope(report_, "RAIDConfigCreator::doHotspareByLocation");
    // A drive of unknown size (0) is good enough as a hot spare.
    constexpr std::int32_t leastMb = 0;
    return scope.returning(
        sizeAt(position) >= leastMb
            ? addHotspare(position, Reason::Kind::listed)
            : refuseMissingDrive(
                  makeHotspareFault(FaultKind::planHotspareDriveMissing, keyword::hotspares),
                  position, leastMb));
}

bool RAIDConfigCreator::addHotspare(DrivePosition position, Reason::Kind why) {
    take(position);
    explain([&] {
        return Reason{.kind = why,
                      .subject = Reason::Subject::hotspare,
                      .index = static_cast<std::int32_t>(layout_.hotspares().size()),
                      .keyword = why == Reason::Kind::listed ? keyword::hotspares : "",
                      .drive = position,
                      .value = sizeAt(position)};
    });
    Hotspare hotspare;
    hotspare.channelNumber = position.channel;
    hotspare.id = position.id;
    if (layout_.addHotspare(hotspare)) {
        return true;
    }
    Fault fault =
        makeHotspareFault(FaultKind::planTooManyHotspares,
                          policy_.hotspares ? keyword::hotspares : keyword::arrayDefaults);
    fault.number = static_cast<std::int32_t>(RAIDConfiguration::maxHotspares);
    return refuse(std::move(fault));
}

Fault RAIDConfigCreator::makeHotspareFault(FaultKind kind, const char* keyword) const {
    Fault fault = makeFault(kind);
    fault.place.keyword = keyword;
    return fault;
}

} // namespace zolex
