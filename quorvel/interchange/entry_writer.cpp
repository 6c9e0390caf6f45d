#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstring>
#include <string_view>

#include "nuv/text.h"
#include "quorvel/common/digits.h"
#include "quorvel/interchange/export_fields.h"
#include "quorvel/interchange/pcdb_export.h"
#include "quorvel/store/timestamp.h"
#include "quorvel/xml/entities.h"

namespace quorvel::pcdb_export {
namespace {

/// The start tag of an entry, put together in place. It has room for every field at its longest.
class start_tag {
public:
    /// A literal: its length is known to the compiler, which then copies without a call.
    template <std::size_t Size>
    void put(const char (&text)[Size]) noexcept {
        std::memcpy(end_, text, Size - 1);
        end_ += Size - 1;
    }
    void put_number(std::integral auto number) noexcept { end_ = std::to_chars(end_, characters_.end(), number).ptr; }
    /// Times have eighteen digits: they are taken apart in halves instead of digit by digit.
    void put_large_number(std::uint64_t number) noexcept {
        constexpr std::uint64_t eight_digits = 100'000'000;
        if (number < eight_digits) return put_number(number);
        put_large_number(number / eight_digits);
        end_ = put_eight_digits(end_, static_cast<std::uint32_t>(number % eight_digits));
    }
    /// An attribute, or nothing for a time that cannot be shown.
    template <std::size_t Size>
    void put_local_time(const char (&name)[Size], std::uint64_t time) noexcept {
        char* const before = end_;
        put(name);
        end_ = PutTimestamp(end_, time, time_zone::local());
        if (end_ == nullptr) end_ = before;
        else put("\" ");
    }
    void put_hexadecimal(std::uint64_t number) noexcept {
        for (int shift = 60; shift >= 0; shift -= 4) *end_++ = "0123456789abcdef"[number >> shift & 15U];
    }

    [[nodiscard]] std::string_view view() const noexcept { return {characters_.data(), end_}; }

private:
    std::array<char, 512> characters_;
    char* end_ = characters_.data();
};

/// The names end with the quote before the value.
template <std::size_t NameSize, std::size_t FriendlySize>
void put_time(start_tag& tag, const char (&name)[NameSize], const char (&friendly_name)[FriendlySize], std::uint64_t time) {
    tag.put(name);
    tag.put_large_number(time);
    tag.put("\" ");
    tag.put_local_time(friendly_name, time);
}

/// Stars to a tenth. Readers of the format know these texts: whole and tenth are each written with a sign of their own, so
/// that the lowest ratings read "0.-5", and what lies beyond the scale reads "-1".
void put_stars(start_tag& tag, std::uint32_t rating) {
    const double tenths_of_stars = rating < 256 ? std::rint((rating - 21.333333333333332) * 0.234375) : -10.0;
    const auto tenths = static_cast<std::int32_t>(tenths_of_stars);
    tag.put_number(tenths / 10);
    if (tenths % 10 == 0) return;
    tag.put(".");
    tag.put_number(tenths % 10);
}

/// The fields that are selected and set; false when there is none. Nothing in them needs to be escaped.
bool put_fields(start_tag& tag, const t_playback_stats& record, std::uint32_t fields) {
    const auto size_before = tag.view().size();
    if ((fields & export_play_count) != 0) {
        tag.put("Count=\"");
        tag.put_number(record.play_count);
        tag.put("\" ");
    }
    if ((fields & export_first_played) != 0 && record.first_played != 0)
        put_time(tag, "FirstPlayed=\"", "FirstPlayedFriendly=\"", record.first_played);
    if ((fields & export_last_played) != 0 && record.last_played != 0)
        put_time(tag, "LastPlayed=\"", "LastPlayedFriendly=\"", record.last_played);
    if ((fields & export_added) != 0 && record.added != 0) put_time(tag, "Added=\"", "AddedFriendly=\"", record.added);
    if ((fields & export_rating) != 0 && record.rating != rating_not_set) {
        tag.put("Rating=\"");
        tag.put_number(record.rating);
        tag.put("\" RatingFriendly=\"");
        put_stars(tag, record.rating);
        tag.put("\" ");
    }
    return tag.view().size() != size_before;
}

/// Local files are named by their native path, everything else by its location.
std::string_view exported_path(std::string_view location) {
    constexpr std::string_view local = "file://";
    return nuv::equal_ascii_nocase(location.substr(0, local.size()), local) ? location.substr(local.size()) : location;
}

void append_item(std::string& out, const ostrevan::playable_location& location) {
    out += "<Item Path=\"";
    Vek::appendEscaped(out, exported_path(location.path));
    if (location.subsong != 0) {
        out += "\" Subsong=\"";
        out += std::to_string(location.subsong);
    }
    out += "\"></Item>";
}

}  // namespace

bool writeEntry(std::string& out, std::uint64_t key, const t_playback_stats& record, std::uint32_t fields,
                const track_list* items) {
    start_tag tag;
    tag.put("  <Entry ID=\"");
    tag.put_hexadecimal(key);
    tag.put("\" ");
    if (!put_fields(tag, record, fields)) return false;

    const bool has_items = items != nullptr && !items->empty();
    if (!has_items) tag.put("/");
    tag.put(">\n");
    out += tag.view();
    if (!has_items) return true;
    for (const auto& track : *items) append_item(out, track->location());
    out += "  </Entry>\n";
    return true;
}

}  // namespace quorvel::pcdb_export
