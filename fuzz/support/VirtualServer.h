#pragma once

#include "model/Server.h"
#include "platform/Platform.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <string>
#include <string_view>

namespace zolex::fuzz {

/// A sample of the virtual server whose utilities are played in process. A script of choices turns
/// what they answer into what a faulty or unknown utility could answer.
class VirtualServer {
  public:
    /// The sample is chosen by number. `script` is used up by the children, `texts` by those
    /// answers that need a text.
    VirtualServer(unsigned sample, std::string_view script, Input& texts);

    /// The PCI functions of the server.
    [[nodiscard]] std::vector<PciDevice> devices() const;
    /// Policies that fit it.
    [[nodiscard]] std::string policies() const;
    /// Its inventory file.
    [[nodiscard]] std::string inventory() const;

    /// Runs one child.
    ChildResult run(std::string_view commandLine);

  private:
    [[nodiscard]] ChildResult play(std::string_view commandLine);
    void change(ChildResult& result);

    zolex_sim::Server server_;
    Input script_;
    Input& texts_;
};

/// What a listing becomes by a few edits of its lines: some are left out, doubled, cut, joined with
/// the next, replaced. Choices come from `script`, new lines from `texts`.
std::string edited(std::string_view listing, Input& script, Input& texts);

} // namespace zolex::fuzz
