#pragma once

#include <string>

#include "player/index/index_service.h"

namespace ostrevan::cli {

/// 16 lower-case hexadecimal digits, most significant first.
std::string hexadecimal(std::uint64_t key);

/// The track's key in the first index that a component has registered; empty when there is none.
std::string key_text(const index_service& index, const metadb_handle& track);

}  // namespace ostrevan::cli
