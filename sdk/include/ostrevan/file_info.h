#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ostrevan {

/// The tag fields of one track and what is known of its sound: named fields in the order of the file, each with an ordered
/// list of UTF-8 values. Field names match without regard to ASCII case. A field may be present without any value.
/// A value type without locks: one thread edits it, or many read it. An index out of range is a programming error.
class file_info {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    [[nodiscard]] std::size_t meta_count() const noexcept { return fields_.size(); }
    [[nodiscard]] std::string_view meta_name(std::size_t index) const noexcept { return fields_[index].name; }
    [[nodiscard]] std::size_t meta_value_count(std::size_t index) const noexcept { return fields_[index].values.size(); }
    [[nodiscard]] const std::string& meta_value(std::size_t index, std::size_t value) const noexcept {
        return fields_[index].values[value];
    }
    [[nodiscard]] const std::vector<std::string>& meta_values(std::size_t index) const noexcept {
        return fields_[index].values;
    }

    /// Index of the field, or `npos`.
    [[nodiscard]] std::size_t meta_find(std::string_view name) const noexcept;
    [[nodiscard]] bool meta_exists(std::string_view name) const noexcept { return meta_find(name) != npos; }

    /// Replaces whatever values the field had; a new field goes to the end.
    void meta_set(std::string_view name, std::string_view value);
    void meta_set_values(std::string_view name, std::vector<std::string> values);
    /// Appends a value, creating the field at the end when it is new.
    void meta_add(std::string_view name, std::string_view value);
    void meta_remove(std::size_t index);
    /// True when there was such a field.
    bool meta_remove_field(std::string_view name);

    /// Length in seconds; 0 when unknown.
    [[nodiscard]] double length() const noexcept { return length_; }
    void set_length(double seconds) noexcept { length_ = seconds; }

    /// Short name of the coding, such as "FLAC"; empty when unknown.
    [[nodiscard]] const std::string& codec() const noexcept { return codec_; }
    void set_codec(std::string name) { codec_ = std::move(name); }

    /// Bits per second in thousands, samples per second, channels; 0 when unknown.
    std::uint32_t bitrate = 0;
    std::uint32_t sample_rate = 0;
    std::uint32_t channels = 0;

    bool operator==(const file_info& other) const noexcept;

private:
    struct field {
        std::uint64_t fingerprint = 0;
        std::string name;
        std::vector<std::string> values;
    };
    field& obtain(std::string_view name);

    std::vector<field> fields_;
    double length_ = 0;
    std::string codec_;
};

}  // namespace ostrevan
