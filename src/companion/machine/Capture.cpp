#include "companion/machine/Capture.h"

#include "commands/CommandSource.h"
#include "companion/facts/CompareReadings.h"
#include "companion/facts/FactsReader.h"
#include "companion/machine/CrossCheck.h"
#include "companion/machine/FamilyJoin.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/Join.h"
#include "companion/machine/KnownFunctions.h"
#include "companion/machine/ListingCheck.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/ReadOnlyPlatform.h"
#include "companion/machine/System.h"
#include "companion/machine/Utilities.h"
#include "companion/text/Terminal.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "inventory/MachineInformation.h"
#include "inventory/ZOLEXSupport.h"
#include "model/ControllerCatalogue.h"
#include "model/TypeTraits.h"
#include "platform/Tool.h"
#include "readers/ConfigurationReader.h"
#include "run/Runner.h"
#include "show/FaultTexts.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

/// Keeps what the core tells.
class Collector : public Report {
  public:
    void fault(const Fault& fault) override {
        faults.push_back(fault);
        for (const FaultText& text : show::faultTexts(fault)) {
            addMessage(text.text);
        }
    }
    void note(std::int32_t level, std::string_view text) override {
        if (level <= level::progress) {
            addMessage(text);
        }
    }
    void trace(std::string_view /*text*/) override {}
    [[nodiscard]] bool shows(std::int32_t level) const override { return level <= level::progress; }

    std::vector<Fault> faults;
    std::vector<std::string> messages;

  private:
    void addMessage(std::string_view text) {
        if (const std::string_view trimmed = text::trim(text); !trimmed.empty()) {
            messages.emplace_back(trimmed);
        }
    }
};

/// Lets reading lines through and keeps how the latest child ended.
class WatchedPlatform : public ReadOnlyPlatform {
  public:
    using ReadOnlyPlatform::ReadOnlyPlatform;

    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override {
        ChildResult result = ReadOnlyPlatform::runChild(commandLine, capture, limit);
        outcome = result.outcome;
        exitCode = result.exitCode;
        return result;
    }

    ChildOutcome outcome = ChildOutcome::notStarted;
    std::uint32_t exitCode = 0;
};

/// A controller that a family tells of.
struct Told {
    const Family* family = nullptr;
    FamilyController controller;
};

/// What was captured of one controller, before it is put in its place.
struct Captured {
    bool isDone = false;
    FunctionIdentity function;
    ControllerSnapshot snapshot;
    bool isRead = false; ///< by zolex's own reader
};

/// In domain 0: zolex tells none.
FunctionIdentity functionOf(const RAIDController& controller) {
    FunctionIdentity identity;
    identity.type = controller.type();
    identity.subtype = controller.subtype();
    const CString told = controller.pciLocation();
    const std::string_view location = told;
    const auto number = [location](std::size_t i) {
        return static_cast<unsigned>(text::leadingInt(text::token(location, ":", i)));
    };
    const auto id = [location](std::size_t i) {
        std::string digits(text::token(location, ":", i));
        std::transform(digits.begin(), digits.end(), digits.begin(), text::lower);
        return digits;
    };
    if (!id(6).empty()) {
        identity.pci = formatText("0000:%02x:%02x.%x", number(0), number(1), number(2)).view();
        identity.pciIds = id(3) + ":" + id(4) + ":" + id(5) + ":" + id(6);
    }
    return identity;
}

std::string secondsText(std::chrono::milliseconds limit) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(limit).count()) + " s";
}

class Capturer {
  public:
    Capturer(Platform& platform, const CaptureRequest& request)
        : platform_(platform), request_(request),
          source_({.style = {}, .withLayout = true, .scriptPrefix = {}}, report_) {}

    Snapshot run() {
        findControllers();
        nameMachine();
        askFamilies();
        checkRequest();
        captured_.resize(snapshot_.controllers.count());
        for (std::size_t i = 0; i < captured_.size(); ++i) {
            if (taken_.count(i) == 0 && (isAsked(i) || decidesOrder(i) || mayBeToldTwice(i))) {
                capture(i);
            }
        }
        putInOrder();
        const std::vector<ToldSerial> serials = toldSerials();
        for (std::size_t i = 0; i < captured_.size(); ++i) {
            if (const auto taken = taken_.find(i); taken != taken_.end()) {
                finishFamily(std::move(taken->second), i, true);
            } else if (isAsked(i)) {
                finish(i);
            }
        }
        for (std::size_t i = 0; i < further_.size(); ++i) {
            finishFamily(std::move(further_[i]), snapshot_.controllers.count() + i, false);
        }
        findUndriven();
        checkSerialNumbers(serials, snapshot_);
        return std::move(snapshot_);
    }

