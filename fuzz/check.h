#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the run with a finding when `holds` is false; `promise` is what should have held.
inline void check(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "ERROR: does not hold: %s\n", promise);
    std::abort();
}

}  // namespace fuzz
