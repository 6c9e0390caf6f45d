#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "player/system/user_error.h"

namespace ostrevan::titleformat {

/// The fields of one track, for a script.
class field_source {
public:
    virtual ~field_source() = default;

    /// Appends the text of a field to `out` and returns whether the track has that field. The two are independent: a field
    /// may write "N/A" and still not be found. `name` has no percent signs and lower-case ASCII letters; it is valid during
    /// the call only.
    virtual bool field(std::string_view name, std::string& out) const = 0;

    /// The moment that a field shows: in units of 100 ns since 1601-01-01 UTC, 0 when the track has none; empty for a field
    /// that shows no time. `name` as above.
    [[nodiscard]] virtual std::optional<std::uint64_t> sort_value(std::string_view /*name*/) const { return std::nullopt; }

protected:
    field_source() = default;
    field_source(const field_source&) = default;
    field_source& operator=(const field_source&) = default;
};

struct result {
    std::string text;
    /// At least one field used in the text was found.
    bool found = false;
};

struct program;

/// A compiled script: immutable, cheap to copy, usable from any number of threads at once. A result is cut at `max_result`
/// bytes.
class script {
public:
    static constexpr std::size_t max_result = 256 * 1024;

    /// Throws what the source throws, and otherwise only `std::bad_alloc`.
    [[nodiscard]] result run(const field_source& fields) const;

    /// Appends to `out`, so that one buffer serves many tracks. Returns whether a field was found.
    bool run(const field_source& fields, std::string& out) const;

    /// False when the text is the same for every track.
    [[nodiscard]] bool reads_fields() const noexcept;

    /// The name of the field when the script is nothing else. Lives as long as the script.
    [[nodiscard]] std::optional<std::string_view> only_field() const noexcept;

private:
    friend script compile(std::string_view);
    explicit script(std::shared_ptr<const program> compiled) noexcept : program_(std::move(compiled)) {}

    std::shared_ptr<const program> program_;
};

/// A mistake in a script. `what()` gives the reason and shows the place in the script.
class script_error : public system::user_error {
public:
    script_error(std::string reason, std::string_view source, std::size_t position);

    /// One line, without the place.
    [[nodiscard]] const std::string& reason() const noexcept { return reason_; }
    /// Bytes from the start of the script.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }

private:
    std::string reason_;
    std::size_t position_;
};

/// Throws `script_error`.
[[nodiscard]] script compile(std::string_view source);

}  // namespace ostrevan::titleformat
