#include "ostrevan/file_info_builder.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <stdexcept>

#include "nuv/text.h"

namespace ostrevan {
namespace {

void put_little_endian(std::string& out, std::uint64_t number, unsigned size) {
    for (unsigned i = 0; i < size; ++i) out += static_cast<char>(number >> 8 * i);
}

void put_number(std::string& out, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) out += static_cast<char>(number | 0x80);
    out += static_cast<char>(number);
}

void put_text(std::string& out, std::string_view text) {
    put_number(out, text.size());
    out += text;
}

}  // namespace

file_info_builder::file_info_builder(const file_info& info)
    : length(info.length()),
      codec(info.codec()),
      bitrate(info.bitrate()),
      sample_rate(info.sample_rate()),
      channels(info.channels()) {
    fields_.reserve(info.meta_count());
    for (std::size_t i = 0; i < info.meta_count(); ++i) {
        const auto values = info.meta_values(i);
        fields_.push_back({std::string(info.meta_name(i)), {values.begin(), values.end()}});
    }
}

file_info file_info_builder::build() const {
    std::string texts;
    std::vector<std::size_t> offsets;
    put_text(texts, codec);
    for (const auto& [name, values] : fields_) {
        offsets.push_back(texts.size());
        put_text(texts, name);
        put_number(texts, values.size());
        for (const auto& value : values) put_text(texts, value);
    }
    offsets.push_back(texts.size());

    const auto head_with = [&](unsigned width) {
        return file_info::header_size + 2 * fields_.size() + width * offsets.size();
    };
    const unsigned width = head_with(2) + texts.size() <= std::numeric_limits<std::uint16_t>::max() ? 2 : 4;
    const std::size_t head = head_with(width);
    std::string bytes;
    bytes.reserve(head + texts.size());
    put_little_endian(bytes, file_info::version, 1);
    put_little_endian(bytes, width, 3);
    for (const auto number : {static_cast<std::uint32_t>(fields_.size()), bitrate, sample_rate, channels})
        put_little_endian(bytes, number, 4);
    put_little_endian(bytes, std::bit_cast<std::uint64_t>(length), 8);
    for (const auto& each : fields_) put_little_endian(bytes, file_info::fingerprint_of(each.name), 2);
    for (const auto offset : offsets) put_little_endian(bytes, head + offset, width);
    bytes += texts;
    auto built = file_info::from_bytes(bytes);
    if (!built) throw std::length_error("the tags are too long");
    return *std::move(built);
}

std::size_t file_info_builder::meta_find(std::string_view name) const noexcept {
    const auto found =
        std::ranges::find_if(fields_, [&](const field& each) { return nuv::equal_ascii_nocase(each.name, name); });
    return found == fields_.end() ? npos : static_cast<std::size_t>(found - fields_.begin());
}

file_info_builder::field& file_info_builder::obtain(std::string_view name) {
    const std::size_t index = meta_find(name);
    return index != npos ? fields_[index] : fields_.emplace_back(field{std::string(name), {}});
}

void file_info_builder::meta_set(std::string_view name, std::string_view value) {
    auto& values = obtain(name).values;
    values.resize(1);
    values.front() = value;
}

void file_info_builder::meta_set_values(std::string_view name, std::vector<std::string> values) {
    obtain(name).values = std::move(values);
}

void file_info_builder::meta_add(std::string_view name, std::string_view value) { obtain(name).values.emplace_back(value); }

bool file_info_builder::meta_remove_field(std::string_view name) {
    const std::size_t index = meta_find(name);
    if (index == npos) return false;
    fields_.erase(fields_.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

}  // namespace ostrevan
