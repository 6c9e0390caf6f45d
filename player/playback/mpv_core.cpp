#include "player/playback/mpv_core.h"

#include <mpv/client.h>

#include <array>
#include <charconv>
#include <clocale>
#include <stdexcept>
#include <vector>

#include "player/playback/mpv_player.h"

namespace ostrevan::playback {
namespace {

struct option {
    const char* name;
    const char* value;
};
// Ignores the user's own configuration and any pictures, sounds or lyrics beside the files; leaves the terminal and the
// signals to the player.
//
// Music comes from anywhere, and only the file itself may be opened. libmpv goes by content, not by name, so a list of
// addresses or of other files could come as an .mp3. Therefore its own readers of such lists are off (`demuxer`),
// libavformat is limited to the containers that the player knows (`format_whitelist`), since others open sockets, and
// references inside files are not followed (`access-references`, `ordered-chapters`).
constexpr option common_options[] = {
    {"config", "no"},
    {"idle", "yes"},
    {"terminal", "no"},
    {"load-scripts", "no"},
    {"ytdl", "no"},
    {"resume-playback", "no"},
    {"vid", "no"},
    {"sid", "no"},
    {"sub-auto", "no"},
    {"audio-file-auto", "no"},
    {"cover-art-auto", "no"},
    {"demuxer", "lavf"},
    {"demuxer-lavf-o", "format_whitelist=[aac,aiff,ape,asf,flac,mov,mp3,ogg,tta,wav,wv],protocol_whitelist=[none]"},
    {"access-references", "no"},
    {"ordered-chapters", "no"},
};
constexpr option device_options[] = {{"audio-fallback-to-null", "yes"}};
constexpr option null_options[] = {{"ao", "null"}};
constexpr option fast_options[] = {{"ao", "null"}, {"untimed", "yes"}, {"ao-null-untimed", "yes"}};

/// By `replay_gain`.
constexpr const char* gain_names[] = {"no", "track", "album"};

void check(int status, const char* what) {
    if (status < 0) throw std::runtime_error(std::string(what) + ": " + mpv_error_string(status));
}

void set_options(mpv_handle* handle, std::span<const option> options) {
    for (const auto& [name, value] : options)
        check(mpv_set_option_string(handle, name, value), "Cannot set up the audio engine");
}

/// Locale-independent digits; "none" is libmpv's word for an unset bound.
std::string number_text(const std::optional<double>& number) {
    if (!number) return "none";
    std::array<char, 64> buffer{};
    const auto [end, status] =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), *number, std::chars_format::fixed, 6);
    if (status != std::errc{}) throw std::runtime_error("A number is out of range");
    return {buffer.data(), end};
}

/// A map of texts in libmpv's form. Not copied: the nodes point into their neighbours.
class text_map {
public:
    text_map() = default;
    text_map(const text_map&) = delete;
    text_map& operator=(const text_map&) = delete;

    void add(const char* key, const char* value) {
        mpv_node node{};
        node.format = MPV_FORMAT_STRING;
        node.u.string = const_cast<char*>(value);
        add(key, node);
    }
    void add(const char* key, mpv_node node) {
        keys_.push_back(const_cast<char*>(key));
        nodes_.push_back(node);
    }
    mpv_node node() {
        list_ = {static_cast<int>(nodes_.size()), nodes_.data(), keys_.data()};
        mpv_node result{};
        result.format = MPV_FORMAT_NODE_MAP;
        result.u.list = &list_;
        return result;
    }

private:
    std::vector<char*> keys_;
    std::vector<mpv_node> nodes_;
    mpv_node_list list_{};
};

/// A value that libmpv allocated.
class owned_node {
public:
    owned_node() = default;
    ~owned_node() { mpv_free_node_contents(&node_); }
    owned_node(const owned_node&) = delete;
    owned_node& operator=(const owned_node&) = delete;

    mpv_node* out() { return &node_; }
    [[nodiscard]] std::int64_t member(const char* key, std::int64_t otherwise) const {
        return member(node_, key, otherwise);
    }
    [[nodiscard]] std::span<const mpv_node> elements() const {
        if (node_.format != MPV_FORMAT_NODE_ARRAY) return {};
        return {node_.u.list->values, static_cast<std::size_t>(node_.u.list->num)};
    }
    static std::int64_t member(const mpv_node& map, const char* key, std::int64_t otherwise) {
        if (map.format != MPV_FORMAT_NODE_MAP) return otherwise;
        for (int i = 0; i < map.u.list->num; ++i) {
            const mpv_node& value = map.u.list->values[i];
            if (map.u.list->keys[i] == std::string_view(key) && value.format == MPV_FORMAT_INT64) return value.u.int64;
        }
        return otherwise;
    }

private:
    mpv_node node_{};
};

}  // namespace

