#pragma once

#include "ostrevan/hash_service.h"

namespace ostrevan::services {

/// MD5 by OpenSSL. The algorithm is fetched once, and every thread reuses one context: fetching it per digest costs three
/// times the digest of a track.
class hash_service_impl : public hash_service {
public:
    [[nodiscard]] hash_digest digest(const void* bytes, std::size_t size) override;
    [[nodiscard]] service_ptr_t<hash_stream> open() override;
};

}  // namespace ostrevan::services
