#include <iostream>
#include <nlohmann/json.hpp>
#include <set>

#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/cli/key_text.h"
#include "player/front/track_listing.h"
#include "player/front/track_selection.h"

namespace ostrevan::cli {
namespace {

std::vector<front::column> columns_of(const run_context& context, const std::vector<std::string>& names) {
    const auto& services = context.player.services();
    if (names.empty()) return front::default_columns(services);
    const auto all = front::all_columns(services);
    std::vector<front::column> chosen;
    try {
        for (const auto& name : names) chosen.push_back(front::find_column(all, name));
    } catch (const std::invalid_argument& error) {
        throw usage_error(error.what());
    }
    return chosen;
}

void print_lines(const run_context& context, const metadb_handle_list& tracks, const std::string& format) {
    const auto script = titleformat::compile(format);
    for (const auto& track : tracks)
        std::cout << script.run(titleformat::track_fields(context.player.fields(), *track)).text << '\n';
}

/// `null` for a field that was not found, else its text.
nlohmann::json member(const titleformat::track_fields& fields, const std::string& name) {
    std::string text;
    if (!fields.field(name, text)) return nullptr;
    return text;
}

void print_json(run_context& context, const metadb_handle_list& tracks) {
    std::set<std::string> names{"artist", "album", "title"};
    for (const auto& [name, entry] : context.player.fields().all()) names.insert(name);

    // One object a line: as large as the library may be, only one track is held as JSON at a time.
    std::cout << '[';
    const char* separator = "\n";
    for (const auto& track : tracks) {
        const titleformat::track_fields fields(context.player.fields(), *track);
        nlohmann::ordered_json object;
        object["path"] = track->location().path;
        object["subsong"] = track->location().subsong;
        const auto key = key_text(context.player.index(), *track);
        object["key"] = key.empty() ? nlohmann::json() : nlohmann::json(key);
        for (const auto& name : names) object[name] = member(fields, name);
        std::cout << separator << object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        separator = ",\n";
    }
    std::cout << "\n]\n";
}

}  // namespace

void run(run_context& context, const list_tracks& arguments) {
    const auto columns = columns_of(context, arguments.columns);
    const auto tracks = front::find_tracks(context.player, arguments.query);
    if (arguments.json) print_json(context, tracks);
    else if (arguments.format) print_lines(context, tracks, *arguments.format);
    else context.screen.show_listing(front::listing_of(tracks, columns, context.player.fields()));
    if (tracks.empty() && !context.player.library().is_enabled())
        context.screen.note("The library is empty: add a folder with 'ostrevan library add FOLDER'.");
}

void run(run_context& context, const format_tracks& arguments) {
    print_lines(context, tracks_of(context, arguments.tracks), arguments.script);
}

}  // namespace ostrevan::cli
