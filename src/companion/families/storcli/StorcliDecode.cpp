#include "companion/families/storcli/StorcliDecode.h"

#include "companion/facts/FactValues.h"
#include "companion/families/FamilyCodes.h"
#include "companion/families/storcli/Commands.h"
#include "companion/families/storcli/StorcliWords.h"
#include "companion/families/storcli/ToldValue.h"
#include "companion/text/Terminal.h"
#include "foundation/CString.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace zolex::companion {

namespace {

/// So many rows of a list are looked at.
constexpr std::size_t mostRows = 4096;
constexpr std::size_t mostControllers = 64;
constexpr std::uint64_t blockBytes = 512;
constexpr std::string_view missingMember = "Missing";

constexpr std::int32_t errorNone = 50;
constexpr std::int32_t errorForeignIncomplete = 59;

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return text::trim(line, " \t\r");
}

/// The value of "Key = value".
std::optional<std::string_view> lineValue(std::string_view line, std::string_view key) {
    if (!line.starts_with(key)) {
        return std::nullopt;
    }
    const std::string_view rest = text::trim(line.substr(key.size()), " \t");
    return rest.starts_with('=') ? std::optional(text::trim(rest.substr(1), " \t")) : std::nullopt;
}

/// The value of the first line "Key = value" of a text; empty: there is none.
std::string textValue(std::string_view output, std::string_view key) {
    constexpr int mostLines = 200;
    for (int i = 0; i < mostLines && !output.empty(); ++i) {
        if (const auto value = lineValue(takeLine(output), key)) {
            return cleanText(*value);
        }
    }
    return {};
}

void readTextStatus(std::string_view output, StorcliAnswer& answer) {
    answer.status = textValue(output, "Status");
    answer.description = textValue(output, "Description");
    answer.description = answer.description == "None" ? "" : answer.description;
    answer.cliVersion = textValue(output, "CLI Version");
}

/// The entry of a controller: that of its own number, or the first that tells no number. One that
/// tells another number is of another controller. Without a number the first of all.
const ToldValue& entryOf(const ToldJson& json, std::optional<std::int32_t> adapter) {
    static const ToldValue none;
    const ToldValue* unnumbered = &none;
    for (const ToldValue& each : json.value.at("Controllers").items()) {
        const auto number = each.at("Command Status").at("Controller").smallNumber();
        if (!adapter || number == adapter) {
            return each;
        }
        if (!number && !unnumbered->isThere()) {
            unnumbered = &each;
        }
    }
    return *unnumbered;
}

StorcliAnswer answerOf(const ToldJson& json, const ToldValue& entry, std::string_view output) {
    StorcliAnswer answer;
    answer.isJson = json.isJson;
    answer.fault = json.fault;
    if (!json.isJson) {
        readTextStatus(output, answer);
        return answer;
    }
    const ToldValue& status = entry.at("Command Status");
    answer.status = status.at("Status").text();
    answer.description = status.at("Description").toldText();
    answer.cliVersion = status.at("CLI Version").text();
    for (const ToldValue& detail : status.at("Detailed Status").items()) {
        const std::int32_t code = detail.at("ErrCd").smallNumber().value_or(0);
        const std::string message = detail.atAny({"ErrMsg", "Description"}).toldText();
        if (code != 0 && answer.errorCode == 0) {
            answer.errorCode = code;
            answer.description = message.empty() ? answer.description : message;
        }
    }
    return answer;
}

/// One listing of a controller.
struct Document {
    std::size_t index = 0;
    std::string command;
    ToldJson json;
    StorcliAnswer answer;
    const ToldValue* status = nullptr;
    const ToldValue* data = nullptr; ///< its "Response Data"

    [[nodiscard]] const ToldValue& at(std::string_view key) const { return data->at(key); }
};

/// What a call asks for, from its path.
bool asks(std::string_view command, std::string_view path) {
    return text::contains(command, path);
}

std::string countOf(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

/// "252:1, 252:2 and 5 more".
std::string listOf(const std::vector<std::string>& names) {
    constexpr std::size_t most = 6;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) {
        text += (i == 0 ? "" : ", ") + names[i];
    }
    return names.size() > most ? text + " and " + std::to_string(names.size() - most) + " more"
                               : text;
}

/// Rows of TOPOLOGY, group by group.
struct Group {
    std::map<std::int32_t, std::map<std::int32_t, std::string>> members; ///< by span and row
    std::string level;                                                   ///< empty: not told
    std::size_t rows = 0;
};

/// What all listings have of the place of one drive.
struct DriveRows {
    std::vector<const ToldValue*> rows; ///< of PD LIST, of its own and of logical drives
    std::vector<std::string> words;     ///< of its state, where TOPOLOGY has it
    std::set<std::int32_t> memberOf;    ///< groups, by TOPOLOGY
    std::set<std::int32_t> groups;      ///< by whatever listing
};

/// How bad a health is: of two that are told the worse one is believed.
int gravityOf(Health health) {
    switch (health) {
    case Health::ok:
        return 0;
    case Health::warning:
        return 1;
    case Health::unknown:
        return 2;
    case Health::critical:
        break;
    }
    return 3;
}

/// The same of a drive's word; of two that are well it is the one with more to lose.
int gravityOfDrive(std::string_view word) {
    const StorcliDriveWord* const known = storcliDriveWord(word);
    const DriveState state = known == nullptr ? DriveState::unknown : known->state;
    constexpr int stakes = 3;
    const int stake = state == DriveState::free                                        ? 0
                      : state == DriveState::member || state == DriveState::rebuilding ? 2
                                                                                       : 1;
    return gravityOf(known == nullptr ? Health::unknown : known->health) * stakes + stake;
}

/// "1 and 2".
std::string listOf(const std::set<std::int32_t>& numbers) {
    std::string text;
    for (const std::int32_t number : numbers) {
        text += (text.empty()                  ? ""
                 : number == *numbers.rbegin() ? " and "
                                               : ", ") +
                std::to_string(number);
    }
    return text;
}

/// When a logical drive was made, in an order that compares; empty: not told.
std::string stampOf(const ToldValue& properties) {
    const std::string date = properties.at("Creation Date").text(); // day, month, year
    const std::string time = properties.at("Creation Time").text(); // "10:03:00 AM"
    const auto part = [](std::string_view text, std::string_view delimiter, std::size_t index) {
        return text::leadingInt(text::token(text, delimiter, index));
    };
    if (std::count(date.begin(), date.end(), '-') != 2) {
        return {};
    }
    constexpr int halfDay = 12;
    const bool isAfternoon = text::containsNoCase(time, "PM");
    const bool isTwelve = text::containsNoCase(time, "M");
    int hour = part(time, ":", 0);
    hour = isTwelve ? hour % halfDay + (isAfternoon ? halfDay : 0) : hour;
    return std::string(formatText("%04d%02d%02d%02d%02d%02d", part(date, "-", 2),
                                  part(date, "-", 1), part(date, "-", 0), hour, part(time, ":", 1),
                                  part(time, ":", 2))
                           .view());
}

class Decoder {
  public:
    explicit Decoder(FamilyController& controller)
        : controller_(controller), facts_(controller.facts) {}

    void run() {
        readDocuments();
        if (!hasController()) {
            return;
        }
        tellDuplicates();
        facts_.deepMirrors = DeepMirrors::ofPairs;
        readBasics();
        readAbilities();
        readTopology();
        readForeign();
        gatherDrives();
        readDrives();
        readVolumes();
        judgeCoverage();
        judgeAnswers();
        countKeys();
    }

  private:
    void find(std::string_view code, std::string summary, std::string detail = {},
              std::vector<std::string> help = {}) {
        controller_.findings.push_back(
            {std::string(code), std::move(summary), std::move(detail), std::move(help)});
    }

