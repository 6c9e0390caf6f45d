#include "player/query/sort.h"

#include <algorithm>
#include <utility>

#include "player/titleformat/integer.h"
#include "player/titleformat/unicode.h"

namespace ostrevan::query {

namespace {

constexpr std::string_view decimal_digits = "0123456789";

/// "0", the number of digits, the digits: longer numbers sort after shorter ones, and numbers sort as digits do among other
/// characters.
void append_number(std::string& key, std::string_view run) {
    run.remove_prefix(std::min(run.find_first_not_of('0'), run.size()));
    key += '0';
    std::size_t length = run.size();
    for (; length >= 0xFF; length -= 0xFF) key += '\xFF';
    key += static_cast<char>(length);
    key += run;
}

}  // namespace

std::string natural_key(std::string_view text) {
    std::string key;
    key.reserve(text.size() + 8);
    while (!text.empty()) {
        const auto words = text.substr(0, text.find_first_of(decimal_digits));
        titleformat::append_folded(key, words);
        text.remove_prefix(words.size());
        const auto number = text.substr(0, text.find_first_not_of(decimal_digits));
        if (!number.empty()) append_number(key, number);
        text.remove_prefix(number.size());
    }
    return key;
}

bool sort_key_less(std::string_view left, std::string_view right) { return natural_key(left) < natural_key(right); }

void sort_naturally(std::vector<sort_entry>& entries, bool descending) {
    struct keyed {
        bool absent;
        std::string key;
        std::size_t place;
    };
    std::vector<keyed> keys;
    keys.reserve(entries.size());
    for (const sort_entry& entry : entries) keys.push_back({entry.absent, natural_key(entry.text), keys.size()});

    std::ranges::stable_sort(keys, [descending](const keyed& a, const keyed& b) {
        if (a.absent || b.absent) return b.absent && !a.absent;
        return descending ? b.key < a.key : a.key < b.key;
    });

    std::vector<sort_entry> sorted;
    sorted.reserve(entries.size());
    for (const keyed& item : keys) sorted.push_back(std::move(entries[item.place]));
    entries = std::move(sorted);
}

sort_entry entry_of(const sort_order& order, std::size_t index, const titleformat::field_source& fields) {
    sort_entry entry;
    entry.index = index;
    const auto name = order.by.only_field();
    if (const auto value = name ? fields.sort_value(*name) : std::nullopt) {
        entry.text = std::to_string(*value);
        entry.absent = *value == 0;
        return entry;
    }
    const bool found = order.by.run(fields, entry.text);
    entry.absent = !found && !titleformat::leading_integer(entry.text);
    return entry;
}

}  // namespace ostrevan::query
