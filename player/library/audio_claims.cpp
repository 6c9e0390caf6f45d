#include "player/library/audio_claims.h"

#include <algorithm>
#include <system_error>

#include "player/library/directory.h"

namespace ostrevan::library {

void audio_claims::settle(std::vector<scanned_file>& sheets) {
    std::ranges::sort(sheets, {}, [](const scanned_file& each) -> const std::string& { return each.path; });
    for (auto& sheet : sheets) {
        if (std::ranges::any_of(sheet.file.sources, [this](const source_file& source) { return contains(source.path); })) {
            sheet.file.sources.clear();
            sheet.tracks.clear();
        }
        add(sheet.file.sources);
    }
}

bool is_unchanged(const library_file& known, const file_stamp& now) {
    // A sheet without tracks lost its audio to another sheet, which may be gone by now.
    if (known.tracks.empty() || !(known.stamp == now)) return false;
    return std::ranges::all_of(known.sources, [](const source_file& source) {
        try {
            return status_of(source.path).stamp == source.stamp;
        } catch (const std::system_error&) {
            return false;
        }
    });
}

}  // namespace ostrevan::library
