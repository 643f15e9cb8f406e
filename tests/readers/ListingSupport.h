#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zolex::test {

/// How a listing is read: by the reader of a controller type, under these settings.
struct ListingOptions {
    std::int32_t type = -1;
    bool capture = true;
    bool debug = false;
    std::int32_t verbosity = 3;
};

/// What reading a listing came to.
struct ListingResult {
    bool read = false;
    std::string output; ///< what was printed
    /// What the controller holds, one line for each thing: first "controller", then "drive",
    /// "settings", "array", "logical" and "spare" lines. Fields that were never set are left out.
    std::vector<std::string> lines;

    /// The lines that begin with `word`, without it.
    [[nodiscard]] std::vector<std::string> of(const std::string& word) const;
    /// "true d=3 a=1 l=1 s=1": the result and the number of drives, arrays, logical drives, spares.
    [[nodiscard]] std::string summary() const;
};

/// Reads captured outputs into a fresh controller.
ListingResult readListing(const ListingOptions& options, const std::vector<std::string>& outputs);
ListingResult readListing(const ListingOptions& options, const std::string& output);

/// Printed text without the lines that trace each line read ("ARCReader::nextLine:...").
std::string withoutLineTraces(const std::string& output);

/// The text with its first `from` replaced by `to`; a failure when there is none.
std::string replaced(std::string text, const std::string& from, const std::string& to);

/// One line of a listing whose loss (or doubling) changes the result, and how: "false" when reading
/// fails, a "-" line for each line of the result that is gone, a "+" line for each that is new. The
/// order does not matter.
struct LineEffect {
    std::size_t line; ///< number of the line in the listing, from 1
    std::vector<std::string> difference;
};

/// A "Device #" block of a sample listing, and what is made of it.
struct DeviceBlock {
    std::size_t heading; ///< number of its first line
    std::string position;
    std::string size;
    std::string serialNumber;
    std::string state;    ///< "Online/GOOD"
    std::string location; ///< empty when the utility prints none
    bool used = false;
    bool spare = false;

    /// The "drive" line of the result.
    [[nodiscard]] std::string drive() const;
};

/// Where the lines of a block stand that its drive is made of, counted from its heading; 0 for a
/// line that there is not.
struct DeviceLines {
    std::size_t kind;
    std::size_t state;
    std::size_t position;
    std::size_t location;
    std::size_t serialNumber;
    std::size_t size;
};

/// What the loss of each line of a block does.
std::vector<LineEffect> effectsOfLostLines(const DeviceBlock& block, const DeviceLines& lines);

/// Reads the listing once for each of its lines, with that line left out. The result is that of the
/// whole listing, but for the lines of `effects`.
void expectLostLines(const ListingOptions& options, const std::string& listing,
                     const std::vector<LineEffect>& effects);
/// The same with the line twice.
void expectDoubledLines(const ListingOptions& options, const std::string& listing,
                        const std::vector<LineEffect>& effects);

/// From how many whole lines on a cut listing gives a result, as ListingResult::summary says it.
struct CutResult {
    std::size_t lines;
    std::string summary;
};

/// Reads the listing cut off at every byte. A line that is cut is as good as not there, and the
/// number of whole lines decides the result; `results` begins at 0 lines and rises.
void expectCuts(const ListingOptions& options, const std::string& listing,
                const std::vector<CutResult>& results);

/// Reads the listing with CR LF for every LF, with the same result.
void expectSameWithCrLf(const ListingOptions& options, const std::string& listing);

} // namespace zolex::test
