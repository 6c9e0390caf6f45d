#include "tests/support/memory_tracks.h"

#include <stdexcept>
#include <thread>

#include "tests/support/main_thread_check.h"

namespace support {
namespace {

class snapshot : public ostrevan::metadb_info {
public:
    explicit snapshot(ostrevan::file_info info) noexcept : metadb_info(std::move(info)) {}
};

}  // namespace

ostrevan::metadb_info_ptr memory_track::info() const {
    const std::lock_guard guard(lock_);
    return info_;
}

void memory_track::publish(ostrevan::file_info info) {
    ostrevan::metadb_info_ptr fresh = ostrevan::service_new<snapshot>(std::move(info));
    const std::lock_guard guard(lock_);
    info_ = std::move(fresh);
}

void memory_track::forget_info() {
    const std::lock_guard guard(lock_);
    info_.reset();
}

ostrevan::file_info make_info(tag_values tags, double seconds) {
    ostrevan::file_info info;
    for (const auto& [name, value] : tags) info.meta_add(name, value);
    info.set_length(seconds);
    return info;
}

memory_track_ptr make_track(const std::string& path, tag_values tags, double seconds) {
    auto track = ostrevan::service_new<memory_track>(ostrevan::playable_location{path, 0});
    track->publish(make_info(tags, seconds));
    return track;
}

ostrevan::metadb_handle_list make_tracks(std::size_t count) {
    ostrevan::metadb_handle_list tracks;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string title = "t" + std::to_string(i);
        tracks.items().push_back(make_track("/music/" + title + ".flac", {{"artist", "a"}, {"title", title.c_str()}}));
    }
    return tracks;
}

std::string field_titleformat::format(ostrevan::metadb_handle& track, const char* script) const {
    const std::string_view text(script);
    if (text.size() < 3 || text.front() != '%' || text.back() != '%') throw std::invalid_argument("unknown script");
    const auto snapshot = track.info();
    const auto index = snapshot ? snapshot->info().meta_find(text.substr(1, text.size() - 2)) : ostrevan::file_info::npos;
    return index == ostrevan::file_info::npos ? "?" : snapshot->info().meta_value(index, 0);
}

void recorded_tag_updates::update_async(ostrevan::metadb_handle_list_cref tracks,
                                        ostrevan::service_ptr_t<ostrevan::file_info_filter> filter, void* parent_window,
                                        unsigned options, ostrevan::completion_notify_ptr notify) {
    require_main_thread("update_async");
    if (fail) throw std::runtime_error("tag update refused");
    requests.push_back({ostrevan::metadb_handle_list(tracks), std::move(filter), parent_window, options, std::move(notify)});
}

std::vector<ostrevan::metadb_handle_ptr> recorded_tag_updates::run_next() {
    auto next = std::move(requests.at(0));
    requests.erase(requests.begin());
    std::vector<ostrevan::metadb_handle_ptr> changed;
    std::thread([&] {
        for (const auto& track : next.tracks) {
            ostrevan::file_info info = track->info()->info();
            if (!next.filter->apply_filter(track, info)) continue;
            static_cast<memory_track&>(*track).publish(std::move(info));
            changed.push_back(track);
        }
    }).join();
    if (next.notify) next.notify->on_completion(ostrevan::completion_notify::status_success);
    return changed;
}

}  // namespace support
