#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "player/system/counted.h"
#include "player/terminal/command.h"
#include "player/terminal/playlist_entries.h"
#include "player/terminal/playlist_files.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* playlist_examples =
    "Examples:\n"
    "  ostrevan playlist create Favourites --where '%rating% IS 5'\n"
    "  ostrevan playlist append Favourites ~/Music/song.flac\n"
    "  ostrevan playlist move Favourites 7 1\n"
    "  ostrevan playlist export Favourites favourites.m3u8\n"
    "  ostrevan play --playlist Favourites";

void print_names(run_context& context) {
    for (const auto& name : context.player.library.playlists().names()) context.out << name << '\n';
}

void print_tracks(run_context& context, const std::string& name) {
    for (const auto& [path, subsong] : entries_of(context, name)) {
        const auto track = context.player.tracks.find(path, subsong);
        context.out << path;
        if (subsong != 0) context.out << '|' << subsong;
        if (track) {
            const titleformat::track_fields fields(context.player.fields, *track);
            context.out << '\t' << titleformat::compile("[%artist% - ]%title%").run(fields).text;
        }
        context.out << '\n';
    }
}

std::string in_quotes(const std::string& name) { return "\"" + name + "\""; }

[[noreturn]] void throw_taken(const std::string& name) {
    throw std::runtime_error("There is a playlist " + in_quotes(name) +
                             " already; remove it first, or choose another name.");
}

std::vector<playable_location> locations_of(const metadb_handle_list& tracks) {
    std::vector<playable_location> entries;
    for (const auto& track : tracks) entries.push_back(track->location());
    return entries;
}

void note_count(run_context& context, const std::string& name, std::size_t count) {
    context.screen.note(system::counted(count, "track") + " in playlist " + in_quotes(name) + ".");
}

void make_playlist(run_context& context, const std::string& name, const std::vector<playable_location>& entries) {
    if (!context.player.library.playlists().create(name, entries)) throw_taken(name);
    note_count(context, name, entries.size());
}

void create_playlist(run_context& context, const std::string& name, const track_arguments& wanted) {
    make_playlist(context, name, locations_of(tracks_of(context, wanted)));
}

void append(run_context& context, const std::string& name, const track_arguments& wanted) {
    (void)entries_of(context, name);
    auto more = locations_of(tracks_of(context, wanted));
    std::size_t count = 0;
    context.player.library.playlists().change(name, [&](std::vector<playable_location>& entries) {
        std::ranges::move(more, std::back_inserter(entries));
        count = entries.size();
    });
    note_count(context, name, count);
}

void rename(run_context& context, const std::string& name, const std::string& new_name) {
    (void)entries_of(context, name);
    if (!context.player.library.playlists().rename(name, new_name)) throw_taken(new_name);
}

/// Places count from 1.
void move_entry(run_context& context, const std::string& name, std::size_t from, std::size_t to) {
    (void)entries_of(context, name);
    context.player.library.playlists().change(name, [&](std::vector<playable_location>& entries) {
        if (from < 1 || to < 1 || from > entries.size() || to > entries.size())
            throw std::runtime_error("Playlist " + in_quotes(name) + " has the places 1 to " +
                                     std::to_string(entries.size()) + ".");
        auto moved = std::move(entries[from - 1]);
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(from - 1));
        entries.insert(entries.begin() + static_cast<std::ptrdiff_t>(to - 1), std::move(moved));
    });
}

void remove_playlist(run_context& context, const std::string& name) {
    const auto entries = entries_of(context, name);
    const auto quoted = in_quotes(name);
    const auto answer =
        context.screen.ask({.text = "Remove playlist " + quoted + " with " + system::counted(entries.size(), "track") + "?",
                            .title = "Playlist",
                            .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                            .reply = {}});
    if (answer != popup_message_v3::answer_yes) return;
    context.player.library.playlists().remove(name);
    context.screen.note("Playlist " + quoted + " is removed; its tracks stay.");
}

const command_file playlist_commands(100, [](declared_command& program) {
    auto playlist = program.add("playlist", "Named lists of tracks", playlist_examples);
    playlist.require_command();
    playlist.add("list", "List the playlists").run(print_names);
    const auto name = std::make_shared<std::string>();
    const auto tracks = std::make_shared<track_arguments>();
    auto show = playlist.add("show", "List the tracks of one");
    show.add_option("PLAYLIST", name.get()).required();
    show.run([name](run_context& context) { print_tracks(context, *name); });
    auto create = playlist.add("create", "Make a playlist of tracks");
    create.add_option("PLAYLIST", name.get()).required();
    tracks->declare(create);
    create.run([name, tracks](run_context& context) { create_playlist(context, *name, *tracks); });
    auto append_to = playlist.add("append", "Add tracks at the end of one");
    append_to.add_option("PLAYLIST", name.get()).required();
    tracks->declare(append_to);
    append_to.run([name, tracks](run_context& context) { append(context, *name, *tracks); });
    const auto new_name = std::make_shared<std::string>();
    auto renaming = playlist.add("rename", "Give one another name");
    renaming.add_option("PLAYLIST", name.get()).required();
    renaming.add_option("NEW", new_name.get()).required();
    renaming.run([name, new_name](run_context& context) { rename(context, *name, *new_name); });
    const auto from = std::make_shared<std::size_t>(), to = std::make_shared<std::size_t>();
    auto moving = playlist.add("move", "Move the track at one place to another, counted from 1");
    moving.add_option("PLAYLIST", name.get()).required();
    moving.add_option("FROM", from.get()).required();
    moving.add_option("TO", to.get()).required();
    moving.run([name, from, to](run_context& context) { move_entry(context, *name, *from, *to); });
    const auto file = std::make_shared<std::string>();
    auto exporting = playlist.add("export", "Write one as an M3U file, for other programs");
    exporting.add_option("PLAYLIST", name.get()).required();
    exporting.add_option("PATH", file.get()).required();
    exporting.run([name, file](run_context& context) {
        if (write_playlist_file(context, entries_of(context, *name), *file)) context.screen.note("Written: " + *file + ".");
    });
    auto importing = playlist.add("import", "Make a playlist of an M3U file");
    importing.add_option("PLAYLIST", name.get()).required();
    importing.add_option("PATH", file.get()).required();
    importing.run([name, file](run_context& context) {
        if (context.player.library.playlists().entries(*name)) throw_taken(*name);
        make_playlist(context, *name, read_playlist_file(context, *file));
    });
    auto remove = playlist.add("remove", "Remove a playlist; its tracks stay");
    remove.add_option("PLAYLIST", name.get()).required();
    remove.run([name](run_context& context) { remove_playlist(context, *name); });
});

}  // namespace
}  // namespace ostrevan::terminal
