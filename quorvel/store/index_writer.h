#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

#include "ostrevan/index.h"
#include "quorvel/store/record.h"

namespace quorvel {

/// The player's index between its registration and the end of the component. [main-thread]
namespace statistics_index {
void open(ostrevan::index_manager& manager) noexcept;
void close() noexcept;
}  // namespace statistics_index

/// The index manager, or null while the statistics index is not registered. It lives until the process ends. [any-thread]
[[nodiscard]] ostrevan::index_manager* opened_index() noexcept;

/// The stored record, the default record where there is none; nothing when there is no index or what it holds cannot be
/// read. For what would otherwise destroy something in the belief that there are no statistics. [any-thread]
[[nodiscard]] std::optional<t_playback_stats> known_record(std::uint64_t key) noexcept;

/// For what only shows a record: the default record on any problem. [any-thread]
[[nodiscard]] inline t_playback_stats read_record(std::uint64_t key) noexcept {
    return known_record(key).value_or(t_playback_stats{});
}

/// Redraws what shows these keys: at once on the main thread, from other threads posted to it, and not at all while the
/// player ends. [any-thread]
void refresh_keys(std::vector<std::uint64_t> keys);

/// Writing rights on the index: the player's transaction or, where it offers none, a lock among the component's own writers,
/// whose writes then take effect at once. It keeps to the index that was open when it was made, so that an operation during
/// which the index is closed is finished all the same. Used by one thread.
class index_writer {
public:
    /// Without an index everything is empty, and writes are skipped.
    [[nodiscard]] bool has_index() const noexcept { return manager_ != nullptr; }
    /// Waits until nobody else writes. Does nothing the second time.
    void begin();
    [[nodiscard]] bool begun() const noexcept { return begun_; }
    /// The record in one of the component's indexes; nothing where there is none. Other than elsewhere a failed read throws:
    /// to write what was edited from a default record would destroy the one that could not be read.
    [[nodiscard]] std::optional<t_playback_stats> find(const nuv::guid& index, std::uint64_t key) const;
    /// Between `begin` and `commit`. Key 0 is never written.
    void write(std::uint64_t key, const t_playback_stats& record);
    /// Between `begin` and `commit`.
    void remove(const nuv::guid& index, std::uint64_t key);
    /// Whether what has been written is seen already and stays, whatever becomes of the operation.
    [[nodiscard]] bool writes_at_once() const noexcept { return own_turn_.owns_lock(); }
    /// Afterwards the writer may begin again.
    void commit();

private:
    void put(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size);

    bool begun_ = false;
    ostrevan::index_manager* manager_ = opened_index();
    ostrevan::index_transaction_ptr transaction_;
    std::unique_lock<std::mutex> own_turn_;
};

}  // namespace quorvel
