#include "player/services/filesystem.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "nuv/text.h"
#include "ostrevan/exceptions.h"
#include "player/services/local_file.h"
#include "player/services/new_file.h"
#include "player/system/local_path.h"

namespace ostrevan::services {
namespace {

constexpr std::string_view network_protocols[] = {"http", "https", "ftp", "ftps", "rtsp", "rtmp", "mms", "icy"};

[[noreturn]] void not_spoken(const char* path) {
    throw ostrevan_io::exception_io_no_handler_for_path(std::string(path) +
                                                        ": this player reaches no files over the network");
}

}  // namespace

bool local_filesystem_impl::is_our_path(const char* path) const noexcept { return system::is_local_path(path); }

bool network_filesystem_impl::is_our_path(const char* path) const noexcept {
    return std::ranges::any_of(network_protocols, [&](std::string_view known) {
        return nuv::equal_ascii_nocase(system::protocol_of(path), known);
    });
}

file_ptr network_filesystem_impl::open(const char* path, open_mode /*mode*/) { not_spoken(path); }
bool network_filesystem_impl::exists(const char* path) { not_spoken(path); }
void network_filesystem_impl::remove(const char* path) { not_spoken(path); }

file_ptr local_filesystem_impl::open(const char* path, open_mode mode) {
    return mode == open_mode::read ? open_local_file(system::local_path(path), mode)
                                   : open_new_file(system::local_path(path), on_unfinished_);
}

bool local_filesystem_impl::exists(const char* path) {
    std::error_code error;
    return std::filesystem::exists(system::local_path(path), error);
}

void local_filesystem_impl::remove(const char* path) {
    const auto local = system::local_path(path);
    if (::unlink(local.c_str()) != 0) throw_io_error(local + " cannot be removed", errno);
}

}  // namespace ostrevan::services
