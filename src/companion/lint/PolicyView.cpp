#include "companion/lint/PolicyView.h"

#include "companion/binding/FamilyTypes.h"
#include "companion/binding/KindEntries.h"
#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::int32_t policyLetters = 8; // Array.A to Array.H

/// Reads the values of one policy.
class Reading {
  public:
    explicit Reading(const DocumentPolicy& policy) {
        view_.policy = &policy;
        view_.isWhole = !policy.isIncomplete && !policy.isQuiet;
        for (const DocumentEntry& entry : policy.entries) {
            readKindEntry(entry.keyword.text);
        }
    }

    PolicyView run() {
        readEntries();
        view_.customArrays = readMode(keyword::arrayMode) || view_.hasDriveKinds;
        view_.customLogicalDrives = readMode(keyword::logicalMode) || hasLevels_;
        readArrays();
        readHotspares();
        readLogicalDrives();
        readArrayDefaults();
        readSetting(keyword::stripeSize, policy_value::stripeSize, view_.stripeSize);
        readSetting(keyword::readAhead, policy_value::readAhead, view_.readAhead);
        readSetting(keyword::rebuildRate, policy_value::rebuildRate, view_.rebuildRate);
        readSetting(keyword::init, policy_value::initChoice, view_.init);
        return std::move(view_);
    }

  private:
    [[nodiscard]] const DocumentEntry* find(std::string_view keyword) const {
        return view_.policy->effective(keyword);
    }
    [[nodiscard]] const DocumentEntry* find(const char* prefix, std::int32_t number) const {
        return find(std::string(prefix) + std::to_string(number));
    }
    void leaveOut() { view_.isWhole = false; }

    /// What such an entry makes of the policy is known when it is bound to drives.
    void readKindEntry(std::string_view keyword) {
        if (isKindKeyword(keyword) && !isSpansKeyword(keyword)) {
            view_.hasDriveKinds = view_.hasDriveKinds || text::lower(keyword.front()) == 'd';
            hasLevels_ = hasLevels_ || text::lower(keyword.front()) == 'l';
            leaveOut();
        }
    }

    bool readMode(const char* keyword) {
        const DocumentEntry* entry = find(keyword);
        const bool custom = entry != nullptr && text::equalsNoCase(entry->value.text, "CUSTOM");
        if (entry != nullptr && !custom) {
            leaveOut();
        }
        return custom;
    }

    void readSetting(const char* keyword, std::optional<std::int32_t> (*parse)(std::string_view),
                     std::optional<SettingView>& setting) {
        if (const DocumentEntry* entry = find(keyword)) {
            if (const auto code = parse(entry->value.text)) {
                setting = SettingView{entry, *code};
            }
        }
    }

    void readEntries() {
        for (std::int32_t n = 1; n <= keyword::lastAppliesTo; ++n) {
            if (const DocumentEntry* entry = find(keyword::appliesTo, n)) {
                view_.entries.push_back(readEntry(*entry));
            }
        }
    }

    static EntryView readEntry(const DocumentEntry& entry) {
        EntryView view;
        view.entry = &entry;
        for (Piece& field : fieldsOf(entry.value, ',')) {
            readSpecifier(std::move(field), view);
        }
        return view;
    }

    static void readSpecifier(Piece field, EntryView& view) {
        const std::string_view text = field.text;
        SpecifierView specifier;
        if (text::equalsNoCase(text, "ALL")) {
            view.given.all = true;
            specifier.letter = '*';
        } else if (text.size() >= 2 && text[1] == ':') {
            specifier.letter = text::lower(text[0]);
            specifier.value = partOf(field, 2, text.size() - 2);
            if (!readValue(specifier.letter, text.substr(2), view.given)) {
                view.isReadable = false;
                return;
            }
        } else {
            view.isReadable = false;
            return;
        }
        specifier.whole = std::move(field);
        view.specifiers.push_back(std::move(specifier));
    }

    static bool readValue(char letter, std::string_view value, AppliesTo& given) {
        const auto readNumber = [value](std::int32_t& number) {
            const auto parsed = policy_value::nonZeroNumber(value);
            number = parsed.value_or(notGiven);
            return parsed.has_value();
        };
        switch (letter) {
        case 'm':
            given.machineType = value;
            return true;
        case 's':
            given.serialNumber = value;
            return true;
        case 't':
            given.controllerType = value;
            return ControllerCatalogue::isValidControllerName(value) || isFamilyType(value);
        case 'c':
            return readNumber(given.controllerNumber);
        case 'o':
            return readNumber(given.scanOrder);
        case 'd':
            return readNumber(given.numberOfDrives);
        default:
            return false;
        }
    }

