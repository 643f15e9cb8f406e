#pragma once

#include "model/Server.h"
#include "setup/Init.h"

#include <string>
#include <vector>

namespace zolex_sim {

/// A file of a server's folder.
struct ServerFile {
    std::string name; ///< relative, with "/"
    std::string content;
    bool executable = false;
};

/// The PCI functions as a tree of files ("pci/0000:02:0e.0/vendor" and so on; for Windows, where no
/// name has a ":", "pci/0000-02-0e.0/vendor").
std::vector<ServerFile> pciTree(const Server& server, Target target);

/// The PCI functions as a registry file, "pci.reg".
ServerFile pciRegistry(const Server& server);

/// A registry file that removes what pciRegistry enters, "pci-remove.reg".
ServerFile pciRegistryRemoval(const Server& server);

/// The inventory of the same controllers and drives, "contlist.ini".
ServerFile inventory(const Server& server);

/// Policies that fit this server, "sample-policies.ini": those of a controller use its free drives,
/// or all of them where none is free.
ServerFile samplePolicies(const Server& server);

/// Whether they ask for drives that are free only after a reset: a controller has no other.
bool samplePoliciesNeedReset(const Server& server);

/// The names of the utilities of today that the server's controllers are driven by: "storcli64",
/// "perccli64".
std::vector<std::string> utilitiesOfToday(const Server& server);

/// The scripts that start the program in its roles. None is needed on Windows for a role whose
/// program is a copy of this one.
std::vector<ServerFile> launchers(const Server& server, Target target);

/// The drives that a run of zolex counts, in its order: enclosures in the order in which drives
/// name them (four at most), in each the slots 0 to 35.
std::vector<const Drive*> countedDrives(const Controller& controller);

} // namespace zolex_sim
