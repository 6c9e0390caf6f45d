#include "ostrevan_test/memory_text.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>

namespace ostrevan_test {
namespace {

using state = std::array<std::uint32_t, 4>;

/// One block of 64 bytes, words in little-endian order.
void add_block(state& sum, const unsigned char* block) {
    static const auto sines = [] {
        std::array<std::uint32_t, 64> result;
        for (int i = 0; i < 64; ++i)
            result[static_cast<std::size_t>(i)] = static_cast<std::uint32_t>(std::abs(std::sin(i + 1.0)) * 4294967296.0);
        return result;
    }();
    static constexpr int turns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

    auto [a, b, c, d] = sum;
    for (std::uint32_t i = 0; i < 64; ++i) {
        const std::uint32_t mixed[] = {(b & c) | (~b & d), (d & b) | (~d & c), b ^ c ^ d, c ^ (b | ~d)};
        const std::uint32_t words[] = {i, 5 * i + 1, 3 * i + 5, 7 * i};
        const auto* const from = block + words[i / 16] % 16 * 4;
        std::uint32_t word = 0;
        for (int byte = 3; byte >= 0; --byte) word = word << 8 | from[byte];
        const std::uint32_t next = b + std::rotl(a + mixed[i / 16] + sines[i] + word, turns[i / 16][i % 4]);
        a = d;
        d = c;
        c = b;
        b = next;
    }
    sum = {sum[0] + a, sum[1] + b, sum[2] + c, sum[3] + d};
}

ostrevan::hash_digest md5_of(std::string bytes) {
    const std::uint64_t bits = bytes.size() * 8;
    bytes += '\x80';
    bytes.resize((bytes.size() + 8 + 63) / 64 * 64 - 8);
    for (int shift = 0; shift < 64; shift += 8) bytes += static_cast<char>(bits >> shift);

    state sum = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    for (std::size_t at = 0; at < bytes.size(); at += 64)
        add_block(sum, reinterpret_cast<const unsigned char*>(bytes.data()) + at);
    ostrevan::hash_digest result;
    for (std::size_t i = 0; i < result.size(); ++i) result[i] = static_cast<std::uint8_t>(sum[i / 4] >> i % 4 * 8);
    return result;
}

class memory_stream : public ostrevan::hash_stream {
public:
    void update(const void* bytes, std::size_t size) override { given_.append(static_cast<const char*>(bytes), size); }
    ostrevan::hash_digest finish() override { return md5_of(given_); }

private:
    std::string given_;
};

}  // namespace

ostrevan::hash_digest memory_hash::digest(const void* bytes, std::size_t size) {
    return md5_of({static_cast<const char*>(bytes), size});
}

ostrevan::service_ptr_t<ostrevan::hash_stream> memory_hash::open() { return ostrevan::service_new<memory_stream>(); }

memory_letters::memory_letters() noexcept {
    for (std::uint32_t i = 0; i < lower_table_size; ++i) table_[i] = static_cast<std::uint16_t>(i);
    const auto shift = [&](std::uint32_t first, std::uint32_t last, std::uint32_t by) {
        for (auto i = first; i <= last; ++i) table_[i] = static_cast<std::uint16_t>(i + by);
    };
    shift('A', 'Z', 0x20);
    shift(0xC0, 0xD6, 0x20);  // between these two: the multiplication sign
    shift(0xD8, 0xDE, 0x20);
    shift(0x391, 0x3A1, 0x20);
    shift(0x3A3, 0x3AB, 0x20);
    shift(0x400, 0x40F, 0x50);
    shift(0x410, 0x42F, 0x20);
    // Pairs of a capital and its small letter. U+0130, I with a dot, becomes an ordinary i.
    for (const auto& [first, last] : {std::pair{0x100, 0x12E}, {0x132, 0x136}, {0x139, 0x147}, {0x14A, 0x176}})
        for (int i = first; i <= last; i += 2) table_[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(i + 1);
    table_[0x130] = 'i';
    for (const auto& [capital, small] : {std::pair{0x178, 0xFF}, {0x179, 0x17A}, {0x17B, 0x17C}, {0x17D, 0x17E}})
        table_[static_cast<std::size_t>(capital)] = static_cast<std::uint16_t>(small);
}

}  // namespace ostrevan_test
