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

const number_pair* pair_of_field(std::string_view field) noexcept {
    for (const auto& each : number_pairs)
        if (field == each.number_field || field == each.total_field) return &each;
    return nullptr;
}

}  // namespace ostrevan::tags
