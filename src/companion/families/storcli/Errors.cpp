#include "companion/families/storcli/Errors.h"

#include "companion/families/storcli/ToldValue.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion::storcli {

namespace {

constexpr std::size_t longestWords = 300;

// Columns: code, text, help. Order: by code.
// clang-format off
constexpr auto rows = std::to_array<ErrorRow>({
    {3,   "a parameter is not valid", "zolexctl record --redact -o report.zrec, and report it"},
    {9,   "there is no such array", "look at what stands, and plan anew: zolexctl plan POLICIES"},
    {11,  "the configuration has a conflict",
          "a drive is in use, or its kind or sector size is another: zolexctl show"},
    {12,  "there is no such drive", "look at the drives, and plan anew: zolexctl show"},
    {13,  "the drives are too small", "plan for what is there: zolexctl plan POLICIES"},
    {26,  "there are too many logical drives", "write fewer logical drives into the policy"},
    {27,  "a logical drive is not optimal", "wait until it is rebuilt, and go on: --resume"},
    {31,  "there are too many hot spares", "write fewer hot spares into the policy"},
    {35,  "it is not there", "look at what stands, and plan anew: zolexctl plan POLICIES"},
    {38,  "SAS and SATA do not go together",
          "say which in the policy: Drives.A = 4 x SAS, or name the drives"},
    {45,  "a drive does not answer", "pull the drive or wait, and go on: --resume"},
    {46,  "a drive does not answer", "pull the drive or wait, and go on: --resume"},
    {50,  "the state of a drive or logical drive does not allow it",
          "a drive is in use, foreign or bad: zolexctl show"},
    {59,  "a layout of another controller is not complete",
          "put its drives back, or take the others out: zolexctl show"},
    {63,  "data is being copied back", "wait until it is done, and go on: --resume"},
    {84,  "the cache holds data of a logical drive that is not there",
          "bring its drives back, or drop its data for good by hand: its utility's "
          "/c0/vN delete preservedcache"},
    {118, "it is not possible", ""},
    {255, "the utility does not take the command", ""},
});
// clang-format on

struct MessageRow {
    std::string_view part; ///< of the utility's words, letter case ignored
    std::string_view help;
};

// Codes that stand for many things are told apart by their words.
// clang-format off
constexpr std::array<MessageRow, 8> messages = {{
    {"OS",                     "the system has files there; move them, or delete it by hand"},
    {"mounted",                "the system has files there; move them, or delete it by hand"},
    {"Invalid VD number",      "look at what stands, and plan anew: zolexctl plan POLICIES"},
    {"Drive not found",        "look at the drives, and plan anew: zolexctl show"},
    {"Mix of configured",      "a drive is in use or JBOD: zolexctl show"},
    {"Operation not allowed",  "a drive is in use, or the controller does not do this: zolexctl show"},
    {"device state",           "a drive is in use, foreign or bad: zolexctl show"},
    {"capacity",               "plan for what is there: zolexctl plan POLICIES"},
}};
// clang-format on

std::string trimmed(std::string_view text) {
    return std::string(text::trim(text).substr(0, longestWords));
}

/// Gathers what the output says against success.
class Judgement {
  public:
    /// Answers that tell the number of another controller are none to this command.
    void read(std::string_view output, std::optional<std::int32_t> adapter) {
        const ToldJson json = readToldJson(output);
        const ToldValue& controllers = json.value.at("Controllers");
        if (controllers.kind() != ToldValue::Kind::list) {
            readText(output);
            return;
        }
        for (const ToldValue& controller : controllers.items()) {
            const ToldValue& status = controller.at("Command Status");
            const auto number = status.at("Controller").smallNumber();
            if (adapter && number && *number != *adapter) {
                hasFailure_ = true;
                tell("the answer is of controller " + std::to_string(*number));
            } else if (status.isThere()) {
                readStatus(status);
            }
        }
    }

    [[nodiscard]] bool saysSuccess() const { return hasSuccess_ && !hasFailure_; }
    [[nodiscard]] bool isUnsupported() const {
        return text::containsNoCase(words_, "Un-supported Command");
    }
    [[nodiscard]] std::int32_t code() const { return code_; }
    [[nodiscard]] const std::string& words() const { return words_; }

  private:
    void readStatus(const ToldValue& status) {
        const bool saysSuccess = text::equalsNoCase(status.at("Status").text(), "Success");
        hasSuccess_ = hasSuccess_ || saysSuccess;
        hasFailure_ = hasFailure_ || !saysSuccess;
        const std::size_t had = words_.size();
        for (const ToldValue& row : status.at("Detailed Status").items()) {
            readDetail(row);
        }
        if (!saysSuccess && words_.size() == had) {
            tell(status.at("Description").toldText()); // else it says no more than they do
        }
    }

