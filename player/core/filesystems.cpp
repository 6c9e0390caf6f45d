#include "player/core/filesystems.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "nuv/text.h"
#include "ostrevan/exceptions.h"
#include "player/core/local_file.h"

namespace ostrevan {
namespace {

constexpr std::string_view network_protocols[] = {"http", "https", "ftp", "ftps", "rtsp", "rtmp", "mms", "icy"};

/// What stands before "://"; empty for a plain path.
std::string_view protocol_of(std::string_view path) noexcept {
    const auto end = path.find("://");
    return end == std::string_view::npos ? std::string_view{} : path.substr(0, end);
}

[[noreturn]] void not_spoken(const char* path) {
    throw ostrevan_io::exception_io_no_handler_for_path(std::string(path) +
                                                        ": this player reaches no files over the network");
}

}  // namespace

bool is_local_path(std::string_view path) noexcept {
    const auto protocol = protocol_of(path);
    return protocol.empty() || nuv::equal_ascii_nocase(protocol, "file");
}

std::string local_path(std::string_view path) {
    const auto protocol = protocol_of(path);
    return std::string(protocol.empty() ? path : path.substr(protocol.size() + std::string_view("://").size()));
}

bool local_filesystem::is_our_path(const char* path) const noexcept { return is_local_path(path); }

bool network_filesystem::is_our_path(const char* path) const noexcept {
    return std::ranges::any_of(network_protocols,
                               [&](std::string_view known) { return nuv::equal_ascii_nocase(protocol_of(path), known); });
}

file_ptr network_filesystem::open(const char* path, open_mode /*mode*/) { not_spoken(path); }
bool network_filesystem::exists(const char* path) { not_spoken(path); }
void network_filesystem::remove(const char* path) { not_spoken(path); }

file_ptr local_filesystem::open(const char* path, open_mode mode) {
    return mode == open_mode::read ? open_local_file(local_path(path), mode)
                                   : open_new_file(local_path(path), on_unfinished_);
}

bool local_filesystem::exists(const char* path) {
    std::error_code error;
    return std::filesystem::exists(local_path(path), error);
}

void local_filesystem::remove(const char* path) {
    const auto local = local_path(path);
    if (::unlink(local.c_str()) != 0) throw_io_error(local + " cannot be removed", errno);
}

}  // namespace ostrevan
