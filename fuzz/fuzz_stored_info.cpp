// Sources: player/library/info_codec.cpp
// Seeds: fuzz/seeds/stored_info
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "ostrevan/exceptions.h"
#include "player/library/info_codec.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ostrevan::library;
    try {
        const auto info = decode_info({reinterpret_cast<const char*>(data), size});
        const auto encoded = encode_info(info);
        fuzz::check(encode_info(decode_info(encoded)) == encoded, "what is stored is what comes back");
    } catch (const ostrevan_io::exception_io_data&) {
    }
    return 0;
}
