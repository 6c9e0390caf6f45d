// Links: player_titleformat
// Seeds: fuzz/seeds/script
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "fuzz/one_track.h"
#include "player/titleformat/script.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ostrevan::titleformat;
    const std::string_view source(reinterpret_cast<const char*>(data), size);
    try {
        const auto result = compile(source).run(fuzz::one_track());
        fuzz::check(result.text.size() <= script::max_result, "a result does not grow beyond its bound");
    } catch (const script_error& error) {
        fuzz::check(error.position() <= source.size(), "the place of a mistake is in the script");
    }
    return 0;
}