    /// Words behind the controller's path, as somebody types them.
    [[nodiscard]] std::string typed(const std::string& words) const {
        return storcli::typed(controller_, "/c" + std::to_string(controller_.adapter) + words);
    }

    void readDocuments() {
        documents_.resize(controller_.listings.size());
        facts_.listings.resize(controller_.listings.size());
        for (std::size_t i = 0; i < documents_.size(); ++i) {
            const FamilyListing& listing = controller_.listings[i];
            Document& document = documents_[i];
            document.index = i;
            document.command = listing.command;
            document.json = readToldJson(listing.output);
            const ToldValue& entry = entryOf(document.json, controller_.adapter);
            document.answer = answerOf(document.json, entry, listing.output);
            document.status = &entry.at("Command Status");
            document.data = &entry.at("Response Data");
            facts_.listings[i].isListing = document.status->isObject();
            if (asks(listing.command, "/fall ")) {
                foreign_ = &document;
            } else if (asks(listing.command, "/vall ")) {
                volumes_ = &document;
            } else if (asks(listing.command, "/sall ")) {
                drives_.push_back(&document);
            } else if (all_ == nullptr) {
                all_ = &document;
            }
        }
    }

    /// What the answer that tells nothing is, as a finding.
    void tellNoData(const Document& document) {
        const FamilyListing& listing = controller_.listings[document.index];
        if (listing.outcome != ChildOutcome::ended && listing.outcome != ChildOutcome::notClosed) {
            return; // told by whoever called
        }
        controller_.findings.push_back(storcliNoAnswer(listing, document.answer));
    }

    bool hasController() {
        const bool isOfGeneration8 = all_ != nullptr && all_->answer.isOfGeneration8();
        if (!isOfGeneration8 && all_ != nullptr && all_->data->isObject()) {
            return true;
        }
        controller_.failed = true;
        if (isOfGeneration8) {
            controller_.findings.push_back(storcliOfGeneration8(all_->answer));
            return false;
        }
        if (all_ != nullptr) {
            tellNoData(*all_);
            nameFromText();
        }
        return false;
    }

    /// What a text in the place of JSON says of the controller itself, so that it can be named.
    void nameFromText() {
        if (all_->answer.isJson) {
            return;
        }
        const std::string& output = controller_.listings[all_->index].output;
        facts_.productName = textValue(output, "Model");
        facts_.serialNumber = textValue(output, "Serial Number");
        controller_.pci = storcliPciAddress(textValue(output, "PCI Address"));
    }

    void tellDuplicates() {
        std::set<std::string> told;
        for (const Document& document : documents_) {
            for (const std::string& key : document.json.duplicates) {
                if (told.insert(key).second) {
                    find(family_code::toldTwice, document.command + ": \"" + printable(key) +
                                                     "\" stands twice; the first counts");
                }
            }
        }
    }

    void readBasics() {
        const ToldValue& basics = all_->at("Basics");
        facts_.productName = basics.atAny({"Model", "Product Name"}).toldText();
        facts_.serialNumber = basics.at("Serial Number").toldText();
        controller_.model = storcliModel(facts_.productName);
        facts_.utilityVersion = all_->answer.cliVersion;
        const ToldValue& version = all_->at("Version");
        facts_.firmwareVersion =
            version.atAny({"Firmware Package Build", "Firmware Version"}).toldText();
        facts_.biosVersion = version.atAny({"Bios Version", "BIOS Version"}).toldText();
        facts_.driverVersion = version.at("Driver Version").toldText();
        facts_.reportedState = all_->at("Status").at("Controller Status").toldText();
        readPreservedCache();
        readFunction(basics);
        std::vector<std::string> lacking;
        for (const char* const section : {"Basics", "Version", "Bus", "Status", "Capabilities"}) {
            if (!all_->at(section).isObject()) {
                lacking.emplace_back(section);
            }
        }
        if (!all_->at("PD LIST").isThere() && expectedDrives().value_or(1) > 0) {
            lacking.emplace_back("PD LIST");
        }
        if (!all_->at("TOPOLOGY").isThere() && expectedVolumes().value_or(0) > 0) {
            lacking.emplace_back("TOPOLOGY");
        }
        if (!lacking.empty()) {
            find(family_code::notTold, all_->command + " does not tell: " + listOf(lacking));
        }
    }

    void readFunction(const ToldValue& basics) {
        const ToldValue& bus = all_->at("Bus");
        controller_.pci = storcliPciAddress(basics.at("PCI Address").text());
        if (const auto number = bus.at("Bus Number").id()) {
            const std::string ofBus =
                storcliPciAddress(formatText("%x:%x:%x:%x", bus.at("Domain ID").id().value_or(0),
                                             *number, bus.at("Device Number").id().value_or(0),
                                             bus.at("Function Number").id().value_or(0))
                                      .view());
            const auto inDomain = [](const std::string& pci) {
                return pci.substr(std::min(pci.find(':'), pci.size()));
            };
            if (controller_.pci.empty()) {
                controller_.pci = ofBus;
            } else if (!ofBus.empty() && inDomain(ofBus) != inDomain(controller_.pci)) {
                contradictions_.push_back("it is at " + controller_.pci + " and at " + ofBus);
            }
        }
        const auto own = basics.at("Controller").smallNumber();
        if (own && *own != controller_.adapter) {
            contradictions_.push_back("what is told of controller " +
                                      std::to_string(controller_.adapter) + " is of controller " +
                                      std::to_string(*own));
        }
        if (const std::size_t colon = controller_.pci.find(':'); colon != std::string::npos) {
            facts_.pciAddress = controller_.pci.substr(colon + 1); // without the domain
        }
        std::string ids;
        for (const auto& keys :
             {std::pair("Vendor Id", "VendorId"), std::pair("Device Id", "DeviceId"),
              std::pair("SubVendor Id", "SubVendorId"), std::pair("SubDevice Id", "SubDeviceId")}) {
            const auto id = bus.atAny({keys.first, keys.second}).id();
            constexpr std::uint32_t mostId = 0xFFFF;
            if (!id || *id > mostId) {
                return;
            }
            ids += (ids.empty() ? "" : ":") + std::string(formatText("%04x", *id).view());
        }
        controller_.pciIds = ids;
        facts_.pciIds = ids;
    }

    /// Drives of HPE's listings are decimal, and so are keys that no other has.
    [[nodiscard]] StorcliUnits units() const {
        const bool isDecimal = all_->at("Arrays").isThere() ||
                               all_->at("Status").at("Energy Pack Status").isThere() ||
                               text::contains(facts_.pciIds, ":1590:");
        return isDecimal ? StorcliUnits::decimal : StorcliUnits::binary;
    }

