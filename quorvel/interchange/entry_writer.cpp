#include "quorvel/interchange/entry_writer.h"

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstring>
#include <string_view>

#include "nuv/text.h"
#include "quorvel/common/digits.h"
#include "quorvel/store/record_fields.h"
#include "quorvel/store/timestamp.h"
#include "quorvel/xml/escape.h"

namespace quorvel::pcdb_export {
namespace {

/// The start tag of an entry, put together in place. It has room for every field at its longest.
class entry_tag {
public:
    /// A constant: its length is known to the compiler, which then copies without a call.
    void put(std::string_view text) noexcept {
        std::memcpy(end_, text.data(), text.size());
        end_ += text.size();
    }
    /// The name of an attribute and the quote before its value.
    void open(std::string_view attribute, std::string_view suffix = "") noexcept {
        put(attribute);
        put(suffix);
        put("=\"");
    }
    void close() noexcept { put("\" "); }
    void put_number(std::integral auto number) noexcept { end_ = std::to_chars(end_, characters_.end(), number).ptr; }
    /// Times have eighteen digits, which are written in blocks of eight instead of one by one.
    void put_large_number(std::uint64_t number) noexcept {
        constexpr std::uint64_t eight_digits = 100'000'000;
        if (number < eight_digits) return put_number(number);
        put_large_number(number / eight_digits);
        end_ = put_eight_digits(end_, static_cast<std::uint32_t>(number % eight_digits));
    }
    /// The readable form of an attribute; nothing for a time that cannot be shown.
    void put_local_time(std::string_view attribute, std::uint64_t time) noexcept {
        char* const before = end_;
        open(attribute, "Friendly");
        end_ = PutTimestamp(end_, time, time_zone::local());
        if (end_ == nullptr) end_ = before;
        else close();
    }
    void put_hexadecimal(std::uint64_t number) noexcept {
        for (int shift = 60; shift >= 0; shift -= 4) *end_++ = "0123456789abcdef"[number >> shift & 15U];
    }

    [[nodiscard]] std::string_view view() const noexcept { return {characters_.data(), end_}; }

private:
    std::array<char, 512> characters_;
    char* end_ = characters_.data();
};

/// A time that is selected and set. The names are constants of the table.
template <ExportFields Bit>
void put_time(entry_tag& tag, const t_playback_stats& record, std::uint32_t fields) {
    constexpr record_field field = field_of(Bit);
    const std::uint64_t time = record.*field.value;
    if ((fields & Bit) == 0 || time == 0) return;
    tag.open(field.attribute);
    tag.put_large_number(time);
    tag.close();
    tag.put_local_time(field.attribute, time);
}

/// Stars to a tenth. Readers of the format know these texts: whole stars and tenths each have their own sign, so that the
/// lowest ratings read "0.-5", and ratings beyond the scale read "-1".
void put_stars(entry_tag& tag, std::uint32_t rating) {
    const double tenths_of_stars = rating < 256 ? std::rint((rating - 21.333333333333332) * 0.234375) : -10.0;
    const auto tenths = static_cast<std::int32_t>(tenths_of_stars);
    tag.put_number(tenths / 10);
    if (tenths % 10 == 0) return;
    tag.put(".");
    tag.put_number(tenths % 10);
}

/// The fields that are selected and set; false if there are none. Nothing in them needs to be escaped.
bool put_fields(entry_tag& tag, const t_playback_stats& record, std::uint32_t fields) {
    const auto size_before = tag.view().size();
    if ((fields & field_play_count) != 0) {
        tag.open(field_of(field_play_count).attribute);
        tag.put_number(record.play_count);
        tag.close();
    }
    put_time<field_first_played>(tag, record, fields);
    put_time<field_last_played>(tag, record, fields);
    put_time<field_added>(tag, record, fields);
    if ((fields & field_rating) != 0 && record.rating != rating_not_set) {
        constexpr std::string_view name = field_of(field_rating).attribute;
        tag.open(name);
        tag.put_number(record.rating);
        tag.close();
        tag.open(name, "Friendly");
        put_stars(tag, record.rating);
        tag.close();
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
    entry_tag tag;
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
