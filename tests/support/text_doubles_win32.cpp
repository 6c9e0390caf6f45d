#include "tests/support/text_doubles.h"

#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace support {
namespace {

BCRYPT_ALG_HANDLE md5() {
    static const BCRYPT_ALG_HANDLE algorithm = [] {
        BCRYPT_ALG_HANDLE opened = nullptr;
        if (BCryptOpenAlgorithmProvider(&opened, BCRYPT_MD5_ALGORITHM, nullptr, 0) != 0)
            throw std::runtime_error("the system has no MD5");
        return opened;
    }();
    return algorithm;
}

class md5_stream : public ostrevan::hash_stream {
public:
    md5_stream() {
        if (BCryptCreateHash(md5(), &hash_, nullptr, 0, nullptr, 0, 0) != 0)
            throw std::runtime_error("the system makes no MD5");
    }
    ~md5_stream() override { BCryptDestroyHash(hash_); }

    void update(const void* bytes, std::size_t size) override {
        BCryptHashData(hash_, static_cast<PUCHAR>(const_cast<void*>(bytes)), static_cast<ULONG>(size), 0);
    }
    ostrevan::hash_digest finish() override {
        ostrevan::hash_digest result{};
        BCryptFinishHash(hash_, result.data(), static_cast<ULONG>(result.size()), 0);
        return result;
    }

private:
    BCRYPT_HASH_HANDLE hash_ = nullptr;
};

class md5_service : public ostrevan::hash_service {
public:
    ostrevan::hash_digest digest(const void* bytes, std::size_t size) override {
        const auto stream = open();
        stream->update(bytes, size);
        return stream->finish();
    }
    ostrevan::service_ptr_t<ostrevan::hash_stream> open() override { return ostrevan::service_new<md5_stream>(); }
};

struct lower_pair {
    std::uint32_t from;
    std::uint32_t to;
};
/// Made by lower_pairs.py; the system's own table leaves out code points of two units and a few others.
constexpr lower_pair lower_pairs[] = {
#include "lower_pairs.inc"
};

class lower_casing : public ostrevan::text_helper_service {
public:
    lower_casing() {
        for (std::uint32_t i = 0; i < lower_table_size; ++i) table_[i] = static_cast<std::uint16_t>(lower(i));
    }
    std::uint32_t lower(std::uint32_t code_point) const noexcept override {
        const auto* const found = std::ranges::lower_bound(lower_pairs, code_point, {}, &lower_pair::from);
        return found != std::end(lower_pairs) && found->from == code_point ? found->to : code_point;
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
