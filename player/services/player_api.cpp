#include "player/services/player_api.h"

#include <cstdio>
#include <cstdlib>

namespace ostrevan::services {

void player_api_impl::bug_check(const char* text) noexcept {
    crash_log_.write_crash(text);
    std::fprintf(stderr, "ostrevan: bug check: %s\nDetails are in crash.log of the profile folder %s\n", text,
                 profile_.c_str());
    std::abort();
}

}  // namespace ostrevan::services
