#include "player/tags/copy_name.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <fstream>

#include "nuv/text.h"

namespace ostrevan::tags {
namespace {

constexpr std::string_view prefix = ".ostrevan-";

/// Reads a hexadecimal number and what must follow it; answers whether both were there.
bool take_number(std::string_view& text, char end, std::uint64_t& number) noexcept {
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
    const auto used = static_cast<std::size_t>(stop - text.data());
    if (error != std::errc() || used >= text.size() || text[used] != end) return false;
    text.remove_prefix(used + 1);
    return true;
}

/// Field 22 of the process's status line, counted behind the name in parentheses, which may hold anything.
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

}  // namespace

std::optional<process_identity> identity_of(pid_t number) {
    if (kill(number, 0) != 0 && errno == ESRCH) return {};
    return process_identity{number, start_time_of(number)};
}

std::string next_copy_name(std::string_view original) {
    static std::atomic<unsigned> counter{0};
    const pid_t process = getpid();
    const auto name = nuv::file_name_of(original);
    const auto dot = name.rfind('.');
    char text[80];
    std::snprintf(text, sizeof text, ".ostrevan-%lx-%llx-%x", static_cast<unsigned long>(process),
                  static_cast<unsigned long long>(start_time_of(process)), counter.fetch_add(1));
    return text + std::string(dot == std::string_view::npos ? std::string_view(".tmp") : name.substr(dot));
}

std::optional<process_identity> maker_of_copy(std::string_view name) noexcept {
    if (!name.starts_with(prefix)) return {};
    name.remove_prefix(prefix.size());
    std::uint64_t process = 0, started = 0, counter = 0;
    if (!take_number(name, '-', process) || !take_number(name, '-', started) || !take_number(name, '.', counter)) return {};
    if (name.empty() || name.find('.') != name.npos || process == 0 || process > 0x7FFFFFFF) return {};
    return process_identity{static_cast<pid_t>(process), started};
}

}  // namespace ostrevan::tags
