#pragma once

#include "companion/families/Family.h"
#include "companion/families/md/DiskList.h"
#include "companion/families/md/MdCommands.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::md {

/// Carries out the lines of MdCommands.h. Right before mdadm is started to write on a drive, it is
/// looked at anew; what is refused ends with exit code `refused`, and mdadm is not started.
class MdHost {
  public:
    static constexpr std::uint32_t refused = 64;
    /// What is said of an array that was made in the place of the one that was meant.
    static constexpr std::string_view another = "it is another array of this name now";

    MdHost(const FamilyMachine& machine, DiskFiles* files, Roots roots = {})
        : machine_(machine), files_(files), roots_(std::move(roots)) {}

    [[nodiscard]] ChildResult run(std::string_view line, std::chrono::milliseconds limit);

  private:
    struct Refusal {
        std::vector<std::string> lines;
        bool mayPass = false; ///< another program looks at the drive for a moment
        std::string node;     ///< of the array that was judged; empty: it is not told to mdadm
        std::map<std::string, std::string, std::less<>> drives; ///< judged ones: id, kernel's name
    };

    [[nodiscard]] DiskList list(std::optional<std::vector<std::string>> whole = std::nullopt) const;
    [[nodiscard]] ChildResult mdadm(const std::vector<std::string>& arguments) const;
    [[nodiscard]] ChildResult create(const MdCommand& command);
    [[nodiscard]] ChildResult remove(const MdCommand& command);
    [[nodiscard]] ChildResult addSpare(const MdCommand& command);
    [[nodiscard]] ChildResult removeSpare(const MdCommand& command);
    [[nodiscard]] ChildResult zero(const std::vector<std::string>& ids, const std::string& uuid,
                                   bool areSpares);
    [[nodiscard]] Refusal whyNotWritten(const MdCommand& command, bool isNew) const;
    [[nodiscard]] std::vector<std::string> whyNotRemoved(const MdCommand& command,
                                                         const DiskList& list) const;
    template <typename Check>
    [[nodiscard]] ChildResult attempt(const std::vector<std::string>& arguments,
                                      const Check& check);
    void settle(const std::string& array) const;

    const FamilyMachine& machine_;
    DiskFiles* files_;
    Roots roots_;
    std::chrono::milliseconds limit_{0};
};

} // namespace zolex::companion::md
