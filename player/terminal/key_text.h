#pragma once

#include <string>

#include "player/services/index_manager.h"

namespace ostrevan::terminal {

/// 16 lower-case hexadecimal digits, most significant first.
std::string hexadecimal(std::uint64_t key);

/// The track's key in the first registered index; empty when there is none.
std::string key_text(const services::index_manager_impl& index, const metadb_handle& track);

}  // namespace ostrevan::terminal
