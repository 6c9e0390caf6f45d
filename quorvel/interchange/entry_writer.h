#pragma once

#include <cstdint>
#include <string>

#include "ostrevan/track.h"
#include "quorvel/store/record.h"

namespace quorvel::pcdb_export {

using track_list = nuv::list_base_const_t<ostrevan::metadb_handle_ptr>;

/// Appends the record of one key, with the tracks that have it (null for none). False, and nothing appended, if the record
/// has none of the fields, a set of `ExportFields`. [any-thread]
bool writeEntry(std::string& out, std::uint64_t key, const t_playback_stats& record, std::uint32_t fields,
                const track_list* items);

}  // namespace quorvel::pcdb_export
