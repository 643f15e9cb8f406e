#include "model/ServerFolder.h"

#include "model/Definition.h"
#include "model/State.h"

#include <optional>
#include <system_error>

namespace zolex_sim {

Server ServerFolder::load(Problem& problem) const {
    const std::optional<std::string> definition = readFile(definitionFile(), maxFileSize);
    if (!definition) {
        problem.report("cannot read the definition file " + definitionFile().string());
        return {};
    }
    Problem fault;
    Server server = readDefinition(*definition, fault);
    if (fault.found()) {
        problem.report("definition file " + definitionFile().string() + ": " + fault.text());
        return {};
    }
    std::error_code error;
    if (!std::filesystem::exists(stateFile(), error) && !error) {
        return server;
    }
    const std::optional<std::string> state = readFile(stateFile(), maxFileSize);
    if (!state) {
        problem.report("cannot read the state file " + stateFile().string());
        return {};
    }
    readState(*state, server, fault);
    if (fault.found()) {
        problem.report("state file " + stateFile().string() +
                       " is damaged or does not fit the definition: " + fault.text());
        return {};
    }
    return server;
}

void ServerFolder::save(const Server& server, Problem& problem) const {
    if (!replaceFile(stateFile(), writeState(server), fails_)) {
        problem.report("cannot write the state file " + stateFile().string());
    }
}

} // namespace zolex_sim
