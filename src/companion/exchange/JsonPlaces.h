#pragma once

#include "companion/findings/Finding.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

/// Where each value of a JSON text stands.
class JsonPlaces {
  public:
    /// `text` is JSON, of a depth that was looked at; it must outlive this.
    explicit JsonPlaces(std::string_view text);

    /// Begin and end of the value at a path such as "logical_disks[1].size_gb"; of what holds it
    /// when there is none of this path.
    [[nodiscard]] std::pair<TextPlace, TextPlace> placeOf(std::string_view path) const;

  private:
    void readValue(const std::string& path);
    void readObject(const std::string& path);
    void readList(const std::string& path);
    void skipBlanks();
    /// The text between the quotes, as it is written.
    std::string_view readString();
    [[nodiscard]] char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    [[nodiscard]] TextPlace placeAt(std::size_t byte) const;

    std::string_view text_;
    std::size_t at_ = 0;
    std::vector<std::size_t> lineStarts_;
    std::map<std::string, std::pair<std::size_t, std::size_t>, std::less<>> values_;
};

} // namespace zolex::companion
