#include "player/sqlite/reading_copy.h"

#include <stdlib.h>

#include <filesystem>
#include <vector>

namespace ostrevan::sqlite {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> temporary_folders() {
    std::vector<std::string> folders;
    std::error_code error;
    if (const auto usual = fs::temp_directory_path(error); !error) folders.push_back(usual.string());
    if (const char* const own = ::getenv("XDG_RUNTIME_DIR"); own != nullptr && *own == '/') folders.emplace_back(own);
    folders.emplace_back("/dev/shm");
    return folders;
}

/// Returns true when there is no such file: the log may be missing.
bool copy_if_there(const std::string& from, const std::string& to) {
    std::error_code error;
    if (!fs::exists(from, error)) return !error;
    return fs::copy_file(from, to, error) && !error;
}

}  // namespace

std::optional<reading_copy> reading_copy::of(const std::string& database) {
    std::error_code error;
    if (const auto size = fs::file_size(database, error); error || size == 0) return std::nullopt;
    for (const auto& parent : temporary_folders()) {
        auto folder = system::temporary_folder::in(parent);
        if (!folder) continue;
        reading_copy copy(std::move(*folder));
        if (!copy_if_there(database, copy.file()) || !copy_if_there(database + "-wal", copy.file() + "-wal")) continue;
        // The copies have the modes of the originals.
        for (const auto& each : fs::directory_iterator(fs::path(copy.file()).parent_path(), error))
            fs::permissions(each.path(), fs::perms::owner_read | fs::perms::owner_write, error);
        return copy;
    }
    return std::nullopt;
}

}  // namespace ostrevan::sqlite
