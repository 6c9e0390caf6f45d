#include <charconv>
#include <stdexcept>

#include "player/app/orphans.h"
#include "player/app/record_columns.h"
#include "player/app/track_selection.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/key_text.h"
#include "player/terminal/track_json.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* orphans_examples =
    "Examples:\n"
    "  ostrevan orphans\n"
    "  ostrevan orphans --json | jq '.[] | select(.homes | length == 1)'\n"
    "  ostrevan orphans attach 3f2a9c0d11e4b7a8 ~/Music/song.flac\n"
    "Lists the records whose tracks are gone, with the tracks of the library that are likely the same. 'attach' merges such "
    "a\n"
    "record into that of a track; 'ostrevan undo' takes it back. Otherwise nothing is changed.";

struct orphans_words {
    bool all = false;
    bool json = false;
    std::string key{};
    std::string track{};
};

std::string place_of(const std::string& path, std::uint32_t subsong) {
    return subsong == 0 ? path : path + "|" + std::to_string(subsong);
}

/// "Artist - Album - Title", without what is not known.
std::string name_in_line(const index::known_track& known) {
    std::string text;
    for (const auto* part : {&known.artist, &known.album, &known.title})
        if (!part->empty()) text += (text.empty() ? "" : " - ") + *part;
    return text.empty() ? "(unknown)" : text;
}

void show_in_lines(run_context& context, const std::vector<app::orphan>& found, const app::record_columns& columns) {
    for (const auto& each : found) {
        context.out << hexadecimal(each.known.key) << "  " << name_in_line(each.known) << '\n';
        if (!each.known.path.empty()) context.out << "  was " << place_of(each.known.path, each.known.subsong) << '\n';
        for (const auto& column : columns.filled(each.index, each.record))
            context.out << "  " << column.name << ' ' << column.after;
        context.out << '\n';
        for (const auto& [track, is_exact] : each.homes)
            context.out << (is_exact ? "  likely " : "  perhaps ")
                        << place_of(track->location().path, track->location().subsong) << '\n';
    }
}

void show_as_json(run_context& context, const std::vector<app::orphan>& found, const app::record_columns& columns) {
    context.out << '[';
    const char* separator = "\n";
    for (const auto& each : found) {
        if (!context.out || context.job.stop()) return;
        auto homes = nlohmann::ordered_json::array();
        for (const auto& [track, is_exact] : each.homes)
            homes.push_back({{"path", track->location().path},
                             {"subsong", track->location().subsong},
                             {"match", is_exact ? "exact" : "near"}});
        auto record = nlohmann::ordered_json::object();
        for (const auto& column : columns.filled(each.index, each.record)) record[column.name] = column.after;
        const auto& known = each.known;
        context.out << separator
                    << text_of({{"key", hexadecimal(known.key)},
                                {"artist", known.artist},
                                {"album", known.album},
                                {"title", known.title},
                                {"path", known.path},
                                {"subsong", known.subsong},
                                {"statistics", record},
                                {"homes", homes}});
        separator = ",\n";
    }
    context.out << "\n]\n";
}

void list_orphans(run_context& context, const orphans_words& words) {
    const auto found = app::find_orphans(
        context.player, words.all ? app::orphan_choice::all : app::orphan_choice::gone,
        [&](std::size_t done, std::size_t total) { context.screen.show_progress("records compared", done, total); });
    context.screen.end_progress();
    const app::record_columns columns(context.player);
    (words.json ? show_as_json : show_in_lines)(context, found, columns);
    if (found.empty()) context.screen.note("Every record has its track.");
}

void attach(run_context& context, const orphans_words& words) {
    std::uint64_t key = 0;
    const auto* const end = words.key.data() + words.key.size();
    if (const auto [at, problem] = std::from_chars(words.key.data(), end, key, 16); problem != std::errc() || at != end)
        throw system::user_error("\"" + words.key + "\" is no key, such as 3f2a9c0d11e4b7a8; see 'ostrevan orphans'.");
    const auto chosen = app::tracks_at(context.player, {words.track});
    if (!chosen.problems.empty()) throw std::runtime_error(chosen.problems.front());
    if (chosen.tracks.get_count() != 1) throw system::user_error(words.track + " is not one track.");
    const auto& track = chosen.tracks[0];
    app::attach_orphan(context.player, key, track);
    context.screen.note("The statistics of " + hexadecimal(key) + " belong to " + track->location().path + " now.");
}

const command_file orphans_command(129, [](declared_command& program) {
    const auto words = std::make_shared<orphans_words>();
    auto orphans = program.add("orphans", "Records whose tracks are gone, and bringing them home", orphans_examples);
    orphans.add_flag("--all", words->all, "Also records of files outside the library, and of tags before an edit");
    orphans.add_flag("--json", words->json, "An array of objects");
    orphans.run([words](run_context& context) { list_orphans(context, *words); });
    auto attaching = orphans.add("attach", "Merge a record into that of a track");
    attaching.add_option("KEY", &words->key, "As the list shows it").required();
    attaching.add_option("TRACK", &words->track, "A path or path|subsong").required();
    attaching.run([words](run_context& context) { attach(context, *words); });
});

}  // namespace
}  // namespace ostrevan::terminal
