#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "ostrevan/index.h"

namespace support {

/// The track-information index in memory. Writers exclude each other as the player promises; failures are switched on by the
/// test.
class memory_index : public ostrevan::index_manager {
public:
    using blob = std::vector<std::uint8_t>;

    struct registration {
        ostrevan::index_client_ptr client;
        std::uint64_t retention;
    };

    bool fail_registration = false;
    bool offer_transactions = true;
    bool fail_read = false;
    bool fail_save = false;
    /// Writes that still succeed, each blob one.
    std::size_t writes_until_failure = static_cast<std::size_t>(-1);

    std::map<nuv::guid, registration> registered;
    std::vector<nuv::guid> removed;
    std::vector<std::vector<std::uint64_t>> refreshes;
    std::vector<nuv::guid> saves;
    std::size_t direct_writes = 0;
    std::size_t begun = 0;
    std::size_t committed = 0;

    void register_index(ostrevan::index_client_ptr client, const nuv::guid& index, std::uint64_t retention) override;
    void remove_index(const nuv::guid& index) override;
    std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const override;
    void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) override;
    std::vector<std::uint64_t> keys(const nuv::guid& index) const override;
    std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first, std::size_t at_most) const override;
    void save_now(const nuv::guid& index) override;
    /// Forgets every blob.
    void clear();
    void refresh(const nuv::guid& index, const nuv::list_base_const_t<std::uint64_t>& keys) override;
    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override;

private:
    class transactions : public ostrevan::index_manager_transactions {
    public:
        explicit transactions(memory_index& owner) noexcept : owner_(owner) {}
        ostrevan::index_transaction_ptr begin() override;

    private:
        memory_index& owner_;
    };
    class transaction;

    void take_writer();
    void give_writer() noexcept;
    void count_write();

    ostrevan::service_uncounted_t<transactions> transactions_{*this};
    mutable std::mutex lock_;
    std::condition_variable writer_gone_;
    std::thread::id writer_;
    std::map<std::pair<nuv::guid, std::uint64_t>, blob> blobs_;
};

}  // namespace support
