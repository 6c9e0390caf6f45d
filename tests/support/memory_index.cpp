#include "tests/support/memory_index.h"

#include <algorithm>
#include <stdexcept>

#include "tests/support/main_thread_check.h"

namespace support {
namespace {

memory_index::blob blob_of(const void* bytes, std::size_t size) {
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    return {first, first + size};
}

}  // namespace

class memory_index::transaction : public ostrevan::index_transaction {
public:
    explicit transaction(memory_index& owner) noexcept : owner_(owner) {}
    ~transaction() override { end(); }

    void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) override {
        owner_.count_write();
        pending_[{index, key}] = blob_of(bytes, size);
    }
    void commit() override {
        if (ended_) ostrevan::uBugCheck("memory_index: committed twice");
        {
            const std::lock_guard guard(owner_.lock_);
            for (auto& [where, bytes] : pending_) owner_.blobs_[where] = std::move(bytes);
            ++owner_.committed;
        }
        end();
    }

private:
    void end() noexcept {
        if (!std::exchange(ended_, true)) owner_.give_writer();
    }

    memory_index& owner_;
    std::map<std::pair<nuv::guid, std::uint64_t>, blob> pending_;
    bool ended_ = false;
};

ostrevan::index_transaction_ptr memory_index::transactions::begin() {
    owner_.take_writer();
    ++owner_.begun;
    return ostrevan::service_new<transaction>(owner_);
}

void memory_index::register_index(ostrevan::index_client_ptr client, const nuv::guid& index, std::uint64_t retention) {
    require_main_thread("register_index");
    if (fail_registration) throw std::runtime_error("index cannot be opened");
    registered[index] = {std::move(client), retention};
}

void memory_index::remove_index(const nuv::guid& index) {
    require_main_thread("remove_index");
    registered.erase(index);
    removed.push_back(index);
}

std::size_t memory_index::read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const {
    if (fail_read) throw std::runtime_error("index cannot be read");
    const std::lock_guard guard(lock_);
    const auto found = blobs_.find({index, key});
    if (found == blobs_.end()) return 0;
    std::copy_n(found->second.begin(), std::min(capacity, found->second.size()), static_cast<std::uint8_t*>(buffer));
    return found->second.size();
}

void memory_index::write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) {
    take_writer();
    try {
        count_write();
        const std::lock_guard guard(lock_);
        blobs_[{index, key}] = blob_of(bytes, size);
        ++direct_writes;
    } catch (...) {
        give_writer();
        throw;
    }
    give_writer();
}

std::vector<std::uint64_t> memory_index::keys(const nuv::guid& index) const {
    const std::lock_guard guard(lock_);
    std::vector<std::uint64_t> result;
    for (const auto& [where, bytes] : blobs_)
        if (where.first == index) result.push_back(where.second);
    return result;
}

std::vector<std::uint64_t> memory_index::keys_from(const nuv::guid& index, std::uint64_t first, std::size_t at_most) const {
    const std::lock_guard guard(lock_);
    std::vector<std::uint64_t> result;
    for (auto it = blobs_.lower_bound({index, first}); it != blobs_.end() && it->first.first == index; ++it)
        if (result.size() < at_most) result.push_back(it->first.second);
    return result;
}

void memory_index::save_now(const nuv::guid& index) {
    if (fail_save) throw std::runtime_error("disk full");
    saves.push_back(index);
}

void memory_index::clear() {
    const std::lock_guard guard(lock_);
    blobs_.clear();
}

void memory_index::refresh(const nuv::guid&, const nuv::list_base_const_t<std::uint64_t>& keys) {
    require_main_thread("refresh");
    refreshes.push_back(nuv::list_t<std::uint64_t>(keys).items());
}

ostrevan::service_base* memory_index::service_query(const nuv::guid& interface_guid) noexcept {
    return offer_transactions && interface_guid == transactions::class_guid ? &transactions_ : nullptr;
}

void memory_index::take_writer() {
    std::unique_lock guard(lock_);
    if (writer_ == std::this_thread::get_id()) ostrevan::uBugCheck("memory_index: a second writer on one thread");
    writer_gone_.wait(guard, [this] { return writer_ == std::thread::id(); });
    writer_ = std::this_thread::get_id();
}

void memory_index::give_writer() noexcept {
    const std::lock_guard guard(lock_);
    writer_ = {};
    writer_gone_.notify_one();
}

void memory_index::count_write() {
    if (writes_until_failure == 0) throw std::runtime_error("index cannot be written");
    if (writes_until_failure != static_cast<std::size_t>(-1)) --writes_until_failure;
}

}  // namespace support