  private:
    void findControllers() {
        Collector found;
        devices_ = platform_.pciDevices();
        tell("hardware detector");
        detected_ = snapshot_.controllers.initialize(
            *devices_, std::make_unique<Tool>(platform_, found, request_.limit), found);
        findPlaces();
        detectorOutcome_ = platform_.outcome;
        detectorCode_ = platform_.exitCode;
        for (const Fault& fault : found.faults) {
            // Of the detector is told below, where it matters.
            if (fault.kind == FaultKind::tooManyControllers) {
                report_.fault(fault);
                snapshot_.findings.push_back(problemFinding(
                    problem::tooManyControllers,
                    "there are more than " + std::to_string(ControllerList::maxControllers) +
                        " controllers; the others are left out"));
            }
        }
    }

    /// The user's own names first, then those of the hardware detector, then the firmware's.
    void nameMachine() {
        const bool needsType = request_.machineType.empty();
        const bool needsSerial = request_.serialNumber.empty();
        Machine detected = detected_.value_or(Machine());
        if (!detected_ && detectorOutcome_ != ChildOutcome::notStarted &&
            (needsType || needsSerial)) {
            snapshot_.findings.push_back(problemFinding(problem::detectorFailed, detectorText()));
        }
        FirmwareNames firmware;
        if ((needsType && detected.machineType.isEmpty()) ||
            (needsSerial && detected.serialNumber.isEmpty())) {
            firmware = platform_.firmware();
        }
        struct Source {
            const char* name;
            std::string_view type;
            std::string_view serial;
        };
        const Source sources[] = {
            {"options", request_.machineType, request_.serialNumber},
            {"hwdetect.exe", detected.machineType, detected.serialNumber},
            {"firmware", firmware.machineType, firmware.serialNumber},
        };
        Machine& machine = snapshot_.machine;
        for (const Source& source : sources) {
            const bool givesType = machine.machineType.isEmpty() && !source.type.empty();
            const bool givesSerial = machine.serialNumber.isEmpty() && !source.serial.empty();
            if (givesType) {
                machine.machineType = source.type;
            }
            if (givesSerial) {
                machine.serialNumber = source.serial;
            }
            if ((givesType || givesSerial) && snapshot_.machineSource.empty()) {
                snapshot_.machineSource = source.name;
            }
        }
        tellUnknownNames(firmware);
    }

    void tellUnknownNames(const FirmwareNames& firmware) {
        const Machine& machine = snapshot_.machine;
        if (machine.machineType.isEmpty()) {
            snapshot_.findings.push_back(problemFinding(
                problem::machineUnknown, "the machine type is not known", firmware.fault));
        }
        if (isPlaceholder(machine.serialNumber)) {
            Finding finding;
            finding.code = "ZX709";
            finding.severity = Severity::note;
            finding.summary = machine.serialNumber.isEmpty()
                                  ? "the serial number of the machine is not known"
                                  : "the serial number of the machine is a placeholder: " +
                                        printable(machine.serialNumber);
            finding.detail = machine.serialNumber.isEmpty() ? firmware.fault : "";
            finding.help = {"give it: --serial NUMBER"};
            snapshot_.findings.push_back(std::move(finding));
        }
    }

    [[nodiscard]] std::string detectorText() const {
        const std::string line = ZOLEXSupport::detectorCommand;
        return detectorOutcome_ == ChildOutcome::ended ||
                       detectorOutcome_ == ChildOutcome::notClosed
                   ? line + " ended with exit code " + std::to_string(detectorCode_)
                   : line + " did not end within " + secondsText(request_.limit);
    }

