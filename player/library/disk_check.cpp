#include "player/library/disk_check.h"

#include <algorithm>
#include <system_error>

#include "player/library/directory.h"

namespace ostrevan::library {
namespace {

std::string parent_of(const std::string& path) { return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1)); }

bool is_missing(const std::error_code& code) noexcept {
    return code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory;
}

}  // namespace

std::optional<std::string> disk_check::place_without_disk(const std::string& path, std::uint64_t device) const {
    const auto& [place, now] = nearest(parent_of(path));
    if (!now) return place;
    if (device == 0) return std::nullopt;
    const auto known = before_.find(*now);
    const bool is_same = known != before_.end() ? known->second.contains(device) : *now == device;
    return is_same ? std::nullopt : std::optional(place);
}

const disk_check::folder& disk_check::nearest(const std::string& path) const {
    if (const auto known = nearest_.find(path); known != nearest_.end()) return known->second;
    folder found{path, std::nullopt};
    try {
        const auto status = status_of(path);
        if (status.kind == entry_kind::directory || path == "/") found.device = status.identity.first;
        else found = nearest(parent_of(path));
    } catch (const std::system_error& failure) {
        if (is_missing(failure.code()) && path != "/") found = nearest(parent_of(path));
    }
    return nearest_.emplace(path, std::move(found)).first->second;
}

}  // namespace ostrevan::library
