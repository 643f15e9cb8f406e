#include "engine/RAIDConfigCreator.h"

#include "engine/Planning.h"
#include "foundation/TraceScope.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

/// The supported stripe sizes in KB.
CString stripeSizeWords(const CodeSet& codes) {
    CString words;
    for (std::int32_t code = stripe::kb8; code < stripe::none; ++code) {
        if (codes.contains(code)) {
            words.append(words.isEmpty() ? "" : ", ");
            words.append(stripeSizeWord(code));
        }
    }
    return words;
}

std::size_t placeOf(DrivePosition position) {
    return static_cast<std::size_t>(position.channel) *
               static_cast<std::size_t>(RAIDController::ids) +
           static_cast<std::size_t>(position.id);
}

CString textOf(DrivePosition position) {
    return formatText("%d:%d", position.channel, position.id);
}

/// Where drives of at least `leastMb` MB are: "1:0 to 1:7, 2:3".
CString positionsOfDrives(const RAIDController& controller, std::int32_t leastMb) {
    CString words;
    DrivePosition last{};
    const auto closeRange = [&](bool isRange) {
        if (isRange) {
            words.append(" to ").append(textOf(last));
        }
    };
    bool isRange = false;
    for (const DrivePosition position : planningOrder) {
        if (controller.size(position.channel, position.id) < leastMb) {
            continue;
        }
        const bool follows = last == DrivePosition{position.channel, position.id - 1};
        if (!follows) {
            closeRange(isRange);
            words.append(words.isEmpty() ? "" : ", ").append(textOf(position));
        }
        isRange = follows;
        last = position;
    }
    closeRange(isRange);
    return words.isEmpty() ? CString("none") : words;
}

} // namespace

RAIDConfigCreator::RAIDConfigCreator(const RAIDController& controller, std::int32_t number,
                                     const ConfigDefaults& rules, const Policy& policy,
                                     bool explains, Report& report)
    : controller_(controller), rules_(rules), policy_(policy), explains_(explains), report_(report),
      modelName_(modelNameOf(controller)) {
    result_.number = number;
    result_.outcome = Outcome::refused;
    result_.policy = policy.name;
    layout_.policyName = policy.name;
}

ControllerPlan RAIDConfigCreator::plan() {
    report_.trace("Entering RAIDConfigCreator::createConfig\n");
    if (!rules_.canConfigure(controller_.numberOfDrives())) {
        report_.trace("Exiting RAIDConfigCreator::createConfig(1)\n");
        result_.outcome = Outcome::tooFewDrives;
    } else if (createConfig()) {
        report_.trace("Exiting RAIDConfigCreator::createConfig(9)\n");
        result_.outcome = Outcome::planned;
        result_.layout = std::move(layout_);
    }
    return std::move(result_);
}

bool RAIDConfigCreator::createConfig() {
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
    for (const Step& step : steps) {
        if (!(this->*step.run)()) {
            report_.trace(step.failureTrace);
            return false;
        }
    }
    return true;
}

bool RAIDConfigCreator::doStripeSize() {
    const TraceScope scope(report_, "RAIDConfigCreator::doStripeSize");
    layout_.stripeSize = chooseSetting(Reason::Subject::stripeSize, keyword::stripeSize,
                                       policy_.stripeSize, rules_.stripeSize);
    if (rules_.stripeSizes.contains(layout_.stripeSize)) {
        return scope.returning(true);
    }
    Fault fault = makeFault(FaultKind::planStripeSizeUnsupported);
    fault.place.keyword = keyword::stripeSize;
    fault.wanted = stripeSizeWord(layout_.stripeSize);
    fault.possible = stripeSizeWords(rules_.stripeSizes);
    return scope.returning(refuse(std::move(fault)));
}

bool RAIDConfigCreator::doReadAhead() {
    const TraceScope scope(report_, "RAIDConfigCreator::doReadAhead");
    layout_.readAhead = chooseSetting(Reason::Subject::readAhead, keyword::readAhead,
                                      policy_.readAhead, rules_.readAhead);
    return scope.returning(true);
}

bool RAIDConfigCreator::doRebuildRate() {
    const TraceScope scope(report_, "RAIDConfigCreator::doRebuildRate");
    layout_.rebuildRate = chooseSetting(Reason::Subject::rebuildRate, keyword::rebuildRate,
                                        policy_.rebuildRate, rebuild_rate::high);
    return scope.returning(true);
}

bool RAIDConfigCreator::doInit() {
    const TraceScope scope(report_, "RAIDConfigCreator::doInit");
    layout_.init =
        chooseSetting(Reason::Subject::init, keyword::init, policy_.init, init_choice::quick);
    return scope.returning(true);
}

std::int32_t RAIDConfigCreator::chooseSetting(Reason::Subject subject, const char* keyword,
                                              std::optional<std::int32_t> given,
                                              std::int32_t otherwise) {
    const std::int32_t chosen = given.value_or(otherwise);
    explain([&] {
        Reason reason{.kind = Reason::Kind::classDefault, .subject = subject, .value = chosen};
        if (given) {
            reason.kind = Reason::Kind::given;
            reason.keyword = keyword;
            reason.asked = *given;
        }
        return reason;
    });
    return chosen;
}

std::optional<DrivePosition> RAIDConfigCreator::getDriveNumber(std::int32_t number) {
    report_.tracef("Entering RAIDConfigCreator::getDriveNumber, number=%d\n", number);
    std::optional<DrivePosition> found;
    std::int32_t counted = 0;
    for (const DrivePosition position : planningOrder) {
        if (sizeAt(position) > 0 && ++counted == number) {
            found = position;
            break;
        }
    }
    report_.tracef("Exiting RAIDConfigCreator::getDriveNumber, returning %s\n",
                   resultWord(found.has_value()));
    return found;
}

bool RAIDConfigCreator::isFree(DrivePosition position) const {
    return sizeAt(position) > 0 && controller_.usable(position) && !taken_[placeOf(position)];
}

void RAIDConfigCreator::take(DrivePosition position) {
    taken_.set(placeOf(position));
}

std::int32_t RAIDConfigCreator::sizeAt(DrivePosition position) const {
    return controller_.size(position.channel, position.id);
}

Fault RAIDConfigCreator::makeFault(FaultKind kind) const {
    Fault fault;
    fault.kind = kind;
    fault.place.section = policy_.name;
    fault.place.model = modelName_;
    fault.place.controller = result_.number;
    return fault;
}

bool RAIDConfigCreator::refuse(Fault fault) {
    report_.fault(fault);
    result_.fault = std::move(fault);
    return false;
}

bool RAIDConfigCreator::refuseMissingDrive(Fault fault, std::int32_t number) {
    const auto drives =
        std::count_if(planningOrder.begin(), planningOrder.end(),
                      [this](DrivePosition position) { return sizeAt(position) > 0; });
    fault.wanted = CString::fromInt(number);
    fault.possible = drives == 0
                         ? CString("none")
                         : "1" + (drives == 1 ? CString() : " to " + CString::fromInt(drives));
    return refuse(std::move(fault));
}

bool RAIDConfigCreator::refuseMissingDrive(Fault fault, DrivePosition position,
                                           std::int32_t leastMb) {
    fault.place.channel = position.channel;
    fault.place.id = position.id;
    fault.wanted = textOf(position);
    fault.possible = positionsOfDrives(controller_, leastMb);
    return refuse(std::move(fault));
}

} // namespace zolex
