#include "companion/lint/Effects.h"

#include "companion/lint/Entries.h"
#include "companion/lint/Levels.h"
#include "foundation/Text.h"
#include "model/Codes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// What becomes of the value of a setting.
enum class Effect {
    told,
    sameAsOther, ///< another value has the same lines
    none,        ///< every value has the same lines
};

/// A level, and a number of drives that it takes.
struct LayoutEntries {
    std::int32_t level = 0;
    std::size_t drives = 0;
};

/// A member of the settings with the values that it may have.
struct Domain {
    std::int32_t LineSettings::*member;
    std::vector<std::int32_t> values;
};

class EffectChecks {
  public:
    EffectChecks(const PolicyView& policy, Models& models, FindingSink& sink)
        : policy_(policy), models_(models), sink_(sink), kinds_(kindsOfAll(policy)),
          drives_(plannedDrives(policy)) {
        std::vector<std::string> names;
        for (const Kind& kind : kinds_) {
            const std::string name = utilityOf(kind.type);
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                names.push_back(name);
            }
        }
        utilities_ = joinWords(names);
    }

    void check() {
        if (kinds_.empty()) {
            return;
        }
        checkSetting("RebuildRate", policy_.rebuildRate, &LineSettings::rebuildRate,
                     {rebuild_rate::high, rebuild_rate::medium, rebuild_rate::low});
        checkSetting("ReadAhead", policy_.readAhead, &LineSettings::readAhead,
                     {read_ahead::adaptive, read_ahead::on, read_ahead::off});
        checkSetting("Init", policy_.init, &LineSettings::init,
                     {init_choice::quick, init_choice::build});
        checkStripeSize();
        checkLogicalDrives();
        checkDrives();
    }

  private:
    /// The layouts that the policy makes on controllers of this kind, as far as they are known.
    std::vector<LayoutEntries> layoutsOf(const Kind& kind, const AskedDrive& drive) {
        std::vector<LayoutEntries> layouts;
        for (std::int32_t level = raid_level::raid0; level <= raid_level::simpleVolume; ++level) {
            const bool isMeant =
                drive.level == level ||
                (drive.level == raid_level::notGiven &&
                 (drive.drives == 0 ? kind.rules->raidLevels.contains(level)
                                    : kind.rules->defaultRAIDLevel(drive.drives) == level));
            if (!isMeant || level == raid_level::notGiven) {
                continue;
            }
            const bool isTaken = drive.drives > 0 && drive.drives <= RaidArray::maxDrives &&
                                 !models_.refusal(kind, level, drive.drives);
            const std::size_t count = isTaken ? drive.drives : models_.leastDrives(kind, level);
            if (count > 0) {
                layouts.push_back({level, count});
            }
        }
        return layouts;
    }

    Effect effectOf(const Kind& kind, const LayoutEntries& layout, const Domain& domain,
                    std::int32_t value) {
        const auto linesWith = [&](std::int32_t each) -> const std::vector<CString>& {
            LineSettings settings;
            settings.*domain.member = each;
            return models_.lines(kind, layout.level, layout.drives, settings).lines;
        };
        const std::vector<CString>& own = linesWith(value);
        bool isShared = false;
        bool varies = false;
        for (const std::int32_t other : domain.values) {
            if (other != value) {
                const bool isSame = linesWith(other) == own;
                isShared = isShared || isSame;
                varies = varies || !isSame;
            }
        }
        return !varies ? Effect::none : isShared ? Effect::sameAsOther : Effect::told;
    }

    /// The best that becomes of the value with any kind and logical drive; nothing when no layout
    /// is known.
    std::optional<Effect>
    effectOf(std::int32_t LineSettings::*member,
             const std::function<std::vector<std::int32_t>(const Kind&)>& values,
             std::int32_t value, const AskedDrive* only = nullptr) {
        std::optional<Effect> best;
        for (const Kind& kind : kinds_) {
            const Domain domain{member, values(kind)};
            for (const AskedDrive& drive : drives_) {
                if (only != nullptr && drive.view != only->view) {
                    continue;
                }
                for (const LayoutEntries& layout : layoutsOf(kind, drive)) {
                    const Effect effect = effectOf(kind, layout, domain, value);
                    best = best ? std::min(*best, effect) : effect;
                }
            }
        }
        return best;
    }

    void checkSetting(const std::string& name, const std::optional<SettingView>& setting,
                      std::int32_t LineSettings::*member, const std::vector<std::int32_t>& values) {
        if (!setting) {
            return;
        }
        const auto effect = effectOf(
            member, [&](const Kind& /*kind*/) { return values; }, setting->code);
        const std::string value = setting->entry->value.text;
        if (effect == Effect::none) {
            tell(setting->entry->value, name + " has no effect with " + utilities_);
        } else if (effect == Effect::sameAsOther) {
            tell(setting->entry->value,
                 name + " = " + value + " makes no command with " + utilities_);
        }
    }

    void checkStripeSize() {
        if (!policy_.stripeSize) {
            return;
        }
        const std::int32_t code = policy_.stripeSize->code;
        const auto accepted = [](const Kind& kind) {
            std::vector<std::int32_t> codes;
            for (std::int32_t each = stripe::kb16; each < stripe::none; ++each) {
                if (kind.rules->stripeSizes.contains(each)) {
                    codes.push_back(each);
                }
            }
            return codes;
        };
        const Piece& place = policy_.stripeSize->entry->value;
        const auto effect = effectOf(&LineSettings::stripeSize, accepted, code);
        if (effect == Effect::none) {
            const bool isOnlyHere = takesStripeSizes(accepted);
            tell(place, "StripeSize has no effect with " + utilities_ +
                            (isOnlyHere ? " for the levels of this policy" : ""));
        } else if (effect == Effect::sameAsOther && !isWritten(code)) {
            tell(place, utilities_ + " is told less than " + place.text +
                            " KB for a level of so many drives");
        }
    }

    /// Whether the utilities are told strip sizes of any level that the models have.
    bool takesStripeSizes(const std::function<std::vector<std::int32_t>(const Kind&)>& accepted) {
        return std::any_of(kinds_.begin(), kinds_.end(), [&](const Kind& kind) {
            const std::vector<LayoutEntries> layouts =
                layoutsOf(kind, {nullptr, nullptr, raid_level::notGiven, 0});
            const Domain domain{&LineSettings::stripeSize, accepted(kind)};
            return !domain.values.empty() &&
                   std::any_of(layouts.begin(), layouts.end(), [&](const LayoutEntries& layout) {
                       return effectOf(kind, layout, domain, domain.values.front()) != Effect::none;
                   });
        });
    }

    /// Whether a line of the policy's logical drives holds this strip size.
    bool isWritten(std::int32_t code) {
        LineSettings settings;
        settings.stripeSize = code;
        const std::string word = std::string("Stripesize ") + stripeSizeWord(code) + " ";
        for (const Kind& kind : kinds_) {
            for (const AskedDrive& drive : drives_) {
                for (const LayoutEntries& layout : layoutsOf(kind, drive)) {
                    for (const CString& line :
                         models_.lines(kind, layout.level, layout.drives, settings).lines) {
                        if (text::contains(line.view(), word)) {
                            return true;
                        }
                    }
                }
            }
        }
        return false;
    }

    void checkLogicalDrives() {
        std::vector<const LogicalView*> seen;
        for (const AskedDrive& drive : drives_) {
            if (drive.view == nullptr ||
                std::find(seen.begin(), seen.end(), drive.view) != seen.end()) {
                continue;
            }
            seen.push_back(drive.view);
            checkCache(drive);
            checkSize(drive);
        }
    }

    void checkCache(const AskedDrive& drive) {
        const std::int32_t code = drive.view->given.writeCache;
        if (!drive.view->cache || code == write_cache::notGiven) {
            return;
        }
        const auto both = [](const Kind& /*kind*/) {
            return std::vector<std::int32_t>{write_cache::off, write_cache::on};
        };
        if (effectOf(&LineSettings::writeCache, both, code, &drive) == Effect::none) {
            tell(*drive.view->cache, "the write cache has no effect with " + utilities_);
        }
    }

    void checkSize(const AskedDrive& drive) {
        constexpr std::int32_t someMb = 1000;
        constexpr std::int32_t otherMb = 2000;
        constexpr DriveSize all{DriveSize::Kind::percent, 100};
        const DriveSize size = drive.view->given.size;
        if (size.kind == DriveSize::Kind::rest || size == all) {
            return;
        }
        const auto sizes = [](const Kind& /*kind*/) {
            return std::vector<std::int32_t>{sizeFill, someMb, otherMb};
        };
        if (isSizeRefused(drive)) {
            Finding& finding =
                sink_.add("ZX408", drive.view->size, utilities_ + " takes the size FILL alone",
                          {"zolex ends with 11 here, and controllers before are "
                           "configured"});
            // What happens to be all of the array is taken.
            finding.severity =
                size.kind == DriveSize::Kind::percent ? Severity::error : Severity::warning;
            finding.refusedBy = RefusedBy::plan;
        } else if (effectOf(&LineSettings::sizeMb, sizes, someMb, &drive) == Effect::none) {
            tell(drive.view->size, "the size has no effect with " + utilities_,
                 "the logical drive is as large as its array");
        }
    }

    bool isSizeRefused(const AskedDrive& drive) {
        LineSettings settings;
        settings.sizeMb = 1000;
        return std::all_of(kinds_.begin(), kinds_.end(), [&](const Kind& kind) {
            const std::vector<LayoutEntries> layouts = layoutsOf(kind, drive);
            return !layouts.empty() &&
                   std::all_of(layouts.begin(), layouts.end(), [&](const LayoutEntries& layout) {
                       const std::optional<Fault>& fault =
                           models_.lines(kind, layout.level, layout.drives, settings).fault;
                       return fault && fault->kind == FaultKind::fillOnly;
                   });
        });
    }

    /// Arrays that name drives where the utility cannot be told any.
    void checkDrives() {
        constexpr std::size_t both = 2;
        const bool namesNone = std::none_of(kinds_.begin(), kinds_.end(), [this](const Kind& kind) {
            return models_.namesDrives(kind);
        });
        for (const DriveListView& array : policy_.countingArrays()) {
            if (namesNone && !array.isAll && array.drives.size() < both) {
                tell(array.entry->value,
                     utilities_ + " takes both drives, whatever " + array.entry->keyword.text +
                         " lists",
                     "what is on the other drive is lost, too");
            }
        }
    }

    void tell(const Piece& place, std::string summary, std::string help = "leave it out") {
        sink_.add("ZX408", place, std::move(summary), {std::move(help)});
    }

    const PolicyView& policy_;
    Models& models_;
    FindingSink& sink_;
    const std::vector<Kind> kinds_;
    const std::vector<AskedDrive> drives_;
    std::string utilities_;
};

} // namespace

void checkEffects(const PolicyView& policy, Models& models, FindingSink& sink) {
    EffectChecks(policy, models, sink).check();
}

} // namespace zolex::companion
