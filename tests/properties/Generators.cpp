#include "properties/Generators.h"

#include "driver/PolicyArguments.h"
#include "engine/ConfigClasses.h"
#include "engine/PlanController.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <ostream>
#include <random>
#include <set>

namespace zolex::properties {

namespace {

// Numbers of drives that an array of a level takes: the least, and the step to the next number (0:
// no other). Order: the one in which levels shrink.
struct DriveCounts {
    const char* word;
    int least;
    int step;
};
// clang-format off
constexpr std::array<DriveCounts, 12> driveCounts{{
    {"0",      1, 1}, {"1",  2, 0}, {"5",  3, 1}, {"10",     4, 2}, {"1E", 3, 1}, {"6", 4, 1},
    {"5E",     4, 1}, {"5EE", 4, 1}, {"50", 6, 2}, {"60",     8, 2}, {"VOLUME", 1, 1},
    {"SIMPLE VOLUME", 1, 0},
}};
// clang-format on

const DriveCounts& countsOf(const std::string& level) {
    return *std::find_if(driveCounts.begin(), driveCounts.end(),
                         [&level](const DriveCounts& shape) { return level == shape.word; });
}

bool takesArrayToItself(const std::string& level) {
    return level == "5E" || level == "5EE";
}

std::string entry(const std::string& keyword, const std::string& value) {
    return keyword + " = " + value + "\n";
}

/// One section on its way.
class PolicyWriter {
  public:
    explicit PolicyWriter(const PolicyContext& context)
        : context_(context), free_(shuffledNumbers(context.drives)) {}

    std::string write() {
        text_ = "[" + context_.name + "]\n" + entry("AppliesTo.1", context_.appliesTo);
        writeWords();
        if (oneIn(2)) {
            entries_ += entry("Array_Defaults", oneOf<std::string>({"0%", "5%", "10%", "100%"}) +
                                                    ":" + std::to_string(hotspareCount()));
        }
        if (context_.custom && oneIn(2)) {
            writeArrays();
        }
        if (context_.custom && oneIn(3)) {
            writeHotspares();
        }
        if (oneIn(2)) {
            entries_ += entry("Logical_Defaults", size() + ":" + level(true) + cache());
        }
        if (!arrays_.empty() && !oneIn(4)) {
            writeLogicalDrives();
        }
        return text_ + entries_;
    }

  private:
    void writeWords() {
        const auto optional = [this](const char* keyword, const std::vector<std::string>& words) {
            if (!words.empty() && oneIn(3)) {
                entries_ += entry(keyword, oneOf(words));
            }
        };
        optional("RebuildRate", {"HIGH", "MED", "LOW"});
        optional("ReadAhead", {"ADAPTIVE", "ON", "OFF"});
        optional("StripeSize", context_.stripes);
        optional("Init", {"QUICK", "BUILD"});
        optional("Max_Logical_Drive_Size", {"2000000", "1"});
    }

    [[nodiscard]] int hotspareCount() const {
        return context_.wild && oneIn(5) ? 9 : *number(0, 2);
    }

    [[nodiscard]] std::string level(bool withAuto) const {
        if (withAuto && oneIn(2)) {
            return "AUTO";
        }
        return oneOf(context_.wild || context_.levels.empty() ? allLevels() : context_.levels);
    }

