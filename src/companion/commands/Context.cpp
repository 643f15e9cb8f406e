#include "companion/commands/Context.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/text/OutputFile.h"

#include <cstdio>
#include <utility>

namespace zolex::companion {

namespace {

bool checkOutput(Context& context, const std::string& reason) {
    if (std::ferror(stdout) == 0) {
        return true;
    }
    std::clearerr(stdout);
    failWith(context, "standard output could not be written" + reason);
    return false;
}

} // namespace

bool outputIsWritten(Context& context) {
    return checkOutput(context, {});
}

bool deliver(Context& context, std::string_view output) {
    if (context.outputFile.empty() || context.outputFile == "-") {
        context.platform.console().writeOutput(output);
        return std::ferror(stdout) == 0 || checkOutput(context, ": " + lastSystemError());
    }
    const std::string error = replaceFile(context.platform.files(), context.outputFile, output);
    if (!error.empty()) {
        failWith(context, error, "name another file with -o; nothing was written");
    }
    return error.empty();
}

int failWith(Context& context, std::string_view what, std::string_view help) {
    Finding failure = problemFinding(problem::commandFailed, std::string(what));
    failure.help.clear();
    if (!help.empty()) {
        failure.help.emplace_back(help);
    }
    context.failures.push_back(std::move(failure));
    std::string text = emphasized("error:", Emphasis::bad, context.errorStyle);
    text.append(" ").append(what).append("\n");
    if (!help.empty()) {
        text += "  " + emphasized("help:", Emphasis::heading, context.errorStyle) + " ";
        text.append(help).append("\n");
    }
    context.platform.console().writeError(text);
    return exit_code::notPossible;
}

} // namespace zolex::companion
