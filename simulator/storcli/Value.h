#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zolex_sim::storcli {

/// A value of an answer: a text, a number, a list, or an object whose keys keep their order.
class Value {
  public:
    Value(std::string text) : text_(std::move(text)) {}
    Value(const char* text) : text_(text) {}
    Value(std::int64_t number) : kind_(Kind::number), number_(number) {}
    Value(int number) : kind_(Kind::number), number_(number) {}
    Value(std::size_t number) : kind_(Kind::number), number_(static_cast<std::int64_t>(number)) {}

    static Value object() { return Value(Kind::object); }
    static Value list() { return Value(Kind::list); }
    /// A number that answers in text write in hexadecimal digits.
    static Value identifier(int number);

    /// Adds a member of an object.
    Value& add(std::string key, Value value) {
        keys_.push_back(std::move(key));
        items_.push_back(std::move(value));
        return *this;
    }
    /// Adds an item of a list.
    Value& add(Value value) {
        items_.push_back(std::move(value));
        return *this;
    }
    /// Takes the first member of this name away, here or deeper. False when there is none.
    bool remove(const std::string& key);
    /// Adds the member to every object, this one and those in it.
    void addEverywhere(const std::string& key, const Value& value);

    [[nodiscard]] bool isEmpty() const { return items_.empty(); }
    [[nodiscard]] std::size_t size() const { return items_.size(); }
    /// In the utility's layout of JSON; `depth` is the number of tabs of the line it begins in.
    [[nodiscard]] std::string json(std::size_t depth) const;
    /// In the utility's layout of text: "Key = value", sections, tables.
    [[nodiscard]] std::string text() const;

  private:
    enum class Kind : std::uint8_t { text, number, object, list };
    explicit Value(Kind kind) : kind_(kind) {}

    [[nodiscard]] std::string scalar() const;
    [[nodiscard]] std::string table() const;
    [[nodiscard]] bool isScalar() const { return kind_ == Kind::text || kind_ == Kind::number; }

    Kind kind_ = Kind::text;
    bool hexadecimal_ = false;
    std::int64_t number_ = 0;
    std::string text_;
    std::vector<std::string> keys_; ///< of an object, one for each item
    std::vector<Value> items_;
};

} // namespace zolex_sim::storcli
