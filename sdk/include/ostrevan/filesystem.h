#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "ostrevan/service.h"

namespace ostrevan {

/// An open file. Used by one thread at a time. All methods throw `ostrevan_io::exception_io` with a text that names the
/// file and the reason. Without a `flush` before the release, data may be lost.
class file : public service_base {
public:
    /// In bytes; none for a stream of unknown length.
    [[nodiscard]] virtual std::optional<std::uint64_t> size() = 0;
    /// Moves to a position, counted from the start.
    virtual void seek(std::uint64_t position) = 0;
    /// Returns fewer bytes than asked for only at the end.
    virtual std::size_t read(void* buffer, std::size_t bytes) = 0;
    /// Writes all bytes or throws.
    virtual void write(const void* bytes, std::size_t size) = 0;
    /// Returns once everything written is on disk.
    virtual void flush() = 0;

    /// As `read`, but throws `ostrevan_io::exception_io_data_truncation` when fewer bytes are left.
    void read_exactly(void* buffer, std::size_t bytes);
};
using file_ptr = service_ptr_t<file>;

/// Access to the files of one protocol, the part of a path before "://". A path without a protocol is a local file.
/// [any-thread]
class filesystem : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{6DFEBAEE-5B21-42EF-B6FA-70CC300DA853}");

    enum class open_mode {
        read,
        /// A new file. It replaces an older one when `flush` returns for the first time; released before that, it leaves the
        /// older one unchanged.
        write_new,
    };

    [[nodiscard]] virtual bool is_our_path(const char* path) const noexcept = 0;
    /// True when the location is not on this machine, so that nothing there may be rewritten.
    [[nodiscard]] virtual bool is_remote(const char* path) const noexcept = 0;
    [[nodiscard]] virtual file_ptr open(const char* path, open_mode mode) = 0;
    [[nodiscard]] virtual bool exists(const char* path) = 0;
    /// Removes a file. Throws `exception_io_sharing_violation`, `exception_io_denied` or `exception_io_already_exists` when
    /// it may succeed a little later.
    virtual void remove(const char* path) = 0;
    /// For how long `remove_retrying` tries.
    [[nodiscard]] virtual std::chrono::milliseconds retry_period() const noexcept { return std::chrono::seconds(1); }

    /// Removes a file, and tries again for a while when another program keeps it busy. Throws what the last attempt threw.
    void remove_retrying(const char* path);

    /// The file system that handles a path. Throws `ostrevan_io::exception_io_no_handler_for_path`.
    static service_ptr_t<filesystem> g_get(const char* path);
    static file_ptr g_open(const char* path, open_mode mode);
};

}  // namespace ostrevan
