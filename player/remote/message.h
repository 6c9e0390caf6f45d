#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "player/remote/frame.h"

namespace ostrevan::remote {

/// The version of this program. Both ends must have the same.
extern const std::string_view own_version;

/// From a client, first: a command line to carry out. All are bytes as the system gave them.
struct command {
    std::vector<std::string> words;
    std::string home;           ///< HOME
    std::string terminal_kind;  ///< TERM
    bool is_in_foreground = true;
};

/// From a client: Ctrl-C.
struct interrupt {};

/// From a client: its job has moved to the foreground of its terminal, or away from it.
struct foreground {
    bool is_in_foreground;
};

/// From the owner, last: the command has ended.
struct done {
    int status;
};

/// From the owner: it does not carry out the command.
struct refusal {
    std::string version = std::string(own_version);  ///< of the owner
    bool is_ending = false;                          ///< Another process may own the profile soon.
    std::string reason;
};

using message = std::variant<command, interrupt, foreground, done, refusal>;

/// The other end is of another version.
class other_version : public malformed {
public:
    explicit other_version(const std::string& version) : malformed("it is of version " + version) {}
};

std::string encode(const message& what);
/// Throws `malformed`, or `other_version` for a command, of which every version can read that much.
message decode(std::string_view content);

}  // namespace ostrevan::remote
