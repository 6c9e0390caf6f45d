#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::titleformat {

struct function;

enum class node_kind : std::uint8_t { sequence, section, text, field, call };

/// Nodes are in script order, each directly followed by its content. An argument of a call is a sequence.
struct node {
    node_kind kind = node_kind::sequence;
    /// Index of the first node after this one and its content.
    std::uint32_t end = 0;
    /// Text, field: place in `program::texts`, in bytes. Call: place in `program::arguments`.
    std::uint32_t first = 0;
    std::uint32_t count = 0;
    const function* callee = nullptr;
};

struct program {
    /// The whole script is node 0, a sequence.
    std::vector<node> nodes;
    /// Node indices of the arguments of all calls, those of one call in a row.
    std::vector<std::uint32_t> arguments;
    /// All literal texts and field names, joined.
    std::string texts;

    [[nodiscard]] std::string_view text_of(const node& item) const noexcept {
        return std::string_view(texts).substr(item.first, item.count);
    }
};

}  // namespace ostrevan::titleformat
