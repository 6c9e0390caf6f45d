#pragma once

#include <string>
#include <string_view>

namespace ostrevan::library {

/// The text of a CUE sheet as UTF-8: unchanged if it is UTF-8, by its byte order mark, else from Latin-1.
std::string cue_text(std::string_view bytes);

}  // namespace ostrevan::library
