#include "engine/RAIDConfigCreator.h"

#include "controllers/Application.h"
#include "engine/Planning.h"
#include "foundation/Text.h"
#include "model/RAIDController.h"

#include <array>
#include <utility>

namespace zolex {

namespace {

/// The code below `codes` whose word is `text`, letter case ignored; `otherwise` when none is.
std::int32_t codeOfWord(const CString& text, const char* (*word)(std::int32_t), std::int32_t codes,
                        std::int32_t otherwise) {
    for (std::int32_t code = 0; code < codes; ++code) {
        if (text::equalsNoCase(text, word(code))) {
            return code;
        }
    }
    return otherwise;
}

} // namespace

bool RAIDConfigCreator::createConfig(RAIDController& controller, const Policy& policy) {
    struct Step {
        bool (RAIDConfigCreator::*run)();
        const char* failureTrace;
    };
    // In the order of planning. Hot spares come before arrays: automatic hot spares take the
    // largest free drives.
    static constexpr std::array<Step, 7> steps{{
        {&RAIDConfigCreator::doHotspares, "Exiting RAIDConfigCreator::createConfig(2)\n"},
        {&RAIDConfigCreator::doArrays, "Exiting RAIDConfigCreator::createConfig(3)\n"},
        {&RAIDConfigCreator::doLogicalDrives, "Exiting RAIDConfigCreator::createConfig(4)\n"},
        {&RAIDConfigCreator::doStripeSize, "Exiting RAIDConfigCreator::createConfig(5)\n"},
        {&RAIDConfigCreator::doReadAhead, "Exiting RAIDConfigCreator::createConfig(6)\n"},
        {&RAIDConfigCreator::doRebuildRate, "Exiting RAIDConfigCreator::createConfig(7)\n"},
        {&RAIDConfigCreator::doInit, "Exiting RAIDConfigCreator::createConfig(8)\n"},
    }};

    printer().trace("Entering RAIDConfigCreator::createConfig\n");
    controller_ = &controller;
    policy_ = &policy;
    controller.setConfiguration(nullptr);
    if (!canConfigure()) {
        printer().trace("Exiting RAIDConfigCreator::createConfig(1)\n");
        return true;
    }
    plan_ = std::make_unique<RAIDConfiguration>();
    plan_->policyName = policy.name;
    for (const Step& step : steps) {
        if (!(this->*step.run)()) {
            plan_.reset();
            printer().trace(step.failureTrace);
            return false;
        }
    }
    controller.setConfiguration(std::move(plan_));
    printer().trace("Exiting RAIDConfigCreator::createConfig(9)\n");
    return true;
}

std::int32_t RAIDConfigCreator::defaultLogicalDriveSize(const RaidArray& /*array*/) const {
    return sizeFill;
}

std::int32_t RAIDConfigCreator::defaultRebuildRate() const {
    return rebuild_rate::high;
}

bool RAIDConfigCreator::doStripeSize() {
    printer().trace("Entering RAIDConfigCreator::doStripeSize\n");
    plan_->stripeSize =
        codeOfWord(policy_->stripeSize, stripeSizeWord, stripe::none, defaultStripeSize());
    const bool supported = supportsStripeSize(plan_->stripeSize);
    if (!supported) {
        printer().errorBlockf("Error in %s -- %s does not support the stripe size specified.\n",
                              policyName(), modelName().c_str());
    }
    printer().tracef("Exiting RAIDConfigCreator::doStripeSize, returning %s\n",
                     resultWord(supported));
    return supported;
}

bool RAIDConfigCreator::doReadAhead() {
    printer().trace("Entering RAIDConfigCreator::doReadAhead\n");
    plan_->readAhead =
        codeOfWord(policy_->readAhead, readAheadWord, read_ahead::off + 1, defaultReadAhead());
    printer().trace("Exiting RAIDConfigCreator::doReadAhead, returning true\n");
    return true;
}

bool RAIDConfigCreator::doRebuildRate() {
    printer().trace("Entering RAIDConfigCreator::doRebuildRate\n");
    plan_->rebuildRate = codeOfWord(policy_->rebuildRate, rebuildRateWord, rebuild_rate::low + 1,
                                    defaultRebuildRate());
    printer().trace("Exiting RAIDConfigCreator::doRebuildRate, returning true\n");
    return true;
}

bool RAIDConfigCreator::doInit() {
    printer().trace("Entering RAIDConfigCreator::doInit\n");
    plan_->init =
        text::equalsNoCase(policy_->init, "BUILD") ? init_choice::build : init_choice::quick;
    printer().trace("Exiting RAIDConfigCreator::doInit, returning true\n");
    return true;
}

std::optional<DrivePosition> RAIDConfigCreator::getDriveNumber(std::int32_t number) {
    printer().tracef("Entering RAIDConfigCreator::getDriveNumber, number=%d\n", number);
    std::optional<DrivePosition> found;
    std::int32_t counted = 0;
    for (const DrivePosition position : planningOrder) {
        if (sizeAt(position) > 0 && ++counted == number) {
            found = position;
            break;
        }
    }
    printer().tracef("Exiting RAIDConfigCreator::getDriveNumber, returning %s\n",
                     resultWord(found.has_value()));
    return found;
}

bool RAIDConfigCreator::isFree(DrivePosition position) const {
    return sizeAt(position) > 0 && !controller_->isUsed(position.channel, position.id);
}

std::int32_t RAIDConfigCreator::sizeAt(DrivePosition position) const {
    return controller_->size(position.channel, position.id);
}

Printer& RAIDConfigCreator::printer() const {
    return application_.printer();
}

CString RAIDConfigCreator::modelName() const {
    return application_.controllerName(controller_->type(), controller_->subtype());
}

} // namespace zolex
