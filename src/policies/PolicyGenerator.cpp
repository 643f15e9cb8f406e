#include "policies/PolicyGenerator.h"

#include "controllers/Application.h"
#include "foundation/EndingTask.h"
#include "foundation/TemporaryFile.h"
#include "inventory/ControllerList.h"
#include "policies/PolicyReader.h"
#include "policies/PolicyText.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zolex {

namespace {

constexpr const char* temporaryFileName = "ZOLEXM~~.TMP";
constexpr const char* defaultParameters = "t,d";

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

PolicyGenerator::PolicyGenerator(Application& application) : application_(application) {
    if (!application.settings.fake) {
        machineType_ = application.machine ? application.machine->machineType : CString();
        serialNumber_ = application.machine ? application.machine->serialNumber : CString();
    }
}

bool PolicyGenerator::generatePolicies(ControllerList& controllers) {
    Printer& printer = application_.printer();
    const Settings& settings = application_.settings;
    printer.trace("Entering PolicyGenerator::generatePolicies\n");
    printer.printf(level::progress, "Checking syntax of current policies file: %s ...\n",
                   settings.policiesFile.c_str());
    FileSystem& files = application_.platform().files();
    const PoliciesLock lock(files, settings.policiesFile);
    PolicyReader current(application_);
    if (!current.read(lock.state())) {
        printer.trace("Exiting PolicyGenerator::generatePolicies(1), returning false\n");
        return false;
    }
    printer.print("Generating policies from captured configurations ...\n", level::progress);

    TemporaryFile temporary(files, settings.tempDirectory + temporaryFileName,
                            settings.policiesFile);
    temporary.setKept(settings.debug);
    if (!temporary.open()) {
        reportTempSpace();
        printer.trace("Exiting PolicyGenerator::generatePolicies(2), returning false\n");
        return false;
    }
    const bool done = writePolicies(controllers, current, *temporary.file()) &&
                      (!generated_ || append(*temporary.file()));
    if (done && !generated_) {
        temporary.setKept(false);
    }
    if (!temporary.finish()) {
        application_.platform().console().writeError(
            formatText("Could not delete temp file:  %s\n", temporary.name().c_str()));
    }
    printer.trace(done ? "Exiting PolicyGenerator::generatePolicies(3), returning true\n"
                       : "Exiting PolicyGenerator::generatePolicies(3), returning false\n");
    return done;
}

/// Writes the policies of all configured controllers to the temporary file.
bool PolicyGenerator::writePolicies(ControllerList& controllers, const PolicyReader& current,
                                    File& temporary) {
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const RAIDController& controller = *controllers.controller(i);
        const auto number = static_cast<std::int32_t>(i + 1);
        if (controller.configuration() == nullptr) {
            application_.printer().printf(
                level::progress, "\tSkipped controller %d -- controller is not configured.\n",
                number);
            continue;
        }
        generated_ = true;
        if (!writePolicy(controller, number, current, temporary)) {
            return false;
        }
    }
    if (!temporary.flush()) {
        return reportTempSpace();
    }
    return true;
}

bool PolicyGenerator::writePolicy(const RAIDController& controller, std::int32_t number,
                                  const PolicyReader& current, File& temporary) {
    CapturedFacts facts;
    facts.time = application_.platform().localTime();
    facts.machineType = machineType_;
    facts.serialNumber = serialNumber_;
    facts.controllerNumber = number;
    facts.controllerType = application_.controllerName(controller.type(), controller.subtype());
    facts.explicitSizes = application_.catalogue().acceptsExplicitSize(controller.type());
    facts.policyName = chooseName(number, facts.controllerType, current);

    if (!write(temporary, policyHeaderText(facts))) {
        return reportTempSpace();
    }
    const CString& given = application_.settings.captureParameters;
    const CString parameters = given.isEmpty() ? CString(defaultParameters) : given;
    const std::optional<CString> appliesTo = appliesToText(parameters, facts, controller);
    if (!appliesTo) {
        application_.printer().errorBlock("Improper syntax for the following parameter:  " +
                                          parameters);
        return false;
    }
    return write(temporary, policyBodyText(facts, *appliesTo, controller)) || reportTempSpace();
}

/// A name that neither the current file nor this run has used, and which this run now has.
CString PolicyGenerator::chooseName(std::int32_t number, const CString& controllerType,
                                    const PolicyReader& current) {
    Printer& printer = application_.printer();
    printer.printf(level::detail, "\tController %d:  %s\n", number, controllerType.c_str());
    std::string typeText(controllerType.view());
    std::replace(typeText.begin(), typeText.end(), ' ', '_');
    CString name;
    int suffix = 0;
    do {
        name = formatText("%s%s-%d", generatedPolicyPrefix, typeText.c_str(), ++suffix);
    } while (current.hasPolicy(name) || wasGenerated(name));
    names_.push_back(name);
    printer.printf(level::detail, "\t\tGenerating policy:  %s\n", name.c_str());
    return name;
}

bool PolicyGenerator::wasGenerated(const CString& name) const {
    return std::any_of(names_.begin(), names_.end(),
                       [&name](const CString& earlier) { return earlier.equalsNoCase(name); });
}

/// Copies the temporary file to the end of the policies file.
bool PolicyGenerator::append(File& temporary) {
    if (!temporary.rewind()) {
        return reportTempSpace(); // before a policies file is made
    }
    const CString& name = application_.settings.policiesFile;
    const std::unique_ptr<File> policies = application_.platform().files().open(name, "a");
    if (!policies) {
        application_.printer().errorBlock("Could not open policies file for writing:  " + name);
        return false;
    }
    std::array<char, 50> block{};
    std::size_t n = temporary.read(block);
    while (n > 0 && !temporary.failed() && write(*policies, std::string_view(block.data(), n))) {
        n = temporary.read(block);
    }
    const bool copied = n == 0 && !temporary.failed();
    if (!copied || !policies->flush() || !policies->close()) {
        application_.printer().errorBlock("Error writing to policies file.\n"
                                          "Warning: Partial data may have been written.\n");
        return false;
    }
    return true;
}

/// Always false.
bool PolicyGenerator::reportTempSpace() {
    application_.printer().errorBlock(
        "Could not write to temp space.  ZOLEX requires temp space to run.\n");
    return false;
}

} // namespace zolex