    /// Each tells its own controllers: no PCI function is needed for them to be seen.
    void askFamilies() {
        for (const Family* const family : families()) {
            if (isToBeAsked(*family)) {
                askFamily(*family);
            }
        }
        placeFailed();
        std::stable_sort(further_.begin(), further_.end(), [](const Told& a, const Told& b) {
            const auto key = [](const Told& told) {
                return std::pair(told.controller.pci.empty(),
                                 std::string_view(told.controller.pci));
            };
            return key(a) < key(b);
        });
        for (const auto& [index, told] : taken_) {
            snapshot_.families.push_back(
                {static_cast<std::int32_t>(index) + 1, std::string(told.family->name()), true});
        }
        for (std::size_t i = 0; i < further_.size(); ++i) {
            snapshot_.families.push_back(
                {static_cast<std::int32_t>(snapshot_.controllers.count() + i) + 1,
                 std::string(further_[i].family->name()), false});
        }
    }

    [[nodiscard]] bool isAskedByName(const Family& family) const {
        return std::find(request_.families.begin(), request_.families.end(), family.name()) !=
               request_.families.end();
    }

    [[nodiscard]] bool isToBeAsked(const Family& family) const {
        if (!request_.asksFamilies || (family.isOptIn() && !isAskedByName(family))) {
            return false;
        }
        // One that is asked for by name tells itself that its program is not there.
        return family.isOptIn() || family.programs().empty() || request_.utilities == nullptr ||
               !request_.utilities->programOf(family.name()).empty();
    }

    void askFamily(const Family& family) {
        FamilyRequest request;
        request.limit = request_.limit;
        request.progress = request_.progress;
        request.elapsed = system::elapsed;
        request.isAskedFor = isAskedByName(family);
        // UTIL.BAT, and what a recording stands for, need not know the family at all.
        const bool isOwnProgram = request_.utilities != nullptr &&
                                  !request_.utilities->programOf(family.name()).empty() &&
                                  !request_.utilities->usesWrapper(family.name());
        if (isOwnProgram) {
            request.program = usualName(family, request_.utilities->programOf(family.name()));
        }
        FamilyCapture captured = family.capture(platform_, request);
        if (isOwnProgram || family.isOptIn() || !captured.controllers.empty()) {
            for (const FamilyFinding& told : captured.findings) {
                snapshot_.findings.push_back(familyFinding(told));
            }
        }
        for (FamilyController& controller : captured.controllers) {
            familyFunctions_.push_back(controller.pci);
            place({&family, std::move(controller)});
        }
    }

    /// In the place of a card that zolex knows, behind all others, or nowhere.
    void place(Told told) {
        const auto known = cardAt(told.controller.pci);
        if (!known) {
            further_.push_back(std::move(told));
            return;
        }
        const std::string other(utilityOfType(snapshot_.controllers.controller(*known)->type()));
        const std::string own(told.family->name());
        const std::string both = "controller " + std::to_string(*known + 1) + " is driven by " +
                                 own + " and by " + other + ": ";
        if (taken_.count(*known) != 0) {
            return; // one card, told twice
        }
        if (isNamed(other) && !isNamed(own)) {
            tellBoth(both + other + " is used, because it was named");
            snapshot_.findings.back().help = {"to use " + own +
                                              ", name its program: " + namingOption(own)};
            return;
        }
        if (told.controller.failed && isThere(other)) {
            const auto& findings = told.controller.findings;
            tellBoth(both + other + " is used, because " + own + " fails",
                     findings.empty() ? std::string() : findings.front().summary);
            return;
        }
        tellBoth(both + own + " is used");
        taken_.emplace(*known, std::move(told));
    }

    /// A controller that its utility fails for tells no place. Where nothing else on the bus can be
    /// it, it is a card that zolex knows too.
    void placeFailed() {
        std::vector<std::string> cards;
        for (std::size_t i = 0; i < snapshot_.controllers.count(); ++i) {
            const FunctionIdentity card = functionAt(i);
            if (utilityOfType(card.type) == "MEGACLI" && !card.pci.empty() && !isTold(card.pci)) {
                cards.push_back(card.pci);
            }
        }
        if (cards.empty() || hasUntoldFunction()) {
            return;
        }
        auto card = cards.begin();
        for (Told& told : std::exchange(further_, {})) {
            const FamilyController& controller = told.controller;
            if (controller.failed && controller.pci.empty() && !told.family->isOptIn() &&
                card != cards.end()) {
                told.controller.pci = *card++;
            }
            place(std::move(told));
        }
    }

