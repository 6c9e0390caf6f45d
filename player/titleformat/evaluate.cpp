#include <algorithm>

#include "player/titleformat/function.h"
#include "player/titleformat/integer.h"
#include "player/titleformat/program.h"
#include "player/titleformat/unicode.h"

namespace ostrevan::titleformat {

namespace {

bool run_content(const program& compiled, const node& self, const field_source& fields, std::string& out);

bool run_node(const program& compiled, const node& self, const field_source& fields, std::string& out) {
    switch (self.kind) {
        case node_kind::text:
            out += compiled.text_of(self);
            return false;
        case node_kind::field:
            return fields.field(compiled.text_of(self), out);
        case node_kind::sequence:
            return run_content(compiled, self, fields, out);
        case node_kind::section: {
            const std::size_t start = out.size();
            const bool found = run_content(compiled, self, fields, out);
            if (!found) out.resize(start);
            return found;
        }
        case node_kind::call: {
            call arguments(compiled, self, fields, out);
            return self.callee->body(arguments);
        }
    }
    return false;
}

/// Drops what exceeds the limit, and any character cut in two. Returns true when there is no room for more.
bool limit(std::string& out, std::size_t start) {
    if (out.size() - start <= script::max_result) return false;
    std::size_t end = start + script::max_result;
    while (end > start && (static_cast<unsigned char>(out[end]) & 0xC0U) == 0x80U) --end;
    out.resize(end);
    return true;
}

bool run_content(const program& compiled, const node& self, const field_source& fields, std::string& out) {
    const std::size_t start = out.size();
    bool found = false;
    const node* const nodes = compiled.nodes.data();
    for (const node* item = &self + 1; item != nodes + self.end; item = nodes + item->end) {
        found |= run_node(compiled, *item, fields, out);
        if (limit(out, start)) break;
    }
    return found;
}

}  // namespace

result script::run(const field_source& fields) const {
    result made;
    made.found = run(fields, made.text);
    return made;
}

bool script::run(const field_source& fields, std::string& out) const {
    return run_node(*program_, program_->nodes.front(), fields, out);
}

bool script::reads_fields() const noexcept {
    for (const node& item : program_->nodes)
        if (item.kind == node_kind::field) return true;
    return false;
}

std::optional<std::string_view> script::only_field() const noexcept {
    const auto& nodes = program_->nodes;
    if (nodes.size() != 2 || nodes[1].kind != node_kind::field) return std::nullopt;
    return program_->text_of(nodes[1]);
}

std::size_t call::size() const noexcept { return self_.count; }

bool call::append(std::size_t index) {
    const bool found = run_node(program_, program_.nodes[program_.arguments[self_.first + index]], fields_, out);
    found_ |= found;
    return found;
}

bool call::test(std::size_t index) {
    const std::size_t start = out.size();
    const bool found = append(index);
    out.resize(start);
    return found;
}

std::string call::text(std::size_t index) {
    const std::size_t start = out.size();
    append(index);
    std::string taken = out.substr(start);
    out.resize(start);
    return taken;
}

std::int64_t call::number(std::size_t index) {
    const std::size_t start = out.size();
    append(index);
    const auto value = leading_integer(std::string_view(out).substr(start));
    out.resize(start);
    return value.value_or(0);
}

std::size_t call::length(std::size_t index) {
    const std::int64_t value = number(index);
    if (value <= 0) return 0;
    return std::min(static_cast<std::size_t>(value), script::max_result);
}

}  // namespace ostrevan::titleformat
