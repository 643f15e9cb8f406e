#include "companion/exchange/IronicDocument.h"

#include "companion/exchange/JsonPlaces.h"
#include "companion/json/DocumentReading.h"
#include "companion/json/DocumentValues.h"
#include "companion/json/Pieces.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/text/Terminal.h"
#include "companion/text/Utf8.h"

#include <algorithm>
#include <array>
#include <set>

namespace zolex::companion {

namespace {

constexpr DocumentCodes codes = {problem::ironicUnreadable, problem::ironicWrong,
                                 problem::ironicWrong,      problem::ironicBroken,
                                 problem::ironicWrong,      problem::ironicTooLarge};
constexpr std::string_view disksName = "logical_disks";

/// A level. Columns: Ironic's word; what policies say, empty: nothing; what utilities say; the
/// least number of drives. In Ironic's order.
struct Level {
    std::string_view ironic;
    std::string_view policy;
    std::string_view raidType;
    std::size_t leastDrives;
};
// clang-format off
constexpr std::array<Level, 9> levels = {{
    {"JBOD", "",   "",       0},
    {"0",    "0",  "RAID0",  1},
    {"1",    "1",  "RAID1",  2},
    {"2",    "",   "",       0},
    {"5",    "5",  "RAID5",  3},
    {"6",    "6",  "RAID6",  4},
    {"1+0",  "10", "RAID10", 4},
    {"5+0",  "50", "RAID50", 6},
    {"6+0",  "60", "RAID60", 8},
}};
// clang-format on

const Level* levelNamed(std::string_view word, std::string_view Level::*column) {
    const auto* const found = std::find_if(levels.begin(), levels.end(),
                                           [&](const Level& row) { return row.*column == word; });
    return found == levels.end() || word.empty() ? nullptr : found;
}

std::string elementPath(std::string_view list, std::size_t index) {
    return std::string(list) + "[" + std::to_string(index) + "]";
}

/// A value as it is shown in a text.
std::string shown(const Json& value) {
    constexpr std::size_t columns = 40;
    return shortened(printable(lineOf(value)), columns);
}

/// Reads the values of a document and tells what is wrong with them.
class Reader {
  public:
    Reader(const JsonPlaces& places, std::string_view fileName)
        : places_(places), fileName_(fileName) {}

    IronicReading read(const Json& document) {
        readDocument(document);
        IronicReading reading;
        if (findings_.empty()) {
            reading.disks = std::move(disks_);
        }
        reading.findings = std::move(findings_);
        return reading;
    }

  private:
    void tell(const std::string& path, const std::string& what) {
        Finding finding =
            fileFinding(fileName_, problem::ironicWrong,
                        (path.empty() ? "the document" : printable(path)) + " " + what);
        std::tie(finding.start, finding.end) = places_.placeOf(path);
        findings_.push_back(std::move(finding));
    }

    void readDocument(const Json& document) {
        if (!document.is_object()) {
            tell("", "is no object");
            return;
        }
        for (const auto& [name, value] : document.items()) {
            if (name != disksName) {
                tell(name, "is no name of a RAID configuration: logical_disks is the only one");
            }
        }
        const auto found = document.find(disksName);
        if (found == document.end()) {
            tell("", document.empty() ? "is empty: that only takes the configuration of a node "
                                        "back, and there is nothing to convert"
                                      : "has no logical_disks");
        } else if (!found->is_array() || found->empty()) {
            tell(std::string(disksName), "is no list of at least one object");
        } else if (found->size() > mostIronicDisks) {
            tell(std::string(disksName),
                 "has more than " + std::to_string(mostIronicDisks) + " elements");
        } else {
            for (const Json& value : *found) {
                readDisk(value, elementPath(disksName, disks_.size()));
            }
            checkTogether();
        }
    }

    /// One property. Columns: name, what reads it.
    struct Property {
        std::string_view name;
        void (Reader::*read)(const Json& value, const std::string& path, IronicDisk& disk);
    };

