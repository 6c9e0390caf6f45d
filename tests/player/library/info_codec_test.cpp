#include "player/library/info_codec.h"

#include <gtest/gtest.h>

#include "ostrevan/exceptions.h"

namespace {

using namespace ostrevan::library;

ostrevan::file_info sample() {
    ostrevan::file_info info;
    info.set_length(241.0 + 1.0 / 3.0);
    info.set_codec("FLAC");
    info.bitrate = 900;
    info.sample_rate = 44100;
    info.channels = 2;
    info.meta_add("title", "Zażółć");
    info.meta_add("title", "");
    info.meta_add("Comment", std::string(300, 'x') + std::string("\0\xFF", 2));
    info.meta_set_values("empty", {});
    return info;
}

TEST(info_codec, gives_back_what_it_took_and_survives_every_changed_byte) {
    for (const auto& info : {ostrevan::file_info(), sample()}) EXPECT_EQ(decode_info(encode_info(info)), info);
    EXPECT_THROW(decode_info(""), ostrevan_io::exception_io_data);
    const std::string whole = encode_info(sample());
    for (std::size_t i = 0; i < 2 * whole.size(); ++i) {
        std::string changed = whole.substr(0, i < whole.size() ? whole.size() : i - whole.size());
        if (i < whole.size()) changed[i] ^= '\x7F';
        try {
            static_cast<void>(decode_info(changed));
        } catch (const ostrevan_io::exception_io_data&) {
        }
    }
}

}  // namespace
