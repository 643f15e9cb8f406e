#include "driver/ParameterParser.h"

#include "foundation/Text.h"

#include <algorithm>
#include <string>

namespace zolex {

namespace {

std::vector<CString> companionList(const CString& text) {
    std::vector<CString> members;
    if (text != emptyList) {
        for (std::size_t i = 0; i < text.tokenCount(" "); ++i) {
            if (CString member = text.token(" ", i); !member.isEmpty()) {
                members.push_back(std::move(member));
            }
        }
    }
    return members;
}

bool isKnown(SwitchKind kind) {
    return kind >= SwitchKind::flag && kind <= SwitchKind::lastText;
}

} // namespace

void ParameterParser::add(const CString& name, SwitchKind kind, bool required,
                          bool emptyValueAllowed) {
    add(name, "", kind, required, emptyValueAllowed, emptyList, emptyList);
}

void ParameterParser::add(const CString& name, const CString& alternateName, SwitchKind kind,
                          bool required, bool emptyValueAllowed, const CString& requiredCompanions,
                          const CString& excludedCompanions) {
    Entry entry;
    entry.name = name;
    entry.alternateName = alternateName;
    entry.kind = kind;
    entry.required = required;
    entry.emptyValueAllowed = emptyValueAllowed;
    entry.requiredCompanions = companionList(requiredCompanions);
    entry.excludedCompanions = companionList(excludedCompanions);
    entries_.push_back(std::move(entry));
}

bool ParameterParser::beginsWith(std::string_view argument, std::string_view name) const {
    if (name.empty() || argument.size() < name.size()) {
        return false;
    }
    const std::string_view head = argument.substr(0, name.size());
    return caseSensitive_ ? head == name : text::equalsNoCase(head, name);
}

std::size_t ParameterParser::matchLength(const Entry& entry, std::string_view argument) const {
    for (const CString* name : {&entry.name, &entry.alternateName}) {
        if (beginsWith(argument, *name) &&
            (entry.kind != SwitchKind::flag || argument.size() == name->length())) {
            return name->length();
        }
    }
    return 0;
}

bool ParameterParser::isSwitch(std::string_view argument) const {
    return std::any_of(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return !entry.found && isKnown(entry.kind) && matchLength(entry, argument) > 0;
    });
}

std::size_t ParameterParser::takeValue(Entry& entry, std::size_t nameLength,
                                       const std::vector<CString>& arguments,
                                       std::size_t index) const {
    if (entry.kind == SwitchKind::flag) {
        return index;
    }
    CString value = arguments[index].mid(nameLength);
    const auto nextIsValue = [&] {
        return index + 1 < arguments.size() && !isSwitch(arguments[index + 1]);
    };
    if (entry.name.endsWith(" ") && value.isEmpty() && nextIsValue()) {
        value = arguments[++index];
    }
    if (entry.kind == SwitchKind::joined) {
        // A parameter file can give very many arguments: they are put together in place.
        std::string joined(value.view());
        bool first = value.isEmpty();
        while (nextIsValue()) {
            joined.append(first ? "" : " ").append(arguments[++index].view());
            first = false;
        }
        value = joined;
    }
    entry.value = value;
    return index;
}

ParameterParser::Result ParameterParser::parse(int argc, const char* const* argv,
                                               bool caseSensitive, bool validateAfterwards) {
    caseSensitive_ = caseSensitive;
    std::vector<CString> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.emplace_back(argv[i]);
    }
    return parseMore(arguments, validateAfterwards);
}

ParameterParser::Result ParameterParser::parseMore(const std::vector<CString>& arguments,
                                                   bool validateAfterwards) {
    fault_ = Fault::none;
    faultIndex_ = -1;
    const Result result = parseAll(arguments);
    if (result == Result::success && validateAfterwards && !validate()) {
        return Result::unknownOrInvalid;
    }
    return result;
}

ParameterParser::Result ParameterParser::parseAll(const std::vector<CString>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        bool matched = false;
        for (Entry& entry : entries_) {
            if (entry.found) {
                continue;
            }
            if (!isKnown(entry.kind)) {
                return Result::internalError;
            }
            if (const std::size_t length = matchLength(entry, arguments[i]); length > 0) {
                // Found only once its value is collected: a repetition ends the value.
                i = takeValue(entry, length, arguments, i);
                entry.found = true;
                matched = true;
                break;
            }
        }
        if (!matched) {
            setFault(Fault::unknownArgument, static_cast<int>(i + 1), arguments[i], "");
            return Result::unknownOrInvalid;
        }
    }
    return Result::success;
}

bool ParameterParser::validate() {
    for (const Entry& entry : entries_) {
        const auto fail = [&](Fault fault) {
            setFault(fault, -1, entry.name, entry.value);
            return false;
        };
        if (!entry.found) {
            if (entry.required) {
                return fail(Fault::requiredMissing);
            }
            continue;
        }
        if (entry.kind != SwitchKind::flag && entry.value.isEmpty() && !entry.emptyValueAllowed) {
            return fail(Fault::valueMissing);
        }
        if (entry.kind == SwitchKind::number &&
            entry.value != CString::fromInt(entry.value.toInt())) {
            return fail(Fault::notNumeric);
        }
        const auto isPresent = [this](const CString& name) { return isFound(name); };
        if (!std::all_of(entry.requiredCompanions.begin(), entry.requiredCompanions.end(),
                         isPresent)) {
            return fail(Fault::requiredCompanionMissing);
        }
        if (std::any_of(entry.excludedCompanions.begin(), entry.excludedCompanions.end(),
                        isPresent)) {
            return fail(Fault::excludedCompanionPresent);
        }
    }
    return true;
}

void ParameterParser::setFault(Fault fault, int index, const CString& argument,
                               const CString& value) {
    fault_ = fault;
    faultIndex_ = index;
    faultArgument_ = argument;
    faultValue_ = value;
}

const ParameterParser::Entry* ParameterParser::find(const CString& name) const {
    const auto entry =
        std::find_if(entries_.begin(), entries_.end(),
                     [&name](const Entry& candidate) { return candidate.name == name; });
    return entry == entries_.end() ? nullptr : &*entry;
}

bool ParameterParser::lookUp(const CString& name, CString& value) const {
    const Entry* entry = find(name);
    value = entry == nullptr ? CString() : entry->value;
    return entry != nullptr && entry->found;
}

bool ParameterParser::isFound(const CString& name) const {
    const Entry* entry = find(name);
    return entry != nullptr && entry->found;
}

void ParameterParser::release() {
    entries_.clear();
}

} // namespace zolex
