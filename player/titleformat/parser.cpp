#include <utility>

#include "nuv/text.h"
#include "player/titleformat/excerpt.h"
#include "player/titleformat/function.h"
#include "player/titleformat/program.h"
#include "player/titleformat/script.h"

namespace ostrevan::titleformat {

namespace {

/// Bounds the stack of parsing and of running.
constexpr std::size_t max_depth = 200;
constexpr std::size_t max_source = 1024 * 1024;

constexpr bool is_name(char c) noexcept {
    c = nuv::ascii_lower(c);
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

std::string arguments_expected(const function& callee) {
    const std::string fewest = std::to_string(callee.fewest);
    if (callee.most == function::any_number) return "at least " + fewest + " arguments";
    if (callee.most != callee.fewest) return fewest + " to " + std::to_string(callee.most) + " arguments";
    return fewest + (callee.fewest == 1 ? " argument" : " arguments");
}

class parser {
public:
    explicit parser(std::string_view source) : source_(source) {}

    program parse() {
        if (source_.size() > max_source) fail("the script is longer than 1 MiB", max_source);
        const auto root = open(node_kind::sequence);
        content(place::top);
        close(root);
        return std::move(program_);
    }

private:
    enum class place { top, section, argument };

    [[noreturn]] void fail(std::string reason, std::size_t position) const {
        throw script_error(std::move(reason), source_, position);
    }

    [[nodiscard]] bool at_end() const noexcept { return position_ == source_.size(); }
    [[nodiscard]] bool at(char c) const noexcept { return !at_end() && source_[position_] == c; }
    [[nodiscard]] bool at_pair(char c) const noexcept {
        return at(c) && position_ + 1 < source_.size() && source_[position_ + 1] == c;
    }

    std::uint32_t open(node_kind kind) {
        text_open_ = false;
        const auto index = static_cast<std::uint32_t>(program_.nodes.size());
        program_.nodes.push_back({.kind = kind});
        return index;
    }

    void close(std::uint32_t index) {
        text_open_ = false;
        program_.nodes[index].end = static_cast<std::uint32_t>(program_.nodes.size());
    }

    void leaf(node_kind kind, std::string_view text) {
        const auto index = open(kind);
        program_.nodes[index].first = static_cast<std::uint32_t>(program_.texts.size());
        program_.nodes[index].count = static_cast<std::uint32_t>(text.size());
        program_.texts += text;
        close(index);
    }

    /// Joins adjacent literal texts into one node.
    void literal(std::string_view text) {
        if (text_open_) {
            program_.texts += text;
            program_.nodes.back().count += static_cast<std::uint32_t>(text.size());
            return;
        }
        leaf(node_kind::text, text);
        text_open_ = true;
    }

    /// Reads up to the end of this place, without taking it.
    void content(place where) {
        // Paired parentheses in the literal text of an argument belong to the text.
        std::size_t parentheses = 0;
        while (!at_end()) {
            const char c = source_[position_];
            switch (c) {
                case '%':
                    field();
                    continue;
                case '\'':
                    quoted();
                    continue;
                case '$':
                    call_or_dollar();
                    continue;
                case '[':
                    section();
                    continue;
                case ']':
                    if (where == place::section) return;
                    fail("']' without '['", position_);
                case ',':
                    if (where == place::argument && parentheses == 0) return;
                    break;
                case '(':
                    if (where == place::argument) ++parentheses;
                    break;
                case ')':
                    if (where == place::argument && parentheses-- == 0) return;
                    break;
                default:
                    break;
            }
            literal(source_.substr(position_++, 1));
        }
    }

    void field() {
        if (at_pair('%')) {
            literal("%");
            position_ += 2;
            return;
        }
        const auto end = source_.find('%', position_ + 1);
        if (end == std::string_view::npos) fail("this '%' is never closed (a percent sign is written %%)", position_);
        std::string name;
        for (const char c : source_.substr(position_ + 1, end - position_ - 1)) name += nuv::ascii_lower(c);
        leaf(node_kind::field, name);
        position_ = end + 1;
    }

    void quoted() {
        const auto start = position_;
        if (at_pair('\'')) {
            literal("'");
            position_ += 2;
            return;
        }
        for (++position_; !at_end(); ++position_) {
            if (at_pair('\'')) ++position_;
            else if (at('\'')) {
                ++position_;
                return;
            }
            literal(source_.substr(position_, 1));
        }
        fail("this quote is never closed (a quote itself is written '')", start);
    }

    void section() {
        const auto start = position_++;
        const auto index = open(node_kind::section);
        nested(place::section, start);
        if (at_end()) fail("this '[' is never closed", start);
        ++position_;
        close(index);
    }

    void nested(place where, std::size_t start) {
        if (++depth_ > max_depth) fail("nested more than " + std::to_string(max_depth) + " deep", start);
        content(where);
        --depth_;
    }

    void call_or_dollar() {
        if (at_pair('$')) {
            literal("$");
            position_ += 2;
            return;
        }
        const auto start = position_++;
        while (!at_end() && is_name(source_[position_])) ++position_;
        const std::string name(source_.substr(start, position_ - start));
        if (name.size() == 1) fail("a function's name must follow '$' (a dollar sign is written $$)", start);
        const function* const callee = find_function(std::string_view(name).substr(1));
        if (callee == nullptr) fail("unknown function " + name, start);
        if (!at('(')) fail("'(' is missing after " + name, position_);

        const auto index = open(node_kind::call);
        program_.nodes[index].callee = callee;
        const auto given = arguments(name, start);
        if (given.size() < callee->fewest || given.size() > callee->most)
            fail(name + " takes " + arguments_expected(*callee) + ", not " + std::to_string(given.size()), start);
        program_.nodes[index].first = static_cast<std::uint32_t>(program_.arguments.size());
        program_.nodes[index].count = static_cast<std::uint32_t>(given.size());
        program_.arguments.insert(program_.arguments.end(), given.begin(), given.end());
        close(index);
    }

    std::vector<std::uint32_t> arguments(const std::string& name, std::size_t start) {
        std::vector<std::uint32_t> given;
        const auto first = position_ + 1;
        do {
            ++position_;
            given.push_back(open(node_kind::sequence));
            nested(place::argument, start);
            if (at_end()) fail("')' is missing at the end of " + name, start);
            close(given.back());
        } while (at(','));
        if (position_ == first) given.clear();
        ++position_;
        return given;
    }

    std::string_view source_;
    std::size_t position_ = 0;
    std::size_t depth_ = 0;
    bool text_open_ = false;
    program program_;
};

}  // namespace

script_error::script_error(std::string reason, std::string_view source, std::size_t position)
    : user_error(reason + point_at(source, position)), reason_(std::move(reason)), position_(position) {}

script compile(std::string_view source) { return script(std::make_shared<const program>(parser(source).parse())); }

}  // namespace ostrevan::titleformat
