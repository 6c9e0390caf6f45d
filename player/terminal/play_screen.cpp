#include "player/terminal/play_screen.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "player/terminal/playback_text.h"

namespace ostrevan::terminal {

std::string play_screen::text_of(const titleformat::script& script, const metadb_handle_ptr& track) const {
    return script.run(titleformat::track_fields(context_.player.fields, *track)).text;
}

void play_screen::on_started(const app::now_playing& now, const playback::play_status& status) {
    show([this, now, where = place_text(now.entry, status)] {
        context_.screen.note("Playing " + where + ": " + text_of(title_, now.track));
    });
}

void play_screen::on_progress(const app::now_playing& now, const playback::play_status& status) {
    if (!progress_.put({now, status})) return;
    show([this] {
        const auto shown = progress_.take();
        const auto length = shown.now.duration > 0 ? " / " + clock_text(shown.now.duration) : "";
        std::vector details{clock_text(shown.now.position) + length, text_of(rating_, shown.now.track)};
        std::ranges::move(modes_of(shown.status), std::back_inserter(details));
        context_.screen.show_line(text_of(title_, shown.now.track), details);
    });
}

void play_screen::on_counted(const metadb_handle_ptr& track) {
    show([this, track] {
        ++counted_;
        context_.out << "Counted: " << text_of(title_, track) << std::endl;
    });
}

void play_screen::on_not_counted(const metadb_handle_ptr& track, const std::string& reason) {
    show([this, track, reason] {
        context_.out << "Played, not counted: " << text_of(title_, track) << ": " << reason << std::endl;
    });
}

void play_screen::on_failure(const std::string& text) {
    show([this, text] { context_.screen.error(text); });
}

void play_screen::on_ended(bool is_replaced) {
    show([this, is_replaced] {
        has_ended_ = true;
        is_replaced_ = is_replaced;
    });
}

}  // namespace ostrevan::terminal
