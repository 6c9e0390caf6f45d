#include "player/watch/mpris_source.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "player/bus/connection.h"

namespace ostrevan::watch {
namespace {

using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;

constexpr std::string_view prefix = "org.mpris.MediaPlayer2.";
constexpr const char* player_interface = "org.mpris.MediaPlayer2.Player";
/// The position is never signalled.
constexpr auto poll_interval = 1s;
constexpr double second = 1e6;  // in the bus's unit

const bus::interface_place the_bus{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};

bus::interface_place properties_of(const std::string& owner) {
    return {owner, "/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties"};
}

const std::string* text_at(const std::vector<bus::value>& values, std::size_t place) {
    return place < values.size() ? std::get_if<std::string>(&values[place]) : nullptr;
}

/// What a reply begins with; null when the call failed or its reply is of another form.
template <class Value>
const Value* first_in(const std::vector<bus::value>* reply) {
    return reply == nullptr || reply->empty() ? nullptr : std::get_if<Value>(&reply->front());
}

told_track track_of(const bus::dictionary& metadata) {
    return {.id = text_of(metadata, "mpris:trackid"),
            .location = text_of(metadata, "xesam:url"),
            .title = text_of(metadata, "xesam:title"),
            .artist = text_of(metadata, "xesam:artist"),
            .album = text_of(metadata, "xesam:album"),
            .length = std::max(number_of(metadata, "mpris:length").value_or(0), 0.0) / second};
}

play_state state_of(std::string_view status) {
    if (status == "Playing") return play_state::playing;
    return status == "Paused" ? play_state::paused : play_state::stopped;
}

/// Listens on one connection to the bus.
class bus_listening {
public:
    bus_listening(observation_queue& out, const player_filter& wanted);
    /// Players may outlive the bus.
    ~bus_listening() {
        for (const auto& [owner, player] : players_) out_.push(player.name, is_out_of_reach{});
    }
    bus_listening(const bus_listening&) = delete;
    bus_listening& operator=(const bus_listening&) = delete;

    void listen(const system::wake_event& stop);

private:
    struct bus_player {
        std::string name;             // without the prefix
        std::set<std::string> names;  // on the bus; some players have two
        bool is_playing = false;
        bool is_asked = false;  // for its position
    };

    void find_players();
    void on_owner(const std::string& name, const std::string& before, const std::string& now);
    void adopt(const std::string& name, const std::string& owner);
    void ask_all(const std::string& owner);
    void ask_position(const std::string& owner);
    void take(const std::string& owner, const bus::dictionary& properties);
    void on_properties(const bus::signal& changed);
    void on_seeked(const bus::signal& seeked);

