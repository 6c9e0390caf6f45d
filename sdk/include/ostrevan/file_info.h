#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace ostrevan {

/// What is known of one track: named fields in the order of the file, each with an ordered list of UTF-8 values, and its
/// sound. Field names match without regard to ASCII case. A field may be present without any value. Never changes: a copy
/// shares one counted block of memory, and finding a field and reading a value allocate nothing. Names and values refer into
/// the block and are valid while any copy lives. An index out of range is a programming error. [any-thread]
class file_info {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    class value_list;

    /// No field, and nothing known of the sound.
    file_info() noexcept;
    file_info(const file_info& other) noexcept;
    file_info(file_info&& other) noexcept : file_info() { std::swap(bytes_, other.bytes_); }
    file_info& operator=(file_info other) noexcept {
        std::swap(bytes_, other.bytes_);
        return *this;
    }
    ~file_info();

    /// Copies and checks the bytes of another one; empty when they are damaged.
    [[nodiscard]] static std::optional<file_info> from_bytes(std::string_view bytes);
    /// Everything, in a form that may be stored. Layout: file_info.cpp.
    [[nodiscard]] std::string_view bytes() const noexcept;

    [[nodiscard]] std::size_t meta_count() const noexcept { return number_at<4>(bytes_ + 4); }
    [[nodiscard]] std::string_view meta_name(std::size_t index) const noexcept {
        const char* at = field_at(index);
        return take_text(at);
    }
    [[nodiscard]] value_list meta_values(std::size_t index) const noexcept;
    [[nodiscard]] std::size_t meta_value_count(std::size_t index) const noexcept;
    [[nodiscard]] std::string_view meta_value(std::size_t index, std::size_t value) const noexcept;

    /// Index of the field, or `npos`.
    [[nodiscard]] std::size_t meta_find(std::string_view name) const noexcept;
    [[nodiscard]] bool meta_exists(std::string_view name) const noexcept { return meta_find(name) != npos; }

    /// Bits per second in thousands, samples per second, channels; 0 when unknown.
    [[nodiscard]] std::uint32_t bitrate() const noexcept { return number_at<4>(bytes_ + 8); }
    [[nodiscard]] std::uint32_t sample_rate() const noexcept { return number_at<4>(bytes_ + 12); }
    [[nodiscard]] std::uint32_t channels() const noexcept { return number_at<4>(bytes_ + 16); }
    /// Length in seconds; 0 when unknown.
    [[nodiscard]] double length() const noexcept {
        return std::bit_cast<double>(std::uint64_t{number_at<4>(bytes_ + 24)} << 32 | number_at<4>(bytes_ + 20));
    }
    /// Short name of the coding, such as "FLAC"; empty when unknown.
    [[nodiscard]] std::string_view codec() const noexcept;

    bool operator==(const file_info& other) const noexcept;

private:
    friend class file_info_builder;
    struct block;
    struct empty_block;
    struct careful_reader;

    static constexpr char version = 2;
    static constexpr std::size_t header_size = 28;
    static std::uint16_t fingerprint_of(std::string_view name) noexcept;

    explicit file_info(block& shared) noexcept;
    [[nodiscard]] block& owner() const noexcept;
    [[nodiscard]] bool is_whole() const noexcept;

    template <unsigned size>
    static std::uint32_t number_at(const char* at) noexcept {
        std::uint32_t number = 0;
        for (unsigned i = 0; i < size; ++i) number |= std::uint32_t{static_cast<std::uint8_t>(at[i])} << 8 * i;
        return number;
    }
    /// Seven bits a byte, lowest first; all but the last with the high bit set.
    static std::uint32_t take_number(const char*& at) noexcept {
        auto part = static_cast<std::uint8_t>(*at++);
        std::uint32_t number = part & 0x7FU;
        for (unsigned shift = 7; part >= 0x80; shift += 7) {
            part = static_cast<std::uint8_t>(*at++);
            number |= (part & 0x7FU) << shift;
        }
        return number;
    }
    static std::string_view take_text(const char*& at) noexcept {
        const std::uint32_t size = take_number(at);
        at += size;
        return {at - size, size};
    }
    [[nodiscard]] const char* field_at(std::size_t index) const noexcept {
        const char* const offsets = bytes_ + header_size + 2 * meta_count();
        return bytes_ + (bytes_[1] == 2 ? number_at<2>(offsets + 2 * index) : number_at<4>(offsets + 4 * index));
    }

    const char* bytes_;
};

/// The values of one field. Refers into the file_info.
class file_info::value_list {
public:
    class iterator {
    public:
        using value_type = std::string_view;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        using reference = std::string_view;
        using pointer = void;

        iterator() noexcept = default;
        iterator(const char* at, std::size_t rest) noexcept : at_(at), rest_(rest) {}
        std::string_view operator*() const noexcept {
            const char* at = at_;
            return take_text(at);
        }
        iterator& operator++() noexcept {
            take_text(at_);
            --rest_;
            return *this;
        }
        iterator operator++(int) noexcept {
            const iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const iterator& other) const noexcept { return rest_ == other.rest_; }

    private:
        const char* at_ = nullptr;
        std::size_t rest_ = 0;
    };

    value_list(const char* first, std::size_t count) noexcept : first_(first), count_(count) {}
    [[nodiscard]] iterator begin() const noexcept { return {first_, count_}; }
    [[nodiscard]] iterator end() const noexcept { return {}; }
    [[nodiscard]] std::size_t size() const noexcept { return count_; }

private:
    const char* first_;
    std::size_t count_;
};

inline file_info::value_list file_info::meta_values(std::size_t index) const noexcept {
    const char* at = field_at(index);
    take_text(at);
    const std::size_t count = take_number(at);
    return {at, count};
}

inline std::size_t file_info::meta_value_count(std::size_t index) const noexcept { return meta_values(index).size(); }

inline std::string_view file_info::meta_value(std::size_t index, std::size_t value) const noexcept {
    return *std::next(meta_values(index).begin(), static_cast<std::ptrdiff_t>(value));
}

}  // namespace ostrevan
