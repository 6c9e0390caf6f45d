#include "player/playback/mpv_player.h"

#include <mpv/client.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
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
std::string refusal(const play_item& item) {
    const auto& path = item.path;
    if (!item.problem.empty()) return item.problem;
    if (is_url(path)) return "Only files of this machine are played";
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return "The file does not exist";
    if (error) return error.message();
    if (!std::filesystem::is_regular_file(status)) return "This is not a regular file";
    return {};
}

template <class mode>
mode after_mode(mode now, mode last) {
    return now == last ? mode{} : static_cast<mode>(static_cast<int>(now) + 1);
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
    session(const play_options& options, const play_callbacks& callbacks, std::vector<play_item> items, queue order)
        : callbacks_(callbacks),
          items_(std::move(items)),
          wants_device_(options.audio == audio_output::automatic && !options.fast),
          core_(options),
          rule_(options.thresholds),
          status_{std::move(order), options.volume},
          start_at_(options.start_at) {}

    using mailbox = std::function<std::vector<task>()>;
    bool run(const std::atomic<bool>& stop, const mailbox& tasks);
    void wake() { core_.wake(); }
    void perform(const request& wanted);
    void edit(queue_edit& wanted);

private:
    using turn = queue::turn;
    using step = std::optional<turn> (queue::*)(turn);
    struct queued_item {
        turn at;
        queue::entry entry;
    };

    [[nodiscard]] std::size_t failures_allowed() const;
    std::optional<turn> find_playable(std::optional<turn> at, step onward);
    void drop_pending();
    void append_next();
    void jump(std::optional<turn> target);
    void leave();
    void end_list();
    [[nodiscard]] play_item request_for(queue::entry entry) const;
    void seek(double position);
    void report_status() { report(callbacks_.on_status, status_); }
    void report_refused();
    void handle(const mpv_event& event);
    void on_start_file(std::int64_t id);
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
    std::vector<play_item> items_;  // by entry
    const bool wants_device_;
    mpv_core core_;
    play_rule rule_;

    play_status status_;
    double start_at_;                                           // of the next item; 0 for its start
    std::map<std::int64_t, queued_item> queued_;                // items in libmpv, by its ids
    std::optional<std::int64_t> pending_;                       // the one of them that follows by itself
    std::vector<std::pair<std::size_t, std::string>> refused_;  // errors to report at their turn
    std::size_t failures_ = 0;                                  // since something sounded
    bool has_quit_ = false;

    std::optional<queue::entry> current_;
    std::int64_t current_id_ = -1;  // -1 between two items
    double position_ = 0;           // or where a seek leads
    bool is_heard_ = true;
    double opened_length_ = 0;  // of the file opened last; not above 0 when it has none
    double duration_ = 0;
    bool sounding_ = false;       // since the file was opened
    bool audible_ = false;        // since the first sound; earlier positions are not this item's
    bool seeking_ = false;        // between a jump and the next sound
    bool finding_start_ = false;  // libmpv's own first seek, to the start of the item
};

bool mpv_player::session::run(const std::atomic<bool>& stop, const mailbox& tasks) {
    jump(status_.order.current());
    while (!queued_.empty()) {
        if (stop || has_quit_) {
            if (sounding_) finish(end_reason::stopped);
            return false;
        }
        handle(core_.wait(turn_seconds));
        for (const auto& work : tasks()) work(*this);
        report(callbacks_.on_turn);
    }
    report_refused();
    end_list();
    return true;
}

/// A repeated list without a single track that can be played would go on forever.
std::size_t mpv_player::session::failures_allowed() const {
    return status_.order.modes().repeat == repeat_mode::track ? 1 : status_.order.size();
}

/// Notes the items that are passed over.
std::optional<queue::turn> mpv_player::session::find_playable(std::optional<turn> at, step onward) {
    auto& order = status_.order;
    for (; at && failures_ < failures_allowed(); at = (order.*onward)(*at)) {
        auto why = refusal(items_[order.entry_of(*at)]);
        if (why.empty()) return at;
        ++failures_;
        refused_.emplace_back(order.entry_of(*at), std::move(why));
    }
    return std::nullopt;
}

play_item mpv_player::session::request_for(queue::entry entry) const {
    auto item = items_[entry];
    item.path = std::filesystem::absolute(item.path).string();
    return item;
}

void mpv_player::session::drop_pending() {
    refused_.clear();
    if (!pending_) return;
    core_.remove(*pending_, 1);
    queued_.erase(*pending_);
    pending_.reset();
}

/// libmpv joins the next item to the current one without a gap if it knows it in time.
void mpv_player::session::append_next() {
    drop_pending();
    const auto next = find_playable(status_.order.following(), &queue::after);
    if (!next) return;
    const auto entry = status_.order.entry_of(*next);
    pending_ = core_.append(request_for(entry));
    queued_.emplace(*pending_, queued_item{*next, entry});
}

