#pragma once

#include "ostrevan/core_api.h"

namespace ostrevan_test {

/// Ends the test when a service that belongs to the main thread is called from another one. The text differs from the
/// component's own check, so that a death test tells them apart.
inline void require_main_thread(const char* what) {
    if (!ostrevan::core_api::is_main_thread())
        ostrevan::uBugCheck((std::string("called off the main thread: ") + what).c_str());
}

}  // namespace ostrevan_test
