#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

namespace ostrevan::library {

/// Tells a deleted file from one on an absent disk: what remains of its folder is then on another device. Device numbers
/// change at boot, so files still present show which number became which.
class disk_check {
public:
    /// Device numbers of the folder of a file still present: stored and current. 0 is unknown.
    void note(std::uint64_t before, std::uint64_t now) {
        if (before != 0) before_[now].insert(before);
    }

    /// For a missing file: the nearest existing folder above it, if the file was on another device than that; empty when
    /// the file was deleted.
    [[nodiscard]] std::optional<std::string> place_without_disk(const std::string& path, std::uint64_t device) const;

private:
    struct folder {
        std::string path;
        std::optional<std::uint64_t> device;  // empty when it cannot be read
    };
    const folder& nearest(const std::string& path) const;

    std::map<std::uint64_t, std::set<std::uint64_t>> before_;
    mutable std::unordered_map<std::string, folder> nearest_;
};

}  // namespace ostrevan::library
