#include "player/library/library_changes.h"

#include <cmath>

namespace ostrevan::library {
namespace {
constexpr double length_tolerance = 0.05;  // seconds
}

bool is_same_sound(const file_info& a, const file_info& b) noexcept {
    return a.codec() == b.codec() && a.sample_rate() == b.sample_rate() && a.channels() == b.channels() &&
           std::abs(a.length() - b.length()) <= length_tolerance;
}

}  // namespace ostrevan::library
