// Links: fuzz_whole_component
// Seeds: fuzz/seeds/stored_record
#include <cstdint>
#include <string>

#include "fuzz/check.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/track_properties.h"
#include "quorvel/interchange/entry_writer.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/record_fields.h"
#include "tests/support/memory_player.h"

namespace {

struct counted_out final : ostrevan::titleformat_text_out {
    std::size_t writes = 0;
    void write(const nuv::guid&, const char* text, std::size_t length) override {
        ++writes;
        text_length += length == whole_text ? std::string(text).size() : length;
    }
    std::size_t text_length = 0;
};

struct counted_rows final : ostrevan::track_property_sink {
    std::size_t length = 0;
    void set_property(const char*, double, const char* name, const char* value) override {
        length += std::string(name).size() + std::string(value).size();
    }
};

support::memory_player& started_player() {
    static support::memory_player player;
    static const bool started = (player.start(), true);
    static_cast<void>(started);
    return player;
}

}  // namespace

/// Shows and exports any bytes that the index holds for a track.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& player = started_player();
    static const auto tracks = support::make_tracks(1);
    const auto key = quorvel::KeyOf(*tracks[0]).value();
    player.index.write(quorvel::statistics_index_guid, key, data, size);

    const auto record = quorvel::PCDB::Get(*tracks[0]);
    fuzz::check(size == quorvel::record_blob_size || record == quorvel::t_playback_stats{}, "only whole records count");
    auto& provider = player.component_service<ostrevan::field_provider>();
    for (std::size_t i = 0; i < provider.get_field_count(); ++i) {
        counted_out out;
        provider.process_field(i, tracks[0].get(), out);
        fuzz::check(out.writes == 1, "a field writes once");
    }
    counted_rows rows;
    player.component_service<ostrevan::track_property_provider>().enumerate_properties(tracks, rows);
    std::string entry;
    quorvel::pcdb_export::writeEntry(entry, key, record, quorvel::all_fields, nullptr);
    fuzz::check(entry.size() < 512, "an entry without tracks has its longest form");
    return 0;
}
