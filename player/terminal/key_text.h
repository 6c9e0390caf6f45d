#pragma once

#include <string>
#include <vector>

#include "player/services/index_manager.h"

namespace ostrevan::terminal {

/// 16 lower-case hexadecimal digits, most significant first.
std::string hexadecimal(std::uint64_t key);

/// The track's key in the first of the registered indexes; empty when there is none.
std::string key_text(const std::vector<services::index_manager_impl::registration>& indexes, const metadb_handle& track);

}  // namespace ostrevan::terminal
