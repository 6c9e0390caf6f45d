#pragma once

#include <algorithm>
#include <atomic>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "nuv/guid.h"
#include "ostrevan/index.h"
#include "ostrevan_test/main_thread_check.h"

namespace ostrevan_test {

/// The track-information index in memory. Writers exclude each other as the player promises; failures are switched on by the
/// test.
class memory_index : public ostrevan::index_manager {
public:
    struct registration {
        ostrevan::index_client_ptr client;
        std::uint64_t retention;
    };
    static constexpr auto unlimited = std::numeric_limits<std::size_t>::max();

    bool fail_registration = false;
    bool fail_removal = false;
    bool fail_backup = false;
    bool offer_transactions = true;
    bool fail_read = false;
    std::optional<std::uint64_t> unreadable_key;
    bool fail_save = false;
    /// Writes that still succeed, each blob one.
    std::size_t writes_until_failure = unlimited;

    std::map<nuv::guid, registration> registered;
    std::vector<nuv::guid> removed;
    std::vector<std::vector<std::uint64_t>> refreshes;
    /// "commit REASON", "refresh", "save INDEX" and "back up REASON FILE", as they came.
    std::vector<std::string> events;
    std::size_t direct_writes = 0;
    std::size_t begun = 0;
    std::size_t committed = 0;

    void register_index(ostrevan::index_client_ptr client, const nuv::guid& index, std::uint64_t retention) override {
        require_main_thread("register_index");
        if (fail_registration) throw std::runtime_error("index cannot be opened");
        registered[index] = {std::move(client), retention};
    }
    void remove_index(const nuv::guid& index) override {
        require_main_thread("remove_index");
        removed.push_back(index);
        if (fail_removal) throw std::runtime_error("index cannot be removed");
        registered.erase(index);
    }
    std::size_t read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const override {
        if (fail_read || key == unreadable_key) throw std::runtime_error("index cannot be read");
        const std::lock_guard guard(lock_);
        const auto found = blobs_.find({index, key});
        if (found == blobs_.end()) return 0;
        found->second.copy(static_cast<char*>(buffer), capacity);
        return found->second.size();
    }
    void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) override {
        const turn now(*this);
        count_write(size);
        put({{{index, key}, std::string(static_cast<const char*>(bytes), size)}});
        ++direct_writes;
    }
    std::vector<std::uint64_t> keys(const nuv::guid& index) const override { return keys_from(index, 0, unlimited); }
    std::vector<std::uint64_t> keys_from(const nuv::guid& index, std::uint64_t first, std::size_t at_most) const override {
        if (fail_read) throw std::runtime_error("index cannot be read");
        const std::lock_guard guard(lock_);
        std::vector<std::uint64_t> result;
        for (auto it = blobs_.lower_bound({index, first}); it != blobs_.end() && it->first.first == index; ++it)
            if (result.size() < at_most) result.push_back(it->first.second);
        return result;
    }
    /// Forgets every blob.
    void clear() { blobs_.clear(); }
    void save_now(const nuv::guid& index) override {
        if (fail_save) throw std::runtime_error("disk full");
        note("save " + nuv::guid_text(index));
    }
    void refresh(const nuv::guid&, const nuv::list_base_const_t<std::uint64_t>& keys) override {
        require_main_thread("refresh");
        refreshes.push_back(nuv::list_t<std::uint64_t>(keys).items());
        note("refresh");
    }
    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        if (offer_transactions && interface_guid == transactions::class_guid) return &transactions_;
        return interface_guid == backups::class_guid ? &backups_ : nullptr;
    }

private:
    using blobs = std::map<std::pair<nuv::guid, std::uint64_t>, std::string>;

    /// The right to write, until it is destroyed.
    struct turn {
        explicit turn(memory_index& owner) : owner_(owner) {
            if (owner.writer_ == std::this_thread::get_id())
                ostrevan::uBugCheck("memory_index: a second writer on one thread");
            owner.turns_.lock();
            owner.writer_ = std::this_thread::get_id();
        }
        ~turn() {
            owner_.writer_ = std::thread::id();
            owner_.turns_.unlock();
        }
        turn(const turn&) = delete;
        turn& operator=(const turn&) = delete;

        memory_index& owner_;
    };

    struct transaction : ostrevan::index_transaction {
        explicit transaction(memory_index& index) : owner(index), own_turn(index) { ++owner.begun; }
        void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) override {
            if (!own_turn) ostrevan::uBugCheck("memory_index: written after the commit");
            owner.count_write(size);
            pending[{index, key}].assign(static_cast<const char*>(bytes), size);
        }
        void commit() override {
            if (!own_turn) ostrevan::uBugCheck("memory_index: committed twice");
            owner.put(pending);
            ++owner.committed;
            owner.note("commit" + reason.text);
            own_turn.reset();
        }
        ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
            return interface_guid == ostrevan::index_transaction_reason::class_guid ? &reason : nullptr;
        }
        struct reason_note : ostrevan::index_transaction_reason {
            void set_reason(const char* given) override { text = std::string(" ") + given; }
            std::string text;
        };
        memory_index& owner;
        std::optional<turn> own_turn;
        blobs pending;
        ostrevan::service_uncounted_t<reason_note> reason;
    };
    struct transactions : ostrevan::index_manager_transactions {
        explicit transactions(memory_index& index) noexcept : owner(index) {}
        ostrevan::index_transaction_ptr begin() override { return ostrevan::service_new<transaction>(owner); }
        memory_index& owner;
    };
    struct backups : ostrevan::index_manager_backup {
        explicit backups(memory_index& index) noexcept : owner(index) {}
        void back_up(const char* reason, const char* beside) override {
            require_main_thread("back_up");
            if (owner.fail_backup) throw std::runtime_error("no room for a copy");
            owner.note(std::string("back up ") + reason + ' ' + (beside == nullptr ? "" : beside));
        }
        memory_index& owner;
    };

    void note(std::string event) {
        const std::lock_guard guard(lock_);
        events.push_back(std::move(event));
    }
    void count_write(std::size_t size) {
        if (size > max_blob_size) throw std::invalid_argument("a blob that is too large");
        if (writes_until_failure == 0) throw std::runtime_error("index cannot be written");
        if (writes_until_failure != unlimited) --writes_until_failure;
    }
    void put(const blobs& written) {
        const std::lock_guard guard(lock_);
        for (const auto& [where, bytes] : written) {
            if (bytes.empty()) blobs_.erase(where);
            else blobs_[where] = bytes;
        }
    }

    ostrevan::service_uncounted_t<transactions> transactions_{*this};
    ostrevan::service_uncounted_t<backups> backups_{*this};
    std::mutex turns_;
    std::atomic<std::thread::id> writer_{};
    mutable std::mutex lock_;
    blobs blobs_;
};

}  // namespace ostrevan_test
