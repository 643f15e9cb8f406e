#include "companion/json/RecordingLines.h"

#include "companion/json/Base64.h"
#include "companion/text/Utf8.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

namespace zolex::companion {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view recordingFormatName = "zolex-recording";
constexpr std::int32_t recordingFormatMajor = 1;
constexpr std::string_view recordingFormatVersion = "1.0";

// Codes of what is wrong with a recording.
constexpr const char* notRecording = "ZR101";
constexpr const char* otherVersion = "ZR102";
constexpr const char* wrongLine = "ZR103";
constexpr const char* wrongValue = "ZR104";
constexpr const char* tooLarge = "ZR105";
constexpr const char* changed = "ZR106";
constexpr const char* cutLine = "ZR107";
constexpr const char* noEnd = "ZR108";
constexpr const char* unknownCall = "ZR109";

/// The word of each outcome.
constexpr std::array<std::pair<ChildOutcome, std::string_view>, 5> outcomeWords{
    {{ChildOutcome::noPipe, "noPipe"},
     {ChildOutcome::notStarted, "notStarted"},
     {ChildOutcome::stillRunning, "stillRunning"},
     {ChildOutcome::ended, "ended"},
     {ChildOutcome::notClosed, "notClosed"}}};

// Writing

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string hex(std::uint32_t number, std::size_t digits) {
    std::array<char, 8> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, 16).ptr;
    const std::string_view written(text.data(), static_cast<std::size_t>(end - text.data()));
    return std::string(digits - std::min(digits, written.size()), '0') + std::string(written);
}

/// Adds a text: as it is when it is UTF-8, otherwise as base64 under a name of its own.
void addText(Json& object, const std::string& name, const std::string& text) {
    if (isUtf8(text)) {
        object[name] = text;
    } else {
        object[name + "_base64"] = toBase64(text);
    }
}

Json deviceObject(const PciDevice& device) {
    Json object;
    object["bus"] = device.bus;
    object["device"] = device.device;
    object["function"] = device.function;
    object["ids"] = hex(device.vendorId, 4) + ":" + hex(device.deviceId, 4) + ":" +
                    hex(device.subsystemVendorId, 4) + ":" + hex(device.subsystemId, 4);
    object["class"] = hex(device.classCode, 6);
    object["revision"] = device.revision;
    if (device.domain != 0) {
        object["domain"] = device.domain;
    }
    return object;
}

Json pathsObject(const std::map<std::string, std::string, std::less<>>& paths) {
    Json object = Json::object();
    for (const auto& [utility, path] : paths) {
        addText(object, utility, path);
    }
    return object;
}

/// Adds to a line what its call holds.
struct CallWriter {
    Json& object;

    void operator()(const PciCall& call) const {
        object["call"] = "pci";
        object["count"] = call.count;
        Json devices = Json::array();
        for (const PciDevice& device : call.devices) {
            devices.push_back(deviceObject(device));
        }
        object["devices"] = std::move(devices);
    }
    void operator()(const ChildCall& call) const {
        object["call"] = "child";
        addText(object, "command", call.command);
        object["capture"] = call.capture;
        object["limit_ms"] = call.limit.count();
        for (const auto& [outcome, word] : outcomeWords) {
            if (outcome == call.result.outcome) {
                object["outcome"] = word;
            }
        }
        object["exit_code"] = call.result.exitCode;
        object["duration_ms"] = call.duration.count();
        addText(object, "output", call.result.output);
    }
    void operator()(const PauseCall& /*call*/) const { object["call"] = "pause"; }
    void operator()(const LocalTimeCall& call) const {
        object["call"] = "local_time";
        const LocalTime& time = call.time;
        object["year"] = time.year;
        object["month"] = time.month;
        object["day"] = time.day;
        object["hour"] = time.hour;
        object["minute"] = time.minute;
        object["second"] = time.second;
        object["offset_minutes"] = time.offsetMinutes;
    }
    void operator()(const FirmwareCall& call) const {
        object["call"] = "firmware";
        addText(object, "machine_type", call.names.machineType);
        addText(object, "serial_number", call.names.serialNumber);
        addText(object, "fault", call.names.fault);
    }
    void operator()(const UtilitiesCall& call) const {
        object["call"] = "utilities";
        addText(object, "wrapper", call.found.wrapper);
        addText(object, "detector", call.found.detector);
        object["programs"] = pathsObject(call.found.programs);
        object["named"] = pathsObject(call.found.named);
    }
};

