#include "companion/exchange/PoliciesToIronic.h"

#include "companion/exchange/ConvertFinding.h"
#include "companion/exchange/IronicDocument.h"
#include "companion/families/ModelTexts.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::uint64_t bytesPerGib = std::uint64_t{1} << 30U;
constexpr std::uint64_t bytesPerMib = std::uint64_t{1} << 20U;

/// Settings that Ironic has no property for.
constexpr std::array<std::string_view, 5> lostSettings = {"StripeSize", "RebuildRate", "ReadAhead",
                                                          "Init", "Spans"};

class Drafter {
  public:
    Drafter(const MachinePlan& plan, std::string_view policies)
        : plan_(plan), document_(scanPolicies(plan.policiesFile, std::string(policies))) {}

    IronicDraft run() {
        for (const ControllerPlanning& planning : plan_.controllers) {
            add(planning);
        }
        for (const DocumentPolicy& policy : document_.policies) {
            if (used_.count(policy.header.line) == 0) {
                Finding unused =
                    convertFinding("ZX959", policy.name.text + " is for no controller of this "
                                                               "machine and is left out");
                tellAt(std::move(unused), policy.name);
            }
        }
        if (disks_.empty() && !hasError(draft_.findings)) {
            Finding none = convertFinding(
                "ZX959", "no policy makes a logical drive on a controller of this machine");
            none.severity = Severity::error;
            none.help = {"zolexctl check POLICIES --machine RECORDING"};
            none.file = plan_.policiesFile;
            draft_.findings.push_back(std::move(none));
        }
        std::stable_sort(
            draft_.findings.begin(), draft_.findings.end(),
            [](const Finding& a, const Finding& b) { return a.start.byte < b.start.byte; });
        if (!hasError(draft_.findings)) {
            draft_.text = ironicDocument(disks_);
            draft_.logicalDisks = disks_.size();
        }
        return std::move(draft_);
    }

  private:
    void tellAt(Finding finding, const Piece& piece) {
        finding.file = plan_.policiesFile;
        finding.start = piece.start;
        finding.end = piece.end;
        draft_.findings.push_back(std::move(finding));
    }

    /// At an entry of the controller's policy, or at its header.
    void tell(Finding finding, const ControllerPlanning& planning, std::string_view keyword) {
        const DocumentPolicy* const policy = policyOf(planning);
        const DocumentEntry* const entry = policy == nullptr ? nullptr : policy->find(keyword);
        if (policy == nullptr) {
            finding.file = plan_.policiesFile;
            draft_.findings.push_back(std::move(finding));
        } else {
            tellAt(std::move(finding), entry == nullptr ? policy->name : entry->value);
        }
    }

    [[nodiscard]] const DocumentPolicy* policyOf(const ControllerPlanning& planning) const {
        const auto found = std::find_if(document_.policies.begin(), document_.policies.end(),
                                        [&planning](const DocumentPolicy& policy) {
                                            return policy.header.line == planning.policyLine;
                                        });
        return found == document_.policies.end() ? nullptr : &*found;
    }

    static std::string wordsOf(const ControllerPlanning& planning) {
        return "controller " + std::to_string(planning.controller.number);
    }

    void add(const ControllerPlanning& planning) {
        if (planning.disposition == Disposition::skipped ||
            planning.disposition == Disposition::refused) {
            Finding left =
                convertFinding("ZX959", wordsOf(planning) + " is left out: " + planning.because);
            left.file = plan_.policiesFile;
            draft_.findings.push_back(std::move(left));
            return;
        }
        if (used_.insert(planning.policyLine).second) {
            if (const DocumentPolicy* const policy = policyOf(planning)) {
                tellSettings(*policy);
            }
        }
        const std::size_t first = disks_.size();
        for (const PlannedVolume& volume : planning.volumes) {
            addVolume(volume, planning);
        }
        markShared(first);
        tellSpares(planning);
    }

    void addVolume(const PlannedVolume& volume, const ControllerPlanning& planning) {
        const auto array =
            std::find_if(planning.arrays.begin(), planning.arrays.end(),
                         [&volume](const PlannedArray& row) { return row.id == volume.array; });
        IronicDisk disk;
        disk.raidLevel = ironicLevelOf(volume.raidType);
        disk.controller = controllerName(planning);
        if (array != planning.arrays.end()) {
            for (const PlannedDrive& drive : array->drives) {
                disk.drives.push_back(drive.location);
            }
        }
        const std::string name = wordsOf(planning) + ", " + volume.id + ": ";
        if (disk.raidLevel.empty()) {
            const std::string level = volume.raidType == "None" ? "VOLUME" : volume.raidType;
            tell(convertFinding("ZX950", name + "Ironic has no level " + level), planning,
                 volume.id);
        }
        if (!volume.fills) {
            disk.sizeGb = volume.capacityBytes / bytesPerGib;
            tellRounding(volume, name, planning);
        }
        disks_.push_back(std::move(disk));
    }