    [[nodiscard]] bool isTold(const std::string& pci) const {
        return std::find(familyFunctions_.begin(), familyFunctions_.end(), pci) !=
               familyFunctions_.end();
    }

    /// Whether the bus has a controller of a family that neither it nor zolex tells of.
    [[nodiscard]] bool hasUntoldFunction() const {
        if (devices_ == nullptr) {
            return false;
        }
        devices_->reset();
        while (const PciDevice* const device = devices_->next()) {
            const std::string pci = pciPlaceOf(*device);
            if (findFamily(knownFunction(*device).family) != nullptr && !cardAt(pci) &&
                !isTold(pci)) {
                return true;
            }
        }
        return false;
    }

    void tellBoth(std::string summary, std::string detail = {}) {
        snapshot_.findings.push_back(
            problemFinding(problem::drivenByBoth, std::move(summary), std::move(detail)));
    }

    /// Whether the program of a utility is there, as far as that is known.
    [[nodiscard]] bool isThere(const std::string& utility) const {
        return request_.utilities == nullptr || !request_.utilities->programOf(utility).empty();
    }

    /// The same of a family's own program: UTIL.BAT need not know it.
    [[nodiscard]] bool hasOwnProgram(std::string_view family) const {
        return request_.utilities == nullptr || (!request_.utilities->programOf(family).empty() &&
                                                 !request_.utilities->usesWrapper(family));
    }

    [[nodiscard]] bool isNamed(const std::string& utility) const {
        return request_.utilities != nullptr && request_.utilities->named.contains(utility);
    }

    /// The function of a controller of zolex.
    [[nodiscard]] FunctionIdentity functionAt(std::size_t index) const {
        FunctionIdentity own = functionOf(*snapshot_.controllers.controller(index));
        own.pci = places_.at(index);
        return own;
    }

    /// Where the controllers of zolex are, with the domains that the bus tells: the first of
    /// several that are alike else is the first on the bus.
    void findPlaces() {
        std::set<std::string> taken;
        for (std::size_t i = 0; i < snapshot_.controllers.count(); ++i) {
            const FunctionIdentity own = functionOf(*snapshot_.controllers.controller(i));
            places_.push_back(own.pci);
            devices_->reset();
            const PciDevice* device = own.pci.empty() ? nullptr : devices_->next();
            for (; device != nullptr; device = devices_->next()) {
                PciDevice plain = *device;
                plain.domain = 0;
                if (pciPlaceOf(plain) == own.pci && pciIdsOf(plain) == own.pciIds &&
                    taken.insert(pciPlaceOf(*device)).second) {
                    places_.back() = pciPlaceOf(*device);
                    break;
                }
            }
        }
    }

    [[nodiscard]] std::optional<std::size_t> cardAt(const std::string& pci) const {
        for (std::size_t i = 0; i < snapshot_.controllers.count() && !pci.empty(); ++i) {
            if (functionAt(i).pci == pci) {
                return i;
            }
        }
        return std::nullopt;
    }

    void finishFamily(Told told, std::size_t index, bool takesPlace) {
        if (!isAsked(index)) {
            return;
        }
        ControllerSnapshot snapshot = familySnapshot(*told.family, std::move(told.controller),
                                                     static_cast<std::int32_t>(index) + 1);
        if (takesPlace && snapshot.pciIds.empty()) {
            snapshot.pciIds = functionAt(index).pciIds;
        }
        // One that carries out its lines itself looks itself what is in use.
        if (request_.noteUses && !told.family->carriesOut()) {
            request_.noteUses(snapshot.facts);
        }
        tellBroken(snapshot);
        snapshot_.details.push_back(std::move(snapshot));
    }

