#include <windows.h>

#include <bcrypt.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "tests/support/text_doubles.h"

namespace {

struct lower_pair {
    std::uint32_t from;
    std::uint32_t to;
};
/// Made by lower_pairs.py; the system's own table lacks code points of two units and a few others.
constexpr lower_pair lower_pairs[] = {
#include "lower_pairs.inc"
};

}  // namespace

ostrevan::hash_digest support::md5_of(const void* bytes, std::size_t size) {
    static const BCRYPT_ALG_HANDLE algorithm = [] {
        BCRYPT_ALG_HANDLE opened = nullptr;
        if (BCryptOpenAlgorithmProvider(&opened, BCRYPT_MD5_ALGORITHM, nullptr, 0) != 0)
            throw std::runtime_error("the system has no MD5");
        return opened;
    }();
    ostrevan::hash_digest result{};
    BCRYPT_HASH_HANDLE hash = nullptr;
    BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0);
    BCryptHashData(hash, static_cast<PUCHAR>(const_cast<void*>(bytes)), static_cast<ULONG>(size), 0);
    BCryptFinishHash(hash, result.data(), static_cast<ULONG>(result.size()), 0);
    BCryptDestroyHash(hash);
    return result;
}

std::uint32_t support::lower_case_of(std::uint32_t code_point) noexcept {
    const auto* const found = std::ranges::lower_bound(lower_pairs, code_point, {}, &lower_pair::from);
    return found != std::end(lower_pairs) && found->from == code_point ? found->to : code_point;
}
