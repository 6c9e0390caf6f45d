#include "player/remote/frame.h"

#include <array>
#include <cstdint>

#include "player/system/endian.h"

namespace ostrevan::remote {
namespace {

constexpr std::size_t length_size = 4;

enum class major_type { number, negative_number, bytes, text, list, map, tag, simple };

}  // namespace

std::string frame_of(std::string_view content) { return system::as_big_endian(content.size(), length_size).append(content); }

std::optional<std::string> frame_reader::next() {
    if (waiting_.size() < length_size) return std::nullopt;
    const auto size = static_cast<std::size_t>(system::big_endian(waiting_, 0, length_size));
    if (size > largest_frame) throw malformed("a frame is too long");
    if (waiting_.size() - length_size < size) return std::nullopt;
    auto content = waiting_.substr(length_size, size);
    waiting_.erase(0, length_size + size);
    return content;
}

bool is_plain_cbor(std::string_view bytes) noexcept {
    constexpr unsigned least_extended = 24, largest_extended = 27;
    std::array<std::uint64_t, 3> to_come{1};  // values, by depth
    for (std::size_t depth = 0;;) {
        while (to_come[depth] == 0) {
            if (depth == 0) return bytes.empty();
            --depth;
        }
        --to_come[depth];
        if (bytes.empty()) return false;
        const auto head = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        std::uint64_t argument = head & 31U;
        if (argument > largest_extended) return false;  // of unknown length
        if (argument >= least_extended) {
            const auto size = std::size_t{1} << (argument - least_extended);
            if (bytes.size() < size) return false;
            argument = system::big_endian(bytes, 0, size);
            bytes.remove_prefix(size);
        }
        const auto type = static_cast<major_type>(head >> 5U);
        if (type == major_type::tag) return false;
        if (type < major_type::bytes || type > major_type::map) continue;
        if (argument > bytes.size()) return false;  // a value takes a byte at least
        if (type < major_type::list) {
            bytes.remove_prefix(static_cast<std::size_t>(argument));
        } else {
            if (++depth == to_come.size()) return false;
            to_come[depth] = type == major_type::map ? 2 * argument : argument;
        }
    }
}

}  // namespace ostrevan::remote
