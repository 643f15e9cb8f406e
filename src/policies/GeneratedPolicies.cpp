#include "policies/GeneratedPolicies.h"

#include "policies/PolicyText.h"

#include <algorithm>
#include <string>
#include <utility>

namespace zolex {

namespace {

constexpr const char* defaultParameters = "t,d";

} // namespace

CString PolicyNames::choose(std::string_view model) {
    std::string typeText(model);
    std::replace(typeText.begin(), typeText.end(), ' ', '_');
    CString name;
    int suffix = 0;
    do {
        name = formatText("%s%s-%d", generatedPolicyPrefix, typeText.c_str(), ++suffix);
    } while (has(name));
    given_.push_back(name);
    return name;
}

bool PolicyNames::has(const CString& name) const {
    return file_.hasPolicy(name) ||
           std::any_of(given_.begin(), given_.end(),
                       [&name](const CString& earlier) { return earlier.equalsNoCase(name); });
}

GeneratedPolicy generatePolicy(const RAIDController& controller, std::int32_t number,
                               const CaptureOptions& options, const LocalTime& time,
                               const ControllerCatalogue& catalogue, PolicyNames& names,
                               Report& report) {
    CapturedFacts facts;
    facts.time = time;
    facts.machineType = options.machineType;
    facts.serialNumber = options.serialNumber;
    facts.controllerNumber = number;
    facts.controllerType = catalogue.getControllerName(controller.type(), controller.subtype());
    facts.explicitSizes = catalogue.acceptsExplicitSize(controller.type());

    report.notef(level::detail, "\tController %d:  %s\n", number, facts.controllerType.c_str());
    facts.policyName = names.choose(facts.controllerType);
    report.notef(level::detail, "\t\tGenerating policy:  %s\n", facts.policyName.c_str());

    GeneratedPolicy policy;
    policy.name = facts.policyName;
    policy.header = policyHeaderText(facts);
    const CString parameters =
        options.parameters.isEmpty() ? CString(defaultParameters) : options.parameters;
    if (const auto appliesTo = appliesToText(parameters, facts, controller)) {
        policy.body = policyBodyText(facts, *appliesTo, controller);
    } else {
        Fault fault;
        fault.kind = FaultKind::captureParametersInvalid;
        fault.wanted = parameters;
        fault.possible = "m s c o t d ALL";
        policy.fault = std::move(fault);
    }
    return policy;
}

bool isConfigured(const RAIDController& controller, std::int32_t number, Report& report) {
    if (controller.captured() != nullptr) {
        return true;
    }
    report.notef(level::progress, "\tSkipped controller %d -- controller is not configured.\n",
                 number);
    return false;
}

GeneratedPolicies generatePolicies(const ControllerList& controllers, const PolicyFile& file,
                                   const CaptureOptions& options, const LocalTime& time,
                                   const ControllerCatalogue& catalogue, Report& report) {
    GeneratedPolicies result;
    PolicyNames names(file);
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const RAIDController& controller = *controllers.controller(i);
        const auto number = static_cast<std::int32_t>(i + 1);
        if (!isConfigured(controller, number, report)) {
            continue;
        }
        const GeneratedPolicy policy =
            generatePolicy(controller, number, options, time, catalogue, names, report);
        if (policy.fault) {
            report.fault(*policy.fault);
            return {{}, 0, policy.fault};
        }
        result.text.append(policy.header).append(policy.body);
        ++result.count;
    }
    return result;
}

} // namespace zolex
