#pragma once

#include "companion/commands/Commands.h"
#include "companion/json/PlanDocument.h"
#include "companion/support/SimulatedPlatform.h"
#include "companion/support/SimulatedSystem.h"
#include "driver/ZOLEX.h"
#include "setup/ServerFiles.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// Runs of apply and reset over a virtual server in memory.
namespace zolex::companion::test {

/// Another one's system, as one's own.
class BorrowedSystem : public ExecutionSystem {
  public:
    explicit BorrowedSystem(ExecutionSystem& inner) : inner_(inner) {}
    std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                        const std::string& output) override {
        return inner_.start(commandLine, output);
    }
    void removeFolder(const std::string& output) override { inner_.removeFolder(output); }
    ProcessIdentity ownProcess() override { return inner_.ownProcess(); }
    bool isRunning(const ProcessIdentity& process) override { return inner_.isRunning(process); }
    Interruption interruption() override { return inner_.interruption(); }
    void sleep(std::chrono::milliseconds time) override { inner_.sleep(time); }
    std::chrono::milliseconds elapsed() override { return inner_.elapsed(); }
    std::string timestamp() override { return inner_.timestamp(); }
    std::string userName() override { return inner_.userName(); }
    LockAnswer lock(const std::string& name) override { return inner_.lock(name); }
    std::unique_ptr<DurableFile> makeDurable(const std::string& name) override {
        return inner_.makeDurable(name);
    }
    std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                               std::uint64_t keep) override {
        return inner_.reopenDurable(name, keep);
    }
    std::string commonFolder() override { return inner_.commonFolder(); }
    bool isLostAtRestart(const std::string& file) override {
        return isLost || inner_.isLostAtRestart(file);
    }

    bool isLost = false; ///< every file lies on a disk that a restart empties

  private:
    ExecutionSystem& inner_;
};

/// What a run shows.
struct ApplySeen {
    int exitCode = -1;
    std::string output;
    std::string error;
};

/// A server with policies for it, beside its utilities.
class ApplyTest : public testing::Test {
  protected:
    void SetUp() override { begin("single"); }

    /// Begins with another server.
    void begin(std::string_view sample) {
        server = std::make_unique<SimulatedPlatform>(sample);
        system = std::make_unique<SimulatedSystem>(*server);
        for (const char* const folder : {"./", ".\\"}) {
            files()[std::string(folder) + "UTIL.BAT"] = "";
            files()[std::string(folder) + "hwdetect.exe"] = "";
        }
        files()["site.ini"] = policies;
    }

    [[nodiscard]] std::map<std::string, std::string>& files() { return server->fileFake.files; }

    [[nodiscard]] Context contextOf(std::vector<std::string> argv) {
        Context context{*server, machine, format,         {}, style, style,
                        quiet,   verbose, std::move(argv)};
        context.canAsk = canAsk;
        context.rewritesLines = rewritesLines;
        context.makeExecution = [this](Platform&, const Utilities&) {
            auto borrowed = std::make_unique<BorrowedSystem>(*system);
            borrowed->isLost = isLost;
            return borrowed;
        };
        return context;
    }

    template <typename Run>
    ApplySeen seen(std::vector<std::string> argv, const Run& run) {
        const std::string typed = std::exchange(answer, {});
        server->consoleFake = {};
        server->consoleFake.answers = typed;
        Context context = contextOf(std::move(argv));
        const int exitCode = run(context);
        return {exitCode, server->consoleFake.output, server->consoleFake.error};
    }

    /// Keeps the plan of these policies as plan.json.
    void plan(const std::string& text = policies, const std::string& file = "plan.json") {
        files()["site.ini"] = text;
        const Format before = std::exchange(format, Format::json);
        PlanOptions options;
        options.file = "site.ini";
        const ApplySeen made = seen({"plan", "site.ini"}, [&](Context& context) {
            return companion::plan(context, options);
        });
        format = before;
        ASSERT_EQ(made.exitCode, 0) << made.output << made.error;
        files()[file] = made.output;
        const PlanReading reading = readPlanDocument(made.output, file);
        ASSERT_TRUE(reading.plan);
        consent = reading.plan->consent;
        planId = reading.plan->id;
    }

    ApplySeen apply(ApplyOptions options) {
        return seen({"apply", "plan.json"},
                    [&](Context& context) { return companion::apply(context, options); });
    }
    ApplySeen applyPlan(const std::string& destroy = {}) {
        ApplyOptions options;
        options.plan = "plan.json";
        if (!destroy.empty()) {
            options.destroy = destroyWishOf(destroy).value();
        }
        return apply(options);
    }
    ApplySeen resume() {
        ApplyOptions options;
        options.resume = "plan.journal.jsonl";
        return apply(options);
    }
    ApplySeen reset(const ApplyOptions& options) {
        return seen({"reset"},
                    [&](Context& context) { return companion::reset(context, options); });
    }

    /// Makes what policies ask for on the server.
    void configure() {
        plan();
        ASSERT_EQ(applyPlan().exitCode, 0);
        files().erase("plan.json");
        files().erase("plan.journal.jsonl");
        system->started.clear();
    }

    static constexpr const char* policies = "[Policy.web]\n"
                                            "AppliesTo.1 = ALL\n"
                                            "Array_Mode = CUSTOM\n"
                                            "Array.A = 1,2\n"
                                            "Array.B = 3,4,5\n"
                                            "Hotspares = 8\n"
                                            "Logical_Mode = CUSTOM\n"
                                            "Logical.1 = A:FILL:1:ON\n"
                                            "Logical.2 = B:FILL:5:ON\n";
    /// The same mirror, and a larger array in the place of the other.
    static constexpr const char* others = "[Policy.web]\n"
                                          "AppliesTo.1 = ALL\n"
                                          "Array_Mode = CUSTOM\n"
                                          "Array.A = 1,2\n"
                                          "Array.B = 3,4,5,6\n"
                                          "Hotspares = 8\n"
                                          "Logical_Mode = CUSTOM\n"
                                          "Logical.1 = A:FILL:1:ON\n"
                                          "Logical.2 = B:FILL:10:ON\n";

    std::unique_ptr<SimulatedPlatform> server;
    std::unique_ptr<SimulatedSystem> system;
    MachineOptions machine;
    Format format = Format::text;
    TextStyle style;
    bool quiet = false;
    bool verbose = false;
    bool canAsk = false;
    bool rewritesLines = false;
    bool isLost = false;
    std::string answer;  ///< what is typed in the next run
    std::string consent; ///< of the plan
    std::string planId;
};

} // namespace zolex::companion::test