    observation_queue& out_;
    const player_filter& wanted_;
    std::map<std::string, bus_player> players_;  // by unique name, so that a second name makes no second player
    bus::connection bus_;
};

bus_listening::bus_listening(observation_queue& out, const player_filter& wanted) : out_(out), wanted_(wanted) {
    bus_.on_signal(
        "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',arg0namespace='org.mpris.MediaPlayer2'",
        [this](const bus::signal& changed) {
            const auto* const name = text_at(changed.arguments, 0);
            const auto* const before = text_at(changed.arguments, 1);
            const auto* const now = text_at(changed.arguments, 2);
            if (name != nullptr && before != nullptr && now != nullptr) on_owner(*name, *before, *now);
        });
    bus_.on_signal(
        "type='signal',path='/org/mpris/MediaPlayer2',interface='org.freedesktop.DBus.Properties',"
        "member='PropertiesChanged',arg0='org.mpris.MediaPlayer2.Player'",
        [this](const bus::signal& changed) { on_properties(changed); });
    bus_.on_signal("type='signal',path='/org/mpris/MediaPlayer2',interface='org.mpris.MediaPlayer2.Player',member='Seeked'",
                   [this](const bus::signal& seeked) { on_seeked(seeked); });
    find_players();
    out_.push("MPRIS", has_trouble{});
}

void bus_listening::listen(const system::wake_event& stop) {
    auto next_poll = clock::now();
    while (!stop.is_set()) {
        const bool is_any_playing = std::ranges::any_of(players_, [](const auto& each) { return each.second.is_playing; });
        const auto now = clock::now();
        if (is_any_playing && now >= next_poll) {
            for (const auto& [owner, player] : players_)
                if (player.is_playing) ask_position(owner);
            next_poll = now + poll_interval;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_poll - now);
        bus_.wait(stop.file(), is_any_playing ? left : 1h);
    }
}

void bus_listening::find_players() {
    bus_.call(the_bus, "ListNames", {}, [this](const std::vector<bus::value>* reply) {
        const auto* const list = first_in<std::vector<bus::value>>(reply);
        if (list == nullptr) return;
        std::set<std::string> names;  // in order: a player's shorter name comes first
        for (const auto& each : *list)
            if (const auto* const name = std::get_if<std::string>(&each); name != nullptr && name->starts_with(prefix))
                names.insert(*name);
        for (const auto& name : names)
            bus_.call(the_bus, "GetNameOwner", {name.c_str()}, [this, name](const std::vector<bus::value>* owner) {
                if (const auto* const unique = first_in<std::string>(owner)) adopt(name, *unique);
            });
    });
}

void bus_listening::on_owner(const std::string& name, const std::string& before, const std::string& now) {
    if (const auto found = players_.find(before); found != players_.end()) {
        found->second.names.erase(name);
        if (found->second.names.empty()) {
            out_.push(found->second.name, has_gone{});
            players_.erase(found);
        }
    }
    if (!now.empty()) adopt(name, now);
}

void bus_listening::adopt(const std::string& name, const std::string& owner) {
    if (!name.starts_with(prefix)) return;
    const auto short_name = name.substr(prefix.size());
    const player_filter own{.only = {"ostrevan"}};
    if (own.admits(short_name) || !wanted_.admits(short_name)) return;
    auto& player = players_[owner];
    player.names.insert(name);
    if (!player.name.empty()) return;
    player.name = short_name;
    ask_all(owner);
}

void bus_listening::ask_all(const std::string& owner) {
    bus_.call(properties_of(owner), "GetAll", {player_interface}, [this, owner](const std::vector<bus::value>* reply) {
        if (const auto* const properties = first_in<bus::dictionary>(reply)) take(owner, *properties);
    });
}

void bus_listening::ask_position(const std::string& owner) {
    if (std::exchange(players_.at(owner).is_asked, true)) return;
    bus_.call(properties_of(owner), "Get", {player_interface, "Position"},
              [this, owner](const std::vector<bus::value>* reply) {
                  const auto found = players_.find(owner);
                  if (found == players_.end()) return;
                  found->second.is_asked = false;
                  auto position = reply == nullptr || reply->empty() ? std::nullopt : bus::number_of(reply->front());
                  if (position) *position /= second;
                  out_.push(found->second.name, is_at{position});
              });
}

void bus_listening::take(const std::string& owner, const bus::dictionary& properties) {
    const auto found = players_.find(owner);
    if (found == players_.end()) return;
    auto& player = found->second;
    if (const auto rate = number_of(properties, "Rate")) out_.push(player.name, has_rate{*rate});
    if (properties.contains("Metadata")) out_.push(player.name, has_track{track_of(dictionary_of(properties, "Metadata"))});
    if (properties.contains("PlaybackStatus")) {
        const auto state = state_of(text_of(properties, "PlaybackStatus"));
        player.is_playing = state == play_state::playing;
        out_.push(player.name, has_state{state});
    }
    if (player.is_playing) ask_position(owner);
}

void bus_listening::on_properties(const bus::signal& changed) {
    if (!players_.contains(changed.sender) || changed.arguments.size() < 2) return;
    if (const auto* const properties = std::get_if<bus::dictionary>(&changed.arguments[1]))
        take(changed.sender, *properties);
    if (changed.arguments.size() < 3) return;
    const auto* const unsaid = std::get_if<std::vector<bus::value>>(&changed.arguments[2]);
    if (unsaid != nullptr && !unsaid->empty()) ask_all(changed.sender);
}

void bus_listening::on_seeked(const bus::signal& seeked) {
    const auto found = players_.find(seeked.sender);
    if (found == players_.end() || seeked.arguments.empty()) return;
    if (const auto position = bus::number_of(seeked.arguments[0]))
        out_.push(found->second.name, has_jumped{*position / second});
}

}  // namespace

std::unique_ptr<source_thread> watch_mpris(observation_queue& out, player_filter wanted) {
    return std::make_unique<source_thread>("MPRIS", out, [&out, wanted = std::move(wanted)](const system::wake_event& stop) {
        try {
            bus_listening(out, wanted).listen(stop);
        } catch (const bus::bus_error& error) {
            throw std::runtime_error(std::string("Players on the session bus are not heard: ") + error.what() + ".");
        }
    });
}

}  // namespace ostrevan::watch
