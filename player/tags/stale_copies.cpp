#include "player/tags/stale_copies.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "nuv/text.h"
#include "player/system/descriptor.h"

namespace ostrevan::tags {
namespace {

constexpr const char* prefix = ".ostrevan-";

/// Reads a hexadecimal number and the character after it; returns whether both were there.
bool take_number(std::string_view& text, char end, std::uint64_t& number) noexcept {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    const auto used = static_cast<std::size_t>(stop - text.data());
    if (error != std::errc() || used >= text.size() || text[used] != end) return false;
    text.remove_prefix(used + 1);
    return true;
}

/// Field 22 of the process's status line, counted after the name in parentheses, which may hold anything.
std::uint64_t start_time_of(pid_t number) {
    std::ifstream file("/proc/" + std::to_string(number) + "/stat");
    std::string line;
    std::getline(file, line);
    std::size_t at = line.rfind(')');
    for (int field = 2; field < 22 && at != std::string::npos; ++field) at = line.find(' ', at + 1);
    std::uint64_t ticks = 0;
    if (at != std::string::npos) std::from_chars(line.data() + at + 1, line.data() + line.size(), ticks);
    return ticks;
}

bool is_alive(const process_identity& maker) {
    if (kill(maker.number, 0) != 0 && errno == ESRCH) return false;
    const auto started = start_time_of(maker.number);
    return started == maker.started || started == 0 || maker.started == 0;
}

/// A lock ends with its process, and also holds for other machines and containers that share the folder.
bool remove_unlocked(const std::string& path) {
    const system::descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return file && flock(file.get(), LOCK_EX | LOCK_NB) == 0 && unlink(path.c_str()) == 0;
}

}  // namespace

std::string next_copy_name(std::string_view original) {
    static std::atomic<unsigned> counter{0};
    const pid_t process = getpid();
    const auto name = nuv::file_name_of(original);
    const auto dot = name.rfind('.');
    char text[80];
    std::snprintf(text, sizeof text, "%s%lx-%llx-%x", prefix, static_cast<unsigned long>(process),
                  static_cast<unsigned long long>(start_time_of(process)), counter.fetch_add(1));
    return text + std::string(dot == std::string_view::npos ? std::string_view(".tmp") : name.substr(dot));
}

std::optional<process_identity> maker_of_copy(std::string_view name) noexcept {
    if (!name.starts_with(prefix)) return {};
    name.remove_prefix(std::string_view(prefix).size());
    std::uint64_t process = 0, started = 0, counter = 0;
    if (!take_number(name, '-', process) || !take_number(name, '-', started) || !take_number(name, '.', counter)) return {};
    if (name.empty() || name.find('.') != name.npos || process == 0 || process > 0x7FFFFFFF) return {};
    return process_identity{static_cast<pid_t>(process), started};
}

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
