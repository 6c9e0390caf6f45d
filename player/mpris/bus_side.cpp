#include "player/mpris/bus_side.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include "player/bus/object.h"
#include "player/mpris/words.h"

namespace ostrevan::mpris {
namespace {

using playback::action;
using namespace std::chrono_literals;

constexpr const char* player_path = "/org/mpris/MediaPlayer2";
constexpr const char* bus_name = "org.mpris.MediaPlayer2.ostrevan";

bus::value texts(std::initializer_list<const char*> words) {
    std::vector<bus::value> list;
    for (const char* const word : words) list.emplace_back(std::string(word));
    return list;
}

/// The value that a caller sends, which the bus has checked against the signature.
template <class Type>
Type argument(const std::vector<bus::value>& values, std::size_t place) {
    return std::get<Type>(values.at(place));
}

}  // namespace

/// One connection to the bus.
class bus_side::visit {
public:
    explicit visit(bus_side& of) : side_(of), told_(of.shown()) {
        if (bus::take_name(bus_, bus_name)) return;
        auto other_name = std::string(bus_name) + ".instance";
        other_name += std::to_string(getpid());
        bus::take_name(bus_, other_name.c_str());
    }

    void run() {
        while (!side_.is_ending_) {
            bus_.wait(side_.wake_.file(), 1h);
            side_.wake_.clear();
            tell_changes();
        }
    }

private:
    void ask(action what, double amount = 0) { side_.on_request_({what, amount}); }

    void tell_changes() {
        const auto now = side_.shown();
        std::vector<const char*> changed;
        for (const auto& [name, value] : now.properties)
            if (told_.properties[name] != value) changed.push_back(name.c_str());
        const bool is_same_track = told_.track_id == now.track_id;
        const bool is_jump = is_same_track && std::abs(now.position - told_.position_at(now.time)) > 1;
        told_ = now;
        player_.tell_changed(changed);
        if (is_jump) player_.emit("Seeked", static_cast<std::int64_t>(now.position * microseconds));
    }

    bus::own_property fixed(const char* name, const char* signature, const bus::value& value) {
        return {name, signature, [value] { return value; }};
    }
    bus::own_property shown(const char* name, const char* signature, std::function<void(const bus::value&)> set = {}) {
        return {name, signature, [this, name] { return side_.shown().properties.at(name); }, std::move(set)};
    }
    bus::own_method simple(const char* name, action what) {
        return {name, "", [this, what](const auto&) { ask(what); }};
    }

    void set_loop(const bus::value& wanted) {
        const auto found = std::ranges::find(loop_words, std::get<std::string>(wanted));
        if (found == loop_words.end()) throw std::invalid_argument("None, Track or Playlist");
        ask(action::set_repeat, static_cast<double>(found - loop_words.begin()));
    }
    void set_position(const std::vector<bus::value>& arguments) {
        const auto now = side_.shown();
        const double position = static_cast<double>(argument<std::int64_t>(arguments, 1)) / microseconds;
        const bool is_inside = position >= 0 && (now.length <= 0 || position <= now.length);
        if (argument<std::string>(arguments, 0) == now.track_id && is_inside) ask(action::seek_to, position);
    }
    void seek(double distance) {
        const auto now = side_.shown();
        const bool is_beyond = now.length > 0 && now.position_at(shown_state::clock::now()) + distance > now.length;
        if (is_beyond) ask(action::next);
        else ask(action::seek_by, distance);
    }
    bus::value position() {
        return static_cast<std::int64_t>(side_.shown().position_at(shown_state::clock::now()) * microseconds);
    }

    bus::own_interface root_interface() {
        return {.name = "org.mpris.MediaPlayer2",
                .properties = {fixed("CanQuit", "b", true), fixed("CanRaise", "b", false), fixed("HasTrackList", "b", false),
                               fixed("Identity", "s", std::string("ostrevan")),
                               fixed("SupportedUriSchemes", "as", texts({})), fixed("SupportedMimeTypes", "as", texts({}))},
                .methods = {simple("Quit", action::quit), {"Raise", "", [](const auto&) {}}}};
    }

    bus::own_interface player_interface() {
        const auto shuffle = [this](const bus::value& on) { ask(action::set_shuffle, std::get<bool>(on) ? 1 : 0); };
        const auto volume = [this](const bus::value& wanted) {
            ask(action::set_volume, std::clamp(std::get<double>(wanted), 0.0, 1.0) * 100);
        };
        return {.name = "org.mpris.MediaPlayer2.Player",
                .properties = {shown("PlaybackStatus", "s"),
                               shown("LoopStatus", "s", [this](const bus::value& wanted) { set_loop(wanted); }),
                               shown("Shuffle", "b", shuffle),
                               shown("Metadata", "a{sv}"),
                               shown("Volume", "d", volume),
                               shown("CanGoNext", "b"),
                               shown("CanGoPrevious", "b"),
                               {"Position", "x", [this] { return position(); }, {}, false},
                               {"Rate", "d", [] { return bus::value(1.0); }, [](const bus::value&) {}},
                               fixed("MinimumRate", "d", 1.0),
                               fixed("MaximumRate", "d", 1.0),
                               fixed("CanPlay", "b", true),
                               fixed("CanPause", "b", true),
                               fixed("CanSeek", "b", true),
                               fixed("CanControl", "b", true)},
                .methods = {simple("Next", action::next),
                            simple("Previous", action::previous),
                            simple("Pause", action::pause),
                            simple("PlayPause", action::toggle_pause),
                            simple("Stop", action::quit),
                            simple("Play", action::resume),
                            {"Seek", "x",
                             [this](const auto& by) {
                                 seek(static_cast<double>(argument<std::int64_t>(by, 0)) / microseconds);
                             }},
                            {"SetPosition", "ox", [this](const auto& arguments) { set_position(arguments); }},
                            {"OpenUri", "s",
                             [](const auto&) { throw std::runtime_error("Use 'ostrevan play', or 'ostrevan playlist'."); }}},
                .signals = {{"Seeked", "x"}}};
    }

    bus_side& side_;
    shown_state told_;
    bus::connection bus_;
    bus::exported_interface root_{bus_, player_path, root_interface()};
    bus::exported_interface player_{bus_, player_path, player_interface()};
};

bus_side::bus_side(shown_state state, request_sink on_request)
    : on_request_(std::move(on_request)), state_(std::move(state)), thread_([this] { run(); }) {}

bus_side::~bus_side() {
    is_ending_ = true;
    wake_.set();
    thread_.join();
}

void bus_side::show(shown_state state) {
    {
        const std::lock_guard lock(mutex_);
        state_ = std::move(state);
    }
    wake_.set();
}

shown_state bus_side::shown() {
    const std::lock_guard lock(mutex_);
    return state_;
}

void bus_side::run() {
    try {
        visit(*this).run();
    } catch (const bus::bus_error&) {
        // There is no desktop to be seen on.
    }
}

}  // namespace ostrevan::mpris
