#pragma once

#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/input.h"
#include "ostrevan/metadb.h"
#include "ostrevan/playlist.h"
#include "ostrevan_test/main_thread_check.h"
#include "ostrevan_test/memory_tracks.h"

/// Where tracks are found: by location, in playlists, and in their files.
namespace ostrevan_test {

/// Locations that the test has not put here get a handle without information.
class memory_metadb : public ostrevan::metadb {
public:
    std::map<ostrevan::playable_location, ostrevan::metadb_handle_ptr> tracks;

    ostrevan::metadb_handle_ptr handle_create(const ostrevan::playable_location& location) override {
        auto& known = tracks[location];
        if (!known) known = ostrevan::service_new<memory_track>(location);
        return known;
    }
};

class memory_playlists : public ostrevan::playlist_manager {
public:
    std::vector<ostrevan::metadb_handle_ptr> items;

    void get_all_items(ostrevan::metadb_handle_list& out) const override {
        require_main_thread("playlist_manager::get_all_items");
        out.items() = items;
    }
};

/// Files that a decoder understands. Opening any other path fails, and so does a subsong that is not there. Reading on the
/// main thread ends the test.
class memory_decoders : public ostrevan::input_entry {
public:
    std::map<ostrevan::playable_location, ostrevan::file_info> files;
    std::vector<std::string> opened;
    std::chrono::milliseconds delay{0};  ///< that opening a file takes

    bool is_our_path(const char*) const noexcept override { return true; }
    ostrevan::service_ptr_t<ostrevan::input_info_reader> open_for_info_read(const char* path) override {
        if (ostrevan::core_api::is_main_thread()) ostrevan::uBugCheck("files are read on the main thread");
        opened.emplace_back(path);
        std::this_thread::sleep_for(delay);
        const auto first = files.lower_bound({path, 0});
        if (first == files.end() || first->first.path != path) throw ostrevan_io::exception_io_not_found(path);
        return ostrevan::service_new<reader>(*this, path);
    }

private:
    struct reader : ostrevan::input_info_reader {
        reader(const memory_decoders& owner, std::string path) : owner_(owner), path_(std::move(path)) {}
        ostrevan::file_info get_info(std::uint32_t subsong) override { return owner_.files.at({path_, subsong}); }
        const memory_decoders& owner_;
        const std::string path_;
    };
};

}  // namespace ostrevan_test
