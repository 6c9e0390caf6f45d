#include "player/desktop/now_playing_link.h"

#include "player/desktop/qt_text.h"
#include "player/desktop/transport_bar.h"

namespace ostrevan::desktop {

now_playing_link::now_playing_link(app::session& player, transport_bar& bar)
    : player_(player),
      bar_(bar),
      title_(titleformat::compile("%title%[ - %artist%][ (%album%)]")),
      formatting_(player.loop) {
    player_.playing.add(*this);
}

now_playing_link::~now_playing_link() { player_.playing.remove(*this); }

void now_playing_link::show_title(const metadb_handle_ptr& track) {
    formatting_.ask([this, track, script = title_, &fields = player_.fields](const std::atomic<bool>&) {
        return [this, track, text = script.run(titleformat::track_fields(fields, *track)).text] {
            bar_.show_title(line_of(text));
            on_track(track, line_of(text));
        };
    });
}

void now_playing_link::on_started(const app::now_playing& now, const playback::play_status&) { show_title(now.track); }

void now_playing_link::on_progress(const app::now_playing& now, const playback::play_status& status) {
    bar_.show_playing(now, status);
}

void now_playing_link::on_not_counted(const metadb_handle_ptr& track, const std::string& reason) {
    on_failed("Played, not counted: " + track->location().path + " (" + reason + ")");
}

void now_playing_link::on_ended(bool is_replaced) {
    formatting_.forget();
    if (is_replaced) return;
    bar_.show_stopped();
    on_track(nullptr, {});
}

}  // namespace ostrevan::desktop
