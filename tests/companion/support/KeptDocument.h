#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace zolex::companion::test {

/// Keeps a JSON document that a test has made in the folder of the variable ZOLEX_DOCUMENTS, where
/// it is held against its schema when the tests have run. `name` is the kind and what the document
/// is of: "check-sample"; JSON lines have a name with its ending, "record.zrec". Without the
/// variable, as when the program is started by hand, nothing is kept.
inline void keepDocument(const std::string& name, const std::string& text) {
    const char* folder = std::getenv("ZOLEX_DOCUMENTS");
    if (folder == nullptr || *folder == '\0') {
        return;
    }
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::string path =
        std::string(folder) + "/" + name + (name.find('.') == std::string::npos ? ".json" : "");
    if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
    }
}

} // namespace zolex::companion::test