    void readDisk(const Json& value, const std::string& path) {
        static constexpr std::array<Property, 10> properties = {
            {{"raid_level", &Reader::readLevel},
             {"size_gb", &Reader::readSize},
             {"volume_name", &Reader::readName},
             {"is_root_volume", &Reader::readRoot},
             {"share_physical_disks", &Reader::readSharing},
             {"disk_type", &Reader::readDiskType},
             {"interface_type", &Reader::readInterfaceType},
             {"number_of_physical_disks", &Reader::readCount},
             {"controller", &Reader::readController},
             {"physical_disks", &Reader::readDrives}}};
        IronicDisk& disk = disks_.emplace_back();
        if (!value.is_object()) {
            tell(path, "is no object");
            return;
        }
        for (const auto& item : value.items()) {
            const std::string& name = item.key();
            std::string own = path;
            own.append(".").append(name);
            const auto* const property =
                std::find_if(properties.begin(), properties.end(),
                             [&](const Property& row) { return row.name == name; });
            if (property == properties.end()) {
                tell(own, "is no name that a logical disk has");
            } else {
                (this->*property->read)(item.value(), own, disk);
            }
        }
        for (const char* const name : {"raid_level", "size_gb"}) {
            if (!value.contains(name)) {
                tell(path, std::string("has no ") + name);
            }
        }
    }

    /// A text of one line, not empty; empty after a finding.
    std::string word(const Json& value, const std::string& path) {
        const auto* const text = value.get_ptr<const std::string*>();
        constexpr std::size_t most = 255;
        if (text == nullptr || text->empty() || text->size() > most ||
            std::any_of(text->begin(), text->end(),
                        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; })) {
            tell(path, text == nullptr ? "is no text" : "is no text of 1 to 255 plain characters");
            return {};
        }
        return *text;
    }

    template <std::size_t Count>
    std::string oneOf(const Json& value, const std::string& path,
                      const std::array<std::string_view, Count>& words) {
        std::string wanted;
        for (const std::string_view each : words) {
            if (value == each) {
                return std::string(each);
            }
            wanted += (each == words.front() ? "" : each == words.back() ? " or " : ", ");
            wanted += "\"" + std::string(each) + "\"";
        }
        tell(path, "is " + shown(value) + ", and can be " + wanted);
        return {};
    }

    /// A whole number from 1 on; nothing after a finding.
    std::optional<std::uint64_t> count(const Json& value, const std::string& path,
                                       const char* wanted) {
        if (!value.is_number_unsigned() || value == 0 || value > mostJsonNumber) {
            tell(path, "is " + shown(value) + ", and must be " + wanted);
            return std::nullopt;
        }
        return value.get<std::uint64_t>();
    }

    bool truth(const Json& value, const std::string& path) {
        if (!value.is_boolean()) {
            tell(path, "is neither true nor false");
            return false;
        }
        return value.get<bool>();
    }

    void readLevel(const Json& value, const std::string& path, IronicDisk& disk) {
        std::array<std::string_view, levels.size()> words;
        std::transform(levels.begin(), levels.end(), words.begin(),
                       [](const Level& row) { return row.ironic; });
        disk.raidLevel = oneOf(value, path, words);
    }
    void readSize(const Json& value, const std::string& path, IronicDisk& disk) {
        if (value != "MAX") {
            disk.sizeGb = count(value, path, "a whole number above 0, or \"MAX\"");
        }
    }
    void readName(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.volumeName = word(value, path);
    }
    void readRoot(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.isRoot = truth(value, path);
    }
    void readSharing(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.shares = truth(value, path);
    }
    void readDiskType(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.diskType = oneOf<2>(value, path, {"hdd", "ssd"});
    }
    void readInterfaceType(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.interfaceType = oneOf<3>(value, path, {"sata", "scsi", "sas"});
    }
    void readCount(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.driveCount = count(value, path, "a whole number above 0");
    }
    void readController(const Json& value, const std::string& path, IronicDisk& disk) {
        disk.controller = word(value, path);
    }

