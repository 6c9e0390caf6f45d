#pragma once

#include <string>

namespace ostrevan::system {

/// The profile of a user who names none: `$XDG_DATA_HOME/ostrevan`, else below `$HOME`. Empty when neither is set to an
/// absolute path: a relative one would make a profile in whatever folder the program is started from.
std::string default_profile();

/// The folder `components` beside the program. Empty when the system does not say where the program is: components are
/// loaded from no folder that depends on where the program was started.
std::string default_components();

}  // namespace ostrevan::system
