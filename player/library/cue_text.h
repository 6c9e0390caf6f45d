#pragma once

#include <string>
#include <string_view>

namespace ostrevan::library {

/// Text of a CUE sheet as UTF-8: as it stands when it is UTF-8, by its byte order mark when it has one, else from Latin-1.
std::string cue_text(std::string_view bytes);

}  // namespace ostrevan::library
