#include "driver/Application.h"
#include "foundation/IniFile.h"
#include "inventory/ControllerList.h"
#include "readers/DiskInformation.h"
#include "show/Dumps.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"
#include "support/ModelCheck.h"
#include "support/Scan.h"

namespace zolex::fuzz {
namespace {

/// The lowest bit of the first byte chooses: the rest is an inventory file, or a
/// controller-definition file.
void readControllers(Input input) {
    const bool isDefinition = (input.choice() & 1U) != 0;
    test::FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(level::traces);
    ControllerList controllers;
    platform.fileFake.files["file.ini"] = input.rest();
    if (isDefinition) {
        application.settings.controllerDefinitionFile = "file.ini";
        check(test::scan(controllers, application), "a definition is always taken");
        check(DiskInformation({}, application.report())
                  .readDefinition(controllers, platform.files(), "file.ini"),
              "its drives too");
    } else {
        IniFile inventory(platform.files(), "file.ini", true);
        const bool read = controllers.initialize(inventory, application.report());
        check(!read || controllers.count() > 0, "an inventory holds a controller");
    }
    check(controllers.count() <= ControllerList::maxControllers, "number of controllers");
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        check(controllers.controller(i) != nullptr, "slots have no gaps");
        application.printer().printAlways(show::dumpText(*controllers.controller(i), true));
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readControllers(zolex::fuzz::Input(data, size));
    return 0;
}