/// Leaves the current item for another; without one, ends the list.
void mpv_player::session::jump(std::optional<turn> target) {
    drop_pending();
    // A jump just before this one may never have started.
    std::erase_if(queued_, [this](const auto& each) { return each.first != current_id_; });
    const auto found = find_playable(target, &queue::after);
    if (!found) return core_.stop();
    auto& order = status_.order;
    if (*found != order.current()) start_at_ = 0;
    order.go_to(*found);
    auto item = request_for(order.entry_of(*found));
    if (start_at_ > 0) item.start = item.start.value_or(0) + start_at_;
    queued_.emplace(core_.replace(item), queued_item{*found, order.entry_of(*found)});
}

/// By the listener's own act, and not to come back to it: neither after `previous` nor after quitting, which keeps the
/// queue.
void mpv_player::session::leave() {
    if (sounding_ && rule_.left(position_)) report(callbacks_.on_skipped, *current_, rule_.listened());
}

/// Where a later playback of the list begins.
void mpv_player::session::end_list() {
    auto& order = status_.order;
    if (order.size() == 0) return;
    const auto next = order.modes().stop_after ? order.after(order.current()) : std::nullopt;
    order.set_stop_after(false);
    if (next) order.go_to(*next);
    else order.begin_again();
    report_status();
}

void mpv_player::session::seek(double position) {
    if (!sounding_) return;
    position_ = std::clamp(position, 0.0, std::max(duration_, 0.0));
    core_.seek(start() + position_);
    if (status_.is_paused) report(callbacks_.on_progress, *current_, position_, duration_);
}

void mpv_player::session::perform(const request& wanted) {
    auto& order = status_.order;
    const auto before = order.modes();
    const auto set_pause = [this](bool is_paused) { core_.pause(status_.is_paused = is_paused); };
    const auto set_volume = [this](double percent) { core_.set_volume(status_.volume = std::clamp(percent, 0.0, 100.0)); };
    switch (wanted.what) {
        case action::toggle_pause:
            set_pause(!status_.is_paused);
            break;
        case action::pause:
            set_pause(true);
            break;
        case action::resume:
            set_pause(false);
            break;
        case action::next:
            leave();
            return jump(order.after(order.current()));
        case action::previous:
            drop_pending();
            return jump(find_playable(order.before(order.current()), &queue::before).value_or(order.current()));
        case action::seek_by:
            return seek(position_ + wanted.amount);
        case action::seek_to:
            return seek(wanted.amount);
        case action::change_volume:
            set_volume(status_.volume + wanted.amount);
            break;
        case action::set_volume:
            set_volume(wanted.amount);
            break;
        case action::cycle_repeat:
            order.set_repeat(after_mode(before.repeat, repeat_mode::list));
            break;
        case action::set_repeat:
            order.set_repeat(static_cast<repeat_mode>(wanted.amount));
            break;
        case action::cycle_shuffle:
            order.set_shuffle(after_mode(before.shuffle, shuffle_mode::albums));
            break;
        case action::set_shuffle:
            order.set_shuffle(static_cast<shuffle_mode>(wanted.amount));
            break;
        case action::toggle_stop_after:
            order.set_stop_after(!before.stop_after);
            break;
        case action::make_way:
            leave();
            has_quit_ = true;
            break;
        case action::quit:
            has_quit_ = true;
            break;
        case action::rate:
            return;
    }
    if (order.modes() != before) append_next();
    report_status();
}

void mpv_player::session::edit(queue_edit& wanted) {
    std::ranges::move(std::exchange(wanted.added, {}), std::back_inserter(items_));
    auto& order = status_.order;
    auto edited = order;
    bool goes_on = false;
    try {
        goes_on = wanted.change(edited);
    } catch (...) {
        return wanted.done.set_exception(std::current_exception());
    }
    const auto before = std::exchange(order, std::move(edited)).current_entry();
    ++status_.edits;
    if (order.place_of(before)) {
        append_next();
    } else {
        leave();
        start_at_ = 0;
        jump(goes_on ? std::optional(order.current()) : std::nullopt);
    }
    report_status();
    wanted.done.set_value();
}

void mpv_player::session::report_refused() {
    const auto due = std::exchange(refused_, {});
    for (const auto& [index, text] : due) report(callbacks_.on_error, index, text);
}

