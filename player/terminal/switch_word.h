#pragma once

#include <string>

namespace ostrevan::terminal {

/// "on" and "off", and what else is said for them. Throws `usage_error` for another word.
bool parse_switch(const std::string& word);

const char* switch_word(bool is_on);

}  // namespace ostrevan::terminal
