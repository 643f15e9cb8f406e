#include "commands/CommandLines.h"

#include "commands/CommandGenerator.h"
#include "model/ControllerCatalogue.h"
#include "model/RAIDController.h"

namespace zolex {

CommandLines commandLines(const RAIDController& controller, std::int32_t number,
                          const RAIDConfiguration& layout, const CommandStyle& style,
                          Report& report) {
    if (const GeneratorEntry* entry = findGenerator(controller.type()); entry != nullptr) {
        return entry->create({controller, number, layout, style, report})->generate();
    }
    Fault fault;
    fault.kind = FaultKind::typeWithoutGenerator;
    fault.place.section = layout.policyName;
    fault.place.model =
        ControllerCatalogue::getControllerName(controller.type(), controller.subtype());
    fault.place.controller = number;
    fault.number = controller.type();
    report.fault(fault);
    return {{}, fault};
}

} // namespace zolex
