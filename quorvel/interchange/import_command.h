#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel {

/// Applies a statistics file that has been read: the fields of `fields`, a set of `ExportFields`, in one operation. A
/// failure is reported, and what was read before it is applied. When the user stops it, nothing is applied, or, with a
/// player that offers no transactions, only what was written by then. `path` is for the player's history. [main-thread]
void import_file(std::string_view text, std::uint32_t fields, const std::string& path = {});

namespace pcdb_export {

/// Asks for a file and opens the import dialog for it. [main-thread]
void importStatistics();

}  // namespace pcdb_export
}  // namespace quorvel