    void readAbilities() {
        const ToldValue& told = all_->at("Capabilities");
        std::string levels = told.at("RAID Level Supported").text();
        for (std::size_t begin = 0; begin < levels.size();) {
            // A comma inside of parentheses parts nothing.
            std::size_t end = begin;
            for (int depth = 0; end < levels.size() && (levels[end] != ',' || depth > 0); ++end) {
                depth += levels[end] == '(' ? 1 : levels[end] == ')' ? -1 : 0;
            }
            std::string level = storcliLevel(std::string_view(levels).substr(begin, end - begin));
            if (!level.empty() && std::find(facts_.raidTypes.begin(), facts_.raidTypes.end(),
                                            level) == facts_.raidTypes.end()) {
                facts_.raidTypes.push_back(std::move(level));
            }
            begin = end + 1;
        }
        facts_.minStripSizeBytes = sizeOf(told.at("Min Strip Size"));
        facts_.maxStripSizeBytes = sizeOf(told.at("Max Strip Size"));
        ControllerAbilities& abilities = facts_.abilities;
        abilities.mostDrives = told.at("Max Arms Per VD").smallNumber().value_or(0);
        abilities.mostSpans = told.at("Max Spans Per VD").smallNumber().value_or(0);
        abilities.mostVolumesPerArray = told.at("Max VD per array").smallNumber().value_or(0);
        const auto ofHdd = told.at("Mix of SAS/SATA of HDD type in VD").truth();
        const auto ofSsd = told.at("Mix of SAS/SATA of SSD type in VD").truth();
        if (ofHdd || ofSsd) {
            abilities.mixesProtocols = ofHdd.value_or(true) && ofSsd.value_or(true);
        }
        abilities.mixesMedia = told.at("Mix of SSD/HDD in VD").truth();
        const ToldValue& usual = all_->at("Defaults");
        abilities.usualStripSizeBytes = sizeOf(usual.at("Strip Size"));
        abilities.usualWriteCache = storcliWriteMode(usual.at("Write Policy").text());
        abilities.usualReadCache = storcliReadMode(usual.at("Read Policy").text());
        mostVolumes_ = told.at("Max Number of VDs").smallNumber();
        for (const ToldValue& row : all_->at("Policies").at("Policies Table").items()) {
            if (row.at("Policy").text() == "Rebuild Rate" && facts_.rebuildRate.empty()) {
                std::string rate = row.at("Current").text();
                rate.erase(std::remove(rate.begin(), rate.end(), ' '), rate.end());
                facts_.rebuildRatePercent = std::nullopt;
                if (const auto percent = row.at("Current").number(); percent && *percent <= 100) {
                    facts_.rebuildRatePercent = static_cast<std::int32_t>(*percent);
                }
                facts_.rebuildRate = std::move(rate);
            }
        }
    }

    static std::optional<std::uint64_t> sizeOf(const ToldValue& value) {
        const auto size = parseSize(value.text());
        return size && size->bytes > 0 ? std::optional(size->bytes) : std::nullopt;
    }

    void readTopology() {
        std::size_t rows = 0;
        for (const ToldValue& row : all_->at("TOPOLOGY").items()) {
            if (++rows > mostRows) {
                break;
            }
            const std::string word = row.at("State").text();
            const auto group = row.at("DG").smallNumber();
            const auto span = row.at("Arr").smallNumber();
            const auto line = row.at("Row").smallNumber();
            const auto place = storcliPlace(row.at("EID:Slot").text());
            const bool isSpare = word == "DHS" || word == "GHS";
            if (isSpare) {
                if (place) {
                    told_[place->location()].words.push_back(word);
                }
                if (place && group) {
                    covered_[place->location()].push_back(std::to_string(*group));
                }
                continue;
            }
            if (!group) {
                continue;
            }
            Group& entry = groups_[*group];
            ++entry.rows;
            if (!span && !line && !place && entry.level.empty()) {
                entry.level = storcliLevel(row.at("Type").text());
            }
            if (span && line) {
                entry.members[*span].emplace(*line, place ? place->location()
                                                          : std::string(missingMember));
            }
            if (span && line && place) {
                DriveRows& drive = told_[place->location()];
                drive.memberOf.insert(*group);
                drive.groups.insert(*group);
                drive.words.push_back(word);
            }
        }
    }

    [[nodiscard]] std::optional<std::int32_t> expectedDrives() const {
        return all_->at("Physical Drives").smallNumber();
    }
    [[nodiscard]] std::optional<std::int32_t> expectedVolumes() const {
        return all_->at("Virtual Drives").smallNumber();
    }

    /// Looks up every row that tells of a drive, in whatever listing.
    void gatherDrives() {
        std::size_t rows = 0;
        const auto add = [&](const ToldValue& row) {
            const auto place = storcliPlace(row.at("EID:Slt").text());
            if (!place || ++rows > mostRows * 4) {
                return;
            }
            DriveRows& drive = told_[place->location()];
            drive.rows.push_back(&row);
            const StorcliDriveWord* const word = storcliDriveWord(row.at("State").text());
            const bool isSpare = word != nullptr && word->hotspare != HotspareKind::none;
            const auto group = row.at("DG").smallNumber();
            if (group && !isSpare) {
                drive.groups.insert(*group);
            }
        };
        std::set<std::string> listed;
        for (const ToldValue& row : all_->at("PD LIST").items()) {
            const auto place = storcliPlace(row.at("EID:Slt").text());
            if (place && !listed.insert(place->location()).second) {
                contradictions_.push_back(place->location() + " stands twice in PD LIST");
            }
            add(row);
        }
        for (const Document* const document : drives_) {
            for (const auto& [key, value] : document->data->members()) {
                add(value); // where it is no list
                for (const ToldValue& row : value.items()) {
                    add(row);
                }
            }
        }
        if (volumes_ == nullptr) {
            return;
        }
        for (const auto& [key, value] : volumes_->data->members()) {
            if (key.starts_with("PDs for VD ")) {
                for (const ToldValue& row : value.items()) {
                    add(row);
                }
            }
        }
    }

    /// What a drive's own listing has of it: its row, and its details.
    struct DrivePart {
        const ToldValue* row = nullptr;
        const ToldValue* details = nullptr;
        std::size_t listing = 0;
    };

    /// Drives without details.
    struct SilentDrives {
        std::vector<std::string> inUse;
        std::vector<std::string> free;
    };

    void readDrives() {
        std::map<std::string, DrivePart> parts;
        std::vector<std::pair<StorcliPlace, const ToldValue*>> rows;
        std::set<std::string> listed;
        const auto add = [&](const ToldValue& row, std::size_t listing) {
            const auto place = storcliPlace(row.at("EID:Slt").text());
            ++facts_.listings[listing].blocks;
            if (!place) {
                broken(listing, "PD LIST", "physical drive without a slot number");
                return;
            }
            ++facts_.listings[listing].blocksRead;
            if (listed.insert(place->location()).second) {
                rows.emplace_back(*place, &row);
            }
        };
        for (const Document* const document : drives_) {
            readParts(*document, parts);
        }
        for (const ToldValue& row : all_->at("PD LIST").items()) {
            if (rows.size() < mostRows) {
                add(row, all_->index);
            }
        }
        for (const auto& [location, part] : parts) {
            if (part.row != nullptr && listed.count(location) == 0 && rows.size() < mostRows) {
                add(*part.row, part.listing);
            }
        }
        std::vector<std::string> unknown;
        SilentDrives silent;
        for (const auto& [place, row] : rows) {
            const auto part = parts.find(place.location());
            readDrive(place, *row, part == parts.end() ? DrivePart() : part->second, unknown,
                      silent);
        }
        if (!unknown.empty()) {
            find(family_code::unknownWord, countOf(unknown.size(), "drive is", "drives are") +
                                               " in a state that zolexctl "
                                               "does not know, and not planned with: " +
                                               listOf(unknown));
        }
        tellSilent(family_code::noDetails, silent.inUse);
        tellSilent(family_code::freeNoDetails, silent.free);
    }

    void tellSilent(std::string_view code, const std::vector<std::string>& drives) {
        if (drives.empty()) {
            return;
        }
        find(code,
             countOf(drives.size(), "drive tells", "drives tell") + " no details, and " +
                 (drives.size() == 1 ? "is" : "are") + " not planned with: " + listOf(drives),
             {}, {"see what the utility tells of them: " + typed("/eall/sall show all J")});
    }

