#include <algorithm>
#include <array>
#include <filesystem>

#include "player/app/changed_records.h"
#include "player/history/restore.h"
#include "player/sqlite/backup.h"
#include "player/system/counted.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/table.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* backup_examples =
    "Examples:\n"
    "  ostrevan backup list\n"
    "  ostrevan backup restore index-20260131-081500-daily.sqlite\n"
    "Copies of the statistics are made before the first change of a day, before operations on 1000 records or more, and\n"
    "before what cannot be undone. Restoring one is an operation that 'ostrevan undo' takes back.";

std::vector<sqlite::stored_copy> copies(const run_context& context) {
    return sqlite::stored_copies(std::filesystem::path(context.player.profile()) / "index.sqlite");
}

/// 2026-01-31 08:15:00, from 20260131-081500.
std::string shown_time(const std::string& time) {
    return time.substr(0, 4) + '-' + time.substr(4, 2) + '-' + time.substr(6, 2) + ' ' + time.substr(9, 2) + ':' +
           time.substr(11, 2) + ':' + time.substr(13, 2);
}

void list(run_context& context) {
    const auto all = copies(context);
    if (all.empty()) return context.screen.note("There is no copy yet.");
    table out({{"Copy"}, {"Time (UTC)"}, {"Reason"}, {"Bytes", true}});
    for (const auto& each : all)
        out.add_row(
            std::array{each.path.filename().string(), shown_time(each.time), each.reason, std::to_string(each.size)});
    context.screen.show_table(out);
}

std::size_t number_of(const std::vector<index::index_changes>& changes) {
    std::size_t number = 0;
    for (const auto& each : changes) number += each.records.size();
    return number;
}

/// Of the tracks of records that have gone. Components may note something of a new track at once, such as its date; done
/// now, that belongs to the restoring and is taken back with it.
void tell_of_new_tracks(run_context& context, const std::vector<index::index_changes>& restored) {
    metadb_handle_list tracks;
    for (const auto& each : restored) {
        std::vector<std::uint64_t> removed;
        for (const auto& record : each.records)
            if (!record.after) removed.push_back(record.key);
        for (auto& found : app::tracks_with_keys(context.player, each.index, removed))
            tracks.items().push_back(std::move(found.track));
    }
    if (tracks.empty()) return;
    context.on_main([&] {
        context.player.services.for_each<library_callback>(
            [&](library_callback& callback) { callback.on_items_added(tracks); }, "following a restored copy");
    });
    context.job.wait_until_idle();
}

void restore(run_context& context, const std::string& name) {
    context.player.require_writable();
    const auto all = copies(context);
    const auto copy = std::ranges::find(all, name, [](const auto& each) { return each.path.filename().string(); });
    if (copy == all.end())
        throw system::user_error("There is no copy \"" + name + "\" of the statistics; 'ostrevan backup list' lists them.");
    auto& records = context.player.records();
    const auto number = number_of(history::from_copy(records, copy->path));
    if (number == 0) return context.screen.note("All records are as in this copy.");
    const auto which = system::counted(number, "record") + (number == 1 ? " differs" : " differ");
    if (context.screen.ask({.text = which + " from the copy of " + shown_time(copy->time) + " UTC. Restore this copy?",
                            .title = "Backup",
                            .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                            .reply = {}}) != popup_message_v3::answer_yes)
        return;
    const auto [restored, act] = history::restore(records, copy->path);
    for (const auto& each : restored) {
        std::vector<std::uint64_t> keys;
        for (const auto& record : each.records) keys.push_back(record.key);
        app::tell_of_changed_records(context.player, each.index, keys);
    }
    tell_of_new_tracks(context, restored);
    const auto done = number_of(restored);
    context.screen.note(system::counted(done, "record") + (done == 1 ? " is" : " are") + " as in the copy" +
                        (act == 0 ? "." : "; 'ostrevan undo @" + std::to_string(act) + "' takes it back."));
}

const command_file backup_commands(131, [](declared_command& program) {
    auto backup = program.add("backup", "Copies of the statistics", backup_examples);
    backup.require_command();
    backup.add("list", "The copies, the newest first").run(list);
    const auto name = std::make_shared<std::string>();
    auto restoring = backup.add("restore", "Make all records those of a copy");
    restoring.add_option("COPY", name.get(), "As the list shows it").required();
    restoring.run([name](run_context& context) { restore(context, *name); });
});

}  // namespace
}  // namespace ostrevan::terminal
