#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "ostrevan/field_provider.h"
#include "player/titleformat/script.h"

namespace ostrevan::titleformat {

/// The fields that components publish, by name. Filled while the player starts; read from any thread afterwards.
class component_fields {
public:
    struct entry {
        field_provider* provider;
        std::size_t index;
    };

    /// The first provider of a name keeps it.
    void add(field_provider& provider);
    [[nodiscard]] const entry* find(std::string_view name) const noexcept;
    [[nodiscard]] const std::unordered_map<std::string, entry>& all() const noexcept { return entries_; }

private:
    std::unordered_map<std::string, entry> entries_;
};

/// The fields of one track, for one run of a script: first those of components, then what the player derives from the
/// location and the sound (`path`, `length`, ...), then the tags. Several values of a tag are joined by ", ".
class track_fields final : public field_source {
public:
    track_fields(const component_fields& published, metadb_handle& track)
        : published_(published), track_(track), info_(track.info()) {}

    bool field(std::string_view name, std::string& out) const override;
    [[nodiscard]] std::optional<std::uint64_t> sort_value(std::string_view name) const override;

private:
    const component_fields& published_;
    metadb_handle& track_;
    const metadb_info_ptr info_;
};

}  // namespace ostrevan::titleformat