    [[nodiscard]] std::string size() const {
        switch (*number(0, 3)) {
        case 0:
        case 1:
            return "FILL";
        case 2:
            return std::to_string(*number(1, 100)) + "%";
        default:
            if (!context_.nearMb.empty() && oneIn(2)) {
                return std::to_string(std::max(1, oneOf(context_.nearMb) + *number(-250, 250)));
            }
            return std::to_string(*number(1, context_.wild ? 40'000'000 : 9'000));
        }
    }

    static std::string cache() { return oneOf<std::string>({"", ":OFF", ":ON", ":AUTO"}); }

    /// A list of `count` drives that are taken from the free ones.
    std::string take(int count) {
        std::string list;
        const bool asPositions = !context_.positions.empty() && oneIn(3);
        for (int i = 0; i < count; ++i) {
            const int drive = free_.back();
            free_.pop_back();
            list += (i == 0 ? "" : ",") +
                    (asPositions ? context_.positions.at(static_cast<std::size_t>(drive - 1))
                                 : std::to_string(drive));
        }
        return list;
    }

    /// Drives that may be named twice, be hot spares already or be missing.
    [[nodiscard]] std::string wildList(int most) const {
        std::string list;
        for (int n = *number(1, most); n > 0; --n) {
            list += std::to_string(*number(1, std::max(2, context_.drives))) + (n > 1 ? "," : "");
        }
        return list;
    }

    void writeArrays() {
        std::string lines;
        std::string last;
        const int wanted = *number(1, static_cast<int>(context_.mostArrays));
        while (static_cast<int>(arrays_.size()) < wanted) {
            const bool again = context_.repeats && !last.empty() && oneIn(3);
            const std::string name = again ? arrays_.back() : level(false);
            const std::string drives = again                       ? last
                                       : context_.wild && oneIn(2) ? wildList(6)
                                                                   : listFor(name);
            if (again) {
                repeated_.insert(arrays_.size() - 1);
                repeated_.insert(arrays_.size());
            }
            const bool all = drives.empty() || (!again && oneIn(12));
            last = drives;
            if (drives.empty() && !(context_.wild && oneIn(2))) {
                break;
            }
            lines += entry(std::string("Array.") + static_cast<char>('A' + arrays_.size()),
                           all ? "ALL" : drives);
            arrays_.push_back(all ? "AUTO" : name);
            if (all) {
                break;
            }
        }
        if (!arrays_.empty() && !oneIn(6)) {
            lines = entry("Array_Mode", "CUSTOM") + lines;
        }
        entries_ += lines;
    }

    /// Drives for an array of this level; empty when too few are left.
    std::string listFor(const std::string& name) {
        constexpr int mostDrives = 16;
        const DriveCounts& shape = countsOf(name);
        const int available = std::min(static_cast<int>(free_.size()), mostDrives);
        if (available < shape.least) {
            return "";
        }
        const int steps = shape.step == 0 ? 0 : (available - shape.least) / shape.step;
        return take(shape.least + shape.step * *number(0, std::min(steps, oneIn(4) ? 12 : 3)));
    }

    void writeHotspares() {
        const int available = std::min(static_cast<int>(free_.size()), context_.wild ? 16 : 3);
        if (context_.wild && oneIn(2)) {
            entries_ += entry("Hotspares", wildList(9));
        } else if (available > 0) {
            entries_ += entry("Hotspares", take(*number(1, available)));
        }
    }

    void writeLogicalDrives() {
        entries_ += oneIn(8) ? "" : entry("Logical_Mode", "CUSTOM");
        for (std::size_t array = 0; array < arrays_.size(); ++array) {
            const bool several = context_.several && oneIn(2);
            // Sizes that fit together, or any.
            const bool shared = several && oneIn(2);
            for (int i = several ? *number(2, 3) : 1; i > 0; --i) {
                std::string name = context_.wild && oneIn(3) ? level(true) : arrays_[array];
                if (several && takesArrayToItself(name)) {
                    name = "1";
                }
                writeLogicalDrive(array,
                                  shared ? (i > 1      ? "33%"
                                            : oneIn(2) ? "FILL"
                                                       : "20%")
                                  : repeated_.count(array) > 0 && !(context_.wild && oneIn(2))
                                      ? std::to_string(*number(20, 33)) + "%"
                                      : size(),
                                  name);
            }
        }
    }

    void writeLogicalDrive(std::size_t array, const std::string& sizeText,
                           const std::string& levelText) {
        constexpr int lookedUp = 9;
        if (logicalDrives_ < lookedUp) {
            entries_ += entry("Logical." + std::to_string(++logicalDrives_),
                              std::string(1, static_cast<char>('A' + array)) + ":" + sizeText +
                                  ":" + levelText + cache());
        }
    }

    const PolicyContext& context_;
    std::vector<int> free_;
    std::vector<std::string> arrays_; ///< the level that each is meant for
    std::set<std::size_t> repeated_;  ///< those that share their drives
    int logicalDrives_ = 0;
    std::string text_;
    std::string entries_;
};

/// The subtypes that tell controllers of a type apart, and one that is none of theirs.
std::vector<std::int32_t> subtypesOf(std::int32_t type) {
    switch (type) {
    case controller_type::megaRaid:
        return {1, 2, 8, 9, 11, 14, -1};
    case controller_type::arcconf11:
        return {1, 2, -1};
    case controller_type::lsiSas:
        return {-1, 1, 2, 3};
    default:
        return {-1, 1, 7};
    }
}

ControllerSpec anyController() {
    ControllerSpec spec;
    spec.type = *number(1, 12);
    spec.subtype = oneOf(subtypesOf(spec.type));
    const int positions = RAIDController::ids * 4;
    const int most = oneOf<int>({8, 8, 8, 16, 60, positions});
    const int count = *number(0, most);
    const int start = *number(0, positions - 1);
    // Coprime to the number of positions, so that every step comes to another one.
    const int step = oneOf<int>({1, 1, 5, 7, 35});
    std::vector<std::int32_t> sizes;
    for (int n = *number(1, 4); n > 0; --n) {
        sizes.push_back(oneOf<std::int32_t>(
            {73000, 36000, 36500, 74000, 140000, 1, 139, 140, 4, 2000000, 2147483647, 0}));
    }
    const bool withUsed = oneIn(3);
    for (int i = 0; i < count; ++i) {
        const int position = (start + i * step) % positions;
        spec.drives.push_back({1 + position / RAIDController::ids, position % RAIDController::ids,
                               oneOf(sizes), withUsed && oneIn(4)});
    }
    if (oneIn(10)) {
        spec.drives.push_back({0, *number(0, 35), 73000, false});
    }
    return spec;
}

} // namespace

rc::Gen<int> number(int least, int most) {
    return rc::gen::resize(rc::kNominalSize, rc::gen::inRange(least, most + 1));
}

std::vector<int> shuffledNumbers(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 1);
    constexpr int manyOrders = 1'000'000;
    if (const int seed = *number(0, manyOrders); seed != 0) {
        std::mt19937 random(static_cast<std::uint32_t>(seed));
        std::shuffle(numbers.begin(), numbers.end(), random);
    }
    return numbers;
}

std::unique_ptr<RAIDController> ControllerSpec::make() const {
    auto controller = std::make_unique<RAIDController>();
    controller->setType(type);
    controller->setSubtype(subtype);
    controller->setScanOrder(1);
    for (const DriveSpec& drive : drives) {
        controller->addDrive(drive.channel, drive.id, drive.sizeMb, "SAS", 30 + drive.channel);
        controller->setUsed(drive.channel, drive.id, drive.used);
    }
    return controller;
}

int ControllerSpec::numberedDrives() const {
    return static_cast<int>(std::count_if(drives.begin(), drives.end(), [](const DriveSpec& drive) {
        return drive.channel >= RAIDController::firstChannel && drive.sizeMb > 0;
    }));
}

std::ostream& operator<<(std::ostream& out, const ControllerSpec& spec) {
    out << "type " << spec.type << ", subtype " << spec.subtype << ", drives";
    for (const DriveSpec& drive : spec.drives) {
        out << ' ' << drive.channel << ':' << drive.id << '=' << drive.sizeMb
            << (drive.used ? "(used)" : "");
    }
    return out;
}

rc::Gen<ControllerSpec> controllers() {
    return rc::gen::exec(anyController);
}

const std::vector<std::string>& allLevels() {
    static const std::vector<std::string> words = [] {
        std::vector<std::string> all;
        for (const DriveCounts& shape : driveCounts) {
            all.emplace_back(shape.word);
        }
        return all;
    }();
    return words;
}

rc::Gen<std::string> policyTexts(const PolicyContext& context) {
    return rc::gen::exec([context] { return PolicyWriter(context).write(); });
}

std::vector<Policy> parsePolicies(const std::string& text) {
    test::FakePlatform platform;
    Application application{platform};
    application.settings.policiesFile = "p.ini";
    application.printer().setVerbosity(level::always);
    platform.fileFake.files["p.ini"] = text;
    PolicyReader reader(platform.files(), application.catalogue(), application.report());
    if (!reader.read(policySource(application.settings))) {
        RC_FAIL("The policies are not valid: " + platform.consoleFake.output + text);
    }
    return reader.policies()->policies();
}

bool Planner::plan(RAIDController& controller, const Policy& policy) {
    SilentReport report;
    const ControllerPlan made = planByPolicy(controller, 1, policy, PlanOptions(), report);
    controller.setCaptured(made.layout);
    for (const Reason& reason : made.reasons) {
        if (reason.drive != DrivePosition()) {
            controller.setUsed(reason.drive.channel, reason.drive.id);
        }
    }
    return made.outcome != Outcome::refused;
}

bool Planner::hasLevels(const RAIDController& controller, const RAIDConfiguration& plan) {
    const CodeSet& levels = rulesFor(controller.type(), controller.subtype())->raidLevels;
    return std::all_of(plan.logicalDrives().begin(), plan.logicalDrives().end(),
                       [&](const LogicalDrive& drive) { return levels.contains(drive.raidLevel); });
}

std::string describe(const RAIDConfiguration* configuration) {
    if (configuration == nullptr) {
        return "none";
    }
    std::string text = "rebuild " + std::to_string(configuration->rebuildRate) + ", read ahead " +
                       std::to_string(configuration->readAhead) + ", stripe " +
                       std::to_string(configuration->stripeSize) + ", init " +
                       std::to_string(configuration->init) + "; ";
    for (const Hotspare& hotspare : configuration->hotspares()) {
        text += "H " + std::to_string(hotspare.channelNumber) + ":" + std::to_string(hotspare.id) +
                "; ";
    }
    for (const RaidArray& array : configuration->arrays()) {
        text += "A";
        for (const DrivePosition& drive : array.drives()) {
            text += " " + std::to_string(drive.channel) + ":" + std::to_string(drive.id);
        }
        text += "; ";
    }
    for (const LogicalDrive& drive : configuration->logicalDrives()) {
        text += "L " + std::to_string(drive.arrayIndex) + " " + raidLevelWord(drive.raidLevel) +
                " " + std::to_string(drive.sizeMb) + " " + std::to_string(drive.writeCache) + "; ";
    }
    return text;
}

} // namespace zolex::properties