    /// RAID controllers on the bus that nobody has told of.
    void findUndriven() {
        if (!request_.asksFamilies || devices_ == nullptr) {
            return;
        }
        std::vector<std::string> driven;
        for (std::size_t i = 0; i < snapshot_.controllers.count(); ++i) {
            driven.push_back(functionAt(i).pci);
        }
        for (const std::string& pci : familyFunctions_) {
            driven.push_back(pci);
        }
        devices_->reset();
        while (const PciDevice* const device = devices_->next()) {
            const KnownFunction known = knownFunction(*device);
            std::string pci = pciPlaceOf(*device);
            // One that could not be asked has told no place: it may be this.
            const bool isUnsure =
                std::find(driven.begin(), driven.end(), std::string()) != driven.end() &&
                findFamily(known.family) != nullptr;
            if (!known.family.empty() && !isUnsure &&
                std::find(driven.begin(), driven.end(), pci) == driven.end()) {
                snapshot_.undriven.push_back({std::move(pci), pciIdsOf(*device),
                                              std::string(known.family), known.isSure,
                                              hasOwnProgram(known.family)});
            }
        }
    }

    void checkRequest() const {
        const std::size_t count = snapshot_.controllers.count() + further_.size();
        for (const std::int32_t number : request_.controllers) {
            if (number < 1 || static_cast<std::size_t>(number) > count) {
                throw NoSuchController(number, count);
            }
        }
    }

    [[nodiscard]] bool isAsked(std::size_t index) const {
        const auto& asked = request_.controllers;
        return asked.empty() || std::find(asked.begin(), asked.end(),
                                          static_cast<std::int32_t>(index) + 1) != asked.end();
    }

    [[nodiscard]] bool isReordered(std::size_t index) const {
        return reordersByBusNumber(snapshot_.machine) &&
               traitsOf(snapshot_.controllers.controller(index)->type()).orderedByBus;
    }

    /// Which of the controllers is the one asked for is known only when the listings of all that
    /// may change places with it are.
    [[nodiscard]] bool decidesOrder(std::size_t index) const {
        if (!isReordered(index)) {
            return false;
        }
        for (std::size_t i = 0; i < snapshot_.controllers.count(); ++i) {
            if (isAsked(i) && isReordered(i)) {
                return true;
            }
        }
        return false;
    }

    /// Whether a family tells of a controller without its place that may be this card: the serial
    /// numbers of both decide.
    [[nodiscard]] bool mayBeToldTwice(std::size_t index) const {
        const std::size_t known = snapshot_.controllers.count();
        const std::string utility(utilityOfType(snapshot_.controllers.controller(index)->type()));
        for (std::size_t i = 0; i < further_.size() && utility == "MEGACLI"; ++i) {
            if (isAsked(known + i) && mayBeAnywhere(further_[i])) {
                return true;
            }
        }
        return false;
    }
    [[nodiscard]] static bool mayBeAnywhere(const Told& told) {
        return told.controller.pci.empty() && !told.controller.failed && !told.family->isOptIn();
    }

    /// Of all controllers that were asked, also of those that are left out.
    [[nodiscard]] std::vector<ToldSerial> toldSerials() const {
        std::vector<ToldSerial> serials;
        const auto add = [&serials](std::size_t index, std::string_view utility, const Facts& facts,
                                    bool isAnywhere) {
            serials.push_back({static_cast<std::int32_t>(index) + 1, std::string(utility),
                               facts.serialNumber, isAnywhere});
        };
        for (std::size_t i = 0; i < captured_.size(); ++i) {
            if (const auto taken = taken_.find(i); taken != taken_.end()) {
                add(i, taken->second.family->name(), taken->second.controller.facts, false);
            } else if (captured_[i].isDone) {
                add(i, utilityOfType(snapshot_.controllers.controller(i)->type()),
                    captured_[i].snapshot.facts, false);
            }
        }
        for (std::size_t i = 0; i < further_.size(); ++i) {
            add(captured_.size() + i, further_[i].family->name(), further_[i].controller.facts,
                mayBeAnywhere(further_[i]));
        }
        return serials;
    }

    /// HYPERWIN's lines name no controller: what they list and change is on the first.
    [[nodiscard]] bool isBehindAnother(std::size_t index) const {
        for (std::size_t other = 0; other < index; ++other) {
            if (snapshot_.controllers.controller(index)->type() == controller_type::lsiIde &&
                snapshot_.controllers.controller(other)->type() == controller_type::lsiIde) {
                return true;
            }
        }
        return false;
    }

