#pragma once

#include <cstdint>
#include <mutex>
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

/// The stored record; the default record on any problem. [any-thread]
[[nodiscard]] t_playback_stats read_record(std::uint64_t key) noexcept;

/// Redraws what shows these keys: at once on the main thread, from other threads posted to it. [any-thread]
void refresh_keys(std::vector<std::uint64_t> keys);

/// Writing rights on the index: the player's transaction or, where it offers none, a lock among the component's own writers,
/// whose writes then take effect at once. Used by one thread.
class index_writer {
public:
    /// Waits until nobody else writes. Does nothing the second time.
    void begin();
    [[nodiscard]] bool begun() const noexcept { return begun_; }
    /// The stored record, between `begin` and `commit`. Other than elsewhere a failed read throws: to write what was edited
    /// from a default record would destroy the one that could not be read.
    [[nodiscard]] t_playback_stats read(std::uint64_t key) const;
    /// Between `begin` and `commit`. Key 0 is never written.
    void write(std::uint64_t key, const t_playback_stats& record);
    /// Whether what has been written is seen already and stays, whatever becomes of the operation.
    [[nodiscard]] bool writes_at_once() const noexcept { return own_turn_.owns_lock(); }
    /// Afterwards the writer may begin again.
    void commit();

private:
    bool begun_ = false;
    ostrevan::index_manager* manager_ = nullptr;
    ostrevan::index_transaction_ptr transaction_;
    std::unique_lock<std::mutex> own_turn_;
};

}  // namespace quorvel