    void readParts(const Document& document, std::map<std::string, DrivePart>& parts) {
        constexpr std::string_view start = "Drive ";
        constexpr std::string_view details = "Detailed Information";
        for (const auto& [key, value] : document.data->members()) {
            if (!key.starts_with(start)) {
                continue;
            }
            const std::string_view rest = std::string_view(key).substr(start.size());
            const std::string_view path = rest.substr(0, rest.find(' '));
            const auto place = storcliPathPlace(path);
            if (!place) {
                continue;
            }
            DrivePart& part = parts[place->location()];
            part.listing = document.index;
            if (rest.size() == path.size()) {
                part.row = value.items().empty() ? &value : &value.items().front();
                ++facts_.listings[document.index].blocks;
                ++facts_.listings[document.index].blocksRead;
            } else if (rest.ends_with(details)) {
                part.details = &value;
            }
        }
        for (const ToldValue& row : document.status->at("Detailed Status").items()) {
            const std::int32_t code = row.at("ErrCd").smallNumber().value_or(0);
            const auto place = storcliPathPlace(row.at("Drive").text());
            if (code != 0 && place) {
                errors_[place->location()] = code;
            }
        }
    }

    /// The member whose key ends so: keys have the drive's path in front.
    static const ToldValue& section(const ToldValue* details, std::string_view ending) {
        static const ToldValue none;
        if (details != nullptr) {
            for (const auto& [key, value] : details->members()) {
                if (key.ends_with(ending)) {
                    return value;
                }
            }
        }
        return none;
    }

    /// Whether nothing is lost with it: no array, no spare, no array of another controller.
    static bool isInNothing(const ToldValue& row, const DriveFacts& drive) {
        return row.at("DG").text() == "-" && !drive.isForeign &&
               drive.hotspare == HotspareKind::none && drive.state != DriveState::member &&
               drive.state != DriveState::rebuilding && drive.state != DriveState::missing;
    }

    void readDrive(const StorcliPlace& place, const ToldValue& row, const DrivePart& part,
                   std::vector<std::string>& unknown, SilentDrives& silent) {
        const ToldValue& state = section(part.details, " State");
        const ToldValue& attributes = section(part.details, " Device attributes");
        const ToldValue& settings = section(part.details, " Policies/Settings");
        DriveFacts& drive = facts_.drives.emplace_back();
        drive.location = place.location();
        drive.enclosure = place.enclosure;
        drive.slot = place.slot;
        drive.number = row.at("DID").smallNumber();
        drive.serialNumber = attributes.at("SN").toldText();
        drive.manufacturer = attributes.at("Manufacturer Id").toldText();
        drive.model = attributes.at("Model Number").toldText();
        drive.revision = attributes.at("Firmware Revision").toldText();
        drive.wwn = attributes.at("WWN").toldText();
        if (drive.model.empty()) {
            drive.model = row.at("Model").toldText();
        }
        drive.protocol = protocolWord(row.at("Intf").toldText());
        drive.mediaType = row.at("Med").toldText();
        drive.mediaErrorCount = state.at("Media Error Count").number();
        drive.otherErrorCount = state.at("Other Error Count").number();
        drive.predictedFailureCount = state.at("Predictive Failure Count").number();
        drive.temperatureCelsius = temperatureOf(state.at("Drive Temperature"));
        drive.place.listing = part.details != nullptr ? part.listing : all_->index;
        drive.place.line =
            lineOf(drive.place.listing,
                   part.details != nullptr ? pathOf(place) : std::string("\"PD LIST\""));
        readSize(row, attributes, drive);
        DriveRows& told = told_[drive.location];
        readState(row, told, drive, unknown);
        if (state.at("S.M.A.R.T alert flagged by drive").truth().value_or(false)) {
            drive.predictedFailureCount =
                std::max<std::uint64_t>(drive.predictedFailureCount.value_or(0), 1);
            drive.health = drive.health == Health::ok ? Health::warning : drive.health;
        }
        readSpare(row, drive);
        if (settings.at("Locked").truth().value_or(false)) {
            bar(drive, "locked by its encryption");
        }
        judgePlace(settings, drive, told);
        if (part.details == nullptr) {
            const auto error = errors_.find(drive.location);
            const std::string why =
                error == errors_.end() ? "" : " (error " + std::to_string(error->second) + ")";
            (isInNothing(row, drive) ? silent.free : silent.inUse).push_back(drive.location + why);
            bar(drive, "it does not tell its details" + why);
        }
    }

    static void bar(DriveFacts& drive, std::string why) {
        if (drive.barred.empty()) {
            drive.barred = std::move(why);
        }
    }

    [[nodiscard]] std::string pathOf(const StorcliPlace& place) const {
        return "\"Drive /c" + std::to_string(controller_.adapter) +
               (place.enclosure ? "/e" + std::to_string(*place.enclosure) : "") + "/s" +
               std::to_string(place.slot) + "\"";
    }

    static std::string protocolWord(const std::string& told) {
        return text::equalsNoCase(told, "NVMe") ? "NVMe" : told;
    }

    static std::optional<std::int32_t> temperatureOf(const ToldValue& value) {
        const auto degrees = value.number();
        constexpr std::uint64_t most = 1000;
        return degrees && *degrees < most ? std::optional(static_cast<std::int32_t>(*degrees))
                                          : std::nullopt;
    }

    /// What arrays are made of: sectors as the drive tells them, else the text.
    void readSize(const ToldValue& row, const ToldValue& attributes, DriveFacts& drive) {
        constexpr std::uint64_t mostSector = std::uint64_t{1} << 20U;
        const auto sector = sizeOf(attributes.at("Logical Sector Size"));
        const auto ofRow = sizeOf(row.at("SeSz"));
        const std::uint64_t block = sector.value_or(ofRow.value_or(0));
        if (block > 0 && block <= mostSector) {
            drive.blockSizeBytes = static_cast<std::uint32_t>(block);
        }
        if (sector && ofRow && *sector != *ofRow) {
            bar(drive, "its sectors are told to be of " + std::to_string(*sector) + " and of " +
                           std::to_string(*ofRow) + " bytes");
        }
        const auto bytesOf = [&](std::string_view key) {
            constexpr std::uint64_t most = std::uint64_t{1} << 62U;
            const auto sectors = hexSectors(attributes.at(key).text());
            const bool isTold =
                sectors && *sectors > 0 && drive.blockSizeBytes && *sectors <= most / block;
            return isTold ? std::optional(*sectors * block) : std::nullopt;
        };
        drive.rawCapacityBytes = bytesOf("Raw size");
        drive.capacityBytes = bytesOf("Coerced size");
        const auto size = storcliSize(row.at("Size").text(), units());
        const auto fits = [&size](const std::optional<std::uint64_t>& bytes) {
            return bytes && *bytes + size->tolerance >= size->bytes &&
                   *bytes <= size->bytes + size->tolerance;
        };
        // Of a drive that is in no array some versions tell another of its sizes.
        if (!size ||
            (drive.capacityBytes && (fits(drive.capacityBytes) || fits(drive.rawCapacityBytes) ||
                                     fits(bytesOf("Non Coerced size"))))) {
            return;
        }
        if (drive.capacityBytes) {
            find(family_code::sizeTwice, "drive " + drive.location + " has " +
                                             std::to_string(*drive.capacityBytes) +
                                             " bytes in its sectors, which are not the " +
                                             printable(row.at("Size").text()) +
                                             " that it is said to have: the latter "
                                             "counts");
        }
        drive.capacityBytes = size->bytes;
        drive.capacityTolerance = size->tolerance;
    }

