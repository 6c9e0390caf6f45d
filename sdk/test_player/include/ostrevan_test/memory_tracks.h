#pragma once

#include <cstring>
#include <initializer_list>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/library.h"
#include "ostrevan/tag_update.h"
#include "ostrevan/titleformat.h"
#include "ostrevan/track.h"
#include "ostrevan_test/main_thread_check.h"

namespace ostrevan_test {

struct snapshot : ostrevan::metadb_info {
    explicit snapshot(ostrevan::file_info info) noexcept : metadb_info(std::move(info)) {}
};

/// A track whose information the test sets at will, from any thread.
class memory_track : public ostrevan::metadb_handle {
public:
    explicit memory_track(ostrevan::playable_location location) : location_(std::move(location)) {}

    const ostrevan::playable_location& location() const noexcept override { return location_; }
    ostrevan::metadb_info_ptr info() const override {
        const std::lock_guard guard(lock_);
        return info_;
    }

    void publish(ostrevan::file_info info) {
        ostrevan::metadb_info_ptr fresh = ostrevan::service_new<snapshot>(std::move(info));
        const std::lock_guard guard(lock_);
        info_ = std::move(fresh);
    }
    /// As for a track that the player has not read yet.
    void forget_info() {
        const std::lock_guard guard(lock_);
        info_.reset();
    }

private:
    ostrevan::playable_location location_;
    mutable std::mutex lock_;
    ostrevan::metadb_info_ptr info_;
};
using memory_track_ptr = ostrevan::service_ptr_t<memory_track>;

using tag_values = std::initializer_list<std::pair<const char*, const char*>>;
/// A repeated name adds a value.
inline ostrevan::file_info make_info(tag_values tags, double seconds = 180) {
    ostrevan::file_info_builder info;
    for (const auto& [name, value] : tags) info.meta_add(name, value);
    info.length = seconds;
    return info.build();
}
inline memory_track_ptr make_track(const std::string& path, tag_values tags, double seconds = 180) {
    auto track = ostrevan::service_new<memory_track>(ostrevan::playable_location{path, 0});
    track->publish(make_info(tags, seconds));
    return track;
}
/// `count` tracks with artist "a" and titles "t0", "t1", ...
inline ostrevan::metadb_handle_list make_tracks(std::size_t count) {
    ostrevan::metadb_handle_list tracks;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string title = "t" + std::to_string(i);
        tracks.items().emplace_back(make_track("/music/" + title + ".flac", {{"artist", "a"}, {"title", title.c_str()}}));
    }
    return tracks;
}

class memory_library : public ostrevan::library_manager {
public:
    bool enabled = true;
    std::vector<ostrevan::metadb_handle_ptr> items;

    bool is_library_enabled() const override {
        require_main_thread("is_library_enabled");
        return enabled;
    }
    void get_all_items(ostrevan::metadb_handle_list& out) const override {
        require_main_thread("library_manager::get_all_items");
        out.items() = items;
    }
};

/// Collects what a field writes.
class kept_text final : public ostrevan::titleformat_text_out {
public:
    std::string text;
    void write(const nuv::guid& /*kind*/, const char* more, std::size_t length) override {
        text.append(more, length == whole_text ? std::strlen(more) : length);
    }
};

/// Understands scripts of one field, such as "%title%": of the component, or else of the tags.
class field_titleformat : public ostrevan::titleformat_service {
public:
    std::string format(ostrevan::metadb_handle& track, const char* script) const override {
        const std::string_view text(script);
        if (text.size() < 3 || text.front() != '%' || text.back() != '%') throw std::invalid_argument("unknown script");
        const auto name = text.substr(1, text.size() - 2);
        kept_text out;
        bool is_offered = false;
        ostrevan::for_each_service<ostrevan::field_provider>([&](ostrevan::field_provider& provider) {
            for (std::size_t i = 0; i < provider.get_field_count() && !is_offered; ++i) {
                is_offered = provider.get_field_name(i) == name;
                if (is_offered) provider.process_field(i, &track, out);  // its text counts, found or not
            }
        });
        if (is_offered) return out.text;
        const auto known = track.info();
        const auto at = known ? known->info().meta_find(name) : ostrevan::file_info::npos;
        return at == ostrevan::file_info::npos ? std::string() : std::string(known->info().meta_value(at, 0));
    }
};

/// A request to write or read the files of some tracks.
struct file_request {
    ostrevan::metadb_handle_list tracks;
    void* parent;
    unsigned options;
    ostrevan::completion_notify_ptr notify;
    ostrevan::service_ptr_t<ostrevan::file_info_filter> filter{};
    unsigned mode = 0;
};

/// Requests wait until the test runs them.
class recorded_tag_updates : public ostrevan::tag_update_service {
public:
    std::vector<file_request> requests;
    bool fail = false;

    void update_async(ostrevan::metadb_handle_list_cref tracks, ostrevan::service_ptr_t<ostrevan::file_info_filter> filter,
                      void* parent_window, unsigned options, ostrevan::completion_notify_ptr notify) override {
        require_main_thread("update_async");
        if (fail) throw std::runtime_error("tag update refused");
        requests.push_back(
            {ostrevan::metadb_handle_list(tracks), parent_window, options, std::move(notify), std::move(filter)});
    }

    /// Runs the oldest request on a thread of its own, publishes the changes and returns the changed tracks.
    std::vector<ostrevan::metadb_handle_ptr> run_next() {
        auto next = std::move(requests.at(0));
        requests.erase(requests.begin());
        std::vector<ostrevan::metadb_handle_ptr> changed;
        std::thread([&] {
            for (const auto& track : next.tracks) {
                ostrevan::file_info_builder info(track->info()->info());
                if (!next.filter->apply_filter(track, info)) continue;
                static_cast<memory_track&>(*track).publish(info.build());
                changed.push_back(track);
            }
        }).join();
        if (next.notify) next.notify->on_completion(ostrevan::completion_notify::status_success);
        return changed;
    }
};

class recorded_reloads : public ostrevan::info_reload_service {
public:
    std::vector<file_request> requests;

    void reload_async(ostrevan::metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                      ostrevan::completion_notify_ptr notify) override {
        require_main_thread("reload_async");
        requests.push_back({ostrevan::metadb_handle_list(tracks), parent_window, options, std::move(notify), {}, mode});
    }
};

}  // namespace ostrevan_test
