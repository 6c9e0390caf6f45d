#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quorvel {

/// Shows why an import failed. [main-thread]
void report_import_failure(const std::string& reason);

/// Applies a statistics file that has been read: the fields of `fields`, a set of `ExportFields`, in one operation. A
/// failure is reported, and what was read before it is applied; when the user stops it, nothing is, or where the player has
/// no transactions only what was written by then. [main-thread]
void import_file(std::string_view text, std::uint32_t fields);

}  // namespace quorvel
