#include "companion/exchange/JsonPlaces.h"

#include <algorithm>
#include <cstdint>

namespace zolex::companion {

JsonPlaces::JsonPlaces(std::string_view text) : text_(text), lineStarts_{0} {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') {
            lineStarts_.push_back(i + 1);
        }
    }
    readValue("");
}

std::pair<TextPlace, TextPlace> JsonPlaces::placeOf(std::string_view path) const {
    auto found = values_.find(path);
    while (found == values_.end() && !path.empty()) {
        const std::size_t cut = path.find_last_of(".[");
        path = path.substr(0, cut == std::string_view::npos ? 0 : cut);
        found = values_.find(path);
    }
    if (found == values_.end()) {
        return {};
    }
    // Of a value in several lines its begin is shown.
    const auto [begin, end] = found->second;
    const std::size_t lineEnd = std::min(text_.find_first_of("\r\n", begin), text_.size());
    return {placeAt(begin), placeAt(std::min(end, lineEnd))};
}

void JsonPlaces::readValue(const std::string& path) {
    skipBlanks();
    const std::size_t begin = at_;
    if (next() == '{') {
        readObject(path);
    } else if (next() == '[') {
        readList(path);
    } else if (next() == '"') {
        readString();
    } else {
        at_ = std::min(text_.find_first_of(",]} \t\r\n", at_), text_.size());
    }
    values_.try_emplace(path, begin, at_);
    skipBlanks();
}

void JsonPlaces::readObject(const std::string& path) {
    ++at_;
    skipBlanks();
    while (next() == '"') {
        const std::string name(readString());
        skipBlanks();
        ++at_; // the colon
        readValue(path + (path.empty() ? "" : ".") + name);
        if (next() == ',') {
            ++at_;
            skipBlanks();
        }
    }
    at_ += next() == '}' ? 1 : 0;
}

void JsonPlaces::readList(const std::string& path) {
    ++at_;
    skipBlanks();
    for (std::size_t i = 0; at_ < text_.size() && next() != ']'; ++i) {
        readValue(path + "[" + std::to_string(i) + "]");
        at_ += next() == ',' ? 1 : 0;
    }
    at_ += next() == ']' ? 1 : 0;
}

void JsonPlaces::skipBlanks() {
    at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size());
}

std::string_view JsonPlaces::readString() {
    const std::size_t begin = ++at_;
    while (at_ < text_.size() && text_[at_] != '"') {
        at_ += text_[at_] == '\\' ? 2 : 1;
    }
    at_ = std::min(at_, text_.size());
    const std::string_view inside = text_.substr(begin, at_ - begin);
    at_ = std::min(at_ + 1, text_.size());
    return inside;
}

TextPlace JsonPlaces::placeAt(std::size_t byte) const {
    const auto behind = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), byte);
    TextPlace place;
    place.line = static_cast<std::int32_t>(behind - lineStarts_.begin());
    place.column = static_cast<std::int32_t>(byte - *(behind - 1)) + 1;
    place.byte = static_cast<std::int64_t>(byte);
    return place;
}

} // namespace zolex::companion
