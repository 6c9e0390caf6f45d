#include <iostream>
#include <stdexcept>

#include "player/terminal/command.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* playlist_examples =
    "Examples:\n"
    "  ostrevan playlist create Favourites --where '%rating% IS 5'\n"
    "  ostrevan playlist show Favourites";

[[noreturn]] void throw_no_such(const std::string& name) {
    throw std::runtime_error("There is no playlist \"" + name + "\"; see 'ostrevan playlist list'.");
}

void print_names(run_context& context) {
    for (const auto& name : context.player.library.playlists().names()) std::cout << name << '\n';
}

void print_tracks(run_context& context, const std::string& name) {
    const auto entries = context.player.library.playlists().entries(name);
    if (!entries) throw_no_such(name);
    for (const auto& [path, subsong] : *entries) {
        const auto track = context.player.tracks.find(path, subsong);
        std::cout << path;
        if (subsong != 0) std::cout << '|' << subsong;
        if (track) {
            const titleformat::track_fields fields(context.player.fields, *track);
            std::cout << '\t' << titleformat::compile("[%artist% - ]%title%").run(fields).text;
        }
        std::cout << '\n';
    }
}

void create_playlist(run_context& context, const std::string& name, const track_arguments& wanted) {
    std::vector<playable_location> entries;
    for (const auto& track : tracks_of(context, wanted)) entries.push_back(track->location());
    if (!context.player.library.playlists().create(name, entries))
        throw std::runtime_error("There is a playlist \"" + name + "\" already; remove it first, or choose another name.");
    context.screen.note(std::to_string(entries.size()) + (entries.size() == 1 ? " track" : " tracks") + " in playlist \"" +
                        name + "\".");
}

void remove_playlist(run_context& context, const std::string& name) {
    auto& playlists = context.player.library.playlists();
    const auto entries = playlists.entries(name);
    if (!entries) throw_no_such(name);
    const auto quoted = "\"" + name + "\"";
    const auto answer =
        context.screen.ask({.text = "Remove playlist " + quoted + " with " + std::to_string(entries->size()) + " tracks?",
                            .title = "Playlist",
                            .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                            .reply = {}});
    if (answer != popup_message_v3::answer_yes) return;
    playlists.remove(name);
    context.screen.note("Playlist " + quoted + " is removed; its tracks stay.");
}

const command_file playlist_commands(100, [](command_declarations& declare) {
    auto& playlist = declare.add("playlist", "Named lists of tracks", playlist_examples);
    playlist.require_subcommand(1);
    declare.run(declare.add(playlist, "list", "List the playlists"), print_names);
    const auto name = std::make_shared<std::string>();
    const auto tracks = std::make_shared<track_arguments>();
    auto& show = declare.add(playlist, "show", "List the tracks of one");
    show.add_option("NAME", *name)->required();
    declare.run(show, [name](run_context& context) { print_tracks(context, *name); });
    auto& create = declare.add(playlist, "create", "Make a playlist of tracks");
    create.add_option("NAME", *name)->required();
    tracks->declare(create);
    declare.run(create, [name, tracks](run_context& context) { create_playlist(context, *name, *tracks); });
    auto& remove = declare.add(playlist, "remove", "Remove a playlist; its tracks stay");
    remove.add_option("NAME", *name)->required();
    declare.run(remove, [name](run_context& context) { remove_playlist(context, *name); });
});

}  // namespace
}  // namespace ostrevan::terminal
