#include "companion/exchange/IronicToPolicies.h"

#include "companion/exchange/ConvertFinding.h"
#include "companion/exchange/IronicDocument.h"
#include "companion/exchange/IronicDrives.h"
#include "companion/exchange/JsonPlaces.h"
#include "companion/families/ModelTexts.h"
#include "companion/lint/Lint.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/Plan.h"
#include "companion/rewriting/CapturedPolicies.h"
#include "companion/rewriting/PolicyWriter.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"
#include "model/TypeTraits.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <cstdint>
#include <list>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::uint64_t mbPerGib = 1024;
/// What policies can say is a number of MB below 2^31.
constexpr std::uint64_t mostGib = ((std::uint64_t{1} << 31U) - 1) / mbPerGib;
constexpr std::size_t mostNameBytes = 40;

/// A controller as a document names it.
struct NamedController {
    std::string model;       ///< empty: not told
    std::int32_t number = 0; ///< 0: not told
};

/// "LSI-MegaRAID-8480", "t:LSI-MegaRAID-8480", "c:2", or two of them; nothing for other names.
std::optional<NamedController> namedController(std::string_view text) {
    NamedController named;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        std::string_view field = text::trim(text.substr(0, end), " ");
        text.remove_prefix(std::min(end + 1, text.size()));
        const bool isNumber = field.starts_with("c:");
        field.remove_prefix(isNumber || field.starts_with("t:") ? 2 : 0);
        const auto number = isNumber ? text::wholeNumber(field) : std::nullopt;
        constexpr std::int32_t mostControllers = 36;
        if (isNumber && number && *number >= 1 && *number <= mostControllers && named.number == 0) {
            named.number = *number;
        } else if (!isNumber && named.model.empty() &&
                   (ControllerCatalogue::isValidControllerName(field) ||
                    (isFamilyType(field) && field.find('*') == std::string_view::npos))) {
            named.model = field;
        } else {
            return std::nullopt;
        }
    }
    return named;
}

/// "Policy.node7" for "nodes/node7.json": letters, digits, ".", "_" and "-".
std::string policyNameOf(std::string_view file) {
    file.remove_prefix(file.find_last_of("/\\") + 1);
    file = file.substr(0, file.find('.'));
    std::string name;
    for (const char c : file.substr(0, mostNameBytes)) {
        const bool isPlain = (c >= '0' && c <= '9') ||
                             (text::lower(c) >= 'a' && text::lower(c) <= 'z') || c == '_' ||
                             c == '-';
        name += isPlain ? c : '-';
    }
    // Standard input; and what begins with AUTO means captured policies.
    constexpr std::string_view captured = "AUTO";
    const bool isOther = file.empty() || file.front() == '<' ||
                         text::equalsNoCase(name.substr(0, captured.size()), captured);
    return "Policy." + (isOther ? std::string("ironic") : name);
}

class IronicConverter {
  public:
    IronicConverter(std::string_view text, const IronicRequest& request)
        : text_(text), request_(request) {}

    IronicPolicies run() {
        IronicReading reading = readIronic(text_, request_.file);
        result_.findings = std::move(reading.findings);
        if (!reading.disks) {
            return std::move(result_);
        }
        disks_ = *std::move(reading.disks);
        places_.emplace(text_);
        for (std::size_t disk = 0; disk < disks_.size(); ++disk) {
            if (isPossible(disk)) {
                findTarget(disk);
            }
        }
        if (!failed()) {
            placeAll();
        }
        if (!failed()) {
            write();
            tellDropped();
            check();
        }
        if (failed()) {
            result_.text.clear();
        }
        std::stable_sort(
            result_.findings.begin(), result_.findings.end(),
            [](const Finding& a, const Finding& b) { return a.start.byte < b.start.byte; });
        return std::move(result_);
    }

  private:
    [[nodiscard]] bool failed() const { return hasError(result_.findings); }

    static std::string pathOf(std::size_t disk, std::string_view property) {
        return "logical_disks[" + std::to_string(disk) + "]" + (property.empty() ? "" : ".") +
               std::string(property);
    }

