#pragma once

#include "model/AtomicFile.h"
#include "model/Fields.h"
#include "model/Server.h"

#include <filesystem>
#include <utility>

namespace zolex_sim {

/// A folder that holds a server: its definition ("server.json") and its state ("state.json").
/// Without a state file the server is in its initial state.
class ServerFolder {
  public:
    explicit ServerFolder(std::filesystem::path folder, StepFailure fails = {})
        : folder_(std::move(folder)), fails_(std::move(fails)) {}

    /// The server as the files describe it; a fault is reported with the file's name.
    [[nodiscard]] Server load(Problem& problem) const;

    /// Replaces the state file in one step; a failure is reported and leaves the old one.
    void save(const Server& server, Problem& problem) const;

    [[nodiscard]] std::filesystem::path definitionFile() const { return folder_ / "server.json"; }
    [[nodiscard]] std::filesystem::path stateFile() const { return folder_ / "state.json"; }

    static constexpr std::size_t maxFileSize = std::size_t{16} << 20; ///< bytes

  private:
    std::filesystem::path folder_;
    StepFailure fails_;
};

} // namespace zolex_sim
