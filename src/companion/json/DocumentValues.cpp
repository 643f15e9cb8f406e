#include "companion/json/DocumentValues.h"

#include "companion/text/Utf8.h"

#include <algorithm>
#include <limits>

namespace zolex::companion {

namespace {

using Kind = DocumentFault::Kind;

[[noreturn]] void fail(Kind kind, std::string text,
                       std::optional<std::size_t> byte = std::nullopt) {
    throw DocumentFault{kind, std::move(text), byte};
}

/// Holds a text against the bounds before anything is made of it. What is no JSON may pass.
class BoundsCheck {
  public:
    explicit BoundsCheck(std::string_view text) : text_(text) {}

    /// The number of values in the text, the names of objects not counted.
    std::size_t run() {
        for (std::size_t at = 0; at < text_.size(); ++at) {
            switch (text_[at]) {
            case '"':
                at = stringEnd(at);
                break;
            case '{':
            case '[':
                open(at);
                break;
            case '}':
            case ']':
                close(at);
                break;
            case ',':
                count(at);
                break;
            default:
                break;
            }
        }
        return values_;
    }

  private:
    /// Where the quote stands that closes the string, or the end of the text.
    [[nodiscard]] std::size_t stringEnd(std::size_t begin) const {
        std::size_t at = text_.find('"', begin + 1);
        while (at != std::string_view::npos) {
            std::size_t escapes = 0;
            while (text_[at - escapes - 1] == '\\') {
                ++escapes; // the quote at `begin` ends the search
            }
            if (escapes % 2 == 0) {
                return at;
            }
            at = text_.find('"', at + 1);
        }
        return text_.size();
    }

    [[nodiscard]] bool isEmptyFrom(std::size_t at) const {
        while (at < text_.size() &&
               (text_[at] == ' ' || text_[at] == '\n' || text_[at] == '\t' || text_[at] == '\r')) {
            ++at;
        }
        return at == text_.size() || text_[at] == ']' || text_[at] == '}';
    }

    void open(std::size_t at) {
        if (sizes_.size() == mostDocumentDepth) {
            fail(Kind::tooLarge,
                 "the document is nested deeper than " + std::to_string(mostDocumentDepth) +
                     " levels",
                 at);
        }
        sizes_.push_back(0);
        if (!isEmptyFrom(at + 1)) {
            count(at);
        }
    }

    /// The library looks through all names of an object for each of them.
    void close(std::size_t at) {
        constexpr std::size_t mostEffort = std::size_t{100} << 20U;
        if (sizes_.empty()) {
            return;
        }
        if (text_[at] == '}') {
            effort_ += sizes_.back() * sizes_.back();
        }
        sizes_.pop_back();
        if (effort_ > mostEffort) {
            fail(Kind::tooLarge, "an object of the document has too many names", at);
        }
    }

    void count(std::size_t at) {
        if (sizes_.empty()) {
            return;
        }
        ++sizes_.back();
        ++values_;
        if (values_ > mostDocumentValues) {
            fail(Kind::tooLarge,
                 "the document has more than " + std::to_string(mostDocumentValues) + " values",
                 at);
        }
    }

