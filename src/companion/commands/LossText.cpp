#include "companion/commands/LossText.h"

#include "companion/picture/Roles.h"
#include "companion/picture/TextLines.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zolex::companion {

namespace {

std::string nameOf(const Loss& loss) {
    const std::string id = printable(loss.id);
    return loss.kind == "logical_drive" ? "LD " + id
           : loss.kind == "hotspare"    ? "spare " + id
                                        : "foreign " + id;
}

std::string drivesOf(const Loss& loss) {
    std::string drives;
    for (const std::string& range : locationRanges(loss.drives)) {
        drives += (drives.empty() ? "" : " ") + printable(range);
    }
    return drives;
}

std::string wordsOf(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    }
    return text;
}

} // namespace

namespace {

/// With `isNamedBelow` what people call a logical drive stands in a line of its own.
std::vector<std::string> lossTexts(const std::vector<Loss>& losses, bool isNamedBelow,
                                   const TextStyle& style) {
    std::vector<FieldLine> lines;
    for (const Loss& loss : losses) {
        FieldLine line;
        line.indent = 2;
        const auto add = [&line](std::string text, bool right = false) {
            line.fields.push_back({std::move(text), Emphasis::bad, right});
        };
        add("- " + nameOf(loss));
        add(printable(loss.raidType));
        add(loss.capacityBytes > 0 ? sizeText(loss.capacityBytes) : "", true);
        add(loss.kind == "logical_drive" ? drivesOf(loss) : "");
        const std::string alias = volumeAliasText(loss.name, loss.device);
        add(isNamedBelow ? "" : alias);
        add("controller " + std::to_string(loss.controller));
        lines.push_back(std::move(line));
        if (isNamedBelow && !alias.empty()) {
            lines.push_back({6, {{alias, Emphasis::bad}}});
        }
    }
    return fieldLines(lines, style);
}

bool isFolded(const std::string& line) {
    return line.find('\n') + 1 < line.size();
}

} // namespace

std::string lossLines(const std::vector<Loss>& losses, const TextStyle& style) {
    std::vector<std::string> lines = lossTexts(losses, false, style);
    if (std::any_of(lines.begin(), lines.end(), isFolded)) {
        lines = lossTexts(losses, true, style);
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    return text;
}

std::string lossNames(const std::vector<Loss>& losses) {
    std::string text;
    for (std::size_t begin = 0; begin < losses.size();) {
        const std::int32_t controller = losses[begin].controller;
        std::vector<std::string> names;
        std::size_t end = begin;
        while (end < losses.size() && losses[end].controller == controller) {
            names.push_back(nameOf(losses[end++]));
        }
        text += (begin == 0 ? "" : "; ") + wordsOf(names) + " of controller " +
                std::to_string(controller);
        begin = end;
    }
    return text;
}

} // namespace zolex::companion
