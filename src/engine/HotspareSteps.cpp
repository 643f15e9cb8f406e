#include "controllers/Application.h"
#include "engine/Planning.h"
#include "engine/RAIDConfigCreator.h"
#include "model/RAIDController.h"

#include <algorithm>

namespace zolex {

bool RAIDConfigCreator::doHotspares() {
    printer().trace("Entering RAIDConfigCreator::doHotspares\n");
    const bool done = policy_->hotspares ? doCUSTOMHotspares() : doAUTOHotspares();
    printer().tracef("Exiting RAIDConfigCreator::doHotspares, returnValue=%s\n", resultWord(done));
    return done;
}

bool RAIDConfigCreator::doAUTOHotspares() {
    printer().trace("Entering RAIDConfigCreator::doAUTOHotspares\n");
    // A captured layout without hot spares must not get one: a spare taken here could be a drive
    // that one of its arrays lists.
    const std::int32_t standing = policy_->isGenerated() ? 0 : defaultHotspareCount();
    const std::int32_t asked = policy_->arrayDefaults.hotspareCount;
    const std::int32_t count = asked == notGiven ? standing : asked;
    bool done = true;
    for (std::int32_t made = 0; done && made < count; ++made) {
        const std::optional<DrivePosition> drive = largestFreeDrive();
        if (drive) {
            done = addHotspare(*drive);
        } else {
            printer().errorBlockf("%s, Hotspares -- Not enough drives available to create %d "
                                  "hot-spare drives.\n\t%s controller.\n",
                                  policyName(), count, modelName().c_str());
            application_.returnCode = planning_code::tooFewForHotspares;
            printer().print("Not enough available drives to allocate hot spares\n",
                            level::shortage);
            done = false;
        }
    }
    printer().tracef("Exiting RAIDConfigCreator::doAUTOHotspares, returning %s\n",
                     resultWord(done));
    return done;
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
    printer().trace("Entering RAIDConfigCreator::doCUSTOMHotspares\n");
    const RaidArray& list = *policy_->hotspares;
    const auto byNumber = [this](std::int32_t number) { return doHotspareByNumber(number); };
    const auto byLocation = [this](DrivePosition position) {
        return doHotspareByLocation(position);
    };
    // The list is of one kind; the first fault ends it.
    const bool done =
        std::all_of(list.driveNumbers().begin(), list.driveNumbers().end(), byNumber) &&
        std::all_of(list.drives().begin(), list.drives().end(), byLocation);
    printer().tracef("Exiting RAIDConfigCreator::doCUSTOMHotspares, returning %s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::doHotspareByNumber(std::int32_t number) {
    printer().trace("Entering RAIDConfigCreator::doHotspareByNumber\n");
    const std::optional<DrivePosition> position = getDriveNumber(number);
    if (!position) {
        reportMissingHotspare(CString::fromInt(number));
    }
    const bool done = position && addHotspare(*position);
    printer().tracef("Exiting RAIDConfigCreator::doHotspareByNumber, returning %s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::doHotspareByLocation(DrivePosition position) {
    printer().trace("Entering RAIDConfigCreator::doHotspareByLocation\n");
    // A drive of unknown size (0) is good enough as a hot spare.
    const bool exists = sizeAt(position) >= 0;
    if (!exists) {
        reportMissingHotspare(formatText("%d:%d", position.channel, position.id));
    }
    const bool done = exists && addHotspare(position);
    printer().tracef("Exiting RAIDConfigCreator::doHotspareByLocation, returning %s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::addHotspare(DrivePosition position) {
    Hotspare hotspare;
    hotspare.channelNumber = position.channel;
    hotspare.id = position.id;
    controller_->setUsed(position.channel, position.id);
    if (plan_->addHotspare(hotspare)) {
        return true;
    }
    printer().errorBlockf("Error in %s -- %s does not support more than 8 hot-spare drives.\n",
                          policyName(), modelName().c_str());
    application_.returnCode = planning_code::drivesDoNotFit;
    return false;
}

void RAIDConfigCreator::reportMissingHotspare(const CString& drive) {
    printer().errorBlockf(
        "%s, Hotspares -- The following drive does not exist:  %s\n\t%s controller.\n",
        policyName(), drive.c_str(), modelName().c_str());
    application_.returnCode = planning_code::tooFewForHotspares;
    printer().print("Not enough available drives to allocate hot spares\n", level::shortage);
}

} // namespace zolex
