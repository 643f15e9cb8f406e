#include "companion/rewriting/CapturedPolicies.h"

#include "companion/rewriting/FamilyPolicies.h"
#include "companion/rewriting/PlanComparison.h"
#include "companion/rewriting/PolicyWriter.h"
#include "companion/rewriting/WantedLayout.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"
#include "policies/PolicyFile.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

/// One controller of the file.
struct Chapter {
    std::string comments; ///< what controller it is
    std::optional<WantedLayout> layout;
    std::string policy; ///< its section; empty: none
    std::vector<Finding> findings;
    bool isOfFamily = false; ///< zolex does not know the controller
};

std::string machineLine(const Machine& machine) {
    std::string text = machine.machineType.isEmpty()
                           ? std::string("a machine of unknown type")
                           : "machine type " + std::string(machine.machineType.c_str());
    if (!machine.serialNumber.isEmpty()) {
        text.append(", serial number ").append(machine.serialNumber.c_str());
    }
    return text;
}

std::string controllerLine(const ControllerSnapshot& details, std::size_t drives) {
    std::string text = "Controller " + std::to_string(details.number) + ": " + details.model;
    if (!details.facts.serialNumber.empty()) {
        text += ", serial number " + details.facts.serialNumber;
    }
    if (!details.pci.empty()) {
        text += ", PCI " + details.pci;
    }
    return text + ", " + std::to_string(drives) + (drives == 1 ? " drive" : " drives");
}

/// Whether `specifiers` ("t:" and "d:") mean another controller of the machine too.
bool meansAnother(const ControllerList& controllers, const ControllerSnapshot& details,
                  bool withDrives) {
    const RAIDController& own = *controllers.controller(details.index);
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const RAIDController& other = *controllers.controller(i);
        if (i != details.index && other.type() == own.type() && other.subtype() == own.subtype() &&
            (!withDrives || other.numberOfDrives() == own.numberOfDrives())) {
            return true;
        }
    }
    return false;
}

std::string policyName(const ControllerSnapshot& details) {
    return "Policy." + details.model + "-" + std::to_string(details.number);
}

/// What is said of a controller without a policy; nothing when it can have one.
std::optional<Finding> whyNone(const ControllerSnapshot& details,
                               const RAIDController& controller) {
    if (details.failed) {
        return captureFinding(details, "ZC101", Severity::warning,
                              "its utility failed, so that there is no policy for it",
                              {"zolexctl doctor"});
    }
    const RAIDConfiguration* const configuration = controller.captured();
    const bool hasSpares =
        (configuration != nullptr && !configuration->hotspares().empty()) ||
        std::any_of(details.drives.begin(), details.drives.end(), [](const MachineDrive& drive) {
            return drive.facts.hotspare != HotspareKind::none;
        });
    if (configuration == nullptr || configuration->arrays().empty() ||
        configuration->logicalDrives().empty()) {
        const std::size_t told = details.facts.logicalDrives.size();
        if (told > 0) {
            return captureFinding(details, "ZC116", Severity::warning,
                                  "zolex reads none of its " + std::to_string(told) +
                                      " logical drives, so that there is no policy for it");
        }
        return hasSpares ? captureFinding(details, "ZC102", Severity::warning,
                                          "it has hot spares and no array: no policy can say that")
                         : captureFinding(details, "ZC101", Severity::note,
                                          "it has no arrays, so that there is no policy for it");
    }
    for (const LogicalDrive& drive : configuration->logicalDrives()) {
        if (drive.raidLevel < raid_level::raid0 || drive.raidLevel > raid_level::simpleVolume ||
            drive.raidLevel == raid_level::notGiven) {
            return captureFinding(details, "ZC113", Severity::warning,
                                  "it has a RAID level that policies cannot name, so that there "
                                  "is no policy for it");
        }
    }
    return std::nullopt;
}

bool isLoss(const Finding& finding) {
    return finding.severity != Severity::note;
}