// Reading

/// A fault of a line: where in it, from 0, and what.
struct LineFault {
    const char* code;
    std::size_t offset;
    std::string text;
    std::string help = {};
};

/// Bytes of the string whose content begins at `begin`: up to the quote that closes it, npos when
/// there is none.
std::size_t stringEnd(std::string_view line, std::size_t begin) {
    for (std::size_t at = line.find('"', begin); at != std::string_view::npos;
         at = line.find('"', at + 1)) {
        std::size_t escapes = 0;
        while (at - escapes > begin && line[at - escapes - 1] == '\\') {
            ++escapes;
        }
        if (escapes % 2 == 0) {
            return at;
        }
    }
    return std::string_view::npos;
}

constexpr std::string_view blanks = " \t";

/// The value of one name: the string that was cut out of a line.
struct CutString {
    std::size_t begin = 0; ///< of its content in the line
    std::size_t end = 0;   ///< of its content; where the quote stands
    bool isBase64 = false;
};

/// Looks for the string of "output" or "output_base64".
std::optional<CutString> findOutput(std::string_view line) {
    constexpr std::string_view name = "\"output";
    constexpr std::string_view base64 = "_base64";
    for (std::size_t at = line.find(name); at != std::string_view::npos;
         at = line.find(name, at + 1)) {
        if (at == 0 || line[at - 1] == '\\') {
            continue;
        }
        CutString cut;
        std::size_t next = at + name.size();
        if (line.substr(next).starts_with(base64)) {
            cut.isBase64 = true;
            next += base64.size();
        }
        if (!line.substr(next).starts_with('"')) {
            continue;
        }
        next = line.find_first_not_of(blanks, next + 1);
        if (next == std::string_view::npos || line[next] != ':') {
            continue;
        }
        next = line.find_first_not_of(blanks, next + 1);
        if (next == std::string_view::npos || line[next] != '"') {
            continue;
        }
        cut.begin = next + 1;
        cut.end = stringEnd(line, cut.begin);
        if (cut.end == std::string_view::npos) {
            return std::nullopt;
        }
        return cut;
    }
    return std::nullopt;
}

/// The character that a backslash and `letter` stand for; 0 when more belongs to it.
char unescaped(char letter) {
    switch (letter) {
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case '"':
    case '\\':
    case '/':
        return letter;
    default:
        return '\0';
    }
}

bool isPlain(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x80;
}

/// The text of a JSON string of plain ASCII with short escapes, which listings are; nothing for any
/// other. Nearly all of a recording is in such strings, and the library, which looks at each byte
/// on its own, takes several times as long for them.
std::optional<std::string> plainString(std::string_view content) {
    std::string text(content.size(), '\0');
    std::size_t size = 0;
    for (std::size_t at = 0; at < content.size(); ++at) {
        char c = content[at];
        if (c == '\\') {
            ++at;
            c = at < content.size() ? unescaped(content[at]) : '\0';
            if (c == '\0') {
                return std::nullopt;
            }
        } else if (!isPlain(c)) {
            return std::nullopt;
        }
        text[size] = c;
        ++size;
    }
    text.resize(size);
    return text;
}

/// The position of the value of a name of the outermost object; 0 when it has none. The line is an
/// object that was parsed before.
std::size_t valueOffset(std::string_view line, std::string_view name) {
    int depth = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        } else if (c == '"') {
            const std::size_t end = stringEnd(line, i + 1);
            if (end == std::string_view::npos) {
                return 0;
            }
            const std::size_t colon = line.find_first_not_of(blanks, end + 1);
            if (depth == 1 && line.substr(i + 1, end - i - 1) == name &&
                colon != std::string_view::npos && line[colon] == ':') {
                return std::min(line.find_first_not_of(blanks, colon + 1), line.size() - 1);
            }
            i = end;
        }
    }
    return 0;
}

/// Throws the fault at once: a line has many values, and none is of use without the others.
[[noreturn]] void fail(LineFault fault) {
    throw fault;
}

