#include "ostrevan/field_provider.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "ostrevan/core_api.h"
#include "ostrevan/registration.h"
#include "quorvel/host/played_per_day.h"
#include "quorvel/host/stars.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/timestamp.h"

namespace quorvel {
namespace {

/// The kind of all text that the fields write.
constexpr nuv::guid text_kind = nuv::guid_of("{673AA1CD-A7A8-40C8-BF9B-34379929163B}");

using text_out = ostrevan::titleformat_text_out;

bool write(text_out& out, std::string_view text, bool found) {
    out.write(text_kind, text.data(), text.size());
    return found;
}

bool write_time(std::uint64_t time, text_out& out) {
    return time == 0 ? write(out, "N/A", false) : write(out, FormatTimestamp(time), true);
}

/// Hundredths as a number with two decimals.
bool write_hundredths(std::int64_t hundredths, text_out& out) {
    std::array<char, 64> buffer;
    char* end = buffer.data();
    auto magnitude = static_cast<std::uint64_t>(hundredths);
    if (hundredths < 0) {
        *end++ = '-';
        magnitude = 0 - magnitude;
    }
    end = std::to_chars(end, buffer.data() + buffer.size(), magnitude / 100).ptr;
    *end++ = '.';
    *end++ = static_cast<char>('0' + magnitude % 100 / 10);
    *end++ = static_cast<char>('0' + magnitude % 10);
    return write(out, {buffer.data(), end}, true);
}

bool write_first_played(const t_playback_stats& record, text_out& out) { return write_time(record.first_played, out); }
bool write_last_played(const t_playback_stats& record, text_out& out) { return write_time(record.last_played, out); }
bool write_added(const t_playback_stats& record, text_out& out) { return write_time(record.added, out); }

bool write_play_count(const t_playback_stats& record, text_out& out) {
    out.write_int(text_kind, record.play_count);
    return record.play_count != 0;
}

bool write_played_per_day(const t_playback_stats& record, text_out& out) {
    const double rate = played_per_day(record);
    // A rate too small to show is a rate all the same: "0.00".
    return rate > 0 ? write_hundredths(std::llround(rate * 100.0), out) : write(out, "?", false);
}

template <bool (*WriteStars)(std::uint32_t stars, text_out& out)>
bool write_rating(const t_playback_stats& record, text_out& out) {
    return record.rating == rating_not_set ? write(out, "", false) : WriteStars(stars_of(record.rating), out);
}

bool write_star_count(std::uint32_t stars, text_out& out) {
    out.write_int(text_kind, stars);
    return true;
}
bool write_filled_stars(std::uint32_t stars, text_out& out) { return write(out, filled_stars(stars), true); }
bool write_five_stars(std::uint32_t stars, text_out& out) { return write(out, five_stars(stars), true); }

struct statistics_field {
    const char* name;
    bool (*write)(const t_playback_stats& record, text_out& out);
    /// The time that the field shows; null for fields that are sorted by their texts.
    std::uint64_t t_playback_stats::*time = nullptr;
};

/// The player evaluates a field by its position here.
constexpr std::array statistics_fields{
    statistics_field{"first_played", write_first_played, &t_playback_stats::first_played},
    statistics_field{"last_played", write_last_played, &t_playback_stats::last_played},
    statistics_field{"play_count", write_play_count},
    statistics_field{"played_per_day", write_played_per_day},
    statistics_field{"added", write_added, &t_playback_stats::added},
    statistics_field{"rating", write_rating<write_star_count>},
    statistics_field{"rating_stars", write_rating<write_filled_stars>},
    statistics_field{"rating_stars_fixed", write_rating<write_five_stars>},
};

const statistics_field& field_at(std::size_t index) {
    if (index >= statistics_fields.size()) ostrevan::uBugCheck();
    return statistics_fields[index];
}

t_playback_stats record_of(ostrevan::metadb_handle* track) {
    const ostrevan::metadb_handle_ptr held(track);
    return held ? PCDB::Get(*held) : t_playback_stats{};
}

class time_sort_values : public ostrevan::field_sort_values {
public:
    std::optional<std::uint64_t> sort_value(std::size_t index, ostrevan::metadb_handle& track) override {
        const auto time = field_at(index).time;
        return time == nullptr ? std::nullopt : std::optional(record_of(&track).*time);
    }
};

class statistics_field_provider : public ostrevan::field_provider {
public:
    std::size_t get_field_count() const noexcept override { return statistics_fields.size(); }
    const char* get_field_name(std::size_t index) const override { return field_at(index).name; }

    bool process_field(std::size_t index, ostrevan::metadb_handle* track, text_out& out) override {
        return field_at(index).write(record_of(track), out);
    }

    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == ostrevan::field_sort_values::class_guid ? &sort_values_ : nullptr;
    }

private:
    ostrevan::service_uncounted_t<time_sort_values> sort_values_;
};

ostrevan::service_factory_single_t<statistics_field_provider> g_field_provider;

}  // namespace
}  // namespace quorvel