    /// The worst of its words.
    static std::string stateOf(const ToldValue& row, const DriveRows& told) {
        std::string state = row.at("State").text();
        const auto judge = [&state](const std::string& word) {
            if (state.empty() || gravityOfDrive(word) > gravityOfDrive(state)) {
                state = word;
            }
        };
        for (const ToldValue* const other : told.rows) {
            if (const std::string word = other->at("State").text(); !word.empty()) {
                judge(word);
            }
            if (const std::string type = other->at("Type").text(); type == "JBOD") {
                judge(type);
            }
        }
        for (const std::string& word : told.words) {
            if (storcliDriveWord(word) != nullptr) {
                judge(word);
            }
        }
        return state;
    }

    /// A drive is in one group in all listings, or in none in all of them.
    void judgePlace(const ToldValue& settings, const DriveFacts& drive, DriveRows& told) {
        constexpr std::string_view start = "DriveGroup:";
        const std::string position = settings.at("Drive position").text();
        if (position.starts_with(start)) {
            const auto group = wholeNumber(
                text::trim(text::token(std::string_view(position).substr(start.size()), ",", 0)));
            if (group && drive.hotspare == HotspareKind::none && !drive.isForeign) {
                told.groups.insert(*group);
            }
        }
        if (told.groups.empty()) {
            return;
        }
        if (told.groups.size() > 1) {
            contradictions_.push_back(drive.location + " is in drive groups " +
                                      listOf(told.groups));
            return;
        }
        const std::string group = "in drive group " + listOf(told.groups);
        for (const ToldValue* const row : told.rows) {
            const std::string name = row->at("State").text();
            const StorcliDriveWord* const word = storcliDriveWord(name);
            const DriveState state = word == nullptr ? DriveState::unknown : word->state;
            const bool isMember = state == DriveState::member || state == DriveState::rebuilding;
            const bool isGone = state == DriveState::failed || state == DriveState::missing ||
                                state == DriveState::unknown;
            if (!isMember && !isGone && (!told.memberOf.empty() || state == DriveState::free)) {
                contradictions_.push_back(drive.location + " is ");
                contradictions_.back().append(name).append(" and ").append(group);
                return;
            }
            if (isMember && row->at("DG").text() == "-") {
                contradictions_.push_back(drive.location + " is " + group + " and in none");
                return;
            }
        }
    }

    void readState(const ToldValue& row, const DriveRows& told, DriveFacts& drive,
                   std::vector<std::string>& unknown) const {
        drive.reportedState = stateOf(row, told);
        const StorcliDriveWord* const word = storcliDriveWord(drive.reportedState);
        if (word == nullptr) {
            unknown.push_back(drive.location + " (" + printable(drive.reportedState) + ")");
            bar(drive, "its state is not known: " + printable(drive.reportedState));
        } else {
            drive.state = word->state;
            drive.health = word->health;
            drive.hotspare = word->hotspare;
            bar(drive, std::string(word->barred));
        }
        const auto tells = [&](std::string_view key, std::string_view value) {
            return row.at(key).text() == value ||
                   std::any_of(told.rows.begin(), told.rows.end(), [&](const ToldValue* each) {
                       return each->at(key).text() == value;
                   });
        };
        drive.isForeign = drive.state == DriveState::foreign || tells("DG", "F") ||
                          tells("Sp", "F") || foreignPlaces_.count(drive.location) != 0;
        if (drive.isForeign && drive.state == DriveState::free) {
            drive.state = DriveState::foreign;
        }
        if (drive.state == DriveState::free && tells("Sp", "T")) {
            bar(drive, "its power state is changing");
        }
    }

    void readSpare(const ToldValue& row, DriveFacts& drive) {
        if (drive.hotspare != HotspareKind::dedicated) {
            return;
        }
        const auto told = covered_.find(drive.location);
        if (told != covered_.end()) {
            drive.covers = told->second;
            std::sort(drive.covers.begin(), drive.covers.end(),
                      [](const std::string& a, const std::string& b) {
                          return text::leadingInt(a) < text::leadingInt(b);
                      });
            drive.covers.erase(std::unique(drive.covers.begin(), drive.covers.end()),
                               drive.covers.end());
            return;
        }
        for (const std::int32_t group : numbersIn(row.at("DG").text())) {
            drive.covers.push_back(std::to_string(group));
        }
    }

    void readForeign() {
        if (foreign_ == nullptr) {
            return;
        }
        const StorcliAnswer& answer = foreign_->answer;
        const bool isNone =
            answer.errorCode == errorNone || text::containsNoCase(answer.description, "no foreign");
        isForeignIncomplete_ =
            answer.isFailure() && (answer.errorCode == errorForeignIncomplete ||
                                   text::containsNoCase(answer.description, "incomplete"));
        if (isForeignIncomplete_) {
            facts_.foreignConfigurations.emplace_back("incomplete: drives of it are missing");
            find(family_code::foreignIncomplete,
                 "a foreign configuration is incomplete: drives of it are missing");
        } else if (answer.isFailure() && !isNone) {
            controller_.failed = true; // any drive that is free may be one of them
            tellNoData(*foreign_);
        }
        bool isListed = foreign_->at("FOREIGN PD LIST").isThere();
        for (const char* const key : {"FOREIGN CONFIGURATION", "FOREIGN DG LIST"}) {
            isListed = isListed || foreign_->at(key).isThere();
            std::size_t rows = 0;
            for (const ToldValue& row : foreign_->at(key).items()) {
                if (++rows > mostRows) {
                    break;
                }
                readForeignRow(row);
                addForeignPlaces(row.at("EID:Slot").text());
            }
        }
        for (const ToldValue& row : foreign_->at("FOREIGN PD LIST").items()) {
            addForeignPlaces(row.atAny({"EID:Slt", "EID:Slot"}).text());
        }
        const auto total = foreign_->at("Total foreign Drive Groups").smallNumber();
        if (total && static_cast<std::size_t>(*total) > foreignGroups_) {
            notWhole(std::to_string(foreignGroups_) + " of " + std::to_string(*total) +
                     " foreign drive groups are listed");
        } else if (!answer.isFailure() && !isNone && !isListed && !total) {
            notWhole(foreign_->command + " does not tell whether there are foreign drive groups");
        }
    }

    /// "252:5", or several with commas.
    void addForeignPlaces(const std::string& places) {
        for (std::size_t i = 0; foreignPlaces_.size() < mostRows; ++i) {
            const std::string_view each = text::token(places, ",", i);
            if (each.empty()) {
                return;
            }
            if (const auto place = storcliPlace(each)) {
                foreignPlaces_.insert(place->location());
            }
        }
    }

    void readForeignRow(const ToldValue& row) {
        ++facts_.listings[foreign_->index].blocks;
        ++facts_.listings[foreign_->index].blocksRead;
        const std::string group = row.at("DG").toldText();
        // One may stand in both lists.
        foreignGroups_ += group.empty() || foreignNames_.insert(group).second ? 1 : 0;
        const std::string level = row.at("Type").toldText();
        const std::string size = row.at("Size").toldText();
        const auto volumes = row.at("NoVDs").smallNumber();
        const std::string begin = group.empty() ? std::string() : "DG " + group;
        std::string line = begin;
        for (const std::string& part : {level, size,
                                        volumes ? countOf(static_cast<std::size_t>(*volumes),
                                                          "logical drive", "logical drives")
                                                : std::string()}) {
            if (!part.empty()) {
                line.append(line.empty() ? "" : line == begin ? ": " : ", ").append(part);
            }
        }
        if (!line.empty()) {
            facts_.foreignConfigurations.push_back(std::move(line));
        }
    }

    /// What all listings have of one logical drive.
    struct VolumePart {
        std::int32_t number = 0;
        const ToldValue* row = nullptr;
        std::size_t listing = 0;
        std::string stamp;
        const ToldValue* other = nullptr; ///< its row in a second listing
    };