    void readDetail(const ToldValue& row) {
        const std::string word = row.at("Status").toldText();
        const std::string told = row.at("ErrCd").toldText();
        if ((word.empty() || text::equalsNoCase(word, "Success")) &&
            (told.empty() || told == "0")) {
            return;
        }
        hasFailure_ = true;
        code_ = code_ == 0 ? row.at("ErrCd").smallNumber().value_or(0) : code_;
        const std::string words = row.at("ErrMsg").toldText();
        tell(words.empty() ? row.at("Description").toldText() : words);
    }

    /// "Status = Failure" and "Description = ..." of an answer that is no JSON.
    void readText(std::string_view output) {
        bool isTold = false;
        while (!output.empty()) {
            const std::size_t end = output.find('\n');
            const std::string_view line = text::trim(output.substr(0, end));
            output = end == std::string_view::npos ? std::string_view() : output.substr(end + 1);
            const std::size_t equals = line.find('=');
            if (equals == std::string_view::npos) {
                continue;
            }
            const std::string_view key = text::trim(line.substr(0, equals));
            const std::string_view value = text::trim(line.substr(equals + 1));
            if (text::equalsNoCase(key, "Status")) {
                isTold = true;
                hasSuccess_ = text::equalsNoCase(value, "Success");
                hasFailure_ = !hasSuccess_;
            } else if (text::equalsNoCase(key, "Description")) {
                description_ = trimmed(value);
            }
        }
        if (!isTold || hasFailure_) {
            tell(description_.empty() ? "it printed no answer that can be read" : description_);
        }
    }

    void tell(std::string_view told) {
        const std::string words = trimmed(told);
        if (!words.empty() && words != "None" && words_.find(words) == std::string::npos) {
            words_ += (words_.empty() ? "" : "; ") + words;
        }
    }

    bool hasSuccess_ = false;
    bool hasFailure_ = false;
    std::int32_t code_ = 0;
    std::string words_;
    std::string description_;
};

/// 0 of "STORCLI /c0/v239 del J".
std::optional<std::int32_t> adapterOf(std::string_view line) {
    constexpr std::string_view path = "/c";
    const std::size_t at = line.find(" /c");
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = line.substr(at + 1 + path.size());
    return text::wholeNumber(rest.substr(0, rest.find_first_not_of("0123456789")));
}

/// The line without " nolog"; empty when it has none.
std::string withoutNolog(std::string_view line) {
    constexpr std::string_view option = " nolog";
    const std::string_view bare = text::trim(line);
    return bare.ends_with(option) ? std::string(bare.substr(0, bare.size() - option.size()))
                                  : std::string();
}

std::string_view helpFor(std::int32_t code, std::string_view words) {
    const auto* const row =
        std::find_if(messages.begin(), messages.end(), [words](const MessageRow& each) {
            // "OS" is a word of its own, and no part of "possible".
            return each.part == "OS" ? text::contains(words, " OS") || text::contains(words, "OS ")
                                     : text::containsNoCase(words, each.part);
        });
    if (row != messages.end()) {
        return row->help;
    }
    const ErrorRow* const error = findError(code);
    return error == nullptr ? std::string_view() : error->help;
}

} // namespace

std::span<const ErrorRow> errorRows() {
    return rows;
}

const ErrorRow* findError(std::int32_t code) {
    const auto* const row = std::find_if(
        rows.begin(), rows.end(), [code](const ErrorRow& each) { return each.code == code; });
    return row == rows.end() ? nullptr : row;
}

FamilyVerdict judge(std::string_view commandLine, std::uint32_t exitCode, std::string_view output) {
    Judgement judgement;
    judgement.read(output, adapterOf(commandLine));
    FamilyVerdict verdict;
    verdict.isDone = exitCode == 0 && judgement.saysSuccess();
    if (verdict.isDone) {
        return verdict;
    }
    const std::int32_t code =
        judgement.code() != 0 ? judgement.code() : static_cast<std::int32_t>(exitCode & 0xFFU);
    verdict.why = judgement.words();
    if (verdict.why.empty()) {
        const ErrorRow* const row = findError(code);
        verdict.why = row == nullptr ? "it ended with exit code " + std::to_string(exitCode)
                                     : std::string(row->text);
    }
    if (code != 0) {
        verdict.why += " (error " + std::to_string(code) + ")";
    }
    if (judgement.isUnsupported()) {
        verdict.instead = withoutNolog(commandLine);
    }
    if (const std::string_view help = helpFor(code, judgement.words()); !help.empty()) {
        verdict.help.emplace_back(help);
    }
    return verdict;
}

} // namespace zolex::companion::storcli
