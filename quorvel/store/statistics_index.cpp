#include "quorvel/store/statistics_index.h"

#include <atomic>
#include <utility>

#include "ostrevan/core_api.h"
#include "quorvel/common/tasks.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// A service of the player, which lives until the process ends. No reference is held, so that none is released too late.
constinit std::atomic<ostrevan::index_manager*> registered_index{nullptr};

void refresh_now(const std::vector<std::uint64_t>& keys) {
    if (auto* const manager = opened_index()) manager->refresh(statistics_index_guid, nuv::list_view_t<std::uint64_t>(keys));
}

struct stored_blob {
    std::size_t size;  ///< 0 if there is none
    t_playback_stats record;
};

/// A blob of any other size than that of a record reads as the default record.
stored_blob read_blob(const ostrevan::index_manager& manager, const nuv::guid& index, std::uint64_t key) {
    record_blob blob;
    const std::size_t size = manager.read(index, key, blob.data(), blob.size());
    return {size, size == blob.size() ? decode_record(blob) : t_playback_stats{}};
}

}  // namespace

namespace statistics_index {

void open(ostrevan::index_manager& manager) noexcept { registered_index.store(&manager, std::memory_order_release); }
void close() noexcept { registered_index.store(nullptr, std::memory_order_release); }

}  // namespace statistics_index

ostrevan::index_manager* opened_index() noexcept { return registered_index.load(std::memory_order_acquire); }

std::optional<t_playback_stats> find_record(const ostrevan::index_manager& manager, const nuv::guid& index,
                                            std::uint64_t key) {
    const auto [size, record] = read_blob(manager, index, key);
    return size == record_blob_size ? std::optional(record) : std::nullopt;
}

std::optional<t_playback_stats> known_record(std::uint64_t key) noexcept {
    const auto* const manager = opened_index();
    if (manager == nullptr) return std::nullopt;
    try {
        const auto [size, record] = read_blob(*manager, statistics_index_guid, key);
        if (size == 0 || size == record_blob_size) return record;
    } catch (...) {  // not known
    }
    return std::nullopt;
}

void refresh_keys(std::vector<std::uint64_t> keys) {
    if (keys.empty() || ostrevan::core_api::is_shutting_down()) return;
    if (ostrevan::core_api::is_main_thread()) {
        refresh_now(keys);
    } else {
        post_to_main_thread([keys = std::move(keys)] { refresh_now(keys); });
    }
}

void back_up_index(const char* reason, const char* beside) {
    auto* const manager = opened_index();
    if (manager == nullptr) return;
    if (const auto backup = ostrevan::query_service<ostrevan::index_manager_backup>(*manager))
        backup->back_up(reason, beside);
}

}  // namespace quorvel
