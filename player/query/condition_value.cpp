#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include "player/query/condition.h"
#include "player/titleformat/integer.h"
#include "player/titleformat/unicode.h"

namespace ostrevan::query {

namespace {

using titleformat::script;

/// Normalises a text for comparison: composed accents, folded case.
void append_comparable(std::string& out, std::string_view text) {
    const bool is_ascii = std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    utf8proc_uint8_t* composed = nullptr;
    const auto length = is_ascii ? 0
                                 : utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                                static_cast<utf8proc_ssize_t>(text.size()), &composed,
                                                static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(composed, &std::free);
    if (length > 0) text = {reinterpret_cast<const char*>(composed), static_cast<std::size_t>(length)};
    titleformat::append_folded(out, text);
}

class presence final : public condition {
public:
    explicit presence(script left) noexcept : left_(std::move(left)) {}
    [[nodiscard]] bool matches(const examined& track) const override { return track.read(left_); }

private:
    script left_;
};

class text_condition final : public condition {
public:
    text_condition(script left, text_test test, std::string_view right) : left_(std::move(left)), test_(test) {
        append_comparable(right_, right);
    }
    [[nodiscard]] bool matches(const examined& track) const override {
        if (!track.read(left_)) return false;
        track.folded.clear();
        append_comparable(track.folded, track.text);
        return test_ == text_test::is ? track.folded == right_ : track.folded.find(right_) != std::string::npos;
    }

private:
    script left_;
    text_test test_;
    std::string right_;
};

class number_condition final : public condition {
public:
    number_condition(script left, number_test test, std::int64_t right) noexcept
        : left_(std::move(left)), test_(test), right_(right) {}
    [[nodiscard]] bool matches(const examined& track) const override {
        if (!track.read(left_)) return false;
        const auto value = titleformat::leading_integer(track.text);
        if (!value) return false;
        switch (test_) {
            case number_test::greater:
                return *value > right_;
            case number_test::less:
                return *value < right_;
            case number_test::equal:
                return *value == right_;
        }
        return false;
    }

private:
    script left_;
    number_test test_;
    std::int64_t right_;
};

}  // namespace

condition_ptr present(script left) { return std::make_unique<presence>(std::move(left)); }

condition_ptr compare_text(script left, text_test test, std::string_view right) {
    return std::make_unique<text_condition>(std::move(left), test, right);
}

condition_ptr mentions(std::string_view text) {
    static const script searched = titleformat::compile(
        "[%artist%\n][%album artist%\n][%album%\n][%title%\n][%composer%\n][%genre%\n][%date%\n][%filename%]");
    return compare_text(searched, text_test::has, text);
}

condition_ptr compare_number(script left, number_test test, std::int64_t right) {
    return std::make_unique<number_condition>(std::move(left), test, right);
}

}  // namespace ostrevan::query