    Finding& place(Finding finding, const std::string& path) {
        finding.file = request_.file;
        std::tie(finding.start, finding.end) = places_->placeOf(path);
        return result_.findings.emplace_back(std::move(finding));
    }

    Finding& tell(std::size_t disk, std::string_view property, std::string_view rule,
                  const std::string& summary, std::vector<std::string> help) {
        const std::string path = pathOf(disk, property);
        return place(convertFinding(rule, path + ": " + summary, std::move(help)), path);
    }

    // What is no matter of a RAID controller.

    bool isPossible(std::size_t index) {
        const IronicDisk& disk = disks_[index];
        const std::size_t before = result_.findings.size();
        if (policyLevelOf(disk.raidLevel).empty()) {
            tell(index, "raid_level", "ZX950", "policies have no level " + inQuotes(disk.raidLevel),
                 {});
        }
        if (text::equalsNoCase(disk.controller, "software")) {
            tell(index, "controller", "ZX953",
                 "software RAID is made by the operating system, and by no RAID controller", {});
        } else if (disk.hasHintObjects) {
            tell(index, "physical_disks", "ZX953",
                 "objects with hints are for software RAID, and policies name drives",
                 {"name the drives: \"physical_disks\": [\"32:0\", \"32:1\"]"});
        }
        if (disk.sizeGb && *disk.sizeGb > mostGib) {
            tell(index, "size_gb", "ZX956",
                 std::to_string(*disk.sizeGb) + " is more than " + std::to_string(mostGib) +
                     " GiB, the most that policies can say",
                 {})
                .severity = Severity::error;
        }
        return result_.findings.size() == before;
    }

    // Controllers.

    void findTarget(std::size_t index) {
        const std::string& name = disks_[index].controller;
        std::optional<NamedController> named = namedController(name);
        if (!named) {
            if (!tellDriversName(index)) {
                return;
            }
            named.emplace();
        }
        if (named->model.empty()) {
            named->model = request_.model;
        } else if (!request_.model.empty() && named->model != request_.model) {
            refuse(index, "it is " + inQuotes(name) + ", and --model is " + request_.model,
                   {"leave --model out"});
            return;
        }
        const ControllerSnapshot* details = nullptr;
        if (request_.machine != nullptr) {
            details = onMachine(index, *named);
            if (details == nullptr) {
                return;
            }
            *named = {details->model, details->number};
        } else if (named->model.empty() && named->number == 0) {
            refuse(index, "which controller is meant is not told",
                   {"name its model: --model LSI-MegaRAID-8480"});
            return;
        }
        targetOf(*named, details).disks.push_back(index);
    }

    void refuse(std::size_t index, const std::string& summary, std::vector<std::string> help) {
        // Once for all logical disks that name no controller.
        const bool hasName = !disks_[index].controller.empty();
        if (hasName || !isTargetRefused_) {
            tell(index, hasName ? "controller" : "", "ZX959", summary, std::move(help)).severity =
                Severity::error;
        }
        isTargetRefused_ = isTargetRefused_ || !hasName;
    }

    /// Whether it can be done without the name.
    bool tellDriversName(std::size_t index) {
        const std::string name = inQuotes(disks_[index].controller);
        if (request_.model.empty() && request_.machine == nullptr) {
            refuse(index,
                   name + " is no model of a controller, and how a driver calls it is not known "
                          "here",
                   {"name its model: --model LSI-MegaRAID-8480"});
            return false;
        }
        if (driversName_.empty()) {
            driversName_ = disks_[index].controller;
        } else if (driversName_ != disks_[index].controller) {
            refuse(index,
                   name + " is another controller than " + inQuotes(driversName_) +
                       ", and which of the server's they are is not known here",
                   {"name each as the server has it: \"controller\": \"c:1\""});
            return false;
        }
        tell(index, "controller", "ZX959",
             name + " is how a driver calls it: left out, " +
                 (request_.model.empty() ? "the controller of the server is taken"
                                         : request_.model + " is taken"),
             {})
            .severity = Severity::warning;
        return true;
    }

    /// Whether the controller is called so; those of families by their family, too.
    static bool isModelOf(const std::string& model, const ControllerSnapshot& details) {
        const bool isOfFamily = details.index == ControllerSnapshot::noRecord;
        return details.model == model ||
               (isOfFamily &&
                familyTypeHolds(model, details.utility, details.model, details.pciIds));
    }

