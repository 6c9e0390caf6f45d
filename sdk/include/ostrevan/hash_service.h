#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "ostrevan/service.h"

namespace ostrevan {

/// The 16-byte digest of the player, MD5. [any-thread]
using hash_digest = std::array<std::uint8_t, 16>;

/// A digest of several blocks. Used by one thread at a time.
class hash_stream : public service_base {
public:
    virtual void update(const void* bytes, std::size_t size) = 0;
    /// The digest of everything given so far. Nothing may be added afterwards.
    virtual hash_digest finish() = 0;
};

class hash_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{4B897EC8-A2F9-478D-A95E-1A2110A40078}");

    /// The digest of one block of bytes.
    [[nodiscard]] virtual hash_digest digest(const void* bytes, std::size_t size) = 0;
    /// For bytes that come in several blocks.
    [[nodiscard]] virtual service_ptr_t<hash_stream> open() = 0;
};

}  // namespace ostrevan
