#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ostrevan::index {

/// One record before and after a commit; nothing where there was, or is, none.
struct record_change {
    std::uint64_t key = 0;
    std::optional<std::vector<std::byte>> before{};
    std::optional<std::vector<std::byte>> after{};

    bool operator==(const record_change&) const = default;
};

/// Appends a change in the form of the journal (docs/file-formats.md). Most bytes of a record are zero or stay as they are,
/// and take no room.
void append_change(std::vector<std::byte>& to, std::uint64_t key, std::optional<std::span<const std::byte>> before,
                   std::optional<std::span<const std::byte>> after);

/// Takes the changes apart. Nothing when the bytes are damaged.
std::optional<std::vector<record_change>> read_changes(std::span<const std::byte> from);

}  // namespace ostrevan::index
