#include "player/terminal/switch_word.h"

#include "nuv/text.h"
#include "player/system/user_error.h"

namespace ostrevan::terminal {

bool parse_switch(const std::string& word) {
    for (const char* on : {"on", "true", "yes", "1"})
        if (nuv::equal_ascii_nocase(word, on)) return true;
    for (const char* off : {"off", "false", "no", "0"})
        if (nuv::equal_ascii_nocase(word, off)) return false;
    throw system::user_error("\"" + word + "\" is neither on nor off.");
}

const char* switch_word(bool is_on) { return is_on ? "on" : "off"; }

}  // namespace ostrevan::terminal
