#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/file_info.h"

namespace ostrevan {

/// Edits track information: the same fields as a `file_info`, to be changed one by one and made into a new one. A value type
/// without locks: one thread edits it, or many read it.
class file_info_builder {
public:
    static constexpr std::size_t npos = file_info::npos;

    file_info_builder() = default;
    explicit file_info_builder(const file_info& info);
    [[nodiscard]] file_info build() const;

    [[nodiscard]] std::size_t meta_count() const noexcept { return fields_.size(); }
    [[nodiscard]] const std::string& meta_name(std::size_t index) const noexcept { return fields_[index].name; }
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
    void meta_clear() noexcept { fields_.clear(); }
    /// True when there was such a field.
    bool meta_remove_field(std::string_view name);

    // As in `file_info`.
    double length = 0;
    std::string codec;
    std::uint32_t bitrate = 0;
    std::uint32_t sample_rate = 0;
    std::uint32_t channels = 0;

private:
    struct field {
        std::string name;
        std::vector<std::string> values;
    };
    field& obtain(std::string_view name);

    std::vector<field> fields_;
};

}  // namespace ostrevan
