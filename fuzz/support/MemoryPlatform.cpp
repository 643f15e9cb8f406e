#include "support/MemoryPlatform.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zolex::fuzz {

namespace {

class MemoryFile : public File {
  public:
    MemoryFile(std::string& content, std::string_view mode)
        : content_(content), canRead_(mode.starts_with('r') || mode.ends_with('+')),
          canWrite_(!mode.starts_with('r') || mode.ends_with('+')) {
        if (mode.starts_with('w')) {
            content_.clear();
        }
        position_ = mode.starts_with('a') ? content_.size() : 0;
    }

    std::size_t read(std::span<char> bytes) override {
        if (!canRead_) {
            failed_ = true;
            return 0;
        }
        const std::size_t n = std::min(bytes.size(), content_.size() - position_);
        if (n > 0) {
            std::memcpy(bytes.data(), content_.data() + position_, n);
        }
        position_ += n;
        return n;
    }
    std::size_t write(std::string_view bytes) override {
        if (!canWrite_) {
            failed_ = true;
            return 0;
        }
        content_.replace(position_, std::min(bytes.size(), content_.size() - position_), bytes);
        position_ += bytes.size();
        return bytes.size();
    }
    [[nodiscard]] bool failed() const override { return failed_; }
    bool rewind() override {
        position_ = 0;
        return true;
    }
    bool flush() override { return !failed_; }
    bool close() override { return !failed_; }

  private:
    std::string& content_;
    std::size_t position_ = 0;
    bool canRead_;
    bool canWrite_;
    bool failed_ = false;
};

class MemoryPciDevices : public OrderedPciDeviceList {
  public:
    MemoryPciDevices(Console& console, std::vector<PciDevice> devices)
        : OrderedPciDeviceList(console), source_(std::move(devices)) {}

  protected:
    std::vector<PciDevice> enumerate() override { return source_; }

  private:
    std::vector<PciDevice> source_;
};

} // namespace

std::unique_ptr<File> MemoryFiles::open(std::string_view name, const char* mode) {
    const std::string key(name);
    if (mode[0] == 'r' && files.count(key) == 0) {
        return nullptr;
    }
    if (std::string_view(mode) != "r") {
        written.push_back(key);
    }
    return std::make_unique<MemoryFile>(files[key], mode);
}

bool MemoryFiles::remove(std::string_view name) {
    return files.erase(std::string(name)) != 0;
}

ChildResult MemoryPlatform::runChild(std::string_view commandLine, bool /*capture*/,
                                     std::chrono::milliseconds /*limit*/) {
    children.emplace_back(commandLine);
    return respond ? respond(commandLine) : ChildResult{ChildOutcome::ended, 0, {}};
}

std::unique_ptr<PCI_DevList_VC> MemoryPlatform::pciDevices() {
    return std::make_unique<MemoryPciDevices>(memoryConsole, devices);
}

} // namespace zolex::fuzz
