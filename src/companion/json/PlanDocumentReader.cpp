#include "companion/json/DocumentReading.h"
#include "companion/json/MachinePieces.h"
#include "companion/json/PlanDocument.h"
#include "companion/json/PlanPieces.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/Sha256.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zolex::companion {

namespace {

constexpr DocumentCodes planCodes = {problem::documentUnreadable, problem::otherDocument,
                                     problem::otherVersion,       problem::documentBroken,
                                     problem::documentWrong,      problem::documentTooLarge};

/// Null: 0.
std::int32_t readLine(const Part& part, std::string_view name) {
    return part.numberOrNull<std::int32_t>(name, 1, mostNumber).value_or(0);
}

PlanReason readReason(const Part& part) {
    return {part.word("code"), part.wordOrNull("keyword"), readLine(part, "line"),
            part.textOrNull("as")};
}

// Policies

EntryMatch readEntry(const Part& part) {
    EntryMatch entry;
    entry.keyword = part.word("keyword");
    entry.line = readLine(part, "line");
    entry.matched = part.truth("matched");
    for (const Part& each : part.objects("specifiers", mostPlanLines)) {
        entry.specifiers.push_back(
            {each.text("specifier"), each.truth("holds"), each.text("actual")});
    }
    return entry;
}

void readPolicy(const Part& controller, ControllerPlanning& planning) {
    const Part part = controller.object("policy");
    planning.policy = part.textOrNull("name");
    planning.policyLine = readLine(part, "line");
    planning.matchedBy = part.wordOrNull("matched_by");
    for (const Part& each : part.objects("considered", mostPlanLines)) {
        PolicyMatch policy;
        policy.name = each.text("name");
        policy.line = readLine(each, "line");
        if (!each.isNull("matched")) {
            policy.matched = each.truth("matched");
        }
        for (const Part& entry : each.objects("entries", mostPlanLines)) {
            policy.entries.push_back(readEntry(entry));
        }
        planning.considered.push_back(std::move(policy));
    }
}

Binding readBinding(const Part& part) {
    Binding binding;
    binding.keyword = part.word("keyword");
    binding.line = readLine(part, "line");
    binding.value = part.text("value");
    binding.becomes = part.textOrNull("becomes");
    for (const Part& each : part.objects("drives", mostPlanDrives)) {
        binding.drives.push_back(
            {each.word("location"), each.word("code"), each.textOrNull("why")});
    }
    binding.why = part.textOrNull("why");
    return binding;
}

// What is wanted

PlannedArray readArray(const Part& part) {
    PlannedArray array;
    array.id = part.word("id");
    array.capacityBytes = part.number<std::uint64_t>("capacity_bytes");
    if (part.has("drives_per_span")) {
        array.drivesPerSpan = part.number<std::size_t>("drives_per_span", 1);
    }
    for (const Part& each : part.objects("drives", mostPlanDrives)) {
        array.drives.push_back({each.word("location"), readReason(each.object("reason"))});
    }
    return array;
}

PlannedVolume readVolume(const Part& part) {
    constexpr std::size_t mostReasons = 64;
    PlannedVolume volume;
    volume.id = part.word("id");
    volume.array = part.word("array");
    volume.raidType = part.wordOrNull("raid_type");
    const Part size = part.object("size");
    volume.sizePolicy = size.textOrNull("policy");
    volume.fills = size.truth("fills");
    volume.capacityBytes = part.number<std::uint64_t>("capacity_bytes");
    volume.toleranceBytes = part.number<std::uint64_t>("capacity_tolerance_bytes");
    volume.stripSizeBytes = part.numberOrNull<std::uint64_t>("strip_size_bytes");
    volume.writeCache = part.wordOrNull("write_cache_policy");
    volume.readCache = part.wordOrNull("read_cache_policy");
    const Part reasons = part.object("reasons");
    for (const std::string& attribute : reasons.names(mostReasons)) {
        volume.reasons[attribute] = readReason(reasons.object(attribute));
    }
    return volume;
}

void readAfter(const Part& controller, ControllerPlanning& planning) {
    if (controller.isNull("after")) {
        return;
    }
    const Part part = controller.object("after");
    planning.rebuildRate = part.wordOrNull("rebuild_rate");
    planning.initializeType = part.wordOrNull("initialize_type");
    for (const Part& each : part.objects("arrays", mostPlanDrives)) {
        planning.arrays.push_back(readArray(each));
    }
    for (const Part& each : part.objects("logical_drives", mostPlanDrives)) {
        planning.volumes.push_back(readVolume(each));
    }
    for (const Part& each : part.objects("hotspares", mostPlanDrives)) {
        const bool isDedicated =
            each.has("hotspare_type") && each.word("hotspare_type") == "Dedicated";
        planning.spares.push_back({each.word("location"), each.words("covers", mostPlanDrives),
                                   readReason(each.object("reason")), isDedicated});
    }
}

// The controller

void readBefore(const Part& controller, ControllerPlanning& planning) {
    if (controller.isNull("before")) {
        if (!planning.controller.failed) {
            controller.fail("before", "is null");
        }
        return;
    }
    if (planning.controller.failed) {
        controller.fail("before", "stands at a controller that was not captured");
    }
    const Part part = controller.object("before");
    planning.before = readLayout(part);
    planning.beforeHash = part.hash("layout_sha256");
}

void readStrategy(const Part& controller, ControllerPlanning& planning) {
    constexpr std::array strategies{Strategy::none, Strategy::add, Strategy::rebuild};
    const Part part = controller.object("strategy");
    planning.strategy = part.oneOf<Strategy>("name", strategies, strategyWord);
    for (const Part& each : part.objects("because", mostPlanLines)) {
        planning.strategyBecause.push_back({each.word("code"), each.textOrNull("text"),
                                            each.wordOrNull("logical_drive"),
                                            each.words("drives", mostPlanDrives)});
    }
}

ControllerPlanning readPlanning(const Part& part) {
    constexpr std::array dispositions{Disposition::planned, Disposition::already,
                                      Disposition::skipped, Disposition::refused};
    ControllerPlanning planning;
    planning.controller = readPlanController(part);
    planning.disposition = part.oneOf<Disposition>("outcome", dispositions, dispositionWord);
    planning.because = part.textOrNull("outcome_reason");
    readPolicy(part, planning);
    for (const Part& each : part.objects("bindings", mostPlanLines)) {
        planning.bindings.push_back(readBinding(each));
    }
    readBefore(part, planning);
    readAfter(part, planning);
    if (!part.isNull("comparison")) {
        planning.comparison = readComparison(part.object("comparison"));
    }
    readStrategy(part, planning);
    planning.oldDifferences = part.object("old_command").texts("differences", mostPlanLines);
    planning.warnings = readDiagnostics(part, "warnings");
    planning.diagnostics = readDiagnostics(part, "diagnostics");
    checkPlanning(planning, part);
    addStandingLayout(planning.before, planning.controller);
    planning.after = layoutOf(planning);
    planning.before.deepMirrors = planning.after.deepMirrors;
    return planning;
}

// The whole plan

Loss readLoss(const Part& part) {
    Loss loss;
    loss.controller = part.number<std::int32_t>("controller", 1, mostNumber);
    loss.kind = part.word("kind");
    loss.id = part.word("id");
    loss.raidType = part.wordOrNull("raid_type");
    loss.drives = part.words("drives", mostPlanDrives);
    loss.capacityBytes = part.number<std::uint64_t>("capacity_bytes");
    loss.status = part.textOrNull("status");
    loss.name = textIfTold(part, "name");
    loss.device = textIfTold(part, "device");
    loss.uniqueId = textIfTold(part, "unique_id");
    return loss;
}

PlanStep readStep(const Part& part) {
    constexpr std::int64_t mostExitCode = 255;
    constexpr std::int64_t mostPause = 3600;
    constexpr std::size_t mostArgumentBytes = 32767;
    PlanStep step;
    step.step = part.number<std::int32_t>("step", 1, mostNumber);
    step.controller = part.number<std::int32_t>("controller", 1, mostNumber);
    step.action = part.word("action");
    const std::vector<std::string> actions = part.words("actions", 2);
    step.deletes = std::find(actions.begin(), actions.end(), "delete") != actions.end();
    step.creates = part.words("creates", mostPlanDrives);
    step.destroys = part.words("destroys", mostPlanDrives);
    step.summary = part.textOrNull("summary");
    step.command = part.word("command", mostArgumentBytes);
    step.argv = part.words("argv", mostPlanArguments, mostArgumentBytes);
    step.acceptedExitCodes = part.numbers("accepted_exit_codes", mostExitCode + 1, 0, mostExitCode);
    step.pauseBeforeSeconds = part.number<std::int32_t>("pause_before_seconds", 0, mostPause);
    step.isRepeatable = part.truth("repeatable");
    step.differsFromZolex = part.textOrNull("differs_from_zolex");
    step.expectedAfter = part.object("expected_after").hashOrNull("layout_sha256");
    std::size_t size = 0;
    for (const std::string& argument : step.argv) {
        size += argument.size() + 1;
    }
    if (step.argv.empty() || step.argv.front().empty()) {
        part.fail("argv", "names no program");
    }
    if (size > mostArgumentBytes) {
        part.fail("argv", "is longer than " + std::to_string(mostArgumentBytes) + " bytes");
    }
    return step;
}

Rehearsal readRehearsal(const Part& document) {
    constexpr std::size_t hashDigits = 64;
    const Part part = document.object("rehearsal");
    Rehearsal rehearsal;
    rehearsal.done = part.truth("done");
    rehearsal.endsAsPlanned = part.truth("ends_as_planned");
    rehearsal.durationMs = part.number("duration_ms");
    rehearsal.faultsTried = part.number<std::int32_t>("faults_tried", 0, mostNumber);
    rehearsal.resumesAsPlanned = part.number<std::int32_t>("resumes_as_planned", 0, mostNumber);
    rehearsal.notDoneBecause = part.texts("not_done_because", mostPlanLines);
    const Part layouts = part.object("layouts");
    for (const std::string& hash : layouts.names(mostPlanSteps)) {
        if (!isHexadecimal(hash, hashDigits)) {
            layouts.fail("has a name that is no hash of 64 hexadecimal digits");
        }
        rehearsal.layouts[hash] = layouts.texts(hash, mostPlanLines);
    }
    return rehearsal;
}

ControllerPlanning& controllerOf(MachinePlan& plan, std::int32_t number, const Part& part) {
    const auto found = std::find_if(
        plan.controllers.begin(), plan.controllers.end(),
        [&](const ControllerPlanning& each) { return each.controller.number == number; });
    if (found == plan.controllers.end()) {
        part.fail("controller", std::to_string(number) + " is none of the plan's controllers");
    }
    return *found;
}

void readSteps(const Part& document, MachinePlan& plan) {
    const Part destroys = document.object("destroys");
    plan.consent = destroys.wordOrNull("consent");
    for (const Part& each : destroys.objects("items", mostPlanLines)) {
        Loss loss = readLoss(each);
        controllerOf(plan, loss.controller, each).losses.push_back(std::move(loss));
    }
    const bool hasSteps = document.has("steps");
    if (hasSteps != plan.isApplicable()) {
        document.fail("steps", hasSteps ? "stand in a plan that has faults" : "is missing");
    }
    if (hasSteps) {
        for (const Part& each : document.objects("steps", mostPlanSteps)) {
            PlanStep step = readStep(each);
            controllerOf(plan, step.controller, each).steps.push_back(std::move(step));
        }
    }
}

void readPolicies(const Part& document, MachinePlan& plan) {
    const Part policies = document.object("policies");
    plan.policiesFile = policies.textOrNull("file");
    plan.policiesHash = policies.hashOrNull("sha256");
    plan.policiesCount = policies.number<std::size_t>("count");
    plan.policiesFindings = readDiagnostics(policies, "diagnostics");
}

void readId(const Part& document, MachinePlan& plan) {
    constexpr std::string_view name = "plan_id";
    constexpr std::string_view prefix = "p-";
    constexpr std::size_t digits = 12;
    plan.id = document.wordOrNull(name);
    const bool isId =
        plan.id.starts_with(prefix) && isHexadecimal(plan.id.substr(prefix.size()), digits);
    if (!isId && !document.isNull(name)) {
        document.fail(name, "is not \"p-\" and twelve hexadecimal digits");
    }
}

void readDocument(const Part& document, PlanReading& reading) {
    checkFormat(document, "zolex-plan", "plan");
    reading.head.argv = document.object("tool").texts("argv", mostPlanLines);
    reading.head.madeAt = document.word("made_at");
    MachinePlan plan;
    readId(document, plan);
    if (!document.isNull("fingerprint")) {
        plan.fingerprint = readFingerprint(document);
    }
    plan.machineSource = document.textOrNull("machine_source");
    readPolicies(document, plan);
    plan.diagnostics = readDiagnostics(document, "diagnostics");
    for (const Part& each : document.objects("controllers", mostPlanControllers)) {
        plan.controllers.push_back(readPlanning(each));
    }
    readSteps(document, plan);
    plan.rehearsal = readRehearsal(document);
    const Part old = document.object("old_command");
    plan.oldCommand.wouldRun = old.texts("would_run", mostPlanLines);
    plan.oldCommand.differences = old.texts("differences", mostPlanLines);
    plan.accepted = document.words("accepted", mostPlanLines);
    if (!plan.policiesFile.empty() && !plan.policiesFile.starts_with('<')) {
        PlanRequest again;
        again.policiesFile = plan.policiesFile;
        plan.command = planCommand(again, plan.accepted);
    }
    plan.coreMessages = document.texts("core_messages", mostPlanLines);
    checkPlan(plan, document);
    reading.plan = std::move(plan);
}

} // namespace

PlanReading readPlanDocument(std::string_view text, std::string_view fileName) {
    if (text.size() > mostPlanBytes) {
        return {std::nullopt, {}, {tooLargeFinding(fileName, planCodes, mostPlanBytes)}};
    }
    PlanReading reading;
    try {
        const Json document = parseDocument(text);
        readDocument(Part(document), reading);
    } catch (const DocumentFault& fault) {
        reading = {std::nullopt, {}, {findingOf(fault, planCodes, text, fileName)}};
    }
    return reading;
}

PlanReading readPlanFile(FileSystem& files, const std::string& name) {
    FileBytes bytes = readBytes(files, name, planCodes, mostPlanBytes);
    if (!bytes.findings.empty()) {
        return {std::nullopt, {}, std::move(bytes.findings)};
    }
    PlanReading reading = readPlanDocument(bytes.text, name);
    reading.hash = sha256(bytes.text);
    return reading;
}

} // namespace zolex::companion
