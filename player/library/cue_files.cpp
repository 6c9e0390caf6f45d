#include "player/library/cue_files.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "nuv/text.h"
#include "player/library/directory.h"
#include "player/system/durable_file.h"
#include "player/tags/formats.h"

namespace ostrevan::library {
namespace {

constexpr std::size_t cue_size_limit = 1 << 20;

/// Fields of an audio file that apply to each of its tracks.
constexpr std::string_view shared_fields[] = {
    "artist",    "album artist", "album",      "date",         "genre", "composer",
    "performer", "discnumber",   "totaldiscs", "discsubtitle", "label", "comment",
};
constexpr std::string_view embedded_field = "cuesheet";

std::string_view stem_of(std::string_view name) noexcept { return name.substr(0, std::min(name.rfind('.'), name.size())); }

std::string join(const std::string& folder, std::string_view name) {
    return folder + (folder.ends_with('/') ? "" : "/") + std::string(name);
}

std::string read_sheet(const std::string& path) {
    const auto status = status_of(path);
    if (status.kind != entry_kind::file) throw cue_error("it is not a regular file");
    if (static_cast<std::size_t>(status.stamp.size) > cue_size_limit) throw cue_error("the CUE sheet is larger than 1 MiB");
    std::ifstream file(path, std::ios::binary);
    std::string bytes(static_cast<std::size_t>(status.stamp.size), '\0');
    if (!file.is_open()) throw std::system_error(errno, std::generic_category());
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

bool is_file(const std::string& path) noexcept {
    try {
        return status_of(path).kind == entry_kind::file;
    } catch (const std::system_error&) {
        return false;
    }
}

/// How well the name of a file matches the name in the sheet; 0 when it does not.
class audio_search {
public:
    audio_search(std::string_view wanted, std::string_view cue_name, bool is_only) noexcept
        : wanted_(wanted), cue_name_(cue_name), is_only_(is_only) {}

    [[nodiscard]] int rank(std::string_view name) const noexcept {
        if (!tags::has_supported_extension(name)) return 0;
        if (nuv::equal_ascii_nocase(name, wanted_)) return 3;
        if (nuv::equal_ascii_nocase(stem_of(name), stem_of(wanted_))) return 2;
        return is_only_ && nuv::equal_ascii_nocase(stem_of(name), stem_of(cue_name_)) ? 1 : 0;
    }

private:
    std::string_view wanted_, cue_name_;
    bool is_only_;
};

/// Names that lead out of the sheet's folder are not followed: sheets come from anywhere, and what they name is opened.
bool stays_inside(const std::filesystem::path& relative) {
    return relative.is_relative() && !relative.empty() && *relative.begin() != "..";
}

std::string locate_audio(const std::string& cue_path, const std::string& name, bool is_only) {
    const std::string folder = system::folder_of(cue_path);
    std::string relative = name;
    std::ranges::replace(relative, '\\', '/');
    if (const auto inside = std::filesystem::path(relative).lexically_normal();
        stays_inside(inside) && tags::has_supported_extension(relative)) {
        auto direct = join(folder, inside.string());
        if (is_file(direct)) return direct;
    }
    const audio_search search(nuv::file_name_of(relative), nuv::file_name_of(cue_path), is_only);
    std::string best;
    int best_rank = 0;
    directory listing(folder);
    while (const auto entry = listing.next()) {
        const int rank = search.rank(entry->name);
        // Of equal ranks the first in byte order, whatever the order of the directory.
        if (rank == 0 || rank < best_rank || (rank == best_rank && entry->name >= best)) continue;
        best = entry->name;
        best_rank = rank;
    }
    if (best.empty()) throw cue_error("the CUE sheet refers to \"" + name + "\", which is not in its folder");
    return join(folder, best);
}

void overlay(file_info_builder& info, const cue_fields& fields, bool is_disc) {
    for (const auto& [name, value] : fields) {
        const auto field = !is_disc ? name : name == "title" ? "album" : name == "artist" ? "album artist" : name;
        info.meta_set(field, value);
        if (is_disc && name == "artist") info.meta_set("artist", value);
    }
}

/// Whether a field is short enough to be stored with every track of the file.
bool is_short(const std::vector<std::string>& values) {
    std::size_t size = 0;
    for (const auto& value : values) size += value.size() + 1;
    return size <= longest_cue_value + 1;
}

/// `owns_file`: the only track in its file, so that all fields of the file apply to it.
file_info info_of_track(const cue_sheet& sheet, const cue_track& track, const file_info_builder& audio, bool owns_file) {
    file_info_builder info;
    if (owns_file) {
        info = audio;
        info.meta_remove_field(embedded_field);
    } else {
        info.bitrate = audio.bitrate;
        info.sample_rate = audio.sample_rate;
        info.channels = audio.channels;
        info.codec = audio.codec;
        for (const auto name : shared_fields)
            if (const auto index = audio.meta_find(name);
                index != file_info_builder::npos && is_short(audio.meta_values(index)))
                info.meta_set_values(name, audio.meta_values(index));
    }
    overlay(info, sheet.fields, true);
    overlay(info, track.fields, false);
    info.meta_set("tracknumber", std::to_string(track.number));
    info.length = std::max(0.0, track.end.value_or(audio.length) - track.start);
    return info.build();
}

std::vector<read_track> tracks_of(const cue_sheet& sheet, const std::vector<file_info_builder>& audio) {
    std::vector<std::size_t> tracks_in_file(audio.size());
    for (const auto& track : sheet.tracks) ++tracks_in_file[track.file];
    std::vector<read_track> tracks;
    tracks.reserve(sheet.tracks.size());
    for (const auto& track : sheet.tracks)
        tracks.push_back({track.number, info_of_track(sheet, track, audio[track.file], tracks_in_file[track.file] == 1)});
    return tracks;
}

/// Never the mark of one of its files, whose tracks are not those of the sheet.
std::uint64_t mark_of_sheet(const std::vector<std::uint64_t>& audio) {
    std::uint64_t mark = audio.size();
    for (const auto each : audio) {
        if (each == 0) return 0;
        mark = (mark ^ each) * 0x9E3779B97F4A7C15;
    }
    return mark;
}

/// The sheet inside an audio file. It applies to that file alone, whatever names it holds. Empty when there is none or it
/// cannot be understood.
std::optional<cue_sheet> embedded_sheet(const file_info_builder& info) {
    const auto field = info.meta_find(embedded_field);
    if (field == file_info_builder::npos || info.meta_values(field).empty()) return std::nullopt;
    try {
        auto sheet = parse_cue(info.meta_values(field).front());
        const auto is_elsewhere = [](const cue_track& track) { return track.file != 0; };
        if (std::ranges::any_of(sheet.tracks, is_elsewhere)) return std::nullopt;
        return sheet;
    } catch (const cue_error&) {
        return std::nullopt;
    }
}

const cue_track& track_in(const cue_sheet& sheet, std::uint32_t number, const std::string& path) {
    const auto found = std::ranges::find(sheet.tracks, number, &cue_track::number);
    if (found == sheet.tracks.end())
        throw cue_error(path + ": there is no track " + std::to_string(number) + " in its CUE sheet. Rescan the library.");
    return *found;
}

}  // namespace

bool is_cue_path(std::string_view path) noexcept {
    return path.size() > 4 && nuv::equal_ascii_nocase(path.substr(path.size() - 4), ".cue");
}

located_sheet locate_sheet(const std::string& cue_path) {
    located_sheet result{parse_cue(read_sheet(cue_path)), {}};
    auto& [sheet, audio] = result;
    // A sheet may name a file several times, or under several names.
    std::vector<std::size_t> position;
    for (const auto& name : sheet.files) {
        const auto path = locate_audio(cue_path, name, sheet.files.size() == 1);
        const auto found = std::ranges::find(audio, path);
        position.push_back(static_cast<std::size_t>(found - audio.begin()));
        if (found == audio.end()) audio.push_back(path);
    }
    for (auto& track : sheet.tracks) track.file = position[track.file];
    return result;
}

cue_contents read_cue(const std::string& cue_path, const info_reader& reader) {
    const auto [sheet, audio] = locate_sheet(cue_path);
    cue_contents contents;
    std::vector<file_info_builder> infos;
    std::vector<std::uint64_t> marks;
    for (const auto& path : audio) {
        contents.sources.push_back({path, status_of(path).stamp});
        auto [info, mark] = reader(path);
        infos.push_back(std::move(info));
        marks.push_back(mark);
    }
    contents.sound = mark_of_sheet(marks);
    contents.tracks = tracks_of(sheet, infos);
    return contents;
}

std::vector<read_track> split_embedded(const file_info_builder& info) {
    if (const auto sheet = embedded_sheet(info)) return tracks_of(*sheet, {info});
    return {{0, info.build()}};
}

playable resolve_playable(const std::string& path, std::uint32_t subsong, const info_reader& reader) {
    if (is_cue_path(path)) {
        const auto [sheet, audio] = locate_sheet(path);
        const auto& track = track_in(sheet, subsong, path);
        return {audio[track.file], track.start, track.end};
    }
    if (subsong == 0) return {path, 0, std::nullopt};
    const auto sheet = embedded_sheet(reader(path).info);
    if (!sheet) throw cue_error(path + ": there is no CUE sheet inside the file any more. Rescan the library.");
    const auto& track = track_in(*sheet, subsong, path);
    return {path, track.start, track.end};
}

}  // namespace ostrevan::library
