#include "player/playback/mpv_player.h"

#include <mpv/client.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "player/playback/mpv_core.h"

namespace ostrevan::playback {
namespace {

constexpr double turn_seconds = 0.1;

template <class callback, class... arguments>
void report(const callback& called, const arguments&... values) {
    if (called) called(values...);
}

bool is_url(std::string_view path) {
    const auto scheme = path.substr(0, path.find("://"));
    return scheme.size() < path.size() && !scheme.empty() && scheme.find('/') == std::string_view::npos;
}

/// Why an item is never passed to libmpv, which would open the network, wait on a pipe forever, or take a folder for a
/// list. Empty when it may be.
std::string refusal(const std::string& path) {
    if (is_url(path)) return "Only files of this machine are played";
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return "The file does not exist";
    if (error) return error.message();
    if (!std::filesystem::is_regular_file(status)) return "This is not a regular file";
    return {};
}

end_reason translate(mpv_end_file_reason reason) {
    if (reason == MPV_END_FILE_REASON_EOF) return end_reason::finished;
    return reason == MPV_END_FILE_REASON_ERROR ? end_reason::failed : end_reason::stopped;
}

}  // namespace

/// The playback of one list. libmpv holds at most the playing item and the next: enough for gapless playback, too few to
/// run so far ahead of the callbacks that events are lost.
class mpv_player::session {
public:
    session(const play_options& options, const play_callbacks& callbacks, std::span<const play_item> items)
        : callbacks_(callbacks),
          items_(items),
          wants_device_(options.audio == audio_output::automatic && !options.fast),
          core_(options),
          rule_(options.thresholds) {}

    bool run(const std::atomic<bool>& stop);
    void seek(double position);

private:
    void append_next();
    void report_refused();
    void handle(const mpv_event& event);
    void on_start_file(std::int64_t entry);
    void on_loaded();
    void on_seek();
    void on_restart();
    void on_position(double seconds);
    void on_device(std::string_view output);
    void on_end_file(const mpv_event_end_file& end);
    void finish(end_reason reason);

    const play_item& item() const { return items_[*current_]; }
    double start() const { return item().start.value_or(0); }

    const play_callbacks& callbacks_;
    std::span<const play_item> items_;
    const bool wants_device_;
    mpv_core core_;
    play_rule rule_;

    std::size_t next_ = 0;                                      // first item not passed to libmpv yet
    std::map<std::int64_t, std::size_t> queued_;                // items in libmpv, by entry id
    std::vector<std::pair<std::size_t, std::string>> refused_;  // errors to report at their turn

