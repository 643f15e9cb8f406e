#include "driver/ZOLEX.h"

#include "commands/CommandSource.h"
#include "driver/PolicyArguments.h"
#include "foundation/ErrorReporter.h"
#include "readers/DiskInformation.h"

#include <new>
#include <utility>

namespace zolex {

namespace {

/// A worker for `maker`; null without memory for it, which is reported.
template <typename Worker, typename... Values>
std::unique_ptr<Worker> make(Application& application, const char* maker, Values&&... values) {
    std::unique_ptr<Worker> worker(new (std::nothrow) Worker(std::forward<Values>(values)...));
    if (!worker) {
        reportError(application.platform().console(), ReportMode::goOn,
                    ReportCategory::memoryAllocation, maker);
    }
    return worker;
}

} // namespace

std::unique_ptr<Tool> ZOLEX::makeRunner() {
    return make<Tool>(*this, "ZOLEX::makeRunner", platform(), report(), childLimit);
}

SourceOptions ZOLEX::sourceOptions() const {
    return {.style = {.pathPrefix = settings.commandPathPrefix},
            .remarks = settings.fake,
            .withLayout = settings.capture,
            .scriptPrefix = settings.tempDirectory};
}

std::unique_ptr<CommandSource> ZOLEX::makeCaptureSource() {
    return make<GetConfigFiles>(*this, "ZOLEX::makeCaptureSource", sourceOptions(), report());
}

std::unique_ptr<CommandSource> ZOLEX::makeRestoreSource() {
    return make<RestoreDefaults>(*this, "ZOLEX::makeRestoreSource", sourceOptions(), report());
}

std::unique_ptr<DiskInformation> ZOLEX::makeDiskInformation() {
    return make<DiskInformation>(*this, "ZOLEX::makeDiskInformation", *this);
}

std::unique_ptr<PolicyReader> ZOLEX::makePolicyReader() {
    return make<PolicyReader>(*this, "ZOLEX::makePolicyReader", platform().files(), catalogue(),
                              report());
}

std::unique_ptr<PolicyGenerator> ZOLEX::makePolicyGenerator() {
    return make<PolicyGenerator>(*this, "ZOLEX::makePolicyGenerator", platform(), catalogue(),
                                 appending(settings), captureOptions(*this), report());
}

} // namespace zolex
