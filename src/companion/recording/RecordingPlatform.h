#pragma once

#include "companion/recording/Recording.h"

#include <string>

namespace zolex::companion {

/// A platform that keeps every call while it passes it on. Console and files are passed on as they
/// are: they are no part of the machine.
class RecordingPlatform : public Platform {
  public:
    RecordingPlatform(Platform& machine, CallKeeper& keeper) : machine_(machine), keeper_(keeper) {}

    Console& console() override { return machine_.console(); }
    FileSystem& files() override { return machine_.files(); }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    /// A list that keeps each collection.
    std::unique_ptr<PCI_DevList_VC> pciDevices() override;
    void pauseOneSecond() override;
    LocalTime localTime() override;
    FirmwareNames firmware() override;

  private:
    Platform& machine_;
    CallKeeper& keeper_;
};

} // namespace zolex::companion
