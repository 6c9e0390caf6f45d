#include "player/tags/field_names.h"

#include <algorithm>

#include "nuv/text.h"

namespace ostrevan::tags {
namespace {

/// Fields with more than one spelling in the wild; the first key of each is the one written.
struct spelling {
    std::string_view field;
    std::string_view keys[3];
};
constexpr spelling spellings[] = {
    {"album artist", {"ALBUMARTIST", "ALBUM ARTIST", "ALBUM_ARTIST"}},
    {"totaltracks", {"TRACKTOTAL", "TOTALTRACKS", ""}},
    {"totaldiscs", {"DISCTOTAL", "TOTALDISCS", ""}},
};

constexpr std::string_view ape_items[][2] = {{"Track", "TRACKNUMBER"},
                                             {"Year", "DATE"},
                                             {"Disc", "DISCNUMBER"},
                                             {"Album Artist", "ALBUMARTIST"},
                                             {"MixArtist", "REMIXER"}};

}  // namespace

bool is_statistics_field(std::string_view field) noexcept {
    return std::ranges::any_of(statistics_fields, [&](auto each) { return nuv::equal_ascii_nocase(each, field); });
}

std::string ascii_upper(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - ('a' - 'A'));
    return result;
}

std::string ascii_lower(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = nuv::ascii_lower(c);
    return result;
}

std::string field_of_key(std::string_view key) {
    for (const auto& each : spellings)
        for (const auto known : each.keys)
            if (!known.empty() && nuv::equal_ascii_nocase(known, key)) return std::string(each.field);
    return ascii_lower(key);
}

std::vector<std::string> keys_of_field(std::string_view field) {
    for (const auto& each : spellings)
        if (nuv::equal_ascii_nocase(each.field, field)) {
            std::vector<std::string> keys(std::begin(each.keys), std::end(each.keys));
            std::erase(keys, "");
            return keys;
        }
    return {ascii_upper(field)};
}

std::string key_of_ape_item(std::string_view item) {
    for (const auto& pair : ape_items)
        if (nuv::equal_ascii_nocase(item, pair[0])) return std::string(pair[1]);
    return ascii_upper(item);
}

std::string ape_item_of_key(std::string_view key) {
    for (const auto& pair : ape_items)
        if (key == pair[1]) return std::string(pair[0]);
    return std::string(key);
}

const number_pair* pair_of_field(std::string_view field) noexcept {
    for (const auto& each : number_pairs)
        if (field == each.number_field || field == each.total_field) return &each;
    return nullptr;
}

}  // namespace ostrevan::tags
