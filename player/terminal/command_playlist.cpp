#include <iostream>

#include "player/terminal/commands.h"

namespace ostrevan::terminal {
namespace {

[[noreturn]] void throw_no_such(const std::string& name) {
    throw std::runtime_error("There is no playlist \"" + name + "\"; see 'ostrevan playlist list'.");
}

}  // namespace

void run(run_context& context, const playlist_list& /*arguments*/) {
    for (const auto& name : context.player.library.playlists().names()) std::cout << name << '\n';
}

void run(run_context& context, const playlist_show& arguments) {
    const auto entries = context.player.library.playlists().entries(arguments.name);
    if (!entries) throw_no_such(arguments.name);
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

void run(run_context& context, const playlist_create& arguments) {
    std::vector<playable_location> entries;
    for (const auto& track : tracks_of(context, arguments.tracks)) entries.push_back(track->location());
    if (!context.player.library.playlists().create(arguments.name, entries))
        throw std::runtime_error("There is a playlist \"" + arguments.name +
                                 "\" already; remove it first, or choose another name.");
    context.screen.note(std::to_string(entries.size()) + (entries.size() == 1 ? " track" : " tracks") + " in playlist \"" +
                        arguments.name + "\".");
}

void run(run_context& context, const playlist_remove& arguments) {
    auto& playlists = context.player.library.playlists();
    const auto entries = playlists.entries(arguments.name);
    if (!entries) throw_no_such(arguments.name);
    const auto name = "\"" + arguments.name + "\"";
    const auto answer =
        context.screen.ask({.text = "Remove playlist " + name + " with " + std::to_string(entries->size()) + " tracks?",
                            .title = "Playlist",
                            .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                            .reply = {}});
    if (answer != popup_message_v3::answer_yes) return;
    playlists.remove(arguments.name);
    context.screen.note("Playlist " + name + " is removed; its tracks stay.");
}

}  // namespace ostrevan::terminal
