#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "ostrevan/field_provider.h"
#include "player/titleformat/script.h"

namespace ostrevan::titleformat {

/// The fields of the components, by name. Filled at start; read from any thread afterwards.
class component_fields {
public:
    struct entry {
        field_provider* provider;
        std::size_t index;
    };
    /// Receives the first failure of each field, inside the handler; `doing` names the field. [any-thread]
    using failure_sink = std::function<void(const field_provider& provider, const std::string& doing)>;

    explicit component_fields(failure_sink on_failure = {}) : on_failure_(std::move(on_failure)) {}

    /// The first provider of a name wins.
    void add(field_provider& provider);
    [[nodiscard]] const entry* find(std::string_view name) const noexcept;
    [[nodiscard]] const std::unordered_map<std::string, entry>& all() const noexcept { return entries_; }

    /// Called inside the handler of the exception.
    void report(std::string_view name, const entry& failed) const;

private:
    const failure_sink on_failure_;
    std::unordered_map<std::string, entry> entries_;
    mutable std::mutex mutex_;
    mutable std::set<std::string, std::less<>> reported_;
};

/// The fields of one track: first those of components, then those the player derives from the location and the sound
/// (`path`, `length`, ...), then the tags. Several values of a tag are joined by ", ". A component's field that throws or
/// depends on itself for the same track counts as missing.
class track_fields final : public field_source {
public:
    track_fields(const component_fields& published, metadb_handle& track) : published_(published), track_(track) {}

    bool field(std::string_view name, std::string& out) const override;
    [[nodiscard]] std::optional<std::uint64_t> sort_value(std::string_view name) const override;

private:
    /// All fields are of one snapshot. It is not fetched for fields that need none.
    [[nodiscard]] const metadb_info_ptr& info() const {
        if (!info_) info_ = track_.info();
        return *info_;
    }

    const component_fields& published_;
    metadb_handle& track_;
    mutable std::optional<metadb_info_ptr> info_;
};

}  // namespace ostrevan::titleformat