    std::optional<std::size_t> current_;
    bool is_heard_ = true;
    double duration_ = 0;
    bool sounding_ = false;       // since the file was opened
    bool audible_ = false;        // since the first sound; earlier positions are not this item's
    bool seeking_ = false;        // between a jump and the next sound
    bool finding_start_ = false;  // libmpv's own first seek, to the start of the item
};

bool mpv_player::session::run(const std::atomic<bool>& stop) {
    append_next();
    while (!queued_.empty()) {
        if (stop) {
            if (sounding_) finish(end_reason::stopped);
            return false;
        }
        handle(core_.wait(turn_seconds));
        report(callbacks_.on_turn);
    }
    report_refused();
    return true;
}

void mpv_player::session::seek(double position) {
    if (sounding_) core_.seek(start() + std::clamp(position, 0.0, std::max(duration_, 0.0)));
}

void mpv_player::session::append_next() {
    while (next_ < items_.size()) {
        const std::size_t index = next_++;
        std::string why = refusal(items_[index].path);
        if (why.empty()) {
            play_item absolute = items_[index];
            absolute.path = std::filesystem::absolute(absolute.path).string();
            queued_.emplace(core_.append(absolute), index);
            return;
        }
        refused_.emplace_back(index, std::move(why));
    }
}

void mpv_player::session::report_refused() {
    const auto due = std::exchange(refused_, {});
    for (const auto& [index, text] : due) report(callbacks_.on_error, index, text);
}

void mpv_player::session::handle(const mpv_event& event) {
    switch (event.event_id) {
        case MPV_EVENT_START_FILE:
            return on_start_file(static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id);
        case MPV_EVENT_FILE_LOADED:
            return on_loaded();
        case MPV_EVENT_SEEK:
            return on_seek();
        case MPV_EVENT_PLAYBACK_RESTART:
            return on_restart();
        case MPV_EVENT_PROPERTY_CHANGE: {
            const auto& property = *static_cast<const mpv_event_property*>(event.data);
            if (property.format == MPV_FORMAT_DOUBLE) on_position(*static_cast<const double*>(property.data));
            if (property.format == MPV_FORMAT_STRING) on_device(*static_cast<const char* const*>(property.data));
            return;
        }
        case MPV_EVENT_END_FILE:
            return on_end_file(*static_cast<const mpv_event_end_file*>(event.data));
        case MPV_EVENT_SHUTDOWN:
            throw std::runtime_error("The audio engine stopped unexpectedly");
        default:
            return;
    }
}

void mpv_player::session::on_start_file(std::int64_t entry) {
    const auto found = queued_.find(entry);
    if (found == queued_.end()) return;
    report_refused();
    current_ = found->second;
    audible_ = false;
    seeking_ = false;
    finding_start_ = start() > 0;
    rule_.started();
    append_next();
}

void mpv_player::session::on_loaded() {
    if (!current_) return;
    const double whole = std::max(core_.number("duration"), 0.0);
    const double end = whole > 0 ? std::min(item().end.value_or(whole), whole) : item().end.value_or(0);
    duration_ = std::max(end - start(), 0.0);
    rule_.loaded(duration_);
    sounding_ = duration_ > 0 || start() <= 0;
    if (!sounding_) return;
    report(callbacks_.on_started, *current_);
    report(callbacks_.on_progress, *current_, 0.0, duration_);
}

void mpv_player::session::on_seek() {
    if (std::exchange(finding_start_, false)) return;
    seeking_ = true;
    rule_.seek();
}

void mpv_player::session::on_restart() {
    audible_ = true;
    rule_.restart();
    // Asking for the position now may answer from beyond a seek that is still on its way to us. After a seek that does no
    // harm, since the first position only says where listening begins again; at the start of an item it would add the jump.
    if (std::exchange(seeking_, false)) on_position(core_.number("time-pos"));
}

void mpv_player::session::on_position(double seconds) {
    if (!sounding_ || !audible_ || seconds < 0) return;
    const double position = std::max(seconds - start(), 0.0);
    const bool counts = rule_.position(position);
    report(callbacks_.on_progress, *current_, position, duration_);
    if (counts) report(callbacks_.on_counted, *current_);
}

/// libmpv falls back to the null output.
void mpv_player::session::on_device(std::string_view output) {
    const bool heard = !wants_device_ || output != "null";
    if (heard != std::exchange(is_heard_, heard)) report(callbacks_.on_hearing, heard);
}

void mpv_player::session::on_end_file(const mpv_event_end_file& end) {
    const auto found = queued_.find(end.playlist_entry_id);
    if (found == queued_.end()) return;
    const std::size_t index = found->second;
    queued_.erase(found);
    if (end.reason == MPV_END_FILE_REASON_REDIRECT) {
        core_.remove(end.playlist_insert_id, end.playlist_insert_num_entries);
        report(callbacks_.on_error, index, std::string("This is a list of other files and not a track"));
    } else if (end.reason == MPV_END_FILE_REASON_ERROR) {
        report(callbacks_.on_error, index, std::string(mpv_error_string(end.error)));
    } else if (!sounding_) {
        report(callbacks_.on_error, index, std::string("The track starts behind the end of the file"));
    }
    if (sounding_) finish(translate(end.reason));
    current_.reset();
}

void mpv_player::session::finish(end_reason reason) {
    sounding_ = false;
    const std::size_t index = *current_;
    if (rule_.ended(reason)) report(callbacks_.on_counted, index);
    report(callbacks_.on_finished, index);
}

mpv_player::mpv_player(play_options options, play_callbacks callbacks)
    : options_(options), callbacks_(std::move(callbacks)) {}

bool mpv_player::run(std::span<const play_item> items, const std::atomic<bool>& stop) {
    session playing(options_, callbacks_, items);
    struct registration {
        session*& slot;
        ~registration() { slot = nullptr; }
    } const registered{session_ = &playing};
    return playing.run(stop);
}

void mpv_player::seek(double position) {
    if (session_) session_->seek(position);
}

}  // namespace ostrevan::playback