    void readArrays() {
        for (std::int32_t i = 0; i < policyLetters; ++i) {
            const std::string keyword = keyword::array + std::string(1, static_cast<char>('A' + i));
            const DocumentEntry* entry = find(keyword);
            if (entry == nullptr) {
                continue;
            }
            std::optional<DriveListView> list = readList(*entry);
            if (!list) {
                leaveOut();
                continue;
            }
            list->index = static_cast<std::size_t>(i);
            view_.arrays.push_back(std::move(*list));
        }
    }

    void readHotspares() {
        if (const DocumentEntry* entry = find(keyword::hotspares)) {
            view_.hotspares = readList(*entry);
            if (!view_.hotspares || view_.hotspares->isAll) {
                view_.hotspares.reset();
                leaveOut();
            }
        }
    }

    static std::optional<DriveListView> readList(const DocumentEntry& entry) {
        DriveListView view;
        view.entry = &entry;
        if (text::equalsNoCase(entry.value.text, "ALL")) {
            view.isAll = true;
            return view;
        }
        const auto list = policy_value::driveList(entry.value.text);
        std::vector<Piece> fields = fieldsOf(entry.value, ',');
        if (!list || fields.size() != list->count()) {
            return std::nullopt;
        }
        for (std::size_t i = 0; i < fields.size(); ++i) {
            DriveView drive;
            drive.piece = std::move(fields[i]);
            if (list->positions.empty()) {
                drive.number = list->numbers[i];
            } else {
                drive.position = list->positions[i];
            }
            view.drives.push_back(std::move(drive));
        }
        return view;
    }

    void readLogicalDrives() {
        for (std::int32_t n = 1; n <= keyword::lastLogical; ++n) {
            if (const DocumentEntry* entry = find(keyword::logical, n)) {
                if (auto drive = readLogical(*entry, true)) {
                    view_.logicalDrives.push_back(std::move(*drive));
                } else {
                    leaveOut();
                }
            }
        }
        if (const DocumentEntry* entry = find(keyword::logicalDefaults)) {
            view_.logicalDefaults = readLogical(*entry, false);
            if (!view_.logicalDefaults) {
                leaveOut();
            }
        }
    }

    static std::optional<LogicalView> readLogical(const DocumentEntry& entry, bool withArray) {
        std::vector<Piece> fields = fieldsOf(entry.value, ':');
        const std::size_t first = withArray ? 1 : 0;
        if (fields.size() != first + 2 && fields.size() != first + 3) {
            return std::nullopt;
        }
        LogicalView view;
        view.entry = &entry;
        if (withArray) {
            const auto index = policy_value::arrayIndex(fields[0].text);
            if (!index) {
                return std::nullopt;
            }
            view.given.arrayIndex = *index;
            view.array = fields[0];
        }
        view.size = fields[first];
        view.level = fields[first + 1];
        const auto size = policy_value::logicalDriveSize(view.size.text);
        const auto level = policy_value::raidLevel(view.level.text);
        std::optional<std::int32_t> cache = write_cache::notGiven;
        if (fields.size() == first + 3) {
            view.cache = fields[first + 2];
            cache = policy_value::writeCache(view.cache->text);
        }
        if (!size || !level || !cache) {
            return std::nullopt;
        }
        view.given.size = *size;
        view.given.raidLevel = *level;
        view.given.writeCache = *cache;
        return view;
    }

    void readArrayDefaults() {
        const DocumentEntry* entry = find(keyword::arrayDefaults);
        if (entry == nullptr) {
            return;
        }
        const std::vector<Piece> fields = fieldsOf(entry->value, ':');
        const auto variance =
            fields.size() == 2 ? policy_value::variance(fields[0].text) : std::nullopt;
        const auto hotspares =
            fields.size() == 2 ? text::wholeNumber(fields[1].text) : std::nullopt;
        if (!variance || !hotspares) {
            leaveOut();
            return;
        }
        view_.arrayDefaults =
            ArrayDefaultsView{entry, {*variance, *hotspares}, fields[0], fields[1]};
    }

    PolicyView view_;
    bool hasLevels_ = false;
};

} // namespace

bool PolicyView::isGenerated() const {
    const std::string_view prefix = generatedPolicyPrefix;
    return customArrays &&
           text::equalsNoCase(std::string_view(policy->name.text).substr(0, prefix.size()), prefix);
}

const std::vector<DriveListView>& PolicyView::countingArrays() const {
    static const std::vector<DriveListView> none;
    return customArrays ? arrays : none;
}

const DriveListView* PolicyView::array(std::int32_t index) const {
    for (const DriveListView& list : arrays) {
        if (static_cast<std::int32_t>(list.index) == index) {
            return &list;
        }
    }
    return nullptr;
}

std::vector<PolicyView> viewPolicies(const PolicyDocument& document) {
    std::vector<PolicyView> views;
    views.reserve(document.policies.size());
    for (const DocumentPolicy& policy : document.policies) {
        views.push_back(Reading(policy).run());
    }
    return views;
}

} // namespace zolex::companion
