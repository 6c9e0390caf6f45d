#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ostrevan/hash_service.h"
#include "ostrevan/index.h"
#include "quorvel/store/unit_digest.h"

namespace quorvel {

/// What the mappings have in common: artist, album, date, something that tells the tracks of an album apart, and the length
/// of tracks that say too little about themselves.
class tag_mapping : public ostrevan::index_client {
public:
    [[nodiscard]] std::uint64_t key_of(const ostrevan::file_info& info, const ostrevan::playable_location& location) final;

protected:
    explicit tag_mapping(ostrevan::hash_service& hash) noexcept : hash_(hash) {}

    /// Feeds the numbers of a track that has an album; true when they stand in place of its title.
    virtual bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const = 0;

private:
    /// A service of the player, which lives until the process ends: no reference is held, so that none is released late.
    ostrevan::hash_service& hash_;
};

/// The active rule: numbers and title.
class TitleMapping : public tag_mapping {
public:
    using tag_mapping::tag_mapping;

protected:
    bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const override;
};

/// An older rule, which reads the second value of both numbers. Stored keys were made that way.
class LegacyTrackMapping : public tag_mapping {
public:
    using tag_mapping::tag_mapping;

protected:
    bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const override;
};

/// An older rule, which feeds the track number twice. Stored keys were made that way.
class RepeatedTrackMapping : public tag_mapping {
public:
    using tag_mapping::tag_mapping;

protected:
    bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const override;
};

}  // namespace quorvel
