#include "companion/picture/CertificateText.h"

#include "companion/picture/Changes.h"
#include "companion/picture/Roles.h"
#include "companion/picture/TextLines.h"
#include "companion/text/Sizes.h"
#include "companion/text/Table.h"
#include "companion/text/Words.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::size_t certificateIndent = 13;

class CertificateWriter {
  public:
    CertificateWriter(const Certificate& certificate, const TextStyle& style)
        : certificate_(certificate), style_(style) {}

    std::string write() {
        head();
        for (const Certificate::Controller& controller : certificate_.controllers) {
            this->controller(controller);
        }
        others();
        hashes();
        return std::move(out_);
    }

  private:
    void field(std::string_view name, const std::string& text,
               Emphasis emphasis = Emphasis::plain) {
        if (!text.empty()) {
            out_ +=
                std::string(name) +
                std::string(certificateIndent - std::min(name.size(), certificateIndent - 1), ' ') +
                emphasized(foldedWords(text, certificateIndent, certificateIndent,
                                       static_cast<std::size_t>(style_.width)),
                           emphasis, style_) +
                "\n";
        }
    }

    void head() {
        const Fingerprint& machine = certificate_.fingerprint;
        std::string name = machine.machineType.empty() ? "?" : printable(machine.machineType);
        name += machine.serialNumber.empty() ? "" : ", serial " + printable(machine.serialNumber);
        field("Certificate", "plan " + printable(certificate_.planId), Emphasis::heading);
        field("Machine", name, Emphasis::bold);
        field("Made at", printable(certificate_.madeAt));
        field("Policies", printable(certificate_.policiesFile));
        field("Journal", printable(certificate_.journalFile));
        field("Known by", knownBy(machine.strength));
    }

    static std::string knownBy(Strength strength) {
        switch (strength) {
        case Strength::serials:
            return "serial numbers of controllers and drives";
        case Strength::drives:
            return "serial numbers of drives";
        case Strength::machine:
            return "the serial number of the machine alone";
        case Strength::positions:
            break;
        }
        return "nothing unique: no serial number is told";
    }

    [[nodiscard]] const ControllerResult* resultOf(std::int32_t number) const {
        const auto found =
            std::find_if(certificate_.results.begin(), certificate_.results.end(),
                         [number](const ControllerResult& each) { return each.number == number; });
        return found == certificate_.results.end() ? nullptr : &*found;
    }

    void result(const ControllerResult& result) {
        using Result = ControllerResult::Result;
        const bool isGood = result.result == Result::configured || result.result == Result::already;
        std::string text(controllerResultWord(result.result));
        text += result.result == Result::already ? " as planned for" : "";
        text += result.reason.empty() ? "" : ": " + printable(result.reason);
        out_ += signedLine("  ", text, isGood ? Emphasis::good : Emphasis::warning, style_);
    }

    void controller(const Certificate::Controller& controller) {
        const Facts& facts = controller.facts;
        std::vector<std::string> what;
        const auto add = [&what](std::string_view name, const std::string& text) {
            if (!text.empty()) {
                what.push_back(std::string(name) + printable(text));
            }
        };
        add("", controller.model);
        add("serial ", facts.serialNumber);
        add("firmware ", facts.firmwareVersion);
        out_ += "\n" + controllerHead(controller.number, what, style_);
        if (const ControllerResult* const result = resultOf(controller.number)) {
            this->result(*result);
        }
        layout(controller.layout);
        drives(controller);
    }

