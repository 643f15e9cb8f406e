#include "companion/recording/RecordingPlatform.h"

#include "companion/machine/System.h"

#include <utility>

namespace zolex::companion {

namespace {

/// What a recording holds of a function.
PciDevice keptPart(const PciDevice& device) {
    PciDevice kept;
    kept.vendorId = device.vendorId;
    kept.deviceId = device.deviceId;
    kept.subsystemVendorId = device.subsystemVendorId;
    kept.subsystemId = device.subsystemId;
    kept.bus = device.bus;
    kept.device = device.device;
    kept.function = device.function;
    kept.classCode = device.classCode;
    kept.revision = device.revision;
    return kept;
}

/// Passes everything on to the machine's list.
class KeptPciDeviceList : public PCI_DevList_VC {
  public:
    KeptPciDeviceList(Console& console, std::unique_ptr<PCI_DevList_VC> machine, CallKeeper& keeper)
        : PCI_DevList_VC(console), machine_(std::move(machine)), keeper_(keeper) {}

    bool rescan() override { return kept(machine_->rescan()); }
    const PciDevice* next() override { return machine_->next(); }
    void reset() override { machine_->reset(); }
    std::size_t count() override { return machine_->count(); }
    int spare() override { return machine_->spare(); }
    bool collect() override { return kept(machine_->collect()); }

  private:
    bool kept(bool result) {
        PciCall call;
        machine_->reset();
        while (const PciDevice* const device = machine_->next()) {
            call.devices.push_back(keptPart(*device));
        }
        machine_->reset();
        call.count = machine_->count();
        keeper_.keep(call);
        return result;
    }

    std::unique_ptr<PCI_DevList_VC> machine_;
    CallKeeper& keeper_;
};

} // namespace

ChildResult RecordingPlatform::runChild(std::string_view commandLine, bool capture,
                                        std::chrono::milliseconds limit) {
    const std::chrono::milliseconds start = system::elapsed();
    ChildCall call;
    call.command = recordedCommand(commandLine);
    call.capture = capture;
    call.limit = limit;
    call.result = machine_.runChild(commandLine, capture, limit);
    call.duration = system::elapsed() - start;
    CallKind kept = std::move(call);
    keeper_.keep(kept);
    return std::move(std::get<ChildCall>(kept).result);
}

std::unique_ptr<PCI_DevList_VC> RecordingPlatform::pciDevices() {
    std::unique_ptr<PCI_DevList_VC> list = machine_.pciDevices();
    if (list == nullptr) {
        return nullptr;
    }
    return std::make_unique<KeptPciDeviceList>(console(), std::move(list), keeper_);
}

void RecordingPlatform::pauseOneSecond() {
    machine_.pauseOneSecond();
    keeper_.keep(PauseCall{});
}

LocalTime RecordingPlatform::localTime() {
    const LocalTime time = machine_.localTime();
    keeper_.keep(LocalTimeCall{time});
    return time;
}

FirmwareNames RecordingPlatform::firmware() {
    FirmwareNames names = machine_.firmware();
    keeper_.keep(FirmwareCall{names});
    return names;
}

} // namespace zolex::companion
