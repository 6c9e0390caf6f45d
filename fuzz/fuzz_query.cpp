// Links: player_query
// Seeds: fuzz/seeds/query
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "fuzz/one_track.h"
#include "player/query/query.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ostrevan::query;
    const std::string_view source(reinterpret_cast<const char*>(data), size);
    static const auto clock = query_clock::at("2026-03-29 02:30:00");
    try {
        const auto parsed = parse(source);
        const bool first = parsed.matches(fuzz::one_track(), clock);
        fuzz::check(parsed.matches(fuzz::one_track(), clock) == first, "the same track is judged alike");
    } catch (const ostrevan::titleformat::script_error&) {
    } catch (const query_error& error) {
        fuzz::check(error.position() <= source.size(), "the place of a mistake is in the query");
    }
    return 0;
}
