#include "player/services/input_entry.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "player/library/locations.h"
#include "player/library/read_files.h"
#include "player/system/local_path.h"
#include "player/tags/formats.h"
#include "player/tags/reader.h"

namespace ostrevan::services {
namespace {

class info_reader_impl : public input_info_reader {
public:
    info_reader_impl(std::string path, std::vector<library::track_snapshot> tracks)
        : path_(std::move(path)), tracks_(std::move(tracks)) {}

    file_info get_info(std::uint32_t subsong) override {
        const auto found = std::ranges::find(tracks_, subsong, &library::track_snapshot::subsong);
        if (found == tracks_.end())
            throw std::runtime_error(path_ + " has no part with the number " + std::to_string(subsong) + ".");
        return found->info->info();
    }

private:
    const std::string path_;
    const std::vector<library::track_snapshot> tracks_;
};

}  // namespace

bool input_entry_impl::is_our_path(const char* path) const noexcept {
    return system::is_local_path(path) && (library::is_cue_path(path) || tags::has_supported_extension(path));
}

service_ptr_t<input_info_reader> input_entry_impl::open_for_info_read(const char* path) {
    const auto normal = library::normal_path(path);
    return service_new<info_reader_impl>(normal, library::read_tracks(normal, tags::read_file));
}

}  // namespace ostrevan::services
