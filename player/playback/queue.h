#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <vector>

#include "player/playback/shuffling.h"

namespace ostrevan::playback {

enum class repeat_mode { off, track, list };

struct play_modes {
    repeat_mode repeat = repeat_mode::off;
    shuffle_mode shuffle = shuffle_mode::off;
    /// The playback ends with the current track.
    bool stop_after = false;

    bool operator==(const play_modes&) const = default;
};

/// Which track of a list is played when. An entry is the number of a track in the order in which the tracks were added: it
/// stays when the list is edited, and is never given to another track. A turn counts the tracks of the play order, and goes
/// on from round to round when the list is repeated. A round has every entry once; a shuffled round is in another order than
/// the one before, and begins with another track than that one ended with (of three or more). A value: copies share the
/// order. Only `remove` can make it empty; an empty one has no current track, and nothing but its size may be asked for.
class queue {
public:
    using turn = std::uint64_t;
    using entry = std::uint32_t;
    using entries = std::vector<entry>;

    /// There is at least one track. Shuffled from the start when the modes say so.
    queue(std::vector<shuffle_traits> tracks, play_modes modes, std::uint64_t seed);
    explicit queue(std::size_t count, play_modes modes = {}, std::uint64_t seed = 0)
        : queue(std::vector<shuffle_traits>(count), modes, seed) {}

    /// Takes up an earlier round: its entries by turn, and the entry to begin with. Returns false and changes nothing when
    /// that is no order of this list.
    bool resume(entries round, std::size_t current);

    [[nodiscard]] std::size_t size() const noexcept { return list_->size(); }
    [[nodiscard]] const play_modes& modes() const noexcept { return modes_; }
    [[nodiscard]] turn current() const noexcept { return current_; }
    [[nodiscard]] entry entry_of(turn at) const { return (*order_)[at - first_]; }
    [[nodiscard]] entry current_entry() const { return entry_of(current_); }
    /// The entries in the order of the list.
    [[nodiscard]] const entries& list() const noexcept { return *list_; }
    /// The position of an entry in the list; none when it was removed.
    [[nodiscard]] std::optional<std::size_t> place_of(entry which) const;
    /// The entries of the current round by turn.
    [[nodiscard]] entries round() const;

    // The following functions do not move. They may add a round.

    /// The turn after the current one when that ends by itself; none when the playback ends.
    std::optional<turn> following();
    /// The turn after another one in the order of the list; none at its end.
    std::optional<turn> after(turn at);
    /// The turn before; none at the beginning, unless the list is repeated.
    std::optional<turn> before(turn at);

    void go_to(turn at);
    /// The list was played to its end: another round, from its first track.
    void begin_again();

    // The current track stays the same. Turns given out before are void once the shuffling changes.

    void set_repeat(repeat_mode mode) noexcept { modes_.repeat = mode; }
    void set_shuffle(shuffle_mode mode);
    void set_stop_after(bool is_on) noexcept { modes_.stop_after = is_on; }

    // Edits. The current track keeps its turn; others are void, and rounds but the current one are forgotten.

    /// At the end of the list and of the round, shuffled among themselves if the list is; or after the current track, in
    /// the order given. They become the next entries ever given.
    void add(std::span<const shuffle_traits> tracks, bool is_next);
    /// The next track that is left becomes the current one when that is removed. Returns false when the playback is over: no
    /// track is left, or none in this round and the list is not repeated.
    bool remove(std::span<const entry> which);
    /// To a position of the round. A shuffled list keeps its own order.
    void move(entry which, std::size_t position);

private:
    [[nodiscard]] entries shuffle(std::span<const entry> which, bool by_weights = true);
    void add_round();
    void start(entries round, entry current);

    std::shared_ptr<const std::vector<shuffle_traits>> traits_;  // by entry, with those removed
    std::shared_ptr<const entries> list_;
    play_modes modes_;
    std::mt19937_64 random_;
    std::shared_ptr<const entries> order_;  // whole rounds: the one before the current one, if any, and those after it
    turn current_ = turn{1} << 32;          // so that many tracks can be put before it
    turn first_ = current_;                 // the turn of the first entry in `order_`
};

}  // namespace ostrevan::playback
