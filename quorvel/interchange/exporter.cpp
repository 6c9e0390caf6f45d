#include "quorvel/interchange/exporter.h"

#include <stdexcept>
#include <string>

#include "ostrevan/core_api.h"
#include "ostrevan/filesystem.h"
#include "ostrevan/library.h"
#include "ostrevan/progress.h"
#include "quorvel/interchange/tracks_by_key.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/statistics_index.h"
#include "quorvel/store/stats_op.h"

namespace quorvel::pcdb_export {
namespace {

using ostrevan::filesystem;

constexpr std::size_t full_buffer = 16384;
constexpr std::size_t keys_at_once = 4096;

/// The file, with a buffer in front of it.
class statistics_file {
public:
    statistics_file(const char* path, std::uint32_t fields)
        : file_(filesystem::g_open(path, filesystem::open_mode::write_new)), fields_(fields) {}

    void begin() {
        text_ = "<PlaybackStatistics Version=\"3.0\" Mapping=\"";
        text_ += nuv::guid_text(active_mapping_guid);
        text_ += "\">\n";
    }
    void add(std::uint64_t key, const track_list& items) {
        writeEntry(text_, key, records_.GetByKey(key), fields_, &items);
        if (text_.size() > full_buffer) write_out();
        progress_.step(++written_, total_);
    }
    void end() {
        text_ += "</PlaybackStatistics>";
        write_out();
        file_->flush();
    }
    void expect(std::size_t records) noexcept { total_ = records; }

private:
    void write_out() {
        file_->write(text_.data(), text_.size());
        text_.clear();
    }

    ostrevan::file_ptr file_;
    const std::uint32_t fields_;
    // Its reads throw. A default record in place of an unreadable one would be imported later as if it were real.
    const StatsOp records_;
    std::string text_;
    ostrevan::progress_scope progress_{"records exported"};
    std::size_t written_ = 0;
    std::size_t total_ = 0;
};

/// Empty without a library: the records are worth a backup all the same.
ostrevan::metadb_handle_list library_tracks() {
    ostrevan::metadb_handle_list tracks;
    if (const auto library = ostrevan::find_service<ostrevan::library_manager>()) library->get_all_items(tracks);
    return tracks;
}

/// The keys are fetched in portions, because there may be millions.
void add_all_records(statistics_file& file, const tracks_by_key& tracks) {
    std::size_t position = 0;
    for (std::uint64_t first = 0;;) {
        const auto keys = PCDB::KeysFrom(first, keys_at_once);
        for (const std::uint64_t key : keys) file.add(key, tracks.find_next(key, position));
        if (keys.size() < keys_at_once || keys.back() + 1 == 0) return;
        first = keys.back() + 1;
    }
}

void add_records_of(statistics_file& file, const tracks_by_key& tracks) {
    const auto groups = tracks.groups();
    file.expect(groups.size());
    for (const std::size_t position : groups) {
        const auto group = tracks.group_at(position);
        file.add(group.key(), group);
    }
}

}  // namespace

void exportToFile(const char* path, std::uint32_t fields, const track_list* tracks) {
    // Only default records could be read. They would replace an older backup and be imported later as if they were real.
    if (opened_index() == nullptr) throw std::runtime_error("No active index");
    statistics_file file(path, fields);
    const auto library = tracks == nullptr ? library_tracks() : ostrevan::metadb_handle_list();
    const tracks_by_key by_key(tracks == nullptr ? library : *tracks);
    file.begin();
    if (tracks == nullptr) add_all_records(file, by_key);
    else add_records_of(file, by_key);
    file.end();
}

}  // namespace quorvel::pcdb_export
