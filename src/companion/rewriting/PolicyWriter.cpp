#include "companion/rewriting/PolicyWriter.h"

#include "companion/text/Terminal.h"
#include "engine/ConfigClasses.h"
#include "model/TypeTraits.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>

namespace zolex::companion {

namespace {

constexpr std::size_t commentWidth = 78;
std::string arrayKeyword(std::size_t index) {
    return keyword::array + std::string(1, static_cast<char>('A' + index));
}

/// Writes one policy.
class Writer {
  public:
    Writer(const WantedLayout& layout, const PolicyWriting& writing, std::vector<Finding>& findings)
        : layout_(layout), writing_(writing), findings_(findings),
          traits_(traitsOf(layout.controller->type())) {}

    std::string write() {
        std::string text = "[" + writing_.name + "]\n\n";
        text += policyEntry("AppliesTo.1", writing_.appliesTo) + "\n";
        text += settings();
        text += arrays();
        text += hotspares();
        text += logicalDrives();
        return text;
    }

  private:
    std::string settings() {
        std::string text;
        // zolex refuses policies with one that it does not take: that of the plan is told instead.
        if (layout_.effects.stripeSize && takesStripSize(*layout_.controller, layout_.stripeSize)) {
            text += policyEntry(keyword::stripeSize, stripeSizeWord(layout_.stripeSize));
        }
        if (layout_.effects.rebuildRate) {
            text += policyEntry(keyword::rebuildRate, rebuildRateWord(layout_.rebuildRate));
        }
        if (layout_.effects.readAhead && !layout_.effects.readAheadIsUsual) {
            text += policyEntry(keyword::readAhead, readAheadWord(layout_.readAhead));
        }
        return text.empty() ? text : text + "\n";
    }

    [[nodiscard]] std::string drives(const std::vector<DrivePosition>& positions) const {
        const bool byNumber =
            !layout_.numbersAreShaky &&
            std::all_of(positions.begin(), positions.end(),
                        [this](DrivePosition each) { return layout_.numberOf(each) > 0; });
        std::string text;
        for (const DrivePosition each : positions) {
            text += text.empty() ? "" : ",";
            text += byNumber ? std::to_string(layout_.numberOf(each))
                             : std::to_string(each.channel) + ":" + std::to_string(each.id);
        }
        return text;
    }

    std::string arrays() {
        std::string text = policyEntry(keyword::arrayMode, "CUSTOM");
        for (std::size_t i = 0; i < layout_.arrays.size(); ++i) {
            if (i >= mostPolicyArrays) {
                tell("ZC116", "policies have 8 arrays, and there are " +
                                  std::to_string(layout_.arrays.size()));
                break;
            }
            std::string locations;
            for (const DrivePosition each : layout_.arrays[i]) {
                locations += " " + layout_.locationOf(each);
            }
            text += commentLines(" " + std::string(1, static_cast<char>('A' + i)) + ":",
                                 locations.empty() ? locations : locations.substr(1));
            text += policyEntry(arrayKeyword(i), drives(layout_.arrays[i]));
        }
        return text + "\n";
    }

    std::string hotspares() {
        if (layout_.hotspares.empty()) {
            return "; No hot spares. Without this entry there could be one.\n" +
                   policyEntry(keyword::arrayDefaults, "0%:0") + "\n";
        }
        std::string locations;
        for (const DrivePosition each : layout_.hotspares) {
            locations += " " + layout_.locationOf(each);
        }
        return commentLines(" Hot spares:", locations.substr(1)) +
               policyEntry(keyword::hotspares, drives(layout_.hotspares)) + "\n";
    }

    std::string logicalDrives() {
        std::string text = policyEntry(keyword::logicalMode, "CUSTOM");
        std::int32_t number = 0;
        for (const WantedLogicalDrive& drive : layout_.logicalDrives) {
            if (drive.array >= mostPolicyArrays) {
                continue; // told with its array
            }
            text += policyEntry(keyword::logical + std::to_string(++number), logicalDrive(drive));
        }
        return text + "\n";
    }

    std::string logicalDrive(const WantedLogicalDrive& drive) {
        std::string value(1, static_cast<char>('A' + drive.array));
        value += ":" + size(drive) + ":" + level(drive.raidLevel);
        if (layout_.effects.writeCache && drive.writeCache != write_cache::notGiven) {
            value += drive.writeCache == write_cache::off ? ":OFF" : ":ON";
        }
        return value;
    }

    std::string size(const WantedLogicalDrive& drive) {
        if (drive.sizeMb <= 0 || (drive.fills && !(writing_.exact && traits_.explicitSizes))) {
            return "FILL";
        }
        if (traits_.explicitSizes) {
            return std::to_string(drive.sizeMb);
        }
        tell("ZC108", "logical drive " + drive.id + " has " + std::to_string(drive.sizeMb) +
                          " MB and would fill its array: policies for a " + layout_.details->model +
                          " cannot say a size");
        return "FILL";
    }

    static std::string level(std::int32_t raidLevel) {
        // The same with one drive; policies have one word for both.
        return raidLevelWord(raidLevel == raid_level::simpleVolume ? raid_level::volume
                                                                   : raidLevel);
    }

    void tell(const char* code, const std::string& what) {
        findings_.push_back(captureFinding(*layout_.details, code, Severity::warning, what));
    }

    const WantedLayout& layout_;
    const PolicyWriting& writing_;
    std::vector<Finding>& findings_;
    const TypeTraits& traits_;
};

} // namespace

std::string policyEntry(const std::string& keyword, const std::string& value) {
    return keyword + " = " + value + "\n";
}

std::string writePolicy(const WantedLayout& layout, const PolicyWriting& writing,
                        std::vector<Finding>& findings) {
    return Writer(layout, writing, findings).write();
}

std::string commentLines(std::string_view first, std::string_view text) {
    const std::string shown = printable(text);
    std::string_view rest = shown;
    std::string result;
    std::string line = ";" + std::string(first);
    const std::string indent = ";  ";
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(' '), rest.size());
        // A word without a blank is cut where a line ends: a longer line would be read as two.
        const std::size_t length = std::min(end, commentWidth - indent.size());
        if (columnsOf(line) + 1 + length > commentWidth) {
            result += line + "\n";
            line = indent;
        } else {
            line += line == indent ? "" : " ";
        }
        line.append(rest.substr(0, length));
        rest.remove_prefix(length == end ? std::min(end + 1, rest.size()) : length);
    }
    return result + line + "\n";
}

bool takesStripSize(const RAIDController& controller, std::int32_t stripeSize) {
    const ConfigDefaults* const rules = rulesFor(controller.type(), controller.subtype());
    return stripeSize != stripe::none && rules != nullptr &&
           rules->stripeSizes.contains(stripeSize) &&
           policy_value::stripeSize(stripeSizeWord(stripeSize)).has_value();
}

} // namespace zolex::companion
