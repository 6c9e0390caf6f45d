#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace ostrevan::playback {

enum class repeat_mode { off, track, list };
enum class shuffle_mode { off, tracks, albums };

struct play_modes {
    repeat_mode repeat = repeat_mode::off;
    shuffle_mode shuffle = shuffle_mode::off;
    /// The playback ends with the current track.
    bool stop_after = false;

    bool operator==(const play_modes&) const = default;
};

/// Which track of a list is played when. A place is the number of a track in the list; a turn counts the tracks of the play
/// order, and goes on from round to round when the list is repeated. A round has every place once; a shuffled round is in
/// another order than the one before, and begins with another track than that one ended with (of three or more). A value:
/// copies share the order. There is at least one place.
class queue {
public:
    using turn = std::uint64_t;

    /// `albums` has the album of each place; one without a name is an album of its own. Shuffled from the start when the
    /// modes say so. `weights`, of each place, are above 0: in a shuffled round the place with the larger one tends to come
    /// earlier, an album by the mean of its tracks. Without them, every order is equally likely.
    queue(std::vector<std::string> albums, play_modes modes, std::uint64_t seed, std::vector<double> weights = {});
    explicit queue(std::size_t count, play_modes modes = {}, std::uint64_t seed = 0)
        : queue(std::vector<std::string>(count), modes, seed) {}

    /// Takes up an earlier round: its places by turn, and the place to begin with. Returns false and changes nothing when
    /// that is no order of this list.
    bool resume(std::vector<std::uint32_t> round, std::size_t place);

    [[nodiscard]] std::size_t size() const noexcept { return albums_->size(); }
    [[nodiscard]] const play_modes& modes() const noexcept { return modes_; }
    [[nodiscard]] turn current() const noexcept { return current_; }
    [[nodiscard]] std::size_t place(turn at) const { return (*order_)[at - first_]; }
    /// The places of the current round by turn.
    [[nodiscard]] std::vector<std::uint32_t> round() const;

    // The following functions do not move. They may add a round.

    /// The turn after the current one when that ends by itself; none when the playback ends.
    std::optional<turn> following();
    /// The turn after another one in the order of the list; none at its end.
    std::optional<turn> after(turn at);
    /// The turn before; none at the beginning, unless the list is repeated.
    std::optional<turn> before(turn at);

    void go_to(turn at);
    /// The list was played to its end: another round, from its first place.
    void begin_again();

    // The current track stays the same. Turns given out before are void once the shuffling changes.

    void set_repeat(repeat_mode mode) noexcept { modes_.repeat = mode; }
    void set_shuffle(shuffle_mode mode);
    void set_stop_after(bool is_on) noexcept { modes_.stop_after = is_on; }

private:
    using places = std::vector<std::uint32_t>;

    [[nodiscard]] places shuffled(bool by_weights = true);
    [[nodiscard]] double weight(std::uint32_t place) const { return weights_->empty() ? 1 : (*weights_)[place]; }
    void add_round();
    void start(places round, std::size_t place);

    std::shared_ptr<const std::vector<std::string>> albums_;
    std::shared_ptr<const std::vector<double>> weights_;
    play_modes modes_;
    std::mt19937_64 random_;
    std::shared_ptr<const places> order_;  // whole rounds: the one before the current one, if any, and those after it
    turn first_ = 0;                       // the turn of the first place in `order_`
    turn current_ = 0;
};

}  // namespace ostrevan::playback
