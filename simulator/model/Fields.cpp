#include "model/Fields.h"

#include "model/Text.h"

#include <limits>
#include <utility>

namespace zolex_sim {
namespace {

/// The number that "0x" and one to sixteen hexadecimal digits write.
std::optional<std::uint64_t> parseHexadecimal(std::string_view text) {
    if (!startsWithIgnoringCase(text, "0x") || text.size() < 3 || text.size() > 18) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (const char c : text.substr(2)) {
        const std::string_view digits = "0123456789abcdef";
        std::size_t digit = digits.find(c);
        if (digit == std::string_view::npos) {
            digit = std::string_view("0123456789ABCDEF").find(c);
        }
        if (digit == std::string_view::npos) {
            return std::nullopt;
        }
        number = number * 16 + digit;
    }
    return number;
}

std::optional<std::uint64_t> unsignedValue(const Json& value) {
    if (value.is_number_unsigned()) {
        return value.get<std::uint64_t>();
    }
    if (value.is_number_integer() && value.get<std::int64_t>() >= 0) {
        return static_cast<std::uint64_t>(value.get<std::int64_t>());
    }
    if (value.is_string()) {
        return parseHexadecimal(value.get_ref<const std::string&>());
    }
    return std::nullopt;
}

bool isPrintable(std::string_view text) {
    for (const char c : text) {
        if (c < ' ' || c > '~') {
            return false;
        }
    }
    return true;
}

} // namespace

Json parseJson(std::string_view text, Problem& problem) {
    try {
        return Json::parse(text, nullptr, true, true);
    } catch (const Json::exception& error) {
        // The library's own words tell the line and column; its bracketed prefix tells nobody.
        const std::string_view words = error.what();
        const std::size_t prefix = words.find("] ");
        problem.report(std::string(
            (prefix == std::string_view::npos ? words : words.substr(prefix + 2)).substr(0, 300)));
        return nullptr;
    }
}

Fields::Fields(const Json& object, std::string path, Problem& problem)
    : object_(object), path_(std::move(path)), problem_(problem) {
    if (!object_.is_object()) {
        problem_.report((path_.empty() ? "the file" : path_) + ": must be an object");
    }
}

std::string Fields::pathOf(std::string_view name) const {
    return path_ + (path_.empty() ? "" : ".") + std::string(name);
}

void Fields::complain(std::string_view name, const std::string& text) {
    problem_.report(pathOf(name) + ": " + text);
}

const Json* Fields::find(std::string_view name) {
    asked_.emplace(name);
    if (!object_.is_object()) {
        return nullptr;
    }
    const auto found = object_.find(name);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
}

bool Fields::has(std::string_view name) {
    return find(name) != nullptr;
}

std::string Fields::text(std::string_view name, const std::optional<std::string>& byDefault,
                         std::size_t longest) {
    const Json* value = find(name);
    if (value == nullptr) {
        if (!byDefault) {
            complain(name, "is missing");
        }
        return byDefault.value_or("");
    }
    if (!value->is_string()) {
        complain(name, "must be a text");
        return {};
    }
    const auto& found = value->get_ref<const std::string&>();
    if (found.size() > longest) {
        complain(name, "must not be longer than " + std::to_string(longest) + " characters");
        return {};
    }
    if (!isPrintable(found)) {
        complain(name, "must hold printable ASCII characters only");
        return {};
    }
    return found;
}

std::string Fields::anyText(std::string_view name, std::string byDefault) {
    const Json* value = find(name);
    if (value == nullptr) {
        return byDefault;
    }
    if (!value->is_string()) {
        complain(name, "must be a text");
        return byDefault;
    }
    return value->get_ref<const std::string&>();
}

std::int64_t Fields::number(std::string_view name, std::int64_t least, std::int64_t greatest,
                            std::optional<std::int64_t> byDefault) {
    const Json* value = find(name);
    if (value == nullptr) {
        if (!byDefault) {
            complain(name, "is missing");
        }
        return byDefault.value_or(least);
    }
    std::optional<std::int64_t> found;
    if (value->is_number_integer() && !value->is_number_unsigned()) {
        found = value->get<std::int64_t>();
    } else if (const std::optional<std::uint64_t> bare = unsignedValue(*value);
               bare &&
               *bare <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        found = static_cast<std::int64_t>(*bare);
    }
    if (!found || *found < least || *found > greatest) {
        complain(name, "must be a whole number from " + std::to_string(least) + " to " +
                           std::to_string(greatest));
        return least;
    }
    return *found;
}

int Fields::smallNumber(std::string_view name, int least, int greatest,
                        std::optional<int> byDefault) {
    std::optional<std::int64_t> wideDefault;
    if (byDefault) {
        wideDefault = *byDefault;
    }
    return static_cast<int>(number(name, least, greatest, wideDefault));
}

bool Fields::flag(std::string_view name, bool byDefault) {
    const Json* value = find(name);
    if (value == nullptr) {
        return byDefault;
    }
    if (!value->is_boolean()) {
        complain(name, "must be true or false");
        return byDefault;
    }
    return value->get<bool>();
}

std::uint64_t Fields::bits(std::string_view name, std::uint64_t greatest, std::uint64_t byDefault) {
    const Json* value = find(name);
    if (value == nullptr) {
        return byDefault;
    }
    const std::optional<std::uint64_t> found = unsignedValue(*value);
    if (!found || *found > greatest) {
        complain(name, formatted("must be a number from 0 to 0x%llx",
                                 static_cast<unsigned long long>(greatest)));
        return byDefault;
    }
    return *found;
}

void Fields::list(std::string_view name,
                  const std::function<void(const Json&, std::string)>& read) {
    const Json* value = find(name);
    if (value == nullptr) {
        return;
    }
    if (!value->is_array()) {
        complain(name, "must be a list");
        return;
    }
    for (std::size_t i = 0; i < value->size() && !problem_.found(); ++i) {
        read((*value)[i], pathOf(name) + "[" + std::to_string(i) + "]");
    }
}

void Fields::object(std::string_view name, bool required,
                    const std::function<void(Fields&)>& read) {
    const Json* value = find(name);
    if (value == nullptr) {
        if (required) {
            complain(name, "is missing");
        }
        return;
    }
    Fields fields(*value, pathOf(name), problem_);
    if (!problem_.found()) {
        read(fields);
        fields.finish();
    }
}

void Fields::finish() {
    if (!object_.is_object()) {
        return;
    }
    for (const auto& item : object_.items()) {
        if (asked_.find(item.key()) == asked_.end()) {
            // The name may hold anything; only its printable part is worth showing.
            complain(isPrintable(item.key()) ? item.key().substr(0, 80) : "?", "unknown field");
            return;
        }
    }
}

} // namespace zolex_sim
