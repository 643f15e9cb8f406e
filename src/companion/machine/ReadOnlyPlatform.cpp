#include "companion/machine/ReadOnlyPlatform.h"

#include "commands/CommandSource.h"
#include "companion/families/Family.h"
#include "companion/machine/Utilities.h"
#include "foundation/Report.h"
#include "inventory/ZOLEXSupport.h"
#include "model/Codes.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

std::string_view withoutEnd(std::string_view line) {
    return line.substr(0, line.find_last_not_of(" \t\r\n") + 1);
}

void addListings(const RAIDController& controller, bool withLayout,
                 std::vector<std::string>& lines) {
    SilentReport report;
    SourceOptions options;
    options.withLayout = withLayout;
    GetConfigFiles source(options, report);
    for (std::size_t i = 0; i < source.numberOfCommands(controller); ++i) {
        lines.emplace_back(withoutEnd(source.getCommand(controller, 1, i)));
    }
}

/// Every line that only reads, sorted, without the blanks at its end.
std::vector<std::string> allReadingLines() {
    std::vector<std::string> lines = {ZOLEXSupport::detectorCommand};
    for (const UtilityNames& names : utilityNames()) {
        lines.push_back(nonsenseLine(names.utility));
    }
    RAIDController controller;
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        controller.setType(type);
        for (std::int32_t order = 1; order <= RAIDController::maxScanOrder; ++order) {
            controller.setScanOrder(order);
            addListings(controller, false, lines);
            addListings(controller, true, lines);
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

} // namespace

bool isReadingLine(std::string_view commandLine) {
    static const std::vector<std::string> lines = allReadingLines();
    if (const Family* const family = findFamily(commandLine); family != nullptr) {
        return family->isReading(commandLine);
    }
    return std::binary_search(lines.begin(), lines.end(), withoutEnd(commandLine), std::less<>());
}

std::string nonsenseLine(std::string_view utility) {
    return "UTIL.BAT " + std::string(utility) + " -ZOLEXCTL-NO-SUCH-VERB";
}

/// The files of the inner platform, as they are read.
class ReadOnlyPlatform::Files : public FileSystem {
  public:
    Files(FileSystem& inner, std::vector<std::string> outputs)
        : inner_(inner), outputs_(std::move(outputs)) {}

    std::unique_ptr<File> open(std::string_view name, const char* mode) override {
        const std::string_view flags = mode;
        if (!flags.starts_with('r') || flags.find('+') != std::string_view::npos) {
            check(name);
        }
        return inner_.open(name, mode);
    }
    std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                 WhenInterrupted interrupted) override {
        check(name);
        return inner_.create(name, other, interrupted);
    }
    bool discard(std::unique_ptr<File> file, std::string_view name) override {
        check(name);
        return inner_.discard(std::move(file), name);
    }
    LockResult lock(std::string_view name, std::chrono::milliseconds wait) override {
        check(name);
        return inner_.lock(name, wait);
    }
    bool remove(std::string_view name) override {
        check(name);
        return inner_.remove(name);
    }
    bool isFile(std::string_view name) override { return inner_.isFile(name); }

  private:
    void check(std::string_view name) const {
        const bool isOutput =
            std::any_of(outputs_.begin(), outputs_.end(), [name](const std::string& output) {
                return !output.empty() && (name == output || name.starts_with(output + "."));
            });
        if (!isOutput) {
            throw NotForReading("a command that only reads would write " + std::string(name));
        }
    }

    FileSystem& inner_;
    std::vector<std::string> outputs_;
};

ReadOnlyPlatform::ReadOnlyPlatform(Platform& inner, std::vector<std::string> outputs)
    : inner_(inner), files_(std::make_unique<Files>(inner.files(), std::move(outputs))) {}

ReadOnlyPlatform::~ReadOnlyPlatform() = default;

FileSystem& ReadOnlyPlatform::files() {
    return *files_;
}

ChildResult ReadOnlyPlatform::runChild(std::string_view commandLine, bool capture,
                                       std::chrono::milliseconds limit) {
    if (!isReadingLine(commandLine)) {
        throw NotForReading("a command that only reads would run " +
                            std::string(withoutEnd(commandLine)));
    }
    return inner_.runChild(commandLine, capture, limit);
}

} // namespace zolex::companion
