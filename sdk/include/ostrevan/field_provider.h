#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "ostrevan/track.h"

namespace ostrevan {

/// Where a field writes its text. Used by one thread, for the duration of the call.
class titleformat_text_out {
public:
    static constexpr std::size_t whole_text = std::numeric_limits<std::size_t>::max();

    /// UTF-8 text. `kind` names the sort of text; `whole_text` means up to the terminating zero.
    virtual void write(const nuv::guid& kind, const char* text, std::size_t length = whole_text) = 0;

    void write_int(const nuv::guid& kind, std::uint64_t number) {
        char digits[20];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        write(kind, digits, static_cast<std::size_t>(end - digits));
    }

protected:
    ~titleformat_text_out() = default;
};

/// Title formatting fields of a component. [any-thread], also from several threads at once.
class field_provider : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{CE97732B-F5E0-4EE7-9B3A-E8F43BE37181}");

    [[nodiscard]] virtual std::size_t get_field_count() const noexcept = 0;
    /// Name without percent signs, lower case. An index out of range is a bug check.
    [[nodiscard]] virtual const char* get_field_name(std::size_t index) const = 0;
    /// Writes the field's text. False when the track has no such value: a section in square brackets is dropped when all its
    /// fields returned false. `track` may be null. An index out of range is a bug check.
    virtual bool process_field(std::size_t index, metadb_handle* track, titleformat_text_out& out) = 0;
};

/// Extension of a field provider, found by `service_query`: the moments behind fields that show times, to sort and to
/// compare by. The texts mislead in the hour that occurs twice when the clocks go back. [any-thread]
class field_sort_values : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{6E4B9D0C-1F5E-4B43-A4C7-52B0E6C1D7F8}");

    /// In units of 100 ns since 1601-01-01 UTC; 0 when the track has none. Empty for a field that shows no time.
    [[nodiscard]] virtual std::optional<std::uint64_t> sort_value(std::size_t index, metadb_handle& track) = 0;
};

}  // namespace ostrevan
