#include "player/history/undo.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

namespace ostrevan::history {
namespace {

using index::act;

std::string text_of(const act& wanted) {
    const std::string name = wanted.undoes ? "redo" : "undo";
    return name + " " + std::to_string(wanted.undoes.value_or(wanted.id));
}

bool is_left(const undone& done, const nuv::guid& index, const std::optional<std::uint64_t>& key) {
    return key && std::ranges::any_of(done.left, [&](const index::index_changes& of) {
               return of.index == index &&
                      std::ranges::find(of.records, *key, &index::record_change::key) != of.records.end();
           });
}

/// Keys whose successor is still what the act left, with the successor from before. A successor whose record stays as it
/// is keeps what it has taken over.
std::vector<index::known_track> former_successors(const std::vector<index::successor_change>& changes, const undone& done) {
    std::vector<index::known_track> former;
    for (const auto& [now, before, after] : changes) {
        if (now.successor != after || is_left(done, now.index, before) || is_left(done, now.index, after)) continue;
        former.push_back(now);
        former.back().successor = before;
    }
    return former;
}

}  // namespace

undone take_back(index::index_store& records, const act& wanted) {
    auto journal = records.read_journal();
    const auto changes = journal.changes_of(wanted.id);
    auto successors = journal.successor_changes_of(wanted.id);
    undone done;
    auto transaction = records.begin({.text = text_of(wanted), .undoes = wanted.id});
    for (const auto& of_index : changes) {
        index::index_changes restored{of_index.index, {}}, left{of_index.index, {}};
        for (const auto& change : of_index.records) {
            if (records.record(of_index.index, change.key) != change.after) {
                left.records.push_back(change);
                continue;
            }
            transaction.write(of_index.index, change.key,
                              change.before ? std::span<const std::byte>(*change.before) : std::span<const std::byte>());
            restored.records.push_back({change.key, change.after, change.before});
        }
        if (!restored.records.empty()) done.restored.push_back(std::move(restored));
        if (!left.records.empty()) done.left.push_back(std::move(left));
    }
    auto former = former_successors(successors, done);
    if (done.restored.empty() && former.empty()) return done;
    transaction.note(std::move(former));
    transaction.commit();
    return done;
}

std::vector<act> next_to_undo(index::index_store& records, std::size_t count) {
    auto acts = records.read_journal().latest(std::numeric_limits<std::int32_t>::max());
    std::erase_if(acts, [](const act& each) { return each.undoes || each.undone_by; });
    if (acts.size() > count) acts.resize(count);
    return acts;
}

std::optional<act> next_to_redo(index::index_store& records) {
    auto journal = records.read_journal();
    for (auto& each : journal.latest(std::numeric_limits<std::int32_t>::max())) {
        if (!each.undoes) return std::nullopt;
        const auto undoes = journal.find(*each.undoes);
        const bool is_undo = undoes && !undoes->undoes;
        if (is_undo && !each.undone_by) return std::move(each);
    }
    return std::nullopt;
}

}  // namespace ostrevan::history
