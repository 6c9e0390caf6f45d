#include "player/terminal/track_json.h"

#include <cmath>

#include "player/terminal/key_text.h"
#include "player/titleformat/integer.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::terminal {
namespace {

using json = nlohmann::ordered_json;

/// A field in JSON: null when not found, a number where it reads like one.
json value_of(const titleformat::track_fields& fields, const std::string& name, bool may_be_number) {
    std::string text;
    if (!fields.field(name, text)) return nullptr;
    if (may_be_number)
        if (auto number = json::parse(text, nullptr, false); number.is_number()) return number;
    return text;
}

/// The leading number of a field ("3/12"), else its text ("A1").
json leading_number(const titleformat::track_fields& fields, const std::string& name) {
    auto text = value_of(fields, name, false);
    if (!text.is_string()) return text;
    const auto number = titleformat::leading_integer(text.get<std::string>());
    return number ? json(*number) : text;
}

/// Rounded to milliseconds.
json seconds_of(const metadb_handle& track) {
    const auto info = track.info();
    if (!info || !(info->info().length() > 0)) return nullptr;
    return std::round(info->info().length() * 1000) / 1000;
}

}  // namespace

track_json::track_json(const run_context& context)
    : fields_(context.player.fields), indexes_(context.player.index.registrations()) {
    for (const auto& [name, entry] : fields_.all()) names_.insert(name);
}

json track_json::operator()(metadb_handle& track) const {
    const titleformat::track_fields fields(fields_, track);
    const auto key = key_text(indexes_, track);
    json object{{"path", track.location().path},
                {"subsong", track.location().subsong},
                {"key", key.empty() ? json() : json(key)},
                {"length", seconds_of(track)},
                {"codec", value_of(fields, "codec", false)},
                {"track", leading_number(fields, "tracknumber")},
                {"disc", leading_number(fields, "discnumber")}};
    for (const char* name : {"artist", "album artist", "album", "title", "date", "genre"})
        object[name] = value_of(fields, name, false);
    for (const auto& name : names_) object[name] = value_of(fields, name, true);
    return object;
}

json text_or_null(std::string text) { return text.empty() ? json() : json(std::move(text)); }

std::string text_of(const json& value) { return value.dump(-1, ' ', false, json::error_handler_t::replace); }

}  // namespace ostrevan::terminal