    void readVolumes() {
        std::vector<VolumePart> parts;
        std::map<std::int32_t, std::size_t> listed;
        const auto add = [&](const ToldValue& row, std::size_t listing) {
            const std::string told = row.at("DG/VD").text();
            const auto number = wholeNumber(text::trim(text::token(told, "/", 1)));
            ++facts_.listings[listing].blocks;
            if (!number) {
                broken(listing, "VD LIST", "logical drive without a number");
                return;
            }
            ++facts_.listings[listing].blocksRead;
            if (const auto known = listed.find(*number); known != listed.end()) {
                VolumePart& part = parts[known->second];
                part.other = &row;
                if (part.listing == listing) {
                    contradictions_.push_back("VD " + std::to_string(*number) +
                                              " stands twice in VD LIST");
                }
            } else if (parts.size() < mostRows) {
                listed.emplace(*number, parts.size());
                parts.push_back({*number, &row, listing, {}});
            }
        };
        for (const ToldValue& row : all_->at("VD LIST").items()) {
            add(row, all_->index);
        }
        if (volumes_ != nullptr) {
            for (const auto& [key, value] : volumes_->data->members()) {
                if (key.starts_with("/c") && text::contains(key, "/v") && !value.items().empty()) {
                    add(value.items().front(), volumes_->index);
                }
            }
        }
        for (VolumePart& part : parts) {
            part.stamp = stampOf(properties(part.number));
        }
        order(parts);
        std::vector<std::string> silent;
        for (const VolumePart& part : parts) {
            readVolume(part, silent);
        }
        if (!silent.empty()) {
            find(family_code::noDetails,
                 countOf(silent.size(), "logical drive tells", "logical drives tell") +
                     " no details: " + listOf(silent),
                 {},
                 {"see whether the utility's answer ends in the middle, and capture again: " +
                  typed("/vall show all J")});
        }
    }

    [[nodiscard]] const ToldValue& properties(std::int32_t number) const {
        static const ToldValue none;
        return volumes_ == nullptr ? none
                                   : volumes_->at("VD" + std::to_string(number) + " Properties");
    }

    static std::int32_t groupOf(const VolumePart& part) { return groupOf(*part.row); }
    static std::int32_t groupOf(const ToldValue& row) {
        return wholeNumber(text::trim(text::token(row.at("DG/VD").text(), "/", 0))).value_or(-1);
    }

    /// Groups by their number, and in each the logical drives as they lie: as they were made, or as
    /// their numbers run, which begin at the highest on controllers of the latest generation.
    void order(std::vector<VolumePart>& parts) const {
        std::int32_t highest = -1;
        for (const VolumePart& part : parts) {
            highest = std::max(highest, part.number);
        }
        const bool runsDown = mostVolumes_ && highest == *mostVolumes_ - 1;
        const bool hasStamps = std::none_of(
            parts.begin(), parts.end(), [](const VolumePart& part) { return part.stamp.empty(); });
        std::stable_sort(parts.begin(), parts.end(), [&](const VolumePart& a, const VolumePart& b) {
            const auto key = [&](const VolumePart& part) {
                return std::tuple(groupOf(part), hasStamps ? part.stamp : std::string(),
                                  runsDown ? -part.number : part.number);
            };
            return key(a) < key(b);
        });
    }

    void readVolume(const VolumePart& part, std::vector<std::string>& silent) {
        const ToldValue& row = *part.row;
        const ToldValue& told = properties(part.number);
        LogicalDriveFacts& volume = facts_.logicalDrives.emplace_back();
        volume.id = std::to_string(part.number);
        volume.name = row.at("Name").text();
        volume.array = std::to_string(groupOf(part));
        volume.reportedLevel = row.atAny({"TYPE", "Type"}).text();
        volume.raidType = storcliLevel(volume.reportedLevel);
        volume.reportedState = row.at("State").text();
        volume.health = storcliVolumeHealth(volume.reportedState);
        readSecondRow(part, volume);
        judgeLevel(part, volume);
        tellUnknownWords(volume);
        volume.stripSizeBytes = sizeOf(told.at("Strip Size"));
        volume.device = told.at("OS Drive Name").toldText();
        volume.uniqueId = told.at("SCSI NAA Id").toldText();
        volume.place.listing = part.listing;
        volume.place.line = lineOf(part.listing, "\"" + row.at("DG/VD").text() + "\"");
        readSpans(part, volume);
        readVolumeSize(row, told, volume);
        readCache(row, told, volume);
        if (!told.isObject()) {
            silent.push_back("VD " + volume.id);
        }
    }

    /// The worse of two states counts.
    void readSecondRow(const VolumePart& part, LogicalDriveFacts& volume) {
        if (part.other == nullptr) {
            return;
        }
        const std::string state = part.other->at("State").text();
        const Health health = storcliVolumeHealth(state);
        if (!state.empty() && gravityOf(health) > gravityOf(volume.health)) {
            volume.reportedState = state;
            volume.health = health;
        }
        const std::int32_t group = groupOf(*part.other);
        if (group >= 0 && groupOf(part) >= 0 && group != groupOf(part)) {
            contradictions_.push_back("VD " + volume.id + " is in drive groups " +
                                      listOf({groupOf(part), group}));
        }
    }

    /// All listings tell one level of a logical drive.
    void judgeLevel(const VolumePart& part, const LogicalDriveFacts& volume) {
        const auto group = groups_.find(groupOf(part));
        const std::string ofGroup = group == groups_.end() ? std::string() : group->second.level;
        const std::string ofOther = part.other == nullptr
                                        ? std::string()
                                        : storcliLevel(part.other->atAny({"TYPE", "Type"}).text());
        for (const std::string& other : {ofGroup, ofOther}) {
            if (!other.empty() && !volume.raidType.empty() && other != volume.raidType) {
                contradictions_.push_back("VD " + volume.id + " is " + volume.raidType + " and " +
                                          other);
                return;
            }
        }
    }

    void tellUnknownWords(const LogicalDriveFacts& volume) {
        if (volume.health == Health::unknown) {
            find(family_code::unknownWord, "VD " + volume.id +
                                               " is in a state that zolexctl does not know: " +
                                               printable(volume.reportedState));
        }
        if (volume.raidType.empty()) {
            find(family_code::unknownWord, "VD " + volume.id +
                                               " has a level that zolexctl does not know: " +
                                               printable(volume.reportedLevel));
        }
    }

    /// Span by span, the members in the order of their rows.
    void readSpans(const VolumePart& part, LogicalDriveFacts& volume) {
        const auto group = groups_.find(groupOf(part));
        if (group != groups_.end() && !group->second.members.empty()) {
            for (const auto& [span, rows] : group->second.members) {
                std::vector<std::string>& members = volume.spans.emplace_back();
                for (const auto& [row, member] : rows) {
                    members.push_back(member);
                }
            }
            judgeSpans(volume);
            return;
        }
        if (volumes_ == nullptr) {
            return;
        }
        const ToldValue& rows = volumes_->at("PDs for VD " + volume.id);
        const auto perSpan = static_cast<std::size_t>(
            properties(part.number).at("Number of Drives Per Span").smallNumber().value_or(0));
        std::size_t count = 0;
        for (const ToldValue& row : rows.items()) {
            const auto place = storcliPlace(row.at("EID:Slt").text());
            if (!place || count >= mostRows) {
                continue;
            }
            if (volume.spans.empty() || (perSpan > 0 && volume.spans.back().size() >= perSpan)) {
                volume.spans.emplace_back();
            }
            volume.spans.back().push_back(place->location());
            ++count;
        }
    }