/// One line as an object, its output apart.
class LineObject {
  public:
    /// Throws LineFault when the line is no JSON object.
    explicit LineObject(std::string_view line) : line_(line), cut_(findOutput(line)) {
        const std::size_t outputSize = cut_ ? cut_->end - cut_->begin : 0;
        if (line.size() - outputSize > mostLineBesideOutput) {
            fail({tooLarge, mostLineBesideOutput,
                  "the line is longer than " + std::to_string(mostLineBesideOutput) +
                      " bytes, its output not counted"});
        }
        std::string rest;
        if (cut_) {
            // null takes the place of the string with its quotes.
            rest.append(line.substr(0, cut_->begin - 1)).append("null");
            rest += line.substr(cut_->end + 1);
        }
        try {
            object_ = Json::parse(cut_ ? std::string_view(rest) : line);
        } catch (const Json::parse_error& error) {
            fail({wrongLine, offsetInLine(error.byte == 0 ? 0 : error.byte - 1),
                  "this is no JSON object: " + reasonOf(error)});
        }
        if (!object_.is_object()) {
            fail({wrongLine, 0, "this is no JSON object"});
        }
    }

    [[nodiscard]] bool has(std::string_view name) const { return object_.contains(name); }

    std::string text(std::string_view name, std::size_t most = mostLineBesideOutput) const {
        const Json& value = required(name);
        if (!value.is_string() || value.get_ref<const std::string&>().size() > most) {
            wrong(name, "is no text");
        }
        return value.get<std::string>();
    }
    /// A text that may stand in base64 under a name of its own.
    std::string bytes(const std::string& name) const { return bytesOf(object_, name, name); }
    /// A number from `least` to `most`.
    std::int64_t number(std::string_view name, std::int64_t least, std::int64_t most) const {
        return numberOf(required(name), name, std::string(name), least, most);
    }
    bool truth(std::string_view name) const {
        const Json& value = required(name);
        if (!value.is_boolean()) {
            wrong(name, "is neither true nor false");
        }
        return value.get<bool>();
    }
    std::map<std::string, std::string, std::less<>> paths(std::string_view name) const {
        const Json& value = required(name);
        if (!value.is_object()) {
            wrong(name, "is no object");
        }
        std::map<std::string, std::string, std::less<>> result;
        for (const auto& [key, path] : value.items()) {
            const bool isBase64 = key.ends_with("_base64");
            const std::string word = isBase64 ? key.substr(0, key.size() - 7) : key;
            result[word] = bytesOf(value, word, name);
        }
        return result;
    }
    std::vector<PciDevice> devices() const {
        const Json& value = required("devices");
        if (!value.is_array()) {
            wrong("devices", "is no list");
        }
        std::vector<PciDevice> result;
        for (const Json& device : value) {
            result.push_back(deviceOf(device, result.size()));
        }
        return result;
    }
    std::vector<std::string> texts(std::string_view name) const {
        const Json& value = required(name);
        const bool areTexts =
            value.is_array() && std::all_of(value.begin(), value.end(),
                                            [](const Json& text) { return text.is_string(); });
        if (!areTexts) {
            wrong(name, "is no list of texts");
        }
        return value.get<std::vector<std::string>>();
    }
    /// The value of a name in the object of another, when there is one and it is a text.
    std::string textIn(std::string_view object, std::string_view name) const {
        const auto outer = object_.find(object);
        if (outer == object_.end() || !outer->is_object()) {
            return {};
        }
        const auto inner = outer->find(name);
        return inner != outer->end() && inner->is_string() ? inner->get<std::string>()
                                                           : std::string();
    }

    /// What a child printed.
    std::string output() const {
        if (!cut_) {
            const bool isBase64 = object_.contains("output_base64");
            const bool isThere = isBase64 || object_.contains("output");
            wrong(isBase64 ? "output_base64" : "output", isThere ? "is no text" : "is missing");
        }
        const std::string_view content = line_.substr(cut_->begin, cut_->end - cut_->begin);
        std::optional<std::string> text = plainString(content);
        if (!text) {
            text = libraryString(content);
        }
        if (cut_->isBase64) {
            text = fromBase64(*text);
            if (!text) {
                wrong("output_base64", "is no base64");
            }
        }
        if (text->size() > mostChildOutput) {
            wrong(cut_->isBase64 ? "output_base64" : "output",
                  "is longer than " + std::to_string(mostChildOutput) + " bytes", tooLarge);
        }
        return std::move(*text);
    }

