#pragma once

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace zolex::e2e {

/// Whether it is a definition, and no name of a sample.
inline bool isDefinition(std::string_view text) {
    return text.starts_with('{');
}

/// A virtual server on which zolexctl runs, whose state no run of it may change. Its firmware tells
/// nothing.
class PlannedServer : public VirtualServer {
  public:
    /// Of a sample by its name, or of a definition (a text that begins with "{").
    explicit PlannedServer(const std::string& what)
        : VirtualServer(isDefinition(what) ? what : std::string()) {
        environment["ZOLEX_DMI_ROOT"] = (folder() / "dmi").string();
        EXPECT_TRUE(isReady());
        if (!isDefinition(what)) {
            EXPECT_EQ(simulator({"init", ".", "--sample", what}).exitCode, 0) << what;
        }
    }

    /// Runs zolexctl, with CFGGEN's pauses left out.
    ProgramRun zolexctl(const std::vector<std::string>& arguments) {
        const std::string before = read("state.json");
        const bool pauses = read("server.json").find("\"CFGGEN") != std::string::npos;
        ProgramRun run = start(pauses ? ZOLEXCTL_UNPAUSED_PROGRAM : ZOLEXCTL_PROGRAM, arguments);
        EXPECT_EQ(read("state.json"), before) << "a reading command has changed the server";
        return run;
    }

    /// Restores the controllers and deploys policies with zolex.
    void deploy(const std::string& policies) {
        const ProgramRun run = zolex({"/r", "/y", "/f:" + policies});
        EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    }
};

/// The definition of a server with one LSI-MegaRAID-8480 with these drives.
inline std::string megaServer(const std::string& drives, const std::string& more = "") {
    return R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [{
        "utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)" +
           drives + "]}]" + more + "}";
}

/// Eight equal drives.
inline constexpr const char* eightDrives =
    R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376})";

/// A mirror, a RAID 5 and a spare on eight drives.
inline constexpr const char* webPolicies = "[Policy.web]\n"
                                           "AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
                                           "Array_Mode = CUSTOM\n"
                                           "Array.A = 1,2\n"
                                           "Array.B = 3,4,5,6,7\n"
                                           "Hotspares = 8\n"
                                           "Logical_Mode = CUSTOM\n"
                                           "Logical.1 = A:FILL:1:ON\n"
                                           "Logical.2 = B:FILL:5:ON\n";

/// The text with one piece in the place of another that is in it.
inline std::string with(std::string text, std::string_view piece, std::string_view other) {
    const std::size_t at = text.find(piece);
    EXPECT_NE(at, std::string::npos) << piece;
    return at == std::string::npos ? text : text.replace(at, piece.size(), other);
}

/// The text without what two runs of the same need not have in common.
inline std::string withoutTimesOfPlan(const std::string& document) {
    std::string result;
    for (std::size_t at = 0; at < document.size();) {
        const std::size_t end = document.find('\n', at);
        const std::string line = document.substr(at, end - at + 1);
        at = end == std::string::npos ? document.size() : end + 1;
        const bool varies = line.find("\"made_at\": ") != std::string::npos ||
                            line.find("\"plan_id\": ") != std::string::npos ||
                            line.find("\"duration_ms\": ") != std::string::npos;
        result += varies ? "" : line;
    }
    return result;
}

/// The values of the lines `"name": "value"` of a document, with single blanks.
inline std::vector<std::string> valuesOf(const std::string& document, const std::string& name) {
    std::vector<std::string> values;
    for (std::string line : linesAfter(document, "")) {
        const std::string start = "\"" + name + "\": \"";
        const std::size_t at = line.find(start);
        if (at == std::string::npos) {
            continue;
        }
        line = line.substr(at + start.size());
        line = line.substr(0, line.rfind('"'));
        std::string value;
        for (const char c : line) {
            if (c != ' ' || (!value.empty() && value.back() != ' ')) {
                value += c;
            }
        }
        while (value.ends_with(' ')) {
            value.pop_back();
        }
        values.push_back(value);
    }
    return values;
}

/// Expects each piece in the text, in this order.
inline void expectPieces(const std::string& text, const std::vector<std::string>& pieces) {
    std::size_t at = 0;
    for (const std::string& piece : pieces) {
        const std::size_t found = text.find(piece, at);
        EXPECT_NE(found, std::string::npos) << "\"" << piece << "\" is not in\n" << text;
        at = found == std::string::npos ? at : found + piece.size();
    }
}

/// Every sample; together they have all seven utilities.
inline std::vector<std::string> sampleNames() {
    return {"single", "enclosures", "two-controllers", "later",       "configured", "arcconf",
            "hrconf", "qtcsend",    "cfggen",          "cfggen-scsi", "hyperwin",   "mixed"};
}

/// A server with eight equal drives.
inline std::string eight() {
    return megaServer(eightDrives);
}

/// Pairs of drives as arrays, each a mirror.
inline std::string mirrors(int count, const std::string& spares) {
    std::string text = "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n";
    for (int i = 0; i < count; ++i) {
        text += std::string("Array.") + static_cast<char>('A' + i) + " = " +
                std::to_string(2 * i + 1) + "," + std::to_string(2 * i + 2) + "\n";
    }
    text += "Hotspares = " + spares + "\nLogical_Mode = CUSTOM\n";
    for (int i = 0; i < count; ++i) {
        text += "Logical." + std::to_string(i + 1) + " = " + static_cast<char>('A' + i) +
                ":FILL:1:ON\n";
    }
    return text;
}

} // namespace zolex::e2e
