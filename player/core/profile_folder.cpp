#include "player/core/profile_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace ostrevan::core {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kept_names[] = {"backup", "configuration.json", "crash.log", "index.sqlite", "library.sqlite",
                                           "lock",   "window.json"};
constexpr std::string_view put_there_by_the_user = "PlaybackStatistics.dat";

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw std::runtime_error("Cannot make the profile folder " + path + ": " + reason + ". Choose another with --profile.");
}

/// Removes all rights of others. A failure is ignored: the profile may be on a read-only disk.
void keep_to_user(const fs::path& path) {
    constexpr mode_t others = 077;
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode) || status.st_uid != ::geteuid()) return;
    if ((status.st_mode & others) != 0) (void)!::chmod(path.c_str(), status.st_mode & 07777 & ~others);
}

void keep_to_user_below(const fs::path& folder) {
    std::error_code ignored;
    bool is_profile_only = true;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        const auto name = entry.path().filename().string();
        if (std::ranges::any_of(kept_names, [&](std::string_view kept) { return name.starts_with(kept); })) {
            keep_to_user(entry.path());
            if (name == "backup")
                for (const auto& copy : fs::directory_iterator(entry.path(), ignored)) keep_to_user(copy.path());
        } else if (name != put_there_by_the_user) {
            is_profile_only = false;
        }
    }
    if (is_profile_only) keep_to_user(folder);
}

}  // namespace

const std::string& prepare_profile(const std::string& path) {
    if (path.empty())
        throw std::runtime_error(
            "There is no folder for the profile: HOME is not set to an absolute path. Name one with --profile.");
    std::error_code error;
    const auto parent = fs::path(path).parent_path();
    if (!parent.empty()) fs::create_directories(parent, error);
    constexpr mode_t user_only = 0700;
    if (::mkdir(path.c_str(), user_only) == 0) return path;
    const int reason = errno;
    if (!fs::is_directory(path, error)) fail(path, std::system_category().message(reason == EEXIST ? ENOTDIR : reason));
    keep_to_user_below(path);
    return path;
}

}  // namespace ostrevan::core
