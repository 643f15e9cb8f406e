#pragma once

#include "support/FakePlatform.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::test {

/// What a run asks of its platform and what may fail there.
enum class Operation {
    open,
    create, ///< a new file cannot be made
    lock,   ///< another run has the file locked
    read,
    readInPart, ///< half of the bytes come, then the error
    write,
    writeInPart, ///< half of the bytes are taken
    rewind,
    flush, ///< of bytes that wait; half of them arrive
    close, ///< likewise, when the program closes the file itself
    remove,
    pipe,     ///< a child's pipe cannot be made
    start,    ///< a child cannot be started
    limit,    ///< a child does not end in time
    exitCode, ///< a child ends with refusedExitCode
    handles,  ///< a child has ended, but its handles cannot be closed
    registryOpen,
    registrySubkey,
    registryValue,
};
inline constexpr std::size_t operations = 19;

/// An exit code that no controller type accepts.
inline constexpr std::uint32_t refusedExitCode = 77;

/// The call of a kind that fails.
struct Fault {
    Operation operation = Operation::open;
    int number = 0;       ///< from 1; 0: none fails
    bool lasting = false; ///< the calls of this kind after it fail too
};

/// A fake platform whose calls are counted and fail on demand. What its files are asked to write
/// waits in a buffer, as streams keep it. PCI functions come through the registry.
class FaultPlatform : public Platform {
  public:
    FaultPlatform(FakePlatform& fake, Fault fault);
    ~FaultPlatform() override;

    Console& console() override;
    FileSystem& files() override;
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override;
    void pauseOneSecond() override {}
    LocalTime localTime() override { return fake_.localTime(); }

    /// Counts a call on `target`; whether it fails.
    bool fails(Operation operation, std::string_view target);
    [[nodiscard]] int calls(Operation operation) const {
        return calls_[static_cast<std::size_t>(operation)];
    }

    /// The files, commands or keys of the calls that failed, in order.
    std::vector<std::string> struck;
    int openFiles = 0;
    int openKeys = 0;

  private:
    class Files;
    class FoldingConsole;

    FakePlatform& fake_;
    Fault fault_;
    std::array<int, operations> calls_{};
    std::unique_ptr<Files> files_;
    std::unique_ptr<FoldingConsole> console_;
};

} // namespace zolex::test