    void readDrives(const Json& value, const std::string& path, IronicDisk& disk) {
        if (!value.is_array() || value.empty() || value.size() > mostIronicDrives) {
            tell(path, "is no list of 1 to " + std::to_string(mostIronicDrives) + " drives");
            return;
        }
        for (std::size_t i = 0; i < value.size(); ++i) {
            if (value[i].is_object() && disk.drives.empty()) {
                disk.hasHintObjects = true;
            } else if (disk.hasHintObjects) {
                tell(elementPath(path, i), "is no object as those before");
            } else {
                disk.drives.push_back(word(value[i], elementPath(path, i)));
            }
        }
    }

    /// What one logical disk leaves to the others.
    void checkTogether() {
        std::set<std::string> names;
        std::optional<std::size_t> root;
        for (std::size_t i = 0; i < disks_.size(); ++i) {
            const std::string path = elementPath(disksName, i);
            if (!disks_[i].volumeName.empty() && !names.insert(disks_[i].volumeName).second) {
                tell(path + ".volume_name", "is the name of another logical disk, too");
            }
            if (disks_[i].isRoot && root) {
                tell(path + ".is_root_volume", "is true as that of " +
                                                   elementPath(disksName, *root) +
                                                   ": there is one root volume at most");
            } else if (disks_[i].isRoot) {
                root = i;
            }
        }
    }

    const JsonPlaces& places_;
    std::string fileName_;
    std::vector<IronicDisk> disks_;
    std::vector<Finding> findings_;
};

} // namespace

IronicReading readIronic(std::string_view text, std::string_view fileName) {
    if (text.size() > mostIronicBytes) {
        return {std::nullopt, {tooLargeFinding(fileName, codes, mostIronicBytes)}};
    }
    try {
        const Json document = parseDocument(text);
        return Reader(JsonPlaces(text), fileName).read(document);
    } catch (const DocumentFault& fault) {
        return {std::nullopt, {findingOf(fault, codes, text, fileName)}};
    }
}

std::string ironicDocument(const std::vector<IronicDisk>& disks) {
    Json list = Json::array();
    for (const IronicDisk& disk : disks) {
        Json object = Json::object();
        object["raid_level"] = disk.raidLevel;
        object["size_gb"] = disk.sizeGb ? Json(*disk.sizeGb) : Json("MAX");
        const auto text = [&](const char* name, const std::string& value) {
            if (!value.empty()) {
                object[name] = value;
            }
        };
        const auto truth = [&](const char* name, bool value) {
            if (value) {
                object[name] = true;
            }
        };
        text("volume_name", disk.volumeName);
        truth("is_root_volume", disk.isRoot);
        truth("share_physical_disks", disk.shares);
        text("disk_type", disk.diskType);
        text("interface_type", disk.interfaceType);
        if (disk.driveCount) {
            object["number_of_physical_disks"] = *disk.driveCount;
        }
        text("controller", disk.controller);
        if (!disk.drives.empty()) {
            object["physical_disks"] = disk.drives;
        }
        list.push_back(std::move(object));
    }
    Json document = Json::object();
    document[std::string(disksName)] = std::move(list);
    return textOf(document);
}

std::string_view policyLevelOf(std::string_view ironicLevel) {
    const Level* const level = levelNamed(ironicLevel, &Level::ironic);
    return level == nullptr ? std::string_view() : level->policy;
}

std::string_view ironicLevelOf(std::string_view raidType) {
    const Level* const level = levelNamed(raidType, &Level::raidType);
    return level == nullptr ? std::string_view() : level->ironic;
}

std::size_t leastDrivesOf(std::string_view ironicLevel) {
    const Level* const level = levelNamed(ironicLevel, &Level::ironic);
    return level == nullptr ? 0 : level->leastDrives;
}

} // namespace zolex::companion
