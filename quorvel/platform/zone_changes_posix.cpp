#include "quorvel/platform/zone_changes_posix.h"

#include <algorithm>
#include <chrono>

namespace quorvel {
namespace {

/// The calendar with its days of the week repeats after 400 years.
constexpr int period_years = 400;
constexpr std::int64_t period_seconds = std::int64_t{146097} * 86400;
/// No offset, and no change of one, is larger.
constexpr std::int64_t widest_offset = 26 * std::int64_t{3600};

int year_of(std::int64_t moment) noexcept {
    using namespace std::chrono;
    return int(year_month_day(floor<days>(sys_seconds(seconds(moment)))).year());
}

std::int64_t start_of_year(int year) noexcept {
    using namespace std::chrono;
    return sys_seconds(sys_days(std::chrono::year(year) / January / 1)).time_since_epoch().count();
}

/// The file's numbers are big-endian.
template <typename T>
T number_at(std::string_view bytes, std::size_t at) noexcept {
    std::make_unsigned_t<T> number = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i)
        number = static_cast<std::make_unsigned_t<T>>(number << 8 | static_cast<unsigned char>(bytes[at + i]));
    return static_cast<T>(number);
}

/// The header of one of the file's two data blocks.
struct block_header {
    static constexpr std::size_t size = 44;
    std::size_t universal, standard, leaps, moments, types, names;

    static std::optional<block_header> read(std::string_view bytes) noexcept {
        if (bytes.size() < size || !bytes.starts_with("TZif")) return std::nullopt;
        const auto count = [&](std::size_t index) { return std::size_t{number_at<std::uint32_t>(bytes, 20 + 4 * index)}; };
        return block_header{count(0), count(1), count(2), count(3), count(4), count(5)};
    }
    [[nodiscard]] std::size_t data_size(std::size_t moment_size) const noexcept {
        return moments * (moment_size + 1) + types * 6 + names + leaps * (moment_size + 4) + standard + universal;
    }
};

}  // namespace

zone_changes::zone_changes(const zone_rule& rule) : zone_changes(rule.standard_offset()) {
    add_years(rule, beginning);
    make_hints();
}

std::optional<zone_changes> zone_changes::from_file(std::string_view bytes) {
    // The first block has moments of 32 bits, for very old readers; the second is the one to read.
    const auto old_header = block_header::read(bytes);
    if (!old_header || bytes[4] < '2') return std::nullopt;
    const std::size_t skipped = block_header::size + old_header->data_size(4);
    if (bytes.size() < skipped) return std::nullopt;
    bytes.remove_prefix(skipped);
    const auto header = block_header::read(bytes);
    if (!header || header->types == 0) return std::nullopt;
    const std::size_t footer = block_header::size + header->data_size(8);
    if (bytes.size() < footer) return std::nullopt;

    const std::size_t moments = block_header::size;
    const std::size_t indices = moments + header->moments * 8;
    const std::size_t types = indices + header->moments;
    const auto offset_of = [&](std::size_t type) { return number_at<std::int32_t>(bytes, types + type * 6); };
    const auto is_summer = [&](std::size_t type) { return bytes[types + type * 6 + 4] != 0; };

    std::size_t first_type = 0;
    while (first_type < header->types && is_summer(first_type)) ++first_type;
    zone_changes zone(offset_of(first_type == header->types ? 0 : first_type));
    std::int64_t known_until = beginning;
    for (std::size_t i = 0; i < header->moments; ++i) {
        const std::size_t type = static_cast<unsigned char>(bytes[indices + i]);
        if (type >= header->types) return std::nullopt;
        known_until = number_at<std::int64_t>(bytes, moments + i * 8);
        zone.add(known_until, offset_of(type));
    }

    auto rule_text = bytes.substr(footer);
    if (rule_text.starts_with('\n')) rule_text.remove_prefix(1);
    rule_text = rule_text.substr(0, rule_text.find('\n'));
    if (const auto rule = zone_rule::parse(rule_text)) zone.add_years(*rule, known_until);
    zone.make_hints();
    return zone;
}

void zone_changes::add(std::int64_t moment, std::int32_t offset) {
    if (moment <= moments_.back()) {
        offsets_.back() = offset;
    } else if (offset != offsets_.back()) {
        moments_.push_back(moment);
        offsets_.push_back(offset);
    }
}

void zone_changes::add_years(const zone_rule& rule, std::int64_t known_until) {
    if (!rule.has_changes()) return;
    const int first_year = known_until == beginning ? 1600 : year_of(known_until);
    const int last_year = first_year + period_years + 1;
    for (int year = first_year; year <= last_year; ++year) {
        const auto changes = rule.changes_in(year);
        for (const auto& change : {changes.first, changes.second})
            if (change.at > known_until) add(change.at, change.offset);
    }
    horizon_ = start_of_year(last_year);
}

void zone_changes::make_hints() {
    constexpr std::int64_t until = std::int64_t{1} << 32;  // 2106
    hints_.clear();
    for (std::int64_t moment = 0; moment < until; moment += std::int64_t{1} << hint_bits)
        hints_.push_back(static_cast<std::uint32_t>(std::ranges::upper_bound(moments_, moment) - moments_.begin() - 1));
}

std::size_t zone_changes::index_of(std::int64_t moment) const noexcept {
    if (const auto hint = static_cast<std::uint64_t>(moment) >> hint_bits; hint < hints_.size()) {
        std::size_t index = hints_[hint];
        while (index + 1 < moments_.size() && moments_[index + 1] <= moment) ++index;
        return index;
    }
    return static_cast<std::size_t>(std::ranges::upper_bound(moments_, moment) - moments_.begin()) - 1;
}

std::int64_t zone_changes::end_of(std::size_t index) const noexcept {
    return index + 1 < moments_.size() ? moments_[index + 1] : horizon_;
}

std::int64_t zone_changes::periods_beyond(std::int64_t moment) const noexcept {
    return moment < horizon_ ? 0 : ((moment - horizon_) / period_seconds + 1) * period_seconds;
}

std::int64_t zone_changes::utc_of(std::int64_t wall_clock) const noexcept {
    const std::int64_t shift = periods_beyond(wall_clock);
    const std::int64_t wall = wall_clock - shift;
    std::size_t i = index_of(wall - widest_offset);
    for (; i < moments_.size() && moments_[i] <= wall + widest_offset; ++i) {
        // A moment before its span begins was skipped by the clock.
        if (const std::int64_t moment = wall - offsets_[i]; moment < end_of(i)) return moment + shift;
    }
    return wall - offsets_[i - 1] + shift;
}

}  // namespace quorvel
