#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the run with a finding, named `promise`, unless `holds`.
inline void check(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "ERROR: does not hold: %s\n", promise);
    std::abort();
}

}  // namespace fuzz