    [[noreturn]] void wrong(std::string_view name, std::string_view what,
                            const char* code = wrongValue) const {
        fail(
            {code, valueOffset(line_, name), "\"" + std::string(name) + "\" " + std::string(what)});
    }

  private:
    const Json& required(std::string_view name) const {
        const auto found = object_.find(name);
        if (found == object_.end()) {
            fail({wrongValue, 0, "\"" + std::string(name) + "\" is missing"});
        }
        return *found;
    }

    /// Where in the line a byte of the text stands that was parsed.
    [[nodiscard]] std::size_t offsetInLine(std::size_t offset) const {
        constexpr std::size_t nullSize = 4;
        if (cut_ && offset >= cut_->begin - 1 + nullSize) {
            offset += cut_->end + 1 - (cut_->begin - 1) - nullSize;
        }
        return std::min(offset, line_.size());
    }

    /// What the library says, without its own place and the bytes that it met.
    static std::string reasonOf(const Json::exception& error) {
        std::string_view text = error.what();
        const std::size_t colon = text.find(": ");
        text.remove_prefix(colon == std::string_view::npos ? 0 : colon + 2);
        return std::string(text.substr(0, text.find("; last read")));
    }

    std::string libraryString(std::string_view content) const {
        try {
            return Json::parse("\"" + std::string(content) + "\"").get<std::string>();
        } catch (const Json::parse_error& error) {
            const std::size_t within = error.byte < 2 ? 0 : error.byte - 2;
            fail({wrongLine, std::min(cut_->begin + within, line_.size()),
                  "this is no JSON text: " + reasonOf(error)});
        }
    }

    std::string bytesOf(const Json& object, const std::string& name, std::string_view shown) const {
        const auto plain = object.find(name);
        if (plain != object.end() && plain->is_string()) {
            return plain->get<std::string>();
        }
        const auto coded = object.find(name + "_base64");
        if (plain != object.end() || coded == object.end()) {
            wrong(shown, plain != object.end() ? "is no text" : "is missing");
        }
        std::optional<std::string> bytes;
        if (coded->is_string()) {
            bytes = fromBase64(coded->get_ref<const std::string&>());
        }
        if (!bytes) {
            wrong(std::string(shown) + "_base64", "is no base64");
        }
        return std::move(*bytes);
    }

    std::int64_t numberOf(const Json& value, std::string_view name, const std::string& shown,
                          std::int64_t least, std::int64_t most) const {
        std::optional<std::int64_t> number;
        if (value.is_number_integer() &&
            (!value.is_number_unsigned() ||
             value.get<std::uint64_t>() <=
                 static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))) {
            number = value.get<std::int64_t>();
        }
        if (!number || *number < least || *number > most) {
            fail({wrongValue, valueOffset(line_, name),
                  "\"" + shown + "\" is no whole number from " + std::to_string(least) + " to " +
                      std::to_string(most)});
        }
        return *number;
    }

    [[nodiscard]] PciDevice deviceOf(const Json& object, std::size_t index) const {
        const std::string shown = "devices[" + std::to_string(index) + "]";
        const auto member = [&](const char* name) -> const Json& {
            if (!object.is_object() || !object.contains(name)) {
                wrong("devices", "lacks " + shown + "." + name);
            }
            return object[name];
        };
        const auto small = [&](const char* name) {
            return static_cast<std::uint16_t>(
                numberOf(member(name), "devices", shown + "." + name, 0, 0xFFFF));
        };
        PciDevice device;
        device.bus = small("bus");
        device.device = small("device");
        device.function = small("function");
        device.revision = object.contains("revision") ? small("revision") : std::uint16_t{0};
        if (object.contains("domain")) {
            device.domain = static_cast<std::uint32_t>(
                numberOf(member("domain"), "devices", shown + ".domain", 0, 0xFFFFFFFF));
        }
        const auto ids = hexNumbers(member("ids"), 4, 4);
        const auto classCode = hexNumbers(member("class"), 1, 8);
        if (!ids || !classCode) {
            wrong("devices", "has " + shown + (ids ? ".class" : ".ids") +
                                 (ids ? ", which is no hexadecimal number"
                                      : ", which are no four hexadecimal numbers"));
        }
        device.vendorId = static_cast<std::uint16_t>((*ids)[0]);
        device.deviceId = static_cast<std::uint16_t>((*ids)[1]);
        device.subsystemVendorId = static_cast<std::uint16_t>((*ids)[2]);
        device.subsystemId = static_cast<std::uint16_t>((*ids)[3]);
        device.classCode = (*classCode)[0];
        return device;
    }

    /// So many hexadecimal numbers of up to `digits` digits with ":" between them.
    static std::optional<std::array<std::uint32_t, 4>>
    hexNumbers(const Json& value, std::size_t count, std::size_t digits) {
        std::array<std::uint32_t, 4> numbers{};
        if (!value.is_string()) {
            return std::nullopt;
        }
        std::string_view rest = value.get_ref<const std::string&>();
        for (std::size_t i = 0; i < count; ++i) {
            const std::string_view part = rest.substr(0, rest.find(':'));
            const char* const end = part.data() + part.size();
            const auto read = std::from_chars(part.data(), end, numbers.at(i), 16);
            if (part.empty() || part.size() > digits || read.ec != std::errc() || read.ptr != end) {
                return std::nullopt;
            }
            rest.remove_prefix(std::min(part.size() + 1, rest.size()));
            if (i + 1 == count && value.get_ref<const std::string&>().ends_with(':')) {
                return std::nullopt;
            }
        }
        return rest.empty() ? std::optional(numbers) : std::nullopt;
    }

    std::string_view line_;
    std::optional<CutString> cut_;
    Json object_;
};

