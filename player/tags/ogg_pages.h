#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ostrevan::tags {

class file_stream;

/// A page of an Ogg file, its body left in the file.
struct ogg_page {
    enum flag : unsigned { continues = 1, first = 2, last = 4 };

    long at = 0;
    long body_size = 0;
    /// The fixed part and the sizes of the segments.
    std::string header;

    [[nodiscard]] long body() const noexcept { return at + static_cast<long>(header.size()); }
    [[nodiscard]] long end() const noexcept { return body() + body_size; }
    [[nodiscard]] unsigned flags() const noexcept;
    /// The sample at which the last packet that ends on the page ends; -1 when none does.
    [[nodiscard]] std::int64_t position() const noexcept;
    /// Of the logical stream that the page belongs to.
    [[nodiscard]] std::uint32_t serial() const noexcept;
    [[nodiscard]] std::uint32_t number() const noexcept;
    /// Each packet is cut in segments of 255 bytes and a shorter one at its end.
    [[nodiscard]] std::string_view segments() const noexcept;
};

/// The first whole page at a place or after it. Other bytes before it are skipped, as decoders do.
std::optional<ogg_page> page_from(file_stream& stream, long at);

/// Whether the checksum in its header is that of the page. A decoder drops a page where it is not.
bool is_intact(const ogg_page& page, std::string_view body) noexcept;

/// A header with its checksum, from fields and segments.
struct ogg_page_fields {
    unsigned flags = 0;
    std::int64_t position = 0;
    std::uint32_t serial = 0;
    std::uint32_t number = 0;
};
std::string page_header(const ogg_page_fields& fields, std::string_view segments, std::string_view body);

}  // namespace ostrevan::tags
