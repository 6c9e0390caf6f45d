#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ostrevan/track.h"

namespace bench {

/// MD5 with nothing around it: one context, used again and again.
class bare_digest {
public:
    bare_digest();
    ~bare_digest();

    /// Both halves combined, as in a key.
    std::uint64_t of(const std::string& bytes);

private:
    struct context;
    std::unique_ptr<context> context_;
};

/// For each track the bytes whose digest is its key.
std::vector<std::string> key_bytes_of(const std::vector<ostrevan::metadb_handle_ptr>& tracks);

}  // namespace bench
