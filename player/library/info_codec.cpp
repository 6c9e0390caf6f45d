#include "player/library/info_codec.h"

#include <bit>
#include <cstdint>
#include <vector>

#include "ostrevan/exceptions.h"

namespace ostrevan::library {
namespace {

constexpr char format_version = 1;

void put_number(std::string& out, std::uint64_t value) {
    for (; value >= 0x80; value >>= 7) out += static_cast<char>(value | 0x80);
    out += static_cast<char>(value);
}

void put_text(std::string& out, std::string_view text) {
    put_number(out, text.size());
    out += text;
}

class input {
public:
    explicit input(std::string_view bytes) noexcept : rest_(bytes) {}

    std::uint8_t byte() {
        if (rest_.empty()) throw ostrevan_io::exception_io_data_truncation();
        const auto value = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return value;
    }

    std::uint64_t number() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const std::uint8_t part = byte();
            value |= std::uint64_t{part & 0x7FU} << shift;
            if ((part & 0x80U) == 0) return value;
        }
        throw ostrevan_io::exception_io_data();
    }

    /// A count of items of at least one byte each.
    std::size_t count() {
        const std::uint64_t value = number();
        if (value > rest_.size()) throw ostrevan_io::exception_io_data_truncation();
        return static_cast<std::size_t>(value);
    }

    std::string_view text() {
        const std::size_t size = count();
        const auto value = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return value;
    }

    [[nodiscard]] bool at_end() const noexcept { return rest_.empty(); }

private:
    std::string_view rest_;
};

}  // namespace

std::string encode_info(const file_info& info) {
    thread_local std::string out;  // so that the result is allocated once, at its final size
    out.clear();
    out += format_version;
    const auto length = std::bit_cast<std::uint64_t>(info.length());
    for (unsigned shift = 0; shift < 64; shift += 8) out += static_cast<char>(length >> shift);
    put_number(out, info.bitrate);
    put_number(out, info.sample_rate);
    put_number(out, info.channels);
    put_text(out, info.codec());
    for (std::size_t i = 0; i < info.meta_count(); ++i) {
        put_text(out, info.meta_name(i));
        put_number(out, info.meta_value_count(i));
        for (const auto& value : info.meta_values(i)) put_text(out, value);
    }
    return out;
}

file_info decode_info(std::string_view bytes) {
    input in(bytes);
    if (in.byte() != format_version) throw ostrevan_io::exception_io_data();
    file_info info;
    std::uint64_t length = 0;
    for (unsigned shift = 0; shift < 64; shift += 8) length |= std::uint64_t{in.byte()} << shift;
    info.set_length(std::bit_cast<double>(length));
    info.bitrate = static_cast<std::uint32_t>(in.number());
    info.sample_rate = static_cast<std::uint32_t>(in.number());
    info.channels = static_cast<std::uint32_t>(in.number());
    info.set_codec(std::string(in.text()));
    while (!in.at_end()) {
        const auto name = in.text();
        std::vector<std::string> values(in.count());
        for (auto& value : values) value = in.text();
        info.meta_set_values(name, std::move(values));
    }
    return info;
}

}  // namespace ostrevan::library
