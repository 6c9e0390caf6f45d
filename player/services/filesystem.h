#pragma once

#include <utility>

#include "ostrevan/filesystem.h"
#include "player/services/new_file.h"

namespace ostrevan::services {

/// Files on this machine: paths without a protocol, and `file://`.
class local_filesystem_impl : public filesystem {
public:
    explicit local_filesystem_impl(unfinished_file_sink on_unfinished = {}) : on_unfinished_(std::move(on_unfinished)) {}
    [[nodiscard]] bool is_our_path(const char* path) const noexcept override;
    [[nodiscard]] bool is_remote(const char* /*path*/) const noexcept override { return false; }
    [[nodiscard]] file_ptr open(const char* path, open_mode mode) override;
    [[nodiscard]] bool exists(const char* path) override;
    void remove(const char* path) override;

private:
    const unfinished_file_sink on_unfinished_;
};

/// Locations with a network protocol, such as radio stations.
class network_filesystem_impl : public filesystem {
public:
    [[nodiscard]] bool is_our_path(const char* path) const noexcept override;
    [[nodiscard]] bool is_remote(const char* /*path*/) const noexcept override { return true; }
    /// These three always throw: the protocols are not supported.
    [[nodiscard]] file_ptr open(const char* path, open_mode mode) override;
    [[nodiscard]] bool exists(const char* path) override;
    void remove(const char* path) override;
};

}  // namespace ostrevan::services
