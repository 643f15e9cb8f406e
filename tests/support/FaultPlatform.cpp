#include "support/FaultPlatform.h"

#include "foundation/AllocationFaults.h"
#include "foundation/CString.h"
#include "platform/RegistryPciDeviceList.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace zolex::test {

namespace {

/// A stream over a file in memory.
class FaultFile : public File {
  public:
    FaultFile(FaultPlatform& platform, std::unique_ptr<File> file, std::string_view name)
        : platform_(platform), file_(std::move(file)), name_(name) {
        ++platform_.openFiles;
    }
    ~FaultFile() override {
        const UncountedAllocations uncounted;
        passOn(pending_);
        --platform_.openFiles;
    }

    std::size_t read(std::span<char> bytes) override {
        const UncountedAllocations uncounted;
        if (strikes(Operation::read)) {
            return 0;
        }
        const std::size_t n = file_->read(bytes);
        return n > 0 && strikes(Operation::readInPart) ? n / 2 : n;
    }
    std::size_t write(std::string_view bytes) override {
        const UncountedAllocations uncounted;
        if (strikes(Operation::write)) {
            return 0;
        }
        if (strikes(Operation::writeInPart)) {
            bytes = bytes.substr(0, bytes.size() / 2);
        }
        pending_ += bytes;
        return bytes.size();
    }
    bool failed() const override { return failed_ || file_->failed(); }
    bool rewind() override {
        const UncountedAllocations uncounted;
        if (strikes(Operation::rewind)) {
            return false;
        }
        passOn(pending_);
        return file_->rewind();
    }
    bool flush() override {
        const UncountedAllocations uncounted;
        return empty(Operation::flush);
    }
    bool close() override {
        const UncountedAllocations uncounted;
        return empty(Operation::close) && file_->close();
    }

  private:
    bool strikes(Operation operation) {
        const bool fails = platform_.fails(operation, name_);
        failed_ = failed_ || fails;
        return fails;
    }
    void passOn(std::string_view bytes) {
        file_->write(bytes);
        pending_.clear();
    }
    bool empty(Operation operation) {
        if (strikes(operation)) {
            passOn(std::string_view(pending_).substr(0, pending_.size() / 2));
            return false;
        }
        passOn(pending_);
        return true;
    }

    FaultPlatform& platform_;
    std::unique_ptr<File> file_;
    std::string name_;
    std::string pending_;
    bool failed_ = false;
};

/// The registry of a machine with these PCI functions.
struct RegistryTree {
    struct Key {
        std::vector<std::string> subkeys;
        std::vector<std::pair<std::string, std::string>> values;
    };

    explicit RegistryTree(const std::vector<PciDevice>& devices) {
        const std::string root = "SYSTEM\\CurrentControlSet\\Enum\\PCI";
        keys[root];
        for (std::size_t i = 0; i < devices.size(); ++i) {
            const PciDevice& device = devices[i];
            const std::string name = "DEVICE" + std::to_string(i);
            keys[root].subkeys.push_back(name);
            keys[root + "\\" + name].subkeys.push_back("1");
            const CString id = formatText(
                "PCI\\VEN_%04X&DEV_%04X&SUBSYS_%04X%04X&CC_%06X", unsigned{device.vendorId},
                unsigned{device.deviceId}, unsigned{device.subsystemId},
                unsigned{device.subsystemVendorId}, static_cast<unsigned>(device.classCode));
            const CString location =
                formatText("@pci.sys,#65536;PCI bus %%1, device %%2, function %%3;(%d,%d,%d)",
                           int{device.bus}, int{device.device}, int{device.function});
            const std::string end(1, '\0');
            keys[root + "\\" + name + "\\1"].values = {
                {"DeviceDesc", "RAID" + end},
                {"HardwareID", std::string(id.view()) + end + end},
                {"LocationInformation", std::string(location.view()) + end}};
        }
    }

    std::map<std::string, Key> keys;
};

class FaultKey : public RegistryKey {
  public:
    FaultKey(FaultPlatform& platform, RegistryTree::Key key, std::string path)
        : platform_(platform), key_(std::move(key)), path_(std::move(path)) {
        ++platform_.openKeys;
    }
    ~FaultKey() override { --platform_.openKeys; }

    std::optional<std::string> subkeyName(std::uint32_t index) override {
        const UncountedAllocations uncounted;
        if (platform_.fails(Operation::registrySubkey, path_) || index >= key_.subkeys.size()) {
            return std::nullopt;
        }
        return key_.subkeys[index];
    }
    RegistryValue value(std::uint32_t index, std::span<char> data) override {
        const UncountedAllocations uncounted;
        constexpr long accessDenied = 5;
        constexpr long noMoreItems = 259;
        if (platform_.fails(Operation::registryValue, path_)) {
            return {accessDenied, {}, 0};
        }
        if (index >= key_.values.size()) {
            return {noMoreItems, {}, 0};
        }
        const auto& [name, content] = key_.values[index];
        if (!data.empty() && content.size() > data.size()) {
            return {registry_result::moreData, name, content.size()};
        }
        std::copy_n(content.begin(), data.empty() ? 0 : content.size(), data.begin());
        return {registry_result::success, name, content.size()};
    }

