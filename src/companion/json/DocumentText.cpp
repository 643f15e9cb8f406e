#include "companion/json/DocumentText.h"

#include <algorithm>

namespace zolex::companion {

namespace {

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7F &&
               c != '"' && c != '\\';
    });
}

} // namespace

DocumentText::DocumentText(std::string_view format, const DocumentHead& head) {
    begin('{');
    const Json beginning = documentOf(format, head);
    for (const auto& [name, value] : beginning.items()) {
        json(name, value);
    }
}

void DocumentText::object(std::string_view name) {
    write(name);
    begin('{');
}

void DocumentText::object() {
    nextElement();
    begin('{');
}

void DocumentText::list(std::string_view name) {
    write(name);
    begin('[');
}

void DocumentText::list() {
    nextElement();
    begin('[');
}

void DocumentText::end() {
    const char bracket = open_.back();
    open_.pop_back();
    if (!isFirst_) {
        newLine();
    }
    text_ += bracket;
    isFirst_ = false;
}

void DocumentText::text(std::string_view name, std::string_view value) {
    write(name);
    writeText(value);
}

void DocumentText::textOrNull(std::string_view name, std::string_view value) {
    if (value.empty()) {
        null(name);
    } else {
        text(name, value);
    }
}

void DocumentText::texts(std::string_view name, const std::vector<std::string>& values) {
    list(name);
    for (const std::string& value : values) {
        text(value);
    }
    end();
}

void DocumentText::truth(std::string_view name, bool value) {
    write(name);
    text_ += value ? "true" : "false";
}

void DocumentText::null(std::string_view name) {
    write(name);
    text_ += "null";
}

void DocumentText::size(std::string_view name, std::uint64_t value) {
    number(name, std::min(value, std::uint64_t{1} << 53U));
}

void DocumentText::json(std::string_view name, const Json& value) {
    if (value.is_object()) {
        object(name);
        for (const auto& [inner, each] : value.items()) {
            json(inner, each);
        }
        end();
    } else if (value.is_array()) {
        list(name);
        for (const Json& each : value) {
            json(each);
        }
        end();
    } else {
        write(name);
        text_ += lineOf(value);
    }
}

void DocumentText::text(std::string_view value) {
    nextElement();
    writeText(value);
}

void DocumentText::json(const Json& value) {
    if (value.is_object()) {
        object();
        for (const auto& [name, each] : value.items()) {
            json(name, each);
        }
        end();
    } else if (value.is_array()) {
        list();
        for (const Json& each : value) {
            json(each);
        }
        end();
    } else {
        nextElement();
        text_ += lineOf(value);
    }
}

std::string DocumentText::finish() {
    while (!open_.empty()) {
        end();
    }
    text_ += '\n';
    return std::move(text_);
}

void DocumentText::write(std::string_view name) {
    nextElement();
    text_ += '"';
    text_ += name;
    text_ += "\": ";
}

void DocumentText::nextElement() {
    if (!isFirst_) {
        text_ += ',';
    }
    newLine();
    isFirst_ = false;
}

void DocumentText::begin(char bracket) {
    text_ += bracket;
    open_.push_back(bracket == '{' ? '}' : ']');
    isFirst_ = true;
}

void DocumentText::newLine() {
    text_ += '\n';
    text_.append(2 * open_.size(), ' ');
}

void DocumentText::writeText(std::string_view value) {
    if (isPlain(value)) {
        text_ += '"';
        text_ += value;
        text_ += '"';
    } else {
        text_ += lineOf(Json(value));
    }
}

} // namespace zolex::companion
