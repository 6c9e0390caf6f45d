#include <utf8proc.h>

#include "tests/support/memory_player.h"

std::uint32_t support::lower_case_of(std::uint32_t code_point) noexcept {
    return static_cast<std::uint32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code_point)));
}
