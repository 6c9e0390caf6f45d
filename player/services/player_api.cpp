#include "player/services/player_api.h"

#include <cstdio>
#include <cstdlib>

#include "player/core/component_call.h"

namespace ostrevan::services {

void player_api_impl::bug_check(const char* text) noexcept {
    crash_log_.write_crash(text, core::module_at(__builtin_return_address(0)));
    std::fprintf(stderr, "ostrevan: bug check: %s\nDetails are in crash.log of the profile folder %s\n", text,
                 profile_.c_str());
    std::abort();
}

}  // namespace ostrevan::services
