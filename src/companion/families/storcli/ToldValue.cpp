#include "companion/families/storcli/ToldValue.h"

#include "companion/facts/FactValues.h"
#include "companion/text/Utf8.h"
#include "foundation/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <list>
#include <set>

namespace zolex::companion {

namespace {

using Json = nlohmann::ordered_json;

const ToldValue& absentValue() {
    static const ToldValue absent;
    return absent;
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return text::equalsNoCase(text, word); });
}

/// The text with what no JSON may hold made harmless: control bytes inside texts, and bytes of no
/// character.
std::string cleanedJson(std::string_view text) {
    std::string clean(text);
    bool isInText = false;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const auto byte = static_cast<unsigned char>(clean[i]);
        constexpr unsigned char firstPrintable = 0x20;
        constexpr unsigned char firstBeyond = 0x80;
        if (isInText && clean[i] == '\\' && i + 1 < clean.size()) {
            ++i;
        } else if (clean[i] == '"') {
            isInText = !isInText;
        } else if (isInText && byte < firstPrintable) {
            clean[i] = ' ';
        } else if (byte >= firstBeyond) {
            const std::size_t length = characterLength(text.substr(i));
            clean[i] = length == 0 ? '?' : clean[i];
            i += length == 0 ? 0 : length - 1;
        }
    }
    return clean;
}

} // namespace

/// Takes up a text as it is read; stops it where it goes too deep.
class ToldValueBuilder : public nlohmann::json_sax<Json> {
  public:
    explicit ToldValueBuilder(ToldJson& told) : told_(told) {}

    bool null() override {
        next();
        return true;
    }
    bool boolean(bool value) override { return word(value ? "Yes" : "No"); }
    bool number_integer(number_integer_t value) override { return word(std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override { return word(std::to_string(value)); }
    bool number_float(number_float_t /*value*/, const string_t& written) override {
        return word(written);
    }
    bool string(string_t& value) override { return word(value); }
    bool binary(binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*elements*/) override { return start(ToldValue::Kind::object); }
    bool end_object() override { return end(); }
    bool start_array(std::size_t /*elements*/) override { return start(ToldValue::Kind::list); }
    bool end_array() override { return end(); }

    bool key(string_t& value) override {
        ToldValue& object = *open_.back();
        std::string name = cleanText(value);
        if (!keys_.back().insert(name).second) {
            constexpr std::size_t mostTold = 100;
            if (told_.duplicates.size() < mostTold) {
                told_.duplicates.push_back(name);
            }
            skipped_.emplace_back();
            next_ = &skipped_.back();
            return true;
        }
        object.members_.emplace_back(std::move(name), ToldValue());
        next_ = &object.members_.back().second;
        return true;
    }

    bool parse_error(std::size_t position, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*fault*/) override {
        told_.fault = "it is no JSON behind byte " + std::to_string(position);
        return false;
    }

  private:
    /// The place of the value that begins now.
    ToldValue& next() {
        if (next_ != nullptr) {
            return *std::exchange(next_, nullptr);
        }
        if (open_.empty()) {
            return told_.value;
        }
        return open_.back()->items_.emplace_back();
    }

    bool word(std::string_view text) {
        ToldValue& value = next();
        value.kind_ = ToldValue::Kind::word;
        value.word_ = text;
        return true;
    }

    bool start(ToldValue::Kind kind) {
        if (open_.size() >= mostToldDepth) {
            told_.fault = "its values lie deeper than " + std::to_string(mostToldDepth);
            return false;
        }
        ToldValue& value = next();
        value.kind_ = kind;
        open_.push_back(&value);
        keys_.emplace_back();
        return true;
    }

    bool end() {
        open_.pop_back();
        keys_.pop_back();
        return true;
    }

    ToldJson& told_;
    std::vector<ToldValue*> open_; ///< each lies in the one before, which does not grow meanwhile
    std::vector<std::set<std::string>> keys_; ///< of each
    ToldValue* next_ = nullptr;
    std::list<ToldValue> skipped_; ///< of keys that were there already
};

const ToldValue& ToldValue::at(std::string_view key) const {
    const auto found = std::find_if(members_.begin(), members_.end(),
                                    [key](const auto& member) { return member.first == key; });
    return found == members_.end() ? absentValue() : found->second;
}

const ToldValue& ToldValue::atAny(std::initializer_list<std::string_view> keys) const {
    for (const std::string_view key : keys) {
        if (const ToldValue& value = at(key); value.isThere()) {
            return value;
        }
    }
    return absentValue();
}

std::string ToldValue::text() const {
    if (kind_ != Kind::word) {
        return {};
    }
    isUsed_ = true;
    return cleanText(word_);
}

std::string ToldValue::toldText() const {
    std::string told = text();
    return isOneOf(told, {"-", "N/A", "NA", "None"}) ? std::string() : told;
}

std::optional<std::uint64_t> ToldValue::number() const {
    const std::string told = text();
    std::string_view rest = told;
    return takeNumber(rest);
}

std::optional<std::int32_t> ToldValue::smallNumber() const {
    return wholeNumber(text());
}

std::optional<std::uint32_t> ToldValue::id() const {
    const std::string told = text();
    const bool isHex = told.starts_with("0x") || told.starts_with("0X");
    const char* const begin = told.data() + (isHex ? 2 : 0);
    const char* const end = told.data() + told.size();
    constexpr int hexadecimal = 16;
    constexpr int decimal = 10;
    std::uint32_t value = 0;
    const auto read = std::from_chars(begin, end, value, isHex ? hexadecimal : decimal);
    return read.ec == std::errc() && read.ptr == end ? std::optional(value) : std::nullopt;
}

std::optional<bool> ToldValue::truth() const {
    const std::string told = text();
    if (isOneOf(told, {"Yes", "Y", "On", "True", "Allowed", "Enabled"})) {
        return true;
    }
    return isOneOf(told, {"No", "N", "Off", "False", "Not Allowed", "Disabled"})
               ? std::optional(false)
               : std::nullopt;
}

ToldValue::Count ToldValue::count() const {
    Count sum;
    if (kind_ == Kind::word) {
        sum.all = 1;
        sum.used = isUsed_ ? 1 : 0;
    }
    const auto add = [&sum](const ToldValue& value) {
        const Count part = value.count();
        sum.all += part.all;
        sum.used += part.used;
    };
    for (const ToldValue& item : items_) {
        add(item);
    }
    for (const auto& [key, value] : members_) {
        add(value);
    }
    return sum;
}

ToldJson readToldJson(std::string_view text) {
    ToldJson told;
    if (text.size() > mostToldBytes) {
        told.fault = "it is larger than " + std::to_string(mostToldBytes >> 20U) + " MB";
        return told;
    }
    // What a loader has to say stands around it.
    const std::size_t begin = std::min(text.find('{'), text.size());
    const std::size_t end = text.rfind('}');
    const std::string document = end == std::string_view::npos || end < begin
                                     ? std::string()
                                     : cleanedJson(text.substr(begin, end + 1 - begin));
    ToldValueBuilder builder(told);
    nlohmann::json_sax<Json>* const sax = &builder;
    told.isJson = Json::sax_parse(document.begin(), document.end(), sax);
    if (!told.isJson && told.fault.empty()) {
        told.fault = "it is no JSON";
    }
    if (!told.isJson) {
        told.value = {};
    }
    return told;
}

} // namespace zolex::companion
