#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "player/library/library_files.h"
#include "player/library/scan_types.h"

namespace ostrevan::library {

/// The audio files that CUE sheets refer to: they are not listed by themselves, and belong to one sheet each.
class audio_claims {
public:
    void add(std::span<const source_file> sources) {
        for (const auto& source : sources) paths_.insert(source.path);
    }
    [[nodiscard]] bool contains(const std::string& path) const { return paths_.contains(path); }
    [[nodiscard]] const std::unordered_set<std::string>& paths() const noexcept { return paths_; }

    /// Gives audio that nobody claims yet to the first of these sheets by path. A sheet that comes too late for any of its
    /// files loses its tracks.
    void settle(std::vector<scanned_file>& sheets);

private:
    std::unordered_set<std::string> paths_;
};

/// Whether neither the file nor, for a sheet, its audio has changed.
bool is_unchanged(const library_file& known, const file_stamp& now);

}  // namespace ostrevan::library
