#include "companion/commands/ApplyConsent.h"

#include "companion/commands/LossText.h"
#include "companion/picture/Changes.h"
#include "companion/planning/Steps.h"
#include "companion/text/Table.h"
#include "foundation/Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

constexpr int mostTries = 3;
constexpr std::size_t longestAnswer = 256;

/// A line of standard input without blanks around it; nothing at its end.
std::optional<std::string> typedLine(Console& console) {
    std::string line;
    for (int c = console.readCharacter(); c != '\n'; c = console.readCharacter()) {
        if (c < 0) {
            return std::nullopt;
        }
        if (line.size() < longestAnswer) {
            line += static_cast<char>(c);
        }
    }
    return std::string(text::trim(line, " \t\r"));
}

/// Asks for and judges consent.
class Asker {
  public:
    Asker(Context& context, const MachinePlan& plan, const std::vector<Loss>& losses,
          const ConsentTerms& terms)
        : context_(context), plan_(plan), losses_(losses), terms_(terms),
          code_(askedCode(plan, losses)) {}

    ConsentAnswer answer() {
        using Kind = DestroyWish::Kind;
        switch (terms_.wish.kind) {
        case Kind::any:
            return given("any");
        case Kind::own:
            return byCertificates();
        case Kind::code:
            return byCode();
        case Kind::never:
            return refused("--destroy never: " + lossSentence());
        case Kind::ask:
            break;
        }
        return context_.canAsk ? ask() : refused(lossSentence() + ", and nobody has agreed to it");
    }

  private:
    static ConsentAnswer given(std::string how) { return {true, std::move(how), {}, {}}; }

    /// A refusal, below the list of what would be lost, with what would agree to it.
    ConsentAnswer refused(std::string why) {
        tellLosses();
        return {false, {}, std::move(why), {terms_.command + " --destroy " + code_}};
    }

    [[nodiscard]] std::string lossSentence() const {
        return losses_.empty() ? "nothing unique tells this machine from another"
                               : lossesText(losses_) + " would be lost";
    }

    void tellLosses() const {
        if (losses_.empty() || terms_.isListed) {
            return;
        }
        const TextStyle& style = context_.errorStyle;
        context_.platform.console().writeError(
            emphasized("This destroys " + lossesText(losses_) + ":", Emphasis::bad, style) + "\n" +
            lossLines(losses_, style));
    }

    ConsentAnswer byCertificates() {
        if (losses_.empty()) {
            return refused("nothing unique tells this machine from another, so that no "
                           "certificate can be its own");
        }
        const std::string why =
            terms_.notOwn ? terms_.notOwn(losses_) : "no certificates are named";
        return why.empty() ? given("own") : refused("--destroy own: " + why);
    }

    ConsentAnswer byCode() {
        const std::string& typed = terms_.wish.code;
        if (typed == code_) {
            return given("option");
        }
        const std::string begin = "the code " + typed + " is not for this: ";
        if (const std::string other = otherListOf(typed); !other.empty()) {
            return refused(begin + other);
        }
        return refused(begin + "it is for another machine, or for another or an older list of "
                               "what is lost");
    }

    /// What the code is for, when it is for some controllers of this very plan.
    [[nodiscard]] std::string otherListOf(const std::string& typed) const {
        const std::string& identity = plan_.fingerprint.identity;
        if (typed == consentCode(identity, plan_.losses())) {
            return "it is for all controllers of the plan";
        }
        for (const ControllerPlanning& controller : plan_.controllers) {
            if (typed == consentCode(identity, controller.losses)) {
                return "it is for controller " + std::to_string(controller.controller.number) +
                       " alone";
            }
        }
        return {};
    }

    ConsentAnswer ask() {
        tellLosses();
        const std::string& serial = plan_.fingerprint.serialNumber;
        const bool bySerial = !isPlaceholder(serial);
        Console& console = context_.platform.console();
        if (!bySerial) {
            console.writeError(
                foldedWords("This machine has no serial number. The code of exactly this is " +
                                code_ + ".",
                            0, 0, static_cast<std::size_t>(context_.errorStyle.width)) +
                "\n");
        }
        const std::string question = bySerial ? "Type the serial number of this machine to agree: "
                                              : "Type the code to agree: ";
        for (int tries = mostTries; tries > 0; --tries) {
            console.writeError(emphasized(question, Emphasis::bold, context_.errorStyle));
            const bool isThere = !terms_.awaitLine || terms_.awaitLine();
            const auto line = isThere ? typedLine(console) : std::nullopt;
            if (!line) {
                console.writeError("\n");
                return {false, {}, "nothing was typed", helpToAgree()};
            }
            if (bySerial ? text::equalsNoCase(*line, serial) : isCode(*line)) {
                return {true, bySerial ? "typed-serial" : "typed-code", {}, {}, true};
            }
            if (tries > 1) {
                console.writeError("That is not it. " + std::to_string(tries - 1) +
                                   (tries == 2 ? " try is" : " tries are") + " left.\n");
            }
        }
        return {false,
                {},
                bySerial ? "the serial number of this machine was not typed"
                         : "the code was not typed",
                helpToAgree()};
    }

    [[nodiscard]] std::vector<std::string> helpToAgree() const {
        return {terms_.command + " --destroy " + code_};
    }

    [[nodiscard]] bool isCode(const std::string& line) const {
        const std::optional<DestroyWish> typed = destroyWishOf(line);
        return typed && typed->kind == DestroyWish::Kind::code && typed->code == code_;
    }

    Context& context_;
    const MachinePlan& plan_;
    const std::vector<Loss>& losses_;
    const ConsentTerms& terms_;
    std::string code_;
};

} // namespace

std::string askedCode(const MachinePlan& plan, const std::vector<Loss>& losses) {
    return losses.empty() ? plan.id : consentCode(plan.fingerprint.identity, losses);
}

ConsentAnswer consentTo(Context& context, const MachinePlan& plan, const std::vector<Loss>& losses,
                        const ConsentTerms& terms) {
    return Asker(context, plan, losses, terms).answer();
}

} // namespace zolex::companion
