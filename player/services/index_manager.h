#pragma once

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/index.h"
#include "player/core/main_loop.h"
#include "player/index/index_store.h"

namespace ostrevan::services {

class index_manager_transactions_impl : public index_manager_transactions {
public:
    explicit index_manager_transactions_impl(index::index_store& store) : store_(store) {}
    index_transaction_ptr begin() override;

private:
    index::index_store& store_;
};

class index_manager_backup_impl : public index_manager_backup {
public:
    explicit index_manager_backup_impl(index::index_store& store) : store_(store) {}
    void back_up(const char* reason, const char* beside) override {
        core::check_main_thread("back_up");
        store_.back_up(reason, beside == nullptr ? std::filesystem::path() : std::filesystem::path(beside));
    }

private:
    index::index_store& store_;
};

/// While it lives, components that read this record on this thread get the given bytes: what a field would say of it. At
/// most one at a time on a thread.
class assumed_record {
public:
    assumed_record(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> bytes) noexcept;
    ~assumed_record();
    assumed_record(const assumed_record&) = delete;
    assumed_record& operator=(const assumed_record&) = delete;

private:
    friend class index_manager_impl;
    /// Copies what fits; empty for other records.
    [[nodiscard]] std::optional<std::size_t> read(const nuv::guid& index, std::uint64_t key, void* buffer,
                                                  std::size_t capacity) const noexcept;

    const nuv::guid index_;
    const std::uint64_t key_;
    const std::span<const std::byte> bytes_;
};

/// The index manager for components, on top of the store.
class index_manager_impl : public index_manager {
public:
    /// Receives keys to redraw. [main-thread]
    using redraw = std::function<void(const nuv::guid& index, const std::vector<std::uint64_t>& keys)>;

    /// Returns the name of the component that owns a key function; the same in every run.
    using owner_finder = std::function<std::string(const index_client&)>;

    index_manager_impl(index::index_store& store, owner_finder owner_of, redraw on_refresh)
        : store_(store),
          owner_of_(std::move(owner_of)),
          on_refresh_(std::move(on_refresh)),
          transactions_(store),
          backups_(store) {}

    void register_index(index_client_ptr client, const nuv::guid& index, std::uint64_t retention) override;
    void remove_index(const nuv::guid& index) override;
    std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const override;
    void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) override;
    [[nodiscard]] std::vector<std::uint64_t> keys(const nuv::guid& index) const override;
    [[nodiscard]] std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first,
                                                       std::size_t at_most) const override;
    void save_now(const nuv::guid& index) override;
    void refresh(const nuv::guid& index, const nuv::list_base_const_t<std::uint64_t>& keys) override;
    service_base* service_query(const nuv::guid& interface_guid) noexcept override;

    /// The registered indexes in order of registration, with their key functions. [any-thread]
    struct registration {
        nuv::guid index;
        index_client_ptr client;
    };
    [[nodiscard]] std::vector<registration> registrations() const {
        const std::lock_guard lock(mutex_);
        return registrations_;
    }

    /// The key of a track in one index; empty while the track has no information.
    [[nodiscard]] static std::optional<std::uint64_t> key_of(const registration& index, const metadb_handle& track);

    /// Restarts the retention period of the records of these tracks. [any-thread]
    void mark_seen(const nuv::list_base_const_t<metadb_handle_ptr>& tracks, std::int64_t now);

    /// Records without a track in the library, past the retention period of their component.
    struct old_records {
        nuv::guid index;
        std::vector<std::uint64_t> keys;
    };
    /// For every registered index with old records. [any-thread]
    [[nodiscard]] std::vector<old_records> find_old(const nuv::list_base_const_t<metadb_handle_ptr>& library,
                                                    std::int64_t now) const;
    /// Makes a backup, then removes the records. [any-thread]
    void drop(const std::vector<old_records>& old);

private:
    [[nodiscard]] bool is_known(const nuv::guid& index) const;

    index::index_store& store_;
    const owner_finder owner_of_;
    const redraw on_refresh_;
    service_uncounted_t<index_manager_transactions_impl> transactions_;
    service_uncounted_t<index_manager_backup_impl> backups_;
    mutable std::mutex mutex_;
    std::vector<registration> registrations_;  // changed on the main thread, with the mutex
    std::vector<nuv::guid> refused_;
};

}  // namespace ostrevan::services
