#include "player/library/older_info.h"

#include <sqlite3.h>

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ostrevan/exceptions.h"
#include "ostrevan/file_info_builder.h"

namespace ostrevan::library {
namespace {

constexpr char format_version = 1;

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

/// Throws ostrevan_io::exception_io_data for malformed bytes; never reads past them.
file_info decode(std::string_view bytes) {
    input in(bytes);
    if (in.byte() != format_version) throw ostrevan_io::exception_io_data();
    file_info_builder info;
    std::uint64_t length = 0;
    for (unsigned shift = 0; shift < 64; shift += 8) length |= std::uint64_t{in.byte()} << shift;
    info.length = std::bit_cast<double>(length);
    info.bitrate = static_cast<std::uint32_t>(in.number());
    info.sample_rate = static_cast<std::uint32_t>(in.number());
    info.channels = static_cast<std::uint32_t>(in.number());
    info.codec = in.text();
    while (!in.at_end()) {
        const auto name = in.text();
        std::vector<std::string> values(in.count());
        for (auto& value : values) value = in.text();
        info.meta_set_values(name, std::move(values));
    }
    return info.build();
}

/// What is damaged stays as it is, and no track will have it.
void convert(sqlite3_context* context, int /*count*/, sqlite3_value** values) noexcept {
    const auto* data = static_cast<const char*>(sqlite3_value_blob(values[0]));
    try {
        const auto info = decode({data, static_cast<std::size_t>(sqlite3_value_bytes(values[0]))});
        sqlite3_result_blob64(context, info.bytes().data(), info.bytes().size(), SQLITE_TRANSIENT);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception&) {
        sqlite3_result_value(context, values[0]);
    }
}

}  // namespace

int define_conversion(sqlite3* database) noexcept {
    return sqlite3_create_function_v2(database, "info_of_version_5", 1, SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr, convert,
                                      nullptr, nullptr, nullptr);
}

}  // namespace ostrevan::library
