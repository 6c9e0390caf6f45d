#include "player/index/index_memory.h"

#include <limits>
#include <utility>

namespace ostrevan::index {

index_memory::index_memory(std::span<const catalog_entry> catalog) {
    for (const catalog_entry& entry : catalog) indexes_.push_back(std::make_unique<index>(index{entry, {}}));
}

/// Holds the lock for a bounded number of changes at a time. Moved records count as well, because all shards of a table
/// grow at about the same time.
template <typename Step>
void index_memory::in_pieces(const change_list& list, Step step) {
    constexpr std::size_t piece = 4096;
    const auto& changes = list.changes();
    for (std::size_t i = 0; i < changes.size();) {
        const auto writing = lock_.write();
        for (std::size_t cost = 0; i < changes.size() && cost < piece; ++i) cost += 1 + step(changes[i]);
    }
}

change_list index_memory::apply(std::int64_t index_id, const change_list& list) {
    const std::scoped_lock whole(whole_commits_);
    record_table& records = index_of(index_id).records;
    change_list before;
    before.reserve(list);
    in_pieces(list, [&](const change_list::change& change) -> std::size_t {
        if (const auto old = records.find(change.key); old.data() != nullptr) before.put(change.key, old);
        else before.erase(change.key);
        if (const auto data = list.data(change)) return records.put(change.key, *data);
        records.erase(change.key);
        return 0;
    });
    return before;
}

void index_memory::add_loaded(std::int64_t index_id, const change_list& list) {
    record_table& records = index_of(index_id).records;
    in_pieces(list, [&](const change_list::change& change) -> std::size_t {
        return records.find(change.key).data() != nullptr ? 0 : records.put(change.key, *list.data(change));
    });
}

void index_memory::finish_loading() noexcept {
    const auto writing = lock_.write();
    loaded_ = true;
}

bool index_memory::is_loaded() const noexcept {
    const auto reading = lock_.read();
    return loaded_;
}

std::vector<std::uint64_t> index_memory::keys(const nuv::guid& guid) const {
    return keys_from(guid, 0, std::numeric_limits<std::size_t>::max());
}

std::vector<std::uint64_t> index_memory::keys_from(const nuv::guid& guid, std::uint64_t first, std::size_t at_most) const {
    std::vector<std::uint64_t> result;
    const auto at = [&](std::size_t position) { return result.begin() + static_cast<std::ptrdiff_t>(position); };
    const std::scoped_lock whole(whole_commits_);
    for (std::size_t shard = record_table::shard_of(first); shard < record_table::shard_count() && result.size() < at_most;
         ++shard) {
        const std::size_t known = result.size();
        {
            const auto reading = lock_.read();
            const index* from = find_index(guid);
            if (from == nullptr) return {};
            from->records.append_keys(shard, result);
        }
        result.erase(std::remove_if(at(known), result.end(), [&](std::uint64_t key) { return key < first; }), result.end());
        if (result.size() > at_most) {
            std::nth_element(at(known), at(at_most), result.end());
            result.resize(at_most);
        }
        std::sort(at(known), result.end());
    }
    return result;
}

std::vector<catalog_entry> index_memory::catalog() const {
    const auto reading = lock_.read();
    std::vector<catalog_entry> entries;
    for (const auto& each : indexes_) entries.push_back(each->entry);
    return entries;
}

std::optional<catalog_entry> index_memory::find(const nuv::guid& guid) const noexcept {
    const auto reading = lock_.read();
    const index* found = find_index(guid);
    return found == nullptr ? std::nullopt : std::optional(found->entry);
}

catalog_entry index_memory::add(const nuv::guid& guid) {
    catalog_entry entry{.id = 1, .guid = guid, .retention = {}};
    for (const auto& each : indexes_) entry.id = std::max(entry.id, each->entry.id + 1);
    auto created = std::make_unique<index>(index{entry, {}});
    const auto writing = lock_.write();
    indexes_.push_back(std::move(created));
    return entry;
}

void index_memory::update(catalog_entry entry) noexcept {
    index& changed = index_of(entry.id);
    const auto writing = lock_.write();
    changed.entry = std::move(entry);
}

/// Entries are never removed, but another thread may be adding one.
index_memory::index& index_memory::index_of(std::int64_t index_id) noexcept {
    const auto reading = lock_.read();
    return **std::ranges::find_if(indexes_, [&](const auto& each) { return each->entry.id == index_id; });
}

}  // namespace ostrevan::index
