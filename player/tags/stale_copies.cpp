#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>

#include "player/tags/copy_name.h"
#include "player/tags/working_copy.h"

namespace ostrevan::tags {
namespace {

bool is_alive(const process_identity& maker) {
    const auto now = identity_of(maker.number);
    return now && (now->started == maker.started || now->started == 0 || maker.started == 0);
}

/// A lock outlives no process, and reaches other machines and containers that share the folder.
bool remove_unlocked(const std::string& path) {
    const descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return file && flock(file.get(), LOCK_EX | LOCK_NB) == 0 && unlink(path.c_str()) == 0;
}

}  // namespace

std::size_t remove_stale_copies(const std::string& folder) noexcept try {
    std::size_t removed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const auto maker = maker_of_copy(entry.path().filename().string());
        if (maker && !is_alive(*maker) && entry.is_regular_file() && !entry.is_symlink() &&
            remove_unlocked(entry.path().string()))
            ++removed;
    }
    return removed;
} catch (const std::exception&) {
    return 0;
}

}  // namespace ostrevan::tags
