#include "ostrevan/file_info.h"

#include <algorithm>
#include <cstring>

#include "nuv/text.h"

namespace ostrevan {
namespace {

/// The first eight bytes with the case bit set, mixed with the length. Names that differ in case only have the same number,
/// and nearly all others a different one, so that a search compares one number for each field.
std::uint64_t name_fingerprint(std::string_view name) noexcept {
    std::uint64_t head = 0;
    std::memcpy(&head, name.data(), std::min<std::size_t>(name.size(), sizeof head));
    return (head | 0x2020202020202020ULL) ^ name.size() * 0x9E3779B97F4A7C15ULL;
}

}  // namespace

std::size_t file_info::meta_find(std::string_view name) const noexcept {
    const std::uint64_t wanted = name_fingerprint(name);
    for (std::size_t i = 0; i < fields_.size(); ++i)
        if (fields_[i].fingerprint == wanted && nuv::equal_ascii_nocase(fields_[i].name, name)) return i;
    return npos;
}

file_info::field& file_info::obtain(std::string_view name) {
    const std::size_t index = meta_find(name);
    if (index != npos) return fields_[index];
    return fields_.emplace_back(field{name_fingerprint(name), std::string(name), {}});
}

void file_info::meta_set(std::string_view name, std::string_view value) {
    auto& values = obtain(name).values;
    values.resize(1);
    values.front() = value;
}

void file_info::meta_set_values(std::string_view name, std::vector<std::string> values) {
    obtain(name).values = std::move(values);
}

void file_info::meta_add(std::string_view name, std::string_view value) { obtain(name).values.emplace_back(value); }

void file_info::meta_remove(std::size_t index) { fields_.erase(fields_.begin() + static_cast<std::ptrdiff_t>(index)); }

bool file_info::meta_remove_field(std::string_view name) {
    const std::size_t index = meta_find(name);
    if (index == npos) return false;
    meta_remove(index);
    return true;
}

bool file_info::operator==(const file_info& other) const noexcept {
    const auto same_field = [](const field& a, const field& b) {
        return nuv::equal_ascii_nocase(a.name, b.name) && a.values == b.values;
    };
    return length_ == other.length_ && codec_ == other.codec_ && bitrate == other.bitrate &&
           sample_rate == other.sample_rate && channels == other.channels &&
           std::ranges::equal(fields_, other.fields_, same_field);
}

}  // namespace ostrevan
