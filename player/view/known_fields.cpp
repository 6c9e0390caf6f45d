#include "player/view/known_fields.h"

#include <algorithm>
#include <string>
#include <vector>

#include "player/view/nearest.h"

namespace ostrevan::view {
namespace {

/// Fields that the player derives from a file, and common tags, valid although no track may have them yet.
constexpr std::string_view usual[] = {
    "album",      "album artist", "artist",         "bitrate",       "channels",    "codec",      "comment",
    "composer",   "conductor",    "date",           "directoryname", "discnumber",  "filename",   "filename_ext",
    "genre",      "length",       "length_seconds", "lyrics",        "path",        "performer",  "publisher",
    "samplerate", "subsong",      "title",          "totaldiscs",    "totaltracks", "tracknumber"};

bool is_had(const std::string& name, const std::vector<metadb_handle_ptr>& items,
            const titleformat::component_fields& fields) {
    std::string text;
    return std::ranges::any_of(items, [&](const metadb_handle_ptr& track) {
        return titleformat::track_fields(fields, *track).field(name, text) || !text.empty();
    });
}

}  // namespace

std::vector<std::string> usual_and_published(const titleformat::component_fields& fields) {
    std::vector<std::string> known(std::begin(usual), std::end(usual));
    for (const auto& [published, entry] : fields.all()) known.push_back(published);
    std::ranges::sort(known);
    return known;
}

void check_fields(const query::query& query, std::string_view source, const std::vector<metadb_handle_ptr>& items,
                  const titleformat::component_fields& fields) {
    for (const auto& [name, position] : query.fields()) {
        if (std::ranges::find(usual, name) != std::end(usual) || fields.find(name) != nullptr) continue;
        if (is_had(name, items, fields)) continue;
        throw query::query_error("no track has a field %" + name + "%." + did_you_mean(name, usual_and_published(fields)) +
                                     " A text to search for goes in double quotes.",
                                 source, position);
    }
}

}  // namespace ostrevan::view