    /// A logical drive lies on the same drives by its own list and by TOPOLOGY; of those that are
    /// not at work one of the two may tell more.
    void judgeSpans(const LogicalDriveFacts& volume) {
        if (volumes_ == nullptr) {
            return;
        }
        const auto isAtWork = [](const std::string& name) {
            const StorcliDriveWord* const word = storcliDriveWord(name);
            return word != nullptr && word->state == DriveState::member;
        };
        // One that is in two groups is told as that.
        const auto isOfOne = [this](const std::string& location) {
            const auto told = told_.find(location);
            return told != told_.end() && told->second.groups.size() < 2;
        };
        std::set<std::string> listed;
        std::vector<std::string> others;
        for (const ToldValue& row : volumes_->at("PDs for VD " + volume.id).items()) {
            const auto place = storcliPlace(row.at("EID:Slt").text());
            if (place && listed.insert(place->location()).second &&
                isAtWork(row.at("State").text()) && !volume.isOn(place->location()) &&
                isOfOne(place->location())) {
                others.push_back(place->location());
            }
        }
        for (const std::string& location : volume.drives()) {
            if (listed.empty() || listed.count(location) != 0 || !isOfOne(location)) {
                continue;
            }
            const std::vector<std::string>& words = told_.at(location).words;
            if (std::any_of(words.begin(), words.end(), isAtWork)) {
                others.push_back(location);
            }
        }
        if (!others.empty()) {
            contradictions_.push_back("PDs for VD " + volume.id +
                                      " and TOPOLOGY tell other drives (" + listOf(others) + ")");
        }
    }

    void readVolumeSize(const ToldValue& row, const ToldValue& told, LogicalDriveFacts& volume) {
        const auto text = storcliSize(row.at("Size").text(), StorcliUnits::binary);
        const auto blocks = told.at("Number of Blocks").number();
        constexpr std::uint64_t largestBlock = 4096;
        constexpr std::uint64_t most = (std::uint64_t{1} << 62U) / largestBlock;
        if (blocks && *blocks > 0 && *blocks <= most) {
            const auto fits = [&](std::uint64_t bytes) {
                return !text || (bytes + text->tolerance >= text->bytes &&
                                 bytes <= text->bytes + text->tolerance);
            };
            for (const std::uint64_t bytes : {*blocks * blockBytes, *blocks * largestBlock}) {
                if (fits(bytes)) {
                    volume.capacityBytes = bytes;
                    return;
                }
            }
            find(family_code::sizeTwice, "VD " + volume.id + " has " + std::to_string(*blocks) +
                                             " blocks, which are not the " +
                                             printable(row.at("Size").text()) +
                                             " that it is said to have: the latter counts");
        }
        if (text) {
            volume.capacityBytes = text->bytes;
            volume.capacityTolerance = text->tolerance;
        }
    }

    /// The mode that is set counts; what runs may be another while a battery charges.
    void readCache(const ToldValue& row, const ToldValue& told, LogicalDriveFacts& volume) {
        const std::string word = row.at("Cache").text();
        const auto runs = storcliCache(word);
        const std::string set = storcliWriteMode(told.at("Write Cache(initial setting)").text());
        if (runs) {
            volume.readCache = runs->read;
            volume.writeCache = runs->write;
        }
        const bool isSetBack = set.ends_with("WriteBack");
        const bool runsThrough = volume.writeCache == "WriteThrough";
        if (!set.empty() &&
            (volume.writeCache.empty() || (isSetBack && runsThrough) || set == "WriteThrough")) {
            if (runs && isSetBack && runsThrough) {
                find(family_code::cacheFallsBack,
                     "VD " + volume.id + " is set to write-back and runs as write-through (" +
                         printable(word) + ")");
            }
            volume.writeCache = set;
        }
        if (!runs && !word.empty()) {
            find(family_code::unknownWord, "VD " + volume.id +
                                               " has cache modes that zolexctl "
                                               "does not know: " +
                                               printable(word));
        }
    }

    /// As long as it is kept, the controller makes no logical drive.
    void readPreservedCache() {
        const ToldValue& status = all_->at("Status");
        if (!status.at("Any Offline VD Cache Preserved").truth().value_or(false)) {
            return;
        }
        find(family_code::cachePreserved,
             "the cache keeps data that could not be written to a logical drive: no other can be "
             "made until it is",
             {},
             {"see of which: " + typed(" show preservedcache"),
              "bring its drives back, and the data is written; or delete it, and it is lost: " +
                  typed("/vN delete preservedcache")});
    }

    /// A listing that tells fewer drives than it counts is none to plan by.
    void judgeCoverage() {
        const auto drives = expectedDrives();
        const auto volumes = expectedVolumes();
        const auto groups = all_->data->atAny({"Drive Groups", "Arrays"}).smallNumber();
        const bool tellsDrives = drives || !facts_.drives.empty() || all_->at("PD LIST").isThere();
        if (!tellsDrives) {
            notWhole("the drives are not listed");
        } else if (drives && static_cast<std::size_t>(*drives) != facts_.drives.size()) {
            notWhole(std::to_string(facts_.drives.size()) + " of " + std::to_string(*drives) +
                     " physical drives are listed");
        }
        if (volumes && static_cast<std::size_t>(*volumes) != facts_.logicalDrives.size()) {
            notWhole(std::to_string(facts_.logicalDrives.size()) + " of " +
                     std::to_string(*volumes) + " logical drives are listed");
        }
        if (groups && all_->at("TOPOLOGY").isThere() &&
            static_cast<std::size_t>(*groups) != groups_.size()) {
            notWhole(std::to_string(groups_.size()) + " of " + std::to_string(*groups) +
                     " drive groups are listed");
        }
        if (!facts_.listings[all_->index].isListing) {
            notWhole("the answer has no status");
        }
        for (const LogicalDriveFacts& volume : facts_.logicalDrives) {
            if (volume.spans.empty()) {
                notWhole("the drives of VD " + volume.id + " are not told");
            }
        }
        for (const auto& [number, group] : groups_) {
            if (group.members.empty()) {
                notWhole("the drives of drive group " + std::to_string(number) + " are not listed");
            }
        }
        judgeMembers();
        judgeForeign();
        judgeContradictions();
        for (const Document* const document : {foreign_, volumes_}) {
            if (document != nullptr && !document->status->isObject()) {
                tellNoData(*document);
                notWhole(document->command + " tells nothing");
            }
        }
    }

    /// A drive in an array that no logical drive tells of is not free, whatever else is there.
    void judgeMembers() {
        std::set<std::string> told;
        for (const LogicalDriveFacts& volume : facts_.logicalDrives) {
            const std::vector<std::string> drives = volume.drives();
            told.insert(drives.begin(), drives.end());
        }
        std::vector<std::string> loose;
        for (DriveFacts& drive : facts_.drives) {
            if (told.count(drive.location) != 0) {
                continue;
            }
            if (drive.state == DriveState::member) {
                loose.push_back(drive.location);
            } else if (drive.state == DriveState::rebuilding) {
                bar(drive, "data is being written to it, and no logical drive tells of it");
            }
        }
        if (!loose.empty()) {
            notWhole("no logical drive is listed of " + listOf(loose));
        }
    }

    /// Each foreign group has a drive of its own. Where fewer are told to be foreign, any may be
    /// one that is told to be free.
    void judgeForeign() {
        const auto marked = static_cast<std::size_t>(
            std::count_if(facts_.drives.begin(), facts_.drives.end(),
                          [](const DriveFacts& drive) { return drive.isForeign; }));
        const std::size_t groups = std::max<std::size_t>(foreignGroups_, isForeignIncomplete_);
        if (groups <= marked) {
            return;
        }
        const std::string what =
            foreignGroups_ == 0
                ? std::string("an incomplete foreign drive group is")
                : countOf(groups, "foreign drive group is", "foreign drive groups are");
        controller_.failed = true;
        find(family_code::notWhole,
             "the listing is not whole: " + what + " told, and " +
                 (marked == 0 ? std::string("no drive") : countOf(marked, "drive", "drives")) +
                 " of " + (groups == 1 ? "it" : "them"),
             {},
             {"look at what its utility lists: " + typed("/fall show all"),
              "import it there, or clear it, if nobody needs its data"});
    }

