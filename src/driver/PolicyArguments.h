#pragma once

#include "driver/Application.h"
#include "driver/Settings.h"
#include "policies/PolicyGenerator.h"
#include "policies/PolicyReader.h"

/// What the command line says of policies.
namespace zolex {

[[nodiscard]] inline PolicySource policySource(const Settings& settings) {
    PolicySource source;
    source.file = settings.policiesFile;
    source.builtIn = settings.defaults;
    source.capture = settings.capture;
    source.fake = settings.fake;
    source.debug = settings.debug;
    return source;
}

[[nodiscard]] inline Appending appending(const Settings& settings) {
    return {policySource(settings), settings.tempDirectory, settings.debug};
}

/// The machine of an inventory file is not the one that the program runs on.
[[nodiscard]] inline CaptureOptions captureOptions(const Application& application) {
    CaptureOptions options;
    options.parameters = application.settings.captureParameters;
    if (!application.settings.fake && application.machine) {
        options.machineType = application.machine->machineType;
        options.serialNumber = application.machine->serialNumber;
    }
    return options;
}

} // namespace zolex
