#include "player/library/stored_infos.h"

#include <algorithm>
#include <span>
#include <tuple>
#include <utility>

#include "player/library/library_store.h"

namespace ostrevan::library {
namespace {

/// Each thread that visits all tracks uses one block, or several where the tracks came with several scans.
constexpr std::size_t most_recent = 24;

}  // namespace

stored_infos::stored_infos(const library_store& of, std::function<void(const std::string&)> on_failure)
    : on_failure_(std::move(on_failure)),
      database_(of.second_connection()),
      read_(
          database_->prepare("SELECT file, subsong, info FROM tracks WHERE file BETWEEN ?1 AND ?2 ORDER BY file, subsong")) {
}

stored_infos::~stored_infos() {
    for (const auto& each : places_) each.handle->forget_stored();
}

std::uint64_t stored_infos::add(std::int64_t file, track& handle) {
    if (places_.size() % block_size == 0) blocks_.push_back({info_snapshot::take_serials(block_size)});
    const auto number = static_cast<std::uint32_t>(places_.size());
    handle.leave_stored(*this, number);
    places_.push_back({file, &handle});
    return serial_of(number);
}

std::uint64_t stored_infos::serial_of(std::uint32_t number) const noexcept {
    return blocks_[number / block_size].first_serial + number % block_size;
}

std::shared_ptr<const stored_infos::infos> stored_infos::find_recent(std::size_t which) {
    const std::lock_guard guard(recent_mutex_);
    const auto found = std::ranges::find(recent_, which, &recent::block);
    if (found == recent_.end()) return nullptr;
    found->used = ++clock_;
    return found->read;
}

void stored_infos::remember(recent latest) {
    const std::lock_guard guard(recent_mutex_);
    latest.used = ++clock_;
    if (recent_.size() < most_recent) return recent_.push_back(std::move(latest));
    // Destroyed with the parameter, after the lock is released.
    std::swap(*std::ranges::min_element(recent_, {}, &recent::used), latest);
}

metadb_info_ptr stored_infos::read(std::uint32_t number) {
    const std::size_t which = number / block_size;
    auto found = find_recent(which);
    if (!found) {
        const std::lock_guard guard(reading_);
        found = find_recent(which);  // another thread may have read it meanwhile
        if (!found) {
            bool is_whole = true;
            auto fresh = std::make_shared<const infos>(read_block(which, is_whole));
            if (!is_whole) return (*fresh)[number % block_size];  // the next who asks tries again
            if (++blocks_[which].times_read >= kept_from)
                for (std::size_t i = 0; i < fresh->size(); ++i)
                    if ((*fresh)[i]) places_[which * block_size + i].handle->hold((*fresh)[i]);
            remember({which, fresh});
            found = std::move(fresh);
        }
    }
    return (*found)[number % block_size];
}

/// Rows and places are in the same order. A row may be new, and the row of a place may be gone; its
/// handle then holds the information.
stored_infos::infos stored_infos::read_block(std::size_t which, bool& is_whole) {
    const auto first = which * block_size;
    const auto of = std::span(places_).subspan(first, std::min(block_size, places_.size() - first));
    infos read(of.size());
    if (!database_) return read;
    try {
        read_.bind(1, of.front().file).bind(2, of.back().file);
        for (std::size_t i = 0; read_.step();) {
            const std::pair row(read_.integer(0), static_cast<std::uint32_t>(read_.integer(1)));
            const auto place_of = [&](std::size_t at) { return std::pair(of[at].file, of[at].handle->location().subsong); };
            while (i < of.size() && place_of(i) < row) ++i;
            if (i == of.size()) break;
            // A track with damaged information is as one that was not read yet.
            if (auto info = place_of(i) == row ? file_info::from_bytes(text_of(read_.blob(2))) : std::nullopt)
                read[i] = service_new<info_snapshot>(*std::move(info), blocks_[which].first_serial + i);
        }
        read_.reset();
    } catch (const sqlite::error& error) {
        read_.reset();
        is_whole = false;
        if (!has_failed_.exchange(true)) on_failure_(error.what());
    }
    return read;
}

void stored_infos::close() {
    const std::lock_guard guard(reading_);
    read_ = {};
    database_.reset();
}

}  // namespace ostrevan::library
