#include "ostrevan/file_info.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <new>

#include "nuv/text.h"

namespace ostrevan {

// Layout of the bytes. Numbers have their lowest byte first.
//     0  version: 2
//     1  size of an offset: 2, or 4 when there are more than 65,535 bytes
//     4  number of fields, bit rate, sample rate, channels: 4 bytes each
//    20  length: 8 bytes
//    28  fingerprint of each name: 2 bytes
//        offset of each field, and the number of all bytes
//        codec; then name, number of values and values of each field
// Every text begins with its length. Lengths and numbers of values have seven bits a byte (`take_number`).

/// Counts the copies. The bytes follow.
struct file_info::block {
    std::atomic<std::uint32_t> references{1};
    std::uint32_t size = 0;
};

/// What is left of bytes that may be damaged.
struct file_info::careful_reader {
    const char* at;
    const char* end;

    /// A number of items of at least one byte each.
    bool take_count(std::size_t& count) noexcept {
        std::uint64_t number = 0;
        for (unsigned shift = 0; at != end && shift < 32; shift += 7) {
            const auto part = static_cast<std::uint8_t>(*at++);
            number |= std::uint64_t{part & 0x7FU} << shift;
            count = static_cast<std::size_t>(number);
            if (part < 0x80) return number <= static_cast<std::size_t>(end - at);
        }
        return false;
    }
    bool take_text(std::string_view& text) noexcept {
        std::size_t size = 0;
        if (!take_count(size)) return false;
        text = {at, size};
        at += size;
        return true;
    }
};

/// No fields, the one offset is that of the end, and the codec is an empty text.
struct file_info::empty_block {
    block head{1, sizeof bytes};
    char bytes[header_size + 3] = {version, 2};

    constexpr empty_block() { bytes[header_size] = sizeof bytes; }
    static constinit empty_block shared;  // never released
};
constinit file_info::empty_block file_info::empty_block::shared;

std::uint16_t file_info::fingerprint_of(std::string_view name) noexcept {
    std::uint64_t head = 0;
    if (name.size() >= 4) {
        const char* const second = name.data() + std::min<std::size_t>(name.size(), 8) - 4;
        head = std::uint64_t{number_at<4>(second)} << 32 | number_at<4>(name.data());
    } else {
        for (const char each : name) head = head << 8 | static_cast<std::uint8_t>(each);
    }
    // Names that differ in case only have the same fingerprint.
    head = (head | 0x2020202020202020ULL) ^ std::uint64_t{name.size()} << 56;
    return static_cast<std::uint16_t>(head * 0x9E3779B97F4A7C15ULL >> 48);
}

file_info::file_info() noexcept : file_info(empty_block::shared.head) {}

file_info::file_info(block& shared) noexcept : bytes_(reinterpret_cast<const char*>(&shared + 1)) {
    shared.references.fetch_add(1, std::memory_order_relaxed);
}

file_info::file_info(const file_info& other) noexcept : file_info(other.owner()) {}

file_info::~file_info() {
    block& left = owner();
    if (left.references.fetch_sub(1, std::memory_order_acq_rel) == 1) ::operator delete(&left);
}

file_info::block& file_info::owner() const noexcept { return *(reinterpret_cast<block*>(const_cast<char*>(bytes_)) - 1); }

std::string_view file_info::bytes() const noexcept { return {bytes_, owner().size}; }

std::optional<file_info> file_info::from_bytes(std::string_view bytes) {
    if (bytes.size() < sizeof empty_block::bytes || bytes.size() > std::numeric_limits<std::uint32_t>::max()) return {};
    auto* const made = new (::operator new(sizeof(block) + bytes.size())) block;
    made->size = static_cast<std::uint32_t>(bytes.size());
    std::memcpy(static_cast<void*>(made + 1), bytes.data(), bytes.size());
    file_info result(*made);
    made->references.store(1, std::memory_order_relaxed);
    if (!result.is_whole()) return {};
    return result;
}

/// Everything that the other functions rely on.
bool file_info::is_whole() const noexcept {
    const std::size_t size = owner().size;
    const std::size_t width = static_cast<std::uint8_t>(bytes_[1]);
    if (bytes_[0] != version || (width != 2 && width != 4)) return false;
    const std::uint64_t texts = header_size + width + std::uint64_t{2 + width} * meta_count();
    if (texts > size || field_at(meta_count()) != bytes_ + size) return false;

    careful_reader in{bytes_ + texts, bytes_ + size};
    std::string_view text;
    if (!in.take_text(text)) return false;
    for (std::size_t i = 0; i < meta_count(); ++i) {
        std::size_t values = 0;
        if (field_at(i) != in.at || !in.take_text(text) || !in.take_count(values)) return false;
        if (number_at<2>(bytes_ + header_size + 2 * i) != fingerprint_of(text)) return false;
        for (; values > 0; --values)
            if (!in.take_text(text)) return false;
    }
    return in.at == in.end;
}

std::size_t file_info::meta_find(std::string_view name) const noexcept {
    const std::uint32_t wanted = fingerprint_of(name);
    const std::size_t count = meta_count();
    for (std::size_t i = 0; i < count; ++i)
        if (number_at<2>(bytes_ + header_size + 2 * i) == wanted && nuv::equal_ascii_nocase(meta_name(i), name)) return i;
    return npos;
}

std::string_view file_info::codec() const noexcept {
    const auto width = static_cast<std::uint8_t>(bytes_[1]);
    const char* at = bytes_ + header_size + (2U + width) * meta_count() + width;
    return take_text(at);
}

bool file_info::operator==(const file_info& other) const noexcept {
    if (bytes() == other.bytes()) return true;
    if (length() != other.length() || codec() != other.codec() || bitrate() != other.bitrate() ||
        sample_rate() != other.sample_rate() || channels() != other.channels() || meta_count() != other.meta_count())
        return false;
    for (std::size_t i = 0; i < meta_count(); ++i) {
        const auto mine = meta_values(i);
        const auto theirs = other.meta_values(i);
        if (!nuv::equal_ascii_nocase(meta_name(i), other.meta_name(i)) ||
            !std::equal(mine.begin(), mine.end(), theirs.begin(), theirs.end()))
            return false;
    }
    return true;
}

}  // namespace ostrevan
