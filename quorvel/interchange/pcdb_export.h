#pragma once

#include <cstdint>
#include <string>

#include "ostrevan/track.h"
#include "quorvel/store/record.h"

/// The XML statistics file: writing it and reading it back. [main-thread]
namespace quorvel::pcdb_export {

using track_list = nuv::list_base_const_t<ostrevan::metadb_handle_ptr>;

/// Writes the statistics file: the records of the tracks, or of every key that has a record when `tracks` is null. `path` is
/// a path or location of the player; what stood there is replaced, and what is written is on the disk when this returns.
/// `fields` is a set of `ExportFields`. Throws `std::runtime_error`, before anything is touched, when there is no index;
/// what the player's index throws for a record that cannot be read, and its file system; and `ostrevan::exception_aborted`
/// when the user stops it. A file left half-written stays.
void exportToFile(const char* path, std::uint32_t fields, const track_list* tracks);

/// Appends the record of one key, with the tracks that have it (null for none). False, and nothing appended, when the record
/// has none of the fields.
bool writeEntry(std::string& out, std::uint64_t key, const t_playback_stats& record, std::uint32_t fields,
                const track_list* items);

/// Opens the export dialog for the whole database, or for a copy of a selection, without waiting for it; brings an open one
/// forward instead. Throws when it cannot be opened.
void open_export_dialog();
void open_export_dialog(ostrevan::metadb_handle_list_cref tracks);

/// Asks for a file and opens the import dialog for it.
void importStatistics();

}  // namespace quorvel::pcdb_export
