#include "player/library/folder_rules.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "player/library/directory.h"
#include "player/library/locations.h"

namespace ostrevan::library {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view see_folders = "'ostrevan library folders' shows those there are.";

bool is_inside(const fs::path& inner, const fs::path& outer) {
    return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

/// The path with all links resolved, or unchanged when it does not exist.
fs::path real_path(const fs::path& path) {
    std::error_code failed;
    auto real = fs::canonical(path, failed);
    return failed ? path : real;
}

std::optional<std::string> why_not_readable(const std::string& path) {
    try {
        if (status_of(path).kind != entry_kind::directory) return "is a file, not a folder. Add the folder that it is in.";
        directory opened(path);
        return std::nullopt;
    } catch (const std::system_error& failure) {
        if (failure.code() == std::errc::no_such_file_or_directory)
            return "does not exist. Check the spelling, or connect the disk.";
        return "cannot be read: " + failure.code().message() + ".";
    }
}

std::optional<std::string> why_overlapping(const std::string& path, const std::string& present) {
    const fs::path both[2][2] = {{path, present}, {real_path(path), real_path(present)}};
    for (const auto& [fresh, old] : both) {
        if (fresh == old) return "is in the library already, as " + present + ".";
        if (is_inside(fresh, old)) return "lies inside " + present + ", which is in the library already.";
        if (is_inside(old, fresh)) return "holds " + present + ", which is in the library already. Remove that one first.";
    }
    return std::nullopt;
}

/// Null when it is inside none of them.
const library_folder* folder_around(const std::string& path, std::span<const library_folder> present) {
    const auto holds = [&](const library_folder& each) {
        return is_inside(path, each.path) || is_inside(real_path(path), real_path(each.path));
    };
    const auto found = std::ranges::find_if(present, holds);
    return found != present.end() ? &*found : nullptr;
}

void add_once(std::vector<library_folder>& folders, const library_folder& folder) {
    if (std::ranges::find(folders, folder.id, &library_folder::id) == folders.end()) folders.push_back(folder);
}

}  // namespace

bool is_below(std::string_view path, std::string_view place) noexcept {
    return path.starts_with(place) && (path.size() == place.size() || path[place.size()] == '/' || place == "/");
}

std::vector<std::string> check_new_folders(std::span<const std::string> paths, std::span<const library_folder> present,
                                           std::vector<file_problem>& refused) {
    std::vector<std::string> result;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        auto why = why_not_readable(path);
        for (std::size_t i = 0; !why && i < present.size(); ++i) why = why_overlapping(path, present[i].path);
        for (std::size_t i = 0; !why && i < result.size(); ++i) why = why_overlapping(path, result[i]);
        if (why) refused.push_back({path, *why});
        else result.push_back(path);
    }
    return result;
}

std::vector<library_folder> check_known_folders(std::span<const std::string> paths, std::span<const library_folder> present,
                                                std::vector<file_problem>& refused) {
    std::vector<library_folder> result;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        const auto found = std::ranges::find(present, path, &library_folder::path);
        if (found == present.end()) refused.push_back({path, "is not a folder of the library. " + std::string(see_folders)});
        else add_once(result, *found);
    }
    return result;
}

std::vector<library_folder> folders_around(std::span<const std::string> paths, std::span<const library_folder> present,
                                           std::vector<file_problem>& refused) {
    std::vector<library_folder> result;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        const auto* found = folder_around(path, present);
        if (found == nullptr) refused.push_back({path, "lies in no folder of the library. " + std::string(see_folders)});
        else add_once(result, *found);
    }
    return result;
}

std::vector<std::string> check_ignored(std::span<const std::string> paths, std::span<const library_folder> present,
                                       std::vector<file_problem>& refused) {
    std::vector<std::string> result;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        const auto is_above = [&](const library_folder& each) { return each.path != path && is_inside(path, each.path); };
        if (std::ranges::find(present, path, &library_folder::path) != present.end())
            refused.push_back({path, "is a whole folder of the library. Use 'ostrevan library remove'."});
        else if (std::ranges::none_of(present, is_above))
            refused.push_back({path, "lies in no folder of the library. " + std::string(see_folders)});
        else result.push_back(path);
    }
    return result;
}

}  // namespace ostrevan::library