void mpv_player::session::handle(const mpv_event& event) {
    switch (event.event_id) {
        case MPV_EVENT_START_FILE:
            return on_start_file(static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id);
        case MPV_EVENT_HOOK:
            opened_length_ = core_.number("duration");
            return core_.load_further(event);
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

void mpv_player::session::on_start_file(std::int64_t id) {
    const auto found = queued_.find(id);
    if (found == queued_.end()) return;
    report_refused();
    if (pending_ == id) status_.order.go_to(found->second.at);
    if (pending_ == id) pending_.reset();
    current_ = found->second.entry;
    current_id_ = id;
    position_ = std::exchange(start_at_, 0);
    audible_ = false;
    // The part heard before the interruption does not count again.
    seeking_ = position_ > 0;
    finding_start_ = !seeking_ && start() > 0;
    rule_.started();
    if (seeking_) rule_.seek();
    append_next();
}

void mpv_player::session::on_loaded() {
    if (!current_) return;
    // libmpv has no length any more when it is through with a short file already.
    const double now = core_.number("duration");
    const double whole = std::max(now > 0 ? now : opened_length_, 0.0);
    const double end = whole > 0 ? std::min(item().end.value_or(whole), whole) : item().end.value_or(0);
    duration_ = std::max(end - start(), 0.0);
    rule_.loaded(duration_);
    sounding_ = duration_ > 0 || whole <= 0 || start() <= 0;
    if (!sounding_) return;
    failures_ = 0;
    report_status();
    report(callbacks_.on_started, *current_);
    report(callbacks_.on_progress, *current_, position_, duration_);
}

void mpv_player::session::on_seek() {
    if (std::exchange(finding_start_, false)) return;
    seeking_ = true;
    rule_.seek();
}

void mpv_player::session::on_restart() {
    audible_ = true;
    rule_.restart();
    // The position may already be the one after a seek whose event has not arrived yet. After a seek that does no
    // harm, since the first position only says where listening begins again; at the start of an item it would add the jump.
    if (std::exchange(seeking_, false)) on_position(core_.number("time-pos"));
}

void mpv_player::session::on_position(double seconds) {
    if (!sounding_ || !audible_ || seconds < 0) return;
    const double position = std::max(seconds - start(), 0.0);
    const bool counts = rule_.position(position);
    // While it is paused, the position is the one that was asked for; libmpv's is at the start of a block of samples.
    if (!seeking_ && !status_.is_paused) position_ = position;
    report(callbacks_.on_progress, *current_, status_.is_paused ? position_ : position, duration_);
    if (counts) report(callbacks_.on_counted, *current_, rule_.listened());
}

/// libmpv falls back to the null output.
void mpv_player::session::on_device(std::string_view output) {
    const bool heard = !wants_device_ || output != "null";
    if (heard != std::exchange(is_heard_, heard)) report(callbacks_.on_hearing, heard);
}

void mpv_player::session::on_end_file(const mpv_event_end_file& end) {
    const auto found = queued_.find(end.playlist_entry_id);
    if (found == queued_.end()) return;
    const std::size_t index = found->second.entry;
    queued_.erase(found);
    const auto fail = [&](const char* text) {
        report(callbacks_.on_error, index, std::string(text));
        if (++failures_ >= failures_allowed()) drop_pending();
    };
    if (end.reason == MPV_END_FILE_REASON_REDIRECT) {
        core_.remove(end.playlist_insert_id, end.playlist_insert_num_entries);
        fail("This is a list of other files and not a track");
    } else if (end.reason == MPV_END_FILE_REASON_ERROR) {
        fail(mpv_error_string(end.error));
    } else if (!sounding_ && end.reason == MPV_END_FILE_REASON_EOF) {
        fail("The track starts after the end of the file");
    }
    if (sounding_) finish(translate(end.reason));
    current_.reset();
    current_id_ = -1;
}

void mpv_player::session::finish(end_reason reason) {
    sounding_ = false;
    const std::size_t index = *current_;
    if (rule_.ended(reason)) report(callbacks_.on_counted, index, rule_.listened());
    report(callbacks_.on_finished, index);
}

mpv_player::mpv_player(play_options options, play_callbacks callbacks)
    : options_(options), callbacks_(std::move(callbacks)) {}

bool mpv_player::run(std::vector<play_item> items, queue order, const std::atomic<bool>& stop) {
    session playing(options_, callbacks_, std::move(items), std::move(order));
    const auto set_session = [this](session* now) {
        const std::lock_guard lock(mutex_);
        session_ = now;
    };
    set_session(&playing);
    struct registration {
        decltype(set_session)& set;
        ~registration() { set(nullptr); }
    } const registered{set_session};
    return playing.run(stop, [this] {
        const std::lock_guard lock(mutex_);
        return std::exchange(tasks_, {});
    });
}

void mpv_player::pass(task work) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(work));
    if (session_ != nullptr) session_->wake();
}

void mpv_player::perform(const request& wanted) {
    pass([wanted](session& playing) { playing.perform(wanted); });
}

void mpv_player::edit(queue_edit wanted) {
    pass([edit = std::make_shared<queue_edit>(std::move(wanted))](session& playing) { playing.edit(*edit); });
}

}  // namespace ostrevan::playback
