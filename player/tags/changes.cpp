#include "player/tags/changes.h"

#include <algorithm>

#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    return first == text.npos ? std::string_view{} : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

/// "3/12" becomes the number 3 and the total 12; a text that is no such pair stays as it is.
std::pair<std::string_view, std::string_view> split_number(std::string_view text) {
    const auto slash = text.find('/');
    if (slash == text.npos || text.find_first_not_of("0123456789/ ") != text.npos) return {text, {}};
    return {trimmed(text.substr(0, slash)), trimmed(text.substr(slash + 1))};
}

bool is_number_field(const number_pair* pair, std::string_view field) {
    return pair != nullptr && pair->number_field == field;
}

const std::vector<std::string>* values_of(const file_info_builder& info, std::string_view field) {
    const auto index = info.meta_find(field);
    return index == file_info_builder::npos ? nullptr : &info.meta_values(index);
}

bool same_values(const file_info_builder& a, const file_info_builder& b, std::string_view field) {
    const auto* left = values_of(a, field);
    const auto* right = values_of(b, field);
    return left == nullptr || right == nullptr ? left == right : *left == *right;
}

tag_change change_of(std::string_view field, const file_info_builder& after) {
    tag_change change{std::string(field), keys_of_field(field), {}};
    if (const auto* values = values_of(after, field); values != nullptr && !values->empty())
        change.writes.emplace_back(change.keys.front(), *values);
    return change;
}

tag_change change_of(const number_pair& pair, const file_info_builder& after, number_style style) {
    tag_change change = change_of(pair.number_field, after);
    tag_change total = change_of(pair.total_field, after);
    change.keys.insert(change.keys.end(), total.keys.begin(), total.keys.end());
    if (style == number_style::separate) {
        change.writes.insert(change.writes.end(), total.writes.begin(), total.writes.end());
    } else if (!total.writes.empty()) {
        if (change.writes.empty()) change.writes.emplace_back(pair.number_key, std::vector<std::string>{""});
        change.writes.front().second.front() += "/" + total.writes.front().second.front();
    }
    return change;
}

}  // namespace

bool concerns(const tag_change& change, const std::string& key) {
    return !key.empty() && std::ranges::find(change.keys, key) != change.keys.end();
}

void add_entry(const std::string& key, std::vector<std::string> values, file_info_builder& info) {
    const std::string field = field_of_key(key);
    if (values.empty() || info.meta_exists(field)) return;
    const auto* pair = pair_of_field(field);
    if (!is_number_field(pair, field)) {
        info.meta_set_values(field, std::move(values));
        return;
    }
    for (const auto& value : values) {
        const auto [number, total] = split_number(value);
        if (!number.empty()) info.meta_add(field, number);
        if (!total.empty() && !info.meta_exists(pair->total_field)) info.meta_add(pair->total_field, total);
    }
}

file_info_builder canonical(const file_info_builder& info) {
    const auto is_newer = [&](std::size_t index) {
        const auto& name = info.meta_name(index);
        const auto field = field_of_key(name);
        if (const auto& values = info.meta_values(index); is_number_field(pair_of_field(field), field) && !values.empty())
            return values.front().find('/') != std::string::npos;
        return field != ascii_lower(name);
    };
    file_info_builder result = info;
    result.meta_clear();
    for (const bool newer : {true, false})
        for (std::size_t i = 0; i < info.meta_count(); ++i)
            if (is_newer(i) == newer) add_entry(info.meta_name(i), info.meta_values(i), result);
    return result;
}

bool same_fields(const file_info_builder& a, const file_info_builder& b) {
    if (a.meta_count() != b.meta_count()) return false;
    for (std::size_t i = 0; i < a.meta_count(); ++i)
        if (!same_values(a, b, a.meta_name(i))) return false;
    return true;
}

tag_changes difference(const file_info_builder& before, const file_info_builder& after, number_style style) {
    std::vector<std::string> fields;
    for (const auto* info : {&before, &after})
        for (std::size_t i = 0; i < info->meta_count(); ++i) {
            std::string field(info->meta_name(i));
            if (same_values(before, after, field)) continue;
            // A change of either half writes the pair.
            if (const auto* pair = pair_of_field(field)) field = pair->number_field;
            if (std::ranges::find(fields, field) == fields.end()) fields.push_back(field);
        }
    tag_changes changes;
    for (const auto& field : fields) {
        const auto* pair = pair_of_field(field);
        changes.push_back(pair != nullptr ? change_of(*pair, after, style) : change_of(field, after));
    }
    return changes;
}

}  // namespace ostrevan::tags
