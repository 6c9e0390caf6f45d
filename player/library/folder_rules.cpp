#include "player/library/folder_rules.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "player/library/directory.h"

namespace ostrevan::library {
namespace {

namespace fs = std::filesystem;

bool is_inside(const fs::path& inner, const fs::path& outer) {
    return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

/// The path behind all links; the path itself when it is not there at the moment.
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

void add_line(std::string& lines, const std::string& path, const std::string& why) {
    if (!lines.empty()) lines += '\n';
    lines += path + ' ' + why;
}

}  // namespace

std::string normal_path(const std::string& path) {
    auto normal = fs::absolute(path).lexically_normal().string();
    while (normal.size() > 1 && normal.back() == '/') normal.pop_back();
    return normal;
}

std::vector<std::string> check_new_folders(std::span<const std::string> paths, std::span<const library_folder> present) {
    std::vector<std::string> result;
    std::string problems;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        auto why = why_not_readable(path);
        for (std::size_t i = 0; !why && i < present.size(); ++i) why = why_overlapping(path, present[i].path);
        for (std::size_t i = 0; !why && i < result.size(); ++i) why = why_overlapping(path, result[i]);
        if (why) add_line(problems, path, *why);
        else result.push_back(path);
    }
    if (!problems.empty()) throw library_error(problems);
    return result;
}

std::vector<library_folder> check_known_folders(std::span<const std::string> paths,
                                                std::span<const library_folder> present) {
    std::vector<library_folder> result;
    std::string problems;
    for (const auto& given : paths) {
        const auto path = normal_path(given);
        const auto found = std::ranges::find(present, path, &library_folder::path);
        if (found == present.end()) add_line(problems, path, "is not a folder of the library.");
        else if (std::ranges::find(result, path, &library_folder::path) == result.end()) result.push_back(*found);
    }
    if (!problems.empty()) throw library_error(problems);
    return result;
}

}  // namespace ostrevan::library
