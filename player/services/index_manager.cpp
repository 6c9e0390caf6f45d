#include "player/services/index_manager.h"

#include <algorithm>
#include <exception>
#include <span>

#include "ostrevan/core_api.h"
#include "player/core/component_call.h"
#include "player/core/main_loop.h"
#include "player/index/write_gate.h"

namespace ostrevan::services {
namespace {

static_assert(index::index_store::max_record_size == index_manager::max_blob_size);

std::span<const std::byte> bytes_of(const void* bytes, std::size_t size) {
    return {static_cast<const std::byte*>(bytes), size};
}

/// Sorted, each once.
std::vector<std::uint64_t> keys_of(const index_manager_impl::registration& index,
                                   const nuv::list_base_const_t<metadb_handle_ptr>& tracks) {
    std::vector<std::uint64_t> keys;
    keys.reserve(tracks.get_count());
    for (const auto& track : tracks)
        if (const auto key = index_manager_impl::key_of(index, *track)) keys.push_back(*key);
    std::ranges::sort(keys);
    keys.erase(std::ranges::unique(keys).begin(), keys.end());
    return keys;
}

/// The contract makes misuse a bug check. All other exceptions are the caller's to handle.
template <typename Work>
auto checked(Work&& work) {
    try {
        return work();
    } catch (const index::misuse& error) {
        uBugCheck(error.what());
    }
}

/// The contract's transaction, which owns one of the store's.
class transaction_service : public index_transaction {
public:
    explicit transaction_service(index::index_store& store) : changes_(store.begin()), reason_(changes_) {}
    void write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) override {
        checked([&] { changes_.write(index, key, bytes_of(bytes, size)); });
    }
    void commit() override {
        checked([&] { changes_.commit(); });
    }
    service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == index_transaction_reason::class_guid ? &reason_ : nullptr;
    }

private:
    class reason : public index_transaction_reason {
    public:
        explicit reason(index::store_transaction& changes) noexcept : changes_(changes) {}
        void set_reason(const char* text) override {
            checked([&] { changes_.set_cause({.text = text}); });
        }

    private:
        index::store_transaction& changes_;
    };

    index::store_transaction changes_;
    service_uncounted_t<reason> reason_;
};

thread_local const assumed_record* assumed = nullptr;

}  // namespace

assumed_record::assumed_record(const nuv::guid& index, std::uint64_t key, std::span<const std::byte> bytes) noexcept
    : index_(index), key_(key), bytes_(bytes) {
    assumed = this;
}

assumed_record::~assumed_record() { assumed = nullptr; }

std::optional<std::size_t> assumed_record::read(const nuv::guid& index, std::uint64_t key, void* buffer,
                                                std::size_t capacity) const noexcept {
    if (key != key_ || index != index_) return std::nullopt;
    std::copy_n(bytes_.begin(), std::min(capacity, bytes_.size()), static_cast<std::byte*>(buffer));
    return bytes_.size();
}

index_transaction_ptr index_manager_transactions_impl::begin() {
    return checked([&] { return index_transaction_ptr(service_new<transaction_service>(store_)); });
}

void index_manager_impl::register_index(index_client_ptr client, const nuv::guid& index, std::uint64_t retention) {
    core::check_main_thread("register_index");
    try {
        store_.register_index(index, retention, owner_of_(*client));
    } catch (const std::exception&) {
        refused_.push_back(index);
        throw;
    }
    const std::lock_guard lock(mutex_);
    std::erase_if(registrations_, [&](const registration& known) { return known.index == index; });
    registrations_.push_back({index, std::move(client)});
}

/// A component may also remove an index whose registration was refused; the registration of its owner then stays.
void index_manager_impl::remove_index(const nuv::guid& index) {
    core::check_main_thread("remove_index");
    if (const auto refused = std::ranges::find(refused_, index); refused != refused_.end()) {
        refused_.erase(refused);
        return;
    }
    store_.remove_index(index);
    const std::lock_guard lock(mutex_);
    std::erase_if(registrations_, [&](const registration& known) { return known.index == index; });
}

std::size_t index_manager_impl::read(const nuv::guid& index, std::uint64_t key, void* buffer, std::size_t capacity) const {
    if (assumed != nullptr)
        if (const auto size = assumed->read(index, key, buffer, capacity)) return *size;
    return store_.read(index, key, buffer, capacity);
}

void index_manager_impl::write(const nuv::guid& index, std::uint64_t key, const void* bytes, std::size_t size) {
    checked([&] { store_.write(index, key, bytes_of(bytes, size)); });
}

/// Does not wait until the records are loaded: a component that looks for its older indexes at start should not pay for a
/// million records of others.
bool index_manager_impl::is_known(const nuv::guid& index) const {
    const auto known = store_.indexes();
    return std::ranges::find(known, index) != known.end();
}

std::vector<std::uint64_t> index_manager_impl::keys(const nuv::guid& index) const {
    return is_known(index) ? store_.keys(index) : std::vector<std::uint64_t>{};
}

std::vector<std::uint64_t> index_manager_impl::keys_from(const nuv::guid& index, std::uint64_t first,
                                                         std::size_t at_most) const {
    return is_known(index) ? store_.keys_from(index, first, at_most) : std::vector<std::uint64_t>{};
}

void index_manager_impl::save_now(const nuv::guid& /*index*/) { store_.flush(); }

void index_manager_impl::refresh(const nuv::guid& index, const nuv::list_base_const_t<std::uint64_t>& keys) {
    core::check_main_thread("refresh");
    if (on_refresh_) on_refresh_(index, std::vector<std::uint64_t>(keys.begin(), keys.end()));
}

service_base* index_manager_impl::service_query(const nuv::guid& interface_guid) noexcept {
    if (interface_guid == index_manager_transactions::class_guid) return &transactions_;
    return interface_guid == index_manager_backup::class_guid ? &backups_ : nullptr;
}

std::optional<std::uint64_t> index_manager_impl::key_of(const registration& index, const metadb_handle& track) {
    const auto info = track.info();
    if (!info) return std::nullopt;
    return core::call_component(*index.client, [&] { return index.client->key_of(info->info(), track.location()); });
}

void index_manager_impl::mark_seen(const nuv::list_base_const_t<metadb_handle_ptr>& tracks, std::int64_t now) {
    for (const auto& registered : registrations()) store_.touch(registered.index, keys_of(registered, tracks), now);
}

std::vector<index_manager_impl::old_records> index_manager_impl::find_old(
    const nuv::list_base_const_t<metadb_handle_ptr>& library, std::int64_t now) const {
    std::vector<old_records> found;
    for (const auto& registered : registrations()) {
        auto keys = store_.old_keys(registered.index, keys_of(registered, library), now);
        if (!keys.empty()) found.push_back({registered.index, std::move(keys)});
    }
    return found;
}

void index_manager_impl::drop(const std::vector<old_records>& old) {
    store_.back_up("prune");
    for (const auto& [index, keys] : old) store_.erase(index, keys);
}

}  // namespace ostrevan::services
