#include "policies/PolicyGenerator.h"

#include "foundation/EndingTask.h"
#include "foundation/TemporaryFile.h"

#include <array>
#include <chrono>
#include <memory>
#include <string_view>
#include <utility>

namespace zolex {

namespace {

constexpr const char* temporaryFileName = "ZOLEXM~~.TMP";

/// The lock of the policies file, from here to the end of the object or of the process.
class PoliciesLock : private EndingTask {
  public:
    PoliciesLock(FileSystem& files, const CString& name) {
        constexpr std::chrono::seconds longestWait{10};
        LockResult result = files.lock(name, longestWait);
        state_ = result.isBusy                            ? PoliciesFile::busy
                 : result.lock && result.lock->madeFile() ? PoliciesFile::missing
                                                          : PoliciesFile::asItIs;
        lock_ = std::move(result.lock);
    }

    /// The file as it was before.
    [[nodiscard]] PoliciesFile state() const { return state_; }

  private:
    void processEnds() noexcept override { lock_.reset(); }

    std::unique_ptr<FileLock> lock_;
    PoliciesFile state_ = PoliciesFile::asItIs;
};

bool write(File& file, std::string_view text) {
    return file.write(text) == text.size();
}

} // namespace

PolicyGenerator::PolicyGenerator(Platform& platform, const ControllerCatalogue& catalogue,
                                 Appending appending, CaptureOptions options, Report& report)
    : platform_(platform), catalogue_(catalogue), appending_(std::move(appending)),
      options_(std::move(options)), report_(report) {}

bool PolicyGenerator::generatePolicies(const ControllerList& controllers) {
    report_.trace("Entering PolicyGenerator::generatePolicies\n");
    report_.notef(level::progress, "Checking syntax of current policies file: %s ...\n",
                  appending_.policies.file.c_str());
    FileSystem& files = platform_.files();
    const PoliciesLock lock(files, appending_.policies.file);
    PolicyReader current(files, catalogue_, report_);
    if (!current.read(appending_.policies, lock.state())) {
        report_.trace("Exiting PolicyGenerator::generatePolicies(1), returning false\n");
        return false;
    }
    report_.note(level::progress, "Generating policies from captured configurations ...\n");

    TemporaryFile temporary(files, appending_.tempDirectory + temporaryFileName,
                            appending_.policies.file);
    temporary.setKept(appending_.keepsTemporary);
    if (!temporary.open()) {
        reportTempSpace();
        report_.trace("Exiting PolicyGenerator::generatePolicies(2), returning false\n");
        return false;
    }
    const bool done = writePolicies(controllers, current.file(), *temporary.file()) &&
                      (!generated_ || append(*temporary.file()));
    if (done && !generated_) {
        temporary.setKept(false);
    }
    if (!temporary.finish()) {
        fail(FaultKind::temporaryNotRemoved, temporary.name());
    }
    report_.trace(done ? "Exiting PolicyGenerator::generatePolicies(3), returning true\n"
                       : "Exiting PolicyGenerator::generatePolicies(3), returning false\n");
    return done;
}

/// Writes the policies of all configured controllers to the temporary file.
bool PolicyGenerator::writePolicies(const ControllerList& controllers, const PolicyFile& current,
                                    File& temporary) {
    PolicyNames names(current);
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const RAIDController& controller = *controllers.controller(i);
        const auto number = static_cast<std::int32_t>(i + 1);
        if (!isConfigured(controller, number, report_)) {
            continue;
        }
        generated_ = true;
        if (!writePolicy(controller, number, names, temporary)) {
            return false;
        }
    }
    if (!temporary.flush()) {
        return reportTempSpace();
    }
    return true;
}

bool PolicyGenerator::writePolicy(const RAIDController& controller, std::int32_t number,
                                  PolicyNames& names, File& temporary) {
    const GeneratedPolicy policy = generatePolicy(
        controller, number, options_, platform_.localTime(), catalogue_, names, report_);
    if (!write(temporary, policy.header)) {
        return reportTempSpace();
    }
    if (policy.fault) {
        report_.fault(*policy.fault);
        return false;
    }
    return write(temporary, policy.body) || reportTempSpace();
}

/// Copies the temporary file to the end of the policies file.
bool PolicyGenerator::append(File& temporary) {
    if (!temporary.rewind()) {
        return reportTempSpace(); // before a policies file is made
    }
    const CString& name = appending_.policies.file;
    const std::unique_ptr<File> policies = platform_.files().open(name, "a");
    if (!policies) {
        return fail(FaultKind::policiesUnwritable, name);
    }
    std::array<char, 50> block{};
    std::size_t n = temporary.read(block);
    while (n > 0 && !temporary.failed() && write(*policies, std::string_view(block.data(), n))) {
        n = temporary.read(block);
    }
    const bool copied = n == 0 && !temporary.failed();
    if (!copied || !policies->flush() || !policies->close()) {
        return fail(FaultKind::policiesWrittenInPart, name);
    }
    return true;
}

/// Always false.
bool PolicyGenerator::reportTempSpace() {
    return fail(FaultKind::temporaryUnwritable);
}

/// Always false.
bool PolicyGenerator::fail(FaultKind kind, const CString& file) {
    Fault fault;
    fault.kind = kind;
    fault.place.file = file;
    report_.fault(fault);
    return false;
}

} // namespace zolex
