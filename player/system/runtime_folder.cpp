#include "player/system/runtime_folder.h"

#include <unistd.h>

#include <cstdlib>

namespace ostrevan::system {

std::string runtime_folder() {
    if (const char* const own = std::getenv("XDG_RUNTIME_DIR"); own != nullptr && *own == '/')
        return std::string(own) + "/ostrevan";
    const auto user = std::to_string(::geteuid());
    const auto usual = "/run/user/" + user;
    struct stat status {};
    if (::stat(usual.c_str(), &status) == 0 && is_private(status)) return usual + "/ostrevan";
    return "/tmp/ostrevan-" + user;
}

bool is_private(const struct stat& status) noexcept {
    constexpr mode_t others = 077;
    return status.st_uid == ::geteuid() && (status.st_mode & others) == 0;
}

}  // namespace ostrevan::system
