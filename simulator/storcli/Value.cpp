#include "storcli/Value.h"

#include "model/Text.h"

#include <algorithm>

namespace zolex_sim::storcli {
namespace {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + "\"";
}

/// The line of a table, each text as wide as its column.
std::string tableLine(const std::vector<std::string>& texts,
                      const std::vector<std::size_t>& widths) {
    std::string line;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        line += texts[i] + std::string(widths[i] - texts[i].size() + 1, ' ');
    }
    return line + "\n";
}

} // namespace

Value Value::identifier(int number) {
    Value value(number);
    value.hexadecimal_ = true;
    return value;
}

bool Value::remove(const std::string& key) {
    const auto found = std::find(keys_.begin(), keys_.end(), key);
    if (found != keys_.end()) {
        items_.erase(items_.begin() + (found - keys_.begin()));
        keys_.erase(found);
        return true;
    }
    return std::any_of(items_.begin(), items_.end(), [&](Value& item) { return item.remove(key); });
}

void Value::addEverywhere(const std::string& key, const Value& value) {
    for (Value& item : items_) {
        item.addEverywhere(key, value);
    }
    if (kind_ == Kind::object) {
        add(key, value);
    }
}

std::string Value::json(std::size_t depth) const {
    if (kind_ == Kind::text) {
        return quoted(text_);
    }
    if (kind_ == Kind::number) {
        return std::to_string(number_);
    }
    const bool named = kind_ == Kind::object;
    std::string result = named ? "{\n" : "[\n";
    for (std::size_t i = 0; i < items_.size(); ++i) {
        result += std::string(depth + 1, '\t');
        result += named ? quoted(keys_[i]) + " : " : "";
        result += items_[i].json(depth + 1);
        result += i + 1 < items_.size() ? ",\n" : "\n";
    }
    return result + std::string(depth, '\t') + (named ? "}" : "]");
}

std::string Value::scalar() const {
    if (kind_ == Kind::text) {
        return text_;
    }
    return hexadecimal_ ? formatted("0x%llx", static_cast<unsigned long long>(number_))
                        : std::to_string(number_);
}

std::string Value::table() const {
    std::vector<std::vector<std::string>> rows = {items_.front().keys_};
    for (const Value& item : items_) {
        std::vector<std::string> row;
        for (const Value& cell : item.items_) {
            row.push_back(cell.isScalar() ? cell.scalar() : "-");
        }
        row.resize(rows.front().size(), "-");
        rows.push_back(std::move(row));
    }
    std::vector<std::size_t> widths(rows.front().size());
    std::size_t width = 0;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        for (const std::vector<std::string>& row : rows) {
            widths[column] = std::max(widths[column], row[column].size());
        }
        width += widths[column] + 1;
    }
    const std::string rule = std::string(width, '-') + "\n";
    std::string result = rule + tableLine(rows.front(), widths) + rule;
    for (std::size_t i = 1; i < rows.size(); ++i) {
        result += tableLine(rows[i], widths);
    }
    return result + rule;
}

std::string Value::text() const {
    std::string result;
    for (std::size_t i = 0; i < items_.size() && kind_ == Kind::object; ++i) {
        const Value& item = items_[i];
        if (item.isScalar()) {
            result += keys_[i] + " = " + item.scalar() + "\n";
            continue;
        }
        result += "\n" + keys_[i] + " :\n" + std::string(keys_[i].size() + 2, '=') + "\n\n";
        if (item.kind_ == Kind::object) {
            result += item.text();
        } else if (!item.isEmpty()) {
            result += item.table();
        }
    }
    return result;
}

} // namespace zolex_sim::storcli
