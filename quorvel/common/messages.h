#pragma once

#include <functional>
#include <string>

#include "ostrevan/popup.h"

namespace quorvel {

/// Title of the component's questions and messages.
inline constexpr const char* message_title = "Playback Statistics";

/// Writes a line to the player's console, if it has one. [any-thread]
void print_to_console(const std::string& line) noexcept;

/// Asks in a message box of the player, owned by its main window, and returns at once. `reply` gets the answer later, or is
/// dropped when the player ends first. `style` is a message-box style. Throws when the player cannot ask. [main-thread]
void ask(std::string text, std::string title, unsigned style, std::function<void(unsigned answer)> reply);

/// Tells the user that a command has failed, in a message box titled "Information", and returns at once. A player without
/// such boxes shows a plain message, and one without messages prints the text on its console. [main-thread]
void report_failure(const std::string& text);

}  // namespace quorvel