void append(std::vector<Finding>& all, std::vector<Finding> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

/// Puts the file together, and plans it.
class Captured {
  public:
    Captured(const Snapshot& snapshot, const CapturedPoliciesOptions& options)
        : snapshot_(snapshot), options_(options) {}

    CapturedPolicies write() {
        for (const ControllerSnapshot& details : snapshot_.details) {
            chapters_.push_back(chapterOf(details));
        }
        plan();
        CapturedPolicies result;
        result.text = text();
        for (Chapter& chapter : chapters_) {
            append(result.findings, std::move(chapter.findings));
        }
        if (hasNoPolicy()) {
            result.findings.push_back(noPolicyFinding());
        }
        result.comesBack = std::none_of(result.findings.begin(), result.findings.end(), isLoss);
        return result;
    }

  private:
    /// Whether another controller has the model and as many drives.
    [[nodiscard]] bool hasTwin(const ControllerSnapshot& details) const {
        return std::any_of(snapshot_.details.begin(), snapshot_.details.end(),
                           [&details](const ControllerSnapshot& other) {
                               return other.number != details.number &&
                                      other.model == details.model &&
                                      other.drives.size() == details.drives.size();
                           });
    }

    /// Of a controller that zolex does not know.
    Chapter familyChapter(const ControllerSnapshot& details) {
        Chapter chapter;
        chapter.comments = commentLines("", controllerLine(details, details.drives.size()));
        FamilyPolicy policy = familyPolicy(details, options_.exact, hasTwin(details));
        chapter.policy = std::move(policy.text);
        chapter.findings = std::move(policy.findings);
        chapter.isOfFamily = true;
        return chapter;
    }

    Chapter chapterOf(const ControllerSnapshot& details) {
        if (details.index == ControllerSnapshot::noRecord) {
            return familyChapter(details);
        }
        const RAIDController& controller = *snapshot_.controllers.controller(details.index);
        Chapter chapter;
        chapter.comments = commentLines(
            "", controllerLine(details, static_cast<std::size_t>(controller.numberOfDrives())));
        if (std::optional<Finding> why = whyNone(details, controller)) {
            chapter.findings.push_back(*std::move(why));
            return chapter;
        }
        chapter.layout = wantedLayout(controller, details, chapter.findings);
        PolicyWriting writing;
        writing.name = policyName(details);
        const bool withDrives = !chapter.layout->numbersAreShaky && controller.numberOfDrives() > 0;
        writing.appliesTo = appliesToOf(snapshot_.controllers, details, withDrives);
        writing.exact = options_.exact;
        chapter.policy = writePolicy(*chapter.layout, writing, chapter.findings);
        append(chapter.findings, unsayable(*chapter.layout));
        return chapter;
    }

    /// Plans the policies as zolex would, each controller as if it had no layout.
    void plan() {
        std::string sections;
        for (const Chapter& chapter : chapters_) {
            sections += chapter.isOfFamily ? "" : chapter.policy;
        }
        if (sections.empty()) {
            return;
        }
        SilentReport report;
        PolicyOptions options;
        options.goOn = true;
        const PolicyFile file = readPolicies(sections, ControllerCatalogue(), options, report);
        for (Chapter& chapter : chapters_) {
            if (!chapter.layout) {
                continue;
            }
            const ControllerSnapshot& details = *chapter.layout->details;
            if (!file.policies) {
                for (const Fault& fault : file.faults) {
                    chapter.findings.push_back(
                        captureFinding(details, "ZC107", Severity::warning,
                                       "zolex would refuse the policies: " + faultLine(fault)));
                }
                continue;
            }
            const ControllerPlan plan =
                planController(*chapter.layout->controller, details.number, *file.policies,
                               snapshot_.machine, PlanOptions{false}, report);
            append(chapter.findings, comparePlan(*chapter.layout, plan));
        }
    }

    [[nodiscard]] bool hasNoPolicy() const {
        return std::all_of(chapters_.begin(), chapters_.end(),
                           [](const Chapter& chapter) { return chapter.policy.empty(); });
    }

    /// A machine without controllers is told elsewhere.
    [[nodiscard]] Finding noPolicyFinding() const {
        Finding finding;
        finding.code = "ZC119";
        finding.severity = chapters_.empty() ? Severity::note : Severity::warning;
        finding.summary = "no policy is in the file: zolex and zolexctl check refuse it";
        const bool hasArrays = std::any_of(
            snapshot_.details.begin(), snapshot_.details.end(),
            [](const ControllerSnapshot& details) { return !details.facts.logicalDrives.empty(); });
        finding.help = {std::string(hasArrays ? "mend what is told above, and capture again"
                                              : "make the arrays first") +
                        ", or write policies by hand: man zolex-policies"};
        return finding;
    }

    [[nodiscard]] std::string text() const {
        const LocalTime& time = options_.time;
        const CString when = formatText("%04d-%02d-%02d %02d:%02d", time.year, time.month, time.day,
                                        time.hour, time.minute);
        std::string text =
            commentLines("", "Written by zolexctl " + options_.version + " on " + when.c_str() +
                                 " from " + machineLine(snapshot_.machine) + ".");
        text +=
            commentLines("", hasNoPolicy() ? "No policy is in this file: zolex and zolexctl check "
                                             "refuse it [ZC119]."
                                           : "Deploying it makes these arrays anew: what is on the "
                                             "drives is lost.");
        if (std::any_of(chapters_.begin(), chapters_.end(), [](const Chapter& chapter) {
                return chapter.isOfFamily && !chapter.policy.empty();
            })) {
            text += commentLines("", "zolex refuses this file: it is for zolexctl alone.");
        }
        if (chapters_.empty()) {
            text += commentLines("", "There is no controller.");
        }
        for (const Chapter& chapter : chapters_) {
            text += "\n" + chapter.comments;
            for (const Finding& finding : chapter.findings) {
                // The controller stands above.
                const std::size_t who = finding.summary.find(": ") + 2;
                text += commentLines(isLoss(finding) ? " !" : " -",
                                     finding.summary.substr(who) + " [" + finding.code + "]");
            }
            text += chapter.policy.empty() ? "" : "\n" + chapter.policy;
        }
        while (text.size() > 1 && text.ends_with("\n\n")) {
            text.pop_back();
        }
        return text;
    }

    const Snapshot& snapshot_;
    const CapturedPoliciesOptions& options_;
    std::vector<Chapter> chapters_;
};

} // namespace

std::string appliesToOf(const ControllerList& controllers, const ControllerSnapshot& details,
                        bool withDrives) {
    std::string number = "c:" + std::to_string(details.number);
    if (!ControllerCatalogue::isValidControllerName(details.model)) {
        return number;
    }
    std::string text = "t:" + details.model;
    if (withDrives) {
        text += ",d:" + std::to_string(controllers.controller(details.index)->numberOfDrives());
    }
    return meansAnother(controllers, details, withDrives) ? text + "," + number : text;
}

CapturedPolicies capturedPolicies(const Snapshot& snapshot,
                                  const CapturedPoliciesOptions& options) {
    return Captured(snapshot, options).write();
}

} // namespace zolex::companion
