#pragma once

#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/library.h"
#include "ostrevan/tag_update.h"
#include "ostrevan/titleformat.h"
#include "ostrevan/track.h"

namespace support {

/// A track whose information the test sets at will, from any thread.
class memory_track : public ostrevan::metadb_handle {
public:
    explicit memory_track(ostrevan::playable_location location) : location_(std::move(location)) {}

    const ostrevan::playable_location& location() const noexcept override { return location_; }
    ostrevan::metadb_info_ptr info() const override;

    void publish(ostrevan::file_info info);
    /// As for a track that the player has not read yet.
    void forget_info();

private:
    ostrevan::playable_location location_;
    mutable std::mutex lock_;
    ostrevan::metadb_info_ptr info_;
};
using memory_track_ptr = ostrevan::service_ptr_t<memory_track>;

using tag_values = std::initializer_list<std::pair<const char*, const char*>>;
/// A repeated name adds a value.
ostrevan::file_info make_info(tag_values tags, double seconds = 180);
memory_track_ptr make_track(const std::string& path, tag_values tags, double seconds = 180);
/// `count` tracks with artist "a" and titles "t0", "t1", ...
ostrevan::metadb_handle_list make_tracks(std::size_t count);

class memory_library : public ostrevan::library_manager {
public:
    bool enabled = true;
    std::vector<ostrevan::metadb_handle_ptr> items;

    bool is_library_enabled() const override { return enabled; }
    void get_all_items(ostrevan::metadb_handle_list& out) const override { out.items() = items; }
};

/// Understands scripts of one field, such as "%title%".
class field_titleformat : public ostrevan::titleformat_service {
public:
    std::string format(ostrevan::metadb_handle& track, const char* script) const override;
};

/// Requests wait until the test runs them.
class recorded_tag_updates : public ostrevan::tag_update_service {
public:
    struct request {
        ostrevan::metadb_handle_list tracks;
        ostrevan::service_ptr_t<ostrevan::file_info_filter> filter;
        void* parent;
        unsigned options;
        ostrevan::completion_notify_ptr notify;
    };
    std::vector<request> requests;
    bool fail = false;

    void update_async(ostrevan::metadb_handle_list_cref tracks, ostrevan::service_ptr_t<ostrevan::file_info_filter> filter,
                      void* parent_window, unsigned options, ostrevan::completion_notify_ptr notify) override;

    /// Runs the oldest request on a thread of its own, publishes what changed and answers those tracks.
    std::vector<ostrevan::metadb_handle_ptr> run_next();
};

class recorded_reloads : public ostrevan::info_reload_service {
public:
    struct request {
        ostrevan::metadb_handle_list tracks;
        unsigned mode;
        void* parent;
        unsigned options;
        ostrevan::completion_notify_ptr notify;
    };
    std::vector<request> requests;

    void reload_async(ostrevan::metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                      ostrevan::completion_notify_ptr notify) override {
        requests.push_back({ostrevan::metadb_handle_list(tracks), mode, parent_window, options, std::move(notify)});
    }
};

}  // namespace support
