#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <set>

#include "player/app/changed_records.h"
#include "player/app/track_story.h"
#include "player/history/undo.h"
#include "player/system/counted.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/key_text.h"
#include "player/terminal/table.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* history_examples =
    "Examples:\n"
    "  ostrevan history\n"
    "  ostrevan history ~/Music/song.flac\n"
    "  ostrevan history --limit 100 --where '%artist% IS Björk'\n"
    "Without a track, lists the latest operations; 'ostrevan undo' takes them back.";

constexpr const char* undo_examples =
    "Examples:\n"
    "  ostrevan undo\n"
    "  ostrevan undo 3\n"
    "  ostrevan undo @17\n"
    "Without a number, takes back the latest operation that has not been taken back. 3: the latest three. @17: the one\n"
    "that 'ostrevan history' shows with this number. Records that have changed since are listed and left as they are.";

constexpr const char* redo_examples =
    "Examples:\n"
    "  ostrevan redo\n"
    "Takes back the latest undo, unless something else has been done since.";

std::string local_time(std::int64_t time) {
    const auto seconds = static_cast<std::time_t>(time);
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts)};
}

std::string number_of(std::int64_t act) { return "@" + std::to_string(act); }

struct history_words {
    track_arguments tracks{};
    std::size_t limit = 20;
};

void print_latest(run_context& context, std::size_t limit) {
    auto journal = context.player.records().read_journal();
    table out({{"Number", true}, {"Time"}, {"Operation"}, {"Taken back"}});
    const auto acts = journal.latest(limit);
    for (const auto& act : acts)
        out.add_row(std::array{number_of(act.id), local_time(act.time), act.cause,
                               act.undone_by ? "by " + number_of(*act.undone_by) : std::string()});
    if (acts.empty()) return context.screen.note("Nothing has changed yet.");
    context.screen.show_table(out);
}

/// One line per event: "Rating 3 -> 5".
std::string in_words(const std::vector<app::column_change>& columns) {
    std::string text;
    for (const auto& each : columns) text += "  " + each.name + " " + each.before + " -> " + each.after;
    return text;
}

void print_story(run_context& context, const metadb_handle_ptr& track, std::size_t limit) {
    auto journal = context.player.records().read_journal();
    auto story = app::story_of(track, journal, context.player.index.registrations(), app::record_columns(context.player));
    context.out << track->location().path << '\n';
    if (story.size() > limit) story.resize(limit);
    for (const auto& event : story)
        context.out << "  " << local_time(event.time) << "  " << (event.act == 0 ? "" : number_of(event.act) + " ")
                    << event.what << (event.is_undone ? " (taken back)" : "") << in_words(event.columns) << '\n';
}

void print_history(run_context& context, const history_words& words) {
    if (words.tracks.paths.empty() && !words.tracks.where) return print_latest(context, words.limit);
    for (const auto& track : tracks_of(context, words.tracks, on_missing::go_on)) print_story(context, track, words.limit);
}

std::vector<std::uint64_t> keys_of(const index::index_changes& changes) {
    std::vector<std::uint64_t> keys;
    for (const auto& each : changes.records) keys.push_back(each.key);
    return keys;
}

/// Prints the tracks of the library with these keys; for records without a track, the key.
void print_tracks(run_context& context, const index::index_changes& of) {
    const auto keys = keys_of(of);
    std::set<std::uint64_t> without_track(keys.begin(), keys.end());
    for (const auto& [track, key] : app::tracks_with_keys(context.player, of.index, keys)) {
        context.out << track->location().path << '\n';
        without_track.erase(key);
    }
    for (const auto key : without_track) context.out << hexadecimal(key) << '\n';
}

/// Lists what was left.
void take_back(run_context& context, const index::act& act) {
    const auto done = history::take_back(context.player.records(), act);
    std::size_t restored = 0;
    for (const auto& each : done.restored) {
        restored += each.records.size();
        app::tell_of_changed_records(context.player, each.index, keys_of(each));
    }
    context.player.save();
    std::size_t left = 0;
    for (const auto& each : done.left) left += each.records.size();
    const auto name = number_of(act.id) + " of " + local_time(act.time) + ", " + act.cause;
    if (restored != 0) context.screen.note("Taken back: " + name + ": " + system::counted(restored, "record") + ".");
    else if (left == 0) context.screen.note("Taken back: " + name + ". No record had changed.");
    if (left == 0) return;
    context.screen.error(
        system::counted(left, "record") + " of " + name +
        (left == 1 ? " has changed since and stays as it is:" : " have changed since and stay as they are:"));
    for (const auto& each : done.left) print_tracks(context, each);
}

std::int64_t parsed_number(const std::string& text, const std::string& whole) {
    std::int64_t number = 0;
    const auto end = text.data() + text.size();
    if (const auto [at, problem] = std::from_chars(text.data(), end, number);
        problem != std::errc() || at != end || number < 1)
        throw system::user_error("\"" + whole +
                                 "\" is neither a number of operations, such as 3, nor one of them, such as @17.");
    return number;
}

void undo(run_context& context, const std::optional<std::string>& which) {
    auto& records = context.player.records();
    std::vector<index::act> acts;
    if (which && which->starts_with('@')) {
        const auto act = records.read_journal().find(parsed_number(which->substr(1), *which));
        if (!act) throw system::user_error("There is no operation " + *which + "; 'ostrevan history' lists them.");
        if (act->undone_by) throw system::user_error(*which + " has been taken back by " + number_of(*act->undone_by) + ".");
        acts.push_back(*act);
    } else {
        acts = history::next_to_undo(records, which ? static_cast<std::size_t>(parsed_number(*which, *which)) : 1);
    }
    if (acts.empty()) return context.screen.note("There is nothing to take back.");
    for (const auto& act : acts) take_back(context, act);
}

void redo(run_context& context) {
    const auto act = history::next_to_redo(context.player.records());
    if (!act) return context.screen.note("No undo to take back: none was the last thing done.");
    take_back(context, *act);
}

const command_file history_commands(125, [](declared_command& program) {
    const auto words = std::make_shared<history_words>();
    auto history = program.add("history", "What changed the statistics, of all tracks or of one", history_examples);
    words->tracks.declare(history);
    history.add_option("--limit", &words->limit, "How many, the newest first").between(1, 1'000'000'000).show_default();
    history.run([words](run_context& context) { print_history(context, *words); });
    const auto which = std::make_shared<std::optional<std::string>>();
    auto undoing = program.add("undo", "Take back what the last operations changed", undo_examples);
    undoing.add_option("WHICH", which.get(), "How many of the latest, or @NUMBER");
    undoing.run([which](run_context& context) { undo(context, *which); });
    program.add("redo", "Take back the last undo", redo_examples).run(redo);
});

}  // namespace
}  // namespace ostrevan::terminal
