#include "companion/execution/OwnLosses.h"

#include "companion/execution/CertifiedDrives.h"
#include "companion/planning/Diff.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

using Spans = std::vector<std::vector<std::string>>;

/// The serial numbers of drives; nothing when one of them has none of its own.
std::optional<std::vector<std::string>> serialNumbersOf(const Facts& facts,
                                                        const std::vector<std::string>& locations) {
    std::vector<std::string> result;
    for (const std::string& location : locations) {
        const DriveFacts* const drive = facts.drive(location);
        if (drive == nullptr || isPlaceholder(drive->serialNumber) ||
            std::count_if(facts.drives.begin(), facts.drives.end(), [&](const DriveFacts& each) {
                return each.serialNumber == drive->serialNumber;
            }) != 1) {
            return std::nullopt;
        }
        result.push_back(drive->serialNumber);
    }
    std::sort(result.begin(), result.end());
    return result;
}

/// The same span by span, in an order of its own.
std::optional<Spans> serialNumbersOf(const Facts& facts, const Spans& spans) {
    Spans result;
    for (const std::vector<std::string>& span : spans) {
        std::optional<std::vector<std::string>> numbers = serialNumbersOf(facts, span);
        if (!numbers) {
            return std::nullopt;
        }
        result.push_back(std::move(*numbers));
    }
    std::sort(result.begin(), result.end());
    return result;
}

bool haveOneSize(const LayoutVolume& a, const LayoutVolume& b) {
    if (!a.capacityBytes || !b.capacityBytes) {
        return a.capacityBytes == b.capacityBytes;
    }
    const std::uint64_t larger = std::max(*a.capacityBytes, *b.capacityBytes);
    return larger - std::min(*a.capacityBytes, *b.capacityBytes) <=
           std::max(a.toleranceBytes, b.toleranceBytes);
}

/// Holds losses against certificates.
class OwnSearch {
  public:
    OwnSearch(const Snapshot& snapshot, std::span<const Certificate> certificates)
        : snapshot_(snapshot) {
        for (const Certificate& certificate : certificates) {
            if (fingerprintFor(snapshot, certificate.fingerprint).identity ==
                certificate.fingerprint.identity) {
                certificates_.push_back(&certificate);
            }
        }
    }

    OwnLoss judge(const Loss& loss) {
        if (loss.kind != "logical_drive" && loss.kind != "hotspare") {
            return notOwn(loss, "it is of another controller");
        }
        const auto details = std::find_if(
            snapshot_.details.begin(), snapshot_.details.end(),
            [&](const ControllerSnapshot& each) { return each.number == loss.controller; });
        if (details == snapshot_.details.end() || details->failed) {
            return notOwn(loss, "the controller was not captured");
        }
        if (certificates_.empty()) {
            return notOwn(loss, "no certificate is of this machine");
        }
        std::string why;
        const std::vector<Held> held = thoseThatHold(loss, details->facts, why);
        if (held.empty() && !why.empty()) {
            return notOwn(loss, std::move(why));
        }
        return loss.kind == "hotspare" ? judgeSpare(loss, *details, held)
                                       : judgeVolume(loss, *details, held);
    }

  private:
    /// What a certificate tells of the controller.
    struct Held {
        const Certificate* certificate = nullptr;
        const Certificate::Controller* controller = nullptr;
    };

    /// The certificates of which every drive of the controller is as it was; `why` is why that of
    /// the last run is none of them.
    [[nodiscard]] std::vector<Held> thoseThatHold(const Loss& loss, const Facts& facts,
                                                  std::string& why) const {
        std::vector<Held> held;
        std::string last;
        for (const Certificate* const certificate : certificates_) {
            const Certificate::Controller* const controller = controllerOf(*certificate, loss);
            if (controller == nullptr) {
                continue;
            }
            std::string other = whyDrivesDiffer(*controller, facts, certificate->planId);
            if (other.empty()) {
                held.push_back({certificate, controller});
            } else if (certificate->madeAt >= last) {
                last = certificate->madeAt;
                why = std::move(other);
            }
        }
        return held;
    }

