#include "player/services/clipboard_service.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "player/core/main_loop.h"
#include "player/system/descriptor.h"
#include "player/system/durable_file.h"
#include "player/system/endian.h"

namespace ostrevan::services {
namespace {

constexpr std::size_t length_size = 4;

/// At most `limit` bytes of the file; none when it is not this user's own regular file.
std::optional<std::string> read_private(const std::string& path, std::size_t limit) {
    const system::descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) return std::nullopt;
    std::optional<std::string> content;
    struct stat status {};
    if (::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) && system::is_private(status)) {
        content.emplace();
        std::array<char, 64 * 1024> block;
        while (content->size() < limit) {
            const auto size = ::read(file.get(), block.data(), std::min(block.size(), limit - content->size()));
            if (size < 0) content.reset();
            if (size <= 0) break;
            content->append(block.data(), static_cast<std::size_t>(size));
        }
    }
    return content;
}

std::string header_of(std::string_view format) {
    return system::as_little_endian(format.size(), length_size).append(format);
}

}  // namespace

bool clipboard_service_impl::has_format(const char* format) const {
    core::check_main_thread("clipboard_service::has_format");
    const auto header = header_of(format);
    const auto content = read_private(file_path(), header.size());
    return content && *content == header;
}

bool clipboard_service_impl::get(const char* format, std::vector<std::uint8_t>& bytes) const {
    core::check_main_thread("clipboard_service::get");
    constexpr std::size_t largest = std::size_t{1} << 30;
    const auto header = header_of(format);
    const auto content = read_private(file_path(), largest);
    if (!content || !content->starts_with(header)) return false;
    bytes.assign(content->begin() + static_cast<std::ptrdiff_t>(header.size()), content->end());
    return true;
}

void clipboard_service_impl::set(const char* format, std::span<const std::uint8_t> bytes) {
    core::check_main_thread("clipboard_service::set");
    struct stat status {};
    ::mkdir(folder_.c_str(), 0700);
    if (::lstat(folder_.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || !system::is_private(status))
        throw std::runtime_error(
            "The clipboard folder " + folder_ +
            " is not a folder of this user alone. Remove it, or set XDG_RUNTIME_DIR to a private folder.");
    system::replace_file(file_path(), header_of(format).append(bytes.begin(), bytes.end()), 0600);
}

}  // namespace ostrevan::services
