#include <algorithm>
#include <stdexcept>

#include "player/app/queue_edits.h"
#include "player/terminal/command.h"
#include "player/terminal/playback_text.h"
#include "player/terminal/track_arguments.h"
#include "player/terminal/track_json.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::terminal {
namespace {

using playback::queue;

constexpr const char* queue_examples =
    "Examples:\n"
    "  ostrevan queue\n"
    "  ostrevan queue --json | jq '.[] | select(.current).title'\n"
    "  ostrevan queue add ~/Music/album\n"
    "  ostrevan queue add --next --where '%title% IS Low Water'\n"
    "  ostrevan queue move 7 2\n"
    "  ostrevan queue remove 3 5\n"
    "  ostrevan queue clear\n"
    "Lists what is played in another process or, when nothing plays, what 'ostrevan play' goes on with: the tracks in the "
    "order in which they are played, with their numbers. The current one is marked.";

void print_json(const run_context& context, const app::current_queue& now) {
    const track_json object_of(context);
    context.out << '[';
    std::size_t number = 0;
    for (const auto entry : now.order.round()) {
        if (!context.out || context.job.stop()) return;
        nlohmann::ordered_json object{{"number", ++number}, {"current", entry == now.order.current_entry()}};
        object.update(object_of(*now.tracks[entry]));
        context.out << (number == 1 ? "\n" : ",\n") << text_of(object);
    }
    context.out << "\n]\n";
}

void print_lines(const run_context& context, const app::current_queue& now) {
    const auto title = titleformat::compile("[%artist% - ]%title%");
    std::size_t number = 0;
    for (const auto entry : now.order.round()) {
        if (!context.out || context.job.stop()) return;
        const titleformat::track_fields fields(context.player.fields, *now.tracks[entry]);
        context.out << (entry == now.order.current_entry() ? "> " : "  ") << ++number << '\t' << title.run(fields).text
                    << '\n';
    }
}

void print_queue(run_context& context, bool json) {
    const auto now = app::find_queue(context.player);
    if (now) return json ? print_json(context, *now) : print_lines(context, *now);
    if (json) context.out << "[]\n";
    else context.screen.note("The queue is empty.");
}

/// The entry with a number as `queue` prints it.
queue::entry entry_at(const queue::entries& round, std::size_t number) {
    if (number >= 1 && number <= round.size()) return round[number - 1];
    throw std::runtime_error("The queue has the numbers 1 to " + std::to_string(round.size()) + ".");
}

void add(run_context& context, const track_arguments& wanted, bool is_next) {
    const auto tracks = tracks_of(context, wanted);
    if (tracks.empty()) return;
    app::add_to_queue(context.player, tracks, is_next);
    context.screen.note("Added to the queue: " + count_text(tracks.get_count()) + ".");
}

void remove(run_context& context, const std::vector<std::size_t>& numbers) {
    app::edit_queue(context.player, [numbers](queue& order, bool) {
        queue::entries removed;
        for (const auto number : numbers) removed.push_back(entry_at(order.round(), number));
        return order.remove(removed);
    });
}

void move(run_context& context, std::size_t from, std::size_t to) {
    app::edit_queue(context.player, [from, to](queue& order, bool) {
        const auto round = order.round();
        (void)entry_at(round, to);
        order.move(entry_at(round, from), to - 1);
        return true;
    });
}

void clear(run_context& context) {
    if (!app::find_queue(context.player)) return;
    app::edit_queue(context.player, [](queue& order, bool is_playing) {
        auto removed = order.list();
        if (is_playing) std::erase(removed, order.current_entry());
        return order.remove(removed);
    });
}

const command_file queue_commands(36, [](declared_command& program) {
    auto listed = program.add("queue", "List and edit what is played, and what comes", queue_examples);
    const auto json = std::make_shared<bool>(false);
    listed.add_flag("--json", *json, "An array of objects");
    listed.run([json](run_context& context) { print_queue(context, *json); });

    const auto tracks = std::make_shared<track_arguments>();
    const auto is_next = std::make_shared<bool>(false);
    auto adding = listed.add("add", "Add tracks at the end", queue_examples);
    tracks->declare(adding);
    adding.add_flag("--next", *is_next, "Right after the current track");
    adding.run([tracks, is_next](run_context& context) { add(context, *tracks, *is_next); });

    const auto numbers = std::make_shared<std::vector<std::size_t>>();
    auto removing =
        listed.add("remove", "Remove tracks; instead of the one that plays, the next one is played", queue_examples);
    removing.add_option("NUMBER", numbers.get()).required();
    removing.run([numbers](run_context& context) { remove(context, *numbers); });

    const auto from = std::make_shared<std::size_t>(), to = std::make_shared<std::size_t>();
    auto moving = listed.add("move", "Move the track with one number to another", queue_examples);
    moving.add_option("FROM", from.get()).required();
    moving.add_option("TO", to.get()).required();
    moving.run([from, to](run_context& context) { move(context, *from, *to); });

    listed.add("clear", "Remove all tracks but the one that plays", queue_examples).run(clear);
});

}  // namespace
}  // namespace ostrevan::terminal
