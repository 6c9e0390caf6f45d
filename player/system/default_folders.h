#pragma once

#include <string>

namespace ostrevan::system {

/// The profile where none is named: `$XDG_DATA_HOME/ostrevan`, else below `$HOME`. Empty when neither is an absolute path:
/// with a relative one the profile would depend on the folder in which the program was started.
std::string default_profile();

/// `ostrevan/config` in `$XDG_CONFIG_HOME`, else in `~/.config`. Empty when neither is an absolute path.
std::string configuration_file();

/// The folder `components` beside the program as it was built, else the one where it is installed. Empty when the system
/// does not know where the program is: components are never loaded from the current folder.
std::string default_components();

/// The user's own: `components` in the folder of data. Empty when there is none.
std::string own_components();

}  // namespace ostrevan::system
