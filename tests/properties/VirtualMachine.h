#pragma once

#include "driver/ZOLEX.h"
#include "inventory/ControllerList.h"
#include "model/Server.h"
#include "support/FakePlatform.h"

#include <rapidcheck.h>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace zolex::properties {

inline constexpr std::size_t runCommands = 16; ///< of one deploy run
inline constexpr unsigned success = 0;
inline constexpr unsigned commandFailed = 11;

/// A model of controller with the utility that drives it, and what its virtual server needs.
struct Family {
    const char* model;
    const char* utility;
    const char* pci;                 ///< JSON of the PCI ids
    const char* extra;               ///< JSON of further fields; ends in a comma
    std::vector<std::string> levels; ///< that its class plans and its utility builds
};
const std::vector<Family>& families();

/// One drive of a virtual server: enclosure and slot, channel and device, or channel and id.
struct VirtualDrive {
    int group = 0;
    int place = 0;
    int sizeMb = 0;
    std::string status = "good";
};

struct VirtualController {
    std::size_t family = 0;
    bool later = false; ///< the later generation of listings, where there is one
    std::vector<VirtualDrive> drives;
};

/// A server without a configuration.
struct VirtualServer {
    std::vector<VirtualController> controllers;

    /// The definition that the virtual server is made from.
    [[nodiscard]] std::string definition() const;
};
std::ostream& operator<<(std::ostream& out, const VirtualServer& server);

/// One to four controllers of any kind with drives of mixed sizes, on few servers also with drives
/// that cannot be used. A controller of HYPERWIN comes last and at most once: before one of CFGGEN
/// it would shift the adapter numbers, and no command line names a second one.
rc::Gen<VirtualServer> virtualServers();

/// The program over the virtual server, in one process.
class VirtualMachine {
  public:
    explicit VirtualMachine(const VirtualServer& server);

    struct Command {
        std::string line;
        int exitCode = 0;
        std::string output;
    };

    /// What every controller is and has.
    unsigned capture(bool withConfiguration);
    /// Captures the configurations into policies, and returns their text.
    std::string capturePolicies();
    /// Deploys policies of this text: the exit code of the mode.
    unsigned deploy(const std::string& policies);

    zolex_sim::Server server;
    test::FakePlatform platform;
    ZOLEX application{platform};
    ControllerList controllers;
    /// The utility commands that ran since the last mode was started.
    std::vector<Command> commands;

  private:
    ChildResult respond(const std::string& commandLine);
};

} // namespace zolex::properties