    const ControllerSnapshot* onMachine(std::size_t index, const NamedController& named) {
        std::vector<const ControllerSnapshot*> found;
        for (const ControllerSnapshot& details : request_.machine->details) {
            if ((named.model.empty() || isModelOf(named.model, details)) &&
                (named.number == 0 || details.number == named.number)) {
                found.push_back(&details);
            }
        }
        if (found.size() == 1) {
            return found.front();
        }
        const std::string what = named.model +
                                 (named.model.empty() || named.number == 0 ? "" : ",") +
                                 (named.number == 0 ? "" : "c:" + std::to_string(named.number));
        refuse(index,
               found.empty()
                   ? "the server has no controller" + (what.empty() ? "" : " " + what)
                   : std::to_string(found.size()) + " controllers of the server can be meant",
               {"name it as the server has it: \"controller\": \"" +
                    (found.empty() ? std::string("c:1")
                                   : "c:" + std::to_string(found.front()->number)) +
                    "\"",
                "zolexctl show RECORDING lists the controllers"});
        return nullptr;
    }

    IronicTarget& targetOf(const NamedController& named, const ControllerSnapshot* details) {
        for (IronicTarget& target : targets_) {
            if (target.model == named.model && target.number == named.number) {
                return target;
            }
        }
        IronicTarget& target = targets_.emplace_back();
        target.model = named.model;
        target.number = named.number;
        target.details = details;
        const std::vector<Kind> kinds = kindsOf(named.model);
        if (!kinds.empty()) {
            target.kind = kinds.front();
        }
        return target;
    }

    void placeAll() {
        const TellIronic teller = [this](std::size_t disk, std::string_view property,
                                         std::string_view rule, const std::string& summary,
                                         std::vector<std::string> help) -> Finding& {
            return tell(disk, property, rule, summary, std::move(help));
        };
        for (IronicTarget& target : targets_) {
            placeDisks(target, disks_, models_, teller);
        }
    }

    // The text. Each line is told where it comes from.

