#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

namespace ostrevan::library {

/// Tells a file that was deleted from one whose disk is away: what is left of its folder lies on another device then. The
/// numbers of devices change when a machine starts, so files that are still there tell which number became which.
class disk_check {
public:
    /// A file that is still there: the device of its folder as it was stored, and as it is. 0 is not known.
    void note(std::uint64_t before, std::uint64_t now) {
        if (before != 0) before_[now].insert(before);
    }

    /// For a file that is not there any more: the nearest folder above it that is there, if the file was on another device
    /// than that; nothing when the file was deleted.
    [[nodiscard]] std::optional<std::string> place_without_disk(const std::string& path, std::uint64_t device) const;

private:
    struct folder {
        std::string path;
        std::optional<std::uint64_t> device;  // nothing when it cannot be looked at
    };
    const folder& nearest(const std::string& path) const;

    std::map<std::uint64_t, std::set<std::uint64_t>> before_;
    mutable std::unordered_map<std::string, folder> nearest_;
};

}  // namespace ostrevan::library
