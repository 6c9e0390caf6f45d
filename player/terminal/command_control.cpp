// Commands for what plays in another process.
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/playing_now.h"
#include "player/terminal/switch_word.h"

namespace ostrevan::terminal {
namespace {

using playback::action;

constexpr const char* pause_examples =
    "Examples:\n"
    "  ostrevan pause\n"
    "  ostrevan pause off\n"
    "Without a word, pauses or goes on.";

constexpr const char* move_examples =
    "Examples:\n"
    "  ostrevan next\n"
    "  ostrevan previous";

constexpr const char* seek_examples =
    "Examples:\n"
    "  ostrevan seek 1:30\n"
    "  ostrevan seek +10\n"
    "  ostrevan seek -10";

constexpr const char* volume_examples =
    "Examples:\n"
    "  ostrevan volume 80\n"
    "  ostrevan volume -5\n"
    "Without a word, prints it.";

void perform(const run_context& context, const playback::request& wanted) {
    (void)require_playing(context);
    context.on_main([&] { context.player.playing.perform(wanted); });
}

void pause(const run_context& context, const std::optional<std::string>& word) {
    if (!word) return perform(context, {action::toggle_pause});
    perform(context, {parse_switch(*word) ? action::pause : action::resume});
}

void seek(const run_context& context, const std::string& text) {
    const auto [is_step, amount] = parse_amount(text);
    perform(context, {is_step ? action::seek_by : action::seek_to, amount});
}

void change_volume(const run_context& context, const std::optional<std::string>& text) {
    if (!text) {
        context.out << require_playing(context).status.volume << '\n';
        return;
    }
    if (text->find(':') != std::string::npos)
        throw system::user_error("\"" + *text + "\" is no volume, such as 80, +5 or -5.");
    const auto [is_step, amount] = parse_amount(*text);
    perform(context, {is_step ? action::change_volume : action::set_volume, amount});
}

const command_file control_commands(34, [](declared_command& program) {
    const auto word = std::make_shared<std::optional<std::string>>();
    auto pausing = program.add("pause", "Pause what plays in another process, or go on", pause_examples);
    pausing.add_option("WORD", word.get(), "on or off");
    pausing.run([word](run_context& context) { pause(context, *word); });

    program.add("next", "Play the next track", move_examples).run([](run_context& context) {
        perform(context, {action::next});
    });
    program.add("previous", "Play the track before", move_examples).run([](run_context& context) {
        perform(context, {action::previous});
    });

    const auto to = std::make_shared<std::string>();
    auto seeking = program.add("seek", "Go to another position in the track", seek_examples);
    seeking.add_option("POSITION", to.get(), "Seconds or minutes:seconds; with + or - from here").required();
    seeking.run([to](run_context& context) { seek(context, *to); });

    auto volume = program.add("volume", "Change the volume", volume_examples);
    const auto percent = std::make_shared<std::optional<std::string>>();
    volume.add_option("PERCENT", percent.get(), "0 to 100; relative with + or -");
    volume.run([percent](run_context& context) { change_volume(context, *percent); });
});

}  // namespace
}  // namespace ostrevan::terminal
