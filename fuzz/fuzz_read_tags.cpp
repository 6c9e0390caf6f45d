// Links: player_tags
// Seeds: build/fuzz/audio
// Dictionary: fuzz/tags.dict
#include "fuzz/tag_file.h"
#include "player/tags/errors.h"
#include "player/tags/reader.h"

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
    return fuzz::mutate_tags(data, size, most, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::tag_file file;
    file.put(data, size);
    const fuzz::cost cost(size);
    try {
        const auto info = ostrevan::tags::read_file(file.path());
        fuzz::check(info.sample_rate != 0, "what is read has sound");
    } catch (const ostrevan::tags::tag_error& refusal) {
        fuzz::check(std::string_view(refusal.what()).starts_with(file.path()), "a refusal names the file");
    }
    cost.require_bounded();
    fuzz::check(file.is_alone(), "reading makes no file");
    return 0;
}
