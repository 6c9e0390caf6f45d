// Links: player_tags PkgConfig::AVFORMAT
// Seeds: build/fuzz/audio
// Dictionary: fuzz/tags.dict
#include <set>

#include "fuzz/encoded_audio.h"
#include "fuzz/tag_file.h"
#include "player/tags/errors.h"
#include "player/tags/reader.h"
#include "player/tags/rewrite.h"

namespace {

using namespace ostrevan::tags;
using ostrevan::file_info_builder;

struct field {
    std::string name;
    /// Empty removes the field.
    std::vector<std::string> values;
};

/// One edit each: small and large, new and common fields, several values, paired numbers.
const std::vector<field> edits[] = {
    {{"play_count", {"17"}}, {"last_played_timestamp", {"133700000000000000"}}},
    {{"title", {"Ein neuer Titel – ほ"}}, {"play_count", {}}},
    {{"artist", {"One", "Two", "Three"}}, {"genre", {}}, {"comment", {"new"}}},
    {{"tracknumber", {"4"}}, {"totaltracks", {"9"}}, {"album artist", {"New Hands"}}},
    {{"lyrics", {std::string(5000, 'x')}}},
    {{"lyrics", {}}, {"title", {}}, {"artist", {}}, {"album", {}}, {"my own", {"field"}}},
};

std::vector<std::string> values_of(const file_info_builder& info, const std::string& name) {
    const auto index = info.meta_find(name);
    return index == file_info_builder::npos ? std::vector<std::string>() : info.meta_values(index);
}

void check_edited(const file_info_builder& before, const file_info_builder& now, const std::vector<field>& edit) {
    for (const auto& [name, values] : edit) fuzz::check(values_of(now, name) == values, "the new fields read back");
    const auto is_foreign = [&](const std::string& name) {
        return std::ranges::none_of(edit, [&](const auto& each) { return each.name == name; });
    };
    for (const auto* one : {&before, &now})
        for (std::size_t i = 0; i < one->meta_count(); ++i)
            if (const std::string name(one->meta_name(i)); is_foreign(name))
                fuzz::check(values_of(before, name) == values_of(now, name), "no other field changes");
    fuzz::check(before.length == now.length && before.sample_rate == now.sample_rate, "the sound reads the same");
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
    return fuzz::mutate_tags(data, size, most, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::tag_file file;
    file.put(data, size);
    const std::string original(reinterpret_cast<const char*>(data), size);
    const auto& edit = edits[std::hash<std::string>()(original) % std::size(edits)];
    file_info_builder before;
    const fuzz::cost cost(size);
    try {
        const auto result = rewrite_file(file.path(), [&](file_info_builder& info) {
            before = info;
            for (const auto& [name, values] : edit) {
                if (values.empty()) info.meta_remove_field(name);
                else info.meta_set_values(name, values);
            }
            return true;
        });
        cost.require_bounded();
        if (result.outcome == rewrite_outcome::rewritten) {
            check_edited(before, read_file(file.path()), edit);
            const auto bytes = file.bytes();
            file.put(data, size);
            const auto sound = fuzz::encoded_audio(file.path(), original);
            file.put(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            fuzz::check(sound == fuzz::encoded_audio(file.path(), bytes), "another reader finds the same sound");
        }
    } catch (const tag_error& refusal) {
        cost.require_bounded();
        fuzz::check(std::string_view(refusal.what()).starts_with(file.path()), "a refusal names the file");
        fuzz::check(file.bytes() == original, "what is refused is left as it was");
    }
    fuzz::check(file.is_alone(), "no copy is left");
    return 0;
}
