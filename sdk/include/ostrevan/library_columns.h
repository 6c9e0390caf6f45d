#pragma once

#include <cstddef>
#include <string>

#include "ostrevan/service.h"
#include "ostrevan/track.h"

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

/// Extension of the provider, found by `service_query`: columns whose cells do something at a click. [main-thread]
class library_column_clicks : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{5E0B8E0D-7C51-4A63-9B1F-2D9E6A7F3C14}");

    /// A text as wide as the part of a cell that can be clicked; empty when there is none, and for an index out of range.
    /// The player may show it faintly in a cell without a text.
    [[nodiscard]] virtual std::string get_click_text(std::size_t index) const = 0;
    /// A click of the user. `place` is 0 where that text begins and 1 where it ends. Never called for a column without one.
    virtual void on_click(std::size_t index, double place, metadb_handle_list_cref tracks) = 0;
};

}  // namespace ostrevan
