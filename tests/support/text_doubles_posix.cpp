#include <openssl/evp.h>
#include <utf8proc.h>

#include "tests/support/text_doubles.h"

ostrevan::hash_digest support::md5_of(const void* bytes, std::size_t size) {
    ostrevan::hash_digest result{};
    EVP_Digest(bytes, size, result.data(), nullptr, EVP_md5(), nullptr);
    return result;
}

std::uint32_t support::lower_case_of(std::uint32_t code_point) noexcept {
    return static_cast<std::uint32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code_point)));
}
