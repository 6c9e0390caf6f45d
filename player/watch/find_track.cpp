#include "player/watch/find_track.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "player/library/locations.h"
#include "player/titleformat/track_fields.h"
#include "player/titleformat/unicode.h"
#include "player/watch/told_path.h"

namespace ostrevan::watch {
namespace {

using tracks = std::span<const library::track_ptr>;

const std::string& path_of_track(const library::track_ptr& track) { return track->location().path; }

tracks at_path(tracks library, const std::string& path) {
    const auto first = std::ranges::lower_bound(library, path, {}, path_of_track);
    return {first, std::ranges::upper_bound(library, path, {}, path_of_track)};
}

std::string_view name_in(std::string_view path) { return path.substr(path.rfind('/') + 1); }

/// The tracks of the same file below another path, if its name is one of these.
tracks at_same_file(tracks library, const std::string& path, const std::vector<std::string>& names) {
    struct stat wanted {};
    if (stat(path.c_str(), &wanted) != 0) return {};
    for (const auto& track : library) {
        const auto& candidate = path_of_track(track);
        struct stat found {};
        if (std::ranges::find(names, name_in(candidate)) != names.end() && stat(candidate.c_str(), &found) == 0 &&
            found.st_dev == wanted.st_dev && found.st_ino == wanted.st_ino)
            return at_path(library, candidate);
    }
    return {};
}

tracks at_location(tracks library, const std::string& path) {
    const auto plain = library::normal_path(path);
    if (const auto found = at_path(library, plain); !found.empty()) return found;
    std::error_code error;
    const auto real = std::filesystem::canonical(path, error).string();
    if (const auto found = at_path(library, real); !found.empty()) return found;
    return at_same_file(library, path, {std::string(name_in(plain)), std::string(name_in(real))});
}

/// What the tags of a track must say.
class wanted_tags {
public:
    explicit wanted_tags(const told_track& told)
        : title_(folded(told.title)), artist_(folded(told.artist)), album_(folded(told.album)) {}

    /// Without a title and an artist, too many tracks would fit.
    [[nodiscard]] bool are_enough() const { return !title_.empty() && !artist_.empty(); }

    [[nodiscard]] bool fit(library::track& track) const {
        static const titleformat::component_fields none;
        const titleformat::track_fields fields(none, track);
        return has(fields, "title", title_) && has(fields, "artist", artist_) &&
               (album_.empty() || has(fields, "album", album_));
    }
    [[nodiscard]] bool fit_title(library::track& track) const {
        static const titleformat::component_fields none;
        return has(titleformat::track_fields(none, track), "title", title_);
    }

private:
    static std::string folded(std::string_view text) {
        std::string result;
        titleformat::append_folded(result, text);
        return result;
    }
    static bool has(const titleformat::track_fields& fields, std::string_view name, const std::string& wanted) {
        std::string text;
        fields.field(name, text);
        return folded(text) == wanted;
    }

    std::string title_, artist_, album_;
};

/// The only track that fits; none also when several do.
template <class Fits>
found_track only_one(tracks among, Fits fits, const char* none, const char* several) {
    found_track found{.reason = none};
    for (const auto& track : among) {
        if (!fits(track)) continue;
        if (found.track) return {.reason = several};
        found = {.track = track};
    }
    return found;
}

found_track in_file(tracks of_file, std::optional<std::uint32_t> subsong, const wanted_tags& tags) {
    const auto fits = [&](const library::track_ptr& track) {
        return of_file.size() == 1 || (subsong ? track->location().subsong == *subsong : tags.fit_title(*track));
    };
    constexpr auto unknown = "it is not told which track of the file it is";
    auto found = only_one(of_file, fits, unknown, unknown);
    found.is_by_location = static_cast<bool>(found.track);
    return found;
}

}  // namespace

found_track find_track(const told_track& told, tracks library) {
    const wanted_tags tags(told);
    const auto named = path_of(told.location);
    if (named)
        if (const auto of_file = at_location(library, named->path); !of_file.empty())
            return in_file(of_file, named->subsong, tags);
    if (!tags.are_enough()) return {.reason = "it is not in the library"};
    return only_one(
        library, [&](const library::track_ptr& track) { return tags.fit(*track); },
        "it is not in the library, and no track there has its tags",
        "it is not in the library, and several tracks there have its tags");
}

}  // namespace ostrevan::watch
