#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ostrevan/track.h"

namespace quorvel {

/// The tracks of a list by their keys under the active mapping; those without a key are left out. Made for a million tracks:
/// one sorted array. The list must outlive it and its groups. [main-thread]
class tracks_by_key {
    struct entry {
        std::uint64_t key;
        std::size_t number;  // in the list
        auto operator<=>(const entry&) const = default;
    };
    using list = nuv::list_base_const_t<ostrevan::metadb_handle_ptr>;

public:
    /// Throws `std::length_error` for a list that no memory could hold.
    explicit tracks_by_key(const list& tracks);

    /// The tracks of one key, in the order of the list.
    class group final : public list {
    public:
        [[nodiscard]] std::size_t get_count() const noexcept override { return entries_.size(); }
        [[nodiscard]] const ostrevan::metadb_handle_ptr& get_item(std::size_t index) const override {
            return tracks_->get_item(entries_[index].number);
        }
        /// Of a group that is not empty.
        [[nodiscard]] std::uint64_t key() const noexcept { return entries_.front().key; }

    private:
        friend class tracks_by_key;
        group(const list& tracks, std::span<const entry> entries) noexcept : tracks_(&tracks), entries_(entries) {}

        const list* tracks_;
        std::span<const entry> entries_;
    };

    /// Where the groups begin, in the order of their first tracks in the list.
    [[nodiscard]] std::vector<std::size_t> groups() const;
    [[nodiscard]] group group_at(std::size_t position) const noexcept;

    /// The tracks of a key; an empty group if there are none. Keys must be asked for in ascending order; `position`, 0 at
    /// first, keeps the place between the calls.
    [[nodiscard]] group find_next(std::uint64_t key, std::size_t& position) const noexcept;

private:
    const list* tracks_;
    std::vector<entry> entries_;
};

}  // namespace quorvel