    void capture(std::size_t index) {
        RAIDController& controller = *snapshot_.controllers.controller(index);
        Captured& captured = captured_[index];
        captured.isDone = true;
        captured.function = functionAt(index);
        ControllerSnapshot& snapshot = captured.snapshot;
        snapshot.adapter = adapterOf(controller);
        if (controller.scanOrder() < 1) {
            fail(snapshot, problem::notAddressed,
                 "more controllers of " + std::string(utilityOfType(controller.type())) +
                     " than zolex can name: this one is not asked");
            return;
        }
        if (isBehindAnother(index)) {
            fail(snapshot, problem::notAddressed,
                 "HYPERWIN's commands reach the first of its controllers alone: this one is not "
                 "asked");
            return;
        }
        takeListings(controller, static_cast<std::int32_t>(index) + 1, snapshot);
        snapshot.facts = readFacts(controller.type(), snapshot.listings);
        if (!snapshot.failed) {
            readWithCore(controller, static_cast<std::int32_t>(index) + 1, captured);
            judgeListings(controller, snapshot);
        }
    }

    static std::int32_t adapterOf(const RAIDController& controller) {
        const Dialect dialect = traitsOf(controller.type()).dialect;
        const bool fromZero = dialect == Dialect::cfggen || dialect == Dialect::megaCli;
        return fromZero ? controller.scanOrder() - 1 : controller.scanOrder();
    }

    static void fail(ControllerSnapshot& snapshot, std::string_view code, std::string summary,
                     std::string detail = {}) {
        snapshot.failed = true;
        snapshot.findings.push_back(problemFinding(code, std::move(summary), std::move(detail)));
    }

    void takeListings(const RAIDController& controller, std::int32_t number,
                      ControllerSnapshot& snapshot) {
        for (std::size_t i = 0; i < source_.numberOfCommands(controller); ++i) {
            const CString line = source_.getCommand(controller, number, i);
            if (!takeListing(controller.type(), number, line, snapshot)) {
                return;
            }
        }
    }

    /// False when the listing cannot be had, which is told.
    bool takeListing(std::int32_t type, std::int32_t number, const CString& line,
                     ControllerSnapshot& snapshot) {
        CapturedListing& command = snapshot.commands.emplace_back();
        command.command = text::trim(line, "\r\n");
        const std::string shown(text::trim(line));
        tell("controller " + std::to_string(number) + " of " +
             std::to_string(snapshot_.controllers.count()) + ": " + shown);
        for (int second = 0; second < traitsOf(type).secondsBeforeCommand; ++second) {
            platform_.pauseOneSecond();
        }
        const std::chrono::milliseconds begin = system::elapsed();
        ChildResult result = platform_.runChild(line, true, request_.limit);
        command.duration = system::elapsed() - begin;
        command.outcome = result.outcome;
        command.exitCode = result.exitCode;
        snapshot.listings.push_back(std::move(result.output));
        return judgeResult(type, shown, command, snapshot);
    }

    bool judgeResult(std::int32_t type, const std::string& shown, const CapturedListing& command,
                     ControllerSnapshot& snapshot) const {
        switch (command.outcome) {
        case ChildOutcome::noPipe:
            fail(snapshot, problem::utilityNotStarted, "no pipe for the output of " + shown);
            return false;
        case ChildOutcome::notStarted:
            tellNotStarted(type, shown, snapshot);
            return false;
        case ChildOutcome::stillRunning:
            fail(snapshot, problem::utilityStillRuns,
                 shown + " did not end within " + secondsText(request_.limit),
                 "or it printed more than " + std::to_string(mostChildOutput >> 20U) +
                     " MB; it goes on by itself");
            return false;
        case ChildOutcome::ended:
        case ChildOutcome::notClosed:
            break;
        }
        if (!isAccepted(type, command.exitCode)) {
            fail(snapshot, problem::utilityFailed,
                 shown + " ended with exit code " + std::to_string(command.exitCode),
                 firstLines(snapshot.listings.back()));
            return false;
        }
        return true;
    }