  private:
    FaultPlatform& platform_;
    RegistryTree::Key key_;
    std::string path_;
};

class FaultRegistry : public Registry {
  public:
    FaultRegistry(FaultPlatform& platform, const std::vector<PciDevice>& devices)
        : platform_(platform), tree_(devices) {}

    std::unique_ptr<RegistryKey> open(const std::string& path) override {
        const UncountedAllocations uncounted;
        const auto key = tree_.keys.find(path);
        if (platform_.fails(Operation::registryOpen, path) || key == tree_.keys.end()) {
            return nullptr;
        }
        return std::make_unique<FaultKey>(platform_, key->second, path);
    }

  private:
    FaultPlatform& platform_;
    RegistryTree tree_;
};

} // namespace

class FaultPlatform::Files : public FileSystem {
  public:
    Files(FaultPlatform& platform, FakeFileSystem& files) : platform_(platform), files_(files) {}

    std::unique_ptr<File> open(std::string_view name, const char* mode) override {
        const UncountedAllocations uncounted;
        if (platform_.fails(Operation::open, name)) {
            return nullptr;
        }
        auto file = files_.open(name, mode);
        return file ? std::make_unique<FaultFile>(platform_, std::move(file), name) : nullptr;
    }
    std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                 WhenInterrupted interrupted) override {
        const UncountedAllocations uncounted;
        if (platform_.fails(Operation::create, name)) {
            return nullptr;
        }
        auto file = files_.create(name, other, interrupted);
        return file ? std::make_unique<FaultFile>(platform_, std::move(file), name) : nullptr;
    }
    LockResult lock(std::string_view name, std::chrono::milliseconds wait) override {
        const UncountedAllocations uncounted;
        if (platform_.fails(Operation::lock, name)) {
            LockResult busy;
            busy.isBusy = true;
            return busy;
        }
        return files_.lock(name, wait);
    }
    bool remove(std::string_view name) override {
        const UncountedAllocations uncounted;
        return !platform_.fails(Operation::remove, name) && files_.remove(name);
    }
    bool isFile(std::string_view name) override {
        const UncountedAllocations uncounted;
        return files_.exists(std::string(name));
    }

  private:
    FaultPlatform& platform_;
    FakeFileSystem& files_;
};

/// Asks for the memory that the console of a system with other line ends asks for, so that a text
/// may find none. A text that finds it arrives.
class FaultPlatform::FoldingConsole : public Console {
  public:
    explicit FoldingConsole(Console& console) : console_(console) {}
    void writeOutput(std::string_view text) override {
        output_.fold(text);
        const UncountedAllocations uncounted;
        console_.writeOutput(text);
    }
    void writeError(std::string_view text) override {
        error_.fold(text);
        const UncountedAllocations uncounted;
        console_.writeError(text);
    }
    int readCharacter() override { return console_.readCharacter(); }

  private:
    Console& console_;
    LineEndFolder output_;
    LineEndFolder error_;
};

FaultPlatform::FaultPlatform(FakePlatform& fake, Fault fault)
    : fake_(fake), fault_(fault), files_(std::make_unique<Files>(*this, fake.fileFake)),
      console_(std::make_unique<FoldingConsole>(fake.consoleFake)) {}

FaultPlatform::~FaultPlatform() = default;

Console& FaultPlatform::console() {
    return *console_;
}

FileSystem& FaultPlatform::files() {
    return *files_;
}

bool FaultPlatform::fails(Operation operation, std::string_view target) {
    const int number = ++calls_[static_cast<std::size_t>(operation)];
    const bool strikes = operation == fault_.operation && fault_.number > 0 &&
                         (number == fault_.number || (fault_.lasting && number > fault_.number));
    if (strikes) {
        struck.emplace_back(target);
    }
    return strikes;
}

ChildResult FaultPlatform::runChild(std::string_view commandLine, bool capture,
                                    std::chrono::milliseconds limit) {
    const UncountedAllocations uncounted;
    const bool noPipe = fails(Operation::pipe, commandLine);
    const bool notStarted = fails(Operation::start, commandLine);
    const bool stillRunning = fails(Operation::limit, commandLine);
    const bool refused = fails(Operation::exitCode, commandLine);
    const bool notClosed = fails(Operation::handles, commandLine);
    ChildResult result = fake_.runChild(commandLine, capture, limit);
    if (noPipe) {
        return {ChildOutcome::noPipe, 0, {}};
    }
    if (notStarted) {
        return {ChildOutcome::notStarted, 0, {}};
    }
    if (stillRunning) {
        return {ChildOutcome::stillRunning, 0, {}};
    }
    if (refused) {
        result.exitCode = refusedExitCode;
    }
    if (notClosed) {
        result.outcome = ChildOutcome::notClosed;
    }
    return result;
}

std::unique_ptr<PCI_DevList_VC> FaultPlatform::pciDevices() {
    const UncountedAllocations uncounted;
    return std::make_unique<RegistryPciDeviceList>(
        console(), std::make_unique<FaultRegistry>(*this, fake_.devices));
}

} // namespace zolex::test
