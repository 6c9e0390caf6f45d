#pragma once

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "nuv/text.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/filesystem.h"

namespace ostrevan_test {

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
        return has_prefix(text) || (!remote_ && text.find("://") == std::string_view::npos);
    }
    bool is_remote(const char*) const noexcept override { return remote_; }
    ostrevan::file_ptr open(const char* path, open_mode mode) override {
        const auto name = name_of(path);
        if (mode == open_mode::read && !files.contains(name)) throw ostrevan_io::exception_io_not_found(name + " not found");
        if (name.ends_with('/')) throw ostrevan_io::exception_io_denied(name + " is a folder");
        return ostrevan::service_new<memory_file>(*this, name, mode == open_mode::read ? files[name] : std::string());
    }
    bool exists(const char* path) override { return files.contains(name_of(path)); }
    void remove(const char* path) override {
        if (refuses_removal) throw ostrevan_io::exception_io_denied("cannot be removed");
        if (sharing_violations != 0) {
            --sharing_violations;
            throw ostrevan_io::exception_io_sharing_violation("in use");
        }
        if (files.erase(name_of(path)) == 0) throw ostrevan_io::exception_io_not_found("not found");
    }
    std::chrono::milliseconds retry_period() const noexcept override {
        return refuses_removal ? std::chrono::milliseconds(0) : std::chrono::hours(1);
    }

private:
    struct memory_file : ostrevan::file {
        memory_file(memory_filesystem& owner, std::string name, std::string content) noexcept
            : owner_(owner), name_(std::move(name)), content_(std::move(content)) {}

        std::optional<std::uint64_t> size() override {
            return owner_.knows_sizes ? std::optional<std::uint64_t>(content_.size()) : std::nullopt;
        }
        void seek(std::uint64_t position) override { position_ = static_cast<std::size_t>(position); }
        std::size_t read(void* buffer, std::size_t bytes) override {
            const auto count = std::min(bytes, content_.size() - std::min(position_, content_.size()));
            std::memcpy(buffer, content_.data() + position_, count);
            position_ += count;
            return count;
        }
        void write(const void* bytes, std::size_t size) override {
            owner_.largest_write = std::max(owner_.largest_write, size);
            const auto fits = std::min(size, owner_.room);
            content_.append(static_cast<const char*>(bytes), fits);
            owner_.room -= fits;
            if (fits < size) throw ostrevan_io::exception_io_system("disk full");
        }
        void flush() override {
            ++owner_.flushes;
            owner_.files[name_] = content_;
        }

        memory_filesystem& owner_;
        const std::string name_;
        std::string content_;
        std::size_t position_ = 0;
    };

    bool has_prefix(std::string_view path) const noexcept {
        return nuv::equal_ascii_nocase(path.substr(0, prefix_.size()), prefix_);
    }
    std::string name_of(std::string_view path) const {
        return std::string(has_prefix(path) ? path.substr(prefix_.size()) : path);
    }

    std::string prefix_;
    bool remote_;
};

}  // namespace ostrevan_test
