#pragma once

#include <windows.h>

#include <memory>

namespace quorvel {

/// The class of the control that heads a section of a dialog: a text followed by a line.
inline constexpr const wchar_t* separator_class_name = L"ostrevan:separator";

/// Makes the class usable for windows of `module`. If the player has registered it for everybody, that one is used;
/// otherwise the module registers its own until the last holder is gone, so that none outlives the module. Throws
/// `exception_system_error`. [main-thread]
[[nodiscard]] std::shared_ptr<const void> hold_separator_class(HINSTANCE module);

}  // namespace quorvel
