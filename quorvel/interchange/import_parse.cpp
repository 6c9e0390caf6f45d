#include "quorvel/interchange/import_parse.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "nuv/guid.h"
#include "ostrevan/exceptions.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

constexpr int hexadecimal = 16;

/// How ratings are written.
enum class rating_scale {
    stored,  ///< 0 to 255
    stars,   ///< 0 to 5
};

/// Reads the fields wanted, in the order of the table. Throws what `parse_number` throws.
ImportedStats read_stats(const Vek::xmlAttributes& attributes, std::uint32_t fields, rating_scale scale) {
    ImportedStats stats;
    const auto wanted = [&](const record_field& field) -> const std::string* {
        const auto* const text = (fields & field.bit) == 0 ? nullptr : attributes.find(field.attribute);
        if (text != nullptr) stats.present |= field.bit;
        return text;
    };
    for (const auto& field : value_fields)
        if (const auto* const text = wanted(field)) stats.values.*field.value = parse_number<std::uint64_t>(*text);
    if (const auto* const text = wanted(field_of(field_rating))) {
        const auto rating = parse_number<std::uint32_t>(*text);
        stats.values.rating = scale == rating_scale::stars ? rating_of_stars(rating) : rating;
    }
    return stats;
}

/// The mapping that the root names. Keys under an unknown one are worthless.
nuv::guid known_mapping(const Vek::xmlAttributes& root) {
    const auto* const text = root.find("Mapping");
    const auto mapping = text == nullptr ? std::nullopt : nuv::parse_guid(*text);
    if (!mapping || std::ranges::count(mapping_guids(), *mapping) == 0) throw ostrevan_io::exception_io_data();
    return *mapping;
}

}  // namespace

void XMLParser_Root::onElem(const Vek::xmlContext& context, const char* /*ns*/, const char* name,
                            const Vek::xmlAttributes& attributes, const char* content, std::size_t length) {
    if (name != std::string_view("PlaybackStatistics")) return;
    const auto* const version = attributes.find("Version");
    if (version != nullptr && *version == "4.0") {
        if (opened_index() == nullptr) throw std::runtime_error("No active index");
        XMLParser_Tracks(globals_, file_).parse(context, content, length);
    } else if (version != nullptr && *version == "3.0") {
        const auto mapping = known_mapping(attributes);
        auto* const old_edits = mapping == active_mapping_guid ? nullptr : &file_.old_edits[mapping];
        XMLParser_Entries(globals_, file_, old_edits).parse(context, content, length);
    } else {
        throw ostrevan_io::exception_io_data();
    }
}

void XMLParser_Entries::onElem(const Vek::xmlContext& /*context*/, const char* /*ns*/, const char* name,
                               const Vek::xmlAttributes& attributes, const char* /*content*/, std::size_t /*length*/) {
    globals_.progress.step(file_.records, 0);
    if (name != std::string_view("Entry")) return;
    const auto* const id = attributes.find("ID");
    if (id == nullptr) return;
    const auto key = parse_number<std::uint64_t>(*id, hexadecimal);
    const auto stats = read_stats(attributes, globals_.fields, rating_scale::stored);
    if (stats.present == 0) return;
    if (old_edits_ != nullptr) old_edits_->insert_or_assign(key, stats);
    else globals_.apply(key, stats);
    ++file_.records;
}

void XMLParser_Tracks::onElem(const Vek::xmlContext& /*context*/, const char* /*ns*/, const char* /*name*/,
                              const Vek::xmlAttributes& attributes, const char* /*content*/, std::size_t /*length*/) {
    globals_.progress.step(file_.records, 0);
    const auto* const path = attributes.find("Path");
    if (path == nullptr || path->empty()) return;
    const auto* const subsong = attributes.find("Subsong");
    PathItem item{.location = {*path, subsong == nullptr ? 0 : parse_number<std::uint32_t>(*subsong)},
                  .stats = read_stats(attributes, globals_.fields, rating_scale::stars)};
    if (item.stats.present == 0) return;  // no file need be read for it
    file_.path_items.push_back(std::move(item));
    ++file_.records;
}

}  // namespace quorvel
