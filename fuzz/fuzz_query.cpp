// Links: player_query
// Seeds: fuzz/seeds/query
#include <chrono>
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "fuzz/one_track.h"
#include "player/query/query.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ostrevan::query;
    const std::string_view source(reinterpret_cast<const char*>(data), size);
    constexpr std::chrono::sys_seconds now =
        std::chrono::sys_days{std::chrono::year{2026} / 3 / 29} + std::chrono::minutes{90};
    try {
        const auto parsed = parse(source);
        const bool first = parsed.matches(fuzz::one_track(), now);
        fuzz::check(parsed.matches(fuzz::one_track(), now) == first, "the same track is judged alike");
    } catch (const ostrevan::titleformat::script_error&) {
    } catch (const query_error& error) {
        fuzz::check(error.position() <= source.size(), "the place of a mistake is in the query");
    }
    return 0;
}
