#pragma once

#include <string>
#include <string_view>

namespace ostrevan::system {

/// The protocol before "://", such as "http"; empty for a plain path. [any-thread]
std::string_view protocol_of(std::string_view path) noexcept;

/// Whether a path leads to a file of this machine: one without a protocol, or with `file://`. [any-thread]
bool is_local_path(std::string_view path) noexcept;
/// Such a path without the protocol. [any-thread]
std::string local_path(std::string_view path);

}  // namespace ostrevan::system
