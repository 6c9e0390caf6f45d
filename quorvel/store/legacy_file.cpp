#include "quorvel/store/legacy_file.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstring>
#include <string>
#include <utility>

#include "ostrevan/exceptions.h"

namespace quorvel {
namespace {

struct legacy_format {
    nuv::guid id;
    bool has_added_and_rating;
};
constexpr std::array legacy_formats{
    legacy_format{nuv::guid_of("{22A7D447-DA5C-42F5-9E1A-5DD9DE85A812}"), false},
    legacy_format{nuv::guid_of("{F67999FE-CA4D-4384-9BE8-43C1A39F1D3A}"), true},
};

/// Reads little-endian fields through a buffer that grows with the file.
class legacy_reader {
public:
    explicit legacy_reader(ostrevan::file& file) : file_(file) {}

    template <std::unsigned_integral T>
    T number() {
        std::array<unsigned char, sizeof(T)> bytes;
        take(reinterpret_cast<char*>(bytes.data()), bytes.size());
        T value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) value |= static_cast<T>(static_cast<T>(bytes[i]) << 8 * i);
        return value;
    }

    nuv::guid guid() {
        nuv::guid id{.data1 = number<std::uint32_t>(), .data2 = number<std::uint16_t>(), .data3 = number<std::uint16_t>()};
        for (auto& byte : id.data4) byte = number<std::uint8_t>();
        return id;
    }

    /// A damaged file can claim any length: the text grows only as far as there are bytes.
    std::string text(std::size_t length) {
        std::string text;
        while (length != 0) {
            const auto part = std::min(length, largest_buffer);
            text.resize(text.size() + part);
            take(text.data() + (text.size() - part), part);
            length -= part;
        }
        return text;
    }

private:
    static constexpr std::size_t smallest_buffer = 1024;
    static constexpr std::size_t largest_buffer = 65536;

    void take(char* to, std::size_t size) {
        while (size != 0) {
            if (next_ == buffer_.size()) refill();
            const auto part = std::min(size, buffer_.size() - next_);
            std::memcpy(to, buffer_.data() + next_, part);
            next_ += part;
            to += part;
            size -= part;
        }
    }

    void refill() {
        buffer_.resize(std::clamp(buffer_.size() * 2, smallest_buffer, largest_buffer));
        buffer_.resize(file_.read(buffer_.data(), buffer_.size()));
        next_ = 0;
        if (buffer_.empty()) throw ostrevan_io::exception_io_data_truncation();
    }

    ostrevan::file& file_;
    std::string buffer_;
    std::size_t next_ = 0;
};

const legacy_format& format_of(const nuv::guid& id) {
    const auto* const found = std::ranges::find(legacy_formats, id, &legacy_format::id);
    if (found == legacy_formats.end()) throw ostrevan_io::exception_io_data();
    return *found;
}

legacy_record read_legacy_record(legacy_reader& reader, const legacy_format& format) {
    legacy_record record;
    record.location.path = reader.text(reader.number<std::uint32_t>());
    record.location.subsong = reader.number<std::uint32_t>();
    auto& stats = record.stats;
    stats.play_count = reader.number<std::uint64_t>();
    stats.first_played = reader.number<std::uint64_t>();
    stats.last_played = reader.number<std::uint64_t>();
    if (format.has_added_and_rating) {
        stats.added = reader.number<std::uint64_t>();
        stats.rating = reader.number<std::uint32_t>();
    }
    limit_date_added(stats);
    return record;
}

}  // namespace

std::vector<legacy_record> read_legacy_file(ostrevan::file& file) {
    legacy_reader reader(file);
    const auto& format = format_of(reader.guid());
    std::vector<legacy_record> records;
    for (auto left = reader.number<std::uint32_t>(); left != 0; --left)
        records.push_back(read_legacy_record(reader, format));
    return records;
}

}  // namespace quorvel