    void line(const std::string& text, const std::string& path = {}) {
        result_.text += text + "\n";
        paths_.push_back(path);
    }
    void entry(const std::string& keyword, const std::string& value, const std::string& path = {}) {
        line(keyword + " = " + value, path);
    }
    void comment(std::string_view first, const std::string& words) {
        const std::string lines = commentLines(first, words);
        result_.text += lines;
        paths_.resize(paths_.size() +
                      static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')));
    }

    void write() {
        comment("", "Written by zolexctl " + request_.version + " from " + request_.file +
                        ", a RAID configuration of Ironic.");
        comment("", "Deploying it makes these arrays anew: what is on the drives is lost.");
        for (const IronicTarget& target : targets_) {
            line("");
            writeTarget(target);
        }
    }

    void writeTarget(const IronicTarget& target) {
        const std::string first = pathOf(target.disks.front(), "controller");
        ++result_.policies;
        const std::string own = targets_.size() == 1 ? "" : "-" + std::to_string(result_.policies);
        line("[" + policyNameOf(request_.file) + own + "]", first);
        line("");
        entry(keyword::appliesTo + std::string("1"), appliesTo(target), first);
        line("");
        entry(keyword::arrayMode, "CUSTOM");
        char letter = 'A';
        for (const IronicArray& array : target.arrays) {
            writeArray(array, letter++);
        }
        line("");
        line("; No hot spares: Ironic has none. Without this entry there could be one.");
        entry(keyword::arrayDefaults, "0%:0");
        line("");
        entry(keyword::logicalMode, "CUSTOM");
        std::size_t number = 0;
        letter = 'A';
        for (const IronicArray& array : target.arrays) {
            for (const std::size_t disk : array.disks) {
                entry(keyword::logical + std::to_string(++number),
                      std::string(1, letter) + ":" + sizeOf(target, disk) + ":" +
                          std::string(policyLevelOf(disks_[disk].raidLevel)),
                      pathOf(disk, "raid_level"));
            }
            ++letter;
        }
        result_.arrays += target.arrays.size();
        result_.logicalDrives += number;
    }

    void writeArray(const IronicArray& array, char letter) {
        std::string locations;
        std::string listed;
        for (const IronicMember& member : array.members) {
            locations += (locations.empty() ? "" : " ") + member.location;
            listed += (listed.empty() ? "" : ",") + member.listed;
        }
        if (request_.machine != nullptr) {
            comment(" " + std::string(1, letter) + ":", locations);
        }
        entry(keyword::array + std::string(1, letter), listed,
              pathOf(array.disks.front(), "physical_disks"));
    }

    [[nodiscard]] std::string appliesTo(const IronicTarget& target) const {
        if (target.details != nullptr && target.details->index == ControllerSnapshot::noRecord) {
            return appliesToFamily(*target.details);
        }
        if (target.details != nullptr) {
            const ControllerList& controllers = request_.machine->controllers;
            const RAIDController* const record = controllers.controller(target.details->index);
            const bool withDrives =
                record != nullptr && !target.numbersAreShaky() && record->numberOfDrives() > 0;
            return appliesToOf(controllers, *target.details, withDrives);
        }
        return (target.model.empty() ? "" : "t:" + target.model) +
               (target.model.empty() || target.number == 0 ? "" : ",") +
               (target.number == 0 ? "" : "c:" + std::to_string(target.number));
    }

    [[nodiscard]] std::string appliesToFamily(const ControllerSnapshot& details) const {
        const bool isAlone = request_.machine->count() == 1;
        return "t:" + (isKnownFamilyType(details.model) ? details.model : details.utility) +
               ",d:" + std::to_string(details.drives.size()) +
               (isAlone ? "" : ",c:" + std::to_string(details.number));
    }

    [[nodiscard]] static bool takesSizes(const IronicTarget& target) {
        return !target.kind || ControllerCatalogue::acceptsExplicitSize(target.kind->type);
    }

    [[nodiscard]] std::string sizeOf(const IronicTarget& target, std::size_t disk) const {
        const std::optional<std::uint64_t>& size = disks_[disk].sizeGb;
        return size && takesSizes(target) ? std::to_string(*size * mbPerGib) : "FILL";
    }

    // What policies cannot say.

    void tellDropped() {
        for (const IronicTarget& target : targets_) {
            for (const std::size_t index : target.disks) {
                const IronicDisk& disk = disks_[index];
                tellSize(target, index);
                tellHint(index, "disk_type", disk.diskType);
                tellHint(index, "interface_type", disk.interfaceType);
                if (!disk.volumeName.empty()) {
                    tell(index, "volume_name", "ZX952",
                         "policies cannot name a logical drive; " + inQuotes(disk.volumeName) +
                             " is left out",
                         {});
                }
                if (disk.isRoot) {
                    tell(index, "is_root_volume", "ZX952",
                         "policies cannot say which logical drive is the root; left out", {});
                }
            }
        }
    }

    void tellSize(const IronicTarget& target, std::size_t index) {
        const std::optional<std::uint64_t>& size = disks_[index].sizeGb;
        if (size && takesSizes(target)) {
            tell(index, "size_gb", "ZX956",
                 std::to_string(*size) + " is written as " + std::to_string(*size * mbPerGib) +
                     " MB",
                 {});
        } else if (size) {
            tell(index, "size_gb", "ZX956",
                 std::to_string(*size) + " is left out: a logical drive of " +
                     utilityOf(target.kind->type) + " fills its drives",
                 {})
                .severity = Severity::warning;
        }
    }

    void tellHint(std::size_t index, std::string_view property, const std::string& hint) {
        if (hint.empty()) {
            return;
        }
        const bool isHeeded = request_.machine != nullptr;
        tell(index, property, "ZX951",
             inQuotes(hint) + ": policies cannot ask for it; left out" +
                 (isHeeded ? ", and the drives were taken by it" : ""),
             {})
            .severity = isHeeded ? Severity::note : Severity::warning;
    }

    // Checking.

    void check() {
        if (request_.machine == nullptr) {
            tellFaults(lint(scanPolicies(request_.file, result_.text), {}));
            return;
        }
        PlanRequest request;
        request.policiesFile = request_.file;
        request.policiesText = result_.text;
        const MachinePlan plan = planMachine(*request_.machine, request);
        tellFaults(plan.policiesFindings);
        tellFaults(plan.diagnostics);
        for (const ControllerPlanning& planning : plan.controllers) {
            tellFaults(planning.diagnostics);
        }
        if (!failed() && !isAsWanted(plan)) {
            place(problemFinding(problem::convertRefused,
                                 "what was written would be planned otherwise"),
                  "logical_disks")
                .help = {"name the drives, as many as the level takes"};
        }
    }

    /// Errors of what was written, where it comes from.
    void tellFaults(const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            if (finding.severity != Severity::error) {
                continue;
            }
            const auto index = static_cast<std::size_t>(finding.start.line);
            const std::string path =
                index == 0 || index > paths_.size() ? std::string() : paths_[index - 1];
            Finding told = finding;
            told.summary = (path.empty() ? "" : path + ": ") + told.summary;
            told.otherStart = {};
            told.otherEnd = {};
            // Lines and options are those of a file that is not there.
            std::erase_if(told.help, [](const std::string& help) {
                return help.find("(line ") != std::string::npos ||
                       help.find("--accept") != std::string::npos ||
                       help.find("zolex") != std::string::npos;
            });
            place(std::move(told), path);
        }
    }