    /// Listings that contradict each other, or themselves, are none to plan by either.
    void judgeContradictions() {
        if (contradictions_.empty()) {
            return;
        }
        controller_.failed = true;
        find(family_code::notWhole,
             "the listings contradict each other: " + listOf(contradictions_), {},
             {"capture again, in case it changed meanwhile: zolexctl show",
              "compare what the utility lists: " + typed(" show all") + ", " +
                  typed("/eall/sall show all") + ", " + typed("/vall show all")});
    }

    void notWhole(const std::string& why) {
        controller_.failed = true;
        find(family_code::notWhole, "the listing is not whole: " + why);
    }

    /// Failure with everything told is worth a word, and no more.
    void judgeAnswers() {
        for (const Document& document : documents_) {
            const bool isOfForeign = &document == foreign_;
            const bool isOfNoVolumes = &document == volumes_ && facts_.logicalDrives.empty();
            if (!document.answer.isFailure() || isOfForeign || isOfNoVolumes ||
                !document.data->isObject() || controller_.failed) {
                continue;
            }
            find(family_code::saysFailure,
                 document.command + " says " + printable(document.answer.status) + ", and lists" +
                     (errors_.empty() ? " all that there is" : " all that answers"),
                 document.answer.description);
        }
    }

    void countKeys() {
        for (const Document& document : documents_) {
            const ToldValue::Count count = document.json.value.count();
            facts_.listings[document.index].keys = count.all;
            facts_.listings[document.index].keysUsed = count.used;
        }
    }

    void broken(std::size_t listing, std::string_view key, std::string what) {
        constexpr std::size_t mostBroken = 100;
        if (facts_.broken.size() < mostBroken) {
            facts_.broken.push_back(
                {{listing, lineOf(listing, "\"" + std::string(key) + "\"")}, std::move(what)});
        }
    }

    /// The line in which a text stands first; 1 where it does not.
    [[nodiscard]] std::int32_t lineOf(std::size_t listing, std::string_view wanted) {
        const std::string& output = controller_.listings[listing].output;
        // Looked for behind the one before: they come in the order of the listing, mostly.
        auto& [at, line] = looked_[listing];
        std::size_t found = output.find(wanted, at);
        if (found == std::string::npos) {
            at = 0;
            line = 1;
            found = output.find(wanted);
        }
        if (found == std::string::npos) {
            return 1;
        }
        line += static_cast<std::int32_t>(
            std::count(output.begin() + static_cast<std::ptrdiff_t>(at),
                       output.begin() + static_cast<std::ptrdiff_t>(found), '\n'));
        at = found;
        return line;
    }

    struct Looked {
        std::size_t at = 0;
        std::int32_t line = 1;
    };

    FamilyController& controller_;
    Facts& facts_;
    std::vector<Document> documents_;
    const Document* all_ = nullptr;
    const Document* volumes_ = nullptr;
    const Document* foreign_ = nullptr;
    std::vector<const Document*> drives_;
    std::map<std::int32_t, Group> groups_;
    std::map<std::string, DriveRows> told_; ///< by place
    std::vector<std::string> contradictions_;
    std::map<std::string, std::vector<std::string>> covered_; ///< of spares: ids of groups
    std::size_t foreignGroups_ = 0;
    std::set<std::string> foreignNames_; ///< of them
    bool isForeignIncomplete_ = false;
    std::set<std::string> foreignPlaces_;        ///< that the list of foreign ones has
    std::map<std::string, std::int32_t> errors_; ///< of drives that do not answer
    std::optional<std::int32_t> mostVolumes_;
    std::map<std::size_t, Looked> looked_;
};

} // namespace

bool StorcliAnswer::isFailure() const {
    return !text::equalsNoCase(status, "Success");
}

StorcliAnswer storcliAnswer(std::string_view output) {
    const ToldJson json = readToldJson(output);
    return answerOf(json, entryOf(json, std::nullopt), output);
}

FamilyFinding storcliNoAnswer(const FamilyListing& listing, const StorcliAnswer& answer) {
    const std::string code = "exit code " + std::to_string(listing.exitCode);
    const std::string words =
        answer.description.empty() ? std::string() : ": " + printable(answer.description);
    if (answer.isJson) {
        return {std::string(family_code::utilityFails),
                listing.command + " tells nothing" + words,
                code,
                {}};
    }
    std::string_view output = listing.output;
    if (!answer.status.empty()) {
        return {std::string(family_code::textAnswer),
                listing.command + " answers in text, though JSON was asked for" + words,
                code + (answer.cliVersion.empty() ? "" : "; version " + answer.cliVersion),
                {"install a version of the utility that answers in JSON, or name one: zolexctl "
                 "--utility STORCLI=/path/storcli64 doctor"}};
    }
    if (text::contains(output, "{")) {
        return {std::string(family_code::textAnswer),
                listing.command + " answers with JSON that is not whole",
                answer.fault + "; " + code,
                {}};
    }
    const std::string first = cleanText(takeLine(output));
    return {std::string(family_code::textAnswer),
            listing.command + " prints no answer" + (first.empty() ? "" : ": " + printable(first)),
            code,
            {}};
}

FamilyFinding storcliOfGeneration8(const StorcliAnswer& answer) {
    return {std::string(family_code::notDriven),
            "STORCLI is of generation 008, which zolexctl does not drive yet: " +
                printable(answer.cliVersion),
            {},
            {}};
}

std::optional<StorcliOverview> storcliControllers(std::string_view output) {
    const ToldJson json = readToldJson(output);
    const ToldValue& data = entryOf(json, std::nullopt).at("Response Data");
    if (!json.isJson || !data.isObject()) {
        return std::nullopt;
    }
    StorcliOverview overview;
    std::vector<StorcliListed>& listed = overview.controllers;
    for (const ToldValue& row : data.at("System Overview").items()) {
        const auto number = row.at("Ctl").smallNumber();
        const bool isThere = std::any_of(listed.begin(), listed.end(), [number](const auto& each) {
            return each.number == number;
        });
        if (number && !isThere && listed.size() < mostControllers) {
            listed.push_back({*number, row.at("Model").toldText()});
        }
    }
    const auto count = data.at("Number of Controllers").smallNumber();
    if (listed.empty() && count && !data.at("IT System Overview").isThere()) {
        for (std::int32_t i = 0; i < std::min<std::int32_t>(*count, mostControllers); ++i) {
            listed.push_back({i, {}});
        }
    }
    if (listed.empty() && !count) {
        return std::nullopt;
    }
    overview.listed = listed.size() + data.at("IT System Overview").items().size();
    overview.counted = static_cast<std::size_t>(count.value_or(0));
    return overview;
}

StorcliPlaces storcliPlaces(std::string_view output) {
    const ToldJson json = readToldJson(output);
    const ToldValue& data = entryOf(json, std::nullopt).at("Response Data");
    StorcliPlaces places;
    for (const ToldValue& row : data.at("PD LIST").items()) {
        if (const auto place = storcliPlace(row.at("EID:Slt").text())) {
            (place->enclosure ? places.inEnclosures : places.outside) = true;
        }
    }
    return places;
}

void decodeStorcli(FamilyController& controller) {
    Decoder(controller).run();
}

} // namespace zolex::companion
