// Sources: player/library/m3u.cpp
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "fuzz/check.h"
#include "player/library/m3u.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ostrevan::library;
    try {
        const auto list = parse_m3u({reinterpret_cast<const char*>(data), size}, "/folder");
        std::vector<m3u_entry> entries;
        for (const auto& place : list.places) {
            fuzz::check(place.starts_with('/'), "every place is absolute");
            entries.push_back({.path = place, .title = place});
        }
        fuzz::check(parse_m3u(m3u_text(entries), "/elsewhere").places == list.places, "what is written is read again");
    } catch (const std::runtime_error&) {
    }
    return 0;
}