    void tellNotStarted(std::int32_t type, const std::string& shown,
                        ControllerSnapshot& snapshot) const {
        const std::string name(utilityOfType(type));
        const std::string program =
            request_.utilities == nullptr ? "" : request_.utilities->programOf(name);
        if (request_.utilities != nullptr && program.empty()) {
            fail(snapshot, problem::utilityMissing, name + " is missing");
            snapshot.findings.back().help = {"install it, or name it: " + namingOption(name)};
            return;
        }
        fail(snapshot, problem::utilityNotStarted,
             shown + " cannot be started" +
                 (program.empty() ? "" : ": the program is " + printable(program)));
        if (request_.utilities != nullptr && request_.utilities->named.contains(name)) {
            snapshot.findings.back().help = {"name the right program: " + namingOption(name)};
        }
    }

    void readWithCore(RAIDController& controller, std::int32_t number, Captured& captured) {
        Collector found;
        const ReaderEntry* const entry = findReader(controller.type());
        const bool read =
            entry != nullptr &&
            entry->create({.layout = true, .dumpRecords = false, .number = number}, found)
                ->readConfiguration(controller, captured.snapshot.listings);
        captured.isRead = read;
        if (!read) {
            Finding finding =
                problemFinding(problem::listingRefused, "zolex does not understand the listing");
            finding.detail = found.messages.empty() ? "" : found.messages.back();
            captured.snapshot.findings.push_back(std::move(finding));
        }
        for (const Fault& fault : found.faults) {
            if (isToldByComparison(fault.kind)) {
                continue;
            }
            const std::vector<FaultText> texts = show::faultTexts(fault);
            captured.snapshot.findings.push_back(
                problemFinding(problem::listingLimit,
                               texts.empty() ? std::string("zolex leaves a part of the listing out")
                                             : withoutStop(text::trim(texts.front().text))));
        }
        snapshot_.faults.insert(snapshot_.faults.end(), found.faults.begin(), found.faults.end());
        snapshot_.coreMessages.insert(snapshot_.coreMessages.end(), found.messages.begin(),
                                      found.messages.end());
    }

    static bool isToldByComparison(FaultKind kind) {
        return kind == FaultKind::listingTooManyArrays ||
               kind == FaultKind::listingTooManyLogicalDrives ||
               kind == FaultKind::listingTooManyHotspares ||
               kind == FaultKind::listingTooManyMembers ||
               kind == FaultKind::listingPositionInvalid;
    }

    static std::string withoutStop(std::string_view text) {
        return std::string(text.ends_with('.') ? text.substr(0, text.size() - 1) : text);
    }

    /// Controllers change places as they do before zolex plans; what was captured goes with them.
    void putInOrder() {
        if (!reordersByBusNumber(snapshot_.machine)) {
            return;
        }
        using Key = std::pair<std::int32_t, std::int32_t>;
        const auto keyOf = [this](std::size_t i) {
            const RAIDController& controller = *snapshot_.controllers.controller(i);
            return Key(controller.type(), controller.scanOrder());
        };
        std::multimap<Key, std::size_t> before;
        bool isSure = true;
        bool reorders = false;
        for (std::size_t i = 0; i < captured_.size(); ++i) {
            before.emplace(keyOf(i), i);
            if (isReordered(i) && captured_[i].isDone) {
                reorders = true;
                isSure = isSure && !captured_[i].snapshot.failed;
            }
        }
        if (!reorders) {
            return;
        }
        snapshot_.controllers.reorderByBusNumber();
        std::vector<Captured> ordered(captured_.size());
        for (std::size_t i = 0; i < captured_.size(); ++i) {
            const auto entry = before.find(keyOf(i));
            ordered[i] = std::move(captured_[entry->second]);
            before.erase(entry);
            // The slot keeps its PCI function.
            const FunctionIdentity function = functionAt(i);
            ordered[i].function.pci = function.pci;
            ordered[i].function.pciIds = function.pciIds;
        }
        captured_ = std::move(ordered);
        if (!isSure) {
            snapshot_.findings.push_back(problemFinding(
                problem::orderUnknown,
                "the numbers of controllers are not sure: a listing that tells a bus is missing"));
        }
    }

