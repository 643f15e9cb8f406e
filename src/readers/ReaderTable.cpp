#include "readers/ARCReader.h"
#include "readers/ConfigurationReader.h"
#include "readers/HRReader.h"
#include "readers/IDEReader.h"
#include "readers/KXReader.h"
#include "readers/MEGAReader.h"

#include "model/Codes.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>
#include <new>

namespace zolex {

namespace {

template <typename Reader>
std::unique_ptr<ConfigurationReader> create(Detail detail, Report& report) {
    return std::unique_ptr<ConfigurationReader>(new (std::nothrow) Reader(detail, report));
}

// Controller type; what is traced when its reader is created; the reader. Order does not matter.
// clang-format off
constexpr std::array<ReaderEntry, 12> readers{{
    {controller_type::family,    "Creating KXReader\n",   create<KXReader>},
    {controller_type::arcconf2,  "Creating ARCReader\n",  create<ARCReader>},
    {controller_type::hrconf3,   "Creating HRReader\n",   create<HRReader>},
    {controller_type::hrconf4,   "Creating HRReader\n",   create<HRReader>},
    {controller_type::lsiScsi,   "Creating KXReader\n",   create<KXReader>},
    {controller_type::lsiIde,    "Creating IDEReader\n",  create<IDEReader>},
    {controller_type::arcconf7,  "Creating ARCReader\n",  create<ARCReader>},
    {controller_type::hrconf8,   "Creating HRReader\n",   create<HRReader>},
    {controller_type::hrconf9,   "Creating HRReader\n",   create<HRReader>},
    {controller_type::lsiSas,    "Creating KXReader\n",   create<KXReader>},
    {controller_type::arcconf11, "Creating ARCReader\n",  create<ARCReader>},
    {controller_type::megaRaid,  "Creating MEGAReader\n", create<MEGAReader>},
}};
// clang-format on
static_assert(coversEveryType(readers));

} // namespace

const ReaderEntry* findReader(std::int32_t controllerType) {
    const auto entry =
        std::find_if(readers.begin(), readers.end(), [controllerType](const ReaderEntry& e) {
            return e.controllerType == controllerType;
        });
    return entry == readers.end() ? nullptr : &*entry;
}

} // namespace zolex
