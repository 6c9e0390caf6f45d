#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "ostrevan/hash_service.h"
#include "ostrevan/index.h"
#include "quorvel/store/key.h"
#include "quorvel/store/record_editing.h"
#include "quorvel/store/unit_digest.h"

namespace quorvel {

/// What the mappings share: artist, album, date, something that tells the tracks of an album apart, and the length of tracks
/// with too few tags.
class tag_mapping : public ostrevan::index_client {
public:
    [[nodiscard]] std::uint64_t key_of(const ostrevan::file_info& info, const ostrevan::playable_location& location) final;

protected:
    explicit tag_mapping(ostrevan::hash_service& hash) noexcept : hash_(hash) {}

    /// Feeds the numbers of a track that has an album. True if they take the place of its title.
    virtual bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const = 0;

private:
    /// A service of the player, which lives until the process ends. No reference is held, so that none is released too late.
    ostrevan::hash_service& hash_;
};

/// The active rule: numbers and title. The player changes its records by the rules of `record_editing`.
class TitleMapping : public tag_mapping {
public:
    using tag_mapping::tag_mapping;
    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        if (interface_guid == record_editing::class_guid) return &editing_;
        return interface_guid == loaded_keys::class_guid ? &loaded_ : nullptr;
    }

protected:
    bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const override;

private:
    /// What the player computes while it loads its tracks.
    class loaded_keys : public ostrevan::index_key_memory {
        void remember(std::uint64_t serial, std::uint64_t key) override { RememberKey(serial, key); }
    };

    ostrevan::service_uncounted_t<record_editing> editing_;
    ostrevan::service_uncounted_t<loaded_keys> loaded_;
};

/// An older rule, kept because of stored keys: it reads the second value of both numbers.
class LegacyTrackMapping : public tag_mapping {
public:
    using tag_mapping::tag_mapping;

protected:
    bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const override;
};

/// An older rule, kept because of stored keys: it feeds the track number twice.
class RepeatedTrackMapping : public tag_mapping {
public:
    using tag_mapping::tag_mapping;

protected:
    bool feed_track_part(unit_digest& digest, const ostrevan::file_info& info) const override;
};

}  // namespace quorvel
