#pragma once

#include <string>

namespace ostrevan::terminal {

/// Parses "on", "off" and their synonyms. Throws `system::user_error` for other words.
bool parse_switch(const std::string& word);

const char* switch_word(bool is_on);

}  // namespace ostrevan::terminal
