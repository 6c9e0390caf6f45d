#pragma once

#include <string>

#include "ostrevan/filesystem.h"
#include "player/system/descriptor.h"

namespace ostrevan::services {

/// A file on this machine. Only a regular file has a size; pipes never block.
class local_file : public file {
public:
    /// The path is for messages.
    local_file(std::string path, system::descriptor opened) noexcept;

    std::optional<std::uint64_t> size() override;
    void seek(std::uint64_t position) override;
    std::size_t read(void* buffer, std::size_t bytes) override;
    void write(const void* bytes, std::size_t size) override;
    void flush() override;

protected:
    [[noreturn]] void fail(const char* done, int error) const;
    const std::string path_;
    const system::descriptor file_;
};

/// Opens an existing file or device. Throws as the file system's `open`.
file_ptr open_local_file(const std::string& path, filesystem::open_mode mode);

/// Throws the exception for an error number: what failed, then the system's reason.
[[noreturn]] void throw_io_error(const std::string& what, int error);

}  // namespace ostrevan::services
