#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "ostrevan/filesystem.h"
#include "player/core/new_file.h"

namespace ostrevan {

/// Whether a path leads to a file of this machine: one without a protocol, or with `file://`. [any-thread]
bool is_local_path(std::string_view path) noexcept;
/// Such a path without the protocol. [any-thread]
std::string local_path(std::string_view path);

/// Files of this machine: paths without a protocol, and `file://`.
class local_filesystem : public filesystem {
public:
    explicit local_filesystem(unfinished_file_sink on_unfinished = {}) : on_unfinished_(std::move(on_unfinished)) {}
    [[nodiscard]] bool is_our_path(const char* path) const noexcept override;
    [[nodiscard]] bool is_remote(const char* /*path*/) const noexcept override { return false; }
    [[nodiscard]] file_ptr open(const char* path, open_mode mode) override;
    [[nodiscard]] bool exists(const char* path) override;
    void remove(const char* path) override;

private:
    const unfinished_file_sink on_unfinished_;
};

/// What is reached through a network protocol, such as a radio station.
class network_filesystem : public filesystem {
public:
    [[nodiscard]] bool is_our_path(const char* path) const noexcept override;
    [[nodiscard]] bool is_remote(const char* /*path*/) const noexcept override { return true; }
    /// These three always throw: nothing here speaks the protocols.
    [[nodiscard]] file_ptr open(const char* path, open_mode mode) override;
    [[nodiscard]] bool exists(const char* path) override;
    void remove(const char* path) override;
};

}  // namespace ostrevan