numeric_locale::numeric_locale() {
    if (const char* now = std::setlocale(LC_NUMERIC, nullptr)) before_ = now;
    std::setlocale(LC_NUMERIC, "C");
}

numeric_locale::~numeric_locale() {
    if (!before_.empty()) std::setlocale(LC_NUMERIC, before_.c_str());
}

void mpv_core::terminate::operator()(mpv_handle* handle) const noexcept { mpv_terminate_destroy(handle); }

mpv_core::mpv_core(const play_options& options) : handle_(mpv_create()) {
    if (!handle_) throw std::runtime_error("Cannot start the audio engine: not enough memory");
    set_options(handle_.get(), common_options);
    if (options.fast) set_options(handle_.get(), fast_options);
    else if (options.audio == audio_output::null) set_options(handle_.get(), null_options);
    else set_options(handle_.get(), device_options);
    const auto volume = number_text(options.volume);
    const option wishes[] = {{"replaygain", gain_names[static_cast<std::size_t>(options.gain)]}, {"volume", volume.c_str()}};
    set_options(handle_.get(), wishes);
    check(mpv_initialize(handle_.get()), "Cannot start the audio engine");
    check(mpv_observe_property(handle_.get(), 0, "time-pos", MPV_FORMAT_DOUBLE), "Cannot follow the position");
    check(mpv_observe_property(handle_.get(), 0, "current-ao", MPV_FORMAT_STRING), "Cannot follow the sound device");
    check(mpv_hook_add(handle_.get(), 0, "on_preloaded", 0), "Cannot follow what is opened");
}

std::int64_t mpv_core::load(const play_item& item, const char* flags) {
    // Named arguments, because the positions of `loadfile` differ between versions of libmpv.
    const std::string start = number_text(item.start);
    const std::string end = number_text(item.end);
    text_map options;
    if (item.start.value_or(0) > 0) options.add("start", start.c_str());
    if (item.end) options.add("end", end.c_str());
    text_map command;
    command.add("name", "loadfile");
    command.add("url", item.path.c_str());
    command.add("flags", flags);
    command.add("options", options.node());
    mpv_node request = command.node();
    owned_node answer;
    check(mpv_command_node(handle_.get(), &request, answer.out()), "Cannot queue the file");
    return answer.member("playlist_entry_id", -1);
}

void mpv_core::remove(std::int64_t first, std::int64_t count) {
    owned_node list;
    if (mpv_get_property(handle_.get(), "playlist", MPV_FORMAT_NODE, list.out()) < 0) return;
    const auto entries = list.elements();
    for (std::size_t i = entries.size(); i-- > 0;) {
        const std::int64_t id = owned_node::member(entries[i], "id", -1);
        if (id < first || id - first >= count) continue;
        const std::string index = std::to_string(i);
        const char* command[] = {"playlist-remove", index.c_str(), nullptr};
        mpv_command(handle_.get(), command);
    }
}

void mpv_core::seek(double position) {
    const std::string seconds = number_text(position);
    const char* command[] = {"seek", seconds.c_str(), "absolute", nullptr};
    mpv_command(handle_.get(), command);
}

void mpv_core::stop() {
    const char* command[] = {"stop", nullptr};
    mpv_command(handle_.get(), command);
}

void mpv_core::pause(bool is_paused) { mpv_set_property_string(handle_.get(), "pause", is_paused ? "yes" : "no"); }

void mpv_core::set_volume(double percent) { mpv_set_property(handle_.get(), "volume", MPV_FORMAT_DOUBLE, &percent); }

void mpv_core::load_further(const mpv_event& event) {
    mpv_hook_continue(handle_.get(), static_cast<const mpv_event_hook*>(event.data)->id);
}

void mpv_core::wake() { mpv_wakeup(handle_.get()); }

const mpv_event& mpv_core::wait(double seconds) { return *mpv_wait_event(handle_.get(), seconds); }

double mpv_core::number(const char* property) {
    double value = -1;
    return mpv_get_property(handle_.get(), property, MPV_FORMAT_DOUBLE, &value) < 0 ? -1 : value;
}

}  // namespace ostrevan::playback