    static OwnLoss notOwn(const Loss& loss, std::string why) {
        return {loss, false, {}, std::move(why)};
    }

    OwnLoss judgeSpare(const Loss& loss, const ControllerSnapshot& details,
                       const std::vector<Held>& held) {
        const auto number = serialNumbersOf(details.facts, std::vector{loss.id});
        if (!number) {
            return notOwn(loss, "its drive tells no serial number of its own");
        }
        for (const auto& [certificate, controller] : held) {
            for (const LayoutSpare& spare : controller->layout.spares) {
                if (serialNumbersOf(controller->facts, std::vector{spare.location}) == number &&
                    found_.insert(&spare).second) {
                    return {loss, true, certificate->planId, {}};
                }
            }
        }
        return notOwn(loss, "no certificate has a hot spare on its drive");
    }

    OwnLoss judgeVolume(const Loss& loss, const ControllerSnapshot& details,
                        const std::vector<Held>& held) {
        const Layout standing = capturedLayout(details.facts);
        const LayoutGroup* group = nullptr;
        const LayoutVolume* volume = nullptr;
        for (const LayoutGroup& each : standing.groups) {
            for (const LayoutVolume& one : each.volumes) {
                if (one.id == loss.id) {
                    group = &each;
                    volume = &one;
                }
            }
        }
        if (volume == nullptr) {
            return notOwn(loss, "it is not there");
        }
        const std::optional<Spans> numbers = serialNumbersOf(details.facts, group->spans);
        if (!numbers) {
            return notOwn(loss, "a drive of it tells no serial number of its own");
        }
        std::string why = "no certificate has a logical drive on its drives";
        for (const auto& [certificate, controller] : held) {
            for (const LayoutGroup& certified : controller->layout.groups) {
                if (serialNumbersOf(controller->facts, certified.spans) != numbers) {
                    continue;
                }
                for (const LayoutVolume& one : certified.volumes) {
                    if (std::string other = whyAnother(one, *volume); !other.empty()) {
                        why = std::move(other);
                        continue;
                    }
                    const bool isLevel = one.raidType == volume->raidType;
                    const bool isSize = haveOneSize(one, *volume);
                    if (isLevel && isSize && found_.insert(&one).second) {
                        return {loss, true, certificate->planId, {}};
                    }
                    why = !isLevel  ? "its RAID level is not the certified one"
                          : !isSize ? "its size is not the certified one"
                                    : "no certificate has a logical drive more on its drives";
                }
            }
        }
        return notOwn(loss, why);
    }

    /// Why it is not the certified one though it lies there; certificates of before tell no ids.
    static std::string whyAnother(const LayoutVolume& certified, const LayoutVolume& volume) {
        if (!certified.uniqueId.empty() && volume.uniqueId.empty()) {
            return "its id is not told, so that it may have been made anew since: agree by the "
                   "code";
        }
        if (!certified.uniqueId.empty() && certified.uniqueId != volume.uniqueId) {
            return "it was made anew since: its id is not the certified one";
        }
        const bool isNameTold = !certified.uniqueId.empty() || !certified.name.empty();
        return isNameTold && certified.name != volume.name ? "its name is not the certified one"
                                                           : std::string();
    }

    static const Certificate::Controller* controllerOf(const Certificate& certificate,
                                                       const Loss& loss) {
        const auto found = std::find_if(
            certificate.controllers.begin(), certificate.controllers.end(),
            [&](const Certificate::Controller& each) { return each.number == loss.controller; });
        return found == certificate.controllers.end() ? nullptr : &*found;
    }

    const Snapshot& snapshot_;
    std::vector<const Certificate*> certificates_;
    std::set<const void*> found_; ///< what of the certificates was found
};

} // namespace

std::vector<OwnLoss> ownLosses(const std::vector<Loss>& losses, const Snapshot& snapshot,
                               std::span<const Certificate> certificates) {
    OwnSearch search(snapshot, certificates);
    std::vector<OwnLoss> result;
    result.reserve(losses.size());
    for (const Loss& loss : losses) {
        result.push_back(search.judge(loss));
    }
    return result;
}

} // namespace zolex::companion