// The calls of each kind.

PciCall readPci(const LineObject& line) {
    PciCall call;
    call.devices = line.devices();
    call.count = call.devices.size();
    if (line.has("count")) {
        call.count = static_cast<std::size_t>(line.number("count", 0, 1 << 20));
    }
    return call;
}

constexpr std::int64_t mostMilliseconds = std::int64_t{1} << 52U;

ChildCall readChild(const LineObject& line) {
    ChildCall call;
    call.command = line.bytes("command");
    call.capture = line.truth("capture");
    call.limit = std::chrono::milliseconds(line.number("limit_ms", 0, mostMilliseconds));
    call.duration = std::chrono::milliseconds(line.number("duration_ms", 0, mostMilliseconds));
    const std::string outcome = line.text("outcome");
    const auto word = std::find_if(outcomeWords.begin(), outcomeWords.end(),
                                   [&](const auto& row) { return row.second == outcome; });
    if (word == outcomeWords.end()) {
        line.wrong("outcome", "is none of noPipe, notStarted, stillRunning, ended, notClosed");
    }
    call.result.outcome = word->first;
    call.result.exitCode = static_cast<std::uint32_t>(
        line.number("exit_code", 0, std::numeric_limits<std::uint32_t>::max()));
    call.result.output = line.output();
    return call;
}

LocalTimeCall readLocalTime(const LineObject& line) {
    const auto part = [&](const char* name, std::int64_t least, std::int64_t most) {
        return static_cast<int>(line.number(name, least, most));
    };
    LocalTimeCall call;
    call.time.year = part("year", 0, 9999);
    call.time.month = part("month", 1, 12);
    call.time.day = part("day", 1, 31);
    call.time.hour = part("hour", 0, 23);
    call.time.minute = part("minute", 0, 59);
    call.time.second = part("second", 0, 59);
    call.time.offsetMinutes = part("offset_minutes", -1440, 1440);
    return call;
}

FirmwareCall readFirmware(const LineObject& line) {
    return {{line.bytes("machine_type"), line.bytes("serial_number"), line.bytes("fault")}};
}

UtilitiesCall readUtilities(const LineObject& line) {
    UtilitiesCall call;
    call.found.wrapper = line.bytes("wrapper");
    call.found.detector = line.bytes("detector");
    call.found.programs = line.paths("programs");
    call.found.named = line.paths("named");
    return call;
}

/// Goes through the lines of one recording.
class Reader {
  public:
    Reader(std::string_view text, std::string_view fileName) : rest_(text), file_(fileName) {}

