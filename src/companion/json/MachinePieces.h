#pragma once

#include "companion/facts/Facts.h"
#include "companion/json/DocumentText.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/Snapshot.h"

#include <string_view>

/// What documents of machines and of plans have in common; for the files of this folder alone.
namespace zolex::companion {

/// What a drive does, in one word: "free", "member".
[[nodiscard]] std::string_view driveStateWord(DriveState state);
/// "None", "Global", "Dedicated".
[[nodiscard]] std::string_view hotspareWord(HotspareKind kind);
/// "OK", "Warning", "Critical"; empty when not known.
[[nodiscard]] std::string_view healthWord(Health health);

/// A text that not every utility tells: left out where it is empty.
void writeIfTold(DocumentText& out, std::string_view name, std::string_view text);
/// "status": {health, state} under that name.
void writeStatus(DocumentText& out, Health health, std::string_view state);
/// One drive as the next element of a list.
void writeDrive(DocumentText& out, const MachineDrive& drive);
/// "supported": {raid_types, strip_size_bytes}.
void writeSupported(DocumentText& out, const Facts& facts);
/// {algorithm, strength, identity, state}.
[[nodiscard]] Json fingerprintJson(const Fingerprint& fingerprint);
/// "fingerprint": the same under that name.
void writeFingerprint(DocumentText& out, const Fingerprint& fingerprint);
/// A list of diagnostics under a name.
void writeDiagnostics(DocumentText& out, std::string_view name,
                      const std::vector<Finding>& findings);

} // namespace zolex::companion
