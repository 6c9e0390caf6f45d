#pragma once

#include <cstddef>
#include <string>

#include "ostrevan/service.h"

namespace ostrevan {

/// Column flags. Numbers and dates are aligned right.
enum column_flags : unsigned { column_align_right = 4 };

/// Ready-made columns for lists of tracks. An index out of range is a bug check, except for the flags. [main-thread]
class library_column_provider : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{A8E14418-25A2-4E9A-B0EC-D18C4C6B6A56}");

    [[nodiscard]] virtual std::size_t get_column_count() const noexcept = 0;
    [[nodiscard]] virtual nuv::guid get_column_id(std::size_t index) const = 0;
    [[nodiscard]] virtual std::string get_column_name(std::size_t index) const = 0;
    /// Title formatting scripts for the text shown and for the text to sort by.
    [[nodiscard]] virtual std::string get_display_script(std::size_t index) const = 0;
    [[nodiscard]] virtual std::string get_sort_script(std::size_t index) const = 0;
    [[nodiscard]] virtual unsigned get_column_flags(std::size_t index) const = 0;
};

}  // namespace ostrevan
