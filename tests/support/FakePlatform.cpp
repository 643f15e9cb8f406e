#include "support/FakePlatform.h"

#include <algorithm>
#include <cstring>

namespace zolex::test {

int FakeConsole::readCharacter() {
    if (charactersRead >= answers.size()) {
        return -1;
    }
    return static_cast<unsigned char>(answers[charactersRead++]);
}

namespace {

class FakeFile : public File {
  public:
    FakeFile(FakeFileSystem& files, std::string& content, const char* mode)
        : files_(files), content_(content), canRead_(mode[0] == 'r' || mode[1] == '+'),
          canWrite_(mode[0] != 'r' || mode[1] == '+') {
        if (mode[0] == 'w') {
            content_.clear();
        }
        if (mode[0] == 'a') {
            position_ = content_.size();
        }
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
        std::size_t n = bytes.size();
        if (files_.spaceLeft >= 0) {
            n = std::min(n, static_cast<std::size_t>(files_.spaceLeft));
            files_.spaceLeft -= static_cast<long long>(n);
        }
        failed_ = failed_ || n < bytes.size();
        content_.replace(position_, std::min(n, content_.size() - position_), bytes.substr(0, n));
        position_ += n;
        return n;
    }
    bool failed() const override { return failed_; }
    bool rewind() override {
        if (files_.failRewind) {
            return false;
        }
        position_ = 0;
        return true;
    }
    bool flush() override { return !failed_ && !files_.failFlush; }
    bool close() override { return !files_.failClose; }

  private:
    FakeFileSystem& files_;
    std::string& content_;
    std::size_t position_ = 0;
    bool canRead_;
    bool canWrite_;
    bool failed_ = false;
};

class FakeLock : public FileLock {
  public:
    FakeLock(FakeFileSystem& files, std::string name)
        : files_(files), name_(std::move(name)), made_(!files.exists(name_)) {
        files_.files[name_];
        files_.locked = name_;
    }
    FakeLock(const FakeLock&) = delete;
    FakeLock& operator=(const FakeLock&) = delete;
    ~FakeLock() override {
        files_.locked.clear();
        if (made_ && files_.files[name_].empty()) {
            files_.files.erase(name_);
        }
    }
    [[nodiscard]] bool madeFile() const override { return made_; }

  private:
    FakeFileSystem& files_;
    std::string name_;
    bool made_;
};

class FakePciDeviceList : public OrderedPciDeviceList {
  public:
    FakePciDeviceList(Console& console, std::vector<PciDevice> devices)
        : OrderedPciDeviceList(console), source_(std::move(devices)) {}

  protected:
    std::vector<PciDevice> enumerate() override { return source_; }

  private:
    std::vector<PciDevice> source_;
};

} // namespace

std::unique_ptr<File> FakeFileSystem::open(std::string_view name, const char* mode) {
    const std::string call = std::string(mode) + " " + std::string(name);
    opened.push_back(call);
    if (std::find(refused.begin(), refused.end(), call) != refused.end()) {
        return nullptr;
    }
    const std::string key(name);
    if (mode[0] == 'r' && files.count(key) == 0) {
        return nullptr;
    }
    return std::make_unique<FakeFile>(*this, files[key], mode);
}

std::unique_ptr<File> FakeFileSystem::create(std::string_view name, std::string_view other,
                                             WhenInterrupted whenInterrupted) {
    interrupted = whenInterrupted;
    return name == other ? nullptr : open(name, "w+");
}

LockResult FakeFileSystem::lock(std::string_view name, std::chrono::milliseconds wait) {
    lockCalls.push_back(std::string(name) + " " + std::to_string(wait.count()));
    LockResult result;
    result.isBusy = busy;
    if (!busy && std::find(refused.begin(), refused.end(), "a " + std::string(name)) ==
                     refused.end()) { // where nothing can be appended nothing is locked
        result.lock = std::make_unique<FakeLock>(*this, std::string(name));
    }
    return result;
}

bool FakeFileSystem::remove(std::string_view name) {
    removed.emplace_back(name);
    return !failRemove && files.erase(std::string(name)) != 0;
}

FakePlatform::FakePlatform() = default;

ChildResult FakePlatform::runChild(std::string_view commandLine, bool capture,
                                   std::chrono::milliseconds limit) {
    children.emplace_back(commandLine);
    limits.push_back(limit);
    ChildResult result = nextResult();
    if (!capture) {
        result.output.clear();
    }
    return result;
}

ChildResult FakePlatform::nextResult() {
    if (!results.empty()) {
        ChildResult result = std::move(results.front());
        results.pop_front();
        return result;
    }
    return respond ? respond(children.back()) : ended(0);
}

std::unique_ptr<PCI_DevList_VC> FakePlatform::pciDevices() {
    return std::make_unique<FakePciDeviceList>(consoleFake, devices);
}

} // namespace zolex::test
