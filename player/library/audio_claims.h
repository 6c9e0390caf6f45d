#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "player/library/library_file.h"
#include "player/library/scan_types.h"

namespace ostrevan::library {

/// The audio files that CUE sheets refer to. Each belongs to one sheet and is not listed by itself.
class audio_claims {
public:
    void add(std::span<const source_file> sources) {
        for (const auto& source : sources) paths_.insert(source.path);
    }
    [[nodiscard]] bool contains(const std::string& path) const { return paths_.contains(path); }
    [[nodiscard]] const std::unordered_set<std::string>& paths() const noexcept { return paths_; }

    /// Assigns unclaimed audio to the first of these sheets by path. A sheet that loses any of its files to an earlier one
    /// loses its tracks.
    void settle(std::vector<scanned_file>& sheets);

private:
    std::unordered_set<std::string> paths_;
};

/// Whether the file, and the audio of a sheet, are unchanged.
bool is_unchanged(const library_file& known, const file_stamp& now);

}  // namespace ostrevan::library