    [[nodiscard]] bool isAsWanted(const MachinePlan& plan) const {
        return std::all_of(targets_.begin(), targets_.end(), [&](const IronicTarget& target) {
            const auto planning = std::find_if(plan.controllers.begin(), plan.controllers.end(),
                                               [&target](const ControllerPlanning& row) {
                                                   return row.controller.number == target.number;
                                               });
            return planning != plan.controllers.end() && isAsWanted(target, *planning);
        });
    }

    [[nodiscard]] bool isAsWanted(const IronicTarget& target,
                                  const ControllerPlanning& planning) const {
        std::vector<std::string> wanted;
        char letter = 'A';
        for (const IronicArray& array : target.arrays) {
            std::set<std::string> locations;
            for (const IronicMember& member : array.members) {
                locations.insert(member.location);
            }
            for (const std::size_t disk : array.disks) {
                wanted.push_back(std::string(1, letter) + " " + disks_[disk].raidLevel + " " +
                                 sizeOf(target, disk));
            }
            for (const std::string& location : locations) {
                wanted.push_back(std::string(1, letter) + " " + location);
            }
            ++letter;
        }
        std::vector<std::string> planned;
        for (const PlannedArray& array : planning.arrays) {
            for (const PlannedDrive& drive : array.drives) {
                planned.push_back(array.id + " " + drive.location);
            }
        }
        for (const PlannedVolume& volume : planning.volumes) {
            const std::string begin =
                volume.array + " " + std::string(ironicLevelOf(volume.raidType)) + " ";
            const std::string size = std::to_string(volume.capacityBytes >> 20U);
            auto asked =
                std::find(wanted.begin(), wanted.end(), begin + (volume.fills ? "FILL" : size));
            if (asked == wanted.end() && volume.fills) {
                // A size that is close to what is left takes all of it.
                asked = std::find_if(wanted.begin(), wanted.end(),
                                     [&begin](const auto& row) { return row.starts_with(begin); });
            }
            planned.push_back(asked == wanted.end() ? "?" : *asked);
        }
        std::sort(wanted.begin(), wanted.end());
        std::sort(planned.begin(), planned.end());
        return wanted == planned && planning.spares.empty();
    }

    std::string_view text_;
    const IronicRequest& request_;
    std::vector<IronicDisk> disks_;
    std::optional<JsonPlaces> places_;
    Models models_;
    std::list<IronicTarget> targets_; ///< in the order of their first disks
    std::vector<std::string> paths_;  ///< for each line of the text; empty: of none
    bool isTargetRefused_ = false;
    std::string driversName_; ///< of the one controller that a driver's name is taken for
    IronicPolicies result_;
};

} // namespace

IronicPolicies policiesOf(std::string_view ironic, const IronicRequest& request) {
    return IronicConverter(ironic, request).run();
}

} // namespace zolex::companion