    std::string_view text_;
    std::vector<std::size_t> sizes_; ///< of the containers that are open: values so far
    std::size_t values_ = 1;
    std::size_t effort_ = 0;
};

std::size_t valuesOf(const Json& value) {
    std::size_t count = 1;
    if (value.is_structured()) {
        for (const Json& element : value) {
            count += valuesOf(element);
        }
    }
    return count;
}

/// What the library says, without its own place and the bytes that it met.
std::string reasonOf(const Json::exception& error) {
    std::string_view text = error.what();
    const std::size_t colon = text.find(": ");
    text.remove_prefix(colon == std::string_view::npos ? 0 : colon + 2);
    return std::string(text.substr(0, text.find("; last read")));
}

bool hasControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

std::string sizeText(std::size_t most) {
    return "is longer than " + std::to_string(most) + " bytes";
}

/// What is wrong with a value that is to be a word; empty: nothing.
std::string wordFault(const Json& value, std::size_t most) {
    if (!value.is_string()) {
        return "is no text";
    }
    const auto& text = value.get_ref<const std::string&>();
    return text.size() > most ? sizeText(most)
           : hasControl(text) ? "has a control character"
                              : std::string();
}

std::string textFault(const Json& value) {
    if (!value.is_string()) {
        return "is no text";
    }
    const auto& text = value.get_ref<const std::string&>();
    return text.size() > mostTextBytes            ? sizeText(mostTextBytes)
           : text.find('\0') != std::string::npos ? "has the character 0"
                                                  : std::string();
}

std::string elementOf(std::string_view name, std::size_t index) {
    return std::string(name) + "[" + std::to_string(index) + "]";
}

} // namespace

Json parseDocument(std::string_view text) {
    const std::size_t values = BoundsCheck(text).run();
    Json document;
    try {
        document = Json::parse(text);
    } catch (const Json::exception& error) {
        const auto* const parsing = dynamic_cast<const Json::parse_error*>(&error);
        const std::size_t byte = parsing == nullptr || parsing->byte == 0 ? 0 : parsing->byte - 1;
        fail(Kind::notJson, "this is no JSON: " + reasonOf(error), std::min(byte, text.size()));
    }
    if (valuesOf(document) != values) {
        fail(Kind::wrongValue, "a name stands twice in an object");
    }
    return document;
}

Part Part::object(std::string_view name) const {
    const Json& value = required(name);
    if (!value.is_object()) {
        fail(name, "is no object");
    }
    return Part(value, placeOf(name));
}

std::vector<Part> Part::objects(std::string_view name, std::size_t most) const {
    const Json& value = list(name, most);
    std::vector<Part> parts;
    parts.reserve(value.size());
    for (const Json& element : value) {
        const std::string shown = elementOf(name, parts.size());
        if (!element.is_object()) {
            fail(shown, "is no object");
        }
        parts.emplace_back(element, placeOf(shown));
    }
    return parts;
}

std::vector<std::vector<std::string>> Part::wordLists(std::string_view name,
                                                      std::size_t most) const {
    std::vector<std::vector<std::string>> lists;
    for (const Json& element : list(name, most)) {
        const std::string shown = elementOf(name, lists.size());
        std::vector<std::string>& words = lists.emplace_back();
        if (!element.is_array() || element.size() > most) {
            fail(shown, element.is_array() ? "has more than " + std::to_string(most) + " elements"
                                           : "is no list");
        }
        for (const Json& word : element) {
            if (const std::string fault = wordFault(word, mostWordBytes); !fault.empty()) {
                fail(elementOf(shown, words.size()), fault);
            }
            words.push_back(word.get_ref<const std::string&>());
        }
    }
    return lists;
}

std::string Part::word(std::string_view name, std::size_t most) const {
    const Json& value = required(name);
    if (const std::string fault = wordFault(value, most); !fault.empty()) {
        fail(name, fault);
    }
    return value.get_ref<const std::string&>();
}

std::string Part::wordOrNull(std::string_view name, std::size_t most) const {
    return isNull(name) ? std::string() : word(name, most);
}

std::vector<std::string> Part::words(std::string_view name, std::size_t most,
                                     std::size_t mostBytes) const {
    std::vector<std::string> result;
    for (const Json& element : list(name, most)) {
        if (const std::string fault = wordFault(element, mostBytes); !fault.empty()) {
            fail(elementOf(name, result.size()), fault);
        }
        result.push_back(element.get_ref<const std::string&>());
    }
    return result;
}

std::string Part::text(std::string_view name) const {
    const Json& value = required(name);
    if (const std::string fault = textFault(value); !fault.empty()) {
        fail(name, fault);
    }
    return value.get_ref<const std::string&>();
}

std::string Part::textOrNull(std::string_view name) const {
    return isNull(name) ? std::string() : text(name);
}

std::vector<std::string> Part::texts(std::string_view name, std::size_t most) const {
    std::vector<std::string> result;
    for (const Json& element : list(name, most)) {
        if (const std::string fault = textFault(element); !fault.empty()) {
            fail(elementOf(name, result.size()), fault);
        }
        result.push_back(element.get_ref<const std::string&>());
    }
    return result;
}

std::vector<std::string> Part::names(std::size_t most) const {
    if (value_->size() > most) {
        fail("has more than " + std::to_string(most) + " names");
    }
    std::vector<std::string> result;
    for (const auto& [name, value] : value_->get_ref<const Json::object_t&>()) {
        if (hasControl(name) || name.size() > mostWordBytes) {
            fail("has a name that is no word");
        }
        result.push_back(name);
    }
    return result;
}

std::string Part::hash(std::string_view name) const {
    constexpr std::size_t digits = 64;
    std::string text = word(name);
    if (!isHexadecimal(text, digits)) {
        fail(name, "is no hash of 64 hexadecimal digits");
    }
    return text;
}

std::string Part::hashOrNull(std::string_view name) const {
    return isNull(name) ? std::string() : hash(name);
}

bool Part::truth(std::string_view name) const {
    const Json& value = required(name);
    if (!value.is_boolean()) {
        fail(name, "is neither true nor false");
    }
    return value.get<bool>();
}

std::vector<std::int32_t> Part::numbers(std::string_view name, std::size_t most, std::int64_t least,
                                        std::int64_t largest) const {
    std::vector<std::int32_t> result;
    for (const Json& element : list(name, most)) {
        result.push_back(
            static_cast<std::int32_t>(numberOf(element, name, least, largest, result.size())));
    }
    return result;
}

void Part::fail(std::string_view name, const std::string& what) const {
    throw DocumentFault{Kind::wrongValue, placeOf(name) + " " + what};
}

void Part::fail(const std::string& what) const {
    throw DocumentFault{Kind::wrongValue, (place_.empty() ? "the document" : place_) + " " + what};
}

void Part::failUnknown(std::string_view name, std::string_view word) const {
    constexpr std::size_t shown = 40;
    fail(name, word.empty() ? "is null" : "is the unknown word \"" + shortened(word, shown) + "\"");
}

const Json* Part::find(std::string_view name) const {
    const auto* const object = value_->get_ptr<const Json::object_t*>();
    if (object == nullptr) {
        return nullptr;
    }
    for (std::size_t i = 0; i < object->size(); ++i) {
        const std::size_t index = (next_ + i) % object->size();
        const auto& [key, value] = *(object->begin() + static_cast<std::ptrdiff_t>(index));
        if (key == name) {
            next_ = index;
            return &value;
        }
    }
    return nullptr;
}

const Json& Part::required(std::string_view name) const {
    const Json* const value = find(name);
    if (value == nullptr) {
        fail(name, "is missing");
    }
    return *value;
}

const Json& Part::list(std::string_view name, std::size_t most) const {
    const Json& value = required(name);
    if (!value.is_array()) {
        fail(name, "is no list");
    }
    if (value.size() > most) {
        fail(name, "has more than " + std::to_string(most) + " elements");
    }
    return value;
}

std::string Part::placeOf(std::string_view name) const {
    return (place_.empty() ? "" : place_ + ".") + std::string(name);
}

std::int64_t Part::numberOf(const Json& value, std::string_view name, std::int64_t least,
                            std::int64_t most, std::optional<std::size_t> index) const {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    std::optional<std::int64_t> number;
    if (value.is_number_integer() &&
        (!value.is_number_unsigned() ||
         value.get<std::uint64_t>() <= static_cast<std::uint64_t>(largest))) {
        number = value.get<std::int64_t>();
    }
    if (!number || *number < least || *number > most) {
        fail(index ? elementOf(name, *index) : std::string(name),
             "is no whole number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return *number;
}

bool isHexadecimal(std::string_view text, std::size_t count) {
    return text.size() == count && text.find_first_not_of("0123456789abcdef") == text.npos;
}

} // namespace zolex::companion
