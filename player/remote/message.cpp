#include "player/remote/message.h"

#include <cstdint>
#include <nlohmann/json.hpp>

namespace ostrevan::remote {

const std::string_view own_version = OSTREVAN_VERSION;

namespace {

using nlohmann::json;

json bytes_of(const std::string& text) { return json::binary(std::vector<std::uint8_t>(text.begin(), text.end())); }

std::string text_of(const json& bytes) {
    const auto& content = bytes.get_binary();
    return {content.begin(), content.end()};
}

struct encoder {
    json operator()(const command& what) const {
        json words = json::array();
        for (const auto& word : what.words) words.push_back(bytes_of(word));
        return {{"kind", "command"},
                {"version", own_version},
                {"words", std::move(words)},
                {"home", bytes_of(what.home)},
                {"term", bytes_of(what.terminal_kind)},
                {"foreground", what.is_in_foreground}};
    }
    json operator()(const interrupt& /*what*/) const { return {{"kind", "interrupt"}}; }
    json operator()(const foreground& what) const { return {{"kind", "foreground"}, {"is", what.is_in_foreground}}; }
    json operator()(const done& what) const { return {{"kind", "done"}, {"status", what.status}}; }
    json operator()(const refusal& what) const {
        return {{"kind", "refusal"}, {"version", what.version}, {"ending", what.is_ending}, {"reason", what.reason}};
    }
};

message command_in(const json& map) {
    if (const auto version = map.at("version").get<std::string>(); version != own_version) throw other_version(version);
    command result;
    for (const auto& word : map.at("words")) result.words.push_back(text_of(word));
    result.home = text_of(map.at("home"));
    result.terminal_kind = text_of(map.at("term"));
    result.is_in_foreground = map.at("foreground").get<bool>();
    return result;
}

message done_in(const json& map) {
    constexpr unsigned largest_status = 255;
    const auto& status = map.at("status");
    if (!status.is_number_unsigned() || status.get<std::uint64_t>() > largest_status) throw malformed("no exit status");
    return done{status.get<int>()};
}

constexpr struct {
    const char* kind;
    message (*decode)(const json& map);
} kinds[] = {
    {"command", command_in},
    {"interrupt", [](const json& /*map*/) -> message { return interrupt{}; }},
    {"foreground", [](const json& map) -> message { return foreground{map.at("is").get<bool>()}; }},
    {"done", done_in},
    {"refusal",
     [](const json& map) -> message {
         return refusal{map.at("version").get<std::string>(), map.at("ending").get<bool>(),
                        map.at("reason").get<std::string>()};
     }},
};

}  // namespace

std::string encode(const message& what) {
    const auto bytes = json::to_cbor(std::visit(encoder{}, what));
    return {bytes.begin(), bytes.end()};
}

message decode(std::string_view content) {
    if (!is_plain_cbor(content)) throw malformed("a frame is damaged");
    try {
        const auto map = json::from_cbor(content);
        const auto kind = map.at("kind").get<std::string>();
        for (const auto& each : kinds)
            if (kind == each.kind) return each.decode(map);
    } catch (const json::exception&) {
        throw malformed("a frame is damaged");
    }
    throw malformed("a frame is of an unknown kind");
}

}  // namespace ostrevan::remote
