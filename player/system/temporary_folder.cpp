#include "player/system/temporary_folder.h"

#include <stdlib.h>

#include <filesystem>

namespace ostrevan::system {

std::optional<temporary_folder> temporary_folder::in(const std::string& parent) {
    std::string path = parent + "/ostrevan-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) return std::nullopt;
    std::error_code ignored;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all, ignored);  // whatever the umask
    return temporary_folder(std::move(path));
}

temporary_folder::~temporary_folder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

}  // namespace ostrevan::system
