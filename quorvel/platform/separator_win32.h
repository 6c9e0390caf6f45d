#pragma once

#include <windows.h>

#include <memory>

namespace quorvel {

/// The class of the control that heads a section of a dialog: a text with a line behind it.
inline constexpr const wchar_t* separator_class_name = L"ostrevan:separator";

/// Makes sure that windows of `module` can use the class. Where the player has registered it for everybody, theirs is used;
/// otherwise the module's own is registered until the last holder is gone, so that nothing of it outlives the module.
/// Throws `exception_system_error`. [main-thread]
[[nodiscard]] std::shared_ptr<const void> hold_separator_class(HINSTANCE module);

}  // namespace quorvel
