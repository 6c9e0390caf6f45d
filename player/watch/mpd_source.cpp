#include "player/watch/mpd_source.h"

#include <mpd/client.h>
#include <poll.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace ostrevan::watch {
namespace {

constexpr const char* player_name = "mpd";
constexpr unsigned patience_ms = 3000;
constexpr int poll_ms = 1000;

template <class Thing, void (*release)(Thing*)>
struct releasing {
    void operator()(Thing* thing) const noexcept { release(thing); }
};
template <class Thing, void (*release)(Thing*)>
using owned = std::unique_ptr<Thing, releasing<Thing, release>>;

/// Newer versions of the client library know the socket of the user's session themselves.
std::string session_socket() {
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    if (std::getenv("MPD_HOST") != nullptr || std::getenv("MPD_PORT") != nullptr || folder == nullptr) return {};
    auto path = std::string(folder) + "/mpd/socket";
    std::error_code error;
    return std::filesystem::exists(path, error) ? path : std::string();
}

/// Listens on one connection to the daemon.
class mpd_listening {
public:
    mpd_listening(observation_queue& out, std::string music_folder);
    /// The daemon remembers what it plays when it is restarted.
    ~mpd_listening() { out_.push(player_name, is_out_of_reach{}); }
    mpd_listening(const mpd_listening&) = delete;
    mpd_listening& operator=(const mpd_listening&) = delete;

    void listen(const system::wake_event& stop);

private:
    void check(bool is_done);
    void log_in();
    void ask_for_folder();
    void tell();
    [[nodiscard]] told_track track_of(const mpd_song& song) const;

    observation_queue& out_;
    std::string music_folder_;
    bool is_playing_ = false;
    owned<mpd_connection, mpd_connection_free> mpd_;
};

mpd_listening::mpd_listening(observation_queue& out, std::string music_folder)
    : out_(out), music_folder_(std::move(music_folder)) {
    const auto socket = session_socket();
    if (!socket.empty()) mpd_.reset(mpd_connection_new(socket.c_str(), 0, patience_ms));
    // A socket may be left of a daemon that has ended.
    if (!mpd_ || mpd_connection_get_error(mpd_.get()) != MPD_ERROR_SUCCESS)
        mpd_.reset(mpd_connection_new(nullptr, 0, patience_ms));
    if (!mpd_) throw std::bad_alloc();
    check(mpd_connection_get_error(mpd_.get()) == MPD_ERROR_SUCCESS);
    log_in();
    if (music_folder_.empty()) ask_for_folder();
    tell();
    out_.push("MPD", has_trouble{});
}

void mpd_listening::check(bool is_done) {
    if (!is_done)
        throw std::runtime_error(std::string("MPD is not heard: ") + mpd_connection_get_error_message(mpd_.get()) + ".");
}

void mpd_listening::log_in() {
    const auto* const settings = mpd_connection_get_settings(mpd_.get());
    const char* const password = settings == nullptr ? nullptr : mpd_settings_get_password(settings);
    if (password != nullptr) check(mpd_run_password(mpd_.get(), password));
}

/// Refused over the network, and by a daemon without such a folder.
void mpd_listening::ask_for_folder() {
    check(mpd_send_command(mpd_.get(), "config", nullptr));
    if (auto* const pair = mpd_recv_pair_named(mpd_.get(), "music_directory")) {
        music_folder_ = pair->value;
        mpd_return_pair(mpd_.get(), pair);
    }
    if (!mpd_response_finish(mpd_.get())) check(mpd_connection_clear_error(mpd_.get()));
}

std::string values_of(const mpd_song& song, mpd_tag_type tag) {
    std::string text;
    for (unsigned i = 0; const char* const value = mpd_song_get_tag(&song, tag, i); ++i)
        text += (text.empty() ? "" : ", ") + std::string(value);
    return text;
}

told_track mpd_listening::track_of(const mpd_song& song) const {
    std::string location = mpd_song_get_uri(&song);
    const bool is_below_folder = !location.starts_with('/') && location.find("://") == std::string::npos;
    if (is_below_folder && !music_folder_.empty()) location = music_folder_ + "/" + location;
    return {.id = std::to_string(mpd_song_get_id(&song)),
            .location = std::move(location),
            .title = values_of(song, MPD_TAG_TITLE),
            .artist = values_of(song, MPD_TAG_ARTIST),
            .album = values_of(song, MPD_TAG_ALBUM),
            .length = mpd_song_get_duration_ms(&song) / 1000.0};
}

void mpd_listening::tell() {
    const owned<mpd_status, mpd_status_free> status(mpd_run_status(mpd_.get()));
    check(status != nullptr);
    const auto state = mpd_status_get_state(status.get());
    is_playing_ = state == MPD_STATE_PLAY;
    const owned<mpd_song, mpd_song_free> song(mpd_run_current_song(mpd_.get()));
    check(song || mpd_connection_get_error(mpd_.get()) == MPD_ERROR_SUCCESS);
    if (song) out_.push(player_name, has_track{track_of(*song)});
    out_.push(player_name, has_state{is_playing_                ? play_state::playing
                                     : state == MPD_STATE_PAUSE ? play_state::paused
                                                                : play_state::stopped});
    if (song && state != MPD_STATE_STOP) out_.push(player_name, is_at{mpd_status_get_elapsed_ms(status.get()) / 1000.0});
}

void mpd_listening::listen(const system::wake_event& stop) {
    while (!stop.is_set()) {
        tell();
        check(mpd_send_idle_mask(mpd_.get(), MPD_IDLE_PLAYER));
        std::array<pollfd, 2> files{pollfd{mpd_connection_get_fd(mpd_.get()), POLLIN, 0}, pollfd{stop.file(), POLLIN, 0}};
        const bool is_told = poll(files.data(), files.size(), is_playing_ ? poll_ms : -1) > 0 && files[0].revents != 0;
        if (is_told) mpd_recv_idle(mpd_.get(), false);
        else mpd_run_noidle(mpd_.get());
        check(mpd_connection_get_error(mpd_.get()) == MPD_ERROR_SUCCESS);
    }
}

}  // namespace

std::unique_ptr<source_thread> watch_mpd(observation_queue& out, std::string music_folder) {
    return std::make_unique<source_thread>("MPD", out,
                                           [&out, folder = std::move(music_folder)](const system::wake_event& stop) {
                                               mpd_listening(out, folder).listen(stop);
                                           });
}

}  // namespace ostrevan::watch