    void finish(std::size_t index) {
        const RAIDController& controller = *snapshot_.controllers.controller(index);
        Captured& captured = captured_[index];
        ControllerSnapshot& snapshot = captured.snapshot;
        snapshot.number = static_cast<std::int32_t>(index) + 1;
        snapshot.index = index;
        snapshot.model =
            ControllerCatalogue::getControllerName(controller.type(), controller.subtype()).view();
        snapshot.utility = utilityOfType(controller.type());
        snapshot.pci = captured.function.pci;
        snapshot.pciIds = captured.function.pciIds;
        if (!snapshot.failed) {
            join(controller, snapshot);
            compare(controller, captured);
            checkAgainstFunction(captured.function, snapshot);
            tellBroken(snapshot);
        }
        snapshot_.details.push_back(std::move(snapshot));
    }

    /// What the two readings of the listings have to say of each other.
    static void compare(const RAIDController& controller, Captured& captured) {
        for (const ReadingDifference& difference :
             compareReadings(captured.snapshot.facts, controller, captured.isRead)) {
            const std::string text = difference.subject + ": " + difference.what;
            if (isContradiction(difference.kind)) {
                captured.snapshot.findings.push_back(problemFinding(problem::readingsDiffer, text));
            } else if (difference.kind == DifferenceKind::namedOtherwise ||
                       difference.kind == DifferenceKind::drivesAtOnePlace) {
                captured.snapshot.findings.push_back(problemFinding(problem::namedOtherwise, text));
            } else if (difference.kind == DifferenceKind::layoutLimit) {
                captured.snapshot.findings.push_back(problemFinding(problem::listingLimit, text));
            }
        }
    }

    /// Of a listing that is none enough was told.
    static void tellBroken(ControllerSnapshot& snapshot) {
        for (const BrokenBlock& broken : snapshot.facts.broken) {
            const std::string command = commandOf(snapshot, broken.place.listing);
            const bool isTold = std::any_of(snapshot.findings.begin(), snapshot.findings.end(),
                                            [&](const Finding& finding) {
                                                return finding.code == problem::notAListing &&
                                                       finding.summary.starts_with(command);
                                            });
            if (!isTold) {
                snapshot.findings.push_back(problemFinding(
                    problem::brokenBlock,
                    command + ", line " + std::to_string(broken.place.line) + ": " + broken.what));
            }
        }
    }

    static std::string commandOf(const ControllerSnapshot& snapshot, std::size_t listing) {
        return listing < snapshot.commands.size()
                   ? std::string(text::trim(snapshot.commands[listing].command))
                   : std::string("listing");
    }

    void tell(const std::string& text) const {
        if (request_.progress) {
            request_.progress(text);
        }
    }

    WatchedPlatform platform_;
    const CaptureRequest& request_;
    SilentReport report_;
    GetConfigFiles source_;
    Snapshot snapshot_;
    std::vector<Captured> captured_;
    std::unique_ptr<PCI_DevList_VC> devices_;
    std::vector<std::string> places_;          ///< of the controllers of zolex
    std::map<std::size_t, Told> taken_;        ///< by the place of the card that zolex knows
    std::vector<Told> further_;                ///< in the order of the bus
    std::vector<std::string> familyFunctions_; ///< all that families told of
    std::optional<Machine> detected_;
    ChildOutcome detectorOutcome_ = ChildOutcome::notStarted;
    std::uint32_t detectorCode_ = 0;
};

} // namespace

NoSuchController::NoSuchController(std::int32_t number, std::size_t count)
    : std::runtime_error("there is no controller " + std::to_string(number) +
                         (count == 0   ? ": this machine has none"
                          : count == 1 ? ": this machine has one, number 1"
                                       : ": this machine has " + std::to_string(count))),
      number_(number), count_(count) {}

std::size_t Snapshot::count() const {
    const auto further = std::count_if(families.begin(), families.end(),
                                       [](const FamilyPlace& each) { return !each.takesPlace; });
    return controllers.count() + static_cast<std::size_t>(further);
}

bool Snapshot::isOfFamily(std::int32_t number) const {
    return std::any_of(families.begin(), families.end(),
                       [number](const FamilyPlace& each) { return each.number == number; });
}

bool Snapshot::isComplete() const {
    return std::none_of(details.begin(), details.end(),
                        [](const ControllerSnapshot& controller) { return controller.failed; });
}

Snapshot captureMachine(Platform& platform, const CaptureRequest& request) {
    return Capturer(platform, request).run();
}

} // namespace zolex::companion
