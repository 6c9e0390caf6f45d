#pragma once

#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "ostrevan/filesystem.h"

namespace support {

/// Files in memory, below one protocol or, for local files, below the root too.
class memory_filesystem : public ostrevan::filesystem {
public:
    memory_filesystem(std::string prefix, bool remote) : prefix_(std::move(prefix)), remote_(remote) {}

    /// By the path without the protocol.
    std::map<std::string, std::string> files;
    /// Bytes that can still be written before the disk is full.
    std::size_t room = std::numeric_limits<std::size_t>::max();
    /// What opening and removing throw, counted down; none at 0.
    unsigned sharing_violations = 0;
    bool refuses_removal = false;
    bool knows_sizes = true;
    unsigned flushes = 0;
    std::size_t largest_write = 0;

    bool is_our_path(const char* path) const noexcept override {
        const std::string_view text(path);
        return text.starts_with(prefix_) || (!remote_ && text.find("://") == std::string_view::npos);
    }
    bool is_remote(const char*) const noexcept override { return remote_; }
    ostrevan::file_ptr open(const char* path, open_mode mode) override;
    bool exists(const char* path) override { return files.contains(name_of(path)); }
    void remove(const char* path) override;
    std::chrono::milliseconds retry_period() const noexcept override {
        return refuses_removal ? std::chrono::milliseconds(0) : std::chrono::hours(1);
    }

private:
    class memory_file;
    std::string name_of(std::string_view path) const {
        return std::string(path.starts_with(prefix_) ? path.substr(prefix_.size()) : path);
    }

    std::string prefix_;
    bool remote_;
};

}  // namespace support
