#include "tests/support/text_doubles.h"

#include <openssl/evp.h>
#include <utf8proc.h>

#include <memory>

namespace support {
namespace {

class md5_stream : public ostrevan::hash_stream {
public:
    md5_stream() { EVP_DigestInit_ex(context_.get(), EVP_md5(), nullptr); }
    void update(const void* bytes, std::size_t size) override { EVP_DigestUpdate(context_.get(), bytes, size); }
    ostrevan::hash_digest finish() override {
        ostrevan::hash_digest result{};
        EVP_DigestFinal_ex(context_.get(), result.data(), nullptr);
        return result;
    }

private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

class md5_service : public ostrevan::hash_service {
public:
    ostrevan::hash_digest digest(const void* bytes, std::size_t size) override {
        ostrevan::hash_digest result{};
        EVP_Digest(bytes, size, result.data(), nullptr, EVP_md5(), nullptr);
        return result;
    }
    ostrevan::service_ptr_t<ostrevan::hash_stream> open() override { return ostrevan::service_new<md5_stream>(); }
};

class lower_casing : public ostrevan::text_helper_service {
public:
    lower_casing() {
        for (std::uint32_t i = 0; i < lower_table_size; ++i) table_[i] = static_cast<std::uint16_t>(lower(i));
    }
    std::uint32_t lower(std::uint32_t code_point) const noexcept override {
        return static_cast<std::uint32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code_point)));
    }
    const std::uint16_t* lower_table() const noexcept override { return table_; }

private:
    std::uint16_t table_[lower_table_size] = {};
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
