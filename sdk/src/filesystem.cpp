#include "ostrevan/filesystem.h"

#include <string>
#include <thread>

#include "ostrevan/core_api.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/input.h"

namespace ostrevan {
namespace {

/// The first service of a class that handles the path, or empty.
template <typename Service>
service_ptr_t<Service> handler_of(const char* path) {
    service_ptr_t<Service> found;
    for_each_service<Service>([&](Service& service) {
        if (!found && service.is_our_path(path)) found = service_ptr_t<Service>(&service);
    });
    return found;
}

/// Whether a failure can pass by itself.
bool may_pass(const ostrevan_io::exception_io& e) noexcept {
    return dynamic_cast<const ostrevan_io::exception_io_sharing_violation*>(&e) != nullptr ||
           dynamic_cast<const ostrevan_io::exception_io_denied*>(&e) != nullptr ||
           dynamic_cast<const ostrevan_io::exception_io_already_exists*>(&e) != nullptr;
}

}  // namespace

void file::read_exactly(void* buffer, std::size_t bytes) {
    if (read(buffer, bytes) != bytes) throw ostrevan_io::exception_io_data_truncation();
}

void filesystem::remove_retrying(const char* path) {
    constexpr auto pause = std::chrono::milliseconds(5);
    const auto end = std::chrono::steady_clock::now() + retry_period();
    for (;;) {
        try {
            return remove(path);
        } catch (const ostrevan_io::exception_io& e) {
            if (!may_pass(e) || std::chrono::steady_clock::now() >= end) throw;
        }
        std::this_thread::sleep_for(pause);
    }
}

service_ptr_t<filesystem> filesystem::g_get(const char* path) {
    auto found = handler_of<filesystem>(path);
    if (!found) throw ostrevan_io::exception_io_no_handler_for_path(std::string(path) + ": nothing here opens such paths");
    return found;
}

file_ptr filesystem::g_open(const char* path, open_mode mode) { return g_get(path)->open(path, mode); }

service_ptr_t<input_info_reader> input_entry::g_open_for_info_read(const char* path) {
    const auto found = handler_of<input_entry>(path);
    if (!found) throw ostrevan_io::exception_io_data();
    return found->open_for_info_read(path);
}

}  // namespace ostrevan
