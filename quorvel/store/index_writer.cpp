#include "quorvel/store/index_writer.h"

#include <atomic>
#include <utility>

#include "ostrevan/core_api.h"
#include "quorvel/common/main_thread_post.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// A service of the player, which lives until the process ends: no reference is held, so that none is released late.
constinit std::atomic<ostrevan::index_manager*> index{nullptr};
std::mutex turn_of_own_writers;

void refresh_now(const std::vector<std::uint64_t>& keys) {
    if (auto* const manager = opened_index()) manager->refresh(statistics_index_guid, nuv::list_view_t<std::uint64_t>(keys));
}

struct found_record {
    std::size_t size;  ///< of the blob; 0 where there is none
    t_playback_stats record;
};

/// A blob of another size than a record's reads as the default record.
found_record record_in(const ostrevan::index_manager& manager, const nuv::guid& id, std::uint64_t key) {
    record_blob blob;
    const std::size_t size = manager.read(id, key, blob.data(), blob.size());
    return {size, size == blob.size() ? decode_record(blob) : t_playback_stats{}};
}

}  // namespace

namespace statistics_index {

void open(ostrevan::index_manager& manager) noexcept { index.store(&manager, std::memory_order_release); }
void close() noexcept { index.store(nullptr, std::memory_order_release); }

}  // namespace statistics_index

ostrevan::index_manager* opened_index() noexcept { return index.load(std::memory_order_acquire); }

std::optional<t_playback_stats> known_record(std::uint64_t key) noexcept {
    const auto* const manager = opened_index();
    if (manager == nullptr) return std::nullopt;
    try {
        const auto [size, record] = record_in(*manager, statistics_index_guid, key);
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

void index_writer::begin() {
    if (begun_) return;
    if (manager_ != nullptr) {
        if (const auto extension = ostrevan::query_service<ostrevan::index_manager_transactions>(*manager_))
            transaction_ = extension->begin();
        else own_turn_ = std::unique_lock(turn_of_own_writers);
    }
    begun_ = true;
}

std::optional<t_playback_stats> index_writer::find(const nuv::guid& of_index, std::uint64_t key) const {
    if (manager_ == nullptr) return std::nullopt;
    const auto [size, record] = record_in(*manager_, of_index, key);
    return size == record_blob_size ? std::optional(record) : std::nullopt;
}

void index_writer::put(const nuv::guid& of_index, std::uint64_t key, const void* bytes, std::size_t size) {
    if (manager_ == nullptr) return;
    if (transaction_) transaction_->write(of_index, key, bytes, size);
    else manager_->write(of_index, key, bytes, size);
}

void index_writer::write(std::uint64_t key, const t_playback_stats& record) {
    if (key == 0) return;
    const auto blob = encode_record(record);
    put(statistics_index_guid, key, blob.data(), blob.size());
}

void index_writer::remove(const nuv::guid& of_index, std::uint64_t key) { put(of_index, key, nullptr, 0); }

void index_writer::commit() {
    if (transaction_) transaction_->commit();
    transaction_.reset();
    if (own_turn_.owns_lock()) own_turn_.unlock();
    begun_ = false;
}

}  // namespace quorvel