    RecordingReading read() {
        recording_.file = file_;
        bool isWhole = false;
        try {
            isWhole = readLines();
        } catch (const LineFault& fault) {
            tell(Severity::error, fault);
        }
        if (isWhole) {
            reading_.recording = std::move(recording_);
        }
        return std::move(reading_);
    }

  private:
    /// False after an error that has been told.
    bool readLines() {
        if (rest_.empty()) {
            fail({notRecording, 0, "the file is empty"});
        }
        while (!rest_.empty()) {
            const std::size_t end = rest_.find('\n');
            const bool isCut = end == std::string_view::npos;
            std::string_view line = rest_.substr(0, end);
            rest_.remove_prefix(isCut ? rest_.size() : end + 1);
            ++lineNumber_;
            if (line.ends_with('\r')) {
                line.remove_suffix(1);
            }
            if (!readLine(line, isCut)) {
                break;
            }
            lineStart_ = lineStart_ + static_cast<std::int64_t>(end) + 1;
        }
        if (!hasEnd_) {
            recording_.isComplete = false;
            tell(Severity::note, {noEnd,
                                  0,
                                  "the recording has no end: it was interrupted. What it holds "
                                  "can be used",
                                  {}});
        }
        return true;
    }

    /// False when the line was cut and is left out.
    bool readLine(std::string_view line, bool isCut) {
        if (lineNumber_ == 1) {
            readHeader(line);
            hash(line);
            return true;
        }
        try {
            readCall(line);
        } catch (const LineFault& fault) {
            if (!isCut) {
                throw;
            }
            tell(Severity::note, {cutLine, 0, "the last line was cut and is left out", {}});
            return false;
        }
        hash(line);
        return true;
    }

    void hash(std::string_view line) {
        hash_.add(line);
        hash_.add("\n");
    }

    void readHeader(std::string_view line) {
        std::optional<LineObject> object;
        try {
            object.emplace(line);
        } catch (const LineFault& fault) {
            fail({notRecording, fault.offset, "this is no recording: " + fault.text});
        }
        if (!object->has("format") || object->text("format") != recordingFormatName) {
            fail({notRecording, object->has("format") ? valueOffset(line, "format") : 0,
                  "this is no recording: \"format\" is not \"" + std::string(recordingFormatName) +
                      "\""});
        }
        const std::string version = object->text("format_version");
        std::int32_t major = 0;
        std::int32_t minor = 0;
        const char* const end = version.data() + version.size();
        auto read = std::from_chars(version.data(), end, major);
        bool isVersion = read.ec == std::errc() && read.ptr != end && *read.ptr == '.';
        if (isVersion) {
            read = std::from_chars(read.ptr + 1, end, minor);
            isVersion = read.ec == std::errc() && read.ptr == end && major >= 0 && minor >= 0;
        }
        if (!isVersion) {
            object->wrong("format_version", "is no version such as \"1.0\"");
        }
        if (major != recordingFormatMajor) {
            fail({otherVersion, valueOffset(line, "format_version"),
                  "this recording has format version " + version +
                      ", of which this program knows nothing: it reads version " +
                      std::to_string(recordingFormatMajor),
                  "a zolexctl that knows version " + std::to_string(major) + " reads it"});
        }
        recording_.header.madeAt = object->text("made_at");
        recording_.header.isRedacted = object->truth("redacted");
        recording_.header.system = object->text("system");
        recording_.header.toolVersion = object->textIn("tool", "version");
    }

    void readCall(std::string_view line) {
        if (hasEnd_) {
            fail({wrongLine, 0, "a line stands behind the end of the recording"});
        }
        const LineObject object(line);
        const std::int64_t seq = object.number("seq", 0, std::numeric_limits<std::int32_t>::max());
        if (seq != lineNumber_ - 1) {
            object.wrong("seq", "is " + std::to_string(seq) + " instead of " +
                                    std::to_string(lineNumber_ - 1) + ": lines are missing");
        }
        const std::string kind = object.text("call");
        if (kind == "end") {
            readEnd(object);
            return;
        }
        if (recording_.calls.size() == mostRecordedCalls) {
            fail({tooLarge, 0,
                  "the recording has more than " + std::to_string(mostRecordedCalls) + " calls"});
        }
        std::optional<CallKind> call = readKind(kind, object);
        ++calls_;
        if (!call) {
            tell(Severity::note, {unknownCall,
                                  valueOffset(line, "call"),
                                  "a call of the unknown kind \"" + kind + "\" is left out",
                                  {}});
            return;
        }
        recording_.calls.push_back({std::move(*call), lineNumber_});
    }

