#include "platform/win32/SystemPciFolders.h"

#include <cstdio>
#include <windows.h>

namespace zolex::win32 {

namespace {

/// A search over a folder; it is closed when this object goes.
class Search {
  public:
    explicit Search(const std::string& folder)
        : handle_(FindFirstFileA((folder + "\\*").c_str(), &found_)) {}
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search() {
        if (isOpen()) {
            FindClose(handle_);
        }
    }

    [[nodiscard]] bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    /// Name of the current entry, while there is one.
    [[nodiscard]] const char* name() const { return found_.cFileName; }
    bool next() { return FindNextFileA(handle_, &found_) != 0; }

  private:
    WIN32_FIND_DATAA found_{};
    HANDLE handle_;
};

struct StreamCloser {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

class SystemPciFolders : public PciFolders {
  public:
    std::vector<std::string> entries(const std::string& folder) override {
        std::vector<std::string> names;
        Search search(folder);
        for (bool more = search.isOpen(); more; more = search.next()) {
            names.emplace_back(search.name());
        }
        return names;
    }

    std::string start(const std::string& file, std::size_t most) override {
        const std::unique_ptr<std::FILE, StreamCloser> opened(std::fopen(file.c_str(), "rb"));
        std::string bytes(most, '\0');
        bytes.resize(opened ? std::fread(bytes.data(), 1, bytes.size(), opened.get()) : 0);
        return bytes;
    }
};

} // namespace

std::unique_ptr<PciFolders> makeSystemPciFolders() {
    return std::make_unique<SystemPciFolders>();
}

} // namespace zolex::win32
