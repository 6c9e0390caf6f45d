#include "tests/support/text_doubles.h"

#include <string>

namespace support {
namespace {

struct md5_stream : ostrevan::hash_stream {
    std::string given;
    void update(const void* bytes, std::size_t size) override { given.append(static_cast<const char*>(bytes), size); }
    ostrevan::hash_digest finish() override { return md5_of(given.data(), given.size()); }
};

struct md5_service : ostrevan::hash_service {
    ostrevan::hash_digest digest(const void* bytes, std::size_t size) override { return md5_of(bytes, size); }
    ostrevan::service_ptr_t<ostrevan::hash_stream> open() override { return ostrevan::service_new<md5_stream>(); }
};

struct lower_casing : ostrevan::text_helper_service {
    lower_casing() {
        for (std::uint32_t i = 0; i < lower_table_size; ++i) table[i] = static_cast<std::uint16_t>(lower_case_of(i));
    }
    std::uint32_t lower(std::uint32_t code_point) const noexcept override { return lower_case_of(code_point); }
    const std::uint16_t* lower_table() const noexcept override { return table; }
    std::uint16_t table[lower_table_size] = {};
};

}  // namespace

ostrevan::hash_service& md5_hash() {
    static ostrevan::service_uncounted_t<md5_service> service;
    return service;
}

ostrevan::text_helper_service& text_helper() {
    static ostrevan::service_uncounted_t<lower_casing> service;
    return service;
}

}  // namespace support