    void layout(const Layout& layout) {
        std::vector<FieldLine> lines;
        for (const LayoutGroup& group : layout.groups) {
            for (const LayoutVolume& volume : group.volumes) {
                LogicalDriveFacts facts;
                facts.raidType = volume.raidType;
                facts.spans = group.spans;
                lines.push_back({2,
                                 {{"LD " + printable(volume.id), Emphasis::bold},
                                  {printable(levelOf(facts))},
                                  {sizeText(volume.capacityBytes), Emphasis::plain, true},
                                  {printable(joined(locationRanges(group.drives()), " "))}}});
                const std::string settings =
                    settingsText(volume.writeCache, volume.readCache, volume.stripSizeBytes);
                if (!settings.empty()) {
                    lines.push_back({6, {{settings, Emphasis::dim}}});
                }
            }
        }
        for (const LayoutSpare& spare : layout.spares) {
            lines.push_back({2,
                             {{"spare", Emphasis::bold},
                              {},
                              {},
                              {printable(spare.location)},
                              {spare.isDedicated ? "dedicated" : "global", Emphasis::dim}}});
        }
        for (const std::string& line : fieldLines(lines, style_)) {
            out_ += line;
        }
        if (lines.empty()) {
            out_ += "  no logical drives\n";
        }
        if (!layout.foreignDrives.empty()) {
            out_ += signedLine(
                "  ! ", "foreign: " + printable(joined(locationRanges(layout.foreignDrives), " ")),
                Emphasis::warning, style_);
        }
    }

    /// What each drive is in: "LD 0", "spare".
    static std::map<std::string, std::string> jobsOf(const Layout& layout) {
        std::map<std::string, std::string> jobs;
        for (const LayoutGroup& group : layout.groups) {
            std::string name;
            for (const LayoutVolume& volume : group.volumes) {
                name += (name.empty() ? "LD " : ",") + printable(volume.id);
            }
            for (const std::string& location : group.drives()) {
                jobs[location] = name;
            }
        }
        for (const LayoutSpare& spare : layout.spares) {
            jobs[spare.location] = "spare";
        }
        return jobs;
    }

    void drives(const Certificate::Controller& controller) {
        const std::map<std::string, std::string> jobs = jobsOf(controller.layout);
        Table table(2);
        constexpr auto bold = Emphasis::bold;
        table.add({{"drive", bold},
                   {"size", bold, true},
                   {"serial number", bold},
                   {"model", bold},
                   {"state", bold},
                   {"in", bold}});
        for (const DriveFacts& drive : controller.facts.drives) {
            const auto job = jobs.find(drive.location);
            table.add({{printable(drive.location)},
                       {sizeText(drive.capacityBytes), Emphasis::plain, true},
                       drive.serialNumber.empty() ? TableCell{"not told", Emphasis::dim}
                                                  : TableCell{printable(drive.serialNumber)},
                       {printable(modelOf(drive))},
                       {printable(drive.reportedState)},
                       {job == jobs.end() ? "-" : job->second}});
        }
        if (!controller.facts.drives.empty()) {
            out_ += table.text(style_);
        }
    }

    /// Results of controllers of which nothing else is told.
    void others() {
        for (const ControllerResult& each : certificate_.results) {
            const auto& all = certificate_.controllers;
            const bool isTold = std::any_of(all.begin(), all.end(), [&](const auto& controller) {
                return controller.number == each.number;
            });
            if (!isTold) {
                out_ += "\n" + controllerHead(each.number, {}, style_);
                result(each);
            }
        }
    }

    void hashes() {
        out_ += "\n" + emphasized("SHA-256", Emphasis::heading, style_) + "\n";
        field("plan", printable(certificate_.planHash));
        field("journal", printable(certificate_.journalHash));
        field("identity", printable(certificate_.fingerprint.identity));
        field("state", printable(certificate_.fingerprint.state));
        for (const Certificate::Controller& controller : certificate_.controllers) {
            field("layout " + std::to_string(controller.number), printable(controller.layoutHash));
        }
    }

    const Certificate& certificate_;
    const TextStyle& style_;
    std::string out_;
};

} // namespace

std::string certificateText(const Certificate& certificate, const TextStyle& style) {
    return CertificateWriter(certificate, style).write();
}

} // namespace zolex::companion
