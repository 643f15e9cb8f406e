#pragma once

#include "companion/execution/Certificate.h"
#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "foundation/FileSystem.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The document `zolex-certificate`: what a run that ended as planned has left on a machine.
namespace zolex::companion {

/// Bytes of the largest document that is read.
inline constexpr std::size_t mostCertificateBytes = std::size_t{64} << 20U;

/// The document; its made_at is the certificate's where that has one. Texts that are not UTF-8
/// come with U+FFFD.
[[nodiscard]] std::string certificateDocument(const Certificate& certificate,
                                              const DocumentHead& head);

/// What came of reading a certificate.
struct CertificateReading {
    std::optional<Certificate> certificate; ///< nothing: it cannot be read; `findings` says why
    DocumentHead head;
    std::vector<Finding> findings; ///< at most one: an error
};

/// Reads the text of a document. Names that a later minor version may have added are passed over.
/// Nothing in it is trusted.
[[nodiscard]] CertificateReading readCertificate(std::string_view text, std::string_view fileName);

/// Reads the document in a file. One that cannot be read, or is larger than mostCertificateBytes,
/// is a finding too.
[[nodiscard]] CertificateReading readCertificateFile(FileSystem& files, const std::string& name);

} // namespace zolex::companion
