#include "engine/PolicyMatch.h"

#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"

namespace zolex {

namespace {

/// Holds a specifier of an entry against the controller's value; what is not given holds.
class Specifiers {
  public:
    void check(char letter, const CString& wanted, const CString& actual) {
        if (!differs() && !wanted.isEmpty() && !text::equalsNoCase(wanted, actual)) {
            keep(letter, wanted, actual);
        }
    }
    void check(char letter, std::int32_t wanted, std::int32_t actual) {
        if (!differs() && wanted > 0 && wanted != actual) {
            keep(letter, CString::fromInt(wanted), CString::fromInt(actual));
        }
    }
    [[nodiscard]] Reason result() && { return std::move(reason_); }

  private:
    [[nodiscard]] bool differs() const { return reason_.kind == Reason::Kind::entryDiffers; }
    void keep(char letter, CString wanted, CString actual) {
        reason_.kind = Reason::Kind::entryDiffers;
        reason_.specifier = letter;
        reason_.wanted = std::move(wanted);
        reason_.actual = std::move(actual);
    }

    Reason reason_{.kind = Reason::Kind::entryMatches};
};

/// Whether the policy matches; one reason for each entry up to the one that does.
bool explainPolicy(const Policy& policy, std::size_t index, const MatchValues& values,
                   std::vector<Reason>& reasons) {
    for (std::size_t i = 0; i < policy.appliesTo.size(); ++i) {
        Reason reason = explainMatch(policy.appliesTo[i], values);
        const bool matches = reason.kind == Reason::Kind::entryMatches;
        reason.policy = static_cast<std::int32_t>(index);
        reason.keyword = keyword::appliesTo + CString::fromInt(static_cast<std::int64_t>(i + 1));
        reasons.push_back(std::move(reason));
        if (matches) {
            return true;
        }
    }
    return false;
}

} // namespace

Reason explainMatch(const AppliesTo& entry, const MatchValues& values) {
    if (!entry.all && entry.givesNothing()) {
        return {.kind = Reason::Kind::entryGivesNothing};
    }
    Specifiers specifiers;
    specifiers.check('m', entry.machineType, values.machineType);
    specifiers.check('s', entry.serialNumber, values.serialNumber);
    specifiers.check('t', entry.controllerType, values.controllerType);
    specifiers.check('c', entry.controllerNumber, values.controllerNumber);
    specifiers.check('o', entry.scanOrder, values.scanOrder);
    specifiers.check('d', entry.numberOfDrives, values.numberOfDrives);
    return std::move(specifiers).result();
}

std::optional<std::size_t> findPolicy(const PolicyList& policies, const MatchValues& values,
                                      std::vector<Reason>* reasons) {
    if (reasons == nullptr) {
        const Policy* const found = policies.find(values);
        return found == nullptr ? std::nullopt
                                : std::optional<std::size_t>(
                                      static_cast<std::size_t>(found - policies.policies().data()));
    }
    for (std::size_t i = 0; i < policies.count(); ++i) {
        if (explainPolicy(policies.policies()[i], i, values, *reasons)) {
            return i;
        }
    }
    return std::nullopt;
}

} // namespace zolex
