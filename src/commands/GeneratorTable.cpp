#include "commands/ARCCommands.h"
#include "commands/CFGGENCommands.h"
#include "commands/CommandGenerator.h"
#include "commands/HRCommands.h"
#include "commands/HYPERWINCommands.h"
#include "commands/MEGAWinCommands.h"
#include "commands/QTCSENDCommands.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

template <typename Generator>
std::unique_ptr<CommandGenerator> make(const GeneratorInput& input) {
    return std::make_unique<Generator>(input);
}

// Controller type, the line that the creation logs, the generator. Order does not matter.
// clang-format off
constexpr std::array<GeneratorEntry, controller_type::last> generators = {{
    {controller_type::family,    "Creating QTCSENDCommands\n",  make<QTCSENDCommands>},
    {controller_type::arcconf2,  "Creating ARCCommands\n",      make<ARCCommands>},
    {controller_type::hrconf3,   "Creating HRCommands\n",       make<HRCommands>},
    {controller_type::hrconf4,   "Creating HRCommands\n",       make<HRCommands>},
    {controller_type::lsiScsi,   "Creating CFGGENCommands\n",   make<CFGGENCommands>},
    {controller_type::lsiIde,    "Creating HYPERWINCommands\n", make<HYPERWINCommands>},
    {controller_type::arcconf7,  "Creating ARCCommands\n",      make<ARCCommands>},
    {controller_type::hrconf8,   "Creating HRCommands\n",       make<HRCommands>},
    {controller_type::hrconf9,   "Creating HRCommands\n",       make<HRCommands>},
    {controller_type::lsiSas,    "Creating CFGGENCommands\n",   make<CFGGENCommands>},
    {controller_type::arcconf11, "Creating ARCCommands\n",      make<ARCCommands>},
    {controller_type::megaRaid,  "Creating MEGAWinCommands\n",  make<MEGAWinCommands>},
}};
// clang-format on
static_assert(coversEveryType(generators));

} // namespace

const GeneratorEntry* findGenerator(std::int32_t controllerType) {
    const auto row =
        std::find_if(generators.begin(), generators.end(), [&](const GeneratorEntry& entry) {
            return entry.controllerType == controllerType;
        });
    return row != generators.end() ? &*row : nullptr;
}

} // namespace zolex
