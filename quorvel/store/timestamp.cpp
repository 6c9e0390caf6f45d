#include "quorvel/store/timestamp.h"

#include <algorithm>

#include "quorvel/common/digits.h"

namespace quorvel {
namespace {

char* put_two(char* out, std::int32_t number) noexcept { return put_two_digits(out, static_cast<std::uint32_t>(number)); }

/// Reads a text from its start, field by field.
class time_reader {
public:
    explicit time_reader(std::string_view text) noexcept : text_(text) {}

    void skip_blanks() noexcept { text_.remove_prefix(std::min(text_.find_first_not_of(" \t\n\v\f\r"), text_.size())); }
    bool skip(char c) noexcept {
        if (!text_.starts_with(c)) return false;
        text_.remove_prefix(1);
        return true;
    }
    std::int32_t digits(std::size_t count) {
        std::int32_t number = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (!at_digit()) throw exception_time_error();
            number = number * 10 + take_digit();
        }
        return number;
    }
    /// The first three decimals. Missing ones are zero.
    std::int32_t thousandths() noexcept {
        std::int32_t number = 0;
        for (int i = 0; i < 3; ++i) number = number * 10 + (at_digit() ? take_digit() : 0);
        return number;
    }

private:
    [[nodiscard]] bool at_digit() const noexcept { return !text_.empty() && text_[0] >= '0' && text_[0] <= '9'; }
    std::int32_t take_digit() noexcept {
        const char c = text_[0];
        text_.remove_prefix(1);
        return c - '0';
    }

    std::string_view text_;
};

/// The month's length is left to the conversion.
bool in_range(const civil_time& t) noexcept {
    return t.year >= 1601 && t.month >= 1 && t.month <= 12 && t.day >= 1 && t.day <= 31 && t.hour < 24 && t.minute < 60 &&
           t.second < 60 && t.millisecond < 1000;
}

}  // namespace

timestamp_text::timestamp_text(std::uint64_t time, const time_zone& zone) noexcept {
    if (const char* const end = PutTimestamp(characters_.data(), time, zone)) {
        length_ = static_cast<std::size_t>(end - characters_.data());
    } else {
        constexpr std::string_view invalid = "<invalid timestamp>";
        length_ = invalid.copy(characters_.data(), capacity);
    }
}

timestamp_text FormatTimestamp(std::uint64_t time) { return {time, time_zone::local()}; }
timestamp_text FormatTimestamp(std::uint64_t time, const time_zone& zone) { return {time, zone}; }

char* PutTimestamp(char* out, std::uint64_t time, const time_zone& zone) noexcept {
    const auto local = zone.to_local(time);
    if (!local) return nullptr;
    if (local->year >= 10000) *out++ = static_cast<char>('0' + local->year / 10000);
    out = put_two(out, local->year / 100 % 100);
    out = put_two(out, local->year % 100);
    *out++ = '-';
    out = put_two(out, local->month);
    *out++ = '-';
    out = put_two(out, local->day);
    *out++ = ' ';
    out = put_two(out, local->hour);
    *out++ = ':';
    out = put_two(out, local->minute);
    *out++ = ':';
    return put_two(out, local->second);
}

std::uint64_t ParseTimestamp(std::string_view text) { return ParseTimestamp(text, time_zone::local()); }

std::uint64_t ParseTimestamp(std::string_view text, const time_zone& zone) {
    time_reader reader(text);
    civil_time local;
    reader.skip_blanks();
    local.year = reader.digits(4);
    reader.skip('-');
    local.month = reader.digits(2);
    reader.skip('-');
    local.day = reader.digits(2);
    reader.skip_blanks();
    local.hour = reader.digits(2);
    reader.skip(':');
    local.minute = reader.digits(2);
    reader.skip(':');
    local.second = reader.digits(2);
    if (reader.skip('.')) local.millisecond = reader.thousandths();

    if (!in_range(local)) throw exception_time_error();
    const auto time = zone.to_utc(local);
    if (!time) throw exception_time_error();
    return *time;
}

}  // namespace quorvel
