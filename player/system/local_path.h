#pragma once

#include <string>
#include <string_view>

namespace ostrevan::system {

/// The protocol before "://", such as "http"; empty for a plain path. [any-thread]
std::string_view protocol_of(std::string_view path) noexcept;

/// Whether a path names a file on this machine: one without a protocol, or with `file://`. [any-thread]
bool is_local_path(std::string_view path) noexcept;
/// A local path without its protocol. [any-thread]
std::string local_path(std::string_view path);

}  // namespace ostrevan::system