    void tellRounding(const PlannedVolume& volume, const std::string& name,
                      const ControllerPlanning& planning) {
        const std::uint64_t mb = volume.capacityBytes / bytesPerMib;
        const std::uint64_t gb = volume.capacityBytes / bytesPerGib;
        const std::uint64_t lost = volume.capacityBytes % bytesPerGib / bytesPerMib;
        if (gb == 0) {
            Finding small = convertFinding("ZX956", name + std::to_string(mb) +
                                                        " MB is less than 1 GiB, the least that "
                                                        "Ironic can say");
            small.severity = Severity::error;
            tell(std::move(small), planning, volume.id);
        } else if (lost > 0) {
            Finding less = convertFinding(
                "ZX956", name + std::to_string(mb) + " MB is written as " + std::to_string(gb) +
                             " GiB, which is " + std::to_string(lost) + " MB less");
            less.severity = Severity::warning;
            tell(std::move(less), planning, volume.id);
        }
    }

    /// Which drives lie under more than one logical disk of the controller.
    void markShared(std::size_t first) {
        for (std::size_t i = first; i < disks_.size(); ++i) {
            for (std::size_t k = first; k < disks_.size(); ++k) {
                const std::vector<std::string>& others = disks_[k].drives;
                const bool meets = std::any_of(
                    disks_[i].drives.begin(), disks_[i].drives.end(), [&](const std::string& each) {
                        return std::find(others.begin(), others.end(), each) != others.end();
                    });
                disks_[i].shares = disks_[i].shares || (k != i && meets);
            }
        }
    }

    /// The model; with its number where the machine has others of it, or policies cannot name it.
    [[nodiscard]] std::string controllerName(const ControllerPlanning& planning) const {
        const std::string& model = planning.controller.model;
        std::string number = "c:" + std::to_string(planning.controller.number);
        if (!ControllerCatalogue::isValidControllerName(model) && !isFamilyType(model)) {
            return number;
        }
        const auto count = std::count_if(
            plan_.fingerprint.controllers.begin(), plan_.fingerprint.controllers.end(),
            [&model](const Fingerprint::Controller& row) { return row.model == model; });
        return count > 1 ? model + "," + number : model;
    }

    void tellSpares(const ControllerPlanning& planning) {
        if (planning.spares.empty()) {
            return;
        }
        std::string locations;
        for (const PlannedSpare& spare : planning.spares) {
            locations += " " + spare.location;
        }
        const DocumentPolicy* const policy = policyOf(planning);
        const bool byKind = policy != nullptr && policy->find("Spares") != nullptr;
        const bool isOne = planning.spares.size() == 1;
        tell(convertFinding("ZX957", wordsOf(planning) +
                                         (isOne ? ": the hot spare" : ": the hot spares") +
                                         locations +
                                         (isOne ? " is left out: Ironic cannot say one"
                                                : " are left out: Ironic cannot say any")),
             planning, byKind ? std::string_view("Spares") : std::string_view(keyword::hotspares));
    }

    void tellSettings(const DocumentPolicy& policy) {
        for (const DocumentEntry& entry : policy.entries) {
            const bool isSetting =
                std::any_of(lostSettings.begin(), lostSettings.end(), [&](std::string_view name) {
                    return text::equalsNoCase(entry.keyword.text, name);
                });
            if (isSetting) {
                tellSetting(entry.keyword.text + " = " + entry.value.text, entry.value);
                continue;
            }
            constexpr std::string_view logical = "Logical";
            constexpr std::string_view mode = "Logical_Mode";
            if (!text::equalsNoCase(entry.keyword.text.substr(0, logical.size()), logical) ||
                text::equalsNoCase(entry.keyword.text, mode)) {
                continue;
            }
            // Array, size, level, cache; without the array in Logical_Defaults.
            const std::vector<Piece> fields = fieldsOf(entry.value, ':');
            const std::size_t cache = entry.keyword.text.find('.') == std::string::npos ? 2 : 3;
            if (fields.size() > cache) {
                tellSetting("the write cache " + fields[cache].text + " of " + entry.keyword.text,
                            fields[cache]);
            }
        }
    }

    void tellSetting(const std::string& what, const Piece& piece) {
        tellAt(convertFinding("ZX958", printable(what) + " is left out: Ironic cannot say it"),
               piece);
    }

    const MachinePlan& plan_;
    PolicyDocument document_;
    std::set<std::int32_t> used_; ///< lines of the headers of policies
    std::vector<IronicDisk> disks_;
    IronicDraft draft_;
};

} // namespace

IronicDraft ironicOf(const MachinePlan& plan, std::string_view policies) {
    return Drafter(plan, policies).run();
}

} // namespace zolex::companion
