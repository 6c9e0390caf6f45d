#include "player/app/track_selection.h"
#include "player/terminal/command.h"
#include "player/terminal/formatted_lines.h"
#include "player/terminal/track_json.h"
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

void print_json(const run_context& context, const metadb_handle_list& tracks) {
    const track_json object_of(context);
    // One object per line, so that only one track is held as JSON at a time.
    context.out << '[';
    const char* separator = "\n";
    for (const auto& track : tracks) {
        if (!context.out || context.job.stop()) return;
        context.out << separator << text_of(object_of(*track));
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
        .called("COLUMN")
        .one_value_each();
    app.add_option("--sort", &wanted->sort, "The column to sort by, shown or not").called("COLUMN");
    app.add_flag("--descending", wanted->descending, "The largest first").needs("--sort");
    app.add_option("--format", &wanted->format, "One line per track by this title formatting script")
        .called("SCRIPT")
        .excludes("--column");
    app.add_flag("--json", wanted->json, "An array of objects").excludes("--format");
    app.run([wanted](run_context& context) { list(context, *wanted); });
});

}  // namespace
}  // namespace ostrevan::terminal