    static std::optional<CallKind> readKind(std::string_view kind, const LineObject& line) {
        if (kind == "child") {
            return readChild(line);
        }
        if (kind == "pci") {
            return readPci(line);
        }
        if (kind == "pause") {
            return PauseCall{};
        }
        if (kind == "local_time") {
            return readLocalTime(line);
        }
        if (kind == "firmware") {
            return readFirmware(line);
        }
        if (kind == "utilities") {
            return readUtilities(line);
        }
        return std::nullopt;
    }

    void readEnd(const LineObject& object) {
        hasEnd_ = true;
        const std::int64_t calls =
            object.number("calls", 0, std::numeric_limits<std::int32_t>::max());
        const std::string wanted = object.text("sha256");
        const std::string found = hexDigits(hash_.finish());
        if (wanted != found || calls != calls_) {
            tell(Severity::warning,
                 {changed,
                  0,
                  wanted != found
                      ? "the recording was changed after it was made: its end says sha256 " +
                            wanted + ", the lines before it have " + found
                      : "the recording was changed after it was made: its end says " +
                            std::to_string(calls) + " calls, there are " + std::to_string(calls_),
                  {}});
        }
    }

    void tell(Severity severity, const LineFault& fault) {
        Finding finding;
        finding.code = fault.code;
        finding.severity = severity;
        finding.summary = fault.text;
        if (!fault.help.empty()) {
            finding.help.push_back(fault.help);
        }
        finding.file = file_;
        finding.start.line = std::max(lineNumber_, 1);
        finding.start.column = static_cast<std::int32_t>(
            std::min<std::size_t>(fault.offset, std::numeric_limits<std::int32_t>::max() - 1) + 1);
        finding.start.byte = lineStart_ + static_cast<std::int64_t>(fault.offset);
        finding.end = finding.start;
        reading_.findings.push_back(std::move(finding));
    }

    std::string_view rest_;
    std::string file_;
    Recording recording_;
    RecordingReading reading_;
    Sha256 hash_;
    std::int32_t lineNumber_ = 0;
    std::int64_t lineStart_ = 0; ///< byte of the file at which the line begins
    std::int64_t calls_ = 0;
    bool hasEnd_ = false;
};

} // namespace

std::string recordingHeaderLine(const RecordingHeader& header) {
    Json object;
    object["format"] = recordingFormatName;
    object["format_version"] = recordingFormatVersion;
    Json argv = Json::array();
    for (const std::string& argument : header.argv) {
        argv.push_back(isUtf8(argument) ? argument : "?");
    }
    object["tool"] = {{"name", "zolexctl"}, {"version", header.toolVersion}, {"argv", argv}};
    object["made_at"] = header.madeAt;
    object["redacted"] = header.isRedacted;
    object["system"] = header.system;
    return object.dump();
}

std::string recordingCallLine(std::size_t seq, const CallKind& call) {
    Json object;
    object["seq"] = seq;
    std::visit(CallWriter{object}, call);
    return object.dump();
}

std::string recordingEndLine(std::size_t calls, const std::string& sha256) {
    Json object;
    object["seq"] = calls + 1;
    object["call"] = "end";
    object["calls"] = calls;
    object["sha256"] = sha256;
    return object.dump();
}

std::string hexDigits(const Sha256::Digest& digest) {
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += hex(byte, 2);
    }
    return text;
}

std::string recordingText(const Recording& recording) {
    std::string text = recordingHeaderLine(recording.header) + "\n";
    std::size_t seq = 0;
    for (const RecordedCall& recorded : recording.calls) {
        text += recordingCallLine(++seq, recorded.call) + "\n";
    }
    const std::string end = recordingEndLine(seq, sha256(text));
    return text + end + "\n";
}

RecordingReading readRecording(std::string_view text, std::string_view fileName) {
    return Reader(text, fileName).read();
}

} // namespace zolex::companion
