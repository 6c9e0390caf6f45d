#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "player/app/track_selection.h"
#include "player/terminal/command.h"
#include "player/terminal/formatted_lines.h"
#include "player/terminal/key_text.h"
#include "player/titleformat/integer.h"
#include "player/view/track_listing.h"
#include "player/view/track_order.h"

namespace ostrevan::terminal {
namespace {

struct list_options {
    /// The query, in one word or several.
    std::vector<std::string> query{};
    std::vector<std::string> columns{};
    std::optional<std::string> format{};
    std::optional<std::string> sort{};
    bool descending = false;
    bool json = false;
};

constexpr const char* list_examples =
    "Examples:\n"
    "  ostrevan list low water\n"
    "  ostrevan list '%artist% HAS bach AND %rating% GREATER 3 LIMIT 20'\n"
    "  ostrevan list --column Title --column \"Last Played\" --sort \"Last Played\" --descending\n"
    "  ostrevan list --format '%artist% - %title%[ (%play_count%)]'\n"
    "  ostrevan list --json | jq '.[].path'";

std::optional<query::sort_order> order_of(const run_context& context, const list_options& wanted) {
    if (!wanted.sort) return std::nullopt;
    const auto column =
        context.on_main([&] { return view::find_column(view::all_columns(context.player.services), *wanted.sort); });
    return query::sort_order{titleformat::compile(column.sort_script), wanted.descending};
}

std::vector<view::column> columns_of(const run_context& context, const std::vector<std::string>& names) {
    const auto& services = context.player.services;
    if (names.empty()) return view::default_columns(services);
    const auto all = view::all_columns(services);
    std::vector<view::column> chosen;
    chosen.reserve(names.size());
    for (const auto& name : names) chosen.push_back(view::find_column(all, name));
    return chosen;
}

using json = nlohmann::ordered_json;

/// A field in JSON: null when not found, a number where it reads like one.
json value_of(const titleformat::track_fields& fields, const std::string& name, bool may_be_number) {
    std::string text;
    if (!fields.field(name, text)) return nullptr;
    if (may_be_number)
        if (auto number = json::parse(text, nullptr, false); number.is_number()) return number;
    return text;
}

/// The leading number of a field ("3/12"), else its text ("A1").
json leading_number(const titleformat::track_fields& fields, const std::string& name) {
    auto text = value_of(fields, name, false);
    if (!text.is_string()) return text;
    const auto number = titleformat::leading_integer(text.get<std::string>());
    return number ? json(*number) : text;
}

/// Rounded to milliseconds.
json seconds_of(const metadb_handle& track) {
    const auto info = track.info();
    if (!info || !(info->info().length() > 0)) return nullptr;
    return std::round(info->info().length() * 1000) / 1000;
}

using registrations = std::vector<services::index_manager_impl::registration>;

json object_of(const run_context& context, const registrations& indexes, const std::set<std::string>& component_fields,
               metadb_handle& track) {
    const titleformat::track_fields fields(context.player.fields, track);
    const auto key = key_text(indexes, track);
    json object{{"path", track.location().path},
                {"subsong", track.location().subsong},
                {"key", key.empty() ? json() : json(key)},
                {"length", seconds_of(track)},
                {"codec", value_of(fields, "codec", false)},
                {"track", leading_number(fields, "tracknumber")},
                {"disc", leading_number(fields, "discnumber")}};
    for (const char* name : {"artist", "album artist", "album", "title", "date", "genre"})
        object[name] = value_of(fields, name, false);
    for (const auto& name : component_fields) object[name] = value_of(fields, name, true);
    return object;
}

void print_json(const run_context& context, const metadb_handle_list& tracks) {
    const auto indexes = context.on_main([&] { return context.player.index.registrations(); });
    std::set<std::string> component_fields;
    for (const auto& [name, entry] : context.player.fields.all()) component_fields.insert(name);

    // One object per line, so that only one track is held as JSON at a time.
    context.out << '[';
    const char* separator = "\n";
    for (const auto& track : tracks) {
        if (!context.out || context.job.stop()) return;
        const auto object = object_of(context, indexes, component_fields, *track);
        context.out << separator << object.dump(-1, ' ', false, json::error_handler_t::replace);
        separator = ",\n";
    }
    context.out << "\n]\n";
}

std::string in_one_line(const std::vector<std::string>& words) {
    std::string text;
    for (const auto& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

void list(run_context& context, const list_options& wanted) {
    const auto columns = context.on_main([&] { return columns_of(context, wanted.columns); });
    const auto order = order_of(context, wanted);
    const auto query = in_one_line(wanted.query);
    auto tracks = app::find_tracks(context.player, query);
    if (order) tracks = view::sorted_by(*order, tracks, context.player.fields);
    if (wanted.json) print_json(context, tracks);
    else if (wanted.format) print_lines(context, tracks, *wanted.format);
    else context.screen.show_listing(view::listing_of(tracks, columns, context.player.fields));
    if (tracks.empty() && !context.on_main([&] { return context.player.library.is_enabled(); }))
        context.screen.note("The library is empty: add a folder with 'ostrevan library add FOLDER'.");
    else if (tracks.empty()) context.screen.note("No track of the library matches " + query);
}

const command_file list_command(20, [](declared_command& program) {
    const auto wanted = std::make_shared<list_options>();
    auto app = program.add("list", "List tracks of the library", list_examples);
    app.add_option("QUERY", &wanted->query, "A query, or words to search for; all tracks without one");
    app.add_option("--column", &wanted->columns, "A column to show, or a part of its name; may be repeated")
        .one_value_each();
    app.add_option("--sort", &wanted->sort, "The column to sort by, shown or not");
    app.add_flag("--descending", wanted->descending, "The largest first").needs("--sort");
    app.add_option("--format", &wanted->format, "One line per track by this title formatting script");
    app.add_flag("--json", wanted->json, "An array of objects").excludes("--format");
    app.run([wanted](run_context& context) { list(context, *wanted); });
});

}  // namespace
}  // namespace ostrevan::terminal
